#include "veskhost_p.h"

#include "veskaccount.h"
#include "veskbuddy.h"
#include "veskprotocol.h"

// The doors through which the stand-in's construction API (a library of its
// own) reaches the host's private state.

VeskPresence VeskStandInAccess::makePresence(
    const QString &id, const QString &display, const QString &description, int flag, int priority)
{
    VeskPresence presence;
    presence.id = id;
    presence.display = display;
    presence.description = description;
    presence.flag = flag;
    presence.priority = priority;
    return presence;
}

VeskSubscriptionType VeskStandInAccess::makeSubscription(int priority)
{
    VeskSubscriptionType subscription;
    subscription.priority = priority;
    return subscription;
}

VeskArg VeskStandInAccess::makeArg(int type, const QVariant &value)
{
    VeskArg arg;
    arg.type = type;
    arg.value = value;
    return arg;
}

VeskAccountConnection *VeskStandInAccess::newAccount(const QString &uid, const QString &protocol)
{
    return new VeskAccountConnection(uid, protocol);
}

void VeskStandInAccess::deleteAccount(VeskAccountConnection *account)
{
    delete account;
}

VeskProtocol *VeskStandInAccess::newProtocol(const QString &name, const QList<VeskPresence> &p)
{
    return new VeskProtocol(name, p);
}

void VeskStandInAccess::deleteProtocol(VeskProtocol *protocol)
{
    delete protocol;
}

QList<VeskAccountConnection *> &VeskStandInAccess::accounts()
{
    return VeskAccountManager::getInstance()->accounts;
}

QList<VeskProtocol *> &VeskStandInAccess::protocols()
{
    return VeskPluginManager::getInstance()->protocols;
}

VeskBuddy VeskStandInAccess::handle(const VeskRosterEntry *entry)
{
    VeskBuddy buddy;
    buddy.entry = entry;
    return buddy;
}

const VeskRosterEntry *VeskStandInAccess::entryOf(const VeskBuddy &buddy)
{
    return buddy.entry;
}

VeskRosterStore &VeskRosterStore::self()
{
    static VeskRosterStore store;
    return store;
}
