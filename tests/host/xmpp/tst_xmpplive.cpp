// The live host against a real Prosody on 127.0.0.1: scripted buddies log
// in, change presence, send messages and edit rosters, and the proxy model
// (through a stored filter and sorting method) and `vesk-roster --xmpp show
// --json` must show exactly what they did.
//
// Bound: after each buddy action the view is in step within 5 s (on the
// loopback it takes milliseconds; the bound is for sanitizer builds on a
// loaded machine).

#include "prosodyserver.h"

#include <accountstatus.h>
#include <rostertreemodel.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterproxymodel.h>
#include <veskrostersortersmanager.h>
#include <veskstandin.h>
#include <veskxmppaccount.h>
#include <veskxmpphost.h>
#include <veskxmpproster.h>

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <map>

namespace {

const int stepBound = 5000;
const QByteArray password = "live-test-password";

QString entryLine(const QString &display, const QString &kind, const QString &presence,
    const QString &description, const QString &chats)
{
    QString line = display + QLatin1Char(' ') + presence;
    if (!description.isEmpty())
        line += QStringLiteral(" [%1]").arg(description);
    if (kind == QLatin1String("temporary"))
        line += QStringLiteral(" (temporary)");
    else if (!chats.isEmpty())
        line += QStringLiteral(" #") + chats;
    return line;
}

QString entryLine(const VeskBuddy &entry)
{
    const bool contact = entry.getType() == VeskBuddy::TypeContact;
    const VeskPresence presence
        = contact ? VeskBuddyContact(entry).getPresence() : VeskBuddyTemporary(entry).getPresence();
    const VeskArg chats
        = contact ? VeskBuddyContact(entry).getAttrib(QStringLiteral("chats_count")) : VeskArg();
    return entryLine(entry.getDisplay(),
        contact ? QStringLiteral("contact") : QStringLiteral("temporary"), presence.getId(),
        presence.getDescription(),
        chats.getType() == VeskArg::TypeInt ? QString::number(chats.toInt()) : QString());
}

// Groups are placed by their position, which is their order of first
// appearance in the server's roster: the server's own order, which the
// tests do not rely on. Group lines are compared sorted.
QString joined(QStringList groups, const QStringList &ungrouped)
{
    groups.sort();
    return (groups + ungrouped).join(QLatin1Char('\n'));
}

// What the proxy shows: "Group: a; b" per group, then a line per ungrouped entry.
QString viewText(const VeskRosterProxyModel &proxy)
{
    QStringList groups;
    QStringList lines;
    for (int row = 0; row < proxy.rowCount(); ++row) {
        const QModelIndex index = proxy.index(row, 0);
        const VeskBuddy entry = proxy.rosterEntry(index);
        if (entry.getType() != VeskBuddy::TypeGroup) {
            lines.append(entryLine(entry));
            continue;
        }
        QStringList members;
        for (int child = 0; child < proxy.rowCount(index); ++child)
            members.append(entryLine(proxy.rosterEntry(proxy.index(child, 0, index))));
        groups.append(entry.getDisplay() + QLatin1String(": ") + members.join(QLatin1String("; ")));
    }
    return joined(groups, lines);
}

// The same from `vesk-roster show --json`.
QString jsonText(const QByteArray &json)
{
    const QJsonObject root = QJsonDocument::fromJson(json).object();
    auto line = [](const QJsonObject &e) {
        const QJsonValue chats = e.value(QLatin1String("chats_count"));
        return entryLine(e.value(QLatin1String("display")).toString(),
            e.value(QLatin1String("kind")).toString(),
            e.value(QLatin1String("presence")).toString(),
            e.value(QLatin1String("description")).toString(),
            chats.isDouble() ? QString::number(chats.toInt()) : QString());
    };
    QStringList groups;
    QStringList lines;
    for (const QJsonValue &group : root.value(QLatin1String("groups")).toArray()) {
        QStringList members;
        for (const QJsonValue &e : group.toObject().value(QLatin1String("entries")).toArray())
            members.append(line(e.toObject()));
        groups.append(group.toObject().value(QLatin1String("name")).toString() + QLatin1String(": ")
            + members.join(QLatin1String("; ")));
    }
    for (const QJsonValue &e : root.value(QLatin1String("ungrouped")).toArray())
        lines.append(line(e.toObject()));
    return joined(groups, lines);
}

struct Run
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

} // namespace

class tst_XmppLive : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void liveRosterThroughFilter();
    void showJsonMatchesTheView();
    void hostileBuddies();
    void largeRoster();
    void presenceFloodKeepsTheLoopResponsive();
    void serverKilledAndRestarted();
    void refusals_data();
    void refusals();

private:
    Run vr(const QStringList &args, const QByteArray &pass = password, int timeoutMs = 30000);
    QStringList xmppArgs(const QString &user) const;
    XmppBuddy *buddy(const QString &user, const QString &resource = QStringLiteral("buddy"));
    void act(const QString &user, const QString &command);
    QString view() const { return viewText(*proxy); }

    ProsodyServer server;
    QTemporaryDir settings;
    std::unique_ptr<VeskXmppHost> host;
    VeskXmppAccount *account = nullptr;
    std::unique_ptr<VeskRosterTreeModel> model;
    std::unique_ptr<VeskRosterProxyModel> proxy;
    std::map<QString, std::unique_ptr<XmppBuddy>> buddies;
};

Run tst_XmppLive::vr(const QStringList &args, const QByteArray &pass, int timeoutMs)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("VESK_XMPP_PASSWORD"), QString::fromUtf8(pass));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(VESK_ROSTER_PROGRAM),
        QStringList { QStringLiteral("--settings"), settings.filePath(QStringLiteral("s")) }
            + args);
    Run run;
    // The client in this process keeps answering while the program runs.
    QElapsedTimer clock;
    clock.start();
    while (!process.waitForFinished(10) && clock.elapsed() < timeoutMs)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

QStringList tst_XmppLive::xmppArgs(const QString &user) const
{
    return { QStringLiteral("--xmpp"), ProsodyServer::jid(user), QStringLiteral("--xmpp-server"),
        server.address(), QStringLiteral("--xmpp-ca"), server.caFile() };
}

XmppBuddy *tst_XmppLive::buddy(const QString &user, const QString &resource)
{
    const QString key = user + QLatin1Char('/') + resource;
    auto &slot = buddies[key];
    if (!slot) {
        slot = std::make_unique<XmppBuddy>();
        QString error;
        if (!slot->start(server, ProsodyServer::jid(user), password, &error, resource)) {
            slot.reset();
            qWarning("buddy %s: %s", qPrintable(key), qPrintable(error));
            return nullptr;
        }
    }
    return slot.get();
}

void tst_XmppLive::act(const QString &user, const QString &command)
{
    XmppBuddy *b = buddy(user);
    QVERIFY2(b, qPrintable(user));
    QString error;
    QVERIFY2(b->run(command, &error), qPrintable(error));
}

void tst_XmppLive::initTestCase()
{
    QString error;
    QVERIFY2(server.start(&error), qPrintable(error));
    for (const char *user : { "me", "alice", "bob", "carol", "dave", "eve", "mallory", "big" })
        QVERIFY2(server.addAccount(QString::fromLatin1(user), password, &error), qPrintable(error));
    using Item = ProsodyServer::RosterItem;
    const QString me = ProsodyServer::jid(QStringLiteral("me"));
    auto jid = [](const char *user) {
        return ProsodyServer::jid(QString::fromLatin1(user));
    };
    QVERIFY(server.writeRoster(QStringLiteral("me"),
        { Item { jid("alice"), QStringLiteral("Alice"),
              { QStringLiteral("Friends"), QStringLiteral("Work") } },
            Item { jid("bob"), QString(), { QStringLiteral("Friends") }, QStringLiteral("to") },
            Item { jid("carol"), QStringLiteral("Carol"), {} },
            Item { jid("dave"), QStringLiteral("Dave"), { QStringLiteral("Work") },
                QStringLiteral("from") } },
        &error));
    QVERIFY(server.writeRoster(QStringLiteral("alice"), { Item { me, QString(), {} } }, &error));
    QVERIFY(server.writeRoster(
        QStringLiteral("bob"), { Item { me, QString(), {}, QStringLiteral("from") } }, &error));
    QVERIFY(server.writeRoster(QStringLiteral("carol"), { Item { me, QString(), {} } }, &error));
    QVERIFY(server.writeRoster(
        QStringLiteral("dave"), { Item { me, QString(), {}, QStringLiteral("to") } }, &error));
    QList<Item> big;
    for (int i = 0; i < 5000; ++i)
        big.append(Item { QStringLiteral("c%1@localhost").arg(i),
            QStringLiteral("Contact %1").arg(i, 4, 10, QLatin1Char('0')),
            { QStringLiteral("Group %1").arg(i % 20) },
            i % 4 == 0 ? QStringLiteral("none") : QStringLiteral("both") });
    QVERIFY(server.writeRoster(QStringLiteral("big"), big, &error));

    // A stored filter (no one busy) and sorting method (by name), made by
    // the program as a user would.
    for (const QStringList &args :
        { QStringList { QStringLiteral("new"), QStringLiteral("not busy"), QStringLiteral("and"),
              QStringLiteral("presence"), QStringLiteral("is_or_not=is not"),
              QStringLiteral("presence_filter_presence=dnd") },
            QStringList {
                QStringLiteral("sorter"), QStringLiteral("by name"), QStringLiteral("name") },
            QStringList { QStringLiteral("use"), QStringLiteral("not busy") },
            QStringList { QStringLiteral("sort"), QStringLiteral("by name") } }) {
        const Run run = vr(args);
        QVERIFY2(run.exitCode == 0, run.err.constData());
    }

    VeskStandIn::resetRoster();
    VeskStandIn::setSettingsDir(settings.filePath(QStringLiteral("s")));
    host = std::make_unique<VeskXmppHost>();
    model = std::make_unique<VeskRosterTreeModel>();
    model->setRoster(VeskStandIn::entries());
    VeskAccountStatus::follow(host.get(), model.get());
    proxy = std::make_unique<VeskRosterProxyModel>();
    proxy->setSourceModel(model.get());
    QCOMPARE(VeskRosterFiltersManager::getInstance()->getCurrentFilterName(),
        QStringLiteral("not busy"));

    VeskXmppSettings s;
    s.jid = me;
    s.password = password;
    QVERIFY(VeskXmppHost::parseServer(server.address(), &s.host, &s.port));
    s.caFile = server.caFile();
    s.reconnect = true;
    account = host->addAccount(s);
    account->connectToServer();
    QTRY_COMPARE_WITH_TIMEOUT(account->state(), VeskXmppAccount::Connected, 10000);
}

void tst_XmppLive::cleanupTestCase()
{
    buddies.clear();
    proxy.reset();
    model.reset();
    host.reset();
    server.stop();
    VeskStandIn::resetRoster();
}

void tst_XmppLive::liveRosterThroughFilter()
{
    // Everyone offline; a contact in two groups in each; no name shows the JID.
    QTRY_COMPARE_WITH_TIMEOUT(view(),
        QStringLiteral("Friends: Alice offline #0; bob@localhost offline #0\n"
                       "Work: Alice offline #0; Dave offline #0\n"
                       "Carol offline #0"),
        stepBound);

    act(QStringLiteral("alice"),
        QStringLiteral("presence away %1 0").arg(XmppBuddy::word(QStringLiteral("at lunch"))));
    act(QStringLiteral("bob"), QStringLiteral("presence chat - 0"));
    act(QStringLiteral("carol"), QStringLiteral("presence dnd busy 0"));
    // Our presence does not reach us from Dave (we are not subscribed to his).
    act(QStringLiteral("dave"), QStringLiteral("presence - - 0"));
    act(QStringLiteral("alice"), QStringLiteral("message me@localhost hello"));
    act(QStringLiteral("alice"), QStringLiteral("message me@localhost again"));
    // Carol is busy: the stored filter hides her.
    QTRY_COMPARE_WITH_TIMEOUT(view(),
        QStringLiteral("Friends: Alice away [at lunch] #2; bob@localhost chat #0\n"
                       "Work: Alice away [at lunch] #2; Dave offline #0"),
        stepBound);

    // A second resource of Alice's with a higher priority wins.
    XmppBuddy *phone = buddy(QStringLiteral("alice"), QStringLiteral("phone"));
    QVERIFY(phone);
    QString error;
    QVERIFY2(
        phone->run(
            QStringLiteral("presence xa %1 5").arg(XmppBuddy::word(QStringLiteral("on the phone"))),
            &error),
        qPrintable(error));
    QTRY_COMPARE_WITH_TIMEOUT(view(),
        QStringLiteral("Friends: Alice xa [on the phone] #2; bob@localhost chat #0\n"
                       "Work: Alice xa [on the phone] #2; Dave offline #0"),
        stepBound);
    phone->quit();
    QTRY_COMPARE_WITH_TIMEOUT(view(),
        QStringLiteral("Friends: Alice away [at lunch] #2; bob@localhost chat #0\n"
                       "Work: Alice away [at lunch] #2; Dave offline #0"),
        stepBound);

    // Someone not on the roster: a temporary contact while there.
    act(QStringLiteral("eve"), QStringLiteral("message me@localhost psst"));
    act(QStringLiteral("eve"),
        QStringLiteral("directed me@localhost - chat %1")
            .arg(XmppBuddy::word(QStringLiteral("new here"))));
    QTRY_COMPARE_WITH_TIMEOUT(view(),
        QStringLiteral("Friends: Alice away [at lunch] #2; bob@localhost chat #0\n"
                       "Work: Alice away [at lunch] #2; Dave offline #0\n"
                       "eve@localhost chat [new here] (temporary)"),
        stepBound);
    act(QStringLiteral("eve"), QStringLiteral("directed me@localhost unavailable - -"));
    QTRY_COMPARE_WITH_TIMEOUT(view(),
        QStringLiteral("Friends: Alice away [at lunch] #2; bob@localhost chat #0\n"
                       "Work: Alice away [at lunch] #2; Dave offline #0"),
        stepBound);

    // Roster pushes from another client of ours: rename and regroup Alice,
    // add Eve, remove Carol, give Bob a name.
    XmppBuddy *editor = buddy(QStringLiteral("me"), QStringLiteral("editor"));
    QVERIFY(editor);
    for (const QString &command : { QStringLiteral("roster-set alice@localhost %1 Work")
                                        .arg(XmppBuddy::word(QStringLiteral("Alice B."))),
             QStringLiteral("roster-set eve@localhost Eve New"),
             QStringLiteral("roster-remove carol@localhost"),
             QStringLiteral("roster-set bob@localhost Bob Friends") })
        QVERIFY2(editor->run(command, &error), qPrintable(error));
    act(QStringLiteral("carol"), QStringLiteral("presence - back 0"));
    QTRY_COMPARE_WITH_TIMEOUT(view(),
        QStringLiteral("Friends: Bob chat #0\n"
                       "New: Eve offline #1\n"
                       "Work: Alice B. away [at lunch] #2; Dave offline #0"),
        stepBound);
}

void tst_XmppLive::showJsonMatchesTheView()
{
    const Run run = vr(xmppArgs(QStringLiteral("me"))
        + QStringList { QStringLiteral("show"), QStringLiteral("--json") });
    QVERIFY2(run.exitCode == 0, run.err.constData());
    // Chats are counted while a program runs: the program's own count
    // starts at 0.
    const QRegularExpression chats(QStringLiteral(" #\\d+"));
    QCOMPARE(jsonText(run.out).remove(chats), view().remove(chats));
    QVERIFY(!jsonText(run.out).contains(QLatin1String(" #2")));
}

void tst_XmppLive::hostileBuddies()
{
    // XML carries no C0 control but tab, newline and carriage return; C1
    // controls (U+009B is a terminal's CSI), DEL and bidi controls it does.
    // (A tab in an attribute, as a name is, arrives as a space.)
    const QString name = QStringLiteral("Mal\u009b31mlory\u202e\u2066x\x7f");
    const QString group = QStringLiteral("G\u009d0;owned\u009crp\u202e");
    // (A carriage return arrives as a newline: XML's line ends.)
    const QString status = QStringLiteral("st\u009b2J\tatus\u202egnp.exe\u2067\nline");
    XmppBuddy *editor = buddy(QStringLiteral("me"), QStringLiteral("editor"));
    QVERIFY(editor);
    QString error;
    QVERIFY2(editor->run(QStringLiteral("roster-set mallory@localhost %1 %2")
                             .arg(XmppBuddy::word(name), XmppBuddy::word(group)),
                 &error),
        qPrintable(error));
    // Subscribed the way clients do it: we ask, Mallory approves.
    QVERIFY2(editor->run(QStringLiteral("subscribe mallory@localhost"), &error), qPrintable(error));
    act(QStringLiteral("mallory"), QStringLiteral("subscribed me@localhost"));
    act(QStringLiteral("mallory"),
        QStringLiteral("presence away %1 0").arg(XmppBuddy::word(status)));
    const QString line = name + QStringLiteral(" away [") + status + QLatin1Char(']');
    QTRY_VERIFY2_WITH_TIMEOUT(
        view().contains(group + QLatin1String(": ") + line + QLatin1String(" #0")),
        qPrintable(view()), stepBound);

    // On the terminal: no control character, no bidi control, in any output.
    const Run run = vr(xmppArgs(QStringLiteral("me")) + QStringList { QStringLiteral("show") });
    QVERIFY2(run.exitCode == 0, run.err.constData());
    const QString out = QString::fromUtf8(run.out);
    QVERIFY2(out.contains(QLatin1String("Mal\\x9b31mlory\\u202e\\u2066x\\x7f")), qPrintable(out));
    for (const QChar c : out) {
        QVERIFY2(c == QLatin1Char('\n')
                || (c.category() != QChar::Other_Control && c.category() != QChar::Other_Format),
            qPrintable(QString::number(c.unicode(), 16)));
    }

    // A status of 100 kB arrives whole.
    const QString longStatus = QString(100 * 1024, QLatin1Char('s'));
    act(QStringLiteral("mallory"),
        QStringLiteral("presence dnd %1 0").arg(XmppBuddy::word(longStatus)));
    QTRY_VERIFY_WITH_TIMEOUT(
        view().contains(name + QStringLiteral(" dnd [") + longStatus + QLatin1Char(']'))
            || !view().contains(name),
        stepBound);
    // dnd is filtered out: the host entry itself holds the text.
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    const auto it = std::find_if(
        entries.begin(), entries.end(), [&](const VeskBuddy &e) { return e.getDisplay() == name; });
    QVERIFY(it != entries.end());
    QCOMPARE(VeskBuddyContact(*it).getPresence().getDescription(), longStatus);
    QVERIFY2(
        editor->run(QStringLiteral("roster-remove mallory@localhost"), &error), qPrintable(error));
    QTRY_VERIFY_WITH_TIMEOUT(!view().contains(group), stepBound);
}

void tst_XmppLive::largeRoster()
{
    // 5,000 items through the program: all there, in their 20 groups.
    QElapsedTimer clock;
    clock.start();
    const Run run = vr(xmppArgs(QStringLiteral("big"))
            + QStringList { QStringLiteral("show"), QStringLiteral("--json") },
        password, 60000);
    const qint64 elapsed = clock.elapsed();
    QVERIFY2(run.exitCode == 0, run.err.constData());
    const QJsonObject root = QJsonDocument::fromJson(run.out).object();
    const QJsonArray groups = root.value(QLatin1String("groups")).toArray();
    QCOMPARE(groups.size(), 20);
    int count = 0;
    for (const QJsonValue &g : groups)
        count += g.toObject().value(QLatin1String("entries")).toArray().size();
    QCOMPARE(count, 5000);
    qInfo(
        "vesk-roster show --json of a 5,000-item roster: %lld ms (with the half-second quiet wait)",
        elapsed);
}

void tst_XmppLive::presenceFloodKeepsTheLoopResponsive()
{
    // The view shown, a flood of presences from one buddy: the event loop
    // must never stall long. (The benchmark runs the full ten seconds.)
    QTreeView view;
    view.setModel(proxy.get());
    view.show();
    view.expandAll();
    XmppBuddy *flooder = buddy(QStringLiteral("bob"));
    QVERIFY(flooder);
    const quint64 before = account->stanzaCount();
    QElapsedTimer clock;
    qint64 last = 0;
    qint64 longest = 0;
    QTimer tick;
    tick.setInterval(2);
    clock.start();
    connect(&tick, &QTimer::timeout, this, [&] {
        const qint64 now = clock.elapsed();
        longest = qMax(longest, now - last);
        last = now;
    });
    tick.start();
    QString error;
    QVERIFY2(flooder->run(QStringLiteral("flood 3000 1000"), &error, 20000), qPrintable(error));
    QTRY_VERIFY_WITH_TIMEOUT(account->stanzaCount() - before >= 3000, 10000);
    tick.stop();
    qInfo("flood: %llu presences in %lld ms, longest event-loop stall %lld ms",
        account->stanzaCount() - before, clock.elapsed(), longest);
    QVERIFY2(longest < 250, qPrintable(QStringLiteral("the loop stalled for %1 ms").arg(longest)));
    // In step at the end: the last of the flood's presences shows.
    const QVector<VeskBuddy> bob = account->roster()->entriesOf(QStringLiteral("bob@localhost"));
    QCOMPARE(bob.size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(VeskBuddyContact(bob.first()).getPresence().getDescription(),
        QStringLiteral("flood 2999"), stepBound);
}

void tst_XmppLive::serverKilledAndRestarted()
{
    const QString before = view();
    server.kill();
    QTRY_VERIFY_WITH_TIMEOUT(account->state() == VeskXmppAccount::Waiting, stepBound);
    // Everyone shows offline meanwhile; the roster is whole.
    QTRY_COMPARE_WITH_TIMEOUT(view(),
        QStringLiteral("Friends: Bob offline #0\n"
                       "New: Eve offline #1\n"
                       "Work: Alice B. offline #2; Dave offline #0"),
        stepBound);
    buddies.clear(); // their connections died with the server
    QString error;
    QVERIFY2(server.start(&error), qPrintable(error));
    // Back-off: 1 s, then 2 s, ... the first tries after the restart succeed.
    QTRY_COMPARE_WITH_TIMEOUT(account->state(), VeskXmppAccount::Connected, 40000);
    act(QStringLiteral("alice"),
        QStringLiteral("presence away %1 0").arg(XmppBuddy::word(QStringLiteral("at lunch"))));
    QTRY_COMPARE_WITH_TIMEOUT(view(),
        QStringLiteral("Friends: Bob offline #0\n"
                       "New: Eve offline #1\n"
                       "Work: Alice B. away [at lunch] #2; Dave offline #0"),
        stepBound);
    Q_UNUSED(before)
}

void tst_XmppLive::refusals_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QStringList>("extra");
    QTest::addColumn<QByteArray>("pass");
    QTest::addColumn<QString>("expected");
    QTest::newRow("wrong password")
        << QString() << QStringList { QStringLiteral("--xmpp-ca"), QStringLiteral("CA") }
        << QByteArray("not-the-password") << QStringLiteral("wrong password");
    QTest::newRow("unknown server") << QStringLiteral("closed") << QStringList() << password
                                    << QStringLiteral("Connection refused");
    QTest::newRow("self-signed certificate without --xmpp-ca")
        << QString() << QStringList() << password << QStringLiteral("is not trusted");
    QTest::newRow("no TLS toward a server that is not loopback")
        << QStringLiteral("192.0.2.1:5222") << QStringList { QStringLiteral("--xmpp-insecure") }
        << password << QStringLiteral("only with --xmpp-server on the loopback");
    QTest::newRow("TLS required, the server has none")
        << QStringLiteral("notls") << QStringList() << password << QStringLiteral("TLS");
}

void tst_XmppLive::refusals()
{
    if (!this->server.isRunning()) {
        QString error;
        QVERIFY2(this->server.start(&error), qPrintable(error));
    }
    QFETCH(QString, server);
    QFETCH(QStringList, extra);
    QFETCH(QByteArray, pass);
    QFETCH(QString, expected);
    std::unique_ptr<ProsodyServer> plain;
    QString address = this->server.address();
    if (server == QLatin1String("closed")) {
        address = QStringLiteral("127.0.0.1:1");
    } else if (server == QLatin1String("notls")) {
        plain = std::make_unique<ProsodyServer>(ProsodyServer::NoTls);
        QString error;
        QVERIFY2(plain->start(&error), qPrintable(error));
        QVERIFY2(plain->addAccount(QStringLiteral("me"), password, &error), qPrintable(error));
        address = plain->address();
    } else if (!server.isEmpty()) {
        address = server;
    }
    extra.replaceInStrings(QStringLiteral("CA"), this->server.caFile());
    const Run run
        = vr(QStringList { QStringLiteral("--xmpp"), ProsodyServer::jid(QStringLiteral("me")),
                 QStringLiteral("--xmpp-server"), address }
                + extra + QStringList { QStringLiteral("show") },
            pass);
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.out.isEmpty());
    const QString err = QString::fromUtf8(run.err);
    QCOMPARE(err.count(QLatin1Char('\n')), 1);
    QVERIFY2(err.contains(expected), qPrintable(err));
    // The password shows nowhere.
    QVERIFY(!run.err.contains(pass));
}

QTEST_MAIN(tst_XmppLive)
#include "tst_xmpplive.moc"
