// A picture turned by an angle.
#pragma once

#include <framewright/framewright.h>

#include "commands.h"

/// The whole picture, turned counterclockwise, on a canvas that just holds it. What the picture does not
/// cover is black, and transparent where the pixel type has opacity. Pictures with a palette become 32-bit
/// colours.
StRef<SmImagerFrame> Turned(StRef<SmImagerFrame> const& picture, Rotation const& rotation);
