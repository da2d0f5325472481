#include "framewright/imagery/track.h"

#include <cmath>
#include <memory>

#include "framewright/frame/frame.h"
#include "framewright/imagery/frame_time.h"
#include "framewright/imagery/mipmap.h"
#include "framewright/imagery/stereo.h"
#include "framewright/imagery/stereo_codes.h"
#include "framewright/thornmere/settings.h"

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
SR_DEPENDS_ON(SrInitializeTracks);

SM_DEFINE_CLASS(SmImagerTrack);

namespace {

using Flag = ScPersistentData<bool, ScNormalPersistentBehavior<bool>>;
std::unique_ptr<Flag> gMipmappingDisabled;

constexpr double kAlmostNoRate = 0.00001;

}  // namespace

// --- the preference

void SrInitializeTracks(bool terminate) {
    gMipmappingDisabled.reset();
    if (!terminate) gMipmappingDisabled = std::make_unique<Flag>(nullptr, "MIP Mapping disabled", false);
}

bool SrGetMipmapsEnabled() {
    return !gMipmappingDisabled || !gMipmappingDisabled->GetValue();
}
void SrSetMipmapsEnabled(bool enabled) {
    if (gMipmappingDisabled) gMipmappingDisabled->SetValue(!enabled);
}

// --- life

SmImagerTrack::SmImagerTrack() = default;
SmImagerTrack::~SmImagerTrack() = default;

void SmImagerTrack::IImagerTrack() {
    mFrameRate = 30.0F;
    mNumberOfFrames = 1;
}

void SmImagerTrack::CloneFrom(SmImagerTrack const& other) {
    SmObject::CloneFrom(other);
    mFrames.AppendClones(other.mFrames);
    mDesiredSize = other.mDesiredSize;
    mNumberOfFrames = other.mNumberOfFrames;
    mFrameRate = other.mFrameRate;
    mLoop = other.mLoop;
    mPingPong = other.mPingPong;
    mStereoArrangement = other.mStereoArrangement;
    mStereoFirstEye = other.mStereoFirstEye;
    mStereoGap = other.mStereoGap;
    mSizingMode = other.mSizingMode;
    mMipmapping = other.mMipmapping;
    mPrototypeFrame = other.mPrototypeFrame;
}

void SmImagerTrack::Free() {
    mFrames.Clear();
    mPrototypeFrame = nullptr;
    mLastStereoFrame = nullptr;
    SmObject::Free();
}

// --- frames

SmImagerFrame* SmImagerTrack::GetFrame(long frame, StLeftOrRight eye) {
    if (mStereoArrangement == imagery::kEyesAlternate)
        frame = frame / 2 + (mStereoFirstEye == imagery::kRightEye ? 1 : 0);
    SmImagerFrame* const stored = GetStoredFrame(frame);
    if (mStereoArrangement == 0) return AsMipmap(frame, stored);
    mLastStereoFrame =
        StRef<SmImagerFrame>::Adopt(SrStereoSubframe(stored, mStereoArrangement, eye, mStereoGap));
    return AsMipmap(frame, mLastStereoFrame.Get());
}

SmImagerFrame* SmImagerTrack::AsMipmap(long frame, SmImagerFrame* image) {
    if (!image || !mMipmapping || image->IsUVTriLinear()) return image;
    auto const mipmap = StRef<SmImagerFrame>::Adopt(SrMakeMipmapFromFrame(image));
    if (!mipmap) return image;
    SetFrame(frame, mipmap.Get());
    return mipmap.Get();
}

void SmImagerTrack::SaveFrame(long, StLeftOrRight) {}

void SmImagerTrack::SetFrame(long frame, SmImagerFrame* image) {
    mFrames.Put(frame, image);
}

void SmImagerTrack::ReleaseFrame(long frame) {
    mFrames.Drop(frame);
}

SmImagerFrame* SmImagerTrack::GetStoredFrame(long frame) {
    return mFrames.At(frame);
}

void SmImagerTrack::ClearFrames() {
    mFrames.Clear();
}

void SmImagerTrack::SetPrototypeFrame(SmImagerFrame* prototype) {
    mPrototypeFrame = prototype;
}
SmImagerFrame* SmImagerTrack::GetPrototypeFrame() {
    return mPrototypeFrame.Get();
}

// --- time

long SmImagerTrack::FrameNumberForTime(double seconds) {
    if (!mLoop) return imagery::FrameNumberForTime(seconds, mFrameRate);
    return imagery::LoopedFrameNumberForTime(seconds, mFrameRate, GetDuration(), mPingPong);
}

double SmImagerTrack::GetDuration() {
    double const rate = mFrameRate;
    return std::fabs(rate) > kAlmostNoRate ? mNumberOfFrames / rate : 0.0;
}

// --- fields

long SmImagerTrack::GetNumberOfFrames() {
    return mNumberOfFrames;
}
void SmImagerTrack::SetNumberOfFrames(long count) {
    mNumberOfFrames = static_cast<std::int32_t>(count);
}
float SmImagerTrack::GetFrameRate() {
    return mFrameRate;
}
void SmImagerTrack::SetFrameRate(float framesPerSecond) {
    mFrameRate = framesPerSecond;
}
void SmImagerTrack::GetLoop(bool& loop, bool& pingPong) {
    loop = mLoop;
    pingPong = mPingPong;
}
void SmImagerTrack::SetLoop(bool loop, bool pingPong) {
    mLoop = loop;
    mPingPong = pingPong;
}
StStereoArrangement SmImagerTrack::GetStereoArrangement() {
    return mStereoArrangement;
}
void SmImagerTrack::SetStereoArrangement(StStereoArrangement arrangement) {
    mStereoArrangement = arrangement;
}
StLeftOrRight SmImagerTrack::GetStereoFirstEye() {
    return mStereoFirstEye;
}
void SmImagerTrack::SetStereoFirstEye(StLeftOrRight eye) {
    mStereoFirstEye = eye;
}
long SmImagerTrack::GetStereoGap() {
    return mStereoGap;
}
void SmImagerTrack::SetStereoGap(long gap) {
    mStereoGap = static_cast<std::int32_t>(gap);
}
