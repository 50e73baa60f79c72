#include "rostertreemodel.h"

#include <veskaccount.h>
#include <veskrosterproxymodel.h>
#include <veskstandin.h>

#include <QHash>

namespace {

VeskBuddy groupOf(const VeskBuddy &entry)
{
    if (entry.getType() == VeskBuddy::TypeContact)
        return VeskBuddyContact(entry).getParent();
    return VeskBuddyTemporary(entry).getGroup();
}

VeskPresence presenceOf(const VeskBuddy &entry)
{
    if (entry.getType() == VeskBuddy::TypeContact)
        return VeskBuddyContact(entry).getPresence();
    return VeskBuddyTemporary(entry).getPresence();
}

} // namespace

VeskRosterTreeModel::VeskRosterTreeModel(QObject *parent)
    : QAbstractItemModel(parent)
{ }

void VeskRosterTreeModel::setRoster(const QList<VeskBuddy> &entries)
{
    beginResetModel();
    rebuild(entries);
    endResetModel();
}

void VeskRosterTreeModel::rebuild(const QList<VeskBuddy> &entries)
{
    nodes.clear();
    topLevel.clear();
    memberEntries.clear();
    memberNodes.clear();
    entryNodes.clear();
    groupNodes.clear();
    // Groups are matched by name, the first of a name standing for all of
    // them, as a contact names its group.
    QHash<QString, int> groups;
    for (const VeskBuddy &entry : entries) {
        if (entry.getType() != VeskBuddy::TypeGroup || groups.contains(entry.getDisplay()))
            continue;
        groups.insert(entry.getDisplay(), nodes.size());
        topLevel.append(nodes.size());
        nodes.append(Node { entry, -1, int(topLevel.size() - 1), {} });
    }
    for (const VeskBuddy &entry : entries) {
        if (entry.getType() != VeskBuddy::TypeContact
            && entry.getType() != VeskBuddy::TypeTemporary)
            continue;
        const VeskBuddy group = groupOf(entry);
        const int parent = group.isValid() ? groups.value(group.getDisplay(), -1) : -1;
        QVector<int> &siblings = parent < 0 ? topLevel : nodes[parent].children;
        memberEntries.append(entry);
        memberNodes.append(nodes.size());
        siblings.append(nodes.size());
        nodes.append(Node { entry, parent, int(siblings.size() - 1), {} });
    }
    for (int node = 0; node < nodes.size(); ++node)
        entryNodes.insert(VeskStandIn::entryKey(nodes.at(node).buddy), node);
    groupNodes = groups;
}

void VeskRosterTreeModel::memberChanged(int member)
{
    const int node = memberNodes.value(member, -1);
    if (node < 0)
        return;
    // All roles: the entry behind the row changed, which is what the proxy
    // filters and sorts on.
    Q_EMIT dataChanged(indexOf(node, 0), indexOf(node, ColumnCount - 1));
}

QModelIndex VeskRosterTreeModel::indexOf(int node, int column) const
{
    return createIndex(nodes.at(node).row, column, quintptr(node));
}

QModelIndex VeskRosterTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (column < 0 || column >= ColumnCount || row < 0)
        return QModelIndex();
    if (!parent.isValid())
        return row < topLevel.size() ? indexOf(topLevel.at(row), column) : QModelIndex();
    const QVector<int> &children = nodes.at(int(parent.internalId())).children;
    return row < children.size() ? indexOf(children.at(row), column) : QModelIndex();
}

QModelIndex VeskRosterTreeModel::parent(const QModelIndex &index) const
{
    if (!index.isValid())
        return QModelIndex();
    const int parent = nodes.at(int(index.internalId())).parent;
    return parent < 0 ? QModelIndex() : indexOf(parent, 0);
}

int VeskRosterTreeModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return topLevel.size();
    if (parent.column() != 0)
        return 0;
    return nodes.at(int(parent.internalId())).children.size();
}

int VeskRosterTreeModel::columnCount(const QModelIndex &) const
{
    return ColumnCount;
}

QVariant VeskRosterTreeModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const Node &node = nodes.at(int(index.internalId()));
    if (role == VeskRosterProxyModel::BuddyRole && index.column() == 0)
        return QVariant::fromValue(node.buddy);
    if (role == Qt::DisplayRole)
        return text(node, index.column());
    if (role == Qt::TextAlignmentRole && index.column() == ChatsColumn)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return QVariant();
}

QVariant VeskRosterTreeModel::text(const Node &node, int column) const
{
    const VeskBuddy &entry = node.buddy;
    if (column == NameColumn || entry.getType() == VeskBuddy::TypeGroup)
        return column == NameColumn ? entry.getDisplay() : QVariant();
    switch (column) {
    case PresenceColumn:
        return presenceOf(entry).getDisplay();
    case AccountColumn: {
        const VeskAccountConnection *account = entry.getType() == VeskBuddy::TypeContact
            ? VeskBuddyContact(entry).getAccount()
            : VeskBuddyTemporary(entry).getAccount();
        return account ? tr("%1 (%2)").arg(account->getUid(), account->getProtocolName())
                       : QString();
    }
    case DescriptionColumn:
        return presenceOf(entry).getDescription();
    case ChatsColumn: {
        if (entry.getType() != VeskBuddy::TypeContact)
            return QVariant();
        const VeskArg chats = VeskBuddyContact(entry).getAttrib(QStringLiteral("chats_count"));
        return chats.getType() == VeskArg::TypeInt ? QVariant(chats.toInt()) : QVariant();
    }
    }
    return QVariant();
}

QVariant VeskRosterTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    switch (section) {
    case NameColumn:
        return tr("Name");
    case PresenceColumn:
        return tr("Presence");
    case AccountColumn:
        return tr("Account");
    case DescriptionColumn:
        return tr("Description");
    case ChatsColumn:
        return tr("Chats");
    }
    return QVariant();
}
