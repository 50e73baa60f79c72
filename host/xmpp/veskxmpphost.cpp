#include "veskxmpphost.h"

#include "veskxmppaccount.h"
#include "veskxmpproster.h"

#include <veskprotocol.h>
#include <veskstandin.h>

#include <QCoreApplication>
#include <QHostAddress>

#include <algorithm>

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
    accountList.push_back(
        std::unique_ptr<VeskXmppAccount>(new VeskXmppAccount(addRoster(settings.jid), settings)));
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
        added(group.entry);
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
    removing(entry);
    VeskStandIn::removeEntry(entry);
}

bool VeskXmppHost::parseServer(const QString &text, QString *host, quint16 *port)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    if (colon <= 0)
        return false;
    bool ok = false;
    const uint number = text.mid(colon + 1).toUInt(&ok);
    if (!ok || number == 0 || number > 65535)
        return false;
    QString name = text.left(colon);
    if (name.startsWith(QLatin1Char('[')) && name.endsWith(QLatin1Char(']')))
        name = name.mid(1, name.size() - 2);
    if (name.isEmpty())
        return false;
    *host = name;
    *port = quint16(number);
    return true;
}

bool VeskXmppHost::isLoopback(const QString &host)
{
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0)
        return true;
    const QHostAddress address(host);
    return !address.isNull() && address.isLoopback();
}

QString VeskXmppHost::settingsProblem(const VeskXmppSettings &settings)
{
    const QString &jid = settings.jid;
    const int at = jid.indexOf(QLatin1Char('@'));
    if (at <= 0 || at == jid.size() - 1 || jid.contains(QLatin1Char('/'))
        || jid.indexOf(QLatin1Char('@'), at + 1) >= 0
        || std::any_of(jid.begin(), jid.end(),
            [](QChar c) { return c.isSpace() || c.category() == QChar::Other_Control; })) {
        return QCoreApplication::translate("VeskXmppHost", "\"%1\" is not a bare JID (user@domain)")
            .arg(jid);
    }
    if (settings.insecure && (settings.host.isEmpty() || !isLoopback(settings.host))) {
        return QCoreApplication::translate("VeskXmppHost",
            "--xmpp-insecure (no TLS) is accepted only with --xmpp-server on the loopback "
            "address (127.0.0.1, ::1 or localhost)");
    }
    return QString();
}

void VeskXmppHost::added(const VeskBuddy &entry)
{
    if (bulkDepth == 0)
        Q_EMIT entryAdded(entry);
}

void VeskXmppHost::removing(const VeskBuddy &entry)
{
    if (bulkDepth == 0)
        Q_EMIT entryAboutToBeRemoved(entry);
}

void VeskXmppHost::changed(const VeskBuddy &entry)
{
    if (bulkDepth == 0)
        Q_EMIT entryChanged(entry);
}

VeskXmppHost::Bulk::Bulk(VeskXmppHost *host)
    : host(host)
{
    if (host->bulkDepth++ == 0)
        Q_EMIT host->entriesAboutToBeReset();
}

VeskXmppHost::Bulk::~Bulk()
{
    if (--host->bulkDepth == 0)
        Q_EMIT host->entriesReset();
}
