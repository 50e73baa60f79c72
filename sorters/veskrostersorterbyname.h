#pragma once

#include "veskrostersorter.h"

class VESK_ROSTER_FILTER_EXPORT VeskRosterSorterByName : public VeskRosterSorter
{
public:
    VeskRosterSorterByName();
    ~VeskRosterSorterByName() override;
    int lessThan(const VeskBuddy &a, const VeskBuddy &b) const override;
};
