#pragma once

// Construction API of the stand-in host. The demo host and the tests build
// rosters, accounts, protocols and the settings directory with it; the filter
// library itself never includes this header.

#include "vesk_standin_export.h"

#include <veskarg.h>
#include <veskbuddy.h>
#include <veskpresence.h>

#include <QList>
#include <QString>
#include <QVariant>

#include <utility>
#include <vector>

class VeskAccountConnection;
class VeskProtocol;

namespace VeskStandIn {

VESK_STANDIN_EXPORT VeskPresence makePresence(const QString &id, const QString &display = QString(),
    const QString &description = QString(), int flag = 0, int priority = 0);
VESK_STANDIN_EXPORT VeskSubscriptionType makeSubscription(int priority);
VESK_STANDIN_EXPORT VeskArg makeIntArg(int value);
// Any type code with any value, e.g. (VeskArg::TypeString, "7").
VESK_STANDIN_EXPORT VeskArg makeArg(int type, const QVariant &value);

// Protocols and accounts are listed in the order of their addition.
VESK_STANDIN_EXPORT VeskProtocol *addProtocol(
    const QString &name, const QList<VeskPresence> &defaultPresences);
VESK_STANDIN_EXPORT VeskAccountConnection *addAccount(
    const QString &uid, const QString &protocolName);

// A contact's attributes by name, in the order of their first insertion;
// inserting a name again replaces its value. A short list, as the stand-in
// keeps them: a QHash would cost a few kilobytes per contact under Qt 6.
class Attributes
{
public:
    void insert(const QString &name, const VeskArg &value)
    {
        for (auto &item : items) {
            if (item.first == name) {
                item.second = value;
                return;
            }
        }
        items.emplace_back(name, value);
    }
    std::vector<std::pair<QString, VeskArg>> items;
};

struct ContactInfo
{
    QString display;
    VeskBuddy group; // a default-constructed handle: no group
    VeskAccountConnection *account = nullptr;
    VeskPresence presence;
    int subscription = 0;
    Attributes attributes;
};

// Groups are listed by VeskRoster::getGroupsNames() in the order of addition.
VESK_STANDIN_EXPORT VeskBuddy addGroup(const QString &name, int pos);
VESK_STANDIN_EXPORT VeskBuddy addContact(const ContactInfo &info);
// A temporary contact has no subscription and no attributes.
VESK_STANDIN_EXPORT VeskBuddy addTemporary(const ContactInfo &info);
// An entry of any kind code (e.g. 0 or 7), with a display name and nothing else.
VESK_STANDIN_EXPORT VeskBuddy addEntry(int typeCode, const QString &display);
// What a live roster does to an entry while it is shown: a new presence (for
// a contact or temporary contact), a new attribute value (for a contact).
// Entries of other kinds are left as they are.
VESK_STANDIN_EXPORT void setPresence(const VeskBuddy &buddy, const VeskPresence &presence);
VESK_STANDIN_EXPORT void setAttribute(
    const VeskBuddy &buddy, const QString &name, const VeskArg &value);
// What a live roster does besides: renames an entry (a contact, a temporary
// contact or a group), moves a contact to another group (a default handle:
// none), changes its subscription, and removes an entry. Removing a group
// drops its name from VeskRoster::getGroupsNames(); its contacts must have
// left it before. A removed entry's handles become invalid.
VESK_STANDIN_EXPORT void setDisplay(const VeskBuddy &buddy, const QString &display);
VESK_STANDIN_EXPORT void setGroup(const VeskBuddy &buddy, const VeskBuddy &group);
VESK_STANDIN_EXPORT void setSubscription(const VeskBuddy &buddy, int priority);
VESK_STANDIN_EXPORT void removeEntry(const VeskBuddy &buddy);
// The same number for all handles of one entry while it exists, 0 for none:
// a key for tables that follow entries.
VESK_STANDIN_EXPORT quintptr entryKey(const VeskBuddy &buddy);
// Every entry added since the last reset, in the order of addition.
VESK_STANDIN_EXPORT QList<VeskBuddy> entries();
// Forgets entries, groups, accounts and protocols; earlier handles and
// pointers become invalid.
VESK_STANDIN_EXPORT void resetRoster();

// Points the settings store at a directory (created when missing) and loads
// what an earlier store, in this process or another, wrote there.
VESK_STANDIN_EXPORT void setSettingsDir(const QString &dir);
// The file in which the store keeps its values.
VESK_STANDIN_EXPORT QString settingsFilePath();
// Off: the store keeps changes in memory only and never creates the
// directory (a program that holds only a shared lock must not write). Takes
// effect from the next setSettingsDir() on as well.
VESK_STANDIN_EXPORT void setSettingsPersistent(bool persistent);
// Whether a fresh read of the settings file gives back every value in
// memory; otherwise *error names the file and the reason.
VESK_STANDIN_EXPORT bool settingsStored(QString *error);

} // namespace VeskStandIn
