// AVI files. They need Video for Windows; without it the format is not registered, which is an ordinary
// state.
#include "framewright/core/startup.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitializeGlobalMedia);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitializeMappedLayers);
SR_DEPENDS_ON(SrRegisterAvi);

void SrRegisterAvi(bool) {}
