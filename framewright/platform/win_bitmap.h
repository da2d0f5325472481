// Native bitmaps: blocks of rows that the host's imaging system can draw from, through a device context.
// Where there is no such system, as here, a bitmap is a plain block of memory and its device context is null;
// layers work on it all the same.
#pragma once

#include "framewright/thornmere/export.h"

struct StRGBA32Pixel;
template <class Index, class Color>
class ScColorMap;

/// Makes a bitmap of `height` rows, `bytes` apart, and returns the address of its first row; null when memory
/// is refused, or for a size that is negative. `bitmap` and `deviceContext` receive the handles that
/// SrDestroyWinBitmap takes. `bitCount` is the width of a pixel in bits, `type` its PixelID. `map` gives the
/// colours of an 8-bit bitmap; null stands for the standard colours.
FRAMEWRIGHT_EXPORT void* SrCreateWinBitmap(long width, long height, long bytes, long bitCount, long type,
                                           void*& bitmap, void*& deviceContext,
                                           ScColorMap<unsigned char, StRGBA32Pixel>* map);
/// Frees the bitmap with its rows and sets both handles to null. A null bitmap is allowed. Returns null.
FRAMEWRIGHT_EXPORT void* SrDestroyWinBitmap(void*& bitmap, void*& deviceContext);
