// The plain values that tell how the two eyes of stereo material are arranged.
#pragma once

#include <cstdint>

/// 0 for no stereo; 1 for eyes one above the other and 2 side by side in one frame; 4 when they alternate as
/// entries of the sequence of their own.
using StStereoArrangement = std::uint8_t;
/// 0 for neither, 1 for the left eye, 2 for the right eye.
using StLeftOrRight = std::uint8_t;
