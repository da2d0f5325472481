// Merge and Blend of the colour records, a pixel at a time, beside loops over plain bytes with the same
// arithmetic. The ratio of a pair is what counts; both run over the same 64 thousand pixels.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "framewright/pixel/pixels.h"

namespace {

constexpr std::size_t kPixels = 65536;

std::vector<StRGBA32Pixel> Picture(std::uint32_t seed) {
    std::vector<StRGBA32Pixel> pixels(kPixels);
    for (StRGBA32Pixel& pixel : pixels) {
        seed = seed * 1664525 + 1013904223;
        pixel = {static_cast<std::uint8_t>(seed >> 8), static_cast<std::uint8_t>(seed >> 13),
                 static_cast<std::uint8_t>(seed >> 18), static_cast<std::uint8_t>(seed >> 24)};
    }
    return pixels;
}

void Count(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * kPixels);
}

/// Runs `mix` on each pair of a fresh destination and the source.
template <class Mix>
void RunPairs(benchmark::State& state, Mix mix) {
    auto const source = Picture(1), below = Picture(2);
    auto destination = below;
    for (auto _ : state) {
        for (std::size_t i = 0; i < kPixels; ++i)
            mix(destination[i], source[i]);
        benchmark::DoNotOptimize(destination.data());
        benchmark::ClobberMemory();
    }
    Count(state);
}

void MergeRecord(benchmark::State& state) {
    RunPairs(state, [](StRGBA32Pixel& below, StRGBA32Pixel const& above) { below.Merge(above); });
}
BENCHMARK(MergeRecord);

void MergePlain(benchmark::State& state) {
    RunPairs(state, [](StRGBA32Pixel& below, StRGBA32Pixel const& above) {
        if (above.alpha == 0) return;
        unsigned const a = above.alpha, sum = (255u - below.alpha) * a / 255 + below.alpha, rest = sum - a;
        below = {static_cast<std::uint8_t>((above.blue * a + below.blue * rest) / sum),
                 static_cast<std::uint8_t>((above.green * a + below.green * rest) / sum),
                 static_cast<std::uint8_t>((above.red * a + below.red * rest) / sum),
                 static_cast<std::uint8_t>(sum)};
    });
}
BENCHMARK(MergePlain);

void BlendRecord(benchmark::State& state) {
    float t = 0.37f;
    benchmark::DoNotOptimize(t);
    RunPairs(state, [t](StRGBA32Pixel& from, StRGBA32Pixel const& to) { from.Blend(to, t); });
}
BENCHMARK(BlendRecord);

void BlendPlain(benchmark::State& state) {
    float t = 0.37f;
    benchmark::DoNotOptimize(t);
    auto const w = static_cast<unsigned>(256.0 * t), u = 256 - w;
    RunPairs(state, [w, u](StRGBA32Pixel& from, StRGBA32Pixel const& to) {
        from = {static_cast<std::uint8_t>((to.blue * w + from.blue * u) >> 8),
                static_cast<std::uint8_t>((to.green * w + from.green * u) >> 8),
                static_cast<std::uint8_t>((to.red * w + from.red * u) >> 8),
                static_cast<std::uint8_t>((to.alpha * w + from.alpha * u) >> 8)};
    });
}
BENCHMARK(BlendPlain);

/// A weight of its own for each pixel, as stretching has.
void BlendRecordVaryingWeight(benchmark::State& state) {
    float t = 0;
    RunPairs(state, [&t](StRGBA32Pixel& from, StRGBA32Pixel const& to) {
        from.Blend(to, t);
        t += 0.0001f;
        if (t >= 1.0f) t = 0;
    });
}
BENCHMARK(BlendRecordVaryingWeight);

void BlendPlainVaryingWeight(benchmark::State& state) {
    float t = 0;
    RunPairs(state, [&t](StRGBA32Pixel& from, StRGBA32Pixel const& to) {
        auto const w = static_cast<unsigned>(static_cast<int>(256.0 * t)), u = 256 - w;
        from = {static_cast<std::uint8_t>((to.blue * w + from.blue * u) >> 8),
                static_cast<std::uint8_t>((to.green * w + from.green * u) >> 8),
                static_cast<std::uint8_t>((to.red * w + from.red * u) >> 8),
                static_cast<std::uint8_t>((to.alpha * w + from.alpha * u) >> 8)};
        t += 0.0001f;
        if (t >= 1.0f) t = 0;
    });
}
BENCHMARK(BlendPlainVaryingWeight);

}  // namespace
