#include "framewright/thornmere/time_varying.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <tuple>
#include <vector>

#include "framewright/thornmere/multi_cache.h"
#include "framewright/thornmere/reference.h"
#include "slots.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(NearEqualTimes, IsAbsolute) {
    struct {
        double a, b;
        bool near;
    } const rows[] = {
        {0.0, 0.0, true},
        {0.0, 1e-6, true},
        {0.0, 1.0000001e-6, false},
        {5.0, 5.0 + 0.999e-6, true},
        {5.0, 5.0 - 0.999e-6, true},
        {5.0, 5.0 + 1.001e-6, false},
        {1e6, 1e6 + 0.9e-6, true},  // however large the times are
        {1e6, 1e6 + 1.1e-6, false},
        {1e-9, 2e-9, true},  // or small
        {-1e-6, 1e-6, false},
        {kInfinity, kInfinity, true},
        {kInfinity, -kInfinity, false},
        {kInfinity, 1e300, false},
        {kNaN, kNaN, false},
        {kNaN, 0.0, false},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(SrNearEqualTimes(row.a, row.b), row.near) << row.a << " " << row.b;
        EXPECT_EQ(SrNearEqualTimes(row.b, row.a), row.near) << row.b << " " << row.a;
    }
}

TEST(TimeOrder, BelowAndNotNearlyEqual) {
    ScLT_ const before;
    EXPECT_TRUE(before(1.0, 2.0));
    EXPECT_FALSE(before(2.0, 1.0));
    EXPECT_FALSE(before(1.0, 1.0));
    EXPECT_FALSE(before(1.0, 1.0 + 0.9e-6));
    EXPECT_TRUE(before(1.0, 1.0 + 1.1e-6));
    EXPECT_TRUE(before(-kInfinity, 0.0));
    EXPECT_FALSE(before(kNaN, 1.0));
    EXPECT_FALSE(before(1.0, kNaN));
}

TEST(TimeMap, NearlyEqualTimesAreOneKey) {
    ScTimeMap<int> map;
    map[1.0] = 1;
    map[1.0 + 0.5e-6] = 2;
    map[1.0 + 2e-6] = 3;
    EXPECT_EQ(map.size(), 2u);
    EXPECT_EQ(map.begin()->first, 1.0);
    EXPECT_EQ(map.begin()->second, 2);
}

TEST(TimeVarying, OperationsStandInTheirOrder) {
    using Force = void (SxTimeVarying::*)(double);
    using ForceBy = void (SxTimeVarying::*)(double, ScInterpolator&);
    long const slots[] = {
        SlotOf(&SxTimeVarying::IsConstant),
        SlotOf(&SxTimeVarying::CopyKeyTimes),
        SlotOf(&SxTimeVarying::DeleteKeyTimes),
        SlotOf(&SxTimeVarying::EachKeyTime),
        SlotOf(&SxTimeVarying::EachKeyTimeSpan),
        SlotOf(static_cast<Force>(&SxTimeVarying::ForceKeyTime)),
        SlotOf(static_cast<ForceBy>(&SxTimeVarying::ForceKeyTime)),
        SlotOf(&SxTimeVarying::GetIndexForTime),
        SlotOf(&SxTimeVarying::GetKeyTimeAt),
        SlotOf(&SxTimeVarying::GetNumKeyTimes),
        SlotOf(&SxTimeVarying::MoveKeyTimes),
        SlotOf(&SxTimeVarying::GetLastKeyTime),
        SlotOf(&SxTimeVarying::EachSubObject),
        SlotOf(&SxTimeVarying::ReferenceCount),
        SlotOf(&SxTimeVarying::AddReference),
        SlotOf(&SxTimeVarying::DeleteThis),
        SlotOf(&SxTimeVarying::ReleaseReference),
        SlotOf(&SxTimeVarying::ModifiedKeyTimes),
    };
    long expected = 2;  // behind the destructor
    for (long slot : slots)
        EXPECT_EQ(slot, expected++);
}

struct Recorder : ScKeyTimeIterator {
    void HandleKeyTime(double time, void const* value, bool same, bool flat) override {
        calls.emplace_back(time, value, same, flat);
    }
    std::vector<std::tuple<double, void const*, bool, bool>> calls;
};

TEST(ConstNonTimeVarying, HasOneKeyOfAnUnknownValue) {
    SxTimeVarying const* const keys = SrGetConstNonTimeVarying();
    EXPECT_EQ(keys, SrGetConstNonTimeVarying());
    EXPECT_TRUE(keys->IsConstant());
    EXPECT_EQ(keys->GetNumKeyTimes(), 1);
    EXPECT_EQ(keys->GetLastKeyTime(), 0.0);
    for (long index : {-1, 0, 1, 2, 100})
        EXPECT_EQ(keys->GetKeyTimeAt(index), 0.0);
    struct {
        double time;
        long low, high;
    } const rows[] = {{-1.0, 1, 1}, {0.0, 1, 1}, {0.5, 1, 2}, {100.0, 1, 2}};
    for (auto const& row : rows) {
        long low = 0, high = 0;
        keys->GetIndexForTime(row.time, low, high);
        EXPECT_EQ(low, row.low) << row.time;
        EXPECT_EQ(high, row.high) << row.time;
    }
    Recorder each, span;
    keys->EachKeyTime(each);
    keys->EachKeyTimeSpan(span, nullptr);
    decltype(each.calls) const once = {{0.0, nullptr, true, true}};
    EXPECT_EQ(each.calls, once);
    EXPECT_EQ(span.calls, once);
}

TEST(ConstNonTimeVarying, CountsNoReferences) {
    // It is const to all who borrow it; one that casts that away does no harm.
    auto* const keys = const_cast<SxTimeVarying*>(SrGetConstNonTimeVarying());
    {
        StRef<SxTimeVarying> const reference(keys);
        EXPECT_EQ(keys->ReferenceCount(), 1);
    }
    StRef<SxTimeVarying>::Adopt(keys);
    keys->DeleteThis();
    keys->ForceKeyTime(5.0);
    keys->CopyKeyTimes(0.0, 1.0, 5.0);
    keys->MoveKeyTimes(0.0, 1.0, 5.0);
    keys->DeleteKeyTimes(0.0, 1.0);
    keys->ModifiedKeyTimes();
    EXPECT_EQ(keys->GetNumKeyTimes(), 1);
    EXPECT_TRUE(keys->IsConstant());
}

TEST(Interpolator, HasNoNameAtThisLevel) {
    struct : ScInterpolator {
    } interpolator;
    EXPECT_STREQ(interpolator.GetInterpolatorName(), "");
}

// The cache.

struct Cache : ScTimeCache<int> {
    using ScTimeCache::mAges;
    using ScTimeCache::mTimes;
    using ScTimeCache::mValues;

    /// -1 where there is none.
    int At(double time) {
        int value = -1;
        return Lookup(time, value) ? value : -1;
    }
    void Put(std::size_t entry, double time, int value, std::int32_t age) {
        mTimes[entry] = time;
        mValues[entry] = value;
        mAges[entry] = age;
    }
};

constexpr std::int32_t kRetired = std::numeric_limits<std::int32_t>::min();

TEST(TimeCache, AgesRiseAndStartAgainAtOne) {
    ScMultiCacheRoot root;
    EXPECT_EQ(root.NewAgingValue(), 1);
    EXPECT_EQ(root.NewAgingValue(), 2);
    EXPECT_EQ(root.NewAgingValue(), 3);
}

TEST(TimeCache, StartsEmpty) {
    Cache cache;
    EXPECT_EQ(cache.At(0.0), -1);  // although the empty entries' times are 0.0
}

TEST(TimeCache, FindsNearlyEqualTimes) {
    Cache cache;
    EXPECT_TRUE(cache.Store(5.0, 50));
    EXPECT_EQ(cache.At(5.0), 50);
    EXPECT_EQ(cache.At(5.0 + 0.9e-6), 50);
    EXPECT_EQ(cache.At(5.0 - 0.9e-6), 50);
    EXPECT_EQ(cache.At(5.0 + 1.1e-6), -1);
    EXPECT_EQ(cache.At(kNaN), -1);
}

TEST(TimeCache, TheLaterEmptyEntryIsFilledFirst) {
    Cache cache;
    cache.Store(5.0, 50);
    EXPECT_EQ(cache.mAges[0], 0);
    EXPECT_EQ(cache.mTimes[1], 5.0);
    cache.Store(6.0, 60);
    EXPECT_EQ(cache.mTimes[0], 6.0);
    EXPECT_EQ(cache.At(5.0), 50);
    EXPECT_EQ(cache.At(6.0), 60);
}

TEST(TimeCache, TheOneUsedLongestAgoMakesRoom) {
    Cache cache;
    cache.Store(5.0, 50);
    cache.Store(6.0, 60);
    cache.Store(7.0, 70);
    EXPECT_EQ(cache.At(5.0), -1);
    EXPECT_EQ(cache.At(6.0), 60);  // a hit counts as use
    cache.Store(8.0, 80);
    EXPECT_EQ(cache.At(7.0), -1);
    EXPECT_EQ(cache.At(6.0), 60);
    EXPECT_EQ(cache.At(8.0), 80);
}

TEST(TimeCache, StoringAtANearlyEqualTimeReplacesTheValueAndAgesIt) {
    Cache cache;
    cache.Store(5.0, 50);
    cache.Store(6.0, 60);
    EXPECT_TRUE(cache.Store(5.0 + 0.9e-6, 51));
    EXPECT_EQ(cache.mTimes[1], 5.0) << "the time stays";
    EXPECT_EQ(cache.At(5.0), 51);
    EXPECT_EQ(cache.At(6.0), 60);
    cache.Store(5.0, 52);  // newer than 6.0 now
    cache.Store(7.0, 70);
    EXPECT_EQ(cache.At(6.0), -1);
    EXPECT_EQ(cache.At(5.0), 52);
}

TEST(TimeCache, FixedEntriesAreReadAndNeverChanged) {
    Cache cache;
    cache.Put(0, 5.0, 50, -1);
    EXPECT_EQ(cache.At(5.0), 50);
    EXPECT_EQ(cache.mAges[0], -1) << "not refreshed";
    EXPECT_FALSE(cache.Store(5.0, 51));
    EXPECT_EQ(cache.At(5.0), 50);
    EXPECT_TRUE(cache.Store(6.0, 60));
    EXPECT_TRUE(cache.Store(7.0, 70));
    EXPECT_EQ(cache.At(5.0), 50);
    EXPECT_EQ(cache.At(6.0), -1);
    EXPECT_EQ(cache.At(7.0), 70);
    cache.Put(1, 8.0, 80, -2);
    EXPECT_FALSE(cache.Store(9.0, 90)) << "there is no entry left to take";
    cache.Invalidate();
    EXPECT_EQ(cache.At(5.0), 50);
    EXPECT_EQ(cache.At(8.0), 80);
}

TEST(TimeCache, RetiredEntriesAreNotRead) {
    Cache cache;
    cache.Put(0, 5.0, 50, kRetired);
    cache.Put(1, 5.0, 51, 7);
    EXPECT_EQ(cache.At(5.0), 51) << "the search goes on";
    EXPECT_FALSE(cache.Store(5.0, 52)) << "the first at that time decides";
    EXPECT_EQ(cache.At(5.0), 51);
}

TEST(TimeCache, AHitRefreshesTheAge) {
    Cache cache;
    cache.Store(5.0, 50);
    std::int32_t const age = cache.mAges[1];
    EXPECT_EQ(cache.At(5.0), 50);
    EXPECT_GT(cache.mAges[1], age);
}

TEST(TimeCache, InvalidateForgetsWhatAges) {
    Cache cache;
    cache.Store(5.0, 50);
    cache.Put(0, 6.0, 60, -5);
    cache.Invalidate();
    EXPECT_EQ(cache.At(5.0), -1);
    EXPECT_EQ(cache.mAges[1], 0);
    EXPECT_EQ(cache.mAges[0], -5);
}

TEST(TimeCache, TheLockKeepsThreadsApart) {
    ScMultiCacheRoot root;
    long count = 0;
    auto const work = [&] {
        for (int i = 0; i < 20000; ++i) {
            root.EnterCriticalSection();
            ++count;
            root.ExitCriticalSection();
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(count, 40000);
}

}  // namespace
