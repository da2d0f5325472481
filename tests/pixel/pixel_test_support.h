// What the tests of the pixel records share: the rules' constants as decimal numbers, truncations written a
// second time, values to run through, and records as arrays that compare and print.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "framewright/pixel/pixels.h"
#include "framewright/pixel/smart_pixel.h"

namespace pixel_test {

constexpr double kInverseByte = 0.003921568859368563;
constexpr double kInverseWord = 1.5259021893143654e-05;
constexpr double kInverseTriFloat = 0.3333333432674408;
constexpr double kInverseTriByte = 0.0013071895809844136;
constexpr double kThreeBytes = 0.00130718954248366;
constexpr double kThreeWords = 5.08634063223214e-06;

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Toward zero to 32 bits; what is out of range is 0x80000000.
inline std::uint32_t Trunc32(double value) {
    double const whole = std::trunc(value);
    if (std::isnan(whole) || whole < -2147483648.0 || whole > 2147483647.0) return 0x80000000;
    return static_cast<std::uint32_t>(static_cast<long long>(whole));
}
/// Toward zero to 64 bits, then the low 32; what is out of range is 0x8000000000000000, so 0.
inline std::uint32_t Low32(double value) {
    double const whole = std::trunc(value);
    if (!(std::fabs(whole) < std::ldexp(1.0, 63))) return 0;
    return static_cast<std::uint32_t>(static_cast<long long>(whole) & 0xFFFFFFFF);
}
inline std::uint32_t ByteOf(double value) {
    return Trunc32(255.0 * value) % 256;
}
inline std::uint32_t WordOf(double value) {
    return Trunc32(65535.0 * value) % 65536;
}

/// The bits of a float; one pattern for every NaN.
inline std::uint32_t Bits(float value) {
    return std::isnan(value) ? 0x7FC00000 : std::bit_cast<std::uint32_t>(value);
}
/// The bits of a double rounded to float.
inline std::uint32_t Rounded(double value) {
    return Bits(static_cast<float>(value));
}

template <std::size_t Count>
using Fields = std::array<std::uint32_t, Count>;

// Red, green, blue first, whatever the order in memory, then the fourth field. Floats as bits.
inline Fields<4> Of(StRGBA32Pixel p) {
    return {p.red, p.green, p.blue, p.alpha};
}
inline Fields<4> Of(StRGB32Pixel p) {
    return {p.red, p.green, p.blue, p.filler};
}
inline Fields<3> Of(StRGB24Pixel p) {
    return {p.red, p.green, p.blue};
}
inline Fields<4> Of(StRGB15Pixel p) {
    return {p.red, p.green, p.blue, p.flag};
}
inline Fields<3> Of(StRGB48Pixel p) {
    return {p.red, p.green, p.blue};
}
inline Fields<4> Of(StRGBA64Pixel p) {
    return {p.red, p.green, p.blue, p.alpha};
}
inline Fields<3> Of(StColorFloats p) {
    return {Bits(p.red), Bits(p.green), Bits(p.blue)};
}
inline Fields<4> Of(StRGBAFloatPixel p) {
    return {Bits(p.red), Bits(p.green), Bits(p.blue), Bits(p.alpha)};
}
inline Fields<4> Of(StRGBTFloatPixel p) {
    return {Bits(p.red), Bits(p.green), Bits(p.blue), Bits(p.transmission)};
}
inline Fields<1> Of(StGray8Pixel p) {
    return {p.level};
}
inline Fields<2> Of(StGray4Pixel p) {
    return {p.level, p.rest};
}
inline Fields<2> Of(StGray2Pixel p) {
    return {p.level, p.rest};
}
inline Fields<2> Of(StBlackWhitePixel p) {
    return {p.black, p.rest};
}
inline Fields<1> Of(StMapped8Pixel p) {
    return {p.index};
}
inline Fields<2> Of(StMapped4Pixel p) {
    return {p.index, p.rest};
}
inline Fields<2> Of(StMapped2Pixel p) {
    return {p.index, p.rest};
}
inline Fields<2> Of(StMapped1Pixel p) {
    return {p.index, p.rest};
}
inline Fields<1> Of(StAlpha8Pixel p) {
    return {p.alpha};
}
inline Fields<1> Of(StAlpha32Pixel p) {
    return {p.alpha};
}
inline Fields<1> Of(StDepthFloatPixel p) {
    return {Bits(p.depth)};
}
inline Fields<1> Of(StDepthUInt8Pixel p) {
    return {p.depth};
}
inline Fields<1> Of(StDepthUInt16Pixel p) {
    return {p.depth};
}
inline Fields<2> Of(StDepthUInt24Pixel p) {
    return {p.depth, p.rest};
}
inline Fields<1> Of(StDepthUInt32Pixel p) {
    return {p.depth};
}
inline Fields<4> Of(StCMYKPixel p) {
    return {p.cyan, p.magenta, p.yellow, p.black};
}
inline Fields<4> Of(StHSLAPixel p) {
    return {p.hue, p.saturation, p.lightness, p.alpha};
}
inline Fields<4> Of(StHSVAPixel p) {
    return {p.hue, p.saturation, p.value, p.alpha};
}
inline Fields<4> Of(StYIQAPixel p) {
    return {p.luma, p.inPhase, p.quadrature, p.alpha};
}
inline Fields<2> Of(StVelocityPixel p) {
    return {Bits(p.x), Bits(p.y)};
}

/// A colour of bytes, red first.
inline StRGBA32Pixel Color(unsigned red, unsigned green, unsigned blue, unsigned alpha) {
    return {static_cast<std::uint8_t>(blue), static_cast<std::uint8_t>(green), static_cast<std::uint8_t>(red),
            static_cast<std::uint8_t>(alpha)};
}

/// Colours in which every channel takes every value, with the others above, below and apart.
inline std::vector<StRGBA32Pixel> const& ManyColors() {
    static std::vector<StRGBA32Pixel> const colors = [] {
        std::vector<StRGBA32Pixel> list;
        for (unsigned v = 0; v < 256; ++v) {
            list.push_back(Color(v, v, v, v));
            list.push_back(Color(v, 255 - v, v ^ 0x5A, 255 - v));
            list.push_back(Color(v * 7 % 256, v, 255 - v, 255));
            list.push_back(Color(255, v, 0, 0));
            list.push_back(Color(0, 255, v, 128));
            list.push_back(Color(v, 0, 255, 1));
        }
        return list;
    }();
    return colors;
}

/// Where float rules change: the ends, their neighbours, outside, and what no integer can hold.
inline std::vector<float> const& EdgeFloats() {
    static std::vector<float> const list = {0.0f,
                                            -0.0f,
                                            1.0f,
                                            std::nextafter(0.0f, 1.0f),
                                            std::nextafter(0.0f, -1.0f),
                                            std::nextafter(1.0f, 0.0f),
                                            std::nextafter(1.0f, 2.0f),
                                            1.0000001f,
                                            0.5f,
                                            std::nextafter(0.5f, 0.0f),
                                            std::nextafter(0.5f, 1.0f),
                                            1.5f,
                                            -0.25f,
                                            -1.0f,
                                            256.0f / 255.0f,
                                            0.999f,
                                            100.75f,
                                            -100.75f,
                                            8421504.0f,
                                            8421505.0f,
                                            -8421505.0f,
                                            2147483648.0f,
                                            -2147483648.0f,
                                            4294967296.0f,
                                            1e19f,
                                            3e38f,
                                            -3e38f,
                                            kNaN,
                                            kInf,
                                            -kInf};
    return list;
}
/// The edges, and each step of the byte scale with both neighbours.
inline std::vector<float> const& ManyFloats() {
    static std::vector<float> const floats = [] {
        std::vector<float> list = EdgeFloats();
        for (int k = 0; k <= 255; ++k) {
            float const step = static_cast<float>(k / 255.0);
            list.insert(list.end(), {std::nextafter(step, -1.0f), step, std::nextafter(step, 2.0f),
                                     static_cast<float>((k + 0.37) / 255.0)});
        }
        return list;
    }();
    return floats;
}
/// Three floats from the list at `i`: alike neighbours, far ones, and turns of them.
inline StColorFloats FloatColor(std::size_t i) {
    auto const& list = ManyFloats();
    return {list[i % list.size()], list[(i * 7 + 3) % list.size()], list[(i * 31 + 11) % list.size()]};
}

/// A smart pixel of one record, made as its users make it.
template <class Record>
class Smart {
  public:
    Smart() = default;
    explicit Smart(Record const& record) { mPixel->SetPixelData(&record); }
    ScSmartPixel* operator->() { return mPixel.get(); }
    ScSmartPixel* Get() { return mPixel.get(); }
    Record& Value() { return *static_cast<Record*>(mPixel->GetPixelData()); }

  private:
    std::unique_ptr<ScSmartPixel> mPixel{Record::NewSmartPixel()};
};

/// A smart pixel that says what it is told, counts what it is asked, and shows a payload of its own.
class StSpy : public ScSmartPixel {
  public:
    unsigned long FamilyID() const override { return 0; }
    unsigned long PixelID() const override { return id; }
    void* GetPixelData() override { return payload; }
    void SetPixelData(void const* record) override { std::memcpy(payload, record, sizeof payload); }
    StRGBA32Pixel GetRGBA32() const override {
        ++colorsAsked;
        return color;
    }
    void SetRGBA32(StRGBA32Pixel) override {}
    float GetFloat() const override {
        ++floatsAsked;
        return value;
    }
    void SetFloat(float) override {}
    void GetColorFloats(StColorFloats&) const override {}
    void SetColorFloats(StColorFloats const&) override {}

    unsigned long id = SrCode("????");
    alignas(8) unsigned char payload[16] = {};
    StRGBA32Pixel color{};
    float value = 0;
    mutable int colorsAsked = 0, floatsAsked = 0;
};

}  // namespace pixel_test
