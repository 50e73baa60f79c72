// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskrosterfiltersmanager.h"

#include "veskdefaultfilter.h"

VeskRosterFiltersManager *VeskRosterFiltersManager::instance = nullptr;
VeskRosterFiltersManager *VeskRosterFiltersManager::getInstance()
{
    if (!instance) { instance = new VeskRosterFiltersManager; instance->readFilters(); instance->setupCurrentFilter(); }
    return instance;
}
VeskRosterFiltersManager::VeskRosterFiltersManager() : current(nullptr) {}
VeskRosterFiltersManager::~VeskRosterFiltersManager() { instance = nullptr; }
bool VeskRosterFiltersManager::filter(const VeskBuddy &buddy) const { return !current || current->filter(buddy); }
VeskRosterFilter *VeskRosterFiltersManager::getCurrentFilter() { return current; }
QString VeskRosterFiltersManager::getCurrentFilterName() const { return current ? current->id() : QString(); }
void VeskRosterFiltersManager::setCurrentFilter(const QString &id) { if (stacks.contains(id)) current = stacks.value(id); }
void VeskRosterFiltersManager::setupCurrentFilter() { setCurrentFilter(QStringLiteral("default")); }
void VeskRosterFiltersManager::readFilters() { stacks.insert(QStringLiteral("default"), new VeskDefaultFilter); order = QStringList{QStringLiteral("default")}; }
QStringList VeskRosterFiltersManager::getFilterNames() const { return order; }
QStringList VeskRosterFiltersManager::getAvailableFilters() const { return filterNames.keys(); }
QString VeskRosterFiltersManager::getFilterName(const QString &kindId) const { return filterNames.value(kindId); }
QString VeskRosterFiltersManager::getFilterId(const QString &kindName) const { return filterNames.key(kindName); }
VeskRosterFilter *VeskRosterFiltersManager::createFilter(const QString &, VeskRosterFilter::RosterFilterType) { return nullptr; }
VeskRosterFiltersStack *VeskRosterFiltersManager::addStackFilter(const QString &name, VeskRosterFilter::RosterFilterType type)
{ auto *s = new VeskRosterFiltersStack(name, type); stacks.insert(name, s); order.append(name); return s; }
VeskRosterFiltersStack *VeskRosterFiltersManager::getStackFilter(const QString &id) { return id == QLatin1String("default") ? nullptr : stacks.value(id); }
void VeskRosterFiltersManager::rename(const QString &, const QString &) {}
void VeskRosterFiltersManager::removeStackFilter(const QString &) {}
void VeskRosterFiltersManager::upFilter(const QString &) {}
void VeskRosterFiltersManager::downFilter(const QString &) {}
