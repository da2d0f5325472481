// Samples of an image: reading them, and writing them into its layers.
#include <algorithm>

#include "framewright/frame/frame.h"
#include "framewright/imagery/image.h"
#include "framewright/pixel/gamut.h"
#include "framewright/pixel/smart_pixel.h"
#include "framewright/thornmere/error.h"

namespace {

// What carries the sample of FillRectAt into the layers: a StRGBAFloatPixel and a StDepthFloatPixel. They
// stay as long as the process.
ScSmartPixel* gFillColor;
ScSmartPixel* gFillDepth;

SmImagerFrame& Needed(SmImagerFrame* layer) {
    if (!layer) SrThrow(SkInternalRefusal(), nullptr);
    return *layer;
}

StColorFloats InGamut(ScGamut* gamut, StColorFloats color) {
    if (gamut) gamut->Constrain(color);
    return color;
}

std::uint8_t AlphaByte(float transparency) {
    // In 32 bits, so that what has no such number is transparent.
    auto const taken = static_cast<std::uint32_t>(SrITrunc(255.0 * transparency));
    auto const alpha = static_cast<std::int32_t>(255u - taken);
    return static_cast<std::uint8_t>(std::clamp(alpha, 0, 255));
}

StRGBA32Pixel SampleBytes(ScGamut* gamut, StColorFloats const& color, float transparency) {
    StRGBA32Pixel sample = InGamut(gamut, color).GetRGBA32();
    sample.alpha = AlphaByte(transparency);
    return sample;
}

/// The rectangle at (x, y) in the 32 bits that rectangles have.
StRect RectAt(long x, long y, long width, long height) {
    auto const cut = [](long value) { return static_cast<std::uint32_t>(value); };
    auto const edge = [](std::uint32_t value) { return static_cast<std::int32_t>(value); };
    return {edge(cut(y)), edge(cut(x)), edge(cut(y) + cut(height)), edge(cut(x) + cut(width))};
}

}  // namespace

void SmImagerImage::MakeFillPixels() {
    if (!gFillColor) gFillColor = new ScDerivedPixel<StRGBAFloatPixel>;
    if (!gFillDepth) gFillDepth = new ScDerivedPixel<StDepthFloatPixel>;
}

// --- reading

void SmImagerImage::GetColorAt(long x, long y, StColorFloats& color) {
    GetRGBAAt(x, y).ConvertToColorFloats(color);
}

StRGBA32Pixel SmImagerImage::GetRGBAAt(long x, long y) {
    return Needed(mColorLayer).GetRGBAPixelAt(x, y);
}

float SmImagerImage::GetDepthAt(long x, long y) {
    float depth = 0.0F;
    Needed(mDepthLayer).GetPixelAt(x, y, depth);
    return depth;
}

unsigned char SmImagerImage::GetMaskAt(long x, long y) {
    StAlpha8Pixel mask{255};
    if (mMaskLayer) mMaskLayer->GetPixelAt(x, y, mask);
    return mask.alpha;
}

float SmImagerImage::GetTransparencyAt(long x, long y) {
    return static_cast<float>(1.0 - Needed(mColorLayer).GetRGBAPixelAt(x, y).alpha * (1.0 / 255));
}

// --- drawing

void SmImagerImage::BlendPixelAt(float blend, long x, long y, StColorFloats const& color, float transparency,
                                 float depth) {
    if (mColorLayer) {
        StRGBA32Pixel pixel = mColorLayer->GetRGBAPixelAt(x, y);
        pixel.Blend(SampleBytes(mGamut, color, transparency), blend);
        mColorLayer->PutPixelAt(x, y, pixel);
    }
    // A depth is not a matter of degree: the nearer surface has been drawn, in part or as a whole.
    if (mDepthLayer) mDepthLayer->PutPixelAt(x, y, StDepthFloatPixel{depth});
    for (std::size_t i = 0; i < mCallbacks.size(); ++i)
        mCallbacks[i]->OnBlendPixel(this, blend, x, y);
}

void SmImagerImage::PutPixelAt(long x, long y, StColorFloats const& color, float transparency, float depth) {
    if (mColorLayer) mColorLayer->PutPixelAt(x, y, SampleBytes(mGamut, color, transparency));
    if (mDepthLayer) mDepthLayer->PutPixelAt(x, y, StDepthFloatPixel{depth});
    for (std::size_t i = 0; i < mCallbacks.size(); ++i)
        mCallbacks[i]->OnPutPixel(this, x, y);
}

void SmImagerImage::PutRGBAAt(long x, long y, StRGBA32Pixel color) {
    Needed(mColorLayer).PutPixelAt(x, y, color);
    for (std::size_t i = 0; i < mCallbacks.size(); ++i)
        mCallbacks[i]->OnPutPixel(this, x, y);
}

void SmImagerImage::PutRunAt(long x, long y, long length, StColorFloats const& color, float transparency,
                             float depth) {
    StRGBA32Pixel const sample = SampleBytes(mGamut, color, transparency);
    for (long i = 0; i < length; ++i) {
        if (mColorLayer) mColorLayer->PutPixelAt(x + i, y, sample);
        if (mDepthLayer) mDepthLayer->PutPixelAt(x + i, y, StDepthFloatPixel{depth});
    }
    for (std::size_t i = 0; i < mCallbacks.size(); ++i)
        mCallbacks[i]->OnPutRun(this, x, y, length);
}

void SmImagerImage::FillRectAt(long x, long y, long width, long height, StColorFloats const& color,
                               float transparency, float depth) {
    StRect const rect = RectAt(x, y, width, height);
    if (gFillColor && mColorLayer) {
        StColorFloats const inGamut = InGamut(mGamut, color);
        StRGBAFloatPixel const sample{inGamut.red, inGamut.green, inGamut.blue, 1.0F - transparency};
        gFillColor->SetPixelData(&sample);
        mColorLayer->RectFill(rect, gFillColor);
    }
    if (gFillDepth && mDepthLayer) {
        StDepthFloatPixel const sample{depth};
        gFillDepth->SetPixelData(&sample);
        mDepthLayer->RectFill(rect, gFillDepth);
    }
    for (std::size_t i = 0; i < mCallbacks.size(); ++i)
        mCallbacks[i]->OnFillRect(this, x, y, width, height);
}
