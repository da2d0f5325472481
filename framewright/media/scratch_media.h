// Temporary media for images, in the scratch folders (spool/scratch.h).
#pragma once

#include "framewright/thornmere/export.h"

class ScMediaLocation;
class SmImagerImage;
class SmMedia;
class SmVideoSpec;

/// Media of format `mediaType` with a video track for each layer of `image` that has its save intent set:
/// shaped by `spec`, or by the defaults where that is null, but for size and pixel type, which are the
/// layer's. The caller owns one reference. Writing is done through the tracks; nothing is written here.
///
/// With a location at `*location` the media is made there. Where `location` or `*location` is null it is made
/// in the first scratch folder that takes it; its file name is that of the image, "T" and ten digits, the
/// same for each call with this image and without an extension. Then, unless `location` is null, `*location`
/// receives a location, which the caller deletes.
///
/// Null where no format writes that type, or there is no scratch folder: the location that `*location`
/// receives is of no use then. SkMediaManagerMissing() is thrown before set-up and after shut-down; what a
/// format throws travels on, and no other folder is tried.
FRAMEWRIGHT_EXPORT SmMedia* SrCreateScratchMediaForImager(SmImagerImage* image, ScMediaLocation** location,
                                                          unsigned long mediaType, SmVideoSpec* spec);
