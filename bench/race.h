// Two ways of doing the same work, timed in turn: the ratio within one run counts, by the least CPU time of each.
#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <limits>

inline double cpuSeconds() {
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

struct RaceTimes {
    double peer, ours;  // seconds
};

// Runs both once for each iteration of the benchmark. Counters: milliseconds of each, and how many times as fast we
// are.
template <class Peer, class Ours>
RaceTimes race(benchmark::State& state, Peer peer, Ours ours) {
    RaceTimes best = {std::numeric_limits<double>::max(), std::numeric_limits<double>::max()};
    for (auto _ : state) {
        const double begin = cpuSeconds();
        peer();
        const double middle = cpuSeconds();
        ours();
        const double end = cpuSeconds();
        best = {std::min(best.peer, middle - begin), std::min(best.ours, end - middle)};
    }
    state.counters["peer_ms"] = best.peer * 1e3;
    state.counters["ours_ms"] = best.ours * 1e3;
    state.counters["times_as_fast"] = best.peer / best.ours;
    return best;
}
