// Stable sorting of a whole roster: the sorters manager's lessThan against the
// hand-written comparator, against QSortFilterProxyModel::sort and, for
// information, against precomputed collation keys.

#include "allocationcounter.h"
#include "benchmarks.h"
#include "benchroster.h"
#include "benchworld.h"
#include "handwritten.h"
#include "rosteritemmodel.h"
#include "threadcputime.h"

#include <veskrostersortersmanager.h>

#include <QCollator>
#include <QElapsedTimer>
#include <QSet>
#include <QStandardItemModel>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <numeric>

namespace {

struct Method
{
    const char *benchmarkName; // "PresenceName"
    const char *methodName; // stored sorting method
    bool (*hand)(const VeskBuddy &, const VeskBuddy &);
    int (*rank)(const VeskBuddy &); // first key of the proxy and of the collation keys
    int rankRole;
    QVector<int> (*byKeys)(const QVector<VeskBuddy> &); // a whole list at once
};

const Method methods[] = {
    { "PresenceName", "presence_name", HandWritten::presenceThenName, RosterItemModel::presenceRank,
        RosterItemModel::PresenceRankRole, HandWritten::presenceThenNameByKeys },
    { "ChatsName", "chats_name", HandWritten::chatsThenName, RosterItemModel::chatsRank,
        RosterItemModel::ChatsRankRole, HandWritten::chatsThenNameByKeys },
};

// Every entry against its neighbour and against an entry far away, in both
// orders: the pairs on which the answers are compared and allocations counted.
template <typename Visit>
void forEachPair(const std::vector<VeskBuddy> &entries, const Visit &visit)
{
    const std::size_t count = entries.size();
    for (std::size_t i = 0; i < count; ++i) {
        const VeskBuddy &a = entries[i];
        const VeskBuddy &near = entries[(i + 1) % count];
        const VeskBuddy &far = entries[(i * 7919 + count / 2) % count];
        visit(a, near);
        visit(near, a);
        visit(a, far);
        visit(far, a);
    }
}

template <typename Less>
double allocationsPerCall(const std::vector<VeskBuddy> &entries, const Less &less)
{
    std::uint64_t calls = 0;
    const AllocationScope scope;
    forEachPair(entries, [&](const VeskBuddy &a, const VeskBuddy &b) {
        benchmark::DoNotOptimize(less(a, b));
        ++calls;
    });
    return calls ? double(scope.allocations()) / double(calls) : 0.0;
}

bool answersAgree(benchmark::State &state, const Method &method,
    const std::vector<VeskBuddy> &entries, const VeskRosterSortersManager *sorters)
{
    static QSet<QString> checked;
    const QString key = QString::fromLatin1(method.methodName) + QString::number(entries.size());
    if (checked.contains(key))
        return true;
    bool agree = true;
    forEachPair(entries, [&](const VeskBuddy &a, const VeskBuddy &b) {
        if (agree && sorters->lessThan(a, b) != method.hand(a, b)) {
            agree = false;
            state.SkipWithError(
                QStringLiteral("library and hand-written comparator disagree on %1 < %2")
                    .arg(a.getDisplay(), b.getDisplay())
                    .toUtf8()
                    .constData());
        }
    });
    if (agree)
        checked.insert(key);
    return agree;
}

template <typename Less>
void timeStableSort(
    benchmark::State &state, const std::vector<VeskBuddy> &entries, const Less &less)
{
    state.counters["allocs_per_call"] = allocationsPerCall(entries, less);
    std::vector<VeskBuddy> sorted;
    for (auto _ : state) {
        state.PauseTiming();
        sorted = entries;
        state.ResumeTiming();
        std::stable_sort(sorted.begin(), sorted.end(), less);
        benchmark::ClobberMemory();
    }
    state.counters["entries"] = double(entries.size());
}

void sortWithLibrary(benchmark::State &state, const Method &method)
{
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const std::vector<VeskBuddy> &entries = *roster;
    const VeskRosterSortersManager *sorters
        = BenchWorld::sortersManager(QString::fromLatin1(method.methodName));
    if (!answersAgree(state, method, entries, sorters))
        return;
    timeStableSort(state, entries,
        [sorters](const VeskBuddy &a, const VeskBuddy &b) { return sorters->lessThan(a, b); });
}

void sortHandWritten(benchmark::State &state, const Method &method)
{
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const std::vector<VeskBuddy> &entries = *roster;
    timeStableSort(state, entries, method.hand);
}

// The mapping is built before the clock starts, so that only the sort is timed.
void sortWithProxy(benchmark::State &state, const Method &method)
{
    QStandardItemModel *model = RosterItemModel::forRoster(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto proxy = std::make_unique<RosterSortProxy>(method.rankRole);
        proxy->setSourceModel(model);
        benchmark::DoNotOptimize(proxy->rowCount());
        state.ResumeTiming();
        proxy->sort(0, Qt::AscendingOrder);
        benchmark::DoNotOptimize(proxy->index(0, 0));
        state.PauseTiming();
        proxy.reset();
        state.ResumeTiming();
    }
    state.counters["entries"] = model->rowCount();
}

// What no per-pair comparator can beat: every name turned into a collation key
// once (counted apart, in key_build_ms), then only keys compared.
void sortByCollationKeys(benchmark::State &state, const Method &method)
{
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const std::vector<VeskBuddy> &entries = *roster;
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    QElapsedTimer buildTimer;
    buildTimer.start();
    std::vector<int> ranks;
    std::vector<QCollatorSortKey> keys;
    ranks.reserve(entries.size());
    keys.reserve(entries.size());
    for (const VeskBuddy &entry : entries) {
        ranks.push_back(method.rank(entry));
        keys.push_back(collator.sortKey(entry.getDisplay()));
    }
    state.counters["key_build_ms"] = double(buildTimer.nsecsElapsed()) / 1e6;
    std::vector<int> order(entries.size());
    for (auto _ : state) {
        state.PauseTiming();
        std::iota(order.begin(), order.end(), 0);
        state.ResumeTiming();
        std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
            if (ranks[a] != ranks[b])
                return ranks[a] < ranks[b];
            return keys[a].compare(keys[b]) < 0;
        });
        benchmark::ClobberMemory();
    }
    state.counters["entries"] = double(entries.size());
}

void sortPaired(benchmark::State &state, const Method &method)
{
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const std::vector<VeskBuddy> &entries = *roster;
    QStandardItemModel *model = RosterItemModel::forRoster(int(state.range(0)));
    const VeskRosterSortersManager *sorters
        = BenchWorld::sortersManager(QString::fromLatin1(method.methodName));
    if (!answersAgree(state, method, entries, sorters))
        return;
    auto library = [sorters](const VeskBuddy &a, const VeskBuddy &b) {
        return sorters->lessThan(a, b);
    };
    double librarySeconds = 0;
    double handSeconds = 0;
    double proxySeconds = 0;
    std::vector<VeskBuddy> sorted;
    for (auto _ : state) {
        sorted = entries;
        double start = threadCpuSeconds();
        std::stable_sort(sorted.begin(), sorted.end(), library);
        librarySeconds += threadCpuSeconds() - start;

        sorted = entries;
        start = threadCpuSeconds();
        std::stable_sort(sorted.begin(), sorted.end(), method.hand);
        handSeconds += threadCpuSeconds() - start;

        RosterSortProxy proxy(method.rankRole);
        proxy.setSourceModel(model);
        benchmark::DoNotOptimize(proxy.rowCount());
        start = threadCpuSeconds();
        proxy.sort(0, Qt::AscendingOrder);
        proxySeconds += threadCpuSeconds() - start;
    }
    const double sorts = double(state.iterations());
    state.counters["library_ms"] = librarySeconds * 1e3 / sorts;
    state.counters["hand_ms"] = handSeconds * 1e3 / sorts;
    state.counters["proxy_ms"] = proxySeconds * 1e3 / sorts;
    state.counters["library_per_hand"] = librarySeconds / handSeconds;
    state.counters["library_per_proxy"] = librarySeconds / proxySeconds;
}

// The contacts and temporary contacts of the roster as one list: what a view
// sorts together, and a list on which lessThan is a strict weak order.
const QVector<VeskBuddy> &membersOf(const std::vector<VeskBuddy> &entries)
{
    static QVector<VeskBuddy> members;
    static std::size_t from = 0;
    if (from != entries.size()) {
        members.clear();
        for (const VeskBuddy &entry : entries) {
            if (entry.getType() == VeskBuddy::TypeContact
                || entry.getType() == VeskBuddy::TypeTemporary)
                members.append(entry);
        }
        from = entries.size();
    }
    return members;
}

QVector<int> stableOrderOfLessThan(
    const VeskRosterSortersManager *sorters, const QVector<VeskBuddy> &list)
{
    QVector<int> order(list.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
        [&](int a, int b) { return sorters->lessThan(list.at(a), list.at(b)); });
    return order;
}

// Sorting a whole list at once: the sorters manager's sortedOrder, the
// hand-written sort over collation keys (key building included on both
// sides) and, up to 100,000 contacts, std::stable_sort with lessThan. The three
// orders are checked equal first. The order of the three rotates.
void bulkSortPaired(benchmark::State &state, const Method &method)
{
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const QVector<VeskBuddy> &list = membersOf(*roster);
    const VeskRosterSortersManager *sorters
        = BenchWorld::sortersManager(QString::fromLatin1(method.methodName));
    const QVector<int> expected = stableOrderOfLessThan(sorters, list);
    if (sorters->sortedOrder(list) != expected || method.byKeys(list) != expected) {
        state.SkipWithError(
            "the bulk sort, the hand-written key sort and lessThan give different orders");
        return;
    }
    const bool withLessThan = state.range(0) <= 100000;
    double seconds[3] = { 0, 0, 0 };
    int turn = 0;
    for (auto _ : state) {
        for (int k = 0; k < 3; ++k) {
            const int which = (turn + k) % 3;
            if (which == 2 && !withLessThan)
                continue;
            const double start = threadCpuSeconds();
            const QVector<int> order = which == 0 ? sorters->sortedOrder(list)
                : which == 1                      ? method.byKeys(list)
                                                  : stableOrderOfLessThan(sorters, list);
            seconds[which] += threadCpuSeconds() - start;
            benchmark::DoNotOptimize(order.constData());
        }
        ++turn;
    }
    const double sorts = double(state.iterations());
    state.counters["entries"] = double(list.size());
    state.counters["bulk_ms"] = seconds[0] * 1e3 / sorts;
    state.counters["keys_ms"] = seconds[1] * 1e3 / sorts;
    state.counters["bulk_per_keys"] = seconds[0] / seconds[1];
    if (withLessThan) {
        state.counters["less_ms"] = seconds[2] * 1e3 / sorts;
        state.counters["less_per_bulk"] = seconds[2] / seconds[0];
    }
}

} // namespace

void registerBulkSortBenchmarks(int contacts)
{
    for (const Method &method : methods) {
        benchmark::RegisterBenchmark(
            (std::string("Paired/BulkSort/") + method.benchmarkName).c_str(), bulkSortPaired,
            method)
            ->Arg(contacts)
            ->Iterations(contacts >= 1000000 ? 3 : 5)
            ->Unit(benchmark::kMillisecond);
    }
}

void registerPairedSortBenchmarks(int contacts)
{
    for (const Method &method : methods) {
        benchmark::RegisterBenchmark(
            (std::string("Paired/Sort/") + method.benchmarkName).c_str(), sortPaired, method)
            ->Arg(contacts)
            ->Iterations(5)
            ->Unit(benchmark::kMillisecond);
    }
}

void registerSortBenchmarks(int contacts)
{
    const int repetitions = contacts >= 1000000 ? 1 : 3;
    for (const Method &method : methods) {
        const std::string prefix = std::string("Sort/") + method.benchmarkName;
        benchmark::RegisterBenchmark((prefix + "/Library").c_str(), sortWithLibrary, method)
            ->Arg(contacts)
            ->Repetitions(repetitions)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((prefix + "/HandWritten").c_str(), sortHandWritten, method)
            ->Arg(contacts)
            ->Repetitions(repetitions)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((prefix + "/Proxy").c_str(), sortWithProxy, method)
            ->Arg(contacts)
            ->Repetitions(repetitions)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(
            (prefix + "/CollationKeys").c_str(), sortByCollationKeys, method)
            ->Arg(contacts)
            ->Repetitions(repetitions)
            ->Unit(benchmark::kMillisecond);
    }
}
