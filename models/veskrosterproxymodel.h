#pragma once

#include "vesk_roster_models_export.h"

#include <veskbuddy.h>
#include <veskrosterquicksearch.h>

#include <QAbstractProxyModel>
#include <QMetaType>

#include <memory>

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
// source order. Rows below a member are not shown.
//
// The proxy asks the two managers' singletons. The library tells nobody
// when its state changes, so the client calls refresh() after it edited a
// filter's conditions or a sorting method, or deleted and re-created the
// managers (before the event loop runs again), or uses setCurrentFilter()
// and setCurrentSorter() below, which refresh themselves. A change of an
// entry itself (a presence, a status text, a name) is the source's
// dataChanged() of its row, covering column 0 with an empty role list or one
// that holds buddyRole(); the proxy then re-places that row only, with one
// move, insertion or removal (of the row, or of its container when it was
// the first or the last of it to be shown). A change of the source's rows
// (inserted, removed, moved, laid out anew) is answered as a layout change.
//
// The proxy keeps what it learnt of each row (the filter's answer, the
// row's place, and once a search was typed, the texts the search looks at),
// so that a search typed letter by letter asks neither the filter nor the
// sorting method nor the host again.
class VESK_ROSTER_MODELS_EXPORT VeskRosterProxyModel : public QAbstractProxyModel
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
    // grows asks again only the members shown so far; one that shrinks only
    // those that did not match; a cleared one asks nobody. None asks the
    // filter again or sorts again; each is one layout change.
    void setQuickSearch(const QString &text);
    QString quickSearch() const;
    void setQuickSearchScope(VeskRosterQuickSearch::Scope scope);
    VeskRosterQuickSearch::Scope quickSearchScope() const;
    // Reads the texts the search looks at now rather than when the first
    // letter is typed: a search field calls it when it takes the focus, for
    // a slice of at most about `milliseconds` at a time (all at once when
    // negative), until it answers true. The texts are kept until the
    // source's rows change; a letter typed meanwhile reads the rest.
    bool prepareQuickSearch(int milliseconds = -1);

    void setSourceModel(QAbstractItemModel *model) override;
    QModelIndex mapToSource(const QModelIndex &proxyIndex) const override;
    QModelIndex mapFromSource(const QModelIndex &sourceIndex) const override;
    QModelIndex index(
        int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    QModelIndex sibling(int row, int column, const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;

public Q_SLOTS:
    // Picks up the managers anew and re-filters and re-sorts every row.
    void refresh();

private:
    class Private;
    friend class Private;
    std::unique_ptr<Private> state;
};
