// The dithered and mapped layers, in the registries.
#include "framewright/core/startup.h"
#include "framewright/frame/layer_registration.h"
#include "framewright/pixel/dithered_layer.h"
#include "framewright/pixel/mapped_layer.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitializeMappedLayers);

namespace {

// Their prototypes are initialised as plain layers are, and so have neither a map nor a row of errors.
constexpr frame::StLayerRow kLayers[] = {
    frame::RowOfLayer<SmImagerDitheredLayer<StRGB15Pixel, ScImagerNonSpool>>(12),
    frame::RowOfLayer<SmImagerMappedLayer<StMapped8Pixel, ScImagerNonSpool>>(13),
    frame::RowOfLayer<SmImagerMappedLayer<StMapped4Pixel, ScImagerNonSpool>>(18),
    frame::RowOfLayer<SmImagerMappedLayer<StMapped2Pixel, ScImagerNonSpool>>(19),
    frame::RowOfLayer<SmImagerMappedLayer<StMapped1Pixel, ScImagerNonSpool>>(20),
};

}  // namespace

void SrInitializeMappedLayers(bool terminate) {
    if (terminate)
        frame::UnRegisterLayers(kLayers);
    else
        frame::RegisterLayers(kLayers);
}
