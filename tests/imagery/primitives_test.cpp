#include "framewright/imagery/primitives.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <set>

#include "frame/kinds.h"
#include "framewright/frame/layer_factory.h"
#include "recording_frame.h"
#include "slots.h"

using namespace testing_frames;
using testing::ElementsAre;
using testing_imagery::RecordingFrame;

namespace {

constexpr StRGBA32Pixel kColor{10, 20, 30, 200};
constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kNear = std::numeric_limits<std::int32_t>::min();

using Data = std::array<std::int32_t, 4>;

Data DataOf(ScImagerPrimitive& shape) {
    Data data{};
    shape.GetData(data.data());
    return data;
}

ScPrimitiveRect Rect(StRect const& rect, bool filled = false) {
    return {rect, kColor, filled};
}
ScPrimitiveLine Line(StPoint const& start, StPoint const& end) {
    return {start, end, kColor};
}

StFloatPoint At(float x, float y) {
    return {.vertical = y, .horizontal = x};
}

using Points = std::vector<std::pair<long, long>>;

/// The places, as (x, y), that a shape visits, in order: in a frame of 50 rows and 60 columns.
Points VisitedBy(ScImagerPrimitive& shape) {
    auto const frame = RecordingFrame::Make();
    shape.Replace(frame.Get());
    Points points;
    for (std::string const& entry : frame->log) {
        if (entry == "GetSize") continue;
        long x = 0, y = 0;
        EXPECT_EQ(std::sscanf(entry.c_str(), "PutPixelAt RGBA32, %ld, %ld, #10 20 30 200", &x, &y), 2)
            << entry;
        points.emplace_back(x, y);
    }
    return points;
}

// --- the table of operations

TEST(Primitives, OperationsStandInTheirOrder) {
    using Shape = ScImagerPrimitive;
    long expected = 2;  // behind the two entries of the destructor
    for (long const slot :
         {SlotOf(&Shape::SetColor), SlotOf(&Shape::GetColor), SlotOf(&Shape::SetData),
          SlotOf(&Shape::GetData), SlotOf(&Shape::MoveAbsolute), SlotOf(&Shape::MoveRelative),
          SlotOf(&Shape::ResizeAbsolute), SlotOf(&Shape::ResizeRelative), SlotOf(&Shape::EmptyData),
          SlotOf(&Shape::SetFilled), SlotOf(&Shape::GetFilled), SlotOf(&Shape::Replace),
          SlotOf(&Shape::Merge), SlotOf(&Shape::Blend), SlotOf(&Shape::XOR)})
        EXPECT_EQ(slot, expected++);
}

// --- fields

TEST(Primitives, StartAsTheyAreMade) {
    ScPrimitiveRect rect({1, 2, 3, 4}, kColor, true);
    EXPECT_EQ(DataOf(rect), (Data{1, 2, 3, 4}));
    EXPECT_TRUE(rect.GetFilled());
    rect.SetFilled(false);
    EXPECT_FALSE(rect.GetFilled());
    ScPrimitiveLine line({1, 2}, {3, 4}, kColor);
    EXPECT_EQ(DataOf(line), (Data{1, 2, 3, 4}));
    EXPECT_FALSE(line.GetFilled());
}

/// Both shapes hold four values: what moves the one moves the other.
class Corners : public testing::TestWithParam<bool> {
  protected:
    std::unique_ptr<ScImagerPrimitive> Make(StRect const& rect) const {
        if (GetParam()) return std::make_unique<ScPrimitiveRect>(rect, kColor, false);
        return std::make_unique<ScPrimitiveLine>(StPoint{rect.top, rect.left},
                                                 StPoint{rect.bottom, rect.right}, kColor);
    }
};
INSTANTIATE_TEST_SUITE_P(OfRectsAndLines, Corners, testing::Bool());

TEST_P(Corners, DataGoInAndOut) {
    auto const shape = Make({0, 0, 0, 0});
    Data data{5, -6, 7, 8};
    shape->SetData(data.data());
    EXPECT_EQ(DataOf(*shape), data);
}

TEST_P(Corners, GetDataGives16_AlsoForNull) {
    auto const shape = Make({1, 2, 3, 4});
    EXPECT_EQ(shape->GetData(nullptr), 16);
    std::array<std::int32_t, 6> data{9, 9, 9, 9, 9, 9};
    EXPECT_EQ(shape->GetData(data.data()), 16);
    EXPECT_EQ(data, (std::array<std::int32_t, 6>{1, 2, 3, 4, 9, 9}));
}

TEST_P(Corners, MoveAbsolute_TruncatesThePlace_ThenMovesBoth) {
    auto const shape = Make({10, 20, 15, 29});
    shape->MoveAbsolute(At(3.9F, 4.9F));
    EXPECT_EQ(DataOf(*shape), (Data{4, 3, 9, 12}));
    // -0.9 is 0: truncated by itself, not the distance of -3.9 from 3 or -4.9 from 4.
    shape->MoveAbsolute(At(-0.9F, -0.9F));
    EXPECT_EQ(DataOf(*shape), (Data{0, 0, 5, 9}));
}

TEST_P(Corners, MoveRelative_TruncatesTheDistance) {
    auto const shape = Make({10, 20, 15, 29});
    shape->MoveRelative(At(3.9F, -4.9F));
    EXPECT_EQ(DataOf(*shape), (Data{6, 23, 11, 32}));
}

TEST_P(Corners, ResizeAbsolute_CountsFromTheFirstCorner) {
    auto const shape = Make({10, 20, 15, 29});
    shape->ResizeAbsolute(At(2.9F, 100.5F));
    EXPECT_EQ(DataOf(*shape), (Data{10, 20, 110, 22}));
}

TEST_P(Corners, ResizeRelative_ScalesAroundTheFirstCorner) {
    auto const shape = Make({10, 20, 15, 29});
    shape->ResizeRelative(At(2.0F, 2.0F));
    EXPECT_EQ(DataOf(*shape), (Data{10, 20, 20, 38}));
    // 18 * 0.25 + 20 is 24.5, 10 * -1.25 + 10 is -2.5: truncated toward zero.
    shape->ResizeRelative(At(0.25F, -1.25F));
    EXPECT_EQ(DataOf(*shape), (Data{10, 20, -2, 24}));
}

TEST_P(Corners, EmptyData_IsAll0) {
    auto const shape = Make({10, 20, 15, 29});
    shape->EmptyData();
    EXPECT_EQ(DataOf(*shape), (Data{0, 0, 0, 0}));
}

TEST_P(Corners, ArithmeticKeeps32Bits) {
    auto const shape = Make({10, 20, 15, 29});
    float const nan = std::numeric_limits<float>::quiet_NaN();
    shape->MoveRelative(At(nan, 1e30F));  // 0x80000000 both
    EXPECT_EQ(DataOf(*shape), (Data{kNear + 10, kNear + 20, kNear + 15, kNear + 29}));
    shape->MoveRelative(At(nan, 1e30F));
    EXPECT_EQ(DataOf(*shape), (Data{10, 20, 15, 29}));
    shape->ResizeRelative(At(1e30F, nan));
    EXPECT_EQ(DataOf(*shape), (Data{10, 20, kNear, kNear}));
}

TEST_P(Corners, ColourIsThatOfAnySmartPixel) {
    auto const shape = Make({1, 1, 3, 3});
    SmartRef const gray(new ScDerivedPixel<StGray8Pixel>);
    gray->SetRGBA32({90, 90, 90, 255});
    shape->SetColor(gray.get());
    SmartRef const rgba(new ScDerivedPixel<StRGBA32Pixel>);
    shape->GetColor(rgba.get());
    EXPECT_EQ(rgba->GetRGBA32(), (StRGBA32Pixel{90, 90, 90, 255}));
    rgba->SetRGBA32({1, 2, 3, 4});
    shape->SetColor(rgba.get());
    SmartRef const floats(new ScDerivedPixel<StRGBAFloatPixel>);
    shape->GetColor(floats.get());
    EXPECT_EQ(floats->GetRGBA32(), (StRGBA32Pixel{1, 2, 3, 4}));
}

// --- the four modes

TEST_P(Corners, Replace_PutsTheColour) {
    auto const frame = RecordingFrame::Make();
    Make({3, 4, 4, 5})->Replace(frame.Get());
    EXPECT_THAT(frame->log, testing::Contains("PutPixelAt RGBA32, 4, 3, #10 20 30 200"));
}

TEST_P(Corners, Merge_MergesTheColour) {
    auto const frame = RecordingFrame::Make();
    Make({3, 4, 4, 5})->Merge(frame.Get());
    EXPECT_THAT(frame->log, testing::Contains("MergePixelAt, 4, 3, #10 20 30 200"));
}

TEST_P(Corners, Blend_MergesWithAlphaTimesT_Truncated) {
    for (auto [t, alpha] : {std::pair{0.5F, 100}, {0.499F, 99}, {1.0F, 200}, {2.0F, 144}, {-0.25F, 206}}) {
        auto const frame = RecordingFrame::Make();
        Make({3, 4, 4, 5})->Blend(frame.Get(), t);
        EXPECT_THAT(frame->log, testing::Contains("MergePixelAt, 4, 3, #10 20 30 " + std::to_string(alpha)));
    }
}

TEST(Primitives, BlendToAlpha0_DrawsNoOutline_ButMergesTheFilledAndTheLine) {
    auto const outline = RecordingFrame::Make(), filled = RecordingFrame::Make(),
               line = RecordingFrame::Make();
    Rect({3, 4, 4, 5}).Blend(outline.Get(), 0.0F);
    EXPECT_THAT(outline->log, testing::Not(testing::Contains(testing::StartsWith("MergePixelAt"))));
    Rect({3, 4, 4, 5}, true).Blend(filled.Get(), 0.0F);
    EXPECT_THAT(filled->log, ElementsAre("GetSize", "MergePixelAt, 4, 3, #10 20 30 0"));
    Line({3, 4}, {3, 4}).Blend(line.Get(), 0.0F);
    EXPECT_THAT(line->log, ElementsAre("GetSize", "MergePixelAt, 4, 3, #10 20 30 0"));
}

// --- the walk of rectangles

TEST(PrimitiveRect, Outline_TopAndBottomColumnByColumn_ThenTheSides) {
    auto rect = Rect({3, 10, 7, 13});
    EXPECT_EQ(
        VisitedBy(rect),
        (Points{{10, 3}, {10, 6}, {11, 3}, {11, 6}, {12, 3}, {12, 6}, {10, 4}, {12, 4}, {10, 5}, {12, 5}}));
}

TEST(PrimitiveRect, Filled_RowByRow) {
    auto rect = Rect({3, 10, 5, 13}, true);
    EXPECT_EQ(VisitedBy(rect), (Points{{10, 3}, {11, 3}, {12, 3}, {10, 4}, {11, 4}, {12, 4}}));
}

TEST(PrimitiveRect, OfHeight1_DrawsItsRowTwice) {
    auto rect = Rect({3, 10, 4, 12});
    EXPECT_EQ(VisitedBy(rect), (Points{{10, 3}, {10, 3}, {11, 3}, {11, 3}}));
}

TEST(PrimitiveRect, OfWidth1_DrawsItsSidesTwice) {
    auto rect = Rect({3, 10, 6, 11});
    EXPECT_EQ(VisitedBy(rect), (Points{{10, 3}, {10, 5}, {10, 4}, {10, 4}}));
}

TEST(PrimitiveRect, OfNoWidth_HasSides) {
    auto rect = Rect({3, 10, 6, 10});
    EXPECT_EQ(VisitedBy(rect), (Points{{10, 4}, {9, 4}}));
    auto filled = Rect({3, 10, 6, 10}, true);
    EXPECT_EQ(VisitedBy(filled), Points{});
}

TEST(PrimitiveRect, OfNoHeight_HasTwoRows) {
    auto rect = Rect({3, 10, 3, 11});
    EXPECT_EQ(VisitedBy(rect), (Points{{10, 3}, {10, 2}}));
}

TEST(PrimitiveRect, Filled_IsClipped) {
    auto rect = Rect({-5, -3, 2, 2}, true);
    EXPECT_EQ(VisitedBy(rect), (Points{{0, 0}, {1, 0}, {0, 1}, {1, 1}}));
    auto corner = Rect({49, 58, 99, 99}, true);
    EXPECT_EQ(VisitedBy(corner), (Points{{58, 49}, {59, 49}}));
    auto outside = Rect({50, 60, 99, 99}, true);
    EXPECT_EQ(VisitedBy(outside), Points{});
}

TEST(PrimitiveRect, Outline_IsDrawnWhereItLiesInside) {
    auto rect = Rect({-5, -3, 3, 3});
    EXPECT_EQ(VisitedBy(rect), (Points{{0, 2}, {1, 2}, {2, 2}, {2, 0}, {2, 1}}));
    auto corner = Rect({47, 57, 99, 99});
    EXPECT_EQ(VisitedBy(corner), (Points{{57, 47}, {58, 47}, {59, 47}, {57, 48}, {57, 49}}));
}

TEST(PrimitiveRect, OfAnyReach_IsDrawnAtOnce) {
    auto around = Rect({kNear, kNear, kFar, kFar});
    EXPECT_EQ(VisitedBy(around), Points{});
    auto row = Rect({5, kNear, kFar, kFar});
    EXPECT_EQ(VisitedBy(row).size(), 60U);
    auto upsideDown = Rect({kFar, kFar, kNear, kNear});
    EXPECT_EQ(VisitedBy(upsideDown), Points{});
    auto filled = Rect({kNear, kNear, kFar, kFar}, true);
    EXPECT_EQ(VisitedBy(filled).size(), 3000U);
}

// --- the walk of lines

struct StLineRow {
    StPoint start, end;
    Points points;
};

TEST(PrimitiveLine, StepsAlongTheLongerAxis) {
    StLineRow const rows[] = {
        {{0, 0}, {0, 0}, {{0, 0}}},
        {{2, 3}, {2, 6}, {{3, 2}, {4, 2}, {5, 2}, {6, 2}}},
        {{2, 6}, {2, 3}, {{6, 2}, {5, 2}, {4, 2}, {3, 2}}},
        {{2, 3}, {5, 3}, {{3, 2}, {3, 3}, {3, 4}, {3, 5}}},
        // (x - x0) * (y1 - y0) / (x1 - x0) by integers: 0, 2/5, 4/5, 6/5, 8/5, 10/5.
        {{10, 20}, {12, 25}, {{20, 10}, {21, 10}, {22, 10}, {23, 11}, {24, 11}, {25, 12}}},
        // Upward: 0, -2/5, -4/5, -6/5, -8/5, -10/5, truncated toward zero and so toward the start.
        {{12, 20}, {10, 25}, {{20, 12}, {21, 12}, {22, 12}, {23, 11}, {24, 11}, {25, 10}}},
        // Backward the rest is on the other side.
        {{12, 25}, {10, 20}, {{25, 12}, {24, 12}, {23, 12}, {22, 11}, {21, 11}, {20, 10}}},
        // Vertical 10 is at least horizontal 5: the vertical branch, x by (y - 10) * 5 / -10.
        {{10, 0},
         {0, 5},
         {{0, 10}, {0, 9}, {1, 8}, {1, 7}, {2, 6}, {2, 5}, {3, 4}, {3, 3}, {4, 2}, {4, 1}, {5, 0}}},
        // Equal spans take the vertical branch.
        {{5, 9}, {8, 6}, {{9, 5}, {8, 6}, {7, 7}, {6, 8}}},
        // Partly outside.
        {{-2, -2}, {2, 2}, {{0, 0}, {1, 1}, {2, 2}}},
        {{49, 57}, {49, 70}, {{57, 49}, {58, 49}, {59, 49}}},
        {{-3, 57}, {-3, 70}, {}},
        {{52, 2}, {47, 2}, {{2, 49}, {2, 48}, {2, 47}}},
    };
    for (StLineRow const& row : rows) {
        auto line = Line(row.start, row.end);
        EXPECT_EQ(VisitedBy(line), row.points) << row.start.vertical << ' ' << row.start.horizontal;
        line.SetFilled(true);
        EXPECT_EQ(VisitedBy(line), row.points) << "filled means nothing";
    }
}

TEST(PrimitiveLine, OfAnyReach_IsDrawnAtOnce) {
    auto along = Line({7, kNear}, {7, kFar});
    EXPECT_EQ(VisitedBy(along).size(), 60U);
    auto back = Line({kFar, 7}, {kNear, 7});
    EXPECT_EQ(VisitedBy(back).size(), 50U);
    // The product of two whole spans needs 64 bits.
    auto across = Line({kNear, kNear}, {kFar, kFar});
    Points const points = VisitedBy(across);
    ASSERT_EQ(points.size(), 50U);
    for (long i = 0; i < 50; ++i)
        EXPECT_EQ(points[static_cast<std::size_t>(i)], std::pair(i, i));
    auto down = Line({kNear + 40, kFar}, {kFar, kNear + 40});
    Points const others = VisitedBy(down);
    ASSERT_EQ(others.size(), 40U);
    for (long i = 0; i < 40; ++i)
        EXPECT_EQ(others[static_cast<std::size_t>(i)], std::pair(39 - i, i));
}

// --- XOR

TEST(PrimitivesXOR, TwiceRestoresEveryPixelType) {
    for (StKind const& kind : Kinds())
        for (bool const fromFactory : {false, true}) {
            FrameRef const frame = fromFactory ? FrameRef::Adopt(SrMakeFrame({9, 11}, kind.id, false, false))
                                               : kind.make({9, 11});
            if (!frame) continue;
            FillRandom(*frame, kind, 5);
            Picture const before = Shot(*frame);
            // Dark, so that it is a black pixel, but not of the lowest of four levels.
            StRGBA32Pixel const color{80, 90, 100, 200};
            ScPrimitiveLine line({-1, 0}, {7, 12}, color);
            ScPrimitiveRect rect({1, 2, 7, 9}, color, false);
            ScPrimitiveRect filled({-3, 4, 5, 99}, color, true);
            for (int i = 0; i < 2; ++i) {
                line.XOR(frame.Get());
                rect.XOR(frame.Get());
                filled.XOR(frame.Get());
                if (i == 0 && !kind.mapped) {
                    EXPECT_FALSE(Same(before, Shot(*frame))) << kind.name;
                }
            }
            EXPECT_TRUE(Same(before, Shot(*frame))) << kind.name;
        }
}

TEST(PrimitivesXOR, FlipsTheBytesOfTheColour_FourAtMost) {
    for (StKind const& kind : Kinds()) {
        if (kind.mapped) continue;
        FrameRef const frame = kind.make({1, 1});
        FillRandom(*frame, kind, 5);
        Native expected = testing_frames::At(*frame, 0, 0);
        // What the colour is as a pixel of this type, over a record of zeroes.
        Native const key = kind.setRGBA(Native{}, kColor);
        std::size_t const bytes = kind.bits > 24 ? 4 : kind.bits > 16 ? 3 : kind.bits > 8 ? 2 : 1;
        for (std::size_t i = 0; i < bytes; ++i)
            expected[i] ^= key[i];
        Line({0, 0}, {0, 0}).XOR(frame.Get());
        EXPECT_EQ(testing_frames::At(*frame, 0, 0), expected) << kind.name;
    }
}

TEST(PrimitivesXOR, OfMappedFrames_FlipsTheIndexOfTheColour) {
    FrameRef const frame = FrameRef::Adopt(SrMakeFrame({1, 1}, SrCode("Map8"), false, false));
    SmartRef const smart(frame->NewSmartPixel());
    smart->SetRGBA32({255, 0, 0, 255});
    std::uint8_t const index = *static_cast<std::uint8_t*>(smart->GetPixelData());
    ASSERT_NE(index, 0);
    std::uint8_t pixel = 0x35;
    frame->PutPixelAt(0, 0, static_cast<void const*>(&pixel));
    ScPrimitiveLine({0, 0}, {0, 0}, {255, 0, 0, 255}).XOR(frame.Get());
    frame->GetPixelAt(0, 0, static_cast<void*>(&pixel));
    EXPECT_EQ(pixel, 0x35 ^ index);
}

TEST(PrimitivesXOR, FillersAreNotFlipped) {
    // No conversion writes the filler of a 32-bit colour or the flag of 15 bits; the key has them 0.
    FrameRef const frame = MakeLayer<StRGB32Pixel>({1, 1}).Get();
    Put(*frame, 0, 0, Native{1, 2, 3, 0x5A});
    ScPrimitiveRect({0, 0, 1, 1}, {255, 255, 255, 255}, true).XOR(frame.Get());
    EXPECT_EQ(testing_frames::At(*frame, 0, 0), (Native{254, 253, 252, 0x5A}));
}

TEST(PrimitivesXOR, ARectOfHeight1_CancelsOut) {
    FrameRef const frame = MakeLayer<StRGBA32Pixel>({4, 8}).Get();
    FillRandom(*frame, KindOfID(SrCode("ColB")), 1);
    Picture const before = Shot(*frame);
    Rect({1, 1, 2, 6}).XOR(frame.Get());
    EXPECT_TRUE(Same(before, Shot(*frame)));
    Rect({1, 1, 2, 6}, true).XOR(frame.Get());
    EXPECT_FALSE(Same(before, Shot(*frame))) << "filled, each pixel is drawn once";
}

}  // namespace
