// Every leaf kind, configured inside an AND/OR tree of a stored stack filter,
// answers and reads the same after the host restarts, with the labels the
// host offers then.

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
    void labelsComeFromTheCurrentItemsAfterReadingAFile();

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
    QTest::newRow("display a.b still literal")
        << QStringLiteral("display") << QStringLiteral("contains") << QStringLiteral("a.b")
        << QStringLiteral("invalid, xa.by");
    QTest::newRow("description is not empty")
        << QStringLiteral("description") << QStringLiteral("is not empty") << QStringLiteral("x")
        << QStringLiteral("contact, axb, xa.by");
    QTest::newRow("group is not Friends")
        << QStringLiteral("group") << QStringLiteral("is not") << QStringLiteral("Friends")
        << QStringLiteral("temporary, group, invalid, no account, bare, axb, xa.by");
    QTest::newRow("account is bob@icq") << QStringLiteral("account") << QStringLiteral("is")
                                        << QStringLiteral("bob@icq") << QStringLiteral("temporary");
    QTest::newRow("protocol is not icq")
        << QStringLiteral("protocol") << QStringLiteral("is not") << QStringLiteral("icq")
        << QStringLiteral("contact, group, invalid, no account, bare, axb, xa.by");
    QTest::newRow("presence is Away")
        << QStringLiteral("presence") << QStringLiteral("is") << QStringLiteral("away")
        << QStringLiteral("contact, temporary");
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

void tst_KindsRoundTrip::labelsComeFromTheCurrentItemsAfterReadingAFile()
{
    {
        VeskRosterFiltersStack stack(QStringLiteral("s"), VeskRosterFilter::RosterFilterAnd);
        auto *filter = new VeskPresenceFilter;
        configure(*filter,
            { { QStringLiteral("is_or_not"), QStringLiteral("is not") },
                { valueFieldOf(QStringLiteral("presence")), QStringLiteral("away") } });
        stack.appendFilter(filter);
        stack.writeFilterSettings();
    }
    VeskStandIn::resetRoster();
    VeskStandIn::addProtocol(QStringLiteral("p"),
        { VeskStandIn::makePresence(QStringLiteral("away"), QStringLiteral("Weg")) });
    VeskRosterFiltersStack reread(QStringLiteral("s"), VeskRosterFilter::RosterFilterDefault);
    QCOMPARE(reread.display(), QStringLiteral("(presence is not Weg)"));
}

QTEST_GUILESS_MAIN(tst_KindsRoundTrip)
#include "tst_kindsroundtrip.moc"
