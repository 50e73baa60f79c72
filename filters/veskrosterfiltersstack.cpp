// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskrosterfiltersstack.h"

VeskRosterFiltersStack::VeskRosterFiltersStack(const QString &name, RosterFilterType type)
    : stackName(name), type(type), advanced(false) {}
VeskRosterFiltersStack::~VeskRosterFiltersStack() { qDeleteAll(filters); }
VeskRosterFilter::RosterFilterType VeskRosterFiltersStack::getType() const { return type; }
QString VeskRosterFiltersStack::id() const { return stackName; }
QString VeskRosterFiltersStack::name() const { return stackName; }
QString VeskRosterFiltersStack::display() const { return QString(); }
bool VeskRosterFiltersStack::filter(const VeskBuddy &) const { return false; }
void VeskRosterFiltersStack::setName(const QString &name) { stackName = name; }
void VeskRosterFiltersStack::appendFilter(VeskRosterFilter *filter) { filter->setParent(this); filters.append(filter); }
void VeskRosterFiltersStack::removeFilter(VeskRosterFilter *) {}
QList<VeskRosterFilter *> VeskRosterFiltersStack::getFilters() const { return filters; }
void VeskRosterFiltersStack::setAdvancedMode(bool a) { advanced = a; }
bool VeskRosterFiltersStack::isAdvancedMode() const { return advanced; }
void VeskRosterFiltersStack::readFilterSettings() {}
void VeskRosterFiltersStack::writeFilterSettings() {}
