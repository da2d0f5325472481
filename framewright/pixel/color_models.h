// Conversions between colour models. All arithmetic is in integers, divisions truncate toward zero, and the
// second argument receives the result; alpha goes along where both sides have it.
//
//     HSL   hue in degrees by the hexagon, saturation and lightness 0 to 100
//     HSV   a hue of its own measure, not HSL's; saturation and value 0 to 100
//     CMYK  inks 0 to 255, black taken out of the other three
//     YIQ   in doubles; luma 0 to 100, the two chroma signals 0 to 100 with 50 for none
#pragma once

#include "framewright/pixel/color_pixels.h"
#include "framewright/platform/quickdraw_types.h"

/// A hue that comes out negative is not brought to its angle: -30 is stored as 65506 and then as 65146. The
/// way back knows no such sector.
FRAMEWRIGHT_EXPORT void SrConvertPixel(StRGBA32Pixel const& from, StHSLAPixel& to);
/// A hue of 420 degrees and more leaves red, green and blue as they were, unless the colour is black by its
/// lightness.
FRAMEWRIGHT_EXPORT void SrConvertPixel(StHSLAPixel const& from, StRGBA32Pixel& to);
FRAMEWRIGHT_EXPORT void SrConvertPixel(StRGBA32Pixel const& from, StHSVAPixel& to);
FRAMEWRIGHT_EXPORT void SrConvertPixel(StHSVAPixel const& from, StRGBA32Pixel& to);
FRAMEWRIGHT_EXPORT void SrConvertPixel(StRGBA32Pixel const& from, StYIQAPixel& to);
FRAMEWRIGHT_EXPORT void SrConvertPixel(StYIQAPixel const& from, StRGBA32Pixel& to);
/// Alpha is dropped.
FRAMEWRIGHT_EXPORT void SrConvertPixel(StRGBA32Pixel const& from, StCMYKPixel& to);
/// Opaque. The inks wrap: cyan 200 with black 100 gives red 211, not 0.
FRAMEWRIGHT_EXPORT void SrConvertPixel(StCMYKPixel const& from, StRGBA32Pixel& to);
/// Each byte in both halves of its word.
FRAMEWRIGHT_EXPORT void SrConvertPixel(StRGBA32Pixel const& from, RGBColor& to);
/// The high byte of each word; alpha is left as it was.
FRAMEWRIGHT_EXPORT void SrConvertPixel(RGBColor const& from, StRGBA32Pixel& to);
FRAMEWRIGHT_EXPORT void SrConvertPixel(StColorFloats const& from, RGBColor& to);
FRAMEWRIGHT_EXPORT void SrConvertPixel(RGBColor const& from, StColorFloats& to);

/// The grey of a colour: the plain mean of red, green and blue; alpha does not count.
FRAMEWRIGHT_EXPORT unsigned char SrGrayScale(StRGBA32Pixel color);
/// Raises each channel to `power`, in place, and returns `color`.
FRAMEWRIGHT_EXPORT StColorFloats& SrColorPower(StColorFloats& color, float power);
/// All bits from bit 7 down to the highest one set in `value`, that one included: 0x10 gives 0xF0; 0x01 and 0
/// give 0xFF.
FRAMEWRIGHT_EXPORT unsigned char SrMakeRangeMask(unsigned char value);
