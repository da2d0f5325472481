// Pictures in resources. The first source file of the load order: its declarations, in the order of the
// start-up table, are the first marks of the routines from SrInitMemory to SrRegisterPict.
#include "framewright/core/startup.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrRegisterResPict);
SR_DEPENDS_ON(SrInitializeGlobalMedia);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitializeMappedLayers);
SR_DEPENDS_ON(SrRegisterPict);

void SrRegisterResPict(bool) {}
