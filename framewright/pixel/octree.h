// The octree palette maker: the colours that suit a picture best.
#pragma once

#include "framewright/pixel/color_map.h"
#include "framewright/thornmere/export.h"

class ScProgressIndicator;
class SmImagerFrame;

/// Fills `map` with a palette for `frame`: SkBlackColorBytes() at 0, up to 2 to the power `bits` less 2
/// colours of the picture from 1 on, and SkWhiteColorBytes() behind the last of them. `bits` is the index
/// width of the target, 1 to 8; a value beyond is taken as the nearest of these. At 1 the map gets black and
/// white and the frame is not read. Pixels that equal the two constants in all four bytes are not counted;
/// opaque black is a colour like others.
///
/// The tree is built while the pixels are read, left to right and top to bottom, and reduced when it has too
/// many leaves. A leaf that was never reduced gives the mean of its pixels. One that was gives the sum of its
/// pixels divided by the number of leaves it was merged from, cut to a byte: not a mean, and kept so that
/// the palettes of one picture stay the same.
///
/// `progress`, which may be null, hears of each row. Memory that is refused throws -108. On any exception,
/// also one that `progress` or the frame throws, the tree's memory is given back and the map is as before.
FRAMEWRIGHT_EXPORT void SrStuffOptimalColorMap(ScColorMap<unsigned char, StRGBA32Pixel>& map, int bits,
                                               SmImagerFrame* frame, ScProgressIndicator* progress);
