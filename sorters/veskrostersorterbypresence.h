#pragma once

#include "veskrostersorter.h"

// Sets presences with flag 5 apart, then compares subscription priorities
// (0 for a temporary contact). lessThan() is positive when only a's presence
// has flag 5, negative when only b's has, and otherwise positive when b's
// subscription has the higher priority. Groups and other entries give 0.
class VESK_ROSTER_FILTER_EXPORT VeskRosterSorterByPresence : public VeskRosterSorter
{
public:
    VeskRosterSorterByPresence();
    ~VeskRosterSorterByPresence() override;
    int lessThan(const VeskBuddy &a, const VeskBuddy &b) const override;
};
