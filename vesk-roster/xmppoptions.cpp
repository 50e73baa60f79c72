#include "xmppoptions.h"

#include "commandline.h"
#include "refusal.h"
#include "sessiontext_p.h"

#include <veskxmppaccount.h>
#include <veskxmpphost.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

#include <termios.h>
#include <unistd.h>

#include <cstdio>

namespace {

const int quietMs = 500;
const int burstLimitMs = 10000;
const int connectLimitMs = 10000;

// Read from the terminal itself with the echo off, so that the password
// shows nowhere; restored whatever happens.
QByteArray promptPassword(const QString &jid)
{
    if (!::isatty(STDIN_FILENO))
        refuse(vtr("no password for %1: set VESK_XMPP_PASSWORD or run on a terminal").arg(jid));
    std::fprintf(stderr, "%s", vtr("Password for %1: ").arg(jid).toLocal8Bit().constData());
    std::fflush(stderr);
    termios saved {};
    const bool hasTerminal = ::tcgetattr(STDIN_FILENO, &saved) == 0;
    if (hasTerminal) {
        termios quiet = saved;
        quiet.c_lflag &= ~tcflag_t(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }
    QByteArray password;
    char c;
    while (::read(STDIN_FILENO, &c, 1) == 1 && c != '\n')
        password.append(c);
    if (hasTerminal)
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &saved);
    std::fprintf(stderr, "\n");
    return password;
}

} // namespace

QString VeskXmppOptions::names()
{
    return QStringLiteral("--xmpp JID, --xmpp-server HOST:PORT, --xmpp-ca FILE, --xmpp-insecure");
}

bool VeskXmppOptions::take(const QStringList &arguments, int *i)
{
    QString value;
    if (VeskCommandLine::takeValue(arguments, i, QStringLiteral("--xmpp"), &value)) {
        jids.append(value);
    } else if (VeskCommandLine::takeValue(arguments, i, QStringLiteral("--xmpp-server"), &value)) {
        server = value;
    } else if (VeskCommandLine::takeValue(arguments, i, QStringLiteral("--xmpp-ca"), &value)) {
        caFile = value;
    } else if (arguments.at(*i) == QLatin1String("--xmpp-insecure")) {
        insecure = true;
    } else {
        return false;
    }
    return true;
}

std::unique_ptr<VeskXmppHost> veskLoadLiveRoster(const VeskXmppOptions &options)
{
    QList<VeskXmppSettings> accounts;
    for (const QString &jid : options.jids) {
        VeskXmppSettings settings;
        settings.jid = jid;
        settings.caFile = options.caFile;
        settings.insecure = options.insecure;
        if (!options.server.isEmpty()
            && !VeskXmppHost::parseServer(options.server, &settings.host, &settings.port))
            refuse(vtr("--xmpp-server needs HOST:PORT, not \"%1\"").arg(options.server));
        const QString problem = VeskXmppHost::settingsProblem(settings);
        if (!problem.isEmpty())
            refuse(problem);
        if (!options.caFile.isEmpty() && !QFileInfo(options.caFile).isReadable())
            refuse(vtr("cannot read the CA certificate \"%1\"").arg(options.caFile));
        accounts.append(settings);
    }
    if (options.insecure) {
        std::fprintf(stderr, "%s\n",
            vtr("vesk-roster: warning: no TLS to %1: the password and the roster cross the "
                "loopback unencrypted")
                .arg(options.server)
                .toLocal8Bit()
                .constData());
    }
    const QByteArray fromEnvironment = qgetenv("VESK_XMPP_PASSWORD");
    for (VeskXmppSettings &settings : accounts) {
        settings.password = qEnvironmentVariableIsSet("VESK_XMPP_PASSWORD")
            ? fromEnvironment
            : promptPassword(settings.jid);
    }

    auto host = std::make_unique<VeskXmppHost>();
    for (const VeskXmppSettings &settings : qAsConst(accounts))
        host->addAccount(settings)->connectToServer();

    // Connected within 10 s, then the first presences until they pause for
    // half a second, at most 10 s more.
    QEventLoop loop;
    QTimer tick;
    QElapsedTimer clock;
    clock.start();
    qint64 connectedAt = -1;
    QString failure;
    QObject::connect(&tick, &QTimer::timeout, &loop, [&] {
        bool allConnected = true;
        bool allQuiet = true;
        for (VeskXmppAccount *account : host->accounts()) {
            if (account->state() == VeskXmppAccount::Failed
                || account->state() == VeskXmppAccount::Disconnected) {
                failure = vtr("%1: %2").arg(account->jid(), account->errorText());
                loop.quit();
                return;
            }
            allConnected = allConnected && account->state() == VeskXmppAccount::Connected;
            allQuiet = allQuiet && account->quietFor() >= quietMs;
        }
        if (!allConnected) {
            if (clock.elapsed() > connectLimitMs) {
                failure = vtr("no log-in within %1 s").arg(connectLimitMs / 1000);
                loop.quit();
            }
            return;
        }
        if (connectedAt < 0)
            connectedAt = clock.elapsed();
        if (allQuiet || clock.elapsed() - connectedAt > burstLimitMs)
            loop.quit();
    });
    tick.start(20);
    loop.exec();
    if (!failure.isEmpty())
        refuse(failure);
    return host;
}
