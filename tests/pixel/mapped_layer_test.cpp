#include "framewright/pixel/mapped_layer.h"

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>

#include "framewright/core/startup.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/frame/registries.h"
#include "framewright/pixel/smart_pixel.h"
#include "plain_dither.h"

using namespace color_test;

namespace {

template <class Pixel>
using SmMapped = SmImagerMappedLayer<Pixel, ScImagerNonSpool>;
using SmMapped8 = SmMapped<StMapped8Pixel>;
using SmMapped4 = SmMapped<StMapped4Pixel>;
using SmMapped2 = SmMapped<StMapped2Pixel>;
using SmMapped1 = SmMapped<StMapped1Pixel>;

template <class Pixel>
StRef<SmMapped<Pixel>> Mapped(int rows, int columns) {
    auto layer = StRef<SmMapped<Pixel>>::Adopt(SmMapped<Pixel>::New());
    layer->IImagerMappedLayer({0, 0}, {rows, columns}, false, nullptr, 0);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            layer->PutMatchedPixelAt(x, y, Pixel{});
    return layer;
}

template <class Pixel>
Pixel IndexPixel(unsigned index) {
    Pixel pixel{};
    pixel.index = static_cast<unsigned char>(index & ((1u << Pixel::PixelSize()) - 1));
    return pixel;
}

template <class Pixel>
unsigned IndexAt(SmImagerLayer<Pixel, ScImagerNonSpool>& layer, long x, long y) {
    return layer.GetMatchedPixelAt(x, y).index;
}

/// The palettes of a layer and of the frame interface to it.
ScPalette& MapOf(SmImagerFrame* frame) {
    return *SrGetColorMapFromFrame(frame);
}

/// Gives the first entries of a layer's map new colours.
void SetColors(SmImagerFrame* frame, std::vector<StRGBA32Pixel> const& colors) {
    unsigned char index = 0;
    for (StRGBA32Pixel color : colors)
        MapOf(frame).SetColor(index++, color);
}

bool SameBits(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

template <class Pixel>
class MappedLayer : public testing::Test {};
using MappedPixels = testing::Types<StMapped8Pixel, StMapped4Pixel, StMapped2Pixel, StMapped1Pixel>;
TYPED_TEST_SUITE(MappedLayer, MappedPixels);

}  // namespace

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

// Blits.

TYPED_TEST(MappedLayer, Blit_OfOneClassCopiesIndicesAndLeavesTheMaps) {
    auto const layer = Mapped<TypeParam>(2, 8), other = Mapped<TypeParam>(2, 8);
    SetColors(other.Get(), {Rgba(255, 255, 255), Rgba(0, 0, 0)});
    for (int x = 0; x < 8; ++x)
        other->PutMatchedPixelAt(x, 1, IndexPixel<TypeParam>(x % 2));
    Bytes const map = Written(*layer->GetColorMap());
    EXPECT_FALSE(layer->BlitRect(other.Get(), {0, 0, 2, 8}, {0, 0}));
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(IndexAt<TypeParam>(*layer, x, 1), x % 2u);
    EXPECT_EQ(Written(*layer->GetColorMap()), map);
    EXPECT_TRUE(layer->GetUpdated());
}

TYPED_TEST(MappedLayer, Blit_DithersByTheRules) {
    for (StPicture const& picture : {Photo(20, 30), RandomPicture(20, 30, 5), Gradient(20, 30)}) {
        auto const check = [&](SmImagerFrame* source) {
            auto const layer = Mapped<TypeParam>(20, 30);
            StPicture const shown = PictureOf(source);
            StPicture expected = PictureOf(layer.Get());
            ScPalette map = *layer->GetColorMap();
            StRect const from{1, 2, 19, 29};
            ScPlainDither(30).Blit(shown, from, {2, 1}, [&](long x, long y, StRGBA32Pixel color) {
                return expected.At(x, y) = map[map.ClosestColorIndex(color)];
            });
            EXPECT_FALSE(layer->BlitRect(source, from, {2, 1}));
            EXPECT_EQ(Words(PictureOf(layer.Get())), Words(expected));
            EXPECT_EQ(Written(*layer->GetColorMap()), Written(map)) << "its cache, too";
            EXPECT_TRUE(layer->GetUpdated());
        };
        check(LayerOf<StRGBA32Pixel>(picture).Get());
        check(LayerOf<StRGB32Pixel>(picture).Get());
        check(LayerOf<StRGB24Pixel>(picture).Get());
        check(LayerOf<StGray8Pixel>(picture).Get());
        check(SpyOf<StRGBA32Pixel>(picture).Get());
    }
}

TEST(MappedLayer8, Blit_DithersIntoDarkPalettesByTheRules) {
    // Nearly all answers are entry 0, which no cache remembers.
    StPicture picture = RandomPicture(40, 50, 6);
    for (StRGBA32Pixel& color : picture.pixels)
        color = Rgba(color.red / 9, color.green / 9, color.blue / 9);
    auto const layer = Mapped<StMapped8Pixel>(40, 50);
    layer->GetColorMap()->SetColor(1, Rgba(30, 5, 20));
    ScPalette map = *layer->GetColorMap();
    StPicture expected = picture;
    ScPlainDither(50).Blit(picture, picture.Whole(), {0, 0}, [&](long x, long y, StRGBA32Pixel color) {
        return expected.At(x, y) = map[map.ClosestColorIndex(color)];
    });
    layer->BlitRect(LayerOf<StRGBA32Pixel>(picture).Get(), picture.Whole(), {0, 0});
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(expected));
    EXPECT_EQ(Written(*layer->GetColorMap()), Written(map));
}

TYPED_TEST(MappedLayer, Blit_FromAnotherClassOfTheSameTypeGoesByColor) {
    // A plain layer of the same record has no colours to give: all of it reads as 0.
    using Plain = SmImagerLayer<TypeParam, ScImagerNonSpool>;
    auto const plain = StRef<Plain>::Adopt(Plain::New());
    plain->IImagerLayer({0, 0}, {1, 8}, false, nullptr, 0, nullptr);
    for (int x = 0; x < 8; ++x)
        plain->PutMatchedPixelAt(x, 0, IndexPixel<TypeParam>(1));
    auto const layer = Mapped<TypeParam>(1, 8);
    for (int x = 0; x < 8; ++x)
        layer->PutMatchedPixelAt(x, 0, IndexPixel<TypeParam>(1));
    layer->BlitRect(plain.Get(), {0, 0, 1, 8}, {0, 0});
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(IndexAt<TypeParam>(*layer, x, 0), 0u);
}

TEST(MappedLayer8, Blit_FromANarrowerTypeGoesByColor) {
    auto const source = Mapped<StMapped2Pixel>(1, 4);
    for (int x = 0; x < 4; ++x)
        source->PutMatchedPixelAt(x, 0, IndexPixel<StMapped2Pixel>(x));
    auto const layer = Mapped<StMapped8Pixel>(1, 4);
    layer->BlitRect(source.Get(), {0, 0, 1, 4}, {0, 0});
    std::uint32_t const expected[] = {0x000000FF, 0xFFFFFFFF, 0x0000FFFF, 0x00FF00FF};
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(Word(layer->GetRGBAPixelAt(x, 0)), expected[x]) << x;
}

TYPED_TEST(MappedLayer, Blit_WithoutDitheringTakesTheClosestIndexOfEachPixel) {
    StPicture const picture = Photo(6, 7);
    auto const layer = Mapped<TypeParam>(6, 7);
    layer->SetDithering(0);
    ScPalette map = *layer->GetColorMap();
    layer->BlitRect(LayerOf<StRGBA32Pixel>(picture).Get(), picture.Whole(), {0, 0});
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 7; ++x) {
            EXPECT_EQ(IndexAt<TypeParam>(*layer, x, y), map.ClosestColorIndex(picture.At(x, y)))
                << x << ' ' << y;
        }
}

// Composites.

TYPED_TEST(MappedLayer, MergeRect_IncludesRightAndBottom) {
    StPicture const picture = SolidPicture(6, 6, Rgba(255, 255, 255));
    auto const source = LayerOf<StRGBA32Pixel>(picture);
    auto const layer = Mapped<TypeParam>(6, 6);
    EXPECT_FALSE(layer->MergeRect(source.Get(), {1, 2, 2, 4}, {3, 1}));
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x) {
            bool const inside = y >= 3 && y <= 4 && x >= 1 && x <= 3;
            EXPECT_EQ(IndexAt<TypeParam>(*layer, x, y) != 0, inside) << x << ", " << y;
        }
    EXPECT_TRUE(layer->GetUpdated());
}

TYPED_TEST(MappedLayer, MergeRect_LaysEachPixelOver) {
    StPicture const picture = RandomPicture(5, 5, 8);
    auto const source = LayerOf<StRGBA32Pixel>(picture);
    auto const layer = Mapped<TypeParam>(5, 5);
    layer->SetDithering(0);
    layer->BlitRect(LayerOf<StRGBA32Pixel>(RandomPicture(5, 5, 9, 255)).Get(), {0, 0, 5, 5}, {0, 0});
    ScPalette map = *layer->GetColorMap();
    StPicture expected = PictureOf(layer.Get());
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x) {
            StRGBA32Pixel color = expected.At(x, y);
            color.Merge(picture.At(x, y));
            expected.At(x, y) = map[map.ClosestColorIndex(color)];
        }
    layer->MergeRect(source.Get(), {0, 0, 4, 4}, {0, 0});
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(expected));
}

TYPED_TEST(MappedLayer, MergeRect_KeepsWithinBothFrames) {
    auto const source = LayerOf<StRGBA32Pixel>(SolidPicture(4, 4, Rgba(255, 255, 255)));
    constexpr std::int32_t kLeast = INT32_MIN, kMost = INT32_MAX;
    struct {
        StRect from;
        StPoint to;
        StRect written;  ///< right and bottom not included
    } const rows[] = {
        {{0, 0, 4, 4}, {0, 0}, {0, 0, 4, 4}},  // a whole frame, told half open: one row and column too many
        {{0, 0, 9, 9}, {3, 3}, {3, 3, 5, 5}},
        {{-1, -2, 1, 1}, {0, 0}, {1, 2, 3, 4}},
        {{0, 0, 3, 3}, {-2, -1}, {0, 0, 2, 3}},
        {{kLeast, kLeast, kMost, kMost}, {kLeast, kLeast}, {0, 0, 4, 4}},
        {{4, 0, 9, 9}, {0, 0}, {0, 0, 0, 0}},
        {{0, 0, 3, 3}, {5, 0}, {0, 0, 0, 0}},
        {{2, 2, 1, 3}, {0, 0}, {0, 0, 0, 0}},
        {{2, 2, 2, 2}, {0, 0}, {0, 0, 1, 1}},
    };
    for (auto const& row : rows) {
        auto const layer = Mapped<TypeParam>(5, 5);
        EXPECT_FALSE(layer->MergeRect(source.Get(), row.from, row.to));
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 5; ++x) {
                bool const inside = y >= row.written.top && y < row.written.bottom && x >= row.written.left &&
                                    x < row.written.right;
                EXPECT_EQ(IndexAt<TypeParam>(*layer, x, y) != 0, inside)
                    << x << ", " << y << " of " << row.from.top << " at " << row.to.vertical;
            }
    }
}

// Stretches.

TYPED_TEST(MappedLayer, StretchBlit_MapsFirstToFirstAndLastToLast) {
    auto const source = LayerOf<StRGBA32Pixel>(Photo(5, 7));
    struct {
        StRect from, to;
    } const rows[] = {{{0, 0, 5, 7}, {0, 0, 9, 8}},
                      {{1, 2, 4, 6}, {2, 1, 3, 8}},
                      {{0, 0, 1, 1}, {0, 0, 9, 8}},
                      {{0, 0, 5, 7}, {4, 4, 5, 5}},
                      {{0, 0, 5, 7}, {-3, -4, 20, 30}}};
    for (auto const& row : rows) {
        auto const layer = Mapped<TypeParam>(9, 8);
        ScPalette map = *layer->GetColorMap();
        StPicture expected = PictureOf(layer.Get());
        float dh = static_cast<float>(row.to.bottom - row.to.top - 1),
              dw = static_cast<float>(row.to.right - row.to.left - 1);
        if (dh == 0) dh = 1.0f;
        if (dw == 0) dw = 1.0f;
        float const sh = static_cast<float>(row.from.bottom - row.from.top - 1);
        float const sw = static_cast<float>(row.from.right - row.from.left - 1);
        std::unique_ptr<ScSmartPixel> const smart(source->NewSmartPixel());
        for (int y = std::max(0, row.to.top); y < std::min(9, row.to.bottom); ++y)
            for (int x = std::max(0, row.to.left); x < std::min(8, row.to.right); ++x) {
                float const fx =
                    static_cast<float>(x - row.to.left) * sw / dw + static_cast<float>(row.from.left);
                float const fy =
                    static_cast<float>(y - row.to.top) * sh / dh + static_cast<float>(row.from.top);
                source->GetFractionalSmartPixel(fx, fy, smart.get());
                expected.At(x, y) = map[map.ClosestColorIndex(smart->GetRGBA32())];
            }
        EXPECT_FALSE(layer->StretchBlit(source.Get(), row.from, row.to));
        EXPECT_EQ(Words(PictureOf(layer.Get())), Words(expected)) << row.to.top << ' ' << row.to.bottom;
        EXPECT_TRUE(layer->GetUpdated());
    }
}

TYPED_TEST(MappedLayer, StretchBlit_OfItsOwnTypeReadsIndicesWithThisMap) {
    auto const source = Mapped<TypeParam>(1, 2), layer = Mapped<TypeParam>(2, 4);
    SetColors(source.Get(), {Rgba(255, 255, 255), Rgba(0, 0, 0)});
    SetColors(layer.Get(), {Rgba(0, 0, 0), Rgba(255, 255, 255)});
    source->PutMatchedPixelAt(1, 0, IndexPixel<TypeParam>(1));
    layer->StretchBlit(source.Get(), {0, 0, 1, 2}, {0, 0, 2, 4});
    EXPECT_EQ(Word(layer->GetRGBAPixelAt(0, 0)), 0x000000FFu);
    EXPECT_EQ(Word(layer->GetRGBAPixelAt(3, 1)), 0xFFFFFFFFu);
}

TYPED_TEST(MappedLayer, StretchBlit_FromAnEmptyFrameIsSafe) {
    auto const layer = Mapped<TypeParam>(2, 2);
    EXPECT_FALSE(
        layer->StretchBlit(LayerOf<StRGBA32Pixel>(SolidPicture(0, 0, {})).Get(), {0, 0, 1, 1}, {0, 0, 2, 2}));
    EXPECT_FALSE(layer->StretchBlit(Mapped<TypeParam>(0, 0).Get(), {0, 0, 1, 1}, {0, 0, 2, 2}));
    EXPECT_TRUE(layer->GetUpdated());
}

// Copies.

TYPED_TEST(MappedLayer, CopyFromLayer_TakesTheColorsOfItsOwnClassAlong) {
    auto const source = Mapped<TypeParam>(2, 8), layer = Mapped<TypeParam>(2, 8);
    SetColors(source.Get(), {Rgba(20, 30, 40), Rgba(200, 210, 220)});
    source->PutMatchedPixelAt(7, 1, IndexPixel<TypeParam>(1));
    ScPalette expected = *layer->GetColorMap();
    SrCopyColorMap(&expected, source->GetColorMap());
    layer->CopyFromLayer(source.Get());
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(PictureOf(source.Get())));
    EXPECT_EQ(Written(*layer->GetColorMap()), Written(expected));
}

TYPED_TEST(MappedLayer, CopyFromLayer_OfAnotherClassKeepsTheMap) {
    auto const layer = Mapped<TypeParam>(4, 4);
    layer->CopyFromLayer(LayerOf<StRGBA32Pixel>(SolidPicture(2, 2, Rgba(255, 255, 255))).Get());
    EXPECT_EQ(Words(PictureOf(layer.Get())), std::vector<std::uint32_t>(16, 0xFFFFFFFF));
    ScPalette standard(1 << TypeParam::PixelSize());
    StuffDefaultColors(standard, 0);
    EXPECT_EQ(Word((*layer->GetColorMap())[1]), Word(standard[1]));
}

TYPED_TEST(MappedLayer, MirrorLayer_CopiesIndicesAndHasTheStandardMap) {
    auto const layer = StRef<SmMapped<TypeParam>>::Adopt(SmMapped<TypeParam>::New());
    layer->IImagerMappedLayer({6, 7}, {2, 8}, false, nullptr, 0);
    layer->Erase();
    SetColors(layer.Get(), {Rgba(1, 2, 3), Rgba(4, 5, 6)});
    layer->PutMatchedPixelAt(3, 1, IndexPixel<TypeParam>(1));
    auto const mirror = StRef<SmImagerFrame>::Adopt(layer->MirrorLayer());
    ASSERT_EQ(mirror->GetClass(), SmMapped<TypeParam>::Class());
    EXPECT_EQ(mirror->ReferenceCount(), 1);
    EXPECT_EQ(mirror->GetSize(), layer->GetSize());
    EXPECT_EQ(mirror->GetTopLeft(), (StPoint{6, 7}));
    auto* const mapped = static_cast<SmMapped<TypeParam>*>(mirror.Get());
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(IndexAt<TypeParam>(*mapped, x, 1), IndexAt<TypeParam>(*layer, x, 1));
    ScPalette standard(1 << TypeParam::PixelSize());
    StuffDefaultColors(standard, 0);
    EXPECT_EQ(Word((*mapped->GetColorMap())[1]), Word(standard[1]));
}

TYPED_TEST(MappedLayer, CloneAtNewSize_LosesThePalette) {
    auto const layer = Mapped<TypeParam>(2, 2);
    SetColors(layer.Get(), {Rgba(1, 2, 3), Rgba(4, 5, 6)});
    auto const clone = StRef<SmImagerFrame>::Adopt(layer->CloneAtNewSize({3, 9}, false, true));
    ASSERT_EQ(clone->GetClass(), SmMapped<TypeParam>::Class());
    EXPECT_EQ(clone->GetSize(), (StPoint{3, 9}));
    ScPalette standard(1 << TypeParam::PixelSize());
    StuffDefaultColors(standard, 0);
    EXPECT_EQ(Word(MapOf(clone.Get())[1]), Word(standard[1]));
}

TYPED_TEST(MappedLayer, Clone_KeepsColorsAndIndicesAndHasStandardGrounds) {
    auto const layer = Mapped<TypeParam>(2, 8);
    SetColors(layer.Get(), {Rgba(255, 255, 255), Rgba(5, 5, 5)});
    layer->SetForeground(Rgba(255, 255, 255));
    layer->SetBackground(Rgba(255, 255, 255));
    for (int x = 0; x < 8; ++x)
        layer->PutMatchedPixelAt(x, 0, IndexPixel<TypeParam>(x / 3));
    auto const clone = StRef<SmMapped<TypeParam>>::Adopt(layer->Clone());
    EXPECT_NE(clone->GetColorMap(), layer->GetColorMap());
    EXPECT_EQ(Words(PictureOf(clone.Get())), Words(PictureOf(layer.Get())));
    ScPalette expected(1 << TypeParam::PixelSize());
    SrCopyColorMap(&expected, layer->GetColorMap());
    StRGBA32Pixel color{};
    clone->GetForeground(color);
    EXPECT_EQ(Word(color), Word(expected[expected.ClosestColorIndex(Rgba(0, 0, 0, 0))]));
    clone->GetBackground(color);
    EXPECT_EQ(Word(color), 0xFFFFFFFFu);
    EXPECT_EQ(Written(*clone->GetColorMap()), Written(expected))
        << "colours set one by one, not a copied cache";
}

TYPED_TEST(MappedLayer, ImplementBecome_TakesTheMapOverAndKeepsTheCount) {
    auto const layer = Mapped<TypeParam>(2, 2), other = Mapped<TypeParam>(3, 4);
    SetColors(other.Get(), {Rgba(1, 2, 3), Rgba(4, 5, 6)});
    StRef<SmMapped<TypeParam>> const second(layer.Get());
    layer->ImplementBecome(other.Get());
    EXPECT_EQ(layer->ReferenceCount(), 2);
    EXPECT_NE(layer->GetColorMap(), other->GetColorMap());
    EXPECT_EQ(Word((*layer->GetColorMap())[1]), Word(Rgba(4, 5, 6)));
    EXPECT_EQ(layer->GetSize(), (StPoint{3, 4}));
}

TYPED_TEST(MappedLayer, Resize_KeepsTheMap) {
    auto const layer = Mapped<TypeParam>(2, 2);
    SetColors(layer.Get(), {Rgba(1, 2, 3), Rgba(4, 5, 6)});
    ScPalette* const map = layer->GetColorMap();
    layer->Resize({5, 6}, StImageInterpolationMethod::kNone);
    EXPECT_EQ(layer->GetColorMap(), map);
    EXPECT_EQ(Word((*map)[1]), Word(Rgba(4, 5, 6)));
}

TYPED_TEST(MappedLayer, RefusedMemoryThrowsAndLeavesNothing) {
    auto const whole = Mapped<TypeParam>(8, 8);
    for (long allowed = 0; allowed < 60; ++allowed) {
        auto const layer = StRef<SmMapped<TypeParam>>::Adopt(SmMapped<TypeParam>::New());
        ScRefuseAllocations const gate(allowed);
        std::vector<long> errors;
        errors.push_back(ErrorOf([&] { layer->IImagerMappedLayer({0, 0}, {8, 8}, false, nullptr, 0); }));
        errors.push_back(ErrorOf([&] { StRef<SmMapped<TypeParam>>::Adopt(whole->Clone()); }));
        errors.push_back(ErrorOf([&] { StRef<SmImagerFrame>::Adopt(whole->MirrorLayer()); }));
        errors.push_back(ErrorOf([&] {
            StRef<SmImagerFrame>::Adopt(whole->CloneAtNewSize({3, 3}, true, false));
        }));
        for (long error : errors)
            EXPECT_TRUE(error == SkNoError() || error == SkMemoryFull()) << error;
        EXPECT_TRUE(allowed > 0 || errors[0] == SkMemoryFull());
        EXPECT_TRUE(allowed < 59 || errors[3] == SkNoError());
    }
}

// Streams.

TYPED_TEST(MappedLayer, Stream_EndsWithTheMarkAndTheMap) {
    auto const layer = Mapped<TypeParam>(1, 1);
    auto const stream = EmptyStream();
    layer->WriteTo(stream.Get());
    Bytes const map = Written(*layer->GetColorMap());
    Bytes const bytes = BytesOf(*stream);
    ASSERT_GT(bytes.size(), map.size() + 5);
    std::size_t const tail = bytes.size() - map.size() - 5;
    EXPECT_EQ(Bytes(bytes.begin() + static_cast<long>(tail), bytes.begin() + static_cast<long>(tail) + 5),
              (Bytes{0x4D, 0x61, 0x70, 0x64, 1}));
    EXPECT_EQ(Bytes(bytes.end() - static_cast<long>(map.size()), bytes.end()), map);
}

TYPED_TEST(MappedLayer, Stream_RoundTrip) {
    for (unsigned short compression : {0, 1}) {
        auto const layer = Mapped<TypeParam>(3, 9), copy = Mapped<TypeParam>(3, 9);
        SetColors(layer.Get(), {Rgba(11, 22, 33, 44), Rgba(200, 100, 50)});
        for (int x = 0; x < 9; ++x)
            layer->PutMatchedPixelAt(x, 1, IndexPixel<TypeParam>(x));
        layer->SetStreamingCompression(compression);
        auto const stream = EmptyStream();
        layer->WriteTo(stream.Get());
        stream->SetPosition(0);
        copy->ReadFrom(stream.Get());
        EXPECT_EQ(Words(PictureOf(copy.Get())), Words(PictureOf(layer.Get())));
        EXPECT_EQ(Written(*copy->GetColorMap()), Written(*layer->GetColorMap()));
        EXPECT_EQ(stream->GetPosition(), stream->GetLength());
    }
}

TYPED_TEST(MappedLayer, Stream_OtherMarkOrVersionLeavesTheMap) {
    auto const layer = Mapped<TypeParam>(1, 1);
    auto const stream = EmptyStream();
    layer->WriteTo(stream.Get());
    Bytes const good = BytesOf(*stream);
    std::size_t const mark = good.size() - Written(*layer->GetColorMap()).size() - 5;
    auto const copy = Mapped<TypeParam>(1, 1);
    SetColors(copy.Get(), {Rgba(7, 7, 7)});
    Bytes const map = Written(*copy->GetColorMap());
    struct {
        std::size_t offset;
        unsigned char value;
        long error;
    } const rows[] = {
        {mark, 'm', SkBadFileFormatErrC()},
        {mark + 3, 'D', SkBadFileFormatErrC()},
        {mark + 4, 0, SkBadFileVersionErrC()},
        {mark + 4, 2, SkBadFileVersionErrC()},
    };
    for (auto const& row : rows) {
        Bytes bad = good;
        bad[row.offset] = row.value;
        auto const read = [&] { copy->ReadFrom(StreamOf(bad).Get()); };
        EXPECT_EQ(ErrorOf(read), row.error);
        EXPECT_TRUE(ThrowsMessage(read));
        EXPECT_EQ(Written(*copy->GetColorMap()), map);
    }
}

// Prototypes.

TYPED_TEST(MappedLayer, Prototype_HasNoMapAndIsSafeToTouch) {
    auto const layer = StRef<SmMapped<TypeParam>>::Adopt(SmMapped<TypeParam>::New());
    layer->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    auto const fresh = [] {
        auto bare = StRef<SmMapped<TypeParam>>::Adopt(SmMapped<TypeParam>::New());
        bare->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
        bare->PutMatchedPixelAt(0, 0, TypeParam{});
        EXPECT_EQ(bare->GetColorMap(), nullptr);
        EXPECT_EQ(SrGetColorMapFromFrame(bare.Get()), nullptr);
        EXPECT_TRUE(SrIsColorMappedFrame(bare.Get()));
        return bare;
    };
    StRGBA32Pixel color{};
    StColorFloats floats{};
    StRGBAFloatPixel rgba{};
    float intensity = 0;
    StAlpha8Pixel grey{};
    auto const white = LayerOf<StRGBA32Pixel>(SolidPicture(2, 2, Rgba(255, 255, 255)));
    std::function<void(SmMapped<TypeParam>&)> const touches[] = {
        [&](auto& l) { l.GetPixelAt(0, 0, color); },
        [&](auto& l) { l.GetPixelAt(0, 0, floats); },
        [&](auto& l) { l.GetPixelAt(0, 0, rgba); },
        [&](auto& l) { l.GetPixelAt(0, 0, intensity); },
        [&](auto& l) { l.GetPixelAt(0, 0, grey); },
        [&](auto& l) { l.GetRGBAPixelAsLong(0, 0); },
        [&](auto& l) { l.PutPixelAt(0, 0, Rgba(255, 255, 255)); },
        [&](auto& l) { l.PutPixelAt(0, 0, StDepthFloatPixel{1}); },
        [&](auto& l) { l.MergePixelAt(0, 0, Rgba(255, 255, 255)); },
        [&](auto& l) { l.SetForeground(Rgba(255, 255, 255)); },
        [&](auto& l) { l.GetForeground(color); },
        [&](auto& l) { l.GetBackground(color); },
        [&](auto& l) { delete l.NewSmartPixel(); },
        [&](auto& l) { l.GetFractionalPixel(0.5f, 0.5f); },
        [&](auto& l) {
            l.GetFractionalUVPixel(0.5f, 0.5f, floats, {0, 0}, 0);
        },
        [&](auto& l) {
            l.GetFractionalUVPixel(0.5f, 0.5f, color, {0, 0}, 0);
        },
        [&](auto& l) {
            l.GetUVDerivatives(0.5f, 0.5f, intensity, intensity, {0, 0}, 0);
        },
        [&](auto& l) {
            l.BlitRect(white.Get(), {0, 0, 2, 2}, {0, 0});
        },
        [&](auto& l) {
            l.BlitRect(layer.Get(), {0, 0, 1, 1}, {0, 0});
        },
        [&](auto& l) {
            l.MergeRect(white.Get(), {0, 0, 2, 2}, {0, 0});
        },
        [&](auto& l) {
            l.StretchBlit(white.Get(), {0, 0, 2, 2}, {0, 0, 1, 1});
        },
        [&](auto& l) { l.CopyFromLayer(layer.Get()); },
        [&](auto& l) { l.CopyFromLayer(white.Get()); },
        [&](auto& l) { StRef<SmImagerFrame>::Adopt(l.MirrorLayer()); },
        [&](auto& l) { StRef<SmImagerFrame>::Adopt(l.Clone()); },
        [&](auto& l) { l.ImplementBecome(layer.Get()); },
        [&](auto& l) { l.GetNativeImageContext(); },
        [&](auto& l) { l.WriteTo(EmptyStream().Get()); },
        [&](auto& l) { l.Invert(); },
        [&](auto& l) { l.Erase(); },
        [&](auto& l) { l.ClearDither(0, 0); },
        [&](auto& l) {
            l.Resize({4, 4}, StImageInterpolationMethod::kNone);
        },
    };
    for (auto const& touch : touches)
        touch(*fresh());
}

TYPED_TEST(MappedLayer, Prototype_WritesTheStandardMap) {
    auto const bare = StRef<SmMapped<TypeParam>>::Adopt(SmMapped<TypeParam>::New());
    bare->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    bare->PutMatchedPixelAt(0, 0, TypeParam{});
    auto const bareStream = EmptyStream();
    bare->WriteTo(bareStream.Get());
    ScPalette standard(1 << TypeParam::PixelSize());
    StuffDefaultColors(standard, 0);
    Bytes const map = Written(standard), bytes = BytesOf(*bareStream);
    EXPECT_EQ(Bytes(bytes.end() - static_cast<long>(map.size()), bytes.end()), map);
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

// Registration.

TEST(MappedLayers, AreRegisteredWithPrototypesAndNames) {
    struct {
        std::uint32_t id;
        ScMC_* cls;
        bool mapped;
    } const rows[] = {
        {SrCode("RG15"), SmImagerDitheredLayer<StRGB15Pixel, ScImagerNonSpool>::Class(), false},
        {SrCode("Map8"), SmMapped8::Class(), true},
        {SrCode("Map4"), SmMapped4::Class(), true},
        {SrCode("Map2"), SmMapped2::Class(), true},
        {SrCode("Map1"), SmMapped1::Class(), true},
    };
    auto const check = [&](bool present) {
        for (auto const& row : rows) {
            SmImagerFrame* prototype = nullptr;
            char const* name = nullptr;
            EXPECT_EQ(ScLayerRegistry::GetObjectByID(row.cls, false, prototype), present);
            EXPECT_EQ(ScLayerNameRegistry::GetObjectByID(row.id, false, name), present);
            if (!present) continue;
            EXPECT_EQ(prototype->PixelID(), row.id);
            EXPECT_EQ(prototype->GetClass(), row.cls);
            EXPECT_EQ(prototype->GetSize(), (StPoint{1, 1}));
            EXPECT_EQ(prototype->GetTopLeft(), (StPoint{0, 0}));
            EXPECT_EQ(prototype->ReferenceCount(), 1) << "the registry's own";
            EXPECT_EQ(SrIsColorMappedFrame(prototype), row.mapped);
            EXPECT_STRNE(name, "");
        }
    };
    check(true);
    SrInitializeMappedLayers(true);
    check(false);
    SrInitializeMappedLayers(true);
    check(false);
    SrInitializeMappedLayers(false);
    check(true);
}

TEST(MappedLayers, FactoryGivesThemAndTheyShareOneName) {
    for (std::uint32_t id : {SrCode("Map8"), SrCode("Map4"), SrCode("Map2"), SrCode("Map1")}) {
        auto const frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({3, 4}, id, true, true));
        ASSERT_TRUE(frame) << id;
        EXPECT_STREQ(frame->GetClassName(), "SmImagerMappedLayer<class template>");
        EXPECT_EQ(frame->GetClassVersion(), 0);
        EXPECT_TRUE(SrIsColorMappedFrame(frame.Get()));
    }
    EXPECT_NE(SmMapped8::Class(), SmMapped4::Class());
    EXPECT_TRUE(Mapped<StMapped8Pixel>(1, 1)->IsMemberOf(
        (SmImagerDitheredLayer<StMapped8Pixel, ScImagerNonSpool>::Class())));
}

TEST(MappedLayer8, BlackIsSearchedAnewUntilItsCellHasAnotherAnswer) {
    auto const layer = Mapped<StMapped8Pixel>(1, 1);
    layer->PutPixelAt(0, 0, Rgba(10, 10, 10));
    EXPECT_EQ(IndexAt<StMapped8Pixel>(*layer, 0, 0), 0u);
    layer->GetColorMap()->SetColor(252, Rgba(12, 12, 12));
    layer->PutPixelAt(0, 0, Rgba(0, 0, 0));
    EXPECT_EQ(IndexAt<StMapped8Pixel>(*layer, 0, 0), 252u) << "the cell now answers for all of its colours";
}
