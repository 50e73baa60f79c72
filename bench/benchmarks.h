#pragma once

// Registration of the benchmark families, in the order in which they run. The
// roster benchmarks of one size run together, so that each roster is
// generated and loaded once.
void registerFilterBenchmarks(int contacts);
void registerLeafBenchmarks(int contacts);
void registerSortBenchmarks(int contacts);
void registerStartUpBenchmarks();
void registerSaveBenchmarks();
