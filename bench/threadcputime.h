#pragma once

#include <ctime>

// CPU time of the calling thread, in seconds: what the paired benchmarks add
// up for each side, so that time the scheduler gives to other processes
// counts for neither.
inline double threadCpuSeconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}
