#pragma once

#include <veskbuddy.h>
#include <veskentrykind_p.h>
#include <veskpresence.h>

#include <QtGlobal>

#include <limits>

namespace VeskSorterDetail {

// The difference later - earlier, clamped to the int range: exact whenever it
// fits, and with the right sign when a hostile value would overflow a plain
// int subtraction (which would also break the ordering the view relies on).
inline int difference(int later, int earlier)
{
    const qint64 value = qint64(later) - qint64(earlier);
    return int(qBound(qint64(std::numeric_limits<int>::min()), value,
                      qint64(std::numeric_limits<int>::max())));
}

// Only contacts and temporary contacts have a presence the comparators rank.
inline bool hasPresence(int type)
{
    return type == VeskEntryKind::Contact || type == VeskEntryKind::Temporary;
}

inline VeskPresence presenceOf(const VeskBuddy &buddy, int type)
{
    return type == VeskEntryKind::Contact ? VeskBuddyContact(buddy).getPresence()
                                          : VeskBuddyTemporary(buddy).getPresence();
}

} // namespace VeskSorterDetail
