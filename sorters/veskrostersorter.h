#pragma once

#include <vesk_roster_filter_export.h>

class VeskBuddy;

// A comparator: lessThan() answers 0 when it cannot tell the entries apart,
// otherwise a value whose sign gives the direction (see each comparator).
// The ascending flag is data for the sorters manager; comparators never read it.
class VESK_ROSTER_FILTER_EXPORT VeskRosterSorter
{
public:
    VeskRosterSorter();
    virtual ~VeskRosterSorter();
    virtual int lessThan(const VeskBuddy &a, const VeskBuddy &b) const = 0;

    void setAscending(bool ascending);
    bool isAscending() const;

private:
    Q_DISABLE_COPY(VeskRosterSorter)

    bool ascending;
};
