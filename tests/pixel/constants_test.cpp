// Named scales and colours, the grey of a colour, and range masks.
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

TEST(ScaleConstants, HaveTheirBits) {
    struct StRow {
        char const* name;
        float actual;
        std::uint32_t bits;
        double value;
    };
    StRow const rows[] = {
        {"SkFloatMaxAlphaOpacity", SkFloatMaxAlphaOpacity(), 0x3F800000, 1.0},
        {"SkFloatMinAlphaOpacity", SkFloatMinAlphaOpacity(), 0x00000000, 0.0},
        {"SkFloatMaxTransmission", SkFloatMaxTransmission(), 0x3F800000, 1.0},
        {"SkFloatMinTransmission", SkFloatMinTransmission(), 0x00000000, 0.0},
        {"SkMaxColorFloatIntensity", SkMaxColorFloatIntensity(), 0x3F800000, 1.0},
        {"SkMinColorFloatIntensity", SkMinColorFloatIntensity(), 0x00000000, 0.0},
        {"SkMinTransparency", SkMinTransparency(), 0x00000000, 0.0},
        {"SkMinDepthValue", SkMinDepthValue(), 0xFF800000, -std::numeric_limits<double>::infinity()},
        {"SkInverseColorByte", SkInverseColorByte(), 0x3B808081, 0.003921568859368563},
        {"SkInverseColorWord", SkInverseColorWord(), 0x37800080, 1.5259021893143654e-05},
        {"SkInverseTriFloat", SkInverseTriFloat(), 0x3EAAAAAB, 0.3333333432674408},
        {"SkInverseTriByte", SkInverseTriByte(), 0x3AAB5601, 0.0013071895809844136},
        {"SkInverseTriNobble", SkInverseTriNobble(), 0x3C302C0B, 0.01075268816202879},
    };
    for (StRow const& row : rows) {
        EXPECT_EQ(Bits(row.actual), row.bits) << row.name;
        EXPECT_EQ(static_cast<double>(row.actual), row.value) << row.name;
    }
}

TEST(ScaleConstants, MinDepth_IsBelowEveryFiniteDepth) {
    EXPECT_LT(SkMinDepthValue(), std::numeric_limits<float>::lowest());
}

TEST(ScaleConstants, InverseByte_DiffersFromTheExactQuotientFor126Bytes) {
    int differing = 0;
    for (int v = 0; v < 256; ++v) {
        StColorFloats floats;
        floats.SetRGBA32(Color(v, v, v, 255));
        StRGBAFloatPixel opaque;
        opaque.SetRGBA32(Color(v, v, v, 255));
        differing += Bits(floats.red) != Bits(opaque.red);
    }
    EXPECT_EQ(differing, 126);
}

TEST(ColorConstants, HaveTheirValues) {
    EXPECT_EQ(Of(SkBlackColorBytes()), (Fields<4>{0, 0, 0, 0})) << "black is transparent on purpose";
    EXPECT_EQ(Of(SkWhiteColorBytes()), (Fields<4>{255, 255, 255, 255}));
    std::uint32_t const one = 0x3F800000;
    EXPECT_EQ(Of(SkBlackColorFloats()), (Fields<3>{0, 0, 0}));
    EXPECT_EQ(Of(SkWhiteColorFloats()), (Fields<3>{one, one, one}));
    EXPECT_EQ(Of(SkBlackColorWords()), (Fields<3>{0, 0, 0}));
    EXPECT_EQ(Of(SkWhiteColorWords()), (Fields<3>{65535, 65535, 65535}));
    EXPECT_EQ(Of(SkBlackRGBAOpaque()), (Fields<4>{0, 0, 0, one}));
    EXPECT_EQ(Of(SkBlackRGBATransparent()), (Fields<4>{0, 0, 0, 0}));
    EXPECT_EQ(Of(SkWhiteRGBAOpaque()), (Fields<4>{one, one, one, one}));
    EXPECT_EQ(Of(SkWhiteRGBATransparents()), (Fields<4>{one, one, one, 0}));
    EXPECT_EQ(Of(SkBlackRGBTOpaque()), (Fields<4>{0, 0, 0, 0}));
    EXPECT_EQ(Of(SkBlackRGBTTransparent()), (Fields<4>{0, 0, 0, one}));
    EXPECT_EQ(Of(SkWhiteRGBTOpaque()), (Fields<4>{one, one, one, 0}));
    EXPECT_EQ(Of(SkWhiteRGBTTransparent()), (Fields<4>{one, one, one, one}));
}

TEST(ColorConstants, References_StayTheSame) {
    EXPECT_EQ(&SkBlackColorFloats(), &SkBlackColorFloats());
    EXPECT_EQ(&SkWhiteRGBATransparents(), &SkWhiteRGBATransparents());
    EXPECT_TRUE((std::is_same_v<decltype(SkBlackColorBytes()), StRGBA32Pixel>));
    EXPECT_TRUE((std::is_same_v<decltype(SkWhiteColorWords()), StRGB48Pixel const&>));
}

TEST(GrayScale, IsThePlainMean_AlphaDoesNotCount) {
    EXPECT_EQ(SrGrayScale(Color(255, 255, 255, 0)), 255);
    EXPECT_EQ(SrGrayScale(Color(1, 1, 0, 255)), 0);
    EXPECT_EQ(SrGrayScale(Color(1, 1, 1, 0)), 1);
    for (StRGBA32Pixel color : ManyColors()) {
        unsigned const sum = color.red + color.green + color.blue;
        unsigned gray = 0;
        while ((gray + 1) * 3 <= sum)
            ++gray;
        ASSERT_EQ(SrGrayScale(color), gray);
    }
}

TEST(RangeMask, CoversFromBit7DownToTheHighestSetBit) {
    EXPECT_EQ(SrMakeRangeMask(0x10), 0xF0);
    EXPECT_EQ(SrMakeRangeMask(0x80), 0x80);
    EXPECT_EQ(SrMakeRangeMask(0x01), 0xFF);
    EXPECT_EQ(SrMakeRangeMask(0x00), 0xFF);
    EXPECT_EQ(SrMakeRangeMask(0x04), 0xFC);
    for (int value = 1; value < 256; ++value) {
        // From the highest set bit on upward: 256 less the greatest power of two in value.
        int power = 1;
        while (power * 2 <= value)
            power *= 2;
        ASSERT_EQ(SrMakeRangeMask(static_cast<unsigned char>(value)), 256 - power) << value;
    }
}

}  // namespace
