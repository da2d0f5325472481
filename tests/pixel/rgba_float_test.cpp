// To and from four floats: the records' own rules, and the road of those that have none.
#include "framewright/pixel/pixel_ops.h"
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

std::uint32_t const kOne = 0x3F800000;

std::uint32_t FromByte(unsigned byte) {
    return Rounded(byte * kInverseByte);
}
Fields<4> GrayFloats(unsigned byte) {
    return {FromByte(byte), FromByte(byte), FromByte(byte), kOne};
}

template <class Record>
Fields<4> ToFloats(Record const& record) {
    StRGBAFloatPixel out{7, 7, 7, 7};
    record.ConvertToRGBAFloat(out);
    return Of(out);
}
/// Through the one set of names that templates use; the same where a record has the member.
template <class Record>
Fields<4> ToFloatsByName(Record const& record) {
    StRGBAFloatPixel out{7, 7, 7, 7};
    pixel::GetRGBAFloat(record, out);
    return Of(out);
}

TEST(ToRGBAFloat, RecordsOfBytes) {
    for (StRGBA32Pixel c : ManyColors()) {
        Fields<4> const opaque = {FromByte(c.red), FromByte(c.green), FromByte(c.blue), kOne};
        ASSERT_EQ(ToFloats(StRGB32Pixel{c.blue, c.green, c.red, c.alpha}), opaque);
        ASSERT_EQ(ToFloats(StRGB24Pixel{c.blue, c.green, c.red}), opaque);
        ASSERT_EQ(ToFloats(c), (Fields<4>{opaque[0], opaque[1], opaque[2], FromByte(c.alpha)}));
    }
}

TEST(ToRGBAFloat, RGB15_ExpandsToBytes) {
    for (unsigned v = 0; v < 32; ++v)
        for (unsigned flag = 0; flag < 2; ++flag) {
            StRGB15Pixel p{};
            p.red = v & 31;
            p.green = (31 - v) & 31;
            p.blue = (v / 2) & 31;
            p.flag = flag & 1;
            ASSERT_EQ(ToFloats(p), (Fields<4>{FromByte(v * 255 / 31), FromByte((31 - v) * 255 / 31),
                                              FromByte(v / 2 * 255 / 31), kOne}));
        }
    EXPECT_EQ(ToFloats(StRGB15Pixel{31, 31, 31, 0}), (Fields<4>{kOne, kOne, kOne, kOne}));
}

TEST(ToRGBAFloat, RGBA64_TakesHighBytes) {
    for (unsigned v = 0; v < 65536; v += 85) {
        StRGBA64Pixel const p{static_cast<std::uint16_t>(v), static_cast<std::uint16_t>(65535 - v),
                              static_cast<std::uint16_t>(v * 3), static_cast<std::uint16_t>(v ^ 0xFF)};
        ASSERT_EQ(ToFloats(p), (Fields<4>{FromByte(p.red / 256), FromByte(p.green / 256),
                                          FromByte(p.blue / 256), FromByte(p.alpha / 256)}));
    }
}

TEST(ToRGBAFloat, Grays_AreOpaque) {
    for (unsigned v = 0; v < 256; ++v) {
        ASSERT_EQ(ToFloats(StGray8Pixel{static_cast<std::uint8_t>(v)}), GrayFloats(v));
        if (v < 16) {
            ASSERT_EQ(ToFloats(StGray4Pixel{v & 15, 9}), GrayFloats(v * 17));
        }
        if (v < 4) {
            ASSERT_EQ(ToFloats(StGray2Pixel{v & 3, 9}), GrayFloats(v * 85));
        }
    }
}

TEST(ToRGBAFloat, BlackWhite_BlackIsTransparent) {
    EXPECT_EQ(ToFloats(StBlackWhitePixel{0, 9}), (Fields<4>{kOne, kOne, kOne, kOne}));
    EXPECT_EQ(ToFloats(StBlackWhitePixel{1, 9}), (Fields<4>{0, 0, 0, 0}));
}

TEST(ToRGBAFloat, Alphas_FillAllFourChannels) {
    for (unsigned v = 0; v < 256; ++v) {
        Fields<4> const all = {FromByte(v), FromByte(v), FromByte(v), FromByte(v)};
        ASSERT_EQ(ToFloats(StAlpha8Pixel{static_cast<std::uint8_t>(v)}), all);
        ASSERT_EQ(ToFloats(StAlpha32Pixel{v << 24 | 0xABCDEF}), all);
    }
}

TEST(ToRGBAFloat, DepthFloat_GoesThroughAByte) {
    for (float f : ManyFloats())
        ASSERT_EQ(ToFloats(StDepthFloatPixel{f}), GrayFloats(ByteOf(f))) << f;
}

TEST(ToRGBAFloat, CMYK_InksWrap) {
    for (unsigned a = 0; a < 256; ++a)
        for (unsigned k = 0; k < 256; ++k) {
            unsigned const b = (a * 5 + k) % 256, c = 255 - a;
            StCMYKPixel const p{static_cast<std::uint8_t>(a), static_cast<std::uint8_t>(b),
                                static_cast<std::uint8_t>(c), static_cast<std::uint8_t>(k)};
            ASSERT_EQ(ToFloats(p), (Fields<4>{FromByte((511 - a - k) % 256), FromByte((511 - b - k) % 256),
                                              FromByte((511 - c - k) % 256), kOne}));
        }
    EXPECT_EQ(ToFloats(StCMYKPixel{200, 0, 0, 100})[0], FromByte(211)) << "200 and 100 of 255 wrap to 211";
}

TEST(ToRGBAFloat, WithoutARuleOfItsOwn_ItIsTheOpaqueColor) {
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        ASSERT_EQ(ToFloatsByName(c), (Fields<4>{Bits(c.red), Bits(c.green), Bits(c.blue), kOne}));
        StRGBAFloatPixel const p{c.red, c.green, c.blue, c.green};
        ASSERT_EQ(ToFloatsByName(p), Of(p));
    }
    for (unsigned v = 0; v < 65536; v += 77) {
        auto const w = static_cast<std::uint16_t>(v);
        std::uint32_t const word = Rounded(v * kInverseWord);
        ASSERT_EQ(ToFloatsByName(StRGB48Pixel{w, 0, 65535}), (Fields<4>{word, 0, kOne, kOne}));
        ASSERT_EQ(ToFloatsByName(StDepthUInt16Pixel{w}), (Fields<4>{word, word, word, kOne}));
    }
    for (unsigned v = 0; v < 256; ++v)
        ASSERT_EQ(ToFloatsByName(StDepthUInt8Pixel{static_cast<std::uint8_t>(v)}), GrayFloats(v));
    for (std::uint32_t v : {0u, 1u, 0x800000u, 0xFFFFFEu, 0xFFFFFFu}) {
        std::uint32_t const depth = Rounded(v * (1.0 / 16777215.0));
        ASSERT_EQ(ToFloatsByName(StDepthUInt24Pixel{v & 0xFFFFFF, 5}),
                  (Fields<4>{depth, depth, depth, kOne}));
    }
    for (std::uint32_t v : {0u, 1u, 0x80000000u, 0xFFFFFFFFu}) {
        std::uint32_t const depth = Rounded(std::ldexp(static_cast<double>(static_cast<float>(v)), -32));
        ASSERT_EQ(ToFloatsByName(StDepthUInt32Pixel{v}), (Fields<4>{depth, depth, depth, kOne}));
    }
}

TEST(ToRGBAFloat, ByName_IsTheMember) {
    EXPECT_EQ(ToFloatsByName(StAlpha8Pixel{77}), ToFloats(StAlpha8Pixel{77}));
    EXPECT_EQ(ToFloatsByName(Color(1, 2, 3, 4)), ToFloats(Color(1, 2, 3, 4)));
    EXPECT_EQ(ToFloatsByName(StMapped8Pixel{3}), (Fields<4>{Bits(7), Bits(7), Bits(7), Bits(7)}))
        << "a mapped record has no colour and leaves the argument";
}

/// Each colour of floats in turn, with an alpha of its own.
template <class Check>
void ForFloats(Check check) {
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        check(StRGBAFloatPixel{c.red, c.green, c.blue, FloatColor(i * 3 + 1).green});
    }
}

TEST(FromRGBAFloat, RecordsOfBytes_IgnoreAlphaAndKeepTheFiller) {
    ForFloats([](StRGBAFloatPixel in) {
        std::uint32_t const r = ByteOf(in.red), g = ByteOf(in.green), b = ByteOf(in.blue);
        StRGB32Pixel rgb32{1, 2, 3, 0x99};
        rgb32.ConvertFromRGBAFloat(in);
        ASSERT_EQ(Of(rgb32), (Fields<4>{r, g, b, 0x99}));
        StRGB24Pixel rgb24{};
        rgb24.ConvertFromRGBAFloat(in);
        ASSERT_EQ(Of(rgb24), (Fields<3>{r, g, b}));
        StRGBA32Pixel rgba{};
        rgba.ConvertFromRGBAFloat(in);
        ASSERT_EQ(Of(rgba), (Fields<4>{r, g, b, ByteOf(in.alpha)}));
    });
}

TEST(FromRGBAFloat, RGB15_GoesThroughBytesAndKeepsTheFlag) {
    ForFloats([](StRGBAFloatPixel in) {
        for (unsigned flag = 0; flag < 2; ++flag) {
            StRGB15Pixel p{1, 2, 3, 0};
            p.flag = flag & 1;
            p.ConvertFromRGBAFloat(in);
            ASSERT_EQ(Of(p),
                      (Fields<4>{ByteOf(in.red) / 8, ByteOf(in.green) / 8, ByteOf(in.blue) / 8, flag}));
        }
    });
}

TEST(FromRGBAFloat, RGBA64_HasTheByteTwice) {
    ForFloats([](StRGBAFloatPixel in) {
        StRGBA64Pixel p{};
        p.ConvertFromRGBAFloat(in);
        ASSERT_EQ(Of(p), (Fields<4>{ByteOf(in.red) * 257, ByteOf(in.green) * 257, ByteOf(in.blue) * 257,
                                    ByteOf(in.alpha) * 257}));
    });
}

TEST(FromRGBAFloat, Grays_TakeTheMeanOfTheBytes) {
    ForFloats([](StRGBAFloatPixel in) {
        std::uint32_t const sum = ByteOf(in.red) + ByteOf(in.green) + ByteOf(in.blue), mean = sum / 3;
        StGray8Pixel gray8{};
        gray8.ConvertFromRGBAFloat(in);
        ASSERT_EQ(gray8.level, mean);
        StGray4Pixel gray4{0, 11};
        gray4.ConvertFromRGBAFloat(in);
        ASSERT_EQ(Of(gray4), (Fields<2>{mean / 16, 11}));
        StGray2Pixel gray2{0, 11};
        gray2.ConvertFromRGBAFloat(in);
        ASSERT_EQ(Of(gray2), (Fields<2>{mean / 64, 11}));
        StBlackWhitePixel bw{0, 11};
        bw.ConvertFromRGBAFloat(in);
        ASSERT_EQ(Of(bw), (Fields<2>{sum < 383 ? 1u : 0u, 11}));
        StDepthFloatPixel depth{};
        depth.ConvertFromRGBAFloat(in);
        ASSERT_EQ(Bits(depth.depth), Rounded(sum * kThreeBytes));
    });
}

TEST(FromRGBAFloat, BlackWhite_LimitIs383) {
    StBlackWhitePixel p{0, 0};
    p.ConvertFromRGBAFloat({1.0f, 0.5f, 0.0f, 0.0f});  // 255 + 127
    EXPECT_EQ(p.black, 1u);
    p.ConvertFromRGBAFloat({1.0f, 0.50197f, 0.0f, 0.0f});  // 255 + 128
    EXPECT_EQ(p.black, 0u);
}

TEST(FromRGBAFloat, Alphas_TakeAlphaAlone) {
    ForFloats([](StRGBAFloatPixel in) {
        StAlpha8Pixel alpha8{};
        alpha8.ConvertFromRGBAFloat(in);
        ASSERT_EQ(alpha8.alpha, ByteOf(in.alpha));
        StAlpha32Pixel alpha32{};
        alpha32.ConvertFromRGBAFloat(in);
        std::uint64_t const wide = std::uint64_t{ByteOf(in.alpha)} * 0x10101010;
        ASSERT_EQ(alpha32.alpha, wide % 4294967296u);
    });
    StAlpha32Pixel full{};
    full.ConvertFromRGBAFloat({0, 0, 0, 1.0f});
    EXPECT_EQ(full.alpha, 0xFFFFFFF0u) << "opaque is not all ones";
}

TEST(FromRGBAFloat, CMYK_TakesBlackOutOfTheInks) {
    ForFloats([](StRGBAFloatPixel in) {
        std::uint32_t const c = 255 - ByteOf(in.red), m = 255 - ByteOf(in.green), y = 255 - ByteOf(in.blue);
        std::uint32_t const k = std::min(c, std::min(m, y));
        StCMYKPixel p{};
        p.ConvertFromRGBAFloat(in);
        ASSERT_EQ(Of(p), (Fields<4>{c - k, m - k, y - k, k}));
    });
}

TEST(FromRGBAFloat, WithoutARuleOfItsOwn_ItIsTheColor) {
    ForFloats([](StRGBAFloatPixel in) {
        StColorFloats color{};
        pixel::SetRGBAFloat(color, in);
        ASSERT_EQ(Of(color), (Fields<3>{Bits(in.red), Bits(in.green), Bits(in.blue)}));
        StRGBAFloatPixel copy{};
        pixel::SetRGBAFloat(copy, in);
        ASSERT_EQ(Of(copy), Of(in));
        StRGB48Pixel words{};
        pixel::SetRGBAFloat(words, in);
        ASSERT_EQ(Of(words), (Fields<3>{WordOf(in.red), WordOf(in.green), WordOf(in.blue)}));
        double const sum = double{in.red} + in.green + in.blue;
        StDepthUInt8Pixel depth8{};
        pixel::SetRGBAFloat(depth8, in);
        ASSERT_EQ(depth8.depth, Trunc32(sum * 85.0) % 256);
        StDepthUInt16Pixel depth16{};
        pixel::SetRGBAFloat(depth16, in);
        ASSERT_EQ(depth16.depth, Trunc32(sum * 21845.0) % 65536);
        StDepthUInt24Pixel depth24{0, 0x5A};
        pixel::SetRGBAFloat(depth24, in);
        ASSERT_EQ(Of(depth24), (Fields<2>{Trunc32(sum * 5592405.0) % 0x1000000, 0x5A}));
        StDepthUInt32Pixel depth32{};
        pixel::SetRGBAFloat(depth32, in);
        ASSERT_EQ(depth32.depth, Low32(sum * 1431655808.0));
        StGray8Pixel gray{}, byName{};
        gray.ConvertFromRGBAFloat(in);
        pixel::SetRGBAFloat(byName, in);
        ASSERT_EQ(gray.level, byName.level);
        StMapped4Pixel mapped{5, 6};
        pixel::SetRGBAFloat(mapped, in);
        ASSERT_EQ(Of(mapped), (Fields<2>{5, 6}));
    });
}

TEST(FromRGBAFloat, JustAboveFull) {
    StRGB24Pixel p{};
    p.ConvertFromRGBAFloat({1.0f, 1.0000001f, 256.0f / 255.0f, 0});
    EXPECT_EQ(Of(p), (Fields<3>{255, 255, 0})) << "256 keeps no low bits";
    p.ConvertFromRGBAFloat({1.5f, -0.25f, 4294967296.0f, 0});
    // 382 is cut to 126; -63 is 193 in eight bits; out of range leaves no bits.
    EXPECT_EQ(Of(p), (Fields<3>{126, 193, 0}));
}

TEST(RoundTrip, ByteToFloatToByte_IsTheIdentity) {
    for (unsigned v = 0; v < 256; ++v) {
        StRGB24Pixel p{static_cast<std::uint8_t>(v), static_cast<std::uint8_t>(v),
                       static_cast<std::uint8_t>(v)};
        StRGBAFloatPixel floats;
        p.ConvertToRGBAFloat(floats);
        StRGB24Pixel back{};
        back.ConvertFromRGBAFloat(floats);
        ASSERT_EQ(Of(back), (Fields<3>{v, v, v}));
    }
}

TEST(RoundTrip, WordToFloatToWord_Loses1For33407Values) {
    int same = 0, less = 0;
    for (unsigned v = 0; v < 65536; ++v) {
        auto const w = static_cast<std::uint16_t>(v);
        StRGB48Pixel const p{w, w, w};
        StColorFloats floats;
        p.ConvertToColorFloats(floats);
        StRGB48Pixel back{};
        back.ConvertFromColorFloats(floats);
        same += back.red == v;
        less += back.red + 1u == v;
    }
    EXPECT_EQ(less, 33407);
    EXPECT_EQ(same + less, 65536);
}

}  // namespace
