// From the pixel data of a BMP file to the pixels of a frame.
#pragma once

#include "framewright/media/bmp/header.h"
#include "framewright/media/bmp/pixel_data.h"
#include "framewright/media/bmp/pixel_sink.h"

namespace bmp {

/// Places all pixels of the picture: depths of 1, 4, 8, 16, 24 and 32 bits are known. Rows run from the
/// bottom up, but those of 1-bit pictures from the top down. Any other depth places nothing. Work and memory
/// are bounded by the frame and the data, whatever the header says.
void Decode(StHeader const& header, ScPixelData& data, ScPixelSink& sink);

}  // namespace bmp
