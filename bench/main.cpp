#include "benchmarks.h"
#include "benchworld.h"

#include <QCoreApplication>
#include <QLocale>

#include <benchmark/benchmark.h>

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    QCoreApplication app(argc, argv);
    BenchWorld::init();

    for (const int contacts : { 1000, 3000, 10000, 30000, 100000, 1000000 }) {
        registerPairedFilterBenchmarks(contacts);
        if (contacts == 10000 || contacts == 100000 || contacts == 1000000)
            registerWholeRosterBenchmarks(contacts);
        if (contacts == 3000 || contacts == 30000)
            continue;
        registerFilterBenchmarks(contacts);
        registerSortBenchmarks(contacts);
        if (contacts >= 10000)
            registerBulkSortBenchmarks(contacts);
        if (contacts == 100000) {
            registerLeafBenchmarks(contacts);
            registerPairedSortBenchmarks(contacts);
        }
    }
    registerStartUpBenchmarks();
    registerSaveBenchmarks();

    benchmark::AddCustomContext("qt_version", qVersion());
    benchmark::AddCustomContext("build", VESK_BENCH_BUILD);
    benchmark::AddCustomContext("collation_locale", QLocale().name().toStdString());
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    BenchWorld::dropManagers();
    return 0;
}
