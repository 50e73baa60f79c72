#include "veskrostersorterbyname.h"

#include <veskbuddy.h>

#include <QString>

VeskRosterSorterByName::VeskRosterSorterByName() = default;

VeskRosterSorterByName::~VeskRosterSorterByName() = default;

// Positive when a sorts after b. Two groups with positions are ordered by
// position, and then only "a after b" is ever reported: a smaller or equal
// position gives 0, never a negative value.
int VeskRosterSorterByName::lessThan(const VeskBuddy &a, const VeskBuddy &b) const
{
    if (a.getType() == VeskBuddy::TypeGroup && b.getType() == VeskBuddy::TypeGroup) {
        const int posA = VeskBuddyGroup(a).getPos();
        const int posB = VeskBuddyGroup(b).getPos();
        if (posA != 0 || posB != 0)
            return posA > posB ? 1 : 0;
    }

    const QString lowerA = a.getDisplay().toLower();
    const QString lowerB = b.getDisplay().toLower();
    // The collator calls identical texts equal; this spares building one for
    // the frequent case of names differing only in letter case.
    if (lowerA == lowerB)
        return 0;
    return QString::localeAwareCompare(lowerA, lowerB);
}
