#include "framewright/thornmere/threads.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

TEST(Threads, OnlyTheLoadingThreadIsFirstClass) {
    EXPECT_TRUE(ScThread::InFirstClassThread());
    bool other = true;
    std::thread([&] { other = ScThread::InFirstClassThread(); }).join();
    EXPECT_FALSE(other);
}

TEST(Threads, AnotherIsWhileTheObjectLivesOnItsStack) {
    bool inside = false, nested = false, between = false, after = true;
    std::thread([&] {
        {
            StFirstClassThread const first;
            inside = ScThread::InFirstClassThread();
            {
                StFirstClassThread const second;
                nested = ScThread::InFirstClassThread();
            }
            between = ScThread::InFirstClassThread();
        }
        after = ScThread::InFirstClassThread();
    }).join();
    EXPECT_TRUE(inside);
    EXPECT_TRUE(nested);
    EXPECT_TRUE(between);
    EXPECT_FALSE(after);
}

TEST(Threads, TheLoadingThreadStaysFirstClass) {
    { StFirstClassThread const first; }
    EXPECT_TRUE(ScThread::InFirstClassThread());
}

/// What Enter gives on another thread, while this one holds `section` or not; a lock that was won is left
/// again.
bool EnterElsewhere(StCriticalSection& section, long milliseconds) {
    bool entered = false;
    std::thread([&] {
        entered = section.Enter(milliseconds);
        if (entered) section.Exit();
    }).join();
    return entered;
}

TEST(CriticalSection, KeepsOthersOut) {
    StCriticalSection section;
    EXPECT_TRUE(section.Enter(-1));
    EXPECT_FALSE(EnterElsewhere(section, 0));
    section.Exit();
    EXPECT_TRUE(EnterElsewhere(section, 0));
    EXPECT_TRUE(EnterElsewhere(section, -1));
    EXPECT_TRUE(EnterElsewhere(section, 10));
}

TEST(CriticalSection, IsRecursive) {
    StCriticalSection section;
    EXPECT_TRUE(section.Enter(0));
    EXPECT_TRUE(section.Enter(0));
    EXPECT_TRUE(section.Enter(5));
    section.Exit();
    section.Exit();
    EXPECT_FALSE(EnterElsewhere(section, 0)) << "still held once";
    section.Exit();
    EXPECT_TRUE(EnterElsewhere(section, 0));
}

TEST(CriticalSection, WaitsAsLongAsItIsTold) {
    StCriticalSection section;
    section.Enter(-1);
    auto const start = Clock::now();
    EXPECT_FALSE(EnterElsewhere(section, 30));
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(30));
    section.Exit();
}

TEST(CriticalSection, AWaitEndsWhenTheLockIsLeft) {
    for (long wait : {-1L, 60000L, std::numeric_limits<long>::max()}) {
        StCriticalSection section;
        section.Enter(-1);
        bool entered = false;
        std::thread other([&] {
            entered = section.Enter(wait);
            section.Exit();
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        section.Exit();
        other.join();
        EXPECT_TRUE(entered) << wait;
    }
}

TEST(Ticks, AreMilliseconds) {
    std::uint32_t const start = SrGetTickCount();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    std::uint32_t const passed = SrGetTickCount() - start;
    EXPECT_GE(passed, 19u);
    EXPECT_LT(passed, 10000u);
}

TEST(Ticks, SourceCanBeReplaced) {
    SrSetTickSource([]() -> std::uint32_t { return 12345678; });
    EXPECT_EQ(SrGetTickCount(), 12345678u);
    SrSetTickSource(nullptr);
    EXPECT_NE(SrGetTickCount(), 12345678u);
}

}  // namespace
