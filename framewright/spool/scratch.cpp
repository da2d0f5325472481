// Scratch folders. No folder can be added in this build, so shut-down has none to release.
#include "framewright/core/startup.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitializeScratch);

void SrInitializeScratch(bool) {}
