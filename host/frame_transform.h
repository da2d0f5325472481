// What `convert` does to a frame between reading and writing: another size, pixel type or palette.
#pragma once

#include <framewright/framewright.h>

#include "commands.h"

/// The pixel type that `text` names, in any case: "map8" is "Map8". Throws HostError for one that frames
/// can't have.
unsigned long PixelTypeFromText(std::string const& text);

/// The frame as the options want it: the given one itself where they want nothing.
StRef<SmImagerFrame> TransformedFrame(StRef<SmImagerFrame> frame, ConvertOptions const& options,
                                      ScProgressIndicator* progress);
