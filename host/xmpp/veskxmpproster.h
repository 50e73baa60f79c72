#pragma once

#include "vesk_xmpp_export.h"

#include <veskbuddy.h>

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

class VeskAccountConnection;
class VeskXmppHost;

// One account's roster as the host sees it: the mapping from what the server
// says (roster items, pushes, presences, messages) to host entries. It holds
// no protocol state of its own beyond what the mapping needs: the resources
// of each contact, to pick the most available one.
class VESK_XMPP_EXPORT VeskXmppRoster
{
public:
    struct Item
    {
        QString jid; // bare
        QString name; // empty: none
        QStringList groups;
        QString subscription; // none, from, to, both; remove on a push
    };

    VeskXmppRoster(VeskXmppHost *host, const QString &bareJid);
    ~VeskXmppRoster();

    QString jid() const { return ownJid; }
    VeskAccountConnection *account() const { return hostAccount; }

    // The whole roster, at log-in: items missing from it go, the others are
    // added or updated in place.
    void setRoster(const QList<Item> &items);
    // One roster push: added, renamed, regrouped, or removed ("remove").
    void pushItem(const Item &item);
    // A presence stanza's type ("" available, "unavailable"; others are
    // ignored), from a full or bare JID.
    void presence(const QString &from, const QString &type, const QString &show,
        const QString &status, int priority);
    // A message with a body, other than an error or a group chat's.
    void message(const QString &from);
    // The connection is gone: every contact offline, temporaries gone.
    void setOffline();

    // The host entries of a bare JID (one per group), for tests.
    QVector<VeskBuddy> entriesOf(const QString &bareJid) const;
    int contactCount() const { return int(contacts.size()); }

    // Subscription states as the host ranks them.
    static int subscriptionPriority(const QString &subscription);

private:
    struct Resource
    {
        QString show;
        QString status;
        int priority = 0;
        quint64 seq = 0;
    };
    struct Contact
    {
        QString display;
        QStringList groups; // empty: one entry without a group
        int subscription = 0;
        bool temporary = false;
        QVector<VeskBuddy> entries; // parallel to groups (one when none)
        QHash<QString, Resource> resources;
        QString presenceId;
        QString description;
    };

    void upsert(const Item &item);
    void removeContact(const QString &bare);
    void addEntries(const QString &bare, Contact &contact, int from);
    void dropEntries(Contact &contact, int from);
    void applyPresence(Contact &contact, bool force);
    void applyChats(Contact &contact);
    Contact &temporaryFor(const QString &bare);
    QString bareOf(const QString &jid, QString *resource = nullptr) const;

    VeskXmppHost *host;
    QString ownJid;
    VeskAccountConnection *hostAccount;
    QHash<QString, Contact> contacts;
    // Messages by bare JID since the program started, kept for people who
    // come and go as temporary contacts or roster items.
    QHash<QString, int> chats;
    quint64 seq = 0;
};
