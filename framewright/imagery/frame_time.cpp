#include "framewright/imagery/frame_time.h"

#include <cmath>

#include "framewright/thornmere/numbers.h"

static constexpr double kAlmostNoDuration = 1e-10;
static constexpr double kFrameSlack = 0.00001;

long imagery::FrameNumberForTime(double seconds, float framesPerSecond) {
    float const value = framesPerSecond * static_cast<float>(seconds) + static_cast<float>(kFrameSlack);
    return SrITrunc(std::floor(value));
}

long imagery::LoopedFrameNumberForTime(double seconds, float framesPerSecond, double duration,
                                       bool pingPong) {
    if (!(std::fabs(duration) > kAlmostNoDuration)) return 0;
    std::int32_t const cycle = SrITrunc(std::floor(seconds / duration));
    double rest = seconds - cycle * duration;
    if (pingPong && cycle % 2 != 0) rest = duration - rest;
    return SrITrunc(std::floor(framesPerSecond * rest + kFrameSlack));
}
