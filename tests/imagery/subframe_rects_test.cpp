// Windows: rectangles. Each operation has four cases: plain, lines spaced, columns spaced, both spaced.
#include <gmock/gmock.h>

#include "frame/kinds.h"
#include "framewright/imagery/subframe.h"
#include "recording_frame.h"

using namespace testing_frames;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_imagery::RecordingFrame;
using Window = StRef<SmImagerSubframe>;

namespace {

/// Six rows and nine columns.
constexpr StRect kRect{10, 20, 16, 29};
constexpr StRect kFrom{1, 2, 6, 11};
constexpr StPoint kTo{4, 6};

Window NewWindow(SmImagerFrame* parent, StRect const& rect, long columnSpacing, long lineSpacing) {
    auto window = Window::Adopt(SmImagerSubframe::New());
    window->IImagerSubframe(parent, rect, columnSpacing, lineSpacing);
    return window;
}

class SubframeRects : public testing::Test {
  protected:
    SmImagerSubframe& Spaced(long columns, long lines) {
        window = NewWindow(parent.Get(), kRect, columns, lines);
        parent->log.clear();
        return *window;
    }
    std::vector<std::string> Asked() { return parent->Taken(); }

    StRef<RecordingFrame> parent = RecordingFrame::Make();
    Window window;
    SmartRef const smart{new ScDerivedPixel<StRGBA32Pixel>};
};

// --- RectFill

TEST_F(SubframeRects, RectFill_Plain_IsTheParentsTranslated) {
    Spaced(1, 1).RectFill({1, 2, 3, 5}, smart.get());
    EXPECT_THAT(Asked(), ElementsAre("RectFill, 11 22 13 25, #0 0 0 0"));
}

TEST_F(SubframeRects, RectFill_LinesSpaced_FillsEveryRowOfTheWindow) {
    Spaced(1, 2).RectFill({1, 2, 3, 5}, smart.get());
    EXPECT_THAT(Asked(), ElementsAre("RectFill, 10 22 11 25, #0 0 0 0", "RectFill, 12 22 13 25, #0 0 0 0",
                                     "RectFill, 14 22 15 25, #0 0 0 0"));
}

TEST_F(SubframeRects, RectFill_ColumnsSpaced_FillsEveryColumnOfTheWindow) {
    Spaced(4, 1).RectFill({1, 2, 3, 5}, smart.get());
    EXPECT_THAT(Asked(), ElementsAre("RectFill, 11 20 13 21, #0 0 0 0", "RectFill, 11 24 13 25, #0 0 0 0",
                                     "RectFill, 11 28 13 29, #0 0 0 0"));
}

TEST_F(SubframeRects, RectFill_BothSpaced_PutsEveryPixelOfTheWindow) {
    Spaced(4, 3).RectFill({1, 2, 3, 5}, smart.get());
    EXPECT_THAT(Asked(), ElementsAre("PutPixelAt smart, 20, 10", "PutPixelAt smart, 24, 10",
                                     "PutPixelAt smart, 28, 10", "PutPixelAt smart, 20, 13",
                                     "PutPixelAt smart, 24, 13", "PutPixelAt smart, 28, 13"));
}

TEST_F(SubframeRects, PlainIsTestedBitByBit) {
    // 1 or-ed with 0 is 1. Places are translated by the spacings all the same.
    Spaced(0, 1).RectFill({1, 2, 3, 5}, smart.get());
    EXPECT_THAT(Asked(), ElementsAre("RectFill, 11 20 13 20, #0 0 0 0"));
    Spaced(1, 0).RectFill({1, 2, 3, 5}, smart.get());
    EXPECT_THAT(Asked(), ElementsAre("RectFill, 10 22 10 25, #0 0 0 0"));
}

TEST_F(SubframeRects, StepsThatLeadNowhereVisitNothing) {
    for (auto [columns, lines] : {std::pair{0L, 0L}, {0, 2}, {2, 0}, {-1, 1}, {1, -1}, {-3, -3}}) {
        SmImagerSubframe& spaced = Spaced(columns, lines);
        spaced.RectFill({0, 0, 6, 9}, smart.get());
        spaced.Invert();
        EXPECT_TRUE(spaced.BlitRect(nullptr, kFrom, kTo));
        EXPECT_TRUE(spaced.MergeRect(nullptr, kFrom, kTo));
        EXPECT_THAT(Asked(), IsEmpty()) << columns << ' ' << lines;
    }
}

TEST_F(SubframeRects, RectFill_BothSpaced_StaysInsideALayer) {
    FrameRef const layer = MakeLayer<StRGBA32Pixel>({4, 4}).Get();
    FillRandom(*layer, KindOfID(SrCode("ColB")), 1);
    Picture expected = Shot(*layer);
    smart->SetRGBA32({1, 2, 3, 4});
    NewWindow(layer.Get(), {-2, -2, 9, 9}, 3, 3)->RectFill({0, 0, 1, 1}, smart.get());
    expected(1, 1) = ToNative(StRGBA32Pixel{1, 2, 3, 4});  // -2 + 3
    EXPECT_TRUE(Same(expected, Shot(*layer)));
}

TEST_F(SubframeRects, BeyondALayer_NothingIsWalked) {
    FrameRef const layer = MakeLayer<StRGBA32Pixel>({4, 4}).Get();
    // -2147483647 and steps of 3 come by 2, steps of 1000 by 353.
    for (auto [spacing, first] : {std::pair{1L, 0L}, {2, 1}, {3, 2}, {1000, 353}}) {
        FillRandom(*layer, KindOfID(SrCode("ColB")), 1);
        Picture expected = Shot(*layer);
        for (long y = first; y < 4; y += spacing)
            for (long x = first; x < 4; x += spacing)
                for (std::size_t channel = 0; channel < 3; ++channel)
                    expected(x, y)[channel] = static_cast<std::uint8_t>(255 - expected(x, y)[channel]);
        StRect const vast{-0x7FFFFFFF, -0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF};
        NewWindow(layer.Get(), vast, spacing, spacing)->Invert();
        EXPECT_TRUE(Same(expected, Shot(*layer))) << spacing;
    }
}

// --- Erase, Flip, Invert

TEST_F(SubframeRects, Erase_FillsTheWindowWithTheParentsBackground) {
    Spaced(1, 1).Erase();
    EXPECT_THAT(Asked(),
                ElementsAre("NewSmartPixel", "GetBackground", "RectFill, 10 20 16 29, #50 60 70 80"));
}

TEST_F(SubframeRects, Erase_OfSpacedWindows) {
    Spaced(1, 4).Erase();
    EXPECT_THAT(Asked(), ElementsAre("NewSmartPixel", "GetBackground", "RectFill, 10 20 11 29, #50 60 70 80",
                                     "RectFill, 14 20 15 29, #50 60 70 80"));
    Spaced(8, 1).Erase();
    EXPECT_THAT(Asked(), ElementsAre("NewSmartPixel", "GetBackground", "RectFill, 10 20 16 21, #50 60 70 80",
                                     "RectFill, 10 28 16 29, #50 60 70 80"));
    Spaced(8, 4).Erase();
    EXPECT_THAT(Asked(), ElementsAre("NewSmartPixel", "GetBackground", "PutPixelAt smart, 20, 10",
                                     "PutPixelAt smart, 28, 10", "PutPixelAt smart, 20, 14",
                                     "PutPixelAt smart, 28, 14"));
}

TEST_F(SubframeRects, Invert_ComplementsColoursAsRGBA32_KeepingAlpha) {
    Spaced(8, 5).Invert();
    EXPECT_THAT(Asked(),
                ElementsAre("GetPixelAt RGBA32, 20, 10", "PutPixelAt RGBA32, 20, 10, #245 235 225 40",
                            "GetPixelAt RGBA32, 28, 10", "PutPixelAt RGBA32, 28, 10, #245 235 225 40",
                            "GetPixelAt RGBA32, 20, 15", "PutPixelAt RGBA32, 20, 15, #245 235 225 40",
                            "GetPixelAt RGBA32, 28, 15", "PutPixelAt RGBA32, 28, 15, #245 235 225 40"));
}

TEST_F(SubframeRects, Flip_InvertsWhateverItsArguments) {
    for (auto [columns, lines] : {std::pair{1L, 1L}, {1, 2}, {2, 1}, {2, 2}})
        for (auto [horizontal, vertical] :
             {std::pair{true, false}, {false, true}, {true, true}, {false, false}}) {
            FrameRef const flipped = MakeLayer<StRGBA32Pixel>({7, 8}).Get();
            FillRandom(*flipped, KindOfID(SrCode("ColB")), 1);
            Picture expected = Shot(*flipped);
            for (long y = 1; y < 6; y += lines)
                for (long x = 2; x < 7; x += columns)
                    for (std::size_t channel = 0; channel < 3; ++channel)
                        expected(x, y)[channel] = static_cast<std::uint8_t>(255 - expected(x, y)[channel]);
            NewWindow(flipped.Get(), {1, 2, 6, 7}, columns, lines)->Flip(horizontal, vertical);
            EXPECT_TRUE(Same(expected, Shot(*flipped)));
        }
}

// --- BlitRect

TEST_F(SubframeRects, Blit_Plain) {
    EXPECT_TRUE(Spaced(1, 1).BlitRect(nullptr, kFrom, kTo));
    EXPECT_THAT(Asked(), ElementsAre("BlitRect, 1 2 6 11, 14 26"));
    parent->answers = {false};
    EXPECT_FALSE(Spaced(1, 1).BlitRect(nullptr, kFrom, kTo));
}

TEST_F(SubframeRects, Blit_LinesSpaced_TakesSourceRowsFromTheDestinationOn) {
    EXPECT_TRUE(Spaced(1, 2).BlitRect(nullptr, kFrom, kTo));
    EXPECT_THAT(Asked(), ElementsAre("BlitRect, 4 2 5 11, 18 26", "BlitRect, 6 2 7 11, 22 26",
                                     "BlitRect, 8 2 9 11, 26 26"));
}

TEST_F(SubframeRects, Blit_ColumnsSpaced_TakesSourceColumnsOfTheWindow) {
    EXPECT_TRUE(Spaced(4, 1).BlitRect(nullptr, kFrom, kTo));
    EXPECT_THAT(Asked(), ElementsAre("BlitRect, 1 20 6 21, 14 100", "BlitRect, 1 24 6 25, 14 116",
                                     "BlitRect, 1 28 6 29, 14 132"));
}

TEST_F(SubframeRects, Blit_BothSpaced_GoesByPixel) {
    EXPECT_TRUE(Spaced(4, 3).BlitRect(nullptr, kFrom, kTo));
    EXPECT_THAT(Asked(), ElementsAre("BlitRect, 4 6 5 7, 22 44", "BlitRect, 4 10 5 11, 22 60",
                                     "BlitRect, 4 14 5 15, 22 76", "BlitRect, 7 6 8 7, 31 44",
                                     "BlitRect, 7 10 8 11, 31 60", "BlitRect, 7 14 8 15, 31 76"));
}

TEST_F(SubframeRects, Blit_StopsAtTheFirstFalse) {
    for (auto [columns, lines] : {std::pair{1L, 2L}, {4, 1}, {4, 3}}) {
        parent->answers = {true, false, true};
        EXPECT_FALSE(Spaced(columns, lines).BlitRect(nullptr, kFrom, kTo));
        EXPECT_EQ(Asked().size(), 2U) << columns << ' ' << lines;
    }
}

TEST_F(SubframeRects, Blit_IntoLayers_CopiesOneRowOrColumnOrPixel) {
    // A layer's blit gives false, and at false the loops end.
    struct Row {
        long columns, lines;
        StRect copied;
    };
    for (Row const& row : {Row{1, 2, {2, 3, 3, 8}}, Row{2, 1, {2, 9, 6, 10}}, Row{2, 2, {2, 3, 3, 4}}}) {
        FrameRef const layer = MakeLayer<StRGBA32Pixel>({20, 20}).Get();
        FrameRef const source = MakeLayer<StRGBA32Pixel>({20, 20}).Get();
        FillRandom(*layer, KindOfID(SrCode("ColB")), 1);
        FillRandom(*source, KindOfID(SrCode("ColB")), 2);
        Picture expected = Shot(*layer);
        Picture const picture = Shot(*source);
        EXPECT_FALSE(NewWindow(layer.Get(), {2, 3, 12, 13}, row.columns, row.lines)
                         ->BlitRect(source.Get(), {0, 0, 4, 5}, {0, 0}));
        long const fromLeft = row.columns == 2 && row.lines == 1 ? 3 : 0;
        for (long y = row.copied.top; y < row.copied.bottom; ++y)
            for (long x = row.copied.left; x < row.copied.right; ++x)
                expected(x, y) = picture(fromLeft + x - row.copied.left, y - row.copied.top);
        EXPECT_TRUE(Same(expected, Shot(*layer))) << row.columns << ' ' << row.lines;
    }
}

TEST_F(SubframeRects, Blit_Plain_CopiesTheRectangle) {
    FrameRef const layer = MakeLayer<StRGBA32Pixel>({20, 20}).Get();
    FrameRef const source = MakeLayer<StRGBA32Pixel>({20, 20}).Get();
    FillRandom(*layer, KindOfID(SrCode("ColB")), 1);
    FillRandom(*source, KindOfID(SrCode("ColB")), 2);
    Picture expected = Shot(*layer);
    Picture const picture = Shot(*source);
    EXPECT_FALSE(NewWindow(layer.Get(), {2, 3, 12, 13}, 1, 1)->BlitRect(source.Get(), {1, 2, 4, 5}, {5, 6}));
    for (long y = 0; y < 3; ++y)
        for (long x = 0; x < 3; ++x)
            expected(3 + 6 + x, 2 + 5 + y) = picture(2 + x, 1 + y);
    EXPECT_TRUE(Same(expected, Shot(*layer)));
}

// --- MergeRect

TEST_F(SubframeRects, Merge_Plain) {
    EXPECT_TRUE(Spaced(1, 1).MergeRect(nullptr, kFrom, kTo));
    EXPECT_THAT(Asked(), ElementsAre("MergeRect, 1 2 6 11, 14 26"));
}

TEST_F(SubframeRects, Merge_LinesSpaced_TakesTheRowsOfTheRectangle) {
    EXPECT_TRUE(Spaced(1, 2).MergeRect(nullptr, kFrom, kTo));
    EXPECT_THAT(Asked(), ElementsAre("MergeRect, 1 2 2 11, 18 26", "MergeRect, 3 2 4 11, 22 26",
                                     "MergeRect, 5 2 6 11, 26 26"));
}

TEST_F(SubframeRects, Merge_ColumnsSpaced_TakesTheColumnsOfTheWindow) {
    EXPECT_TRUE(Spaced(4, 1).MergeRect(nullptr, kFrom, kTo));
    EXPECT_THAT(Asked(), ElementsAre("MergeRect, 1 20 6 21, 14 116", "MergeRect, 1 24 6 25, 14 132",
                                     "MergeRect, 1 28 6 29, 14 148"));
}

TEST_F(SubframeRects, Merge_BothSpaced_TakesThePixelsOfTheWindow) {
    EXPECT_TRUE(Spaced(4, 3).MergeRect(nullptr, kFrom, kTo));
    EXPECT_THAT(Asked(), ElementsAre("MergeRect, 10 20 11 21, 49 116", "MergeRect, 10 24 11 25, 49 132",
                                     "MergeRect, 10 28 11 29, 49 148", "MergeRect, 13 20 14 21, 58 116",
                                     "MergeRect, 13 24 14 25, 58 132", "MergeRect, 13 28 14 29, 58 148"));
}

TEST_F(SubframeRects, Merge_NeverStopsEarly) {
    for (auto [columns, lines, calls] : {std::tuple{1L, 2L, 3U}, {4L, 1L, 3U}, {4L, 3L, 6U}}) {
        parent->answers = {false, true};
        EXPECT_FALSE(Spaced(columns, lines).MergeRect(nullptr, kFrom, kTo));
        EXPECT_EQ(Asked().size(), calls) << columns << ' ' << lines;
    }
}

TEST_F(SubframeRects, Merge_OfSpacedWindows_StaysInsideBothLayers) {
    // A merge of layers clips nothing, and these rows and columns lie partly in neither.
    for (auto [columns, lines] : {std::pair{1L, 2L}, {2, 1}, {2, 2}}) {
        FrameRef const layer = MakeLayer<StRGBA32Pixel>({9, 8}).Get();
        FrameRef const source = MakeLayer<StRGBA32Pixel>({7, 5}).Get();
        FillRandom(*layer, KindOfID(SrCode("ColB")), 1);
        FillRandom(*source, KindOfID(SrCode("ColB")), 2);
        Picture expected = Shot(*layer);
        StRect const window{1, 2, 9, 8}, from{2, 1, 9, 6};
        auto const merge = [&](long sourceX, long sourceY, long x, long y) {
            if (sourceX < 0 || sourceY < 0 || sourceX >= 5 || sourceY >= 7) return;
            if (x < 0 || y < 0 || x >= 8 || y >= 9) return;
            auto color = FromNative<StRGBA32Pixel>(expected(x, y));
            color.Merge(source->GetRGBAPixelAt(sourceX, sourceY));
            expected(x, y) = ToNative(color);
        };
        for (long r = lines == 2 && columns == 2 ? window.top : from.top; r < 9; r += lines)
            for (long c = columns == 2 ? window.left : from.left;
                 c < (columns == 2 ? window.right : from.right); c += columns)
                merge(c, r, (1 + c - 1) * columns + 2, (0 + r - 2) * lines + 1);
        EXPECT_FALSE(NewWindow(layer.Get(), window, columns, lines)->MergeRect(source.Get(), from, {0, 1}));
        EXPECT_TRUE(Same(expected, Shot(*layer))) << columns << ' ' << lines;
    }
}

TEST_F(SubframeRects, Merge_OfSpacedWindows_StaysInside_ThroughOtherWindowsToo) {
    for (auto [columns, lines] : {std::pair{1L, 2L}, {2, 1}, {2, 2}}) {
        FrameRef const source = MakeLayer<StRGBA32Pixel>({7, 5}).Get();
        FrameRef const layers[] = {MakeLayer<StRGBA32Pixel>({9, 8}).Get(),
                                   MakeLayer<StRGBA32Pixel>({9, 8}).Get()};
        FillRandom(*source, KindOfID(SrCode("ColB")), 2);
        for (FrameRef const& layer : layers)
            FillRandom(*layer, KindOfID(SrCode("ColB")), 1);
        Window const whole = NewWindow(layers[1].Get(), {0, 0, 9, 8}, 1, 1);
        Window const wholeSource = NewWindow(source.Get(), {0, 0, 7, 5}, 1, 1);
        StRect const window{1, 2, 7, 8}, from{2, 1, 7, 6};
        NewWindow(layers[0].Get(), window, columns, lines)->MergeRect(source.Get(), from, {0, 1});
        NewWindow(whole.Get(), window, columns, lines)->MergeRect(wholeSource.Get(), from, {0, 1});
        EXPECT_TRUE(Same(Shot(*layers[0]), Shot(*layers[1]))) << columns << ' ' << lines;
    }
}

TEST_F(SubframeRects, Merge_OfNothing_AnswersAsTheParentDoes) {
    for (auto [columns, lines] : {std::pair{1L, 2L}, {2, 1}, {2, 2}}) {
        FrameRef const layer = MakeLayer<StRGBA32Pixel>({9, 8}).Get();
        FrameRef const source = MakeLayer<StRGBA32Pixel>({7, 5}).Get();
        FillRandom(*layer, KindOfID(SrCode("ColB")), 1);
        Picture const before = Shot(*layer);
        Window const spaced = NewWindow(layer.Get(), {0, 0, 4, 4}, columns, lines);
        // Without columns, and wholly beside the window's parent.
        layer->SetUpdated(false);
        EXPECT_FALSE(spaced->MergeRect(source.Get(), {0, 2, 3, 2}, {100, 100})) << columns << ' ' << lines;
        EXPECT_TRUE(layer->GetUpdated());
        EXPECT_TRUE(Same(before, Shot(*layer)));
    }
}

// --- scaling

TEST_F(SubframeRects, Stretch_OfOneSize_IsABlit) {
    for (auto stretch : {&SmImagerFrame::StretchBlit, &SmImagerFrame::StretchBlitFast}) {
        (Spaced(1, 1).*stretch)(nullptr, {1, 2, 3, 5}, {4, 6, 6, 9});
        EXPECT_THAT(Asked(), ElementsAre("BlitRect, 1 2 3 5, 14 26"));
        (Spaced(1, 3).*stretch)(nullptr, {1, 2, 3, 5}, {4, 6, 6, 9});
        EXPECT_THAT(Asked(), ElementsAre("BlitRect, 4 2 5 5, 22 26"));
        (Spaced(8, 1).*stretch)(nullptr, {1, 2, 3, 5}, {4, 6, 6, 9});
        EXPECT_THAT(Asked(), ElementsAre("BlitRect, 1 20 3 21, 14 180", "BlitRect, 1 28 3 29, 14 244"));
        (Spaced(4, 3).*stretch)(nullptr, {1, 2, 3, 5}, {4, 6, 6, 9});
        EXPECT_THAT(Asked(), ElementsAre("BlitRect, 4 6 5 7, 22 44"));
    }
}

TEST_F(SubframeRects, Stretch_Plain_IsTheParentsTranslated) {
    StRect const from{1, 2, 3, 5}, to{4, 6, 7, 9};
    EXPECT_TRUE(Spaced(1, 1).StretchBlit(nullptr, from, to));
    EXPECT_THAT(Asked(), ElementsAre("StretchBlit, 1 2 3 5, 14 26 17 29"));
    EXPECT_TRUE(Spaced(1, 1).StretchBlitFast(nullptr, from, to));
    EXPECT_THAT(Asked(), ElementsAre("StretchBlitFast, 1 2 3 5, 14 26 17 29"));
    EXPECT_TRUE(Spaced(1, 1).StretchBlitMasked(nullptr, nullptr, from, to));
    EXPECT_THAT(Asked(), ElementsAre("StretchBlitMasked, 1 2 3 5, 14 26 17 29"));
    Spaced(1, 1).StretchBlitMasked(nullptr, nullptr, from, {4, 6, 6, 9});
    EXPECT_THAT(Asked(), ElementsAre("StretchBlitMasked, 1 2 3 5, 14 26 16 29")) << "of one size, too";
}

/// A scaled copy as it is told, on layers of 32-bit colours.
struct StScaledCopy {
    StRect window;
    long columns, lines;
    StRect from, to;

    void Expect(Picture& parent, Picture const& source, Picture const* mask) const {
        long const l = to.left * columns + window.left, r = to.right * columns + window.left;
        long const t = to.top * lines + window.top, b = to.bottom * lines + window.top;
        auto const lessOne = [](long length) { return length > 1 ? length - 1 : length; };
        long const sw = lessOne(from.right - from.left), sh = lessOne(from.bottom - from.top);
        long const dw = lessOne(r - l - 1), dh = lessOne(b - t - 1);
        if (dw == 0 || dh == 0) return;
        auto const lies = [](Picture const& in, long x, long y) {
            return x >= 0 && y >= 0 && x < in.size.horizontal && y < in.size.vertical;
        };
        for (long row = t; row < b; row += lines)
            for (long column = l; column < r; column += columns) {
                long const sx = (column - l) * sw / dw + from.top, sy = (row - t) * sh / dh + from.left;
                long const px = column * columns + window.left, py = row * lines + window.top;
                if (mask) {
                    long const mx = (to.right - to.left - 1) * (column - l) / dw;
                    long const my = (to.bottom - to.top - 1) * (row - t) / dh;
                    if (!lies(*mask, mx, my) || (*mask)(mx, my)[0] == 0) continue;
                }
                if (lies(source, sx, sy) && lies(parent, px, py)) parent(px, py) = source(sx, sy);
            }
    }
};

constexpr StScaledCopy kScaledCopies[] = {
    // At the origin, where the second translation is by the spacings alone.
    {{0, 0, 40, 60}, 2, 1, {0, 0, 4, 5}, {0, 0, 2, 3}},
    {{0, 0, 40, 60}, 1, 2, {0, 0, 4, 5}, {0, 0, 3, 7}},
    {{0, 0, 40, 60}, 2, 3, {1, 2, 6, 7}, {1, 1, 3, 5}},
    {{1, 2, 40, 60}, 2, 2, {0, 3, 5, 8}, {0, 1, 4, 6}},
    // Reduced.
    {{1, 0, 40, 60}, 1, 2, {0, 0, 9, 9}, {2, 2, 5, 5}},
    // Far out: twice translated places leave the parent, swapped sides leave the source.
    {{9, 9, 40, 60}, 3, 3, {0, 0, 12, 12}, {0, 0, 9, 9}},
    {{0, 0, 40, 60}, 2, 2, {3, 9, 9, 12}, {0, 0, 6, 6}},
    {{0, 0, 40, 60}, 2, 2, {9, 3, 12, 9}, {0, 0, 6, 6}},
    {{-3, -5, 40, 60}, 2, 2, {0, 0, 5, 5}, {0, 0, 6, 6}},
    // A source of one pixel, and of none.
    {{0, 0, 40, 60}, 2, 2, {2, 3, 3, 4}, {0, 0, 6, 6}},
    {{0, 0, 40, 60}, 2, 2, {3, 3, 3, 3}, {0, 0, 6, 6}},
    // One pixel wide and high, but not after translation.
    {{0, 0, 40, 60}, 2, 2, {0, 0, 3, 3}, {1, 1, 2, 2}},
    {{0, 0, 40, 60}, 3, 3, {0, 0, 3, 3}, {1, 1, 2, 2}},
    // One pixel wide, one high after translation: there are no steps to scale by.
    {{0, 0, 40, 60}, 1, 2, {0, 0, 3, 3}, {1, 1, 9, 2}},
    {{0, 0, 40, 60}, 2, 1, {0, 0, 3, 3}, {1, 1, 2, 9}},
    // Empty.
    {{0, 0, 40, 60}, 2, 2, {0, 0, 3, 3}, {5, 5, 5, 5}},
    {{0, 0, 40, 60}, 2, 2, {0, 0, 3, 3}, {9, 9, 2, 2}},
};

class ScaledCopies : public testing::TestWithParam<StScaledCopy> {
  protected:
    ScaledCopies() {
        FillRandom(*parent, KindOfID(SrCode("ColB")), 1);
        FillRandom(*source, KindOfID(SrCode("ColB")), 2);
        before = Shot(*parent);
        expected = before;
    }
    StScaledCopy const& Copy() const { return GetParam(); }

    FrameRef parent = MakeLayer<StRGBA32Pixel>({40, 60}).Get();
    FrameRef source = MakeLayer<StRGBA32Pixel>({12, 12}).Get();
    Window window = NewWindow(parent.Get(), Copy().window, Copy().columns, Copy().lines);
    Picture before, expected;
};

TEST_P(ScaledCopies, NearestByTheRule) {
    Copy().Expect(expected, Shot(*source), nullptr);
    EXPECT_TRUE(window->StretchBlit(source.Get(), Copy().from, Copy().to));
    EXPECT_TRUE(Same(expected, Shot(*parent)));
}

TEST_P(ScaledCopies, FastIsTheSame) {
    Copy().Expect(expected, Shot(*source), nullptr);
    EXPECT_TRUE(window->StretchBlitFast(source.Get(), Copy().from, Copy().to));
    EXPECT_TRUE(Same(expected, Shot(*parent)));
}

TEST_P(ScaledCopies, MaskedWhereTheMaskIsNot0) {
    FrameRef const mask = MakeLayer<StAlpha8Pixel>({5, 6}).Get();
    for (long y = 0; y < 5; ++y)
        for (long x = 0; x < 6; ++x) {
            Native const opacity{static_cast<std::uint8_t>((x + y) % 3)};
            Put(*mask, x, y, opacity);
        }
    Picture const opacities = Shot(*mask);
    Copy().Expect(expected, Shot(*source), &opacities);
    EXPECT_FALSE(window->StretchBlitMasked(source.Get(), mask.Get(), Copy().from, Copy().to));
    EXPECT_TRUE(Same(expected, Shot(*parent)));
}

INSTANTIATE_TEST_SUITE_P(Subframe, ScaledCopies, testing::ValuesIn(kScaledCopies));

TEST(SubframeStretch, WorkedExample) {
    // Destination columns 0 to 6 of the parent in steps of 2; 6 - 0 - 1 is 5, less 1 is 4 steps for the 4 of
    // the source. Rows 0 to 2: one step for the 3 of the source. Then each place is translated again.
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({10, 20}).Get();
    FrameRef const source = MakeLayer<StRGBA32Pixel>({12, 12}).Get();
    FillRandom(*parent, KindOfID(SrCode("ColB")), 1);
    FillRandom(*source, KindOfID(SrCode("ColB")), 2);
    Picture expected = Shot(*parent);
    Picture const picture = Shot(*source);
    NewWindow(parent.Get(), {0, 0, 10, 20}, 2, 1)->StretchBlit(source.Get(), {1, 2, 5, 7}, {0, 0, 2, 3});
    expected(0, 0) = picture(1, 2);
    expected(4, 0) = picture(3, 2);
    expected(8, 0) = picture(5, 2);
    expected(0, 1) = picture(1, 5);
    expected(4, 1) = picture(3, 5);
    expected(8, 1) = picture(5, 5);
    EXPECT_TRUE(Same(expected, Shot(*parent)));
}

TEST(SubframeStretch, BetweenTwoTypes_Converts) {
    FrameRef const parent = MakeLayer<StRGBAFloatPixel>({6, 6}).Get();
    FrameRef const source = MakeLayer<StGray8Pixel>({3, 3}).Get();
    FillRandom(*parent, KindOfID(SrCode("RGFL")), 1);
    source->PutPixelAt(0, 0, StRGBA32Pixel{255, 255, 255, 255});
    NewWindow(parent.Get(), {0, 0, 6, 6}, 2, 2)->StretchBlit(source.Get(), {0, 0, 3, 3}, {0, 0, 2, 2});
    EXPECT_EQ(parent->GetRGBAPixelAt(0, 0), (StRGBA32Pixel{255, 255, 255, 255}));
}

}  // namespace
