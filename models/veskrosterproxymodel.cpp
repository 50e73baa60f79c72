#include "veskrosterproxymodel_p.h"

#include <algorithm>

VeskRosterProxyModel::VeskRosterProxyModel(QObject *parent)
    : QAbstractProxyModel(parent)
    , state(std::make_unique<Private>(this))
{
    state->filters = VeskRosterFiltersManager::getInstance();
    state->sorters = VeskRosterSortersManager::getInstance();
}

VeskRosterProxyModel::~VeskRosterProxyModel() = default;

int VeskRosterProxyModel::buddyRole() const
{
    return state->role;
}

void VeskRosterProxyModel::setBuddyRole(int buddyRole)
{
    if (state->role == buddyRole)
        return;
    state->role = buddyRole;
    // Every entry is read anew, and so are the texts the search looks at.
    state->relayout([this] { state->learnAll(false); });
}

VeskBuddy VeskRosterProxyModel::rosterEntry(const QModelIndex &index) const
{
    const QModelIndex first = index.sibling(index.row(), 0);
    return first.data(state->role).value<VeskBuddy>();
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

void VeskRosterProxyModel::refresh()
{
    state->filters = VeskRosterFiltersManager::getInstance();
    state->sorters = VeskRosterSortersManager::getInstance();
    // The entries are those of the last learning, so their texts stay read.
    state->relayout([this] { state->learnAll(true); });
}

void VeskRosterProxyModel::setQuickSearch(const QString &text)
{
    if (text == state->search.text())
        return;
    const VeskRosterQuickSearch next(text, state->search.scope());
    // Growing: every member shown from now on is shown already. Shrinking:
    // every member shown so far stays shown.
    const bool narrowing = next.narrows(state->search);
    const bool widening = state->search.narrows(next);
    // One layout change rather than a removal or insertion per run of rows:
    // a keystroke changes runs all over a large roster, and a view answers
    // each signal with work in proportion to its rows.
    state->relayout([&] {
        for (const auto &level : state->levels)
            state->searchLevel(*level, next, narrowing, widening);
        state->search = next;
        state->placeAll();
    });
}

QString VeskRosterProxyModel::quickSearch() const
{
    return state->search.text();
}

void VeskRosterProxyModel::setQuickSearchScope(VeskRosterQuickSearch::Scope scope)
{
    if (scope == state->search.scope())
        return;
    state->search.setScope(scope);
    // The members in order are those the scope may show: learnt afresh.
    refresh();
}

VeskRosterQuickSearch::Scope VeskRosterProxyModel::quickSearchScope() const
{
    return state->search.scope();
}

bool VeskRosterProxyModel::prepareQuickSearch(int milliseconds)
{
    QElapsedTimer slice;
    slice.start();
    for (const auto &level : state->levels) {
        if (!state->ensureIndexed(*level, milliseconds < 0 ? nullptr : &slice, milliseconds))
            return false;
    }
    return true;
}

void VeskRosterProxyModel::setSourceModel(QAbstractItemModel *model)
{
    beginResetModel();
    for (const QMetaObject::Connection &connection : qAsConst(state->sourceConnections))
        disconnect(connection);
    state->sourceConnections.clear();
    state->levels.clear();
    state->structuralChanges = 0;
    QAbstractProxyModel::setSourceModel(model);
    if (model) {
        Private *p = state.get();
        auto reset = [this] {
            beginResetModel();
        };
        auto learnt = [this, p] {
            p->structuralChanges = 0;
            p->changingFrom.clear();
            p->changingSources.clear();
            p->learnAll(false);
            endResetModel();
        };
        auto structural = [p] {
            p->beginStructuralChange();
        };
        auto changed = [p] {
            p->endStructuralChange();
        };
        state->sourceConnections = {
            connect(model, &QAbstractItemModel::dataChanged, this,
                [p](const QModelIndex &topLeft, const QModelIndex &bottomRight,
                    const QVector<int> &roles) {
                    p->sourceDataChanged(topLeft, bottomRight, roles);
                }),
            connect(model, &QAbstractItemModel::headerDataChanged, this,
                &QAbstractItemModel::headerDataChanged),
            connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this, structural),
            connect(model, &QAbstractItemModel::rowsInserted, this, changed),
            connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this, structural),
            connect(model, &QAbstractItemModel::rowsRemoved, this, changed),
            connect(model, &QAbstractItemModel::rowsAboutToBeMoved, this, structural),
            connect(model, &QAbstractItemModel::rowsMoved, this, changed),
            connect(model, &QAbstractItemModel::layoutAboutToBeChanged, this, structural),
            connect(model, &QAbstractItemModel::layoutChanged, this, changed),
            connect(model, &QAbstractItemModel::modelAboutToBeReset, this, reset),
            connect(model, &QAbstractItemModel::modelReset, this, learnt),
            // The columns are the source's: a change of them starts afresh.
            connect(model, &QAbstractItemModel::columnsAboutToBeInserted, this, reset),
            connect(model, &QAbstractItemModel::columnsInserted, this, learnt),
            connect(model, &QAbstractItemModel::columnsAboutToBeRemoved, this, reset),
            connect(model, &QAbstractItemModel::columnsRemoved, this, learnt),
            connect(model, &QAbstractItemModel::columnsAboutToBeMoved, this, reset),
            connect(model, &QAbstractItemModel::columnsMoved, this, learnt),
            // As the base class does: no signal, the views' owner is often
            // being destroyed along with the source.
            connect(model, &QObject::destroyed, this, [p] { p->levels.clear(); }),
        };
        state->learnAll(false);
    }
    endResetModel();
}

QModelIndex VeskRosterProxyModel::mapToSource(const QModelIndex &proxyIndex) const
{
    if (!proxyIndex.isValid() || !sourceModel())
        return QModelIndex();
    const auto *level = static_cast<const Level *>(proxyIndex.internalPointer());
    if (!level || proxyIndex.row() >= level->shown.size())
        return QModelIndex();
    const int row = level->shown.at(proxyIndex.row());
    if (proxyIndex.column() == 0)
        return level->sourceIndexes.at(row);
    return sourceModel()->index(row, proxyIndex.column(), level->sourceParent);
}

QModelIndex VeskRosterProxyModel::mapFromSource(const QModelIndex &sourceIndex) const
{
    if (!sourceIndex.isValid())
        return QModelIndex();
    Level *level = state->levelFor(sourceIndex.parent());
    if (!level || !level->visible)
        return QModelIndex();
    const int row = level->proxyRow.value(sourceIndex.row(), -1);
    return row < 0 ? QModelIndex() : createIndex(row, sourceIndex.column(), level);
}

QModelIndex VeskRosterProxyModel::index(int row, int column, const QModelIndex &parent) const
{
    Level *level = parent.isValid() ? state->childLevel(parent) : state->root();
    if (!level || row < 0 || row >= level->shown.size() || column < 0
        || column >= columnCount(parent))
        return QModelIndex();
    return createIndex(row, column, level);
}

QModelIndex VeskRosterProxyModel::parent(const QModelIndex &child) const
{
    if (!child.isValid())
        return QModelIndex();
    return state->containerIndex(static_cast<const Level *>(child.internalPointer()));
}

QModelIndex VeskRosterProxyModel::sibling(int row, int column, const QModelIndex &index) const
{
    if (!index.isValid())
        return QModelIndex();
    if (row == index.row() && column == index.column())
        return index;
    const auto *level = static_cast<const Level *>(index.internalPointer());
    if (row < 0 || row >= level->shown.size() || column < 0 || column >= level->columns)
        return QModelIndex();
    return createIndex(row, column, index.internalPointer());
}

int VeskRosterProxyModel::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return 0;
    const Level *level = parent.isValid() ? state->childLevel(parent) : state->root();
    return level ? int(level->shown.size()) : 0;
}

int VeskRosterProxyModel::columnCount(const QModelIndex &parent) const
{
    if (!sourceModel())
        return 0;
    if (const Level *level = parent.isValid() ? state->childLevel(parent) : state->root())
        return level->columns;
    return sourceModel()->columnCount(mapToSource(parent));
}

bool VeskRosterProxyModel::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}
