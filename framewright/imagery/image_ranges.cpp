// How near two samples of an image must be to count as one.
#include <cstdlib>

#include "framewright/frame/frame.h"
#include "framewright/imagery/image.h"
#include "framewright/pixel/color_models.h"
#include "framewright/thornmere/error.h"

namespace {

// Where the channels lie in a word, 0xAARRGGBB.
constexpr int kBlueShift = 0;
constexpr int kGreenShift = 8;
constexpr int kRedShift = 16;
constexpr int kAlphaShift = 24;

std::uint32_t Packed(StRGBA32Pixel color) {
    return std::uint32_t{color.alpha} << kAlphaShift | std::uint32_t{color.red} << kRedShift |
           std::uint32_t{color.green} << kGreenShift | std::uint32_t{color.blue} << kBlueShift;
}

int Channel(std::uint32_t color, int shift) {
    return static_cast<int>(color >> shift & 0xFF);
}

bool AreNear(std::uint32_t a, std::uint32_t b, std::uint32_t tolerances) {
    for (int const shift : {kGreenShift, kRedShift, kBlueShift, kAlphaShift}) {
        if (std::abs(Channel(a, shift) - Channel(b, shift)) > Channel(tolerances, shift)) return false;
    }
    return true;
}

}  // namespace

void SmImagerImage::SetRange(StRGBAFloatPixel const& range, bool secondOnly) {
    StRGBA32Pixel const bytes = range.GetRGBA32();
    std::uint32_t const tolerances = Packed(bytes);
    std::uint32_t const masks = Packed({SrMakeRangeMask(bytes.blue), SrMakeRangeMask(bytes.green),
                                        SrMakeRangeMask(bytes.red), SrMakeRangeMask(bytes.alpha)});
    for (int i = secondOnly ? 1 : 0; i < 2; ++i) {
        mRanges[i] = range;
        mTolerances[i] = tolerances;
        mMasks[i] = masks;
    }
}

void SmImagerImage::GetRange(StRGBAFloatPixel& range, bool second) const {
    range = mRanges[second ? 1 : 0];
}

bool SmImagerImage::SamplesMatch(long x1, long y1, long x2, long y2, unsigned char which) {
    if (!mColorLayer) SrThrow(SkInternalRefusal(), nullptr);
    auto const a = static_cast<std::uint32_t>(mColorLayer->GetRGBAPixelAsLong(x1, y1));
    auto const b = static_cast<std::uint32_t>(mColorLayer->GetRGBAPixelAsLong(x2, y2));
    int const range = which ? 1 : 0;
    bool const match = ((a ^ b) & mMasks[range]) == 0 || AreNear(a, b, mTolerances[range]);
    for (std::size_t i = 0; i < mCallbacks.size(); ++i) {
        bool stop = false;
        bool result = match;
        mCallbacks[i]->OnCompareSamples(this, x1, y1, x2, y2, a, b, which, stop, result);
        if (result) return true;
        if (stop) return false;
    }
    return match;
}
