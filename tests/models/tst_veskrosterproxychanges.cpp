// Random sequences of what happens to a roster window: presences, status
// texts and names change, contacts come and go, the user types, deletes and
// clears a search, switches its scope, the filter and the sorting method.
// After every step the proxy shows what the library answers from scratch,
// rows the view holds on to still name their entries, and a changed entry
// is re-placed with one signal, never a layout change.

#include "veskfiltertestenv.h"
#include "veskrostershown.h"
#include "veskseedrows.h"

#include <rosterfile.h>
#include <rostertreemodel.h>
#include <veskrosterproxymodel.h>

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

using VeskRosterShown::reference;
using VeskRosterShown::shown;

namespace {

VeskRosterFilter *leaf(const QString &kind, const QString &choice, const QString &isOrNot)
{
    VeskRosterFilter *filter = VeskRosterFiltersManager::getInstance()->createFilter(
        kind, VeskRosterFilter::RosterFilterLeaf);
    QList<VeskField> fields = filter->getConfiguration();
    for (VeskField &field : fields) {
        if (field.getId() == QLatin1String("is_or_not"))
            field.setSelectedId(isOrNot);
        else if (field.getKind() == VeskField::ComboBox)
            field.setSelectedId(choice);
        else
            field.setText(choice);
    }
    filter->setConfiguration(fields);
    return filter;
}

VeskAccountConnection *accountOf(const VeskBuddy &member)
{
    return member.getType() == VeskBuddy::TypeContact ? VeskBuddyContact(member).getAccount()
                                                      : VeskBuddyTemporary(member).getAccount();
}

// The members the proxy shows, by their stand-in keys.
QSet<quintptr> shownKeys(const VeskRosterProxyModel &proxy, const QModelIndex &parent = {})
{
    QSet<quintptr> keys;
    for (int row = 0; row < proxy.rowCount(parent); ++row) {
        const QModelIndex index = proxy.index(row, 0, parent);
        const VeskBuddy entry = proxy.rosterEntry(index);
        if (entry.getType() == VeskBuddy::TypeGroup)
            keys.unite(shownKeys(proxy, index));
        else
            keys.insert(VeskStandIn::entryKey(entry));
    }
    return keys;
}

struct Held
{
    QPersistentModelIndex index;
    quintptr key;
    bool member;
    QString name;
};

} // namespace

class tst_VeskRosterProxyChanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomSessions_data();
    void randomSessions();
};

void tst_VeskRosterProxyChanges::randomSessions_data()
{
    addSeedRows(12);
}

void tst_VeskRosterProxyChanges::randomSessions()
{
    QFETCH(quint32, seed);
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::generate(250, seed), &error));
    QRandomGenerator random(seed);
    auto pick = [&random](const auto &list) {
        return list.at(random.bounded(int(list.size())));
    };

    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    filters->addStackFilter(QStringLiteral("reachable"), VeskRosterFilter::RosterFilterAnd)
        ->appendFilter(
            leaf(QStringLiteral("presence"), QStringLiteral("offline"), QStringLiteral("is not")));
    VeskRosterFiltersStack *either
        = filters->addStackFilter(QStringLiteral("either"), VeskRosterFilter::RosterFilterOr);
    either->appendFilter(
        leaf(QStringLiteral("display"), QStringLiteral("a"), QStringLiteral("contains")));
    either->appendFilter(
        leaf(QStringLiteral("presence"), QStringLiteral("away"), QStringLiteral("is")));
    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    sorters->addSorter(
        QStringLiteral("busy"), { QStringLiteral("chats_count"), QStringLiteral("name") });
    sorters->addSorter(QStringLiteral("names"), { QStringLiteral("name") });
    sorters->setSorterAscending(QStringLiteral("names"), { QStringLiteral("f") });
    const QStringList filterIds
        = { QStringLiteral("default"), QStringLiteral("reachable"), QStringLiteral("either") };
    const QStringList sorterNames = { QStringLiteral("busy"), QStringLiteral("names") };

    VeskRosterTreeModel model;
    model.setRoster(VeskStandIn::entries());
    VeskRosterProxyModel proxy;
    proxy.setSourceModel(&model);
    QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy layouts(&proxy, &QAbstractItemModel::layoutChanged);
    QSignalSpy resets(&proxy, &QAbstractItemModel::modelReset);
    QSignalSpy moves(&proxy, &QAbstractItemModel::rowsMoved);
    QSignalSpy insertions(&proxy, &QAbstractItemModel::rowsInserted);
    QSignalSpy removals(&proxy, &QAbstractItemModel::rowsRemoved);

    const QStringList words = { QStringLiteral("a"), QStringLiteral("é"), QStringLiteral("lunch"),
        QStringLiteral("Ünal"), QStringLiteral("x"), QStringLiteral("ga"), QStringLiteral("O") };
    const QStringList presences = { QStringLiteral("online"), QStringLiteral("away"),
        QStringLiteral("offline"), QStringLiteral("xa") };
    QList<VeskBuddy> groups;
    for (const VeskBuddy &entry : VeskStandIn::entries()) {
        if (entry.getType() == VeskBuddy::TypeGroup)
            groups.append(entry);
    }
    QString text;
    auto scope = VeskRosterQuickSearch::CurrentFilter;
    int added = 0;

    for (int step = 0; step < 70; ++step) {
        const QVector<VeskBuddy> members = model.members();
        // A few shown rows the view holds on to across the step.
        QList<Held> held;
        for (int i = 0; i < 3 && proxy.rowCount() > 0; ++i) {
            QModelIndex index = proxy.index(random.bounded(proxy.rowCount()), 0);
            if (proxy.rowCount(index) > 0)
                index = proxy.index(random.bounded(proxy.rowCount(index)), 0, index);
            const VeskBuddy entry = proxy.rosterEntry(index);
            held.append({ index, VeskStandIn::entryKey(entry),
                entry.getType() != VeskBuddy::TypeGroup, index.data().toString() });
        }
        for (QSignalSpy *spy : { &layouts, &resets, &moves, &insertions, &removals })
            spy->clear();

        const int what = random.bounded(9);
        const int member = members.isEmpty() ? -1 : random.bounded(int(members.size()));
        QString did;
        quintptr changed = 0;
        if (what <= 1 && member >= 0) {
            changed = VeskStandIn::entryKey(members.at(member));
            const QString presence = pick(presences);
            const bool offline = presence == QLatin1String("offline");
            VeskStandIn::setPresence(members.at(member),
                VeskStandIn::makePresence(presence, presence,
                    random.bounded(2) ? pick(words) : QString(), offline ? 5 : 0,
                    offline ? 0 : 50));
            model.memberChanged(member);
            did = QStringLiteral("presence %1").arg(presence);
        } else if (what == 2 && member >= 0) {
            changed = VeskStandIn::entryKey(members.at(member));
            // Half of the new names are taken already: ties keep the source order.
            VeskStandIn::setDisplay(members.at(member),
                pick(words) + (random.bounded(2) ? QString::number(step) : QString()));
            model.entryChanged(members.at(member));
            did = QStringLiteral("rename");
        } else if (what == 3 && member >= 0) {
            VeskStandIn::ContactInfo info;
            info.display = QStringLiteral("New %1 %2").arg(pick(words)).arg(++added);
            info.group = random.bounded(4) ? pick(groups) : VeskBuddy();
            info.account = accountOf(members.at(member));
            info.presence = VeskStandIn::makePresence(pick(presences));
            model.insertEntry(VeskStandIn::addContact(info));
            did = QStringLiteral("add");
        } else if (what == 4 && member >= 0) {
            const VeskBuddy gone = members.at(member);
            model.removeEntry(gone);
            VeskStandIn::removeEntry(gone);
            did = QStringLiteral("remove");
        } else if (what == 5) {
            const int how = random.bounded(4);
            text = how == 0 ? text + pick(words).left(1)
                : how == 1  ? text.left(qMax(0, int(text.size()) - 1))
                : how == 2  ? QString()
                            : pick(words);
            proxy.setQuickSearch(text);
            did = QStringLiteral("search \"%1\"").arg(text);
        } else if (what == 6) {
            scope = scope == VeskRosterQuickSearch::CurrentFilter
                ? VeskRosterQuickSearch::EveryEntry
                : VeskRosterQuickSearch::CurrentFilter;
            proxy.setQuickSearchScope(scope);
            did = QStringLiteral("scope");
        } else if (what == 7) {
            proxy.setCurrentFilter(pick(filterIds));
            did = QStringLiteral("filter");
        } else {
            proxy.setCurrentSorter(pick(sorterNames));
            did = QStringLiteral("sorter");
        }
        const QString context = QStringLiteral("step %1: %2").arg(step).arg(did);

        const VeskRosterQuickSearch search(text, scope);
        const QString expected = reference(&search);
        if (shown(proxy) != expected)
            qWarning().noquote() << "shown:   " << shown(proxy) << "\nexpected:" << expected;
        QVERIFY2(shown(proxy) == expected, qPrintable(context));
        if (changed) {
            QVERIFY2(layouts.isEmpty() && resets.isEmpty(), qPrintable(context));
            QVERIFY2(moves.size() + insertions.size() + removals.size() <= 1, qPrintable(context));
        }
        const QSet<quintptr> now = shownKeys(proxy);
        for (const Held &row : qAsConst(held)) {
            if (row.index.isValid()) {
                if (row.key != changed)
                    QVERIFY2(row.index.data().toString() == row.name, qPrintable(context));
                QVERIFY2(VeskStandIn::entryKey(proxy.rosterEntry(row.index)) == row.key,
                    qPrintable(context));
            } else if (row.member) {
                QVERIFY2(!now.contains(row.key), qPrintable(context));
            }
        }
    }
}

QTEST_MAIN(tst_VeskRosterProxyChanges)
#include "tst_veskrosterproxychanges.moc"
