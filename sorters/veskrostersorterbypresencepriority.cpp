#include "veskrostersorterbypresencepriority.h"

#include "veskrostersorter_p.h"

VeskRosterSorterByPresencePriority::VeskRosterSorterByPresencePriority() = default;

VeskRosterSorterByPresencePriority::~VeskRosterSorterByPresencePriority() = default;

int VeskRosterSorterByPresencePriority::lessThan(const VeskBuddy &a, const VeskBuddy &b) const
{
    using namespace VeskSorterDetail;
    const int typeA = a.getType();
    const int typeB = b.getType();
    if (!hasPresence(typeA) || !hasPresence(typeB))
        return 0;
    return difference(presenceOf(b, typeB).getPriority(), presenceOf(a, typeA).getPriority());
}
