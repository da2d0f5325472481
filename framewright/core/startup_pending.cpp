// Stands in, weakly, for the set-up routines whose own files are not in the tree yet.
#include "framewright/core/startup.h"

#define WEAK __attribute__((weak))
WEAK void SrRegisterTrackTypeNames(bool) {}
WEAK void SrInitializeGlobalMedia(bool) {}
WEAK void SrInitializeTracks(bool) {}
WEAK void SrRegisterBmp(bool) {}
