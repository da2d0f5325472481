// Blend: one pixel moved toward another by t. Mapped records blend through their map, see mapped_pixel_test.
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

std::vector<float> const& Weights() {
    static std::vector<float> const list = [] {
        std::vector<float> t = EdgeFloats();
        t.insert(t.end(), {2.0f, 255.0f, 256.0f, 257.0f, -256.0f, 0.75f, 1.0f / 3, 0.3f});
        for (int k = 0; k <= 256; k += 5) {
            float const step = static_cast<float>(k) / 256.0f;
            t.insert(t.end(), {step, std::nextafter(step, -1.0f)});
        }
        return t;
    }();
    return list;
}

/// The rule with weights of 16 bits, in which a byte's result is bits 8 to 15.
unsigned Narrow(unsigned from, unsigned to, float t, unsigned mask) {
    std::int64_t const w = Trunc32(256.0 * t) % 65536;
    std::int64_t const u = ((256 - w) % 65536 + 65536) % 65536;
    return static_cast<unsigned>((to * w + from * u) / 256) & mask;
}
/// The rule with whole weights; the sum counts by its low 32 bits, as a word's result is bits 8 to 23.
unsigned Wide(unsigned from, unsigned to, float t, unsigned mask) {
    std::int64_t const w = static_cast<std::int32_t>(Trunc32(256.0 * t));
    std::int64_t const sum = to * w + from * (256 - w);
    return static_cast<unsigned>(static_cast<std::uint64_t>(sum) % 4294967296u / 256) & mask;
}

TEST(Blend, KnownValues) {
    StGray8Pixel p{100};
    p.Blend({200}, 1.0f);
    EXPECT_EQ(p.level, 200) << "t 1.0 gives the other exactly";
    p = {100};
    p.Blend({200}, 0.0f);
    EXPECT_EQ(p.level, 100) << "t 0.0 changes nothing";
    p = {0};
    p.Blend({255}, 0.999f);
    EXPECT_EQ(p.level, 254) << "a weight of 255 never reaches the other";
    p = {100};
    p.Blend({200}, 0.5f);
    EXPECT_EQ(p.level, 150);
    p = {100};
    p.Blend({200}, 1.5f);
    // Weights 384 and 65408: (200 * 384 + 100 * 65408) / 256 = 25850, cut to a byte.
    EXPECT_EQ(p.level, 25850 % 256);
}

TEST(Blend, RecordsOfBytes_AllPairsManyWeights) {
    for (float t : Weights())
        for (unsigned a = 0; a < 256; a += 3)
            for (unsigned b = 0; b < 256; b += 5) {
                unsigned const x = 255 - a, y = 255 - b;
                unsigned const ab = Narrow(a, b, t, 255), ba = Narrow(b, a, t, 255),
                               xy = Narrow(x, y, t, 255), yx = Narrow(y, x, t, 255);
                StRGBA32Pixel const from = Color(a, b, x, y), to = Color(b, a, y, x);
                StRGBA32Pixel rgba = from;
                rgba.Blend(to, t);
                ASSERT_EQ(Of(rgba), (Fields<4>{ab, ba, xy, yx})) << a << ' ' << b << ' ' << t;

                StRGB32Pixel rgb32{from.blue, from.green, from.red, 0x42};
                rgb32.Blend(StRGB32Pixel{to.blue, to.green, to.red, 0x24}, t);
                ASSERT_EQ(Of(rgb32), (Fields<4>{ab, ba, xy, 0x42})) << a << ' ' << b << ' ' << t;

                StRGB24Pixel rgb24{from.blue, from.green, from.red};
                rgb24.Blend(StRGB24Pixel{to.blue, to.green, to.red}, t);
                ASSERT_EQ(Of(rgb24), (Fields<3>{ab, ba, xy})) << a << ' ' << b << ' ' << t;

                StGray8Pixel gray{from.red};
                gray.Blend({to.red}, t);
                ASSERT_EQ(gray.level, ab);
                StAlpha8Pixel alpha{from.red};
                alpha.Blend({to.red}, t);
                ASSERT_EQ(alpha.alpha, ab);

                StCMYKPixel cmyk{from.red, from.green, from.blue, from.alpha};
                cmyk.Blend(StCMYKPixel{to.red, to.green, to.blue, to.alpha}, t);
                ASSERT_EQ(Of(cmyk), (Fields<4>{Wide(a, b, t, 255), Wide(b, a, t, 255), Wide(x, y, t, 255),
                                               Wide(y, x, t, 255)}));
            }
}

TEST(Blend, RecordsOfFewerBits_AllPairsManyWeights) {
    for (float t : Weights()) {
        for (unsigned a = 0; a < 32; ++a)
            for (unsigned b = 0; b < 32; ++b) {
                StRGB15Pixel p{}, other{};
                p.red = p.blue = a & 31;
                p.green = b & 31;
                p.flag = a & 1;
                other.red = other.blue = b & 31;
                other.green = a & 31;
                other.flag = ~a & 1;
                p.Blend(other, t);
                ASSERT_EQ(Of(p),
                          (Fields<4>{Narrow(a, b, t, 31), Narrow(b, a, t, 31), Narrow(a, b, t, 31), a & 1}))
                    << a << ' ' << b << ' ' << t;
            }
        for (unsigned a = 0; a < 16; ++a)
            for (unsigned b = 0; b < 16; ++b) {
                StGray4Pixel p{a & 15, 31};
                p.Blend({b & 15, 2}, t);
                ASSERT_EQ(Of(p), (Fields<2>{Narrow(a, b, t, 15), 31})) << a << ' ' << b << ' ' << t;
            }
        for (unsigned a = 0; a < 4; ++a)
            for (unsigned b = 0; b < 4; ++b) {
                StGray2Pixel p{a & 3, 31};
                p.Blend({b & 3, 2}, t);
                ASSERT_EQ(Of(p), (Fields<2>{Narrow(a, b, t, 3), 31})) << a << ' ' << b << ' ' << t;
            }
    }
}

TEST(Blend, RecordsOfWords_KeepWholeWeights) {
    unsigned const values[] = {0, 1, 255, 256, 257, 12345, 32768, 54321, 65279, 65534, 65535};
    for (float t : Weights())
        for (unsigned a : values)
            for (unsigned b : values) {
                auto const v = static_cast<std::uint16_t>(a), w = static_cast<std::uint16_t>(b);
                auto const x = static_cast<std::uint16_t>(65535 - a),
                           y = static_cast<std::uint16_t>(65535 - b);
                unsigned const ab = Wide(a, b, t, 65535), ba = Wide(b, a, t, 65535),
                               xy = Wide(x, y, t, 65535), yx = Wide(y, x, t, 65535);
                StRGB48Pixel rgb{v, w, x};
                rgb.Blend(StRGB48Pixel{w, v, y}, t);
                ASSERT_EQ(Of(rgb), (Fields<3>{ab, ba, xy})) << a << ' ' << b << ' ' << t;
                StRGBA64Pixel rgba{v, w, x, y};
                rgba.Blend(StRGBA64Pixel{w, v, y, x}, t);
                ASSERT_EQ(Of(rgba), (Fields<4>{ab, ba, xy, yx})) << a << ' ' << b << ' ' << t;
            }
    // 65280 * 384 + 255 * (256 - 384) = 25034880; over 256 that is 97792, of which 32256 is left in a word.
    // Weights cut to 16 bits would give 65408 for the second one, and so 163072 and 32000.
    StRGB48Pixel p{255, 0, 0};
    p.Blend(StRGB48Pixel{65280, 0, 0}, 1.5f);
    EXPECT_EQ(p.red, 32256);
}

/// In floats throughout: each operation rounds.
float BlendOfFloats(float from, float to, float t) {
    float const rest = 1.0f - t;
    float const a = from * rest;
    float const b = to * t;
    return a + b;
}

TEST(Blend, RecordsOfFloats_StayInFloats) {
    for (float t : Weights())
        for (std::size_t i = 0; i < ManyFloats().size(); i += 3) {
            StColorFloats const from = FloatColor(i), to = FloatColor(i * 5 + 1);
            Fields<3> const expected = {Bits(BlendOfFloats(from.red, to.red, t)),
                                        Bits(BlendOfFloats(from.green, to.green, t)),
                                        Bits(BlendOfFloats(from.blue, to.blue, t))};
            StColorFloats color = from;
            color.Blend(to, t);
            ASSERT_EQ(Of(color), expected) << i << ' ' << t;
            StRGBAFloatPixel rgba{from.red, from.green, from.blue, from.red};
            rgba.Blend(StRGBAFloatPixel{to.red, to.green, to.blue, to.red}, t);
            ASSERT_EQ(Of(rgba), (Fields<4>{expected[0], expected[1], expected[2], expected[0]}))
                << i << ' ' << t;
            StDepthFloatPixel depth{from.red};
            depth.Blend({to.red}, t);
            ASSERT_EQ(Bits(depth.depth), expected[0]) << i << ' ' << t;
        }
}

TEST(Blend, Alpha32_RoundsBothValuesToFloatFirst) {
    std::uint32_t const values[] = {0,          1,          255,        16777215,   16777217,   0x7FFFFFFF,
                                    0x80000000, 0x80000081, 0xAAAAAAAA, 0xFFFFFF7F, 0xFFFFFF80, 0xFFFFFFFF};
    for (float t : Weights())
        for (std::uint32_t a : values)
            for (std::uint32_t b : values) {
                float const from = static_cast<float>(a), to = static_cast<float>(b);
                StAlpha32Pixel p{a};
                p.Blend({b}, t);
                ASSERT_EQ(p.alpha, Low32(double{from} * (1.0 - t) + double{to} * t))
                    << a << ' ' << b << ' ' << t;
            }
    StAlpha32Pixel p{16777217};
    p.Blend({0}, 0.0f);
    EXPECT_EQ(p.alpha, 16777216u) << "even at t 0.0 the low bits of the value go";
    p = {0};
    p.Blend({0xFFFFFFFF}, 1.0f);
    EXPECT_EQ(p.alpha, 0u) << "full rounds up to 2 to the 32, which keeps no low bits";
}

TEST(Blend, BlackWhite_TakesWhatWeighsMoreThanHalf) {
    struct StRow {
        unsigned from, to;
        float t;
        unsigned expected;
    };
    float const half = 0.5f;
    StRow const rows[] = {
        {0, 1, half, 0},
        {0, 1, std::nextafter(half, 1.0f), 1},
        {0, 1, std::nextafter(half, 0.0f), 0},
        {1, 0, half, 0},
        {1, 0, std::nextafter(half, 0.0f), 1},
        {1, 0, std::nextafter(half, 1.0f), 0},
        {1, 1, 0.25f, 1},
        {1, 1, 1e30f, 0},  // (1 - 1e30) + 1e30 is 0 in double
        {0, 0, 0.75f, 0},
        {0, 1, 0.0f, 0},
        {0, 1, 1.0f, 1},
        {1, 0, 1.0f, 0},
        {1, 0, 0.0f, 1},
        {0, 1, 1.5f, 1},
        {1, 0, -0.25f, 1},
        {0, 1, -0.25f, 0},
        {0, 1, kNaN, 0},
        {1, 1, kInf, 0},
    };
    for (StRow const& row : rows) {
        StBlackWhitePixel p{row.from & 1, 3};
        p.Blend({row.to & 1, 4}, row.t);
        EXPECT_EQ(Of(p), (Fields<2>{row.expected, 3})) << row.from << " to " << row.to << " by " << row.t;
    }
}

}  // namespace
