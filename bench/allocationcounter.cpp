#include "allocationcounter.h"

#include <cstddef>

// glibc lets a program replace malloc, free, calloc and realloc (the other entry
// points are built on them); these forward to glibc's own allocator, so memory
// from either side may be freed by the other.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *pointer, std::size_t size);
void __libc_free(void *pointer);
}

namespace {
// Thread-local, so that the count stays exact without an atomic operation on
// every allocation of the process.
thread_local std::uint64_t allocationCount = 0;
} // namespace

#define VESK_BENCH_EXPORT __attribute__((visibility("default")))

extern "C" {

VESK_BENCH_EXPORT void *malloc(std::size_t size)
{
    ++allocationCount;
    return __libc_malloc(size);
}

VESK_BENCH_EXPORT void *calloc(std::size_t count, std::size_t size)
{
    ++allocationCount;
    return __libc_calloc(count, size);
}

// A realloc may move the block, and Qt grows strings and lists through it, so
// every call counts as an allocation except a pure release.
VESK_BENCH_EXPORT void *realloc(void *pointer, std::size_t size)
{
    if (size != 0)
        ++allocationCount;
    return __libc_realloc(pointer, size);
}

VESK_BENCH_EXPORT void free(void *pointer)
{
    __libc_free(pointer);
}

} // extern "C"

std::uint64_t AllocationCounter::count()
{
    return allocationCount;
}
