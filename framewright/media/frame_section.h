// A frame in a catalog, at a media location.
#pragma once

#include "framewright/frame/frame_stream.h"
#include "framewright/thornmere/export.h"

class ScMediaLocation;

/// The first frame in the catalog at `location` whose section has that version (SrImagerFrameToStream writes
/// 0x100); the caller has the one reference. Null when there is none, or no catalog. -108 when the location
/// gives no stream. The last parameter has no meaning.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrImagerFrameFromStream(ScMediaLocation* location, unsigned long version,
                                                          bool unused);
