// Reads between pixels, and mipmaps: each beside a plain loop of the same arithmetic on pointers.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "beside_floor.h"
#include "framewright/imagery/mipmap.h"

namespace {

constexpr std::int32_t kSide = 2048;
/// How many reads there are a row and a column of a scan.
constexpr int kReads = 1024;
constexpr float kStep = static_cast<float>(kSide - 1) / kReads;

using Color = StRGBA32Pixel;
using Layer = SmImagerLayer<Color, ScImagerNonSpool>;

class Mipmap : public SmImagerMipmap<Color, ScImagerNonSpool> {
  public:
    using SmImagerMipmap<Color, ScImagerNonSpool>::RebuildLevels;
};

void FillWithNoise(SmImagerFrame& frame, StPoint const& size) {
    std::mt19937 random(1);
    for (long y = 0; y < size.vertical; ++y) {
        auto* const row = static_cast<std::uint32_t*>(frame.GetRow(y));
        for (long x = 0; x < size.horizontal; ++x)
            row[x] = static_cast<std::uint32_t>(random());
    }
}

StRef<Layer> NoiseLayer() {
    auto layer = StRef<Layer>::Adopt(Layer::New());
    layer->IImagerLayer({0, 0}, {kSide, kSide}, false, nullptr, 0, nullptr);
    FillWithNoise(*layer, {kSide, kSide});
    return layer;
}

StRef<Mipmap> NoiseMipmap() {
    auto mipmap = StRef<Mipmap>::Adopt(new Mipmap);
    mipmap->IImagerMipmap({kSide, kSide}, 1.0f, false);
    FillWithNoise(*mipmap, {kSide, kSide});
    mipmap->RebuildLevels();
    return mipmap;
}

/// A raster as a plain loop has it.
struct StPlain {
    explicit StPlain(SmImagerFrame& frame)
        : pixels(static_cast<Color const*>(frame.GetRow(0))), distance(frame.BytesPerRow() / 4) {}
    Color At(int x, int y) const { return pixels[y * distance + x]; }
    Color const* pixels;
    long distance;
};

std::uint8_t MixBytes(unsigned a, unsigned b, unsigned w) {
    return static_cast<std::uint8_t>((b * w + a * (256 - w)) >> 8);
}

Color MixColors(Color a, Color b, unsigned w) {
    return {MixBytes(a.blue, b.blue, w), MixBytes(a.green, b.green, w), MixBytes(a.red, b.red, w),
            MixBytes(a.alpha, b.alpha, w)};
}

/// Bilinear in fixed point, the neighbour of the last pixel being the first.
inline Color SamplePlainly(StPlain const& plain, int left, int top, int width, int height, float x, float y) {
    int const x0 = static_cast<int>(x), y0 = static_cast<int>(y);
    int const x1 = x0 + 1 < width ? x0 + 1 : 0, y1 = y0 + 1 < height ? y0 + 1 : 0;
    auto const wx = static_cast<unsigned>(256.0f * (x - static_cast<float>(x0)));
    auto const wy = static_cast<unsigned>(256.0f * (y - static_cast<float>(y0)));
    Color const upper = MixColors(plain.At(left + x0, top + y0), plain.At(left + x1, top + y0), wx);
    Color const lower = MixColors(plain.At(left + x0, top + y1), plain.At(left + x1, top + y1), wx);
    return MixColors(upper, lower, wy);
}

unsigned Word(Color pixel) {
    unsigned word;
    std::memcpy(&word, &pixel, sizeof word);
    return word;
}

template <class Read>
void Scan(Read const& read) {
    unsigned sum = 0;
    for (int y = 0; y < kReads; ++y)
        for (int x = 0; x < kReads; ++x)
            sum += Word(read(x, y));
    benchmark::DoNotOptimize(sum);
}

void PointReads(benchmark::State& state) {
    auto const layer = NoiseLayer();
    StPlain const plain(*layer);
    bench::BesideFloor(
        state,
        [&] {
            Scan([&](int x, int y) {
                return layer->GetFractionalPixel(static_cast<float>(x) * kStep,
                                                 static_cast<float>(y) * kStep);
            });
        },
        [&] {
            Scan([&](int x, int y) {
                return SamplePlainly(plain, 0, 0, kSide, kSide, static_cast<float>(x) * kStep,
                                     static_cast<float>(y) * kStep);
            });
        });
    state.counters["ns"] = state.counters["floor"] * state.counters["ratio"] * 1e9 / (kReads * kReads);
}
BENCHMARK(PointReads)->UseManualTime()->Unit(benchmark::kMillisecond);

constexpr float kTextureStep = 1.0f / kReads;

/// Through the frame interface, untiled.
void TextureReads(benchmark::State& state) {
    auto const layer = NoiseLayer();
    StPlain const plain(*layer);
    SmImagerFrame* frame = layer.Get();
    benchmark::DoNotOptimize(frame);
    bench::BesideFloor(
        state,
        [&] {
            Scan([&](int x, int y) {
                Color color;
                frame->GetFractionalUVPixel(static_cast<float>(x) * kTextureStep,
                                            static_cast<float>(y) * kTextureStep, color, SkNoTilings(), 0.0f);
                return color;
            });
        },
        [&] {
            Scan([&](int x, int y) {
                float const u = static_cast<float>(x) * kTextureStep,
                            v = static_cast<float>(y) * kTextureStep;
                return SamplePlainly(plain, 0, 0, kSide - 1, kSide - 1, u * (kSide - 1),
                                     (1.0f - v) * (kSide - 1));
            });
        });
}
BENCHMARK(TextureReads)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Two levels, each read bilinearly, mixed: what a plain loop does with a table of levels.
struct StPlainMipmap {
    explicit StPlainMipmap(Mipmap& mipmap)
        : plain(mipmap),
          levels(mipmap.Chain().table, mipmap.Chain().table + mipmap.Chain().levels),
          bias(mipmap.Chain().levelBias) {}

    Color SampleLevel(std::size_t number, float u, float v) const {
        StMipLevel const& level = levels[std::min(number, levels.size() - 1)];
        int const width = std::max(level.width - 1, 1), height = std::max(level.height - 1, 1);
        float x = static_cast<float>(width) * u, y = static_cast<float>(height) * (1.0f - v);
        if (x >= static_cast<float>(width)) x -= static_cast<float>(width);
        if (y >= static_cast<float>(height)) y -= static_cast<float>(height);
        return SamplePlainly(plain, level.left, level.top, width, height, x, y);
    }
    Color Sample(float u, float v, float filter) const {
        float const lod = std::log2(filter) + bias;
        if (lod <= 0.0f) return SampleLevel(0, u, v);
        auto const level = static_cast<std::size_t>(lod);
        float const fraction = lod - static_cast<float>(level);
        return MixColors(SampleLevel(level, u, v), SampleLevel(level + 1, u, v),
                         static_cast<unsigned>(256.0f * fraction));
    }

    StPlain plain;
    std::vector<StMipLevel> levels;
    float bias;
};

/// Filters from one pixel of level 0 upward, a little wider with each row.
float FilterOfRow(int y) {
    return (1.5f + 0.01f * static_cast<float>(y)) / kSide;
}

void TrilinearReads(benchmark::State& state) {
    auto const mipmap = NoiseMipmap();
    StPlainMipmap const plain(*mipmap);
    SmImagerFrame* frame = mipmap.Get();
    benchmark::DoNotOptimize(frame);
    bench::BesideFloor(
        state,
        [&] {
            Scan([&](int x, int y) {
                Color color;
                frame->GetFractionalUVPixel(static_cast<float>(x) * kTextureStep,
                                            static_cast<float>(y) * kTextureStep, color, SkNoTilings(),
                                            FilterOfRow(y));
                return color;
            });
        },
        [&] {
            Scan([&](int x, int y) {
                return plain.Sample(static_cast<float>(x) * kTextureStep,
                                    static_cast<float>(y) * kTextureStep, FilterOfRow(y));
            });
        });
    state.counters["ns"] = state.counters["floor"] * state.counters["ratio"] * 1e9 / (kReads * kReads);
}
BENCHMARK(TrilinearReads)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Anywhere in the texture, with filters of 1 to 64 pixels: most reads miss the caches.
void RandomReads(benchmark::State& state) {
    auto const mipmap = NoiseMipmap();
    StPlainMipmap const plain(*mipmap);
    SmImagerFrame* frame = mipmap.Get();
    benchmark::DoNotOptimize(frame);
    struct StRead {
        float u, v, filter;
    };
    std::vector<StRead> reads(kReads * 256);
    std::mt19937 random(2);
    std::uniform_real_distribution<float> place(0.0f, 1.0f), width(0.0f, 6.0f);
    for (StRead& read : reads)
        read = {place(random), place(random), std::exp2(width(random)) / kSide};
    bench::BesideFloor(
        state,
        [&] {
            unsigned sum = 0;
            for (StRead const& read : reads) {
                Color color;
                frame->GetFractionalUVPixel(read.u, read.v, color, SkNoTilings(), read.filter);
                sum += Word(color);
            }
            benchmark::DoNotOptimize(sum);
        },
        [&] {
            unsigned sum = 0;
            for (StRead const& read : reads)
                sum += Word(plain.Sample(read.u, read.v, read.filter));
            benchmark::DoNotOptimize(sum);
        });
    state.counters["ns"] =
        state.counters["floor"] * state.counters["ratio"] * 1e9 / static_cast<double>(reads.size());
}
BENCHMARK(RandomReads)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The means of bytes, rounded down, of all four channels at once.
inline std::uint32_t MeanOf(std::uint32_t a, std::uint32_t b) {
    return (a & b) + (((a ^ b) & 0xFEFEFEFEu) >> 1);
}

/// Each level in memory of its own, so that nothing overlaps and the compiler can use its widest registers.
void HalvePlainly(std::uint32_t const* __restrict from, std::uint32_t* __restrict to, int side) {
    for (int y = 0; y < side; ++y) {
        std::uint32_t const* const upper = from + 4L * y * side;
        std::uint32_t const* const lower = upper + 2L * side;
        std::uint32_t* const row = to + static_cast<long>(y) * side;
        for (int x = 0; x < side; ++x) {
            row[x] = MeanOf(MeanOf(upper[2 * x], upper[2 * x + 1]), MeanOf(lower[2 * x], lower[2 * x + 1]));
        }
    }
}

void RebuildLevels(benchmark::State& state) {
    auto const mipmap = NoiseMipmap();
    std::vector<std::vector<std::uint32_t>> levels;
    for (std::size_t side = kSide; side > 0; side /= 2)
        levels.emplace_back(side * side, 0x12345678u);
    bench::BesideFloor(
        state,
        [&] {
            mipmap->RebuildLevels();
            benchmark::ClobberMemory();
        },
        [&] {
            int side = kSide;
            for (std::size_t i = 1; i < levels.size(); ++i)
                HalvePlainly(levels[i - 1].data(), levels[i].data(), side /= 2);
            benchmark::ClobberMemory();
        });
}
BENCHMARK(RebuildLevels)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
