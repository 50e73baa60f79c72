// vesk-roster end to end. Edits that the next run finds: filters, their order, sorting methods,
// export and import.

#include "veskrosterrunner.h"

#include <QJsonDocument>

class tst_VeskRosterEdits : public QObject, public VeskRosterRunner
{
    Q_OBJECT

private slots:
    void initTestCase() { setUpFixture(); }
    void init() { newSettings(); }

    void editsSurviveToTheNextRunAndChangeShow_data();
    void editsSurviveToTheNextRunAndChangeShow();
    void filterListChangesAsTheLibraryDefines_data();
    void filterListChangesAsTheLibraryDefines();
    void storedMethodOrdersTheNextShow_data();
    void storedMethodOrdersTheNextShow();
    void exportThenImportReproducesAFilter();
    void theDeepestFilterExportsAndImportsAgain();
    void removingTheDefaultMethodClearsTheDefault();
};

void tst_VeskRosterEdits::editsSurviveToTheNextRunAndChangeShow_data()
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

void tst_VeskRosterEdits::editsSurviveToTheNextRunAndChangeShow()
{
    QFETCH(Commands, commands);
    QFETCH(QString, expected);
    useFixture();
    runAll(commands);
    QCOMPARE(shown(), expected);
}

void tst_VeskRosterEdits::filterListChangesAsTheLibraryDefines_data()
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

void tst_VeskRosterEdits::filterListChangesAsTheLibraryDefines()
{
    QFETCH(Commands, commands);
    QFETCH(QString, expected);
    useFixture();
    runAll(commands);
    QCOMPARE(filterList(), expected);
}

void tst_VeskRosterEdits::storedMethodOrdersTheNextShow_data()
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

void tst_VeskRosterEdits::storedMethodOrdersTheNextShow()
{
    QFETCH(QStringList, comparators);
    QFETCH(QString, expected);
    runAll({ A({ "sorter", "m" }) + comparators, A({ "sort", "m" }) });
    const QJsonObject show = parse(run(A({ "--json", "show" })).out);
    QCOMPARE(show.value(QLatin1String("sorter")).toString() + QLatin1Char(' ') + shownRoster(show),
        QStringLiteral("m ") + expected);
}

void tst_VeskRosterEdits::exportThenImportReproducesAFilter()
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

void tst_VeskRosterEdits::theDeepestFilterExportsAndImportsAgain()
{
    runAll({ A({ "import", "deepest.json" }) });
    RUN_OK(exported, A({ "export", "deep" }));
    RUN_OK(imported, A({ "import", "-", "--as", "copy" }), exported.out.toUtf8());
    RUN_OK(copy, A({ "export", "copy" }));
    QJsonObject expected = parse(exported.out);
    expected.insert(QStringLiteral("name"), QStringLiteral("copy"));
    QCOMPARE(parse(copy.out), expected);
}

void tst_VeskRosterEdits::removingTheDefaultMethodClearsTheDefault()
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

QTEST_GUILESS_MAIN(tst_VeskRosterEdits)
#include "tst_vesk_roster_edits.moc"
