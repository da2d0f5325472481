// What QuickDraw knows of colour tables.
#pragma once

#include "framewright/platform/quickdraw_types.h"

/// A seed that no other table of this process has.
std::int32_t GetCTSeed();

/// A new handle on a copy of the system's table of that id, null when memory is refused. Without QuickDraw
/// there are no such tables, and the copy has no entries. The caller disposes of it with SrDeallocateHandle.
ColorTable** GetCTable(short id);
