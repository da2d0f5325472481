// To float colour and to a single float, through the smart pixel's operations, which are the records' own.
#include "framewright/pixel/pixel_ops.h"
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

template <class Record>
Fields<3> ColorOf(Record const& record) {
    StColorFloats out{7, 7, 7};
    record.ConvertToColorFloats(out);
    StColorFloats smartOut{7, 7, 7};
    Smart<Record>(record)->GetColorFloats(smartOut);
    EXPECT_EQ(Of(out), Of(smartOut)) << "the smart pixel says otherwise";
    return Of(out);
}
template <class Record>
std::uint32_t FloatOf(Record const& record) {
    std::uint32_t const bits = Bits(record.ConvertToFloat());
    EXPECT_EQ(bits, Bits(Smart<Record>(record)->GetFloat())) << "the smart pixel says otherwise";
    return bits;
}
Fields<3> Same(std::uint32_t bits) {
    return {bits, bits, bits};
}
Fields<3> ByteFields(unsigned r, unsigned g, unsigned b) {
    return {Rounded(r * kInverseByte), Rounded(g * kInverseByte), Rounded(b * kInverseByte)};
}

TEST(ToColorFloats, RecordsOfFloats_Copy_TheirFloatIsTheMean) {
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        double const sum = double{c.red} + c.green + c.blue;
        Fields<3> const copy = {Bits(c.red), Bits(c.green), Bits(c.blue)};
        ASSERT_EQ(ColorOf(c), copy);
        ASSERT_EQ(FloatOf(c), Rounded(sum * kInverseTriFloat));
        StRGBAFloatPixel const rgba{c.red, c.green, c.blue, 0.25f};
        ASSERT_EQ(ColorOf(rgba), copy);
        ASSERT_EQ(FloatOf(rgba), Rounded(sum * (1.0 / 3.0)));
        StRGBTFloatPixel const rgbt{c.red, c.green, c.blue, 0.25f};
        ASSERT_EQ(ColorOf(rgbt), copy);
        ASSERT_EQ(FloatOf(rgbt), Rounded(sum * (1.0 / 3.0)));
    }
}

TEST(ToColorFloats, RecordsOfBytes) {
    for (StRGBA32Pixel p : ManyColors()) {
        Fields<3> const expected = ByteFields(p.red, p.green, p.blue);
        unsigned const sum = p.red + p.green + p.blue;
        ASSERT_EQ(ColorOf(p), expected);
        ASSERT_EQ(FloatOf(p), Rounded(kInverseTriByte * sum));
        StRGB32Pixel const rgb32{p.blue, p.green, p.red, p.alpha};
        ASSERT_EQ(ColorOf(rgb32), expected);
        ASSERT_EQ(FloatOf(rgb32), Rounded(kInverseTriByte * sum));
        StRGB24Pixel const rgb24{p.blue, p.green, p.red};
        ASSERT_EQ(ColorOf(rgb24), expected);
        ASSERT_EQ(FloatOf(rgb24), Rounded(sum * kThreeBytes));
    }
}

TEST(ToColorFloats, RGB15_AtFiveBitScale) {
    for (unsigned r = 0; r < 32; ++r)
        for (unsigned g = 0; g < 32; g += 3) {
            StRGB15Pixel p{7, 0, 0, 1};
            p.red = r & 31;
            p.green = g & 31;
            double const scale = 0.03225806451612903;
            ASSERT_EQ(ColorOf(p), (Fields<3>{Rounded(r * scale), Rounded(g * scale), Rounded(7 * scale)}));
            ASSERT_EQ(FloatOf(p), Rounded((r + g + 7) * 0.010752688172043012));
        }
}

TEST(ToColorFloats, RecordsOfWords_ByTheFloatAndByTheDoubleReciprocal) {
    for (unsigned v = 0; v < 65536; v += 13) {
        auto const w = static_cast<std::uint16_t>(v), x = static_cast<std::uint16_t>(65535 - v);
        StRGB48Pixel const rgb{w, x, 65535};
        ASSERT_EQ(ColorOf(rgb), (Fields<3>{Rounded(v * kInverseWord), Rounded(x * kInverseWord),
                                           Rounded(65535 * kInverseWord)}));
        ASSERT_EQ(FloatOf(rgb), Rounded((v + x + 65535) * kThreeWords));
        StRGBA64Pixel const rgba{w, x, 65535, 3};
        double const scale = 1.5259021896696422e-05;
        ASSERT_EQ(ColorOf(rgba), (Fields<3>{Rounded(v * scale), Rounded(x * scale), Rounded(65535 * scale)}));
        ASSERT_EQ(FloatOf(rgba), Rounded((v + x + 65535) * kThreeWords));
    }
}

TEST(ToColorFloats, GraysAndAlpha8) {
    for (unsigned v = 0; v < 256; ++v) {
        std::uint32_t const byte = Rounded(v * kInverseByte);
        StGray8Pixel const gray{static_cast<std::uint8_t>(v)};
        ASSERT_EQ(ColorOf(gray), Same(byte));
        ASSERT_EQ(FloatOf(gray), byte);
        StAlpha8Pixel const alpha{static_cast<std::uint8_t>(v)};
        ASSERT_EQ(ColorOf(alpha), Same(byte));
        ASSERT_EQ(FloatOf(alpha), byte);
    }
    for (unsigned v = 0; v < 16; ++v) {
        std::uint32_t const level = Rounded(v * 0.06666667014360428);
        ASSERT_EQ(ColorOf(StGray4Pixel{v & 15, 8}), Same(level));
        ASSERT_EQ(FloatOf(StGray4Pixel{v & 15, 8}), level);
    }
    for (unsigned v = 0; v < 4; ++v) {
        std::uint32_t const level = Rounded(v * 0.3333333432674408);
        ASSERT_EQ(ColorOf(StGray2Pixel{v & 3, 8}), Same(level));
        ASSERT_EQ(FloatOf(StGray2Pixel{v & 3, 8}), level);
    }
}

TEST(ToColorFloats, Alpha32_IsRoundedToFloatFirst) {
    for (std::uint32_t v : {0u, 1u, 255u, 16777215u, 16777217u, 0x7FFFFFFFu, 0x80000000u, 0x80000081u,
                            0xFFFFFF7Fu, 0xFFFFFF80u, 0xFFFFFFFFu}) {
        std::uint32_t const expected = Rounded(static_cast<float>(v) * 2.3283064365386963e-10);
        ASSERT_EQ(ColorOf(StAlpha32Pixel{v}), Same(expected)) << v;
        ASSERT_EQ(FloatOf(StAlpha32Pixel{v}), expected) << v;
    }
    EXPECT_EQ(FloatOf(StAlpha32Pixel{0xFFFFFFFF}), 0x3F800000u) << "full is exactly 1.0";
}

TEST(ToColorFloats, DepthFloat_IsItself) {
    for (float f : ManyFloats()) {
        ASSERT_EQ(ColorOf(StDepthFloatPixel{f}), Same(Bits(f)));
        ASSERT_EQ(FloatOf(StDepthFloatPixel{f}), Bits(f));
    }
}

TEST(ToColorFloats, IntegerDepths_FillTheScale) {
    for (unsigned v = 0; v < 65536; v += 5) {
        if (v < 256) {
            StDepthUInt8Pixel const depth{static_cast<std::uint8_t>(v)};
            ASSERT_EQ(FloatOf(depth), Rounded(v * kInverseByte));
            ASSERT_EQ(ColorOf(depth), Same(Rounded(v * kInverseByte)));
        }
        StDepthUInt16Pixel const depth{static_cast<std::uint16_t>(v)};
        ASSERT_EQ(FloatOf(depth), Rounded(v * kInverseWord));
        ASSERT_EQ(ColorOf(depth), Same(Rounded(v * kInverseWord)));
        unsigned const wide = v * 256 + 255;
        StDepthUInt24Pixel const depth24{wide & 0xFFFFFF, 0x77};
        ASSERT_EQ(FloatOf(depth24), Rounded(wide * (1.0 / 16777215.0)));
        ASSERT_EQ(ColorOf(depth24), Same(Rounded(wide * (1.0 / 16777215.0))));
        std::uint32_t const wider = v * 65537u;
        ASSERT_EQ(FloatOf(StDepthUInt32Pixel{wider}), Rounded(std::ldexp(static_cast<float>(wider), -32)));
        ASSERT_EQ(ColorOf(StDepthUInt32Pixel{wider}),
                  Same(Rounded(std::ldexp(static_cast<float>(wider), -32))));
    }
    EXPECT_EQ(FloatOf(StDepthUInt24Pixel{0xFFFFFF, 0}), 0x3F800000u);
    EXPECT_EQ(FloatOf(StDepthUInt32Pixel{0xFFFFFFFF}), 0x3F800000u);
}

TEST(ToColorFloats, BlackWhite_IsItsLight) {
    EXPECT_EQ(ColorOf(StBlackWhitePixel{0, 3}), Same(0x3F800000));
    EXPECT_EQ(ColorOf(StBlackWhitePixel{1, 3}), Same(0));
    EXPECT_EQ(FloatOf(StBlackWhitePixel{0, 3}), 0x3F800000u);
    EXPECT_EQ(FloatOf(StBlackWhitePixel{1, 3}), 0u);
}

TEST(ToColorFloats, CMYK_UsesTheWrappedInks) {
    for (StRGBA32Pixel c : ManyColors()) {
        StCMYKPixel const p{c.red, c.green, c.blue, c.alpha};
        unsigned const r = (511 - p.cyan - p.black) % 256, g = (511 - p.magenta - p.black) % 256,
                       b = (511 - p.yellow - p.black) % 256;
        ASSERT_EQ(ColorOf(p), ByteFields(r, g, b));
        ASSERT_EQ(FloatOf(p), Rounded((r + g + b) * kThreeBytes));
    }
}

/// The models' floats are those of the colour that SrConvertPixel gives.
template <class Record>
void CheckModel(Record const& record) {
    StRGBA32Pixel color{};
    SrConvertPixel(record, color);
    ASSERT_EQ(ColorOf(record), ByteFields(color.red, color.green, color.blue));
    ASSERT_EQ(FloatOf(record), Rounded((color.red + color.green + color.blue) * kThreeBytes));
}

TEST(ToColorFloats, ColorModels_GoThroughBytes) {
    for (unsigned i = 0; i < 3000; ++i) {
        auto const hue = static_cast<std::uint16_t>(i % 440);
        auto const a = static_cast<std::uint8_t>(i * 7 % 101), b = static_cast<std::uint8_t>(i * 13 % 101);
        CheckModel(StHSLAPixel{hue, a, b, 200});
        CheckModel(StHSVAPixel{hue, a, b, 200});
        CheckModel(StYIQAPixel{a, b, static_cast<std::uint8_t>(i % 101), 200});
    }
}

TEST(ToColorFloats, Velocity_ItsFloatIsTheSpeed) {
    EXPECT_EQ(FloatOf(StVelocityPixel{3.0f, 4.0f}), Bits(5.0f));
    EXPECT_EQ(FloatOf(StVelocityPixel{-3.0f, -4.0f}), Bits(5.0f));
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        ASSERT_EQ(ColorOf(StVelocityPixel{c.red, c.green}), (Fields<3>{Bits(c.red), Bits(c.green), 0}));
        ASSERT_EQ(FloatOf(StVelocityPixel{c.red, c.green}),
                  Rounded(std::sqrt(double{c.red} * c.red + double{c.green} * c.green)));
    }
}

}  // namespace
