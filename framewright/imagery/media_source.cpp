#include "framewright/imagery/media_source.h"

#include <cmath>

#include "framewright/media/media_errors.h"
#include "framewright/media/result.h"

static constexpr double kAlmostNothing = 1e-10;

StRef<SmMedia> imagery::RequireMedia(SmMedia* adopted) {
    if (!adopted) media::ThrowMediaError(SkFileNotFound());
    return StRef<SmMedia>::Adopt(adopted);
}

SmMediaTrack* imagery::FindVideoTrack(SmMedia& media, long& index) {
    for (; index < media.NumberOfTracks(); ++index) {
        SmMediaTrack* const track = media.GetTrack(index);
        if (track && track->GetTrackType() == kVideoTrack) return track;
    }
    return nullptr;
}

long imagery::ClampedFrame(long frame, long count) {
    if (frame > count - 1) frame = count - 1;
    return frame < 0 ? 0 : frame;
}

double imagery::CachedDuration(double& cache, SmMedia* media, SmMediaTrack* track, float framesPerSecond) {
    if (std::fabs(cache) > kAlmostNothing || !media || !track) return cache;
    double const rate = framesPerSecond, itsRate = track->GetFrameRate();
    cache = media->GetDuration();
    if (std::fabs(itsRate - rate) > kAlmostNothing) cache = rate == 0.0 ? 0.0 : cache * itsRate / rate;
    return cache;
}

StRef<SmImagerFrame> imagery::ReadFrame(SmMediaTrack& track, SmImagerFrame* given, long number,
                                        unsigned long sizingMode) {
    media::StResult frame(given), extra;
    track.ReadFrames(frame.object, SmImagerFrame::Class(), extra.object, number, 1, 0, nullptr, sizingMode);
    if (!frame.IsNew()) return nullptr;
    auto* const read = dynamic_cast<SmImagerFrame*>(frame.object);
    if (!read) SrThrow(SkInternalRefusal(), nullptr);  // the format's fault
    return read;
}
