// A scripted XMPP client for the tests and for `./run live`: it logs in and
// then does what it reads on stdin, one command a line, arguments separated
// by spaces and percent-encoded (so that any text, control characters
// included, can be sent):
//
//   presence SHOW STATUS PRIORITY   available; SHOW "-" for none
//   directed JID TYPE SHOW STATUS    to one JID; TYPE "-" available or "unavailable"
//   unavailable
//   message TO BODY
//   roster-set JID NAME GROUP,GROUP  edits the account's own roster; NAME "-" none
//   roster-remove JID
//   subscribed JID | subscribe JID  presence subscription handshake
//   flood COUNT PER_SECOND          presence changes, as fast as asked
//   sync                            answers once everything before is sent
//   quit
//
// It answers "ready" once logged in and "ok" after each command has been
// written to the server, "error TEXT" otherwise. The password comes from
// VESK_XMPP_PASSWORD.
//
// xmppbuddy --jid JID --server HOST:PORT [--ca FILE | --insecure] [--resource R]

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>

#include <strophe.h>

#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

struct Buddy
{
    xmpp_ctx_t *ctx = nullptr;
    xmpp_conn_t *conn = nullptr;
    bool connected = false;
    bool failed = false;
    int serial = 0;
    // A flood in progress.
    long floodLeft = 0;
    double floodInterval = 0;
    QElapsedTimer floodClock;
    long floodSent = 0;
    bool syncPending = false;
};

void answer(const char *text)
{
    std::printf("%s\n", text);
    std::fflush(stdout);
}

QByteArray decoded(const QByteArray &arg)
{
    return arg == "-" ? QByteArray() : QByteArray::fromPercentEncoding(arg);
}

std::string nextId(Buddy &buddy)
{
    return "b" + std::to_string(++buddy.serial);
}

void addTextChild(xmpp_ctx_t *ctx, xmpp_stanza_t *parent, const char *name, const QByteArray &text)
{
    xmpp_stanza_t *child = xmpp_stanza_new(ctx);
    xmpp_stanza_set_name(child, name);
    xmpp_stanza_t *body = xmpp_stanza_new(ctx);
    xmpp_stanza_set_text_with_size(body, text.constData(), size_t(text.size()));
    xmpp_stanza_add_child_ex(child, body, 0);
    xmpp_stanza_add_child_ex(parent, child, 0);
}

void sendAndRelease(Buddy &buddy, xmpp_stanza_t *stanza)
{
    xmpp_send(buddy.conn, stanza);
    xmpp_stanza_release(stanza);
}

void sendPresence(Buddy &buddy, const QByteArray &show, const QByteArray &status, int priority)
{
    xmpp_stanza_t *presence = xmpp_presence_new(buddy.ctx);
    if (!show.isEmpty())
        addTextChild(buddy.ctx, presence, "show", show);
    if (!status.isEmpty())
        addTextChild(buddy.ctx, presence, "status", status);
    if (priority != 0)
        addTextChild(buddy.ctx, presence, "priority", QByteArray::number(priority));
    sendAndRelease(buddy, presence);
}

void onConnection(
    xmpp_conn_t *, xmpp_conn_event_t event, int error, xmpp_stream_error_t *, void *data)
{
    auto *buddy = static_cast<Buddy *>(data);
    if (event == XMPP_CONN_CONNECT) {
        buddy->connected = true;
        answer("ready");
    } else if (event != XMPP_CONN_RAW_CONNECT) {
        buddy->failed = true;
        std::printf("error disconnected (%d)\n", error);
        std::fflush(stdout);
    }
}

void rosterSet(Buddy &buddy, const QByteArray &jid, const QByteArray &name,
    const QList<QByteArray> &groups, bool remove)
{
    const std::string id = nextId(buddy);
    xmpp_stanza_t *iq = xmpp_iq_new(buddy.ctx, "set", id.c_str());
    xmpp_stanza_t *query = xmpp_stanza_new(buddy.ctx);
    xmpp_stanza_set_name(query, "query");
    xmpp_stanza_set_ns(query, "jabber:iq:roster");
    xmpp_stanza_t *item = xmpp_stanza_new(buddy.ctx);
    xmpp_stanza_set_name(item, "item");
    xmpp_stanza_set_attribute(item, "jid", jid.constData());
    if (remove)
        xmpp_stanza_set_attribute(item, "subscription", "remove");
    if (!name.isEmpty())
        xmpp_stanza_set_attribute(item, "name", name.constData());
    for (const QByteArray &group : groups)
        addTextChild(buddy.ctx, item, "group", group);
    xmpp_stanza_add_child_ex(query, item, 0);
    xmpp_stanza_add_child_ex(iq, query, 0);
    sendAndRelease(buddy, iq);
}

bool execute(Buddy &buddy, const QList<QByteArray> &words)
{
    const QByteArray command = words.value(0);
    if (command == "presence" && words.size() == 4) {
        sendPresence(buddy, decoded(words.at(1)), decoded(words.at(2)), words.at(3).toInt());
    } else if (command == "directed" && words.size() == 5) {
        // Presence to one JID only, as to someone not on the roster.
        xmpp_stanza_t *presence = xmpp_presence_new(buddy.ctx);
        xmpp_stanza_set_to(presence, decoded(words.at(1)).constData());
        if (words.at(2) != "-")
            xmpp_stanza_set_type(presence, decoded(words.at(2)).constData());
        if (words.at(3) != "-")
            addTextChild(buddy.ctx, presence, "show", decoded(words.at(3)));
        if (words.at(4) != "-")
            addTextChild(buddy.ctx, presence, "status", decoded(words.at(4)));
        sendAndRelease(buddy, presence);
    } else if (command == "unavailable") {
        xmpp_stanza_t *presence = xmpp_presence_new(buddy.ctx);
        xmpp_stanza_set_type(presence, "unavailable");
        sendAndRelease(buddy, presence);
    } else if (command == "message" && words.size() == 3) {
        const std::string id = nextId(buddy);
        xmpp_stanza_t *message
            = xmpp_message_new(buddy.ctx, "chat", decoded(words.at(1)).constData(), id.c_str());
        addTextChild(buddy.ctx, message, "body", decoded(words.at(2)));
        sendAndRelease(buddy, message);
    } else if (command == "roster-set" && words.size() == 4) {
        QList<QByteArray> groups;
        for (const QByteArray &group : words.at(3).split(','))
            if (group != "-" && !group.isEmpty())
                groups.append(decoded(group));
        rosterSet(buddy, decoded(words.at(1)), decoded(words.at(2)), groups, false);
    } else if (command == "roster-remove" && words.size() == 2) {
        rosterSet(buddy, decoded(words.at(1)), QByteArray(), {}, true);
    } else if ((command == "subscribe" || command == "subscribed") && words.size() == 2) {
        xmpp_stanza_t *presence = xmpp_presence_new(buddy.ctx);
        xmpp_stanza_set_type(presence, command.constData());
        xmpp_stanza_set_to(presence, decoded(words.at(1)).constData());
        sendAndRelease(buddy, presence);
    } else if (command == "flood" && words.size() == 3) {
        buddy.floodLeft = words.at(1).toLong();
        buddy.floodInterval = 1000.0 / qMax(1.0, words.at(2).toDouble());
        buddy.floodSent = 0;
        buddy.floodClock.start();
        return true; // answered when done
    } else if (command == "sync") {
    } else {
        answer("error unknown command or wrong arguments");
        return true;
    }
    buddy.syncPending = true;
    return true;
}

QByteArray argValue(int argc, char **argv, const char *name)
{
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], name) == 0)
            return QByteArray(argv[i + 1]);
    }
    return QByteArray();
}

bool hasFlag(int argc, char **argv, const char *name)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], name) == 0)
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char **argv)
{
    const QByteArray jid = argValue(argc, argv, "--jid");
    const QByteArray server = argValue(argc, argv, "--server");
    const QByteArray ca = argValue(argc, argv, "--ca");
    QByteArray resource = argValue(argc, argv, "--resource");
    const char *password = std::getenv("VESK_XMPP_PASSWORD");
    const int colon = server.lastIndexOf(':');
    if (jid.isEmpty() || colon < 0 || !password) {
        std::fprintf(stderr,
            "usage: VESK_XMPP_PASSWORD=... xmppbuddy --jid JID --server "
            "HOST:PORT [--ca FILE | --insecure] [--resource R]\n");
        return 2;
    }
    if (resource.isEmpty())
        resource = "buddy";

    xmpp_initialize();
    Buddy buddy;
    buddy.ctx = xmpp_ctx_new(nullptr, nullptr);
    buddy.conn = xmpp_conn_new(buddy.ctx);
    long flags = XMPP_CONN_FLAG_DISABLE_SM;
    flags |= hasFlag(argc, argv, "--insecure") ? XMPP_CONN_FLAG_DISABLE_TLS
                                               : XMPP_CONN_FLAG_MANDATORY_TLS;
    xmpp_conn_set_flags(buddy.conn, flags);
    xmpp_conn_set_jid(buddy.conn, (jid + '/' + resource).constData());
    xmpp_conn_set_pass(buddy.conn, password);
    if (!ca.isEmpty())
        xmpp_conn_set_cafile(buddy.conn, ca.constData());
    const QByteArray host = server.left(colon);
    if (xmpp_connect_client(buddy.conn, host.constData(),
            static_cast<unsigned short>(server.mid(colon + 1).toUInt()), &onConnection, &buddy)
        != XMPP_EOK) {
        answer("error cannot connect");
        return 1;
    }

    QByteArray input;
    bool quit = false;
    bool inputOpen = true;
    while (!quit && !buddy.failed) {
        xmpp_run_once(buddy.ctx, buddy.floodLeft > 0 ? 0 : 5);
        if (buddy.floodLeft > 0) {
            // Catch up with the schedule, a few at a time.
            const long due = long(buddy.floodClock.elapsed() / buddy.floodInterval) + 1;
            static const char *const shows[] = { "", "away", "dnd", "xa", "chat" };
            for (int n = 0; n < 50 && buddy.floodSent < due && buddy.floodLeft > 0; ++n) {
                const QByteArray status = "flood " + QByteArray::number(qlonglong(buddy.floodSent));
                sendPresence(buddy, shows[buddy.floodSent % 5], status, 0);
                ++buddy.floodSent;
                --buddy.floodLeft;
            }
            if (buddy.floodLeft == 0)
                buddy.syncPending = true;
            continue;
        }
        if (buddy.syncPending && xmpp_conn_send_queue_len(buddy.conn) == 0) {
            buddy.syncPending = false;
            answer("ok");
        }
        if (!buddy.connected || buddy.syncPending || !inputOpen)
            continue;
        const int newline = input.indexOf('\n');
        if (newline >= 0) {
            const QByteArray line = input.left(newline).trimmed();
            input.remove(0, newline + 1);
            const QList<QByteArray> words = line.split(' ');
            if (words.value(0) == "quit")
                quit = true;
            else if (!line.isEmpty())
                execute(buddy, words);
            continue;
        }
        pollfd fd { STDIN_FILENO, POLLIN, 0 };
        if (::poll(&fd, 1, 0) <= 0)
            continue;
        char chunk[65536];
        const ssize_t got = ::read(STDIN_FILENO, chunk, sizeof chunk);
        if (got <= 0) {
            inputOpen = false;
            quit = true;
            continue;
        }
        input.append(chunk, int(got));
    }
    if (buddy.connected && !buddy.failed) {
        xmpp_disconnect(buddy.conn);
        for (int i = 0; i < 50 && !buddy.failed; ++i)
            xmpp_run_once(buddy.ctx, 10);
    }
    xmpp_conn_release(buddy.conn);
    xmpp_ctx_free(buddy.ctx);
    xmpp_shutdown();
    return buddy.failed && !quit ? 1 : 0;
}
