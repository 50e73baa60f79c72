#include "rostertreemodel.h"

#include <veskstandin.h>

// The tree follows a live roster one entry at a time, with the insertions
// and removals a view needs, so that the proxy above re-places only what
// changed instead of everything after a reset.

namespace {

VeskBuddy groupOfMember(const VeskBuddy &entry)
{
    if (entry.getType() == VeskBuddy::TypeContact)
        return VeskBuddyContact(entry).getParent();
    return VeskBuddyTemporary(entry).getGroup();
}

} // namespace

void VeskRosterTreeModel::insertEntry(const VeskBuddy &entry)
{
    const int type = entry.getType();
    const quintptr key = VeskStandIn::entryKey(entry);
    if (entryNodes.contains(key))
        return;
    if (type == VeskBuddy::TypeGroup) {
        // Groups come first at the top, in the order of their arrival; a
        // second group of one name stands for nothing, as in setRoster().
        if (groupNodes.contains(entry.getDisplay()))
            return;
        int row = 0;
        while (row < topLevel.size()
            && nodes.at(topLevel.at(row)).buddy.getType() == VeskBuddy::TypeGroup)
            ++row;
        beginInsertRows(QModelIndex(), row, row);
        const int node = nodes.size();
        nodes.append(Node { entry, -1, row, {} });
        topLevel.insert(row, node);
        for (int r = row + 1; r < topLevel.size(); ++r)
            nodes[topLevel.at(r)].row = r;
        entryNodes.insert(key, node);
        groupNodes.insert(entry.getDisplay(), node);
        endInsertRows();
        return;
    }
    if (type != VeskBuddy::TypeContact && type != VeskBuddy::TypeTemporary)
        return;
    const VeskBuddy group = groupOfMember(entry);
    const int parent = group.isValid() ? groupNodes.value(group.getDisplay(), -1) : -1;
    QVector<int> &siblings = parent < 0 ? topLevel : nodes[parent].children;
    const int row = siblings.size();
    beginInsertRows(parent < 0 ? QModelIndex() : indexOf(parent, 0), row, row);
    const int node = nodes.size();
    nodes.append(Node { entry, parent, row, {} });
    // `siblings` may refer into `nodes`, which just grew.
    (parent < 0 ? topLevel : nodes[parent].children).append(node);
    memberEntries.append(entry);
    memberNodes.append(node);
    entryNodes.insert(key, node);
    endInsertRows();
}

void VeskRosterTreeModel::removeEntry(const VeskBuddy &entry)
{
    const auto found = entryNodes.find(VeskStandIn::entryKey(entry));
    if (found == entryNodes.end())
        return;
    const int node = *found;
    const int parent = nodes.at(node).parent;
    const int row = nodes.at(node).row;
    // A group goes only once empty; its members would be orphans otherwise.
    if (!nodes.at(node).children.isEmpty())
        return;
    entryNodes.erase(found);
    beginRemoveRows(parent < 0 ? QModelIndex() : indexOf(parent, 0), row, row);
    QVector<int> &siblings = parent < 0 ? topLevel : nodes[parent].children;
    siblings.remove(row);
    for (int r = row; r < siblings.size(); ++r)
        nodes[siblings.at(r)].row = r;
    if (entry.getType() == VeskBuddy::TypeGroup) {
        groupNodes.remove(entry.getDisplay());
    } else {
        const int member = memberNodes.lastIndexOf(node);
        if (member >= 0) {
            memberNodes.remove(member);
            memberEntries.remove(member);
        }
    }
    nodes[node] = Node { VeskBuddy(), -1, -1, {} };
    endRemoveRows();
}

void VeskRosterTreeModel::entryChanged(const VeskBuddy &entry)
{
    const int node = entryNodes.value(VeskStandIn::entryKey(entry), -1);
    if (node < 0)
        return;
    Q_EMIT dataChanged(indexOf(node, 0), indexOf(node, ColumnCount - 1));
}

void VeskRosterTreeModel::beginEntriesReset()
{
    beginResetModel();
}

void VeskRosterTreeModel::endEntriesReset()
{
    rebuild(VeskStandIn::entries());
    endResetModel();
}
