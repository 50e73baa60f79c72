#include "veskxmppaccount.h"

#include "veskxmpproster.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QSocketNotifier>
#include <QTimer>

#include <strophe.h>

#include <sys/ioctl.h>

#include <cstdio>
#include <cstring>
#include <vector>

// Everything of the XMPP library stays in this file: its handles in RAII
// owners, its callbacks mapped onto the roster, its loop driven from Qt's.

namespace {

struct ContextDeleter
{
    void operator()(xmpp_ctx_t *ctx) const { xmpp_ctx_free(ctx); }
};
struct ConnectionDeleter
{
    void operator()(xmpp_conn_t *conn) const { xmpp_conn_release(conn); }
};
struct StanzaDeleter
{
    void operator()(xmpp_stanza_t *stanza) const { xmpp_stanza_release(stanza); }
};
using Context = std::unique_ptr<xmpp_ctx_t, ContextDeleter>;
using Connection = std::unique_ptr<xmpp_conn_t, ConnectionDeleter>;
using Stanza = std::unique_ptr<xmpp_stanza_t, StanzaDeleter>;

const char rosterNs[] = "jabber:iq:roster";
const char rosterQueryId[] = "vesk-roster";

QString attribute(xmpp_stanza_t *stanza, const char *name)
{
    return QString::fromUtf8(xmpp_stanza_get_attribute(stanza, name));
}

// The text of a child element, or an empty text without it.
QString childText(xmpp_ctx_t *ctx, xmpp_stanza_t *stanza, const char *name)
{
    xmpp_stanza_t *child = xmpp_stanza_get_child_by_name(stanza, name);
    if (!child)
        return QString();
    char *text = xmpp_stanza_get_text(child);
    const QString result = QString::fromUtf8(text);
    xmpp_free(ctx, text);
    return result;
}

QList<VeskXmppRoster::Item> rosterItems(xmpp_ctx_t *ctx, xmpp_stanza_t *query)
{
    QList<VeskXmppRoster::Item> items;
    for (xmpp_stanza_t *child = xmpp_stanza_get_children(query); child;
         child = xmpp_stanza_get_next(child)) {
        const char *name = xmpp_stanza_get_name(child);
        if (!name || std::strcmp(name, "item") != 0)
            continue;
        VeskXmppRoster::Item item;
        item.jid = attribute(child, "jid");
        item.name = attribute(child, "name");
        item.subscription = attribute(child, "subscription");
        if (item.subscription.isEmpty())
            item.subscription = QStringLiteral("none");
        for (xmpp_stanza_t *group = xmpp_stanza_get_children(child); group;
             group = xmpp_stanza_get_next(group)) {
            const char *tag = xmpp_stanza_get_name(group);
            if (!tag || std::strcmp(tag, "group") != 0)
                continue;
            char *text = xmpp_stanza_get_text(group);
            item.groups.append(QString::fromUtf8(text));
            xmpp_free(ctx, text);
        }
        if (!item.jid.isEmpty())
            items.append(item);
    }
    return items;
}

} // namespace

class VeskXmppAccountPrivate
{
public:
    VeskXmppAccountPrivate(VeskXmppAccount *q, VeskXmppRoster *roster, const VeskXmppSettings &s);
    ~VeskXmppAccountPrivate();

    void start();
    void stop();
    void run();
    void send(xmpp_stanza_t *stanza);
    void setState(VeskXmppAccount::State state);
    void lost(int error, xmpp_stream_error_t *streamError);
    bool ownJid(const QString &jid) const;

    static QHash<const xmpp_conn_t *, VeskXmppAccountPrivate *> &owners();
    static void onLog(void *data, xmpp_log_level_t level, const char *area, const char *msg);
    static int onSocket(xmpp_conn_t *conn, void *sock);
    static int onCertificateFailure(const xmpp_tlscert_t *cert, const char *const message);
    static void onConnection(xmpp_conn_t *conn, xmpp_conn_event_t event, int error,
        xmpp_stream_error_t *streamError, void *data);
    static int onRoster(xmpp_conn_t *conn, xmpp_stanza_t *stanza, void *data);
    static int onRosterPush(xmpp_conn_t *conn, xmpp_stanza_t *stanza, void *data);
    static int onPresence(xmpp_conn_t *conn, xmpp_stanza_t *stanza, void *data);
    static int onMessage(xmpp_conn_t *conn, xmpp_stanza_t *stanza, void *data);
    static int onQuery(xmpp_conn_t *conn, xmpp_stanza_t *stanza, void *data);

    VeskXmppAccount *q;
    VeskXmppRoster *roster;
    VeskXmppSettings settings;
    xmpp_log_t log;
    Context ctx;
    Connection conn;
    // Connections that ended inside a callback, released once the library's
    // loop has returned.
    std::vector<Connection> spent;
    std::unique_ptr<QSocketNotifier> notifier;
    int socket = -1;
    QTimer pump;
    QTimer retry;
    VeskXmppAccount::State state = VeskXmppAccount::Disconnected;
    QString error;
    QString lastLog;
    QString certificateError;
    int socketError = 0;
    bool tlsFailed = false;
    bool authFailed = false;
    bool wanted = false;
    // Set while the account goes away: the roster's entries may be gone
    // already (the stand-in's reset), so nothing touches them any more.
    bool closing = false;
    int attempts = 0;
    QElapsedTimer quiet;
    quint64 stanzas = 0;
};

VeskXmppAccountPrivate::VeskXmppAccountPrivate(
    VeskXmppAccount *q, VeskXmppRoster *roster, const VeskXmppSettings &s)
    : q(q)
    , roster(roster)
    , settings(s)
{
    log.handler = &VeskXmppAccountPrivate::onLog;
    log.userdata = this;
    // Once per process: its counterpart would pull TLS from under other
    // accounts' feet.
    static const bool initialized = [] {
        xmpp_initialize();
        return true;
    }();
    Q_UNUSED(initialized)
    ctx.reset(xmpp_ctx_new(nullptr, &log));
    pump.setSingleShot(true);
    QObject::connect(&pump, &QTimer::timeout, q, [this] { run(); });
    retry.setSingleShot(true);
    QObject::connect(&retry, &QTimer::timeout, q, [this] { start(); });
    quiet.start();
}

VeskXmppAccountPrivate::~VeskXmppAccountPrivate()
{
    closing = true;
    // The stream is ended politely when there is one, in a bounded time.
    if (conn && xmpp_conn_is_connected(conn.get())) {
        xmpp_disconnect(conn.get());
        for (int i = 0; i < 20 && conn; ++i)
            xmpp_run_once(ctx.get(), 10);
    }
    notifier.reset();
    if (conn) {
        owners().remove(conn.get());
        conn.reset();
    }
    spent.clear();
    ctx.reset();
    settings.password.fill('\0');
}

QHash<const xmpp_conn_t *, VeskXmppAccountPrivate *> &VeskXmppAccountPrivate::owners()
{
    static QHash<const xmpp_conn_t *, VeskXmppAccountPrivate *> table;
    return table;
}

void VeskXmppAccountPrivate::onLog(
    void *data, xmpp_log_level_t level, const char *area, const char *msg)
{
    // VESK_XMPP_DEBUG=1 shows the library's log on stderr, to see why a
    // server and this client do not get along.
    static const bool debug = qEnvironmentVariableIsSet("VESK_XMPP_DEBUG");
    if (debug)
        std::fprintf(stderr, "xmpp %d %s: %s\n", int(level), area, msg);
    // The library tells why a connection failed only in its log: the
    // socket's error, the certificate's verdict, the failed TLS handshake or
    // authentication. Those lines are kept to say it in one line.
    auto *d = static_cast<VeskXmppAccountPrivate *>(data);
    if (std::strncmp(msg, "SENT", 4) == 0 || std::strncmp(msg, "RECV", 4) == 0)
        return;
    const QString text = QString::fromUtf8(msg);
    static const QString connectionFailed = QStringLiteral("connection failed, error ");
    static const QString certificateFailed
        = QStringLiteral("Certificate verification FAILED, result=");
    if (text.startsWith(connectionFailed))
        d->socketError = text.mid(connectionFailed.size()).toInt();
    else if (text.startsWith(certificateFailed))
        d->certificateError = text.mid(certificateFailed.size());
    else if (text.startsWith(QLatin1String("Couldn't start TLS")))
        d->tlsFailed = true;
    else if (text.contains(QLatin1String("auth failed")) || std::strcmp(area, "auth") == 0)
        d->authFailed = true;
    if (level >= XMPP_LEVEL_WARN)
        d->lastLog = QString::fromUtf8(area) + QLatin1String(": ") + text;
}

int VeskXmppAccountPrivate::onSocket(xmpp_conn_t *conn, void *sock)
{
    VeskXmppAccountPrivate *d = owners().value(conn);
    if (d) {
        d->socket = *static_cast<int *>(sock);
        d->notifier.reset(new QSocketNotifier(d->socket, QSocketNotifier::Read));
        QObject::connect(d->notifier.get(), &QSocketNotifier::activated, d->q, [d] { d->run(); });
    }
    return xmpp_sockopt_cb_keepalive(conn, sock);
}

int VeskXmppAccountPrivate::onCertificateFailure(
    const xmpp_tlscert_t *cert, const char *const message)
{
    VeskXmppAccountPrivate *d = owners().value(xmpp_tlscert_get_conn(cert));
    if (d)
        d->certificateError = QString::fromUtf8(message);
    return 0; // never accept it
}

void VeskXmppAccountPrivate::start()
{
    if (conn)
        return;
    wanted = true;
    error.clear();
    lastLog.clear();
    certificateError.clear();
    socketError = 0;
    tlsFailed = false;
    authFailed = false;
    conn.reset(xmpp_conn_new(ctx.get()));
    owners().insert(conn.get(), this);
    long flags = XMPP_CONN_FLAG_DISABLE_SM;
    flags |= settings.insecure ? XMPP_CONN_FLAG_DISABLE_TLS : XMPP_CONN_FLAG_MANDATORY_TLS;
    xmpp_conn_set_flags(conn.get(), flags);
    const QByteArray full
        = (settings.resource.isEmpty() ? settings.jid
                                       : settings.jid + QLatin1Char('/') + settings.resource)
              .toUtf8();
    xmpp_conn_set_jid(conn.get(), full.constData());
    xmpp_conn_set_pass(conn.get(), settings.password.constData());
    if (!settings.caFile.isEmpty())
        xmpp_conn_set_cafile(conn.get(), QFile::encodeName(settings.caFile).constData());
    xmpp_conn_set_certfail_handler(conn.get(), &VeskXmppAccountPrivate::onCertificateFailure);
    xmpp_conn_set_sockopt_callback(conn.get(), &VeskXmppAccountPrivate::onSocket);
    const QByteArray host = settings.host.toUtf8();
    setState(VeskXmppAccount::Connecting);
    if (xmpp_connect_client(conn.get(), host.isEmpty() ? nullptr : host.constData(), settings.port,
            &VeskXmppAccountPrivate::onConnection, this)
        != XMPP_EOK) {
        owners().remove(conn.get());
        conn.reset();
        error = VeskXmppAccount::tr("cannot connect to %1: %2")
                    .arg(settings.host.isEmpty() ? settings.jid.section(QLatin1Char('@'), 1)
                                                 : settings.host,
                        lastLog.isEmpty() ? VeskXmppAccount::tr("no address") : lastLog);
        setState(VeskXmppAccount::Failed);
        return;
    }
    pump.start(0);
}

void VeskXmppAccountPrivate::stop()
{
    wanted = false;
    retry.stop();
    if (conn && !xmpp_conn_is_disconnected(conn.get())) {
        xmpp_disconnect(conn.get());
        // Let the library send the stream's end and call back.
        for (int i = 0; i < 20 && conn; ++i)
            xmpp_run_once(ctx.get(), 10);
    }
    notifier.reset();
    if (conn) {
        owners().remove(conn.get());
        conn.reset();
    }
    spent.clear();
    roster->setOffline();
    setState(VeskXmppAccount::Disconnected);
}

void VeskXmppAccountPrivate::run()
{
    if (!conn && spent.empty())
        return;
    // Work until the socket and the library's buffers are drained, but give
    // the event loop back every few milliseconds, so that a flood of stanzas
    // cannot freeze the window.
    QElapsedTimer slice;
    slice.start();
    bool more = false;
    do {
        const quint64 before = stanzas;
        xmpp_run_once(ctx.get(), 0);
        int pending = 0;
        if (conn && socket >= 0)
            ::ioctl(socket, FIONREAD, &pending);
        more = conn && (stanzas != before || pending > 0);
    } while (more && slice.elapsed() < 8);
    spent.clear();
    if (conn)
        pump.start(more ? 0 : 50);
}

void VeskXmppAccountPrivate::send(xmpp_stanza_t *stanza)
{
    if (conn) {
        xmpp_send(conn.get(), stanza);
        pump.start(0);
    }
}

void VeskXmppAccountPrivate::setState(VeskXmppAccount::State next)
{
    if (state == next)
        return;
    state = next;
    Q_EMIT q->stateChanged(next);
}

bool VeskXmppAccountPrivate::ownJid(const QString &jid) const
{
    return jid.isEmpty() || jid.section(QLatin1Char('/'), 0, 0).toLower() == settings.jid.toLower();
}

void VeskXmppAccountPrivate::onConnection(xmpp_conn_t *conn, xmpp_conn_event_t event, int error,
    xmpp_stream_error_t *streamError, void *data)
{
    auto *d = static_cast<VeskXmppAccountPrivate *>(data);
    if (event == XMPP_CONN_CONNECT) {
        xmpp_handler_add(conn, &onRosterPush, rosterNs, "iq", "set", d);
        xmpp_handler_add(conn, &onPresence, nullptr, "presence", nullptr, d);
        xmpp_handler_add(conn, &onMessage, nullptr, "message", nullptr, d);
        xmpp_handler_add(conn, &onQuery, nullptr, "iq", "get", d);
        Stanza iq(xmpp_iq_new(d->ctx.get(), "get", rosterQueryId));
        xmpp_stanza_t *query = xmpp_stanza_new(d->ctx.get());
        xmpp_stanza_set_name(query, "query");
        xmpp_stanza_set_ns(query, rosterNs);
        xmpp_stanza_add_child_ex(iq.get(), query, 0);
        xmpp_id_handler_add(conn, &onRoster, rosterQueryId, d);
        d->send(iq.get());
        return;
    }
    if (event == XMPP_CONN_RAW_CONNECT)
        return;
    d->lost(error, streamError);
}

void VeskXmppAccountPrivate::lost(int socketError, xmpp_stream_error_t *streamError)
{
    if (closing) {
        notifier.reset();
        socket = -1;
        if (conn) {
            owners().remove(conn.get());
            spent.push_back(std::move(conn));
        }
        return;
    }
    const bool wasConnected = state == VeskXmppAccount::Connected;
    const QString where = settings.host.isEmpty()
        ? settings.jid.section(QLatin1Char('@'), 1)
        : QStringLiteral("%1:%2").arg(settings.host).arg(settings.port);
    // Refusals that another attempt would meet again end the account's tries.
    bool final = false;
    const int errorNumber = socketError != 0 ? socketError : this->socketError;
    if (!certificateError.isEmpty()) {
        error = VeskXmppAccount::tr("the certificate of %1 is not trusted (%2); --xmpp-ca FILE "
                                    "names a CA to trust")
                    .arg(where, certificateError);
        final = true;
    } else if (tlsFailed) {
        error = VeskXmppAccount::tr("no TLS with %1: the handshake failed").arg(where);
        final = true;
    } else if (authFailed) {
        error
            = VeskXmppAccount::tr("%1 refused the log-in of %2: wrong password or unknown account")
                  .arg(where, settings.jid);
        final = true;
    } else if (streamError) {
        error = VeskXmppAccount::tr("%1 ended the connection: %2")
                    .arg(where, QString::fromUtf8(streamError->text ? streamError->text : ""));
    } else if (errorNumber != 0 && !wasConnected) {
        error = VeskXmppAccount::tr("cannot connect to %1: %2")
                    .arg(where, QString::fromLocal8Bit(std::strerror(errorNumber)));
    } else if (wasConnected) {
        error = VeskXmppAccount::tr("the connection to %1 was lost").arg(where);
    } else if (!settings.insecure) {
        // With TLS required, a server that does not offer it is dropped
        // before anything else is said.
        error
            = VeskXmppAccount::tr("%1 closed the connection before log-in; TLS is required: "
                                  "does it offer TLS? (%2)")
                  .arg(where, lastLog.isEmpty() ? VeskXmppAccount::tr("no reason given") : lastLog);
    } else {
        error
            = VeskXmppAccount::tr("%1 closed the connection before log-in (%2)")
                  .arg(where, lastLog.isEmpty() ? VeskXmppAccount::tr("no reason given") : lastLog);
    }
    notifier.reset();
    socket = -1;
    if (conn) {
        owners().remove(conn.get());
        spent.push_back(std::move(conn));
    }
    roster->setOffline();
    if (!wanted) {
        setState(VeskXmppAccount::Disconnected);
    } else if (settings.reconnect && !final) {
        // 1, 2, 4 ... seconds, at most half a minute.
        retry.start(q->retryDelay());
        ++attempts;
        setState(VeskXmppAccount::Waiting);
    } else {
        setState(VeskXmppAccount::Failed);
    }
}

int VeskXmppAccountPrivate::onRoster(xmpp_conn_t *, xmpp_stanza_t *stanza, void *data)
{
    auto *d = static_cast<VeskXmppAccountPrivate *>(data);
    ++d->stanzas;
    const char *type = xmpp_stanza_get_type(stanza);
    xmpp_stanza_t *query = xmpp_stanza_get_child_by_ns(stanza, rosterNs);
    d->roster->setRoster(type && std::strcmp(type, "result") == 0 && query
            ? rosterItems(d->ctx.get(), query)
            : QList<VeskXmppRoster::Item>());
    // Presences come once ours is sent.
    Stanza presence(xmpp_presence_new(d->ctx.get()));
    d->send(presence.get());
    d->attempts = 0;
    d->quiet.restart();
    d->setState(VeskXmppAccount::Connected);
    return 0;
}

int VeskXmppAccountPrivate::onRosterPush(xmpp_conn_t *, xmpp_stanza_t *stanza, void *data)
{
    auto *d = static_cast<VeskXmppAccountPrivate *>(data);
    ++d->stanzas;
    // Only the server speaks for our roster; a push from anyone else is a forgery.
    if (!d->ownJid(attribute(stanza, "from")))
        return 1;
    if (xmpp_stanza_t *query = xmpp_stanza_get_child_by_ns(stanza, rosterNs)) {
        const QList<VeskXmppRoster::Item> items = rosterItems(d->ctx.get(), query);
        for (const VeskXmppRoster::Item &item : items)
            d->roster->pushItem(item);
    }
    Stanza reply(xmpp_iq_new(d->ctx.get(), "result", xmpp_stanza_get_id(stanza)));
    if (const char *from = xmpp_stanza_get_from(stanza))
        xmpp_stanza_set_to(reply.get(), from);
    d->send(reply.get());
    return 1;
}

int VeskXmppAccountPrivate::onPresence(xmpp_conn_t *, xmpp_stanza_t *stanza, void *data)
{
    auto *d = static_cast<VeskXmppAccountPrivate *>(data);
    ++d->stanzas;
    d->quiet.restart();
    bool ok = false;
    int priority = childText(d->ctx.get(), stanza, "priority").trimmed().toInt(&ok);
    priority = ok ? qBound(-128, priority, 127) : 0;
    d->roster->presence(attribute(stanza, "from"), attribute(stanza, "type"),
        childText(d->ctx.get(), stanza, "show").trimmed(),
        childText(d->ctx.get(), stanza, "status"), priority);
    return 1;
}

int VeskXmppAccountPrivate::onMessage(xmpp_conn_t *, xmpp_stanza_t *stanza, void *data)
{
    auto *d = static_cast<VeskXmppAccountPrivate *>(data);
    ++d->stanzas;
    const QString type = attribute(stanza, "type");
    if (type == QLatin1String("error") || type == QLatin1String("groupchat")
        || !xmpp_stanza_get_child_by_name(stanza, "body"))
        return 1;
    d->roster->message(attribute(stanza, "from"));
    return 1;
}

int VeskXmppAccountPrivate::onQuery(xmpp_conn_t *, xmpp_stanza_t *stanza, void *data)
{
    auto *d = static_cast<VeskXmppAccountPrivate *>(data);
    ++d->stanzas;
    // Nothing is offered to other entities' queries.
    Stanza reply(xmpp_stanza_reply_error(stanza, "cancel", "service-unavailable", nullptr));
    if (reply)
        d->send(reply.get());
    return 1;
}

VeskXmppAccount::VeskXmppAccount(VeskXmppRoster *roster, const VeskXmppSettings &settings)
    : d(new VeskXmppAccountPrivate(this, roster, settings))
{ }

VeskXmppAccount::~VeskXmppAccount() = default;

QString VeskXmppAccount::jid() const
{
    return d->settings.jid;
}

VeskXmppRoster *VeskXmppAccount::roster() const
{
    return d->roster;
}

VeskXmppAccount::State VeskXmppAccount::state() const
{
    return d->state;
}

QString VeskXmppAccount::errorText() const
{
    return d->error;
}

int VeskXmppAccount::retryDelay() const
{
    return qMin(30000, 1000 << qMin(d->attempts, 5));
}

qint64 VeskXmppAccount::quietFor() const
{
    return d->quiet.elapsed();
}

quint64 VeskXmppAccount::stanzaCount() const
{
    return d->stanzas;
}

void VeskXmppAccount::connectToServer()
{
    d->retry.stop();
    d->start();
}

void VeskXmppAccount::disconnectFromServer()
{
    d->stop();
}
