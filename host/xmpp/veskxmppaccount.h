#pragma once

#include "vesk_xmpp_export.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

class VeskXmppRoster;
class VeskXmppAccountPrivate;

struct VeskXmppSettings
{
    QString jid; // bare: user@domain
    // Held in memory only, for reconnecting; never written anywhere.
    QByteArray password;
    // Empty: what the library resolves for the JID's domain.
    QString host;
    quint16 port = 0;
    // A CA certificate to trust besides the system's.
    QString caFile;
    // No TLS at all; the programs allow it for a loopback server only.
    bool insecure = false;
    // Connect again, waiting longer each time, when the server goes away.
    bool reconnect = false;
    // Empty: the server picks one, so that two programs on one account do
    // not push each other out.
    QString resource;
};

// One XMPP account's connection. It logs in, fetches the roster, sends its
// presence and hands what the server says to its roster mapping. The XMPP
// library's loop runs from Qt's: a socket notifier wakes it when data
// arrives, a timer otherwise (connecting, the library's own timers).
class VESK_XMPP_EXPORT VeskXmppAccount : public QObject
{
    Q_OBJECT
public:
    enum State {
        Disconnected,
        Connecting,
        Connected, // logged in and the roster received
        Waiting, // lost; connecting again after retryDelay()
        Failed, // refused for good (a wrong password, an untrusted server)
    };
    Q_ENUM(State)

    ~VeskXmppAccount() override;

    QString jid() const;
    VeskXmppRoster *roster() const;
    State state() const;
    // Why the last attempt failed or the connection was lost: one line.
    QString errorText() const;
    // Milliseconds until the next attempt while Waiting.
    int retryDelay() const;
    // Milliseconds since the last presence arrived, or since log-in.
    qint64 quietFor() const;
    // The number of stanzas handled since the object was made.
    quint64 stanzaCount() const;

public Q_SLOTS:
    void connectToServer();
    void disconnectFromServer();

Q_SIGNALS:
    void stateChanged(VeskXmppAccount::State state);

private:
    friend class VeskXmppHost;
    friend class VeskXmppAccountPrivate;
    VeskXmppAccount(VeskXmppRoster *roster, const VeskXmppSettings &settings);

    std::unique_ptr<VeskXmppAccountPrivate> d;
};
