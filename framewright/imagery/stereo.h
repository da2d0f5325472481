// Stereo material: how the two eyes are arranged, and how one of them is cut out.
#pragma once

#include <cstdint>

#include "framewright/thornmere/export.h"

class SmImagerFrame;
class SmImagerImage;

/// 0 for no stereo; 1 for eyes one above the other and 2 side by side in one frame; 4 when they alternate as
/// entries of the sequence of their own.
using StStereoArrangement = std::uint8_t;
/// 0 for neither, 1 for the left eye, 2 for the right eye.
using StLeftOrRight = std::uint8_t;

/// One eye of a frame that holds both: a window (imagery/subframe.h) onto it. With arrangement 1 each eye has
/// (rows - gap) / 2 rows, truncated toward zero, and the right eye begins `gap` rows below the left one; with
/// 2 the same goes for columns. Every eye but 2 is the left one. With 0, 3, 4 and 5 a frame holds one eye
/// alone, and the result is the frame itself. Null for another arrangement and for no frame.
///
/// The caller owns one reference. A gap that is negative or larger than the frame gives a window that
/// reaches outside, or none to look through.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrStereoSubframe(SmImagerFrame* frame, StStereoArrangement arrangement,
                                                   StLeftOrRight eye, long gap);

/// One eye of each layer of an image, in a new image: an exact SmImagerUpdated gives such a one, every other
/// class a SmImagerImage. Layers keep their places, those that have no such eye leave theirs empty, and the
/// pixels stay those of the old image, whose layers the new one keeps alive. The caller owns one reference.
FRAMEWRIGHT_EXPORT SmImagerImage* SrStereoSubimage(SmImagerImage* image, StStereoArrangement arrangement,
                                                   StLeftOrRight eye, long gap);
