// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskrostersorterbypresence.h"

VeskRosterSorterByPresence::VeskRosterSorterByPresence() = default;
VeskRosterSorterByPresence::~VeskRosterSorterByPresence() = default;
int VeskRosterSorterByPresence::lessThan(const VeskBuddy &, const VeskBuddy &) const { return 0; }
