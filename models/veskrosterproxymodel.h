#pragma once

#include "vesk_roster_models_export.h"

#include <veskbuddy.h>
#include <veskrosterquicksearch.h>

#include <QMetaType>
#include <QSortFilterProxyModel>
#include <QVector>

#include <unordered_map>

class VeskRosterFiltersManager;
class VeskRosterSortersManager;

Q_DECLARE_METATYPE(VeskBuddy)

// Shows a client's roster model the way the roster filter library decides:
// which entries pass the current filter and in which order the current
// sorting method puts them.
//
// The source is any tree model whose rows carry their roster entry, a
// VeskBuddy, under buddyRole() of column 0 (QVariant::fromValue(buddy)).
// Rows holding a contact or a temporary contact are the members; every other
// row (a group, a row without an entry) is a container, shown exactly when
// at least one of its children is shown. Among siblings, containers come
// first; within each kind, x comes before y exactly when the sorters
// manager's lessThan(y, x) holds, and rows it does not tell apart keep the
// source order.
//
// The proxy asks the two managers' singletons. The library tells nobody
// when its state changes, so the client calls refresh() after it edited a
// filter's conditions or a sorting method, or deleted and re-created the
// managers (before the event loop runs again), or uses setCurrentFilter()
// and setCurrentSorter() below, which refresh themselves. A change of an
// entry itself (a presence, a chats count) is the source's dataChanged() of
// its row, covering column 0 with an empty role list or one that holds
// buddyRole(); the proxy then re-places that row only, and shows or hides
// its container when it was the first or the last of it to be shown. (The
// proxy's filter and sort roles are buddyRole(); do not change them.)
class VESK_ROSTER_MODELS_EXPORT VeskRosterProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT
public:
    // The default role of the roster entry.
    enum { BuddyRole = Qt::UserRole + 0x5642 };

    explicit VeskRosterProxyModel(QObject *parent = nullptr);
    ~VeskRosterProxyModel() override;

    int buddyRole() const;
    void setBuddyRole(int role);

    // The roster entry of a row of this proxy or of its source; an invalid
    // handle for rows without one.
    VeskBuddy rosterEntry(const QModelIndex &index) const;

    // Makes a filter (its sorting method with it) current through the
    // managers, then re-filters and re-sorts.
    void setCurrentFilter(const QString &id);
    void setCurrentSorter(const QString &name);

    // The quick search (see VeskRosterQuickSearch): members are shown when
    // they pass the current filter and match the text, or, with the scope
    // EveryEntry, when they match it whatever the filter says. A text that
    // grows asks again only the members shown so far; one that shrinks or is
    // cleared only those the current filter passed; neither asks the filter
    // again nor sorts again.
    void setQuickSearch(const QString &text);
    QString quickSearch() const;
    void setQuickSearchScope(VeskRosterQuickSearch::Scope scope);
    VeskRosterQuickSearch::Scope quickSearchScope() const;

    void setSourceModel(QAbstractItemModel *model) override;

public Q_SLOTS:
    // Picks up the managers anew and re-filters and re-sorts every row.
    void refresh();

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    // What refresh() learnt of one level of the source (the children of one
    // parent), by source row: whether the row passes, and its place in the
    // view's order. A row whose data changed is unknown again and asked
    // about directly; a change of the source's structure forgets it all.
    struct Level
    {
        QVector<char> passes; // Unknown, or 0/1: what the view shows
        QVector<char> filterPasses; // the current filter's answer alone
        QVector<int> rank; // -1 when unknown
        QVector<VeskBuddy> entries; // by source row
    };
    struct Key
    {
        quintptr id;
        int row;
        int column;
        bool operator==(const Key &other) const
        {
            return id == other.id && row == other.row && column == other.column;
        }
    };
    struct KeyHash
    {
        std::size_t operator()(const Key &key) const
        {
            return std::hash<quintptr>()(key.id) ^ (std::size_t(key.row) * 0x9E3779B97F4A7C15ULL)
                ^ std::size_t(key.column);
        }
    };
    static Key keyOf(const QModelIndex &sourceParent);
    Level *levelOf(const QModelIndex &sourceParent) const;
    void learn(const QModelIndex &sourceParent);
    QVector<int> viewOrder(const QVector<VeskBuddy> &entries) const;
    void searchLevel(
        Level &level, const VeskRosterQuickSearch &next, bool narrowing, bool widening) const;
    void sourceChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight);
    void forget();

    mutable std::unordered_map<Key, Level, KeyHash> levels;
    mutable Key lastKey { 0, -2, -2 };
    mutable Level *lastLevel = nullptr;
    QList<QMetaObject::Connection> sourceConnections;
    VeskRosterFiltersManager *filters = nullptr;
    VeskRosterSortersManager *sorters = nullptr;
    int role = BuddyRole;
    VeskRosterQuickSearch search;
};
