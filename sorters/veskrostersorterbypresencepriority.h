#pragma once

#include "veskrostersorter.h"

class VESK_ROSTER_FILTER_EXPORT VeskRosterSorterByPresencePriority : public VeskRosterSorter
{
public:
    VeskRosterSorterByPresencePriority();
    ~VeskRosterSorterByPresencePriority() override;
    int lessThan(const VeskBuddy &a, const VeskBuddy &b) const override;
};
