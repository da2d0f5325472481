// The frame factory: from a wish - this size, this pixel type, spooled or not - to a frame, without naming a
// class. Each registered pixel type has a prototype in ScLayerRegistry, and a new frame is a clone of it at
// the wanted size; layer classes of other modules take part by registering.
//
// Every maker returns a frame with one reference for the caller, or null for a pixel type that has no
// prototype. Pixels are not set. Memory that is refused throws -108, and so does a size that is negative or
// over SrGetFrameSizeLimit().
#pragma once

#include "framewright/core/startup.h"
#include "framewright/frame/frame.h"
#include "framewright/thornmere/export.h"

/// Spooled when the frame is big (more than 64 rows and more than 64 columns) and `spoolIfLarge` is true.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrMakeFrame(StPoint const& size, unsigned long pixelID, bool spoolIfLarge,
                                              bool nativeBitmap);
/// Spooled when the frame is big and the preference SrGetImageSpoolingState() is true.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrMakeFrameWithSpooling(StPoint const& size, unsigned long pixelID,
                                                          bool nativeBitmap);
/// Spooled as told, whatever the size.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrMakeLayerWithSpooling(StPoint const& size, unsigned long pixelID,
                                                          bool spooled, bool nativeBitmap);
/// The same for a type that a file describes: all three values must be those of one prototype.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrImagerLayerFromType(unsigned long pixelID, unsigned long familyID,
                                                        long pixelSize, StPoint const& size, bool spooled,
                                                        bool nativeBitmap);
