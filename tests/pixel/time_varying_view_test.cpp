// Key times by index, by iterator and by callback, and colours seen as SxTimeVarying; reading from threads.
#include <thread>

#include "framewright/pixel/time_varying_storage.h"
#include "framewright/thornmere/reference.h"
#include "time_varying_test_support.h"

using namespace time_test;
using color_test::ErrorOf;
using color_test::ScRefuseAllocations;

namespace {

Keys const kFour = {{0.0, 1.0f}, {10.0, 2.0f}, {20.0, 3.0f}, {30.0, 4.0f}};

std::vector<double> TimesOf(StTimeVaryingColor const& color) {
    std::vector<double> times;
    for (auto i = color.GetKeyTimeBegin(); i != color.GetKeyTimeEnd(); ++i)
        times.push_back(*i);
    return times;
}

}  // namespace

TEST(TimeVaryingColor, NumbersAndTimesOfKeys) {
    StTimeVaryingColor const constant(Color(1.0f)), keyed = Keyed(kFour);
    EXPECT_EQ(constant.GetNumKeyTimes(), 1);
    EXPECT_EQ(constant.GetLastKeyTime(), 0.0);
    EXPECT_EQ(keyed.GetNumKeyTimes(), 4);
    EXPECT_EQ(keyed.GetLastKeyTime(), 30.0);
    struct {
        long index;
        double time;
    } const rows[] = {{-7, 0.0}, {0, 0.0},  {1, 0.0},  {2, 10.0},
                      {3, 20.0}, {4, 30.0}, {5, 30.0}, {1 << 30, 30.0}};
    for (auto const& row : rows) {
        EXPECT_EQ(keyed.GetKeyTimeAt(row.index), row.time) << row.index;
        EXPECT_EQ(constant.GetKeyTimeAt(row.index), 0.0) << row.index;
    }
    // The first index gives 0.0 without a look at the keys.
    StTimeVaryingColor early(Color(1.0f));
    early.SetExtendedValue(-5.0, Color(2.0f));
    EXPECT_EQ(early.GetKeyTimeAt(1), 0.0);
    EXPECT_EQ(early.GetKeyTimeAt(2), 0.0);
    EXPECT_EQ(early.GetLastKeyTime(), 0.0);
}

TEST(TimeVaryingColor, IndexForTime) {
    struct {
        double time;
        long low, high, constantLow, constantHigh;
    } const rows[] = {
        {-1.0, 1, 1, 1, 1},          {0.0, 1, 1, 1, 1},
        {0.5e-6, 1, 1, 1, 2},  // nearly equal to the first key, above 0.0 for a constant
        {5.0, 1, 2, 1, 2},           {10.0, 2, 2, 1, 2},
        {10.0 - 0.9e-6, 2, 2, 1, 2}, {10.0 + 0.9e-6, 2, 2, 1, 2},
        {10.0 + 1.1e-6, 2, 3, 1, 2}, {15.0, 2, 3, 1, 2},
        {30.0, 4, 4, 1, 2},          {31.0, 4, 5, 1, 2},
        {kInfinity, 4, 5, 1, 2},     {-kInfinity, 1, 1, 1, 1},
        {kNoTime, 1, 1, 1, 2},
    };
    StTimeVaryingColor const constant(Color(1.0f)), keyed = Keyed(kFour);
    for (auto const& row : rows) {
        long low = 0, high = 0;
        keyed.GetIndexForTime(row.time, low, high);
        EXPECT_EQ(low, row.low) << row.time;
        EXPECT_EQ(high, row.high) << row.time;
        constant.GetIndexForTime(row.time, low, high);
        EXPECT_EQ(low, row.constantLow) << row.time;
        EXPECT_EQ(high, row.constantHigh) << row.time;
    }
}

TEST(TimeVaryingColor, Iterators) {
    EXPECT_EQ(TimesOf(Keyed(kFour)), (std::vector<double>{0.0, 10.0, 20.0, 30.0}));
    StTimeVaryingColor color(Color(1.0f));
    EXPECT_EQ(TimesOf(color), (std::vector<double>{0.0}));
    auto i = color.GetKeyTimeBegin();
    EXPECT_EQ(i, color.GetKeyTimeBegin());
    ++i;
    EXPECT_EQ(i, color.GetKeyTimeEnd());
    ++i;
    EXPECT_EQ(i, color.GetKeyTimeEnd()) << "the end of a constant stays";
    color.ForceTimeVarying();
    EXPECT_EQ(TimesOf(color), (std::vector<double>{0.0}));
    EXPECT_NE(color.GetKeyTimeBegin(), i);
    EXPECT_NE(color.GetKeyTimeEnd(), i);
}

TEST(TimeVaryingColor, EachKeyTime) {
    Recorder constant, keyed, single;
    StTimeVaryingColor(Color(5.0f)).EachKeyTime(constant);
    EXPECT_EQ(constant.calls, (std::vector<StCall>{{0.0, 5.0f, true, true}}));
    Keyed(kFour).EachKeyTime(keyed);
    EXPECT_EQ(keyed.calls, (std::vector<StCall>{{0.0, 1.0f, true, true},
                                                {10.0, 2.0f, false, false},
                                                {20.0, 3.0f, false, false},
                                                {30.0, 4.0f, false, false}}));
    StTimeVaryingColor one(Color(5.0f));
    one.ForceTimeVarying();
    one.EachKeyTime(single);
    EXPECT_EQ(single.calls, (std::vector<StCall>{{0.0, 5.0f, true, true}}));
}

TEST(TimeVaryingColor, EachKeyTimeSpan) {
    Recorder constant, keyed;
    StTimeVaryingColor(Color(5.0f)).EachKeyTimeSpan(constant);
    EXPECT_EQ(constant.calls, (std::vector<StCall>{{0.0, 5.0f, true, true}}));
    StTimeVaryingColor const color =
        Keyed({{0.0, 1.0f}, {10.0, 1.0f}, {20.0, 3.0f}, {30.0, 3.0f}, {40.0, 1.0f}});
    color.EachKeyTimeSpan(keyed);
    EXPECT_EQ(keyed.calls, (std::vector<StCall>{{0.0, 1.0f, true, true},
                                                {10.0, 1.0f, true, true},
                                                {20.0, 3.0f, false, false},
                                                {30.0, 3.0f, true, true},
                                                {40.0, 1.0f, false, false}}));
}

TEST(TimeVaryingColor, EachKeyTimeSpan_LooksAtTheMiddle) {
    // Leaves the key's value between any two keys.
    struct Hill : ScVI<StColorFloats> {
        void Interpolate(float weight, double t0, double t1, StColorFloats const& a, StColorFloats const&,
                         StColorFloats& out) override {
            middles.push_back(t0 + (t1 - t0) * static_cast<double>(weight));
            out = {a.red, a.green, a.blue + 1.0f};
        }
        std::vector<double> middles;
    } hill;
    StTimeVaryingColor const color = Keyed({{0.0, 1.0f}, {10.0, 1.0f}, {20.0, 3.0f}});
    Recorder recorder;
    color.EachKeyTimeSpan(recorder, hill);
    EXPECT_EQ(recorder.calls,
              (std::vector<StCall>{
                  {0.0, 1.0f, true, true}, {10.0, 1.0f, true, false}, {20.0, 3.0f, false, false}}));
    EXPECT_EQ(hill.middles, (std::vector<double>{5.0})) << "only where both ends are the same";
}

TEST(TimeVaryingColor, EachKeyTimeSpan_ComparesEveryChannelExactly) {
    struct Flags : ScTVI<StColorFloats> {
        void KeyTime(double, StColorFloats const*, bool same, bool flat) override {
            EXPECT_EQ(same, flat);
            last = same;
        }
        bool last = false;
    };
    float const next = std::nextafter(0.5f, 1.0f);
    struct {
        StColorFloats second;
        bool same;
    } const rows[] = {
        {{0.5f, 0.5f, 0.0f}, true},    {{next, 0.5f, 0.0f}, false}, {{0.5f, next, 0.0f}, false},
        {{0.5f, 0.5f, 1e-30f}, false}, {{0.5f, 0.5f, -0.0f}, true}, {{0.5f, 0.5f, pixel_test::kNaN}, false},
    };
    for (auto const& row : rows) {
        StTimeVaryingColor color({0.5f, 0.5f, 0.0f});
        color.SetExtendedValue(1.0, row.second);
        Flags flags;
        color.EachKeyTimeSpan(flags);
        EXPECT_EQ(flags.last, row.same);
    }
}

// As SxTimeVarying.

TEST(TimeVaryingColor, ViewOfAConstantBelongsToTheCaller) {
    StTimeVaryingColor color(Color(1.0f));
    SxTimeVarying* const view = color.GetTimeVarying();
    auto const handle = StRef<SxTimeVarying>::Adopt(view);
    EXPECT_NE(view, nullptr);
    EXPECT_EQ(view->ReferenceCount(), 1);
    {
        StRef<SxTimeVarying> const second = handle;
        EXPECT_EQ(view->ReferenceCount(), 2);
    }
    EXPECT_EQ(view->ReferenceCount(), 1);
    auto const other = StRef<SxTimeVarying>::Adopt(color.GetTimeVarying());
    EXPECT_NE(other.Get(), view) << "each call makes one";
    EXPECT_TRUE(view->IsConstant());
    EXPECT_FALSE(color.IsTimeVarying());
    // It follows the colour, also where that gets keys and loses them.
    view->ForceKeyTime(5.0);
    EXPECT_FALSE(view->IsConstant());
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {5.0, 1.0f}}));
    EXPECT_EQ(view->GetNumKeyTimes(), 2);
    color = Color(2.0f);
    EXPECT_TRUE(view->IsConstant());
    EXPECT_EQ(view->GetNumKeyTimes(), 1);
}

TEST(TimeVaryingColor, ViewOfKeysIsBorrowed) {
    StTimeVaryingColor color = Keyed(kFour);
    StTimeVaryingColor const& read = color;
    SxTimeVarying* const view = color.GetTimeVarying();
    EXPECT_EQ(view, color.GetTimeVarying());
    EXPECT_EQ(view, read.GetTimeVarying());
    EXPECT_FALSE(view->IsConstant());
    // The first reference is the colour's.
    EXPECT_EQ(view->ReferenceCount(), 1);
    {
        StRef<SxTimeVarying> const handle(view);
        EXPECT_EQ(view->ReferenceCount(), 2);
    }
    EXPECT_EQ(view->ReferenceCount(), 1);
    EXPECT_EQ(KeysOf(color), kFour);
}

TEST(TimeVaryingColor, AHeldViewOutlivesTheKeys) {
    struct {
        char const* name;
        void (*end)(StTimeVaryingColor&, SxTimeVarying&);
    } const rows[] = {
        {"assigned", [](StTimeVaryingColor& color, SxTimeVarying&) { color = Color(9.0f); }},
        {"deleted", [](StTimeVaryingColor& color, SxTimeVarying&) { color.DeleteKeyTimes(0.0, 99.0); }},
        {"deleted through it",
         [](StTimeVaryingColor&, SxTimeVarying& view) { view.DeleteKeyTimes(0.0, 99.0); }},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        StTimeVaryingColor color = Keyed(kFour);
        StRef<SxTimeVarying> const view(color.GetTimeVarying());
        row.end(color, *view);
        EXPECT_EQ(view->ReferenceCount(), 1);
        EXPECT_TRUE(view->IsConstant());
        Recorder recorder;
        view->EachKeyTime(recorder);
        EXPECT_EQ(recorder.calls, (std::vector<StCall>{{0.0, 1.0f, true, true}}));
        // It is apart from the colour.
        view->ForceKeyTime(5.0);
        EXPECT_EQ(view->GetNumKeyTimes(), 2);
        EXPECT_FALSE(color.IsTimeVarying());
        color.SetExtendedValue(7.0, Color(3.0f));
        EXPECT_EQ(view->GetLastKeyTime(), 5.0);
    }
    StRef<SxTimeVarying> view;
    {
        StTimeVaryingColor color = Keyed(kFour);
        view = StRef<SxTimeVarying>(color.GetTimeVarying());
    }
    EXPECT_TRUE(view->IsConstant());
    EXPECT_EQ(view->GetNumKeyTimes(), 1);
}

TEST(TimeVaryingColor, DeletingThroughABorrowedViewMayEndIt) {
    StTimeVaryingColor color = Keyed(kFour);
    color.GetTimeVarying()->DeleteKeyTimes(0.0, kInfinity);
    EXPECT_FALSE(color.IsTimeVarying());
    EXPECT_EQ(Of(color.GetValue(0.0)), Of(Color(1.0f)));
}

TEST(TimeVaryingColor, ConstantViewOfAConstantIsShared) {
    StTimeVaryingColor const a(Color(1.0f)), b(Color(2.0f));
    EXPECT_EQ(a.GetTimeVarying(), SrGetConstNonTimeVarying());
    EXPECT_EQ(b.GetTimeVarying(), SrGetConstNonTimeVarying());
}

TEST(TimeVaryingColor, ViewsPassEverythingOn) {
    // Both kinds, as they are asked for the keys of the same colour.
    for (bool madeWhileConstant : {false, true}) {
        SCOPED_TRACE(madeWhileConstant);
        StTimeVaryingColor color(Color(1.0f));
        StRef<SxTimeVarying> owned;
        if (madeWhileConstant) owned = StRef<SxTimeVarying>::Adopt(color.GetTimeVarying());
        color = Keyed(kFour);
        SxTimeVarying& view = madeWhileConstant ? *owned : *color.GetTimeVarying();

        EXPECT_EQ(view.GetNumKeyTimes(), 4);
        EXPECT_EQ(view.GetKeyTimeAt(3), 20.0);
        EXPECT_EQ(view.GetLastKeyTime(), 30.0);
        long low = 0, high = 0;
        view.GetIndexForTime(15.0, low, high);
        EXPECT_EQ(low, 2);
        EXPECT_EQ(high, 3);
        Recorder each;
        view.EachKeyTime(each);
        EXPECT_EQ(each.calls.size(), 4u);

        view.ForceKeyTime(5.0);
        EXPECT_EQ(Of(color.GetValue(5.0)), Of(Color(1.5f)));
        Hold hold;
        view.ForceKeyTime(25.0, hold);
        EXPECT_EQ(KeysOf(color)[4], (StKey{25.0, 3.0f}));
        view.DeleteKeyTimes(5.0, 20.0);
        EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {25.0, 3.0f}, {30.0, 4.0f}}));
        view.MoveKeyTimes(30.0, 30.0, 10.0);
        view.CopyKeyTimes(25.0, 25.0, 10.0);
        EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {25.0, 3.0f}, {35.0, 3.0f}, {40.0, 4.0f}}));

        Recorder linear, held;
        view.EachKeyTimeSpan(linear, nullptr);
        EXPECT_EQ(linear.calls[2], (StCall{35.0, 3.0f, true, true}));
        Counter counter;
        color.DeleteKeyTimes(99.0, 99.0);  // forgets the middle
        view.EachKeyTimeSpan(held, &counter);
        EXPECT_EQ(counter.calls.size(), 1u);

        struct : ScSubObjectIterator {
            void HandleSubObject(SmObject*) override { ++seen; }
            int seen = 0;
        } objects;
        view.EachSubObject(objects);
        EXPECT_EQ(objects.seen, 0) << "a colour refers to none";
        view.ModifiedKeyTimes();
    }
}

TEST(TimeVaryingColor, AnInterpolatorForOtherValuesMeansTheLinearOne) {
    struct Doubles : ScVI<double> {
        void Interpolate(float, double, double, double const&, double const&, double& out) override {
            out = 0;
        }
    } doubles;
    StTimeVaryingColor color = Keyed({{0.0, 1.0f}, {10.0, 3.0f}});
    SxTimeVarying& view = *color.GetTimeVarying();
    view.ForceKeyTime(5.0, doubles);
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 1.0f}, {5.0, 2.0f}, {10.0, 3.0f}}));
    Recorder recorder;
    view.EachKeyTimeSpan(recorder, &doubles);
    EXPECT_EQ(recorder.calls.size(), 3u);
}

TEST(TimeVaryingColor, RefusedMemoryForAView) {
    StTimeVaryingColor constant(Color(1.0f)), keyed = Keyed(kFour);
    ScRefuseAllocations const refuse(0);
    EXPECT_EQ(ErrorOf([&] { constant.GetTimeVarying(); }), -108);
    EXPECT_EQ(ErrorOf([&] { keyed.GetTimeVarying(); }), 0);
}

TEST(TimeVaryingColor, TypeErasedReferences) {
    StTimeVaryingColor color(Color(1.0f));
    auto const reference = StRef<SxTimeVarying>::AsReferenceCountableInterface(color.GetTimeVarying());
    ASSERT_NE(reference.object, nullptr);
    reference.table->addReference(reference.object);
    EXPECT_EQ(reference.table->referenceCount(reference.object), 2);
    reference.table->releaseReference(reference.object);
    EXPECT_EQ(reference.table->referenceCount(reference.object), 1);
    reference.table->releaseReference(reference.object);
    auto const none = StRef<SxTimeVarying>::AsReferenceCountableInterface(nullptr);
    EXPECT_EQ(none.object, nullptr);
    EXPECT_EQ(none.table, nullptr);
}

TEST(TimeVaryingColor, CopyIteratorSetsWhatItSees) {
    StTimeVaryingColor target(Color(9.0f));
    _ScCopyIteratorExTV<StColorFloats, StColorFloats, ScNCg<StColorFloats>> copy(target);
    Keyed(kFour).EachKeyTime(copy);
    EXPECT_EQ(KeysOf(target), kFour);
}

TEST(TimeVaryingColor, UseStorage) {
    struct Derived : StTimeVaryingColor {
        using StETV::operator=;
        using StETV::UseStorage;
    } color;
    color = Color(1.0f);
    auto* const storage = new StTimeVaryingColor::Storage(&color);
    storage->Keys().emplace(0.0, Color(2.0f));
    storage->Keys().emplace(8.0, Color(4.0f));
    color.UseStorage(storage);
    EXPECT_TRUE(color.IsTimeVarying());
    EXPECT_EQ(KeysOf(color), (Keys{{0.0, 2.0f}, {8.0, 4.0f}}));
    // Null clears the whole first word; the rest of the old colour is still there.
    color.UseStorage(nullptr);
    EXPECT_FALSE(color.IsTimeVarying());
    std::vector<unsigned char> const bytes = BytesOf(color);
    for (std::size_t i = 0; i < sizeof(void*); ++i)
        EXPECT_EQ(bytes[i], 0) << i;
    EXPECT_EQ(color.GetValue(0.0).blue, 1.5f);
    storage->DeleteThis();
}

// Threads.

TEST(TimeVaryingColor, SeveralThreadsMayRead) {
    StTimeVaryingColor const color = Keyed({{0.0, 0.0f}, {1024.0, 1024.0f}});
    std::vector<long> wrong(3);
    std::vector<std::thread> threads;
    for (std::size_t n = 0; n < wrong.size(); ++n) {
        threads.emplace_back([&, n] {
            for (int i = 0; i < 5000; ++i) {
                double const time = static_cast<double>((i * (n + 1)) % 1025);
                wrong[n] += Of(color.GetValue(time)) != Of(Color(static_cast<float>(time)));
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(wrong, testing::Each(0));
}
