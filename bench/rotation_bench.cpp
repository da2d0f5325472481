// Rotated blits beside a plain loop of the same arithmetic on pointers, for frames of 1024 by 1024 colours.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>

#include "beside_floor.h"
#include "framewright/frame/layer.h"
#include "framewright/imagery/rotated_blit.h"

namespace {

constexpr std::int32_t kSide = 1024;
constexpr float kCentre = 512.0F;

using Color = StRGBA32Pixel;
using Layer = SmImagerLayer<Color, ScImagerNonSpool>;

void FillWithNoise(Layer& layer) {
    layer.IImagerLayer({0, 0}, {kSide, kSide}, false, nullptr, 0, nullptr);
    std::mt19937 random(1);
    for (long y = 0; y < kSide; ++y) {
        auto* const row = static_cast<std::uint32_t*>(layer.GetRow(y));
        for (long x = 0; x < kSide; ++x)
            row[x] = static_cast<std::uint32_t>(random());
    }
}

StRef<Layer> NewPlain() {
    auto layer = StRef<Layer>::Adopt(Layer::New());
    FillWithNoise(*layer);
    return layer;
}

/// A class of a host's own is asked for each pixel by the frame's operations.
class Derived : public Layer {};

StRef<Layer> NewDerived() {
    auto layer = StRef<Layer>::Adopt(new Derived);
    FillWithNoise(*layer);
    return layer;
}

/// A raster as a plain loop has it.
struct StPlain {
    explicit StPlain(Layer& layer)
        : pixels(static_cast<Color*>(layer.GetRow(0))), distance(layer.BytesPerRow() / 4) {}
    Color& At(int x, int y) const { return pixels[y * distance + x]; }
    Color* pixels;
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
Color SamplePlainly(StPlain const& plain, float x, float y) {
    int const x0 = static_cast<int>(x), y0 = static_cast<int>(y);
    int const x1 = x0 + 1 < kSide ? x0 + 1 : 0, y1 = y0 + 1 < kSide ? y0 + 1 : 0;
    auto const wx = static_cast<unsigned>(256.0F * (x - static_cast<float>(x0)));
    auto const wy = static_cast<unsigned>(256.0F * (y - static_cast<float>(y0)));
    return MixColors(MixColors(plain.At(x0, y0), plain.At(x1, y0), wx),
                     MixColors(plain.At(x0, y1), plain.At(x1, y1), wx), wy);
}

void RotatePlainly(StPlain const& from, StPlain const& to, float angle, bool interpolation) {
    float const cosine = std::cos(angle), sine = std::sin(angle);
    float const last = static_cast<float>(kSide - 1);
    for (int row = 0; row < kSide; ++row) {
        for (int column = 0; column < kSide; ++column) {
            float const u = static_cast<float>(column) - kCentre, v = static_cast<float>(row) - kCentre;
            float const x = u * cosine + kCentre - v * sine;
            float const y = kCentre + u * sine + v * cosine;
            if (interpolation) {
                if (x >= 0.0F && x <= last && y >= 0.0F && y <= last)
                    to.At(column, row) = SamplePlainly(from, x, y);
            } else {
                int const ix = static_cast<int>(x), iy = static_cast<int>(y);
                if (ix >= 0 && ix < kSide && iy >= 0 && iy < kSide) to.At(column, row) = from.At(ix, iy);
            }
        }
    }
}

void Rotation(benchmark::State& state, StRef<Layer> (*make)(), bool interpolation) {
    auto const source = make(), canvas = make(), plain = make();
    StPlain const plainSource(*source), plainCanvas(*plain);
    constexpr float kAngle = 0.5F;
    ScRotatedBlit blit;
    blit.SetSource({0, 0, kSide, kSide}, kCentre, kCentre);
    blit.SetTarget(kCentre, kCentre);
    blit.SetInterpolation(interpolation);
    bench::BesideFloor(
        state,
        [&] {
            blit.DoIt(source.Get(), canvas.Get(), kAngle);
            benchmark::ClobberMemory();
        },
        [&] {
            RotatePlainly(plainSource, plainCanvas, kAngle, interpolation);
            benchmark::ClobberMemory();
        });
    state.counters["ns"] = state.counters["floor"] * state.counters["ratio"] * 1e9 / (kSide * kSide);
}
BENCHMARK_CAPTURE(Rotation, Plain, NewPlain, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Rotation, Interpolated, NewPlain, true)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Rotation, PlainDerived, NewDerived, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Rotation, InterpolatedDerived, NewDerived, true)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
