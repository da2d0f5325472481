// Where a read between pixels falls, for pixel coordinates and for texture coordinates. Everything here is
// safe for every float: what is not a number counts as 0, what is far outside as an edge.
//
// The sizes given have at least one row and one column.
#pragma once

#include <algorithm>

#include "framewright/frame/geometry.h"
#include "framewright/thornmere/numbers.h"

namespace frame {

/// Two neighbours on each axis, and how far the place lies from the first to the second of them.
struct StPlace {
    long x0, x1;
    long y0, y1;
    float across, down;
};

inline long ClampPixel(long position, long count) {
    return std::clamp(position, 0L, count - 1);
}

/// The pixel at a truncated coordinate, or the nearest edge.
inline long NearestPixel(float coordinate, long count) {
    return ClampPixel(SrITrunc(coordinate), count);
}

/// The neighbours at `coordinate` on an axis of `count` pixels that repeats after `wrap` of them: behind the
/// last comes the first, also where nothing tiles.
inline void Neighbours(float coordinate, long count, long wrap, long& first, long& second) {
    long const place = SrITrunc(coordinate);
    long const next = place + 1;
    first = ClampPixel(place, count);
    second = ClampPixel(next >= wrap ? next - wrap : next, count);
}

/// How far `coordinate` lies behind its truncated value; 0 for a negative one.
inline float FractionOf(float coordinate) {
    float const fraction = coordinate - static_cast<float>(SrITrunc(coordinate));
    return fraction > 0.0f ? std::min(fraction, 1.0f) : 0.0f;
}

/// In pixel coordinates: x to the right, y down.
inline StPlace PlaceOfPixel(float x, float y, StPoint const& size) {
    StPlace place;
    Neighbours(x, size.horizontal, size.horizontal, place.x0, place.x1);
    Neighbours(y, size.vertical, size.vertical, place.y0, place.y1);
    place.across = FractionOf(x);
    place.down = FractionOf(y);
    return place;
}

/// The length of a texture axis: all pixels where it tiles, else from the first pixel to the last; at
/// least 1.
inline long TextureLength(long count, std::uint8_t style) {
    return std::max(style == 1 ? count : count - 1, 1L);
}

/// Texture coordinates run from 0 to 1, on axes that tile too. Not a number counts as 0.
inline float ClampTexture(float coordinate) {
    return coordinate > 0.0f ? std::min(coordinate, 1.0f) : 0.0f;
}

/// On an axis that tiles, pixels are centred on the half steps.
inline float HalfStepBack(float coordinate, long length, std::uint8_t style) {
    if (style != 1) return coordinate;
    float const back = coordinate - 0.5f;
    return back < 0.0f ? back + static_cast<float>(length) : back;
}

/// The place of texture coordinates in pixels, v running up from the bottom row.
inline StFloatPoint TextureToPixels(float u, float v, long width, long height) {
    return {static_cast<float>((1.0 - v) * static_cast<double>(height)), static_cast<float>(width) * u};
}

inline StPlace PlaceInTexture(StFloatPoint const& at, StPoint const& size, long width, long height) {
    StPlace place;
    Neighbours(at.horizontal, size.horizontal, width, place.x0, place.x1);
    Neighbours(at.vertical, size.vertical, height, place.y0, place.y1);
    place.across = at.horizontal - static_cast<float>(SrITrunc(at.horizontal));
    place.down = at.vertical - static_cast<float>(SrITrunc(at.vertical));
    return place;
}

/// For the byte and the intensity form.
inline StPlace PlaceOfTexture(float u, float v, StPoint const& size, StTilingStyles const& tiling) {
    long const width = TextureLength(size.horizontal, tiling.horizontal);
    long const height = TextureLength(size.vertical, tiling.vertical);
    StFloatPoint at = TextureToPixels(ClampTexture(u), ClampTexture(v), width, height);
    at.horizontal = HalfStepBack(at.horizontal, width, tiling.horizontal);
    at.vertical = HalfStepBack(at.vertical, height, tiling.vertical);
    return PlaceInTexture(at, size, width, height);
}

/// For the float colour form, which takes no half step and wraps whatever the tiling: it lies half a pixel
/// from the other two on an axis that tiles, and textures have been made to match.
inline StPlace PlaceOfColorTexture(float u, float v, StPoint const& size, StTilingStyles const& tiling) {
    long const width = TextureLength(size.horizontal, tiling.horizontal);
    long const height = TextureLength(size.vertical, tiling.vertical);
    StFloatPoint at = TextureToPixels(ClampTexture(u), ClampTexture(v), width, height);
    auto const wrap = [](float place, long length) {
        auto const limit = static_cast<float>(length);
        return place < 0.0f ? place + limit : place >= limit ? place - limit : place;
    };
    at.horizontal = wrap(at.horizontal, width);
    at.vertical = wrap(at.vertical, height);
    return PlaceInTexture(at, size, width, height);
}

/// For the gradient: no clamp of u and v.
inline StFloatPoint PlaceOfDerivatives(float u, float v, StPoint const& size, StTilingStyles const& tiling) {
    long const width = TextureLength(size.horizontal, tiling.horizontal);
    long const height = TextureLength(size.vertical, tiling.vertical);
    StFloatPoint const at = TextureToPixels(u, v, width, height);
    return {HalfStepBack(at.vertical, height, tiling.vertical),
            HalfStepBack(at.horizontal, width, tiling.horizontal)};
}

inline float MixIntensities(float a, float b, float c, float d, StPlace const& place) {
    double const across = place.across;
    double const down = place.down;
    return static_cast<float>((1.0 - down) * (a * (1.0 - across) + b * across) +
                              (c * (1.0 - across) + d * across) * down);
}

/// The gradient of four intensities half a pixel around a place: upper left, upper right, lower left and
/// lower right.
inline void MixDerivatives(float i00, float i10, float i01, float i11, StPoint const& size, float& du,
                           float& dv) {
    double const a = i00, b = i10, c = i01, d = i11;
    du = static_cast<float>(((b - a) + d - c) * size.horizontal * 0.5);
    dv = static_cast<float>(((c - a) + d - b) * size.vertical * 0.5);
}

}  // namespace frame
