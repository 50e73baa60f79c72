#include "veskrostersorter.h"

VeskRosterSorter::VeskRosterSorter()
    : ascending(true)
{ }

VeskRosterSorter::~VeskRosterSorter() = default;

void VeskRosterSorter::setAscending(bool value)
{
    ascending = value;
}

bool VeskRosterSorter::isAscending() const
{
    return ascending;
}
