// The standard layers and the layer purposes, in the registries.
#include "framewright/core/startup.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/layer_registration.h"
#include "framewright/frame/registries.h"
#include "framewright/thornmere/string_lists.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);

namespace {

template <class Pixel>
constexpr frame::StLayerRow Row(long nameIndex) {
    return frame::RowOfLayer<SmImagerLayer<Pixel, ScImagerNonSpool>>(nameIndex);
}

// Layers of words without alpha, of floats, and plain layers of 15 bits or of indices have no prototype: they
// are reached by their own New.
constexpr frame::StLayerRow kStandardLayers[] = {
    //  record             name
    Row<StRGBA32Pixel>(1),   Row<StRGB32Pixel>(2),       Row<StDepthFloatPixel>(5), Row<StRGBA64Pixel>(9),
    Row<StGray8Pixel>(14),   Row<StGray4Pixel>(16),      Row<StGray2Pixel>(17),     Row<StAlpha8Pixel>(3),
    Row<StAlpha32Pixel>(10), Row<StBlackWhitePixel>(11), Row<StRGB24Pixel>(4),      Row<StCMYKPixel>(15),
};

struct StPurposeRow {
    std::uint32_t code;
    long nameIndex;
};

constexpr StPurposeRow kPurposes[] = {
    {SrCode("VIEW"), 2}, {SrCode("DEPT"), 3}, {SrCode("TEXP"), 4}, {SrCode("ILLU"), 5},
    {SrCode("VELO"), 6}, {SrCode("OBIN"), 7}, {kUnknownCode, 1},
};

long PurposeKey(StPurposeRow const& row) {
    return static_cast<std::int32_t>(row.code);
}

void RegisterPurposes() {
    SrThrowIfNIL(SrGetLayerPurposeRegistry());
    for (StPurposeRow const& row : kPurposes) {
        char const* present = nullptr;
        if (ScLayerPurposeRegistry::GetObjectByID(PurposeKey(row), false, present)) continue;
        ScString63 name;
        SrGetIndexedString(name, kPurposeNameStrings, row.nameIndex);
        ScLayerPurposeRegistry::RegisterObject(PurposeKey(row), name.AsCString());
    }
}

void UnRegisterPurposes() {
    if (!SrGetLayerPurposeRegistry()) return;
    for (StPurposeRow const& row : kPurposes)
        ScLayerPurposeRegistry::UnRegisterObject(PurposeKey(row));
}

}  // namespace

void SrInitializeLayerRegistries(bool terminate) {
    if (terminate) {
        frame::UnRegisterLayers(kStandardLayers);
        UnRegisterPurposes();
    } else {
        frame::RegisterLayers(kStandardLayers);
        RegisterPurposes();
    }
    frame::InitializeDepthLayers(terminate);
}
