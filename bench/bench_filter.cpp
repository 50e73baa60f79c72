// Filtering a whole roster: the library's current filter against the fastest
// hand-written predicate, the leaf-by-leaf one and a QSortFilterProxyModel,
// and each leaf kind alone against its hand-written twin.

#include "allocationcounter.h"
#include "benchmarks.h"
#include "benchroster.h"
#include "benchworld.h"
#include "handwritten.h"
#include "rosteritemmodel.h"
#include "threadcputime.h"

#include <veskaccount.h>
#include <veskrosterfilter.h>
#include <veskrosterfiltersmanager.h>

#include <QSet>
#include <QStandardItemModel>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

// Entries that pass; the same loop times the library and the hand-written code.
template <typename Filter>
int countPassing(const std::vector<VeskBuddy> &entries, const Filter &filter)
{
    int passed = 0;
    for (const VeskBuddy &entry : entries)
        passed += filter(entry) ? 1 : 0;
    return passed;
}

template <typename Filter>
double allocationsPerCall(const std::vector<VeskBuddy> &entries, const Filter &filter)
{
    const AllocationScope scope;
    benchmark::DoNotOptimize(countPassing(entries, filter));
    return entries.empty() ? 0.0 : double(scope.allocations()) / double(entries.size());
}

// The index of the first entry on which two predicates disagree, or -1.
template <typename Library, typename Hand>
qsizetype firstDisagreement(
    const std::vector<VeskBuddy> &entries, const Library &library, const Hand &hand)
{
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (library(entries[i]) != hand(entries[i]))
            return qsizetype(i);
    }
    return -1;
}

template <typename Filter>
void timeFilter(
    benchmark::State &state, const std::vector<VeskBuddy> &entries, const Filter &filter)
{
    state.counters["allocs_per_call"] = allocationsPerCall(entries, filter);
    int passed = 0;
    for (auto _ : state) {
        passed = countPassing(entries, filter);
        benchmark::DoNotOptimize(passed);
    }
    state.counters["entries"] = double(entries.size());
    state.counters["passed"] = passed;
    state.SetItemsProcessed(qint64(state.iterations()) * qint64(entries.size()));
}

// A new proxy for every pass: the time until the proxy knows its row count,
// which is when a view could show the filtered roster.
void filterWithProxy(benchmark::State &state)
{
    QStandardItemModel *model = RosterItemModel::forRoster(int(state.range(0)));
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const std::vector<VeskBuddy> &entries = *roster;
    const HandWritten::FilterParameters parameters = BenchWorld::filterCases().first().parameters;
    const int expected = countPassing(entries,
        [&](const VeskBuddy &entry) { return HandWritten::fastestFilter(entry, parameters); });
    int rows = 0;
    for (auto _ : state) {
        auto proxy = std::make_unique<RosterFilterProxy>();
        proxy->setSourceModel(model);
        rows = proxy->rowCount();
        benchmark::DoNotOptimize(rows);
        state.PauseTiming();
        proxy.reset();
        state.ResumeTiming();
    }
    if (rows != expected) {
        state.SkipWithError(
            QStringLiteral("the proxy passes %1 rows, the hand-written predicate %2")
                .arg(rows)
                .arg(expected)
                .toUtf8()
                .constData());
        return;
    }
    state.counters["entries"] = double(entries.size());
    state.counters["passed"] = rows;
    state.SetItemsProcessed(qint64(state.iterations()) * qint64(entries.size()));
}

// One leaf kind alone, the library's filter and the hand-written predicate,
// each reached through one indirect call.
struct LeafCase
{
    QString kind;
    QString fieldId;
    HandWritten::LeafPredicate hand;
    bool positive;
    QString (*value)(); // read once the roster is loaded
    bool isText() const { return fieldId.endsWith(QLatin1String("_regexp")); }
    QList<VeskField> fields() const
    {
        return isText() ? BenchWorld::textFields(QStringLiteral("contains"), fieldId, value())
                        : BenchWorld::choiceFields(positive, fieldId, value());
    }
};

QString firstAccountIdentity()
{
    const QList<VeskAccountConnection *> accounts
        = VeskAccountManager::getInstance()->getAccounts();
    if (accounts.isEmpty())
        return QString();
    return accounts.first()->getUid() + QLatin1Char('@') + accounts.first()->getProtocolName();
}

QString firstProtocolName()
{
    const QList<VeskAccountConnection *> accounts
        = VeskAccountManager::getInstance()->getAccounts();
    return accounts.isEmpty() ? QString() : accounts.first()->getProtocolName();
}

const LeafCase leafCases[] = {
    { QStringLiteral("display"), QStringLiteral("display_filter_regexp"),
        HandWritten::displayContains, true,
        [] {
            return QStringLiteral("an");
        } },
    { QStringLiteral("group"), QStringLiteral("group_filter_presence"), HandWritten::groupIs, false,
        [] {
            return QStringLiteral("Blocked");
        } },
    { QStringLiteral("account"), QStringLiteral("account_filter_presence"), HandWritten::accountIs,
        true, firstAccountIdentity },
    { QStringLiteral("protocol"), QStringLiteral("protocol_filter_presence"),
        HandWritten::protocolIs, true, firstProtocolName },
    { QStringLiteral("presence"), QStringLiteral("presence_filter_presence"),
        HandWritten::presenceIs, true,
        [] {
            return QStringLiteral("online");
        } },
    { QStringLiteral("description"), QStringLiteral("description_filter_regexp"),
        HandWritten::descriptionContains, true,
        [] {
            return QStringLiteral("e");
        } },
};

void leafWithLibrary(benchmark::State &state, const LeafCase &leafCase)
{
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const std::vector<VeskBuddy> &entries = *roster;
    BenchWorld::filtersManager();
    std::unique_ptr<VeskRosterFilter> leaf(
        BenchWorld::createLeaf(leafCase.kind, leafCase.fields()));
    if (!leaf) {
        state.SkipWithError("the filters manager creates no filter of this kind");
        return;
    }
    const VeskRosterFilter *filter = leaf.get();
    auto library = [filter](const VeskBuddy &entry) {
        return filter->filter(entry);
    };
    const HandWritten::LeafPredicate hand = leafCase.hand;
    const QString value = leafCase.value();
    const bool positive = leafCase.positive;
    const qsizetype wrong = firstDisagreement(
        entries, library, [&](const VeskBuddy &entry) { return hand(entry, value, positive); });
    if (wrong >= 0) {
        state.SkipWithError(
            QStringLiteral("library and hand-written %1 filter disagree on entry %2 (%3)")
                .arg(leafCase.kind)
                .arg(wrong)
                .arg(entries[std::size_t(wrong)].getDisplay())
                .toUtf8()
                .constData());
        return;
    }
    timeFilter(state, entries, library);
}

void leafHandWritten(benchmark::State &state, const LeafCase &leafCase)
{
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const HandWritten::LeafPredicate hand = leafCase.hand;
    const QString value = leafCase.value();
    const bool positive = leafCase.positive;
    timeFilter(
        state, *roster, [&](const VeskBuddy &entry) { return hand(entry, value, positive); });
}

// One filter of each selectivity: the library, the fastest hand-written
// predicate and the leaf-by-leaf one, checked equal on every entry, then timed
// back to back in every iteration, in an order that rotates so that none of
// them always runs on caches the one before warmed.
void filterPaired(benchmark::State &state, const BenchWorld::FilterCase &filterCase)
{
    const std::vector<VeskBuddy> *roster = BenchRoster::load(state);
    if (!roster)
        return;
    const std::vector<VeskBuddy> &entries = *roster;
    const VeskRosterFiltersManager *manager = BenchWorld::filtersManager(filterCase.stackName);
    const HandWritten::FilterParameters parameters = filterCase.parameters;
    const auto library = [manager](const VeskBuddy &entry) {
        return manager->filter(entry);
    };
    const auto fastest = [&parameters](const VeskBuddy &entry) {
        return HandWritten::fastestFilter(entry, parameters);
    };
    const auto leafByLeaf = [&parameters](const VeskBuddy &entry) {
        return HandWritten::leafByLeafFilter(entry, parameters);
    };
    for (const qsizetype wrong : { firstDisagreement(entries, library, fastest),
             firstDisagreement(entries, fastest, leafByLeaf) }) {
        if (wrong >= 0) {
            state.SkipWithError(QStringLiteral(
                "the library and the hand-written predicates disagree on entry %1 (%2)")
                                    .arg(wrong)
                                    .arg(entries[std::size_t(wrong)].getDisplay())
                                    .toUtf8()
                                    .constData());
            return;
        }
    }
    state.counters["library_allocs_per_call"] = allocationsPerCall(entries, library);
    state.counters["fastest_allocs_per_call"] = allocationsPerCall(entries, fastest);

    double seconds[3] = { 0, 0, 0 };
    int passed[3] = { 0, 0, 0 };
    int turn = 0;
    for (auto _ : state) {
        for (int k = 0; k < 3; ++k) {
            const int which = (turn + k) % 3;
            const double start = threadCpuSeconds();
            passed[which] = which == 0 ? countPassing(entries, library)
                : which == 1           ? countPassing(entries, fastest)
                                       : countPassing(entries, leafByLeaf);
            seconds[which] += threadCpuSeconds() - start;
            benchmark::DoNotOptimize(passed[which]);
        }
        ++turn;
    }
    const double calls = double(state.iterations()) * double(entries.size());
    state.counters["entries"] = double(entries.size());
    state.counters["passed"] = passed[0];
    state.counters["library_ns"] = seconds[0] * 1e9 / calls;
    state.counters["fastest_ns"] = seconds[1] * 1e9 / calls;
    state.counters["leaf_ns"] = seconds[2] * 1e9 / calls;
    state.counters["library_per_fastest"] = seconds[0] / seconds[1];
    state.counters["library_per_leaf"] = seconds[0] / seconds[2];
}

} // namespace

void registerPairedFilterBenchmarks(int contacts)
{
    for (const BenchWorld::FilterCase &filterCase : BenchWorld::filterCases()) {
        benchmark::RegisterBenchmark(
            (std::string("Paired/Filter/") + filterCase.label).c_str(), filterPaired, filterCase)
            ->Arg(contacts)
            ->MinTime(0.4)
            ->Repetitions(3)
            ->Unit(benchmark::kMillisecond);
    }
}

void registerFilterBenchmarks(int contacts)
{
    const int repetitions = contacts >= 1000000 ? 1 : 3;
    benchmark::RegisterBenchmark("Filter/Proxy", filterWithProxy)
        ->Arg(contacts)
        ->Repetitions(repetitions)
        ->Unit(benchmark::kMicrosecond);
}

void registerLeafBenchmarks(int contacts)
{
    for (const LeafCase &leafCase : leafCases) {
        const std::string kind = leafCase.kind.toStdString();
        benchmark::RegisterBenchmark(
            ("Leaf/" + kind + "/Library").c_str(), leafWithLibrary, leafCase)
            ->Arg(contacts)
            ->Repetitions(3)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(
            ("Leaf/" + kind + "/HandWritten").c_str(), leafHandWritten, leafCase)
            ->Arg(contacts)
            ->Repetitions(3)
            ->Unit(benchmark::kMicrosecond);
    }
}
