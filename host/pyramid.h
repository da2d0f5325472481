// The levels of a mipmap as one picture.
#pragma once

#include <framewright/framewright.h>

/// The picture's mipmap as it lies in its raster: the picture itself, brought to powers of two, above its
/// half, with ever smaller ones to the right of that, on black. Of the picture's pixel type where it has
/// mipmaps, else of 32-bit colours.
StRef<SmImagerFrame> PyramidOf(StRef<SmImagerFrame> const& picture);
