// What the tests of mapped layers share.
#pragma once

#include <bit>
#include <cstdint>
#include <vector>

#include "frame_test_support.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/pixel/smart_pixel.h"

namespace color_test {

template <class Pixel>
using SmMapped = SmImagerMappedLayer<Pixel, ScImagerNonSpool>;
using SmMapped8 = SmMapped<StMapped8Pixel>;
using SmMapped4 = SmMapped<StMapped4Pixel>;
using SmMapped2 = SmMapped<StMapped2Pixel>;
using SmMapped1 = SmMapped<StMapped1Pixel>;

template <class Pixel>
StRef<SmMapped<Pixel>> Mapped(int rows, int columns) {
    auto layer = StRef<SmMapped<Pixel>>::Adopt(SmMapped<Pixel>::New());
    layer->IImagerMappedLayer({0, 0}, {rows, columns}, false, nullptr, 0);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            layer->PutMatchedPixelAt(x, y, Pixel{});
    return layer;
}

template <class Pixel>
Pixel IndexPixel(unsigned index) {
    Pixel pixel{};
    pixel.index = static_cast<unsigned char>(index & ((1u << Pixel::PixelSize()) - 1));
    return pixel;
}

template <class Pixel>
unsigned IndexAt(SmImagerLayer<Pixel, ScImagerNonSpool>& layer, long x, long y) {
    return layer.GetMatchedPixelAt(x, y).index;
}

/// The palettes of a layer and of the frame interface to it.
inline ScPalette& MapOf(SmImagerFrame* frame) {
    return *SrGetColorMapFromFrame(frame);
}

/// Gives the first entries of a layer's map new colours.
inline void SetColors(SmImagerFrame* frame, std::vector<StRGBA32Pixel> const& colors) {
    unsigned char index = 0;
    for (StRGBA32Pixel color : colors)
        MapOf(frame).SetColor(index++, color);
}

inline bool SameBits(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

using MappedPixels = testing::Types<StMapped8Pixel, StMapped4Pixel, StMapped2Pixel, StMapped1Pixel>;

}  // namespace color_test
