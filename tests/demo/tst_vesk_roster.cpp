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

#include <algorithm>

namespace {

QStringList A(std::initializer_list<const char *> args)
{
    QStringList list;
    for (const char *arg : args)
        list.append(QString::fromUtf8(arg));
    return list;
}

struct Result
{
    int status = -1;
    QString out;
    QString err;

    QJsonObject json() const { return QJsonDocument::fromJson(out.toUtf8()).object(); }
};

// One contact of the bundled sample roster, read from the document itself.
struct SampleEntry
{
    QString display;
    QString group; // empty: none
    QString presence;
    bool temporary = false;
    bool offline = false; // presence flag 5
    int subscription = 0;
    int chats = 0; // the integer chats count, 0 otherwise
};

QVector<SampleEntry> sampleEntries()
{
    const QJsonObject roster = QJsonDocument::fromJson(VeskRosterFile::sampleRoster()).object();
    QVector<SampleEntry> entries;
    const QJsonArray contacts = roster.value(QLatin1String("contacts")).toArray();
    for (const QJsonValue &value : contacts) {
        const QJsonObject contact = value.toObject();
        SampleEntry entry;
        entry.display = contact.value(QLatin1String("display")).toString();
        entry.group = contact.value(QLatin1String("group")).toString();
        const QJsonObject presence = contact.value(QLatin1String("presence")).toObject();
        entry.presence = presence.value(QLatin1String("id")).toString();
        entry.offline = presence.value(QLatin1String("flag")).toInt() == 5;
        entry.temporary = contact.value(QLatin1String("temporary")).toBool();
        if (!entry.temporary)
            entry.subscription = contact.value(QLatin1String("subscription")).toInt();
        const QJsonValue chats = contact.value(QLatin1String("chats_count"));
        if (!entry.temporary && chats.isDouble() && chats.toDouble() == chats.toInt())
            entry.chats = chats.toInt();
        entries.append(entry);
    }
    return entries;
}

// What `show --json` is to say about each sample contact, keyed by display
// name, worked out from the roster document.
QMap<QString, QJsonObject> sampleEntryObjects()
{
    const QJsonObject roster = QJsonDocument::fromJson(VeskRosterFile::sampleRoster()).object();
    const QJsonArray accounts = roster.value(QLatin1String("accounts")).toArray();
    QMap<QString, QJsonObject> objects;
    const QJsonArray contacts = roster.value(QLatin1String("contacts")).toArray();
    for (const QJsonValue &value : contacts) {
        const QJsonObject contact = value.toObject();
        const bool temporary = contact.value(QLatin1String("temporary")).toBool();
        const QJsonObject presence = contact.value(QLatin1String("presence")).toObject();
        const QJsonValue account = contact.value(QLatin1String("account"));
        const QJsonObject accountObject = accounts.at(account.toInt()).toObject();
        const QJsonValue chats = contact.value(QLatin1String("chats_count"));
        const bool integer = !temporary && chats.isDouble() && chats.toDouble() == chats.toInt();
        objects.insert(contact.value(QLatin1String("display")).toString(),
            QJsonObject {
                { QStringLiteral("display"), contact.value(QLatin1String("display")) },
                { QStringLiteral("kind"),
                    temporary ? QStringLiteral("temporary") : QStringLiteral("contact") },
                { QStringLiteral("group"),
                    contact.contains(QLatin1String("group")) ? contact.value(QLatin1String("group"))
                                                             : QJsonValue() },
                { QStringLiteral("account"),
                    account.isDouble() ? QJsonValue(
                        accountObject.value(QLatin1String("uid")).toString() + QLatin1Char('@')
                        + accountObject.value(QLatin1String("protocol")).toString())
                                       : QJsonValue() },
                { QStringLiteral("presence"), presence.value(QLatin1String("id")) },
                { QStringLiteral("description"),
                    presence.value(QLatin1String("description")).toString() },
                { QStringLiteral("chats_count"), integer ? chats : QJsonValue() },
            });
    }
    return objects;
}

// The sample's groups by ascending position.
QStringList sampleGroupsByPosition()
{
    const QJsonObject roster = QJsonDocument::fromJson(VeskRosterFile::sampleRoster()).object();
    QList<QPair<int, QString>> groups;
    const QJsonArray array = roster.value(QLatin1String("groups")).toArray();
    for (const QJsonValue &group : array) {
        groups.append(qMakePair(group.toObject().value(QLatin1String("pos")).toInt(),
            group.toObject().value(QLatin1String("name")).toString()));
    }
    std::stable_sort(groups.begin(), groups.end(),
        [](const auto &a, const auto &b) { return a.first < b.first; });
    QStringList names;
    for (const auto &group : groups)
        names.append(group.second);
    return names;
}

// "Group: a, b | Other: c | -: d" from `show --json`, one string for one comparison.
QString shownRoster(const QJsonObject &show)
{
    QStringList parts;
    auto names = [](const QJsonArray &entries) {
        QStringList list;
        for (const QJsonValue &entry : entries)
            list.append(entry.toObject().value(QLatin1String("display")).toString());
        return list.join(QLatin1String(", "));
    };
    const QJsonArray groups = show.value(QLatin1String("groups")).toArray();
    for (const QJsonValue &group : groups) {
        parts.append(group.toObject().value(QLatin1String("name")).toString() + QLatin1String(": ")
            + names(group.toObject().value(QLatin1String("entries")).toArray()));
    }
    const QJsonArray ungrouped = show.value(QLatin1String("ungrouped")).toArray();
    if (!ungrouped.isEmpty())
        parts.append(QLatin1String("-: ") + names(ungrouped));
    return parts.join(QLatin1String(" | "));
}

// The same rendering of sample entries laid out the way the view lays them
// out: groups in `groupOrder`, members by `before`, stably.
template <typename Before>
QString expectedRoster(
    const QVector<SampleEntry> &entries, const QStringList &groupOrder, Before before)
{
    QStringList parts;
    auto names = [&](QVector<SampleEntry> members) {
        std::stable_sort(members.begin(), members.end(), before);
        QStringList list;
        for (const SampleEntry &entry : members)
            list.append(entry.display);
        return list.join(QLatin1String(", "));
    };
    for (const QString &group : groupOrder) {
        QVector<SampleEntry> members;
        std::copy_if(entries.begin(), entries.end(), std::back_inserter(members),
            [&](const SampleEntry &entry) { return entry.group == group; });
        if (!members.isEmpty())
            parts.append(group + QLatin1String(": ") + names(members));
    }
    QVector<SampleEntry> ungrouped;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(ungrouped),
        [](const SampleEntry &entry) { return entry.group.isEmpty(); });
    if (!ungrouped.isEmpty())
        parts.append(QLatin1String("-: ") + names(ungrouped));
    return parts.join(QLatin1String(" | "));
}

QStringList sampleGroupsInRosterOrder()
{
    const QJsonObject roster = QJsonDocument::fromJson(VeskRosterFile::sampleRoster()).object();
    QStringList names;
    const QJsonArray array = roster.value(QLatin1String("groups")).toArray();
    for (const QJsonValue &group : array)
        names.append(group.toObject().value(QLatin1String("name")).toString());
    return names;
}

// Every file under a directory with the hash of its bytes, one line each.
QString directoryFingerprint(const QString &dir)
{
    if (!QDir(dir).exists())
        return QStringLiteral("(no directory)");
    QStringList lines;
    QDirIterator it(dir, QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QString line = QDir(dir).relativeFilePath(path);
        if (!it.fileInfo().isDir()) {
            QFile file(path);
            file.open(QIODevice::ReadOnly);
            line += QLatin1Char(' ')
                + QString::fromLatin1(
                    QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex());
        }
        lines.append(line);
    }
    lines.sort();
    return lines.join(QLatin1Char('\n'));
}

void copyDirectory(const QString &from, const QString &to)
{
    QDir().mkpath(to);
    QDirIterator it(from, QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString target = to + QLatin1Char('/') + QDir(from).relativeFilePath(path);
        if (it.fileInfo().isDir())
            QDir().mkpath(target);
        else
            QFile::copy(path, target);
    }
}

bool nameBefore(const QString &x, const QString &y)
{
    return x.toLower().localeAwareCompare(y.toLower()) < 0;
}

// Every display name that `show --json` lists, sorted.
QStringList shownNames(const QJsonObject &show)
{
    QStringList names;
    auto collect = [&](const QJsonArray &entries) {
        for (const QJsonValue &entry : entries)
            names.append(entry.toObject().value(QLatin1String("display")).toString());
    };
    const QJsonArray groups = show.value(QLatin1String("groups")).toArray();
    for (const QJsonValue &group : groups)
        collect(group.toObject().value(QLatin1String("entries")).toArray());
    collect(show.value(QLatin1String("ungrouped")).toArray());
    names.sort();
    return names;
}

QStringList column(const QJsonArray &array, const char *key)
{
    QStringList values;
    for (const QJsonValue &value : array)
        values.append(value.toObject().value(QLatin1String(key)).toString());
    return values;
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
    void newFilterSurvivesToTheNextRunAndChangesShow();
    void addGrowsAFilterWithNestedStacks();
    void dropTakesAChildOut();
    void useMakesAFilterCurrentForTheNextRuns();
    void renameKeepsPlaceContentAndCurrency();
    void removeForgetsTheFilterAndFallsBackToDefault();
    void namesThatAreNoPlainFileNamesSurvive();
    void upAndDownMoveAsTheLibraryDefines_data();
    void upAndDownMoveAsTheLibraryDefines();

    void storedMethodOrdersTheNextShow_data();
    void storedMethodOrdersTheNextShow();
    void switchingFiltersSwitchesMethods();

    void exportThenImportReproducesAFilter();
    void importReplaceKeepsThePlace();
    void comboValueOutsideTheItemsIsKeptWithAWarning();

    void refusalsLeaveTheSettingsUntouched_data();
    void refusalsLeaveTheSettingsUntouched();
    void refusalOnAFreshMachineLeavesNoSettingsBehind();

    void kindsOfferTheLoadedRostersItems();
    void generateIsDeterministicAndLoadable();

private:
    Result run(const QStringList &args, const QByteArray &input = QByteArray()) const;
    Result runIn(const QString &settings, const QStringList &args,
        const QByteArray &input = QByteArray()) const;
    QString writeFile(const QString &name, const QByteArray &content) const;
    QString shown(const QStringList &extra = QStringList()) const;
    void useFixture() const
    {
        copyDirectory(fixture.filePath(QStringLiteral("settings")), settings);
    }

    QTemporaryDir fixture; // a settings directory with filters and a method, built once
    std::unique_ptr<QTemporaryDir> temp;
    QString settings;
    QVector<SampleEntry> sample;
};

Result tst_VeskRoster::runIn(
    const QString &settingsDir, const QStringList &args, const QByteArray &input) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Never the real user's configuration, even by accident.
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), temp ? temp->path() : fixture.path());
    process.setProcessEnvironment(environment);
    QStringList all;
    if (!settingsDir.isEmpty())
        all << QStringLiteral("--settings") << settingsDir;
    all << args;
    process.start(QStringLiteral(VESK_ROSTER_PROGRAM), all);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(60000);
    Result result;
    result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

Result tst_VeskRoster::run(const QStringList &args, const QByteArray &input) const
{
    return runIn(settings, args, input);
}

QString tst_VeskRoster::writeFile(const QString &name, const QByteArray &content) const
{
    const QString path = temp->filePath(name);
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(content);
    return path;
}

QString tst_VeskRoster::shown(const QStringList &extra) const
{
    const Result result = run(extra + A({ "--json", "show" }));
    if (result.status != 0)
        return result.err;
    return shownRoster(result.json());
}

void tst_VeskRoster::initTestCase()
{
    QVERIFY(fixture.isValid());
    sample = sampleEntries();
    QVERIFY(sample.size() >= 40);
    temp = std::make_unique<QTemporaryDir>();
    settings = fixture.filePath(QStringLiteral("settings"));
    const QList<QStringList> setup = {
        A({ "new", "work", "and", "group", "is_or_not=is", "group_filter_presence=Work" }),
        A({ "add", "work", "stack_filter", "or", "presence", "is_or_not=is",
            "presence_filter_presence=online", "presence", "is_or_not=is",
            "presence_filter_presence=away" }),
        A({ "new", "single", "or", "display", "is_or_not=contains", "display_filter_regexp=a" }),
        A({ "new", "nested-single", "and", "display", "is_or_not=contains",
            "display_filter_regexp=a" }),
        A({ "add", "nested-single", "stack_filter", "or", "presence", "is_or_not=is",
            "presence_filter_presence=online" }),
        A({ "sorter", "byname", "name" }),
        A({ "use", "work" }),
    };
    for (const QStringList &command : setup) {
        const Result result = run(command);
        QVERIFY2(result.status == 0, qPrintable(command.join(QLatin1Char(' ')) + result.err));
    }
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
    const Result text = runIn(QString(), QStringList());
    QVERIFY2(text.status == 0, qPrintable(text.err));
    for (const SampleEntry &entry : qAsConst(sample))
        QVERIFY2(text.out.contains(entry.display), qPrintable(entry.display));
    QVERIFY(QDir(temp->filePath(QStringLiteral("vesk-roster"))).exists());

    // The built-in order: groups by position; members online before offline,
    // then by subscription (highest first), then by name.
    const Result json = runIn(QString(), A({ "--json", "show" }));
    QVERIFY2(json.status == 0, qPrintable(json.err));
    QCOMPARE(json.json().value(QLatin1String("filter")).toString(), QStringLiteral("default"));
    QMap<QString, QJsonObject> shownObjects;
    auto collect = [&](const QJsonArray &entries) {
        for (const QJsonValue &entry : entries) {
            shownObjects.insert(
                entry.toObject().value(QLatin1String("display")).toString(), entry.toObject());
        }
    };
    const QJsonArray groups = json.json().value(QLatin1String("groups")).toArray();
    for (const QJsonValue &group : groups)
        collect(group.toObject().value(QLatin1String("entries")).toArray());
    collect(json.json().value(QLatin1String("ungrouped")).toArray());
    QCOMPARE(shownObjects, sampleEntryObjects());
    QCOMPARE(shownRoster(json.json()),
        expectedRoster(
            sample, sampleGroupsByPosition(), [](const SampleEntry &x, const SampleEntry &y) {
                if (x.offline != y.offline)
                    return y.offline;
                if (x.subscription != y.subscription)
                    return x.subscription > y.subscription;
                return nameBefore(x.display, y.display);
            }));
}

void tst_VeskRoster::newFilterSurvivesToTheNextRunAndChangesShow()
{
    RUN_OK(created,
        A({ "new", "online", "and", "presence", "is_or_not=is",
            "presence_filter_presence=online" }));
    RUN_OK(used, A({ "use", "online" }));
    const QJsonObject show = run(A({ "--json", "show" })).json();
    QCOMPARE(show.value(QLatin1String("filter")).toString(), QStringLiteral("online"));

    QStringList expected;
    for (const SampleEntry &entry : qAsConst(sample)) {
        if (entry.presence == QLatin1String("online"))
            expected.append(entry.display);
    }
    expected.sort();
    QCOMPARE(shownNames(show), expected);
}

void tst_VeskRoster::addGrowsAFilterWithNestedStacks()
{
    RUN_OK(created,
        A({ "new", "mix", "or", "display", "is_or_not=match exactly",
            "display_filter_regexp=Bob" }));
    RUN_OK(nested,
        A({ "add", "mix", "stack_filter", "and", "group", "is_or_not=is",
            "group_filter_presence=Work" }));
    RUN_OK(deeper,
        A({ "add", "mix/1", "stack_filter", "or", "presence", "is_or_not=is",
            "presence_filter_presence=online", "presence", "is_or_not=is",
            "presence_filter_presence=chat" }));
    RUN_OK(
        leaf, A({ "add", "mix/1/1", "display", "is_or_not=contains", "display_filter_regexp=a" }));
    RUN_OK(used, A({ "use", "mix" }));

    const auto passes = [](const SampleEntry &entry) {
        return entry.display == QLatin1String("Bob")
            || (entry.group == QLatin1String("Work")
                && (entry.presence == QLatin1String("online")
                    || entry.presence == QLatin1String("chat")
                    || entry.display.contains(QLatin1Char('a'))));
    };
    QStringList expected;
    for (const SampleEntry &entry : qAsConst(sample)) {
        if (passes(entry))
            expected.append(entry.display);
    }
    expected.sort();
    QCOMPARE(shownNames(run(A({ "--json", "show" })).json()), expected);

    const QJsonObject exported
        = QJsonDocument::fromJson(run(A({ "export", "mix" })).out.toUtf8()).object();
    const QJsonObject inner = exported.value(QLatin1String("children")).toArray().at(1).toObject();
    QCOMPARE(inner.value(QLatin1String("type")).toString(), QStringLiteral("and"));
    QCOMPARE(inner.value(QLatin1String("children"))
                 .toArray()
                 .at(1)
                 .toObject()
                 .value(QLatin1String("children"))
                 .toArray()
                 .size(),
        3);
}

void tst_VeskRoster::dropTakesAChildOut()
{
    useFixture();
    const QString before = run(A({ "export", "work" })).out;
    RUN_OK(dropped, A({ "drop", "work/1/0" }));
    const QJsonObject work
        = QJsonDocument::fromJson(run(A({ "export", "work" })).out.toUtf8()).object();
    const QJsonArray nested = work.value(QLatin1String("children"))
                                  .toArray()
                                  .at(1)
                                  .toObject()
                                  .value(QLatin1String("children"))
                                  .toArray();
    QCOMPARE(nested.size(), 1);
    QCOMPARE(nested.at(0)
                 .toObject()
                 .value(QLatin1String("fields"))
                 .toObject()
                 .value(QLatin1String("presence_filter_presence"))
                 .toString(),
        QStringLiteral("away"));
    QVERIFY(before != run(A({ "export", "work" })).out);
}

void tst_VeskRoster::useMakesAFilterCurrentForTheNextRuns()
{
    useFixture();
    QCOMPARE(run(A({ "--json", "filters" })).json().value(QLatin1String("current")).toString(),
        QStringLiteral("work"));
    RUN_OK(used, A({ "use", "single" }));
    QCOMPARE(run(A({ "--json", "filters" })).json().value(QLatin1String("current")).toString(),
        QStringLiteral("single"));
    QCOMPARE(run(A({ "--json", "show" })).json().value(QLatin1String("filter")).toString(),
        QStringLiteral("single"));
}

void tst_VeskRoster::renameKeepsPlaceContentAndCurrency()
{
    useFixture();
    const QString filesDir = settings + QLatin1String("/roster_filters/");
    QFile oldFile(filesDir + QLatin1String("work"));
    QVERIFY(oldFile.open(QIODevice::ReadOnly));
    const QByteArray content = oldFile.readAll();
    oldFile.close();
    const QJsonArray before
        = run(A({ "--json", "filters" })).json().value(QLatin1String("filters")).toArray();

    RUN_OK(renamed, A({ "rename", "work", "office" }));
    const QJsonObject after = run(A({ "--json", "filters" })).json();
    QStringList expectedIds = column(before, "id");
    expectedIds.replace(expectedIds.indexOf(QStringLiteral("work")), QStringLiteral("office"));
    QCOMPARE(column(after.value(QLatin1String("filters")).toArray(), "id"), expectedIds);
    QCOMPARE(after.value(QLatin1String("current")).toString(), QStringLiteral("office"));
    QVERIFY(!QFile::exists(filesDir + QLatin1String("work")));
    QFile newFile(filesDir + QLatin1String("office"));
    QVERIFY(newFile.open(QIODevice::ReadOnly));
    QCOMPARE(newFile.readAll(), content);
}

void tst_VeskRoster::removeForgetsTheFilterAndFallsBackToDefault()
{
    useFixture();
    const QStringList before = column(
        run(A({ "--json", "filters" })).json().value(QLatin1String("filters")).toArray(), "id");
    RUN_OK(removed, A({ "remove", "work" }));
    const QJsonObject after = run(A({ "--json", "filters" })).json();
    QStringList expected = before;
    expected.removeAll(QStringLiteral("work"));
    QCOMPARE(column(after.value(QLatin1String("filters")).toArray(), "id"), expected);
    QCOMPARE(after.value(QLatin1String("current")).toString(), QStringLiteral("default"));
    QVERIFY(!QFile::exists(settings + QLatin1String("/roster_filters/work")));
}

void tst_VeskRoster::namesThatAreNoPlainFileNamesSurvive()
{
    RUN_OK(created,
        A({ "new", "friends/work", "and", "presence", "is_or_not=is",
            "presence_filter_presence=online" }));
    RUN_OK(renamed, A({ "rename", "friends/work", ".hidden ünïcode" }));
    RUN_OK(copied,
        A({ "new", "friends/work", "or", "display", "is_or_not=contains",
            "display_filter_regexp=a" }));
    const QJsonObject filters = run(A({ "--json", "filters" })).json();
    QCOMPARE(column(filters.value(QLatin1String("filters")).toArray(), "id"),
        A({ "default", ".hidden ünïcode", "friends/work" }));
}

void tst_VeskRoster::upAndDownMoveAsTheLibraryDefines_data()
{
    QTest::addColumn<QStringList>("moves");
    QTest::addColumn<QString>("expected");
    // Start: default, work, single, nested-single.
    QTest::newRow("up swaps with the entry above")
        << A({ "up", "nested-single" }) << QStringLiteral("default work nested-single single");
    QTest::newRow("up of the second entry changes nothing")
        << A({ "up", "work" }) << QStringLiteral("default work single nested-single");
    QTest::newRow("up of default changes nothing")
        << A({ "up", "default" }) << QStringLiteral("default work single nested-single");
    // Start-up always puts default first again.
    QTest::newRow("down of default lasts only until the next start")
        << A({ "down", "default" }) << QStringLiteral("default work single nested-single");
    QTest::newRow("down of the last entry changes nothing")
        << A({ "down", "nested-single" }) << QStringLiteral("default work single nested-single");
    QTest::newRow("down then up returns") << A({ "down", "single", "up", "single" })
                                          << QStringLiteral("default work single nested-single");
}

void tst_VeskRoster::upAndDownMoveAsTheLibraryDefines()
{
    QFETCH(QStringList, moves);
    QFETCH(QString, expected);
    useFixture();
    for (int i = 0; i + 1 < moves.size(); i += 2) {
        const Result moved = run({ moves.at(i), moves.at(i + 1) });
        QVERIFY2(moved.status == 0, qPrintable(moved.err));
    }
    const QJsonObject after = run(A({ "--json", "filters" })).json();
    QCOMPARE(column(after.value(QLatin1String("filters")).toArray(), "id").join(QLatin1Char(' ')),
        expected);
}

void tst_VeskRoster::storedMethodOrdersTheNextShow_data()
{
    QTest::addColumn<QStringList>("comparators");
    QTest::addColumn<int>("order"); // 0: by name, 1: most chats first, 2: fewest chats first
    QTest::newRow("name ascending lists A to Z") << A({ "name" }) << 0;
    QTest::newRow("chats count ascending lists the most chats first") << A({ "chats_count" }) << 1;
    QTest::newRow("chats count descending lists the fewest first")
        << A({ "chats_count:desc" }) << 2;
}

void tst_VeskRoster::storedMethodOrdersTheNextShow()
{
    QFETCH(QStringList, comparators);
    QFETCH(int, order);
    RUN_OK(stored, QStringList { QStringLiteral("sorter"), QStringLiteral("m") } + comparators);
    RUN_OK(sorted, A({ "sort", "m" }));
    const QJsonObject show = run(A({ "--json", "show" })).json();
    QCOMPARE(show.value(QLatin1String("sorter")).toString(), QStringLiteral("m"));

    // Groups have positions, which the name comparator ranks ascending; the
    // chats comparator cannot tell groups apart, so they keep roster order.
    const QStringList groups = order == 0 ? sampleGroupsByPosition() : sampleGroupsInRosterOrder();
    QString expected;
    if (order == 0) {
        expected = expectedRoster(sample, groups, [](const SampleEntry &x, const SampleEntry &y) {
            return nameBefore(x.display, y.display);
        });
    } else if (order == 1) {
        expected = expectedRoster(sample, groups,
            [](const SampleEntry &x, const SampleEntry &y) { return x.chats > y.chats; });
    } else {
        expected = expectedRoster(sample, groups,
            [](const SampleEntry &x, const SampleEntry &y) { return x.chats < y.chats; });
    }
    QCOMPARE(shownRoster(show), expected);
}

void tst_VeskRoster::switchingFiltersSwitchesMethods()
{
    useFixture();
    RUN_OK(chats, A({ "sorter", "chats", "chats_count" }));
    RUN_OK(sortWork, A({ "sort", "byname" })); // work is current
    RUN_OK(useDefault, A({ "use", "default" }));
    RUN_OK(sortDefault, A({ "sort", "chats" }));

    QCOMPARE(run(A({ "--json", "show" })).json().value(QLatin1String("sorter")).toString(),
        QStringLiteral("chats"));
    const QString byChats = shown();
    RUN_OK(useWork, A({ "use", "work" }));
    QCOMPARE(run(A({ "--json", "show" })).json().value(QLatin1String("sorter")).toString(),
        QStringLiteral("byname"));
    const QStringList work = shown().split(QLatin1String(": ")).value(1).split(QLatin1String(", "));
    QStringList sortedWork = work;
    std::stable_sort(sortedWork.begin(), sortedWork.end(), nameBefore);
    QCOMPARE(work, sortedWork);
    RUN_OK(back, A({ "use", "default" }));
    QCOMPARE(shown(), byChats);
}

void tst_VeskRoster::exportThenImportReproducesAFilter()
{
    RUN_OK(method, A({ "sorter", "byname", "name:desc" }));
    RUN_OK(created,
        A({ "new", "odd", "or", "display", "is_or_not=contains",
            "display_filter_regexp=a.b \"quoted\" <x> & ü", "description", "is_or_not=is not empty",
            "description_filter_regexp=" }));
    RUN_OK(nested,
        A({ "add", "odd", "stack_filter", "and", "group", "is_or_not=is not",
            "group_filter_presence=No such group", "account", "is_or_not=is",
            "account_filter_presence=123456789@icq" }));
    RUN_OK(deeper,
        A({ "add", "odd/2", "stack_filter", "or", "presence", "is_or_not=is",
            "presence_filter_presence=away", "display", "is_or_not=match exactly",
            "display_filter_regexp=Mum" }));
    RUN_OK(advanced, A({ "advanced", "odd", "on" }));
    RUN_OK(use, A({ "use", "odd" }));
    RUN_OK(sort, A({ "sort", "byname" }));

    RUN_OK(exported, A({ "export", "odd" }));
    RUN_OK(imported, A({ "import", "-", "--as", "copy" }), exported.out.toUtf8());
    RUN_OK(copy, A({ "export", "copy" }));
    QJsonObject original = QJsonDocument::fromJson(exported.out.toUtf8()).object();
    original.insert(QStringLiteral("name"), QStringLiteral("copy"));
    QCOMPARE(QJsonDocument::fromJson(copy.out.toUtf8()).object(), original);

    const QString byOriginal = shown();
    RUN_OK(useCopy, A({ "use", "copy" }));
    QCOMPARE(shown(), byOriginal);

    // The same through a file, under the definition's own name.
    QJsonObject renamed = original;
    renamed.insert(QStringLiteral("name"), QStringLiteral("from-file"));
    const QString file
        = writeFile(QStringLiteral("definition.json"), QJsonDocument(renamed).toJson());
    RUN_OK(fromFile, QStringList { QStringLiteral("import"), file });
    RUN_OK(again, A({ "export", "from-file" }));
    QCOMPARE(QJsonDocument::fromJson(again.out.toUtf8()).object(), renamed);
}

void tst_VeskRoster::importReplaceKeepsThePlace()
{
    useFixture();
    const QStringList before = column(
        run(A({ "--json", "filters" })).json().value(QLatin1String("filters")).toArray(), "id");
    RUN_OK(exported, A({ "export", "single" }));
    RUN_OK(replaced, A({ "import", "-", "--as", "work", "--replace" }), exported.out.toUtf8());
    const QJsonObject after = run(A({ "--json", "filters" })).json();
    QCOMPARE(column(after.value(QLatin1String("filters")).toArray(), "id"), before);
    QCOMPARE(after.value(QLatin1String("current")).toString(), QStringLiteral("work"));
    QJsonObject expected = QJsonDocument::fromJson(exported.out.toUtf8()).object();
    expected.insert(QStringLiteral("name"), QStringLiteral("work"));
    QCOMPARE(QJsonDocument::fromJson(run(A({ "export", "work" })).out.toUtf8()).object(), expected);
}

void tst_VeskRoster::comboValueOutsideTheItemsIsKeptWithAWarning()
{
    RUN_OK(created,
        A({ "new", "gone", "and", "group", "is_or_not=is", "group_filter_presence=Old friends" }));
    QVERIFY2(created.err.contains(QLatin1String("warning")), qPrintable(created.err));
    QVERIFY2(created.err.contains(QLatin1String("Old friends")), qPrintable(created.err));
    const QJsonObject exported
        = QJsonDocument::fromJson(run(A({ "export", "gone" })).out.toUtf8()).object();
    QCOMPARE(exported.value(QLatin1String("children"))
                 .toArray()
                 .at(0)
                 .toObject()
                 .value(QLatin1String("fields"))
                 .toObject()
                 .value(QLatin1String("group_filter_presence"))
                 .toString(),
        QStringLiteral("Old friends"));
}

void tst_VeskRoster::refusalsLeaveTheSettingsUntouched_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");

    const QString dir = fixture.path() + QLatin1Char('/');
    auto write = [&](const char *name, const QByteArray &content) {
        QFile file(dir + QLatin1String(name));
        file.open(QIODevice::WriteOnly);
        file.write(content);
        return dir + QLatin1String(name);
    };
    const QString badRoster = write("bad-roster.json", "{\n  \"groups\": [ { \"name\": 5 } ]\n}");
    const QString badDefinition = write("bad-definition.json", "{ \"name\": \"x\",\n \"type\" }");
    const QString existing = write("existing.json",
        R"({"name": "work", "type": "and", "children": [{"kind": "display", "fields": {}}]})");
    const QString empty = write("empty.json", R"({"name": "e", "type": "and", "children": []})");
    const QString emptyNested = write("empty-nested.json",
        R"({"name": "e", "type": "or", "children": [{"kind": "stack_filter", "type": "and", "children": []}]})");
    const QString unknownKind = write("unknown-kind.json",
        R"({"name": "e", "type": "or", "children": [{"kind": "colour", "fields": {}}]})");

    auto row = [](const char *name, const QStringList &args, const char *message) {
        QTest::newRow(name) << args << QString::fromUtf8(message);
    };
    row("unknown command", A({ "frobnicate" }), "unknown command \"frobnicate\"");
    row("unknown option", A({ "--frobnicate", "show" }), "unknown option \"--frobnicate\"");
    row("missing roster file", A({ "--roster", "/nonexistent/roster.json", "show" }),
        "cannot read the roster file");
    QTest::newRow("malformed roster names line and column")
        << QStringList { QStringLiteral("--roster"), badRoster, QStringLiteral("show") }
        << QStringLiteral("line 2, column 25");
    row("missing definition file", A({ "import", "/nonexistent/definition.json" }),
        "cannot read the definition file");
    QTest::newRow("malformed definition names line and column")
        << QStringList { QStringLiteral("import"), badDefinition }
        << QStringLiteral("line 2, column");
    row("unknown kind", A({ "new", "x", "and", "colour", "is_or_not=is" }),
        "unknown kind \"colour\"");
    QTest::newRow("unknown kind in a definition") << QStringList { QStringLiteral("import"),
        unknownKind } << QStringLiteral("unknown kind \"colour\"");
    row("unknown field", A({ "new", "x", "and", "display", "colour=red" }),
        "unknown field \"colour\" for kind \"display\"");
    row("field of another kind", A({ "new", "x", "and", "display", "group_filter_presence=Work" }),
        "\"group_filter_presence\" is a field of kind \"group\"");
    row("field before any kind", A({ "new", "x", "and", "is_or_not=is" }), "comes before any kind");
    row("unknown stack type", A({ "new", "x", "xor", "display" }), "\"and\" or \"or\"");
    row("unknown filter", A({ "use", "nope" }), "unknown filter \"nope\"");
    row("unknown filter to edit", A({ "add", "nope", "display" }), "unknown filter \"nope\"");
    row("unknown method", A({ "sort", "nope" }), "unknown sorting method \"nope\"");
    row("unknown method to remove", A({ "sorter-remove", "nope" }), "unknown sorting method");
    row("unknown default method", A({ "sorter-default", "nope" }), "unknown sorting method");
    row("unknown comparator", A({ "sorter", "m", "colour" }), "unknown comparator \"colour\"");
    row("unknown direction", A({ "sorter", "m", "name:up" }), "unknown direction \"up\"");
    row("child index out of range", A({ "add", "work/5", "display" }), "index 5 is out of range");
    row("child path through a leaf", A({ "add", "work/0/0", "display" }),
        "goes through the condition");
    row("child path to a leaf", A({ "add", "work/0", "display" }), "not to a stack");
    row("child path that is no index", A({ "drop", "work/x" }), "\"x\" is not a child index");
    row("drop without an index", A({ "drop", "work" }), "needs the path of a child");
    row("missing argument", A({ "use" }), "missing argument");
    row("missing condition for add", A({ "add", "work" }), "missing argument");
    row("new onto an existing name", A({ "new", "work", "and", "display" }), "already exists");
    row("new onto default", A({ "new", "default", "and", "display" }), "already exists");
    row("rename onto an existing name", A({ "rename", "work", "single" }), "already exists");
    QTest::newRow("import onto an existing name")
        << QStringList { QStringLiteral("import"), existing } << QStringLiteral("already exists");
    row("empty name", A({ "new", "", "and", "display" }), "cannot be empty");
    row("rename to an empty name", A({ "rename", "work", "" }), "cannot be empty");
    row("add to default", A({ "add", "default", "display" }), "default filter cannot be edited");
    row("drop from default", A({ "drop", "default/0" }), "default filter cannot be edited");
    row("advanced of default", A({ "advanced", "default", "on" }),
        "default filter cannot be edited");
    row("rename default", A({ "rename", "default", "x" }), "default filter cannot be edited");
    row("remove default", A({ "remove", "default" }), "default filter cannot be edited");
    row("bad advanced flag", A({ "advanced", "work", "maybe" }), "\"on\" or \"off\"");
    row("new without a condition", A({ "new", "x", "and" }), "without children");
    row("nested stack without a condition", A({ "add", "work", "stack_filter", "or" }),
        "without children");
    row("drop of a filter's last child", A({ "drop", "single/0" }), "use \"remove single\"");
    row("drop of a nested stack's last child", A({ "drop", "nested-single/1/0" }),
        "drop nested-single/1");
    QTest::newRow("imported stack without children")
        << QStringList { QStringLiteral("import"), empty } << QStringLiteral("without children");
    QTest::newRow("imported nested stack without children")
        << QStringList { QStringLiteral("import"), emptyNested }
        << QStringLiteral("without children");
    row("help of an unknown command", A({ "help", "frobnicate" }),
        "unknown command \"frobnicate\"");
    row("negative generate", A({ "generate", "-5" }), "N must be a number of contacts");
}

void tst_VeskRoster::refusalsLeaveTheSettingsUntouched()
{
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    useFixture();
    const QString before = directoryFingerprint(settings);

    const Result result = run(args);
    QCOMPARE(result.status, 2);
    QVERIFY2(result.err.contains(message), qPrintable(result.err));
    QCOMPARE(result.err.count(QLatin1Char('\n')), 1); // one message
    QCOMPARE(result.out, QString());
    QCOMPARE(directoryFingerprint(settings), before);
}

void tst_VeskRoster::refusalOnAFreshMachineLeavesNoSettingsBehind()
{
    const Result result = run(A({ "use", "nope" }));
    QCOMPARE(result.status, 2);
    QCOMPARE(directoryFingerprint(settings), QStringLiteral("(no directory)"));
}

void tst_VeskRoster::kindsOfferTheLoadedRostersItems()
{
    const QString roster = writeFile(QStringLiteral("roster.json"),
        R"({"groups": [{"name": "Zebras", "pos": 2}, {"name": "Ants", "pos": 1}]})");
    const Result result = run(
        { QStringLiteral("--roster"), roster, QStringLiteral("--json"), QStringLiteral("kinds") });
    QVERIFY2(result.status == 0, qPrintable(result.err));
    const QJsonArray kinds = result.json().value(QLatin1String("kinds")).toArray();
    QCOMPARE(column(kinds, "id"),
        A({ "account", "description", "display", "group", "presence", "protocol" }));
    const QJsonArray groupFields = kinds.at(3).toObject().value(QLatin1String("fields")).toArray();
    QCOMPARE(column(groupFields.at(1).toObject().value(QLatin1String("items")).toArray(), "id"),
        A({ "Zebras", "Ants" }));
}

void tst_VeskRoster::generateIsDeterministicAndLoadable()
{
    const Result first = run(A({ "generate", "300", "--seed", "7" }));
    QVERIFY2(first.status == 0, qPrintable(first.err));
    QCOMPARE(run(A({ "generate", "300", "--seed", "7" })).out, first.out);
    QVERIFY(run(A({ "generate", "300", "--seed", "8" })).out != first.out);
    QCOMPARE(QJsonDocument::fromJson(first.out.toUtf8())
                 .object()
                 .value(QLatin1String("contacts"))
                 .toArray()
                 .size(),
        300);

    const QString roster = writeFile(QStringLiteral("generated.json"), first.out.toUtf8());
    const Result show = run(
        { QStringLiteral("--roster"), roster, QStringLiteral("--json"), QStringLiteral("show") });
    QVERIFY2(show.status == 0, qPrintable(show.err));
    int count = show.json().value(QLatin1String("ungrouped")).toArray().size();
    const QJsonArray groups = show.json().value(QLatin1String("groups")).toArray();
    for (const QJsonValue &group : groups)
        count += group.toObject().value(QLatin1String("entries")).toArray().size();
    QCOMPARE(count, 300);
}

QTEST_GUILESS_MAIN(tst_VeskRoster)
#include "tst_vesk_roster.moc"
