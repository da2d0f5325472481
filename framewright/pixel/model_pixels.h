// Colours in other models, for arithmetic and for pickers: no layer is made of them and no stream holds them.
// They convert through SrConvertPixel.
#pragma once

#include "framewright/pixel/color_models.h"

namespace pixel {

/// The colour of a record of another model; what its conversion leaves alone is 0.
template <class Record>
StRGBA32Pixel ModelBytes(Record const& record) {
    StRGBA32Pixel color{};
    SrConvertPixel(record, color);
    return color;
}
template <class Record>
float ModelFloat(Record const& record) {
    return static_cast<float>(IntegerSumOf(ModelBytes(record)) * kThreeBytesScale);
}

}  // namespace pixel

/// Hue, saturation, lightness, alpha.
///
///     byte   0 1   2           3          4
///            hue  saturation  lightness  alpha
///
/// Hue in degrees, 0 to 360; saturation and lightness 0 to 100; alpha 0 to 255. Opaque red is 0, 100, 50,
/// 255.
struct FRAMEWRIGHT_EXPORT StHSLAPixel {
    std::uint16_t hue;
    std::uint8_t saturation, lightness, alpha;

    SR_PIXEL_RECORD(StHSLAPixel);

    void ConvertToColorFloats(StColorFloats& out) const { out = pixel::ByteFloats(GetRGBA32()); }
    float ConvertToFloat() const { return pixel::ModelFloat(*this); }

    StRGBA32Pixel GetRGBA32() const { return pixel::ModelBytes(*this); }
    void SetRGBA32(StRGBA32Pixel color) { SrConvertPixel(color, *this); }
    /// The grey goes into alpha too.
    void SetFloat(float value) { SetRGBA32(pixel::SameBytes(pixel::ToByte(value))); }
    void SetColorFloats(StColorFloats const& color) { SetRGBA32(pixel::OpaqueBytes(color)); }
};

/// Hue, saturation, value, alpha.
///
///     byte   0 1   2           3      4
///            hue  saturation  value  alpha
///
/// Hue in degrees, 0 to 360; saturation and value 0 to 100; alpha 0 to 255. Opaque red is 0, 100, 100, 255.
struct FRAMEWRIGHT_EXPORT StHSVAPixel {
    std::uint16_t hue;
    std::uint8_t saturation, value, alpha;

    SR_PIXEL_RECORD(StHSVAPixel);

    void ConvertToColorFloats(StColorFloats& out) const { out = pixel::ByteFloats(GetRGBA32()); }
    float ConvertToFloat() const { return pixel::ModelFloat(*this); }

    StRGBA32Pixel GetRGBA32() const { return pixel::ModelBytes(*this); }
    void SetRGBA32(StRGBA32Pixel color) { SrConvertPixel(color, *this); }
    void SetFloat(float level) { SetRGBA32(pixel::SameBytes(pixel::ToByte(level))); }
    void SetColorFloats(StColorFloats const& color) { SetRGBA32(pixel::OpaqueBytes(color)); }
};

/// The video model: luma and two chroma signals, with alpha.
///
///     byte   0     1        2           3
///           luma  inPhase  quadrature  alpha
///
/// Luma 0 to 100; the chroma signals 0 to 100, 50 for none; alpha 0 to 255. Opaque white is 100, 50, 50, 255.
struct FRAMEWRIGHT_EXPORT StYIQAPixel {
    std::uint8_t luma, inPhase, quadrature, alpha;

    SR_PIXEL_RECORD(StYIQAPixel);

    void ConvertToColorFloats(StColorFloats& out) const { out = pixel::ByteFloats(GetRGBA32()); }
    float ConvertToFloat() const { return pixel::ModelFloat(*this); }

    StRGBA32Pixel GetRGBA32() const { return pixel::ModelBytes(*this); }
    void SetRGBA32(StRGBA32Pixel color) { SrConvertPixel(color, *this); }
    void SetFloat(float value) { SetRGBA32(pixel::SameBytes(pixel::ToByte(value))); }
    void SetColorFloats(StColorFloats const& color) { SetRGBA32(pixel::OpaqueBytes(color)); }
};
