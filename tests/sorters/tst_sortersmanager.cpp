// The sorters manager: sorting methods in the settings, the current chain,
// the answers it gives the roster view, and the method of the current filter.

#include "sortersfixture.h"

#include <veskfiltertestenv.h>

#include <QtTest>

#include <algorithm>
#include <memory>

using namespace SortersFixture;

namespace {

QStringList stored(const QString &key)
{
    return VeskFilterTestEnv::storedList(key);
}

QString storedDefault()
{
    return VeskFilterTestEnv::storedText(QStringLiteral("default_sorter"));
}

// lessThan(a, b) and lessThan(b, a) for each pair as "t"/"f" letters, so one
// comparison shows every answer.
QString answers(const QList<QPair<VeskBuddy, VeskBuddy>> &pairs)
{
    const VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    QStringList result;
    for (const auto &[a, b] : pairs)
        result << QLatin1String(manager->lessThan(a, b) ? "t" : "f")
                + QLatin1String(manager->lessThan(b, a) ? "t" : "f");
    return result.join(QLatin1Char(' '));
}

} // namespace

class tst_SortersManager : public QObject
{
    Q_OBJECT

private slots:
    void init() { env.reset(new VeskFilterTestEnv); }
    void cleanup() { env.reset(); }

    void chainReadsEachComparatorThroughItsFlag_data();
    void chainReadsEachComparatorThroughItsFlag();
    void comparatorTableKnowsExactlyTheFourIds();
    void methodsAreStoredUnderTheHostsKeysAndRemovalKeepsTheCurrentChain();
    void withoutThePrivateSettingsFrontEndNothingIsReadOrStored();
    void currentMethodGoesToTheDefaultOrToTheCurrentStack();
    void pickingAnotherFilterAppliesItsMethodNowAndAfterARestart();
    void methodMadeCurrentBeforeTheFiltersManagerExistsStays();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_SortersManager::chainReadsEachComparatorThroughItsFlag_data()
{
    QTest::addColumn<QStringList>("ids");
    QTest::addColumn<QStringList>("flags");
    QTest::addColumn<QString>("expected");
    // Pairs: Amy (9 chats) / Zed (1 chat), alice / Bob, Aaron (flag 5) / Bob,
    // Hal (priority 7) / Bob, groups at 3 / 5, family / Work at 0.
    const QString t = QStringLiteral("t"), f = QStringLiteral("f");
    QTest::newRow("no method: built-in presence, then name")
        << QStringList() << QStringList() << QStringLiteral("ft ft tf tf ft ft");
    QTest::newRow("presence ascending, name descending")
        << QStringList({ QStringLiteral("presence"), QStringLiteral("name") })
        << QStringList({ t, f }) << QStringLiteral("tf tf tf ft ff tf");
    QTest::newRow("presence priority") << QStringList(QStringLiteral("presence_priority"))
                                       << QStringList(t) << QStringLiteral("ff ff ff ft ff ff");
    QTest::newRow("chats count: equal counts answer false both ways") << QStringList(
        { QStringLiteral("chats_count") }) << QStringList(t) << QStringLiteral("ft ff ff ff ff ff");
    QTest::newRow("unknown ids are skipped with their flags")
        << QStringList({ QStringLiteral("bogus"), QStringLiteral("chats_count"),
               QStringLiteral("Name"), QStringLiteral("name") })
        << QStringList({ t, f, f, t }) << QStringLiteral("tf ft ft tf ft ft");
    QTest::newRow("positions without a flag are ascending")
        << QStringList({ QStringLiteral("chats_count"), QStringLiteral("name") }) << QStringList(f)
        << QStringLiteral("tf ft ft tf ft ft");
}

void tst_SortersManager::chainReadsEachComparatorThroughItsFlag()
{
    QFETCH(QStringList, ids);
    QFETCH(QStringList, flags);
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    if (!ids.isEmpty()) {
        manager->addSorter(QStringLiteral("m"), ids);
        manager->setSorterAscending(QStringLiteral("m"), flags);
    }
    manager->setCurrentSorter(ids.isEmpty() ? QString() : QStringLiteral("m"));
    const VeskBuddy bob = contact("Bob");
    QTEST(answers({ { withChats("Amy", 9), withChats("Zed", 1) }, { contact("alice"), bob },
              { contact("Aaron", 5), bob }, { contact("Hal", 0, 7), bob },
              { VeskStandIn::addGroup(QStringLiteral("A"), 3),
                  VeskStandIn::addGroup(QStringLiteral("B"), 5) },
              { VeskStandIn::addGroup(QStringLiteral("family"), 0),
                  VeskStandIn::addGroup(QStringLiteral("Work"), 0) } }),
        "expected");
}

void tst_SortersManager::comparatorTableKnowsExactlyTheFourIds()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    QStringList ids = manager->getAvailableSorters();
    std::sort(ids.begin(), ids.end());
    QStringList table;
    for (const QString &id : qAsConst(ids)
            + QStringList { QStringLiteral("Name"), QStringLiteral("chats count"), QString() }) {
        const std::unique_ptr<VeskRosterSorter> sorter(manager->createSorter(id));
        table << id + QLatin1Char('=') + manager->getSorterDisplay(id) + QLatin1Char('=')
                + manager->getSorterName(manager->getSorterDisplay(id))
                + QLatin1String(!sorter         ? " none"
                        : sorter->isAscending() ? " ascending"
                                                : " descending");
    }
    QCOMPARE(table,
        QStringList({ QStringLiteral("chats_count=chats count=chats_count ascending"),
            QStringLiteral("name=name=name ascending"),
            QStringLiteral("presence=presence=presence ascending"),
            QStringLiteral("presence_priority=presence priority=presence_priority ascending"),
            QStringLiteral("Name== none"), QStringLiteral("chats count== none"),
            QStringLiteral("== none") }));
}

void tst_SortersManager::methodsAreStoredUnderTheHostsKeysAndRemovalKeepsTheCurrentChain()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"), { QStringLiteral("name") });
    manager->addSorter(QStringLiteral("M"), { QStringLiteral("presence") });
    manager->addSorter(
        QStringLiteral("m"), { QStringLiteral("chats_count"), QStringLiteral("name") });
    manager->setSorterAscending(QStringLiteral("m"), { QStringLiteral("f"), QString() });
    manager->setCurrentSorter(QStringLiteral("m"));
    const VeskBuddy few = withChats("A", 1);
    const VeskBuddy many = withChats("B", 9);
    const QString byChats = answers({ { few, many } });
    const QStringList keys { QStringLiteral("sorters"), QStringLiteral("sorter_m"),
        QStringLiteral("sorter_asc_m"), QStringLiteral("sorter_M") };
    QStringList before;
    for (const QString &key : keys)
        before << stored(key).join(QLatin1Char(','));
    manager->removeSorter(QStringLiteral("m"));
    QStringList after;
    for (const QString &key : keys)
        after << stored(key).join(QLatin1Char(','));

    QCOMPARE(before + after,
        QStringList({ QStringLiteral("m,M"), QStringLiteral("chats_count,name"),
            QStringLiteral("f,"), QStringLiteral("presence"), QStringLiteral("M"),
            QStringLiteral("-"), QStringLiteral("f,"), QStringLiteral("presence") }));
    QCOMPARE(storedDefault(), QStringLiteral("m"));
    QCOMPARE(answers({ { few, many } }), byChats);
    QCOMPARE(byChats, QStringLiteral("ft"));
    env->restart();
    QCOMPARE(VeskRosterSortersManager::getInstance()->getDefault(), QStringLiteral("m"));
}

// The host installs its private front end before it loads the library; a
// manager started without one must neither crash nor reach the store.
void tst_SortersManager::withoutThePrivateSettingsFrontEndNothingIsReadOrStored()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"), { QStringLiteral("name") });
    manager->setDefault(QStringLiteral("m"));
    delete VeskRosterSortersManager::instance;
    VeskSettingsManagerPrivate *const frontEnd
        = VeskSettingsManagerPrivate::settingsMgrPrivInstance;
    VeskSettingsManagerPrivate::settingsMgrPrivInstance = nullptr;
    manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("n"), { QStringLiteral("chats_count") });
    manager->setSorterAscending(QStringLiteral("m"), { QStringLiteral("f") });
    manager->removeSorter(QStringLiteral("m"));
    const QStringList seen = QStringList(manager->getDefault()) + manager->getSorters()
        + manager->getSorters(QStringLiteral("m"));
    VeskSettingsManagerPrivate::settingsMgrPrivInstance = frontEnd;
    QCOMPARE(seen, QStringList(QString()));
    QCOMPARE(stored(QStringLiteral("sorters")) + stored(QStringLiteral("sorter_m"))
            + stored(QStringLiteral("sorter_asc_m")) + QStringList(storedDefault()),
        QStringList({ QStringLiteral("m"), QStringLiteral("name"), QStringLiteral("-"),
            QStringLiteral("m") }));
}

void tst_SortersManager::currentMethodGoesToTheDefaultOrToTheCurrentStack()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->setCurrentSorter(QStringLiteral("d"));
    const QString underDefault = manager->getDefault() + QLatin1Char('/') + storedDefault();
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *work
        = filters->addStackFilter(QStringLiteral("work"), VeskRosterFilter::RosterFilterAnd);
    filters->setCurrentFilter(QStringLiteral("work"));
    manager->setCurrentSorter(QStringLiteral("m"));
    const QString underStack = work->getSorter() + QLatin1Char('/') + storedDefault();
    manager->setCurrentSorter(QString());
    QCOMPARE(QStringList({ underDefault, underStack, work->getSorter() }),
        QStringList({ QStringLiteral("d/d"), QStringLiteral("m/d"), QStringLiteral("d") }));
}

void tst_SortersManager::pickingAnotherFilterAppliesItsMethodNowAndAfterARestart()
{
    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    sorters->addSorter(QStringLiteral("by chats"), { QStringLiteral("chats_count") });
    sorters->addSorter(QStringLiteral("by name"), { QStringLiteral("name") });
    sorters->setSorterAscending(QStringLiteral("by name"), { QStringLiteral("f") });
    sorters->setDefault(QStringLiteral("by name"));
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *work
        = filters->addStackFilter(QStringLiteral("work"), VeskRosterFilter::RosterFilterAnd);
    filters->setCurrentFilter(QStringLiteral("work"));
    sorters->setCurrentSorter(QStringLiteral("by chats"));
    work->writeFilterSettings();
    // Zed has fewer chats, Amy the earlier name: "tf" by chats, "ft" by name.
    const VeskBuddy zed = withChats("Zed", 1);
    const VeskBuddy amy = withChats("Amy", 9);
    QStringList seen { answers({ { zed, amy } }) };
    filters->setCurrentFilter(QStringLiteral("default"));
    seen << answers({ { zed, amy } });
    filters->setCurrentFilter(QStringLiteral("work"));
    env->restart();
    seen << answers({ { zed, amy } });
    VeskRosterFiltersManager::getInstance()->setCurrentFilter(QStringLiteral("default"));
    env->restart();
    seen << answers({ { zed, amy } });
    QCOMPARE(seen,
        QStringList({ QStringLiteral("tf"), QStringLiteral("ft"), QStringLiteral("tf"),
            QStringLiteral("ft") }));
}

// The filters manager, created by this first call, makes the default method
// current on its own start-up; the method asked for must still win.
void tst_SortersManager::methodMadeCurrentBeforeTheFiltersManagerExistsStays()
{
    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    sorters->addSorter(QStringLiteral("by chats"), { QStringLiteral("chats_count") });
    sorters->addSorter(QStringLiteral("by name"), { QStringLiteral("name") });
    sorters->setDefault(QStringLiteral("by chats"));
    QVERIFY(!VeskRosterFiltersManager::instance);
    sorters->setCurrentSorter(QStringLiteral("by name"));
    QCOMPARE(sorters->getDefault(), QStringLiteral("by name"));
    // Zed has more chats, Amy the earlier name: "ft" by chats, "tf" by name.
    QCOMPARE(answers({ { withChats("Zed", 9), withChats("Amy", 1) } }), QStringLiteral("tf"));
}

QTEST_GUILESS_MAIN(tst_SortersManager)
#include "tst_sortersmanager.moc"
