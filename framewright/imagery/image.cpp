// What images depend on. Being before the mipmaps in the load order, this file marks the scratch folders
// first.
#include "framewright/core/startup.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitializeGlobalMedia);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitializeScratch);
