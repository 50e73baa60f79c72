#pragma once

#include "veskrostersorter.h"

class VESK_ROSTER_FILTER_EXPORT VeskRosterSorterByChatsCount : public VeskRosterSorter
{
public:
    VeskRosterSorterByChatsCount();
    ~VeskRosterSorterByChatsCount() override;
    int lessThan(const VeskBuddy &a, const VeskBuddy &b) const override;
};
