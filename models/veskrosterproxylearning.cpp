#include "veskrosterproxymodel_p.h"

#include <algorithm>

// What the proxy knows of the source: learning it, searching it, and the
// rows shown.

Level *VeskRosterProxyModel::Private::levelFor(const QModelIndex &sourceParent) const
{
    if (!sourceParent.isValid())
        return root();
    if (sourceParent.column() != 0)
        return nullptr;
    const Level *above = levelFor(sourceParent.parent());
    return above ? above->children.value(sourceParent.row(), nullptr) : nullptr;
}

Level *VeskRosterProxyModel::Private::childLevel(const QModelIndex &proxyParent) const
{
    const auto *level = static_cast<const Level *>(proxyParent.internalPointer());
    if (!level || proxyParent.column() != 0 || proxyParent.row() >= level->shown.size())
        return nullptr;
    return level->children.at(level->shown.at(proxyParent.row()));
}

QModelIndex VeskRosterProxyModel::Private::containerIndex(const Level *level) const
{
    if (!level || !level->parent)
        return QModelIndex();
    const int row = level->parent->proxyRow.at(level->rowInParent);
    return row < 0 ? QModelIndex() : q->createIndex(row, 0, level->parent);
}

VeskBuddy VeskRosterProxyModel::Private::entryAt(const Level &level, int row) const
{
    return level.sourceIndexes.at(row).data(role).value<VeskBuddy>();
}

void VeskRosterProxyModel::Private::learnAll(bool keepIndexes)
{
    // Learning the same source again gives the same levels in the same
    // order: their texts, read for the search, stay with them.
    std::vector<VeskRosterSearchIndex> kept;
    if (keepIndexes) {
        for (const auto &level : levels)
            kept.push_back(std::move(level->index));
    }
    levels.clear();
    if (!q->sourceModel())
        return;
    learn(nullptr, QModelIndex(), -1);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        Level &level = *levels[i];
        // A slice read so far is kept too; the rest is read on demand.
        if (i < kept.size() && kept[i].size() <= level.entries.size())
            level.index = std::move(kept[i]);
        level.matches.fill(1, level.entries.size());
        if (!search.isEmpty())
            searchLevel(level, search, false, false);
    }
    placeAll();
}

Level *VeskRosterProxyModel::Private::learn(
    Level *parent, const QModelIndex &sourceParent, int rowInParent)
{
    const QAbstractItemModel *source = q->sourceModel();
    levels.push_back(std::make_unique<Level>());
    Level &level = *levels.back();
    level.parent = parent;
    level.rowInParent = rowInParent;
    level.sourceParent = sourceParent;
    level.columns = source->columnCount(sourceParent);
    const int rows = source->rowCount(sourceParent);
    level.entries.reserve(rows);
    level.sourceIndexes.reserve(rows);
    level.member.fill(0, rows);
    level.filterPasses.fill(0, rows);
    level.proxyRow.fill(-1, rows);
    level.children.fill(nullptr, rows);
    QVector<VeskBuddy> members;
    QVector<int> memberRows;
    QVector<int> containerRows;
    for (int row = 0; row < rows; ++row) {
        level.sourceIndexes.append(source->index(row, 0, sourceParent));
        level.entries.append(level.sourceIndexes.last().data(role).value<VeskBuddy>());
        if (isMember(level.entries.last())) {
            level.member[row] = 1;
            members.append(level.entries.last());
            memberRows.append(row);
        } else {
            containerRows.append(row);
        }
    }
    // The whole level in one call of the library. The members that the
    // search may show later are put in order now, so that typing never sorts.
    const QVector<int> passing = filters->filterEntries(members);
    for (const int i : passing)
        level.filterPasses[memberRows.at(i)] = 1;
    const bool everyEntry = search.scope() == VeskRosterQuickSearch::EveryEntry;
    QVector<VeskBuddy> ranked;
    QVector<int> rankedRows;
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
    // Containers are few and keep to lessThan(): with positions, groups can
    // tie in ways that a bulk sort of a different list would order otherwise.
    std::stable_sort(containerRows.begin(), containerRows.end(),
        [&](int x, int y) { return sorters->lessThan(level.entries.at(y), level.entries.at(x)); });
    level.order = containerRows;
    level.containers = int(containerRows.size());
    const QVector<int> order = viewOrder(ranked);
    for (const int i : order)
        level.order.append(rankedRows.at(i));
    // In source order, so that the levels come in the same order whatever
    // the sorting method: what refresh() keeps of them goes by that order.
    std::sort(containerRows.begin(), containerRows.end());
    for (const int row : qAsConst(containerRows)) {
        const QModelIndex &container = level.sourceIndexes.at(row);
        if (source->hasChildren(container))
            level.children[row] = learn(&level, container, row);
    }
    return &level;
}

QVector<int> VeskRosterProxyModel::Private::viewOrder(const QVector<VeskBuddy> &entries) const
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

// Where member row `row` goes among the members of `order` (which does not
// hold it): after those the sorting method puts before it and after those it
// does not tell apart that come first in the source. One comparison per step
// of the search: ties are rare, and are walked back one by one.
int VeskRosterProxyModel::Private::placeOf(
    const Level &level, const QVector<int> &order, int row) const
{
    const VeskBuddy &entry = level.entries.at(row);
    const auto first = order.cbegin() + level.containers;
    auto at = std::partition_point(first, order.cend(),
        [&](int other) { return !sorters->lessThan(level.entries.at(other), entry); });
    while (at != first && *(at - 1) > row && !sorters->lessThan(entry, level.entries.at(*(at - 1))))
        --at;
    return int(at - order.cbegin());
}

// Reads the level's entries into its index, all of them or, given a slice,
// until the slice has lasted `milliseconds`; true once all are read.
bool VeskRosterProxyModel::Private::ensureIndexed(
    Level &level, const QElapsedTimer *slice, int milliseconds)
{
    const int rows = int(level.entries.size());
    for (int row = level.index.size(); row < rows; ++row) {
        if (slice && row % 256 == 0 && slice->hasExpired(milliseconds))
            return false;
        level.index.append(level.entries.at(row));
    }
    return true;
}

void VeskRosterProxyModel::Private::searchLevel(
    Level &level, const VeskRosterQuickSearch &next, bool narrowing, bool widening)
{
    if (next.isEmpty()) {
        level.matches.fill(1, level.entries.size());
        return;
    }
    ensureIndexed(level);
    QVector<int> asked;
    asked.reserve(level.order.size() - level.containers);
    for (int at = level.containers; at < level.order.size(); ++at) {
        const int row = level.order.at(at);
        const char matched = level.matches.at(row);
        if (narrowing ? matched : widening ? !matched : true) {
            asked.append(row);
            level.matches[row] = 0;
        }
    }
    for (const int row : level.index.matching(next, asked))
        level.matches[row] = 1;
}

bool VeskRosterProxyModel::Private::mayShow(const Level &level, int row) const
{
    return search.scope() == VeskRosterQuickSearch::EveryEntry || level.filterPasses.at(row);
}

bool VeskRosterProxyModel::Private::memberShown(const Level &level, int row) const
{
    if (!level.matches.at(row))
        return false;
    if (search.scope() == VeskRosterQuickSearch::EveryEntry && !search.isEmpty())
        return true;
    return level.filterPasses.at(row);
}

// The rows shown, from the order and the answers; a container's level is
// placed before the container.
void VeskRosterProxyModel::Private::place(Level &level) const
{
    level.shown.clear();
    level.proxyRow.fill(-1, level.entries.size());
    for (int at = 0; at < level.order.size(); ++at) {
        const int row = level.order.at(at);
        const bool shows = at < level.containers
            ? level.children.at(row) && !level.children.at(row)->shown.isEmpty()
            : memberShown(level, row);
        if (shows) {
            level.proxyRow[row] = int(level.shown.size());
            level.shown.append(row);
        }
    }
}

void VeskRosterProxyModel::Private::placeAll()
{
    for (auto level = levels.rbegin(); level != levels.rend(); ++level)
        place(**level);
    markVisible();
}

void VeskRosterProxyModel::Private::markVisible()
{
    for (const auto &level : levels) {
        level->visible = !level->parent
            || (level->parent->visible && level->parent->proxyRow.at(level->rowInParent) >= 0);
    }
}

// A change of many rows at once, as one layout change: the persistent
// indices follow their source rows, or become invalid when those are hidden.
