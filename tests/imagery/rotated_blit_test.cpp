#include "framewright/imagery/rotated_blit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "frame/kinds.h"

using namespace testing_frames;

namespace {

using Layer = StRef<PlainLayer<StRGBA32Pixel>>;
constexpr float kQuarter = std::numbers::pi_v<float> / 2;

class Blit : public ScRotatedBlit {
  public:
    using ScRotatedBlit::CalculateRotationMatrix;
    using ScRotatedBlit::ExtendLimits;
    StFloatPoint Forward(float x, float y) {
        ForwardRotate(x, y);
        return {.vertical = y, .horizontal = x};
    }
    StFloatPoint Reverse(float x, float y) {
        ReverseRotate(x, y);
        return {.vertical = y, .horizontal = x};
    }
};

Layer RandomLayer(StPoint const& size, unsigned seed) {
    Layer layer = MakeLayer<StRGBA32Pixel>(size);
    FillRandom(*layer, KindOfID(SrCode("ColB")), seed);
    return layer;
}

#define EXPECT_PLACE(place, x, y)             \
    do {                                      \
        StFloatPoint const at = place;        \
        EXPECT_NEAR(at.horizontal, x, 2e-5F); \
        EXPECT_NEAR(at.vertical, y, 2e-5F);   \
    } while (false)

// --- set-up

TEST(RotatedBlit, StartsWithAnEighthTurnAbout160And100) {
    Blit blit;
    EXPECT_PLACE(blit.Forward(160, 100), 160, 100);
    // The stored angle a is an eighth turn: x = u cos(-a) + v sin(-a), y = -u sin(-a) + v cos(-a).
    float const half = std::sqrt(0.5F);
    EXPECT_PLACE(blit.Forward(161, 100), 160 + half, 100 + half);
    EXPECT_PLACE(blit.Forward(160, 101), 160 - half, 100 + half);
    EXPECT_PLACE(blit.Reverse(160 + half, 100 + half), 161, 100);
    EXPECT_PLACE(blit.Reverse(160 - half, 100 + half), 160, 101);
}

TEST(RotatedBlit, DefaultRectHasBottom320AndRight200) {
    Layer const source = RandomLayer({330, 330}, 1), canvas = RandomLayer({330, 330}, 2);
    Picture expected = Shot(*canvas);
    Picture const picture = Shot(*source);
    ScRotatedBlit blit;
    blit.DoIt(source.Get(), canvas.Get(), 0.0F);
    for (long y = 0; y < 320; ++y)
        for (long x = 0; x < 200; ++x)
            expected(x, y) = picture(x, y);
    EXPECT_TRUE(Same(expected, Shot(*canvas)));
}

TEST(RotatedBlit, ScaleCountsAtTheNextRun) {
    Layer const source = RandomLayer({4, 4}, 1), canvas = RandomLayer({4, 4}, 2);
    Blit blit;
    blit.SetSource({0, 0, 4, 4}, 0, 0);
    blit.SetTarget(0, 0);
    blit.DoIt(source.Get(), canvas.Get(), 0.0F);
    blit.SetScale(2.0F);
    EXPECT_PLACE(blit.Reverse(3, 2), 3, 2);
    blit.DoIt(source.Get(), canvas.Get(), 0.0F);
    EXPECT_PLACE(blit.Reverse(3, 2), 1.5F, 1);
    blit.SetScale(2.0F, 4.0F);
    blit.CalculateRotationMatrix();
    EXPECT_PLACE(blit.Reverse(3, 2), 1.5F, 0.5F);
    EXPECT_PLACE(blit.Forward(1.5F, 0.5F), 3, 2);
}

TEST(RotatedBlit, ForwardAndReverseUndoEachOther_AlsoWithTwoScales) {
    Layer const frame = RandomLayer({1, 1}, 1);
    for (float const angle : {0.0F, 0.3F, -1.2F, 2.5F, 3.1F}) {
        Blit blit;
        blit.SetSource({0, 0, 1, 1}, 3, 4);
        blit.SetTarget(-2, 5);
        blit.SetScale(1.5F, 0.75F);
        blit.DoIt(frame.Get(), frame.Get(), angle);
        // Counterclockwise: from the centre to the right goes up, which is toward lower rows.
        EXPECT_PLACE(blit.Forward(4, 4), -2 + 1.5F * std::cos(angle), 5 - 1.5F * std::sin(angle));
        EXPECT_PLACE(blit.Forward(3, 5), -2 + 0.75F * std::sin(angle), 5 + 0.75F * std::cos(angle));
        StFloatPoint const there = blit.Forward(7, -1);
        EXPECT_PLACE(blit.Reverse(there.horizontal, there.vertical), 7, -1);
    }
}

TEST(RotatedBlit, ExtendLimitsHoldsThePixel) {
    struct Row {
        long x, y;
        StRect extended;
    };
    for (Row const& row : {Row{10, 10, {10, 10, 20, 20}},
                           {19, 19, {10, 10, 20, 20}},
                           {20, 10, {10, 10, 20, 21}},
                           {10, 20, {10, 10, 21, 20}},
                           {9, 15, {10, 9, 20, 20}},
                           {15, -3, {-3, 10, 20, 20}},
                           {99, 99, {10, 10, 100, 100}}}) {
        StRect rect{10, 10, 20, 20};
        Blit().ExtendLimits(rect, row.x, row.y);
        EXPECT_EQ(rect, row.extended) << row.x << ' ' << row.y;
    }
}

// --- copies that are exact

TEST(RotatedBlit, NoTurn_IsACopyOfTheRect) {
    Layer const source = RandomLayer({20, 30}, 1);
    for (bool const interpolation : {false, true}) {
        Layer const canvas = RandomLayer({25, 25}, 2);
        Picture expected = Shot(*canvas);
        Picture const picture = Shot(*source);
        ScRotatedBlit blit;
        blit.SetSource({3, 4, 10, 16}, 5, 6);
        blit.SetTarget(8, 11);
        blit.SetInterpolation(interpolation);
        blit.DoIt(source.Get(), canvas.Get(), 0.0F);
        for (long y = 3; y < 10; ++y)
            for (long x = 4; x < 16; ++x)
                expected(x + 3, y + 5) = picture(x, y);
        EXPECT_TRUE(Same(expected, Shot(*canvas))) << interpolation;
    }
}

TEST(RotatedBlit, QuarterTurnsAreExact_Counterclockwise) {
    Layer const source = RandomLayer({5, 7}, 1);
    Picture const picture = Shot(*source);
    for (int quarters = -3; quarters <= 4; ++quarters) {
        bool const upright = quarters % 2 == 0;
        StPoint const size = upright ? StPoint{5, 7} : StPoint{7, 5};
        Layer const canvas = RandomLayer(size, 2);
        ScRotatedBlit blit;
        // In the source the centre lies between pixels, so that truncation finds the pixel there.
        blit.SetSource({0, 0, 5, 7}, 3.5F, 2.5F);
        blit.SetTarget(static_cast<float>(size.horizontal - 1) / 2,
                       static_cast<float>(size.vertical - 1) / 2);
        blit.DoIt(source.Get(), canvas.Get(), static_cast<float>(quarters) * kQuarter);
        Picture expected{size, std::vector<Native>(35)};
        for (long y = 0; y < 5; ++y)
            for (long x = 0; x < 7; ++x) {
                switch ((quarters + 4) % 4) {
                    case 0:
                        expected(x, y) = picture(x, y);
                        break;
                    case 1:
                        expected(y, 6 - x) = picture(x, y);
                        break;
                    case 2:
                        expected(6 - x, 4 - y) = picture(x, y);
                        break;
                    case 3:
                        expected(4 - y, x) = picture(x, y);
                        break;
                }
            }
        EXPECT_TRUE(Same(expected, Shot(*canvas))) << quarters << " quarters";
    }
}

TEST(RotatedBlit, Scale2_DoublesEachPixel) {
    Layer const source = RandomLayer({4, 5}, 1), canvas = RandomLayer({8, 10}, 2);
    Picture const picture = Shot(*source);
    Picture expected = Shot(*canvas);
    ScRotatedBlit blit;
    blit.SetSource({0, 0, 4, 5}, 0, 0);
    blit.SetTarget(0, 0);
    blit.SetScale(2.0F);
    blit.DoIt(source.Get(), canvas.Get(), 0.0F);
    for (long y = 0; y < 8; ++y)
        for (long x = 0; x < 10; ++x)
            expected(x, y) = picture(x / 2, y / 2);
    EXPECT_TRUE(Same(expected, Shot(*canvas)));
}

TEST(RotatedBlit, PlacesTruncateTowardZero) {
    // Destination column 0 comes from -0.5 and column 1 from 0.5: both are source column 0.
    Layer const source = RandomLayer({3, 3}, 1), canvas = RandomLayer({4, 4}, 2);
    Picture const picture = Shot(*source);
    ScRotatedBlit blit;
    blit.SetSource({0, 0, 3, 3}, 0, 0);
    blit.SetTarget(0.5F, 0.5F);
    blit.DoIt(source.Get(), canvas.Get(), 0.0F);
    Picture expected = Shot(*canvas);
    for (long y = 0; y < 4; ++y)
        for (long x = 0; x < 4; ++x)
            expected(x, y) = picture(std::max(x - 1, 0L), std::max(y - 1, 0L));
    EXPECT_TRUE(Same(expected, Shot(*canvas)));
}

// --- against the rule, pixel by pixel

struct StTurn {
    StRect rect;
    float sourceX, sourceY, targetX, targetY, scaleX, scaleY, angle;
};

constexpr StTurn kTurns[] = {
    {{0, 0, 30, 40}, 20, 15, 25, 22, 1, 1, 0.3F},
    {{0, 0, 30, 40}, 20, 15, 25, 22, 1, 1, -2.1F},
    {{5, 7, 22, 31}, 19, 13, 25.5F, 22.25F, 1.5F, 0.75F, 0.7F},
    {{5, 7, 22, 31}, 0, 0, 60, -10, 1.25F, 1.25F, 2.0F},
    // Partly beyond the source, on every side.
    {{-10, -10, 20, 20}, 5, 5, 20, 20, 1, 1, 0.5F},
    {{15, 20, 60, 70}, 25, 25, 20, 20, 1, 1, 0.5F},
    {{-50, -50, 100, 100}, 20, 15, 25, 22, 0.5F, 0.5F, 1.0F},
    // Wholly beyond, and empty.
    {{40, 50, 60, 70}, 50, 50, 20, 20, 1, 1, 0.5F},
    {{9, 9, 9, 9}, 9, 9, 20, 20, 1, 1, 0.5F},
    {{20, 20, 10, 10}, 15, 15, 20, 20, 1, 1, 0.5F},
    // Mirrored.
    {{0, 0, 30, 40}, 20, 15, 25, 22, -1, 1, 0.3F},
};

class RotatedBlitTurns : public testing::TestWithParam<StTurn> {
  protected:
    StTurn const& Turn() const { return GetParam(); }
    /// The place in the source of a destination pixel.
    StFloatPoint SourceOf(long column, long row) const {
        double const a = -Turn().angle;
        auto const r1 = static_cast<float>(std::cos(a) / Turn().scaleX);
        auto const r2 = static_cast<float>(std::sin(a) / Turn().scaleY);
        auto const r3 = static_cast<float>(std::cos(a) / Turn().scaleY);
        auto const r4 = static_cast<float>(std::sin(a) / Turn().scaleX);
        float const u = static_cast<float>(column) - Turn().targetX,
                    v = static_cast<float>(row) - Turn().targetY;
        return {.vertical = Turn().sourceY - u * r2 + v * r3, .horizontal = u * r1 + Turn().sourceX + v * r4};
    }
    /// Where the corners of the part of the rectangle that lies in the source come to, within the canvas. A
    /// pixel that truncation pulls in from left of or above the source can lie beyond that.
    StRect Bounds() const {
        auto const clip = [](int side, int limit) { return side < 1 ? 0 : std::min(side, limit); };
        long const left = clip(Turn().rect.left, 40), right = clip(Turn().rect.right, 40);
        long const top = clip(Turn().rect.top, 30), bottom = clip(Turn().rect.bottom, 30);
        auto const c = static_cast<float>(std::cos(double{Turn().angle}));
        auto const s = static_cast<float>(std::sin(double{Turn().angle}));
        StRect bounds{};
        bool first = true;
        for (auto [x, y] : {std::pair{left, top}, {right, top}, {left, bottom}, {right, bottom}}) {
            float const u = (static_cast<float>(x) - Turn().sourceX) * Turn().scaleX;
            float const v = (static_cast<float>(y) - Turn().sourceY) * Turn().scaleY;
            float const fx = u * c + v * s + Turn().targetX, fy = Turn().targetY - u * s + v * c;
            int const ix = static_cast<int>(fx), iy = static_cast<int>(fy);
            if (first) {
                bounds = {iy, ix, static_cast<int>(fy + 1), static_cast<int>(fx + 1)};
            } else {
                bounds = {std::min(bounds.top, iy), std::min(bounds.left, ix),
                          std::max(bounds.bottom, iy + 1), std::max(bounds.right, ix + 1)};
            }
            first = false;
        }
        return {std::max(bounds.top, 0), std::max(bounds.left, 0), std::min(bounds.bottom, 45),
                std::min(bounds.right, 50)};
    }
    void Run(bool interpolation, SmImagerFrame& from, SmImagerFrame& to) {
        ScRotatedBlit blit;
        blit.SetSource(Turn().rect, Turn().sourceX, Turn().sourceY);
        blit.SetTarget(Turn().targetX, Turn().targetY);
        blit.SetScale(Turn().scaleX, Turn().scaleY);
        blit.SetInterpolation(interpolation);
        blit.DoIt(&from, &to, Turn().angle);
    }

    Layer const source = RandomLayer({30, 40}, 1), canvas = RandomLayer({45, 50}, 2);
    Picture expected = Shot(*canvas);
};
INSTANTIATE_TEST_SUITE_P(All, RotatedBlitTurns, testing::ValuesIn(kTurns));

TEST_P(RotatedBlitTurns, PlainTakesTheTruncatedPixel) {
    StRect const rect = Turn().rect, bounds = Bounds();
    for (long row = bounds.top; row < bounds.bottom; ++row)
        for (long column = bounds.left; column < bounds.right; ++column) {
            StFloatPoint const place = SourceOf(column, row);
            long const x = static_cast<long>(place.horizontal), y = static_cast<long>(place.vertical);
            bool const inRect = x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
            if (inRect && x >= 0 && y >= 0 && x < 40 && y < 30) expected(column, row) = At(*source, x, y);
        }
    Run(false, *source, *canvas);
    EXPECT_TRUE(Same(expected, Shot(*canvas)));
}

TEST_P(RotatedBlitTurns, InterpolatedSamplesUpToTheLastPixel) {
    StRect const rect = Turn().rect, bounds = Bounds();
    for (long row = bounds.top; row < bounds.bottom; ++row)
        for (long column = bounds.left; column < bounds.right; ++column) {
            StFloatPoint const place = SourceOf(column, row);
            float const x = place.horizontal, y = place.vertical;
            bool const inRect = x >= static_cast<float>(rect.left) &&
                                x <= static_cast<float>(rect.right - 1) &&
                                y >= static_cast<float>(rect.top) && y <= static_cast<float>(rect.bottom - 1);
            bool const inFrame = x > -1 && y > -1 && x < 40 && y < 30;
            if (inRect && inFrame) expected(column, row) = ToNative(source->GetFractionalPixel(x, y));
        }
    Run(true, *source, *canvas);
    EXPECT_TRUE(Same(expected, Shot(*canvas)));
}

/// A host's own class, whose operations are to be asked for each pixel.
class Asked : public PlainLayer<StRGBA32Pixel> {
    using Base = PlainLayer<StRGBA32Pixel>;

  public:
    static StRef<Asked> Like(Layer const& layer) {
        auto asked = StRef<Asked>::Adopt(new Asked);
        asked->IImagerLayer({0, 0}, layer->GetSize(), false, nullptr, 0, nullptr);
        asked->BlitRect(layer.Get(), SrWholeRect(layer->GetSize()), {0, 0});
        return asked;
    }
    int asked = 0;
    using Base::GetPixelAt;
    using Base::PutPixelAt;
    void GetPixelAt(long x, long y, StRGBA32Pixel& pixel) override {
        ++asked;
        Base::GetPixelAt(x, y, pixel);
    }
    void PutPixelAt(long x, long y, StRGBA32Pixel const& pixel) override {
        ++asked;
        Base::PutPixelAt(x, y, pixel);
    }
    void GetFractionalSmartPixel(float x, float y, ScSmartPixel* pixel) override {
        ++asked;
        Base::GetFractionalSmartPixel(x, y, pixel);
    }
    void PutPixelAt(long x, long y, ScSmartPixel const* pixel) override {
        ++asked;
        Base::PutPixelAt(x, y, pixel);
    }
};

TEST_P(RotatedBlitTurns, DerivedClassesAreAsked_AndGetTheSamePicture) {
    for (bool const interpolation : {false, true}) {
        auto const askedSource = Asked::Like(source), askedCanvas = Asked::Like(canvas);
        Picture const before = Shot(*askedCanvas);
        Run(interpolation, *askedSource, *askedCanvas);
        Run(interpolation, *source, *canvas);
        EXPECT_TRUE(Same(Shot(*canvas), Shot(*askedCanvas)));
        EXPECT_EQ(askedSource->asked, askedCanvas->asked);
        EXPECT_EQ(askedSource->asked == 0, Same(before, Shot(*askedCanvas)));
    }
}

// --- other rules

TEST(RotatedBlit, ScaleOf0_DrawsNothing) {
    Layer const source = RandomLayer({9, 9}, 1), canvas = RandomLayer({9, 9}, 2);
    Picture const before = Shot(*canvas);
    for (bool const interpolation : {false, true})
        for (auto [x, y] : {std::pair{0.0F, 0.0F}, {0.0F, 1.0F}, {1.0F, 0.0F}}) {
            ScRotatedBlit blit;
            blit.SetSource({0, 0, 9, 9}, 4, 4);
            blit.SetTarget(4.5F, 4.5F);
            blit.SetScale(x, y);
            blit.SetInterpolation(interpolation);
            blit.DoIt(source.Get(), canvas.Get(), 0.5F);
            EXPECT_TRUE(Same(before, Shot(*canvas))) << x << ' ' << y;
        }
}

TEST(RotatedBlit, WhatIsNoNumberDrawsNothing) {
    float const nan = std::numeric_limits<float>::quiet_NaN(),
                infinity = std::numeric_limits<float>::infinity();
    Layer const source = RandomLayer({9, 9}, 1), canvas = RandomLayer({9, 9}, 2);
    Picture const before = Shot(*canvas);
    for (bool const interpolation : {false, true})
        for (float const value : {nan, infinity, -infinity}) {
            ScRotatedBlit blit;
            blit.SetInterpolation(interpolation);
            blit.SetSource({0, 0, 9, 9}, 4, 4);
            blit.DoIt(source.Get(), canvas.Get(), value);
            blit.SetTarget(value, value);
            blit.DoIt(source.Get(), canvas.Get(), 0.0F);
            blit.SetSource({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, value, 4);
            blit.DoIt(source.Get(), canvas.Get(), 0.0F);
        }
    EXPECT_TRUE(Same(before, Shot(*canvas)));
}

TEST(RotatedBlit, FarAwayTargetsReachNothing) {
    Layer const source = RandomLayer({9, 9}, 1), canvas = RandomLayer({9, 9}, 2);
    Picture const before = Shot(*canvas);
    for (auto [x, y] :
         {std::pair{1000.0F, 4.0F}, {-1000.0F, 4.0F}, {4.0F, 1000.0F}, {4.0F, -1000.0F}, {3e9F, 4.0F}}) {
        ScRotatedBlit blit;
        blit.SetSource({0, 0, 9, 9}, 4, 4);
        blit.SetTarget(x, y);
        blit.DoIt(source.Get(), canvas.Get(), 0.3F);
    }
    EXPECT_TRUE(Same(before, Shot(*canvas)));
}

TEST(RotatedBlit, PlainLosesDepth_InterpolatedKeepsIt) {
    auto const source = MakeLayer<StRGBAFloatPixel>({2, 2});
    auto const canvas = MakeLayer<StRGBAFloatPixel>({2, 2});
    StRGBAFloatPixel const deep{0.1234567F, 0.2345678F, 0.3456789F, 1.0F};
    for (long i = 0; i < 4; ++i)
        source->PutMatchedPixelAt(i % 2, i / 2, deep);
    ScRotatedBlit blit;
    blit.SetSource({0, 0, 2, 2}, 0, 0);
    blit.SetTarget(0, 0);
    blit.DoIt(source.Get(), canvas.Get(), 0.0F);
    // Through bytes, truncated.
    EXPECT_EQ(canvas->GetRGBAPixelAt(1, 1), source->GetRGBAPixelAt(1, 1));
    EXPECT_NE(ToNative(canvas->GetMatchedPixelAt(1, 1)), ToNative(deep));
    blit.SetInterpolation(true);
    blit.DoIt(source.Get(), canvas.Get(), 0.0F);
    EXPECT_EQ(ToNative(canvas->GetMatchedPixelAt(1, 1)), ToNative(deep));
}

TEST(RotatedBlit, ConvertsBetweenPixelTypes) {
    auto const source = MakeLayer<StGray8Pixel>({2, 2});
    source->PutPixelAt(1, 0, StRGBA32Pixel{255, 255, 255, 255});
    for (bool const interpolation : {false, true}) {
        Layer const canvas = RandomLayer({2, 2}, 2);
        ScRotatedBlit blit;
        blit.SetSource({0, 0, 2, 2}, 0, 0);
        blit.SetTarget(0, 0);
        blit.SetInterpolation(interpolation);
        blit.DoIt(source.Get(), canvas.Get(), 0.0F);
        EXPECT_EQ(canvas->GetRGBAPixelAt(1, 0), (StRGBA32Pixel{255, 255, 255, 255}));
        EXPECT_EQ(canvas->GetRGBAPixelAt(0, 1), source->GetRGBAPixelAt(0, 1));
    }
}

TEST(RotatedBlit, LeavesTheUpdatedFlag) {
    Layer const source = RandomLayer({2, 2}, 1), canvas = RandomLayer({2, 2}, 2);
    ScRotatedBlit blit;
    blit.SetSource({0, 0, 2, 2}, 0, 0);
    blit.SetTarget(0, 0);
    blit.DoIt(source.Get(), canvas.Get(), 0.0F);
    EXPECT_FALSE(canvas->GetUpdated());
}

TEST(RotatedBlit, FramesWithoutPixels) {
    Layer const some = RandomLayer({4, 4}, 1), none = MakeLayer<StRGBA32Pixel>({0, 0});
    for (bool const interpolation : {false, true}) {
        ScRotatedBlit blit;
        blit.SetInterpolation(interpolation);
        blit.DoIt(none.Get(), some.Get(), 0.4F);
        blit.DoIt(some.Get(), none.Get(), 0.4F);
    }
}

}  // namespace
