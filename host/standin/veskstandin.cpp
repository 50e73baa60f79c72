#include "veskstandin.h"

#include <veskaccount.h>
#include <veskhost_p.h>
#include <veskprotocol.h>
#include <vesksettingsmanager.h>

namespace VeskStandIn {

namespace {
    VeskBuddy addEntryData(std::unique_ptr<VeskRosterEntry> entry)
    {
        VeskRosterStore &store = VeskRosterStore::self();
        store.entries.push_back(std::move(entry));
        return VeskStandInAccess::handle(store.entries.back().get());
    }

    std::unique_ptr<VeskRosterEntry> contactEntry(int type, const ContactInfo &info)
    {
        auto entry = std::make_unique<VeskRosterEntry>();
        entry->type = type;
        entry->display = info.display;
        entry->group = VeskStandInAccess::entryOf(info.group);
        entry->account = info.account;
        entry->presence = info.presence;
        return entry;
    }
} // namespace

VeskPresence makePresence(
    const QString &id, const QString &display, const QString &description, int flag, int priority)
{
    return VeskStandInAccess::makePresence(id, display, description, flag, priority);
}

VeskSubscriptionType makeSubscription(int priority)
{
    return VeskStandInAccess::makeSubscription(priority);
}

VeskArg makeIntArg(int value)
{
    return VeskStandInAccess::makeArg(VeskArg::TypeInt, value);
}

VeskArg makeArg(int type, const QVariant &value)
{
    return VeskStandInAccess::makeArg(type, value);
}

VeskProtocol *addProtocol(const QString &name, const QList<VeskPresence> &defaultPresences)
{
    VeskProtocol *protocol = VeskStandInAccess::newProtocol(name, defaultPresences);
    VeskStandInAccess::protocols().append(protocol);
    return protocol;
}

VeskAccountConnection *addAccount(const QString &uid, const QString &protocolName)
{
    VeskAccountConnection *account = VeskStandInAccess::newAccount(uid, protocolName);
    VeskStandInAccess::accounts().append(account);
    return account;
}

VeskBuddy addGroup(const QString &name, int pos)
{
    auto entry = std::make_unique<VeskRosterEntry>();
    entry->type = VeskBuddy::TypeGroup;
    entry->display = name;
    entry->pos = pos;
    VeskRosterStore::self().groupNames.append(name);
    return addEntryData(std::move(entry));
}

VeskBuddy addContact(const ContactInfo &info)
{
    auto entry = contactEntry(VeskBuddy::TypeContact, info);
    entry->subscription = makeSubscription(info.subscription);
    entry->attributes.items = info.attributes.items;
    return addEntryData(std::move(entry));
}

VeskBuddy addTemporary(const ContactInfo &info)
{
    return addEntryData(contactEntry(VeskBuddy::TypeTemporary, info));
}

VeskBuddy addEntry(int typeCode, const QString &display)
{
    auto entry = std::make_unique<VeskRosterEntry>();
    entry->type = typeCode;
    entry->display = display;
    return addEntryData(std::move(entry));
}

void setPresence(const VeskBuddy &buddy, const VeskPresence &presence)
{
    const VeskRosterEntry *entry = VeskStandInAccess::entryOf(buddy);
    if (entry && (entry->type == VeskBuddy::TypeContact || entry->type == VeskBuddy::TypeTemporary))
        const_cast<VeskRosterEntry *>(entry)->presence = presence;
}

void setAttribute(const VeskBuddy &buddy, const QString &name, const VeskArg &value)
{
    const VeskRosterEntry *entry = VeskStandInAccess::entryOf(buddy);
    if (entry && entry->type == VeskBuddy::TypeContact)
        const_cast<VeskRosterEntry *>(entry)->attributes.insert(name, value);
}

namespace {
    VeskRosterEntry *mutableEntry(const VeskBuddy &buddy)
    {
        return const_cast<VeskRosterEntry *>(VeskStandInAccess::entryOf(buddy));
    }
} // namespace

void setDisplay(const VeskBuddy &buddy, const QString &display)
{
    VeskRosterEntry *entry = mutableEntry(buddy);
    if (!entry)
        return;
    if (entry->type == VeskBuddy::TypeGroup) {
        QStringList &names = VeskRosterStore::self().groupNames;
        const int at = names.indexOf(entry->display);
        if (at >= 0)
            names[at] = display;
    }
    entry->display = display;
}

void setGroup(const VeskBuddy &buddy, const VeskBuddy &group)
{
    VeskRosterEntry *entry = mutableEntry(buddy);
    if (entry && (entry->type == VeskBuddy::TypeContact || entry->type == VeskBuddy::TypeTemporary))
        entry->group = VeskStandInAccess::entryOf(group);
}

void setSubscription(const VeskBuddy &buddy, int priority)
{
    VeskRosterEntry *entry = mutableEntry(buddy);
    if (entry && entry->type == VeskBuddy::TypeContact)
        entry->subscription = makeSubscription(priority);
}

void removeEntry(const VeskBuddy &buddy)
{
    const VeskRosterEntry *entry = VeskStandInAccess::entryOf(buddy);
    if (!entry)
        return;
    VeskRosterStore &store = VeskRosterStore::self();
    // Live rosters remove what they added last more often than not.
    for (auto it = store.entries.end(); it != store.entries.begin();) {
        --it;
        if (it->get() != entry)
            continue;
        if (entry->type == VeskBuddy::TypeGroup) {
            const int at = store.groupNames.lastIndexOf(entry->display);
            if (at >= 0)
                store.groupNames.removeAt(at);
        }
        store.entries.erase(it);
        return;
    }
}

quintptr entryKey(const VeskBuddy &buddy)
{
    return quintptr(VeskStandInAccess::entryOf(buddy));
}

QList<VeskBuddy> entries()
{
    QList<VeskBuddy> result;
    for (const auto &entry : VeskRosterStore::self().entries)
        result.append(VeskStandInAccess::handle(entry.get()));
    return result;
}

void resetRoster()
{
    VeskRosterStore &store = VeskRosterStore::self();
    store.entries.clear();
    store.groupNames.clear();
    for (VeskAccountConnection *account : qAsConst(VeskStandInAccess::accounts()))
        VeskStandInAccess::deleteAccount(account);
    VeskStandInAccess::accounts().clear();
    for (VeskProtocol *protocol : qAsConst(VeskStandInAccess::protocols()))
        VeskStandInAccess::deleteProtocol(protocol);
    VeskStandInAccess::protocols().clear();
}

void setSettingsDir(const QString &dir)
{
    VeskSettingsManager::getInstance();
    VeskSettingsStore::self().open(dir);
}

QString settingsFilePath()
{
    return VeskSettingsStore::self().filePath();
}

void setSettingsPersistent(bool persistent)
{
    VeskSettingsStore::self().setPersistent(persistent);
}

bool settingsStored(QString *error)
{
    return VeskSettingsStore::self().isStored(error);
}

} // namespace VeskStandIn
