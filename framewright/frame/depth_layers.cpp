// The layers of integer depths, in the registries.
#include "framewright/core/startup.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/layer_registration.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);

static constexpr frame::StLayerRow kDepthLayers[] = {
    frame::RowOfLayer<SmImagerLayer<StDepthUInt8Pixel, ScImagerNonSpool>>(21),
    frame::RowOfLayer<SmImagerLayer<StDepthUInt16Pixel, ScImagerNonSpool>>(22),
    frame::RowOfLayer<SmImagerLayer<StDepthUInt24Pixel, ScImagerNonSpool>>(23),
    frame::RowOfLayer<SmImagerLayer<StDepthUInt32Pixel, ScImagerNonSpool>>(24),
};

void frame::InitializeDepthLayers(bool terminate) {
    if (terminate) {
        UnRegisterLayers(kDepthLayers);
    } else {
        RegisterLayers(kDepthLayers);
    }
}
