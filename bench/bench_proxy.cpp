// The roster window's proxy model at 100,000 contacts, against the library
// doing the same job by itself: switching filters (filter every entry, then
// put each group's passing members and the groups in order) and one presence
// change (one row re-placed). A benchmark of its own, with a widget-free
// QApplication, so that the main benchmarks need no GUI library.

#include "threadcputime.h"

#include <rosterfile.h>
#include <rostertreemodel.h>
#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrosterproxymodel.h>
#include <veskrostersortersmanager.h>
#include <veskstandin.h>

#include <QApplication>
#include <QHash>
#include <QLocale>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

const int contacts = 100000;

VeskRosterFilter *leaf(const QString &kind, const QString &field, const QString &value, bool is)
{
    VeskRosterFilter *filter = VeskRosterFiltersManager::getInstance()->createFilter(
        kind, VeskRosterFilter::RosterFilterLeaf);
    QList<VeskField> fields = filter->getConfiguration();
    for (VeskField &f : fields) {
        if (f.getId() == QLatin1String("is_or_not"))
            f.setSelectedId(is ? QStringLiteral("is") : QStringLiteral("is not"));
        else if (f.getId() == field)
            f.setSelectedId(value);
    }
    filter->setConfiguration(fields);
    return filter;
}

// Two filters that keep about half and a quarter of the roster, each with its
// sorting method; the library's settings in a scratch directory.
struct World
{
    QTemporaryDir dir;
    VeskRosterTreeModel model;
    std::unique_ptr<VeskRosterProxyModel> proxy;

    World()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QString error;
        VeskRosterFile::load(VeskRosterFile::generate(contacts, 20261123), &error);
        VeskStandIn::setSettingsDir(dir.path());
        VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
        VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
        sorters->addSorter(QStringLiteral("presence_name"),
            { QStringLiteral("presence"), QStringLiteral("name") });
        sorters->setSorterAscending(
            QStringLiteral("presence_name"), { QStringLiteral("f"), QStringLiteral("t") });
        sorters->addSorter(QStringLiteral("chats_name"),
            { QStringLiteral("chats_count"), QStringLiteral("name") });
        sorters->setSorterAscending(
            QStringLiteral("chats_name"), { QStringLiteral("t"), QStringLiteral("t") });
        VeskRosterFiltersStack *online
            = filters->addStackFilter(QStringLiteral("online"), VeskRosterFilter::RosterFilterAnd);
        online->appendFilter(leaf(QStringLiteral("presence"),
            QStringLiteral("presence_filter_presence"), QStringLiteral("offline"), false));
        online->setSorter(QStringLiteral("presence_name"));
        VeskRosterFiltersStack *away
            = filters->addStackFilter(QStringLiteral("away"), VeskRosterFilter::RosterFilterOr);
        away->appendFilter(leaf(QStringLiteral("presence"),
            QStringLiteral("presence_filter_presence"), QStringLiteral("away"), true));
        away->appendFilter(leaf(QStringLiteral("presence"),
            QStringLiteral("presence_filter_presence"), QStringLiteral("xa"), true));
        away->appendFilter(leaf(QStringLiteral("presence"),
            QStringLiteral("presence_filter_presence"), QStringLiteral("dnd"), true));
        away->setSorter(QStringLiteral("chats_name"));
        model.setRoster(VeskStandIn::entries());
        proxy = std::make_unique<VeskRosterProxyModel>();
        proxy->setSourceModel(&model);
    }
};

World &world()
{
    static World instance;
    return instance;
}

// What a view asks of the proxy after a switch: every shown row of every level.
int touchAll(const QAbstractItemModel &proxy)
{
    int shown = 0;
    for (int row = 0; row < proxy.rowCount(); ++row)
        shown += 1 + proxy.rowCount(proxy.index(row, 0));
    return shown;
}

// The library alone: filter every member, order each group's passing members
// with the bulk sort, and the groups that keep a member with lessThan.
int libraryFilterAndSort(const VeskRosterTreeModel &model)
{
    const VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    const VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    int shown = 0;
    QVector<VeskBuddy> groups;
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex parent = model.index(row, 0);
        const VeskBuddy entry = parent.data(VeskRosterProxyModel::BuddyRole).value<VeskBuddy>();
        QVector<VeskBuddy> passing;
        const int members = model.rowCount(parent);
        for (int member = 0; member < members; ++member) {
            const VeskBuddy buddy = model.index(member, 0, parent)
                                        .data(VeskRosterProxyModel::BuddyRole)
                                        .value<VeskBuddy>();
            if (filters->filter(buddy))
                passing.append(buddy);
        }
        if (entry.getType() != VeskBuddy::TypeGroup) {
            shown += filters->filter(entry);
            continue;
        }
        sorters->sort(passing);
        shown += passing.size();
        if (!passing.isEmpty())
            groups.append(entry);
    }
    std::stable_sort(groups.begin(), groups.end(),
        [sorters](const VeskBuddy &x, const VeskBuddy &y) { return sorters->lessThan(y, x); });
    return shown + groups.size();
}

// Both sides in every iteration, on the same filter: the library alone, then
// the proxy re-filtering and re-sorting every level; the two filters (and
// their two sorting methods) take turns.
void BM_SwitchFilter(benchmark::State &state)
{
    World &w = world();
    double library = 0;
    double proxy = 0;
    int turn = 0;
    for (auto _ : state) {
        const QString id = (turn++ % 2) ? QStringLiteral("away") : QStringLiteral("online");
        VeskRosterFiltersManager::getInstance()->setCurrentFilter(id);
        double start = threadCpuSeconds();
        benchmark::DoNotOptimize(libraryFilterAndSort(w.model));
        library += threadCpuSeconds() - start;
        // What the window does after the switch, whose settings write is
        // outside both timings.
        start = threadCpuSeconds();
        w.proxy->refresh();
        benchmark::DoNotOptimize(touchAll(*w.proxy));
        proxy += threadCpuSeconds() - start;
    }
    state.counters["library_ms"] = library * 1e3 / state.iterations();
    state.counters["proxy_ms"] = proxy * 1e3 / state.iterations();
    state.counters["ratio"] = proxy / library;
}

// One contact's presence changes and the model says so: the proxy re-places
// that row (and shows or hides it) without sorting the rest.
void BM_PresenceChange(benchmark::State &state)
{
    World &w = world();
    w.proxy->setCurrentFilter(QStringLiteral("online"));
    touchAll(*w.proxy);
    const QVector<VeskBuddy> &members = w.model.members();
    const VeskPresence presences[] = {
        VeskStandIn::makePresence(
            QStringLiteral("online"), QStringLiteral("Online"), QString(), 0, 50),
        VeskStandIn::makePresence(QStringLiteral("away"), QStringLiteral("Away"), QString(), 1, 30),
        VeskStandIn::makePresence(
            QStringLiteral("offline"), QStringLiteral("Offline"), QString(), 5, 0),
    };
    QRandomGenerator random(7);
    double spent = 0;
    for (auto _ : state) {
        const int member = random.bounded(members.size());
        VeskStandIn::setPresence(members.at(member), presences[random.bounded(3)]);
        const double start = threadCpuSeconds();
        w.model.memberChanged(member);
        spent += threadCpuSeconds() - start;
    }
    state.counters["cpu_us_per_change"] = spent * 1e6 / state.iterations();
}

} // namespace

BENCHMARK(BM_SwitchFilter)->Unit(benchmark::kMillisecond)->Iterations(10)->Repetitions(3);
BENCHMARK(BM_PresenceChange)->Unit(benchmark::kMicrosecond)->Iterations(2000)->Repetitions(3);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    QApplication app(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
