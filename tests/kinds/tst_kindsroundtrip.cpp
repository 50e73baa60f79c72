// Every leaf kind, configured inside an AND/OR tree of a stored stack filter,
// answers and reads the same after the host restarts.

#include "kindsfixture.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

// The managers never delete the stacks they hold; whoever ends them does.
void endManagers()
{
    if (VeskRosterFiltersManager *manager = VeskRosterFiltersManager::instance) {
        manager->setCurrentFilter(QStringLiteral("default"));
        QSet<VeskRosterFilter *> filters { manager->getCurrentFilter() };
        const QStringList ids = manager->getFilterNames();
        for (const QString &id : ids)
            filters.insert(manager->getStackFilter(id));
        qDeleteAll(filters);
        delete manager;
    }
    delete VeskRosterSortersManager::instance;
}

std::unique_ptr<VeskRosterFilter> leaf(const QString &kind, const FieldValues &values)
{
    std::unique_ptr<VeskRosterFilter> filter(VeskRosterFiltersManager::getInstance()->createFilter(
        kind, VeskRosterFilter::RosterFilterDefault));
    if (filter)
        configure(*filter, values);
    return filter;
}

} // namespace

class tst_KindsRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void leafSurvivesARestartInsideAnAndOrTree_data();
    void leafSurvivesARestartInsideAnAndOrTree();

private:
    void restart();

    QTemporaryDir settings;
    QList<LabelledEntry> entries;
};

void tst_KindsRoundTrip::init()
{
    QVERIFY(settings.isValid());
    VeskStandIn::setSettingsDir(
        settings.path() + QLatin1Char('/') + QString::fromLatin1(QTest::currentDataTag()));
    entries = buildRoster();
    VeskStandIn::addProtocol(QStringLiteral("jabber"),
        { VeskStandIn::makePresence(QStringLiteral("online"), QStringLiteral("Online")),
            VeskStandIn::makePresence(QStringLiteral("away"), QStringLiteral("Away")) });
    VeskAccountConnection *bob
        = VeskStandIn::addAccount(QStringLiteral("bob"), QStringLiteral("icq"));
    VeskStandIn::ContactInfo axb;
    axb.display = QStringLiteral("axb");
    axb.account = bob;
    axb.presence
        = VeskStandIn::makePresence(QStringLiteral("online"), QString(), QStringLiteral("axb"));
    VeskStandIn::ContactInfo xaby;
    xaby.display = QStringLiteral("xa.by");
    xaby.presence
        = VeskStandIn::makePresence(QStringLiteral("online"), QString(), QStringLiteral("xa.by"));
    entries << LabelledEntry { QStringLiteral("axb"), VeskStandIn::addContact(axb) }
            << LabelledEntry { QStringLiteral("xa.by"), VeskStandIn::addContact(xaby) };
}

void tst_KindsRoundTrip::cleanup()
{
    endManagers();
    VeskStandIn::resetRoster();
}

void tst_KindsRoundTrip::restart()
{
    endManagers();
    VeskStandIn::setSettingsDir(
        settings.path() + QLatin1Char('/') + QString::fromLatin1(QTest::currentDataTag()));
    VeskRosterFiltersManager::getInstance();
}

void tst_KindsRoundTrip::leafSurvivesARestartInsideAnAndOrTree_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("display");

    QTest::newRow("display a.b still literal") << "display"
                                               << "contains"
                                               << "a.b"
                                               << "invalid, xa.by"
                                               << "display a.b";
    QTest::newRow("description a.b still literal") << "description"
                                                   << "contains"
                                                   << "a.b"
                                                   << "xa.by"
                                                   << "description a.b";
    QTest::newRow("description is not empty") << "description"
                                              << "is not empty"
                                              << "x"
                                              << "contact, axb, xa.by"
                                              << "description x";
    QTest::newRow("group is not Friends")
        << "group"
        << "is not"
        << "Friends"
        << "temporary, group, invalid, no account, bare, axb, xa.by"
        << "is not Friends";
    QTest::newRow("account is bob@icq") << "account"
                                        << "is"
                                        << "bob@icq"
                                        << "temporary, axb"
                                        << "account is bob@icq";
    QTest::newRow("protocol is not icq") << "protocol"
                                         << "is not"
                                         << "icq"
                                         << "contact, group, invalid, no account, bare, xa.by"
                                         << "protocol is not icq";
    QTest::newRow("presence is Away") << "presence"
                                      << "is"
                                      << "away"
                                      << "contact, temporary"
                                      << "presence is Away";
}

void tst_KindsRoundTrip::leafSurvivesARestartInsideAnAndOrTree()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, value);
    QFETCH(QString, expected);
    QFETCH(QString, display);

    const QString valueField = kind
        + QLatin1String(kind == QLatin1String("display") || kind == QLatin1String("description")
                ? "_filter_regexp"
                : "_filter_presence");
    const QString conditionId = QStringLiteral("is_or_not");
    const QString displayField = QStringLiteral("display_filter_regexp");

    // AND[ OR[ the leaf, a display filter that passes nothing ], one that passes everything ]
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *stack
        = manager->addStackFilter(QStringLiteral("kinds"), VeskRosterFilter::RosterFilterAnd);
    std::unique_ptr<VeskRosterFilter> nested(
        manager->createFilter(QStringLiteral("stack_filter"), VeskRosterFilter::RosterFilterOr));
    std::unique_ptr<VeskRosterFilter> tested
        = leaf(kind, { { conditionId, condition }, { valueField, value } });
    std::unique_ptr<VeskRosterFilter> never = leaf(QStringLiteral("display"),
        { { conditionId, QStringLiteral("match exactly") },
            { displayField, QStringLiteral("never") } });
    std::unique_ptr<VeskRosterFilter> always = leaf(QStringLiteral("display"),
        { { conditionId, QStringLiteral("contains") }, { displayField, QString() } });
    QVERIFY(stack && nested && tested && never && always);
    auto *nestedStack = static_cast<VeskRosterFiltersStack *>(nested.get());
    nestedStack->appendFilter(tested.release());
    nestedStack->appendFilter(never.release());
    stack->appendFilter(nested.release());
    stack->appendFilter(always.release());
    QCOMPARE(passing(*stack, entries), expected);
    const QString stackDisplay = stack->display();
    stack->writeFilterSettings();

    restart();

    stack = VeskRosterFiltersManager::getInstance()->getStackFilter(QStringLiteral("kinds"));
    QVERIFY(stack);
    QCOMPARE(stack->getFilters().size(), 2);
    auto *readNested = dynamic_cast<VeskRosterFiltersStack *>(stack->getFilters().at(0));
    QVERIFY(readNested);
    QCOMPARE(readNested->getType(), VeskRosterFilter::RosterFilterOr);
    QCOMPARE(readNested->getFilters().size(), 2);
    const VeskRosterFilter *readLeaf = readNested->getFilters().at(0);
    QCOMPARE(readLeaf->id(), kind);
    QCOMPARE(readLeaf->display(), display);
    QCOMPARE(readLeaf->getConfiguration().at(1).getKind() == VeskField::LineEdit
            ? readLeaf->getConfiguration().at(1).getText()
            : readLeaf->getConfiguration().at(1).getSelectedId(),
        value);
    QCOMPARE(stack->display(), stackDisplay);
    QCOMPARE(passing(*stack, entries), expected);
}

QTEST_GUILESS_MAIN(tst_KindsRoundTrip)
#include "tst_kindsroundtrip.moc"
