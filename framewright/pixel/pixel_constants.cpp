#include "framewright/pixel/pixel_constants.h"

#include <limits>

#include "framewright/core/startup.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);

namespace {

constexpr float kLeast = 0.0f;
constexpr float kMost = 1.0f;

// Constant-initialised: other files' static initialisers may use them.
constinit StColorFloats const gBlackFloats{kLeast, kLeast, kLeast};
constinit StColorFloats const gWhiteFloats{kMost, kMost, kMost};
constinit StRGB48Pixel const gBlackWords{0, 0, 0};
constinit StRGB48Pixel const gWhiteWords{65535, 65535, 65535};
constinit StRGBAFloatPixel const gBlackOpaque{kLeast, kLeast, kLeast, kMost};
constinit StRGBAFloatPixel const gBlackTransparent{kLeast, kLeast, kLeast, kLeast};
constinit StRGBAFloatPixel const gWhiteOpaque{kMost, kMost, kMost, kMost};
constinit StRGBAFloatPixel const gWhiteTransparent{kMost, kMost, kMost, kLeast};
constinit StRGBTFloatPixel const gBlackBlocking{kLeast, kLeast, kLeast, kLeast};
constinit StRGBTFloatPixel const gBlackTransmitting{kLeast, kLeast, kLeast, kMost};
constinit StRGBTFloatPixel const gWhiteBlocking{kMost, kMost, kMost, kLeast};
constinit StRGBTFloatPixel const gWhiteTransmitting{kMost, kMost, kMost, kMost};

}  // namespace

float SkFloatMaxAlphaOpacity() {
    return kMost;
}
float SkFloatMinAlphaOpacity() {
    return kLeast;
}
float SkFloatMaxTransmission() {
    return kMost;
}
float SkFloatMinTransmission() {
    return kLeast;
}
float SkMaxColorFloatIntensity() {
    return kMost;
}
float SkMinColorFloatIntensity() {
    return kLeast;
}
float SkMinTransparency() {
    return kLeast;
}
float SkMinDepthValue() {
    return -std::numeric_limits<float>::infinity();
}
float SkInverseColorByte() {
    return pixel::kInverseColorByte;
}
float SkInverseColorWord() {
    return pixel::kInverseColorWord;
}
float SkInverseTriFloat() {
    return pixel::kInverseTriFloat;
}
float SkInverseTriByte() {
    return pixel::kInverseTriByte;
}
float SkInverseTriNobble() {
    return pixel::kInverseTriNobble;
}

StRGBA32Pixel SkBlackColorBytes() {
    return pixel::kBlackBytes;
}
StRGBA32Pixel SkWhiteColorBytes() {
    return pixel::kWhiteBytes;
}
StColorFloats const& SkBlackColorFloats() {
    return gBlackFloats;
}
StColorFloats const& SkWhiteColorFloats() {
    return gWhiteFloats;
}
StRGB48Pixel const& SkBlackColorWords() {
    return gBlackWords;
}
StRGB48Pixel const& SkWhiteColorWords() {
    return gWhiteWords;
}
StRGBAFloatPixel const& SkBlackRGBAOpaque() {
    return gBlackOpaque;
}
StRGBAFloatPixel const& SkBlackRGBATransparent() {
    return gBlackTransparent;
}
StRGBAFloatPixel const& SkWhiteRGBAOpaque() {
    return gWhiteOpaque;
}
StRGBAFloatPixel const& SkWhiteRGBATransparents() {
    return gWhiteTransparent;
}
StRGBTFloatPixel const& SkBlackRGBTOpaque() {
    return gBlackBlocking;
}
StRGBTFloatPixel const& SkBlackRGBTTransparent() {
    return gBlackTransmitting;
}
StRGBTFloatPixel const& SkWhiteRGBTOpaque() {
    return gWhiteBlocking;
}
StRGBTFloatPixel const& SkWhiteRGBTTransparent() {
    return gWhiteTransmitting;
}
