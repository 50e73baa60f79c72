#include "veskxmpphost.h"

#include "veskxmppaccount.h"
#include "veskxmpproster.h"

#include <veskprotocol.h>
#include <veskstandin.h>

namespace {

struct PresenceRow
{
    const char *id;
    const char *display;
    int flag;
    int priority;
};

// The same states, names and ranks as the sample roster's "jabber" protocol,
// so that filters and sorting methods made on one work on the other.
const PresenceRow presenceTable[] = {
    { "online", "Online", 0, 50 },
    { "chat", "Free for chat", 0, 60 },
    { "away", "Away", 1, 30 },
    { "xa", "Extended away", 2, 20 },
    { "dnd", "Do not disturb", 3, 40 },
    { "offline", "Offline", 5, 0 },
};

const QString protocolName = QStringLiteral("jabber");

} // namespace

VeskXmppHost::VeskXmppHost(QObject *parent)
    : QObject(parent)
{
    // One "jabber" protocol for every host of the process, added again only
    // after the stand-in forgot it (resetRoster()).
    static VeskProtocol *registered = nullptr;
    if (!VeskPluginManager::getInstance()->getRegisteredProtocols().contains(registered))
        registered = VeskStandIn::addProtocol(protocolName, presences());
}

VeskXmppHost::~VeskXmppHost()
{
    // The accounts first: their connections talk to the rosters.
    accountList.clear();
    rosters.clear();
}

QList<VeskPresence> VeskXmppHost::presences()
{
    QList<VeskPresence> result;
    for (const PresenceRow &row : presenceTable)
        result.append(presence(QString::fromLatin1(row.id)));
    return result;
}

VeskPresence VeskXmppHost::presence(const QString &id, const QString &description)
{
    for (const PresenceRow &row : presenceTable) {
        if (id == QLatin1String(row.id)) {
            return VeskStandIn::makePresence(
                id, QString::fromLatin1(row.display), description, row.flag, row.priority);
        }
    }
    return presence(QStringLiteral("offline"), description);
}

VeskXmppAccount *VeskXmppHost::addAccount(const VeskXmppSettings &settings)
{
    accountList.push_back(std::unique_ptr<VeskXmppAccount>(
        new VeskXmppAccount(addRoster(settings.jid), settings)));
    return accountList.back().get();
}

VeskXmppRoster *VeskXmppHost::addRoster(const QString &bareJid)
{
    rosters.push_back(std::make_unique<VeskXmppRoster>(this, bareJid));
    return rosters.back().get();
}

QList<VeskXmppAccount *> VeskXmppHost::accounts() const
{
    QList<VeskXmppAccount *> result;
    for (const auto &account : accountList)
        result.append(account.get());
    return result;
}

VeskBuddy VeskXmppHost::acquireGroup(const QString &name)
{
    Group &group = groups[name];
    if (group.users++ == 0) {
        group.entry = VeskStandIn::addGroup(name, nextGroupPos++);
        Q_EMIT entryAdded(group.entry);
    }
    return group.entry;
}

void VeskXmppHost::releaseGroup(const QString &name)
{
    const auto it = groups.find(name);
    if (it == groups.end() || --it->users > 0)
        return;
    const VeskBuddy entry = it->entry;
    groups.erase(it);
    Q_EMIT entryAboutToBeRemoved(entry);
    VeskStandIn::removeEntry(entry);
}
