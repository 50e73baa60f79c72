#include "prosodyserver.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A port the system has just handed out on 127.0.0.1 and taken back.
quint16 freePort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr {};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof addr;
    quint16 port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) == 0
        && ::getsockname(fd, reinterpret_cast<sockaddr *>(&addr), &len) == 0)
        port = ntohs(addr.sin_port);
    ::close(fd);
    return port;
}

bool canConnect(quint16 port)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr {};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    addr.sin_port = htons(port);
    const bool ok = ::connect(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) == 0;
    ::close(fd);
    return ok;
}

// A Lua string literal holding any bytes.
QByteArray luaString(const QString &text)
{
    QByteArray out = "\"";
    for (const char c : text.toUtf8()) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte >= 0x7f || c == '"' || c == '\\')
            out += '\\' + QByteArray::number(byte).rightJustified(3, '0');
        else
            out += c;
    }
    return out + '"';
}

bool writeFile(const QString &path, const QByteArray &data, QString *error)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size()) {
        *error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

} // namespace

ProsodyServer::ProsodyServer(Tls tls)
    : tls(tls)
{ }

ProsodyServer::~ProsodyServer()
{
    stop();
}

QString ProsodyServer::address() const
{
    return QStringLiteral("127.0.0.1:%1").arg(serverPort);
}

QString ProsodyServer::caFile() const
{
    return tls == SelfSigned ? temp.filePath(QStringLiteral("cert.pem")) : QString();
}

QString ProsodyServer::log() const
{
    QFile file(temp.filePath(QStringLiteral("prosody.log")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool ProsodyServer::start(QString *error)
{
    if (!temp.isValid()) {
        *error = QStringLiteral("no temporary directory");
        return false;
    }
    if (serverPort == 0)
        serverPort = freePort();
    const QString dir = temp.path();
    if (tls == SelfSigned && !QFile::exists(caFile())) {
        QProcess openssl;
        openssl.start(QStringLiteral("openssl"),
            { QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                QStringLiteral("rsa:2048"), QStringLiteral("-nodes"), QStringLiteral("-keyout"),
                dir + QLatin1String("/key.pem"), QStringLiteral("-out"), caFile(),
                QStringLiteral("-days"), QStringLiteral("2"), QStringLiteral("-subj"),
                QStringLiteral("/CN=localhost"), QStringLiteral("-addext"),
                QStringLiteral("subjectAltName=DNS:localhost") });
        if (!openssl.waitForFinished(30000) || openssl.exitCode() != 0) {
            *error = QStringLiteral("openssl: %1")
                         .arg(QString::fromLocal8Bit(openssl.readAllStandardError()));
            return false;
        }
    }
    QByteArray config;
    if (::geteuid() == 0)
        config += "run_as_root = true\n";
    config += "daemonize = false\n"
              "pidfile = "
        + luaString(dir + QLatin1String("/prosody.pid"))
        + "\n"
          "data_path = "
        + luaString(dir + QLatin1String("/data"))
        + "\n"
          "certificates = "
        + luaString(dir)
        + "\n"
          "plugin_paths = {}\n"
          "interfaces = { \"127.0.0.1\" }\n"
          "c2s_interfaces = { \"127.0.0.1\" }\n"
          "c2s_ports = { "
        + QByteArray::number(serverPort)
        + " }\n"
          "c2s_direct_tls_ports = {}\n"
          "legacy_ssl_ports = {}\n"
          "s2s_ports = {}\n"
          "modules_enabled = { \"roster\", \"saslauth\""
        + QByteArray(tls == SelfSigned ? ", \"tls\"" : "")
        + " }\n"
          "modules_disabled = { \"s2s\", \"offline\" }\n"
          "authentication = \"internal_hashed\"\n"
          "storage = \"internal\"\n"
          // Floods are what the tests send on purpose.
          "limits = { c2s = { rate = \"100mb/s\" } }\n"
          "log = { { levels = { min = \"info\" }, to = \"file\", filename = "
        + luaString(dir + QLatin1String("/prosody.log")) + " } }\n";
    if (tls == SelfSigned) {
        config += "c2s_require_encryption = true\n"
                  "ssl = { key = "
            + luaString(dir + QLatin1String("/key.pem")) + ", certificate = " + luaString(caFile())
            + " }\n";
    } else {
        config += "c2s_require_encryption = false\n"
                  "allow_unencrypted_plain_auth = true\n";
    }
    config += "VirtualHost \"localhost\"\n";
    if (!writeFile(dir + QLatin1String("/prosody.cfg.lua"), config, error))
        return false;

    process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->setStandardOutputFile(dir + QLatin1String("/prosody.out"), QIODevice::Append);
    process->start(QStringLiteral("prosody"),
        { QStringLiteral("--config"), dir + QLatin1String("/prosody.cfg.lua"),
            QStringLiteral("-F") });
    if (!process->waitForStarted(10000) || !waitListening(15000)) {
        *error
            = QStringLiteral("prosody did not listen on %1: %2").arg(address(), log().right(2000));
        stop();
        return false;
    }
    return true;
}

bool ProsodyServer::waitListening(int msecs) const
{
    QDeadlineTimer deadline(msecs);
    while (!deadline.hasExpired()) {
        if (canConnect(serverPort))
            return true;
        if (!isRunning())
            return false;
        QThread::msleep(50);
    }
    return false;
}

bool ProsodyServer::isRunning() const
{
    return process && process->state() != QProcess::NotRunning;
}

void ProsodyServer::kill()
{
    if (!isRunning())
        return;
    process->kill();
    process->waitForFinished(10000);
}

void ProsodyServer::stop()
{
    if (!isRunning())
        return;
    process->terminate();
    if (!process->waitForFinished(10000)) {
        process->kill();
        process->waitForFinished(5000);
    }
}

double ProsodyServer::cpuSeconds() const
{
    if (!isRunning())
        return 0;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(process->processId()));
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    // Fields 14 and 15 (utime, stime), counted after the command's ")".
    const QByteArray line = stat.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    return (fields.value(11).toDouble() + fields.value(12).toDouble())
        / double(::sysconf(_SC_CLK_TCK));
}

bool ProsodyServer::addAccount(const QString &user, const QByteArray &password, QString *error)
{
    QProcess ctl;
    ctl.setProcessChannelMode(QProcess::MergedChannels);
    ctl.start(QStringLiteral("prosodyctl"),
        { QStringLiteral("--config"), temp.filePath(QStringLiteral("prosody.cfg.lua")),
            QStringLiteral("adduser"), jid(user) });
    // Asked twice: the password and its confirmation.
    ctl.write(password + '\n' + password + '\n');
    ctl.closeWriteChannel();
    if (!ctl.waitForFinished(30000) || ctl.exitCode() != 0) {
        *error = QStringLiteral("prosodyctl adduser %1: %2")
                     .arg(jid(user), QString::fromLocal8Bit(ctl.readAll()));
        return false;
    }
    return true;
}

bool ProsodyServer::writeRoster(const QString &user, const QList<RosterItem> &items, QString *error)
{
    QByteArray data = "return {\n\t[false] = { [\"version\"] = 1; [\"pending\"] = {}; };\n";
    for (const RosterItem &item : items) {
        data += "\t[" + luaString(item.jid)
            + "] = { [\"subscription\"] = " + luaString(item.subscription) + "; [\"groups\"] = {";
        for (const QString &group : item.groups)
            data += " [" + luaString(group) + "] = true;";
        data += " };";
        if (!item.name.isEmpty())
            data += " [\"name\"] = " + luaString(item.name) + ";";
        data += " };\n";
    }
    data += "};\n";
    return writeFile(
        temp.filePath(QStringLiteral("data/localhost/roster/%1.dat").arg(user)), data, error);
}

XmppBuddy::~XmppBuddy()
{
    quit();
}

bool XmppBuddy::start(const ProsodyServer &server, const QString &jid, const QByteArray &password,
    QString *error, const QString &resource)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("VESK_XMPP_PASSWORD"), QString::fromUtf8(password));
    process.setProcessEnvironment(env);
    QStringList args = { QStringLiteral("--jid"), jid, QStringLiteral("--server"), server.address(),
        QStringLiteral("--resource"), resource };
    if (server.caFile().isEmpty())
        args << QStringLiteral("--insecure");
    else
        args << QStringLiteral("--ca") << server.caFile();
    process.start(QStringLiteral(XMPPBUDDY_PATH), args);
    return run(QString(), error);
}

bool XmppBuddy::run(const QString &command, QString *error, int timeoutMs)
{
    if (!command.isEmpty())
        process.write(command.toUtf8() + '\n');
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < timeoutMs) {
        // The client under test lives in this thread: its loop keeps running.
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (process.canReadLine() || process.waitForReadyRead(5)) {
            while (process.canReadLine()) {
                const QByteArray line = process.readLine().trimmed();
                if (line == "ok" || line == "ready")
                    return true;
                if (line.startsWith("error")) {
                    *error = QString::fromUtf8(line);
                    return false;
                }
            }
        }
        if (process.state() == QProcess::NotRunning && !process.canReadLine()) {
            *error = QStringLiteral("the buddy ended: %1")
                         .arg(QString::fromLocal8Bit(process.readAllStandardError()));
            return false;
        }
    }
    *error = QStringLiteral("no answer to \"%1\" within %2 ms").arg(command).arg(timeoutMs);
    return false;
}

void XmppBuddy::quit()
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.write("quit\n");
    if (!process.waitForFinished(3000)) {
        process.kill();
        process.waitForFinished(3000);
    }
}

QString XmppBuddy::word(const QString &text)
{
    if (text.isEmpty())
        return QStringLiteral("-");
    return QString::fromLatin1(text.toUtf8().toPercentEncoding());
}
