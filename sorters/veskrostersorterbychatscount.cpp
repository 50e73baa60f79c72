// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskrostersorterbychatscount.h"

VeskRosterSorterByChatsCount::VeskRosterSorterByChatsCount() = default;
VeskRosterSorterByChatsCount::~VeskRosterSorterByChatsCount() = default;
int VeskRosterSorterByChatsCount::lessThan(const VeskBuddy &, const VeskBuddy &) const { return 0; }
