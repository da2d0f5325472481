// Life and fields of images. Being before the mipmaps in the load order, this file marks the scratch folders
// first.
#include "framewright/imagery/image.h"

#include "framewright/core/startup.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/pixel/gamut.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitializeGlobalMedia);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitializeScratch);

SM_DEFINE_CLASS(SmImagerImage);

SmImagerImage::SmImagerImage() {
    MakeFillPixels();
}

SmImagerImage::~SmImagerImage() = default;

void SmImagerImage::IImagerImage() {
    mSize = {1, 1};
    ScGamut* const gamut = new ScClippedGamut;
    SrThrowIfNIL(gamut);
    SetGamut(gamut);
}

void SmImagerImage::Free() {
    mLayers.clear();
    mCallbacks.clear();
    mColorLayer = mDepthLayer = mMaskLayer = nullptr;
    mFormerMask = nullptr;
    delete mGamut;
    mGamut = nullptr;
    SmObject::Free();
}

void SmImagerImage::CloneFrom(SmImagerImage const& other) {
    SmObject::CloneFrom(other);
    mSize = other.mSize;
    mResolution = other.mResolution;
    for (StRef<SmImagerFrame> const& layer : other.mLayers) {
        if (layer) AddLayer(StRef<SmImagerFrame>::Adopt(layer->Clone()).Get());
    }
    mCallbacks = other.mCallbacks;
    if (other.mGamut) mGamut = other.mGamut->Clone();
}

StPoint SmImagerImage::GetSize() {
    return mSize;
}

void SmImagerImage::SetSize(StPoint const& size) {
    mSize = size;
}

StFloatPoint SmImagerImage::GetResolution() {
    return mResolution;
}

void SmImagerImage::SetResolution(StFloatPoint const& resolution) {
    mResolution = resolution;
}

void SmImagerImage::SetGamut(ScGamut* gamut) {
    if (gamut == mGamut) return;
    delete mGamut;
    mGamut = gamut;
}

ScGamut* SmImagerImage::GetGamut() {
    return mGamut;
}

void SmImagerImage::AddCallback(ScLayerCallback* callback) {
    mCallbacks.push_back(callback);
}

void SmImagerImage::MatchLayers(SmImagerImage*) {}

void SmImagerImage::PrepareBand(long, long, long) {}

SmImagerImage* SmImagerImage::CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) {
    auto image = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
    SrThrowIfNIL(image.Get());
    image->IImagerImage();
    image->SetSize(size);
    long const count = GetLayerCount();
    for (long i = 0; i < count; ++i) {
        SmImagerFrame* const layer = GetLayer(i);
        StRef<SmImagerFrame> clone;
        if (layer) clone = StRef<SmImagerFrame>::Adopt(layer->CloneAtNewSize(size, spooled, nativeBitmap));
        image->SetLayer(i, clone.Get());
    }
    return image.Release();
}

SmImagerImage* SrMakeImage(StPoint const& size, unsigned long pixelType, bool spoolIfLarge) {
    auto image = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
    SrThrowIfNIL(image.Get());
    image->IImagerImage();
    image->SetSize(size);
    auto const frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame(size, pixelType, spoolIfLarge, false));
    image->SetLayer(0, frame.Get());
    return image.Release();
}
