#pragma once

#include "veskrostersorter.h"

// Compares the contacts' "chats_count" attributes: lessThan() is positive when
// b has more chats than a. Anything but a contact with an integer attribute
// counts 0.
class VESK_ROSTER_FILTER_EXPORT VeskRosterSorterByChatsCount : public VeskRosterSorter
{
public:
    VeskRosterSorterByChatsCount();
    ~VeskRosterSorterByChatsCount() override;
    int lessThan(const VeskBuddy &a, const VeskBuddy &b) const override;
};
