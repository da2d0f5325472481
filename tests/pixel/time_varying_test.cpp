// Constant and keyed colours: what they hold, and what is read from them.
#include <bit>
#include <cstdint>

#include "time_varying_test_support.h"

using namespace time_test;
using color_test::ErrorOf;
using color_test::ScRefuseAllocations;

namespace {

StColorFloats RedOf(std::uint32_t bits) {
    return {std::bit_cast<float>(bits), 0.5f, std::bit_cast<float>(0x3F000001u)};
}

}  // namespace

// The constant.

TEST(TimeVaryingColor, TakesTwelveBytes) {
    EXPECT_EQ(sizeof(StETV<StColorFloats, StColorFloats, ScNCg<StColorFloats>>), 12u);
    EXPECT_EQ(sizeof(StTimeVaryingColor[3]), 36u);
}

TEST(TimeVaryingColor, IsBornConstant) {
    StTimeVaryingColor black;
    EXPECT_FALSE(black.IsTimeVarying());
    EXPECT_EQ(Of(black.GetValue(0.0)), Of({0.0f, 0.0f, 0.0f}));
    StTimeVaryingColor color(Color(2.0f));
    EXPECT_FALSE(color.IsTimeVarying());
    for (double time : {-kInfinity, -1.0, 0.0, 0.5, 1e9, kInfinity, kNoTime})
        EXPECT_EQ(Of(color.GetValue(time)), Of(Color(2.0f))) << time;
}

TEST(TimeVaryingColor, AConstantLosesTheLastBitOfRed) {
    struct {
        std::uint32_t red, expected;
    } const rows[] = {
        {0x3F800000, 0x3F800000},  // 1.0
        {0x3F800001, 0x3F800000}, {0x3F800002, 0x3F800002}, {0x3F800003, 0x3F800002},
        {0x00000000, 0x00000000}, {0x00000001, 0x00000000}, {0x80000001, 0x80000000},
        {0xBF7FFFFF, 0xBF7FFFFE}, {0x7F7FFFFF, 0x7F7FFFFE}, {0x7F800000, 0x7F800000},
    };
    for (auto const& row : rows) {
        StColorFloats const expected = RedOf(row.expected);  // green and blue keep all bits
        StTimeVaryingColor const made(RedOf(row.red));
        EXPECT_EQ(Of(made.GetValue(0.0)), Of(expected)) << std::hex << row.red;
        StTimeVaryingColor assigned(Color(7.0f));
        assigned = RedOf(row.red);
        EXPECT_EQ(Of(assigned.GetValue(0.0)), Of(expected)) << std::hex << row.red;
        StTimeVaryingColor set(Color(7.0f));
        set.SetExtendedValue(0.0, RedOf(row.red));
        EXPECT_EQ(Of(set.GetValue(0.0)), Of(expected)) << std::hex << row.red;
    }
}

TEST(TimeVaryingColor, KeysKeepTheLastBitOfRed) {
    StTimeVaryingColor color(Color(0.0f));
    color.SetExtendedValue(1.0, RedOf(0x3F800001));
    EXPECT_EQ(Of(color.GetValue(1.0)), Of(RedOf(0x3F800001)));
    color.SetExtendedValue(0.0, RedOf(0x3F800003));
    EXPECT_EQ(Of(color.GetValue(0.0)), Of(RedOf(0x3F800003)));
    // Until one of them becomes the constant.
    color.DeleteKeyTimes(0.0, kInfinity);
    EXPECT_EQ(Of(color.GetValue(0.0)), Of(RedOf(0x3F800002)));
}

TEST(TimeVaryingColor, TheTagIsTheLowestBitOfTheFirstByte) {
    StTimeVaryingColor color(RedOf(0x3F80FFFF));
    EXPECT_EQ(BytesOf(color)[0], 0xFE);
    EXPECT_EQ(BytesOf(color)[1], 0xFF);
    EXPECT_EQ(BytesOf(color)[2], 0x80);
    EXPECT_EQ(BytesOf(color)[3], 0x3F);
    color.SetExtendedValue(1.0, Color(1.0f));
    EXPECT_EQ(BytesOf(color)[0] & 1, 1);
    EXPECT_TRUE(color.IsTimeVarying());
    // The rest of the first word is where the storage lies.
    StTimeVaryingColor const& read = color;
    std::uintptr_t word;
    std::memcpy(&word, BytesOf(color).data(), sizeof word);
    EXPECT_EQ(word - 1, reinterpret_cast<std::uintptr_t>(read.GetTimeVarying()));
}

TEST(TimeVaryingColor, AConstantTakesNoMemory) {
    ScRefuseAllocations const refuse(0);
    StTimeVaryingColor color(Color(1.0f));
    StTimeVaryingColor copy(color);
    copy = Color(2.0f);
    color = copy;
    color.SetExtendedValue(0.0, Color(3.0f));
    color.DeleteKeyTimes(0.0, kInfinity);
    color.ForceKeyTime(0.0);
    Recorder recorder;
    color.EachKeyTime(recorder);
    color.EachKeyTimeSpan(recorder);
    EXPECT_EQ(Of(color.GetValue(9.0)), Of(Color(3.0f)));
    EXPECT_EQ(color.GetNumKeyTimes(), 1);
    StTimeVaryingColor const& read = color;
    EXPECT_EQ(read.GetTimeVarying(), SrGetConstNonTimeVarying());
    EXPECT_EQ(ScRefuseAllocations::Seen(), 0);
}

TEST(TimeVaryingColor, AConstantAsksNoInterpolator) {
    StTimeVaryingColor const color(Color(1.0f));
    Counter counter;
    StColorFloats out{};
    color.ReallyGetValue(5.0, out, counter);
    EXPECT_EQ(Of(out), Of(Color(1.0f)));
    EXPECT_EQ(Of(color.GetValue(5.0, counter)), Of(Color(1.0f)));
    EXPECT_TRUE(counter.calls.empty());
}

// Setting keys.

TEST(TimeVaryingColor, SetAtZeroStaysConstant) {
    for (double time : {0.0, -0.0, 0.9e-6, -0.9e-6, 1e-6}) {
        StTimeVaryingColor color(Color(1.0f));
        color.SetExtendedValue(time, Color(2.0f));
        EXPECT_FALSE(color.IsTimeVarying()) << time;
        EXPECT_EQ(Of(color.GetValue(5.0)), Of(Color(2.0f))) << time;
    }
}

TEST(TimeVaryingColor, SetElsewhereMakesTwoKeys) {
    for (double time : {1.0, 1.1e-6, 1e300, kInfinity}) {
        StTimeVaryingColor color(Color(1.0f));
        color.SetExtendedValue(time, Color(2.0f));
        EXPECT_TRUE(color.IsTimeVarying()) << time;
        EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {time, 2.0f}}));
    }
    // Also before 0.0, where no keys are in normal use.
    StTimeVaryingColor color(Color(1.0f));
    color.SetExtendedValue(-3.0, Color(2.0f));
    EXPECT_EQ(KeysOf(color), (Keys{{-3.0, 2.0f}, {0.0, 1.0f}}));
}

TEST(TimeVaryingColor, SetOnceMoreAddsOrOverwrites) {
    StTimeVaryingColor color = Keyed({{0.0, 1.0f}, {10.0, 2.0f}});
    color.SetExtendedValue(5.0, Color(3.0f));
    color.SetExtendedValue(20.0, Color(4.0f));
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {5.0, 3.0f}, {10.0, 2.0f}, {20.0, 4.0f}}));
    color.SetExtendedValue(10.0 + 0.9e-6, Color(5.0f));  // the key's time stays
    color.SetExtendedValue(5.0 - 0.9e-6, Color(6.0f));
    color.SetExtendedValue(0.0, Color(7.0f));
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 7.0f}, {5.0, 6.0f}, {10.0, 5.0f}, {20.0, 4.0f}}));
    color.SetExtendedValue(10.0 + 1.1e-6, Color(8.0f));
    EXPECT_EQ(color.GetNumKeyTimes(), 5);
}

TEST(TimeVaryingColor, AKeyNearTwoIsTheEarlier) {
    StTimeVaryingColor color = Keyed({{0.0, 1.0f}, {10.0, 2.0f}, {10.0 + 1.6e-6, 3.0f}});
    color.SetExtendedValue(10.0 + 0.8e-6, Color(4.0f));
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {10.0, 4.0f}, {10.0 + 1.6e-6, 3.0f}}));
}

TEST(TimeVaryingColor, WhatIsNoTimeSetsNothing) {
    StTimeVaryingColor constant(Color(1.0f));
    constant.SetExtendedValue(kNoTime, Color(2.0f));
    EXPECT_FALSE(constant.IsTimeVarying());
    EXPECT_EQ(Of(constant.GetValue(0.0)), Of(Color(1.0f)));
    StTimeVaryingColor keyed = Keyed({{0.0, 1.0f}, {10.0, 2.0f}});
    keyed.SetExtendedValue(kNoTime, Color(3.0f));
    keyed.ForceKeyTime(kNoTime);
    EXPECT_EQ(KeysOf(keyed), (Keys{{0.0, 1.0f}, {10.0, 2.0f}}));
    EXPECT_EQ(Of(keyed.GetValue(kNoTime)), Of(Color(1.0f)));
}

TEST(TimeVaryingColor, ForceTimeVaryingGivesOneKey) {
    StTimeVaryingColor color(Color(1.0f));
    color.ForceTimeVarying();
    EXPECT_TRUE(color.IsTimeVarying());
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}}));
    EXPECT_EQ(color.GetNumKeyTimes(), 1);
    for (double time : {-1.0, 0.0, 5.0, kInfinity})
        EXPECT_EQ(Of(color.GetValue(time)), Of(Color(1.0f))) << time;
    StTimeVaryingColor keyed = Keyed({{0.0, 1.0f}, {10.0, 2.0f}});
    keyed.ForceTimeVarying();
    EXPECT_EQ(KeysOf(keyed), (Keys{{0.0, 1.0f}, {10.0, 2.0f}}));
}

TEST(TimeVaryingColor, ForceKeyTimeKeepsTheCurve) {
    StTimeVaryingColor color = Keyed({{0.0, 1.0f}, {8.0, 5.0f}, {16.0, 1.0f}});
    color.ForceKeyTime(2.0);
    color.ForceKeyTime(8.0);
    color.ForceKeyTime(12.0);
    color.ForceKeyTime(20.0);
    EXPECT_EQ(KeysOf(color),
              (Keys{{0.0, 1.0f}, {2.0, 2.0f}, {8.0, 5.0f}, {12.0, 3.0f}, {16.0, 1.0f}, {20.0, 1.0f}}));
    StTimeVaryingColor held = Keyed({{0.0, 1.0f}, {8.0, 5.0f}});
    Hold hold;
    held.ForceKeyTime(4.0, hold);
    EXPECT_EQ(KeysOf(held), (Keys{{0.0, 1.0f}, {4.0, 1.0f}, {8.0, 5.0f}}));
}

TEST(TimeVaryingColor, ForceKeyTimeOfAConstant) {
    StTimeVaryingColor color(Color(1.0f));
    color.ForceKeyTime(0.0);
    EXPECT_FALSE(color.IsTimeVarying());
    color.ForceKeyTime(5.0);
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {5.0, 1.0f}}));
}

// Reading.

TEST(TimeVaryingColor, ReadsBetweenKeys) {
    Keys const keys = {{0.0, 0.0f}, {8.0, 8.0f}, {16.0, 4.0f}, {16.5, 64.0f}};
    struct {
        double time;
        float color;
    } const rows[] = {
        {0.0, 0.0f},          {2.0, 2.0f},
        {7.5, 7.5f},          {8.0, 8.0f},
        {10.0, 7.0f},         {12.0, 6.0f},
        {16.0, 4.0f},         {16.25, 34.0f},
        {16.5, 64.0f},        {17.0, 64.0f},
        {kInfinity, 64.0f},   {-1.0, 0.0f},
        {-kInfinity, 0.0f},   {8.0 + 0.9e-6, 8.0f},  // a key's own value, exactly
        {8.0 - 0.9e-6, 8.0f}, {16.5 + 0.9e-6, 64.0f},
    };
    for (auto const& row : rows) {
        StTimeVaryingColor const color = Keyed(keys);
        EXPECT_EQ(Of(color.GetValue(row.time)), Of(Color(row.color))) << row.time;
        StColorFloats out{}, ignored{};
        auto& linear = ScLI<StColorFloats>::GetInterpolator();
        color.ReallyGetValue(row.time, out, linear);
        EXPECT_EQ(Of(out), Of(Color(row.color))) << row.time;
        int context = 0;
        color.ReallyGetValue(row.time, ignored, linear, &context);
        EXPECT_EQ(Of(ignored), Of(Color(row.color))) << row.time;
        EXPECT_EQ(Of(color.ReallyGetValue(row.time, linear)), Of(Color(row.color))) << row.time;
    }
}

TEST(TimeVaryingColor, BeforeTheFirstKeyIsTheFirst) {
    StTimeVaryingColor color(Color(1.0f));
    color.SetExtendedValue(-4.0, Color(3.0f));
    EXPECT_EQ(Of(color.GetValue(-5.0)), Of(Color(3.0f)));
    EXPECT_EQ(Of(color.GetValue(-2.0)), Of(Color(2.0f)));
}

TEST(TimeVaryingColor, TheWeightIsTakenInDoublesAndNarrowed) {
    // In floats these times would be 16777216, 16777216 and 16777220.
    StTimeVaryingColor color(Color(0.0f));
    color.SetExtendedValue(16777216.0, Color(0.0f));
    color.SetExtendedValue(16777219.0, Color(3.0f));
    Counter counter;
    color.GetValue(16777217.0, counter);
    using testing::ElementsAre;
    EXPECT_THAT(counter.calls,
                ElementsAre(std::make_tuple(std::bit_cast<float>(0x3EAAAAABu), 16777216.0, 16777219.0)));
}

TEST(TimeVaryingColor, KeysAndTheirNeighboursNeedNoInterpolator) {
    StTimeVaryingColor const color = Keyed({{0.0, 1.0f}, {10.0, 2.0f}, {20.0, 3.0f}});
    Counter counter;
    for (double time : {-5.0, 0.0, 0.9e-6, 10.0 - 0.9e-6, 10.0, 10.0 + 0.9e-6, 20.0, 30.0})
        color.GetValue(time, counter);
    EXPECT_TRUE(counter.calls.empty());
}

TEST(LinearInterpolator, IsDifferenceTimesWeightPlusFirst) {
    ScLI<StColorFloats>& linear = ScLI<StColorFloats>::GetInterpolator();
    EXPECT_EQ(&linear, &ScLI<StColorFloats>::GetInterpolator());
    EXPECT_STREQ(linear.GetInterpolatorName(), "ScLinearInterpolator");
    StColorFloats out{};
    linear.Interpolate(0.25f, 3.0, 1.0, {0.0f, 4.0f, -1.0f}, {8.0f, 0.0f, 1.0f}, out);
    EXPECT_EQ(Of(out), Of({2.0f, 3.0f, -0.5f}));
    // Outside 0 to 1 it goes on.
    linear.Interpolate(2.0f, 0.0, 0.0, {0.0f, 4.0f, -1.0f}, {8.0f, 0.0f, 1.0f}, out);
    EXPECT_EQ(Of(out), Of({16.0f, -4.0f, 3.0f}));
    // In floats: 3 - 1e8 rounds to -1e8, and a weight of 1 gives 0, not 3.
    linear.Interpolate(1.0f, 0.0, 0.0, {1e8f, 0.0f, 0.0f}, {3.0f, 0.0f, 0.0f}, out);
    EXPECT_EQ(Of(out), Of({0.0f, 0.0f, 0.0f}));
    // The result may be one of the two.
    StColorFloats a{0.0f, 1.0f, 2.0f}, b{4.0f, 4.0f, 4.0f};
    linear.Interpolate(0.5f, 0.0, 0.0, a, b, a);
    EXPECT_EQ(Of(a), Of({2.0f, 2.5f, 3.0f}));
}

TEST(Interpolator, AHostMayHaveItsOwn) {
    StTimeVaryingColor const color = Keyed({{0.0, 1.0f}, {10.0, 2.0f}});
    Hold hold;
    EXPECT_EQ(Of(color.GetValue(9.0, hold)), Of(Color(1.0f)));
    EXPECT_EQ(Of(color.GetValue(10.0, hold)), Of(Color(2.0f)));
    EXPECT_STREQ(hold.GetInterpolatorName(), "");
}

// What is remembered.

TEST(TimeVaryingColor, TwoTimesAreRemembered) {
    StTimeVaryingColor const color = Keyed({{0.0, 0.0f}, {16.0, 16.0f}});
    Counter counter;
    for (int turn = 0; turn < 10; ++turn) {
        EXPECT_EQ(Of(color.GetValue(2.0, counter)), Of(Color(2.0f)));
        EXPECT_EQ(Of(color.GetValue(6.0, counter)), Of(Color(6.0f)));
    }
    EXPECT_EQ(counter.calls.size(), 2u);
    color.GetValue(2.0 + 0.9e-6, counter);  // nearly equal is found too
    EXPECT_EQ(counter.calls.size(), 2u);
    color.GetValue(8.0, counter);  // takes the place of 6.0, which was used before 2.0
    color.GetValue(2.0, counter);
    EXPECT_EQ(counter.calls.size(), 3u);
    color.GetValue(6.0, counter);
    EXPECT_EQ(counter.calls.size(), 4u);
}

TEST(TimeVaryingColor, WhatIsRememberedDoesNotAskHowItCameToBe) {
    StTimeVaryingColor const color = Keyed({{0.0, 1.0f}, {10.0, 2.0f}});
    Hold hold;
    EXPECT_EQ(Of(color.GetValue(5.0, hold)), Of(Color(1.0f)));
    EXPECT_EQ(Of(color.GetValue(5.0)), Of(Color(1.0f)));
}

TEST(TimeVaryingColor, AKeyThatIsSetIsRememberedAndTheOtherEntryStays) {
    // Kept as it is: a value that was interpolated from the old key stays until other times push it out.
    StTimeVaryingColor color = Keyed({{0.0, 0.0f}, {8.0, 8.0f}});
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(4.0f)));
    color.SetExtendedValue(8.0, Color(16.0f));
    EXPECT_EQ(Of(color.GetValue(8.0)), Of(Color(16.0f)));
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(4.0f))) << "stale";
    EXPECT_EQ(Of(color.GetValue(2.0)), Of(Color(4.0f))) << "new";
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(4.0f))) << "still stale: 8.0 was older";
    EXPECT_EQ(Of(color.GetValue(6.0)), Of(Color(12.0f)));
    EXPECT_EQ(Of(color.GetValue(2.0)), Of(Color(4.0f)));
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(8.0f))) << "aged out";
}

TEST(TimeVaryingColor, EveryTimeThatIsReadIsRemembered) {
    // Behind the last key.
    StTimeVaryingColor color = Keyed({{0.0, 0.0f}, {8.0, 8.0f}});
    EXPECT_EQ(Of(color.GetValue(16.0)), Of(Color(8.0f)));
    color.SetExtendedValue(24.0, Color(24.0f));
    EXPECT_EQ(Of(color.GetValue(16.0)), Of(Color(8.0f))) << "stale";
    color.GetValue(1.0);
    color.GetValue(2.0);
    EXPECT_EQ(Of(color.GetValue(16.0)), Of(Color(16.0f))) << "aged out";

    // With a single key.
    color = Color(0.0f);
    color.ForceTimeVarying();
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(0.0f)));
    color.SetExtendedValue(8.0, Color(8.0f));
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(0.0f))) << "stale";

    // At a key: it takes the place of another time.
    color = Keyed({{0.0, 0.0f}, {8.0, 8.0f}});
    Counter counter;
    color.GetValue(4.0, counter);
    color.GetValue(0.0, counter);
    color.GetValue(8.0, counter);
    EXPECT_EQ(counter.calls.size(), 1u);
    color.GetValue(4.0, counter);
    EXPECT_EQ(counter.calls.size(), 2u);
}

TEST(TimeVaryingColor, AKeySetAtARememberedTimeReplacesIt) {
    StTimeVaryingColor color = Keyed({{0.0, 0.0f}, {8.0, 8.0f}});
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(4.0f)));
    color.SetExtendedValue(4.0, Color(1.0f));
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(1.0f)));
}

TEST(TimeVaryingColor, EditingForgetsWhatIsRemembered) {
    struct {
        char const* name;
        void (*edit)(StTimeVaryingColor&);
        float expected;
    } const rows[] = {
        {"delete", [](StTimeVaryingColor& c) { c.DeleteKeyTimes(8.0, 8.0); }, 2.0f},
        {"move", [](StTimeVaryingColor& c) { c.MoveKeyTimes(8.0, 8.0, 4.0); }, 5.333333f},
        {"copy", [](StTimeVaryingColor& c) { c.CopyKeyTimes(16.0, 16.0, -14.0); }, 10.666667f},
        {"delete nothing, but look anew",
         [](StTimeVaryingColor& c) {
             c.SetExtendedValue(8.0, Color(32.0f));
             c.DeleteKeyTimes(100.0, 200.0);
         },
         16.0f},
        {"move nothing",
         [](StTimeVaryingColor& c) {
             c.SetExtendedValue(8.0, Color(32.0f));
             c.MoveKeyTimes(100.0, 200.0, 1.0);
         },
         16.0f},
        {"copy nothing",
         [](StTimeVaryingColor& c) {
             c.SetExtendedValue(8.0, Color(32.0f));
             c.CopyKeyTimes(100.0, 200.0, 1.0);
         },
         16.0f},
    };
    for (auto const& row : rows) {
        StTimeVaryingColor color = Keyed({{0.0, 0.0f}, {8.0, 16.0f}, {16.0, 8.0f}});
        EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(8.0f)));
        row.edit(color);
        EXPECT_FLOAT_EQ(color.GetValue(4.0).red, row.expected) << row.name;
    }
}

TEST(TimeVaryingColor, MovingByNothingForgetsNothing) {
    StTimeVaryingColor color = Keyed({{0.0, 0.0f}, {8.0, 8.0f}});
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(4.0f)));
    color.SetExtendedValue(8.0, Color(16.0f));
    color.MoveKeyTimes(0.0, kInfinity, 1e-7);
    color.CopyKeyTimes(0.0, kInfinity, -1e-7);
    EXPECT_EQ(Of(color.GetValue(4.0)), Of(Color(4.0f)));
}
