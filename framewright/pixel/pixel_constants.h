// Named scales and colours.
#pragma once

#include "framewright/pixel/float_pixels.h"
#include "framewright/pixel/word_pixels.h"

// Scales. The reciprocals are rounded to float, and conversions multiply by exactly these bits.
FRAMEWRIGHT_EXPORT float SkFloatMaxAlphaOpacity();    ///< 1.0
FRAMEWRIGHT_EXPORT float SkFloatMinAlphaOpacity();    ///< 0.0
FRAMEWRIGHT_EXPORT float SkFloatMaxTransmission();    ///< 1.0
FRAMEWRIGHT_EXPORT float SkFloatMinTransmission();    ///< 0.0
FRAMEWRIGHT_EXPORT float SkMaxColorFloatIntensity();  ///< 1.0
FRAMEWRIGHT_EXPORT float SkMinColorFloatIntensity();  ///< 0.0
FRAMEWRIGHT_EXPORT float SkMinTransparency();         ///< 0.0
/// Negative infinity: below every finite depth.
FRAMEWRIGHT_EXPORT float SkMinDepthValue();
FRAMEWRIGHT_EXPORT float SkInverseColorByte();  ///< 1/255
FRAMEWRIGHT_EXPORT float SkInverseColorWord();  ///< 1/65535
FRAMEWRIGHT_EXPORT float SkInverseTriFloat();   ///< 1/3
/// 1/765: of three full byte channels.
FRAMEWRIGHT_EXPORT float SkInverseTriByte();
/// 1/93: of three full channels of five bits.
FRAMEWRIGHT_EXPORT float SkInverseTriNobble();

/// Black with alpha 0, on purpose: a black that comes from here is transparent.
FRAMEWRIGHT_EXPORT StRGBA32Pixel SkBlackColorBytes();
/// Opaque white.
FRAMEWRIGHT_EXPORT StRGBA32Pixel SkWhiteColorBytes();

// The others are references to constants that live as long as the library.
FRAMEWRIGHT_EXPORT StColorFloats const& SkBlackColorFloats();
FRAMEWRIGHT_EXPORT StColorFloats const& SkWhiteColorFloats();
FRAMEWRIGHT_EXPORT StRGB48Pixel const& SkBlackColorWords();
FRAMEWRIGHT_EXPORT StRGB48Pixel const& SkWhiteColorWords();
FRAMEWRIGHT_EXPORT StRGBAFloatPixel const& SkBlackRGBAOpaque();
FRAMEWRIGHT_EXPORT StRGBAFloatPixel const& SkBlackRGBATransparent();
FRAMEWRIGHT_EXPORT StRGBAFloatPixel const& SkWhiteRGBAOpaque();
FRAMEWRIGHT_EXPORT StRGBAFloatPixel const& SkWhiteRGBATransparents();
FRAMEWRIGHT_EXPORT StRGBTFloatPixel const& SkBlackRGBTOpaque();
FRAMEWRIGHT_EXPORT StRGBTFloatPixel const& SkBlackRGBTTransparent();
FRAMEWRIGHT_EXPORT StRGBTFloatPixel const& SkWhiteRGBTOpaque();
FRAMEWRIGHT_EXPORT StRGBTFloatPixel const& SkWhiteRGBTTransparent();
