// The spatial types of the library. There are no others.
//
// The trap: a point has its vertical member first - rows then columns, row then column - while the pixel
// operations of a frame take x before y.
#pragma once

#include <cstdint>

#include "framewright/thornmere/export.h"

class SmStream;

/// As a size: rows, columns. As a position: the row, counted from the top, then the column.
struct StPoint {
    std::int32_t vertical;
    std::int32_t horizontal;

    bool operator==(StPoint const&) const = default;
};

/// A rectangle of pixels; `bottom` and `right` are the first row and column outside.
struct StRect {
    std::int32_t top;
    std::int32_t left;
    std::int32_t bottom;
    std::int32_t right;

    bool operator==(StRect const&) const = default;
};

struct StFloatPoint {
    float vertical;
    float horizontal;

    bool operator==(StFloatPoint const&) const = default;
};

/// Whether a texture repeats along each axis: 1 tiles, any other value does not.
struct StTilingStyles {
    std::uint8_t horizontal;
    std::uint8_t vertical;

    bool operator==(StTilingStyles const&) const = default;
};

/// The styles of a texture that repeats along neither axis: both bytes are 0.
FRAMEWRIGHT_EXPORT StTilingStyles const& SkNoTilings();

/// The whole of a frame of `size`: top 0, left 0, bottom rows, right columns.
constexpr StRect SrWholeRect(StPoint const& size) {
    return {0, 0, size.vertical, size.horizontal};
}

/// Whether a frame of `size` has any pixel at all.
constexpr bool SrHasPixels(StPoint const& size) {
    return size.vertical > 0 && size.horizontal > 0;
}

/// True when both coordinates of `point` are at least 0 and below those of `size`.
FRAMEWRIGHT_EXPORT bool SrInsideFrame(StPoint const& point, StPoint const& size);

/// Clamps each edge of `in` on its own: below 1 it becomes 0, above the limit (rows for top and bottom,
/// columns for left and right) it becomes the limit. The result can be empty.
FRAMEWRIGHT_EXPORT void SrClipRectToFrame(StRect& out, StRect const& in, StPoint const& size);

/// The stream form: two signed 32-bit values, big-endian, the vertical one first.
FRAMEWRIGHT_EXPORT void SrGetFromStream(SmStream& stream, StPoint& point);
FRAMEWRIGHT_EXPORT void SrPutToStream(SmStream& stream, StPoint const& point);
