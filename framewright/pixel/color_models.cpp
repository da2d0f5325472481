#include "framewright/pixel/color_models.h"

#include <algorithm>
#include <cmath>

#include "framewright/core/startup.h"
#include "framewright/pixel/cmyk_pixel.h"
#include "framewright/pixel/model_pixels.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);

namespace {

std::uint8_t Byte(int value) {
    return static_cast<std::uint8_t>(value);
}

/// 0 to 100 as 0 to 255.
int PercentToByte(int value) {
    return ((value >> 1) + value * 25) / 10;
}

std::uint8_t ClampToByte(int value) {
    return Byte(std::clamp(value, 0, 255));
}
std::uint8_t ClampToPercent(int value) {
    return Byte(std::clamp(value, 0, 100));
}

void SetColor(StRGBA32Pixel& color, int red, int green, int blue) {
    color.red = Byte(red);
    color.green = Byte(green);
    color.blue = Byte(blue);
}

struct StExtent {
    explicit StExtent(StRGBA32Pixel const& color)
        : least(std::min({color.red, color.green, color.blue})),
          most(std::max({color.red, color.green, color.blue})) {}
    int least, most;
};

/// The angle on the hexagon, from -60 to 300; `color` is no grey.
int HexagonHue(StRGBA32Pixel const& color, StExtent const& extent) {
    int const delta = extent.most - extent.least;
    if (extent.most == color.red) return (color.green - color.blue) * 60 / delta;
    if (extent.most == color.green) return (color.blue - color.red) * 60 / delta + 120;
    return (color.red - color.green) * 60 / delta + 240;
}

/// The angle within the third of the circle that starts at `start` degrees and leads from the channel `first`
/// to the channel `next`; `least` is the value of the third one.
int ThirdHue(int first, int next, int least, int start) {
    int const span = first + next - 2 * least;
    return (next - least) * 120 / (span == 0 ? 1 : span) + start;
}

/// HSV's own measure of hue. Blue is tried first, so on a tie blue is the least.
int ThirdsHue(StRGBA32Pixel const& color, int least) {
    if (least == color.blue) return ThirdHue(color.red, color.green, least, 0);
    if (least == color.red) return ThirdHue(color.green, color.blue, least, 120);
    return ThirdHue(color.blue, color.red, least, 240);
}

}  // namespace

void SrConvertPixel(StRGBA32Pixel const& from, StHSLAPixel& to) {
    StExtent const extent(from);
    int const sum = extent.most + extent.least, delta = extent.most - extent.least;
    to.lightness = Byte(sum * 100 / 510);
    to.saturation = 0;
    to.hue = 0;
    to.alpha = from.alpha;
    if (delta == 0) return;
    to.saturation = Byte(delta * 100 / (to.lightness < 50 ? sum : 510 - sum));
    to.hue = static_cast<std::uint16_t>(HexagonHue(from, extent));
    if (to.hue > 360) to.hue = static_cast<std::uint16_t>(to.hue - 360);
}

void SrConvertPixel(StHSLAPixel const& from, StRGBA32Pixel& to) {
    to.alpha = from.alpha;
    int const l = from.lightness, s = from.saturation;
    int const high = PercentToByte(l < 51 ? (s + 100) * l / 100 : s + l - l * s / 100);
    if (high < 1) return SetColor(to, 0, 0, 0);
    std::uint8_t const low = Byte(l * 510 / 100 - high);
    std::uint8_t const part = Byte((high - low) * (from.hue % 60) / 60);
    std::uint8_t const falling = Byte(high - part), rising = Byte(low + part);
    switch (from.hue / 60) {
        case 0:
        case 6:
            return SetColor(to, high, rising, low);
        case 1:
            return SetColor(to, falling, high, low);
        case 2:
            return SetColor(to, low, high, rising);
        case 3:
            return SetColor(to, low, falling, high);
        case 4:
            return SetColor(to, rising, low, high);
        case 5:
            return SetColor(to, high, low, falling);
        default:
            return;
    }
}

void SrConvertPixel(StRGBA32Pixel const& from, StHSVAPixel& to) {
    StExtent const extent(from);
    to.value = ClampToPercent(extent.most * 100 / 255);
    to.saturation = ClampToPercent((extent.most - extent.least) * 100 / std::max(extent.most, 1));
    int hue = ThirdsHue(from, extent.least);
    if (hue < 0) hue += 360;
    if (hue > 360) hue -= 360;
    to.hue = static_cast<std::uint16_t>(hue);
    to.alpha = from.alpha;
}

void SrConvertPixel(StHSVAPixel const& from, StRGBA32Pixel& to) {
    int const top = PercentToByte(from.value), saturation = PercentToByte(from.saturation);
    int const bottom = (255 - saturation) * top / 255, span = top - bottom;
    int const h = from.hue;
    int red = top, green = top, blue = top;
    if (h < 61) {
        green = span * h / (120 - h) + bottom;
        blue = bottom;
    } else if (h < 121) {
        red = span * (120 - h) / h + bottom;
        blue = bottom;
    } else if (h < 181) {
        blue = span * (h - 120) / (240 - h) + bottom;
        red = bottom;
    } else if (h < 241) {
        green = span * (240 - h) / (h - 120) + bottom;
        red = bottom;
    } else if (h < 301) {
        red = span * (h - 240) / (360 - h) + bottom;
        green = bottom;
    } else {
        blue = span * (360 - h) / (h - 240) + bottom;
        green = bottom;
    }
    to = {ClampToByte(blue), ClampToByte(green), ClampToByte(red), from.alpha};
}

void SrConvertPixel(StRGBA32Pixel const& from, StYIQAPixel& to) {
    double const r = from.red, g = from.green, b = from.blue;
    double const luma = (0.3 * r + 0.59 * g + 0.11 * b) * 0.3921568627450981;
    double const inPhase = (0.6 * r - 0.28 * g - 0.32 * b) * 0.32679738562091504 + 50.0;
    double const quadrature = (0.21 * r - 0.52 * g + 0.31 * b) * 0.3770739064856712 + 50.0;
    to = {ClampToPercent(SrITrunc(luma)), ClampToPercent(SrITrunc(inPhase)),
          ClampToPercent(SrITrunc(quadrature)), from.alpha};
}

void SrConvertPixel(StYIQAPixel const& from, StRGBA32Pixel& to) {
    double const y = from.luma * 2.55;
    double const i = (from.inPhase - 50.0) * 3.06;
    double const q = (from.quadrature - 50.0) * 2.652;
    double const red = y + 0.948 * i + 0.624 * q;
    double const green = y - 0.276 * i - 0.64 * q;
    double const blue = y - 1.105 * i + 1.73 * q;
    to = {ClampToByte(SrITrunc(blue)), ClampToByte(SrITrunc(green)), ClampToByte(SrITrunc(red)), from.alpha};
}

void SrConvertPixel(StRGBA32Pixel const& from, StCMYKPixel& to) {
    int const cyan = 255 - from.red, magenta = 255 - from.green, yellow = 255 - from.blue;
    int const black = std::min({cyan, magenta, yellow});
    to = {Byte(cyan - black), Byte(magenta - black), Byte(yellow - black), Byte(black)};
}

void SrConvertPixel(StCMYKPixel const& from, StRGBA32Pixel& to) {
    to = {Byte(255 - from.yellow - from.black), Byte(255 - from.magenta - from.black),
          Byte(255 - from.cyan - from.black), 255};
}

void SrConvertPixel(StRGBA32Pixel const& from, RGBColor& to) {
    to = {pixel::ByteToWord(from.red), pixel::ByteToWord(from.green), pixel::ByteToWord(from.blue)};
}

void SrConvertPixel(RGBColor const& from, StRGBA32Pixel& to) {
    to.red = pixel::WordToByte(from.red);
    to.green = pixel::WordToByte(from.green);
    to.blue = pixel::WordToByte(from.blue);
}

void SrConvertPixel(StColorFloats const& from, RGBColor& to) {
    to = {pixel::ToWord(from.red), pixel::ToWord(from.green), pixel::ToWord(from.blue)};
}

void SrConvertPixel(RGBColor const& from, StColorFloats& to) {
    to = {pixel::WordToFloat(from.red), pixel::WordToFloat(from.green), pixel::WordToFloat(from.blue)};
}

unsigned char SrGrayScale(StRGBA32Pixel color) {
    return pixel::GrayOf(color);
}

StColorFloats& SrColorPower(StColorFloats& color, float power) {
    for (float* channel : {&color.red, &color.green, &color.blue}) {
        // Above 0 through logarithms at extended precision; pow settles what they cannot.
        if (*channel > 0.0f)
            *channel = static_cast<float>(std::exp2(power * std::log2(static_cast<long double>(*channel))));
        else
            *channel =
                static_cast<float>(std::pow(static_cast<double>(*channel), static_cast<double>(power)));
    }
    return color;
}

unsigned char SrMakeRangeMask(unsigned char value) {
    unsigned mask = 0;
    for (unsigned bit = 0x80; bit != 0; bit >>= 1) {
        mask |= bit;
        if (value & bit) break;
    }
    return static_cast<unsigned char>(mask);
}
