// Assigning colours with keys, and deleting, moving and copying keys.
#include <algorithm>
#include <random>

#include "time_varying_test_support.h"

using namespace time_test;
using color_test::ErrorOf;
using color_test::ScRefuseAllocations;

namespace {

Keys const kFour = {{0.0, 1.0f}, {10.0, 2.0f}, {20.0, 3.0f}, {30.0, 4.0f}};

struct StEditRow {
    double from, to, delta;
    Keys expected;
};

}  // namespace

// Assignment.

TEST(TimeVaryingColor, AssigningAColorMakesItConstant) {
    StTimeVaryingColor color = Keyed(kFour);
    color = Color(9.0f);
    EXPECT_FALSE(color.IsTimeVarying());
    EXPECT_EQ(Of(color.GetValue(10.0)), Of(Color(9.0f)));
    // Also with keys before 0.0, which deleting from 0.0 on would leave.
    StTimeVaryingColor early = Keyed(kFour);
    early.SetExtendedValue(-5.0, Color(6.0f));
    early.SetExtendedValue(-8.0, Color(7.0f));
    early = Color(9.0f);
    EXPECT_EQ(KeysOf(early), (Keys{{0.0, 9.0f}}));
    EXPECT_FALSE(early.IsTimeVarying());
}

TEST(TimeVaryingColor, AKeysOwnColorMayBeAssigned) {
    struct Taker : ScTVI<StColorFloats> {
        void KeyTime(double, StColorFloats const* value, bool, bool) override { last = value; }
        StColorFloats const* last = nullptr;
    };
    StTimeVaryingColor color = Keyed(kFour);
    Taker taker;
    color.EachKeyTime(taker);
    color = *taker.last;
    EXPECT_EQ(Of(color.GetValue(0.0)), Of(Color(4.0f)));
}

TEST(TimeVaryingColor, CopiesHaveTheirOwnKeys) {
    StTimeVaryingColor color = Keyed(kFour);
    StTimeVaryingColor copy(color);
    EXPECT_EQ(KeysOf(copy), kFour);
    StTimeVaryingColor assigned = Keyed({{0.0, 5.0f}, {15.0, 6.0f}, {40.0, 7.0f}});
    assigned = color;
    EXPECT_EQ(KeysOf(assigned), kFour) << "the old keys are gone";
    color.SetExtendedValue(10.0, Color(8.0f));
    color = Color(9.0f);
    EXPECT_EQ(KeysOf(copy), kFour);
    EXPECT_EQ(KeysOf(assigned), kFour);
    EXPECT_EQ(Of(copy.GetValue(15.0)), Of(Color(2.5f)));
}

TEST(TimeVaryingColor, AssigningToItselfChangesNothing) {
    StTimeVaryingColor keyed = Keyed(kFour), constant(Color(2.0f));
    StTimeVaryingColor const &same = keyed, &alsoSame = constant;
    keyed = same;
    constant = alsoSame;
    EXPECT_EQ(KeysOf(keyed), kFour);
    EXPECT_TRUE(keyed.IsTimeVarying());
    EXPECT_EQ(KeysOf(constant), (Keys{{0.0, 2.0f}}));
}

TEST(TimeVaryingColor, AssigningBetweenConstantAndKeyed) {
    StTimeVaryingColor keyed = Keyed(kFour), constant(Color(2.0f));
    StTimeVaryingColor target(constant);
    EXPECT_FALSE(target.IsTimeVarying());
    target = keyed;
    EXPECT_EQ(KeysOf(target), kFour);
    target = constant;
    EXPECT_FALSE(target.IsTimeVarying());
    EXPECT_EQ(Of(target.GetValue(7.0)), Of(Color(2.0f)));
}

TEST(TimeVaryingColor, ACopyOfASingleKeyIsConstant) {
    StTimeVaryingColor single(Color(3.0f));
    single.ForceTimeVarying();
    StTimeVaryingColor const copy(single);
    EXPECT_FALSE(copy.IsTimeVarying());
    EXPECT_EQ(Of(copy.GetValue(0.0)), Of(Color(3.0f)));
}

TEST(TimeVaryingColor, ACopyHasAKeyAtZero) {
    // Keys are set one by one, and the first that is not at 0.0 brings one there, of the colour that is
    // there.
    StTimeVaryingColor early(Color(1.0f));
    early.SetExtendedValue(-10.0, Color(2.0f));
    early.SetExtendedValue(5.0, Color(3.0f));
    StTimeVaryingColor const whole(early);
    EXPECT_EQ(KeysOf(whole), KeysOf(early));
    early.DeleteKeyTimes(0.0, 0.0);
    EXPECT_EQ(KeysOf(early), (Keys{{-10.0, 2.0f}, {5.0, 3.0f}}));
    StTimeVaryingColor copy(Color(7.0f));
    copy = early;
    EXPECT_EQ(KeysOf(copy), (Keys{{-10.0, 2.0f}, {0.0, 7.0f}, {5.0, 3.0f}}));
}

// Deleting.

TEST(TimeVaryingColor, DeleteKeyTimes) {
    StEditRow const rows[] = {
        {10.0, 10.0, 0, {{0.0, 1.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},
        {10.0, 20.0, 0, {{0.0, 1.0f}, {30.0, 4.0f}}},
        {9.0, 21.0, 0, {{0.0, 1.0f}, {30.0, 4.0f}}},
        {11.0, 19.0, 0, kFour},
        {0.0, 10.0, 0, {{0.0, 1.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},  // the first key is never deleted
        {-5.0, 10.0, 0, {{0.0, 1.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},
        {0.0, 0.0, 0, kFour},
        {-10.0, -5.0, 0, kFour},  // wholly before the first key
        {-10.0, 0.0, 0, kFour},
        {31.0, 99.0, 0, kFour},
        {30.0, 99.0, 0, {{0.0, 1.0f}, {10.0, 2.0f}, {20.0, 3.0f}}},
        {20.0, 10.0, 0, kFour},  // backward
        {99.0, 5.0, 0, kFour},
        {25.0, -5.0, 0, kFour},
        {10.0 + 0.9e-6, 20.0 - 0.9e-6, 0, {{0.0, 1.0f}, {30.0, 4.0f}}},  // nearly equal ends are in it
        {10.0 + 1.1e-6, 20.0 - 1.1e-6, 0, kFour},
        {10.0 + 0.4e-6, 10.0 - 0.4e-6, 0, {{0.0, 1.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},
        {kNoTime, kNoTime, 0, kFour},
        {kNoTime, 20.0, 0, kFour},
        {5.0, kNoTime, 0, kFour},
    };
    for (StEditRow const& row : rows) {
        StTimeVaryingColor color = Keyed(kFour);
        color.DeleteKeyTimes(row.from, row.to);
        EXPECT_EQ(KeysOf(color), row.expected) << row.from << " to " << row.to;
        EXPECT_TRUE(color.IsTimeVarying());
    }
}

TEST(TimeVaryingColor, DeletingAllLeavesTheFirstColorAsTheConstant) {
    for (auto const& [from, to] : {std::pair(0.0, kInfinity), {-kInfinity, kInfinity}, {5.0, 30.0}}) {
        StTimeVaryingColor color = Keyed(kFour);
        color.DeleteKeyTimes(from, to);
        EXPECT_FALSE(color.IsTimeVarying());
        EXPECT_EQ(Of(color.GetValue(30.0)), Of(Color(1.0f)));
        color.DeleteKeyTimes(from, to);
        EXPECT_FALSE(color.IsTimeVarying());
    }
}

TEST(TimeVaryingColor, DeletingFromASingleKeyMakesItConstant) {
    for (auto const& [from, to] : {std::pair(0.0, 0.0), {5.0, 10.0}, {-10.0, -5.0}}) {
        StTimeVaryingColor color(Color(6.0f));
        color.ForceTimeVarying();
        color.DeleteKeyTimes(from, to);
        EXPECT_FALSE(color.IsTimeVarying());
        EXPECT_EQ(Of(color.GetValue(3.0)), Of(Color(6.0f)));
    }
}

TEST(TimeVaryingColor, TheLastKeyLeftGivesTheConstantItsColorWhereverItIs) {
    StTimeVaryingColor color(Color(1.0f));
    color.SetExtendedValue(-10.0, Color(2.0f));
    color.DeleteKeyTimes(0.0, 0.0);
    EXPECT_FALSE(color.IsTimeVarying());
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 2.0f}}));
}

// Moving and copying.

TEST(TimeVaryingColor, MoveKeyTimes) {
    StEditRow const rows[] = {
        {10.0, 10.0, 5.0, {{0.0, 1.0f}, {15.0, 2.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},
        {10.0, 20.0, 15.0, {{0.0, 1.0f}, {25.0, 2.0f}, {30.0, 4.0f}, {35.0, 3.0f}}},
        {10.0, 20.0, 10.0, {{0.0, 1.0f}, {20.0, 2.0f}, {30.0, 3.0f}}},  // over the key at 30
        {20.0, 30.0, -10.0, {{0.0, 1.0f}, {10.0, 3.0f}, {20.0, 4.0f}}},
        {20.0,
         20.0,
         -10.0 + 0.9e-6,
         {{0.0, 1.0f}, {10.0, 3.0f}, {30.0, 4.0f}}},  // near enough: its time stays
        {20.0, 20.0, -20.0, {{0.0, 3.0f}, {10.0, 2.0f}, {30.0, 4.0f}}},
        // The first key stays where it is, and is moved all the same.
        {0.0, 0.0, 5.0, {{0.0, 1.0f}, {5.0, 1.0f}, {10.0, 2.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},
        {0.0, 10.0, 5.0, {{0.0, 1.0f}, {5.0, 1.0f}, {15.0, 2.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},
        {0.0, kInfinity, 10.0, {{0.0, 1.0f}, {10.0, 1.0f}, {20.0, 2.0f}, {30.0, 3.0f}, {40.0, 4.0f}}},
        {-10.0, -5.0, 3.0, kFour},  // wholly before the first key
        {31.0, 99.0, 3.0, kFour},
        {11.0, 19.0, 3.0, kFour},
        {20.0, 10.0, 3.0, kFour},  // backward
        {99.0, -5.0, 3.0, kFour},
        {0.0, kInfinity, 0.0, kFour},
        {0.0, kInfinity, 0.9e-6, kFour},
        {0.0, kInfinity, -1e-6, kFour},
        {10.0, 10.0, 1.1e-6, {{0.0, 1.0f}, {10.0 + 1.1e-6, 2.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},
        {10.0, 20.0, -30.0, {{-20.0, 2.0f}, {-10.0, 3.0f}, {0.0, 1.0f}, {30.0, 4.0f}}},
        {10.0, 20.0, kInfinity, {{0.0, 1.0f}, {30.0, 4.0f}, {kInfinity, 3.0f}}},
        {10.0, 20.0, kNoTime, kFour},
        {kNoTime, 20.0, 5.0, kFour},
        {0.0, kNoTime, 5.0, kFour},
    };
    for (StEditRow const& row : rows) {
        StTimeVaryingColor color = Keyed(kFour);
        color.MoveKeyTimes(row.from, row.to, row.delta);
        EXPECT_EQ(KeysOf(color), row.expected) << row.from << " to " << row.to << " by " << row.delta;
    }
}

TEST(TimeVaryingColor, MovingTheOnlyOtherKeyOntoTheFirstMakesItConstant) {
    StTimeVaryingColor color = Keyed({{0.0, 1.0f}, {10.0, 2.0f}});
    color.MoveKeyTimes(10.0, 10.0, -10.0);
    EXPECT_FALSE(color.IsTimeVarying());
    EXPECT_EQ(Of(color.GetValue(10.0)), Of(Color(2.0f)));
}

TEST(TimeVaryingColor, MovingTheKeysOfAConstant) {
    StTimeVaryingColor color(Color(1.0f));
    color.MoveKeyTimes(0.0, 10.0, 1e-7);
    color.MoveKeyTimes(0.0, 10.0, kNoTime);
    EXPECT_FALSE(color.IsTimeVarying());
    color.MoveKeyTimes(5.0, 10.0, 5.0);  // its one key is not in the range, and alone afterwards
    EXPECT_FALSE(color.IsTimeVarying());
    EXPECT_EQ(Of(color.GetValue(0.0)), Of(Color(1.0f)));
    color.MoveKeyTimes(0.0, 10.0, 5.0);
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {5.0, 1.0f}}));
}

TEST(TimeVaryingColor, CopyKeyTimes) {
    StEditRow const rows[] = {
        {10.0, 10.0, 5.0, {{0.0, 1.0f}, {10.0, 2.0f}, {15.0, 2.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},
        {10.0,
         20.0,
         10.0,
         {{0.0, 1.0f}, {10.0, 2.0f}, {20.0, 2.0f}, {30.0, 3.0f}}},  // over those that are there
        {0.0, 10.0, 30.0, {{0.0, 1.0f}, {10.0, 2.0f}, {20.0, 3.0f}, {30.0, 1.0f}, {40.0, 2.0f}}},
        {0.0,
         kInfinity,
         40.0,
         {{0.0, 1.0f},
          {10.0, 2.0f},
          {20.0, 3.0f},
          {30.0, 4.0f},
          {40.0, 1.0f},
          {50.0, 2.0f},
          {60.0, 3.0f},
          {70.0, 4.0f}}},
        {30.0, 30.0, -30.0, {{0.0, 4.0f}, {10.0, 2.0f}, {20.0, 3.0f}, {30.0, 4.0f}}},
        {-10.0, -5.0, 3.0, kFour},
        {20.0, 10.0, 3.0, kFour},
        {0.0, kInfinity, 1e-7, kFour},
        {0.0, kInfinity, kNoTime, kFour},
        {kNoTime, kInfinity, 3.0, kFour},
    };
    for (StEditRow const& row : rows) {
        StTimeVaryingColor color = Keyed(kFour);
        color.CopyKeyTimes(row.from, row.to, row.delta);
        EXPECT_EQ(KeysOf(color), row.expected) << row.from << " to " << row.to << " by " << row.delta;
    }
}

TEST(TimeVaryingColor, CopyingTheKeysOfAConstant) {
    StTimeVaryingColor color(Color(1.0f));
    color.CopyKeyTimes(0.0, 10.0, 1e-7);
    EXPECT_FALSE(color.IsTimeVarying());
    // Unlike moving it does not end by making a single key a constant.
    color.CopyKeyTimes(5.0, 10.0, 5.0);
    EXPECT_TRUE(color.IsTimeVarying());
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}}));
    color.CopyKeyTimes(0.0, 0.0, 5.0);
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {5.0, 1.0f}}));
}

// Any order of edits, beside the rules written a second time over a plain list.

namespace {

struct StModel {
    Keys keys{{0.0, 0.0f}};
    bool varying = false;

    static bool Near(double a, double b) { return std::fabs(a - b) <= 1e-6; }
    static bool Before(double a, double b) { return a < b && !Near(a, b); }
    static void Put(Keys& keys, double time, float color) {
        std::size_t i = 0;
        while (i < keys.size() && Before(keys[i].time, time))
            ++i;
        if (i < keys.size() && Near(keys[i].time, time)) {
            keys[i].color = color;
        } else {
            keys.insert(keys.begin() + static_cast<std::ptrdiff_t>(i), {time, color});
        }
    }
    static bool In(StKey const& key, double from, double to) {
        return !Before(key.time, from) && !Before(to, key.time);
    }
    void Erase(double from, double to) {
        Keys left;
        for (std::size_t i = 0; i < keys.size(); ++i)
            if (i == 0 || !In(keys[i], from, to)) left.push_back(keys[i]);
        keys = left;
    }
    void Collapse() {
        if (keys.size() > 1) return;
        keys[0].time = 0.0;
        varying = false;
    }

    void Set(double time, float color) {
        if (!varying && Near(time, 0.0)) {
            keys[0].color = color;
        } else {
            varying = true;
            Put(keys, time, color);
        }
    }
    void Delete(double from, double to) {
        if (!varying) return;
        Erase(from, to);
        Collapse();
    }
    void Shift(double from, double to, double delta, bool move) {
        if (Near(delta, 0.0)) return;
        varying = true;
        Keys shifted;
        for (StKey const& key : keys)
            if (In(key, from, to)) Put(shifted, key.time + delta, key.color);
        if (move) Erase(from, to);
        for (StKey const& key : shifted)
            Put(keys, key.time, key.color);
        if (move) Collapse();
    }
};

}  // namespace

TEST(TimeVaryingColor, AnyOrderOfEditsFollowsTheRules) {
    std::mt19937 random(7);
    auto const below = [&](unsigned limit) { return random() % limit; };
    auto const time = [&] {
        return static_cast<double>(below(24)) - 4.0 + (static_cast<double>(below(5)) - 2.0) * 0.6e-6;
    };
    for (int round = 0; round < 300; ++round) {
        StTimeVaryingColor color(Color(0.0f));
        StModel model;
        for (int step = 0; step < 40; ++step) {
            double const from = time(), to = time(), delta = time();
            auto const number = static_cast<float>(below(1000));
            switch (below(5)) {
                case 0:
                case 1:
                    color.SetExtendedValue(from, Color(number));
                    model.Set(from, number);
                    break;
                case 2:
                    color.DeleteKeyTimes(from, to);
                    model.Delete(from, to);
                    break;
                case 3:
                    color.MoveKeyTimes(from, to, delta);
                    model.Shift(from, to, delta, true);
                    break;
                default:
                    color.CopyKeyTimes(from, to, delta);
                    model.Shift(from, to, delta, false);
            }
            ASSERT_EQ(KeysOf(color), model.keys) << "round " << round << " step " << step;
            ASSERT_EQ(color.IsTimeVarying(), model.varying) << "round " << round << " step " << step;
        }
    }
}

// Memory.

TEST(TimeVaryingColor, KeysAndStorageComeFromTheFrameworksAllocator) {
    ScRefuseAllocations const count(1000);
    StTimeVaryingColor color(Color(1.0f));
    color.SetExtendedValue(1.0, Color(2.0f));
    EXPECT_EQ(ScRefuseAllocations::Seen(), 3) << "the storage and two keys";
    color.SetExtendedValue(2.0, Color(3.0f));
    EXPECT_EQ(ScRefuseAllocations::Seen(), 4);
    color.SetExtendedValue(2.0, Color(4.0f));
    EXPECT_EQ(ScRefuseAllocations::Seen(), 4) << "overwritten";
}

TEST(TimeVaryingColor, RefusedMemoryLeavesTheColor) {
    struct {
        char const* name;
        void (*edit)(StTimeVaryingColor&);
    } const rows[] = {
        {"set", [](StTimeVaryingColor& c) { c.SetExtendedValue(55.0, Color(9.0f)); }},
        {"force key", [](StTimeVaryingColor& c) { c.ForceKeyTime(55.0); }},
        {"move", [](StTimeVaryingColor& c) { c.MoveKeyTimes(0.0, 20.0, 7.0); }},
        {"copy", [](StTimeVaryingColor& c) { c.CopyKeyTimes(0.0, 20.0, 7.0); }},
    };
    for (auto const& row : rows) {
        for (bool keyed : {false, true}) {
            long allowed = 0;
            for (long error = -108; error != 0; ++allowed) {
                SCOPED_TRACE(testing::Message()
                             << row.name << " with " << allowed << (keyed ? " keyed" : " constant"));
                StTimeVaryingColor color = keyed ? Keyed(kFour) : StTimeVaryingColor(Color(1.0f));
                Keys const before = KeysOf(color);
                {
                    ScRefuseAllocations const refuse(allowed);
                    error = ErrorOf([&] { row.edit(color); });
                }
                if (error == 0) {
                    EXPECT_NE(KeysOf(color), before);
                } else {
                    EXPECT_EQ(error, -108);
                    EXPECT_EQ(KeysOf(color), before);
                }
                ASSERT_LT(allowed, 20);
            }
            EXPECT_GT(allowed, 1);
        }
    }
}

TEST(TimeVaryingColor, RefusedMemoryOfForceTimeVaryingLeavesAConstant) {
    for (long allowed : {0, 1}) {
        StTimeVaryingColor color(Color(1.0f));
        ScRefuseAllocations const refuse(allowed);
        EXPECT_EQ(ErrorOf([&] { color.ForceTimeVarying(); }), -108);
        EXPECT_FALSE(color.IsTimeVarying());
        EXPECT_EQ(Of(color.GetValue(0.0)), Of(Color(1.0f)));
    }
}

TEST(TimeVaryingColor, RefusedMemoryOfACopy) {
    StTimeVaryingColor const color = Keyed(kFour);
    for (long allowed = 0; allowed < 5; ++allowed) {
        StTimeVaryingColor target = Keyed({{0.0, 8.0f}, {1.0, 9.0f}});
        ScRefuseAllocations const refuse(allowed);
        EXPECT_EQ(ErrorOf([&] { StTimeVaryingColor const copy(color); }), -108);
        EXPECT_LE(ScRefuseAllocations::Seen(), allowed + 1);
    }
    for (long allowed = 0; allowed < 5; ++allowed) {
        StTimeVaryingColor target = Keyed({{0.0, 8.0f}, {1.0, 9.0f}});
        {
            ScRefuseAllocations const refuse(allowed);
            EXPECT_EQ(ErrorOf([&] { target = color; }), -108);
        }
        // A part of the new keys, and none of the old.
        for (StKey const& key : KeysOf(target))
            EXPECT_NE(key.time, 1.0);
        target = color;
        EXPECT_EQ(KeysOf(target), kFour);
    }
}
