// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskrostersorterbyname.h"

VeskRosterSorterByName::VeskRosterSorterByName() = default;
VeskRosterSorterByName::~VeskRosterSorterByName() = default;
int VeskRosterSorterByName::lessThan(const VeskBuddy &, const VeskBuddy &) const { return 0; }
