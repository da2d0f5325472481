// Measures an operation beside its floor, the least work that could do the same. Both run in turns, and what
// counts is the time that this thread had a processor, the system's work for it included: so a busy machine
// disturbs neither.
#pragma once

#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <vector>

namespace bench {

inline double Median(std::vector<double> values) {
    if (values.empty()) return 0.0;
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

inline double ThreadSeconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <class Work>
double SecondsOf(Work& work) {
    double const start = ThreadSeconds();
    work();
    return ThreadSeconds() - start;
}

/// The benchmark's time is that of `operation`. Beside it stand `floor`, in seconds, and `ratio`: how many
/// floors the operation takes, the median over all turns. Register with UseManualTime().
template <class Operation, class Floor>
void BesideFloor(benchmark::State& state, Operation operation, Floor floor) {
    operation();
    floor();
    std::vector<double> floors, ratios;
    for ([[maybe_unused]] auto _ : state) {
        double const floorSeconds = SecondsOf(floor);
        double const seconds = SecondsOf(operation);
        state.SetIterationTime(seconds);
        floors.push_back(floorSeconds);
        ratios.push_back(seconds / floorSeconds);
    }
    state.counters["floor"] = Median(floors);
    state.counters["ratio"] = Median(ratios);
}

}  // namespace bench
