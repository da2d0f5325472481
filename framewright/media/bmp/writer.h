// Writing a BMP file to a stream.
#pragma once

class SmImagerFrame;
class SmStream;

namespace bmp {

/// Dots an inch.
struct StResolution {
    float x, y;
};

/// Writes `frame` from where `stream` stands, in the one form that is written: 24 bits, not compressed, rows
/// from the bottom up. Bytes that pad a row repeat its last pixel. SkMediaIncapableOfFormat() for a picture
/// whose file could not tell its own size in 32 bits; nothing is written then.
void WritePicture(SmStream* stream, SmImagerFrame* frame, StResolution const& resolution);

}  // namespace bmp
