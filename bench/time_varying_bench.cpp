// Reading colours that may vary over time, beside plain loops over bare arrays: the constant ones beside a
// load, those with keys beside a binary search for the two keys and the same interpolation, without a cache.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "beside_floor.h"
#include "framewright/pixel/time_varying.h"

namespace {

constexpr std::size_t kReads = 1 << 16;

struct StPlainKey {
    double time;
    StColorFloats color;
};

StColorFloats ColorOf(std::size_t i) {
    auto const n = static_cast<float>(i % 97);
    return {n * 0.01f, 1.0f - n * 0.01f, 0.5f};
}

std::vector<StPlainKey> PlainKeys(std::int64_t count) {
    std::vector<StPlainKey> keys;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        keys.push_back({static_cast<double>(i), ColorOf(i)});
    return keys;
}

StTimeVaryingColor Keyed(std::vector<StPlainKey> const& keys) {
    StTimeVaryingColor color;
    for (StPlainKey const& key : keys)
        color.SetExtendedValue(key.time, key.color);
    return color;
}

StColorFloats PlainValue(std::vector<StPlainKey> const& keys, double time) {
    auto const next = std::lower_bound(keys.begin(), keys.end(), time,
                                       [](StPlainKey const& key, double at) { return key.time < at; });
    if (next == keys.end()) return keys.back().color;
    if (next == keys.begin() || next->time == time) return next->color;
    StPlainKey const& before = *(next - 1);
    auto const weight = static_cast<float>((time - before.time) / (next->time - before.time));
    auto const between = [=](float a, float b) { return (b - a) * weight + a; };
    return {between(before.color.red, next->color.red), between(before.color.green, next->color.green),
            between(before.color.blue, next->color.blue)};
}

/// Sums what `read` gives for each number below kReads.
template <class Read>
void SumUp(Read const& read) {
    StColorFloats sum{};
    for (std::size_t i = 0; i < kReads; ++i) {
        StColorFloats const color = read(i);
        sum.red += color.red;
        sum.green += color.green;
        sum.blue += color.blue;
    }
    benchmark::DoNotOptimize(sum);
}

void ConstantColor(benchmark::State& state) {
    std::vector<StTimeVaryingColor> colors;
    std::vector<StColorFloats> plain;
    for (std::size_t i = 0; i < kReads; ++i) {
        colors.push_back(ColorOf(i));
        plain.push_back(ColorOf(i));
    }
    bench::BesideFloor(
        state, [&] { SumUp([&](std::size_t i) { return colors[i].GetValue(2.5); }); },
        [&] { SumUp([&](std::size_t i) { return plain[i]; }); });
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kReads));
}

void KeyedColor(benchmark::State& state, std::vector<double> const& times) {
    auto const plain = PlainKeys(state.range(0));
    StTimeVaryingColor const color = Keyed(plain);
    bench::BesideFloor(
        state, [&] { SumUp([&](std::size_t i) { return color.GetValue(times[i]); }); },
        [&] { SumUp([&](std::size_t i) { return PlainValue(plain, times[i]); }); });
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kReads));
}

/// As while a frame is rendered with its shutter's two times.
void KeyedColorAtTwoTimes(benchmark::State& state) {
    double const middle = static_cast<double>(state.range(0)) / 2;
    std::vector<double> times(kReads);
    for (std::size_t i = 0; i < kReads; ++i)
        times[i] = i % 2 ? middle + 0.25 : middle - 0.75;
    KeyedColor(state, times);
}

/// As frame after frame. No time is read twice.
void KeyedColorInSequence(benchmark::State& state) {
    double const last = static_cast<double>(state.range(0) - 1);
    std::vector<double> times(kReads);
    for (std::size_t i = 0; i < kReads; ++i)
        times[i] = last * static_cast<double>(i) / kReads;
    KeyedColor(state, times);
}

BENCHMARK(ConstantColor)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(KeyedColorAtTwoTimes)
    ->ArgName("keys")
    ->Arg(4)
    ->Arg(64)
    ->Arg(1024)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(KeyedColorInSequence)
    ->ArgName("keys")
    ->Arg(4)
    ->Arg(64)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace
