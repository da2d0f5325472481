// Where a read from a mipmap falls: between which levels, and between which pixels of a level. Everything
// here is safe for every float.
#pragma once

#include <algorithm>

#include "framewright/frame/sampling.h"
#include "framewright/imagery/mip_chain.h"
#include "framewright/thornmere/numbers.h"

namespace imagery {

/// A level, and how far a filter lies from it to the next one; at 0 the next is not read.
struct StMipChoice {
    long level;
    float fraction;
};

/// The level whose pixels are as wide as `filter`, a part of the whole texture. The next one may be one past
/// the last. What is not a number reads level 0.
inline StMipChoice ChooseLevel(StMipChain const& chain, float filter) {
    if (filter == 0.0f) return {0, 0.0f};
    float const lod = SrLog2(filter) + chain.levelBias;
    if (!(lod > 0.0f)) return {0, 0.0f};
    if (lod >= static_cast<float>(chain.levels)) return {chain.levels - 1L, 0.0f};
    auto const level = static_cast<std::int32_t>(lod);
    return {level, lod - static_cast<float>(level)};
}

/// Half way between a float and another by `fraction`: how two levels mix where records do not.
inline float MixLevels(float first, float second, float fraction) {
    return static_cast<float>(first * (1.0 - fraction) + second * static_cast<double>(fraction));
}

/// Puts a coordinate that lies one length outside back onto the axis.
inline float WrapOnce(float place, long length) {
    auto const limit = static_cast<float>(length);
    return place < 0.0f ? place + limit : place >= limit ? place - limit : place;
}

/// The truncated coordinate and its neighbour on an axis of `length`, in a raster of `count` pixels in which
/// the axis starts at `start`. Behind the last comes the first.
inline void NeighboursInLevel(float coordinate, long length, long start, long count, long& first,
                              long& second, float& fraction) {
    long const place = SrITrunc(coordinate);
    long const next = place + 1;
    fraction = coordinate - static_cast<float>(place);
    if (place >= 0 && place < length && start + length <= count) [[likely]] {
        first = start + place;
        second = start + (next < length ? next : 0);
    } else {
        first = frame::ClampPixel(place + start, count);
        second = frame::ClampPixel((next >= length ? next - length : next) + start, count);
    }
}

/// The four pixels of a bilinear read, in the coordinates of a raster of that size, which has pixels.
inline frame::StPlace PlaceInLevel(StMipLevel const& level, StFloatPoint const& at, long width, long height,
                                   StPoint const& raster) {
    frame::StPlace place;
    NeighboursInLevel(at.horizontal, width, level.left, raster.horizontal, place.x0, place.x1, place.across);
    NeighboursInLevel(at.vertical, height, level.top, raster.vertical, place.y0, place.y1, place.down);
    return place;
}

/// The place of a read: an axis that tiles, with a style of 1, has its whole length, any other one pixel
/// less.
inline frame::StPlace PlaceOfSample(StMipLevel const& level, float u, float v, StTilingStyles const& tiling,
                                    StPoint const& raster) {
    long const width = frame::TextureLength(level.width, tiling.horizontal);
    long const height = frame::TextureLength(level.height, tiling.vertical);
    StFloatPoint at = frame::TextureToPixels(u, v, width, height);
    at.horizontal = WrapOnce(at.horizontal, width);
    at.vertical = WrapOnce(at.vertical, height);
    return PlaceInLevel(level, at, width, height, raster);
}

/// The place of a gradient, with the lengths that it is taken over. Here a style of 0, and no other, has the
/// whole length and pixels that are centred on half steps: gradients and reads differ on purpose.
struct StDerivativePlace {
    frame::StPlace place;
    long width, height;
};

inline StDerivativePlace PlaceOfDerivatives(StMipLevel const& level, float u, float v,
                                            StTilingStyles const& tiling, StPoint const& raster) {
    auto const lengthOf = [](long count, std::uint8_t style) {
        return std::max(style == 0 ? count : count - 1, 1L);
    };
    // Style 0 here takes the steps that style 1 takes on a plain layer.
    auto const stepped = [](float place, long length, std::uint8_t style) {
        return WrapOnce(style == 0 ? frame::HalfStepBack(place, length, 1) : place, length);
    };
    long const width = lengthOf(level.width, tiling.horizontal);
    long const height = lengthOf(level.height, tiling.vertical);
    StFloatPoint at = frame::TextureToPixels(u, v, width, height);
    at.horizontal = stepped(at.horizontal, width, tiling.horizontal);
    at.vertical = stepped(at.vertical, height, tiling.vertical);
    return {PlaceInLevel(level, at, width, height, raster), width, height};
}

/// The gradient over four intensities: upper left, upper right, lower left, lower right.
inline void MixGradient(float g00, float g01, float g10, float g11, StDerivativePlace const& at, float& du,
                        float& dv) {
    double const across = at.place.across, down = at.place.down;
    double const a = g00, b = g01, c = g10, d = g11;
    auto const width = static_cast<double>(at.width), height = static_cast<double>(at.height);
    du = static_cast<float>((b - a) * width * (1.0 - down) + (d - c) * width * down);
    dv = static_cast<float>((c - a) * height * (1.0 - across) + (d - b) * height * across);
}

}  // namespace imagery
