#pragma once

#include <QObject>
#include <QStringList>

#include <memory>

class QCommandLineParser;
class QLabel;
class QTimer;
class VeskRosterTreeModel;
class VeskRosterWindow;
class VeskXmppAccount;
class VeskXmppHost;

// The window on live XMPP accounts: the options, the password (from
// VESK_XMPP_PASSWORD or a dialog; never stored), the host that fills the
// roster, the tree model following it entry by entry, and one label per
// account in the status bar with its connection state. Accounts reconnect,
// waiting longer each time, when the server goes away.
class VeskAccountStatus : public QObject
{
    Q_OBJECT
public:
    struct Options
    {
        QStringList jids;
        QString server;
        QString caFile;
        bool insecure = false;
    };

    // The tree model follows the host: rows inserted, removed, changed, or
    // all read anew when a whole roster arrives.
    static void follow(VeskXmppHost *host, VeskRosterTreeModel *model);

    static void addOptions(QCommandLineParser &parser);
    // False with *error (one line) when the options cannot be used.
    static bool readOptions(const QCommandLineParser &parser, Options *options, QString *error);

    VeskAccountStatus(VeskRosterWindow *window, const Options &options);
    ~VeskAccountStatus() override;

    // Asks for missing passwords and connects every account; false when the
    // user cancelled.
    bool start(QString *error);
    VeskXmppHost *host() const { return xmppHost.get(); }
    // Waits until the accounts are in and the roster has moved a little,
    // then saves a picture of the window (for the documentation).
    bool screenshot(const QString &path);
    // What an account's label says.
    QString stateText(VeskXmppAccount *account) const;

private:
    void update();

    VeskRosterWindow *window;
    Options options;
    std::unique_ptr<VeskXmppHost> xmppHost;
    QList<QLabel *> labels;
    QTimer *ticker;
};
