// Frames of 2048 by 2048: walking pixels, copying, merging and stretching, each beside a plain loop over the
// same bytes.
#include <cstdint>
#include <cstring>
#include <random>

#include "beside_floor.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/layer_factory.h"

namespace {

constexpr std::int32_t kSide = 2048;
constexpr StPoint kSize{kSide, kSide};

template <class Record>
using Layer = SmImagerLayer<Record, ScImagerNonSpool>;

template <class Record>
StRef<Layer<Record>> NoiseLayer(unsigned seed, StPoint const& size = kSize) {
    auto layer = StRef<Layer<Record>>::Adopt(Layer<Record>::New());
    layer->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
    std::mt19937 random(seed);
    for (long y = 0; y < size.vertical; ++y) {
        auto* const row = static_cast<unsigned char*>(layer->GetRow(y));
        for (long i = 0; i < layer->BytesPerRow(); ++i)
            row[i] = static_cast<unsigned char>(random());
    }
    return layer;
}

/// A frame as a plain loop has it: a pointer and a distance.
struct StPlain {
    explicit StPlain(SmImagerFrame& frame)
        : rows(static_cast<unsigned char*>(frame.GetRow(0))), distance(frame.BytesPerRow()) {}
    template <class Record>
    Record* Row(long y) const {
        return reinterpret_cast<Record*>(rows + y * distance);
    }
    unsigned char* rows;
    long distance;
};

/// Something of every record that the optimiser cannot drop.
template <class Record>
unsigned Weight(Record const& pixel) {
    unsigned char bytes[sizeof(Record)];
    std::memcpy(bytes, &pixel, sizeof(Record));
    return bytes[0] + 3u * bytes[sizeof(Record) - 1];
}

template <class Record>
Record Pattern(long x, long y) {
    unsigned char bytes[sizeof(Record)];
    for (std::size_t i = 0; i < sizeof(Record); ++i)
        bytes[i] = static_cast<unsigned char>(x + y);
    Record pixel;
    std::memcpy(static_cast<void*>(&pixel), bytes, sizeof(Record));
    return pixel;
}

template <class Record>
void GetMatched(benchmark::State& state) {
    auto const layer = NoiseLayer<Record>(1);
    StPlain const plain(*layer);
    bench::BesideFloor(
        state,
        [&] {
            unsigned sum = 0;
            for (long y = 0; y < kSide; ++y)
                for (long x = 0; x < kSide; ++x)
                    sum += Weight(layer->GetMatchedPixelAt(x, y));
            benchmark::DoNotOptimize(sum);
        },
        [&] {
            unsigned sum = 0;
            for (long y = 0; y < kSide; ++y) {
                Record const* const row = plain.Row<Record>(y);
                for (long x = 0; x < kSide; ++x)
                    sum += Weight(row[x]);
            }
            benchmark::DoNotOptimize(sum);
        });
}

template <class Record>
void PutMatched(benchmark::State& state) {
    auto const layer = NoiseLayer<Record>(1);
    StPlain const plain(*layer);
    bench::BesideFloor(
        state,
        [&] {
            for (long y = 0; y < kSide; ++y)
                for (long x = 0; x < kSide; ++x)
                    layer->PutMatchedPixelAt(x, y, Pattern<Record>(x, y));
            benchmark::ClobberMemory();
        },
        [&] {
            for (long y = 0; y < kSide; ++y) {
                Record* const row = plain.Row<Record>(y);
                for (long x = 0; x < kSide; ++x)
                    row[x] = Pattern<Record>(x, y);
            }
            benchmark::ClobberMemory();
        });
}

/// Each pixel read, complemented and written.
template <class Record>
void GetAndPutMatched(benchmark::State& state) {
    auto const layer = NoiseLayer<Record>(1);
    StPlain const plain(*layer);
    bench::BesideFloor(
        state,
        [&] {
            for (long y = 0; y < kSide; ++y)
                for (long x = 0; x < kSide; ++x) {
                    Record pixel = layer->GetMatchedPixelAt(x, y);
                    pixel.Invert();
                    layer->PutMatchedPixelAt(x, y, pixel);
                }
            benchmark::ClobberMemory();
        },
        [&] {
            for (long y = 0; y < kSide; ++y) {
                Record* const row = plain.Row<Record>(y);
                for (long x = 0; x < kSide; ++x)
                    row[x].Invert();
            }
            benchmark::ClobberMemory();
        });
}

#define MATCHED(Operation)                                                                        \
    BENCHMARK_TEMPLATE(Operation, StRGBA32Pixel)->UseManualTime()->Unit(benchmark::kMillisecond); \
    BENCHMARK_TEMPLATE(Operation, StRGB24Pixel)->UseManualTime()->Unit(benchmark::kMillisecond);  \
    BENCHMARK_TEMPLATE(Operation, StGray8Pixel)->UseManualTime()->Unit(benchmark::kMillisecond);  \
    BENCHMARK_TEMPLATE(Operation, StRGBAFloatPixel)->UseManualTime()->Unit(benchmark::kMillisecond)
MATCHED(GetMatched);
MATCHED(PutMatched);
MATCHED(GetAndPutMatched);

/// One virtual call a pixel, beside the same store without it.
void PutPixel(benchmark::State& state) {
    auto const layer = NoiseLayer<StRGBA32Pixel>(1);
    SmImagerFrame* frame = layer.Get();
    benchmark::DoNotOptimize(frame);
    bench::BesideFloor(
        state,
        [&] {
            for (long y = 0; y < kSide; ++y)
                for (long x = 0; x < kSide; ++x)
                    frame->PutPixelAt(x, y, Pattern<StRGBA32Pixel>(x, y));
            benchmark::ClobberMemory();
        },
        [&] {
            for (long y = 0; y < kSide; ++y)
                for (long x = 0; x < kSide; ++x)
                    layer->PutMatchedPixelAt(x, y, Pattern<StRGBA32Pixel>(x, y));
            benchmark::ClobberMemory();
        });
}
BENCHMARK(PutPixel)->UseManualTime()->Unit(benchmark::kMillisecond);

template <class Record>
void Blit(benchmark::State& state) {
    auto const source = NoiseLayer<Record>(1);
    auto const layer = NoiseLayer<Record>(2);
    StPlain const from(*source), to(*layer);
    bench::BesideFloor(
        state,
        [&] {
            layer->BlitRect(source.Get(), {0, 0, kSide, kSide}, {0, 0});
            benchmark::ClobberMemory();
        },
        [&] {
            auto bytes = static_cast<std::size_t>(kSide * Record::PixelSize() / 8);
            benchmark::DoNotOptimize(bytes);  // memcpy itself, not what the compiler makes of a known length
            for (long y = 0; y < kSide; ++y)
                std::memcpy(to.Row<Record>(y), from.Row<Record>(y), bytes);
            benchmark::ClobberMemory();
        });
}
BENCHMARK_TEMPLATE(Blit, StRGBA32Pixel)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Blit, StGray8Pixel)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Blit, StMapped1Pixel)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Between two pixel types: a smart pixel and two virtual calls a pixel, beside the conversion alone.
void BlitConverted(benchmark::State& state) {
    auto const source = NoiseLayer<StRGBA32Pixel>(1);
    auto const layer = NoiseLayer<StGray8Pixel>(2);
    StPlain const from(*source), to(*layer);
    bench::BesideFloor(
        state,
        [&] {
            layer->BlitRect(source.Get(), {0, 0, kSide, kSide}, {0, 0});
            benchmark::ClobberMemory();
        },
        [&] {
            for (long y = 0; y < kSide; ++y) {
                StRGBA32Pixel const* const colors = from.Row<StRGBA32Pixel>(y);
                StGray8Pixel* const grays = to.Row<StGray8Pixel>(y);
                for (long x = 0; x < kSide; ++x)
                    grays[x].SetRGBA32(colors[x]);
            }
            benchmark::ClobberMemory();
        });
}
BENCHMARK(BlitConverted)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Straight alpha as it is told: three integer divisions a pixel.
void MergePlainly(StRGBA32Pixel& pixel, StRGBA32Pixel const& over) {
    if (over.alpha == 0) return;
    unsigned const alpha = (255u - pixel.alpha) * over.alpha / 255 + pixel.alpha;
    unsigned const weight = alpha - over.alpha;
    auto const mix = [&](unsigned below, unsigned above) {
        return static_cast<unsigned char>((above * over.alpha + below * weight) / alpha);
    };
    pixel.red = mix(pixel.red, over.red);
    pixel.green = mix(pixel.green, over.green);
    pixel.blue = mix(pixel.blue, over.blue);
    pixel.alpha = static_cast<unsigned char>(alpha);
}

/// The alphas of the frame laid over: all kinds, or all of one.
enum Alphas { kVarying = -1, kTransparent = 0, kHalf = 128, kOpaque = 255 };

void Merge(benchmark::State& state) {
    auto const source = NoiseLayer<StRGBA32Pixel>(1);
    auto const layer = NoiseLayer<StRGBA32Pixel>(2);
    auto const plainLayer = NoiseLayer<StRGBA32Pixel>(2);
    StPlain const from(*source), to(*plainLayer);
    if (state.range(0) != kVarying) {
        for (long y = 0; y < kSide; ++y)
            for (long x = 0; x < kSide; ++x)
                from.Row<StRGBA32Pixel>(y)[x].alpha = static_cast<unsigned char>(state.range(0));
    }
    bench::BesideFloor(
        state,
        [&] {
            layer->MergeRect(source.Get(), {0, 0, kSide, kSide}, {0, 0});
            benchmark::ClobberMemory();
        },
        [&] {
            for (long y = 0; y < kSide; ++y) {
                StRGBA32Pixel* const pixels = to.Row<StRGBA32Pixel>(y);
                StRGBA32Pixel const* const over = from.Row<StRGBA32Pixel>(y);
                for (long x = 0; x < kSide; ++x)
                    MergePlainly(pixels[x], over[x]);
            }
            benchmark::ClobberMemory();
        });
}
BENCHMARK(Merge)
    ->ArgName("alpha")
    ->Arg(kVarying)
    ->Arg(kTransparent)
    ->Arg(kHalf)
    ->Arg(kOpaque)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// Bilinear, on pointers: the arithmetic of a stretched copy and nothing else.
template <class Record>
void StretchPlainly(StPlain const& from, StPlain const& to, int side, int toSide) {
    float const scale = static_cast<float>(side - 1) / static_cast<float>(toSide - 1);
    for (int y = 0; y < toSide; ++y) {
        float const fy = static_cast<float>(y) * scale;
        int const y0 = static_cast<int>(fy);
        int const y1 = y0 < side - 1 ? y0 + 1 : y0;
        float const down = fy - static_cast<float>(y0);
        Record const* const upper = from.Row<Record>(y0);
        Record const* const lower = from.Row<Record>(y1);
        Record* const row = to.Row<Record>(y);
        for (int x = 0; x < toSide; ++x) {
            float const fx = static_cast<float>(x) * scale;
            int const x0 = static_cast<int>(fx);
            int const x1 = x0 < side - 1 ? x0 + 1 : x0;
            float const across = fx - static_cast<float>(x0);
            Record a = upper[x0];
            Record b = lower[x0];
            a.Blend(upper[x1], across);
            b.Blend(lower[x1], across);
            a.Blend(b, down);
            row[x] = a;
        }
    }
}

template <class Record>
void Stretch(benchmark::State& state) {
    constexpr std::int32_t kTo = 1500;
    auto const source = NoiseLayer<Record>(1);
    auto const layer = NoiseLayer<Record>(2, {kTo, kTo});
    StPlain const from(*source), to(*layer);
    bench::BesideFloor(
        state,
        [&] {
            layer->StretchBlit(source.Get(), {0, 0, kSide, kSide}, {0, 0, kTo, kTo});
            benchmark::ClobberMemory();
        },
        [&] {
            StretchPlainly<Record>(from, to, kSide, kTo);
            benchmark::ClobberMemory();
        });
}
BENCHMARK_TEMPLATE(Stretch, StRGBA32Pixel)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Stretch, StRGB24Pixel)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Stretch, StGray8Pixel)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Stretch, StRGBAFloatPixel)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
