// What the benchmarks share so that their figures hold on a loaded machine: they compare
// against a floor measured in the same rounds, interleaved, pinned to one CPU, and take
// medians rather than means, which one slow round would drag.
#ifndef BENCH_SUPPORT_H
#define BENCH_SUPPORT_H

#include <sched.h>
#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <vector>

namespace bench {

inline double median(std::vector<double> values)
{
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

// Pins this process, and every child it starts from now on, to one CPU: cpu, or the last one
// it may run on. A reader and its child then take turns instead of running side by side,
// so that their time is their work, whichever other load the machine carries. The CPU, or
// -1 when it could not be pinned.
inline int pinToOneCpu(int cpu = -1)
{
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) {
        return -1;
    }
    if (cpu < 0) {
        for (int i = CPU_SETSIZE - 1; i >= 0 && cpu < 0; --i) {
            if (CPU_ISSET(i, &allowed)) {
                cpu = i;
            }
        }
    }
    if (cpu < 0 || cpu >= CPU_SETSIZE || !CPU_ISSET(cpu, &allowed)) {
        return -1;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(cpu, &one);
    return sched_setaffinity(0, sizeof one, &one) == 0 ? cpu : -1;
}

inline double seconds(const timeval &t)
{
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
}

// CPU seconds of this process (who RUSAGE_SELF) or of its children that have been waited
// for (RUSAGE_CHILDREN).
inline double cpuSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// CPU seconds of the calling thread: time the machine gives to others stays out.
inline double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

}  // namespace bench

#endif
