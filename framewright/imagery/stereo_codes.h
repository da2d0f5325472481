#pragma once

#include "framewright/imagery/stereo.h"

namespace imagery {

constexpr StStereoArrangement kEyesAbove = 1;
constexpr StStereoArrangement kEyesBeside = 2;
constexpr StStereoArrangement kEyesAlternate = 4;
/// Those above are no arrangements.
constexpr StStereoArrangement kLastArrangement = 5;

constexpr StLeftOrRight kLeftEye = 1;
constexpr StLeftOrRight kRightEye = 2;

}  // namespace imagery
