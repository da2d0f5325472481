// What tracks and movies that take their entries from media have in common.
#pragma once

#include "framewright/frame/frame.h"
#include "framewright/media/media.h"
#include "framewright/media/media_track.h"
#include "framewright/thornmere/reference.h"

namespace imagery {

/// What OpenMedia or CreateMedia gave; null throws SkFileNotFound().
StRef<SmMedia> RequireMedia(SmMedia* adopted);

/// The first video track from `index` on, which then tells its place; null if there is none.
SmMediaTrack* FindVideoTrack(SmMedia& media, long& index);

/// The nearest number that there is, of `count`; 0 where there is none.
long ClampedFrame(long frame, long count);

/// Reads one frame into `given`, which may be null. What comes back in its place, else null.
StRef<SmImagerFrame> ReadFrame(SmMediaTrack& track, SmImagerFrame* given, long number,
                               unsigned long sizingMode);

/// A media's duration in seconds, stretched where its track is played at another rate; 0 at a rate of 0. It
/// is asked for when it is first wanted: `cache` holds it from then on, and 0 until then or without media.
double CachedDuration(double& cache, SmMedia* media, SmMediaTrack* track, float framesPerSecond);

}  // namespace imagery
