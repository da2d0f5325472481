#pragma once

#include "framewright/spool/scratch.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/vector.h"

namespace spool {

/// The scratch folders, in the order in which they were added.
ScVector<StRef<SmScratchLocation>> const& ScratchLocations();

}  // namespace spool
