// Merge: one pixel laid over another, every record's rule beside a slow form of it.
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

/// a / b without dividing: how often b fits.
std::uint64_t HowOften(std::uint64_t b, std::uint64_t a) {
    std::uint64_t count = 0;
    for (int shift = 40; shift >= 0; --shift)
        if (a >= b << shift) {
            a -= b << shift;
            count += std::uint64_t{1} << shift;
        }
    return count;
}

struct StOver {
    std::uint64_t alpha, channel;
};
/// Source-over of one channel, full being the opaque alpha.
StOver Over(std::uint64_t c, std::uint64_t a, std::uint64_t otherC, std::uint64_t otherA,
            std::uint64_t full) {
    if (otherA == 0) return {a, c};
    std::uint64_t const outA = HowOften(full, (full - a) * otherA) + a;
    return {outA, HowOften(outA, otherC * otherA + c * (outA - otherA))};
}

TEST(Merge, RGBA32_AllPairsOfAlpha) {
    StRGBA32Pixel const below[] = {Color(0, 128, 255, 0), Color(200, 3, 77, 0)};
    StRGBA32Pixel const above[] = {Color(255, 0, 100, 0), Color(201, 254, 1, 0)};
    for (unsigned a = 0; a < 256; ++a)
        for (unsigned b = 0; b < 256; ++b)
            for (int pair = 0; pair < 2; ++pair) {
                StRGBA32Pixel p = below[pair], other = above[pair];
                p.alpha = static_cast<std::uint8_t>(a);
                other.alpha = static_cast<std::uint8_t>(b);
                StOver const red = Over(p.red, a, other.red, b, 255),
                             green = Over(p.green, a, other.green, b, 255),
                             blue = Over(p.blue, a, other.blue, b, 255);
                p.Merge(other);
                ASSERT_EQ(p.red, red.channel) << a << " under " << b;
                ASSERT_EQ(p.green, green.channel) << a << " under " << b;
                ASSERT_EQ(p.blue, blue.channel) << a << " under " << b;
                ASSERT_EQ(p.alpha, red.alpha) << a << " under " << b;
            }
}

TEST(Merge, RGBA32_AllPairsOfChannels) {
    unsigned const alphas[][2] = {{255, 128}, {128, 255}, {1, 1}, {254, 1}, {100, 200}, {0, 7}, {255, 0}};
    for (auto const& alpha : alphas)
        for (unsigned a = 0; a < 256; ++a)
            for (unsigned b = 0; b < 256; ++b) {
                StRGBA32Pixel p = Color(a, b, 255 - a, alpha[0]);
                p.Merge(Color(b, a, b, alpha[1]));
                ASSERT_EQ(p.red, Over(a, alpha[0], b, alpha[1], 255).channel) << a << ' ' << b;
                ASSERT_EQ(p.green, Over(b, alpha[0], a, alpha[1], 255).channel) << a << ' ' << b;
                ASSERT_EQ(p.blue, Over(255 - a, alpha[0], b, alpha[1], 255).channel) << a << ' ' << b;
            }
}

TEST(Merge, RGBA32_OpaqueReplacesAndTransparentChangesNothing) {
    for (StRGBA32Pixel const& color : ManyColors()) {
        StRGBA32Pixel p = color;
        p.Merge(Color(12, 34, 56, 255));
        ASSERT_EQ(Of(p), (Fields<4>{12, 34, 56, 255}));
        p = color;
        p.Merge(Color(12, 34, 56, 0));
        ASSERT_EQ(Of(p), Of(color));
    }
}

TEST(Merge, RGBA32_OverItself_ReadsTheOldAlpha) {
    StRGBA32Pixel p = Color(10, 20, 30, 100);
    StRGBA32Pixel copy = p;
    copy.Merge(StRGBA32Pixel(p));
    p.Merge(p);
    EXPECT_EQ(Of(p), Of(copy));
}

TEST(Merge, RGBA64_IsTheSameAtWordScale) {
    std::uint16_t const values[] = {0, 1, 2, 254, 255, 256, 257, 32767, 32768, 40000, 65279, 65534, 65535};
    for (std::uint16_t a : values)
        for (std::uint16_t b : values)
            for (std::uint16_t c : values)
                for (std::uint16_t d : values) {
                    StRGBA64Pixel p{c, d, 65535, a};
                    p.Merge(StRGBA64Pixel{d, c, 65535, b});
                    ASSERT_EQ(p.red, Over(c, a, d, b, 65535).channel)
                        << a << ' ' << b << ' ' << c << ' ' << d;
                    ASSERT_EQ(p.green, Over(d, a, c, b, 65535).channel)
                        << a << ' ' << b << ' ' << c << ' ' << d;
                    ASSERT_EQ(p.blue, Over(65535, a, 65535, b, 65535).channel) << a << ' ' << b;
                    ASSERT_EQ(p.alpha, Over(0, a, 0, b, 65535).alpha) << a << ' ' << b;
                }
}

TEST(Merge, RGBAFloat_SourceOverRoundedOnce) {
    auto const& floats = ManyFloats();
    for (std::size_t i = 0; i < floats.size(); ++i) {
        for (float b : EdgeFloats()) {
            float const a = floats[i], c = floats[(i * 13 + 5) % floats.size()],
                        d = floats[(i * 29 + 7) % floats.size()];
            StRGBAFloatPixel p{c, d, a, a};
            StRGBAFloatPixel const other{d, c, b, b};
            StRGBAFloatPixel const before = p;
            p.Merge(other);
            if (b == 0.0f) {
                ASSERT_EQ(Of(p), Of(before));
                continue;
            }
            double const outA = (1.0 - a) * b + a, w = outA - b;
            Fields<4> const expected = {Rounded((double{c} * w + double{d} * b) / outA),
                                        Rounded((double{d} * w + double{c} * b) / outA),
                                        Rounded((double{a} * w + double{b} * b) / outA), Rounded(outA)};
            ASSERT_EQ(Of(p), expected) << a << ' ' << b << ' ' << c << ' ' << d;
        }
    }
}

TEST(Merge, RGBAFloat_OpaqueReplaces) {
    StRGBAFloatPixel p{0.1f, 0.2f, 0.3f, 0.4f};
    p.Merge({0.5f, 0.25f, 0.75f, 1.0f});
    EXPECT_EQ(Of(p), Of(StRGBAFloatPixel{0.5f, 0.25f, 0.75f, 1.0f}));
}

TEST(Merge, ColorsWithoutAlpha_TakeTheAverage_AllPairs) {
    for (unsigned a = 0; a < 256; ++a)
        for (unsigned b = 0; b < 256; ++b) {
            auto const v = static_cast<std::uint8_t>(a), w = static_cast<std::uint8_t>(b);
            auto const x = static_cast<std::uint8_t>(255 - a), y = static_cast<std::uint8_t>(255 - b);
            unsigned const mean = (a + b - (a + b) % 2) / 2, mixed = (510 - a - b - (a + b) % 2) / 2;

            StRGB32Pixel rgb32{v, x, v, 0x77};
            rgb32.Merge(StRGB32Pixel{w, y, w, 0x11});
            ASSERT_EQ(Of(rgb32), (Fields<4>{mean, mixed, mean, 0x77}));

            StRGB24Pixel rgb24{v, x, v};
            rgb24.Merge(StRGB24Pixel{w, y, w});
            ASSERT_EQ(Of(rgb24), (Fields<3>{mean, mixed, mean}));

            StCMYKPixel cmyk{v, x, v, x};
            cmyk.Merge(StCMYKPixel{w, y, w, y});
            ASSERT_EQ(Of(cmyk), (Fields<4>{mean, mixed, mean, mixed}));
        }
}

TEST(Merge, RGB15_AveragesFiveBitsAndKeepsTheFlag) {
    for (unsigned a = 0; a < 32; ++a)
        for (unsigned b = 0; b < 32; ++b)
            for (unsigned flag = 0; flag < 2; ++flag) {
                StRGB15Pixel p{}, other{};
                p.red = p.blue = a & 31;
                p.green = b & 31;
                p.flag = flag & 1;
                other.red = other.blue = b & 31;
                other.green = a & 31;
                other.flag = ~flag & 1;
                p.Merge(other);
                unsigned const mean = (a + b) / 2;
                ASSERT_EQ(Of(p), (Fields<4>{mean, mean, mean, flag})) << a << ' ' << b;
            }
}

TEST(Merge, RGB48_AveragesWords) {
    for (unsigned a = 0; a < 65536; a += 251)
        for (unsigned b = 0; b < 65536; b += 257) {
            StRGB48Pixel p{static_cast<std::uint16_t>(a), static_cast<std::uint16_t>(b), 65535};
            p.Merge(StRGB48Pixel{static_cast<std::uint16_t>(b), 65535, static_cast<std::uint16_t>(a)});
            ASSERT_EQ(Of(p), (Fields<3>{(a + b) / 2, (b + 65535) / 2, (a + 65535) / 2}));
        }
}

TEST(Merge, ColorFloatsAndDepth_TakeHalfTheSum) {
    for (std::size_t i = 0; i < ManyFloats().size(); ++i)
        for (float b : EdgeFloats()) {
            StColorFloats p = FloatColor(i);
            Fields<3> const expected = {Rounded((double{p.red} + b) * 0.5),
                                        Rounded((double{p.green} + b) * 0.5),
                                        Rounded((double{p.blue} + b) * 0.5)};
            StDepthFloatPixel depth{p.red};
            p.Merge({b, b, b});
            ASSERT_EQ(Of(p), expected);
            depth.Merge({b});
            ASSERT_EQ(Bits(depth.depth), expected[0]);
        }
}

TEST(Merge, ColorFloats_HalfOfTheLargest_DoesNotOverflow) {
    float const most = std::numeric_limits<float>::max();
    StColorFloats p{most, most, most};
    p.Merge({most, most, most});
    EXPECT_EQ(Bits(p.red), Bits(most));
}

/// Levels laid over each other as light.
unsigned Screen(unsigned a, unsigned b, unsigned full) {
    return b == 0 ? a : a + static_cast<unsigned>(HowOften(full, (full - a) * b));
}

TEST(Merge, Gray8AndAlpha8_Screen_AllPairs) {
    for (unsigned a = 0; a < 256; ++a)
        for (unsigned b = 0; b < 256; ++b) {
            StGray8Pixel gray{static_cast<std::uint8_t>(a)};
            gray.Merge({static_cast<std::uint8_t>(b)});
            ASSERT_EQ(gray.level, Screen(a, b, 255)) << a << ' ' << b;
            StAlpha8Pixel alpha{static_cast<std::uint8_t>(a)};
            alpha.Merge({static_cast<std::uint8_t>(b)});
            ASSERT_EQ(alpha.alpha, Screen(a, b, 255)) << a << ' ' << b;
        }
}

TEST(Merge, Gray4AndGray2_ScreenAtTheirScale_RestStays) {
    for (unsigned a = 0; a < 16; ++a)
        for (unsigned b = 0; b < 16; ++b) {
            StGray4Pixel p{a & 15, 99};
            p.Merge({b & 15, 1});
            ASSERT_EQ(Of(p), (Fields<2>{Screen(a, b, 15), 99})) << a << ' ' << b;
        }
    for (unsigned a = 0; a < 4; ++a)
        for (unsigned b = 0; b < 4; ++b) {
            StGray2Pixel p{a & 3, 99};
            p.Merge({b & 3, 1});
            ASSERT_EQ(Of(p), (Fields<2>{Screen(a, b, 3), 99})) << a << ' ' << b;
        }
}

TEST(Merge, Alpha32_ScreensInDouble) {
    std::uint32_t const values[] = {0,          1,          2,          255,        65535,
                                    65536,      0x7FFFFFFF, 0x80000000, 0x80000001, 0xAAAAAAAA,
                                    0xFFFFFF00, 0xFFFFFFF0, 0xFFFFFFFE, 0xFFFFFFFF};
    for (std::uint32_t a : values)
        for (std::uint32_t b : values) {
            StAlpha32Pixel p{a};
            p.Merge({b});
            double const x = a, y = b;
            std::uint32_t const expected = b == 0 ? a : Low32(x + y - x * y * 2.3283064370807974e-10);
            ASSERT_EQ(p.alpha, expected) << a << ' ' << b;
        }
    StAlpha32Pixel p{12345};
    p.Merge({0xFFFFFFFF});
    EXPECT_EQ(p.alpha, 0xFFFFFFFFu) << "full over anything is full";
}

TEST(Merge, BlackWhite_IsALogicalOr_RestStays) {
    for (unsigned a = 0; a < 2; ++a)
        for (unsigned b = 0; b < 2; ++b) {
            StBlackWhitePixel p{a & 1, 77};
            p.Merge({b & 1, 5});
            EXPECT_EQ(Of(p), (Fields<2>{b == 1 ? 1 : a, 77})) << a << ' ' << b;
        }
}

}  // namespace
