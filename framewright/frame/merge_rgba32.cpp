// Straight alpha over straight alpha, four pixels at a time, without a division by each pixel's alpha.
//
// A channel is n / d with n = over * overAlpha + below * weight and d = overAlpha + weight, the alpha of the
// result: n stays below 2^16, so it is exact in 16 bits and as a float. The quotient is the truncated
// n * (1 / d) + 0.5 * (1 / d), which stands at least 0.5 / 255 away from any integer. That is more than the
// error of all its roundings, so the result is that of the integer division for every input.
#include <cstdint>
#include <cstring>

#include "framewright/frame/merge_row.h"

namespace frame {

namespace {

using StWords = std::uint32_t __attribute__((vector_size(16)));
using StHalves = std::uint16_t __attribute__((vector_size(16)));
using StInts = std::int32_t __attribute__((vector_size(16)));
using StFloats = float __attribute__((vector_size(16)));

constexpr long kStep = 4;
constexpr int kAlphaShift = 24;

StFloats ToFloats(StWords words) {
    // By way of signed integers, which have an instruction of their own.
    return __builtin_convertvector(reinterpret_cast<StInts>(words), StFloats);
}

StWords Truncate(StFloats values) {
    return reinterpret_cast<StWords>(__builtin_convertvector(values, StInts));
}

/// The products of the upper and of the lower halves of each word, which must fit into a half.
StWords TimesByHalves(StWords a, StWords b) {
    return reinterpret_cast<StWords>(reinterpret_cast<StHalves>(a) * reinterpret_cast<StHalves>(b));
}

/// The rule of StRGBA32Pixel::Merge for four pixels.
StWords MergeFour(StWords pixels, StWords over) {
    constexpr std::uint32_t kRedAndBlue = 0x00FF00FF;
    StWords const overAlpha = over >> kAlphaShift;
    StWords const belowAlpha = pixels >> kAlphaShift;
    StWords const covered = TimesByHalves(255u - belowAlpha, overAlpha);
    StWords const alpha = ((covered + 1u + (covered >> 8)) >> 8) + belowAlpha;  // covered / 255
    StWords const weight = alpha - overAlpha;

    StWords const redAndBlue = TimesByHalves(over & kRedAndBlue, overAlpha | overAlpha << 16) +
                               TimesByHalves(pixels & kRedAndBlue, weight | weight << 16);
    StWords const green =
        TimesByHalves(over >> 8 & 255u, overAlpha) + TimesByHalves(pixels >> 8 & 255u, weight);

    // Where the result is wholly transparent so was `over`, and the quotients are not used.
    StWords const divisor = alpha | (reinterpret_cast<StWords>(alpha == 0u) & 1u);
    StFloats const inverse = 1.0f / ToFloats(divisor);
    StFloats const half = 0.5f * inverse;
    auto const quotient = [&](StWords sum) { return Truncate(ToFloats(sum) * inverse + half); };

    StWords const merged = quotient(redAndBlue & 0xFFFFu) | quotient(green) << 8 |
                           quotient(redAndBlue >> 16) << 16 | alpha << kAlphaShift;
    StWords const untouched = reinterpret_cast<StWords>(overAlpha == 0u);
    return (pixels & untouched) | (merged & ~untouched);
}

/// What the alphas of four pixels have in common.
enum class Alphas { kTransparent, kOpaque, kMixed };

Alphas AlphasOf(StRGBA32Pixel const* pixels) {
    constexpr std::uint64_t kAlphas = 0xFF000000FF000000u;
    std::uint64_t pairs[2];
    std::memcpy(pairs, pixels, sizeof(pairs));
    if (((pairs[0] | pairs[1]) & kAlphas) == 0) return Alphas::kTransparent;
    if ((pairs[0] & pairs[1] & kAlphas) == kAlphas) return Alphas::kOpaque;
    return Alphas::kMixed;
}

}  // namespace

void MergeRGBA32(StRGBA32Pixel* pixels, StRGBA32Pixel const* over, long count) {
    long i = 0;
    for (; i + kStep <= count; i += kStep) {
        Alphas const alphas = AlphasOf(over + i);
        if (alphas == Alphas::kTransparent) continue;
        StWords below, above;
        std::memcpy(&above, over + i, sizeof(above));
        if (alphas == Alphas::kMixed) {
            std::memcpy(&below, pixels + i, sizeof(below));
            above = MergeFour(below, above);
        }
        std::memcpy(pixels + i, &above, sizeof(above));
    }
    for (; i < count; ++i)
        pixels[i].Merge(over[i]);
}

}  // namespace frame
