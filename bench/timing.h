#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <time.h>

namespace bench {

// The fastest of several runs, both as wall-clock time and as processor
// time of this thread (which a busy machine disturbs less), in milliseconds.
struct Timing {
    double wall = 1e300;
    double processor = 1e300;
};

inline double threadMilliseconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

template <typename Setup, typename Work> Timing best(int runs, Setup setup, Work work) {
    Timing fastest;
    for (int run = 0; run < runs; ++run) {
        setup();
        const auto start = std::chrono::steady_clock::now();
        const double processorStart = threadMilliseconds();
        work();
        const double processor = threadMilliseconds() - processorStart;
        const std::chrono::duration<double, std::milli> wall =
            std::chrono::steady_clock::now() - start;
        fastest.wall = std::min(fastest.wall, wall.count());
        fastest.processor = std::min(fastest.processor, processor);
    }
    return fastest;
}

inline void print(const char *what, const Timing &timing, int runs) {
    std::printf("%-28s %7.2f ms wall  %7.2f ms cpu  (best of %d)\n", what, timing.wall,
                timing.processor, runs);
}

}  // namespace bench
