// Opacity alone: what masks are made of.
#pragma once

#include "framewright/pixel/color_pixels.h"

/// One byte of opacity: 0 transparent, 255 opaque.
///
///     byte    0
///           alpha
///
/// As a colour it has the value in all four bytes: 80 is half transparent middle grey.
struct FRAMEWRIGHT_EXPORT StAlpha8Pixel {
    std::uint8_t alpha;

    SR_LAYER_PIXEL_RECORD(StAlpha8Pixel);

    /// Lays one mask over the other: the result is at least as opaque as either.
    void Merge(StAlpha8Pixel other) {
        alpha = static_cast<std::uint8_t>(pixel::Screen(alpha, other.alpha, 255));
    }
    void Blend(StAlpha8Pixel const& other, float t) {
        alpha = static_cast<std::uint8_t>(pixel::ScByteBlend(t)(alpha, other.alpha));
    }
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out.SetFloat(ConvertToFloat()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { alpha = pixel::ToByte(in.alpha); }
    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    float ConvertToFloat() const { return pixel::ByteToFloat(alpha); }
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const { return pixel::SameBytes(alpha); }
    void SetRGBA32(StRGBA32Pixel color) { alpha = color.alpha; }
    void SetFloat(float value) { alpha = pixel::ToByte(value); }
    void SetColorFloats(StColorFloats const& color) {
        alpha = static_cast<std::uint8_t>(SrITrunc(pixel::SumOf(color) * 255.0 * pixel::kThird));
    }
    void Invert() { alpha = static_cast<std::uint8_t>(255 - alpha); }
};

/// One 32-bit word of opacity, 0xFFFFFFFF opaque. Colours see its top byte.
///
///     byte   0 ... 3
///             alpha
///
/// From a colour each alpha byte goes to 0x10101010 times itself, of which 32 bits are kept: opaque becomes
/// 0xFFFFFFF0 and not 0xFFFFFFFF, and 128 becomes 0x08080800, which reads back as 8. From a float, 1.0 is 2
/// to the 32 and keeps no low bits: it gives 0.
struct FRAMEWRIGHT_EXPORT StAlpha32Pixel {
    std::uint32_t alpha;

    SR_LAYER_PIXEL_RECORD(StAlpha32Pixel);

    /// The rule of StAlpha8Pixel, in double.
    void Merge(StAlpha32Pixel other);
    void Blend(StAlpha32Pixel const& other, float t);
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out.SetFloat(pixel::ByteToFloat(TopByte())); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetByte(pixel::ToByte(in.alpha)); }
    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    float ConvertToFloat() const { return static_cast<float>(alpha) * pixel::kInverseTwoTo32; }
    /// Takes any other record's float, not its alpha.
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const { return pixel::SameBytes(TopByte()); }
    void SetRGBA32(StRGBA32Pixel color) { SetByte(color.alpha); }
    void SetFloat(float value) { alpha = pixel::Low32(value * pixel::kTwoTo32); }
    void SetColorFloats(StColorFloats const& color) {
        alpha = pixel::Low32(pixel::SumOf(color) * pixel::kTwoTo32 * pixel::kThird);
    }
    void Invert() { alpha = ~alpha; }

    std::uint8_t TopByte() const { return static_cast<std::uint8_t>(alpha >> 24); }
    void SetByte(std::uint8_t byte) { alpha = byte * 0x10101010u; }
};

inline void StAlpha32Pixel::Merge(StAlpha32Pixel other) {
    if (other.alpha == 0) return;
    double const below = alpha, above = other.alpha;
    alpha = pixel::Low32(below + above - below * above * (1.0 / 4294967295.0));
}
inline void StAlpha32Pixel::Blend(StAlpha32Pixel const& other, float t) {
    // The two values are rounded to float first; the rest is in double.
    double const from = static_cast<float>(alpha), to = static_cast<float>(other.alpha);
    alpha = pixel::Low32(from * (1.0 - t) + to * t);
}
