// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskrostersorterbypresencepriority.h"

VeskRosterSorterByPresencePriority::VeskRosterSorterByPresencePriority() = default;
VeskRosterSorterByPresencePriority::~VeskRosterSorterByPresencePriority() = default;
int VeskRosterSorterByPresencePriority::lessThan(const VeskBuddy &, const VeskBuddy &) const { return 0; }
