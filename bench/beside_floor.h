// Measures an operation beside its floor, the least work that could do the same: both run in turns, so that
// whatever else the machine does slows both alike.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {

inline double Median(std::vector<double> values) {
    if (values.empty()) return 0.0;
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <class Work>
double SecondsOf(Work& work) {
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
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
