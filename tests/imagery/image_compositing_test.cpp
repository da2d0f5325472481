// Images into images.
#include <cmath>
#include <functional>
#include <random>

#include "framewright/thornmere/numbers.h"
#include "imagery/images.h"

namespace {

using namespace testing_images;

constexpr StRGBA32Pixel kClear{0, 0, 0, 0};

StRGBA32Pixel Opaque(int level) {
    auto const byte = static_cast<std::uint8_t>(level);
    return {byte, byte, byte, 255};
}

/// Pixels 1, 2, 3... in reading order.
StRef<Image> Counted(StPoint const& size) {
    auto image = NewImage();
    image->AddLayer(NewColor(size).Get());
    int level = 0;
    for (long y = 0; y < size.vertical; ++y)
        for (long x = 0; x < size.horizontal; ++x)
            image->PutRGBAAt(x, y, Opaque(++level));
    return image;
}

StRef<Image> Clear(StPoint const& size) {
    auto image = NewImage();
    image->AddLayer(NewColor(size).Get());
    return image;
}

/// The levels of a picture in rows, '.' for transparent.
std::string Picture(SmImagerImage& image) {
    std::string text;
    StPoint const size = image.GetColorLayer()->GetSize();
    for (long y = 0; y < size.vertical; ++y) {
        for (long x = 0; x < size.horizontal; ++x) {
            StRGBA32Pixel const pixel = image.GetRGBAAt(x, y);
            text += pixel.alpha ? static_cast<char>('0' + pixel.red) : '.';
        }
        text += ' ';
    }
    return text;
}

// --- places

TEST(ImageCompositing, FirstPixelsFallOnFirstAndLastOnLast) {
    auto const source = Counted({2, 3});
    auto const same = Clear({2, 3});
    source->CompositeInto(same.Get(), {0, 0, 2, 3});
    EXPECT_EQ(Picture(*same), "123 456 ");
    auto const twice = Clear({3, 5});  // steps 2 and 2: holes between
    source->CompositeInto(twice.Get(), {0, 0, 3, 5});
    EXPECT_EQ(Picture(*twice), "1.2.3 ..... 4.5.6 ");
    auto const moved = Clear({5, 6});
    source->CompositeInto(moved.Get(), {2, 1, 4, 4});
    EXPECT_EQ(Picture(*moved), "...... ...... .123.. .456.. ...... ");
}

TEST(ImageCompositing, PlacesAreTruncated) {
    auto const source = Counted({2, 3});
    auto const image = Clear({2, 4});  // step (4 - 1) / (3 - 1): 0, 1.5, 3
    source->CompositeInto(image.Get(), {0, 0, 2, 4});
    EXPECT_EQ(Picture(*image), "12.3 45.6 ");
    auto const small = Clear({2, 2});  // step 0.5: 0, 0.5, 1; what comes later lies above
    source->CompositeInto(small.Get(), {0, 0, 2, 2});
    EXPECT_EQ(Picture(*small), "23 56 ");
}

TEST(ImageCompositing, PlacesOutsideAreSkipped) {
    auto const source = Counted({3, 3});
    auto const image = Clear({2, 2});
    source->CompositeInto(image.Get(), {-1, -1, 2, 2});
    EXPECT_EQ(Picture(*image), "56 89 ");
    auto const other = Clear({2, 2});
    source->CompositeInto(other.Get(), {1, 1, 4, 4});
    EXPECT_EQ(Picture(*other), ".. .1 ");
    auto const far = Clear({2, 2});
    source->CompositeInto(far.Get(), {2, 2, 5, 5});
    source->CompositeInto(far.Get(), {-9, -9, -2, -2});
    source->CompositeInto(far.Get(), {INT32_MAX - 1, INT32_MAX - 1, INT32_MAX, INT32_MAX});
    EXPECT_EQ(Picture(*far), ".. .. ");
    source->CompositeInto(far.Get(), {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});  // its middle is in sight
    EXPECT_EQ(Picture(*far), "5. .. ");
}

// Truncation is toward zero: from -1 up, -0.5 is row 0.
TEST(ImageCompositing, APlaceJustAboveTheFrameFallsOnItsFirstRow) {
    auto const source = Counted({3, 2});
    auto const image = Clear({2, 2});
    source->CompositeInto(image.Get(), {-1, 0, 1, 2});  // step 0.5: -1, -0.5, 0
    EXPECT_EQ(Picture(*image), "56 .. ");
    auto const second = Clear({2, 2});
    source->SetLayer(0, Counted({2, 2})->GetColorLayer());
    source->CompositeInto(second.Get(), {-1, 0, 1, 2});  // step 1: -1, 0
    EXPECT_EQ(Picture(*second), "34 .. ");
}

// A rectangle of one row has the step 0, and one without rows counts backwards.
TEST(ImageCompositing, RectanglesOfOneRowAndOfNone) {
    auto const source = Counted({2, 2});
    auto const one = Clear({3, 3});
    source->CompositeInto(one.Get(), {1, 1, 2, 2});
    EXPECT_EQ(Picture(*one), "... .4. ... ");
    auto const none = Clear({3, 3});
    source->CompositeInto(none.Get(), {1, 1, 1, 1});  // step -1
    EXPECT_EQ(Picture(*none), "43. 21. ... ");
}

// One row has no step: 0 / 0 is no place.
TEST(ImageCompositing, ASourceOfOneRowOrColumnLeavesNothing) {
    for (StPoint const& size : {StPoint{1, 3}, StPoint{3, 1}, StPoint{1, 1}}) {
        for (StRect const& rect : {StRect{0, 0, 3, 3}, StRect{0, 0, 1, 1}, StRect{1, 1, 1, 1}}) {
            auto const image = Clear({3, 3});
            Counted(size)->CompositeInto(image.Get(), rect);
            EXPECT_EQ(Picture(*image), "... ... ... ");
        }
    }
}

TEST(ImageCompositing, ASizeThatIsNotThatOfTheLayersReadsAndWritesNothingOutside) {
    auto const source = Counted({2, 2});
    source->SetSize({3, 3});  // so the step is 1 again
    auto const image = Clear({2, 2});
    image->SetSize({50, 50});
    source->CompositeInto(image.Get(), {0, 0, 3, 3});
    EXPECT_EQ(Picture(*image), "12 34 ");
    source->CompositeInto(image.Get(), {0, 0, 50, 50});
    EXPECT_EQ(Picture(*image), "12 34 ");
    auto const small = Clear({2, 2});
    small->SetSize({1, 2});
    source->CompositeInto(small.Get(), {0, 0, 3, 3});
    EXPECT_EQ(Picture(*small), "12 .. ");
}

// --- what is merged

TEST(ImageCompositing, PixelsAreMergedOverThoseBelow) {
    auto const source = Clear({2, 2});
    auto const image = Clear({2, 2});
    StRGBA32Pixel const over{200, 10, 90, 128}, below{20, 200, 30, 180};
    source->PutRGBAAt(0, 0, over);
    source->PutRGBAAt(1, 0, kClear);
    source->PutRGBAAt(0, 1, Opaque(5));
    for (long i = 0; i < 4; ++i)
        image->PutRGBAAt(i % 2, i / 2, below);
    source->CompositeInto(image.Get(), {0, 0, 2, 2});
    StRGBA32Pixel merged = below;
    merged.Merge(over);
    EXPECT_EQ(image->GetRGBAAt(0, 0), merged);
    EXPECT_EQ(image->GetRGBAAt(1, 0), below);
    EXPECT_EQ(image->GetRGBAAt(0, 1), Opaque(5));
    EXPECT_EQ(image->GetRGBAAt(1, 1), below);
}

TEST(ImageCompositing, NothingHappensWithoutColorInBoth) {
    auto const image = Clear({2, 2});
    auto const depth = NewImage();
    depth->AddLayer(NewDepth({2, 2}).Get());
    depth->CompositeInto(image.Get(), {0, 0, 2, 2});
    Counted({2, 2})->CompositeInto(depth.Get(), {0, 0, 2, 2});
    NewImage()->CompositeInto(image.Get(), {0, 0, 2, 2});
    EXPECT_EQ(Picture(*image), ".. .. ");
    EXPECT_EQ(depth->GetDepthAt(0, 0), 0.0F);
}

TEST(ImageCompositing, WithDepthInOneAloneDepthIsNotLookedAt) {
    auto const source = Counted({2, 2});
    auto const image = NewDeepImage({2, 2});
    image->GetDepthLayer()->PutPixelAt(0, 0, StDepthFloatPixel{-5.0F});
    source->CompositeInto(image.Get(), {0, 0, 2, 2});
    EXPECT_EQ(Picture(*image), "12 34 ");
    EXPECT_EQ(image->GetDepthAt(0, 0), -5.0F);

    auto const deep = NewDeepImage({2, 2});
    deep->PutPixelAt(0, 0, {}, 0.0F, 9.0F);
    auto const flat = Clear({2, 2});
    deep->CompositeInto(flat.Get(), {0, 0, 2, 2});
    EXPECT_EQ(flat->GetRGBAAt(0, 0), Opaque(0));
}

TEST(ImageCompositing, WithDepthInBothTheNearerPixelCounts) {
    struct Row {
        float source, destination;
        StRGBA32Pixel over;
        bool merged;
        float depth;
    } const rows[] = {
        {1.0F, 2.0F, Opaque(7), true, 1.0F},
        {2.0F, 2.0F, Opaque(7), false, 2.0F},            // not nearer
        {3.0F, 2.0F, Opaque(7), false, 2.0F},            //
        {1.0F, 2.0F, {7, 7, 7, 0}, false, 2.0F},         // transparent: leaves no depth
        {1.0F, 2.0F, {7, 7, 7, 1}, true, 1.0F},          // hardly there, and still
        {-INFINITY, -1.0F, Opaque(7), true, -INFINITY},  //
        {NAN, 2.0F, Opaque(7), false, 2.0F},             // a comparison with it is false
    };
    for (Row const& row : rows) {
        auto const source = NewDeepImage({2, 2});
        auto const image = NewDeepImage({2, 2});
        source->PutRGBAAt(1, 1, row.over);
        source->GetDepthLayer()->PutPixelAt(1, 1, StDepthFloatPixel{row.source});
        image->PutRGBAAt(1, 1, Opaque(200));
        image->GetDepthLayer()->PutPixelAt(1, 1, StDepthFloatPixel{row.destination});
        source->CompositeInto(image.Get(), {0, 0, 2, 2});
        StRGBA32Pixel expected = Opaque(200);
        if (row.merged) expected.Merge(row.over);
        EXPECT_EQ(image->GetRGBAAt(1, 1), expected) << &row - rows;
        EXPECT_EQ(image->GetDepthAt(1, 1), row.depth) << &row - rows;
    }
}

// --- all roads

/// The rule, word by word, on any frames.
void CompositeSlowly(SmImagerImage& source, SmImagerImage& image, StRect const& rect) {
    StPoint const size = source.GetSize();
    bool const deep = source.GetDepthLayer() && image.GetDepthLayer();
    float const down = float(rect.bottom - rect.top - 1) / float(size.vertical - 1);
    float const across = float(rect.right - rect.left - 1) / float(size.horizontal - 1);
    for (long y = 0; y < size.vertical; ++y) {
        for (long x = 0; x < size.horizontal; ++x) {
            float const row = float(y) * down, column = float(x) * across;
            long const toY = SrITrunc(row + float(rect.top)), toX = SrITrunc(column + float(rect.left));
            if (!SrInsideFrame({std::int32_t(toY), std::int32_t(toX)}, image.GetSize())) continue;
            if (deep && !(source.GetDepthAt(x, y) < image.GetDepthAt(toX, toY))) continue;
            StRGBA32Pixel const over = source.GetRGBAAt(x, y);
            StRGBA32Pixel pixel = image.GetRGBAAt(toX, toY);
            pixel.Merge(over);
            image.PutRGBAAt(toX, toY, pixel);
            if (deep && over.alpha)
                image.GetDepthLayer()->PutPixelAt(toX, toY, StDepthFloatPixel{source.GetDepthAt(x, y)});
        }
    }
}

using MakeFrame = FrameRef (*)(StPoint const&);

StRef<Image> Noise(StPoint const& size, MakeFrame color, MakeFrame depth, unsigned seed) {
    std::mt19937 random(seed);
    auto image = NewImage();
    image->AddLayer(color(size).Get());
    if (depth) image->AddLayer(depth(size).Get());
    for (long y = 0; y < size.vertical; ++y) {
        for (long x = 0; x < size.horizontal; ++x) {
            auto const byte = [&] { return static_cast<std::uint8_t>(random()); };
            image->PutRGBAAt(x, y, {byte(), byte(), byte(), byte()});
            auto const away = static_cast<float>(random() % 100) / 100.0F;
            if (depth) image->GetDepthLayer()->PutPixelAt(x, y, StDepthFloatPixel{away});
        }
    }
    return image;
}

TEST(ImageCompositing, AllRecordsAndPlacesOfRowsGiveThePlainResult) {
    MakeFrame const colors[] = {&NewLayer<StRGBA32Pixel>, &NewLayer<StRGBA32Pixel, ScImagerSpool>,
                                &NewLayer<StRGB24Pixel>, &NewLayer<StRGBAFloatPixel>,
                                &NewLayer<StGray4Pixel>};
    MakeFrame const depths[] = {nullptr, &NewLayer<StDepthFloatPixel>,
                                &NewLayer<StDepthFloatPixel, ScImagerSpool>, &NewLayer<StDepthUInt16Pixel>};
    StRect const rects[] = {{0, 0, 9, 11}, {-4, 3, 17, 9}, {2, -3, 5, 30}};
    unsigned seed = 1;
    auto const check = [&](MakeFrame color, MakeFrame toColor, MakeFrame depth, StRect const& rect) {
        auto const source = Noise({9, 11}, color, depth, ++seed);
        auto const image = Noise({12, 10}, toColor, depth, ++seed);
        auto const expected = ImageRef::Adopt(image->SmImagerImage::Clone());
        source->CompositeInto(image.Get(), rect);
        CompositeSlowly(*source, *expected, rect);
        for (long i = 0; i < 120; ++i) {
            long const x = i % 10, y = i / 10;
            ASSERT_EQ(image->GetRGBAAt(x, y), expected->GetRGBAAt(x, y)) << seed;
            if (!depth) continue;
            ASSERT_EQ(image->GetDepthAt(x, y), expected->GetDepthAt(x, y)) << seed;
        }
    };
    for (MakeFrame color : colors) {
        for (MakeFrame toColor : colors) {
            for (MakeFrame depth : depths) {
                for (StRect const& rect : rects)
                    check(color, toColor, depth, rect);
            }
        }
    }
}

/// A layer of the usual class that shows something else.
class Veiled : public SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool> {
  public:
    Veiled() { IImagerLayer({0, 0}, {2, 2}, false, nullptr, 0, nullptr); }
    StRGBA32Pixel GetRGBAPixelAt(long, long) override { return Opaque(9); }
};

TEST(ImageCompositing, AClassOfAHostIsReadThroughItsOperations) {
    auto const source = NewImage();
    source->AddLayer(StRef<Veiled>::Adopt(new Veiled).Get());
    auto const image = Clear({2, 2});
    source->CompositeInto(image.Get(), {0, 0, 2, 2});
    EXPECT_EQ(Picture(*image), "99 99 ");
}

TEST(ImageCompositing, AnImageIntoItselfGoesPixelByPixel) {
    auto const image = Counted({2, 3});
    image->CompositeInto(image.Get(), {0, 1, 2, 4});  // each pixel takes what was just put to its left
    EXPECT_EQ(Picture(*image), "111 444 ");
}

// --- BlitFrom

constexpr long kOne = SrCode("One ");
constexpr long kTwo = SrCode("Two ");

FrameRef Mask(long purpose, int value, StPoint const& size = {2, 2}) {
    FrameRef mask = NewMask(size);
    mask->SetPurpose(purpose);
    mask->SetBackground({0, 0, 0, static_cast<std::uint8_t>(value)});
    mask->Erase();
    return mask;
}

int AlphaAt(SmImagerFrame& frame, long x, long y) {
    StAlpha8Pixel pixel{};
    frame.GetPixelAt(x, y, pixel);
    return pixel.alpha;
}

TEST(ImageCompositing, Blit_CopiesColorAndDepth) {
    auto const source = NewDeepImage({3, 3});
    for (long i = 0; i < 9; ++i) {
        source->PutRGBAAt(i % 3, i / 3, Opaque(static_cast<int>(i) + 1));
        source->GetDepthLayer()->PutPixelAt(i % 3, i / 3, StDepthFloatPixel{static_cast<float>(i) + 1});
    }
    auto const image = NewDeepImage({3, 3});
    image->BlitFrom(source.Get(), {1, 1, 3, 3}, {0, 1});
    EXPECT_EQ(Picture(*image), ".56 .89 ... ");
    EXPECT_EQ(image->GetDepthAt(1, 0), 5.0F);
    EXPECT_EQ(image->GetDepthAt(2, 1), 9.0F);
    EXPECT_EQ(image->GetDepthAt(0, 0), 0.0F);
}

TEST(ImageCompositing, Blit_PassesOverWhatOneOfThemLacks) {
    auto const flat = Counted({2, 2});
    auto const deep = NewDeepImage({2, 2});
    deep->GetDepthLayer()->PutPixelAt(0, 0, StDepthFloatPixel{3.0F});
    deep->BlitFrom(flat.Get(), {0, 0, 2, 2}, {0, 0});
    EXPECT_EQ(Picture(*deep), "12 34 ");
    EXPECT_EQ(deep->GetDepthAt(0, 0), 3.0F);
    flat->BlitFrom(NewImage().Get(), {0, 0, 2, 2}, {0, 0});
    EXPECT_EQ(Picture(*flat), "12 34 ");
    NewImage()->BlitFrom(flat.Get(), {0, 0, 2, 2}, {0, 0});
}

TEST(ImageCompositing, Blit_CopiesLayersOfOnePurposeAtOnePlace) {
    auto const source = NewImage();
    auto const image = NewImage();
    source->SetLayer(1, Mask(kOne, 11).Get());
    source->SetLayer(2, Mask(kTwo, 22).Get());
    source->SetLayer(4, Mask(kOne, 44).Get());
    FrameRef const one = Mask(kOne, 1), two = Mask(kTwo, 2), moved = Mask(kTwo, 3), late = Mask(kOne, 4);
    image->SetLayer(1, one.Get());
    image->SetLayer(2, two.Get());
    image->SetLayer(3, moved.Get());  // the source has an empty place there
    image->SetLayer(5, late.Get());   // and none here
    image->BlitFrom(source.Get(), {0, 0, 1, 1}, {1, 1});
    EXPECT_EQ(AlphaAt(*one, 1, 1), 11);
    EXPECT_EQ(AlphaAt(*one, 0, 0), 1);
    EXPECT_EQ(AlphaAt(*two, 1, 1), 22);
    EXPECT_EQ(AlphaAt(*moved, 1, 1), 3);
    EXPECT_EQ(AlphaAt(*late, 1, 1), 4);
}

// A layer of the same purpose elsewhere in the list is not looked for.
TEST(ImageCompositing, Blit_LooksAtOnePlaceAlone) {
    auto const source = NewImage();
    auto const image = NewImage();
    source->SetLayer(0, Mask(kTwo, 22).Get());
    source->SetLayer(1, Mask(kOne, 11).Get());
    FrameRef const one = Mask(kOne, 1);
    image->SetLayer(0, one.Get());
    image->BlitFrom(source.Get(), {0, 0, 2, 2}, {0, 0});
    EXPECT_EQ(AlphaAt(*one, 0, 0), 1);
}

TEST(ImageCompositing, Blit_NeedsAPurpose) {
    auto const source = NewImage();
    auto const image = NewImage();
    constexpr long kNone = 0x3F3F3F3F;
    source->SetLayer(0, Mask(kNone, 22).Get());
    FrameRef const none = Mask(kNone, 1);
    image->SetLayer(0, none.Get());
    image->BlitFrom(source.Get(), {0, 0, 2, 2}, {0, 0});
    EXPECT_EQ(AlphaAt(*none, 0, 0), 1);
}

TEST(ImageCompositing, Blit_TakesNeitherColorNorDepthForAnotherLayer) {
    auto const source = NewImage();
    auto const image = NewImage();
    auto const color = Counted({2, 2});
    color->GetColorLayer()->SetPurpose(kOne);
    source->SetLayer(0, color->GetColorLayer());
    FrameRef const depth = NewDepth({2, 2});
    depth->SetPurpose(kTwo);
    source->SetLayer(1, depth.Get());
    FrameRef const one = Mask(kOne, 1), two = Mask(kTwo, 2);
    image->SetLayer(0, one.Get());
    image->SetLayer(1, two.Get());
    image->BlitFrom(source.Get(), {0, 0, 2, 2}, {0, 0});
    EXPECT_EQ(AlphaAt(*one, 0, 0), 1);
    EXPECT_EQ(AlphaAt(*two, 0, 0), 2);
}

}  // namespace
