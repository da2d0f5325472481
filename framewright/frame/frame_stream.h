// Frames on a stream: a header that names the pixel type and the size, so that a reader can make the right
// frame, then the frame's body (SmImagerFrame::WriteTo). Numbers are big-endian.
//
//     offset   size   field
//     0        4      version, 1; readers take any
//     4        4      PixelID; this and the next two must be those of one registered layer
//     8        4      FamilyID
//     12       4      PixelSize
//     16       4      rows
//     20       4      columns
//     24       ...    body
//
// Neither the save intent nor foreground and background are kept.
#pragma once

#include "framewright/frame/frame.h"
#include "framewright/thornmere/export.h"

class ScCatalogWriteStream;
class SmStream;

/// "ImFr": the type of a frame's section in a catalog.
FRAMEWRIGHT_EXPORT unsigned long SrGetImagerFrameFileType();

/// Writes header and body. The frame keeps `compression`, see SetStreamingCompression.
FRAMEWRIGHT_EXPORT void SrWriteImagerFrameToStream(SmStream& stream, SmImagerFrame* frame,
                                                   unsigned short compression);

/// Reads what the former wrote, into a new frame with one reference for the caller. Pixel types that no
/// registered layer has throw an error of their own, with a message; a negative size throws
/// SkBadStreamFormatErrC(); -108 comes of a size over SrGetFrameSizeLimit() or, on a stream that knows its
/// length, of one whose rows cannot be there: nothing has been allocated then. (So pixels must take no fewer
/// bits on the stream than in a row, as those of all records do.)
///
/// The trap: what the body throws afterwards (a short stream, a bad format, a map that is none) leaves the
/// frame that was made with its one reference: it belongs to whoever made it, the layer's CloneAtNewSize, and
/// is not released here.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrReadImagerFrameFromStream(SmStream& stream, bool spooled,
                                                              bool nativeBitmap);

/// Writes the frame as a section of its own, version 0x100. -108 for a catalog without a stream.
/// SrImagerFrameFromStream (media/frame_section.h) reads it.
FRAMEWRIGHT_EXPORT void SrImagerFrameToStream(ScCatalogWriteStream& catalog, SmImagerFrame* frame,
                                              unsigned short compression);
