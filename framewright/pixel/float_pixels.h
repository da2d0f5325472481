// Records of floats that no layer is made of: colour with transmission, and velocity.
#pragma once

#include <cmath>

#include "framewright/pixel/color_pixels.h"

/// Four floats: red, green, blue, transmission. The one record that stores how much shines through:
/// transmission 0.0 is opaque, 1.0 wholly transparent.
///
///     byte   0    4      8     12
///           red  green  blue  transmission
///
/// Opaque red is 1.0, 0.0, 0.0, 0.0.
struct FRAMEWRIGHT_EXPORT StRGBTFloatPixel {
    float red, green, blue, transmission;

    SR_PIXEL_RECORD(StRGBTFloatPixel);

    void ConvertToColorFloats(StColorFloats& out) const { out = {red, green, blue}; }
    float ConvertToFloat() const { return static_cast<float>(pixel::SumOf(*this) * pixel::kThird); }

    StRGBA32Pixel GetRGBA32() const {
        return {pixel::ToByte(blue), pixel::ToByte(green), pixel::ToByte(red),
                pixel::ToByte(1.0 - transmission)};
    }
    void SetRGBA32(StRGBA32Pixel color) {
        StColorFloats floats;
        floats.SetRGBA32(color);
        *this = {floats.red, floats.green, floats.blue,
                 static_cast<float>(1.0 - color.alpha * pixel::kByteScale)};
    }
    void SetFloat(float value) { *this = {value, value, value, static_cast<float>(1.0 - value)}; }
    void SetColorFloats(StColorFloats const& color) { *this = {color.red, color.green, color.blue, 0.0f}; }
};

/// Two floats: horizontal and vertical velocity, in any unit.
///
///     byte   0  4
///            x  y
///
/// As colour, x is red and y is green, without scale: (3.0, 4.0) reads as bytes 3, 4, 0 and as the float 5.0.
struct FRAMEWRIGHT_EXPORT StVelocityPixel {
    float x, y;

    SR_PIXEL_RECORD(StVelocityPixel);

    void ConvertToColorFloats(StColorFloats& out) const { out = {x, y, 0.0f}; }
    /// The speed.
    float ConvertToFloat() const {
        return static_cast<float>(std::sqrt(static_cast<double>(x) * x + static_cast<double>(y) * y));
    }

    StRGBA32Pixel GetRGBA32() const {
        return {0, static_cast<std::uint8_t>(SrITrunc(y)), static_cast<std::uint8_t>(SrITrunc(x)), 0};
    }
    void SetRGBA32(StRGBA32Pixel color) {
        *this = {static_cast<float>(color.red), static_cast<float>(color.green)};
    }
    void SetFloat(float value) { x = y = value; }
    void SetColorFloats(StColorFloats const& color) { *this = {color.red, color.green}; }
};
