// When two samples count as one.
#include <cstdlib>

#include "imagery/images.h"

namespace {

using namespace testing_images;

/// An image of two pixels.
struct Pair {
    explicit Pair(StRGBA32Pixel a, StRGBA32Pixel b) : image(NewImage()) {
        image->AddLayer(NewColor({1, 2}).Get());
        image->PutRGBAAt(0, 0, a);
        image->PutRGBAAt(1, 0, b);
    }
    bool Match(unsigned char which) { return image->SamplesMatch(0, 0, 1, 0, which); }
    StRef<Image> image;
};

constexpr StRGBAFloatPixel OfBytes(int red, int green, int blue, int alpha) {
    // Half a step more, so that truncation gives the byte.
    return {(red + 0.5F) / 255, (green + 0.5F) / 255, (blue + 0.5F) / 255, (alpha + 0.5F) / 255};
}

TEST(ImageRanges, StartAtAHundredth) {
    auto const image = NewImage();
    for (bool second : {false, true}) {
        StRGBAFloatPixel range{};
        image->GetRange(range, second);
        EXPECT_EQ(range.red, 0.01F);
        EXPECT_EQ(range.green, 0.01F);
        EXPECT_EQ(range.blue, 0.01F);
        EXPECT_EQ(range.alpha, 0.01F);
    }
}

TEST(ImageRanges, SetRange_SetsBothOrTheSecond) {
    auto const image = NewImage();
    StRGBAFloatPixel range{};
    image->SetRange({0.1F, 0.2F, 0.3F, 0.4F}, false);
    image->GetRange(range, false);
    EXPECT_EQ(range.green, 0.2F);
    image->GetRange(range, true);
    EXPECT_EQ(range.alpha, 0.4F);
    image->SetRange({0.5F, 0.6F, 0.7F, 0.8F}, true);
    image->GetRange(range, false);
    EXPECT_EQ(range.red, 0.1F);
    image->GetRange(range, true);
    EXPECT_EQ(range.red, 0.5F);
    EXPECT_EQ(range.blue, 0.7F);
}

// Until a range is set: one step in each byte, and masks of 0xFE.
TEST(ImageRanges, ByDefaultOneStepMatchesAndTwoDoNot) {
    for (unsigned char which : {0, 1}) {
        EXPECT_TRUE(Pair({10, 10, 10, 10}, {10, 10, 10, 10}).Match(which));
        EXPECT_TRUE(Pair({10, 10, 10, 10}, {11, 11, 11, 11}).Match(which));  // by the mask
        EXPECT_TRUE(Pair({11, 11, 11, 11}, {12, 12, 12, 12}).Match(which));  // by the tolerance
        EXPECT_FALSE(Pair({10, 10, 10, 10}, {12, 10, 10, 10}).Match(which));
        EXPECT_FALSE(Pair({10, 10, 10, 10}, {10, 12, 10, 10}).Match(which));
        EXPECT_FALSE(Pair({10, 10, 10, 10}, {10, 10, 12, 10}).Match(which));
        EXPECT_FALSE(Pair({10, 10, 10, 10}, {10, 10, 10, 12}).Match(which));
    }
}

TEST(ImageRanges, EachChannelHasItsOwnTolerance) {
    // Red 3, green 5, blue 0, alpha 20: the masks keep the bits from 7 down to the first of these.
    StRGBAFloatPixel const range = OfBytes(3, 5, 0, 20);
    struct Row {
        StRGBA32Pixel a, b;  // blue, green, red, alpha
        bool match;
    } const rows[] = {
        {{9, 9, 9, 9}, {9, 9, 9, 9}, true},
        {{9, 9, 7, 9}, {9, 9, 10, 9}, true},   // red by 3, across a step
        {{9, 9, 7, 9}, {9, 9, 11, 9}, false},  // by 4
        {{9, 9, 11, 9}, {9, 9, 7, 9}, false},
        {{9, 7, 9, 9}, {9, 12, 9, 9}, true},   // green by 5
        {{9, 7, 9, 9}, {9, 13, 9, 9}, false},  // by 6
        {{9, 9, 9, 9}, {8, 9, 9, 9}, false},   // blue by 1
        {{9, 9, 9, 15}, {9, 9, 9, 35}, true},  // alpha by 20
        {{9, 9, 9, 15}, {9, 9, 9, 36}, false},
    };
    for (Row const& row : rows) {
        Pair pair(row.a, row.b);
        pair.image->SetRange(range, false);
        EXPECT_EQ(pair.Match(0), row.match) << &row - rows;
        EXPECT_EQ(pair.Match(1), row.match) << &row - rows;
    }
}

// The masks keep the bits down to the highest one of the tolerance: samples that they make equal always
// match.
TEST(ImageRanges, TheMaskNeverMatchesMoreThanTheTolerance) {
    for (int tolerance : {0, 1, 2, 3, 4, 7, 8, 0x40, 0x7F, 0x80, 0xFE}) {
        auto const image = NewImage();
        image->AddLayer(NewColor({1, 256}).Get());
        for (long x = 0; x < 256; ++x) {
            auto const level = static_cast<std::uint8_t>(x);
            image->PutRGBAAt(x, 0, {level, 1, 2, 3});
        }
        image->SetRange(OfBytes(0, 0, tolerance, 0), false);
        for (long a = 0; a < 256; a += 5)
            for (long b = 0; b < 256; ++b)
                ASSERT_EQ(image->SamplesMatch(a, 0, b, 0, 0), std::abs(a - b) <= tolerance)
                    << a << " " << b << " " << tolerance;
    }
}

TEST(ImageRanges, TheSecondRangeIsItsOwn) {
    Pair pair({10, 10, 10, 10}, {15, 15, 15, 15});
    pair.image->SetRange(OfBytes(10, 10, 10, 10), true);
    EXPECT_FALSE(pair.Match(0));
    EXPECT_TRUE(pair.Match(1));
    EXPECT_TRUE(pair.Match(255));  // any other value is the second one
}

// --- callbacks

TEST(ImageRanges, CallbacksAreOfferedTheResult) {
    std::vector<std::string> log;
    Pair pair({1, 2, 3, 4}, {101, 2, 3, 4});
    auto const a = NewRecorder("a", log);
    auto const b = NewRecorder("b", log);
    pair.image->AddCallback(a.Get());
    pair.image->AddCallback(b.Get());
    EXPECT_FALSE(pair.Match(1));
    EXPECT_EQ(log, (std::vector<std::string>{"a compare 0 0 1 0 1", "04030201 04030265",
                                             "b compare 0 0 1 0 1", "04030201 04030265"}));
    EXPECT_EQ(a->image, pair.image.Get());
}

TEST(ImageRanges, ACallbackMayMakeThemMatch) {
    std::vector<std::string> log;
    Pair pair({1, 2, 3, 4}, {101, 2, 3, 4});
    auto const a = NewRecorder("a", log);
    pair.image->AddCallback(a.Get());
    pair.image->AddCallback(NewRecorder("b", log).Get());
    a->setsResult = a->result = true;
    EXPECT_TRUE(pair.Match(0));
    EXPECT_EQ(log.size(), 2u);  // the walk has ended
    a->stop = true;             // the result is looked at first
    EXPECT_TRUE(pair.Match(0));
}

TEST(ImageRanges, ACallbackMayStopTheWalk) {
    std::vector<std::string> log;
    Pair pair({1, 2, 3, 4}, {101, 2, 3, 4});
    auto const a = NewRecorder("a", log);
    auto const b = NewRecorder("b", log);
    pair.image->AddCallback(a.Get());
    pair.image->AddCallback(b.Get());
    a->stop = true;
    b->setsResult = b->result = true;
    EXPECT_FALSE(pair.Match(0));
    EXPECT_EQ(log.size(), 2u);
    a->stop = false;
    EXPECT_TRUE(pair.Match(0));
}

TEST(ImageRanges, ACallbackMaySayThatAMatchIsNone) {
    std::vector<std::string> log;
    Pair pair({1, 2, 3, 4}, {1, 2, 3, 4});
    auto const a = NewRecorder("a", log);
    pair.image->AddCallback(a.Get());
    EXPECT_TRUE(pair.Match(0));
    EXPECT_EQ(log, (std::vector<std::string>{"a compare 0 0 1 0 0", "04030201 04030201 same"}));
    a->setsResult = true;  // false, but without a stop the value that there was stands
    EXPECT_TRUE(pair.Match(0));
    a->stop = true;
    EXPECT_FALSE(pair.Match(0));
}

}  // namespace
