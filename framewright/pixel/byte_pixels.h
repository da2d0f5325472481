// Colours of bytes, or less, without alpha: 32 bits with a filler, 24 bits, 15 bits with a flag.
#pragma once

#include "framewright/pixel/color_pixels.h"

/// Four bytes: blue, green, red, filler. The filler is never interpreted and no conversion of a
/// colour writes it: only whole records and streams carry it. The colour is opaque.
///
///     byte   0     1      2    3
///           blue  green  red  filler
///
/// Orange (255, 128, 0) over a filler of 0 lies in memory as 00 80 FF 00; the stream order is filler, red,
/// green, blue.
struct FRAMEWRIGHT_EXPORT StRGB32Pixel {
    std::uint8_t blue, green, red, filler;

    SR_LAYER_PIXEL_RECORD(StRGB32Pixel);

    /// The plain average of both colours; the filler stays.
    void Merge(StRGB32Pixel other) { pixel::CombineColors(*this, other, pixel::Average); }
    void Blend(StRGB32Pixel const& other, float t) {
        pixel::CombineColors(*this, other, pixel::ScByteBlend(t));
    }
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out = pixel::OpaqueByteFloats(GetRGBA32()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(pixel::ColorBytes(in)); }
    void ConvertToColorFloats(StColorFloats& out) const { out = pixel::ByteFloats(GetRGBA32()); }
    float ConvertToFloat() const {
        return pixel::kInverseTriByte * static_cast<float>(pixel::IntegerSumOf(*this));
    }
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const { return {blue, green, red, 255}; }
    void SetRGBA32(StRGBA32Pixel color) { pixel::TakeColors(*this, color); }
    void SetFloat(float value) { blue = green = red = pixel::ToByte(value); }
    void SetColorFloats(StColorFloats const& color) { SetRGBA32(pixel::OpaqueBytes(color)); }
    void Invert() { pixel::ComplementColors(*this, 255); }
};

/// Three bytes without alignment: blue, green, red.
///
///     byte   0     1      2
///           blue  green  red
///
/// Orange (255, 128, 0) lies in memory as 00 80 FF; the stream order is red, green, blue.
struct FRAMEWRIGHT_EXPORT StRGB24Pixel {
    std::uint8_t blue, green, red;

    SR_LAYER_PIXEL_RECORD(StRGB24Pixel);

    void Merge(StRGB24Pixel other) { pixel::CombineColors(*this, other, pixel::Average); }
    void Blend(StRGB24Pixel const& other, float t) {
        pixel::CombineColors(*this, other, pixel::ScByteBlend(t));
    }
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out = pixel::OpaqueByteFloats(GetRGBA32()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(pixel::ColorBytes(in)); }
    void ConvertToColorFloats(StColorFloats& out) const { out = pixel::ByteFloats(GetRGBA32()); }
    float ConvertToFloat() const {
        return static_cast<float>(pixel::IntegerSumOf(*this) * pixel::kThreeBytesScale);
    }
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const { return {blue, green, red, 255}; }
    void SetRGBA32(StRGBA32Pixel color) { pixel::TakeColors(*this, color); }
    void SetFloat(float value) { blue = green = red = pixel::ToByte(value); }
    void SetColorFloats(StColorFloats const& color) { SetRGBA32(pixel::OpaqueBytes(color)); }
    void Invert() { pixel::ComplementColors(*this, 255); }
};
static_assert(sizeof(StRGB24Pixel) == 3);

/// One 16-bit word: five bits a channel and a spare flag, which no conversion of a colour writes.
///
///     bit   15    14 ... 10   9 ... 5   4 ... 0
///          flag      red       green      blue
///
/// Orange, 31, 16, 0 with the flag clear, is the word 0x7E00 and lies in memory as 00 7E. On a stream the
/// fields stand the other way round, see PutToStream.
struct FRAMEWRIGHT_EXPORT StRGB15Pixel {
    std::uint16_t blue : 5, green : 5, red : 5, flag : 1;

    SR_LAYER_PIXEL_RECORD(StRGB15Pixel);

    void Merge(StRGB15Pixel other);
    /// Moves at the scale of five bits.
    void Blend(StRGB15Pixel const& other, float t);
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out = pixel::OpaqueByteFloats(GetRGBA32()); }
    /// Through bytes, of which the low three bits are lost; SetColorFloats goes straight to five bits.
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(pixel::ColorBytes(in)); }
    void ConvertToColorFloats(StColorFloats& out) const;
    float ConvertToFloat() const {
        return static_cast<float>(pixel::IntegerSumOf(*this) * pixel::kThreeFiveBitsScale);
    }
    void ConvertSmart(ScSmartPixel const* source);
    /// Two bytes, the low one first, of a word with the flag in bit 0, red in bits 1 to 5, green in bits 6 to
    /// 10 and blue in bits 11 to 15.
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const {
        return {pixel::FiveBitsToByte(blue), pixel::FiveBitsToByte(green), pixel::FiveBitsToByte(red), 255};
    }
    void SetRGBA32(StRGBA32Pixel color) { SetColor(color.red >> 3u, color.green >> 3u, color.blue >> 3u); }
    void SetFloat(float value) { SetColorFloats({value, value, value}); }
    void SetColorFloats(StColorFloats const& color) {
        SetColor(pixel::LowBits(31.0 * color.red, 5), pixel::LowBits(31.0 * color.green, 5),
                 pixel::LowBits(31.0 * color.blue, 5));
    }
    void Invert() { SetColor(31u - red, 31u - green, 31u - blue); }
    /// The low five bits of each; the flag stays.
    void SetColor(unsigned newRed, unsigned newGreen, unsigned newBlue) {
        red = newRed & 31;
        green = newGreen & 31;
        blue = newBlue & 31;
    }
};
static_assert(sizeof(StRGB15Pixel) == 2);

inline void StRGB15Pixel::Merge(StRGB15Pixel other) {
    SetColor(pixel::Average(red, other.red), pixel::Average(green, other.green),
             pixel::Average(blue, other.blue));
}
inline void StRGB15Pixel::Blend(StRGB15Pixel const& other, float t) {
    pixel::ScByteBlend const mix(t);
    SetColor(mix(red, other.red), mix(green, other.green), mix(blue, other.blue));
}
inline void StRGB15Pixel::ConvertToColorFloats(StColorFloats& out) const {
    out = {static_cast<float>(red * pixel::kFiveBitScale), static_cast<float>(green * pixel::kFiveBitScale),
           static_cast<float>(blue * pixel::kFiveBitScale)};
}
