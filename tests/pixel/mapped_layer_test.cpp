#include "framewright/pixel/mapped_layer.h"

#include <cmath>
#include <functional>
#include <limits>
#include <memory>

#include "mapped_test_support.h"

using namespace color_test;

template <class Pixel>
class MappedLayer : public testing::Test {};
TYPED_TEST_SUITE(MappedLayer, MappedPixels);

// The map of a fresh layer.

TYPED_TEST(MappedLayer, Fresh_HasTheStandardMapOfItsWidth) {
    auto const layer = Mapped<TypeParam>(2, 3);
    ScPalette expected(1 << TypeParam::PixelSize());
    StuffDefaultColors(expected, 1 << TypeParam::PixelSize());
    ASSERT_NE(layer->GetColorMap(), nullptr);
    EXPECT_EQ(layer->GetColorMap()->EntryCount(), 1 << TypeParam::PixelSize());
    for (int i = 0; i < 1 << TypeParam::PixelSize(); ++i) {
        auto const index = static_cast<unsigned char>(i);
        EXPECT_EQ(Word((*layer->GetColorMap())[index]), Word(expected[index])) << i;
    }
}

TYPED_TEST(MappedLayer, Fresh_GroundsAreBlackAndWhite) {
    auto const layer = Mapped<TypeParam>(1, 2);
    layer->DrawPixelAt(0, 0);
    EXPECT_EQ(IndexAt<TypeParam>(*layer, 0, 0), 0u);
    StRGBA32Pixel color{};
    layer->GetForeground(color);
    EXPECT_EQ(Word(color), TypeParam::PixelSize() == 8 ? 0x000000FFu : 0u) << "the cube's black is opaque";
    layer->GetBackground(color);
    EXPECT_EQ(Word(color), 0xFFFFFFFFu);
    layer->Erase();
    unsigned const white = IndexAt<TypeParam>(*layer, 1, 0);
    EXPECT_EQ(white, TypeParam::PixelSize() == 8 ? 245u : 1u)
        << "step 5 of blue, green and red: (5 * 7 + 5) * 6 + 5";
}

TYPED_TEST(MappedLayer, Map_IsFoundThroughTheFrame) {
    auto const layer = Mapped<TypeParam>(1, 1);
    EXPECT_TRUE(SrIsColorMappedFrame(layer.Get()));
    EXPECT_EQ(SrGetColorMapFromFrame(layer.Get()), layer->GetColorMap());
}

TYPED_TEST(MappedLayer, Map_OtherFramesHaveNone) {
    using Plain = SmImagerLayer<TypeParam, ScImagerNonSpool>;
    using Dithered = SmImagerDitheredLayer<TypeParam, ScImagerNonSpool>;
    auto const plain = StRef<Plain>::Adopt(Plain::New());
    auto const dithered = StRef<Dithered>::Adopt(Dithered::New());
    for (SmImagerFrame* frame :
         {static_cast<SmImagerFrame*>(plain.Get()), static_cast<SmImagerFrame*>(dithered.Get()),
          static_cast<SmImagerFrame*>(LayerOf<StGray8Pixel>(SolidPicture(1, 1, {})).Release())}) {
        EXPECT_FALSE(SrIsColorMappedFrame(frame)) << frame->GetClassName();
        EXPECT_EQ(SrGetColorMapFromFrame(frame), nullptr);
        if (frame->PixelID() == SrCode("Gry8")) frame->ReleaseReference();
    }
}

// Reading a pixel.

TYPED_TEST(MappedLayer, Get_GivesTheEntryInEachForm) {
    auto const layer = Mapped<TypeParam>(1, 1);
    MapOf(layer.Get()).SetColor(1, Rgba(10, 200, 77, 128));
    layer->PutMatchedPixelAt(0, 0, IndexPixel<TypeParam>(1));

    StRGBA32Pixel bytes{};
    layer->GetPixelAt(0, 0, bytes);
    EXPECT_EQ(Word(bytes), 0x0AC84D80u);
    EXPECT_EQ(Word(layer->GetRGBAPixelAt(0, 0)), 0x0AC84D80u);
    EXPECT_EQ(layer->GetRGBAPixelAsLong(0, 0), 0x800AC84Du) << "alpha, red, green, blue";
    StColorFloats floats{};
    layer->GetPixelAt(0, 0, floats);
    EXPECT_TRUE(SameBits(floats.red, 10 * SkInverseColorByte()));
    EXPECT_TRUE(SameBits(floats.green, 200 * SkInverseColorByte()));
    EXPECT_TRUE(SameBits(floats.blue, 77 * SkInverseColorByte()));
    StRGBAFloatPixel rgba{};
    layer->GetPixelAt(0, 0, rgba);
    EXPECT_TRUE(SameBits(rgba.red, 10 * SkInverseColorByte()));
    EXPECT_TRUE(SameBits(rgba.alpha, 128 * SkInverseColorByte()));
    float intensity = 0;
    layer->GetPixelAt(0, 0, intensity);
    EXPECT_TRUE(SameBits(intensity, SkInverseTriByte() * (10 + 200 + 77)));
    StAlpha8Pixel grey{};
    layer->GetPixelAt(0, 0, grey);
    EXPECT_EQ(grey.alpha, (10 + 200 + 77) / 3) << "its grey, not its opacity";
    unsigned char raw = 0xFF;
    layer->GetPixelAt(0, 0, static_cast<void*>(&raw));
    EXPECT_EQ(raw & ((1 << TypeParam::PixelSize()) - 1), 1);
}

// Writing a pixel.

TYPED_TEST(MappedLayer, Put_StoresTheClosestIndexInEachForm) {
    // Black and a bright colour, one of which each form is closest to.
    struct {
        char const* form;
        std::function<void(SmImagerFrame*)> put;
        StRGBA32Pixel color;  ///< what is looked up, as the rules of the form make it
    } const rows[] = {
        {"bytes", [](SmImagerFrame* f) { f->PutPixelAt(0, 0, Rgba(250, 1, 2, 3)); }, Rgba(250, 1, 2, 3)},
        {"floats",
         [](SmImagerFrame* f) {
             f->PutPixelAt(0, 0, StColorFloats{0.999f, 0.5f, 0.1f});
         },
         Rgba(254, 127, 25)},
        {"floats over 1",
         [](SmImagerFrame* f) {
             f->PutPixelAt(0, 0, StColorFloats{1.5f, 0, 0});
         },
         Rgba(126, 0, 0)},
        {"floats with alpha",
         [](SmImagerFrame* f) {
             f->PutPixelAt(0, 0, StRGBAFloatPixel{0.2f, 0.9f, 1, 0.5f});
         },
         Rgba(51, 229, 255, 127)},
        {"depth", [](SmImagerFrame* f) { f->PutPixelAt(0, 0, StDepthFloatPixel{0.75f}); },
         Rgba(191, 191, 191)},
        {"opacity", [](SmImagerFrame* f) { f->PutPixelAt(0, 0, StAlpha8Pixel{200}); },
         Rgba(200, 200, 200, 200)},
    };
    for (auto const& row : rows) {
        auto const layer = Mapped<TypeParam>(1, 1);
        ScPalette map = *layer->GetColorMap();
        unsigned const expected = map.ClosestColorIndex(row.color);
        layer->PutMatchedPixelAt(0, 0, IndexPixel<TypeParam>(expected ? 0 : 1));
        row.put(layer.Get());
        EXPECT_EQ(IndexAt<TypeParam>(*layer, 0, 0), expected) << row.form;
        EXPECT_FALSE(layer->GetUpdated());
    }
}

TYPED_TEST(MappedLayer, Put_RawIndexGoesRoundTheMap) {
    auto const layer = Mapped<TypeParam>(1, 3);
    for (unsigned index = 0; index < 1u << TypeParam::PixelSize(); ++index) {
        auto const record = static_cast<unsigned char>(index);
        layer->PutPixelAt(1, 0, static_cast<void const*>(&record));
        EXPECT_EQ(IndexAt<TypeParam>(*layer, 1, 0), index);
        EXPECT_EQ(IndexAt<TypeParam>(*layer, 0, 0), 0u);
        EXPECT_EQ(IndexAt<TypeParam>(*layer, 2, 0), 0u);
    }
}

TYPED_TEST(MappedLayer, Put_SmartPixelOfAnotherTypeByItsColor) {
    auto const layer = Mapped<TypeParam>(1, 1);
    std::unique_ptr<ScSmartPixel> const smart(StRGB48Pixel::NewSmartPixel());
    smart->SetRGBA32(Rgba(255, 255, 255));
    layer->PutPixelAt(0, 0, smart.get());
    EXPECT_EQ(Word(layer->GetRGBAPixelAt(0, 0)), 0xFFFFFFFFu);
}

TYPED_TEST(MappedLayer, Put_SmartPixelOfItsOwnTypeIsReadWithThisMap) {
    auto const layer = Mapped<TypeParam>(1, 1), other = Mapped<TypeParam>(1, 1);
    // Index 1 is white here and black there; nothing else here is as close to white.
    SetColors(other.Get(), {Rgba(255, 255, 255), Rgba(0, 0, 0)});
    std::unique_ptr<ScSmartPixel> const smart(other->NewSmartPixel());
    TypeParam const one = IndexPixel<TypeParam>(1);
    smart->SetPixelData(&one);
    layer->PutPixelAt(0, 0, smart.get());
    EXPECT_EQ(Word(layer->GetRGBAPixelAt(0, 0)), Word((*layer->GetColorMap())[1]));
}

TYPED_TEST(MappedLayer, Merge_LaysTheColorOverTheEntry) {
    auto const layer = Mapped<TypeParam>(1, 1);
    layer->SetForeground(Rgba(255, 255, 255));
    layer->DrawPixelAt(0, 0);
    layer->MergePixelAt(0, 0, Rgba(0, 0, 0, 0));
    EXPECT_EQ(Word(layer->GetRGBAPixelAt(0, 0)), 0xFFFFFFFFu) << "a transparent colour changes nothing";
    // Black at alpha 200 over opaque white: (0 * 200 + 255 * 55) / 255 = 55.
    ScPalette map = *layer->GetColorMap();
    unsigned const expected = map.ClosestColorIndex(Rgba(55, 55, 55));
    layer->MergePixelAt(0, 0, Rgba(0, 0, 0, 200));
    EXPECT_EQ(IndexAt<TypeParam>(*layer, 0, 0), expected);
}

TEST(MappedLayer8, BlackIsSearchedAnewUntilItsCellHasAnotherAnswer) {
    auto const layer = Mapped<StMapped8Pixel>(1, 1);
    layer->PutPixelAt(0, 0, Rgba(10, 10, 10));
    EXPECT_EQ(IndexAt<StMapped8Pixel>(*layer, 0, 0), 0u);
    layer->GetColorMap()->SetColor(252, Rgba(12, 12, 12));
    layer->PutPixelAt(0, 0, Rgba(0, 0, 0));
    EXPECT_EQ(IndexAt<StMapped8Pixel>(*layer, 0, 0), 252u) << "the cell now answers for all of its colours";
}

// Grounds.

TYPED_TEST(MappedLayer, Grounds_AreIndicesAndReadBackThroughTheMap) {
    auto const layer = Mapped<TypeParam>(1, 1);
    MapOf(layer.Get()).SetColor(1, Rgba(200, 100, 50, 9));
    layer->SetForeground(Rgba(205, 100, 50));
    layer->SetBackground(Rgba(195, 100, 50));
    StRGBA32Pixel foreground{}, background{};
    layer->GetForeground(foreground);
    layer->GetBackground(background);
    EXPECT_EQ(Word(foreground), Word(Rgba(200, 100, 50, 9))) << "the nearest colour, not the one set";
    EXPECT_EQ(Word(background), Word(Rgba(200, 100, 50, 9)));
    MapOf(layer.Get()).SetColor(1, Rgba(1, 2, 3, 4));
    layer->GetForeground(foreground);
    EXPECT_EQ(Word(foreground), Word(Rgba(1, 2, 3, 4))) << "an index follows its map";
}

TYPED_TEST(MappedLayer, RectFill_TakesTheClosestIndex) {
    auto const layer = Mapped<TypeParam>(3, 3);
    std::unique_ptr<ScSmartPixel> const smart(StRGBA32Pixel::NewSmartPixel());
    smart->SetRGBA32(Rgba(250, 250, 250));
    layer->RectFill({1, 1, 9, 9}, smart.get());
    EXPECT_EQ(Word(layer->GetRGBAPixelAt(2, 2)), 0xFFFFFFFFu);
    EXPECT_EQ(IndexAt<TypeParam>(*layer, 0, 2), 0u);
    EXPECT_TRUE(layer->GetUpdated());
}

// Smart pixels and samples.

TYPED_TEST(MappedLayer, NewSmartPixel_IsBoundToTheMap) {
    auto const layer = Mapped<TypeParam>(1, 1);
    MapOf(layer.Get()).SetColor(1, Rgba(9, 8, 7, 6));
    std::unique_ptr<ScSmartPixel> const smart(layer->NewSmartPixel());
    EXPECT_EQ(smart->PixelID(), TypeParam::PixelID());
    layer->PutMatchedPixelAt(0, 0, IndexPixel<TypeParam>(1));
    layer->GetPixelAt(0, 0, smart.get());
    EXPECT_EQ(Word(smart->GetRGBA32()), Word(Rgba(9, 8, 7, 6)));
    ScRefuseAllocations const gate(0);
    EXPECT_EQ(ErrorOf([&] { delete layer->NewSmartPixel(); }), SkMemoryFull());
}

TYPED_TEST(MappedLayer, FractionalPixel_BlendsThroughTheMapAtEachStep) {
    auto const layer = Mapped<TypeParam>(2, 2);
    MapOf(layer.Get()).SetColor(0, Rgba(0, 0, 0));
    MapOf(layer.Get()).SetColor(1, Rgba(255, 255, 255));
    layer->PutMatchedPixelAt(1, 0, IndexPixel<TypeParam>(1));
    layer->PutMatchedPixelAt(1, 1, IndexPixel<TypeParam>(1));
    struct {
        float x, y;
    } const rows[] = {{0, 0}, {1, 0}, {0.25f, 0}, {0.75f, 0.5f}, {0.999f, 1}, {1.25f, 0}, {1.75f, 1.75f}};
    for (auto const& row : rows) {
        int const x0 = static_cast<int>(row.x), y0 = static_cast<int>(row.y);
        int const x1 = (x0 + 1) % 2, y1 = (y0 + 1) % 2;
        TypeParam top = layer->GetMatchedPixelAt(x0, y0), bottom = layer->GetMatchedPixelAt(x0, y1);
        ScPalette map = *layer->GetColorMap();
        top.Blend(layer->GetMatchedPixelAt(x1, y0), row.x - static_cast<float>(x0), &map);
        bottom.Blend(layer->GetMatchedPixelAt(x1, y1), row.x - static_cast<float>(x0), &map);
        top.Blend(bottom, row.y - static_cast<float>(y0), &map);
        EXPECT_EQ(layer->GetFractionalPixel(row.x, row.y).index, top.index) << row.x << ", " << row.y;
        std::unique_ptr<ScSmartPixel> const smart(layer->NewSmartPixel());
        layer->GetFractionalSmartPixel(row.x, row.y, smart.get());
        EXPECT_EQ(static_cast<TypeParam*>(smart->GetPixelData())->index, top.index);
    }
}

TYPED_TEST(MappedLayer, FractionalPixel_AnywhereIsSafe) {
    auto const layer = Mapped<TypeParam>(3, 5);
    auto const empty = Mapped<TypeParam>(0, 0);
    float const infinity = std::numeric_limits<float>::infinity();
    for (float x :
         {-1e30f, -7.5f, -0.5f, 4.9f, 5.0f, 900.0f, 2147483648.0f, 1e30f, infinity, -infinity, NAN}) {
        layer->GetFractionalPixel(x, x);
        EXPECT_EQ(empty->GetFractionalPixel(x, x).index, 0u);
        StColorFloats color{};
        layer->GetFractionalUVPixel(x, x, color, {1, 0}, 0);
        empty->GetFractionalUVPixel(x, x, color, {1, 0}, 0);
    }
}

TYPED_TEST(MappedLayer, TextureFloats_StayFloatsAndDoNotGoBackThroughTheMap) {
    auto const layer = Mapped<TypeParam>(3, 3);
    MapOf(layer.Get()).SetColor(0, Rgba(0, 0, 0));
    MapOf(layer.Get()).SetColor(1, Rgba(255, 255, 255));
    layer->PutMatchedPixelAt(1, 0, IndexPixel<TypeParam>(1));
    layer->PutMatchedPixelAt(2, 0, IndexPixel<TypeParam>(1));
    float const white = 255 * SkInverseColorByte();
    struct {
        float u, v;
        StTilingStyles tiling;
        float share;
    } const rows[] = {
        {0.25f, 1.0f, {0, 0}, 0.5f},    // untiled there are two steps: column 0.5
        {0.25f, 0.75f, {0, 0}, 0.25f},  // and row 0.5
        {0.5f, 1.0f, {0, 0}, 1.0f},     // column 1 itself
        {1.0f, 1.0f, {0, 0}, 0.0f},     // two steps wrap to column 0
        {0.5f, 1.0f, {1, 0}, 1.0f},     // tiled there are three: column 1.5, both white
        {0.5f, 0.5f, {1, 1}, 0.0f},     // row 1.5, both black
        {7.0f, 1.0f, {1, 0}, 0.0f},     // clamped to 1, which wraps
    };
    for (auto const& row : rows) {
        StColorFloats color{};
        layer->GetFractionalUVPixel(row.u, row.v, color, row.tiling, 0);
        for (float channel : {color.red, color.green, color.blue}) {
            EXPECT_TRUE(SameBits(channel, row.share * white)) << row.u << ", " << row.v << ": " << channel;
        }
    }
}

TYPED_TEST(MappedLayer, TextureBytesAndIntensities_TakeTheirCornersThroughTheMap) {
    auto const layer = Mapped<TypeParam>(3, 3);
    MapOf(layer.Get()).SetColor(0, Rgba(0, 0, 0));
    MapOf(layer.Get()).SetColor(1, Rgba(255, 255, 255));
    layer->PutMatchedPixelAt(1, 0, IndexPixel<TypeParam>(1));
    layer->PutMatchedPixelAt(2, 0, IndexPixel<TypeParam>(1));
    float const white = 765 * SkInverseTriByte();
    struct {
        float u, v;
        StTilingStyles tiling;
        int level;
        float share;
    } const rows[] = {
        {0.25f, 1.0f, {0, 0}, 127, 0.5f},   // column 0.5: 255 * 128 / 256
        {0.25f, 0.75f, {0, 0}, 63, 0.25f},  // and row 0.5: 127 * 128 / 256
        {0.5f, 1.0f, {0, 0}, 255, 1.0f},    // column 1 itself
        {0.5f, 1.0f, {1, 0}, 255, 1.0f},    // tiled there are three, half a step back: column 1
        {0.25f, 1.0f, {1, 0}, 63, 0.25f},   // column 0.25
    };
    for (auto const& row : rows) {
        StRGBA32Pixel color{};
        layer->GetFractionalUVPixel(row.u, row.v, color, row.tiling, 0);
        EXPECT_EQ(color.red, row.level) << row.u << ", " << row.v;
        EXPECT_EQ(color.blue, row.level) << row.u << ", " << row.v;
        float intensity = 0;
        layer->GetFractionalUVPixel(row.u, row.v, intensity, row.tiling, 0);
        EXPECT_TRUE(SameBits(intensity, row.share * white)) << row.u << ", " << row.v;
    }
    // Indices do not blend: gradients take the pixels at the truncated places, by their colours. Around (1,
    // 0) these are black, white, black, white.
    float du = 0, dv = 1;
    layer->GetUVDerivatives(0.5f, 1.0f, du, dv, {0, 0}, 0);
    EXPECT_TRUE(SameBits(du, static_cast<float>(2.0 * white * 3 * 0.5)));
    EXPECT_EQ(dv, 0.0f);
}

TYPED_TEST(MappedLayer, NativeImageContext_IsCountedAsOnALayer) {
    auto const layer = Mapped<TypeParam>(1, 1);
    EXPECT_EQ(layer->GetNativeImageContext(), nullptr);
    int context = 0;
    layer->SetNativeImageContext(&context);
    EXPECT_EQ(layer->GetNativeImageContext(), &context);
    layer->ReleaseNativeImageContext();
    layer->SetNativeImageContext(nullptr);
}
