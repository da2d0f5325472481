// Four inks.
#pragma once

#include "framewright/pixel/color_models.h"

/// Four bytes: cyan, magenta, yellow, black; 0 no ink, 255 full ink.
///
///     byte   0     1        2       3
///           cyan  magenta  yellow  black
///
/// Orange (255, 128, 0) is 00 7F FF 00. The inks of a channel are taken off 255 and wrap below 0: cyan 200
/// with black 100 is red 211. Nothing clamps them.
struct FRAMEWRIGHT_EXPORT StCMYKPixel {
    std::uint8_t cyan, magenta, yellow, black;

    SR_LAYER_PIXEL_RECORD(StCMYKPixel);

    /// The plain average of each ink.
    void Merge(StCMYKPixel other);
    void Blend(StCMYKPixel const& other, float t);
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out = pixel::OpaqueByteFloats(GetRGBA32()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(pixel::ColorBytes(in)); }
    void ConvertToColorFloats(StColorFloats& out) const { out = pixel::ByteFloats(GetRGBA32()); }
    float ConvertToFloat() const {
        return static_cast<float>(pixel::IntegerSumOf(GetRGBA32()) * pixel::kThreeBytesScale);
    }
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const {
        StRGBA32Pixel color;
        SrConvertPixel(*this, color);
        return color;
    }
    void SetRGBA32(StRGBA32Pixel color) { SrConvertPixel(color, *this); }
    void SetFloat(float value) { SetRGBA32(pixel::OpaqueGray(pixel::ToByte(value))); }
    void SetColorFloats(StColorFloats const& color) { SetRGBA32(pixel::OpaqueBytes(color)); }
    void Invert();
};

inline void StCMYKPixel::Merge(StCMYKPixel other) {
    cyan = static_cast<std::uint8_t>(pixel::Average(cyan, other.cyan));
    magenta = static_cast<std::uint8_t>(pixel::Average(magenta, other.magenta));
    yellow = static_cast<std::uint8_t>(pixel::Average(yellow, other.yellow));
    black = static_cast<std::uint8_t>(pixel::Average(black, other.black));
}
inline void StCMYKPixel::Blend(StCMYKPixel const& other, float t) {
    pixel::ScWordBlend const mix(t);
    cyan = static_cast<std::uint8_t>(mix(cyan, other.cyan));
    magenta = static_cast<std::uint8_t>(mix(magenta, other.magenta));
    yellow = static_cast<std::uint8_t>(mix(yellow, other.yellow));
    black = static_cast<std::uint8_t>(mix(black, other.black));
}
inline void StCMYKPixel::Invert() {
    cyan = static_cast<std::uint8_t>(255 - cyan);
    magenta = static_cast<std::uint8_t>(255 - magenta);
    yellow = static_cast<std::uint8_t>(255 - yellow);
    black = static_cast<std::uint8_t>(255 - black);
}
