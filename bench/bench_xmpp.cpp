// The live XMPP host. Presence updates as the server delivers them, through
// the roster mapping, the window's tree model and the proxy with a stored
// filter and sorting method, at 10,000 contacts; against the same change
// made by hand-written code straight on the host entry and its row. Then
// against a real Prosody on 127.0.0.1: log-in to a 5,000-item roster until
// every item is shown, and a buddy flooding 1,000 presences a second for ten
// seconds while the longest stall of the event loop is measured.

#include "threadcputime.h"

#include <accountstatus.h>
#include <prosodyserver.h>
#include <rostertreemodel.h>
#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrosterproxymodel.h>
#include <veskrostersortersmanager.h>
#include <veskstandin.h>
#include <veskxmppaccount.h>
#include <veskxmpphost.h>
#include <veskxmpproster.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLocale>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

const int contacts = 10000;
const QByteArray password = "bench-password";
const char *const shows[] = { "", "chat", "away", "xa", "dnd" };

// The stored filter ("not offline") and method (presence, then name), as a
// user makes them, current in a scratch settings directory.
void storeFilterAndMethod(const QString &dir)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    VeskStandIn::setSettingsDir(dir);
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    sorters->addSorter(
        QStringLiteral("presence_name"), { QStringLiteral("presence"), QStringLiteral("name") });
    sorters->setSorterAscending(
        QStringLiteral("presence_name"), { QStringLiteral("f"), QStringLiteral("t") });
    VeskRosterFiltersStack *online
        = filters->addStackFilter(QStringLiteral("online"), VeskRosterFilter::RosterFilterAnd);
    VeskRosterFilter *leaf
        = filters->createFilter(QStringLiteral("presence"), VeskRosterFilter::RosterFilterLeaf);
    QList<VeskField> fields = leaf->getConfiguration();
    for (VeskField &f : fields) {
        if (f.getId() == QLatin1String("is_or_not"))
            f.setSelectedId(QStringLiteral("is not"));
        else if (f.getId() == QLatin1String("presence_filter_presence"))
            f.setSelectedId(QStringLiteral("offline"));
    }
    leaf->setConfiguration(fields);
    online->appendFilter(leaf);
    online->setSorter(QStringLiteral("presence_name"));
    online->writeFilterSettings();
    filters->setCurrentFilter(QStringLiteral("online"));
}

struct Window
{
    std::unique_ptr<VeskXmppHost> host = std::make_unique<VeskXmppHost>();
    VeskRosterTreeModel model;
    VeskRosterProxyModel proxy;

    Window()
    {
        VeskAccountStatus::follow(host.get(), &model);
        model.setRoster(VeskStandIn::entries());
        proxy.setSourceModel(&model);
    }
    int shown() const
    {
        int count = 0;
        for (int row = 0; row < proxy.rowCount(); ++row)
            count += 1 + proxy.rowCount(proxy.index(row, 0));
        return count;
    }
};

QString jidOf(int i)
{
    return QStringLiteral("c%1@example.org").arg(i);
}

// Both sides in every iteration: the same presence change, once as the
// server's stanza reaches the mapping (resources, the winner, every entry
// of the contact, the model's rows, the proxy), once by hand-written code
// that sets the host entry's presence and signals its row.
void BM_XmppPresenceUpdates(benchmark::State &state)
{
    QTemporaryDir dir;
    VeskStandIn::resetRoster();
    storeFilterAndMethod(dir.path());
    Window w;
    VeskXmppRoster *roster = w.host->addRoster(QStringLiteral("me@example.org"));
    QList<VeskXmppRoster::Item> items;
    for (int i = 0; i < contacts; ++i)
        items.append({ jidOf(i), QStringLiteral("Contact %1").arg(i),
            { QStringLiteral("Group %1").arg(i % 20) }, QStringLiteral("both") });
    roster->setRoster(items);
    QRandomGenerator random(11);
    for (int i = 0; i < contacts; i += 2)
        roster->presence(jidOf(i) + QLatin1String("/r"), QString(), QString(), QString(), 0);
    w.proxy.refresh();
    benchmark::DoNotOptimize(w.shown());
    // The hand-written side changes the same kind of rows of its own roster
    // section: entries and their rows, as the window's "simulate activity" does.
    const QVector<VeskBuddy> &members = w.model.members();
    double mapped = 0;
    double direct = 0;
    int updates = 0;
    for (auto _ : state) {
        for (int n = 0; n < 100; ++n) {
            const int i = random.bounded(contacts);
            const char *show = shows[random.bounded(5)];
            const bool gone = random.bounded(8) == 0;
            const QString status = QStringLiteral("status %1").arg(n);
            double start = threadCpuSeconds();
            roster->presence(jidOf(i) + QLatin1String("/r"),
                gone ? QStringLiteral("unavailable") : QString(), QString::fromLatin1(show), status,
                0);
            mapped += threadCpuSeconds() - start;
            const int member = random.bounded(members.size());
            const VeskPresence presence = VeskXmppHost::presence(gone
                    ? QStringLiteral("offline")
                    : (*show ? QString::fromLatin1(show) : QStringLiteral("online")),
                status);
            start = threadCpuSeconds();
            VeskStandIn::setPresence(members.at(member), presence);
            w.model.memberChanged(member);
            direct += threadCpuSeconds() - start;
            ++updates;
        }
    }
    // In step: what the proxy shows is what the filter lets through.
    benchmark::DoNotOptimize(w.shown());
    state.counters["updates_per_s"] = updates / mapped;
    state.counters["handwritten_per_s"] = updates / direct;
    state.counters["ratio"] = mapped / direct;
    w.host.reset();
    VeskRosterFiltersManager::getInstance()->setCurrentFilter(QStringLiteral("default"));
    VeskStandIn::resetRoster();
}

struct Server
{
    ProsodyServer prosody;
    QTemporaryDir settings;
    bool ok = false;
    QString error;

    Server()
    {
        ok = prosody.start(&error) && prosody.addAccount(QStringLiteral("me"), password, &error)
            && prosody.addAccount(QStringLiteral("flood"), password, &error);
        QList<ProsodyServer::RosterItem> items;
        for (int i = 0; i < 5000; ++i)
            items.append({ QStringLiteral("c%1@localhost").arg(i),
                QStringLiteral("Contact %1").arg(i), { QStringLiteral("Group %1").arg(i % 20) } });
        items.append({ ProsodyServer::jid(QStringLiteral("flood")), QStringLiteral("Flood"), {} });
        ok = ok && prosody.writeRoster(QStringLiteral("me"), items, &error)
            && prosody.writeRoster(QStringLiteral("flood"),
                { { ProsodyServer::jid(QStringLiteral("me")), QString(), {} } }, &error);
    }
    VeskXmppSettings account() const
    {
        VeskXmppSettings s;
        s.jid = ProsodyServer::jid(QStringLiteral("me"));
        s.password = password;
        VeskXmppHost::parseServer(prosody.address(), &s.host, &s.port);
        s.caFile = prosody.caFile();
        return s;
    }
};

Server &server()
{
    static Server instance;
    return instance;
}

// Runs the event loop (sleeping in it, not spinning: the server shares the
// machine) until done() holds or msecs have passed.
bool waitFor(const std::function<bool()> &done, int msecs)
{
    QEventLoop loop;
    QTimer poll;
    QElapsedTimer clock;
    clock.start();
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done() || clock.elapsed() >= msecs)
            loop.quit();
    });
    poll.start(2);
    if (!done())
        loop.exec();
    return done();
}

// Wall time from connecting to the 5,000 items shown by the proxy (through
// the stored filter "not offline" they are hidden, so the default filter
// shows them all).
void BM_XmppLogin5000(benchmark::State &state)
{
    Server &s = server();
    if (!s.ok) {
        state.SkipWithError(qPrintable(s.error));
        return;
    }
    VeskStandIn::resetRoster();
    VeskStandIn::setSettingsDir(s.settings.path());
    double total = 0;
    double connected = 0;
    double cpu = 0;
    double serverCpu = 0;
    for (auto _ : state) {
        Window w;
        w.proxy.refresh();
        QElapsedTimer clock;
        clock.start();
        const double cpuStart = threadCpuSeconds();
        const double serverStart = s.prosody.cpuSeconds();
        VeskXmppAccount *account = w.host->addAccount(s.account());
        QObject::connect(
            account, &VeskXmppAccount::stateChanged, [&](VeskXmppAccount::State state) {
                if (state == VeskXmppAccount::Connected)
                    connected += clock.nsecsElapsed() * 1e-9;
            });
        account->connectToServer();
        const bool done = waitFor(
            [&] {
                return account->state() == VeskXmppAccount::Connected && w.shown() >= 5000 + 20;
            },
            30000);
        total += clock.nsecsElapsed() * 1e-9;
        cpu += threadCpuSeconds() - cpuStart;
        serverCpu += s.prosody.cpuSeconds() - serverStart;
        if (!done) {
            state.SkipWithError("the roster did not show within 30 s");
            break;
        }
        state.SetIterationTime(clock.nsecsElapsed() * 1e-9);
        w.host.reset();
        VeskStandIn::resetRoster();
    }
    state.counters["login_ms"] = total * 1e3 / state.iterations();
    // Until the roster was in and mapped; and this process's share of it.
    state.counters["roster_in_ms"] = connected * 1e3 / state.iterations();
    state.counters["client_cpu_ms"] = cpu * 1e3 / state.iterations();
    state.counters["server_cpu_ms"] = serverCpu * 1e3 / state.iterations();
}

// A buddy sends 1,000 presences a second for ten seconds; the window's
// loop ticks every 2 ms and the longest gap is its longest stall.
void BM_XmppPresenceFlood(benchmark::State &state)
{
    Server &s = server();
    if (!s.ok) {
        state.SkipWithError(qPrintable(s.error));
        return;
    }
    for (auto _ : state) {
        VeskStandIn::resetRoster();
        VeskStandIn::setSettingsDir(s.settings.path());
        Window w;
        VeskXmppAccount *account = w.host->addAccount(s.account());
        account->connectToServer();
        waitFor([&] { return account->state() == VeskXmppAccount::Connected; }, 30000);
        XmppBuddy flooder;
        QString error;
        if (!flooder.start(
                s.prosody, ProsodyServer::jid(QStringLiteral("flood")), password, &error)) {
            state.SkipWithError(qPrintable(error));
            return;
        }
        QElapsedTimer clock;
        qint64 last = 0;
        qint64 longest = 0;
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, [&] {
            const qint64 now = clock.elapsed();
            longest = qMax(longest, now - last);
            last = now;
        });
        const quint64 before = account->stanzaCount();
        clock.start();
        tick.start(2);
        flooder.run(QStringLiteral("flood 10000 1000"), &error, 60000);
        waitFor([&] { return account->stanzaCount() - before >= 10000; }, 30000);
        const double seconds = clock.nsecsElapsed() * 1e-9;
        tick.stop();
        state.SetIterationTime(seconds);
        state.counters["presences"] = double(account->stanzaCount() - before);
        state.counters["longest_stall_ms"] = double(longest);
        flooder.quit();
        w.host.reset();
        VeskStandIn::resetRoster();
    }
}

} // namespace

BENCHMARK(BM_XmppPresenceUpdates)->Unit(benchmark::kMillisecond)->Iterations(100)->Repetitions(3);
BENCHMARK(BM_XmppLogin5000)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(BM_XmppPresenceFlood)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
