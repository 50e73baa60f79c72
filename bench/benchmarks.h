#pragma once

// Registration of the benchmark families, in the order in which they run. The
// roster benchmarks of one size run together, so that each roster is
// generated and loaded once.
void registerFilterBenchmarks(int contacts);
void registerLeafBenchmarks(int contacts);
void registerSortBenchmarks(int contacts);
// The target ratios, measured in pairs: every iteration runs the library and
// its rivals back to back, so that a load that comes and goes on a shared
// machine falls on both sides alike.
void registerPairedFilterBenchmarks(int contacts);
void registerPairedSortBenchmarks(int contacts);
// Sorting a whole list at once against a hand-written sort over collation keys.
void registerBulkSortBenchmarks(int contacts);
// The whole-roster call against the fastest hand-written per-entry predicate.
void registerWholeRosterBenchmarks(int contacts);
void registerStartUpBenchmarks();
void registerSaveBenchmarks();
