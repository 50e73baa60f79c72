#pragma once

#include <veskbuddy.h>

#include <QSortFilterProxyModel>

#include <vector>

class QStandardItemModel;

// What a client without this library would write: a flat item model with one
// row per roster entry (the display name as its text, the values its proxies
// filter and sort on in roles of their own), and proxies over it.
namespace RosterItemModel {

enum Role {
    PresenceIdRole = Qt::UserRole + 1, // presence id of a contact or temporary contact
    GroupNameRole, // the group name the group filter compares
    PresenceRankRole, // presence flag 5 last, then by subscription priority, highest first
    ChatsRankRole, // most chats first
};

// The caller owns the model.
QStandardItemModel *create(const std::vector<VeskBuddy> &entries);

// The model of the generated roster of `contacts` contacts, loading that roster;
// kept until a roster of another size is asked for.
QStandardItemModel *forRoster(int contacts);

// The values of PresenceRankRole and ChatsRankRole for an entry.
int presenceRank(const VeskBuddy &entry);
int chatsRank(const VeskBuddy &entry);

} // namespace RosterItemModel

// The benchmarks' filter: a fixed-string filter for the display name, the rest
// in filterAcceptsRow().
class RosterFilterProxy : public QSortFilterProxyModel
{
public:
    RosterFilterProxy();

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
};

// Sorts by one rank role, then by the display name with the proxy's own
// locale-aware comparison.
class RosterSortProxy : public QSortFilterProxyModel
{
public:
    explicit RosterSortProxy(int rankRole);

protected:
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    int rankRole;
};
