// The frame that a track or a movie shows at a time.
#pragma once

namespace imagery {

/// The number of the frame to show at a time, rounded down and not limited to any count. A hundred-thousandth
/// of a frame is added, so that a time just short of a frame gives it. In single precision.
long FrameNumberForTime(double seconds, float framesPerSecond);
/// The same for a sequence of `duration` seconds that starts anew at its end, or runs back and forth: the
/// time is folded into one duration first, in double precision. 0 for a sequence of no duration.
long LoopedFrameNumberForTime(double seconds, float framesPerSecond, double duration, bool pingPong);

}  // namespace imagery
