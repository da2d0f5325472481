// Palettes and dithering on a photo-like picture of 1024 by 1024, each beside its floor: a plain loop of the
// same arithmetic over bare arrays, or a memcpy of the same pixels.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "beside_floor.h"
#include "framewright/pixel/dithered_layer.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/pixel/octree.h"
#include "framewright/thornmere/reference.h"

namespace {

constexpr int kSide = 1024;
constexpr std::size_t kPixels = std::size_t{kSide} * kSide;

using ScPalette = ScColorMap<unsigned char, StRGBA32Pixel>;
using Picture = std::vector<StRGBA32Pixel>;

/// Smooth light and shadow with dark corners and a little noise.
Picture MakePhoto() {
    Picture picture(kPixels);
    std::mt19937 random(1);
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            double const across = static_cast<double>(x) / kSide, down = static_cast<double>(y) / kSide;
            double const far = (across - 0.5) * (across - 0.5) + (down - 0.5) * (down - 0.5);
            double const light = (0.5 + 0.3 * std::sin(across * 7 + std::sin(down * 5) * 2) +
                                  0.2 * std::cos(down * 9 - across * 3)) *
                                 (1 - 1.6 * far);
            auto const byte = [&](double share) {
                int const noise = static_cast<int>(random() % 17) - 8;
                return static_cast<std::uint8_t>(
                    std::clamp(static_cast<int>(255 * light * share) + noise, 0, 255));
            };
            std::uint8_t const blue = byte(0.6 + 0.4 * std::sin(across * 4));
            std::uint8_t const green = byte(0.7 + 0.3 * std::cos(down * 6 + across));
            picture[static_cast<std::size_t>(y * kSide + x)] = {
                blue, green, byte(0.8 + 0.2 * std::sin(across * 3 + down * 8)), 255};
        }
    }
    return picture;
}

Picture const& Photo() {
    static Picture const photo = MakePhoto();
    return photo;
}

template <class Pixel>
StRef<SmImagerFrame> PhotoLayer() {
    using Layer = SmImagerLayer<Pixel, ScImagerNonSpool>;
    auto layer = StRef<Layer>::Adopt(Layer::New());
    layer->IImagerLayer({0, 0}, {kSide, kSide}, false, nullptr, 0, nullptr);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            layer->PutPixelAt(x, y, Photo()[static_cast<std::size_t>(y * kSide + x)]);
    return layer.Get();
}

StRef<SmImagerMappedLayer<StMapped8Pixel, ScImagerNonSpool>> MappedLayer() {
    using Layer = SmImagerMappedLayer<StMapped8Pixel, ScImagerNonSpool>;
    auto layer = StRef<Layer>::Adopt(Layer::New());
    layer->IImagerMappedLayer({0, 0}, {kSide, kSide}, false, nullptr, 0);
    return layer;
}

void CopyPhoto(Picture& copy) {
    std::memcpy(copy.data(), Photo().data(), kPixels * sizeof(StRGBA32Pixel));
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
}

/// Error diffusion over bare arrays, as one would write it. `put(index, red, green, blue)` stores a pixel and
/// replaces the channels by those of the colour that is there now.
template <class Put>
void PlainDither(Put const& put) {
    struct StError {
        std::int16_t red, green, blue;
    };
    std::vector<StError> errors(kSide, StError{});
    for (int y = 0; y < kSide; ++y) {
        int red = 0, green = 0, blue = 0;
        for (int n = 0; n < kSide; ++n) {
            int const x = y % 2 ? n : kSide - 1 - n;
            std::size_t const index = static_cast<std::size_t>(y * kSide + x);
            StError& error = errors[static_cast<std::size_t>(x)];
            StRGBA32Pixel const color = Photo()[index];
            int const r = std::clamp((error.red + red) / 2 + color.red, 0, 255);
            int const g = std::clamp((error.green + green) / 2 + color.green, 0, 255);
            int const b = std::clamp((error.blue + blue) / 2 + color.blue, 0, 255);
            int shownRed = r, shownGreen = g, shownBlue = b;
            put(index, shownRed, shownGreen, shownBlue);
            red = r - shownRed;
            green = g - shownGreen;
            blue = b - shownBlue;
            error = {static_cast<std::int16_t>(red), static_cast<std::int16_t>(green),
                     static_cast<std::int16_t>(blue)};
        }
    }
}

void PlainDitherTo15Bits(std::vector<std::uint16_t>& pixels) {
    PlainDither([&](std::size_t index, int& red, int& green, int& blue) {
        pixels[index] = static_cast<std::uint16_t>(red >> 3 << 10 | green >> 3 << 5 | blue >> 3);
        red = (red >> 3) * 255 / 31;
        green = (green >> 3) * 255 / 31;
        blue = (blue >> 3) * 255 / 31;
    });
    benchmark::DoNotOptimize(pixels.data());
    benchmark::ClobberMemory();
}

void PlainDitherIntoMap(ScPalette& map, std::vector<std::uint8_t>& pixels) {
    PlainDither([&](std::size_t index, int& red, int& green, int& blue) {
        unsigned char const entry =
            map.ClosestColorIndex({static_cast<std::uint8_t>(blue), static_cast<std::uint8_t>(green),
                                   static_cast<std::uint8_t>(red), 255});
        pixels[index] = entry;
        red = map[entry].red;
        green = map[entry].green;
        blue = map[entry].blue;
    });
    benchmark::DoNotOptimize(pixels.data());
    benchmark::ClobberMemory();
}

/// The palette of the photo beside a memcpy of it. 10 ns a pixel where memcpy moves 40 GB/s are 100 floors.
void Palette(benchmark::State& state) {
    auto const photo = PhotoLayer<StRGBA32Pixel>();
    Picture copy(kPixels);
    bench::BesideFloor(
        state,
        [&] {
            ScPalette map;
            SrStuffOptimalColorMap(map, static_cast<int>(state.range(0)), photo.Get(), nullptr);
            benchmark::DoNotOptimize(map);
        },
        [&] { CopyPhoto(copy); });
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}

template <class Source>
void DitherTo15Bits(benchmark::State& state) {
    auto const photo = PhotoLayer<Source>();
    using Layer = SmImagerDitheredLayer<StRGB15Pixel, ScImagerNonSpool>;
    auto const layer = StRef<Layer>::Adopt(Layer::New());
    layer->IImagerDitheredLayer({0, 0}, {kSide, kSide}, false, nullptr, 0);
    std::vector<std::uint16_t> pixels(kPixels);
    bench::BesideFloor(
        state,
        [&] {
            layer->BlitRect(photo.Get(), {0, 0, kSide, kSide}, {0, 0});
        },
        [&] { PlainDitherTo15Bits(pixels); });
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}

/// Into the photo's own palette of 256 or the standard one, beside the plain loop to 15 bits.
void DitherIntoMap(benchmark::State& state) {
    auto const photo = PhotoLayer<StRGBA32Pixel>();
    auto const layer = MappedLayer();
    if (state.range(0)) SrStuffOptimalColorMap(*layer->GetColorMap(), 8, photo.Get(), nullptr);
    std::vector<std::uint16_t> pixels(kPixels);
    bench::BesideFloor(
        state,
        [&] {
            layer->BlitRect(photo.Get(), {0, 0, kSide, kSide}, {0, 0});
        },
        [&] { PlainDitherTo15Bits(pixels); });
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}

/// The same beside the plain loop into the same palette.
void DitherIntoMapBesideItsLoop(benchmark::State& state) {
    auto const photo = PhotoLayer<StRGBA32Pixel>();
    auto const layer = MappedLayer();
    if (state.range(0)) SrStuffOptimalColorMap(*layer->GetColorMap(), 8, photo.Get(), nullptr);
    auto const map = std::make_unique<ScPalette>(*layer->GetColorMap());
    std::vector<std::uint8_t> pixels(kPixels);
    bench::BesideFloor(
        state,
        [&] {
            layer->BlitRect(photo.Get(), {0, 0, kSide, kSide}, {0, 0});
        },
        [&] { PlainDitherIntoMap(*map, pixels); });
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}

/// Lookups in cells that have an answer, beside loads from a bare table of cells.
void ClosestColorOfCachedCells(benchmark::State& state) {
    ScPalette map;
    std::vector<std::uint8_t> cells(ScPalette::kCells);
    for (unsigned i = 0; i < cells.size(); ++i) {
        StRGBA32Pixel const color{static_cast<std::uint8_t>(i << 4), static_cast<std::uint8_t>(i & 0xF0),
                                  static_cast<std::uint8_t>(i >> 4 & 0xF0), 255};
        cells[i] = static_cast<std::uint8_t>(1 + i % 255);
        map.SetColor(cells[i], color);
    }
    bench::BesideFloor(
        state,
        [&] {
            unsigned sum = 0;
            for (StRGBA32Pixel color : Photo())
                sum += map.ClosestColorIndex(color);
            benchmark::DoNotOptimize(sum);
        },
        [&] {
            unsigned sum = 0;
            for (StRGBA32Pixel color : Photo()) {
                sum += cells[(color.red >> 4 << 8) + (color.green >> 4 << 4) + (color.blue >> 4)];
            }
            benchmark::DoNotOptimize(sum);
        });
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}

BENCHMARK(Palette)->Arg(8)->Arg(4)->Arg(2)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(DitherTo15Bits<StRGBA32Pixel>)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(DitherTo15Bits<StRGB24Pixel>)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(DitherTo15Bits<StGray8Pixel>)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(DitherIntoMap)->ArgName("optimal")->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(DitherIntoMapBesideItsLoop)
    ->ArgName("optimal")
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ClosestColorOfCachedCells)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
