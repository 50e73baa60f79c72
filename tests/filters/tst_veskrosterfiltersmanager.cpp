// The filters manager: first start, the current filter, the order, renaming
// and removing, and the kind factory. How start-up reconciles any stored
// order and current filter with the files is tst_settingsoutofstep's.

#include <veskfiltertestenv.h>
#include <veskfiltertree.h>

#include <vesksettingsmanager.h>

#include <QDir>
#include <QtTest>

using namespace VeskFilterTree;

namespace {

const VeskRosterFilter::RosterFilterType AND = VeskRosterFilter::RosterFilterAnd;
const QString unset = QStringLiteral("<unset>");

QString storedCurrent()
{
    return VeskFilterTestEnv::storedText(QStringLiteral("roster_filter"), unset);
}

QStringList storedOrder()
{
    return VeskFilterTestEnv::storedList(QStringLiteral("filters"), unset);
}

void storeOrder(const QStringList &order)
{
    VeskFilterTestEnv::store(QStringLiteral("filters"), order);
}

// Saves a stack with one presence leaf per name, registered with the manager.
void addSaved(const QStringList &names)
{
    for (const QString &name : names) {
        VeskRosterFiltersStack *stack
            = VeskRosterFiltersManager::getInstance()->addStackFilter(name, AND);
        stack->appendFilter(presence(QStringLiteral("online")));
        stack->writeFilterSettings();
    }
}

} // namespace

class tst_VeskRosterFiltersManager : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        env.reset(new VeskFilterTestEnv);
        addPresences();
    }
    void cleanup() { env.reset(); }

    void firstStartHasOnlyTheDefaultFilter();
    void currentFilterDecidesWhatPasses();
    void upAndDownMoveOnePlaceAndStoreTheOrder_data();
    void upAndDownMoveOnePlaceAndStoreTheOrder();
    void removeDeletesTheFileAndFallsBackFromTheCurrentFilter();
    void renameKeepsPlaceFileAndCurrentFilterAcrossARestart_data();
    void renameKeepsPlaceFileAndCurrentFilterAcrossARestart();
    void renameRefusesWhatWouldLoseAFilter_data();
    void renameRefusesWhatWouldLoseAFilter();
    void defaultFilterCanBeNeitherRemovedNorReplaced();
    void factoryMakesExactlyTheSixKinds();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_VeskRosterFiltersManager::firstStartHasOnlyTheDefaultFilter()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    QCOMPARE(manager->getFilterNames() + storedOrder(),
        QStringList({ QStringLiteral("default"), unset }));
    QCOMPARE(manager->getCurrentFilterName() + storedCurrent(), QStringLiteral("defaultdefault"));
    QVERIFY(!QFileInfo::exists(env->filtersDir()));
}

void tst_VeskRosterFiltersManager::currentFilterDecidesWhatPasses()
{
    addSaved({ QStringLiteral("online only") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskStandIn::ContactInfo away;
    away.presence = VeskStandIn::makePresence(QStringLiteral("away"));
    const VeskBuddy contact = VeskStandIn::addContact(away);
    const bool underDefault = manager->filter(contact);
    manager->setCurrentFilter(QStringLiteral("online only"));
    manager->setCurrentFilter(QStringLiteral("ghost")); // changes nothing
    QCOMPARE(storedCurrent(), QStringLiteral("online only"));
    QCOMPARE(QList<bool>({ underDefault, manager->filter(contact) }), QList<bool>({ true, false }));
}

void tst_VeskRosterFiltersManager::upAndDownMoveOnePlaceAndStoreTheOrder_data()
{
    QTest::addColumn<bool>("up");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QStringList>("expected");
    const QString d = QStringLiteral("default"), a = QStringLiteral("a"), b = QStringLiteral("b"),
                  c = QStringLiteral("c");
    QTest::newRow("up of the third") << true << b << QStringList { d, b, a, c };
    QTest::newRow("up of the second never takes the first place")
        << true << a << QStringList { d, a, b, c };
    QTest::newRow("up of an unknown id")
        << true << QStringLiteral("ghost") << QStringList { d, a, b, c };
    QTest::newRow("down of default") << false << d << QStringList { a, d, b, c };
    QTest::newRow("down of the second") << false << a << QStringList { d, b, a, c };
    QTest::newRow("down of the last") << false << c << QStringList { d, a, b, c };
}

void tst_VeskRosterFiltersManager::upAndDownMoveOnePlaceAndStoreTheOrder()
{
    QFETCH(bool, up);
    QFETCH(QString, id);
    QFETCH(QStringList, expected);
    addSaved({ QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    if (up)
        manager->upFilter(id);
    else
        manager->downFilter(id);
    QCOMPARE(manager->getFilterNames(), expected);
    QCOMPARE(storedOrder(), expected);
}

void tst_VeskRosterFiltersManager::removeDeletesTheFileAndFallsBackFromTheCurrentFilter()
{
    addSaved({ QStringLiteral("a"), QStringLiteral("b") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->setCurrentFilter(QStringLiteral("a"));
    QScopedPointer<VeskRosterFiltersStack> removed(manager->getStackFilter(QStringLiteral("a")));
    manager->removeStackFilter(QStringLiteral("a"));
    const QStringList expected { QStringLiteral("default"), QStringLiteral("b") };
    QCOMPARE(manager->getFilterNames(), expected);
    QCOMPARE(manager->getCurrentFilterName(), QStringLiteral("default"));
    QCOMPARE(QDir(env->filtersDir()).entryList(QDir::Files | QDir::Hidden),
        QStringList { QStringLiteral("b") });
    manager = env->restart();
    QCOMPARE(manager->getFilterNames(), expected);
    QCOMPARE(manager->getCurrentFilterName(), QStringLiteral("default"));
}

void tst_VeskRosterFiltersManager::renameKeepsPlaceFileAndCurrentFilterAcrossARestart_data()
{
    QTest::addColumn<QString>("oldId");
    QTest::addColumn<QString>("newId");
    const QString longName(300, QLatin1Char('l'));
    QTest::newRow("plain to plain") << QStringLiteral("b") << QStringLiteral("b renamed");
    QTest::newRow("long name to long name") << longName << QString(300, QChar(0x4E2D));
    QTest::newRow("long name to a path") << longName << QStringLiteral("../../b");
    QTest::newRow("case only") << QStringLiteral("b") << QStringLiteral("B");
}

void tst_VeskRosterFiltersManager::renameKeepsPlaceFileAndCurrentFilterAcrossARestart()
{
    QFETCH(QString, oldId);
    QFETCH(QString, newId);
    addSaved({ QStringLiteral("a"), oldId, QStringLiteral("c") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    storeOrder(manager->getFilterNames());
    manager->setCurrentFilter(oldId);
    VeskRosterFiltersStack *stack = manager->getStackFilter(oldId);
    manager->rename(oldId, newId);
    const QString tree = describe(stack);
    const QStringList expected { QStringLiteral("default"), QStringLiteral("a"), newId,
        QStringLiteral("c") };
    QCOMPARE(stack->name(), newId);
    QCOMPARE(manager->getFilterNames(), expected);
    QCOMPARE(storedCurrent(), newId);

    manager = env->restart();
    QCOMPARE(manager->getFilterNames(), expected);
    QCOMPARE(manager->getCurrentFilterName(), newId);
    QCOMPARE(describe(manager->getStackFilter(newId)), tree);
    QCOMPARE(QDir(env->filtersDir()).entryList(QDir::Files | QDir::Hidden).size(), 3);
}

void tst_VeskRosterFiltersManager::renameRefusesWhatWouldLoseAFilter_data()
{
    QTest::addColumn<QString>("oldId");
    QTest::addColumn<QString>("newId");
    QTest::newRow("renaming default") << QStringLiteral("default") << QStringLiteral("x");
    QTest::newRow("renaming to default") << QStringLiteral("a") << QStringLiteral("default");
    QTest::newRow("an unknown old id") << QStringLiteral("ghost") << QStringLiteral("x");
    QTest::newRow("to the empty name") << QStringLiteral("a") << QString();
    QTest::newRow("onto another filter") << QStringLiteral("a") << QStringLiteral("b");
}

void tst_VeskRosterFiltersManager::renameRefusesWhatWouldLoseAFilter()
{
    addSaved({ QStringLiteral("a"), QStringLiteral("b") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->setCurrentFilter(QStringLiteral("a"));
    storeOrder(manager->getFilterNames());
    const auto state = [&] {
        return manager->getFilterNames() + storedOrder()
            + QStringList { describe(manager->getStackFilter(QStringLiteral("a"))),
                  describe(manager->getStackFilter(QStringLiteral("b"))),
                  manager->getCurrentFilterName(), storedCurrent() }
        + QDir(env->filtersDir()).entryList(QDir::Files | QDir::Hidden);
    };
    const QStringList before = state();
    QFETCH(QString, oldId);
    QFETCH(QString, newId);
    manager->rename(oldId, newId);
    QCOMPARE(state(), before);
}

void tst_VeskRosterFiltersManager::defaultFilterCanBeNeitherRemovedNorReplaced()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFilter *defaultFilter = manager->getCurrentFilter();
    manager->removeStackFilter(QStringLiteral("default"));
    QCOMPARE(manager->addStackFilter(QStringLiteral("default"), AND), nullptr);
    addSaved({ QStringLiteral("a") });
    manager->setCurrentFilter(QStringLiteral("a"));
    manager->setCurrentFilter(QStringLiteral("default"));
    QCOMPARE(manager->getCurrentFilter(), defaultFilter);
    QCOMPARE(
        manager->getFilterNames(), QStringList({ QStringLiteral("default"), QStringLiteral("a") }));
}

void tst_VeskRosterFiltersManager::factoryMakesExactlyTheSixKinds()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    QStringList made;
    QStringList kinds = manager->getAvailableFilters();
    kinds.sort();
    for (const QString &kind : qAsConst(kinds)
            + QStringList { QString(), QStringLiteral("Presence"), QStringLiteral("default"),
                QStringLiteral("stack_filter") }) {
        QScopedPointer<VeskRosterFilter> filter(manager->createFilter(kind, AND));
        if (filter && filter->getType() == VeskRosterFilter::RosterFilterLeaf
            && filter->id() == kind)
            made << kind;
    }
    QCOMPARE(made,
        QStringList(
            { QStringLiteral("account"), QStringLiteral("description"), QStringLiteral("display"),
                QStringLiteral("group"), QStringLiteral("presence"), QStringLiteral("protocol") }));
}

QTEST_GUILESS_MAIN(tst_VeskRosterFiltersManager)
#include "tst_veskrosterfiltersmanager.moc"
