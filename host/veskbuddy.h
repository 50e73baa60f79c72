#pragma once

#include "vesk_host_export.h"
#include "veskarg.h"
#include "veskpresence.h"

#include <QString>

class VeskAccountConnection;
class VeskBuddyGroup;
struct VeskRosterEntry;

// A handle to one roster entry. Copies refer to the same entry. getType()
// answers 1 for a group, 3 for a contact, 5 for a temporary contact; any other
// code is none of the three.
class VESK_HOST_EXPORT VeskBuddy
{
public:
    enum { TypeGroup = 1, TypeContact = 3, TypeTemporary = 5 };

    VeskBuddy();
    VeskBuddy(const VeskBuddy &other);
    VeskBuddy &operator=(const VeskBuddy &other);

    // Virtual slots, in this order: destructor, isValid, getDisplay.
    virtual ~VeskBuddy();
    virtual bool isValid() const;
    virtual QString getDisplay() const;

    int getType() const;

protected:
    friend struct VeskStandInAccess;
    const VeskRosterEntry *entry;
};

// Contact view of an entry; it can be built from any entry.
class VESK_HOST_EXPORT VeskBuddyContact : public VeskBuddy
{
public:
    explicit VeskBuddyContact(const VeskBuddy &buddy);
    ~VeskBuddyContact() override;

    // True when the view refers to a contact.
    bool isValid() const override;

    VeskArg getAttrib(QString name) const;
    VeskBuddy getParent() const;
    VeskAccountConnection *getAccount() const;
    VeskPresence getPresence() const;
    VeskSubscriptionType getSubscription() const;
};

// Group view of an entry.
class VESK_HOST_EXPORT VeskBuddyGroup : public VeskBuddy
{
public:
    explicit VeskBuddyGroup(const VeskBuddy &buddy);
    ~VeskBuddyGroup() override;

    int getPos() const;
};

// Temporary-contact view of an entry.
class VESK_HOST_EXPORT VeskBuddyTemporary : public VeskBuddy
{
public:
    explicit VeskBuddyTemporary(const VeskBuddy &buddy);
    ~VeskBuddyTemporary() override;

    VeskAccountConnection *getAccount() const;
    VeskBuddyGroup getGroup() const;
    VeskPresence getPresence() const;
};
