// vesk-roster end to end: the sorting method a filter keeps through every
// writing command, for the current filter and another one, with a default
// method set, never set, or removed. A filter without a method of its own
// follows the default method; start-up lends it that method in memory while
// it is current, and no command may store the loan or stumble over it.

#include "veskrosterrunner.h"

class tst_VeskRosterMethods : public QObject, public VeskRosterRunner
{
    Q_OBJECT

private slots:
    void initTestCase() { setUpFixture(); }
    void init() { newSettings(); }

    void writingCommandsKeepTheFiltersMethod_data();
    void writingCommandsKeepTheFiltersMethod();

private:
    // "METHOD | Work: ... | -: ...": the method show names and its order.
    QString shownWithMethod() const
    {
        const QJsonObject show = parse(run(A({ "--json", "show" })).out);
        return show.value(QLatin1String("sorter")).toString() + QLatin1String(" | ")
            + shownRoster(show);
    }
};

namespace {

// The filter "q" passes these four entries; each method orders them its own
// way. "d" is the default method, "m2" the one `sort` chooses, "m3" the
// default chosen afterwards.
QString ordered(const QString &method)
{
    if (method == QLatin1String("d")) // chats count
        return QStringLiteral("d | Work: Carol, Adam, alice | -: Dave");
    if (method == QLatin1String("m2")) // name, descending
        return QStringLiteral("m2 | Work: Carol, alice, Adam | -: Dave");
    if (method == QLatin1String("m3")) // name
        return QStringLiteral("m3 | Work: Adam, alice, Carol | -: Dave");
    return QStringLiteral(" | Work: alice, Carol, Adam | -: Dave"); // presence, then name
}

} // namespace

void tst_VeskRosterMethods::writingCommandsKeepTheFiltersMethod_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("current");
    QTest::addColumn<QString>("defaultMethod"); // set, unset, removed
    for (const char *command :
        { "rename", "add", "drop", "advanced", "sort", "import --replace" }) {
        for (const bool current : { true, false }) {
            for (const char *state : { "set", "unset", "removed" }) {
                QTest::addRow("%s of %s, default method %s", command,
                    current ? "the current filter" : "another filter", state)
                    << QString::fromUtf8(command) << current << QString::fromUtf8(state);
            }
        }
    }
}

void tst_VeskRosterMethods::writingCommandsKeepTheFiltersMethod()
{
    QFETCH(QString, command);
    QFETCH(bool, current);
    QFETCH(QString, defaultMethod);

    runAll({ A({ "sorter", "d", "chats_count" }), A({ "sorter", "m2", "name:desc" }),
        A({ "sorter", "m3", "name" }),
        A({ "new", "q", "or", "display", "is_or_not=contains", "display_filter_regexp=a", "display",
            "is_or_not=contains", "display_filter_regexp=a" }),
        A({ "new", "r", "and", "display", "is_or_not=contains", "display_filter_regexp=o" }) });
    if (defaultMethod != QLatin1String("unset"))
        runAll({ A({ "sorter-default", "d" }) });
    if (defaultMethod == QLatin1String("removed"))
        runAll({ A({ "sorter-remove", "d" }) });
    runAll({ A({ "use", current ? "q" : "r" }) });

    QString target = QStringLiteral("q");
    QStringList args;
    QByteArray input;
    if (command == QLatin1String("rename")) {
        args = A({ "rename", "q", "zz" });
        target = QStringLiteral("zz");
    } else if (command == QLatin1String("add")) {
        args = A({ "add", "q", "display", "is_or_not=contains", "display_filter_regexp=a" });
    } else if (command == QLatin1String("drop")) {
        args = A({ "drop", "q/1" });
    } else if (command == QLatin1String("advanced")) {
        args = A({ "advanced", "q", "on" });
    } else if (command == QLatin1String("sort")) {
        args = A({ "sort", "m2" }); // sorts the current filter, whichever it is
    } else {
        args = A({ "import", "-", "--as", "q", "--replace" });
        input = definition(QStringLiteral("q"), 1, QStringLiteral("a"), 2);
    }
    const Result result = run(args, input);
    QVERIFY2(result.status == 0,
        qPrintable(args.join(QLatin1Char(' ')) + QLatin1String(": ") + result.err));

    // Read back: the filters and which one is current.
    QCOMPARE(filterList(),
        current ? QStringLiteral("default *%1 r").arg(target)
                : QStringLiteral("default %1 *r").arg(target));

    // A filter sorted by `sort` keeps that method; any other follows the
    // default method, whichever it is at the next start.
    const bool ownMethod = command == QLatin1String("sort") && current;
    runAll({ A({ "use" }) + QStringList(target) });
    QCOMPARE(shownWithMethod(),
        ordered(ownMethod                               ? QStringLiteral("m2")
                : defaultMethod == QLatin1String("set") ? QStringLiteral("d")
                                                        : QString()));
    runAll({ A({ "sorter-default", "m3" }) });
    QCOMPARE(shownWithMethod(), ordered(ownMethod ? QStringLiteral("m2") : QStringLiteral("m3")));
}

QTEST_GUILESS_MAIN(tst_VeskRosterMethods)
#include "tst_vesk_roster_methods.moc"
