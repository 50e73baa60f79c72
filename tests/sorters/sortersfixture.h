#pragma once

// Roster entries for the sorting tests.

#include <veskstandin.h>

namespace SortersFixture {

// A contact (or a temporary contact) with a presence flag and priority, a
// subscription priority and, when given, a "chats_count" attribute.
inline VeskBuddy contact(const char *display, int flag = 0, int priority = 0, int subscription = 0,
    const VeskArg &chats = VeskArg(), bool temporary = false)
{
    VeskStandIn::ContactInfo info;
    info.display = QString::fromUtf8(display);
    info.presence
        = VeskStandIn::makePresence(QStringLiteral("p"), QString(), QString(), flag, priority);
    info.subscription = subscription;
    if (chats.getType() != 0)
        info.attributes.insert(QStringLiteral("chats_count"), chats);
    return temporary ? VeskStandIn::addTemporary(info) : VeskStandIn::addContact(info);
}

inline VeskBuddy withChats(const char *display, int chats)
{
    return contact(display, 0, 0, 0, VeskStandIn::makeIntArg(chats));
}

} // namespace SortersFixture
