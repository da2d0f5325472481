// How large a frame may be. Sizes come from files and from arithmetic of callers; a frame over the limit is
// refused with -108 before anything is allocated.
#pragma once

#include <cstdint>

#include "framewright/thornmere/export.h"

/// The greatest number of bytes that the rows of one frame, or its table of rows, may take: 2^31 unless set.
FRAMEWRIGHT_EXPORT std::uint64_t SrGetFrameSizeLimit();
/// Sets it, for frames made or resized from now on. It is one setting for the process and not locked: set it
/// while no frame is being made.
FRAMEWRIGHT_EXPORT void SrSetFrameSizeLimit(std::uint64_t bytes);
