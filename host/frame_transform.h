// What `convert` does to a frame between reading and writing: one eye of it, another size, pixel
// type or palette, a turn.
#pragma once

#include <framewright/framewright.h>

#include "commands.h"

/// Throws HostError for a pixel type that does not exist, and for a palette or dithering that means nothing
/// to the pixel type.
void RequireUsableOptions(ConvertOptions const& options);

/// The frame as the options want it: the given one itself where they want nothing.
StRef<SmImagerFrame> TransformedFrame(StRef<SmImagerFrame> frame, ConvertOptions const& options,
                                      ScProgressIndicator* progress);

/// The picture as a frame of 32-bit colours.
StRef<SmImagerFrame> InColors(StRef<SmImagerFrame> const& picture);
