// The road of a copy: which rectangle really travels, and by which of the ways there are. Every block copy
// asks here, so a new way between two pixel types is added here and nowhere else.
#pragma once

#include <cstddef>

#include "framewright/frame/frame.h"

namespace frame {

enum class CopyRoad {
    kRawRows,   ///< one pixel type, whole bytes: rows as they are
    kRawBits,   ///< one pixel type, but pixels begin or end inside a byte: pixel by pixel
    kConverted  ///< two pixel types: pixel by pixel through a smart pixel
};

/// Whether both frames hold the same record. The classes do not count.
inline bool OnePixelType(SmImagerFrame& source, SmImagerFrame& destination) {
    return source.PixelID() == destination.PixelID();
}

/// The road for a rectangle that has been clipped.
CopyRoad ChooseCopyRoad(SmImagerFrame& source, SmImagerFrame& destination, StRect const& from,
                        StPoint const& to);

/// False when a copy of `from` to `to` misses one of the frames altogether. A rectangle that only touches the
/// destination's end does not.
bool MeetsFrames(StPoint const& sourceSize, StPoint const& destinationSize, StRect const& from,
                 StPoint const& to);

/// What is left of `from` when its right and bottom are cut to the source and, placed at `to`, to the
/// destination. False when a frame is missed (MeetsFrames); what only touches an end is empty.
bool ClipCopy(StPoint const& sourceSize, StPoint const& destinationSize, StRect const& from,
              StPoint const& to, StRect& clipped);

/// The place of a rectangle of the size of `from` at `to`.
StRect PlacedAt(StRect const& from, StPoint const& to);

/// Copies bytes in steps of eight from low to high addresses. So bytes may move down within a row, and what
/// moves up over itself repeats; where nothing overlaps it is a memcpy.
void CopyUpward(void* destination, void const* source, std::size_t bytes);

/// True when the two blocks share no byte.
bool Disjoint(void const* a, void const* b, std::size_t bytes);

}  // namespace frame
