// The forms that pixels have in a BMP file.
#pragma once

#include "framewright/media/bmp/header.h"
#include "framewright/media/bmp/pixel_data.h"
#include "framewright/media/bmp/pixel_sink.h"

namespace bmp {

/// Whether pixels of this depth are known: 1, 4, 8, 16, 24 and 32 bits.
bool CanDecode(std::uint32_t bitCount);

/// Places all pixels of the picture. Rows run from the bottom up, but those of 1-bit pictures from the top
/// down. A depth that is not known places nothing. Work and memory are bounded by the frame and the data,
/// whatever the header says.
void Decode(StHeader const& header, ScPixelData& data, ScPixelSink& sink);

}  // namespace bmp
