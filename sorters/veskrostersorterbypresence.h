#pragma once

#include "veskrostersorter.h"

class VESK_ROSTER_FILTER_EXPORT VeskRosterSorterByPresence : public VeskRosterSorter
{
public:
    VeskRosterSorterByPresence();
    ~VeskRosterSorterByPresence() override;
    int lessThan(const VeskBuddy &a, const VeskBuddy &b) const override;
};
