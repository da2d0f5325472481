// Colours of 16-bit words, red first in memory, unlike the records of bytes.
#pragma once

#include "framewright/pixel/color_pixels.h"

/// Three words: red, green, blue; 0 to 65535.
///
///     byte   0    2      4
///           red  green  blue
///
/// Orange, 65535, 32896, 0, lies in memory as FF FF 80 80 00 00 on a little-endian host; the stream has
/// big-endian words.
struct FRAMEWRIGHT_EXPORT StRGB48Pixel {
    std::uint16_t red, green, blue;

    SR_LAYER_PIXEL_RECORD(StRGB48Pixel);

    /// The plain average.
    void Merge(StRGB48Pixel other);
    void Blend(StRGB48Pixel const& other, float t);
    void ConvertToColorFloats(StColorFloats& out) const;
    void ConvertFromColorFloats(StColorFloats const& in) {
        *this = {pixel::ToWord(in.red), pixel::ToWord(in.green), pixel::ToWord(in.blue)};
    }
    float ConvertToFloat() const {
        return static_cast<float>(pixel::IntegerSumOf(*this) * pixel::kThreeWordsScale);
    }
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const {
        return {pixel::WordToByte(blue), pixel::WordToByte(green), pixel::WordToByte(red), 255};
    }
    void SetRGBA32(StRGBA32Pixel color) {
        *this = {pixel::ByteToWord(color.red), pixel::ByteToWord(color.green), pixel::ByteToWord(color.blue)};
    }
    void SetFloat(float value) { red = green = blue = pixel::ToWord(value); }
    void SetColorFloats(StColorFloats const& color) { ConvertFromColorFloats(color); }
    void Invert();
};
static_assert(sizeof(StRGB48Pixel) == 6);

/// Four words: red, green, blue, alpha; straight alpha, 65535 opaque.
///
///     byte   0    2      4     6
///           red  green  blue  alpha
///
/// Opaque orange, 65535, 32896, 0, 65535, lies in memory as FF FF 80 80 00 00 FF FF.
struct FRAMEWRIGHT_EXPORT StRGBA64Pixel {
    std::uint16_t red, green, blue, alpha;

    SR_LAYER_PIXEL_RECORD(StRGBA64Pixel);

    /// Source-over with straight alpha in unsigned 32-bit integers.
    void Merge(StRGBA64Pixel other);
    void Blend(StRGBA64Pixel const& other, float t);
    /// Both of these go through bytes: the low byte of each channel is lost.
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out.SetRGBA32(GetRGBA32()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(in.GetRGBA32()); }
    void ConvertToColorFloats(StColorFloats& out) const;
    float ConvertToFloat() const {
        return static_cast<float>(pixel::IntegerSumOf(*this) * pixel::kThreeWordsScale);
    }
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const {
        return {pixel::WordToByte(blue), pixel::WordToByte(green), pixel::WordToByte(red),
                pixel::WordToByte(alpha)};
    }
    void SetRGBA32(StRGBA32Pixel color) {
        *this = {pixel::ByteToWord(color.red), pixel::ByteToWord(color.green), pixel::ByteToWord(color.blue),
                 pixel::ByteToWord(color.alpha)};
    }
    void SetFloat(float value) { red = green = blue = alpha = pixel::ToWord(value); }
    void SetColorFloats(StColorFloats const& color) {
        *this = {pixel::ToWord(color.red), pixel::ToWord(color.green), pixel::ToWord(color.blue), 65535};
    }
    /// Complements the colour; alpha is kept.
    void Invert();
};

inline void StRGB48Pixel::Merge(StRGB48Pixel other) {
    pixel::CombineColors(*this, other, pixel::Average);
}
inline void StRGB48Pixel::Blend(StRGB48Pixel const& other, float t) {
    pixel::CombineColors(*this, other, pixel::ScWordBlend(t));
}
inline void StRGB48Pixel::ConvertToColorFloats(StColorFloats& out) const {
    out = {pixel::WordToFloat(red), pixel::WordToFloat(green), pixel::WordToFloat(blue)};
}
inline void StRGB48Pixel::Invert() {
    pixel::ComplementColors(*this, 65535);
}

inline void StRGBA64Pixel::Merge(StRGBA64Pixel other) {
    pixel::LayOver(*this, other, 65535);
}
inline void StRGBA64Pixel::Blend(StRGBA64Pixel const& other, float t) {
    pixel::ScWordBlend const mix(t);
    pixel::CombineColors(*this, other, mix);
    alpha = static_cast<std::uint16_t>(mix(alpha, other.alpha));
}
inline void StRGBA64Pixel::ConvertToColorFloats(StColorFloats& out) const {
    out = {static_cast<float>(red * pixel::kWordScale), static_cast<float>(green * pixel::kWordScale),
           static_cast<float>(blue * pixel::kWordScale)};
}
inline void StRGBA64Pixel::Invert() {
    pixel::ComplementColors(*this, 65535);
}
