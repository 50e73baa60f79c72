#include "veskbuddy.h"

#include "veskhost_p.h"

namespace {
const VeskRosterEntry *entryOfKind(const VeskRosterEntry *entry, int type)
{
    return entry && entry->type == type ? entry : nullptr;
}
} // namespace

VeskBuddy::VeskBuddy()
    : entry(nullptr)
{ }

VeskBuddy::VeskBuddy(const VeskBuddy &other) = default;
VeskBuddy &VeskBuddy::operator=(const VeskBuddy &other) = default;
VeskBuddy::~VeskBuddy() = default;

bool VeskBuddy::isValid() const
{
    return entry != nullptr;
}

QString VeskBuddy::getDisplay() const
{
    return entry ? entry->display : QString();
}

int VeskBuddy::getType() const
{
    return entry ? entry->type : 0;
}

VeskBuddyContact::VeskBuddyContact(const VeskBuddy &buddy)
    : VeskBuddy(buddy)
{ }

VeskBuddyContact::~VeskBuddyContact() = default;

bool VeskBuddyContact::isValid() const
{
    return entryOfKind(entry, TypeContact) != nullptr;
}

VeskArg VeskBuddyContact::getAttrib(QString name) const
{
    const VeskRosterEntry *contact = entryOfKind(entry, TypeContact);
    return contact ? contact->attributes.value(name) : VeskArg();
}

VeskBuddy VeskBuddyContact::getParent() const
{
    const VeskRosterEntry *contact = entryOfKind(entry, TypeContact);
    return VeskStandInAccess::handle(contact ? contact->group : nullptr);
}

VeskAccountConnection *VeskBuddyContact::getAccount() const
{
    const VeskRosterEntry *contact = entryOfKind(entry, TypeContact);
    return contact ? contact->account : nullptr;
}

VeskPresence VeskBuddyContact::getPresence() const
{
    const VeskRosterEntry *contact = entryOfKind(entry, TypeContact);
    return contact ? contact->presence : VeskPresence();
}

VeskSubscriptionType VeskBuddyContact::getSubscription() const
{
    const VeskRosterEntry *contact = entryOfKind(entry, TypeContact);
    return contact ? contact->subscription : VeskSubscriptionType();
}

VeskBuddyGroup::VeskBuddyGroup(const VeskBuddy &buddy)
    : VeskBuddy(buddy)
{ }

VeskBuddyGroup::~VeskBuddyGroup() = default;

int VeskBuddyGroup::getPos() const
{
    const VeskRosterEntry *group = entryOfKind(entry, TypeGroup);
    return group ? group->pos : 0;
}

VeskBuddyTemporary::VeskBuddyTemporary(const VeskBuddy &buddy)
    : VeskBuddy(buddy)
{ }

VeskBuddyTemporary::~VeskBuddyTemporary() = default;

VeskAccountConnection *VeskBuddyTemporary::getAccount() const
{
    const VeskRosterEntry *temporary = entryOfKind(entry, TypeTemporary);
    return temporary ? temporary->account : nullptr;
}

VeskBuddyGroup VeskBuddyTemporary::getGroup() const
{
    const VeskRosterEntry *temporary = entryOfKind(entry, TypeTemporary);
    return VeskBuddyGroup(VeskStandInAccess::handle(temporary ? temporary->group : nullptr));
}

VeskPresence VeskBuddyTemporary::getPresence() const
{
    const VeskRosterEntry *temporary = entryOfKind(entry, TypeTemporary);
    return temporary ? temporary->presence : VeskPresence();
}
