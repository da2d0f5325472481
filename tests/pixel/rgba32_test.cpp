// Colours of bytes to and from every record, through the smart pixel's operations.
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

template <class Record>
Fields<4> ColorOf(Record const& record) {
    return Of(Smart<Record>(record)->GetRGBA32());
}
/// `record` after its smart pixel was set to `color`.
template <class Record>
Record After(Record record, StRGBA32Pixel color) {
    Smart<Record> smart(record);
    smart->SetRGBA32(color);
    return smart.Value();
}
Fields<4> Gray(unsigned v, unsigned alpha = 255) {
    return {v, v, v, alpha};
}
unsigned SumOf(StRGBA32Pixel c) {
    return c.red + c.green + c.blue;
}

TEST(GetRGBA32, RecordsOfBytes) {
    for (StRGBA32Pixel c : ManyColors()) {
        ASSERT_EQ(ColorOf(c), Of(c));
        ASSERT_EQ(ColorOf(StRGB32Pixel{c.blue, c.green, c.red, c.alpha}),
                  (Fields<4>{c.red, c.green, c.blue, 255}));
        ASSERT_EQ(ColorOf(StRGB24Pixel{c.blue, c.green, c.red}), (Fields<4>{c.red, c.green, c.blue, 255}));
    }
}

TEST(GetRGBA32, RGB15_ExpandsFiveBits) {
    for (unsigned v = 0; v < 32; ++v) {
        StRGB15Pixel p{0, 0, 0, 1};
        p.red = v & 31;
        p.green = (31 - v) & 31;
        p.blue = (v / 3) & 31;
        ASSERT_EQ(ColorOf(p), (Fields<4>{v * 255 / 31, (31 - v) * 255 / 31, v / 3 * 255 / 31, 255}));
    }
    EXPECT_EQ(ColorOf(StRGB15Pixel{31, 31, 31, 0}), Gray(255)) << "white expands to white";
}

TEST(GetRGBA32, RecordsOfWords_GiveHighBytes) {
    for (unsigned v = 0; v < 65536; v += 3) {
        auto const w = static_cast<std::uint16_t>(v), x = static_cast<std::uint16_t>(65535 - v);
        ASSERT_EQ(ColorOf(StRGB48Pixel{w, x, 0x12FF}), (Fields<4>{v / 256, x / 256u, 0x12, 255}));
        ASSERT_EQ(ColorOf(StRGBA64Pixel{w, x, 0x12FF, w}), (Fields<4>{v / 256, x / 256u, 0x12, v / 256}));
    }
}

TEST(GetRGBA32, RecordsOfFloats_TruncateAndWrap) {
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        float const fourth = FloatColor(i * 5 + 2).blue;
        std::uint32_t const r = ByteOf(c.red), g = ByteOf(c.green), b = ByteOf(c.blue);
        ASSERT_EQ(ColorOf(c), (Fields<4>{r, g, b, 255}));
        ASSERT_EQ(ColorOf(StRGBAFloatPixel{c.red, c.green, c.blue, fourth}),
                  (Fields<4>{r, g, b, ByteOf(fourth)}));
        ASSERT_EQ(ColorOf(StRGBTFloatPixel{c.red, c.green, c.blue, fourth}),
                  (Fields<4>{r, g, b, Trunc32((1.0 - fourth) * 255.0) % 256}));
        ASSERT_EQ(ColorOf(StDepthFloatPixel{c.red}), Gray(r));
        ASSERT_EQ(ColorOf(StVelocityPixel{c.red, c.green}),
                  (Fields<4>{Trunc32(c.red) % 256, Trunc32(c.green) % 256, 0, 0}));
    }
    EXPECT_EQ(ColorOf(StColorFloats{1.5f, -0.25f, 256.0f / 255.0f}), (Fields<4>{126, 193, 0, 255}));
    EXPECT_EQ(ColorOf(StVelocityPixel{300.75f, -1.5f}), (Fields<4>{44, 255, 0, 0}));
}

TEST(GetRGBA32, Levels) {
    for (unsigned v = 0; v < 256; ++v) {
        auto const byte = static_cast<std::uint8_t>(v);
        ASSERT_EQ(ColorOf(StGray8Pixel{byte}), Gray(v));
        ASSERT_EQ(ColorOf(StAlpha8Pixel{byte}), Gray(v, v));
        ASSERT_EQ(ColorOf(StAlpha32Pixel{v << 24 | 0xFFFFFF}), Gray(v, v));
        ASSERT_EQ(ColorOf(StDepthUInt8Pixel{byte}), Gray(v, 0));
        ASSERT_EQ(ColorOf(StDepthUInt16Pixel{static_cast<std::uint16_t>(v * 256 + 255)}), Gray(v, 0));
        ASSERT_EQ(ColorOf(StDepthUInt24Pixel{v << 16 | 0xFFFF, 0x12}), Gray(v, 0));
        ASSERT_EQ(ColorOf(StDepthUInt32Pixel{v << 24 | 0xFFFFFF}), Gray(v, 0));
        if (v < 16) {
            ASSERT_EQ(ColorOf(StGray4Pixel{v & 15, 3}), Gray(v * 17));
        }
        if (v < 4) {
            ASSERT_EQ(ColorOf(StGray2Pixel{v & 3, 3}), Gray(v * 85));
        }
    }
}

TEST(GetRGBA32, BlackWhite_BlackIsTransparent) {
    EXPECT_EQ(ColorOf(StBlackWhitePixel{0, 3}), Gray(255));
    EXPECT_EQ(ColorOf(StBlackWhitePixel{1, 3}), Gray(0, 0));
}

TEST(GetRGBA32, InksAndModels_GoThroughSrConvertPixel) {
    for (StRGBA32Pixel c : ManyColors()) {
        StCMYKPixel const cmyk{c.red, c.green, c.blue, c.alpha};
        ASSERT_EQ(ColorOf(cmyk),
                  (Fields<4>{(511u - cmyk.cyan - cmyk.black) % 256, (511u - cmyk.magenta - cmyk.black) % 256,
                             (511u - cmyk.yellow - cmyk.black) % 256, 255}));
        StRGBA32Pixel expected{};
        StHSLAPixel const hsl{static_cast<std::uint16_t>(c.red * 2), c.green, c.blue, c.alpha};
        SrConvertPixel(hsl, expected);
        ASSERT_EQ(ColorOf(hsl), Of(expected));
        StHSVAPixel const hsv{static_cast<std::uint16_t>(c.red * 2), c.green, c.blue, c.alpha};
        SrConvertPixel(hsv, expected);
        ASSERT_EQ(ColorOf(hsv), Of(expected));
        StYIQAPixel const yiq{c.red, c.green, c.blue, c.alpha};
        SrConvertPixel(yiq, expected);
        ASSERT_EQ(ColorOf(yiq), Of(expected));
    }
    EXPECT_EQ(ColorOf(StHSLAPixel{65146, 100, 50, 9}), (Fields<4>{0, 0, 0, 9}))
        << "no sector: the colour bytes are 0";
}

TEST(SetRGBA32, RecordsOfBytes_KeepFillerAndFlag) {
    for (StRGBA32Pixel c : ManyColors()) {
        ASSERT_EQ(Of(After(Color(9, 9, 9, 9), c)), Of(c));
        ASSERT_EQ(Of(After(StRGB32Pixel{9, 9, 9, 0xA5}, c)), (Fields<4>{c.red, c.green, c.blue, 0xA5}));
        ASSERT_EQ(Of(After(StRGB24Pixel{9, 9, 9}, c)), (Fields<3>{c.red, c.green, c.blue}));
        ASSERT_EQ(Of(After(StRGB15Pixel{9, 9, 9, 1}, c)),
                  (Fields<4>{c.red / 8u, c.green / 8u, c.blue / 8u, 1}));
        ASSERT_EQ(Of(After(StRGB15Pixel{9, 9, 9, 0}, c)),
                  (Fields<4>{c.red / 8u, c.green / 8u, c.blue / 8u, 0}));
    }
    EXPECT_EQ(Of(After(StRGB15Pixel{9, 9, 9, 0}, Color(7, 7, 7, 255))), (Fields<4>{0, 0, 0, 0}));
}

TEST(SetRGBA32, RecordsOfWords_HaveTheByteTwice) {
    for (StRGBA32Pixel c : ManyColors()) {
        ASSERT_EQ(Of(After(StRGB48Pixel{}, c)), (Fields<3>{c.red * 257u, c.green * 257u, c.blue * 257u}));
        ASSERT_EQ(Of(After(StRGBA64Pixel{}, c)),
                  (Fields<4>{c.red * 257u, c.green * 257u, c.blue * 257u, c.alpha * 257u}));
    }
}

TEST(SetRGBA32, RecordsOfFloats_ByTheirOwnReciprocal) {
    double const exact = 1.0 / 255.0;
    for (StRGBA32Pixel c : ManyColors()) {
        Fields<3> const byDouble = {Rounded(c.red * exact), Rounded(c.green * exact),
                                    Rounded(c.blue * exact)};
        ASSERT_EQ(Of(After(StColorFloats{}, c)), byDouble);
        ASSERT_EQ(Of(After(StRGBAFloatPixel{}, c)),
                  (Fields<4>{Rounded(c.red * kInverseByte), Rounded(c.green * kInverseByte),
                             Rounded(c.blue * kInverseByte), Rounded(c.alpha * kInverseByte)}));
        ASSERT_EQ(Of(After(StRGBTFloatPixel{}, c)),
                  (Fields<4>{byDouble[0], byDouble[1], byDouble[2], Rounded(1.0 - c.alpha * exact)}));
        ASSERT_EQ(Of(After(StDepthFloatPixel{}, c)), (Fields<1>{Rounded(SumOf(c) * kThreeBytes)}));
        ASSERT_EQ(Of(After(StVelocityPixel{}, c)), (Fields<2>{Bits(c.red), Bits(c.green)}));
    }
}

TEST(SetRGBA32, Grays_TakeTheMean) {
    for (StRGBA32Pixel c : ManyColors()) {
        unsigned const mean = SumOf(c) / 3;
        ASSERT_EQ(Of(After(StGray8Pixel{9}, c)), (Fields<1>{mean}));
        ASSERT_EQ(Of(After(StGray4Pixel{9, 77}, c)), (Fields<2>{mean / 16, 77}));
        ASSERT_EQ(Of(After(StGray2Pixel{1, 77}, c)), (Fields<2>{mean / 64, 77}));
        ASSERT_EQ(Of(After(StBlackWhitePixel{1, 77}, c)), (Fields<2>{SumOf(c) < 383 ? 1u : 0u, 77}));
    }
    EXPECT_EQ(After(StBlackWhitePixel{0, 0}, Color(255, 127, 0, 0)).black, 1u) << "382";
    EXPECT_EQ(After(StBlackWhitePixel{1, 0}, Color(255, 128, 0, 0)).black, 0u) << "383";
}

TEST(SetRGBA32, Alphas_TakeAlpha) {
    for (unsigned v = 0; v < 256; ++v) {
        ASSERT_EQ(Of(After(StAlpha8Pixel{9}, Color(1, 2, 3, v))), (Fields<1>{v}));
        ASSERT_EQ(Of(After(StAlpha32Pixel{9}, Color(1, 2, 3, v))),
                  (Fields<1>{static_cast<std::uint32_t>(v * std::uint64_t{0x10101010} % 4294967296u)}));
    }
}

TEST(SetRGBA32, Alpha32_KeepsTheLowBitsOfTheProduct) {
    StAlpha32Pixel const half = After(StAlpha32Pixel{9}, Color(1, 2, 3, 128));
    EXPECT_EQ(half.alpha, 0x08080800u);
    EXPECT_EQ(Of(half.GetRGBA32()), (Fields<4>{8, 8, 8, 8})) << "not 128";
}

TEST(SetRGBA32, IntegerDepths_SpreadTheMean) {
    for (unsigned sum = 0; sum <= 765; ++sum) {
        StRGBA32Pixel const c = Color(sum / 3, (sum + 1) / 3, (sum + 2) / 3, 200);
        ASSERT_EQ(SumOf(c), sum);
        double const mean = sum * 0.3333333432674408;
        ASSERT_EQ(Of(After(StDepthUInt8Pixel{}, c)), (Fields<1>{Trunc32(mean)}));
        ASSERT_EQ(Of(After(StDepthUInt16Pixel{}, c)), (Fields<1>{Trunc32(mean * 257.0) % 65536}));
        ASSERT_EQ(Of(After(StDepthUInt24Pixel{0, 0xC3}, c)),
                  (Fields<2>{Trunc32(mean * 65793.0) % 0x1000000, 0xC3}));
        ASSERT_EQ(Of(After(StDepthUInt32Pixel{}, c)), (Fields<1>{Low32(mean * 16843008.0)}));
    }
    EXPECT_EQ(After(StDepthUInt8Pixel{}, Color(255, 255, 255, 0)).depth, 255);
    EXPECT_EQ(After(StDepthUInt16Pixel{}, Color(255, 255, 255, 0)).depth, 65535);
    EXPECT_EQ(After(StDepthUInt24Pixel{0, 0}, Color(255, 255, 255, 0)).depth, 0xFFFFFFu);
}

TEST(SetRGBA32, InksAndModels_GoThroughSrConvertPixel) {
    for (StRGBA32Pixel c : ManyColors()) {
        unsigned const k = 255u - std::max({c.red, c.green, c.blue});
        ASSERT_EQ(Of(After(StCMYKPixel{}, c)),
                  (Fields<4>{255u - c.red - k, 255u - c.green - k, 255u - c.blue - k, k}));
        StHSLAPixel hsl{};
        SrConvertPixel(c, hsl);
        ASSERT_EQ(Of(After(StHSLAPixel{1, 2, 3, 4}, c)), Of(hsl));
        StHSVAPixel hsv{};
        SrConvertPixel(c, hsv);
        ASSERT_EQ(Of(After(StHSVAPixel{1, 2, 3, 4}, c)), Of(hsv));
        StYIQAPixel yiq{};
        SrConvertPixel(c, yiq);
        ASSERT_EQ(Of(After(StYIQAPixel{1, 2, 3, 4}, c)), Of(yiq));
    }
}

}  // namespace
