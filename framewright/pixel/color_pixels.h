// The three working colours that all conversions pass through: four bytes, three floats, four floats.
#pragma once

#include "framewright/pixel/channel.h"
#include "framewright/pixel/pixel_table.h"
#include "framewright/thornmere/export.h"

class SmStream;

/// Four bytes: blue, green, red, alpha. Straight alpha: 255 opaque, 0 transparent, colour never
/// premultiplied.
///
///     byte   0     1      2    3
///           blue  green  red  alpha      word 0xAARRGGBB on a little-endian host
///
/// Opaque orange (255, 128, 0) lies in memory as 00 80 FF FF; the stream order is red, green, blue, alpha.
struct FRAMEWRIGHT_EXPORT StRGBA32Pixel {
    std::uint8_t blue, green, red, alpha;

    SR_LAYER_PIXEL_RECORD(StRGBA32Pixel);

    /// Lays `other` over this: source-over with straight alpha, all divisions in integers. An opaque `other`
    /// replaces this exactly, a transparent one changes nothing.
    void Merge(StRGBA32Pixel const& other);
    void Blend(StRGBA32Pixel const& other, float t);
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const;
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in);
    void ConvertToColorFloats(StColorFloats& out) const;
    float ConvertToFloat() const;
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const { return *this; }
    void SetRGBA32(StRGBA32Pixel color) { *this = color; }
    void SetFloat(float value) { blue = green = red = alpha = pixel::ToByte(value); }
    void SetColorFloats(StColorFloats const& color);
    void Invert();
};

/// Three floats: red, green, blue; nominally 0.0 to 1.0, though nothing holds them there. The system's
/// working colour.
///
///     byte   0    4      8
///           red  green  blue
///
/// Orange is 1.0, 0.5, 0.0: 00 00 80 3F, 00 00 00 3F, 00 00 00 00.
struct FRAMEWRIGHT_EXPORT StColorFloats {
    float red, green, blue;

    SR_LAYER_PIXEL_RECORD(StColorFloats);

    void Merge(StColorFloats other);
    void Blend(StColorFloats const& other, float t);
    void ConvertToColorFloats(StColorFloats& out) const { out = *this; }
    float ConvertToFloat() const;
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const;
    void SetRGBA32(StRGBA32Pixel color);
    void SetFloat(float value) { red = green = blue = value; }
    void SetColorFloats(StColorFloats const& color) { *this = color; }
    void Invert();
};

/// Four floats: red, green, blue, alpha; nominally 0.0 to 1.0, alpha 1.0 opaque.
///
///     byte   0    4      8     12
///           red  green  blue  alpha
///
/// Half transparent red is 1.0, 0.0, 0.0, 0.5.
struct FRAMEWRIGHT_EXPORT StRGBAFloatPixel {
    float red, green, blue, alpha;

    SR_LAYER_PIXEL_RECORD(StRGBAFloatPixel);

    void Merge(StRGBAFloatPixel other);
    void Blend(StRGBAFloatPixel const& other, float t);
    void ConvertToColorFloats(StColorFloats& out) const { out = {red, green, blue}; }
    float ConvertToFloat() const;
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const;
    void SetRGBA32(StRGBA32Pixel color);
    void SetFloat(float value) { red = green = blue = alpha = value; }
    void SetColorFloats(StColorFloats const& color) { *this = {color.red, color.green, color.blue, 1.0f}; }
    /// Complements the colour; alpha is kept.
    void Invert();
};

namespace pixel {

/// SkBlackColorBytes() and SkWhiteColorBytes(): black is transparent, white is opaque.
inline constexpr StRGBA32Pixel kBlackBytes{0, 0, 0, 0};
inline constexpr StRGBA32Pixel kWhiteBytes{255, 255, 255, 255};

/// Colour floats as opaque bytes.
constexpr StRGBA32Pixel OpaqueBytes(StColorFloats const& color) {
    return {ToByte(color.blue), ToByte(color.green), ToByte(color.red), 255};
}
/// One grey byte as an opaque colour.
constexpr StRGBA32Pixel OpaqueGray(std::uint8_t level) {
    return {level, level, level, 255};
}
/// One byte in all four.
constexpr StRGBA32Pixel SameBytes(std::uint8_t value) {
    return {value, value, value, value};
}
/// The grey of a colour: the plain mean of its bytes.
constexpr std::uint8_t GrayOf(StRGBA32Pixel color) {
    return static_cast<std::uint8_t>(IntegerSumOf(color) / 3);
}
/// The colour of float channels as bytes whose alpha is not used.
constexpr StRGBA32Pixel ColorBytes(StRGBAFloatPixel const& color) {
    return {ToByte(color.blue), ToByte(color.green), ToByte(color.red), 0};
}
/// Colour bytes as floats.
constexpr StColorFloats ByteFloats(StRGBA32Pixel color) {
    return {ByteToFloat(color.red), ByteToFloat(color.green), ByteToFloat(color.blue)};
}
/// The same as an opaque colour.
constexpr StRGBAFloatPixel OpaqueByteFloats(StRGBA32Pixel color) {
    return {ByteToFloat(color.red), ByteToFloat(color.green), ByteToFloat(color.blue), 1.0f};
}

}  // namespace pixel

inline void StRGBA32Pixel::Merge(StRGBA32Pixel const& other) {
    pixel::LayOver(*this, other, 255);
}

inline void StRGBA32Pixel::Blend(StRGBA32Pixel const& other, float t) {
    pixel::ScByteBlend const mix(t);
    pixel::CombineColors(*this, other, mix);
    alpha = static_cast<std::uint8_t>(mix(alpha, other.alpha));
}

inline void StRGBA32Pixel::ConvertToRGBAFloat(StRGBAFloatPixel& out) const {
    out.SetRGBA32(*this);
}
inline void StRGBA32Pixel::ConvertFromRGBAFloat(StRGBAFloatPixel const& in) {
    *this = in.GetRGBA32();
}
inline void StRGBA32Pixel::ConvertToColorFloats(StColorFloats& out) const {
    out = pixel::ByteFloats(*this);
}
inline float StRGBA32Pixel::ConvertToFloat() const {
    return pixel::kInverseTriByte * static_cast<float>(pixel::IntegerSumOf(*this));
}
inline void StRGBA32Pixel::SetColorFloats(StColorFloats const& color) {
    *this = pixel::OpaqueBytes(color);
}
inline void StRGBA32Pixel::Invert() {
    pixel::ComplementColors(*this, 255);
}

inline void StColorFloats::Merge(StColorFloats other) {
    red = static_cast<float>((static_cast<double>(red) + other.red) * 0.5);
    green = static_cast<float>((static_cast<double>(green) + other.green) * 0.5);
    blue = static_cast<float>((static_cast<double>(blue) + other.blue) * 0.5);
}
inline void StColorFloats::Blend(StColorFloats const& other, float t) {
    pixel::CombineColors(*this, other, [t](float from, float to) { return pixel::BlendFloats(from, to, t); });
}
inline float StColorFloats::ConvertToFloat() const {
    return static_cast<float>(pixel::SumOf(*this) * pixel::kInverseTriFloat);
}
inline StRGBA32Pixel StColorFloats::GetRGBA32() const {
    return pixel::OpaqueBytes(*this);
}
inline void StColorFloats::SetRGBA32(StRGBA32Pixel color) {
    red = static_cast<float>(color.red * pixel::kByteScale);
    green = static_cast<float>(color.green * pixel::kByteScale);
    blue = static_cast<float>(color.blue * pixel::kByteScale);
}
inline void StColorFloats::Invert() {
    pixel::ComplementColors(*this, 1.0);
}

inline void StRGBAFloatPixel::Merge(StRGBAFloatPixel other) {
    if (other.alpha == 0.0f) return;
    double const over = other.alpha;
    double const sum = (1.0 - alpha) * over + alpha;
    double const under = sum - over;
    red = static_cast<float>((red * under + other.red * over) / sum);
    green = static_cast<float>((green * under + other.green * over) / sum);
    blue = static_cast<float>((blue * under + other.blue * over) / sum);
    alpha = static_cast<float>(sum);
}
inline void StRGBAFloatPixel::Blend(StRGBAFloatPixel const& other, float t) {
    pixel::CombineColors(*this, other, [t](float from, float to) { return pixel::BlendFloats(from, to, t); });
    alpha = pixel::BlendFloats(alpha, other.alpha, t);
}
inline float StRGBAFloatPixel::ConvertToFloat() const {
    return static_cast<float>(pixel::SumOf(*this) * pixel::kThird);
}
inline StRGBA32Pixel StRGBAFloatPixel::GetRGBA32() const {
    return {pixel::ToByte(blue), pixel::ToByte(green), pixel::ToByte(red), pixel::ToByte(alpha)};
}
inline void StRGBAFloatPixel::SetRGBA32(StRGBA32Pixel color) {
    *this = {pixel::ByteToFloat(color.red), pixel::ByteToFloat(color.green), pixel::ByteToFloat(color.blue),
             pixel::ByteToFloat(color.alpha)};
}
inline void StRGBAFloatPixel::Invert() {
    pixel::ComplementColors(*this, 1.0);
}
