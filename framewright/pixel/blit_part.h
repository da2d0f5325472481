// What a copy between two frames can really move. Internal to the library.
#pragma once

#include "framewright/frame/geometry.h"

namespace pixel {

/// A rectangle of the source, and where its top left goes in the destination.
struct StBlitPart {
    StRect from;
    StPoint to;
};

/// Cuts `from`, which goes to `to` and may reach outside either frame on any side, to what lies within both.
/// Nothing in common gives a part without rows or columns, at the same place as far as that lies in the
/// frames. `beyond` is 1 where right and bottom of `from` are included, 0 where they are not, as they never
/// are in the result.
StBlitPart PartWithin(StRect const& from, StPoint const& to, StPoint const& sourceSize, StPoint const& size,
                      int beyond = 0);

}  // namespace pixel
