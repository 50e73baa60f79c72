#include "benchroster.h"

#include <rosterfile.h>
#include <standin/veskstandin.h>

namespace {

int loadedContacts = -1;
std::vector<VeskBuddy> loadedEntries;

// Stand-in roster until the generator lands: same shape, not the same data.
void buildTemporaryRoster(int contacts)
{
    using namespace VeskStandIn;
    resetRoster();
    const QList<VeskPresence> presences = {
        makePresence(QStringLiteral("online"), QStringLiteral("Online"), QString(), 5, 10),
        makePresence(
            QStringLiteral("away"), QStringLiteral("Away"), QStringLiteral("at lunch"), 3, 5),
        makePresence(
            QStringLiteral("dnd"), QStringLiteral("Busy"), QStringLiteral("in a meeting"), 2, 3),
        makePresence(QStringLiteral("offline"), QStringLiteral("Offline"), QString(), 0, 0),
    };
    addProtocol(QStringLiteral("xmpp"), presences);
    addProtocol(QStringLiteral("irc"), presences);
    const QList<VeskAccountConnection *> accounts = {
        addAccount(QStringLiteral("me@example.org"), QStringLiteral("xmpp")),
        addAccount(QStringLiteral("me"), QStringLiteral("irc")),
    };
    const QStringList groupNames = { QStringLiteral("Friends"), QStringLiteral("Work"),
        QStringLiteral("Family"), QStringLiteral("Blocked"), QStringLiteral("Sport") };
    QList<VeskBuddy> groups;
    for (int i = 0; i < groupNames.size(); ++i)
        groups.append(addGroup(groupNames.at(i), i));
    const QStringList first = { QStringLiteral("Anna"), QStringLiteral("Bob"),
        QStringLiteral("Chris"), QStringLiteral("Dana"), QStringLiteral("Erik"),
        QStringLiteral("Frank"), QStringLiteral("Gina"), QStringLiteral("Hans"),
        QStringLiteral("Ines"), QStringLiteral("Joan") };
    const QStringList last = { QStringLiteral("Berg"), QStringLiteral("Svensson"),
        QStringLiteral("Ito"), QStringLiteral("Novak"), QStringLiteral("Kowalski"),
        QStringLiteral("Durand"), QStringLiteral("Lee") };
    quint32 state = BenchRoster::seed;
    auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    };
    for (int i = 0; i < contacts; ++i) {
        ContactInfo info;
        info.display = first.at(next() % first.size()) + QLatin1Char(' ')
            + last.at(next() % last.size()) + QLatin1Char(' ') + QString::number(next() % 1000);
        info.group = groups.at(next() % groups.size());
        info.account = accounts.at(next() % accounts.size());
        info.presence = presences.at(next() % presences.size());
        info.subscription = next() % 4;
        if (next() % 10 < 7)
            info.attributes.insert(QStringLiteral("chats_count"), makeIntArg(next() % 50));
        if (next() % 20 == 0)
            addTemporary(info);
        else
            addContact(info);
    }
}

} // namespace

const std::vector<VeskBuddy> &BenchRoster::load(int contacts)
{
    if (contacts == loadedContacts)
        return loadedEntries;
    loadedEntries.clear();
    if (!VeskRosterFile::load(VeskRosterFile::generate(contacts, seed), nullptr))
        buildTemporaryRoster(contacts);
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    loadedEntries.assign(entries.cbegin(), entries.cend());
    loadedContacts = contacts;
    return loadedEntries;
}
