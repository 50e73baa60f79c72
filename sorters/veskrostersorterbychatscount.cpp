#include "veskrostersorterbychatscount.h"

#include "veskrostersorter_p.h"

#include <veskarg.h>
#include <veskbuddy.h>

namespace {

// Anything but a contact with an integer "chats_count" attribute counts 0.
int chatsCount(const VeskBuddy &buddy)
{
    const VeskBuddyContact contact(buddy);
    if (!contact.isValid())
        return 0;
    const VeskArg count = contact.getAttrib(QStringLiteral("chats_count"));
    return count.getType() == VeskArg::TypeInt ? count.toInt() : 0;
}

} // namespace

VeskRosterSorterByChatsCount::VeskRosterSorterByChatsCount() = default;

VeskRosterSorterByChatsCount::~VeskRosterSorterByChatsCount() = default;

int VeskRosterSorterByChatsCount::lessThan(const VeskBuddy &a, const VeskBuddy &b) const
{
    return VeskSorterDetail::difference(chatsCount(b), chatsCount(a));
}
