#include "veskrosterproxymodel.h"

#include <veskrosterfiltersmanager.h>
#include <veskrostersortersmanager.h>

namespace {

bool isMember(const VeskBuddy &buddy)
{
    const int type = buddy.getType();
    return type == VeskBuddy::TypeContact || type == VeskBuddy::TypeTemporary;
}

} // namespace

VeskRosterProxyModel::VeskRosterProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
{
    // A container is accepted through its children: filterAcceptsRow() turns
    // it down and the proxy then looks for a member that passes. Left to the
    // proxy, a member's dataChanged() also shows or hides its container, as
    // long as the changed roles include the filter role: the entry's role.
    setRecursiveFilteringEnabled(true);
    setDynamicSortFilter(true);
    setFilterRole(role);
    setSortRole(role);
    filters = VeskRosterFiltersManager::getInstance();
    sorters = VeskRosterSortersManager::getInstance();
    sort(0, Qt::AscendingOrder);
}

VeskRosterProxyModel::~VeskRosterProxyModel() = default;

int VeskRosterProxyModel::buddyRole() const
{
    return role;
}

void VeskRosterProxyModel::setBuddyRole(int buddyRole)
{
    if (role == buddyRole)
        return;
    role = buddyRole;
    setFilterRole(role);
    setSortRole(role);
    refresh();
}

VeskBuddy VeskRosterProxyModel::rosterEntry(const QModelIndex &index) const
{
    const QModelIndex first = index.sibling(index.row(), 0);
    return first.data(role).value<VeskBuddy>();
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
    filters = VeskRosterFiltersManager::getInstance();
    sorters = VeskRosterSortersManager::getInstance();
    // invalidate() drops every mapping; the proxy filters and sorts each
    // level again when the view asks for it.
    invalidate();
}

bool VeskRosterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    const VeskBuddy entry = rosterEntry(sourceModel()->index(sourceRow, 0, sourceParent));
    return isMember(entry) && filters->filter(entry);
}

bool VeskRosterProxyModel::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const VeskBuddy x = rosterEntry(left);
    const VeskBuddy y = rosterEntry(right);
    const bool xMember = isMember(x);
    if (xMember != isMember(y))
        return !xMember;
    return sorters->lessThan(y, x);
}
