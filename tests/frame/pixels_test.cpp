// Single pixels, and the whole frame in place.
#include <cmath>

#include "kinds.h"

using namespace testing_frames;

namespace {

// 32-bit RGBA, whose rules stand here in full.

struct ChannelRow {
    float value;
    std::uint8_t byte;
};

// trunc(255.0 * value), low eight bits; what no 32-bit integer holds is 0.
constexpr ChannelRow kChannels[] = {
    {0.0f, 0},         {1.0f, 255}, {0.5f, 127},        {0.999f, 254}, {1.5f, 126}, {-0.25f, 193},
    {1.0000001f, 255}, {2.0f, 254}, {4294967296.0f, 0}, {-1.0f, 1},    {1e30f, 0},  {-1e30f, 0},
};

TEST(RGBA, FloatsAreTruncatedIntoBytes) {
    auto const layer = MakeLayer<StRGBA32Pixel>({1, 1});
    SmImagerFrame& frame = *layer;
    for (ChannelRow const& row : kChannels) {
        frame.PutPixelAt(0, 0, StColorFloats{row.value, 0.0f, 1.0f});
        EXPECT_EQ(layer->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{255, 0, row.byte, 255})) << row.value;
        frame.PutPixelAt(0, 0, StRGBAFloatPixel{0.0f, row.value, 1.0f, row.value});
        EXPECT_EQ(layer->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{255, row.byte, 0, row.byte})) << row.value;
        frame.PutPixelAt(0, 0, StDepthFloatPixel{row.value});
        EXPECT_EQ(layer->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{row.byte, row.byte, row.byte, 255}))
            << row.value;
    }
    float const none = std::nanf("");
    frame.PutPixelAt(0, 0, StColorFloats{none, INFINITY, -INFINITY});
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{0, 0, 0, 255}));
    frame.PutPixelAt(0, 0, StDepthFloatPixel{none});
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{0, 0, 0, 255}));
    frame.PutPixelAt(0, 0, StAlpha8Pixel{40});
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{255, 255, 255, 40}));
}

TEST(RGBA, BytesBecomeFloatsByTheInverseByte) {
    auto const layer = MakeLayer<StRGBA32Pixel>({1, 1});
    SmImagerFrame& frame = *layer;
    float const scale = 0.003921568859368563f;
    for (int value = 0; value < 256; ++value) {
        auto const byte = static_cast<std::uint8_t>(value);
        auto const rest = static_cast<std::uint8_t>(255 - value);
        layer->PutMatchedPixelAt(0, 0, {byte, 10, rest, byte});
        StColorFloats color{};
        frame.GetPixelAt(0, 0, color);
        EXPECT_EQ(color.red, static_cast<float>(255 - value) * scale);
        EXPECT_EQ(color.green, 10.0f * scale);
        EXPECT_EQ(color.blue, static_cast<float>(value) * scale);
        StRGBAFloatPixel four{};
        frame.GetPixelAt(0, 0, four);
        EXPECT_EQ(four.red, color.red);
        EXPECT_EQ(four.alpha, static_cast<float>(value) * scale);
        float intensity = 0;
        frame.GetPixelAt(0, 0, intensity);
        EXPECT_EQ(intensity, 265.0f * 0.0013071895809844136f);
        StAlpha8Pixel alpha{};
        frame.GetPixelAt(0, 0, alpha);
        EXPECT_EQ(alpha.alpha, byte);
        EXPECT_EQ(frame.GetRGBAPixelAsLong(0, 0), static_cast<unsigned long>(value) << 24 |
                                                      static_cast<unsigned long>(255 - value) << 16 |
                                                      10u << 8 | static_cast<unsigned>(value));
    }
}

TEST(RGBA, MergePixelAt_LaysOver) {
    auto const layer = MakeLayer<StRGBA32Pixel>({1, 1});
    layer->PutMatchedPixelAt(0, 0, {100, 100, 100, 100});
    layer->MergePixelAt(0, 0, {200, 0, 50, 0});
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{100, 100, 100, 100}));
    // outA = 155 * 51 / 255 + 100 = 131, w = 80.
    layer->MergePixelAt(0, 0, {200, 0, 50, 51});
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{138, 61, 80, 131}));
    layer->MergePixelAt(0, 0, {9, 8, 7, 255});
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{9, 8, 7, 255}));
    EXPECT_FALSE(layer->GetUpdated());
}

// Every record: the layer does what the record does, and leaves what a conversion does not write.

template <class Record>
class Accessors : public testing::Test {};

TYPED_TEST_SUITE(Accessors, AllRecords);

template <class Record, class Change>
void ExpectPut(Native const& before, Change const& change, void (*put)(SmImagerFrame&), char const* what) {
    auto const layer = MakeLayer<Record>({1, 3});
    for (long x = 0; x < 3; ++x)
        layer->PutMatchedPixelAt(x, 0, FromNative<Record>(before));
    auto record = layer->GetMatchedPixelAt(1, 0);
    change(record);
    put(*layer);
    EXPECT_EQ(ToNative(layer->GetMatchedPixelAt(1, 0)), ToNative(record)) << what;
    EXPECT_EQ(ToNative(layer->GetMatchedPixelAt(0, 0)), ToNative(layer->GetMatchedPixelAt(2, 0))) << what;
    EXPECT_FALSE(layer->GetUpdated()) << what;
}

constexpr StRGBA32Pixel kColor{40, 90, 180, 210};
constexpr StColorFloats kFloats{0.75f, 0.3125f, 1.25f};
constexpr StRGBAFloatPixel kFour{0.75f, 0.3125f, 0.125f, 0.5f};

TYPED_TEST(Accessors, WritesByTheRecordsRules) {
    using Record = TypeParam;
    if constexpr (!pixel::MappedPixel<Record>) {
        std::mt19937 random(3);
        for (int i = 0; i < 20; ++i) {
            Native const before = RandomNative(KindOfID(Record::PixelID()), random);
            ExpectPut<Record>(
                before, [](Record& record) { pixel::SetRGBA32(record, kColor); },
                [](SmImagerFrame& frame) { frame.PutPixelAt(1, 0, kColor); }, "RGBA");
            ExpectPut<Record>(
                before, [](Record& record) { pixel::SetColorFloats(record, kFloats); },
                [](SmImagerFrame& frame) { frame.PutPixelAt(1, 0, kFloats); }, "float colour");
            ExpectPut<Record>(
                before, [](Record& record) { pixel::SetRGBAFloat(record, kFour); },
                [](SmImagerFrame& frame) { frame.PutPixelAt(1, 0, kFour); }, "four floats");
            ExpectPut<Record>(
                before,
                [](Record& record) {
                    pixel::SetRGBA32(record, {255, 255, 255, 77});
                },
                [](SmImagerFrame& frame) { frame.PutPixelAt(1, 0, StAlpha8Pixel{77}); }, "opacity");
            ExpectPut<Record>(
                before,
                [](Record& record) {
                    if constexpr (Record::FamilyID() == SrCode("DepF")) {
                        pixel::SetFloat(record, 0.3f);
                    } else {
                        pixel::SetRGBA32(record, {76, 76, 76, 255});  // trunc(76.5)
                    }
                },
                [](SmImagerFrame& frame) { frame.PutPixelAt(1, 0, StDepthFloatPixel{0.3f}); }, "depth");
            ExpectPut<Record>(
                before,
                [](Record& record) {
                    SmartRef const smart(new ScDerivedPixel<StRGBA32Pixel>);
                    smart->SetPixelData(&kColor);
                    record.ConvertSmart(smart.get());
                },
                [](SmImagerFrame& frame) {
                    SmartRef const smart(new ScDerivedPixel<StRGBA32Pixel>);
                    smart->SetPixelData(&kColor);
                    frame.PutPixelAt(1, 0, static_cast<ScSmartPixel const*>(smart.get()));
                },
                "smart");
            ExpectPut<Record>(
                before,
                [](Record& record) {
                    StRGBA32Pixel color = pixel::GetRGBA32(record);
                    color.Merge(kColor);
                    pixel::SetRGBA32(record, color);
                },
                [](SmImagerFrame& frame) { frame.MergePixelAt(1, 0, kColor); }, "merged");
        }
    }
}

TYPED_TEST(Accessors, ReadsByTheRecordsRules) {
    using Record = TypeParam;
    if constexpr (!pixel::MappedPixel<Record>) {
        std::mt19937 random(4);
        auto const layer = MakeLayer<Record>({1, 3});
        SmImagerFrame& frame = *layer;
        for (int i = 0; i < 50; ++i) {
            auto const record = FromNative<Record>(RandomNative(KindOfID(Record::PixelID()), random));
            layer->PutMatchedPixelAt(1, 0, record);
            StRGBA32Pixel color{};
            frame.GetPixelAt(1, 0, color);
            EXPECT_EQ(color, pixel::GetRGBA32(record));
            StColorFloats floats{}, expectedFloats{};
            frame.GetPixelAt(1, 0, floats);
            pixel::GetColorFloats(record, expectedFloats);
            EXPECT_EQ(ToNative(floats), ToNative(expectedFloats));
            StRGBAFloatPixel four{}, expectedFour{};
            frame.GetPixelAt(1, 0, four);
            pixel::GetRGBAFloat(record, expectedFour);
            EXPECT_EQ(ToNative(four), ToNative(expectedFour));
            float intensity = 0;
            frame.GetPixelAt(1, 0, intensity);
            EXPECT_EQ(ToNative(intensity), ToNative(pixel::GetFloat(record)));
            StAlpha8Pixel alpha{};
            frame.GetPixelAt(1, 0, alpha);
            bool const integerDepth =
                Record::FamilyID() == SrCode("DepF") && Record::PixelID() != SrCode("DepF");
            EXPECT_EQ(alpha.alpha, integerDepth ? 255 : color.alpha);
        }
    }
}

TYPED_TEST(Accessors, ForegroundAndBackgroundConvertBothWays) {
    using Record = TypeParam;
    if constexpr (!pixel::MappedPixel<Record>) {
        auto const layer = MakeLayer<Record>({1, 2});
        Record expected{};
        pixel::SetRGBA32(expected, kColor);
        layer->SetForeground(kColor);
        layer->SetBackground({0, 0, 0, 255});
        StRGBA32Pixel color{};
        layer->GetForeground(color);
        EXPECT_EQ(color, pixel::GetRGBA32(expected));
        layer->Erase();
        layer->DrawPixelAt(1, 0);
        EXPECT_EQ(ToNative(layer->GetMatchedPixelAt(1, 0)), ToNative(expected));
        Record black{};
        pixel::SetRGBA32(black, {0, 0, 0, 255});
        EXPECT_EQ(ToNative(layer->GetMatchedPixelAt(0, 0)), ToNative(black));
    }
}

TYPED_TEST(Accessors, WithoutAMap_IndicesHaveNoColour) {
    using Record = TypeParam;
    if constexpr (pixel::MappedPixel<Record>) {
        auto const layer = MakeLayer<Record>({1, 1});
        SmImagerFrame& frame = *layer;
        Record one{};
        one.index = 1;
        layer->PutMatchedPixelAt(0, 0, one);
        StRGBA32Pixel color = kColor;
        frame.GetPixelAt(0, 0, color);
        EXPECT_EQ(color, kColor);
        frame.GetForeground(color);
        EXPECT_EQ(color, kColor);
        frame.GetBackground(color);
        EXPECT_EQ(color, kColor);
        StColorFloats floats = kFloats;
        frame.GetPixelAt(0, 0, floats);
        EXPECT_EQ(floats.red, kFloats.red);
        StRGBAFloatPixel four = kFour;
        frame.GetPixelAt(0, 0, four);
        EXPECT_EQ(four.alpha, kFour.alpha);
        float intensity = 7;
        frame.GetPixelAt(0, 0, intensity);
        EXPECT_EQ(intensity, 7);
        StAlpha8Pixel alpha{9};
        frame.GetPixelAt(0, 0, alpha);
        EXPECT_EQ(alpha.alpha, 9);
        EXPECT_EQ(layer->GetMatchedPixelAt(0, 0).index, 1u);
        // No colour says which index: all give the same one.
        for (StRGBA32Pixel const put :
             {kColor, StRGBA32Pixel{0, 0, 0, 0}, StRGBA32Pixel{255, 255, 255, 255}}) {
            layer->PutMatchedPixelAt(0, 0, one);
            frame.PutPixelAt(0, 0, put);
            EXPECT_EQ(layer->GetMatchedPixelAt(0, 0).index, 0u);
        }
        // Setting the pixels to draw with changes nothing.
        layer->PutMatchedPixelAt(0, 0, one);
        frame.SetForeground(kColor);
        frame.SetBackground(kColor);
        frame.DrawPixelAt(0, 0);
        EXPECT_EQ(layer->GetMatchedPixelAt(0, 0).index, 0u);
    }
}

TEST(Accessors24, ThreeBytesOfARecordOfFour) {
    auto const layer = MakeLayer<StDepthUInt24Pixel>({1, 2});
    StDepthUInt24Pixel pixel;
    pixel.depth = 0x123456;
    pixel.rest = 0x77;
    SmImagerFrame& frame = *layer;
    frame.PutPixelAt(0, 0, static_cast<void const*>(&pixel));
    auto const* const row = static_cast<std::uint8_t const*>(frame.GetRow(0));
    EXPECT_EQ(row[0], 0x56);
    EXPECT_EQ(row[1], 0x34);
    EXPECT_EQ(row[2], 0x12);
    StDepthUInt24Pixel out;
    out.depth = 0;
    out.rest = 0x55;
    frame.GetPixelAt(0, 0, static_cast<void*>(&out));
    EXPECT_EQ(out.depth, 0x123456u);
    EXPECT_EQ(out.rest, 0x55u);
}

TEST(BlackWhite, OneIsBlack_FromTheTopBitDown) {
    auto const layer = MakeLayer<StBlackWhitePixel>({1, 12});
    SmImagerFrame& frame = *layer;
    layer->SetBackground({255, 255, 255, 255});
    layer->Erase();
    frame.PutPixelAt(0, 0, StRGBA32Pixel{0, 0, 0, 255});
    frame.PutPixelAt(9, 0, StRGBA32Pixel{0, 0, 0, 255});
    auto const* const row = static_cast<std::uint8_t const*>(frame.GetRow(0));
    EXPECT_EQ(row[0], 0x80);
    EXPECT_EQ(row[1] & 0xF0, 0x40);
    EXPECT_EQ(frame.GetRGBAPixelAt(0, 0), (StRGBA32Pixel{0, 0, 0, 0})) << "black is transparent";
    EXPECT_EQ(frame.GetRGBAPixelAt(1, 0), (StRGBA32Pixel{255, 255, 255, 255}));
}

// The complement of each record.

template <class Record>
Record Inverted(Record const& pixel) {
    auto const layer = MakeLayer<Record>({1, 1});
    layer->PutMatchedPixelAt(0, 0, pixel);
    layer->Invert();
    return layer->GetMatchedPixelAt(0, 0);
}

TEST(Invert, Colours) {
    EXPECT_EQ(Inverted(StRGBA32Pixel{10, 20, 30, 40}), (StRGBA32Pixel{245, 235, 225, 40}));
    auto const rgb32 = Inverted(StRGB32Pixel{10, 20, 30, 40});
    EXPECT_EQ(ToNative(rgb32), ToNative(StRGB32Pixel{245, 235, 225, 40})) << "the filler is kept";
    EXPECT_EQ(ToNative(Inverted(StRGB24Pixel{10, 20, 30})), ToNative(StRGB24Pixel{245, 235, 225}));
    for (std::uint16_t const flag : {0, 1}) {
        StRGB15Pixel pixel{};
        pixel.blue = 1;
        pixel.green = 30;
        pixel.red = 12;
        pixel.flag = flag & 1;
        StRGB15Pixel const inverted = Inverted(pixel);
        EXPECT_EQ(inverted.blue, 30);
        EXPECT_EQ(inverted.green, 1);
        EXPECT_EQ(inverted.red, 19);
        EXPECT_EQ(inverted.flag, flag);
    }
    EXPECT_EQ(ToNative(Inverted(StRGB48Pixel{0, 65535, 1000})), ToNative(StRGB48Pixel{65535, 0, 64535}));
    EXPECT_EQ(ToNative(Inverted(StRGBA64Pixel{0, 65535, 1000, 7})),
              ToNative(StRGBA64Pixel{65535, 0, 64535, 7}));
    EXPECT_EQ(ToNative(Inverted(StCMYKPixel{0, 255, 100, 55})), ToNative(StCMYKPixel{255, 0, 155, 200}));
}

TEST(Invert, Floats) {
    EXPECT_EQ(ToNative(Inverted(StRGBAFloatPixel{0.25f, 1.0f, -0.5f, 0.125f})),
              ToNative(StRGBAFloatPixel{0.75f, 0.0f, 1.5f, 0.125f}));
    EXPECT_EQ(ToNative(Inverted(StColorFloats{0.25f, 1.0f, -0.5f})),
              ToNative(StColorFloats{0.75f, 0.0f, 1.5f}));
    EXPECT_EQ(Inverted(StDepthFloatPixel{0.25f}).depth, -0.25f) << "the sign, not the rest to 1";
}

TEST(Invert, LevelsAndIndices) {
    for (unsigned value = 0; value < 256; ++value) {
        auto const byte = static_cast<std::uint8_t>(value);
        EXPECT_EQ(Inverted(StGray8Pixel{byte}).level, 255 - value);
        EXPECT_EQ(Inverted(StMapped8Pixel{byte}).index, 255 - value);
        EXPECT_EQ(Inverted(StAlpha8Pixel{byte}).alpha, 255 - value);
        EXPECT_EQ(Inverted(StDepthUInt8Pixel{byte}).depth, 255 - value);
    }
    for (unsigned value = 0; value < 16; ++value) {
        StGray4Pixel gray{};
        gray.level = value & 15;
        EXPECT_EQ(Inverted(gray).level, 15 - value);
        StMapped4Pixel mapped{};
        mapped.index = value & 15;
        EXPECT_EQ(Inverted(mapped).index, 15 - value);
    }
    for (unsigned value = 0; value < 4; ++value) {
        StGray2Pixel gray{};
        gray.level = value & 3;
        EXPECT_EQ(Inverted(gray).level, 3 - value);
        StMapped2Pixel mapped{};
        mapped.index = value & 3;
        EXPECT_EQ(Inverted(mapped).index, 3 - value);
    }
    for (unsigned value = 0; value < 2; ++value) {
        StBlackWhitePixel bit{};
        bit.black = value & 1;
        EXPECT_EQ(Inverted(bit).black, 1 - value);
        StMapped1Pixel mapped{};
        mapped.index = value & 1;
        EXPECT_EQ(Inverted(mapped).index, 1 - value);
    }
}

TEST(Invert, WordsAndDepths) {
    EXPECT_EQ(Inverted(StAlpha32Pixel{0x12345678}).alpha, 0xEDCBA987u);
    EXPECT_EQ(Inverted(StDepthUInt16Pixel{0x1234}).depth, 0xEDCB);
    EXPECT_EQ(Inverted(StDepthUInt32Pixel{0x12345678}).depth, 0xEDCBA987u);
    StDepthUInt24Pixel depth{};
    depth.depth = 0x123456;
    EXPECT_EQ(Inverted(depth).depth, 0xEDCBA9u);
}

TEST(Flip, BothTurnsByHalfACircle_TheCentreStays) {
    auto const layer = MakeLayer<StGray8Pixel>({3, 3});
    for (std::uint8_t i = 0; i < 9; ++i)
        layer->PutMatchedPixelAt(i % 3, i / 3, {i});
    layer->Flip(true, true);
    for (std::uint8_t i = 0; i < 9; ++i)
        EXPECT_EQ(layer->GetMatchedPixelAt(i % 3, i / 3).level, 8 - i);
}

TEST(RectFill, ConvertsTheSmartPixelOnce) {
    auto const layer = MakeLayer<StRGB32Pixel>({2, 2});
    for (long i = 0; i < 4; ++i)
        layer->PutMatchedPixelAt(i % 2, i / 2, {1, 1, 1, 9});
    SmartRef const smart(new ScDerivedPixel<StGray8Pixel>);
    smart->SetRGBA32({50, 50, 50, 255});
    layer->RectFill({0, 0, 1, 2}, smart.get());
    EXPECT_EQ(ToNative(layer->GetMatchedPixelAt(0, 0)), ToNative(StRGB32Pixel{50, 50, 50, 0}));
    EXPECT_EQ(ToNative(layer->GetMatchedPixelAt(1, 0)), ToNative(layer->GetMatchedPixelAt(0, 0)));
    EXPECT_EQ(ToNative(layer->GetMatchedPixelAt(0, 1)), ToNative(StRGB32Pixel{1, 1, 1, 9}));
}

}  // namespace
