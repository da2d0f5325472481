#include "framewright/imagery/movie_with_media.h"

#include "framewright/core/startup.h"
#include "framewright/imagery/image.h"
#include "framewright/imagery/media_source.h"
#include "framewright/media/media_manager.h"
#include "framewright/spool/spool_preferences.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitMipmaps);
SR_DEPENDS_ON(SrInitializeGlobalMedia);
SR_DEPENDS_ON(SrInitStringUtils);

SM_DEFINE_CLASS(SmImagerMovieWithMedia);

// --- life

SmImagerMovieWithMedia::SmImagerMovieWithMedia() = default;
SmImagerMovieWithMedia::~SmImagerMovieWithMedia() = default;

void SmImagerMovieWithMedia::IImagerMovieWithMedia() {
    IImagerMovie();
    SetSizingMode(kResizeFrame);
    SetDesiredFrameSize({200, 320});
    mDuration = 0.0;
    mAccessMode = kReadMovie;
}

void SmImagerMovieWithMedia::CloneFrom(SmImagerMovieWithMedia const& other) {
    SmImagerMovie::CloneFrom(other);
    if (other.mLocation) mLocation.reset(other.mLocation->Clone());
    mMedia = other.mMedia;
    mDuration = other.mDuration;
    mAccessMode = other.mAccessMode;
    mTrackSpecs = other.mTrackSpecs;
}

void SmImagerMovieWithMedia::Free() {
    mLocation.reset();
    mMedia = nullptr;
    mTrackSpecs.Clear();
    SmImagerMovie::Free();
}

// --- where the images come from

ScMediaLocation* SmImagerMovieWithMedia::GetLocation() {
    return mLocation.get();
}

void SmImagerMovieWithMedia::SetLocation(ScMediaLocation* location, long accessMode, bool clearImages,
                                         long createMode, unsigned long mediaType) {
    std::unique_ptr<ScMediaLocation> clone(location ? location->Clone() : nullptr);
    mMedia = nullptr;
    mDuration = 0.0;
    mLocation = std::move(clone);
    if (mLocation) {
        SmMediaManager& manager = media::GlobalMediaManager();
        SmMedia* media = nullptr;
        if (createMode != kCreateMovie) media = manager.OpenMedia(mLocation.get(), accessMode, mediaType);
        if (!media && createMode != 0) media = manager.CreateMedia(mLocation.get(), mediaType);
        mMedia = imagery::RequireMedia(media);
        mAccessMode = static_cast<std::int32_t>(accessMode);
        if (SmMediaTrack* const track = FirstVideoTrack()) {
            SetNumberOfFrames(track->NumberOfFrames());
            SetFrameRate(track->GetFrameRate());
        }
    }
    if (clearImages) ClearAll();
}

SmMediaTrack* SmImagerMovieWithMedia::FirstVideoTrack() {
    long index = 0;
    return mMedia ? imagery::FindVideoTrack(*mMedia, index) : nullptr;
}

// --- reading

SmImagerImage* SmImagerMovieWithMedia::GetStoredImage(long frame) {
    frame = imagery::ClampedFrame(frame, GetNumberOfFrames());
    if (SmImagerImage* const entry = Entries().At(frame)) return entry;

    StRef<SmImagerImage> const image = NewImage(frame);
    ReadLayers(*image, frame);
    if (frame > 2 && Entries().At(frame - 2)) ReleaseImage(frame - 2);
    SetImage(frame, image.Get(), true);
    return image.Get();
}

StRef<SmImagerImage> SmImagerMovieWithMedia::NewImage(long number) {
    StPoint const size = GetDesiredFrameSize();
    bool const spooled = SrGetImageMapSpoolingState();
    StRef<SmImagerImage> image;
    if (SmImagerImage* const prototype = GetPrototypeImage()) {
        image = StRef<SmImagerImage>::Adopt(prototype->CloneAtNewSize(size, spooled, false));
    } else if (GetSizingMode() != kResizeFrame) {
        image = StRef<SmImagerImage>::Adopt(SrMakeImage(size, StRGBA32Pixel::PixelID(), spooled));
    } else {
        image = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
        SrThrowIfNIL(image.Get());
        image->IImagerImage();
        return image;
    }
    SrThrowIfNIL(image.Get());
    SmImagerImage* neighbour = Entries().At(number - 1);
    if (!neighbour) neighbour = Entries().At(number + 1);
    if (neighbour) image->MatchLayers(neighbour);
    return image;
}

void SmImagerMovieWithMedia::ReadLayers(SmImagerImage& image, long number) {
    if (!mMedia) return;
    long index = 0;
    for (long layer = 0; SmMediaTrack* const track = imagery::FindVideoTrack(*mMedia, index);
         ++index, ++layer) {
        SmImagerFrame* const given = layer < image.GetLayerCount() ? image.GetLayer(layer) : nullptr;
        auto const read = imagery::ReadFrame(*track, given, number, GetSizingMode());
        if (read) image.SetLayer(layer, read.Get());
    }
}

// --- writing

void SmImagerMovieWithMedia::SaveImage(long frame, StLeftOrRight eye) {
    frame = EntryNumber(frame, eye);
    SmImagerImage* const image = Entries().At(frame);
    if (!image || !mMedia || mAccessMode != kWriteMovie) return;
    long number = 0;
    for (long i = 0; i < image->GetLayerCount(); ++i) {
        SmImagerFrame* const layer = image->GetLayer(i);
        if (!layer || !layer->GetSaveIntent()) continue;
        SmMediaTrack* track = mMedia->GetTrack(number++);
        if (!track) track = mMedia->NewTrack(kVideoTrack, SpecOfLayer(i));
        if (track) track->WriteFrames(layer, SmImagerFrame::Class(), frame, 1, 0, kOnlyFrame, nullptr);
    }
}

SmVideoSpec* SmImagerMovieWithMedia::SpecOfLayer(long index) {
    bool const isForAll = mTrackSpecs.Count() == 1;
    return mTrackSpecs.At(isForAll ? 0 : index);
}

void SmImagerMovieWithMedia::SetTrackSpec(long index, SmVideoSpec* spec) {
    if (index >= 0) mTrackSpecs.Put(index, spec);
}

SmVideoSpec* SmImagerMovieWithMedia::GetTrackSpec(long index) {
    return mTrackSpecs.At(index);
}

// --- length

long SmImagerMovieWithMedia::GetNumberOfFrames() {
    SmMediaTrack* const track = FirstVideoTrack();
    return track ? track->NumberOfFrames() : Entries().Count();
}

double SmImagerMovieWithMedia::GetDuration() {
    return imagery::CachedDuration(mDuration, mMedia.Get(), FirstVideoTrack(), GetFrameRate());
}

void SmImagerMovieWithMedia::SetFrameRate(float framesPerSecond) {
    mDuration = 0.0;
    SmImagerMovie::SetFrameRate(framesPerSecond);
}
