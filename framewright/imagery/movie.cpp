#include "framewright/imagery/movie.h"

#include "framewright/core/startup.h"
#include "framewright/frame/frame.h"
#include "framewright/imagery/frame_time.h"
#include "framewright/imagery/image.h"
#include "framewright/imagery/mipmap.h"
#include "framewright/imagery/stereo.h"
#include "framewright/imagery/stereo_codes.h"
#include "framewright/thornmere/error.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitMipmaps);

SM_DEFINE_CLASS(SmImagerMovie);

namespace {

/// Numbers of frames have 32 bits; what passes them wraps.
std::int32_t Wrapped(std::int64_t number) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

}  // namespace

// --- life

SmImagerMovie::SmImagerMovie() = default;
SmImagerMovie::~SmImagerMovie() = default;

void SmImagerMovie::IImagerMovie() {}

void SmImagerMovie::CloneFrom(SmImagerMovie const& other) {
    SmObject::CloneFrom(other);
    mImages.AppendClones(other.mImages);
    mDesiredFrameSize = other.mDesiredFrameSize;
    mDuration = other.mDuration;
    mNumberOfFrames = other.mNumberOfFrames;
    mFrameRate = other.mFrameRate;
    mLoop = other.mLoop;
    mPingPong = other.mPingPong;
    mStereoArrangement = other.mStereoArrangement;
    mStereoFirstEye = other.mStereoFirstEye;
    mStereoGap = other.mStereoGap;
    mSizingMode = other.mSizingMode;
    mMipmapping = other.mMipmapping;
    mPrototypeImage = other.mPrototypeImage;
    mLeftImage = other.mLeftImage;
    mRightImage = other.mRightImage;
    mCachedSource = other.mCachedSource;
    mCachedFrame = other.mCachedFrame;
    mCachedGap = other.mCachedGap;
}

void SmImagerMovie::Free() {
    ClearAll();
    mPrototypeImage = nullptr;
    mLentImage = nullptr;
    SmObject::Free();
}

// --- images

long SmImagerMovie::EntryNumber(long frame, StLeftOrRight eye) const {
    if (mStereoArrangement != imagery::kEyesAlternate) return frame;
    bool const second = (mStereoFirstEye == imagery::kRightEye && eye == imagery::kLeftEye) ||
                        (mStereoFirstEye == imagery::kLeftEye && eye == imagery::kRightEye);
    return Wrapped(2 * std::int64_t{Wrapped(frame)} + (second ? 1 : 0));
}

SmImagerImage* SmImagerMovie::GetImage(long frame, StLeftOrRight eye) {
    frame = EntryNumber(frame, eye);
    bool const isStereo = mStereoArrangement != 0 && mStereoFirstEye != 0 && eye != 0;
    SmImagerImage* const image = isStereo ? CutEye(frame, eye) : GetStoredImage(frame);
    mLentImage = nullptr;
    if (image && mMipmapping) MakeMipmaps(frame, image);
    return image;
}

SmImagerImage* SmImagerMovie::CutEye(long frame, StLeftOrRight eye) {
    SmImagerImage* source = GetStoredImage(frame);
    if (!source && frame > 0) source = GetStoredImage(frame % 2);
    if (!source) source = GetStoredImage(0);
    SrThrowIfNIL(source);

    bool const isValid = mCachedSource == source && mCachedFrame == frame && mCachedGap == mStereoGap;
    StRef<SmImagerImage>& cached = eye == imagery::kLeftEye ? mLeftImage : mRightImage;
    if (cached && isValid) return cached.Get();

    StLeftOrRight const mirrored = eye == imagery::kLeftEye ? imagery::kRightEye : imagery::kLeftEye;
    StLeftOrRight const half = mStereoFirstEye == imagery::kLeftEye ? eye : mirrored;
    auto cut = StRef<SmImagerImage>::Adopt(SrStereoSubimage(source, mStereoArrangement, half, mStereoGap));
    if (!isValid) {
        DropEyes();
        mCachedSource = source;
        mCachedFrame = Wrapped(frame);
        mCachedGap = mStereoGap;
    }
    cached = std::move(cut);
    return cached.Get();
}

void SmImagerMovie::MakeMipmaps(long frame, StRef<SmImagerImage> image) {
    SmImagerFrame* const color = image->GetColorLayer();
    if (!color || color->IsUVTriLinear()) return;
    for (long i = 0; i < image->GetLayerCount(); ++i) {
        SmImagerFrame* const layer = image->GetLayer(i);
        if (!layer) continue;
        auto const mipmap = StRef<SmImagerFrame>::Adopt(SrMakeMipmapFromFrame(layer));
        if (mipmap) SetLayerOfImage(frame, i, mipmap.Get());
    }
    // A new layer drops the eyes that were cut before, and this image may be one of them.
    if (image->ReferenceCount() == 1) mLentImage = std::move(image);
}

void SmImagerMovie::SaveImage(long, StLeftOrRight) {}

void SmImagerMovie::SetImage(long frame, SmImagerImage* image, bool adoptSize) {
    if (frame < 0) frame = 0;
    Replace(frame, image);
    DropEyesOf(frame);
    if (adoptSize && image) mDesiredFrameSize = image->GetSize();
}

void SmImagerMovie::SetLayerOfImage(long frame, long index, SmImagerFrame* layer) {
    if (frame < 0) frame = 0;
    if (!mImages.At(frame)) {
        auto const image = StRef<SmImagerImage>::Adopt(layer ? SmImagerImage::New() : nullptr);
        if (layer) SrThrowIfNIL(image.Get());
        mImages.Put(frame, image.Get());
    }
    if (SmImagerImage* const image = mImages.At(frame)) image->SetLayer(index, layer);
    DropEyesOf(frame);
}

void SmImagerMovie::ReleaseImage(long frame) {
    if (mImages.At(frame)) Replace(frame, nullptr);
    DropEyesOf(frame);
}

void SmImagerMovie::Replace(long frame, SmImagerImage* image) {
    // An image that goes may have its address taken by another one.
    if (mImages.At(frame) == mCachedSource && image != mCachedSource) mCachedSource = nullptr;
    mImages.Put(frame, image);
}

SmImagerImage* SmImagerMovie::GetStoredImage(long frame) {
    return mImages.At(frame);
}

void SmImagerMovie::ClearAll() {
    mImages.Clear();
    mCachedSource = nullptr;
    DropEyes();
}

void SmImagerMovie::DropEyesOf(long frame) {
    if (frame == mCachedFrame) DropEyes();
}

void SmImagerMovie::DropEyes() {
    mLeftImage = nullptr;
    mRightImage = nullptr;
}

void SmImagerMovie::SetPrototypeImage(SmImagerImage* prototype) {
    mPrototypeImage = prototype;
}
SmImagerImage* SmImagerMovie::GetPrototypeImage() {
    return mPrototypeImage.Get();
}

// --- fields

long SmImagerMovie::FrameNumberForTime(double seconds) {
    if (!mLoop) return imagery::FrameNumberForTime(seconds, mFrameRate);
    return imagery::LoopedFrameNumberForTime(seconds, mFrameRate, GetDuration(), mPingPong);
}

float SmImagerMovie::GetFrameRate() {
    return mFrameRate;
}
void SmImagerMovie::SetFrameRate(float framesPerSecond) {
    mFrameRate = framesPerSecond;
}
void SmImagerMovie::GetLoop(bool& loop, bool& pingPong) {
    loop = mLoop;
    pingPong = mPingPong;
}
void SmImagerMovie::SetLoop(bool loop, bool pingPong) {
    mLoop = loop;
    mPingPong = pingPong;
}
StStereoArrangement SmImagerMovie::GetStereoArrangement() {
    return mStereoArrangement;
}
void SmImagerMovie::SetStereoArrangement(StStereoArrangement arrangement) {
    mStereoArrangement = arrangement;
}
StLeftOrRight SmImagerMovie::GetStereoFirstEye() {
    return mStereoFirstEye;
}
void SmImagerMovie::SetStereoFirstEye(StLeftOrRight eye) {
    mStereoFirstEye = eye;
}
long SmImagerMovie::GetStereoGap() {
    return mStereoGap;
}
void SmImagerMovie::SetStereoGap(long gap) {
    mStereoGap = Wrapped(gap);
    DropEyes();
}

bool SmImagerMovie::GetAdjustedFrameSize(StPoint& size) {
    size = mDesiredFrameSize;
    bool const isAbove = mStereoArrangement == imagery::kEyesAbove;
    if (!isAbove && mStereoArrangement != imagery::kEyesBeside) return false;
    std::int32_t& side = isAbove ? size.vertical : size.horizontal;
    side = Wrapped(2 * std::int64_t{side} + mStereoGap);
    return true;
}
