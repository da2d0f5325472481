// One eye of a picture that holds both.
#pragma once

#include <framewright/framewright.h>

#include "commands.h"

/// A picture of one eye, of the same pixel type; those with a palette become 32-bit colours. Null where the
/// gap leaves nothing to the eyes.
StRef<SmImagerFrame> EyeOf(StRef<SmImagerFrame> const& picture, StereoCut const& cut);
