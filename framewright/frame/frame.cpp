#include "framewright/frame/frame.h"

#include "framewright/core/startup.h"
#include "framewright/frame/frame_globals.h"
#include "framewright/frame/registries.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitializeMappedLayers);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrRegisterPict);
SR_DEPENDS_ON(SrRegisterResPict);

SM_DEFINE_CLASS(SmImagerFrame);

static long const gFrameErrors[2] = {SrAllocateError(nullptr), SrAllocateError(nullptr)};

static ScLayerRegistry::Registry gLayers;
static ScLayerNameRegistry::Registry gLayerNames;
static ScLayerPurposeRegistry::Registry gLayerPurposes;

long frame::NoSuchLayerError() {
    return gFrameErrors[0];
}

long frame::UnknownLayerClassError() {
    return gFrameErrors[1];
}

long frame::gSpoolThresholdHeight = 64;
long frame::gSpoolThresholdWidth = 64;

ScLayerRegistry::Registry& ScLayerRegistry::Global() {
    return gLayers;
}

ScLayerNameRegistry::Registry& ScLayerNameRegistry::Global() {
    return gLayerNames;
}

ScLayerPurposeRegistry::Registry& ScLayerPurposeRegistry::Global() {
    return gLayerPurposes;
}

SmImagerFrame* ScLayerRegistry::GetObjectByIndex(int index) {
    ScMC_* key = nullptr;
    SmImagerFrame* prototype = nullptr;
    ScRegistryFacade::GetObjectByIndex(index, key, prototype);
    return prototype;
}

ScLayerRegistry* SrGetLayerRegistry() {
    static ScLayerRegistry registry;
    return &registry;
}

ScLayerNameRegistry* SrGetLayerNameRegistry() {
    static ScLayerNameRegistry registry;
    return &registry;
}

ScLayerPurposeRegistry* SrGetLayerPurposeRegistry() {
    static ScLayerPurposeRegistry registry;
    return &registry;
}

SmImagerFrame::~SmImagerFrame() = default;

void SmImagerFrame::Free() {
    SmObject::Free();
}

void SmImagerFrame::CloneFrom(SmImagerFrame const& other) {
    SmObject::CloneFrom(other);
    mTopLeft = other.mTopLeft;
    mSize = other.mSize;
    mPurpose = other.mPurpose;
    mDithering = other.mDithering;
    mStreamingCompression = other.mStreamingCompression;
    mSaveIntent = other.mSaveIntent;
}

StPoint SmImagerFrame::GetSize() {
    return mSize;
}

StPoint SmImagerFrame::GetTopLeft() {
    return mTopLeft;
}

StPoint SmImagerFrame::GetOriginalSize() {
    return mSize;
}

long SmImagerFrame::GetPurpose() {
    return mPurpose;
}

void SmImagerFrame::SetPurpose(long purpose) {
    mPurpose = static_cast<std::int32_t>(purpose);
}

bool SmImagerFrame::IsUVTriLinear() {
    return false;
}

void SmImagerFrame::CopyFromLayer(SmImagerFrame* source) {
    StPoint const sourceSize = source->GetSize();
    StPoint const size = GetSize();
    if (sourceSize == size) {
        BlitRect(source, SrWholeRect(size), {0, 0});
    } else {
        StretchBlit(source, SrWholeRect(sourceSize), SrWholeRect(size));
    }
}

void SmImagerFrame::SetDithering(unsigned long dithering) {
    mDithering = static_cast<std::uint32_t>(dithering);
}

unsigned long SmImagerFrame::GetDithering() {
    return mDithering;
}

void SmImagerFrame::SetStreamingCompression(unsigned short compression) {
    mStreamingCompression = compression;
}
