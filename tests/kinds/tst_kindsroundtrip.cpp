// Every leaf kind, configured inside an AND/OR tree of a stored stack filter,
// answers and reads the same after the host restarts.

#include "kindsfixture.h"

#include <veskfiltertestenv.h>

#include <QtTest>

class tst_KindsRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { env.reset(); }

    void leafSurvivesARestartInsideAnAndOrTree_data();
    void leafSurvivesARestartInsideAnAndOrTree();

private:
    QScopedPointer<VeskFilterTestEnv> env;
    QList<LabelledEntry> entries;
};

void tst_KindsRoundTrip::init()
{
    env.reset(new VeskFilterTestEnv);
    entries = buildRoster();
    for (const char *name : { "axb", "xa.by" }) {
        VeskStandIn::ContactInfo info;
        info.display = QLatin1String(name);
        info.presence
            = VeskStandIn::makePresence(QStringLiteral("online"), QString(), info.display);
        entries << LabelledEntry { info.display, VeskStandIn::addContact(info) };
    }
}

void tst_KindsRoundTrip::leafSurvivesARestartInsideAnAndOrTree_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("display a.b still literal") << "display"
                                               << "contains"
                                               << "a.b"
                                               << "invalid, xa.by";
    QTest::newRow("description is not empty") << "description"
                                              << "is not empty"
                                              << "x"
                                              << "contact, axb, xa.by";
    QTest::newRow("group is not Friends")
        << "group"
        << "is not"
        << "Friends"
        << "temporary, group, invalid, no account, bare, axb, xa.by";
    QTest::newRow("account is bob@icq") << "account"
                                        << "is"
                                        << "bob@icq"
                                        << "temporary";
    QTest::newRow("protocol is not icq") << "protocol"
                                         << "is not"
                                         << "icq"
                                         << "contact, group, invalid, no account, bare, axb, xa.by";
    QTest::newRow("presence is Away") << "presence"
                                      << "is"
                                      << "away"
                                      << "contact, temporary";
}

void tst_KindsRoundTrip::leafSurvivesARestartInsideAnAndOrTree()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, value);
    const QString displayField = valueFieldOf(QStringLiteral("display"));
    const auto leaf = [](const QString &kind, const FieldValues &values) {
        VeskRosterFilter *filter = VeskRosterFiltersManager::getInstance()->createFilter(
            kind, VeskRosterFilter::RosterFilterLeaf);
        configure(*filter, values);
        return filter;
    };
    // AND[ OR[ the leaf, a display filter passing nothing ], one passing everything ]
    VeskRosterFiltersStack *stack = VeskRosterFiltersManager::getInstance()->addStackFilter(
        QStringLiteral("kinds"), VeskRosterFilter::RosterFilterAnd);
    stack->appendFilter(nested(VeskRosterFilter::RosterFilterOr,
        { leaf(kind, { { QStringLiteral("is_or_not"), condition }, { valueFieldOf(kind), value } }),
            leaf(QStringLiteral("display"),
                { { QStringLiteral("is_or_not"), QStringLiteral("match exactly") },
                    { displayField, QStringLiteral("never") } }) }));
    stack->appendFilter(leaf(QStringLiteral("display"),
        { { QStringLiteral("is_or_not"), QStringLiteral("contains") } }));
    QTEST(passing(*stack, entries), "expected");
    const QString tree = describe(stack);
    stack->writeFilterSettings();

    stack = env->restart()->getStackFilter(QStringLiteral("kinds"));
    QCOMPARE(describe(stack), tree);
    QTEST(passing(*stack, entries), "expected");
}

QTEST_GUILESS_MAIN(tst_KindsRoundTrip)
#include "tst_kindsroundtrip.moc"
