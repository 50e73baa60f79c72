#include "veskrostersorterbypresence.h"
#include <veskentrykind_p.h>

#include "veskrostersorter_p.h"

namespace {

// The presence flag the comparator ranks apart from every other.
constexpr int SetApartFlag = 5;

// A temporary contact has no subscription; it ranks as priority 0.
int subscriptionPriority(const VeskBuddy &buddy, int type)
{
    return type == VeskEntryKind::Contact ? VeskBuddyContact(buddy).getSubscription().getPriority()
                                          : 0;
}

} // namespace

VeskRosterSorterByPresence::VeskRosterSorterByPresence() = default;

VeskRosterSorterByPresence::~VeskRosterSorterByPresence() = default;

int VeskRosterSorterByPresence::lessThan(const VeskBuddy &a, const VeskBuddy &b) const
{
    using namespace VeskSorterDetail;
    const int typeA = a.getType();
    const int typeB = b.getType();
    if (!hasPresence(typeA) || !hasPresence(typeB))
        return 0;

    const bool setApartA = presenceOf(a, typeA).getFlag() == SetApartFlag;
    const bool setApartB = presenceOf(b, typeB).getFlag() == SetApartFlag;
    if (setApartA != setApartB)
        return setApartA ? 1 : -1;
    return difference(subscriptionPriority(b, typeB), subscriptionPriority(a, typeA));
}
