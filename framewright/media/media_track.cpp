#include "framewright/media/media_track.h"

#include <cmath>

#include "framewright/core/startup.h"
#include "framewright/frame/frame.h"
#include "framewright/imagery/track.h"
#include "framewright/media/media_recognizer.h"
#include "framewright/media/result.h"
#include "framewright/media/sequence_number.h"
#include "framewright/thornmere/numbers.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitializeGlobalMedia);

SM_DEFINE_CLASS(SmMediaTrack);

namespace {

bool IsTrack(SmObject* object, ScMC_* objectClass) {
    return objectClass == SmImagerTrack::Class() && object && object->IsMemberOf(SmImagerTrack::Class());
}

}  // namespace

SmMediaTrack::SmMediaTrack() = default;
SmMediaTrack::~SmMediaTrack() = default;

void SmMediaTrack::CloneFrom(SmMediaTrack const& other) {
    SmObject::CloneFrom(other);
    if (other.mLocation) mLocation.reset(other.mLocation->Clone());
}

void SmMediaTrack::Free() {
    mLocation.reset();
    SmObject::Free();
}

void SmMediaTrack::Open(ScMediaLocation* location) {
    if (!location) SrThrow(SkInternalRefusal(), nullptr);
    mLocation.reset(location->Clone());
}

unsigned long SmMediaTrack::GetTrackType() {
    return kVideoTrack;
}
long SmMediaTrack::NumberOfFrames() {
    return 0;
}

double SmMediaTrack::GetDuration() {
    double const rate = GetFrameRate();
    return rate == 0.0 ? 0.0 : static_cast<double>(NumberOfFrames()) / rate;
}

float SmMediaTrack::GetFrameRate() {
    return 0.0F;
}
StPoint SmMediaTrack::GetFrameSize() {
    return {0, 0};
}
SmTrackSpec* SmMediaTrack::GetSpec() {
    return nullptr;
}
void SmMediaTrack::SetSpec(SmTrackSpec*) {}

long SmMediaTrack::NumberOfObjectClasses() {
    return 2;
}

ScMC_* SmMediaTrack::ObjectClass(long index) {
    switch (index) {
        case 0:
            return SmImagerFrame::Class();
        case 1:
            return SmImagerTrack::Class();
        default:
            return nullptr;
    }
}

void SmMediaTrack::ReadFrames(SmObject*& object, ScMC_* objectClass, SmObject*&, long first, long count,
                              long destination, ScProgressIndicator* progress, unsigned long option) {
    StRef<SmImagerTrack> made;
    if (!object && objectClass == SmImagerTrack::Class()) {
        made = StRef<SmImagerTrack>::Adopt(SmImagerTrack::New());
        SrThrowIfNIL(made.Get());
        made->IImagerTrack();
    } else if (!IsTrack(object, objectClass)) {
        return;
    }
    SmImagerTrack* const track = made ? made.Get() : static_cast<SmImagerTrack*>(object);
    for (long i = 0; i < count; ++i) {
        media::StResult frame(track->GetStoredFrame(destination + i)), extra;
        ReadFrames(frame.object, SmImagerFrame::Class(), extra.object, first + i, 1, 0, progress, option);
        if (!frame.IsNew()) continue;
        auto* const image = dynamic_cast<SmImagerFrame*>(frame.object);
        if (!image) SrThrow(SkInternalRefusal(), nullptr);  // the format's fault
        track->SetFrame(destination + i, image);
        track->SaveFrame(destination + i, 0);
    }
    if (made) object = made.Release();
}

void SmMediaTrack::ReadTime(SmObject*& object, ScMC_* objectClass, SmObject*& extra, double first,
                            double count, double destination, ScProgressIndicator* progress,
                            unsigned long option) {
    auto const spec = StRef<SmTrackSpec>::Adopt(GetSpec());
    bool const isSequence =
        spec && spec->IsMemberOf(SmVideoSpec::Class()) && static_cast<SmVideoSpec*>(spec.Get())->mIsSequence;
    if (!isSequence) {
        ReadFrames(object, objectClass, extra, 0, 1, 0, progress, option);
        return;
    }
    double const rate = GetFrameRate();
    auto const frames = [rate](double seconds) { return SrITrunc(std::floor(rate * seconds)); };
    ReadFrames(object, objectClass, extra, frames(first), frames(count), frames(destination), progress,
               option);
}

void SmMediaTrack::WriteFrames(SmObject* object, ScMC_* objectClass, long first, long count, long,
                               unsigned char position, ScProgressIndicator*) {
    if (!IsTrack(object, objectClass)) return;
    auto* const track = static_cast<SmImagerTrack*>(object);
    for (long i = 0; i < count; ++i) {
        long const number = first + i;
        SmImagerFrame* const frame = track->GetFrame(number, 0);
        if (frame) WriteFrames(frame, SmImagerFrame::Class(), number, 1, number, position, nullptr);
    }
}

void SmMediaTrack::WriteTime(SmObject* object, ScMC_* objectClass, double first, double count,
                             double destination, unsigned char position, ScProgressIndicator* progress) {
    WriteFrames(object, objectClass, SrITrunc(first), SrITrunc(count), SrITrunc(destination), position,
                progress);
}

bool media::NextInSequenceIsCertain(ScMediaLocation& location, SmMediaRecognizer& recognizer) {
    std::unique_ptr<ScMediaLocation> const next(location.Clone());
    long const number = next->GetSequence();
    return number >= 0 && media::TryNumber(*next, number + 1) &&
           recognizer.Recognize(next.get(), nullptr, nullptr, 0, nullptr) == kCertain;
}
