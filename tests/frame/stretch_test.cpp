#include <cmath>

#include "kinds.h"
#include "spies.h"

using namespace testing_frames;

namespace {

struct StretchRow {
    StRect from, to;
};

constexpr StPoint kSourceSize{7, 11};
constexpr StPoint kSize{13, 16};

constexpr StretchRow kStretches[] = {
    {{0, 0, 7, 11}, {0, 0, 13, 16}},  // larger
    {{0, 0, 7, 11}, {0, 0, 4, 5}},    // smaller
    {{1, 2, 6, 9}, {3, 1, 12, 14}},   // within
    {{1, 2, 6, 9}, {2, 3, 3, 4}},     // to one pixel
    {{3, 4, 4, 5}, {1, 1, 9, 9}},     // from one pixel
    {{0, 0, 7, 1}, {0, 0, 13, 16}},   // from one column
    {{2, 3, 7, 11}, {4, 5, 9, 13}},   // of one size
    {{0, 0, 7, 11}, {5, 5, 5, 9}},    // to nothing
};

/// The scale of one axis: first pixel to first, last to last.
float Scale(int from, int fromEnd, int to, int toEnd) {
    float const span = static_cast<float>(toEnd - to - 1);
    return static_cast<float>(fromEnd - from - 1) / (span == 0.0f ? 1.0f : span);
}

template <class Record>
Record Blended(Record pixel, Record const& other, float t) {
    if constexpr (requires { pixel.Blend(other, t); }) {
        pixel.Blend(other, t);
    } else if constexpr (requires { pixel.depth; }) {
        double const mixed =
            static_cast<double>(pixel.depth) * (1.0 - t) + static_cast<double>(other.depth) * t;
        pixel.depth = static_cast<std::uint32_t>(static_cast<std::int64_t>(mixed)) &
                      (0xFFFFFFFFu >> (32 - Record::PixelSize()));
    }
    return pixel;
}

template <class Record>
class Stretch : public testing::Test {};
TYPED_TEST_SUITE(Stretch, AllRecords);

TYPED_TEST(Stretch, OfLikes_BlendsFourPixels) {
    using Record = TypeParam;
    StKind const& kind = KindOfID(Record::PixelID());
    auto const source = MakeLayer<Record>(kSourceSize);
    FillRandom(*source, kind, 1);
    for (StretchRow const& row : kStretches) {
        auto const frame = MakeLayer<Record>(kSize);
        FillRandom(*frame, kind, 2);
        Picture expected = Shot(*frame);
        float const down = Scale(row.from.top, row.from.bottom, row.to.top, row.to.bottom);
        float const across = Scale(row.from.left, row.from.right, row.to.left, row.to.right);
        for (int y = row.to.top; y < row.to.bottom; ++y)
            for (int x = row.to.left; x < row.to.right; ++x) {
                float const fy = static_cast<float>(y - row.to.top) * down + static_cast<float>(row.from.top);
                float const fx =
                    static_cast<float>(x - row.to.left) * across + static_cast<float>(row.from.left);
                int const y0 = std::min(static_cast<int>(fy), kSourceSize.vertical - 1);
                int const y1 = y0 < kSourceSize.vertical - 1 ? y0 + 1 : y0;
                int const x0 = static_cast<int>(fx);
                int const x1 = x0 < kSourceSize.horizontal - 1 ? x0 + 1 : x0;
                float const tx = fx - static_cast<float>(x0);
                auto const at = [&](int column, int line) { return source->GetMatchedPixelAt(column, line); };
                Record const upper = Blended(at(x0, y0), at(x1, y0), tx);
                Record const lower = Blended(at(x0, y1), at(x1, y1), tx);
                expected(x, y) = ToNative(Blended(upper, lower, fy - static_cast<float>(y0)));
            }
        EXPECT_FALSE(frame->StretchBlit(source.Get(), row.from, row.to));
        EXPECT_TRUE(frame->GetUpdated());
        EXPECT_TRUE(Same(expected, Shot(*frame)));
    }
}

TYPED_TEST(Stretch, FromPastTheSource_ReadsNothingOutside) {
    // What comes out is nobody's promise, but it comes out of the source.
    StKind const& kind = KindOfID(TypeParam::PixelID());
    auto const source = MakeLayer<TypeParam>(kSourceSize);
    FillRandom(*source, kind, 1);
    auto const frame = MakeLayer<TypeParam>(kSize);
    for (StRect const from : {StRect{0, 0, 50, 60},
                              {-9, -9, 5, 5},
                              {90, 90, 99, 99},
                              {6, 9, 1, 2},
                              {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}})
        frame->StretchBlit(source.Get(), from, {0, 0, 13, 16});
}

TYPED_TEST(Stretch, OfOthers_SamplesTheSource_Converted) {
    using Record = TypeParam;
    StKind const& kind = KindOfID(Record::PixelID());
    for (StKind const& sourceKind : Kinds()) {
        if (sourceKind.id == kind.id) continue;
        FrameRef const source = sourceKind.make(kSourceSize);
        FillRandom(*source, sourceKind, 1);
        auto const frame = MakeLayer<Record>(kSize);
        FillRandom(*frame, kind, 2);
        Picture expected = Shot(*frame);
        StretchRow const& row = kStretches[2];
        float const down = Scale(row.from.top, row.from.bottom, row.to.top, row.to.bottom);
        float const across = Scale(row.from.left, row.from.right, row.to.left, row.to.right);
        SmartRef const smart(source->NewSmartPixel());
        for (int y = row.to.top; y < row.to.bottom; ++y)
            for (int x = row.to.left; x < row.to.right; ++x) {
                float const fy = static_cast<float>(y - row.to.top) * down + static_cast<float>(row.from.top);
                float const fx =
                    static_cast<float>(x - row.to.left) * across + static_cast<float>(row.from.left);
                source->GetFractionalSmartPixel(fx, fy, smart.get());
                expected(x, y) = kind.convertSmart(expected(x, y), smart.get());
            }
        frame->StretchBlit(source.Get(), row.from, row.to);
        EXPECT_TRUE(Same(expected, Shot(*frame))) << "from " << sourceKind.name;
    }
}

TEST(StretchBlit, TwoColumnsToThree_SamplesAtTheEndsAndTheMiddle) {
    auto const source = MakeLayer<StGray8Pixel>({1, 2});
    source->PutMatchedPixelAt(0, 0, {10});
    source->PutMatchedPixelAt(1, 0, {110});
    auto const frame = MakeLayer<StGray8Pixel>({1, 3});
    frame->StretchBlit(source.Get(), {0, 0, 1, 2}, {0, 0, 1, 3});
    EXPECT_EQ(frame->GetMatchedPixelAt(0, 0).level, 10);
    EXPECT_EQ(frame->GetMatchedPixelAt(1, 0).level, 60);
    EXPECT_EQ(frame->GetMatchedPixelAt(2, 0).level, 110);
}

TEST(StretchBlit, OneRowTakesTheFirstRow_NotTheMiddle) {
    auto const source = MakeLayer<StGray8Pixel>({5, 1});
    for (std::uint8_t y = 0; y < 5; ++y)
        source->PutMatchedPixelAt(0, y, {static_cast<std::uint8_t>(y * 10)});
    auto const frame = MakeLayer<StGray8Pixel>({1, 1});
    frame->StretchBlit(source.Get(), {1, 0, 5, 1}, {0, 0, 1, 1});
    EXPECT_EQ(frame->GetMatchedPixelAt(0, 0).level, 10);
}

TEST(StretchBlit, DepthsOf32Bits_BlendInDoubles) {
    auto const source = MakeLayer<StDepthUInt32Pixel>({1, 2});
    source->PutMatchedPixelAt(0, 0, {0xFFFFFFFF});
    source->PutMatchedPixelAt(1, 0, {0xFFFFFFFE});
    auto const frame = MakeLayer<StDepthUInt32Pixel>({1, 3});
    frame->StretchBlit(source.Get(), {0, 0, 1, 2}, {0, 0, 1, 3});
    EXPECT_EQ(frame->GetMatchedPixelAt(0, 0).depth, 0xFFFFFFFFu);
    EXPECT_EQ(frame->GetMatchedPixelAt(1, 0).depth, 0xFFFFFFFEu) << "4294967294.5, truncated";
    EXPECT_EQ(frame->GetMatchedPixelAt(2, 0).depth, 0xFFFFFFFEu);
}

TEST(StretchBlit, EachBracketsItsTarget) {
    auto const like = MakeLayer<StRGBA32Pixel>({4, 4});
    auto const other = MakeLayer<StGray8Pixel>({4, 4});
    std::vector<std::string> const expected{"ensure 1 1 3 4", "release"};
    for (SmImagerFrame* source :
         {static_cast<SmImagerFrame*>(like.Get()), static_cast<SmImagerFrame*>(other.Get())}) {
        auto const frame = Spy<StRGBA32Pixel>::Make({4, 4});
        EXPECT_FALSE(frame->StretchBlit(source, {0, 0, 4, 4}, {1, 1, 3, 4}));
        EXPECT_EQ(frame->log, expected);
        frame->log.clear();
        EXPECT_FALSE(frame->StretchBlitFast(source, {0, 0, 4, 4}, {1, 1, 3, 4}));
        EXPECT_EQ(frame->log, expected);
        frame->log.clear();
        EXPECT_FALSE(frame->StretchBlitMasked(source, like.Get(), {0, 0, 4, 4}, {1, 1, 3, 4}));
        EXPECT_EQ(frame->log, expected);
    }
}

TEST(StretchBlitFast, OfOthers_ConvertsTheTruncatedPixel) {
    for (StKind const& sourceKind : Kinds())
        for (StKind const& kind : Kinds()) {
            if (sourceKind.id == kind.id) continue;
            FrameRef const source = sourceKind.make(kSourceSize);
            FrameRef const frame = kind.make(kSize);
            FillRandom(*source, sourceKind, 1);
            FillRandom(*frame, kind, 2);
            Picture expected = Shot(*frame);
            StretchRow const& row = kStretches[0];
            float const down = Scale(row.from.top, row.from.bottom, row.to.top, row.to.bottom);
            float const across = Scale(row.from.left, row.from.right, row.to.left, row.to.right);
            for (int y = 0; y < row.to.bottom; ++y)
                for (int x = 0; x < row.to.right; ++x) {
                    SmartRef const smart =
                        sourceKind.smart(At(*source, static_cast<long>(static_cast<float>(x) * across),
                                            static_cast<long>(static_cast<float>(y) * down)));
                    expected(x, y) = kind.convertSmart(expected(x, y), smart.get());
                }
            frame->StretchBlitFast(source.Get(), row.from, row.to);
            EXPECT_TRUE(Same(expected, Shot(*frame))) << sourceKind.name << " to " << kind.name;
        }
}

// Under a mask.

StRef<PlainLayer<StRGBA32Pixel>> CheckedMask(StPoint const& size) {
    auto mask = MakeLayer<StRGBA32Pixel>(size);
    for (long y = 0; y < size.vertical; ++y)
        for (long x = 0; x < size.horizontal; ++x)
            mask->PutMatchedPixelAt(x, y, {255, 255, 255, static_cast<std::uint8_t>((x + y) % 2)});
    return mask;
}

struct MaskRow {
    char const* what;
    StRect from, to;
    StPoint maskSize;
};

constexpr MaskRow kMasked[] = {
    {"of one size", {1, 2, 5, 8}, {3, 4, 7, 10}, {13, 16}},
    {"larger", {0, 0, 7, 11}, {0, 0, 13, 16}, {13, 16}},
    {"past the source", {5, 9, 9, 13}, {0, 0, 4, 4}, {13, 16}},
    {"before the source", {-2, -3, 2, 1}, {2, 2, 6, 6}, {13, 16}},
    {"past the frame", {0, 0, 7, 11}, {8, 9, 20, 30}, {13, 16}},
    {"before the frame", {0, 0, 7, 11}, {-5, -4, 6, 7}, {13, 16}},
    {"past the mask", {0, 0, 7, 11}, {0, 0, 13, 16}, {5, 6}},
    {"beyond the frame", {0, 0, 7, 11}, {40, 40, 50, 50}, {60, 60}},
    {"inside out", {0, 0, 7, 11}, {9, 9, 3, 3}, {13, 16}},
};

TEST(StretchBlitMasked, WritesWhereTheMaskIsSet_ThroughRGBA) {
    for (StKind const& sourceKind : Kinds())
        for (char const* id : {"ColB", "Gry8", "RG15"}) {
            StKind const& kind = *std::find_if(Kinds().begin(), Kinds().end(), [&](StKind const& k) {
                return k.id == ((static_cast<unsigned long>(id[0]) << 24) |
                                (static_cast<unsigned long>(id[1]) << 16) |
                                (static_cast<unsigned long>(id[2]) << 8) | static_cast<unsigned long>(id[3]));
            });
            FrameRef const source = sourceKind.make(kSourceSize);
            FillRandom(*source, sourceKind, 1);
            for (MaskRow const& row : kMasked) {
                auto const mask = CheckedMask(row.maskSize);
                FrameRef const frame = kind.make(kSize);
                FillRandom(*frame, kind, 2);
                Picture expected = Shot(*frame);
                auto const edge = [](int value, int limit) { return value < 1 ? 0 : std::min(value, limit); };
                bool const same = row.from.bottom - row.from.top == row.to.bottom - row.to.top &&
                                  row.from.right - row.from.left == row.to.right - row.to.left;
                float const down = Scale(row.from.top, row.from.bottom, row.to.top, row.to.bottom);
                float const across = Scale(row.from.left, row.from.right, row.to.left, row.to.right);
                for (int y = edge(row.to.top, 12); y < edge(row.to.bottom, 13); ++y)
                    for (int x = edge(row.to.left, 15); x < edge(row.to.right, 16); ++x) {
                        int const sy = same ? y + row.from.top - row.to.top
                                            : static_cast<int>(static_cast<float>(y - row.to.top) * down +
                                                               static_cast<float>(row.from.top));
                        int const sx = same ? x + row.from.left - row.to.left
                                            : static_cast<int>(static_cast<float>(x - row.to.left) * across +
                                                               static_cast<float>(row.from.left));
                        bool const inside = sy >= 0 && sy < 7 && sx >= 0 && sx < 11 &&
                                            y < row.maskSize.vertical && x < row.maskSize.horizontal;
                        if (!inside || (x + y) % 2 == 0) continue;
                        expected(x, y) =
                            kind.setRGBA(expected(x, y), sourceKind.getRGBA(At(*source, sx, sy)));
                    }
                EXPECT_FALSE(frame->StretchBlitMasked(source.Get(), mask.Get(), row.from, row.to));
                EXPECT_TRUE(frame->GetUpdated());
                EXPECT_TRUE(Same(expected, Shot(*frame))) << sourceKind.name << " " << row.what;
            }
        }
}

TEST(StretchBlitMasked, TheFourthByteOfTheMaskDecides) {
    auto const source = MakeLayer<StGray8Pixel>({2, 2});
    for (long i = 0; i < 4; ++i)
        source->PutMatchedPixelAt(i % 2, i / 2, {200});
    for (StKind const& kind : Kinds()) {
        FrameRef const mask = kind.make({2, 2});
        Native ones;
        ones.fill(0xFF);
        for (long i = 0; i < 4; ++i)
            Put(*mask, i % 2, i / 2, ones);
        auto const frame = MakeLayer<StGray8Pixel>({2, 2});
        frame->Erase();
        frame->StretchBlitMasked(source.Get(), mask.Get(), {0, 0, 2, 2}, {0, 0, 2, 2});
        EXPECT_EQ(frame->GetMatchedPixelAt(1, 1).level, kind.bits >= 32 ? 200 : 0) << kind.name;
        ones[3] = 0;
        for (long i = 0; i < 4; ++i)
            Put(*mask, i % 2, i / 2, ones);
        frame->Erase();
        frame->StretchBlitMasked(source.Get(), mask.Get(), {0, 0, 2, 2}, {0, 0, 2, 2});
        EXPECT_EQ(frame->GetMatchedPixelAt(1, 1).level, 0) << kind.name;
    }
}

}  // namespace
