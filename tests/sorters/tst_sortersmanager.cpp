// The sorters manager: sorting methods in the settings, the current chain and
// the answers it gives the roster view.

#include "sortersfixture.h"

#include <veskrostersorterbychatscount.h>
#include <veskrostersorterbypresencepriority.h>
#include <vesksettingsmanager.h>

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <memory>

using namespace SortersFixture;

namespace {

QStringList storedList(const QString &key)
{
    const VeskField field = VeskSettingsManager::getInstance()->readGlobalSetting(
        VeskField::comboBox(QString(), key, {}, {}, QString(), QString()));
    return field.getComboBoxIds();
}

QString storedText(const QString &key)
{
    return VeskSettingsManager::getInstance()
        ->readGlobalSetting(VeskField::lineEdit(QString(), key, QString(), 32767, QString()))
        .getText();
}

} // namespace

class tst_SortersManager : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void firstStartFollowsPresenceThenName();
    void createSorterKnowsExactlyTheFourIds_data();
    void createSorterKnowsExactlyTheFourIds();
    void comparatorNamesAreTranslatedSourceTexts();
    void methodsAreStoredUnderTheHostsKeys();
    void withoutThePrivateSettingsFrontEndNothingIsStored();
    void chainReadsEachComparatorThroughItsFlag();
    void addingAMethodTwiceListsItOnceWithTheLatestIds();
    void removeSorterKeepsDirectionsDefaultAndCurrentChain();
    void removedDefaultMethodFallsBackToTheBuiltInOrder();
    void currentMethodUnderTheDefaultFilterBecomesTheDefault();
    void currentMethodUnderAUserStackGoesToTheStack();
    void emptyNameUnderAUserStackGivesItTheDefaultMethod();
    void chainOfZerosAnswersFalseBothWays();
    void descendingNameNeverOrdersPositionedGroups();
    void unknownIdIsSkippedWithItsFlag();
    void positionsWithoutAFlagAreAscending();
    void hostOrderFromLessThan_data();
    void hostOrderFromLessThan();

private:
    VeskRosterSortersManager *restart();
    // lessThan(a, b) and lessThan(b, a) for each pair, as "ab" letters
    // (t/f), so one comparison shows every answer.
    QString answers(const QList<QPair<VeskBuddy, VeskBuddy>> &pairs) const;

    std::unique_ptr<QTemporaryDir> dir;
};

void tst_SortersManager::init()
{
    VeskStandIn::resetRoster();
    dir.reset(new QTemporaryDir);
    QVERIFY(dir->isValid());
    VeskStandIn::setSettingsDir(dir->path());
}

void tst_SortersManager::cleanup()
{
    destroyManagers(dir->path());
    VeskStandIn::resetRoster();
}

VeskRosterSortersManager *tst_SortersManager::restart()
{
    destroyManagers(dir->path());
    return VeskRosterSortersManager::getInstance();
}

QString tst_SortersManager::answers(const QList<QPair<VeskBuddy, VeskBuddy>> &pairs) const
{
    const VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    QString result;
    for (const auto &[a, b] : pairs) {
        if (!result.isEmpty())
            result += QLatin1Char(' ');
        result += QLatin1Char(manager->lessThan(a, b) ? 't' : 'f');
        result += QLatin1Char(manager->lessThan(b, a) ? 't' : 'f');
    }
    return result;
}

void tst_SortersManager::firstStartFollowsPresenceThenName()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    QCOMPARE(manager->getDefault(), QString());
    QCOMPARE(manager->getSorters(), QStringList());
    manager->setCurrentSorter(QString());

    const VeskBuddy away = contact({ QStringLiteral("Aaron"), 5 });
    const VeskBuddy zed = contact({ QStringLiteral("Zed"), 1, 0, 1 });
    const VeskBuddy bob = contact({ QStringLiteral("Bob"), 1, 0, 1 });
    const VeskBuddy low = contact({ QStringLiteral("Amy"), 1, 0, 0 });
    // Flag 5 sorts after despite its name; then the higher subscription
    // first; then names.
    QCOMPARE(answers({ { away, zed }, { low, bob }, { zed, bob } }), QStringLiteral("tf tf tf"));
}

void tst_SortersManager::createSorterKnowsExactlyTheFourIds_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("className");
    QTest::newRow("name") << QStringLiteral("name") << QStringLiteral("name");
    QTest::newRow("presence") << QStringLiteral("presence") << QStringLiteral("presence");
    QTest::newRow("presence_priority")
        << QStringLiteral("presence_priority") << QStringLiteral("presence priority");
    QTest::newRow("chats_count") << QStringLiteral("chats_count") << QStringLiteral("chats count");
    QTest::newRow("ids are case-sensitive") << QStringLiteral("Name") << QString();
    QTest::newRow("translated names are no ids") << QStringLiteral("chats count") << QString();
    QTest::newRow("empty") << QString() << QString();
}

void tst_SortersManager::createSorterKnowsExactlyTheFourIds()
{
    QFETCH(QString, id);
    QFETCH(QString, className);
    const std::unique_ptr<VeskRosterSorter> sorter(
        VeskRosterSortersManager::getInstance()->createSorter(id));
    QString made;
    if (dynamic_cast<VeskRosterSorterByName *>(sorter.get()))
        made = QStringLiteral("name");
    else if (dynamic_cast<VeskRosterSorterByPresence *>(sorter.get()))
        made = QStringLiteral("presence");
    else if (dynamic_cast<VeskRosterSorterByPresencePriority *>(sorter.get()))
        made = QStringLiteral("presence priority");
    else if (dynamic_cast<VeskRosterSorterByChatsCount *>(sorter.get()))
        made = QStringLiteral("chats count");
    QCOMPARE(made, className);
    QVERIFY(!sorter || sorter->isAscending());
}

void tst_SortersManager::comparatorNamesAreTranslatedSourceTexts()
{
    const VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    QStringList table;
    QStringList ids = manager->getAvailableSorters();
    std::sort(ids.begin(), ids.end());
    for (const QString &id : qAsConst(ids))
        table << id + QLatin1Char('=') + manager->getSorterDisplay(id) + QLatin1Char('=')
                + manager->getSorterName(manager->getSorterDisplay(id));
    QCOMPARE(table,
        QStringList({ QStringLiteral("chats_count=chats count=chats_count"),
            QStringLiteral("name=name=name"), QStringLiteral("presence=presence=presence"),
            QStringLiteral("presence_priority=presence priority=presence_priority") }));
    QCOMPARE(manager->getSorterDisplay(QStringLiteral("chats count")), QString());
    QCOMPARE(manager->getSorterName(QStringLiteral("chats_count")), QString());
}

void tst_SortersManager::methodsAreStoredUnderTheHostsKeys()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(
        QStringLiteral("by chats"), { QStringLiteral("chats_count"), QStringLiteral("name") });
    manager->setSorterAscending(QStringLiteral("by chats"), { QStringLiteral("f"), QString() });
    manager->addSorter(QString(), { QStringLiteral("presence") });
    manager->setDefault(QStringLiteral("by chats"));

    QCOMPARE(storedList(QStringLiteral("sorters")),
        QStringList({ QStringLiteral("by chats"), QString() }));
    QCOMPARE(storedList(QStringLiteral("sorter_by chats")),
        QStringList({ QStringLiteral("chats_count"), QStringLiteral("name") }));
    QCOMPARE(storedList(QStringLiteral("sorter_asc_by chats")),
        QStringList({ QStringLiteral("f"), QString() }));
    QCOMPARE(storedList(QStringLiteral("sorter_")), QStringList({ QStringLiteral("presence") }));
    QCOMPARE(storedText(QStringLiteral("default_sorter")), QStringLiteral("by chats"));
    QCOMPARE(restart()->getDefault(), QStringLiteral("by chats"));
}

void tst_SortersManager::withoutThePrivateSettingsFrontEndNothingIsStored()
{
    VeskSettingsManagerPrivate *const frontEnd
        = VeskSettingsManagerPrivate::settingsMgrPrivInstance;
    VeskSettingsManagerPrivate::settingsMgrPrivInstance = nullptr;
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"), { QStringLiteral("name") });
    manager->setSorterAscending(QStringLiteral("m"), { QStringLiteral("t") });
    manager->setDefault(QStringLiteral("m"));
    manager->removeSorter(QStringLiteral("m"));
    const QStringList seen = manager->getSorters() + manager->getSorters(QStringLiteral("m"));
    VeskSettingsManagerPrivate::settingsMgrPrivInstance = frontEnd;

    QCOMPARE(seen, QStringList());
    QCOMPARE(storedText(QStringLiteral("default_sorter")), QString());
    QCOMPARE(storedList(QStringLiteral("sorters")), QStringList());
}

void tst_SortersManager::chainReadsEachComparatorThroughItsFlag()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"), { QStringLiteral("presence"), QStringLiteral("name") });
    manager->setSorterAscending(QStringLiteral("m"), { QStringLiteral("t"), QStringLiteral("f") });
    manager->setCurrentSorter(QStringLiteral("m"));

    const VeskBuddy alice = contact({ QStringLiteral("alice") });
    const VeskBuddy bob = contact({ QStringLiteral("Bob") });
    const VeskBuddy away = contact({ QStringLiteral("Aaron"), 5 });
    // Descending name: alice "less" than Bob; ascending presence: flag 5
    // "less" than no flag whatever the names.
    QCOMPARE(answers({ { alice, bob }, { away, bob } }), QStringLiteral("tf tf"));
}

void tst_SortersManager::addingAMethodTwiceListsItOnceWithTheLatestIds()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"), { QStringLiteral("name") });
    manager->addSorter(QStringLiteral("M"), { QStringLiteral("presence") });
    manager->addSorter(QStringLiteral("m"), { QStringLiteral("chats_count") });
    QCOMPARE(manager->getSorters(), QStringList({ QStringLiteral("m"), QStringLiteral("M") }));
    QCOMPARE(manager->getSorters(QStringLiteral("m")), QStringList(QStringLiteral("chats_count")));
}

void tst_SortersManager::removeSorterKeepsDirectionsDefaultAndCurrentChain()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("a"), { QStringLiteral("name") });
    manager->addSorter(QStringLiteral("m"), { QStringLiteral("chats_count") });
    manager->setSorterAscending(QStringLiteral("m"), { QStringLiteral("t") });
    manager->setCurrentSorter(QStringLiteral("m"));
    manager->removeSorter(QStringLiteral("m"));
    manager->removeSorter(QStringLiteral("never added"));

    QCOMPARE(manager->getSorters(), QStringList(QStringLiteral("a")));
    QCOMPARE(manager->getSorters(QStringLiteral("m")), QStringList());
    QCOMPARE(manager->getSortersAscending(QStringLiteral("m")), QStringList(QStringLiteral("t")));
    QCOMPARE(manager->getDefault(), QStringLiteral("m"));

    const VeskBuddy few = contactWithChats(QStringLiteral("A"), VeskStandIn::makeIntArg(1));
    const VeskBuddy many = contactWithChats(QStringLiteral("B"), VeskStandIn::makeIntArg(9));
    // Still by chats: the built-in order would put A first.
    QCOMPARE(answers({ { few, many } }), QStringLiteral("tf"));
}

void tst_SortersManager::removedDefaultMethodFallsBackToTheBuiltInOrder()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"), { QStringLiteral("chats_count") });
    manager->setDefault(QStringLiteral("m"));
    manager->removeSorter(QStringLiteral("m"));
    manager = restart();
    QCOMPARE(manager->getDefault(), QStringLiteral("m"));
    manager->setCurrentSorter(QString());

    const VeskBuddy few = contactWithChats(QStringLiteral("A"), VeskStandIn::makeIntArg(1));
    const VeskBuddy many = contactWithChats(QStringLiteral("B"), VeskStandIn::makeIntArg(9));
    QCOMPARE(answers({ { few, many } }), QStringLiteral("ft"));
}

void tst_SortersManager::currentMethodUnderTheDefaultFilterBecomesTheDefault()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->setDefault(QStringLiteral("old"));
    manager->setCurrentSorter(QStringLiteral("m"));
    QCOMPARE(
        VeskRosterFiltersManager::getInstance()->getCurrentFilterName(), QStringLiteral("default"));
    QCOMPARE(manager->getDefault(), QStringLiteral("m"));
    QCOMPARE(storedText(QStringLiteral("default_sorter")), QStringLiteral("m"));
}

void tst_SortersManager::currentMethodUnderAUserStackGoesToTheStack()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->setDefault(QStringLiteral("old"));
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *work
        = filters->addStackFilter(QStringLiteral("work"), VeskRosterFilter::RosterFilterAnd);
    filters->setCurrentFilter(QStringLiteral("work"));

    manager->setCurrentSorter(QStringLiteral("m"));
    QCOMPARE(work->getSorter(), QStringLiteral("m"));
    QCOMPARE(storedText(QStringLiteral("default_sorter")), QStringLiteral("old"));
}

void tst_SortersManager::emptyNameUnderAUserStackGivesItTheDefaultMethod()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("d"), { QStringLiteral("chats_count") });
    manager->setDefault(QStringLiteral("d"));
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *work
        = filters->addStackFilter(QStringLiteral("work"), VeskRosterFilter::RosterFilterAnd);
    filters->setCurrentFilter(QStringLiteral("work"));

    manager->setCurrentSorter(QString());
    QCOMPARE(work->getSorter(), QStringLiteral("d"));
    const VeskBuddy few = contactWithChats(QStringLiteral("A"), VeskStandIn::makeIntArg(1));
    const VeskBuddy many = contactWithChats(QStringLiteral("B"), VeskStandIn::makeIntArg(9));
    QCOMPARE(answers({ { few, many } }), QStringLiteral("tf"));
}

void tst_SortersManager::chainOfZerosAnswersFalseBothWays()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"),
        { QStringLiteral("presence_priority"), QStringLiteral("chats_count") });
    manager->setCurrentSorter(QStringLiteral("m"));
    const VeskBuddy amy = contact({ QStringLiteral("Amy"), 5, 3 });
    const VeskBuddy zed = contact({ QStringLiteral("Zed"), 0, 3, 7 });
    QCOMPARE(answers({ { amy, zed } }), QStringLiteral("ff"));
}

void tst_SortersManager::descendingNameNeverOrdersPositionedGroups()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"), { QStringLiteral("name") });
    manager->setSorterAscending(QStringLiteral("m"), { QStringLiteral("f") });
    manager->setCurrentSorter(QStringLiteral("m"));
    const VeskBuddy third = VeskStandIn::addGroup(QStringLiteral("A"), 3);
    const VeskBuddy fifth = VeskStandIn::addGroup(QStringLiteral("B"), 5);
    const VeskBuddy work = VeskStandIn::addGroup(QStringLiteral("Work"), 0);
    const VeskBuddy family = VeskStandIn::addGroup(QStringLiteral("family"), 0);
    // Groups at 0 are still ordered by name, in reverse.
    QCOMPARE(answers({ { third, fifth }, { family, work } }), QStringLiteral("ff tf"));
}

void tst_SortersManager::unknownIdIsSkippedWithItsFlag()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"),
        { QStringLiteral("bogus"), QStringLiteral("chats_count"), QStringLiteral("Name"),
            QStringLiteral("name") });
    manager->setSorterAscending(QStringLiteral("m"),
        { QStringLiteral("t"), QStringLiteral("f"), QStringLiteral("f"), QStringLiteral("t") });
    manager->setCurrentSorter(QStringLiteral("m"));

    const VeskBuddy few = contactWithChats(QStringLiteral("Zed"), VeskStandIn::makeIntArg(1));
    const VeskBuddy many = contactWithChats(QStringLiteral("Amy"), VeskStandIn::makeIntArg(9));
    const VeskBuddy alice = contactWithChats(QStringLiteral("Alice"), VeskStandIn::makeIntArg(4));
    const VeskBuddy bob = contactWithChats(QStringLiteral("bob"), VeskStandIn::makeIntArg(4));
    // Chats descending ("f"), then names ascending ("t").
    QCOMPARE(answers({ { many, few }, { bob, alice } }), QStringLiteral("tf tf"));
}

void tst_SortersManager::positionsWithoutAFlagAreAscending()
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(
        QStringLiteral("m"), { QStringLiteral("chats_count"), QStringLiteral("name") });
    manager->setSorterAscending(QStringLiteral("m"), { QStringLiteral("f") });
    manager->setCurrentSorter(QStringLiteral("m"));

    const VeskBuddy few = contactWithChats(QStringLiteral("Zed"), VeskStandIn::makeIntArg(1));
    const VeskBuddy many = contactWithChats(QStringLiteral("Amy"), VeskStandIn::makeIntArg(9));
    const VeskBuddy alice = contact({ QStringLiteral("Alice") });
    const VeskBuddy bob = contact({ QStringLiteral("bob") });
    QCOMPARE(answers({ { many, few }, { bob, alice } }), QStringLiteral("tf tf"));

    manager->addSorter(QStringLiteral("never given flags"), { QStringLiteral("chats_count") });
    manager->setCurrentSorter(QStringLiteral("never given flags"));
    QCOMPARE(answers({ { few, many } }), QStringLiteral("tf"));
}

void tst_SortersManager::hostOrderFromLessThan_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("expected");
    // Ties keep the order of addition; the name method alone orders groups.
    QTest::newRow("by name: A to Z, groups by rising position") << QStringLiteral(
        "name") << QStringLiteral("[family] [Work] [g2] [g5] [g7] amy Bea bob Cy eve joe Max zoe");
    QTest::newRow("by chats count: most chats first")
        << QStringLiteral("chats_count")
        << QStringLiteral("[g7] [Work] [g2] [family] [g5] eve Max bob Cy amy Bea joe zoe");
    QTest::newRow("by presence priority: highest first")
        << QStringLiteral("presence_priority")
        << QStringLiteral("[g7] [Work] [g2] [family] [g5] joe Bea Cy amy zoe bob eve Max");
    QTest::newRow("by presence: flag 5 last, higher subscription first")
        << QStringLiteral("presence")
        << QStringLiteral("[g7] [Work] [g2] [family] [g5] joe eve Max zoe bob Cy amy Bea");
}

void tst_SortersManager::hostOrderFromLessThan()
{
    QFETCH(QString, method);
    QFETCH(QString, expected);
    const auto add = [](const char *name, int flag, int priority, int chats, int subscription) {
        VeskStandIn::ContactInfo i = info({ QLatin1String(name), flag, priority, subscription });
        i.attributes.insert(QStringLiteral("chats_count"), VeskStandIn::makeIntArg(chats));
        return VeskStandIn::addContact(i);
    };
    const auto group = [](const char *name, int pos) {
        return VeskStandIn::addGroup(QLatin1String(name), pos);
    };
    // A view orders groups among groups and contacts among contacts.
    QList<VeskBuddy> groups { group("g7", 7), group("Work", 0), group("g2", 2), group("family", 0),
        group("g5", 5) };
    QList<VeskBuddy> contacts { add("eve", 0, 1, 9, 0), add("Max", 0, 0, 8, 0),
        add("amy", 5, 4, 2, 0), add("zoe", 0, 3, 0, 0), add("Bea", 5, 6, 1, 0),
        add("bob", 0, 2, 5, 0), add("Cy", 0, 5, 3, -1), add("joe", 0, 7, 1, 1) };

    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(method, { method });
    manager->setSorterAscending(method, { QStringLiteral("t") });
    manager->setCurrentSorter(method);
    const auto hostOrder = [manager](const VeskBuddy &x, const VeskBuddy &y) {
        return manager->lessThan(y, x);
    };
    std::stable_sort(groups.begin(), groups.end(), hostOrder);
    std::stable_sort(contacts.begin(), contacts.end(), hostOrder);

    QStringList order;
    for (const VeskBuddy &buddy : qAsConst(groups))
        order << QLatin1Char('[') + buddy.getDisplay() + QLatin1Char(']');
    for (const VeskBuddy &buddy : qAsConst(contacts))
        order << buddy.getDisplay();
    QCOMPARE(order.join(QLatin1Char(' ')), expected);
}

QTEST_GUILESS_MAIN(tst_SortersManager)
#include "tst_sortersmanager.moc"
