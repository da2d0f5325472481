// Mipmaps. This build has no mipmapped layers, so there are no prototypes to enter.
#include "framewright/core/startup.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitMipmaps);

void SrInitMipmaps(bool) {}
