// One float, or float colour, into every record, through the smart pixel's operations.
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

constexpr double kThird = 1.0 / 3.0;
std::uint32_t const kOne = 0x3F800000;

template <class Record>
Record After(Record record, float value) {
    Smart<Record> smart(record);
    smart->SetFloat(value);
    return smart.Value();
}
template <class Record>
Record After(Record record, StColorFloats const& color) {
    Smart<Record> smart(record);
    smart->SetColorFloats(color);
    return smart.Value();
}
Fields<4> Inks(std::uint32_t r, std::uint32_t g, std::uint32_t b) {
    std::uint32_t const k = 255 - std::max({r, g, b});
    return {255 - r - k, 255 - g - k, 255 - b - k, k};
}
template <class Record>
Record Model(StRGBA32Pixel color) {
    Record record{};
    SrConvertPixel(color, record);
    return record;
}

TEST(SetFloat, ColorsAndGrays) {
    for (float f : ManyFloats()) {
        std::uint32_t const byte = ByteOf(f), word = WordOf(f), five = Trunc32(31.0 * f) % 32;
        ASSERT_EQ(Of(After(Color(9, 9, 9, 9), f)), (Fields<4>{byte, byte, byte, byte})) << f;
        ASSERT_EQ(Of(After(StRGB32Pixel{9, 9, 9, 0x5C}, f)), (Fields<4>{byte, byte, byte, 0x5C})) << f;
        ASSERT_EQ(Of(After(StRGB24Pixel{9, 9, 9}, f)), (Fields<3>{byte, byte, byte})) << f;
        ASSERT_EQ(Of(After(StRGB15Pixel{9, 9, 9, 1}, f)), (Fields<4>{five, five, five, 1})) << f;
        ASSERT_EQ(Of(After(StRGB15Pixel{9, 9, 9, 0}, f)), (Fields<4>{five, five, five, 0})) << f;
        ASSERT_EQ(Of(After(StRGB48Pixel{}, f)), (Fields<3>{word, word, word})) << f;
        ASSERT_EQ(Of(After(StRGBA64Pixel{}, f)), (Fields<4>{word, word, word, word})) << f;
        ASSERT_EQ(Of(After(StColorFloats{}, f)), (Fields<3>{Bits(f), Bits(f), Bits(f)}));
        ASSERT_EQ(Of(After(StRGBAFloatPixel{}, f)), (Fields<4>{Bits(f), Bits(f), Bits(f), Bits(f)}));
        ASSERT_EQ(Of(After(StRGBTFloatPixel{}, f)), (Fields<4>{Bits(f), Bits(f), Bits(f), Rounded(1.0 - f)}));
        ASSERT_EQ(Of(After(StGray8Pixel{9}, f)), (Fields<1>{byte})) << f;
        ASSERT_EQ(Of(After(StGray4Pixel{9, 21}, f)), (Fields<2>{Trunc32(15.0 * f) % 16, 21})) << f;
        ASSERT_EQ(Of(After(StGray2Pixel{1, 21}, f)), (Fields<2>{Trunc32(3.0 * f) % 4, 21})) << f;
        ASSERT_EQ(Of(After(StBlackWhitePixel{0, 21}, f)), (Fields<2>{f < 0.5 ? 1u : 0u, 21})) << f;
    }
}

TEST(SetFloat, AlphasAndDepths) {
    for (float f : ManyFloats()) {
        std::uint32_t const wide = Low32(f * 4294967296.0);
        ASSERT_EQ(Of(After(StAlpha8Pixel{9}, f)), (Fields<1>{ByteOf(f)})) << f;
        ASSERT_EQ(Of(After(StAlpha32Pixel{9}, f)), (Fields<1>{wide})) << f;
        ASSERT_EQ(Of(After(StDepthFloatPixel{9}, f)), (Fields<1>{Bits(f)}));
        ASSERT_EQ(Of(After(StDepthUInt8Pixel{9}, f)), (Fields<1>{ByteOf(f)})) << f;
        ASSERT_EQ(Of(After(StDepthUInt16Pixel{9}, f)), (Fields<1>{WordOf(f)})) << f;
        ASSERT_EQ(Of(After(StDepthUInt24Pixel{9, 0x3D}, f)),
                  (Fields<2>{Trunc32(16777215.0 * f) % 0x1000000, 0x3D}))
            << f;
        ASSERT_EQ(Of(After(StDepthUInt32Pixel{9}, f)), (Fields<1>{wide})) << f;
    }
    EXPECT_EQ(After(StAlpha32Pixel{9}, 1.0f).alpha, 0u) << "2 to the 32 keeps no low bits";
    EXPECT_EQ(After(StDepthUInt32Pixel{9}, 1.0f).depth, 0u);
    EXPECT_EQ(After(StDepthUInt32Pixel{9}, 0.5f).depth, 0x80000000u);
    EXPECT_EQ(After(StDepthUInt32Pixel{9}, kNaN).depth, 0u);
    EXPECT_EQ(After(StDepthUInt16Pixel{9}, 1.0f).depth, 65535);
    EXPECT_EQ(After(StDepthUInt24Pixel{9, 0}, 1.0f).depth, 0xFFFFFFu);
}

TEST(SetFloat, InksModelsAndVelocity) {
    for (float f : ManyFloats()) {
        std::uint32_t const byte = ByteOf(f);
        StRGBA32Pixel const gray = Color(byte, byte, byte, byte);
        ASSERT_EQ(Of(After(StCMYKPixel{9, 9, 9, 9}, f)), (Fields<4>{0, 0, 0, 255 - byte})) << f;
        ASSERT_EQ(Of(After(StHSLAPixel{9, 9, 9, 9}, f)), Of(Model<StHSLAPixel>(gray))) << f;
        ASSERT_EQ(After(StHSLAPixel{9, 9, 9, 9}, f).alpha, byte) << "alpha is the grey";
        ASSERT_EQ(Of(After(StHSVAPixel{9, 9, 9, 9}, f)), Of(Model<StHSVAPixel>(gray))) << f;
        ASSERT_EQ(Of(After(StYIQAPixel{9, 9, 9, 9}, f)), Of(Model<StYIQAPixel>(gray))) << f;
        ASSERT_EQ(Of(After(StVelocityPixel{9, 9}, f)), (Fields<2>{Bits(f), Bits(f)}));
    }
}

TEST(SetColorFloats, ColorsOfIntegers) {
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        std::uint32_t const r = ByteOf(c.red), g = ByteOf(c.green), b = ByteOf(c.blue);
        ASSERT_EQ(Of(After(Color(9, 9, 9, 9), c)), (Fields<4>{r, g, b, 255}));
        ASSERT_EQ(Of(After(StRGB32Pixel{9, 9, 9, 0x5C}, c)), (Fields<4>{r, g, b, 0x5C}));
        ASSERT_EQ(Of(After(StRGB24Pixel{9, 9, 9}, c)), (Fields<3>{r, g, b}));
        ASSERT_EQ(Of(After(StRGB15Pixel{9, 9, 9, 1}, c)),
                  (Fields<4>{Trunc32(31.0 * c.red) % 32, Trunc32(31.0 * c.green) % 32,
                             Trunc32(31.0 * c.blue) % 32, 1}));
        ASSERT_EQ(Of(After(StRGB48Pixel{}, c)), (Fields<3>{WordOf(c.red), WordOf(c.green), WordOf(c.blue)}));
        ASSERT_EQ(Of(After(StRGBA64Pixel{}, c)),
                  (Fields<4>{WordOf(c.red), WordOf(c.green), WordOf(c.blue), 65535}));
        ASSERT_EQ(Of(After(StCMYKPixel{9, 9, 9, 9}, c)), Inks(r, g, b));
        StRGBA32Pixel const opaque = Color(r, g, b, 255);
        ASSERT_EQ(Of(After(StHSLAPixel{9, 9, 9, 9}, c)), Of(Model<StHSLAPixel>(opaque)));
        ASSERT_EQ(Of(After(StHSVAPixel{9, 9, 9, 9}, c)), Of(Model<StHSVAPixel>(opaque)));
        ASSERT_EQ(Of(After(StYIQAPixel{9, 9, 9, 9}, c)), Of(Model<StYIQAPixel>(opaque)));
    }
}

TEST(SetColorFloats, RecordsOfFloats_Copy) {
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        std::uint32_t const r = Bits(c.red), g = Bits(c.green), b = Bits(c.blue);
        ASSERT_EQ(Of(After(StColorFloats{9, 9, 9}, c)), (Fields<3>{r, g, b}));
        ASSERT_EQ(Of(After(StRGBAFloatPixel{9, 9, 9, 9}, c)), (Fields<4>{r, g, b, kOne}));
        ASSERT_EQ(Of(After(StRGBTFloatPixel{9, 9, 9, 9}, c)), (Fields<4>{r, g, b, 0}));
        ASSERT_EQ(Of(After(StVelocityPixel{9, 9}, c)), (Fields<2>{r, g}));
    }
}

TEST(SetColorFloats, SingleChannels_TakeTheSum) {
    for (std::size_t i = 0; i < 4 * ManyFloats().size(); ++i) {
        // The later rounds have sums of ordinary floats only.
        StColorFloats c = FloatColor(i);
        if (i >= ManyFloats().size())
            c = {static_cast<float>(i % 97 / 97.0), static_cast<float>(i % 89 / 89.0),
                 static_cast<float>(i % 83 / 83.0)};
        double const sum = double{c.red} + c.green + c.blue;
        ASSERT_EQ(Of(After(StGray8Pixel{9}, c)), (Fields<1>{Trunc32(sum * 255.0 * kThird) % 256})) << sum;
        ASSERT_EQ(Of(After(StGray4Pixel{9, 21}, c)), (Fields<2>{Trunc32(sum * 15.0 * kThird) % 16, 21}))
            << sum;
        ASSERT_EQ(Of(After(StGray2Pixel{1, 21}, c)), (Fields<2>{Trunc32(sum * 3.0 * kThird) % 4, 21})) << sum;
        ASSERT_EQ(Of(After(StAlpha8Pixel{9}, c)), (Fields<1>{Trunc32(sum * 255.0 * kThird) % 256})) << sum;
        ASSERT_EQ(Of(After(StAlpha32Pixel{9}, c)), (Fields<1>{Low32(sum * 4294967296.0 * kThird)})) << sum;
        ASSERT_EQ(Of(After(StDepthFloatPixel{9}, c)), (Fields<1>{Rounded(sum * kThird)})) << sum;
        ASSERT_EQ(Of(After(StDepthUInt8Pixel{9}, c)), (Fields<1>{Trunc32(sum * 85.0) % 256})) << sum;
        ASSERT_EQ(Of(After(StDepthUInt16Pixel{9}, c)), (Fields<1>{Trunc32(sum * 21845.0) % 65536})) << sum;
        ASSERT_EQ(Of(After(StDepthUInt24Pixel{9, 0x3D}, c)),
                  (Fields<2>{Trunc32(sum * 5592405.0) % 0x1000000, 0x3D}))
            << sum;
        ASSERT_EQ(Of(After(StDepthUInt32Pixel{9}, c)), (Fields<1>{Low32(sum * 1431655808.0)})) << sum;
    }
    StColorFloats const white{1, 1, 1};
    EXPECT_EQ(After(StGray8Pixel{9}, white).level, 255);
    EXPECT_EQ(After(StGray4Pixel{9, 0}, white).level, 15u);
    EXPECT_EQ(After(StGray2Pixel{1, 0}, white).level, 3u);
    EXPECT_EQ(After(StDepthUInt24Pixel{9, 0}, white).depth, 0xFFFFFFu);
}

TEST(SetColorFloats, BlackWhite_TruncatesRedAlone) {
    struct StRow {
        StColorFloats color;
        unsigned black;
    };
    StRow const rows[] = {
        {{1.0f, 0.4f, 0.2f}, 0},                        // 1.6
        {{0.9f, 0.4f, 0.2f}, 1},                        // 0 + 0.6
        {{0.99f, 0.99f, 0.52f}, 0},                     // 0 + 1.51
        {{0.99f, 0.99f, 0.5f}, 1},                      // 0 + 1.49
        {{1.0f, 0.5f, 0.0f}, 0},                        // 1.5 exactly
        {{1.0f, std::nextafter(0.5f, 0.0f), 0.0f}, 1},  // just below
        {{1.9f, 0.25f, 0.24f}, 1},                      // 1 + 0.49
        {{2.0f, -0.25f, -0.25f}, 0},                    // 1.5
        {{-0.9f, 1.0f, 0.5f}, 0},                       // 0 + 1.5
        {{-1.9f, 1.0f, 1.0f}, 1},                       // -1 + 2
        {{kNaN, 1.0f, 1.0f}, 1},                        // -2147483648 + 2
        {{1e10f, 1.0f, 1.0f}, 1},                       // out of range the other way, the same integer
        {{1.0f, kNaN, 1.0f}, 0},                        // nothing is below or above
        {{1.0f, kInf, 0.0f}, 0},
        {{1.0f, -kInf, 0.0f}, 1},
    };
    for (StRow const& row : rows)
        EXPECT_EQ(Of(After(StBlackWhitePixel{0, 21}, row.color)), (Fields<2>{row.black, 21}))
            << row.color.red << ' ' << row.color.green << ' ' << row.color.blue;
}

}  // namespace
