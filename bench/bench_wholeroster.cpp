// The whole-roster call against the fastest hand-written per-entry predicate:
// both give the indices of the passing entries of the whole roster, the
// library in one call, the hand-written code entry by entry into a buffer
// reserved once. Also the library's own per-entry filter(), for information.

#include "allocationcounter.h"
#include "benchmarks.h"
#include "benchroster.h"
#include "benchworld.h"
#include "handwritten.h"
#include "threadcputime.h"

#include <veskrosterfiltersmanager.h>

#include <QVector>

#include <vector>

#include <benchmark/benchmark.h>

namespace {

QVector<int> handWritten(
    const QVector<VeskBuddy> &entries, const HandWritten::FilterParameters &parameters)
{
    QVector<int> passing;
    passing.reserve(entries.size());
    const int count = int(entries.size());
    for (int i = 0; i < count; ++i) {
        if (HandWritten::fastestFilter(entries.at(i), parameters))
            passing.append(i);
    }
    return passing;
}

QVector<int> perEntry(const QVector<VeskBuddy> &entries, const VeskRosterFiltersManager *manager)
{
    QVector<int> passing;
    passing.reserve(entries.size());
    const int count = int(entries.size());
    for (int i = 0; i < count; ++i) {
        if (manager->filter(entries.at(i)))
            passing.append(i);
    }
    return passing;
}

// The floor of any correct answer to these filters: each entry's display
// name read from the host, nothing compared. Every entry needs it (the first
// condition tests it) and no entry can share it with another.
int displayNamesOnly(const QVector<VeskBuddy> &entries)
{
    int total = 0;
    for (const VeskBuddy &entry : entries)
        total += int(entry.getDisplay().size());
    return total;
}

// What the fastest predicate asks the host, without comparing anything:
// each entry's display name, then its presence's id and its group's name as
// far as the predicate goes with it (`reach`). Code that reads the pieces in
// the filter's order makes at least these calls; what the predicate spends
// beyond them is its comparisons.
int hostReadsOnly(const QVector<VeskBuddy> &entries, const std::vector<unsigned char> &reach)
{
    int total = 0;
    const int count = int(entries.size());
    for (int i = 0; i < count; ++i)
        total += HandWritten::fastestFilterReads(entries.at(i), reach[std::size_t(i)]);
    return total;
}

// The three back to back in every iteration, in rotating order, and the
// two floors before them.
void wholeRosterPaired(benchmark::State &state, const BenchWorld::FilterCase &filterCase)
{
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const QVector<VeskBuddy> entries(roster->cbegin(), roster->cend());
    const VeskRosterFiltersManager *manager = BenchWorld::filtersManager(filterCase.stackName);
    const HandWritten::FilterParameters parameters = filterCase.parameters;
    const QVector<int> expected = handWritten(entries, parameters);
    if (manager->filterEntries(entries) != expected || perEntry(entries, manager) != expected) {
        state.SkipWithError("the whole-roster call and the hand-written predicate disagree");
        return;
    }
    {
        const AllocationScope scope;
        benchmark::DoNotOptimize(manager->filterEntries(entries));
        state.counters["library_allocs_per_entry"]
            = double(scope.allocations()) / double(entries.size());
    }
    std::vector<unsigned char> reach;
    reach.reserve(std::size_t(entries.size()));
    for (const VeskBuddy &entry : entries)
        reach.push_back(
            static_cast<unsigned char>(HandWritten::fastestFilterReach(entry, parameters)));
    double seconds[5] = { 0, 0, 0, 0, 0 };
    int turn = 0;
    for (auto _ : state) {
        const double floorStart = threadCpuSeconds();
        benchmark::DoNotOptimize(displayNamesOnly(entries));
        seconds[3] += threadCpuSeconds() - floorStart;
        const double readsStart = threadCpuSeconds();
        benchmark::DoNotOptimize(hostReadsOnly(entries, reach));
        seconds[4] += threadCpuSeconds() - readsStart;
        for (int k = 0; k < 3; ++k) {
            const int which = (turn + k) % 3;
            const double start = threadCpuSeconds();
            const QVector<int> passing = which == 0 ? manager->filterEntries(entries)
                : which == 1                        ? handWritten(entries, parameters)
                                                    : perEntry(entries, manager);
            seconds[which] += threadCpuSeconds() - start;
            benchmark::DoNotOptimize(passing.constData());
        }
        ++turn;
    }
    const double calls = double(state.iterations()) * double(entries.size());
    state.counters["entries"] = double(entries.size());
    state.counters["passed"] = double(expected.size());
    state.counters["whole_ns"] = seconds[0] * 1e9 / calls;
    state.counters["fastest_ns"] = seconds[1] * 1e9 / calls;
    state.counters["per_entry_ns"] = seconds[2] * 1e9 / calls;
    state.counters["display_reads_ns"] = seconds[3] * 1e9 / calls;
    state.counters["whole_per_fastest"] = seconds[0] / seconds[1];
    state.counters["display_reads_per_fastest"] = seconds[3] / seconds[1];
    state.counters["host_reads_ns"] = seconds[4] * 1e9 / calls;
    state.counters["host_reads_per_fastest"] = seconds[4] / seconds[1];
}

} // namespace

void registerWholeRosterBenchmarks(int contacts)
{
    for (const BenchWorld::FilterCase &filterCase : BenchWorld::filterCases()) {
        benchmark::RegisterBenchmark(
            (std::string("WholeRoster/") + filterCase.label).c_str(), wholeRosterPaired, filterCase)
            ->Arg(contacts)
            ->MinTime(contacts >= 1000000 ? 0.01 : 0.3)
            ->Repetitions(contacts >= 1000000 ? 1 : 3)
            ->Unit(benchmark::kMillisecond);
    }
}
