#pragma once

#include "veskrostersorter.h"

// Compares the priorities of the current presences: lessThan() is positive
// when b's presence has the higher priority. Groups and other entries give 0.
class VESK_ROSTER_FILTER_EXPORT VeskRosterSorterByPresencePriority : public VeskRosterSorter
{
public:
    VeskRosterSorterByPresencePriority();
    ~VeskRosterSorterByPresencePriority() override;
    int lessThan(const VeskBuddy &a, const VeskBuddy &b) const override;
};
