#pragma once

#include <QString>
#include <QStringList>

#include <memory>

class VeskXmppHost;

// The live-roster options: --xmpp JID (repeatable), --xmpp-server HOST:PORT,
// --xmpp-ca FILE, --xmpp-insecure. The password comes from
// VESK_XMPP_PASSWORD or, on a terminal, a prompt without echo; never from
// an argument.
struct VeskXmppOptions
{
    QStringList jids;
    QString server;
    QString caFile;
    bool insecure = false;

    bool isSet() const { return !jids.isEmpty(); }
    // Takes arguments[*i] (and its value) when it is one of these options.
    bool take(const QStringList &arguments, int *i);
    static QString names();
};

// Connects every account, waits until its roster is in and its presences
// have been quiet for half a second (at most 10 s), and leaves the accounts
// connected while the caller shows the stand-in roster they filled. Refuses
// with one line when an account cannot log in.
std::unique_ptr<VeskXmppHost> veskLoadLiveRoster(const VeskXmppOptions &options);
