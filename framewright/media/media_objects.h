// One call from a file to an object, from an object to a file, and from a file to a file of another format,
// over whatever formats are registered. `progress` may be null everywhere. Failures are exceptions, with the
// codes of media_errors.h and those of the format; what was opened on the way is released.
#pragma once

#include <cstdint>

#include "framewright/thornmere/export.h"

class ScMC_;
class ScMediaLocation;
class ScProgressIndicator;
class SmImagerImage;
class SmMedia;
class SmObject;
class SmVideoSpec;

/// Reads the first frame of the first track. `object` is filled, or made where it is null, the caller then
/// owning its reference; `objectClass` receives its class. With `type` not 0 that format is asked first and
/// SkUnrecognizedMedia() thrown when there is no such format; a format that does not take the file is no
/// failure: then all are asked. SkUnrecognizedMedia() also when none takes it, SkMediaFileIsEmpty() when
/// there is nothing in it.
FRAMEWRIGHT_EXPORT void SrLoadObjectFromMedia(ScMediaLocation* location, ScMC_*& objectClass,
                                              SmObject*& object, unsigned long type,
                                              ScProgressIndicator* progress);

/// Reads an object of a given class, from the first track that yields it. `object` as above; `extra` is a
/// second result that few formats have, owned by the caller where it is not null.
FRAMEWRIGHT_EXPORT void SrLoadTargettedObjectFromMedia(ScMediaLocation* location, ScMC_* objectClass,
                                                       SmObject*& object, SmObject*& extra,
                                                       ScProgressIndicator* progress);

/// Writes a new file that holds `object`. With `type` 0 the first format that yields such objects writes it.
/// SkUnrecognizedMedia() for an unknown type, SkMediaIncapableOfFormat() for a format that cannot hold the
/// object, and for a null one. Of a track the first frame is written, into one file.
FRAMEWRIGHT_EXPORT void SrSaveObjectToMedia(ScMediaLocation* location, ScMC_* objectClass, SmObject* object,
                                            unsigned long type, ScProgressIndicator* progress);

/// Copies all frames of all tracks into a new file of format `type`, 0 for the source's own, with the shape
/// of `spec` or, where that is null, of each track. False when no format takes the source.
/// SkUnrecognizedMedia() when none writes `type`. Tracks of a kind that the new format has not are left out.
FRAMEWRIGHT_EXPORT bool SrCopyMedia(ScMediaLocation* source, ScMediaLocation* destination, unsigned long type,
                                    SmVideoSpec* spec, ScProgressIndicator* progress);

/// Writes the layers of an image as frame `frame` of tracks that are there: each layer with its save intent
/// set goes to the next track of the media, and is left out where the media has no further one. `position` is
/// the frame's place in the output, see media_track.h.
FRAMEWRIGHT_EXPORT void SrWriteImagerToMedia(SmMedia* media, SmImagerImage* image, long frame,
                                             unsigned char position);

namespace media {

/// How an object that can refer to media says on a stream where it is: big-endian, 32 bits.
constexpr std::uint32_t StoredInlineTag() {
    return 0;
}
constexpr std::uint32_t StoredByLocationTag() {
    return 2;
}

}  // namespace media
