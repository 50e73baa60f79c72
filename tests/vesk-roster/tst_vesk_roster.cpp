// vesk-roster end to end: every command runs as a separate process on a
// temporary settings directory, as a user would run it.

#include <rosterfile.h>

#include <QCryptographicHash>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using Commands = QList<QStringList>;
Q_DECLARE_METATYPE(Commands)

namespace {

QStringList A(std::initializer_list<const char *> args)
{
    QStringList list;
    for (const char *arg : args)
        list.append(QString::fromUtf8(arg));
    return list;
}

QJsonObject parse(const QString &json)
{
    return QJsonDocument::fromJson(json.toUtf8()).object();
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(content);
}

struct Result
{
    int status = -1;
    QString out;
    QString err;
};

// Small enough to order by hand. Groups are listed against their positions,
// and the chats counts, presences and name case all disagree with each other.
const char roster[] = R"({
  "protocols": [{"name": "jabber"}, {"name": "icq"}],
  "accounts": [{"uid": "me@example.org", "protocol": "jabber"}, {"uid": "123", "protocol": "icq"}],
  "groups": [{"name": "Work", "pos": 2}, {"name": "Friends", "pos": 1}],
  "contacts": [
    {"display": "Carol", "group": "Work", "account": 0, "chats_count": 9,
     "presence": {"id": "online", "description": "at lunch"}},
    {"display": "Adam", "group": "Work", "account": 1, "chats_count": 7,
     "presence": {"id": "offline", "flag": 5}},
    {"display": "alice", "group": "Work", "account": 0, "chats_count": 5, "presence": {"id": "away"}},
    {"display": "Bob", "group": "Friends", "account": 0, "chats_count": "7", "presence": {"id": "online"}},
    {"display": "Tim", "group": "Friends", "temporary": true, "chats_count": 4, "presence": {"id": "online"}},
    {"display": "Eve", "group": "Friends", "account": 0, "subscription": 2, "chats_count": 1,
     "presence": {"id": "away"}},
    {"display": "Dave", "presence": {"id": "offline", "flag": 5}}
  ]
})";

// "Group: a, b | Other: c | -: d" from `show --json`, one string for one comparison.
QString shownRoster(const QJsonObject &show)
{
    auto names = [](const QJsonValue &entries) {
        QStringList list;
        for (const QJsonValue &entry : entries.toArray())
            list.append(entry[QLatin1String("display")].toString());
        return list.join(QLatin1String(", "));
    };
    QStringList parts;
    for (const QJsonValue &group : show.value(QLatin1String("groups")).toArray()) {
        parts.append(group[QLatin1String("name")].toString() + QLatin1String(": ")
            + names(group[QLatin1String("entries")]));
    }
    if (!show.value(QLatin1String("ungrouped")).toArray().isEmpty())
        parts.append(QLatin1String("-: ") + names(show.value(QLatin1String("ungrouped"))));
    return parts.join(QLatin1String(" | "));
}

// Every file and directory under `dir` with the hash of its bytes.
QString fingerprint(const QString &dir)
{
    if (!QDir(dir).exists())
        return QStringLiteral("(no directory)");
    QStringList lines;
    QDirIterator it(
        dir, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        file.open(QIODevice::ReadOnly);
        lines.append(QDir(dir).relativeFilePath(file.fileName()) + QLatin1Char(' ')
            + QString::fromLatin1(
                QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex()));
    }
    lines.sort();
    return lines.join(QLatin1Char('\n'));
}

void copyDirectory(const QString &from, const QString &to)
{
    QDir().mkpath(to);
    QDirIterator it(
        from, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString target = to + QLatin1Char('/') + QDir(from).relativeFilePath(path);
        if (it.fileInfo().isDir())
            QDir().mkpath(target);
        else
            QFile::copy(path, target);
    }
}

} // namespace

#define RUN_OK(result, ...)                                                                        \
    const Result result = run(__VA_ARGS__);                                                        \
    QVERIFY2(result.status == 0, qPrintable(result.err))

class tst_VeskRoster : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void sampleRosterShowsWithNoArguments();
    void showListsTheRosterInTheBuiltInOrder();
    void editsSurviveToTheNextRunAndChangeShow_data();
    void editsSurviveToTheNextRunAndChangeShow();
    void filterListChangesAsTheLibraryDefines_data();
    void filterListChangesAsTheLibraryDefines();

    void storedMethodOrdersTheNextShow_data();
    void storedMethodOrdersTheNextShow();
    void switchingFiltersSwitchesMethods();

    void exportThenImportReproducesAFilter();

    void refusalsLeaveTheSettingsUntouched_data();
    void refusalsLeaveTheSettingsUntouched();
    void refusalOnAFreshMachineLeavesNoSettingsBehind();

    void kindsOfferTheLoadedRostersItems();

private:
    Result program(const QStringList &args, const QByteArray &input = QByteArray()) const;
    Result run(const QStringList &args, const QByteArray &input = QByteArray()) const
    {
        return program(QStringList { QStringLiteral("--settings"), settings }
                + A({ "--roster", "roster.json" }) + args,
            input);
    }
    void runAll(const Commands &commands) const;
    QString shown() const { return shownRoster(parse(run(A({ "--json", "show" })).out)); }
    // "default *work single": the filters in display order, the current one marked.
    QString filterList() const;
    void useFixture() const
    {
        copyDirectory(fixture.filePath(QStringLiteral("settings")), settings);
    }

    QTemporaryDir fixture; // the roster, and settings with filters and a method, built once
    std::unique_ptr<QTemporaryDir> temp;
    QString settings;
};

Result tst_VeskRoster::program(const QStringList &args, const QByteArray &input) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Never the real user's configuration, even by accident.
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), temp ? temp->path() : fixture.path());
    process.setProcessEnvironment(environment);
    // Rows name the fixture's files relative to it.
    process.setWorkingDirectory(fixture.path());
    process.start(QStringLiteral(VESK_ROSTER_PROGRAM), args);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(60000);
    Result result;
    result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

void tst_VeskRoster::runAll(const Commands &commands) const
{
    for (const QStringList &command : commands) {
        const Result result = run(command);
        QVERIFY2(result.status == 0, qPrintable(command.join(QLatin1Char(' ')) + result.err));
    }
}

QString tst_VeskRoster::filterList() const
{
    const QJsonObject filters = parse(run(A({ "--json", "filters" })).out);
    QStringList ids;
    for (const QJsonValue &filter : filters.value(QLatin1String("filters")).toArray()) {
        const QString id = filter[QLatin1String("id")].toString();
        ids.append(id == filters[QLatin1String("current")].toString() ? QLatin1Char('*') + id : id);
    }
    return ids.join(QLatin1Char(' '));
}

void tst_VeskRoster::initTestCase()
{
    QVERIFY(fixture.isValid());
    writeFile(fixture.filePath(QStringLiteral("roster.json")), roster);
    settings = fixture.filePath(QStringLiteral("settings"));
    runAll({
        A({ "new", "work", "and", "group", "is_or_not=is", "group_filter_presence=Work" }),
        A({ "add", "work", "stack_filter", "or", "presence", "is_or_not=is",
            "presence_filter_presence=online", "presence", "is_or_not=is",
            "presence_filter_presence=away" }),
        A({ "new", "single", "or", "display", "is_or_not=contains", "display_filter_regexp=e" }),
        A({ "new", "nested-single", "and", "display", "is_or_not=contains",
            "display_filter_regexp=e" }),
        A({ "add", "nested-single", "stack_filter", "or", "presence", "is_or_not=is",
            "presence_filter_presence=online" }),
        A({ "sorter", "byname", "name" }),
        A({ "use", "work" }),
    });
    writeFile(fixture.filePath(QStringLiteral("single.json")),
        run(A({ "export", "single" })).out.toUtf8());
}

void tst_VeskRoster::init()
{
    temp = std::make_unique<QTemporaryDir>();
    QVERIFY(temp->isValid());
    settings = temp->filePath(QStringLiteral("settings"));
}

void tst_VeskRoster::sampleRosterShowsWithNoArguments()
{
    // No --settings either: the program falls back to $XDG_CONFIG_HOME/vesk-roster.
    const Result result = program(QStringList());
    QVERIFY2(result.status == 0, qPrintable(result.err));
    const QJsonArray contacts
        = QJsonDocument::fromJson(VeskRosterFile::sampleRoster())[QLatin1String("contacts")]
              .toArray();
    QVERIFY(contacts.size() >= 40);
    for (const QJsonValue &contact : contacts) {
        const QString display = contact[QLatin1String("display")].toString();
        QVERIFY2(result.out.contains(display), qPrintable(display));
    }
    // Reading stores nothing, not even the directory.
    QVERIFY(!QDir(temp->filePath(QStringLiteral("vesk-roster"))).exists());
}

void tst_VeskRoster::showListsTheRosterInTheBuiltInOrder()
{
    // Groups by position; members online before offline, then by
    // subscription (highest first), then by name; the groupless last.
    const QJsonObject expected = parse(QStringLiteral(R"({"filter": "default", "sorter": "",
      "groups": [{"name": "Friends", "entries": [
        {"display": "Eve", "kind": "contact", "group": "Friends", "account": "me@example.org@jabber",
         "presence": "away", "description": "", "chats_count": 1},
        {"display": "Bob", "kind": "contact", "group": "Friends", "account": "me@example.org@jabber",
         "presence": "online", "description": "", "chats_count": null},
        {"display": "Tim", "kind": "temporary", "group": "Friends", "account": null,
         "presence": "online", "description": "", "chats_count": null}]},
      {"name": "Work", "entries": [
        {"display": "alice", "kind": "contact", "group": "Work", "account": "me@example.org@jabber",
         "presence": "away", "description": "", "chats_count": 5},
        {"display": "Carol", "kind": "contact", "group": "Work", "account": "me@example.org@jabber",
         "presence": "online", "description": "at lunch", "chats_count": 9},
        {"display": "Adam", "kind": "contact", "group": "Work", "account": "123@icq",
         "presence": "offline", "description": "", "chats_count": 7}]}],
      "ungrouped": [{"display": "Dave", "kind": "contact", "group": null, "account": null,
         "presence": "offline", "description": "", "chats_count": null}]})"));
    const Result result = run(A({ "--json", "show" }));
    QVERIFY2(result.status == 0, qPrintable(result.err));
    QCOMPARE(parse(result.out), expected);
}

void tst_VeskRoster::editsSurviveToTheNextRunAndChangeShow_data()
{
    QTest::addColumn<Commands>("commands");
    QTest::addColumn<QString>("expected"); // the current filter's show, in the built-in order
    // The fixture's current filter is "work": Work members online or away.
    QTest::newRow("new builds a filter that use makes current")
        << Commands { A({ "new", "online", "and", "presence", "is_or_not=is",
                          "presence_filter_presence=online" }),
               A({ "use", "online" }) }
        << QStringLiteral("Friends: Bob, Tim | Work: Carol");
    QTest::newRow("add grows nested stacks at any depth")
        << Commands { A({ "new", "mix", "or", "display", "is_or_not=match exactly",
                          "display_filter_regexp=Bob" }),
               A({ "add", "mix", "stack_filter", "and", "group", "is_or_not=is",
                   "group_filter_presence=Work" }),
               A({ "add", "mix/1", "stack_filter", "or", "presence", "is_or_not=is",
                   "presence_filter_presence=online" }),
               A({ "add", "mix/1/1", "display", "is_or_not=contains", "display_filter_regexp=d" }),
               A({ "use", "mix" }) }
        << QStringLiteral("Friends: Bob | Work: Carol, Adam");
    QTest::newRow("rename keeps the content")
        << Commands { A({ "rename", "work", "office" }) } << QStringLiteral("Work: alice, Carol");
    QTest::newRow("drop takes a nested child out")
        << Commands { A({ "drop", "work/1/1" }) } << QStringLiteral("Work: Carol");
    QTest::newRow("import --replace swaps the content of the current filter")
        << Commands { A({ "import", "single.json", "--as", "work", "--replace" }) }
        << QStringLiteral("Friends: Eve | Work: alice | -: Dave");
}

void tst_VeskRoster::editsSurviveToTheNextRunAndChangeShow()
{
    QFETCH(Commands, commands);
    QFETCH(QString, expected);
    useFixture();
    runAll(commands);
    QCOMPARE(shown(), expected);
}

void tst_VeskRoster::filterListChangesAsTheLibraryDefines_data()
{
    QTest::addColumn<Commands>("commands");
    QTest::addColumn<QString>("expected");
    const QString unchanged = QStringLiteral("default *work single nested-single");
    QTest::newRow("rename keeps the place and currency")
        << Commands { A({ "rename", "work", "office" }) }
        << QStringLiteral("default *office single nested-single");
    QTest::newRow("remove of the current filter falls back to default")
        << Commands { A({ "remove", "work" }) } << QStringLiteral("*default single nested-single");
    QTest::newRow("import --replace keeps the place")
        << Commands { A({ "import", "single.json", "--as", "work", "--replace" }) } << unchanged;
    QTest::newRow("names that are no plain file names survive")
        << Commands { A({ "new", "a/b", "or", "display", "is_or_not=contains" }),
               A({ "rename", "a/b", ".hidden ünïcode" }),
               A({ "new", "a/b", "or", "display", "is_or_not=contains" }) }
        << unchanged + QStringLiteral(" .hidden ünïcode a/b");
    QTest::newRow("up swaps with the entry above")
        << Commands { A({ "up", "nested-single" }) }
        << QStringLiteral("default *work nested-single single");
    QTest::newRow("down swaps with the entry below")
        << Commands { A({ "down", "work" }) }
        << QStringLiteral("default single *work nested-single");
}

void tst_VeskRoster::filterListChangesAsTheLibraryDefines()
{
    QFETCH(Commands, commands);
    QFETCH(QString, expected);
    useFixture();
    runAll(commands);
    QCOMPARE(filterList(), expected);
}

void tst_VeskRoster::storedMethodOrdersTheNextShow_data()
{
    QTest::addColumn<QStringList>("comparators");
    QTest::addColumn<QString>("expected");
    // Groups have positions, which the name comparator ranks ascending; the
    // chats comparator cannot tell groups apart, so they keep roster order.
    // Non-integer counts and temporary contacts count as 0, and ties keep
    // roster order.
    QTest::newRow("name ascending lists A to Z")
        << A({ "name" })
        << QStringLiteral("Friends: Bob, Eve, Tim | Work: Adam, alice, Carol | -: Dave");
    QTest::newRow("chats count ascending lists the most chats first")
        << A({ "chats_count" })
        << QStringLiteral("Work: Carol, Adam, alice | Friends: Eve, Bob, Tim | -: Dave");
    QTest::newRow("chats count descending lists the fewest first")
        << A({ "chats_count:desc" })
        << QStringLiteral("Work: alice, Adam, Carol | Friends: Bob, Tim, Eve | -: Dave");
}

void tst_VeskRoster::storedMethodOrdersTheNextShow()
{
    QFETCH(QStringList, comparators);
    QFETCH(QString, expected);
    runAll({ A({ "sorter", "m" }) + comparators, A({ "sort", "m" }) });
    const QJsonObject show = parse(run(A({ "--json", "show" })).out);
    QCOMPARE(show.value(QLatin1String("sorter")).toString() + QLatin1Char(' ') + shownRoster(show),
        QStringLiteral("m ") + expected);
}

void tst_VeskRoster::switchingFiltersSwitchesMethods()
{
    useFixture(); // "work" is current
    runAll({ A({ "sorter", "chats", "chats_count" }), A({ "sort", "byname" }),
        A({ "use", "default" }), A({ "sort", "chats" }) });
    QStringList seen;
    for (const char *filter : { "default", "work", "default" }) {
        runAll({ A({ "use", filter }) });
        const QJsonObject show = parse(run(A({ "--json", "show" })).out);
        seen.append(show.value(QLatin1String("sorter")).toString() + QLatin1String(": ")
            + shownRoster(show));
    }
    const QString byChats
        = QStringLiteral("chats: Work: Carol, Adam, alice | Friends: Eve, Bob, Tim | -: Dave");
    QCOMPARE(seen, QStringList({ byChats, QStringLiteral("byname: Work: alice, Carol"), byChats }));
}

void tst_VeskRoster::exportThenImportReproducesAFilter()
{
    runAll({
        A({ "sorter", "byname", "name:desc" }),
        A({ "new", "odd", "or", "display", "is_or_not=contains",
            "display_filter_regexp=a.b \"quoted\" <x> & ü", "description", "is_or_not=is not empty",
            "description_filter_regexp=" }),
        A({ "add", "odd", "stack_filter", "and", "account", "is_or_not=is",
            "account_filter_presence=123@icq", "group", "is_or_not=is not",
            "group_filter_presence=No such group" }),
        A({ "add", "odd/2", "stack_filter", "or", "presence", "is_or_not=is",
            "presence_filter_presence=offline", "display", "is_or_not=match exactly",
            "display_filter_regexp=Mum" }),
        A({ "advanced", "odd", "on" }),
        A({ "use", "odd" }),
        A({ "sort", "byname" }),
    });
    RUN_OK(exported, A({ "export", "odd" }));
    RUN_OK(imported, A({ "import", "-", "--as", "copy" }), exported.out.toUtf8());
    QJsonObject expected = parse(exported.out);
    QVERIFY2(expected.value(QLatin1String("advanced")) == true
            && expected.value(QLatin1String("sorter")) == QLatin1String("byname"),
        qPrintable(exported.out));
    expected.insert(QStringLiteral("name"), QStringLiteral("copy"));
    QCOMPARE(parse(run(A({ "export", "copy" })).out), expected);
    const QString byOriginal = shown();
    runAll({ A({ "use", "copy" }) });
    QCOMPARE(shown(), byOriginal);

    // The same through a file, under the definition's own name.
    expected.insert(QStringLiteral("name"), QStringLiteral("from-file"));
    writeFile(fixture.filePath(QStringLiteral("from-file.json")), QJsonDocument(expected).toJson());
    RUN_OK(fromFile, A({ "import", "from-file.json" }));
    // A group that is not in the roster is kept, with a warning.
    QVERIFY2(fromFile.err.contains(QLatin1String("No such group")), qPrintable(fromFile.err));
    QCOMPARE(parse(run(A({ "export", "from-file" })).out), expected);
}

void tst_VeskRoster::refusalsLeaveTheSettingsUntouched_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");

    // Named relative to the fixture, where the program runs.
    const QString dir = fixture.path() + QLatin1Char('/');
    writeFile(dir + QLatin1String("bad-roster.json"), "{\n  \"groups\": [ { \"name\": 5 } ]\n}");
    writeFile(dir + QLatin1String("bad-definition.json"), "{ \"name\": \"x\",\n \"type\" }");
    writeFile(dir + QLatin1String("existing.json"),
        R"({"name": "work", "type": "and", "children": [{"kind": "display", "fields": {}}]})");
    writeFile(dir + QLatin1String("empty-nested.json"),
        R"({"name": "e", "type": "or", "children": [{"kind": "stack_filter", "type": "and", "children": []}]})");

    auto row = [](const char *name, const QStringList &args, const char *message) {
        QTest::newRow(name) << args << QString::fromUtf8(message);
    };
    row("unknown command", A({ "frobnicate" }), "unknown command \"frobnicate\"");
    row("help of an unknown command", A({ "help", "frobnicate" }), "unknown command");
    row("unknown option", A({ "--frobnicate", "show" }), "unknown option \"--frobnicate\"");
    row("missing argument", A({ "use" }), "missing argument");
    row("missing roster file", A({ "--roster", "nope.json", "show" }), "cannot read the roster");
    row("bad roster names line and column", A({ "--roster", "bad-roster.json" }),
        "line 2, column 25");
    row("missing definition file", A({ "import", "nope.json" }), "cannot read the definition");
    row("bad definition names line and column", A({ "import", "bad-definition.json" }),
        "line 2, column");
    row("unknown kind", A({ "new", "x", "and", "colour" }), "unknown kind \"colour\"");
    row("unknown field", A({ "new", "x", "and", "display", "colour=red" }),
        "unknown field \"colour\" for kind \"display\"");
    row("field of another kind", A({ "new", "x", "and", "display", "group_filter_presence=Work" }),
        "\"group_filter_presence\" is a field of kind \"group\"");
    row("field before any kind", A({ "new", "x", "and", "is_or_not=is" }), "comes before any kind");
    row("unknown stack type", A({ "new", "x", "xor", "display" }), "\"and\" or \"or\"");
    row("unknown filter", A({ "use", "nope" }), "unknown filter \"nope\"");
    row("unknown filter to edit", A({ "add", "nope", "display" }), "unknown filter \"nope\"");
    row("unknown method", A({ "sort", "nope" }), "unknown sorting method \"nope\"");
    row("unknown comparator", A({ "sorter", "m", "colour" }), "unknown comparator \"colour\"");
    row("unknown direction", A({ "sorter", "m", "name:up" }), "unknown direction \"up\"");
    row("child index out of range", A({ "add", "work/5", "display" }), "index 5 is out of range");
    row("child path through a leaf", A({ "add", "work/0/0", "display" }),
        "goes through the condition");
    row("child path to a leaf", A({ "add", "work/0", "display" }), "not to a stack");
    row("child path that is no index", A({ "drop", "work/x" }), "\"x\" is not a child index");
    row("drop without an index", A({ "drop", "work" }), "needs the path of a child");
    row("new onto an existing name", A({ "new", "work", "and", "display" }), "already exists");
    row("new onto default", A({ "new", "default", "and", "display" }), "already exists");
    row("rename onto an existing name", A({ "rename", "work", "single" }), "already exists");
    row("import onto an existing name", A({ "import", "existing.json" }), "already exists");
    row("empty name", A({ "new", "", "and", "display" }), "cannot be empty");
    row("edit of default", A({ "remove", "default" }), "default filter cannot be edited");
    row("down of default", A({ "down", "default" }), "default filter always stays first");
    row("bad advanced flag", A({ "advanced", "work", "maybe" }), "\"on\" or \"off\"");
    row("new without a condition", A({ "new", "x", "and" }), "without children");
    row("empty nested stack", A({ "add", "work", "stack_filter", "or" }), "without children");
    row("drop of a filter's last child", A({ "drop", "single/0" }), "use \"remove single\"");
    row("drop of a nested stack's last child", A({ "drop", "nested-single/1/0" }),
        "drop nested-single/1");
    row("imported empty nested stack", A({ "import", "empty-nested.json" }), "without children");
    row("negative generate", A({ "generate", "-5" }), "N must be a number of contacts");
}

void tst_VeskRoster::refusalsLeaveTheSettingsUntouched()
{
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    useFixture();
    const QString before = fingerprint(settings);
    const Result result = run(args);
    QCOMPARE(result.status, 2);
    QVERIFY2(result.err.contains(message) && result.err.count(QLatin1Char('\n')) == 1
            && result.out.isEmpty(),
        qPrintable(result.err + result.out));
    QCOMPARE(fingerprint(settings), before);
}

void tst_VeskRoster::refusalOnAFreshMachineLeavesNoSettingsBehind()
{
    QCOMPARE(run(A({ "use", "nope" })).status, 2);
    QCOMPARE(fingerprint(settings), QStringLiteral("(no directory)"));
}

void tst_VeskRoster::kindsOfferTheLoadedRostersItems()
{
    const Result result = run(A({ "--json", "kinds" }));
    QVERIFY2(result.status == 0, qPrintable(result.err));
    const QJsonValue kinds = parse(result.out).value(QLatin1String("kinds"));
    QStringList seen;
    for (const QJsonValue &kind : kinds.toArray())
        seen.append(kind[QLatin1String("id")].toString());
    // The group field's items: the loaded roster's groups, in roster order.
    const QJsonValue groups = kinds[3][QLatin1String("fields")][1][QLatin1String("items")];
    for (const QJsonValue &item : groups.toArray())
        seen.append(item[QLatin1String("id")].toString());
    QCOMPARE(seen,
        A({ "account", "description", "display", "group", "presence", "protocol", "Work",
            "Friends" }));
}

QTEST_GUILESS_MAIN(tst_VeskRoster)
#include "tst_vesk_roster.moc"
