#include "veskxmpproster.h"

#include "veskxmpphost.h"

#include <veskstandin.h>

#include <QSet>

namespace {

const QString chatsAttribute = QStringLiteral("chats_count");

// How available a <show/> is, for two resources of the same priority.
int availability(const QString &show)
{
    if (show == QLatin1String("chat"))
        return 5;
    if (show.isEmpty())
        return 4;
    if (show == QLatin1String("dnd"))
        return 3;
    if (show == QLatin1String("away"))
        return 2;
    return 1; // xa, and what no client should send
}

QString presenceIdOf(const QString &show)
{
    if (show.isEmpty())
        return QStringLiteral("online");
    if (show == QLatin1String("chat") || show == QLatin1String("away")
        || show == QLatin1String("xa") || show == QLatin1String("dnd"))
        return show;
    // An unknown <show/> still says the contact is there.
    return QStringLiteral("online");
}

QStringList distinctGroups(const QStringList &groups)
{
    QStringList result;
    for (const QString &group : groups) {
        if (!group.isEmpty() && !result.contains(group))
            result.append(group);
    }
    return result;
}

} // namespace

VeskXmppRoster::VeskXmppRoster(VeskXmppHost *host, const QString &bareJid)
    : host(host)
    , ownJid(bareJid.toLower())
    , hostAccount(VeskStandIn::addAccount(bareJid, QStringLiteral("jabber")))
{ }

VeskXmppRoster::~VeskXmppRoster() = default;

int VeskXmppRoster::subscriptionPriority(const QString &subscription)
{
    // Both directions rank first, then the contact's presence reaching us,
    // then ours reaching them only, then none.
    if (subscription == QLatin1String("both"))
        return 3;
    if (subscription == QLatin1String("to"))
        return 2;
    if (subscription == QLatin1String("from"))
        return 1;
    return 0;
}

QString VeskXmppRoster::bareOf(const QString &jid, QString *resource) const
{
    const int slash = jid.indexOf(QLatin1Char('/'));
    if (resource)
        *resource = slash < 0 ? QString() : jid.mid(slash + 1);
    return (slash < 0 ? jid : jid.left(slash)).toLower();
}

QVector<VeskBuddy> VeskXmppRoster::entriesOf(const QString &bareJid) const
{
    const auto it = contacts.constFind(bareJid.toLower());
    return it == contacts.constEnd() ? QVector<VeskBuddy>() : it->entries;
}

void VeskXmppRoster::setRoster(const QList<Item> &items)
{
    // A whole roster at once: one reset of the views instead of thousands
    // of single rows.
    const VeskXmppHost::Bulk bulk(host);
    QSet<QString> listed;
    for (const Item &item : items) {
        if (item.subscription == QLatin1String("remove"))
            continue;
        listed.insert(item.jid.toLower());
        upsert(item);
    }
    QStringList gone;
    for (auto it = contacts.cbegin(); it != contacts.cend(); ++it) {
        if (!it->temporary && !listed.contains(it.key()))
            gone.append(it.key());
    }
    for (const QString &bare : qAsConst(gone))
        removeContact(bare);
}

void VeskXmppRoster::pushItem(const Item &item)
{
    if (item.subscription == QLatin1String("remove"))
        removeContact(item.jid.toLower());
    else
        upsert(item);
}

void VeskXmppRoster::upsert(const Item &item)
{
    const QString bare = item.jid.toLower();
    if (bare.isEmpty() || bare == ownJid)
        return;
    const QString display = item.name.isEmpty() ? item.jid : item.name;
    const QStringList groups = distinctGroups(item.groups);
    const int subscription = subscriptionPriority(item.subscription);
    auto it = contacts.find(bare);
    if (it == contacts.end() || it->temporary) {
        // A temporary contact becomes a contact: the entry changes kind, so
        // it goes and the contact's entries come, with what it had.
        Contact contact;
        if (it != contacts.end()) {
            contact.resources = it->resources;
            dropEntries(*it, 0);
            contacts.erase(it);
        }
        contact.display = display;
        contact.groups = groups;
        contact.subscription = subscription;
        it = contacts.insert(bare, contact);
        applyPresence(*it, true);
        addEntries(bare, *it, 0);
        return;
    }
    Contact &contact = *it;
    const bool renamed = contact.display != display;
    const bool resubscribed = contact.subscription != subscription;
    contact.display = display;
    contact.subscription = subscription;
    // Entries of groups kept stay as they are (and where they are); those of
    // groups left go, and the new groups get entries.
    if (contact.groups != groups) {
        const QStringList old = contact.groups;
        QVector<VeskBuddy> kept;
        QStringList keptGroups;
        for (int i = 0; i < contact.entries.size(); ++i) {
            const QString group = old.value(i);
            const bool stays = old.isEmpty() ? groups.isEmpty() : groups.contains(group);
            if (stays) {
                kept.append(contact.entries.at(i));
                keptGroups.append(group);
                continue;
            }
            host->removing(contact.entries.at(i));
            VeskStandIn::removeEntry(contact.entries.at(i));
            if (!group.isEmpty())
                host->releaseGroup(group);
        }
        contact.entries = kept;
        contact.groups = keptGroups;
        for (const QString &group : groups) {
            if (!contact.groups.contains(group))
                contact.groups.append(group);
        }
        if (groups.isEmpty() && contact.entries.isEmpty())
            contact.groups.clear();
        addEntries(bare, contact, contact.entries.size());
    }
    if (renamed || resubscribed) {
        for (const VeskBuddy &entry : qAsConst(contact.entries)) {
            if (renamed)
                VeskStandIn::setDisplay(entry, display);
            if (resubscribed)
                VeskStandIn::setSubscription(entry, subscription);
            host->changed(entry);
        }
    }
}

void VeskXmppRoster::addEntries(const QString &bare, Contact &contact, int from)
{
    VeskStandIn::ContactInfo info;
    info.display = contact.display;
    info.account = hostAccount;
    info.presence = VeskXmppHost::presence(contact.presenceId, contact.description);
    info.subscription = contact.subscription;
    if (!contact.temporary)
        info.attributes.insert(chatsAttribute, VeskStandIn::makeIntArg(chats.value(bare)));
    const int count = contact.groups.isEmpty() ? 1 : contact.groups.size();
    for (int i = from; i < count; ++i) {
        const QString group = contact.groups.value(i);
        info.group = group.isEmpty() ? VeskBuddy() : host->acquireGroup(group);
        const VeskBuddy entry
            = contact.temporary ? VeskStandIn::addTemporary(info) : VeskStandIn::addContact(info);
        contact.entries.append(entry);
        host->added(entry);
    }
}

void VeskXmppRoster::dropEntries(Contact &contact, int from)
{
    while (contact.entries.size() > from) {
        const VeskBuddy entry = contact.entries.takeLast();
        host->removing(entry);
        VeskStandIn::removeEntry(entry);
        const QString group = contact.groups.value(contact.entries.size());
        if (!group.isEmpty())
            host->releaseGroup(group);
    }
}

void VeskXmppRoster::removeContact(const QString &bare)
{
    auto it = contacts.find(bare);
    if (it == contacts.end() || it->temporary)
        return;
    // Someone who stays online after leaving the roster is a temporary
    // contact from now on; no one would see their presence otherwise. The
    // server stops sending it anyway once the subscription is gone.
    dropEntries(*it, 0);
    contacts.erase(it);
}

VeskXmppRoster::Contact &VeskXmppRoster::temporaryFor(const QString &bare)
{
    auto it = contacts.find(bare);
    if (it != contacts.end())
        return *it;
    Contact contact;
    contact.display = bare;
    contact.temporary = true;
    contact.presenceId = QStringLiteral("offline");
    it = contacts.insert(bare, contact);
    addEntries(bare, *it, 0);
    return *it;
}

void VeskXmppRoster::presence(const QString &from, const QString &type, const QString &show,
    const QString &status, int priority)
{
    const bool available = type.isEmpty();
    if (!available && type != QLatin1String("unavailable"))
        return;
    QString resource;
    const QString bare = bareOf(from, &resource);
    if (bare.isEmpty() || bare == ownJid)
        return;
    auto it = contacts.find(bare);
    if (it == contacts.end()) {
        if (!available)
            return;
        temporaryFor(bare);
        it = contacts.find(bare);
    }
    Contact &contact = *it;
    if (available) {
        Resource &r = contact.resources[resource];
        r.show = show;
        r.status = status;
        r.priority = priority;
        r.seq = ++seq;
    } else if (resource.isEmpty()) {
        contact.resources.clear();
    } else {
        contact.resources.remove(resource);
    }
    if (contact.temporary && contact.resources.isEmpty()) {
        dropEntries(contact, 0);
        contacts.erase(it);
        return;
    }
    applyPresence(contact, false);
}

void VeskXmppRoster::applyPresence(Contact &contact, bool quiet)
{
    // The most available resource wins: the highest priority, then the most
    // available <show/>, then the latest news.
    const Resource *best = nullptr;
    for (auto it = contact.resources.cbegin(); it != contact.resources.cend(); ++it) {
        const Resource &r = *it;
        if (!best || r.priority > best->priority
            || (r.priority == best->priority
                && (availability(r.show) > availability(best->show)
                    || (availability(r.show) == availability(best->show) && r.seq > best->seq))))
            best = &r;
    }
    const QString id = best ? presenceIdOf(best->show) : QStringLiteral("offline");
    const QString description = best ? best->status : QString();
    if (id == contact.presenceId && description == contact.description)
        return;
    contact.presenceId = id;
    contact.description = description;
    if (quiet)
        return;
    const VeskPresence presence = VeskXmppHost::presence(id, description);
    for (const VeskBuddy &entry : qAsConst(contact.entries)) {
        VeskStandIn::setPresence(entry, presence);
        host->changed(entry);
    }
}

void VeskXmppRoster::message(const QString &from)
{
    const QString bare = bareOf(from);
    if (bare.isEmpty() || bare == ownJid)
        return;
    Contact &contact = contacts.contains(bare) ? contacts[bare] : temporaryFor(bare);
    const int count = ++chats[bare];
    // A temporary contact has no attributes; its count shows once it is
    // added to the roster.
    if (contact.temporary)
        return;
    for (const VeskBuddy &entry : qAsConst(contact.entries)) {
        VeskStandIn::setAttribute(entry, chatsAttribute, VeskStandIn::makeIntArg(count));
        host->changed(entry);
    }
}

void VeskXmppRoster::setOffline()
{
    const VeskXmppHost::Bulk bulk(host);
    QStringList temporaries;
    for (auto it = contacts.begin(); it != contacts.end(); ++it) {
        it->resources.clear();
        if (it->temporary)
            temporaries.append(it.key());
        else
            applyPresence(*it, false);
    }
    for (const QString &bare : qAsConst(temporaries)) {
        auto it = contacts.find(bare);
        dropEntries(*it, 0);
        contacts.erase(it);
    }
}
