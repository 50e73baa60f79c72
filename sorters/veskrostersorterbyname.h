#pragma once

#include "veskrostersorter.h"

// Compares two groups that have positions by position, anything else by the
// lower-cased display texts in locale order. lessThan() is positive when a
// sorts after b; for positioned groups it is never negative: a smaller or
// equal position of a gives 0.
class VESK_ROSTER_FILTER_EXPORT VeskRosterSorterByName : public VeskRosterSorter
{
public:
    VeskRosterSorterByName();
    ~VeskRosterSorterByName() override;
    int lessThan(const VeskBuddy &a, const VeskBuddy &b) const override;
};
