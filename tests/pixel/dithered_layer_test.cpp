#include "framewright/pixel/dithered_layer.h"

#include <functional>

#include "framewright/frame/layer_factory.h"
#include "framewright/frame/registries.h"
#include "plain_dither.h"

using namespace color_test;

namespace {

using SmDithered = SmImagerDitheredLayer<StRGB15Pixel, ScImagerNonSpool>;

constexpr std::uint32_t kBackdrop = 0x294A6AFF;  // (41, 74, 106), a colour that five bits have

StRef<SmDithered> Dithered(int rows, int columns) {
    auto layer = StRef<SmDithered>::Adopt(SmDithered::New());
    layer->IImagerDitheredLayer({0, 0}, {rows, columns}, false, nullptr, 0);
    Paint(layer.Get(), SolidPicture(rows, columns, Rgba(41, 74, 106)));
    layer->SetUpdated(false);
    return layer;
}

/// A grey that leaves an error: 6 becomes 0 and is 6 short; with half of that it is 9 and becomes 8.
StPicture Sixes(int rows, int columns) {
    return SolidPicture(rows, columns, Rgba(6, 6, 6));
}

/// The red bytes of a row.
std::vector<int> Reds(SmImagerFrame* frame, long y) {
    std::vector<int> reds;
    for (long x = 0; x < frame->GetSize().horizontal; ++x)
        reds.push_back(frame->GetRGBAPixelAt(x, y).red);
    return reds;
}

/// Words of what a layer shows and of what the rules make of `source`, from the same backdrop.
void ExpectDithered(SmImagerFrame* source, StPicture const& shown, StRect const& from, StPoint const& to) {
    auto const layer = Dithered(30, 40);
    EXPECT_FALSE(layer->BlitRect(source, from, to));
    StPicture expected = SolidPicture(30, 40, Rgba(41, 74, 106));
    ScPlainDither(40).Blit(shown, from, to, PutFiveBits(expected));
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(expected));
    EXPECT_TRUE(layer->GetUpdated());
}

}  // namespace

// The transfer.

TEST(DitheredLayer, Blit_EqualsTheRulesOnPicturesOfEachKind) {
    for (StPicture const& picture :
         {RandomPicture(30, 40, 1), Gradient(30, 40), Photo(30, 40), FewColors(30, 40)}) {
        auto const layer = LayerOf<StRGBA32Pixel>(picture);
        ExpectDithered(layer.Get(), picture, picture.Whole(), {0, 0});
        ExpectDithered(layer.Get(), picture, {3, 5, 20, 31}, {7, 2});
        ExpectDithered(layer.Get(), picture, {4, 0, 5, 40}, {29, 0});
        ExpectDithered(layer.Get(), picture, {0, 17, 30, 18}, {0, 39});
    }
}

TEST(DitheredLayer, Blit_EqualsTheRulesFromFramesOfEachType) {
    StPicture const picture = Photo(30, 40);
    auto const check = [&](auto const& layer) {
        ExpectDithered(layer.Get(), PictureOf(layer.Get()), {1, 2, 29, 38}, {0, 1});
    };
    check(LayerOf<StRGB32Pixel>(picture));
    check(LayerOf<StRGB24Pixel>(picture));
    check(LayerOf<StGray8Pixel>(picture));
    check(LayerOf<StRGB48Pixel>(picture));
    check(LayerOf<StBlackWhitePixel>(picture));
    check(SpyOf<StRGBA32Pixel>(picture));
    check(SpyOf<StRGB24Pixel>(picture));
}

TEST(DitheredLayer, Blit_AsksAClassOfItsOwnForEachPixelOnce) {
    auto const spy = SpyOf<StRGBA32Pixel>(Photo(30, 40));
    auto const layer = Dithered(30, 40);
    layer->BlitRect(spy.Get(), {2, 3, 12, 23}, {0, 0});
    EXPECT_EQ(spy->reads, 10 * 20);
}

TEST(DitheredLayer, Blit_ColorsOfFiveBitsHaveNoError) {
    StPicture const picture = SolidPicture(30, 40, Rgba(131, 8, 246));
    auto const layer = Dithered(30, 40);
    layer->BlitRect(LayerOf<StRGBA32Pixel>(picture).Get(), picture.Whole(), {0, 0});
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(picture));
}

TEST(DitheredLayer, Blit_DirectionFollowsTheParityOfTheSourceRow) {
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(4, 4));
    struct {
        StRect from;
        std::vector<int> reds;
    } const rows[] = {
        // From the first pixel on: 6, 9, 6 (half of 1 is 0), 9.
        {{0, 0, 1, 4}, {8, 0, 8, 0}},
        {{1, 0, 2, 4}, {0, 8, 0, 8}},
        {{2, 0, 3, 4}, {8, 0, 8, 0}},
        {{3, 0, 4, 4}, {0, 8, 0, 8}},
    };
    for (auto const& row : rows) {
        for (int to : {0, 1}) {
            auto const layer = Dithered(2, 4);
            layer->BlitRect(source.Get(), row.from, {to, 0});
            EXPECT_EQ(Reds(layer.Get(), to), row.reds) << row.from.top << " to " << to;
        }
    }
}

TEST(DitheredLayer, Blit_FirstPixelOfARowTakesHalfOfTheErrorAbove) {
    // Row 0 from the right: 6 is short by 6. Row 1 from the left: half of 6 more is 9.
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(2, 1));
    auto const layer = Dithered(2, 1);
    layer->BlitRect(source.Get(), {0, 0, 2, 1}, {0, 0});
    EXPECT_EQ(Reds(layer.Get(), 0), std::vector<int>{0});
    EXPECT_EQ(Reds(layer.Get(), 1), std::vector<int>{8});
}

TEST(DitheredLayer, Blit_HalvesOfErrorsGoTowardZero) {
    // 15 becomes 8 and is 7 short: half is 3, so the next is 4 + 3 = 7, which is 0, and not 8.
    StPicture picture = SolidPicture(2, 2, Rgba(15, 0, 0));
    picture.At(1, 1) = Rgba(4, 0, 0);
    auto const layer = Dithered(1, 2);
    layer->BlitRect(LayerOf<StRGBA32Pixel>(picture).Get(), {1, 0, 2, 2}, {0, 0});
    EXPECT_EQ(Reds(layer.Get(), 0), (std::vector<int>{8, 0}));

    // 248 becomes 255, 7 too much: half is -3, so the next is 11 - 3 = 8, which is 8, and not 0.
    picture.At(0, 1) = Rgba(248, 0, 0);
    picture.At(1, 1) = Rgba(11, 0, 0);
    auto const other = Dithered(1, 2);
    other->BlitRect(LayerOf<StRGBA32Pixel>(picture).Get(), {1, 0, 2, 2}, {0, 0});
    EXPECT_EQ(Reds(other.Get(), 0), (std::vector<int>{255, 8}));
}

TEST(DitheredLayer, Blit_ClampsToBytes) {
    // 254 becomes 255 and is 1 too much, 7 becomes 0 and is 7 short: nothing wraps at either end.
    for (int value : {254, 255, 0, 1}) {
        StPicture const picture = SolidPicture(30, 40, Rgba(value, value, value));
        ExpectDithered(LayerOf<StRGBA32Pixel>(picture).Get(), picture, picture.Whole(), {0, 0});
    }
}

TEST(DitheredLayer, Blit_ReplacesTheFlag) {
    auto const layer = Dithered(1, 1);
    layer->PutMatchedPixelAt(0, 0, StRGB15Pixel{0, 0, 0, 1});
    layer->BlitRect(LayerOf<StRGBA32Pixel>(Sixes(1, 1)).Get(), {0, 0, 1, 1}, {0, 0});
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0).flag, 0);
}

// Errors from blit to blit.

TEST(DitheredLayer, Errors_CarryOverBetweenStripsFromTheTopDown) {
    StPicture const picture = Photo(30, 40);
    auto const source = LayerOf<StRGBA32Pixel>(picture);
    auto const whole = Dithered(30, 40), strips = Dithered(30, 40);
    whole->BlitRect(source.Get(), picture.Whole(), {0, 0});
    int const cuts[] = {0, 1, 4, 5, 16, 30};
    for (int i = 0; i + 1 < 6; ++i) {
        strips->BlitRect(source.Get(), {cuts[i], 0, cuts[i + 1], 40}, {cuts[i], 0});
    }
    EXPECT_EQ(Words(PictureOf(strips.Get())), Words(PictureOf(whole.Get())));
}

TEST(DitheredLayer, Errors_StayForTheSameTopAndGoForOneAbove) {
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(6, 1));
    auto const layer = Dithered(1, 1);
    auto const blit = [&](int top) {
        layer->BlitRect(source.Get(), {top, 0, top + 1, 1}, {0, 0});
        return Reds(layer.Get(), 0)[0];
    };
    EXPECT_EQ(blit(3), 0) << "6 without an error";
    EXPECT_EQ(blit(3), 8) << "and with half of 6";
    EXPECT_EQ(blit(5), 0) << "half of 1 is 0";
    EXPECT_EQ(blit(5), 8) << "half of 6";
    EXPECT_EQ(blit(3), 0) << "a top above the last one starts anew";
    EXPECT_EQ(blit(4), 8) << "one below goes on";
}

TEST(DitheredLayer, Errors_TheTopCountsAndNotTheLastRow) {
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(10, 1));
    auto const layer = Dithered(10, 1);
    layer->BlitRect(source.Get(), {2, 0, 9, 1}, {0, 0});
    // Seven rows of one column: 6, 9, 6, 9, 6, 9, 6: the last one is short by 6.
    layer->BlitRect(source.Get(), {3, 0, 4, 1}, {0, 0});
    EXPECT_EQ(Reds(layer.Get(), 0)[0], 8) << "row 3 lies above row 8, but below the top of the blit";
}

TEST(DitheredLayer, Errors_AnEmptyBlitSetsTheTop) {
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(10, 2));
    auto const layer = Dithered(2, 2);
    layer->BlitRect(source.Get(), {3, 0, 4, 1}, {0, 0});
    layer->BlitRect(source.Get(), {7, 0, 8, 1}, {2, 2});  // at the very end: nothing fits
    layer->BlitRect(source.Get(), {5, 0, 6, 1}, {0, 0});
    EXPECT_EQ(Reds(layer.Get(), 0)[0], 0) << "5 is above 7";
}

TEST(DitheredLayer, Errors_GoBySourceColumnAndEndAtTheWidth) {
    StPicture const picture = Photo(30, 40);
    auto const source = LayerOf<StRGBA32Pixel>(picture);
    for (int left : {0, 3, 8, 9, 10, 25}) {
        auto const layer = Dithered(30, 10);
        StRect const from{0, left, 30, left + 10};
        layer->BlitRect(source.Get(), from, {0, 0});
        StPicture expected = SolidPicture(30, 10, Rgba(0, 0, 0));
        ScPlainDither(10).Blit(picture, from, {0, 0}, PutFiveBits(expected));
        EXPECT_EQ(Words(PictureOf(layer.Get())), Words(expected)) << left;
    }
}

TEST(DitheredLayer, ClearDither_ForgetsTheColumnsTold) {
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(2, 4));
    struct {
        long left, right;
        std::vector<int> reds;
    } const rows[] = {
        // Row 0 leaves errors of 1, 6, 1, 6 from the left. Row 1 without clearing: (1 + 0) / 2, (6 + 6)
        // / 2...
        {4, 4, {0, 8, 8, 8}},
        {0, 4, {0, 8, 0, 8}},
        {0, 0, {0, 8, 0, 8}},
    };
    for (auto const& row : rows) {
        auto const layer = Dithered(1, 4);
        layer->BlitRect(source.Get(), {0, 0, 1, 4}, {0, 0});
        layer->ClearDither(row.left, row.right);
        layer->BlitRect(source.Get(), {1, 0, 2, 4}, {0, 0});
        EXPECT_EQ(Reds(layer.Get(), 0), row.reds) << row.left << " to " << row.right;
    }
}

TEST(DitheredLayer, ClearDither_LeavesTheOtherColumns) {
    // Each column dithered by itself: an error of 6 in each, which shows as 8 in the next blit.
    struct {
        long left, right;
        std::vector<int> reds;
    } const rows[] = {
        {0, 0, {0, 0, 0}},   {0, 3, {0, 0, 0}}, {1, 2, {8, 0, 8}},   {0, 1, {0, 8, 8}},
        {2, 3, {8, 8, 0}},   {1, 1, {8, 8, 8}}, {2, 1, {8, 8, 8}},   {-5, 1, {0, 8, 8}},
        {2, 100, {8, 8, 0}}, {7, 9, {8, 8, 8}}, {-9, -3, {8, 8, 8}},
    };
    StPicture const picture = Sixes(2, 3);
    auto const wide = LayerOf<StRGBA32Pixel>(picture);
    for (auto const& row : rows) {
        auto const layer = Dithered(2, 3);
        auto const column = [&](int x, int y) { layer->BlitRect(wide.Get(), {y, x, y + 1, x + 1}, {y, x}); };
        for (int x = 0; x < 3; ++x)
            column(x, 0);
        layer->ClearDither(row.left, row.right);
        for (int x = 0; x < 3; ++x)
            column(x, 1);
        EXPECT_EQ(Reds(layer.Get(), 1), row.reds) << row.left << " to " << row.right;
    }
}

TEST(DitheredLayer, Resize_ANewWidthClearsTheErrorsAndAHeightDoesNot) {
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(2, 1));
    struct {
        StPoint size;
        int red;
    } const rows[] = {{{5, 3}, 8}, {{1, 3}, 8}, {{2, 3}, 8}, {{2, 4}, 0}, {{2, 1}, 0}};
    for (auto const& row : rows) {
        auto const layer = Dithered(2, 3);
        layer->BlitRect(source.Get(), {0, 0, 1, 1}, {0, 0});
        layer->Resize(row.size, StImageInterpolationMethod::kBicubic);
        EXPECT_EQ(layer->GetSize(), row.size);
        layer->BlitRect(source.Get(), {1, 0, 2, 1}, {0, 0});
        EXPECT_EQ(Reds(layer.Get(), 0)[0], row.red) << row.size.vertical << " by " << row.size.horizontal;
    }
}

TEST(DitheredLayer, Resize_LargerWidthHasErrorsForAllColumns) {
    auto const layer = Dithered(2, 3);
    layer->Resize({30, 40}, StImageInterpolationMethod::kNone);
    StPicture const picture = Photo(30, 40);
    layer->BlitRect(LayerOf<StRGBA32Pixel>(picture).Get(), picture.Whole(), {0, 0});
    StPicture expected = SolidPicture(30, 40, Rgba(0, 0, 0));
    ScPlainDither(40).Blit(picture, picture.Whole(), {0, 0}, PutFiveBits(expected));
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(expected));
}

// The kinds of transfer.

TEST(DitheredLayer, Dithering_IsOnByDefault) {
    EXPECT_EQ(Dithered(1, 1)->GetDithering(), 0x42494449u);
}

TEST(DitheredLayer, Dithering_ZeroTruncatesPixelByPixel) {
    StPicture const picture = RandomPicture(20, 20, 4);
    auto const layer = Dithered(20, 20);
    layer->SetDithering(0);
    EXPECT_FALSE(layer->BlitRect(LayerOf<StRGBA32Pixel>(picture).Get(), picture.Whole(), {0, 0}));
    StPicture const expected = PictureFrom(20, 20, [&](int x, int y) {
        StRGBA32Pixel const color = picture.At(x, y);
        return Rgba(FiveBits(color.red), FiveBits(color.green), FiveBits(color.blue));
    });
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(expected));
    EXPECT_TRUE(layer->GetUpdated());
}

TEST(DitheredLayer, Dithering_UnknownCodeDoesNothing) {
    for (std::uint32_t code : {1u, 0x42494448u, 0xFFFFFFFFu}) {
        auto const layer = Dithered(2, 2);
        layer->SetDithering(code);
        EXPECT_FALSE(layer->BlitRect(LayerOf<StRGBA32Pixel>(Sixes(2, 2)).Get(), {0, 0, 2, 2}, {0, 0}));
        EXPECT_EQ(Words(PictureOf(layer.Get())), std::vector<std::uint32_t>(4, kBackdrop));
        EXPECT_FALSE(layer->GetUpdated());
    }
}

TEST(DitheredLayer, Blit_OntoItselfIsRaw) {
    auto const layer = Dithered(2, 3);
    layer->PutMatchedPixelAt(2, 1, StRGB15Pixel{1, 2, 3, 1});
    layer->SetDithering(0x12345678);
    EXPECT_FALSE(layer->BlitRect(layer.Get(), {1, 2, 2, 3}, {0, 0}));
    StRGB15Pixel const copied = layer->GetMatchedPixelAt(0, 0);
    EXPECT_EQ(copied.blue, 1);
    EXPECT_EQ(copied.green, 2);
    EXPECT_EQ(copied.red, 3);
    EXPECT_EQ(copied.flag, 1) << "the flag goes along";
    EXPECT_TRUE(layer->GetUpdated());
}

TEST(DitheredLayer, Blit_FromAnother15BitLayerIsDithered) {
    auto const source = Dithered(2, 1), layer = Dithered(2, 1);
    layer->BlitRect(LayerOf<StRGBA32Pixel>(Sixes(2, 1)).Get(), {0, 0, 1, 1}, {0, 0});
    Paint(source.Get(), SolidPicture(2, 1, Rgba(0, 0, 0)));
    layer->BlitRect(source.Get(), {1, 0, 2, 1}, {0, 0});
    EXPECT_EQ(Reds(layer.Get(), 0)[0], 0) << "half of the error of 6 is 3";
    Paint(source.Get(), SolidPicture(2, 1, Rgba(8, 8, 8)));
    for (int i = 0; i < 2; ++i)
        layer->BlitRect(source.Get(), {1, 0, 2, 1}, {0, 0});
    EXPECT_EQ(Reds(layer.Get(), 0)[0], 8);
}

// Clipping.

TEST(DitheredLayer, Blit_OutsideEitherFrameDoesNothing) {
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(3, 4));
    struct {
        StRect from;
        StPoint to;
    } const rows[] = {
        {{0, 0, 3, 4}, {3, 0}}, {{0, 0, 3, 4}, {0, 4}}, {{3, 0, 9, 4}, {0, 0}}, {{0, 4, 3, 9}, {0, 0}}};
    for (auto const& row : rows) {
        auto const layer = Dithered(2, 3);
        EXPECT_FALSE(layer->BlitRect(source.Get(), row.from, row.to));
        EXPECT_EQ(Words(PictureOf(layer.Get())), std::vector<std::uint32_t>(6, kBackdrop));
        EXPECT_FALSE(layer->GetUpdated());
    }
}

TEST(DitheredLayer, Blit_AtTheVeryEndSetsUpdatedAndCopiesNothing) {
    auto const layer = Dithered(2, 3);
    EXPECT_FALSE(layer->BlitRect(LayerOf<StRGBA32Pixel>(Sixes(3, 4)).Get(), {0, 0, 3, 4}, {2, 3}));
    EXPECT_EQ(Words(PictureOf(layer.Get())), std::vector<std::uint32_t>(6, kBackdrop));
    EXPECT_TRUE(layer->GetUpdated());
}

TEST(DitheredLayer, Blit_ClipsToBothFrames) {
    StPicture const picture = Photo(30, 40);
    auto const source = LayerOf<StRGBA32Pixel>(picture);
    constexpr std::int32_t kLeast = INT32_MIN, kMost = INT32_MAX;
    struct {
        StRect from;
        StPoint to;
        StRect part;  ///< what is left of it
        StPoint at;
    } const rows[] = {
        {{20, 30, 100, 100}, {0, 0}, {20, 30, 30, 40}, {0, 0}},
        {{0, 0, 30, 40}, {10, 15}, {0, 0, 10, 10}, {10, 15}},
        {{5, 6, kMost, kMost}, {12, 13}, {5, 6, 13, 18}, {12, 13}},
        // Negative positions are the caller's fault, and safe.
        {{-2, -3, 10, 10}, {1, 1}, {0, 0, 10, 10}, {3, 4}},
        {{0, 0, 10, 10}, {-4, -5}, {4, 5, 10, 10}, {0, 0}},
        {{kLeast, kLeast, kMost, kMost}, {kLeast, kLeast}, {0, 0, 20, 25}, {0, 0}},
        {{8, 8, 4, 4}, {0, 0}, {8, 8, 8, 8}, {0, 0}},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(testing::Message() << row.from.top << ' ' << row.from.left << " at " << row.to.vertical);
        auto const layer = Dithered(20, 25);
        EXPECT_FALSE(layer->BlitRect(source.Get(), row.from, row.to));
        StPicture expected = SolidPicture(20, 25, Rgba(41, 74, 106));
        ScPlainDither(25).Blit(picture, row.part, row.at, PutFiveBits(expected));
        EXPECT_EQ(Words(PictureOf(layer.Get())), Words(expected));
    }
}

TEST(DitheredLayer, Blit_EmptyFramesAreSafe) {
    auto const empty = Dithered(0, 0);
    EXPECT_FALSE(empty->BlitRect(LayerOf<StRGBA32Pixel>(Sixes(2, 2)).Get(), {0, 0, 2, 2}, {0, 0}));
    auto const layer = Dithered(2, 2);
    EXPECT_FALSE(layer->BlitRect(LayerOf<StRGBA32Pixel>(Sixes(0, 0)).Get(), {0, 0, 2, 2}, {0, 0}));
    EXPECT_FALSE(layer->GetUpdated());
}

// Life.

TEST(DitheredLayer, Factory_GivesADitheredLayer) {
    auto const frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({3, 4}, SrCode("RG15"), false, false));
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->GetClass(), SmDithered::Class());
    EXPECT_STREQ(frame->GetClassName(), "SmImagerDitheredLayer<class template>");
    EXPECT_TRUE(frame->IsMemberOf((SmImagerLayer<StRGB15Pixel, ScImagerNonSpool>::Class())));
}

TEST(DitheredLayer, Prototype_WithoutErrorsIsSafe) {
    auto* const prototype =
        static_cast<SmDithered*>(ScLayerRegistry::GetObjectByID(SmDithered::Class(), false));
    auto const copy = StRef<SmDithered>::Adopt(prototype->Clone());
    auto const bare = StRef<SmDithered>::Adopt(SmDithered::New());
    bare->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(2, 1));
    for (SmDithered* layer : {copy.Get(), bare.Get()}) {
        layer->BlitRect(source.Get(), {0, 0, 1, 1}, {0, 0});
        EXPECT_EQ(Reds(layer, 0)[0], 0);
        layer->BlitRect(source.Get(), {1, 0, 2, 1}, {0, 0});
        EXPECT_EQ(Reds(layer, 0)[0], 8);
    }
    auto const cleared = StRef<SmDithered>::Adopt(SmDithered::New());
    cleared->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    cleared->ClearDither(5, 9);
    cleared->BlitRect(source.Get(), {0, 0, 1, 1}, {0, 0});
    EXPECT_EQ(Reds(cleared.Get(), 0)[0], 0);
}

TEST(DitheredLayer, CloneAtNewSize_IsADitheredLayerAtTheOrigin) {
    auto const layer = StRef<SmDithered>::Adopt(SmDithered::New());
    layer->IImagerDitheredLayer({3, 4}, {2, 2}, false, nullptr, 0);
    auto const clone = StRef<SmImagerFrame>::Adopt(layer->CloneAtNewSize({5, 6}, false, false));
    EXPECT_EQ(clone->GetClass(), SmDithered::Class());
    EXPECT_EQ(clone->GetSize(), (StPoint{5, 6}));
    EXPECT_EQ(clone->GetTopLeft(), (StPoint{0, 0}));
    EXPECT_EQ(clone->ReferenceCount(), 1);
}

TEST(DitheredLayer, MirrorLayer_IsAPlainLayer) {
    auto const layer = Dithered(2, 3);
    auto const mirror = StRef<SmImagerFrame>::Adopt(layer->MirrorLayer());
    EXPECT_EQ(mirror->GetClass(), (SmImagerLayer<StRGB15Pixel, ScImagerNonSpool>::Class()));
    EXPECT_EQ(Words(PictureOf(mirror.Get())), Words(PictureOf(layer.Get())));
}

TEST(DitheredLayer, Clone_CopiesPixelsAndNoErrors) {
    auto const source = LayerOf<StRGBA32Pixel>(Sixes(9, 1));
    for (std::uint32_t dithering : {0x42494449u, 0u, 0x31323334u}) {
        auto const layer = Dithered(2, 3);
        layer->BlitRect(source.Get(), {7, 0, 8, 1}, {0, 0});
        layer->SetDithering(dithering);
        auto const clone = StRef<SmDithered>::Adopt(layer->Clone());
        EXPECT_EQ(Words(PictureOf(clone.Get())), Words(PictureOf(layer.Get())));
        EXPECT_EQ(clone->GetDithering(), dithering);
        clone->SetDithering(SrCode("BIDI"));
        clone->BlitRect(source.Get(), {3, 0, 4, 1}, {0, 0});
        EXPECT_EQ(Reds(clone.Get(), 0)[0], 0) << "no error came along";
    }
}

TEST(DitheredLayer, ImplementBecome_TakesTheStateAndKeepsTheCount) {
    auto const layer = Dithered(2, 3);
    auto const other = Dithered(4, 5);
    other->PutPixelAt(4, 3, Rgba(255, 0, 0));
    StRef<SmDithered> const second(layer.Get());
    layer->ImplementBecome(other.Get());
    EXPECT_EQ(layer->ReferenceCount(), 2);
    EXPECT_EQ(layer->GetSize(), (StPoint{4, 5}));
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(PictureOf(other.Get())));
    layer->BlitRect(LayerOf<StRGBA32Pixel>(Photo(4, 5)).Get(), {0, 0, 4, 5}, {0, 0});
}

TEST(DitheredLayer, RefusedMemoryThrowsAndLeavesNothing) {
    auto const whole = Dithered(8, 8);
    for (long allowed = 0; allowed < 20; ++allowed) {
        long initialised, cloned, resized;
        {
            auto const layer = StRef<SmDithered>::Adopt(SmDithered::New());
            ScRefuseAllocations const gate(allowed);
            initialised = ErrorOf([&] { layer->IImagerDitheredLayer({0, 0}, {8, 8}, false, nullptr, 0); });
        }
        {
            ScRefuseAllocations const gate(allowed);
            cloned = ErrorOf([&] { StRef<SmDithered>::Adopt(whole->Clone()); });
        }
        auto const layer = Dithered(2, 3);
        {
            ScRefuseAllocations const gate(allowed);
            resized = ErrorOf([&] { layer->Resize({4, 9}, StImageInterpolationMethod::kNone); });
        }
        // Whatever failed, the layer can be used.
        layer->BlitRect(LayerOf<StRGBA32Pixel>(Photo(4, 9)).Get(), {0, 0, 4, 9}, {0, 0});
        for (long error : {initialised, cloned, resized}) {
            EXPECT_TRUE(error == SkNoError() || error == SkMemoryFull()) << error;
        }
        EXPECT_TRUE(allowed > 0 || initialised == SkMemoryFull());
        EXPECT_TRUE(allowed < 19 || cloned == SkNoError());
    }
}

TEST(DitheredLayer, Blit_AllocatesNothingOnceThereAreErrors) {
    auto const layer = Dithered(30, 40);
    auto const source = LayerOf<StRGBA32Pixel>(Photo(30, 40));
    ScRefuseAllocations const gate(0);
    EXPECT_EQ(ErrorOf([&] { layer->BlitRect(source.Get(), {0, 0, 30, 40}, {0, 0}); }), SkNoError());
    EXPECT_EQ(ScRefuseAllocations::Seen(), 0);
}

TEST(DitheredLayer, OfIndicesWithoutAMapIsSafe) {
    using Indices = SmImagerDitheredLayer<StMapped4Pixel, ScImagerNonSpool>;
    auto const layer = StRef<Indices>::Adopt(Indices::New());
    layer->IImagerDitheredLayer({0, 0}, {3, 5}, false, nullptr, 0);
    EXPECT_FALSE(layer->BlitRect(LayerOf<StRGBA32Pixel>(Photo(3, 5)).Get(), {0, 0, 3, 5}, {0, 0}));
    for (int x = 0; x < 5; ++x)
        EXPECT_EQ(layer->GetMatchedPixelAt(x, 2).index, 0u);
}
