#include <algorithm>

#include "framewright/frame/merge_row.h"
#include "kinds.h"
#include "spies.h"

using namespace testing_frames;

namespace {

/// Straight alpha over straight alpha, written out: three integer divisions a pixel.
StRGBA32Pixel Over(StRGBA32Pixel below, StRGBA32Pixel over) {
    if (over.alpha == 0) return below;
    unsigned const alpha = (255u - below.alpha) * over.alpha / 255 + below.alpha;
    unsigned const weight = alpha - over.alpha;
    auto const mix = [&](unsigned b, unsigned o) {
        return static_cast<std::uint8_t>((o * over.alpha + b * weight) / alpha);
    };
    return {mix(below.blue, over.blue), mix(below.green, over.green), mix(below.red, over.red),
            static_cast<std::uint8_t>(alpha)};
}

std::uint8_t Byte(unsigned value) {
    return static_cast<std::uint8_t>(value);
}

TEST(MergeRGBA, EveryPairOfAlphas_MatchesTheIntegerRule) {
    // One row for each alpha below, one column for each above; several colours for each pair.
    std::mt19937 random(1);
    auto const below = MakeLayer<StRGBA32Pixel>({256, 256});
    auto const above = MakeLayer<StRGBA32Pixel>({256, 256});
    for (int round = 0; round < 8; ++round) {
        for (long y = 0; y < 256; ++y)
            for (long x = 0; x < 256; ++x) {
                auto const bits = random();
                auto const more = random();
                auto const edge = [&](unsigned value) { return round == 0 ? 255u : round == 1 ? 0u : value; };
                below->PutMatchedPixelAt(
                    x, y,
                    {Byte(edge(bits)), Byte(bits >> 8), Byte(bits >> 16), Byte(static_cast<unsigned>(y))});
                above->PutMatchedPixelAt(x, y,
                                         {Byte(255 - edge(more)), Byte(more >> 8), Byte(more >> 16),
                                          Byte(static_cast<unsigned>(x))});
            }
        Picture expected = Shot(*below);
        for (long y = 0; y < 256; ++y)
            for (long x = 0; x < 256; ++x)
                expected(x, y) =
                    ToNative(Over(below->GetMatchedPixelAt(x, y), above->GetMatchedPixelAt(x, y)));
        EXPECT_FALSE(below->MergeRect(above.Get(), {0, 0, 256, 256}, {0, 0}));
        EXPECT_TRUE(below->GetUpdated());
        ASSERT_TRUE(Same(expected, Shot(*below)));
    }
}

TEST(MergeRGBA, EveryColourAndAlpha_OverEveryResultAlpha) {
    // All (n, divisor) that a channel can meet: over an opaque-black and an opaque-white source channel the
    // sums run through every value that matters next to a multiple of the divisor.
    std::vector<StRGBA32Pixel> below, above;
    for (unsigned lower = 0; lower < 256; ++lower)
        for (unsigned upper = 0; upper < 256; ++upper)
            for (unsigned channel : {0u, 1u, 2u, 127u, 128u, 253u, 254u, 255u}) {
                below.push_back({Byte(channel), Byte(255 - channel), 255, Byte(lower)});
                above.push_back({Byte(255 - channel), Byte(channel), Byte(upper), Byte(upper)});
            }
    std::vector<StRGBA32Pixel> merged = below;
    frame::MergeRGBA32(merged.data(), above.data(), static_cast<long>(merged.size()));
    for (std::size_t i = 0; i < merged.size(); ++i)
        ASSERT_EQ(merged[i], Over(below[i], above[i]))
            << testing::PrintToString(below[i]) << " under " << testing::PrintToString(above[i]);
}

TEST(MergeRGBA, RunsAndTails_OfAnyLength) {
    std::mt19937 random(2);
    for (int width = 0; width < 23; ++width)
        for (int left = 0; left < 3; ++left)
            for (int pattern = 0; pattern < 4; ++pattern) {
                auto const below = MakeLayer<StRGBA32Pixel>({2, 30});
                auto const above = MakeLayer<StRGBA32Pixel>({2, 30});
                FillRandom(*below, KindOfID(SrCode("ColB")), random());
                FillRandom(*above, KindOfID(SrCode("ColB")), random());
                for (long x = 0; x < 30; ++x)
                    for (long y = 0; y < 2; ++y) {
                        StRGBA32Pixel pixel = above->GetMatchedPixelAt(x, y);
                        if (pattern == 0) pixel.alpha = 0;
                        if (pattern == 1) pixel.alpha = 255;
                        if (pattern == 2) pixel.alpha = x % 7 < 4 ? 255 : 0;
                        above->PutMatchedPixelAt(x, y, pixel);
                    }
                Picture expected = Shot(*below);
                for (long y = 0; y < 2; ++y)
                    for (long x = 0; x < width; ++x)
                        expected(left + x, y) = ToNative(
                            Over(below->GetMatchedPixelAt(left + x, y), above->GetMatchedPixelAt(x + 1, y)));
                below->MergeRect(above.Get(), {0, 1, 2, 1 + width}, {0, left});
                ASSERT_TRUE(Same(expected, Shot(*below))) << width << " wide, pattern " << pattern;
            }
}

TEST(MergeRGBA, OntoItself_GoesFromLeftToRight) {
    for (int to : {0, 1, 3, 4, 5}) {
        auto const layer = MakeLayer<StRGBA32Pixel>({1, 40});
        FillRandom(*layer, KindOfID(SrCode("ColB")), 8);
        std::vector<StRGBA32Pixel> row;
        for (long x = 0; x < 40; ++x)
            row.push_back(layer->GetMatchedPixelAt(x, 0));
        for (std::size_t x = 0; x < 30; ++x) {
            std::size_t const at = x + static_cast<std::size_t>(to);
            row[at] = Over(row[at], row[x + 2]);
        }
        layer->MergeRect(layer.Get(), {0, 2, 1, 32}, {0, to});
        for (long x = 0; x < 40; ++x)
            EXPECT_EQ(layer->GetMatchedPixelAt(x, 0), row[static_cast<std::size_t>(x)]);
    }
}

TEST(Merge, AnOpaqueSourceReplaces_ATransparentOneDoesNothing) {
    auto const below = MakeLayer<StRGBA32Pixel>({1, 2});
    auto const above = MakeLayer<StRGBA32Pixel>({1, 2});
    below->PutMatchedPixelAt(0, 0, {9, 9, 9, 9});
    below->PutMatchedPixelAt(1, 0, {9, 9, 9, 9});
    above->PutMatchedPixelAt(0, 0, {1, 2, 3, 255});
    above->PutMatchedPixelAt(1, 0, {1, 2, 3, 0});
    below->MergeRect(above.Get(), {0, 0, 1, 2}, {0, 0});
    EXPECT_EQ(below->GetMatchedPixelAt(0, 0), (StRGBA32Pixel{1, 2, 3, 255}));
    EXPECT_EQ(below->GetMatchedPixelAt(1, 0), (StRGBA32Pixel{9, 9, 9, 9}));
}

template <class Record>
class MergeOfLikes : public testing::Test {};
TYPED_TEST_SUITE(MergeOfLikes, AllRecords);

/// What merging gives for a record: its own rule, the truncated mean for integer depths, nothing for indices.
template <class Record>
Record Merged(Record below, Record const& above) {
    if constexpr (requires { below.Merge(above); }) {
        below.Merge(above);
    } else if constexpr (requires { below.depth; }) {
        double const mean = (static_cast<double>(below.depth) + static_cast<double>(above.depth)) * 0.5;
        below.depth = static_cast<std::uint32_t>(mean) & (0xFFFFFFFFu >> (32 - Record::PixelSize()));
    }
    return below;
}

TYPED_TEST(MergeOfLikes, UsesTheRecordsRule) {
    StKind const& kind = KindOfID(TypeParam::PixelID());
    auto const below = MakeLayer<TypeParam>({5, 19});
    auto const above = MakeLayer<TypeParam>({4, 23});
    FillRandom(*below, kind, 1);
    FillRandom(*above, kind, 2);
    Picture expected = Shot(*below);
    for (long y = 1; y < 4; ++y)
        for (long x = 3; x < 17; ++x)
            expected(x - 1, y + 1) =
                ToNative(Merged(below->GetMatchedPixelAt(x - 1, y + 1), above->GetMatchedPixelAt(x, y)));
    EXPECT_FALSE(below->MergeRect(above.Get(), {1, 3, 4, 17}, {2, 2}));
    EXPECT_TRUE(below->GetUpdated());
    EXPECT_TRUE(Same(expected, Shot(*below)));
}

TEST(Merge, IntegerDepths_TakeTheTruncatedMean_InWideSums) {
    auto const below = MakeLayer<StDepthUInt32Pixel>({1, 1});
    auto const above = MakeLayer<StDepthUInt32Pixel>({1, 1});
    below->PutMatchedPixelAt(0, 0, {0xFFFFFFFF});
    above->PutMatchedPixelAt(0, 0, {0xFFFFFFFE});
    below->MergeRect(above.Get(), {0, 0, 1, 1}, {0, 0});
    EXPECT_EQ(below->GetMatchedPixelAt(0, 0).depth, 0xFFFFFFFEu);
    auto const low = MakeLayer<StDepthUInt8Pixel>({1, 1});
    auto const high = MakeLayer<StDepthUInt8Pixel>({1, 1});
    low->PutMatchedPixelAt(0, 0, {4});
    high->PutMatchedPixelAt(0, 0, {251});
    low->MergeRect(high.Get(), {0, 0, 1, 1}, {0, 0});
    EXPECT_EQ(low->GetMatchedPixelAt(0, 0).depth, 127);
}

TEST(Merge, OfDifferentTypes_GoesThroughRGBA) {
    for (StKind const& sourceKind : Kinds())
        for (StKind const& kind : Kinds()) {
            if (sourceKind.id == kind.id) continue;
            FrameRef const source = sourceKind.make({4, 9});
            FrameRef const frame = kind.make({5, 11});
            FillRandom(*source, sourceKind, 1);
            FillRandom(*frame, kind, 2);
            Picture expected = Shot(*frame);
            for (long y = 0; y < 3; ++y)
                for (long x = 1; x < 8; ++x) {
                    Native& pixel = expected(x + 1, y + 2);
                    pixel =
                        kind.setRGBA(pixel, Over(kind.getRGBA(pixel), sourceKind.getRGBA(At(*source, x, y))));
                }
            EXPECT_FALSE(frame->MergeRect(source.Get(), {0, 1, 3, 8}, {2, 2}));
            EXPECT_TRUE(frame->GetUpdated());
            EXPECT_TRUE(Same(expected, Shot(*frame))) << sourceKind.name << " over " << kind.name;
        }
}

TEST(Merge, BetweenLikes_EndsWithoutRelease) {
    using Log = std::vector<std::string>;
    auto const frame = Spy<StRGBA32Pixel>::Make({4, 4});
    auto const like = MakeLayer<StRGBA32Pixel>({4, 4});
    auto const other = MakeLayer<StGray8Pixel>({4, 4});
    frame->MergeRect(like.Get(), {0, 0, 2, 3}, {1, 1});
    EXPECT_EQ(frame->log, (Log{"ensure 1 1 3 4"}));
    frame->log.clear();
    frame->MergeRect(other.Get(), {0, 0, 2, 3}, {1, 1});
    EXPECT_EQ(frame->log, (Log{"ensure 1 1 3 4", "release"}));
}

}  // namespace
