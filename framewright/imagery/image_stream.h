// Images on a stream. Numbers are big-endian.
//
//     offset   size   field
//     0        8      rows, columns
//     8        8      vertical and horizontal resolution, floats
//     16       flag   false; readers take any (SmStream::PutBit)
//     ..       4      number of layers
//     ..       ...    as many frames, see frame/frame_stream.h
//     ..       ...    the gamut: its selector, then its own data, see pixel/gamut.h
//
// The layers come back by SmImagerImage::AddLayer, in their order: colour and depth find their slots, the
// mask layer is an ordinary layer after that. Callbacks and ranges are not kept.
#pragma once

#include "framewright/imagery/image.h"
#include "framewright/thornmere/export.h"

class SmStream;

/// Writes the image. Empty places in its list of layers are neither counted nor written, and an image without
/// a gamut is written with a ScClippedGamut. The layers keep `compression`, see
/// SmImagerFrame::SetStreamingCompression.
FRAMEWRIGHT_EXPORT void SrPutImagerToStream(SmStream& stream, SmImagerImage* image,
                                            unsigned short compression);

/// Reads what the former wrote into `image`: the layers are added to those that are there, the rest is
/// replaced. `spooled` and `nativeBitmap` as for SrReadImagerFrameFromStream, whose errors are thrown here
/// too. A number of layers that is negative throws SkBadStreamFormatErrC(), and one that a stream of known
/// length cannot hold -39, before anything is allocated for them; -108 comes of layers that together take
/// more memory than SrGetFrameSizeLimit() beyond their bytes on the stream. A gamut of an unknown selector
/// throws what ReadGamut does.
///
/// The trap: nothing says that the layers on a stream are of one size. Who goes through rows or pixels of an
/// image from elsewhere goes by the size of each layer, not by that of the image.
///
/// On a failure the image keeps what was read until then, the layers that were read whole among it, and its
/// gamut. The layer that was not is released, unlike the frame of SrReadImagerFrameFromStream.
FRAMEWRIGHT_EXPORT void SrGetImagerFromStream(SmStream& stream, SmImagerImage* image, bool spooled,
                                              bool nativeBitmap);
