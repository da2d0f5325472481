// Small caches of values by time. A value that is read at one or two times again and again, as while one
// frame is rendered, is found there; and since reading writes to the cache, a lock of its own keeps threads
// apart.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <limits>
#include <thread>

#include "framewright/thornmere/time_varying.h"

/// The lock and the clock of one cache.
class ScMultiCacheRoot {
  public:
    /// Held for some twenty instructions and never across a call, so waiting means trying again.
    void EnterCriticalSection() {
        while (mLock.test_and_set(std::memory_order_acquire))
            std::this_thread::yield();
    }
    void ExitCriticalSection() { mLock.clear(std::memory_order_release); }

    /// Above 0, and above all before it until it starts again at 1. For the holder of the lock.
    std::int32_t NewAgingValue() {
        mAge = mAge == std::numeric_limits<std::int32_t>::max() ? 1 : mAge + 1;
        return mAge;
    }

  private:
    std::atomic_flag mLock;
    std::int32_t mAge = 0;
};

/// The values at the two times that were asked for last.
template <class Value>
class ScTimeCache : public ScMultiCacheRoot {
  public:
    /// True if the value at a time nearly equal to `time` is known.
    bool Lookup(double time, Value& value) {
        StHold const hold(*this);
        for (std::size_t i = 0; i < kEntries; ++i) {
            if (mAges[i] == kEmpty || mAges[i] == kRetired || !SrNearEqualTimes(mTimes[i], time)) continue;
            value = mValues[i];
            if (mAges[i] > 0) mAges[i] = NewAgingValue();
            return true;
        }
        return false;
    }

    /// Keeps the value at `time`, in place of the one at a nearly equal time, or else in an empty entry, or
    /// else in place of the one that was used longest ago. False if no entry may be changed.
    bool Store(double time, Value const& value) {
        StHold const hold(*this);
        std::size_t unused = kEntries, oldest = kEntries;
        for (std::size_t i = 0; i < kEntries; ++i) {
            if (mAges[i] == kEmpty) {
                unused = i;
            } else if (SrNearEqualTimes(mTimes[i], time)) {
                if (mAges[i] < 0) return false;
                mValues[i] = value;
                mAges[i] = NewAgingValue();
                return true;
            } else if (mAges[i] > 0 && (oldest == kEntries || mAges[i] < mAges[oldest])) {
                oldest = i;
            }
        }
        std::size_t const entry = unused != kEntries ? unused : oldest;
        if (entry == kEntries) return false;
        mTimes[entry] = time;
        mValues[entry] = value;
        mAges[entry] = NewAgingValue();
        return true;
    }

    /// Forgets all entries that age.
    void Invalidate() {
        StHold const hold(*this);
        for (std::int32_t& age : mAges)
            if (age > 0) age = kEmpty;
    }

  protected:
    static constexpr std::size_t kEntries = 2;
    static constexpr std::int32_t kEmpty = 0;
    static constexpr std::int32_t kRetired = std::numeric_limits<std::int32_t>::min();

    // Above 0 an entry ages. Below 0 it is fixed: neither replaced nor forgotten, and not looked at if
    // retired. Nothing here makes an entry fixed.
    std::array<double, kEntries> mTimes{};
    std::array<Value, kEntries> mValues{};
    std::array<std::int32_t, kEntries> mAges{};

  private:
    struct StHold {
        explicit StHold(ScTimeCache& cache) : mCache(cache) { mCache.EnterCriticalSection(); }
        ~StHold() { mCache.ExitCriticalSection(); }
        StHold(StHold const&) = delete;
        StHold& operator=(StHold const&) = delete;

        ScTimeCache& mCache;
    };
};
