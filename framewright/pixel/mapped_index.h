// Indices from colours: what the mapped records, their smart pixels and their layers share.
#pragma once

#include "framewright/pixel/color_map.h"
#include "framewright/pixel/pixel_ops.h"

namespace pixel {

using ScPalette = ScColorMap<unsigned char, StRGBA32Pixel>;

/// Sets the record to the index of `map` nearest to `color`, cut to the record's width.
template <MappedPixel Record>
void SetNearest(Record& record, StRGBA32Pixel color, ScPalette& map) {
    constexpr unsigned kMask = (1u << StFacts<Record>::kBits) - 1;
    record.index = map.ClosestColorIndex(color) & kMask;
}

}  // namespace pixel
