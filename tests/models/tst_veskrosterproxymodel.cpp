#include "veskfiltertestenv.h"
#include "veskfiltertree.h"
#include "veskrostershown.h"
#include "veskseedrows.h"

#include <rosterfile.h>
#include <veskrosterproxymodel.h>

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QtTest>

#include <memory>

namespace {

using VeskRosterShown::reference;
using VeskRosterShown::shown;
const int buddyRole = VeskRosterProxyModel::BuddyRole;

QStandardItem *itemFor(const VeskBuddy &buddy)
{
    auto *item = new QStandardItem(buddy.getDisplay());
    item->setData(QVariant::fromValue(buddy), buddyRole);
    return item;
}

// The stand-in roster as a client's tree model: one row per group name, its
// members under it, entries without a known group at the top.
std::unique_ptr<QStandardItemModel> rosterModel()
{
    auto model = std::make_unique<QStandardItemModel>();
    QHash<QString, QStandardItem *> groups;
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    for (const VeskBuddy &buddy : entries) {
        if (buddy.getType() == VeskBuddy::TypeGroup && !groups.contains(buddy.getDisplay())) {
            groups.insert(buddy.getDisplay(), itemFor(buddy));
            model->appendRow(groups.value(buddy.getDisplay()));
        }
    }
    for (const VeskBuddy &buddy : entries) {
        VeskBuddy group;
        if (buddy.getType() == VeskBuddy::TypeContact)
            group = VeskBuddyContact(buddy).getParent();
        else if (buddy.getType() == VeskBuddy::TypeTemporary)
            group = VeskBuddyTemporary(buddy).getGroup();
        else
            continue;
        QStandardItem *parent = group.isValid() ? groups.value(group.getDisplay()) : nullptr;
        (parent ? parent : model->invisibleRootItem())->appendRow(itemFor(buddy));
    }
    return model;
}

void configureRandomly(VeskRosterFilter *leaf, QRandomGenerator &random)
{
    static const QStringList texts
        = { QString(), QStringLiteral("a"), QStringLiteral("an"), QStringLiteral("Work"),
              QStringLiteral("online"), QStringLiteral("e"), QStringLiteral("Anna Smith") };
    QList<VeskField> fields = leaf->getConfiguration();
    for (VeskField &field : fields) {
        const QStringList ids = field.getComboBoxIds();
        if (field.getKind() == VeskField::ComboBox && !ids.isEmpty())
            field.setSelectedId(ids.at(random.bounded(ids.size())));
        else if (field.getKind() == VeskField::LineEdit)
            field.setText(texts.at(random.bounded(texts.size())));
    }
    leaf->setConfiguration(fields);
}

VeskRosterFilter *randomLeaf(QRandomGenerator &random)
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    const QStringList kinds = manager->getAvailableFilters();
    VeskRosterFilter *leaf = manager->createFilter(
        kinds.at(random.bounded(kinds.size())), VeskRosterFilter::RosterFilterDefault);
    configureRandomly(leaf, random);
    return leaf;
}

VeskRosterFilter::RosterFilterType randomType(QRandomGenerator &random)
{
    return random.bounded(2) ? VeskRosterFilter::RosterFilterAnd : VeskRosterFilter::RosterFilterOr;
}

void fillRandomly(VeskRosterFiltersStack *stack, QRandomGenerator &random, int depth)
{
    const int children = 1 + random.bounded(3);
    for (int i = 0; i < children; ++i) {
        if (depth < 2 && random.bounded(4) == 0) {
            VeskRosterFiltersStack *nested = VeskFilterTree::nested(randomType(random), {});
            fillRandomly(nested, random, depth + 1);
            stack->appendFilter(nested);
        } else {
            stack->appendFilter(randomLeaf(random));
        }
    }
}

QString storeRandomMethod(QRandomGenerator &random, const QString &name)
{
    QStringList ids = { QStringLiteral("name"), QStringLiteral("presence"),
        QStringLiteral("presence_priority"), QStringLiteral("chats_count") };
    std::shuffle(ids.begin(), ids.end(), random);
    ids = ids.mid(0, 1 + random.bounded(3));
    QStringList flags;
    for (int i = 0; i < ids.size(); ++i)
        flags.append(random.bounded(2) ? QStringLiteral("t") : QStringLiteral("f"));
    VeskRosterSortersManager::getInstance()->addSorter(name, ids);
    VeskRosterSortersManager::getInstance()->setSorterAscending(name, flags);
    return name;
}

VeskRosterFilter *firstLeaf(VeskRosterFilter *filter)
{
    auto *stack = dynamic_cast<VeskRosterFiltersStack *>(filter);
    if (!stack || filter->getType() == VeskRosterFilter::RosterFilterLeaf)
        return filter;
    return firstLeaf(stack->getFilters().first());
}

QModelIndex find(const QAbstractItemModel &model, const QString &name)
{
    const QModelIndexList found = model.match(
        model.index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchExactly | Qt::MatchRecursive);
    return found.value(0);
}

} // namespace

class tst_VeskRosterProxyModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matchesTheLibrary_data();
    void matchesTheLibrary();
    void presenceChangeReplacesOneRow_data();
    void presenceChangeReplacesOneRow();
    void changedRowKeepsItsPlaceAmongTies();
};

void tst_VeskRosterProxyModel::matchesTheLibrary_data()
{
    addSeedRows(40);
}

// Generated rosters, random filter trees and methods: the proxy shows what
// the library's filter and lessThan give, after every kind of change.
void tst_VeskRosterProxyModel::matchesTheLibrary()
{
    QFETCH(quint32, seed);
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::generate(150 + int(seed) * 5, seed), &error));
    QRandomGenerator random(seed);
    const auto model = rosterModel();
    VeskRosterProxyModel proxy;
    proxy.setSourceModel(model.get());
    QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(shown(proxy), reference());

    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *stack
        = manager->addStackFilter(QStringLiteral("p"), randomType(random));
    fillRandomly(stack, random, 0);
    storeRandomMethod(random, QStringLiteral("m1"));
    stack->setSorter(QStringLiteral("m1"));
    proxy.setCurrentFilter(QStringLiteral("p"));
    QCOMPARE(shown(proxy), reference());

    configureRandomly(firstLeaf(stack), random);
    proxy.refresh();
    QCOMPARE(shown(proxy), reference());

    proxy.setCurrentSorter(storeRandomMethod(random, QStringLiteral("m2")));
    QCOMPARE(shown(proxy), reference());

    proxy.setCurrentFilter(QStringLiteral("default"));
    QCOMPARE(shown(proxy), reference());
}

void tst_VeskRosterProxyModel::presenceChangeReplacesOneRow_data()
{
    QTest::addColumn<bool>("hideOffline");
    QTest::addColumn<QStringList>("changes"); // "name=presence", applied in turn
    QTest::newRow("a contact goes offline and moves down")
        << false << QStringList { QStringLiteral("Alice Martin=offline") };
    QTest::newRow("a contact comes online and moves up")
        << false << QStringList { QStringLiteral("Ivan=online") };
    QTest::newRow("its last shown member going offline hides the group, one coming back shows it")
        << true
        << QStringList { QStringLiteral("spammer42=offline"),
               QStringLiteral("Ex-colleague=online") };
}

void tst_VeskRosterProxyModel::presenceChangeReplacesOneRow()
{
    QFETCH(bool, hideOffline);
    QFETCH(QStringList, changes);
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::sampleRoster(), &error));
    if (hideOffline) {
        VeskRosterFiltersStack *stack = VeskRosterFiltersManager::getInstance()->addStackFilter(
            QStringLiteral("online"), VeskRosterFilter::RosterFilterAnd);
        stack->appendFilter(VeskFilterTree::presence(QStringLiteral("offline"), false));
        VeskRosterFiltersManager::getInstance()->setCurrentFilter(QStringLiteral("online"));
    }
    const auto model = rosterModel();
    VeskRosterProxyModel proxy;
    proxy.setSourceModel(model.get());
    // Re-placing one row is one move, insertion or removal, never a layout
    // change of the whole view.
    QSignalSpy layouts(&proxy, &QAbstractItemModel::layoutChanged);
    QSignalSpy resets(&proxy, &QAbstractItemModel::modelReset);
    QSignalSpy moves(&proxy, &QAbstractItemModel::rowsMoved);
    QSignalSpy insertions(&proxy, &QAbstractItemModel::rowsInserted);
    QSignalSpy removals(&proxy, &QAbstractItemModel::rowsRemoved);
    QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(shown(proxy), reference());

    for (const QString &change : qAsConst(changes)) {
        const QString name = change.section(QLatin1Char('='), 0, 0);
        const QString presence = change.section(QLatin1Char('='), 1);
        const bool offline = presence == QLatin1String("offline");
        QStandardItem *item = model->itemFromIndex(find(*model, name));
        QVERIFY(item);
        VeskStandIn::setPresence(item->data(buddyRole).value<VeskBuddy>(),
            VeskStandIn::makePresence(
                presence, presence, QString(), offline ? 5 : 0, offline ? 0 : 50));

        const QString before = shown(proxy);
        QList<QPersistentModelIndex> others;
        QStringList otherNames;
        for (const QString &other : before.split(QRegularExpression(QStringLiteral("[:,|] ")))) {
            const QModelIndex index = find(proxy, other);
            if (index.isValid() && other != name) {
                others.append(index);
                otherNames.append(other);
            }
        }
        for (QSignalSpy *spy : { &layouts, &resets, &moves, &insertions, &removals })
            spy->clear();
        Q_EMIT model->dataChanged(item->index(), item->index(), { buddyRole });
        QCOMPARE(shown(proxy), reference());
        QVERIFY(layouts.isEmpty() && resets.isEmpty());
        QCOMPARE(moves.size() + insertions.size() + removals.size(), 1);
        for (int i = 0; i < others.size(); ++i) {
            if (others.at(i).isValid()) // a group that went away with its last member
                QCOMPARE(others.at(i).data().toString(), otherNames.at(i));
        }
    }
}

// Entries the sorting method does not tell apart keep the source order, also
// when one of them changed and was placed again.
void tst_VeskRosterProxyModel::changedRowKeepsItsPlaceAmongTies()
{
    VeskFilterTestEnv env;
    VeskAccountConnection *account
        = VeskStandIn::addAccount(QStringLiteral("me@example.org"), QStringLiteral("jabber"));
    const VeskBuddy group = VeskStandIn::addGroup(QStringLiteral("Friends"), 0);
    const VeskPresence online
        = VeskStandIn::makePresence(QStringLiteral("online"), QString(), QString(), 0, 50);
    QList<quintptr> keys;
    for (int i = 0; i < 3; ++i) {
        VeskStandIn::ContactInfo info;
        info.display = QStringLiteral("Sam");
        info.group = group;
        info.account = account;
        info.presence = online;
        keys.append(VeskStandIn::entryKey(VeskStandIn::addContact(info)));
    }
    const auto model = rosterModel();
    VeskRosterProxyModel proxy;
    proxy.setSourceModel(model.get());
    const QModelIndex friends = proxy.index(0, 0);
    auto order = [&] {
        QList<quintptr> shownKeys;
        for (int row = 0; row < proxy.rowCount(friends); ++row)
            shownKeys.append(
                VeskStandIn::entryKey(proxy.rosterEntry(proxy.index(row, 0, friends))));
        return shownKeys;
    };
    QCOMPARE(order(), keys);
    QStandardItem *first = model->item(0)->child(0);
    const VeskBuddy sam = first->data(buddyRole).value<VeskBuddy>();
    VeskStandIn::setPresence(
        sam, VeskStandIn::makePresence(QStringLiteral("offline"), QString(), QString(), 5, 0));
    Q_EMIT model->dataChanged(first->index(), first->index());
    QCOMPARE(order(), (QList<quintptr> { keys.at(1), keys.at(2), keys.at(0) }));
    VeskStandIn::setPresence(sam, online);
    Q_EMIT model->dataChanged(first->index(), first->index());
    QCOMPARE(order(), keys);
}

QTEST_GUILESS_MAIN(tst_VeskRosterProxyModel)
#include "tst_veskrosterproxymodel.moc"
