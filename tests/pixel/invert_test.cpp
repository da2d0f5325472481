// Invert: every layer record replaced by its complement.
#include "framewright/pixel/pixel_ops.h"
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

template <class Record>
auto Inverted(Record record) {
    pixel::Invert(record);
    return Of(record);
}

TEST(Invert, RecordsOfBytes) {
    for (unsigned v = 0; v < 256; ++v) {
        auto const byte = static_cast<std::uint8_t>(v);
        unsigned const not_v = 255 - v;
        ASSERT_EQ(Inverted(Color(v, 7, 255, 99)), (Fields<4>{not_v, 248, 0, 99})) << "alpha is kept";
        ASSERT_EQ(Inverted(StRGB32Pixel{255, 7, byte, 99}), (Fields<4>{not_v, 248, 0, 99}))
            << "the filler is kept";
        ASSERT_EQ(Inverted(StRGB24Pixel{255, 7, byte}), (Fields<3>{not_v, 248, 0}));
        ASSERT_EQ(Inverted(StCMYKPixel{byte, 7, 255, 0}), (Fields<4>{not_v, 248, 0, 255}));
        ASSERT_EQ(Inverted(StGray8Pixel{byte}), (Fields<1>{not_v}));
        ASSERT_EQ(Inverted(StAlpha8Pixel{byte}), (Fields<1>{not_v}));
        ASSERT_EQ(Inverted(StMapped8Pixel{byte}), (Fields<1>{not_v}));
        ASSERT_EQ(Inverted(StDepthUInt8Pixel{byte}), (Fields<1>{not_v}));
    }
}

TEST(Invert, NarrowRecords_KeepTheRest) {
    for (unsigned v = 0; v < 32; ++v) {
        StRGB15Pixel p{31, 0, 0, 1};
        p.red = v & 31;
        ASSERT_EQ(Inverted(p), (Fields<4>{31 - v, 31, 0, 1})) << "the flag is kept";
        p.flag = 0;
        ASSERT_EQ(Inverted(p), (Fields<4>{31 - v, 31, 0, 0}));
    }
    for (unsigned v = 0; v < 16; ++v) {
        ASSERT_EQ(Inverted(StGray4Pixel{v & 15, 5}), (Fields<2>{15 - v, 5}));
        ASSERT_EQ(Inverted(StMapped4Pixel{v & 15, 5}), (Fields<2>{15 - v, 5}));
    }
    for (unsigned v = 0; v < 4; ++v) {
        ASSERT_EQ(Inverted(StGray2Pixel{v & 3, 5}), (Fields<2>{3 - v, 5}));
        ASSERT_EQ(Inverted(StMapped2Pixel{v & 3, 5}), (Fields<2>{3 - v, 5}));
    }
    for (unsigned v = 0; v < 2; ++v) {
        ASSERT_EQ(Inverted(StBlackWhitePixel{v & 1, 5}), (Fields<2>{1 - v, 5}));
        ASSERT_EQ(Inverted(StMapped1Pixel{v & 1, 5}), (Fields<2>{1 - v, 5}));
    }
}

TEST(Invert, RecordsOfWords) {
    for (unsigned v = 0; v < 65536; v += 17) {
        auto const word = static_cast<std::uint16_t>(v);
        ASSERT_EQ(Inverted(StRGB48Pixel{word, 65535, 1}), (Fields<3>{65535 - v, 0, 65534}));
        ASSERT_EQ(Inverted(StRGBA64Pixel{word, 65535, 1, 77}), (Fields<4>{65535 - v, 0, 65534, 77}));
        ASSERT_EQ(Inverted(StDepthUInt16Pixel{word}), (Fields<1>{65535 - v}));
    }
}

TEST(Invert, WideIntegers_FlipAllTheirBits) {
    EXPECT_EQ(Inverted(StAlpha32Pixel{0x0F000001}), (Fields<1>{0xF0FFFFFE}));
    EXPECT_EQ(Inverted(StDepthUInt32Pixel{0x0F000001}), (Fields<1>{0xF0FFFFFE}));
    EXPECT_EQ(Inverted(StDepthUInt24Pixel{0x0F0001, 0x3C}), (Fields<2>{0xF0FFFE, 0x3C}));
}

TEST(Invert, RecordsOfFloats) {
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        Fields<3> const expected = {Rounded(1.0 - c.red), Rounded(1.0 - c.green), Rounded(1.0 - c.blue)};
        ASSERT_EQ(Inverted(c), expected);
        ASSERT_EQ(Inverted(StRGBAFloatPixel{c.red, c.green, c.blue, c.red}),
                  (Fields<4>{expected[0], expected[1], expected[2], Bits(c.red)}));
        ASSERT_EQ(Inverted(StDepthFloatPixel{c.red}), (Fields<1>{Bits(-c.red)}));
    }
    EXPECT_EQ(Inverted(StDepthFloatPixel{0.25f}), (Fields<1>{Bits(-0.25f)})) << "the sign, not the rest to 1";
}

}  // namespace
