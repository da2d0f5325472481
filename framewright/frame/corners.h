// The four pixels around a place between pixels: reading them from two rows, and mixing them.
#pragma once

#include <bit>
#include <cstdint>

#include "framewright/frame/sampling.h"
#include "framewright/pixel/pixel_ops.h"
#include "framewright/pixel/row_access.h"
#include "framewright/thornmere/numbers.h"

namespace frame {

/// a and b above, c and d below, b and d to the right.
template <class Value>
struct StCorners {
    Value a, b, c, d;
};

/// Reads them row by row: `rowOf` gives what `read` finds the pixels of a row by. The second row may drive
/// the first one out of memory.
template <class Value, class RowOf, class Read>
StCorners<Value> ReadCorners(StPlace const& place, RowOf const& rowOf, Read const& read) {
    StCorners<Value> corners;
    auto const upper = rowOf(place.y0);
    corners.a = read(upper, place.x0);
    corners.b = read(upper, place.x1);
    auto const lower = rowOf(place.y1);
    corners.c = read(lower, place.x0);
    corners.d = read(lower, place.x1);
    return corners;
}

/// Mixes them by the record's rule: across, then down.
template <class Value>
Value BlendCorners(StCorners<Value> corners, StPlace const& place) {
    corners.a.Blend(corners.b, place.across);
    corners.c.Blend(corners.d, place.across);
    corners.a.Blend(corners.c, place.down);
    return corners.a;
}

/// Four bytes side by side, each in 16 bits: with weights that add up to 256 no sum of products leaves its
/// own.
class ScFourBytes {
  public:
    explicit ScFourBytes(StRGBA32Pixel pixel) {
        auto const word = std::bit_cast<std::uint32_t>(pixel);
        mBytes = (word | std::uint64_t{word} << 24) & kMask;
    }
    StRGBA32Pixel Pixel() const {
        return std::bit_cast<StRGBA32Pixel>(static_cast<std::uint32_t>(mBytes | mBytes >> 24));
    }
    /// What Blend makes of each byte for a weight of `to` / 256.
    ScFourBytes Mixed(ScFourBytes other, std::uint32_t to) const {
        return ScFourBytes(((other.mBytes * to + mBytes * (256 - to)) >> 8) & kMask);
    }

  private:
    static constexpr std::uint64_t kMask = 0x00FF00FF00FF00FF;
    explicit ScFourBytes(std::uint64_t bytes) : mBytes(bytes) {}

    std::uint64_t mBytes;  ///< from the low end: bytes 0, 2 in the low word; 1, 3 in the high one
};

/// The same arithmetic on all four bytes at once, for fractions as reads have them.
inline StRGBA32Pixel BlendCorners(StCorners<StRGBA32Pixel> const& corners, StPlace const& place) {
    auto const across = static_cast<std::uint32_t>(SrITrunc(256.0 * place.across));
    auto const down = static_cast<std::uint32_t>(SrITrunc(256.0 * place.down));
    if (across > 256 || down > 256) [[unlikely]]
        return BlendCorners<StRGBA32Pixel>(corners, place);
    ScFourBytes const upper = ScFourBytes(corners.a).Mixed(ScFourBytes(corners.b), across);
    ScFourBytes const lower = ScFourBytes(corners.c).Mixed(ScFourBytes(corners.d), across);
    return upper.Mixed(lower, down).Pixel();
}

/// Pixel `x` of a row.
template <class Pixel>
Pixel PixelOf(void const* row, long x) {
    Pixel pixel{};
    pixel::LoadPixel(row, x, pixel);
    return pixel;
}

/// A pixel as four bytes, as its intensity, as three floats, or as it is.
template <class Value, class Pixel>
Value PixelAs(Pixel const& pixel) {
    if constexpr (std::same_as<Value, Pixel>) {
        return pixel;
    } else if constexpr (std::same_as<Value, StRGBA32Pixel>) {
        return pixel::GetRGBA32(pixel);
    } else if constexpr (std::same_as<Value, float>) {
        return pixel::GetFloat(pixel);
    } else {
        StColorFloats color{};
        pixel::GetColorFloats(pixel, color);
        return color;
    }
}

}  // namespace frame
