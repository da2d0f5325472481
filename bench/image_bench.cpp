// Drawing into images and compositing them, beside plain loops over the same bytes.
#include <cstdint>
#include <random>
#include <vector>

#include "beside_floor.h"
#include "framewright/frame/layer.h"
#include "framewright/imagery/image.h"
#include "framewright/thornmere/numbers.h"

namespace {

constexpr std::int32_t kSide = 1024;
constexpr std::int32_t kStretchedSide = 1500;

/// A layer as a plain loop has it: a pointer and a distance.
template <class Record>
struct StPlain {
    explicit StPlain(SmImagerFrame& frame)
        : rows(static_cast<unsigned char*>(frame.GetRow(0))), distance(frame.BytesPerRow()) {}
    Record* Row(long y) const { return reinterpret_cast<Record*>(rows + y * distance); }
    unsigned char* rows;
    long distance;
};

/// Noise, in alpha and depth too.
StRef<SmImagerImage> NoiseImage(std::int32_t side, bool deep, unsigned seed) {
    auto image = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
    image->IImagerImage();
    image->SetSize({side, side});
    image->SetLayer(0, StRef<SmImagerFrame>::Adopt(image->MakeLayer(0, false)).Get());
    if (deep) image->SetLayer(1, StRef<SmImagerFrame>::Adopt(image->MakeLayer(1, false)).Get());
    std::mt19937 random(seed);
    for (long y = 0; y < side; ++y) {
        for (long x = 0; x < side; ++x) {
            auto const byte = [&] { return static_cast<std::uint8_t>(random()); };
            image->GetColorLayer()->PutPixelAt(x, y, StRGBA32Pixel{byte(), byte(), byte(), byte()});
            auto const depth = static_cast<float>(random() % 1000);
            if (deep) image->GetDepthLayer()->PutPixelAt(x, y, StDepthFloatPixel{depth});
        }
    }
    return image;
}

template <class Record>
void FillPlainly(StPlain<Record> const& layer, StRect const& rect, Record pixel) {
    for (long y = rect.top; y < rect.bottom; ++y) {
        Record* const row = layer.Row(y);
        for (long x = rect.left; x < rect.right; ++x)
            row[x] = pixel;
    }
}

/// A frame full of squares, each filled in both layers.
void FillRects(benchmark::State& state) {
    auto const side = static_cast<std::int32_t>(state.range(0));
    auto const image = NoiseImage(kSide, true, 1);
    StPlain<StRGBA32Pixel> const color(*image->GetColorLayer());
    StPlain<StDepthFloatPixel> const depth(*image->GetDepthLayer());
    auto const everywhere = [&](auto const& fill) {
        for (std::int32_t y = 0; y < kSide; y += side)
            for (std::int32_t x = 0; x < kSide; x += side)
                fill(x, y);
        benchmark::ClobberMemory();
    };
    bench::BesideFloor(
        state,
        [&] {
            everywhere([&](std::int32_t x, std::int32_t y) {
                image->FillRectAt(x, y, side, side, {0.2F, 0.4F, 0.6F}, 0.25F, 3.0F);
            });
        },
        [&] {
            everywhere([&](std::int32_t x, std::int32_t y) {
                StRect const rect{y, x, y + side, x + side};
                FillPlainly(color, rect, StRGBA32Pixel{153, 102, 51, 191});
                FillPlainly(depth, rect, StDepthFloatPixel{3.0F});
            });
        });
}
BENCHMARK(FillRects)->Arg(1024)->Arg(64)->Arg(16)->UseManualTime()->Unit(benchmark::kMicrosecond);

void CompositePlainly(SmImagerImage& source, SmImagerImage& image, bool deep) {
    StPlain<StRGBA32Pixel> const from(*source.GetColorLayer()), to(*image.GetColorLayer());
    StPlain<StDepthFloatPixel> const fromDepth(deep ? *source.GetDepthLayer() : *source.GetColorLayer());
    StPlain<StDepthFloatPixel> const toDepth(deep ? *image.GetDepthLayer() : *image.GetColorLayer());
    std::int32_t const side = image.GetSize().horizontal;
    float const step = static_cast<float>(side - 1) / static_cast<float>(kSide - 1);
    for (long y = 0; y < kSide; ++y) {
        long const toY = SrITrunc(static_cast<float>(y) * step);
        if (toY < 0 || toY >= side) continue;
        StRGBA32Pixel const* const row = from.Row(y);
        StDepthFloatPixel const* const depths = fromDepth.Row(y);
        StRGBA32Pixel* const below = to.Row(toY);
        StDepthFloatPixel* const depthsBelow = toDepth.Row(toY);
        for (long x = 0; x < kSide; ++x) {
            long const toX = SrITrunc(static_cast<float>(x) * step);
            if (toX < 0 || toX >= side) continue;
            if (deep && !(depths[x].depth < depthsBelow[toX].depth)) continue;
            below[toX].Merge(row[x]);
            if (deep && row[x].alpha != 0) depthsBelow[toX] = depths[x];
        }
    }
}

/// Into a destination of another size, whose pixels become more opaque, and nearer, with every turn: each
/// side has its own.
void Composite(benchmark::State& state) {
    bool const deep = state.range(0) != 0;
    auto const side = static_cast<std::int32_t>(state.range(1));
    auto const source = NoiseImage(kSide, deep, 1);
    auto const image = NoiseImage(side, deep, 2);
    auto const plain = NoiseImage(side, deep, 2);
    auto const depths = NoiseImage(side, deep, 2);
    auto const putBack = [&](SmImagerImage& changed) {
        if (deep) changed.GetDepthLayer()->BlitRect(depths->GetDepthLayer(), {0, 0, side, side}, {0, 0});
    };
    bench::BesideFloor(
        state,
        [&] {
            putBack(*image);
            source->CompositeInto(image.Get(), {0, 0, side, side});
            benchmark::ClobberMemory();
        },
        [&] {
            putBack(*plain);
            CompositePlainly(*source, *plain, deep);
            benchmark::ClobberMemory();
        });
}
BENCHMARK(Composite)
    ->ArgNames({"deep", "side"})
    ->Args({0, kSide})
    ->Args({0, kStretchedSide})
    ->Args({1, kSide})
    ->Args({1, kStretchedSide})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
