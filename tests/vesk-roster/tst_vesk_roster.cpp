// vesk-roster end to end: every command runs as a separate process on a
// temporary settings directory, as a user would run it.

#include <rosterfile.h>

#include <QCryptographicHash>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

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

// A definition as export prints it: `nesting` stack levels, each holding
// `conditions` display conditions with `text` and, but the innermost, the
// next level as its last child.
QByteArray definition(const QString &name, int nesting, const QString &text, int conditions = 1)
{
    QJsonObject display { { QStringLiteral("kind"), QStringLiteral("display") },
        { QStringLiteral("fields"),
            QJsonObject { { QStringLiteral("is_or_not"), QStringLiteral("contains") },
                { QStringLiteral("display_filter_regexp"), text } } } };
    QJsonObject level;
    for (int i = nesting; i >= 1; --i) {
        QJsonArray children;
        for (int c = 0; c < conditions; ++c)
            children.append(display);
        if (i < nesting)
            children.append(level);
        level = QJsonObject { { QStringLiteral("kind"), QStringLiteral("stack_filter") },
            { QStringLiteral("type"), QStringLiteral("and") },
            { QStringLiteral("children"), children } };
    }
    level.remove(QStringLiteral("kind"));
    level.insert(QStringLiteral("name"), name);
    return QJsonDocument(level).toJson(QJsonDocument::Compact);
}

// "NAME/1/1/.../1": the innermost stack of a definition() of that nesting.
QString innermost(const QString &name, int nesting)
{
    QString path = name;
    for (int i = 1; i < nesting; ++i)
        path += QLatin1String("/1");
    return path;
}

bool hasControlCharacters(const QString &text)
{
    for (const QChar c : text) {
        const ushort u = c.unicode();
        if ((u < 0x20 && u != '\n') || (u >= 0x7f && u <= 0x9f) || (u >= 0x202a && u <= 0x202e)
            || (u >= 0x2066 && u <= 0x2069) || c.isSurrogate())
            return true;
    }
    return false;
}

// Every text of it is hostile; the accounts are listed in an order that no
// sorting gives, and a CJK name stands beside a Latin one.
const char hostileRoster[] = R"({
  "protocols": [{"name": "jabber"}, {"name": "icq"}],
  "accounts": [{"uid": "zed", "protocol": "jabber"}, {"uid": "amy", "protocol": "icq"},
    {"uid": "mid\u202eevil", "protocol": "jabber"}, {"uid": "bob", "protocol": "icq"},
    {"uid": "kim", "protocol": "jabber"}],
  "groups": [{"name": "G\u0007r\rp", "pos": 1}],
  "contacts": [
    {"display": "\u001b]0;pwned\u0007Evil\u001b[2J", "group": "G\u0007r\rp", "account": 2,
     "presence": {"id": "online", "description": "one\ntwo"}},
    {"display": "\u5f20\u4f1f", "group": "G\u0007r\rp", "account": 0, "presence": {"id": "away"}},
    {"display": "Bob", "group": "G\u0007r\rp", "account": 1, "presence": {"id": "away"}}
  ]
})";

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

    void exportThenImportReproducesAFilter();

    void refusalsLeaveTheSettingsUntouched_data();
    void refusalsLeaveTheSettingsUntouched();
    void refusalOnAFreshMachineLeavesNoSettingsBehind();
    void refusalsPastAFileSizeLimitPutBackTheirOwnChanges_data();
    void refusalsPastAFileSizeLimitPutBackTheirOwnChanges();

    void boundsAreCheckedBeforeAnythingIsWritten_data();
    void boundsAreCheckedBeforeAnythingIsWritten();
    void theDeepestFilterExportsAndImportsAgain();
    void unwritableSettingsAreRefusedUpFront_data();
    void unwritableSettingsAreRefusedUpFront();
    void settingsPlaceFollowsTheEnvironment_data();
    void settingsPlaceFollowsTheEnvironment();

    void hostileTextStaysInert();
    void namesThatCannotBeTypedAreShownEscaped();
    void unreadableFilesAreNamedAndKeptFromEdits_data();
    void unreadableFilesAreNamedAndKeptFromEdits();
    void removingTheDefaultMethodClearsTheDefault();

    void kindsOfferTheLoadedRostersItems();

private:
    Result program(const QStringList &args, const QByteArray &input = QByteArray(),
        const QProcessEnvironment &extra = QProcessEnvironment(),
        const QStringList &wrapper = QStringList()) const;
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

    // The deepest nesting of stacks a stored filter can have: the library
    // reads no deeper file.
    static const int deepest = 253;

    QTemporaryDir fixture; // the roster, and settings with filters and a method, built once
    std::unique_ptr<QTemporaryDir> temp;
    QString settings;
};

// `extra` adds to the environment (an empty value removes the variable);
// `wrapper` runs the program through another command (setpriv, prlimit).
Result tst_VeskRoster::program(const QStringList &args, const QByteArray &input,
    const QProcessEnvironment &extra, const QStringList &wrapper) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Never the real user's configuration, even by accident.
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), temp ? temp->path() : fixture.path());
    const QStringList keys = extra.keys();
    for (const QString &key : keys) {
        if (extra.value(key).isEmpty())
            environment.remove(key);
        else
            environment.insert(key, extra.value(key));
    }
    process.setProcessEnvironment(environment);
    // Rows name the fixture's files relative to it.
    process.setWorkingDirectory(fixture.path());
    if (wrapper.isEmpty())
        process.start(QStringLiteral(VESK_ROSTER_PROGRAM), args);
    else
        process.start(wrapper.first(),
            wrapper.mid(1) + QStringList(QStringLiteral(VESK_ROSTER_PROGRAM)) + args);
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
    writeFile(fixture.filePath(QStringLiteral("hostile.json")), hostileRoster);

    // A definition past the size bound, one just below it, and the deepest
    // nesting there is, and one level more.
    const QString kb120(120000, QLatin1Char('x'));
    writeFile(fixture.filePath(QStringLiteral("huge.json")),
        definition(QStringLiteral("huge"), 1, QString(5000000, QLatin1Char('x'))));
    writeFile(fixture.filePath(QStringLiteral("near.json")),
        definition(QStringLiteral("near"), 1, kb120, 8));
    writeFile(fixture.filePath(QStringLiteral("deepest.json")),
        definition(QStringLiteral("deep"), deepest, QStringLiteral("d")));
    writeFile(fixture.filePath(QStringLiteral("deeper.json")),
        definition(QStringLiteral("deep"), deepest + 1, QStringLiteral("d")));
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
    // What the comparators answer is the sorters' own tests' business; here
    // only how show places entries by it: x before y when lessThan(y, x), the
    // groups the chats comparator cannot tell apart and the ties (non-integer
    // counts and temporary contacts count as 0) in roster order.
    QTest::newRow("chats count ascending lists the most chats first")
        << A({ "chats_count" })
        << QStringLiteral("Work: Carol, Adam, alice | Friends: Eve, Bob, Tim | -: Dave");
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
    row("bad roster names the place", A({ "--roster", "bad-roster.json" }),
        "groups[0].name: must be a string");
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
    row("up of default", A({ "up", "default" }), "default filter always stays first");
    row("down of default", A({ "down", "default" }), "default filter always stays first");
    row("up of the first filter", A({ "up", "work" }), "already the first filter");
    row("down of the last filter", A({ "down", "nested-single" }), "already the last filter");
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

void tst_VeskRoster::refusalsPastAFileSizeLimitPutBackTheirOwnChanges_data()
{
    QTest::addColumn<Commands>("setup");
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    // The new filter's file fits in the limit and is written; the settings
    // file, which then stores the display order, does not: the run is
    // refused after it created a file, and must take it away again.
    QTest::newRow("settings file past the limit, after a filter's file was created")
        << Commands { QStringList { QStringLiteral("sorter"), QString(20000, QLatin1Char('m')),
               QStringLiteral("name") } }
        << A({ "new", "x", "and", "display", "is_or_not=contains" })
        << QStringLiteral("could not store the settings in");
    // Renaming replaces one file by another before the display order is
    // stored: a refusal must bring the old file back and take the new away.
    QTest::newRow("settings file past the limit, after a filter's file was renamed")
        << Commands { QStringList { QStringLiteral("sorter"), QString(20000, QLatin1Char('m')),
                          QStringLiteral("name") },
               A({ "new", "x", "and", "display", "is_or_not=contains" }) }
        << A({ "rename", "x", "y" }) << QStringLiteral("could not store the settings in");
    QTest::newRow("filter file past the limit")
        << Commands() << A({ "import", "near.json" })
        << QStringLiteral("could not store the filter \"near\"");
}

void tst_VeskRoster::refusalsPastAFileSizeLimitPutBackTheirOwnChanges()
{
    QFETCH(Commands, setup);
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    useFixture();
    runAll(setup);
    const QString before = fingerprint(settings);
    // A write past RLIMIT_FSIZE fails (with SIGXFSZ ignored) like one on a
    // full disk, and root cannot get round it.
    const Result result = program(QStringList { QStringLiteral("--settings"), settings } + args,
        QByteArray(), QProcessEnvironment(),
        { QStringLiteral("sh"), QStringLiteral("-c"),
            QStringLiteral("trap '' XFSZ; exec prlimit --fsize=65536 \"$@\""),
            QStringLiteral("sh") });
    QCOMPARE(result.status, 2);
    QVERIFY2(result.err.contains(message) && result.out.isEmpty(), qPrintable(result.err));
    QCOMPARE(fingerprint(settings), before);
}

void tst_VeskRoster::boundsAreCheckedBeforeAnythingIsWritten_data()
{
    QTest::addColumn<Commands>("setup");
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    const QString condition
        = QStringLiteral("display_filter_regexp=") + QString(120000, QLatin1Char('x'));
    QStringList tenConditions = A({ "new", "big", "or" });
    for (int i = 0; i < 10; ++i)
        tenConditions << QStringLiteral("display") << QStringLiteral("is_or_not=contains")
                      << condition;
    const QString bytesBound = QStringLiteral("the bound is 1048576 bytes");
    QTest::newRow("new past the size bound") << Commands() << tenConditions << bytesBound;
    QTest::newRow("add past the size bound")
        << Commands { A({ "import", "near.json" }) }
        << A({ "add", "near", "display", "is_or_not=contains" }) + QStringList(condition)
        << bytesBound;
    QTest::newRow("import past the size bound")
        << Commands() << A({ "import", "huge.json" }) << bytesBound;
    QTest::newRow("import --replace past the size bound keeps the old filter")
        << Commands { A({ "new", "reachable", "and", "display", "is_or_not=contains" }) }
        << A({ "import", "huge.json", "--as", "reachable", "--replace" }) << bytesBound;
    QTest::newRow("add past the depth bound")
        << Commands { A({ "import", "deepest.json" }) }
        << QStringList { QStringLiteral("add"), innermost(QStringLiteral("deep"), deepest),
               QStringLiteral("stack_filter"), QStringLiteral("or"), QStringLiteral("display") }
        << QStringLiteral("254 levels deep, and the bound is 253 levels");
    QTest::newRow("import past the depth bound")
        << Commands() << A({ "import", "deeper.json" }) << QStringLiteral("deeper than 253 levels");
}

void tst_VeskRoster::boundsAreCheckedBeforeAnythingIsWritten()
{
    QFETCH(Commands, setup);
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    runAll(setup);
    const QString before = fingerprint(settings);
    const Result result = run(args);
    QCOMPARE(result.status, 2);
    QVERIFY2(result.err.contains(message) && result.out.isEmpty(), qPrintable(result.err));
    QCOMPARE(fingerprint(settings), before);
}

void tst_VeskRoster::theDeepestFilterExportsAndImportsAgain()
{
    runAll({ A({ "import", "deepest.json" }) });
    RUN_OK(exported, A({ "export", "deep" }));
    RUN_OK(imported, A({ "import", "-", "--as", "copy" }), exported.out.toUtf8());
    RUN_OK(copy, A({ "export", "copy" }));
    QJsonObject expected = parse(exported.out);
    expected.insert(QStringLiteral("name"), QStringLiteral("copy"));
    QCOMPARE(parse(copy.out), expected);
}

void tst_VeskRoster::unwritableSettingsAreRefusedUpFront_data()
{
    QTest::addColumn<QString>("place"); // file, below-file, read-only
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    const struct
    {
        const char *place;
        const char *message;
    } places[] = { { "file", "is not a directory" },
        { "below-file", "cannot create the settings directory" },
        { "read-only", "cannot write to the settings directory" } };
    const Commands commands { A({ "new", "x", "and", "display" }), A({ "use", "work" }),
        A({ "sorter", "m", "name" }), A({ "remove", "work" }), A({ "rename", "work", "w" }) };
    for (const auto &place : places) {
        for (const QStringList &command : commands) {
            QTest::addRow("%s: %s", place.place, qPrintable(command.first()))
                << QString::fromUtf8(place.place) << command << QString::fromUtf8(place.message);
        }
    }
}

void tst_VeskRoster::unwritableSettingsAreRefusedUpFront()
{
    QFETCH(QString, place);
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    QString dir = settings;
    QStringList wrapper;
    // Writable again afterwards, or the temporary directory stays behind.
    const auto restore = qScopeGuard([this] {
        for (const QString &path : { temp->path(), settings })
            QFile::setPermissions(
                path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    });
    if (place == QLatin1String("read-only")) {
        useFixture();
        // Root writes into any directory: the program then runs as nobody.
        QVERIFY(QFile::setPermissions(temp->path(),
            QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther
                | QFileDevice::ExeOther));
        QVERIFY(QFile::setPermissions(settings,
            QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther
                | QFileDevice::ExeOther));
        if (::geteuid() == 0) {
            wrapper = A({ "setpriv", "--reuid=65534", "--regid=65534", "--clear-groups" });
            if (program(
                    A({ "--roster", "-", "help" }), QByteArray(), QProcessEnvironment(), wrapper)
                    .status
                != 0)
                QSKIP("the program cannot be run as an unprivileged user here");
        }
        // Reading still works, under a shared lock.
        const Result read
            = program(QStringList { QStringLiteral("--settings"), dir, QStringLiteral("filters") },
                QByteArray(), QProcessEnvironment(), wrapper);
        QVERIFY2(
            read.status == 0 && read.out.contains(QLatin1String("work")), qPrintable(read.err));
    } else {
        writeFile(settings, "not a directory");
        if (place == QLatin1String("below-file"))
            dir = settings + QLatin1String("/vesk-roster");
    }
    const QString before = fingerprint(temp->path());
    const Result result = program(QStringList { QStringLiteral("--settings"), dir } + args,
        QByteArray(), QProcessEnvironment(), wrapper);
    QCOMPARE(result.status, 2);
    QVERIFY2(result.err.contains(message) && result.err.contains(settings), qPrintable(result.err));
    QCOMPARE(fingerprint(temp->path()), before);
}

void tst_VeskRoster::settingsPlaceFollowsTheEnvironment_data()
{
    QTest::addColumn<QString>("xdg");
    QTest::addColumn<QString>("home");
    QTest::addColumn<QString>("stored"); // relative to the temporary directory; empty: refused
    QTest::newRow("XDG_CONFIG_HOME first") << "xdg"
                                           << "home"
                                           << "xdg/vesk-roster";
    QTest::newRow("HOME without XDG_CONFIG_HOME") << ""
                                                  << "home"
                                                  << "home/.config/vesk-roster";
    QTest::newRow("a relative XDG_CONFIG_HOME is ignored") << "relative"
                                                           << "home"
                                                           << "home/.config/vesk-roster";
    QTest::newRow("neither is refused") << ""
                                        << ""
                                        << "";
}

void tst_VeskRoster::settingsPlaceFollowsTheEnvironment()
{
    QFETCH(QString, xdg);
    QFETCH(QString, home);
    QFETCH(QString, stored);
    QProcessEnvironment environment;
    auto absolute = [&](const QString &name) {
        return name.isEmpty() || name == QLatin1String("relative") ? name : temp->filePath(name);
    };
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), absolute(xdg));
    environment.insert(QStringLiteral("HOME"), absolute(home));
    const Result result = program(A({ "sorter", "m", "name" }), QByteArray(), environment);
    QVERIFY(!QFileInfo::exists(fixture.filePath(QStringLiteral("relative"))));
    if (stored.isEmpty()) {
        QCOMPARE(result.status, 2);
        QVERIFY2(result.err.contains(QLatin1String("--settings")), qPrintable(result.err));
        return;
    }
    QVERIFY2(result.status == 0, qPrintable(result.err));
    QVERIFY(QFileInfo::exists(temp->filePath(stored + QLatin1String("/settings.dat"))));
}

void tst_VeskRoster::hostileTextStaysInert()
{
    const QStringList roster = A({ "--roster", "hostile.json" });
    const QByteArray named
        = definition(QStringLiteral("\x1b[31mred"), 1, QStringLiteral("\x1b]0;t\x07"));
    RUN_OK(imported, A({ "import", "-" }), named);
    RUN_OK(copied, A({ "import", "-", "--as", "x" }), named);
    for (const QStringList &command : Commands { A({ "show" }), A({ "filters" }), A({ "kinds" }),
             A({ "export", "x" }), A({ "--json", "show" }), A({ "use", "nope" }) }) {
        const Result result = run(roster + command);
        QVERIFY2(!hasControlCharacters(result.out) && !hasControlCharacters(result.err),
            qPrintable(command.join(QLatin1Char(' '))));
    }
    RUN_OK(text, roster + A({ "show" }));
    QVERIFY2(text.out.contains(QLatin1String("\\e]0;pwned\\x07Evil\\e[2J"))
            && text.out.contains(QLatin1String("one\\ntwo"))
            && text.out.contains(QLatin1String("mid\\u202eevil")),
        qPrintable(text.out));
    // CJK characters take two columns: the next column starts at the same
    // place in both rows.
    const QStringList lines = text.out.split(QLatin1Char('\n'));
    auto prefix = [&](const QString &name) {
        for (const QString &line : lines) {
            if (line.contains(name))
                return line.left(line.indexOf(QLatin1String("away")));
        }
        return QString();
    };
    const QString latin = prefix(QStringLiteral("Bob"));
    const QString wide = prefix(QString::fromUtf8("张伟"));
    QVERIFY2(latin.startsWith(QLatin1String("  Bob ")) && wide.size() + 2 == latin.size(),
        qPrintable(latin + QLatin1Char('|') + wide));

    // JSON keeps every text exactly, escaped as JSON escapes.
    RUN_OK(json, roster + A({ "--json", "show" }));
    const QJsonObject group = parse(json.out).value(QLatin1String("groups"))[0].toObject();
    QCOMPARE(group[QLatin1String("name")].toString(), QStringLiteral("G\x07r\rp"));
    QCOMPARE(group.value(QLatin1String("entries"))[0][QLatin1String("display")].toString(),
        QStringLiteral("\x1b]0;pwned\x07"
                       "Evil\x1b[2J"));
    RUN_OK(filters, A({ "filters" }));
    QVERIFY2(filters.out.contains(QLatin1String("\\e[31mred")), qPrintable(filters.out));

    // Account and protocol items come in the accounts' order, in every run.
    RUN_OK(kinds, roster + A({ "--json", "kinds" }));
    QStringList items;
    for (const QJsonValue &kind : parse(kinds.out)[QLatin1String("kinds")].toArray()) {
        if (kind[QLatin1String("id")] == QLatin1String("account")
            || kind[QLatin1String("id")] == QLatin1String("protocol")) {
            for (const QJsonValue &item :
                kind[QLatin1String("fields")][1][QLatin1String("items")].toArray())
                items.append(item[QLatin1String("id")].toString());
        }
    }
    QCOMPARE(items,
        QStringList({ QStringLiteral("zed@jabber"), QStringLiteral("amy@icq"),
            QStringLiteral("mid\u202eevil@jabber"), QStringLiteral("bob@icq"),
            QStringLiteral("kim@jabber"), QStringLiteral("jabber"), QStringLiteral("icq") }));
}

void tst_VeskRoster::namesThatCannotBeTypedAreShownEscaped()
{
    // A name with an unpaired surrogate, as a JSON escape.
    const QByteArray document
        = definition(QStringLiteral("NAME"), 1, QStringLiteral("x")).replace("NAME", "\\ud800x");
    RUN_OK(imported, A({ "import", "-" }), document);
    RUN_OK(listed, A({ "filters" }));
    QVERIFY2(listed.out.contains(QLatin1String("\\ud800x")), qPrintable(listed.out));
    RUN_OK(removed, A({ "remove", "\\ud800x" }));
    QCOMPARE(filterList(), QStringLiteral("*default"));
}

void tst_VeskRoster::unreadableFilesAreNamedAndKeptFromEdits_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    QByteArray deep;
    for (int i = 0; i < 300; ++i)
        deep += "<stack_filter type=\"AND\">";
    QTest::newRow("not XML") << QByteArray("not xml") << "not well-formed XML";
    QTest::newRow("too big") << QByteArray("<stack_filter type=\"AND\">") + QByteArray(1100000, ' ')
            + "</stack_filter>"
                             << "too big: 1100040 bytes, and the bound is 1048576 bytes";
    QTest::newRow("too deep") << deep << "nests deeper than the bound of 253 stack levels";
    QTest::newRow("without conditions")
        << QByteArray("<stack_filter type=\"OR\"/>") << "holds no conditions";
}

void tst_VeskRoster::unreadableFilesAreNamedAndKeptFromEdits()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    useFixture();
    const QString file = settings + QLatin1String("/roster_filters/single");
    writeFile(file, content);
    for (const char *listing : { "show", "filters" }) {
        const Result result = run(A({ listing }));
        QVERIFY2(result.status == 0 && result.err.contains(QLatin1String("\"single\""))
                && result.err.contains(file) && result.err.contains(reason)
                && result.err.contains(QLatin1String("\"remove single\""))
                && result.err.contains(QLatin1String("--as single --replace")),
            qPrintable(result.err));
    }
    const QString before = fingerprint(settings);
    for (const QStringList &edit : Commands { A({ "add", "single", "display" }),
             A({ "advanced", "single", "on" }), A({ "export", "single" }) }) {
        const Result result = run(edit);
        QVERIFY2(result.status == 2 && result.err.contains(reason), qPrintable(result.err));
    }
    QCOMPARE(fingerprint(settings), before);
    // Replacing it is the way out.
    runAll({ A({ "import", "single.json", "--as", "single", "--replace" }) });
    RUN_OK(after, A({ "filters" }));
    QVERIFY2(after.err.isEmpty(), qPrintable(after.err));
}

void tst_VeskRoster::removingTheDefaultMethodClearsTheDefault()
{
    runAll({ A({ "sorter", "m", "chats_count" }), A({ "sorter-default", "m" }),
        A({ "sorter-remove", "m" }) });
    RUN_OK(removed, A({ "--json", "sorters" }));
    QCOMPARE(parse(removed.out)[QLatin1String("default")].toString(), QString());
    runAll({ A({ "sorter", "m", "chats_count" }), A({ "sorter-default", "m" }),
        A({ "sorter-default", "--none" }) });
    RUN_OK(none, A({ "--json", "show" }));
    QCOMPARE(parse(none.out)[QLatin1String("sorter")].toString(), QString());
}

QTEST_GUILESS_MAIN(tst_VeskRoster)
#include "tst_vesk_roster.moc"
