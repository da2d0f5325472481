#include "framewright/imagery/track_with_media.h"

#include "framewright/frame/layer_factory.h"
#include "framewright/imagery/media_source.h"
#include "framewright/media/media_manager.h"
#include "framewright/spool/spool_preferences.h"

SM_DEFINE_CLASS(SmImagerTrackWithMedia);

namespace {

/// Copies the whole of `from`, if there is one and it has that size.
bool CopyIfOfSize(SmImagerFrame& frame, SmImagerFrame* from, StPoint const& size) {
    if (!from || from->GetSize() != size) return false;
    frame.BlitRect(from, {0, 0, size.vertical, size.horizontal}, {0, 0});
    return true;
}

std::unique_ptr<ScMediaLocation> CloneOf(ScMediaLocation const* location) {
    return std::unique_ptr<ScMediaLocation>(location ? location->Clone() : nullptr);
}

}  // namespace

// --- life

SmImagerTrackWithMedia::SmImagerTrackWithMedia() = default;
SmImagerTrackWithMedia::~SmImagerTrackWithMedia() = default;

void SmImagerTrackWithMedia::IImagerTrackWithMedia() {
    IImagerTrack();
    SetSizingMode(kResizeFrame);
    SetDesiredSize({200, 320});
    mDuration = 0.0;
}

void SmImagerTrackWithMedia::CloneFrom(SmImagerTrackWithMedia const& other) {
    SmImagerTrack::CloneFrom(other);
    mLocation = CloneOf(other.mLocation.get());
    mSecondLocation = CloneOf(other.mSecondLocation.get());
    mMedia = other.mMedia;
    mMediaTrack = other.mMediaTrack;
    mTrackIndex = other.mTrackIndex;
    mSecondMedia = other.mSecondMedia;
    mSecondMediaTrack = other.mSecondMediaTrack;
    mDuration = other.mDuration;
}

void SmImagerTrackWithMedia::Free() {
    mLocation.reset();
    mSecondLocation.reset();
    mMediaTrack = nullptr;
    mMedia = nullptr;
    mSecondMediaTrack = nullptr;
    mSecondMedia = nullptr;
    SmImagerTrack::Free();
}

// --- where the frames come from

ScMediaLocation* SmImagerTrackWithMedia::GetLocation() {
    return mLocation.get();
}

void SmImagerTrackWithMedia::SetLocation(ScMediaLocation* location, long openArgument, bool clearFrames) {
    auto clone = CloneOf(location);
    mMediaTrack = nullptr;
    mMedia = nullptr;
    mDuration = 0.0;
    mLocation = std::move(clone);
    if (mLocation) {
        mMedia =
            imagery::RequireMedia(media::GlobalMediaManager().OpenMedia(mLocation.get(), openArgument, 0));
        long index = 0;
        if (SmMediaTrack* const track = imagery::FindVideoTrack(*mMedia, index)) {
            mTrackIndex = static_cast<std::int32_t>(index);
            UseTrack(track);
            SetFrameRate(track->GetFrameRate());
        }
    }
    if (clearFrames) ClearFrames();
}

ScMediaLocation* SmImagerTrackWithMedia::GetSecondLocation() {
    return mSecondLocation.get();
}

void SmImagerTrackWithMedia::SetSecondLocation(ScMediaLocation* location) {
    auto clone = CloneOf(location);
    mSecondMediaTrack = nullptr;
    mSecondMedia = nullptr;
    mSecondLocation = std::move(clone);
    if (!mSecondLocation) return;
    mSecondMedia = StRef<SmMedia>::Adopt(media::GlobalMediaManager().OpenMedia(mSecondLocation.get(), 1, 0));
    if (!mSecondMedia || !mMedia || mMediaTrack) return;
    long index = 0;
    SmMediaTrack* const track = imagery::FindVideoTrack(*mSecondMedia, index);
    // No further than the first media has tracks.
    if (track && index < mMedia->NumberOfTracks()) mSecondMediaTrack = track;
}

void SmImagerTrackWithMedia::SetTrack(long index) {
    mTrackIndex = static_cast<std::int32_t>(index);
    UseTrack(mMedia ? mMedia->GetTrack(index) : nullptr);
}

void SmImagerTrackWithMedia::UseTrack(SmMediaTrack* track) {
    mMediaTrack = track;
    if (track) SetNumberOfFrames(track->NumberOfFrames());
}

long SmImagerTrackWithMedia::GetTrack(SmMediaTrack*& track) {
    track = mMediaTrack;
    return mTrackIndex;
}

// --- frames

void SmImagerTrackWithMedia::SaveFrame(long, StLeftOrRight) {}

SmImagerFrame* SmImagerTrackWithMedia::GetStoredFrame(long frame) {
    frame = imagery::ClampedFrame(frame, GetNumberOfFrames());
    if (SmImagerFrame* const entry = Entries().At(frame)) return entry;

    StRef<SmImagerFrame> image = NewFrame(frame);
    if (mMediaTrack) {
        if (auto read = imagery::ReadFrame(*mMediaTrack, image.Get(), frame, GetSizingMode()))
            image = std::move(read);
        if (frame > 2 && Entries().At(frame - 2)) ReleaseFrame(frame - 2);
    }
    if (image) SetFrame(frame, image.Get());
    return image.Get();
}

/// The frame to read into; null where the format is to make it.
StRef<SmImagerFrame> SmImagerTrackWithMedia::NewFrame(long number) {
    SmImagerFrame* const prototype = GetPrototypeFrame();
    if (!prototype && mMediaTrack && GetSizingMode() == kResizeFrame) return nullptr;
    StPoint const size = GetDesiredSize();
    bool const spooled = SrGetImageMapSpoolingState();
    auto frame =
        StRef<SmImagerFrame>::Adopt(prototype ? prototype->CloneAtNewSize(size, spooled, false)
                                              : SrMakeFrame(size, StRGBA32Pixel::PixelID(), spooled, false));
    if (frame && !CopyIfOfSize(*frame, Entries().At(number - 1), size))
        CopyIfOfSize(*frame, Entries().At(number + 1), size);
    return frame;
}

// --- length

double SmImagerTrackWithMedia::GetDuration() {
    return imagery::CachedDuration(mDuration, mMedia.Get(), mMediaTrack, GetFrameRate());
}

long SmImagerTrackWithMedia::GetNumberOfFrames() {
    return mMediaTrack ? mMediaTrack->NumberOfFrames() : Entries().Count();
}

void SmImagerTrackWithMedia::SetFrameRate(float framesPerSecond) {
    mDuration = 0.0;
    SmImagerTrack::SetFrameRate(framesPerSecond);
}
