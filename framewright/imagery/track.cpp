#include "framewright/imagery/track.h"

#include <cmath>
#include <memory>

#include "framewright/frame/frame.h"
#include "framewright/thornmere/numbers.h"
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

constexpr StStereoArrangement kAlternatingEyes = 4;
constexpr double kAlmostNoRate = 0.00001;
constexpr double kAlmostNoDuration = 1e-10;
constexpr double kFrameSlack = 0.00001;
// Entries have 32-bit numbers.
constexpr long kLastEntry = INT32_MAX;

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
    mFrames.reserve(other.mFrames.size());
    for (StRef<SmImagerFrame> const& frame : other.mFrames)
        mFrames.push_back(StRef<SmImagerFrame>::Adopt(frame ? frame->Clone() : nullptr));
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
    mFrames.clear();
    mPrototypeFrame = nullptr;
    SmObject::Free();
}

// --- frames

SmImagerFrame* SmImagerTrack::GetFrame(long frame, StLeftOrRight) {
    if (mStereoArrangement == kAlternatingEyes) frame = frame / 2 + (mStereoFirstEye == 2 ? 1 : 0);
    return GetStoredFrame(frame);
}

void SmImagerTrack::SaveFrame(long, StLeftOrRight) {}

void SmImagerTrack::SetFrame(long frame, SmImagerFrame* image) {
    if (frame < 0) frame = 0;
    if (frame > kLastEntry) SrThrow(SkMemoryFull(), nullptr);
    auto const entry = static_cast<std::size_t>(frame);
    while (mFrames.size() <= entry)
        mFrames.push_back(nullptr);
    mFrames[entry] = image;
}

void SmImagerTrack::ReleaseFrame(long frame) {
    if (GetStoredEntry(frame)) mFrames[static_cast<std::size_t>(frame)] = nullptr;
}

SmImagerFrame* SmImagerTrack::GetStoredFrame(long frame) {
    return GetStoredEntry(frame);
}

SmImagerFrame* SmImagerTrack::GetStoredEntry(long frame) {
    bool const there = frame >= 0 && static_cast<std::size_t>(frame) < mFrames.size();
    return there ? mFrames[static_cast<std::size_t>(frame)].Get() : nullptr;
}

void SmImagerTrack::ClearFrames() {
    mFrames.clear();
}

void SmImagerTrack::SetPrototypeFrame(SmImagerFrame* prototype) {
    mPrototypeFrame = prototype;
}
SmImagerFrame* SmImagerTrack::GetPrototypeFrame() {
    return mPrototypeFrame.Get();
}

// --- time

long SmImagerTrack::FrameNumberForTime(double seconds) {
    if (!mLoop) {
        float const value = mFrameRate * static_cast<float>(seconds) + static_cast<float>(kFrameSlack);
        return SrITrunc(std::floor(value));
    }
    double const duration = GetDuration();
    if (!(std::fabs(duration) > kAlmostNoDuration)) return 0;
    std::int32_t const cycle = SrITrunc(std::floor(seconds / duration));
    double rest = seconds - cycle * duration;
    if (mPingPong && cycle % 2 != 0) rest = duration - rest;
    return SrITrunc(std::floor(mFrameRate * rest + kFrameSlack));
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
