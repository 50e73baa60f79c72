#pragma once

// The roster every leaf-filter table runs against, and the leaf kinds by name.

#include <veskfiltertree.h>

#include <veskaccountfilter.h>
#include <veskdescriptionfilter.h>
#include <veskdisplayfilter.h>
#include <veskgroupfilter.h>
#include <veskpresencefilter.h>
#include <veskprotocolfilter.h>

#include <memory>

using namespace VeskFilterTree;

struct LabelledEntry
{
    QString label;
    VeskBuddy buddy;
};

// contact:    "Bobby bob" in Friends, through alice@home on jabber, "away"
// temporary:  "bob" in Work, through bob on icq, "away"
// group:      the group Friends
// invalid:    an entry of kind 7 named "xa.by"
// no account: contact "Bobby" in Work, known through no account, no description
// bare:       contact with no name and no group, through carol on a protocol
//             with an empty name, no description
// The presences "online" and "away" are offered as "Online" and "Away".
inline QList<LabelledEntry> buildRoster()
{
    using namespace VeskStandIn;
    resetRoster();
    const VeskBuddy friends = addGroup(QStringLiteral("Friends"), 1);
    const VeskBuddy work = addGroup(QStringLiteral("Work"), 2);
    addProtocol(QStringLiteral("jabber"),
        { makePresence(QStringLiteral("online"), QStringLiteral("Online")),
            makePresence(QStringLiteral("away"), QStringLiteral("Away")) });
    const VeskPresence away
        = makePresence(QStringLiteral("away"), QString(), QStringLiteral("away"));
    const auto info = [&](const char *display, const VeskBuddy &group,
                          VeskAccountConnection *account, const VeskPresence &presence) {
        ContactInfo info;
        info.display = QLatin1String(display);
        info.group = group;
        info.account = account;
        info.presence = presence;
        return info;
    };
    return {
        { QStringLiteral("contact"),
            addContact(info("Bobby bob", friends,
                addAccount(QStringLiteral("alice@home"), QStringLiteral("jabber")), away)) },
        { QStringLiteral("temporary"),
            addTemporary(info(
                "bob", work, addAccount(QStringLiteral("bob"), QStringLiteral("icq")), away)) },
        { QStringLiteral("group"), friends },
        { QStringLiteral("invalid"), addEntry(7, QStringLiteral("xa.by")) },
        { QStringLiteral("no account"), addContact(info("Bobby", work, nullptr, {})) },
        { QStringLiteral("bare"),
            addContact(info("", {}, addAccount(QStringLiteral("carol"), QString()), {})) },
    };
}

inline std::unique_ptr<VeskRosterFilter> makeFilter(const QString &kind)
{
    if (kind == QLatin1String("display"))
        return std::make_unique<VeskDisplayFilter>();
    if (kind == QLatin1String("description"))
        return std::make_unique<VeskDescriptionFilter>();
    if (kind == QLatin1String("group"))
        return std::make_unique<VeskGroupFilter>();
    if (kind == QLatin1String("account"))
        return std::make_unique<VeskAccountFilter>();
    if (kind == QLatin1String("protocol"))
        return std::make_unique<VeskProtocolFilter>();
    return std::make_unique<VeskPresenceFilter>();
}

// The id of the field that holds a kind's text or chosen item.
inline QString valueFieldOf(const QString &kind)
{
    const bool text = kind == QLatin1String("display") || kind == QLatin1String("description");
    return kind + QLatin1String(text ? "_filter_regexp" : "_filter_presence");
}

// The labels of the entries the filter passes, in roster order.
inline QString passing(const VeskRosterFilter &filter, const QList<LabelledEntry> &entries)
{
    QStringList labels;
    for (const LabelledEntry &entry : entries) {
        if (filter.filter(entry.buddy))
            labels << entry.label;
    }
    return labels.join(QStringLiteral(", "));
}
