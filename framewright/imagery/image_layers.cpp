// The list of layers of an image, its three slots, and its other layers by purpose.
#include <algorithm>
#include <cstdint>

#include "framewright/frame/frame.h"
#include "framewright/frame/frame_globals.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/registries.h"
#include "framewright/imagery/image.h"
#include "framewright/spool/spool_manager.h"
#include "framewright/spool/spool_preferences.h"

namespace {

// Families.
constexpr std::uint32_t kColor = SrCode("ColF");
constexpr std::uint32_t kDepth = SrCode("DepF");
constexpr std::uint32_t kOpacity = SrCode("AlpF");

// Kinds.
constexpr unsigned char kColorKind = 0;
constexpr unsigned char kDepthKind = 1;
constexpr unsigned char kMaskKind = 2;

// Purposes.
constexpr long kView = SrCode("VIEW");
constexpr long kDepthPurpose = SrCode("DEPT");

// A band of an image that has no size.
constexpr std::uint32_t kRowsOfNone = 480;
constexpr std::uint32_t kRowBytesOfNone = 2560;
constexpr std::uint32_t kBytesOfPixel = 4;

/// The alert that says that there is no layer of a class.
constexpr long kUnknownLayerAlert = 3;

/// Indices have 32 bits.
constexpr long kLastIndex = INT32_MAX;

void TakePurposeIfNone(SmImagerFrame& frame, long purpose) {
    if (frame.GetPurpose() == static_cast<long>(kUnknownCode)) frame.SetPurpose(purpose);
}

template <class Pixel, class Spool>
SmImagerFrame* NewLayer(StPoint const& size) {
    using Layer = SmImagerLayer<Pixel, Spool>;
    auto layer = StRef<Layer>::Adopt(Layer::New());
    SrThrowIfNIL(layer.Get());
    layer->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
    return layer.Release();
}

template <class Pixel>
SmImagerFrame* NewLayer(StPoint const& size, bool spool) {
    return spool ? NewLayer<Pixel, ScImagerSpool>(size) : NewLayer<Pixel, ScImagerNonSpool>(size);
}

[[noreturn]] void ThrowUnknownLayer() {
    ScMessageBuzzStrings message(SkAlertStrings(), kUnknownLayerAlert, 1, 1, SkSimpleAlert());
    SrThrow(frame::UnknownLayerClassError(), &message);
}

}  // namespace

// --- the list

long SmImagerImage::GetLayerCount() {
    return static_cast<long>(mLayers.size());
}

SmImagerFrame* SmImagerImage::GetLayer(long index) {
    auto const place = static_cast<std::size_t>(index);
    return place < mLayers.size() ? mLayers[place].Get() : nullptr;
}

void SmImagerImage::AddLayer(SmImagerFrame* frame) {
    if (!frame) SrThrow(SkInternalRefusal(), nullptr);
    mLayers.push_back(frame);
    unsigned long const family = frame->FamilyID();
    bool const isColor = family == kColor && !mColorLayer;
    if (isColor) {
        mColorLayer = frame;
        mSize = frame->GetSize();
        TakePurposeIfNone(*frame, kView);
    } else if (family == kDepth && !mDepthLayer) {
        mDepthLayer = frame;
        TakePurposeIfNone(*frame, kDepthPurpose);
    }
    frame->SetSaveIntent(isColor);
    if (!mColorLayer) mSize = frame->GetSize();
}

void SmImagerImage::RemoveLayer(SmImagerFrame* frame) {
    auto const entry = std::find_if(mLayers.begin(), mLayers.end(),
                                    [&](StRef<SmImagerFrame> const& layer) { return layer.Get() == frame; });
    if (entry == mLayers.end()) return;
    if (mColorLayer == frame) mColorLayer = nullptr;
    if (mDepthLayer == frame) mDepthLayer = nullptr;
    if (mMaskLayer == frame) mFormerMask = frame;
    mLayers.erase(entry);
}

void SmImagerImage::SetLayer(long index, SmImagerFrame* frame) {
    if (index < 0) SrThrow(SkInternalRefusal(), nullptr);
    if (index > kLastIndex) SrThrow(SkMemoryFull(), nullptr);
    auto const place = static_cast<std::size_t>(index);
    if (place >= mLayers.size()) mLayers.resize(place + 1);
    StRef<SmImagerFrame>& entry = mLayers[place];
    if (entry && mColorLayer == entry.Get()) mColorLayer = nullptr;
    if (entry && mDepthLayer == entry.Get()) mDepthLayer = nullptr;
    if (entry && mMaskLayer == entry.Get()) mFormerMask = entry;
    entry = frame;
    if (!frame) return;

    unsigned long const family = frame->FamilyID();
    if (family == kColor && !mColorLayer) {
        mColorLayer = frame;
        mSize = frame->GetSize();
    } else if (family == kDepth && !mDepthLayer) {
        mDepthLayer = frame;
    } else if (family == kOpacity && !mMaskLayer) {
        mMaskLayer = frame;
    }
    if (!mColorLayer) mSize = frame->GetSize();
}

// --- kinds

SmImagerFrame* SmImagerImage::GetColorLayer() {
    return mColorLayer;
}

SmImagerFrame* SmImagerImage::GetDepthLayer() {
    return mDepthLayer;
}

SmImagerFrame* SmImagerImage::GetMaskLayer() {
    return mMaskLayer;
}

SmImagerFrame* SmImagerImage::GetLayerByKind(unsigned char kind) {
    switch (kind) {
        case kColorKind:
            return mColorLayer;
        case kDepthKind:
            return mDepthLayer;
        case kMaskKind:
            return mMaskLayer;
    }
    for (StRef<SmImagerFrame> const& layer : mLayers) {
        if (layer && layer->FamilyID() == kind) return layer.Get();
    }
    return nullptr;
}

bool SmImagerImage::HasLayer(unsigned char kind) {
    return GetLayerByKind(kind) != nullptr;
}

SmImagerFrame* SmImagerImage::MakeLayer(unsigned char kind, bool spool) {
    switch (kind) {
        case kColorKind:
            return NewLayer<StRGBA32Pixel>(mSize, spool);
        case kDepthKind:
            return NewLayer<StDepthFloatPixel>(mSize, spool);
        case kMaskKind:
            return NewLayer<StAlpha8Pixel>(mSize, spool);
    }
    return nullptr;
}

void* SmImagerImage::LockLayerRow(unsigned char kind, long row) {
    SmImagerFrame* const layer = GetLayerByKind(kind);
    return layer ? layer->LockRow(row) : nullptr;
}

void SmImagerImage::UnlockLayerRow(unsigned char kind, long row) {
    if (SmImagerFrame* const layer = GetLayerByKind(kind)) layer->UnlockRow(row);
}

// --- all layers at once

bool SmImagerImage::LockRows(long first, long last) {
    std::size_t locked = 0;
    auto const giveBack = [&] {
        for (std::size_t i = 0; i < locked; ++i)
            if (mLayers[i]) mLayers[i]->UnlockRows(first, last);
    };
    try {
        for (; locked < mLayers.size(); ++locked) {
            if (!mLayers[locked] || mLayers[locked]->LockRows(first, last)) continue;
            giveBack();
            return false;
        }
    } catch (...) {
        giveBack();
        throw;
    }
    return true;
}

void SmImagerImage::UnlockRows(long first, long last) {
    for (StRef<SmImagerFrame> const& layer : mLayers)
        if (layer) layer->UnlockRows(first, last);
}

bool SmImagerImage::GetBandHeight(unsigned& rows, float fraction) {
    if (!SrGetImageSpoolingState()) {
        rows = mSize.vertical ? static_cast<unsigned>(mSize.vertical) : kRowsOfNone;
        return false;
    }
    std::uint32_t rowBytes = 0;
    for (StRef<SmImagerFrame> const& layer : mLayers)
        if (layer) rowBytes += static_cast<std::uint32_t>(layer->BytesPerRow());
    if (!rowBytes) rowBytes = static_cast<std::uint32_t>(mSize.horizontal) * kBytesOfPixel;
    if (!rowBytes) rowBytes = kRowBytesOfNone;
    SmSpoolManager* const manager = SrGetGlobalSpoolManager();
    unsigned const memory = manager ? manager->AvailableMemory(fraction) : 0;
    rows = std::max(memory / rowBytes, 1u);
    return true;
}

bool SrImagerErase(SmImagerImage* image, bool colorOnly) {
    if (colorOnly) {
        SmImagerFrame* const color = image->GetColorLayer();
        if (color) color->Erase();
        return color != nullptr;
    }
    bool erased = false;
    long const count = image->GetLayerCount();
    for (long i = 0; i < count; ++i) {
        SmImagerFrame* const layer = image->GetLayer(i);
        if (!layer) continue;
        layer->Erase();
        erased = true;
    }
    return erased;
}

// --- purposes

SmImagerFrame* SrGetPurposedLayer(SmImagerImage* image, long purpose) {
    long const count = image->GetLayerCount();
    for (long i = 0; i < count; ++i) {
        SmImagerFrame* const layer = image->GetLayer(i);
        // Codes have 32 bits, however they were widened.
        if (layer && static_cast<std::uint32_t>(layer->GetPurpose()) == static_cast<std::uint32_t>(purpose)) {
            return layer;
        }
    }
    return nullptr;
}

SmImagerFrame* SrAddPurposedLayer(SmImagerImage* image, long purpose, ScMC_* cls) {
    if (SmImagerFrame* const layer = SrGetPurposedLayer(image, purpose)) return layer;
    SmImagerFrame* prototype = nullptr;
    if (!SrGetLayerRegistry()->GetObjectByID(cls, false, prototype)) ThrowUnknownLayer();
    auto const layer = StRef<SmImagerFrame>::Adopt(
        prototype->CloneAtNewSize(image->GetSize(), SrGetImageSpoolingState(), false));
    SrThrowIfNIL(layer.Get());
    layer->SetPurpose(purpose);
    image->AddLayer(layer.Get());
    return layer.Get();
}
