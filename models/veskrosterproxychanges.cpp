#include "veskrosterproxymodel_p.h"

#include <algorithm>

void VeskRosterProxyModel::Private::relayout(const std::function<void()> &change)
{
    Q_EMIT q->layoutAboutToBeChanged();
    const QModelIndexList from = q->persistentIndexList();
    QModelIndexList sources;
    sources.reserve(from.size());
    for (const QModelIndex &index : from)
        sources.append(q->mapToSource(index));
    change();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex &source : qAsConst(sources))
        to.append(q->mapFromSource(source));
    q->changePersistentIndexList(from, to);
    Q_EMIT q->layoutChanged();
}

// The source's rows change: the same, in two halves, with the source's rows
// held in persistent indices of the source across its change.
void VeskRosterProxyModel::Private::beginStructuralChange()
{
    if (structuralChanges++ > 0)
        return;
    Q_EMIT q->layoutAboutToBeChanged();
    changingFrom = q->persistentIndexList();
    changingSources.clear();
    for (const QModelIndex &index : qAsConst(changingFrom))
        changingSources.append(QPersistentModelIndex(q->mapToSource(index)));
}

void VeskRosterProxyModel::Private::endStructuralChange()
{
    if (structuralChanges == 0 || --structuralChanges > 0)
        return;
    learnAll(false);
    QModelIndexList to;
    to.reserve(changingFrom.size());
    for (const QPersistentModelIndex &source : qAsConst(changingSources))
        to.append(q->mapFromSource(source));
    q->changePersistentIndexList(changingFrom, to);
    changingFrom.clear();
    changingSources.clear();
    Q_EMIT q->layoutChanged();
}

void VeskRosterProxyModel::Private::sourceDataChanged(
    const QModelIndex &topLeft, const QModelIndex &bottomRight, const QVector<int> &roles)
{
    if (!topLeft.isValid() || structuralChanges > 0)
        return;
    Level *level = levelFor(topLeft.parent());
    if (!level)
        return;
    const int first = topLeft.row();
    const int last = qMin(bottomRight.row(), int(level->entries.size()) - 1);
    if (topLeft.column() == 0 && (roles.isEmpty() || roles.contains(role))) {
        bool containers = false;
        for (int row = first; row <= last; ++row)
            containers = containers || !level->member.at(row);
        if (containers || last - first >= VeskProxyDetail::rowsReplacedOneByOne) {
            // A group's name or many entries: every level learnt again,
            // the changed rows' texts read again with them.
            for (int row = first; row <= last; ++row)
                level->index.update(row, entryAt(*level, row));
            relayout([this] { learnAll(true); });
            level = levelFor(topLeft.parent());
            if (!level)
                return;
        } else {
            for (int row = first; row <= last; ++row)
                replace(*level, row);
        }
    }
    if (!level->visible)
        return;
    int low = -1;
    int high = -1;
    for (int row = first; row <= last; ++row) {
        const int shown = level->proxyRow.at(row);
        if (shown < 0)
            continue;
        low = low < 0 ? shown : qMin(low, shown);
        high = qMax(high, shown);
    }
    if (low >= 0) {
        Q_EMIT q->dataChanged(q->createIndex(low, topLeft.column(), level),
            q->createIndex(high, bottomRight.column(), level), roles);
    }
}

// One member changed: asked again, moved to its new place, and shown or
// hidden with one signal (of the row, or of the container that it was the
// first or the last shown member of).
void VeskRosterProxyModel::Private::replace(Level &level, int row)
{
    const VeskBuddy entry = entryAt(level, row);
    if (!isMember(entry)) {
        // A member became something else: its kind decides its place.
        relayout([this] { learnAll(false); });
        return;
    }
    level.entries[row] = entry;
    level.filterPasses[row] = filters->filter(entry);
    level.index.update(row, entry);
    level.matches[row] = search.isEmpty() ? 1
        : level.indexed()                 ? level.index.matches(search, row)
                                          : search.matches(entry);

    // The order holds what the view may show; the rows shown change only
    // between the begin and end signals below.
    QVector<int> &order = level.order;
    order.erase(std::remove(order.begin() + level.containers, order.end(), row), order.end());
    if (mayShow(level, row))
        order.insert(placeOf(level, order, row), row);
    const int oldRow = level.proxyRow.at(row);
    const bool wasShown = oldRow >= 0;
    const bool shows = memberShown(level, row);
    if (!wasShown && !shows)
        return;
    // Where it goes: after the others shown that come before it.
    int newRow = -1;
    if (shows) {
        newRow = 0;
        for (const int other : qAsConst(order)) {
            if (other == row)
                break;
            if (level.proxyRow.at(other) >= 0)
                ++newRow;
        }
    }
    auto update = [&level, row, oldRow, newRow] {
        reshow(level, row, oldRow, newRow);
    };
    const QModelIndex parent = containerIndex(&level);
    if (!shows && level.shown.size() == 1 && level.parent) {
        changeContainer(level, false, update);
    } else if (!wasShown && level.shown.isEmpty() && level.parent) {
        changeContainer(level, true, update);
    } else if (!level.visible || newRow == oldRow) {
        update();
    } else if (!shows) {
        q->beginRemoveRows(parent, oldRow, oldRow);
        update();
        q->endRemoveRows();
    } else if (wasShown) {
        q->beginMoveRows(parent, oldRow, oldRow, parent, newRow > oldRow ? newRow + 1 : newRow);
        update();
        q->endMoveRows();
    } else {
        q->beginInsertRows(parent, newRow, newRow);
        update();
        q->endInsertRows();
    }
}

// The rows shown of `level` once member `row` moved from proxy row `oldRow`
// to `newRow` (-1: not shown): the rows between renumbered, the rest as they
// were.
void VeskRosterProxyModel::Private::reshow(Level &level, int row, int oldRow, int newRow)
{
    if (oldRow >= 0)
        level.shown.removeAt(oldRow);
    if (newRow >= 0)
        level.shown.insert(newRow, row);
    level.proxyRow[row] = -1;
    const int from = oldRow < 0 ? newRow : newRow < 0 ? oldRow : qMin(oldRow, newRow);
    for (int at = from; at < level.shown.size(); ++at)
        level.proxyRow[level.shown.at(at)] = at;
}

// `level` shows its first row (`appears`) or no row any more once `update`
// ran: its container comes or goes, and so does the container's container
// when it showed nothing else either.
void VeskRosterProxyModel::Private::changeContainer(
    Level &level, bool appears, const std::function<void()> &update)
{
    Level &above = *level.parent;
    auto all = [&] {
        update();
        place(above);
        markVisible();
    };
    if (above.parent && above.shown.size() == (appears ? 0 : 1)) {
        changeContainer(above, appears, all);
        return;
    }
    if (!above.visible) {
        all();
        return;
    }
    const QModelIndex parent = containerIndex(&above);
    if (!appears) {
        const int row = above.proxyRow.at(level.rowInParent);
        q->beginRemoveRows(parent, row, row);
        all();
        q->endRemoveRows();
        return;
    }
    // Where the container goes among the rows shown there now.
    int row = 0;
    for (int at = 0; at < above.containers; ++at) {
        const int other = above.order.at(at);
        if (other == level.rowInParent)
            break;
        if (above.proxyRow.at(other) >= 0)
            ++row;
    }
    q->beginInsertRows(parent, row, row);
    all();
    q->endInsertRows();
}
