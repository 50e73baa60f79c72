#include "veskrosterproxymodel.h"

#include <veskrosterfiltersmanager.h>
#include <veskrostersortersmanager.h>

#include <algorithm>

namespace {

const char Unknown = 2;

bool isMember(const VeskBuddy &buddy)
{
    const int type = buddy.getType();
    return type == VeskBuddy::TypeContact || type == VeskBuddy::TypeTemporary;
}

} // namespace

VeskRosterProxyModel::VeskRosterProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
{
    // A container is accepted through its children: filterAcceptsRow() turns
    // it down and the proxy then looks for a member that passes. Left to the
    // proxy, a member's dataChanged() also shows or hides its container, as
    // long as the changed roles include the filter role: the entry's role.
    setRecursiveFilteringEnabled(true);
    setDynamicSortFilter(true);
    setFilterRole(role);
    setSortRole(role);
    filters = VeskRosterFiltersManager::getInstance();
    sorters = VeskRosterSortersManager::getInstance();
    sort(0, Qt::AscendingOrder);
}

VeskRosterProxyModel::~VeskRosterProxyModel() = default;

int VeskRosterProxyModel::buddyRole() const
{
    return role;
}

void VeskRosterProxyModel::setBuddyRole(int buddyRole)
{
    if (role == buddyRole)
        return;
    role = buddyRole;
    setFilterRole(role);
    setSortRole(role);
    refresh();
}

VeskBuddy VeskRosterProxyModel::rosterEntry(const QModelIndex &index) const
{
    const QModelIndex first = index.sibling(index.row(), 0);
    return first.data(role).value<VeskBuddy>();
}

void VeskRosterProxyModel::setCurrentFilter(const QString &id)
{
    VeskRosterFiltersManager::getInstance()->setCurrentFilter(id);
    refresh();
}

void VeskRosterProxyModel::setCurrentSorter(const QString &name)
{
    VeskRosterSortersManager::getInstance()->setCurrentSorter(name);
    refresh();
}

void VeskRosterProxyModel::setQuickSearch(const QString &text)
{
    if (text == search.text())
        return;
    const VeskRosterQuickSearch next(text, search.scope());
    // Growing: every member shown from now on is shown already. Shrinking:
    // every member shown so far stays shown.
    const bool narrowing = next.narrows(search);
    const bool widening = search.narrows(next);
    for (auto &level : levels)
        searchLevel(level.second, next, narrowing, widening);
    search = next;
    // One layout change rather than a removal or insertion signal per run of
    // rows: a keystroke changes runs all over a large roster, and a view
    // answers each signal with work in proportion to its rows. The order of
    // the rows is known (their ranks), so building the mapping again costs
    // comparisons of ranks only.
    invalidate();
}

void VeskRosterProxyModel::searchLevel(
    Level &level, const VeskRosterQuickSearch &next, bool narrowing, bool widening) const
{
    const int rows = int(level.passes.size());
    if (next.isEmpty()) {
        level.passes = level.filterPasses;
        return;
    }
    const bool everyEntry = next.scope() == VeskRosterQuickSearch::EveryEntry;
    QVector<VeskBuddy> asked;
    QVector<int> askedRows;
    for (int row = 0; row < rows; ++row) {
        const char passes = level.passes.at(row);
        // Rows whose data changed are asked directly when the proxy wants them.
        if (passes == Unknown || level.filterPasses.at(row) == Unknown)
            continue;
        const bool candidate = narrowing ? passes == 1 : widening ? passes == 0 : true;
        if (!candidate || (!everyEntry && level.filterPasses.at(row) != 1)
            || !isMember(level.entries.at(row)))
            continue;
        asked.append(level.entries.at(row));
        askedRows.append(row);
        level.passes[row] = 0;
    }
    const QVector<int> matching = next.matching(asked);
    for (const int i : matching)
        level.passes[askedRows.at(i)] = 1;
}

QString VeskRosterProxyModel::quickSearch() const
{
    return search.text();
}

void VeskRosterProxyModel::setQuickSearchScope(VeskRosterQuickSearch::Scope scope)
{
    if (scope == search.scope())
        return;
    search.setScope(scope);
    // The members in order are those the scope may show: learnt afresh.
    refresh();
}

VeskRosterQuickSearch::Scope VeskRosterProxyModel::quickSearchScope() const
{
    return search.scope();
}

void VeskRosterProxyModel::setSourceModel(QAbstractItemModel *model)
{
    for (const QMetaObject::Connection &connection : qAsConst(sourceConnections))
        disconnect(connection);
    sourceConnections.clear();
    forget();
    // Connected before the base class connects its own handlers, so that a
    // changed row is unknown again before the proxy re-places it.
    if (model) {
        sourceConnections = {
            connect(model, &QAbstractItemModel::dataChanged, this,
                &VeskRosterProxyModel::sourceChanged),
            connect(model, &QAbstractItemModel::rowsInserted, this, &VeskRosterProxyModel::forget),
            connect(model, &QAbstractItemModel::rowsRemoved, this, &VeskRosterProxyModel::forget),
            connect(model, &QAbstractItemModel::rowsMoved, this, &VeskRosterProxyModel::forget),
            connect(model, &QAbstractItemModel::layoutChanged, this, &VeskRosterProxyModel::forget),
            connect(model, &QAbstractItemModel::modelReset, this, &VeskRosterProxyModel::forget),
        };
    }
    QSortFilterProxyModel::setSourceModel(model);
    refresh();
}

void VeskRosterProxyModel::refresh()
{
    filters = VeskRosterFiltersManager::getInstance();
    sorters = VeskRosterSortersManager::getInstance();
    forget();
    // Every level is filtered and put in order once, the sorting through the
    // library's bulk sort; the proxy then compares ranks. invalidate() drops
    // the proxy's mappings, which it builds again from these answers.
    if (sourceModel())
        learn(QModelIndex());
    invalidate();
}

void VeskRosterProxyModel::forget()
{
    levels.clear();
    lastLevel = nullptr;
    lastKey = { 0, -2, -2 };
}

VeskRosterProxyModel::Key VeskRosterProxyModel::keyOf(const QModelIndex &sourceParent)
{
    if (!sourceParent.isValid())
        return { 0, -1, -1 };
    return { sourceParent.internalId(), sourceParent.row(), sourceParent.column() };
}

VeskRosterProxyModel::Level *VeskRosterProxyModel::levelOf(const QModelIndex &sourceParent) const
{
    const Key key = keyOf(sourceParent);
    if (lastLevel && key == lastKey)
        return lastLevel;
    const auto found = levels.find(key);
    if (found == levels.end())
        return nullptr;
    lastKey = key;
    lastLevel = &found->second;
    return lastLevel;
}

void VeskRosterProxyModel::learn(const QModelIndex &sourceParent)
{
    const QAbstractItemModel *source = sourceModel();
    const int rows = source->rowCount(sourceParent);
    Level level;
    level.passes.fill(0, rows);
    level.filterPasses.fill(0, rows);
    level.rank.fill(-1, rows);
    level.entries.reserve(rows);
    // Containers are few and keep to lessThan(): with positions, groups can
    // tie in ways that a bulk sort of a different list would order otherwise.
    QVector<VeskBuddy> members;
    QVector<int> memberRows;
    QVector<int> containerRows;
    for (int row = 0; row < rows; ++row) {
        const VeskBuddy entry = rosterEntry(source->index(row, 0, sourceParent));
        level.entries.append(entry);
        if (isMember(entry)) {
            members.append(entry);
            memberRows.append(row);
        } else {
            containerRows.append(row);
        }
    }
    // The whole level in one call of the library, then the search over what
    // it passed (or over every member). The members that the search may
    // show later are put in order now, so that typing never sorts.
    const bool everyEntry = search.scope() == VeskRosterQuickSearch::EveryEntry;
    QVector<VeskBuddy> ranked;
    QVector<int> rankedRows;
    const QVector<int> passing = filters->filterEntries(members);
    for (const int i : passing)
        level.filterPasses[memberRows.at(i)] = 1;
    if (everyEntry) {
        ranked = members;
        rankedRows = memberRows;
    } else {
        ranked.reserve(passing.size());
        rankedRows.reserve(passing.size());
        for (const int i : passing) {
            ranked.append(members.at(i));
            rankedRows.append(memberRows.at(i));
        }
    }
    if (search.isEmpty()) {
        level.passes = level.filterPasses;
    } else {
        const QVector<int> matching = search.matching(ranked);
        for (const int i : matching)
            level.passes[rankedRows.at(i)] = 1;
    }
    const QVector<int> order = viewOrder(ranked);
    for (int place = 0; place < order.size(); ++place)
        level.rank[rankedRows.at(order.at(place))] = place;
    levels[keyOf(sourceParent)] = std::move(level);
    lastLevel = nullptr;
    for (const int row : qAsConst(containerRows)) {
        const QModelIndex container = source->index(row, 0, sourceParent);
        if (source->hasChildren(container))
            learn(container);
    }
}

QVector<int> VeskRosterProxyModel::viewOrder(const QVector<VeskBuddy> &entries) const
{
    // The bulk sort puts a before b when lessThan(a, b), ties in list order;
    // the view wants x before y when lessThan(y, x), ties in list order too:
    // the reverse, with each run of ties turned back.
    QVector<int> order = sorters->sortedOrder(entries);
    std::reverse(order.begin(), order.end());
    int start = 0;
    for (int i = 1; i <= order.size(); ++i) {
        if (i == order.size()
            || sorters->lessThan(entries.at(order.at(i)), entries.at(order.at(i - 1)))) {
            std::reverse(order.begin() + start, order.begin() + i);
            start = i;
        }
    }
    return order;
}

void VeskRosterProxyModel::sourceChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight)
{
    if (!topLeft.isValid() || topLeft.column() > 0)
        return;
    Level *level = levelOf(topLeft.parent());
    if (!level)
        return;
    for (int row = topLeft.row(); row <= bottomRight.row() && row < level->rank.size(); ++row) {
        level->passes[row] = Unknown;
        level->filterPasses[row] = Unknown;
        level->rank[row] = -1;
    }
}

bool VeskRosterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    if (const Level *level = levelOf(sourceParent)) {
        const char passes = level->passes.value(sourceRow, Unknown);
        if (passes != Unknown)
            return passes;
    }
    const VeskBuddy entry = rosterEntry(sourceModel()->index(sourceRow, 0, sourceParent));
    return isMember(entry) && filters->filter(entry, search);
}

bool VeskRosterProxyModel::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    if (const Level *level = levelOf(left.parent())) {
        const int x = level->rank.value(left.row(), -1);
        const int y = level->rank.value(right.row(), -1);
        if (x >= 0 && y >= 0)
            return x < y;
    }
    const VeskBuddy x = rosterEntry(left);
    const VeskBuddy y = rosterEntry(right);
    const bool xMember = isMember(x);
    if (xMember != isMember(y))
        return !xMember;
    return sorters->lessThan(y, x);
}
