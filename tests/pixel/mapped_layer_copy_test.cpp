// Copies into, from and of mapped layers.
#include <memory>

#include "framewright/pixel/mapped_layer.h"
#include "mapped_test_support.h"
#include "plain_dither.h"

using namespace color_test;

template <class Pixel>
class MappedLayerCopy : public testing::Test {};
TYPED_TEST_SUITE(MappedLayerCopy, MappedPixels);

// Blits.

TYPED_TEST(MappedLayerCopy, Blit_OfOneClassCopiesIndicesAndLeavesTheMaps) {
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

TYPED_TEST(MappedLayerCopy, Blit_DithersByTheRules) {
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

TEST(MappedLayerCopy8, Blit_DithersIntoDarkPalettesByTheRules) {
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

TYPED_TEST(MappedLayerCopy, Blit_FromAnotherClassOfTheSameTypeGoesByColor) {
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

TEST(MappedLayerCopy8, Blit_FromANarrowerTypeGoesByColor) {
    auto const source = Mapped<StMapped2Pixel>(1, 4);
    for (int x = 0; x < 4; ++x)
        source->PutMatchedPixelAt(x, 0, IndexPixel<StMapped2Pixel>(x));
    auto const layer = Mapped<StMapped8Pixel>(1, 4);
    layer->BlitRect(source.Get(), {0, 0, 1, 4}, {0, 0});
    std::uint32_t const expected[] = {0x000000FF, 0xFFFFFFFF, 0x0000FFFF, 0x00FF00FF};
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(Word(layer->GetRGBAPixelAt(x, 0)), expected[x]) << x;
}

TYPED_TEST(MappedLayerCopy, Blit_WithoutDitheringTakesTheClosestIndexOfEachPixel) {
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

TYPED_TEST(MappedLayerCopy, MergeRect_IncludesRightAndBottom) {
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

TYPED_TEST(MappedLayerCopy, MergeRect_LaysEachPixelOver) {
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

TYPED_TEST(MappedLayerCopy, MergeRect_KeepsWithinBothFrames) {
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

TYPED_TEST(MappedLayerCopy, StretchBlit_MapsFirstToFirstAndLastToLast) {
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

TYPED_TEST(MappedLayerCopy, StretchBlit_OfItsOwnTypeReadsIndicesWithThisMap) {
    auto const source = Mapped<TypeParam>(1, 2), layer = Mapped<TypeParam>(2, 4);
    SetColors(source.Get(), {Rgba(255, 255, 255), Rgba(0, 0, 0)});
    SetColors(layer.Get(), {Rgba(0, 0, 0), Rgba(255, 255, 255)});
    source->PutMatchedPixelAt(1, 0, IndexPixel<TypeParam>(1));
    layer->StretchBlit(source.Get(), {0, 0, 1, 2}, {0, 0, 2, 4});
    EXPECT_EQ(Word(layer->GetRGBAPixelAt(0, 0)), 0x000000FFu);
    EXPECT_EQ(Word(layer->GetRGBAPixelAt(3, 1)), 0xFFFFFFFFu);
}

TYPED_TEST(MappedLayerCopy, StretchBlit_FromAnEmptyFrameIsSafe) {
    auto const layer = Mapped<TypeParam>(2, 2);
    EXPECT_FALSE(
        layer->StretchBlit(LayerOf<StRGBA32Pixel>(SolidPicture(0, 0, {})).Get(), {0, 0, 1, 1}, {0, 0, 2, 2}));
    EXPECT_FALSE(layer->StretchBlit(Mapped<TypeParam>(0, 0).Get(), {0, 0, 1, 1}, {0, 0, 2, 2}));
    EXPECT_TRUE(layer->GetUpdated());
}

// Copies.

TYPED_TEST(MappedLayerCopy, CopyFromLayer_TakesTheColorsOfItsOwnClassAlong) {
    auto const source = Mapped<TypeParam>(2, 8), layer = Mapped<TypeParam>(2, 8);
    SetColors(source.Get(), {Rgba(20, 30, 40), Rgba(200, 210, 220)});
    source->PutMatchedPixelAt(7, 1, IndexPixel<TypeParam>(1));
    ScPalette expected = *layer->GetColorMap();
    SrCopyColorMap(&expected, source->GetColorMap());
    layer->CopyFromLayer(source.Get());
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(PictureOf(source.Get())));
    EXPECT_EQ(Written(*layer->GetColorMap()), Written(expected));
}

TYPED_TEST(MappedLayerCopy, CopyFromLayer_OfAnotherClassKeepsTheMap) {
    auto const layer = Mapped<TypeParam>(4, 4);
    layer->CopyFromLayer(LayerOf<StRGBA32Pixel>(SolidPicture(2, 2, Rgba(255, 255, 255))).Get());
    EXPECT_EQ(Words(PictureOf(layer.Get())), std::vector<std::uint32_t>(16, 0xFFFFFFFF));
    ScPalette standard(1 << TypeParam::PixelSize());
    StuffDefaultColors(standard, 0);
    EXPECT_EQ(Word((*layer->GetColorMap())[1]), Word(standard[1]));
}

TYPED_TEST(MappedLayerCopy, MirrorLayer_CopiesIndicesAndHasTheStandardMap) {
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

TYPED_TEST(MappedLayerCopy, CloneAtNewSize_LosesThePalette) {
    auto const layer = Mapped<TypeParam>(2, 2);
    SetColors(layer.Get(), {Rgba(1, 2, 3), Rgba(4, 5, 6)});
    auto const clone = StRef<SmImagerFrame>::Adopt(layer->CloneAtNewSize({3, 9}, false, true));
    ASSERT_EQ(clone->GetClass(), SmMapped<TypeParam>::Class());
    EXPECT_EQ(clone->GetSize(), (StPoint{3, 9}));
    ScPalette standard(1 << TypeParam::PixelSize());
    StuffDefaultColors(standard, 0);
    EXPECT_EQ(Word(MapOf(clone.Get())[1]), Word(standard[1]));
}
