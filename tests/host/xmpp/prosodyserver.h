#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// A Prosody server for the tests, on a free port of 127.0.0.1, with its
// configuration, data, certificate and log in a temporary directory: client
// connections only, no server-to-server, no module beyond what a roster
// needs. Stopped by its destructor whatever happened.
class ProsodyServer
{
public:
    enum Tls {
        SelfSigned, // TLS required, with a certificate made for the test
        NoTls, // no certificate: the server cannot offer TLS
    };
    struct RosterItem
    {
        QString jid;
        QString name;
        QStringList groups;
        QString subscription = QStringLiteral("both");
    };

    explicit ProsodyServer(Tls tls = SelfSigned);
    ~ProsodyServer();

    static QString domain() { return QStringLiteral("localhost"); }
    static QString jid(const QString &user) { return user + QLatin1Char('@') + domain(); }

    // Writes the configuration, starts the server and waits until it
    // listens (at most 15 s). False with *error when it did not.
    bool start(QString *error);
    // SIGKILL, as a crash would.
    void kill();
    bool isRunning() const;
    // Stops the server politely.
    void stop();

    // Through prosodyctl, the password on its standard input.
    bool addAccount(const QString &user, const QByteArray &password, QString *error);
    // Writes a user's roster into the server's data directory; read when the
    // user next logs in (so: before).
    bool writeRoster(const QString &user, const QList<RosterItem> &items, QString *error);

    quint16 port() const { return serverPort; }
    QString address() const;
    QString caFile() const; // the certificate to trust (empty without TLS)
    QString log() const;
    QString dir() const { return temp.path(); }
    // CPU seconds the server has used so far (user and system), from /proc.
    double cpuSeconds() const;

private:
    bool waitListening(int msecs) const;

    Tls tls;
    QTemporaryDir temp;
    quint16 serverPort = 0;
    std::unique_ptr<QProcess> process;
};

// The scripted buddy (xmppbuddy): one logged-in client driven line by line.
class XmppBuddy
{
public:
    ~XmppBuddy();
    // Logs in; false with *error unless "ready" came within 10 s.
    bool start(const ProsodyServer &server, const QString &jid, const QByteArray &password,
        QString *error, const QString &resource = QStringLiteral("buddy"));
    // Sends one command and waits (at most timeoutMs) for its "ok".
    bool run(const QString &command, QString *error, int timeoutMs = 10000);
    void quit();

    // A word of a command: percent-encoded UTF-8.
    static QString word(const QString &text);

private:
    QProcess process;
};
