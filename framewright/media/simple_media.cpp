#include "framewright/media/simple_media.h"

#include "framewright/core/startup.h"
#include "framewright/frame/frame.h"
#include "framewright/imagery/track.h"
#include "framewright/media/sequence_number.h"
#include "framewright/thornmere/numbers.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitializeGlobalMedia);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitColorMaps);

SM_DEFINE_CLASS(SmMediaSimple);
SM_DEFINE_CLASS(SmMediaStreamSimple);
SM_DEFINE_CLASS(SmMediaTrackSimple);

namespace {

template <class X>
StRef<X> MakeNew() {
    X* const object = X::New();
    SrThrowIfNIL(object);
    return StRef<X>::Adopt(object);
}

StRef<SmMediaTrackSimple> MakeTrack(SmMediaSimple* recognizer, SmMedia* media) {
    auto track = MakeNew<SmMediaTrackSimple>();
    track->ITrackSimple(recognizer, media);
    return track;
}

/// What an object has from its initialiser, or from being opened; asked for before, it is refused.
template <class X>
X& Given(X* part) {
    if (!part) SrThrow(SkInternalRefusal(), nullptr);
    return *part;
}

/// `object` as the frame that it was announced as; null stays null.
SmImagerFrame* FrameIn(SmObject* object) {
    auto* const frame = dynamic_cast<SmImagerFrame*>(object);
    if (object && !frame) media::ThrowMediaError(SkMediaIncapableOfFormat());
    return frame;
}

}  // namespace

// The recognizer.

SmMediaSimple::~SmMediaSimple() = default;

short SmMediaSimple::CanOpen(ScMediaLocation*) {
    return 0;
}

void SmMediaSimple::ReadFrame(ScMediaLocation*, SmImagerFrame*&, long, ScProgressIndicator*, unsigned long) {}

void SmMediaSimple::WriteFrame(ScMediaLocation*, SmImagerFrame*, long, ScProgressIndicator*) {}

bool SmMediaSimple::IsMovieFormat(ScMediaLocation*) {
    return false;
}

SmMedia* SmMediaSimple::NewMediaObject() {
    auto media = MakeNew<SmMediaStreamSimple>();
    media->ISimple(this);
    return media.Release();
}

double SmMediaSimple::DurationOfFile(ScMediaLocation*) {
    return 0.0;
}

short SmMediaSimple::Recognize(ScMediaLocation* location, unsigned long* type, StRef<SmMedia>* media,
                               unsigned long, ScMC_*) {
    short const confidence = CanOpen(location);
    if (media && confidence > 0) {
        auto opened = StRef<SmMedia>::Adopt(NewMediaObject());
        SrThrowIfNIL(opened.Get());
        opened->Open(location);
        *media = std::move(opened);
    }
    if (type) *type = GetType();
    return confidence;
}

SmMedia* SmMediaSimple::NewMedia(ScMediaLocation* location) {
    auto media = StRef<SmMedia>::Adopt(NewMediaObject());
    SrThrowIfNIL(media.Get());
    media->OpenNew(location);
    return media.Release();
}

long SmMediaSimple::NumberOfObjectClasses() {
    return 2;
}

ScMC_* SmMediaSimple::ObjectClass(long index, unsigned long* family) {
    if (family) *family = kVideoTrack;
    switch (index) {
        case 0:
            return SmImagerFrame::Class();
        case 1:
            return SmImagerTrack::Class();
        default:
            return nullptr;
    }
}

// The media.

SmMediaStreamSimple::~SmMediaStreamSimple() = default;

void SmMediaStreamSimple::ISimple(SmMediaSimple* recognizer) {
    IMedia();
    mRecognizer = recognizer;
}

void SmMediaStreamSimple::CloneFrom(SmMediaStreamSimple const& other) {
    SmMedia::CloneFrom(other);
    mRecognizer = other.mRecognizer;
}

void SmMediaStreamSimple::Free() {
    for (long i = 0; i < NumberOfTracks(); ++i) {
        SmMediaTrack* const track = GetTrack(i);
        if (track->IsMemberOf(SmMediaTrackSimple::Class())) {
            static_cast<SmMediaTrackSimple*>(track)->ForgetMedia(this);
        }
    }
    mRecognizer = nullptr;
    SmMedia::Free();
}

void SmMediaStreamSimple::Open(ScMediaLocation* location) {
    SetLocation(location);
    auto const track = MakeTrack(&Given(mRecognizer.Get()), this);
    track->Open(location);
    AddTrack(track.Get());
}

void SmMediaStreamSimple::Close() {}

unsigned long SmMediaStreamSimple::GetMediaType() {
    return Given(mRecognizer.Get()).GetType();
}

SmMediaTrack* SmMediaStreamSimple::NewTrack(unsigned long trackType, SmTrackSpec* spec) {
    if (trackType != kVideoTrack) return nullptr;
    auto const track = MakeTrack(&Given(mRecognizer.Get()), this);
    track->OpenNew(GetLocation());
    track->SetSpec(spec);
    AddTrack(track.Get());
    return track.Get();
}

// The track.

SmMediaTrackSimple::~SmMediaTrackSimple() = default;

void SmMediaTrackSimple::ITrackSimple(SmMediaSimple* recognizer, SmMedia* media) {
    mSpec = MakeNew<SmVideoSpec>();
    mSpec->IVideoSpec();
    mRecognizer = recognizer;
    mMedia = media;
}

void SmMediaTrackSimple::CloneFrom(SmMediaTrackSimple const& other) {
    SmMediaTrack::CloneFrom(other);
    mCurrentFrame = other.mCurrentFrame;
    mLastFrame = other.mLastFrame;
    mFrameCount = other.mFrameCount;
    media::ReplaceVideoSpec(mSpec, other.mSpec.Get());
    mRecognizer = other.mRecognizer;
    mMedia = other.mMedia;
}

void SmMediaTrackSimple::Free() {
    mSpec = nullptr;
    mRecognizer = nullptr;
    mMedia = nullptr;
    SmMediaTrack::Free();
}

void SmMediaTrackSimple::ForgetMedia(SmMedia* media) {
    if (mMedia == media) mMedia = nullptr;
}

SmMediaSimple& SmMediaTrackSimple::Format() {
    return Given(mRecognizer.Get());
}

SmVideoSpec& SmMediaTrackSimple::Spec() {
    return Given(mSpec.Get());
}

void SmMediaTrackSimple::Open(ScMediaLocation* location) {
    SmMediaTrack::Open(location);
    bool const isMovie = Format().IsMovieFormat(location);
    if (isMovie) {
        Spec().mIsSequence = false;
    } else if (media::NextInSequenceIsCertain(*location, Format())) {
        Spec().mIsSequence = true;
    }
    CountFrames(location, isMovie);
}

void SmMediaTrackSimple::CountFrames(ScMediaLocation* location, bool isMovie) {
    if (isMovie) {
        StCurrentMedia const current(&Format(), mMedia);
        mFrameCount = SrITrunc(Format().DurationOfFile(location) * GetFrameRate());
        Spec().mIsSequence = false;
    } else {
        mFrameCount = SrCountSequentialFiles(location);
        if (mFrameCount >= 2) Spec().mIsSequence = true;
    }
}

std::unique_ptr<ScMediaLocation> SmMediaTrackSimple::LocationOfFrame(bool isMovie, long number) {
    std::unique_ptr<ScMediaLocation> location(Given(Location()).Clone());
    if (!isMovie && Spec().mIsSequence) location->SetSequence(number);
    return location;
}

long SmMediaTrackSimple::NumberOfFrames() {
    return mFrameCount;
}

float SmMediaTrackSimple::GetFrameRate() {
    return Spec().mFrameRate;
}

StPoint SmMediaTrackSimple::GetFrameSize() {
    return Spec().mFrameSize;
}

SmTrackSpec* SmMediaTrackSimple::GetSpec() {
    return Spec().Clone();
}

void SmMediaTrackSimple::SetSpec(SmTrackSpec* spec) {
    media::ReplaceVideoSpec(mSpec, spec);
}

long SmMediaTrackSimple::NumberOfObjectClasses() {
    return Format().NumberOfObjectClasses();
}

ScMC_* SmMediaTrackSimple::ObjectClass(long index) {
    return Format().ObjectClass(index, nullptr);
}

void SmMediaTrackSimple::ReadFrames(SmObject*& object, ScMC_* objectClass, SmObject*& extra, long first,
                                    long count, long destination, ScProgressIndicator* progress,
                                    unsigned long option) {
    mCurrentFrame = first;
    bool const isMovie = Format().IsMovieFormat(&Given(Location()));
    if (!isMovie) first += Location()->GetSequence();
    if (objectClass != SmImagerFrame::Class()) {
        SmMediaTrack::ReadFrames(object, objectClass, extra, first, count, destination, progress, option);
        return;
    }
    auto* frame = FrameIn(object);
    auto const location = LocationOfFrame(isMovie, first);
    StCurrentMedia const current(&Format(), mMedia);
    Format().ReadFrame(location.get(), frame, first, progress, option);
    object = frame;
}

void SmMediaTrackSimple::WriteFrames(SmObject* object, ScMC_* objectClass, long first, long count,
                                     long destination, unsigned char position,
                                     ScProgressIndicator* progress) {
    if (count > 1) Spec().mIsSequence = true;
    if (objectClass != SmImagerFrame::Class()) {
        SmMediaTrack::WriteFrames(object, objectClass, first, count, destination, position, progress);
        return;
    }
    SmImagerFrame* const frame = FrameIn(object);
    if (!frame) media::ThrowMediaError(SkMediaIncapableOfFormat());
    auto const location = LocationOfFrame(Format().IsMovieFormat(&Given(Location())), first + 1);
    StCurrentMedia const current(&Format(), mMedia);
    Format().WriteFrame(location.get(), frame, first, progress);
}
