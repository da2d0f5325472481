// Rows of three bytes a pixel - blue, green, red - to and from rows of four. The rows must not overlap.
#pragma once

namespace bmp {

/// What becomes of the fourth byte of a pixel that is written: 255, or what it is.
enum class StFourth { kOpaque, kKept };

/// Three bytes a pixel to four.
void WidenRow(unsigned char const* from, unsigned char* to, long count, StFourth fourth);

/// Four bytes a pixel to three: the fourth is left out.
void NarrowRow(unsigned char const* from, unsigned char* to, long count);

}  // namespace bmp
