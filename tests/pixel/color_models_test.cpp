// Colour models: each conversion beside its steps written a second time, and values worked out by hand.
#include "framewright/pixel/color_models.h"

#include <algorithm>

#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

/// Colours of all corners, edges and a grid within, with all greys.
std::vector<StRGBA32Pixel> const& Cube() {
    static std::vector<StRGBA32Pixel> const colors = [] {
        std::vector<StRGBA32Pixel> list;
        auto step = [](unsigned v) { return v < 3 || v > 250 ? v + 1 : v + 9; };
        for (unsigned r = 0; r < 256; r = step(r))
            for (unsigned g = 0; g < 256; g = step(g))
                for (unsigned b = 0; b < 256; b = step(b))
                    list.push_back(Color(r, g, b, (r + g + b) % 256));
        for (unsigned v = 0; v < 256; ++v)
            list.push_back(Color(v, v, v, v));
        return list;
    }();
    return colors;
}

/// Division of whole numbers toward zero, by way of the absolute values.
long Quotient(long a, long b) {
    long const magnitude = std::labs(a) / std::labs(b);
    return (a < 0) != (b < 0) ? -magnitude : magnitude;
}

Fields<4> SlowHSL(StRGBA32Pixel c) {
    long const r = c.red, g = c.green, b = c.blue;
    long const high = std::max({r, g, b}), low = std::min({r, g, b}), delta = high - low;
    long const lightness = Quotient((high + low) * 100, 510);
    long saturation = 0, hue = 0;
    if (delta != 0) {
        saturation = Quotient(delta * 100, lightness < 50 ? high + low : 510 - high - low);
        if (high == r)
            hue = Quotient((g - b) * 60, delta);
        else if (high == g)
            hue = Quotient((b - r) * 60, delta) + 120;
        else
            hue = Quotient((r - g) * 60, delta) + 240;
        if (hue < 0) hue += 65536;
        if (hue > 360) hue -= 360;
    }
    return {static_cast<std::uint32_t>(hue), static_cast<std::uint32_t>(saturation),
            static_cast<std::uint32_t>(lightness), c.alpha};
}

TEST(ColorModels, RGBToHSL) {
    for (StRGBA32Pixel c : Cube()) {
        StHSLAPixel p{9, 9, 9, 9};
        SrConvertPixel(c, p);
        ASSERT_EQ(Of(p), SlowHSL(c)) << Of(c)[0] << ' ' << Of(c)[1] << ' ' << Of(c)[2];
    }
}

template <class Record>
Fields<4> FromRGB(unsigned r, unsigned g, unsigned b, unsigned a) {
    Record p{};
    SrConvertPixel(Color(r, g, b, a), p);
    return Of(p);
}

TEST(ColorModels, RGBToHSL_ByHand) {
    EXPECT_EQ(FromRGB<StHSLAPixel>(255, 0, 0, 255), (Fields<4>{0, 100, 50, 255}));
    EXPECT_EQ(FromRGB<StHSLAPixel>(0, 255, 0, 1), (Fields<4>{120, 100, 50, 1}));
    EXPECT_EQ(FromRGB<StHSLAPixel>(0, 0, 255, 2), (Fields<4>{240, 100, 50, 2}));
    EXPECT_EQ(FromRGB<StHSLAPixel>(255, 255, 0, 0), (Fields<4>{60, 100, 50, 0}));
    EXPECT_EQ(FromRGB<StHSLAPixel>(0, 0, 0, 3), (Fields<4>{0, 0, 0, 3}));
    EXPECT_EQ(FromRGB<StHSLAPixel>(255, 255, 255, 4), (Fields<4>{0, 0, 100, 4}));
    EXPECT_EQ(FromRGB<StHSLAPixel>(127, 127, 127, 4), (Fields<4>{0, 0, 49, 4}));
    // Red is greatest and blue above green: (0 - 128) * 60 / 255 is -30.
    EXPECT_EQ(FromRGB<StHSLAPixel>(255, 0, 128, 5), (Fields<4>{65146, 100, 50, 5}))
        << "-30 does not become 330";
}

/// Null where red, green and blue stay as they were.
bool SlowFromHSL(long hue, long s, long l, Fields<3>& out) {
    long const m = l < 51 ? Quotient((s + 100) * l, 100) : s + l - Quotient(l * s, 100);
    // An arithmetic shift rounds down.
    long const half = m >= 0 ? m / 2 : -((1 - m) / 2);
    long const high = Quotient(half + m * 25, 10);
    auto byte = [](long v) { return static_cast<std::uint32_t>((v % 256 + 256) % 256); };
    if (high < 1) {
        out = {0, 0, 0};
        return true;
    }
    long const low = byte(Quotient(l * 510, 100) - high);
    long const f = byte(Quotient((high - low) * (hue % 60), 60));
    long const falling = byte(high - f), rising = byte(low + f);
    long const sectors[7][3] = {{high, rising, low},  {falling, high, low}, {low, high, rising},
                                {low, falling, high}, {rising, low, high},  {high, low, falling},
                                {high, rising, low}};
    if (hue / 60 > 6) return false;
    for (int i = 0; i < 3; ++i)
        out[i] = byte(sectors[hue / 60][i]);
    return true;
}

TEST(ColorModels, HSLToRGB) {
    std::vector<unsigned> percents;
    for (unsigned v = 0; v <= 100; v += v < 3 || (v > 47 && v < 53) || v > 97 ? 1 : 5)
        percents.push_back(v);
    for (unsigned v : {101u, 127u, 128u, 200u, 255u})
        percents.push_back(v);
    for (unsigned hue = 0; hue < 500; ++hue)
        for (unsigned s : percents)
            for (unsigned l : percents) {
                StHSLAPixel const p{static_cast<std::uint16_t>(hue), static_cast<std::uint8_t>(s),
                                    static_cast<std::uint8_t>(l), 77};
                StRGBA32Pixel c = Color(11, 22, 33, 44);
                Fields<3> expected = {11, 22, 33};
                SlowFromHSL(hue, s, l, expected);
                SrConvertPixel(p, c);
                ASSERT_EQ(Of(c), (Fields<4>{expected[0], expected[1], expected[2], 77}))
                    << hue << ' ' << s << ' ' << l;
            }
}

template <class Record>
Fields<4> ToRGB(Record const& p) {
    StRGBA32Pixel c = Color(11, 22, 33, 44);
    SrConvertPixel(p, c);
    return Of(c);
}

TEST(ColorModels, HSLToRGB_ByHand) {
    EXPECT_EQ(ToRGB(StHSLAPixel{0, 100, 50, 255}), (Fields<4>{255, 0, 0, 255}));
    EXPECT_EQ(ToRGB(StHSLAPixel{120, 100, 50, 1}), (Fields<4>{0, 255, 0, 1}));
    EXPECT_EQ(ToRGB(StHSLAPixel{240, 100, 50, 2}), (Fields<4>{0, 0, 255, 2}));
    EXPECT_EQ(ToRGB(StHSLAPixel{360, 100, 50, 2}), (Fields<4>{255, 0, 0, 2}))
        << "the sector behind the circle";
    EXPECT_EQ(ToRGB(StHSLAPixel{0, 0, 100, 3}), (Fields<4>{255, 255, 255, 3}));
    EXPECT_EQ(ToRGB(StHSLAPixel{77, 55, 0, 3}), (Fields<4>{0, 0, 0, 3}));
    EXPECT_EQ(ToRGB(StHSLAPixel{65146, 100, 50, 3}), (Fields<4>{11, 22, 33, 3}))
        << "no sector: the colour stays";
    EXPECT_EQ(ToRGB(StHSLAPixel{420, 100, 50, 3}), (Fields<4>{11, 22, 33, 3}));
    EXPECT_EQ(ToRGB(StHSLAPixel{420, 100, 0, 3}), (Fields<4>{0, 0, 0, 3})) << "black in every sector";
    EXPECT_EQ(ToRGB(StHSLAPixel{419, 100, 50, 3})[0], 255u);
}

Fields<4> SlowHSV(StRGBA32Pixel c) {
    long const r = c.red, g = c.green, b = c.blue;
    long const low = std::min({r, g, b}), most = std::max({r, g, b});
    long const value = std::clamp(Quotient(most * 100, 255), 0L, 100L);
    long const saturation = most == 0 ? 0 : std::clamp(Quotient((most - low) * 100, most), 0L, 100L);
    auto or1 = [](long d) { return d == 0 ? 1 : d; };
    long hue;
    if (low == b)
        hue = Quotient((g - low) * 120, or1(r + g - 2 * low));
    else if (low == r)
        hue = Quotient((b - low) * 120, or1(b + g - 2 * low)) + 120;
    else
        hue = Quotient((r - low) * 120, or1(r + b - 2 * low)) + 240;
    return {static_cast<std::uint32_t>(hue), static_cast<std::uint32_t>(saturation),
            static_cast<std::uint32_t>(value), c.alpha};
}

TEST(ColorModels, RGBToHSV) {
    for (StRGBA32Pixel c : Cube()) {
        StHSVAPixel p{9, 9, 9, 9};
        SrConvertPixel(c, p);
        ASSERT_EQ(Of(p), SlowHSV(c)) << Of(c)[0] << ' ' << Of(c)[1] << ' ' << Of(c)[2];
    }
}

TEST(ColorModels, RGBToHSV_ByHand) {
    EXPECT_EQ(FromRGB<StHSVAPixel>(0, 0, 0, 9), (Fields<4>{0, 0, 0, 9})) << "nothing is divided by zero";
    EXPECT_EQ(FromRGB<StHSVAPixel>(255, 255, 255, 9), (Fields<4>{0, 0, 100, 9}));
    EXPECT_EQ(FromRGB<StHSVAPixel>(255, 0, 0, 9), (Fields<4>{0, 100, 100, 9}))
        << "on a tie blue is the least";
    EXPECT_EQ(FromRGB<StHSVAPixel>(0, 255, 0, 9), (Fields<4>{120, 100, 100, 9}));
    EXPECT_EQ(FromRGB<StHSVAPixel>(0, 0, 255, 9), (Fields<4>{240, 100, 100, 9}))
        << "red before green: 120 + 120";
    // Half green on red: 128 * 120 / 383 is 40, where the hexagon has 30.
    EXPECT_EQ(FromRGB<StHSVAPixel>(255, 128, 0, 9), (Fields<4>{40, 100, 100, 9}));
    EXPECT_EQ(FromRGB<StHSVAPixel>(255, 0, 255, 9), (Fields<4>{300, 100, 100, 9}));
}

Fields<3> SlowFromHSV(long h, long s, long v) {
    long const top = Quotient(v / 2 + v * 25, 10), sat = Quotient(s / 2 + s * 25, 10);
    long const m = Quotient((255 - sat) * top, 255), d = top - m;
    long c[3] = {top, top, top};
    enum { kRed, kGreen, kBlue };
    struct StStep {
        long to;
        int moving, least;
        long part, whole;
    };
    StStep const steps[] = {{60, kGreen, kBlue, h, 120 - h},       {120, kRed, kBlue, 120 - h, h},
                            {180, kBlue, kRed, h - 120, 240 - h},  {240, kGreen, kRed, 240 - h, h - 120},
                            {300, kRed, kGreen, h - 240, 360 - h}, {65535, kBlue, kGreen, 360 - h, h - 240}};
    StStep const* step = steps;
    while (h > step->to)
        ++step;
    c[step->moving] = Quotient(d * step->part, step->whole) + m;
    c[step->least] = m;
    Fields<3> out;
    for (int i = 0; i < 3; ++i)
        out[i] = static_cast<std::uint32_t>(std::clamp(c[i], 0L, 255L));
    return out;
}

TEST(ColorModels, HSVToRGB) {
    std::vector<unsigned> hues = {65535, 65146, 40000, 1000};
    for (unsigned hue = 0; hue < 400; ++hue)
        hues.push_back(hue);
    for (unsigned hue : hues)
        for (unsigned s = 0; s < 256; s += s < 101 ? 4 : 31)
            for (unsigned v = 0; v < 256; v += v < 101 ? 4 : 31) {
                StHSVAPixel const p{static_cast<std::uint16_t>(hue), static_cast<std::uint8_t>(s),
                                    static_cast<std::uint8_t>(v), 77};
                Fields<3> const rgb = SlowFromHSV(hue, s, v);
                ASSERT_EQ(ToRGB(p), (Fields<4>{rgb[0], rgb[1], rgb[2], 77})) << hue << ' ' << s << ' ' << v;
            }
}

TEST(ColorModels, HSVToRGB_ByHand) {
    EXPECT_EQ(ToRGB(StHSVAPixel{0, 100, 100, 5}), (Fields<4>{255, 0, 0, 5}));
    EXPECT_EQ(ToRGB(StHSVAPixel{60, 100, 100, 5}), (Fields<4>{255, 255, 0, 5}));
    EXPECT_EQ(ToRGB(StHSVAPixel{61, 100, 100, 5}), (Fields<4>{246, 255, 0, 5})) << "255 * 59 / 61";
    EXPECT_EQ(ToRGB(StHSVAPixel{120, 100, 100, 5}), (Fields<4>{0, 255, 0, 5})) << "red is m and 0 more";
    EXPECT_EQ(ToRGB(StHSVAPixel{240, 100, 100, 5}), (Fields<4>{0, 0, 255, 5}));
    EXPECT_EQ(ToRGB(StHSVAPixel{360, 100, 100, 5}), (Fields<4>{255, 0, 0, 5}));
    EXPECT_EQ(ToRGB(StHSVAPixel{200, 0, 100, 5}), (Fields<4>{255, 255, 255, 5}));
    EXPECT_EQ(ToRGB(StHSVAPixel{120, 50, 100, 5}), (Fields<4>{128, 255, 128, 5})) << "saturation 127 of 255";
}

std::uint32_t Clamped(double value, double most) {
    return static_cast<std::uint32_t>(std::clamp(std::trunc(value), 0.0, most));
}

TEST(ColorModels, RGBToYIQ) {
    for (StRGBA32Pixel c : Cube()) {
        double const r = c.red, g = c.green, b = c.blue;
        StYIQAPixel p{};
        SrConvertPixel(c, p);
        ASSERT_EQ(
            Of(p),
            (Fields<4>{Clamped((0.3 * r + 0.59 * g + 0.11 * b) * 0.3921568627450981, 100),
                       Clamped((0.6 * r - 0.28 * g - 0.32 * b) * 0.32679738562091504 + 50.0, 100),
                       Clamped((0.21 * r - 0.52 * g + 0.31 * b) * 0.3770739064856712 + 50.0, 100), c.alpha}));
    }
    EXPECT_EQ(FromRGB<StYIQAPixel>(0, 0, 0, 6), (Fields<4>{0, 50, 50, 6}));
    EXPECT_EQ(FromRGB<StYIQAPixel>(255, 0, 0, 6)[0], 30u);
    EXPECT_EQ(FromRGB<StYIQAPixel>(0, 255, 0, 6)[2], 0u);
}

TEST(ColorModels, YIQToRGB) {
    for (unsigned luma = 0; luma < 256; luma += 3)
        for (unsigned inPhase = 0; inPhase < 256; inPhase += 7)
            for (unsigned quadrature = 0; quadrature < 256; quadrature += 5) {
                double const y = luma * 2.55, i = (inPhase - 50.0) * 3.06, q = (quadrature - 50.0) * 2.652;
                StYIQAPixel const p{static_cast<std::uint8_t>(luma), static_cast<std::uint8_t>(inPhase),
                                    static_cast<std::uint8_t>(quadrature), 77};
                ASSERT_EQ(ToRGB(p), (Fields<4>{Clamped(y + 0.948 * i + 0.624 * q, 255),
                                               Clamped(y - 0.276 * i - 0.64 * q, 255),
                                               Clamped(y - 1.105 * i + 1.73 * q, 255), 77}))
                    << luma << ' ' << inPhase << ' ' << quadrature;
            }
    EXPECT_EQ(ToRGB(StYIQAPixel{0, 50, 50, 8}), (Fields<4>{0, 0, 0, 8}));
    EXPECT_EQ(ToRGB(StYIQAPixel{50, 50, 50, 8}), (Fields<4>{127, 127, 127, 8}));
}

TEST(ColorModels, CMYK) {
    for (StRGBA32Pixel c : Cube()) {
        unsigned const k = 255u - std::max({c.red, c.green, c.blue});
        StCMYKPixel p{};
        SrConvertPixel(c, p);
        ASSERT_EQ(Of(p), (Fields<4>{255u - c.red - k, 255u - c.green - k, 255u - c.blue - k, k}));
        ASSERT_EQ(ToRGB(p), (Fields<4>{c.red, c.green, c.blue, 255})) << "and back, opaque";
    }
    EXPECT_EQ(ToRGB(StCMYKPixel{200, 155, 156, 100}), (Fields<4>{211, 0, 255, 255})) << "inks wrap below 0";
}

TEST(ColorModels, QuickDrawColor_FromAndToBytes) {
    for (StRGBA32Pixel c : ManyColors()) {
        RGBColor words{};
        SrConvertPixel(c, words);
        ASSERT_EQ(words.red, c.red * 256 + c.red);
        ASSERT_EQ(words.green, c.green * 256 + c.green);
        ASSERT_EQ(words.blue, c.blue * 256 + c.blue);
        RGBColor const low{static_cast<std::uint16_t>(c.red * 256 + 255),
                           static_cast<std::uint16_t>(c.green * 256),
                           static_cast<std::uint16_t>(c.blue * 256 + 128)};
        EXPECT_EQ(ToRGB(low), (Fields<4>{c.red, c.green, c.blue, 44})) << "alpha is left as it was";
    }
}

TEST(ColorModels, QuickDrawColor_FromAndToFloats) {
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        RGBColor words{};
        SrConvertPixel(c, words);
        ASSERT_EQ(words.red, WordOf(c.red));
        ASSERT_EQ(words.green, WordOf(c.green));
        ASSERT_EQ(words.blue, WordOf(c.blue));
    }
    for (unsigned v = 0; v < 65536; ++v) {
        StColorFloats c{};
        SrConvertPixel(RGBColor{static_cast<std::uint16_t>(v), static_cast<std::uint16_t>(65535 - v), 1}, c);
        ASSERT_EQ(Of(c), (Fields<3>{Rounded(v * kInverseWord), Rounded((65535 - v) * kInverseWord),
                                    Rounded(kInverseWord)}));
    }
}

TEST(ColorPower, ByHand) {
    StColorFloats color{0.25f, 1.0f, 4.0f};
    EXPECT_EQ(&SrColorPower(color, 0.5f), &color) << "returns its argument";
    EXPECT_EQ(Of(color), Of(StColorFloats{0.5f, 1.0f, 2.0f}));
    color = {0.0f, -2.0f, 0.5f};
    SrColorPower(color, 2.0f);
    EXPECT_EQ(Of(color), Of(StColorFloats{0.0f, 4.0f, 0.25f})) << "at and below 0 by the runtime's power";
    color = {0.0f, -2.0f, -0.0f};
    SrColorPower(color, -1.0f);
    EXPECT_EQ(Of(color), Of(StColorFloats{kInf, -0.5f, -kInf}));
    color = {-2.0f, kNaN, kInf};
    SrColorPower(color, 0.5f);
    EXPECT_EQ(Of(color), Of(StColorFloats{kNaN, kNaN, kInf}));
    color = {kInf, kNaN, 0.0f};
    SrColorPower(color, 0.0f);
    EXPECT_EQ(Of(color), Of(StColorFloats{kNaN, 1.0f, 1.0f}))
        << "0 times the logarithm of infinity is no number";
}

TEST(ColorPower, MatchesExtendedPrecision) {
    for (float channel : ManyFloats())
        for (float power : {0.0f, 1.0f, 0.45f, 2.2f, -1.0f, 3.0f, 100.0f}) {
            StColorFloats color{channel, channel, channel};
            SrColorPower(color, power);
            double const expected =
                channel > 0
                    ? static_cast<double>(static_cast<float>(std::exp2(
                          static_cast<long double>(power) * std::log2(static_cast<long double>(channel)))))
                    : std::pow(static_cast<double>(channel), static_cast<double>(power));
            ASSERT_EQ(Bits(color.red), Rounded(expected)) << channel << " to the " << power;
        }
}

}  // namespace
