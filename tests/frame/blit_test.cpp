#include <algorithm>
#include <tuple>

#include "framewright/frame/copy_road.h"
#include "kinds.h"
#include "spies.h"

using namespace testing_frames;

namespace {

// Copies between all pairs of layer types.

class Pairs : public testing::TestWithParam<std::tuple<StKind, StKind>> {};

TEST_P(Pairs, BlitConvertsByTheRuleOfTheSmartPixel) {
    auto const& [sourceKind, kind] = GetParam();
    FrameRef const source = sourceKind.make({7, 13});
    FrameRef const frame = kind.make({9, 17});
    FillRandom(*source, sourceKind, 11);
    FillRandom(*frame, kind, 12);
    Picture const picture = Shot(*source);
    Picture expected = Shot(*frame);
    StRect const from{1, 2, 6, 13};
    StPoint const to{3, 5};
    for (long y = from.top; y < from.bottom; ++y)
        for (long x = from.left; x < from.right; ++x) {
            Native& pixel = expected(x - from.left + to.horizontal, y - from.top + to.vertical);
            SmartRef const smart = sourceKind.smart(picture(x, y));
            pixel = sourceKind.id == kind.id ? picture(x, y) : kind.convertSmart(pixel, smart.get());
        }
    EXPECT_FALSE(frame->BlitRect(source.Get(), from, to));
    EXPECT_TRUE(frame->GetUpdated());
    EXPECT_TRUE(Same(expected, Shot(*frame)));
    EXPECT_TRUE(Same(picture, Shot(*source)));
}

std::string PairName(testing::TestParamInfo<std::tuple<StKind, StKind>> const& info) {
    return std::string(std::get<0>(info.param).name) + "_To_" + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(Layers, Pairs,
                         testing::Combine(testing::ValuesIn(Kinds()), testing::ValuesIn(Kinds())), PairName);

// Where a copy is cut, and where it is not even begun.

struct ClipRow {
    char const* what;
    StRect from;
    StPoint to;
    bool happens;
    StRect copied;  ///< in source coordinates
};

constexpr StPoint kSourceSize{10, 20};
constexpr StPoint kSize{8, 12};

constexpr ClipRow kClips[] = {
    {"inside", {1, 2, 4, 8}, {2, 3}, true, {1, 2, 4, 8}},
    {"right and bottom of the source", {7, 15, 99, 99}, {0, 0}, true, {7, 15, 10, 20}},
    {"right and bottom of the destination", {0, 0, 10, 20}, {5, 9}, true, {0, 0, 3, 3}},
    {"both", {2, 4, 99, 99}, {1, 1}, true, {2, 4, 9, 15}},
    {"touches the end of the destination", {0, 0, 5, 5}, {8, 12}, true, {0, 0, 0, 0}},
    {"right of the destination", {0, 0, 5, 5}, {0, 13}, false, {}},
    {"below the destination", {0, 0, 5, 5}, {9, 0}, false, {}},
    {"below the source", {10, 0, 12, 5}, {0, 0}, false, {}},
    {"right of the source", {0, 20, 5, 25}, {0, 0}, false, {}},
    {"empty", {3, 3, 3, 3}, {0, 0}, true, {3, 3, 3, 3}},
    {"inside out", {5, 9, 2, 4}, {0, 0}, true, {0, 0, 0, 0}},
    {"the extremes of the numbers", {0, 0, INT32_MAX, INT32_MAX}, {7, 11}, true, {0, 0, 1, 1}},
};

TEST(Blit, ClipsRightAndBottom) {
    for (char const* id : {"ColB", "Gry4"}) {
        for (char const* sourceID : {"ColB", "Gry4"}) {
            StKind const& kind = KindOfID(id == std::string("ColB") ? SrCode("ColB") : SrCode("Gry4"));
            StKind const& sourceKind =
                KindOfID(sourceID == std::string("ColB") ? SrCode("ColB") : SrCode("Gry4"));
            FrameRef const source = sourceKind.make(kSourceSize);
            FillRandom(*source, sourceKind, 1);
            for (ClipRow const& row : kClips) {
                FrameRef const frame = kind.make(kSize);
                FillRandom(*frame, kind, 2);
                Picture expected = Shot(*frame);
                for (long y = row.copied.top; y < row.copied.bottom; ++y)
                    for (long x = row.copied.left; x < row.copied.right; ++x) {
                        Native& pixel = expected(row.to.horizontal + x - row.from.left,
                                                 row.to.vertical + y - row.from.top);
                        SmartRef const smart = sourceKind.smart(At(*source, x, y));
                        pixel = kind.convertSmart(pixel, smart.get());
                    }
                EXPECT_FALSE(frame->BlitRect(source.Get(), row.from, row.to)) << row.what;
                EXPECT_EQ(frame->GetUpdated(), row.happens) << row.what;
                EXPECT_TRUE(Same(expected, Shot(*frame))) << row.what;
            }
        }
    }
}

TEST(Blit, BetweenRGBAFrames_KeepsAlpha_ToRGB32_KeepsTheFiller) {
    auto const source = MakeLayer<StRGBA32Pixel>({1, 1});
    source->PutMatchedPixelAt(0, 0, {1, 2, 3, 77});
    auto const rgba = MakeLayer<StRGBA32Pixel>({1, 1});
    rgba->BlitRect(source.Get(), {0, 0, 1, 1}, {0, 0});
    EXPECT_EQ(rgba->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{1, 2, 3, 77}));
    auto const rgb = MakeLayer<StRGB32Pixel>({1, 1});
    rgb->PutMatchedPixelAt(0, 0, {0, 0, 0, 99});
    rgb->BlitRect(source.Get(), {0, 0, 1, 1}, {0, 0});
    StRGB32Pixel const pixel = rgb->GetMatchedPixelAt(0, 0);
    EXPECT_EQ(pixel.red, 3);
    EXPECT_EQ(pixel.green, 2);
    EXPECT_EQ(pixel.blue, 1);
    EXPECT_EQ(pixel.filler, 99);
}

// Copies of a frame onto itself: rows go down, bytes go up.

TEST(Blit, OntoItself_UpwardIsRight) {
    for (StKind const& kind : Kinds()) {
        for (StPoint const to : {StPoint{0, 16}, {1, 0}, {1, 24}, {2, 0}, {2, 8}}) {
            FrameRef const frame = kind.make({12, 64});
            FillRandom(*frame, kind, 4);
            Picture const before = Shot(*frame);
            Picture expected = before;
            StRect const from{2, 16, 11, 48};
            for (long y = from.top; y < from.bottom; ++y)
                for (long x = from.left; x < from.right; ++x)
                    expected(to.horizontal + x - from.left, to.vertical + y - from.top) = before(x, y);
            frame->BlitRect(frame.Get(), from, to);
            EXPECT_TRUE(Same(expected, Shot(*frame))) << kind.name << " to " << testing::PrintToString(to);
        }
    }
}

TEST(Blit, OntoItself_LevelToTheRight_RepeatsInStepsOfEightBytes) {
    auto const layer = MakeLayer<StGray8Pixel>({1, 40});
    for (long x = 0; x < 40; ++x)
        layer->PutMatchedPixelAt(x, 0, {static_cast<std::uint8_t>(x)});
    layer->BlitRect(layer.Get(), {0, 0, 1, 22}, {0, 3});
    // The same moves, eight bytes a step and then byte by byte.
    std::vector<std::uint8_t> row(40);
    for (int x = 0; x < 40; ++x)
        row[static_cast<std::size_t>(x)] = static_cast<std::uint8_t>(x);
    std::size_t at = 0;
    for (; at + 8 <= 22; at += 8) {
        std::array<std::uint8_t, 8> unit;
        std::copy_n(row.begin() + static_cast<long>(at), 8, unit.begin());
        std::copy_n(unit.begin(), 8, row.begin() + 3 + static_cast<long>(at));
    }
    for (; at < 22; ++at)
        row[at + 3] = row[at];
    for (long x = 0; x < 40; ++x)
        EXPECT_EQ(layer->GetMatchedPixelAt(x, 0).level, row[static_cast<std::size_t>(x)]);
}

// Pixels that begin inside a byte.

TEST(Blit, SubByteFrames_AnyPlaceGivesTheSamePixels) {
    for (StKind const& kind : Kinds()) {
        if (kind.bits >= 8) continue;
        FrameRef const source = kind.make({2, 40});
        FillRandom(*source, kind, 5);
        Picture const picture = Shot(*source);
        for (int left = 0; left < 9; ++left)
            for (int to = 0; to < 9; ++to)
                for (int width = 1; width < 18; ++width) {
                    FrameRef const frame = kind.make({2, 40});
                    FillRandom(*frame, kind, 6);
                    Picture expected = Shot(*frame);
                    for (long y = 0; y < 2; ++y)
                        for (long x = 0; x < width; ++x)
                            expected(to + x, y) = picture(left + x, y);
                    frame->BlitRect(source.Get(), {0, left, 2, left + width}, {0, to});
                    ASSERT_TRUE(Same(expected, Shot(*frame)))
                        << kind.name << " from " << left << " to " << to << ", " << width << " wide";
                }
    }
}

// The brackets around writing, the road taken, and failures on the way.

TEST(Blit, BracketsTheWork) {
    auto const frame = Spy<StGray4Pixel>::Make({6, 12});
    auto const source = Spy<StGray4Pixel>::Make({6, 12});
    auto const other = Spy<StRGBA32Pixel>::Make({6, 12});
    using Log = std::vector<std::string>;

    frame->BlitRect(source.Get(), {0, 2, 3, 8}, {1, 4});
    EXPECT_EQ(frame->log, (Log{"ensure 1 4 4 10", "release"})) << "even columns: raw";
    frame->log.clear();
    frame->BlitRect(source.Get(), {0, 1, 3, 8}, {1, 4});
    EXPECT_EQ(frame->log, (Log{"ensure 1 4 4 11", "dissimilar", "ensure 1 4 4 11", "release", "release"}));
    frame->log.clear();
    frame->BlitRect(source.Get(), {0, 2, 3, 7}, {1, 4});
    EXPECT_EQ(frame->log.size(), 5u) << "an odd width";
    frame->log.clear();
    frame->BlitRect(source.Get(), {0, 2, 3, 8}, {1, 3});
    EXPECT_EQ(frame->log.size(), 5u) << "an odd place";
    frame->log.clear();
    frame->BlitRect(other.Get(), {0, 2, 3, 8}, {1, 4});
    EXPECT_EQ(frame->log, (Log{"dissimilar", "ensure 1 4 4 10", "release"}));
    frame->log.clear();
    frame->BlitRect(source.Get(), {9, 0, 10, 1}, {0, 0});
    EXPECT_EQ(frame->log, Log{}) << "missed";
    frame->BlitRect(source.Get(), {4, 8, 99, 99}, {5, 10});
    EXPECT_EQ(frame->log, (Log{"ensure 5 10 6 12", "release"})) << "the rectangle as cut";
}

TEST(Blit, TwoClassesOfOnePixelType_CopyRaw) {
    // The filler would be lost on any other road.
    auto const source = Spy<StRGB32Pixel>::Make({1, 1});
    source->PutMatchedPixelAt(0, 0, {1, 2, 3, 4});
    auto const layer = MakeLayer<StRGB32Pixel>({1, 1});
    layer->BlitRect(source.Get(), {0, 0, 1, 1}, {0, 0});
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0).filler, 4);
}

TEST(Blit, AFailingSource_ReleasesWhatIsHeld_AndGoesOn) {
    auto const frame = Spy<StGray8Pixel>::Make({6, 12});
    auto const source = Spy<StGray8Pixel>::Make({6, 12});
    FillRandom(*source, KindOfID(SrCode("Gry8")), 1);
    FillRandom(*frame, KindOfID(SrCode("Gry8")), 2);
    Picture expected = Shot(*frame);
    for (long x = 0; x < 12; ++x) {
        expected(x, 0) = At(*source, x, 0);
        expected(x, 1) = At(*source, x, 1);
    }
    source->failingRow = 2;
    ScMessageBuzzStrings message(SkAlertStrings(), 2, 1, 1, SkSimpleAlert());
    source->failure = -36;
    source->message = &message;
    try {
        frame->BlitRect(source.Get(), {0, 0, 6, 12}, {0, 0});
        FAIL() << "nothing thrown";
    } catch (std::exception const& exception) {
        ScMessageClass* caught = nullptr;
        EXPECT_EQ(SrGetExceptionValues(exception, caught), -36);
        ASSERT_TRUE(caught);
        EXPECT_STREQ(caught->GetText(), message.GetText());
    }
    EXPECT_EQ(frame->log, (std::vector<std::string>{"ensure 0 0 6 12", "release"}));
    EXPECT_TRUE(Same(expected, Shot(*frame))) << "the rows before it have been copied";
}

TEST(Blit, AFailingConversion_LeavesItsBracketOpen) {
    auto const frame = Spy<StRGBA32Pixel>::Make({6, 12});
    auto const source = Spy<StGray8Pixel>::Make({6, 12});
    source->failingRow = 2;
    EXPECT_EQ(ThrownBy([&] { frame->BlitRect(source.Get(), {0, 0, 6, 12}, {0, 0}); }), -39);
    EXPECT_EQ(frame->log, (std::vector<std::string>{"dissimilar", "ensure 0 0 6 12"}));
}

TEST(Blit, ARowWithoutMemoryIsRefused) {
    auto const source = MakeLayer<StGray8Pixel>({4, 4});
    source->MoveFrame({0, 0, 4, 4});
    auto const layer = MakeLayer<StGray8Pixel>({4, 4});
    EXPECT_EQ(ThrownBy([&] { layer->BlitRect(source.Get(), {0, 0, 4, 4}, {0, 0}); }), -108);
    EXPECT_EQ(ThrownBy([&] { source->BlitRect(layer.Get(), {0, 0, 4, 4}, {0, 0}); }), -108);
}

TEST(CopyUpward, MatchesTheBytes) {
    for (std::size_t bytes : {0u, 1u, 7u, 8u, 9u, 31u, 64u, 65u}) {
        std::vector<std::uint8_t> source(bytes + 1), destination(bytes + 1, 0xEE);
        for (std::size_t i = 0; i < bytes; ++i)
            source[i] = static_cast<std::uint8_t>(i * 7 + 1);
        frame::CopyUpward(destination.data(), source.data(), bytes);
        EXPECT_TRUE(
            std::equal(source.begin(), source.begin() + static_cast<long>(bytes), destination.begin()));
        EXPECT_EQ(destination[bytes], 0xEE);
    }
}

TEST(CopyFromLayer, OfOneSizeNeverStretches) {
    for (char const* id : {"ColB", "Gry8"}) {
        auto const frame = Spy<StRGBA32Pixel>::Make({5, 6});
        StKind const& kind = KindOfID(id == std::string("ColB") ? SrCode("ColB") : SrCode("Gry8"));
        FrameRef const same = kind.make({5, 6});
        FrameRef const wider = kind.make({5, 7});
        FillRandom(*same, kind, 1);
        FillRandom(*wider, kind, 1);
        frame->CopyFromLayer(same.Get());
        EXPECT_EQ(frame->stretches, 0);
        frame->CopyFromLayer(wider.Get());
        EXPECT_EQ(frame->stretches, 1);
        EXPECT_EQ(frame->stretchedFrom, (StRect{0, 0, 5, 7}));
        EXPECT_EQ(frame->stretchedTo, (StRect{0, 0, 5, 6}));
    }
}

}  // namespace
