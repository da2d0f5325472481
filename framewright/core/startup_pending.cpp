// Stands in, weakly, for the set-up routines whose own files are not in the tree yet.
#include "framewright/core/startup.h"

#define WEAK __attribute__((weak))
WEAK void SrRegisterBmp(bool) {}
