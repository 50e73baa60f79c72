#pragma once

// Not part of the library's API: sorting a whole list of entries at once with
// the answers the sorters manager's lessThan() gives, but reading each entry
// from the host once per sort instead of twice per comparison.

#include <QVector>

class VeskBuddy;
class VeskRosterSorter;

namespace VeskRosterSortKeys {

struct Step
{
    const VeskRosterSorter *sorter;
    bool ascending;
};

// Indices into `entries` in the order std::stable_sort gives them when it
// asks the chain (the first step whose comparator tells two entries apart
// decides, read through its direction; none: false). Every pair of entries
// gets the chain's own answer, so the order is the per-pair order wherever
// that is a strict weak order. Nothing read here outlives the call.
QVector<int> sortedOrder(const QVector<Step> &chain, const QVector<VeskBuddy> &entries);

} // namespace VeskRosterSortKeys
