#pragma once

#include <veskbuddy.h>

#include <QAbstractItemModel>
#include <QHash>
#include <QVector>

// The client's own roster model: one row per group name with its members
// under it, then the contacts and temporary contacts without a known group;
// columns for the name, presence, account, description and chats count.
// Every row carries its entry under VeskRosterProxyModel::BuddyRole.
class VeskRosterTreeModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Column {
        NameColumn,
        PresenceColumn,
        AccountColumn,
        DescriptionColumn,
        ChatsColumn,
        ColumnCount
    };

    explicit VeskRosterTreeModel(QObject *parent = nullptr);

    // Rebuilds the rows from the entries (the stand-in roster's, in order).
    void setRoster(const QList<VeskBuddy> &entries);
    // The contacts and temporary contacts, in roster order.
    const QVector<VeskBuddy> &members() const { return memberEntries; }
    // Tells the views that members().at(member) changed (its presence, its chats).
    void memberChanged(int member);
    // A live roster's changes, entry by entry (rostertreemodel_live.cpp): a
    // group, contact or temporary contact added to the stand-in roster, about
    // to leave it, or changed in place.
    void insertEntry(const VeskBuddy &entry);
    void removeEntry(const VeskBuddy &entry);
    void entryChanged(const VeskBuddy &entry);
    // Many entries at once (a whole roster arrived): the rows go on the
    // first call, and the second reads VeskStandIn::entries() anew.
    void beginEntriesReset();
    void endEntriesReset();

    QModelIndex index(
        int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Node
    {
        VeskBuddy buddy;
        int parent = -1; // node number of the group, -1 at the top
        int row = 0;
        QVector<int> children;
    };
    void rebuild(const QList<VeskBuddy> &entries);
    QModelIndex indexOf(int node, int column) const;
    QVariant text(const Node &node, int column) const;

    QVector<Node> nodes;
    QVector<int> topLevel;
    QVector<VeskBuddy> memberEntries;
    QVector<int> memberNodes; // the node of each member
    // Of a live roster: the node of each entry by its stand-in key, and of
    // each group by its name. Removed nodes stay, unreachable.
    QHash<quintptr, int> entryNodes;
    QHash<QString, int> groupNodes;
};
