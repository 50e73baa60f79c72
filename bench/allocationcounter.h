#pragma once

#include <cstdint>

// Heap allocations made by the calling thread since it started. Every
// allocation of the process is counted, whatever allocates: the binary replaces
// the C allocator's entry points, because Qt's containers and strings allocate
// with malloc and realloc, not with operator new, so counting operator new alone
// would report a QString copy-on-write as free.
namespace AllocationCounter {
std::uint64_t count();
} // namespace AllocationCounter

// Counts the allocations made between construction and allocations().
class AllocationScope
{
public:
    AllocationScope()
        : start(AllocationCounter::count())
    { }
    std::uint64_t allocations() const { return AllocationCounter::count() - start; }

private:
    std::uint64_t start;
};
