// vesk-roster end to end. Refusals: one line on stderr, exit 2, and the settings as they were.

#include "veskrosterrunner.h"

class tst_VeskRosterRefusals : public QObject, public VeskRosterRunner
{
    Q_OBJECT

private slots:
    void initTestCase() { setUpFixture(); }
    void init() { newSettings(); }

    void refusalsLeaveTheSettingsUntouched_data();
    void refusalsLeaveTheSettingsUntouched();
    void refusalOnAFreshMachineLeavesNoSettingsBehind();
    void refusalsPastAFileSizeLimitPutBackTheirOwnChanges_data();
    void refusalsPastAFileSizeLimitPutBackTheirOwnChanges();
    void boundsAreCheckedBeforeAnythingIsWritten_data();
    void boundsAreCheckedBeforeAnythingIsWritten();
    void unreadableFilesAreNamedAndKeptFromEdits_data();
    void unreadableFilesAreNamedAndKeptFromEdits();
};

void tst_VeskRosterRefusals::refusalsLeaveTheSettingsUntouched_data()
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

void tst_VeskRosterRefusals::refusalsLeaveTheSettingsUntouched()
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

void tst_VeskRosterRefusals::refusalOnAFreshMachineLeavesNoSettingsBehind()
{
    QCOMPARE(run(A({ "use", "nope" })).status, 2);
    QCOMPARE(fingerprint(settings), QStringLiteral("(no directory)"));
}

void tst_VeskRosterRefusals::refusalsPastAFileSizeLimitPutBackTheirOwnChanges_data()
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

void tst_VeskRosterRefusals::refusalsPastAFileSizeLimitPutBackTheirOwnChanges()
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

void tst_VeskRosterRefusals::boundsAreCheckedBeforeAnythingIsWritten_data()
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

void tst_VeskRosterRefusals::boundsAreCheckedBeforeAnythingIsWritten()
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

void tst_VeskRosterRefusals::unreadableFilesAreNamedAndKeptFromEdits_data()
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

void tst_VeskRosterRefusals::unreadableFilesAreNamedAndKeptFromEdits()
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

QTEST_GUILESS_MAIN(tst_VeskRosterRefusals)
#include "tst_vesk_roster_refusals.moc"
