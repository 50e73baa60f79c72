#pragma once

// Not part of the models' API: what VeskRosterProxyModel keeps of its source
// and how it answers, shared by its three source files (the model's own
// interface, learning the source, following its changes).

#include "veskrosterproxymodel.h"

#include <veskrosterfiltersmanager.h>
#include <veskrostersearchindex.h>
#include <veskrostersortersmanager.h>

#include <QElapsedTimer>
#include <QPersistentModelIndex>

#include <functional>
#include <memory>
#include <vector>

namespace VeskProxyDetail {

inline bool isMember(const VeskBuddy &buddy)
{
    const int type = buddy.getType();
    return type == VeskBuddy::TypeContact || type == VeskBuddy::TypeTemporary;
}

// More changed rows than this in one dataChanged() are answered with one
// layout change rather than a move each.
const int rowsReplacedOneByOne = 32;

// The children of one source parent, by source row: what the proxy
// learnt of each, the rows the view may show in its order, and the rows
// it shows. The proxy's indices point at the level holding their row.
struct ProxyLevel
{
    ProxyLevel *parent = nullptr;
    int rowInParent = -1; // the source row of its container
    QPersistentModelIndex sourceParent;
    QVector<VeskBuddy> entries;
    // Column 0 of each row: valid until the source's rows change, when the
    // proxy learns everything again. A view lays its rows out by asking
    // each one's flags, so this spares the source an index() per row.
    QVector<QModelIndex> sourceIndexes;
    QVector<char> member;
    QVector<char> filterPasses; // the current filter's answer, of members
    QVector<char> matches; // the search's answer, of members in `order`
    // Containers first, then the members the search's scope may show.
    QVector<int> order;
    int containers = 0;
    QVector<int> shown; // proxy row -> source row
    QVector<int> proxyRow; // source row -> proxy row, -1 when hidden
    QVector<ProxyLevel *> children; // by source row: a container's own level
    VeskRosterSearchIndex index; // may hold the first rows only, read so far
    bool visible = false; // its container and all above it are shown
    int columns = 0; // the source's, below its parent

    bool indexed() const { return index.size() == entries.size(); }
};

} // namespace VeskProxyDetail

class VeskRosterProxyModel::Private
{
public:
    using Level = VeskProxyDetail::ProxyLevel;

    explicit Private(VeskRosterProxyModel *q)
        : q(q)
    { }

    VeskRosterProxyModel *const q;
    VeskRosterFiltersManager *filters = nullptr;
    VeskRosterSortersManager *sorters = nullptr;
    int role = BuddyRole;
    VeskRosterQuickSearch search;
    // Parents before children; the first is the source's root.
    std::vector<std::unique_ptr<Level>> levels;
    QList<QMetaObject::Connection> sourceConnections;
    // Across a change of the source's rows: the proxy's persistent indices
    // and where they pointed in the source.
    int structuralChanges = 0;
    QModelIndexList changingFrom;
    QList<QPersistentModelIndex> changingSources;

    Level *root() const { return levels.empty() ? nullptr : levels.front().get(); }
    Level *levelFor(const QModelIndex &sourceParent) const;
    Level *childLevel(const QModelIndex &proxyParent) const;
    QModelIndex containerIndex(const Level *level) const;
    VeskBuddy entryAt(const Level &level, int row) const;

    void learnAll(bool keepIndexes);
    Level *learn(Level *parent, const QModelIndex &sourceParent, int rowInParent);
    QVector<int> viewOrder(const QVector<VeskBuddy> &entries) const;
    int placeOf(const Level &level, const QVector<int> &order, int row) const;
    bool ensureIndexed(Level &level, const QElapsedTimer *slice = nullptr, int milliseconds = 0);
    void searchLevel(
        Level &level, const VeskRosterQuickSearch &next, bool narrowing, bool widening);
    bool memberShown(const Level &level, int row) const;
    bool mayShow(const Level &level, int row) const;
    void place(Level &level) const;
    void placeAll();
    void markVisible();
    void relayout(const std::function<void()> &change);

    void beginStructuralChange();
    void endStructuralChange();
    void sourceDataChanged(
        const QModelIndex &topLeft, const QModelIndex &bottomRight, const QVector<int> &roles);
    void replace(Level &level, int row);
    static void reshow(Level &level, int row, int oldRow, int newRow);
    void changeContainer(Level &level, bool appears, const std::function<void()> &update);
};

using Level = VeskProxyDetail::ProxyLevel;
using VeskProxyDetail::isMember;
