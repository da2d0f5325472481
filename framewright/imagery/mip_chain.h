// How a mipmap divides its raster into levels: what all mipmaps share, whatever their pixels.
//
//     rows 0 to H - 1      level 0, H high and W wide, both powers of two
//     rows H and below     level 1 at column 0, level 2 to its right at W/2, level 3 at W/2 + W/4, ...
//
// Each level is half the one before in each direction, and never below 1. So the raster is H + max(H/2, 1)
// high and W wide. Of a raster that is four times as high as wide, or higher, the last levels would lie right
// of the raster: they are in the table, but have no pixels of their own.
#pragma once

#include <cstdint>

#include "framewright/frame/geometry.h"

/// One level: its place in the raster and its size, in pixels.
struct StMipLevel {
    std::int32_t top;
    std::int32_t left;
    std::int32_t height;
    std::int32_t width;

    bool operator==(StMipLevel const&) const = default;
};

/// What a mipmap knows of its levels.
struct StMipChain {
    std::int32_t levels = 0;
    StMipLevel* table = nullptr;  ///< one a level, from the largest; the mipmap's own
    float minimumFilter =
        0.0F;                ///< 1 / the larger side of level 0: the filter that is one of its pixels wide
    float levelBias = 0.0F;  ///< log2 of the larger side
    float maximumFilter = 0.0F;  ///< 1 / the smaller side of the smallest level
    float log2Width = 0.0F;      ///< of level 0
    float log2Height = 0.0F;
    StPoint originalSize{0, 0};  ///< of the picture that the mipmap was filled from; 0, 0 before
};

namespace imagery {

/// The sizes of a mipmap.
struct StMipLayout {
    std::int32_t levels;
    StPoint top;       ///< of level 0
    StPoint smallest;  ///< of the last level
    StPoint raster;
};

/// For a picture of `size`: each side of level 0 is the nearest power of two, the greater of two that are
/// equally near. With a `maximumFilter` of 0 the chain goes down to one pixel a side, else to the first
/// level whose pixel covers that part of the larger side. -108 for a size that no raster can have.
StMipLayout LayOutMipmap(StPoint const& size, float maximumFilter);

/// Replaces `chain` by one of that layout, with the original size unknown; -108 when memory is refused.
void MakeChain(StMipChain& chain, StMipLayout const& layout);
/// Makes `chain` an independent copy of `other`; -108 when memory is refused.
void CopyChain(StMipChain& chain, StMipChain const& other);
/// Gives the table back and forgets the levels.
void FreeChain(StMipChain& chain);

}  // namespace imagery
