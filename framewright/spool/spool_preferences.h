// The three persistent flags that say whether new rasters spool. They exist from set-up to shut-down: before
// and after, reading one gives false and writing one does nothing.
#pragma once

#include "framewright/thornmere/export.h"

/// "Default rendering spooling state", false at first: whether SrMakeFrameWithSpooling may put rows into
/// spool files.
FRAMEWRIGHT_EXPORT bool SrGetImageSpoolingState();
FRAMEWRIGHT_EXPORT void SrSetImageSpoolingState(bool state);

/// "Default image map spooling state", false at first: whether image maps that are read from media may.
/// Nothing in the library writes it.
bool SrGetImageMapSpoolingState();

/// "Optimize image-maps", true at first. The library keeps it for the host and never reads it.
FRAMEWRIGHT_EXPORT bool SrGetImageOptimization();
FRAMEWRIGHT_EXPORT void SrSetImageOptimization(bool state);

namespace spool {

/// Makes the three flags anew, each with the value that the settings file holds, else its default.
void MakePreferences();
void DisposePreferences();

}  // namespace spool
