// `./run live`: a local Prosody on 127.0.0.1 with about forty scripted
// buddies in a few groups whose presence, status and messages change every
// few seconds, and the roster window connected to it. Nobody needs an
// account anywhere: the server, its accounts and their password live in a
// temporary directory that goes when the window closes.
//
// vesk-xmpp-live-demo GUI [--screenshots DIR]

#include "prosodyserver.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QScopedValueRollback>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

struct Person
{
    const char *user;
    const char *name;
    const char *groups; // comma-separated, may be empty
};

const Person people[] = {
    { "alice", "Alice Martin", "Friends" },
    { "bob", "Bob", "Friends" },
    { "charlie", "charlie", "Friends,Band" },
    { "dana", "Dana Kowalski", "Friends" },
    { "emile", "Émile Roux", "Friends" },
    { "fatima", "Fatima", "Friends" },
    { "greg", "Greg", "Friends" },
    { "hana", "Hana Sato", "Friends,Work" },
    { "ivan", "Ivan", "Friends" },
    { "julia", "Julia", "Friends" },
    { "ada", "Ada Lovelace", "Work" },
    { "ben", "Ben Okafor", "Work" },
    { "chloe", "Chloé Dubois", "Work" },
    { "buildbot", "", "Work" },
    { "deepak", "Deepak", "Work" },
    { "eva", "Eva Lindqvist", "Work" },
    { "frank", "Frank", "Work" },
    { "grace", "Grace Ho", "Work" },
    { "helpdesk", "helpdesk", "Work" },
    { "igor", "Igor Petrov", "Work" },
    { "mum", "Mum", "Family" },
    { "dad", "Dad", "Family" },
    { "rose", "Grandma Rose", "Family" },
    { "leo", "Leo", "Family" },
    { "mia", "Mia", "Family" },
    { "sam", "uncle Sam", "Family" },
    { "nora", "Nora", "Family" },
    { "oscar", "Oscar", "Band" },
    { "paula", "Paula", "Band" },
    { "quentin", "Quentin", "Band" },
    { "rita", "Rita", "Band" },
    { "sven", "Sven", "Band" },
    { "tom", "Tom", "Band,Friends" },
    { "uma", "Uma", "" },
    { "victor", "Victor", "" },
    { "wendy", "Wendy", "" },
    { "xavier", "Xavier", "Work" },
    { "yuki", "Yuki", "Friends" },
    { "zoe", "Zoé", "Family" },
    { "anna", "Anna K.", "Work" },
};

const char *const shows[] = { "-", "-", "-", "chat", "away", "away", "xa", "dnd" };
const char *const statuses[] = { "", "", "at lunch", "back at 3", "in a meeting", "on the train",
    "gaming", "exam week", "reviewing the roster patch", "call me", "gardening",
    "ask me about the release", "parental leave", "tickets only", "build passed", "build failed",
    "coffee", "out for a run", "on holiday until Monday", "listening to music" };
const char *const messages[] = { "hi!", "are you there?", "lunch?", "see the new build",
    "call me back", "ok", "thanks", "meeting moved to 3" };

void say(const QString &text)
{
    std::fprintf(stderr, "live: %s\n", text.toLocal8Bit().constData());
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 2) {
        say(QStringLiteral("usage: vesk-xmpp-live-demo VESK_ROSTER_GUI [--screenshots DIR]"));
        return 2;
    }
    // A password for this run only; the window gets it in its environment.
    const QByteArray password
        = QByteArray::number(QRandomGenerator::system()->generate64(), 36) + "-live";

    ProsodyServer server;
    QString error;
    say(QStringLiteral("starting Prosody on 127.0.0.1..."));
    if (!server.start(&error)) {
        say(error);
        return 1;
    }
    say(QStringLiteral("creating %1 accounts...").arg(int(std::size(people)) + 1));
    QList<ProsodyServer::RosterItem> mine;
    const QString me = ProsodyServer::jid(QStringLiteral("me"));
    bool ok = server.addAccount(QStringLiteral("me"), password, &error);
    for (const Person &person : people) {
        const QString user = QString::fromUtf8(person.user);
        const QString groups = QString::fromUtf8(person.groups);
        mine.append({ ProsodyServer::jid(user), QString::fromUtf8(person.name),
            groups.isEmpty() ? QStringList() : groups.split(QLatin1Char(',')) });
        ok = ok && server.addAccount(user, password, &error)
            && server.writeRoster(user, { { me, QString(), {} } }, &error);
    }
    ok = ok && server.writeRoster(QStringLiteral("me"), mine, &error);
    if (!ok) {
        say(error);
        return 1;
    }

    // Everybody logs in, most of them available.
    std::vector<std::unique_ptr<XmppBuddy>> buddies;
    QRandomGenerator random(20261125);
    for (const Person &person : people) {
        auto buddy = std::make_unique<XmppBuddy>();
        if (!buddy->start(
                server, ProsodyServer::jid(QString::fromUtf8(person.user)), password, &error)) {
            say(error);
            return 1;
        }
        if (random.bounded(5) != 0) {
            buddy->run(QStringLiteral("presence %1 %2 0")
                           .arg(QString::fromLatin1(shows[random.bounded(int(std::size(shows)))]),
                               XmppBuddy::word(QString::fromUtf8(
                                   statuses[random.bounded(int(std::size(statuses)))]))),
                &error);
        }
        buddies.push_back(std::move(buddy));
    }

    QProcess window;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("VESK_XMPP_PASSWORD"), QString::fromUtf8(password));
    window.setProcessEnvironment(env);
    window.setProcessChannelMode(QProcess::ForwardedChannels);
    QStringList windowArgs
        = { QStringLiteral("--settings"), server.dir() + QLatin1String("/settings"),
              QStringLiteral("--xmpp"), me, QStringLiteral("--xmpp-server"), server.address(),
              QStringLiteral("--xmpp-ca"), server.caFile() };
    windowArgs += args.mid(2);
    QObject::connect(&window, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &app,
        [&](int code, QProcess::ExitStatus) { app.exit(code); });

    // Every few seconds each buddy does something: a new presence or
    // status, a message, a spell offline.
    QTimer script;
    bool busy = false; // a buddy's answer is awaited with the loop running
    QObject::connect(&script, &QTimer::timeout, &app, [&] {
        if (busy)
            return;
        const QScopedValueRollback<bool> guard(busy, true);
        const int who = random.bounded(int(buddies.size()));
        XmppBuddy &buddy = *buddies[size_t(who)];
        const int what = random.bounded(10);
        QString command;
        if (what < 6) {
            command = QStringLiteral("presence %1 %2 0")
                          .arg(QString::fromLatin1(shows[random.bounded(int(std::size(shows)))]),
                              XmppBuddy::word(QString::fromUtf8(
                                  statuses[random.bounded(int(std::size(statuses)))])));
        } else if (what < 9) {
            command = QStringLiteral("message %1 %2")
                          .arg(me,
                              XmppBuddy::word(QString::fromUtf8(
                                  messages[random.bounded(int(std::size(messages)))])));
        } else {
            command = QStringLiteral("unavailable");
        }
        QString ignored;
        buddy.run(command, &ignored, 2000);
    });
    script.start(150);
    window.start(args.at(1), windowArgs);
    say(QStringLiteral("the window shows %1 on %2; close it to stop").arg(me, server.address()));
    const int code = app.exec();
    script.stop();
    buddies.clear();
    server.stop();
    return code;
}
