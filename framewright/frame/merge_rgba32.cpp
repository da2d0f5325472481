// Straight alpha over straight alpha, four pixels at a time in floats, without a division by each pixel's
// alpha.
//
// Every number is an integer below 2^16 and so exact as a float. A quotient n / d is taken as the truncated
// (n + 0.5) * (1 / d): it stands at least 0.5 / 255 away from any integer, which is more than the error of
// both roundings, so the result is that of the integer division for every input.
#include <cstdint>
#include <cstring>

#include "framewright/frame/merge_row.h"

namespace frame {

namespace {

using StWords = std::uint32_t __attribute__((vector_size(16)));
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

StFloats Channel(StWords pixels, int shift) {
    return ToFloats(pixels >> shift & 255u);
}

/// The rule of StRGBA32Pixel::Merge for four pixels.
StWords MergeFour(StWords pixels, StWords over) {
    StFloats const overAlpha = Channel(over, kAlphaShift);
    StWords const alpha =
        Truncate(((255.0f - Channel(pixels, kAlphaShift)) * overAlpha + 0.5f) * (1.0f / 255.0f)) +
        (pixels >> kAlphaShift);
    StFloats const weight = ToFloats(alpha) - overAlpha;
    // Where the result is wholly transparent so was `over`, and the quotients are not used.
    StWords const divisor = alpha | (reinterpret_cast<StWords>(alpha == 0u) & 1u);
    StFloats const inverse = 1.0f / ToFloats(divisor);
    auto const mix = [&](int shift) {
        StFloats const sum = Channel(over, shift) * overAlpha + Channel(pixels, shift) * weight;
        return Truncate((sum + 0.5f) * inverse) << shift;
    };
    StWords const merged = mix(0) | mix(8) | mix(16) | alpha << kAlphaShift;
    StWords const untouched = reinterpret_cast<StWords>(over >> kAlphaShift == 0u);
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
