#pragma once

#include "vesk_xmpp_export.h"

#include <veskbuddy.h>

#include <QHash>
#include <QObject>

#include <memory>
#include <vector>

class VeskXmppAccount;
class VeskXmppRoster;
struct VeskXmppSettings;

// The live host: keeps the stand-in host's roster in step with XMPP accounts.
// Each account is a host account (uid = its bare JID, protocol "jabber");
// its roster items, presences and messages become contacts, groups and
// temporary contacts of the host roster, and every change is told through
// the three signals below, so that a roster model can follow entry by entry.
//
// Groups are shared: a group name used by two accounts is one host group.
// The entries stay in the stand-in when the host goes (the stand-in's
// resetRoster() forgets them).
class VESK_XMPP_EXPORT VeskXmppHost : public QObject
{
    Q_OBJECT
public:
    explicit VeskXmppHost(QObject *parent = nullptr);
    ~VeskXmppHost() override;

    // A connection for an account; it connects on connectToServer().
    VeskXmppAccount *addAccount(const VeskXmppSettings &settings);
    // The mapping of an account without a connection, driven by its caller
    // (tests and benchmarks feed it stanzas' contents directly).
    VeskXmppRoster *addRoster(const QString &bareJid);
    QList<VeskXmppAccount *> accounts() const;

    // The presences an XMPP contact can be in, as the host's protocol offers
    // them: "online", "chat", "away", "xa", "dnd" and "offline".
    static QList<VeskPresence> presences();
    static VeskPresence presence(const QString &id, const QString &description = QString());

    // What the programs check before connecting: "HOST:PORT" (an IPv6
    // address in brackets), and whether settings are acceptable: a bare JID,
    // and no TLS only for a server on the loopback address. One line on
    // refusal, an empty text otherwise.
    static bool parseServer(const QString &text, QString *host, quint16 *port);
    static QString settingsProblem(const VeskXmppSettings &settings);
    static bool isLoopback(const QString &host);

Q_SIGNALS:
    // A contact, temporary contact or group has been added to the host roster.
    void entryAdded(const VeskBuddy &entry);
    // The entry is about to go; its handle is still valid during the call.
    void entryAboutToBeRemoved(const VeskBuddy &entry);
    // Its display, presence, subscription or chats count changed.
    void entryChanged(const VeskBuddy &entry);
    // Between these two, many entries come and go at once (a whole roster
    // arrived) and are not told one by one: a model lets go of the entries
    // it holds on the first and reads VeskStandIn::entries() anew on the
    // second.
    void entriesAboutToBeReset();
    void entriesReset();

private:
    friend class VeskXmppRoster;
    // Changes made while one lives are told as one reset.
    struct Bulk
    {
        explicit Bulk(VeskXmppHost *host);
        ~Bulk();
        VeskXmppHost *host;
    };
    void added(const VeskBuddy &entry);
    void removing(const VeskBuddy &entry);
    void changed(const VeskBuddy &entry);
    int bulkDepth = 0;
    // The host group of that name, added on its first use; released when the
    // last entry in it goes, so that no empty group lingers.
    VeskBuddy acquireGroup(const QString &name);
    void releaseGroup(const QString &name);

    struct Group
    {
        VeskBuddy entry;
        int users = 0;
    };
    QHash<QString, Group> groups;
    int nextGroupPos = 1;
    std::vector<std::unique_ptr<VeskXmppRoster>> rosters;
    std::vector<std::unique_ptr<VeskXmppAccount>> accountList;
};
