// Stands in, weakly, for the set-up routines whose own files are not in the tree yet.
#include "framewright/core/startup.h"

__attribute__((weak)) void SrRegisterBmp(bool) {}
