// Error diffusion along a serpentine path, row by row: what dithered and mapped layers do with a picture of
// more colours than they have. Internal to the library.
//
// Each pixel takes half of the error of its neighbour along the scan and half of that of the pixel above;
// nothing is spread further. All of it is integer arithmetic on one row of errors.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "framewright/pixel/color_map.h"
#include "framewright/pixel/pixels.h"
#include "framewright/pixel/row_access.h"

namespace pixel {

/// What a column's pixel was short of its colour.
struct StDitherError {
    std::int16_t red, green, blue;
};

/// A part of one source row, its columns from `left` up to `right`, on its way to the columns from `to` on of
/// the row at `row`.
struct StDitherSpan {
    long left, right, to;
    void* row;
    bool leftToRight;
};

/// The errors of the row before, by source column. Columns beyond them read 0 and store nothing.
struct StDitherErrors {
    StDitherError* entries;
    long count;
};

/// What a channel takes of the two errors: half of their sum, toward zero.
constexpr int HalfOf(int sum) {
    return (sum + (sum < 0)) >> 1;
}

constexpr std::uint8_t ClampToByte(int value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

/// Dithers one row. `source(x)` gives the colour at a source column; `put(row, x, color)` stores what comes
/// closest to a colour at a destination column and returns the colour that is there now.
template <class Source, class Put>
void DitherRow(StDitherSpan const& span, StDitherErrors errors, Source const& source, Put& put) {
    long const step = span.leftToRight ? 1 : -1;
    long x = span.leftToRight ? span.left : span.right - 1;
    long to = span.leftToRight ? span.to : span.to + (span.right - span.left) - 1;
    int red = 0, green = 0, blue = 0;
    for (long n = span.right - span.left; n > 0; --n, x += step, to += step) {
        StDitherError none{};
        StDitherError& above = x < errors.count ? errors.entries[x] : none;
        StRGBA32Pixel color = source(x);
        color.red = ClampToByte(color.red + HalfOf(above.red + red));
        color.green = ClampToByte(color.green + HalfOf(above.green + green));
        color.blue = ClampToByte(color.blue + HalfOf(above.blue + blue));
        StRGBA32Pixel const there = put(span.row, to, color);
        red = color.red - there.red;
        green = color.green - there.green;
        blue = color.blue - there.blue;
        above = {static_cast<std::int16_t>(red), static_cast<std::int16_t>(green),
                 static_cast<std::int16_t>(blue)};
    }
}

/// Stores colours as 15-bit pixels.
struct StPutRGB15 {
    StRGBA32Pixel operator()(void* row, long x, StRGBA32Pixel color) const {
        StRGB15Pixel pixel{};
        pixel.SetRGBA32(color);
        StorePixel(row, x, pixel);
        return {kShown[color.blue], kShown[color.green], kShown[color.red], color.alpha};
    }

    /// What a byte has become after a way through five bits.
    static constexpr auto kShown = [] {
        std::array<std::uint8_t, 256> shown{};
        for (unsigned i = 0; i < shown.size(); ++i)
            shown[i] = FiveBitsToByte(i >> 3);
        return shown;
    }();
};

/// Stores colours as indices into a map whose entries stay as they are meanwhile.
///
/// The map cannot remember the answer 0 and searches a colour that has it each time. Dark parts of a picture
/// are full of such colours, so they are remembered here.
template <class Pixel>
class ScPutMapped {
  public:
    explicit ScPutMapped(ScColorMap<unsigned char, StRGBA32Pixel>& map) : mMap(map) {}

    StRGBA32Pixel operator()(void* row, long x, StRGBA32Pixel color) {
        Pixel pixel{};
        pixel.index = Closest(color) & kMask;
        StorePixel(row, x, pixel);
        return mMap[static_cast<unsigned char>(pixel.index)];
    }

  private:
    static constexpr unsigned kMask = (1u << Pixel::PixelSize()) - 1;
    static constexpr unsigned kSlotBits = 10;

    unsigned Closest(StRGBA32Pixel color) {
        if (unsigned const cached = mMap.CachedIndex(color)) return cached;
        // Never 0, so that an empty slot matches no colour.
        std::uint32_t const key =
            1u << 24 | unsigned{color.red} << 16 | unsigned{color.green} << 8 | color.blue;
        std::uint32_t& slot = mZeroes[key * 0x9E3779B1u >> (32 - kSlotBits)];
        if (slot == key) return 0;
        unsigned const index = mMap.ClosestColorIndex(color);
        if (index == 0) slot = key;
        return index;
    }

    ScColorMap<unsigned char, StRGBA32Pixel>& mMap;
    std::uint32_t mZeroes[1 << kSlotBits] = {};  ///< colours whose nearest entry is 0
};

}  // namespace pixel
