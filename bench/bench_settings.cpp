// Start-up with many stack files and saving a large stack: both must grow
// linearly with the number of filters.

#include "benchmarks.h"
#include "benchworld.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskstandin.h>

#include <QHash>

#include <benchmark/benchmark.h>

namespace {

// Ten leaves of every kind and condition, as a user's stack might hold them.
void appendLeaves(VeskRosterFiltersStack *stack, int count)
{
    using namespace BenchWorld;
    for (int i = 0; i < count; ++i) {
        const QString number = QString::number(i);
        VeskRosterFilter *leaf = nullptr;
        switch (i % 10) {
        case 0:
            leaf = createLeaf(QStringLiteral("display"),
                textFields(
                    QStringLiteral("contains"), QStringLiteral("display_filter_regexp"), number));
            break;
        case 1:
            leaf = createLeaf(QStringLiteral("presence"),
                choiceFields(
                    true, QStringLiteral("presence_filter_presence"), QStringLiteral("online")));
            break;
        case 2:
            leaf = createLeaf(QStringLiteral("presence"),
                choiceFields(
                    false, QStringLiteral("presence_filter_presence"), QStringLiteral("away")));
            break;
        case 3:
            leaf = createLeaf(QStringLiteral("group"),
                choiceFields(
                    false, QStringLiteral("group_filter_presence"), QStringLiteral("Blocked")));
            break;
        case 4:
            leaf = createLeaf(QStringLiteral("group"),
                choiceFields(true, QStringLiteral("group_filter_presence"),
                    QStringLiteral("Friends ") + number));
            break;
        case 5:
            leaf = createLeaf(QStringLiteral("account"),
                choiceFields(
                    false, QStringLiteral("account_filter_presence"), QStringLiteral("me@xmpp")));
            break;
        case 6:
            leaf = createLeaf(QStringLiteral("protocol"),
                choiceFields(
                    true, QStringLiteral("protocol_filter_presence"), QStringLiteral("xmpp")));
            break;
        case 7:
            leaf = createLeaf(QStringLiteral("description"),
                textFields(QStringLiteral("contains"), QStringLiteral("description_filter_regexp"),
                    number));
            break;
        case 8:
            leaf = createLeaf(QStringLiteral("display"),
                textFields(QStringLiteral("match exactly"), QStringLiteral("display_filter_regexp"),
                    number));
            break;
        default:
            leaf = createLeaf(QStringLiteral("description"),
                textFields(QStringLiteral("is not empty"),
                    QStringLiteral("description_filter_regexp"), QString()));
            break;
        }
        if (leaf)
            stack->appendFilter(leaf);
    }
}

// A settings directory with `files` stack files of ten leaves each, written by
// the library itself.
QString stackFilesDir(int files)
{
    static QHash<int, QString> prepared;
    if (prepared.contains(files))
        return prepared.value(files);
    const QString dir = BenchWorld::scratchDir(QStringLiteral("startup-%1").arg(files));
    BenchWorld::dropManagers();
    VeskStandIn::setSettingsDir(dir);
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    for (int i = 0; i < files; ++i) {
        VeskRosterFiltersStack *stack
            = manager->addStackFilter(QStringLiteral("filter %1").arg(i, 5, 10, QLatin1Char('0')),
                VeskRosterFilter::RosterFilterAnd);
        appendLeaves(stack, 10);
        stack->writeFilterSettings();
    }
    BenchWorld::dropManagers();
    prepared.insert(files, dir);
    return dir;
}

// From no manager to the loaded manager with its current filter, as on the
// host's first call after start.
void startUp(benchmark::State &state)
{
    const int files = int(state.range(0));
    const QString dir = stackFilesDir(files);
    int loaded = 0;
    for (auto _ : state) {
        state.PauseTiming();
        BenchWorld::dropManagers();
        VeskStandIn::setSettingsDir(dir);
        state.ResumeTiming();
        VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
        state.PauseTiming();
        loaded = manager->getFilterNames().size() - 1;
        state.ResumeTiming();
    }
    BenchWorld::dropManagers();
    if (loaded != files) {
        state.SkipWithError(QStringLiteral("loaded %1 stack filters of %2")
                                .arg(loaded)
                                .arg(files)
                                .toUtf8()
                                .constData());
        return;
    }
    state.counters["units"] = files;
}

void save(benchmark::State &state)
{
    const int leaves = int(state.range(0));
    VeskRosterFiltersManager *manager = BenchWorld::filtersManager();
    const QString name = QStringLiteral("save %1").arg(leaves);
    VeskRosterFiltersStack *stack
        = manager->addStackFilter(name, VeskRosterFilter::RosterFilterAnd);
    appendLeaves(stack, leaves);
    for (auto _ : state)
        stack->writeFilterSettings();
    manager->removeStackFilter(name);
    delete stack;
    state.counters["units"] = leaves;
}

} // namespace

void registerStartUpBenchmarks()
{
    for (const int files : { 100, 1000, 10000 }) {
        benchmark::RegisterBenchmark("StartUp", startUp)
            ->Arg(files)
            ->Iterations(files >= 10000 ? 2
                    : files >= 1000     ? 5
                                        : 20)
            ->Unit(benchmark::kMillisecond);
    }
}

void registerSaveBenchmarks()
{
    for (const int leaves : { 100, 1000, 10000 }) {
        benchmark::RegisterBenchmark("Save", save)->Arg(leaves)->Unit(benchmark::kMillisecond);
    }
}
