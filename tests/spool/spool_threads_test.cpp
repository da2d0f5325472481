// Memory pressure from other threads while frames are read and written under row locks. Meant for the thread
// sanitizer, and right without it.
#include <atomic>
#include <chrono>
#include <random>

#include "framewright/frame/layer_factory.h"
#include "framewright/spool/spool_locks.h"
#include "framewright/thornmere/reference.h"
#include "spool_test_support.h"

using namespace testing_spool;

namespace {

constexpr StPoint kSize{70, 65};
constexpr unsigned kRowBytes = 65 * 4;

class SpoolThreads : public Spooling {
  protected:
    SpoolThreads() {
        SrSetTickSource(nullptr);  // the clock of the test is no thread's business
        AddFile();
    }

    static StRef<SmImagerFrame> NewFrame() {
        return StRef<SmImagerFrame>::Adopt(SrMakeFrame(kSize, SrCode("ColB"), true, false));
    }

    /// Calls UseLessMemory without pause on a first-class thread until the object goes.
    class Pressure {
      public:
        Pressure()
            : mThread([this] {
                  StFirstClassThread const firstClass;
                  while (!mStop) {
                      mFreed += Manager().UseLessMemory(1u << 30);
                      std::this_thread::yield();
                  }
              }) {}
        ~Pressure() {
            mStop = true;
            mThread.join();
        }
        /// The bytes that were freed up to now.
        std::uint64_t Freed() const { return mFreed; }

      private:
        std::atomic<bool> mStop{false};
        std::atomic<std::uint64_t> mFreed{0};
        std::thread mThread;
    };

    /// Draws into a frame row by row, each row whole, and checks what it drew before.
    static void Work(SmImagerFrame& frame, unsigned seed, int steps) {
        std::mt19937 random(seed);
        std::vector<unsigned> versions(static_cast<std::size_t>(kSize.vertical), 0);
        for (int step = 0; step < steps; ++step) {
            auto const y = static_cast<long>(random() % static_cast<unsigned>(kSize.vertical));
            unsigned& version = versions[static_cast<std::size_t>(y)];
            void* const row = frame.LockRow(y);
            if (version) {
                ASSERT_EQ(std::memcmp(row, RowBytes(version, kRowBytes).data(), kRowBytes), 0)
                    << "row " << y << " in step " << step;
            }
            version = static_cast<unsigned>(random()) | 1;
            std::memcpy(row, RowBytes(version, kRowBytes).data(), kRowBytes);
            frame.UnlockRow(y);
            if (step % 97 == 0 && frame.LockRows(10, 20)) frame.UnlockRows(10, 20);
            if (step % 501 == 0) {
                frame.ForceContiguous();
                frame.ReleaseContiguous();
            }
        }
    }
};

TEST_F(SpoolThreads, NoRowIsTornUnderPressure) {
    auto const frame = NewFrame();
    Pressure pressure;
    Work(*frame, 1, 20000);
    // The other thread may be slow to get a processor and the lock: it has both while this one sleeps.
    auto const start = std::chrono::steady_clock::now();
    for (unsigned i = 2; pressure.Freed() < 100000; ++i) {
        ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::minutes(2));
        Work(*frame, i, 1000);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

TEST_F(SpoolThreads, TwoFramesOnTwoThreads_AndTwoThatPress) {
    auto const first = NewFrame();
    auto const second = NewFrame();
    Pressure one, two;
    std::thread other([&] {
        StFirstClassThread const firstClass;
        Work(*second, 2, 8000);
    });
    Work(*first, 3, 8000);
    other.join();
}

TEST_F(SpoolThreads, FramesComeAndGoUnderPressure) {
    Pressure pressure;
    for (unsigned i = 0; i < 100; ++i) {
        auto const frame = NewFrame();
        Work(*frame, i, 60);
        if (i % 10 == 0) SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str()));
        if (i % 3 == 0) frame->Resize({40, 65}, StImageInterpolationMethod::kNone);
        auto const copy = NewFrame();
        copy->ImplementBecome(frame.Get());
        EXPECT_EQ(copy->GetSize(), frame->GetSize());
    }
}

TEST_F(SpoolThreads, OffAFirstClassThread_ResidentRowsAreRead) {
    auto const frame = NewFrame();
    for (long y = 0; y < kSize.vertical; ++y) {
        std::memcpy(frame->LockRow(y), RowBytes(static_cast<unsigned>(y), kRowBytes).data(), kRowBytes);
    }
    Pressure pressure;
    OnOtherThread([&] {
        EXPECT_EQ(Manager().UseLessMemory(1u << 30), 0u);
        for (long y = 0; y < kSize.vertical; ++y) {
            void const* const row = frame->LockRow(y);
            EXPECT_EQ(std::memcmp(row, RowBytes(static_cast<unsigned>(y), kRowBytes).data(), kRowBytes), 0);
            frame->UnlockRow(y);
        }
    });
    frame->UnlockRows(0, kSize.vertical - 1);
}

TEST_F(SpoolThreads, PressureNeverWaits) {
    auto const frame = NewFrame();
    frame->LockRow(0);
    frame->UnlockRow(0);
    spool::StHold const storage(spool::gStorageLock);
    auto const start = std::chrono::steady_clock::now();
    std::thread([] {
        StFirstClassThread const firstClass;
        EXPECT_EQ(Manager().UseLessMemory(1u << 30), 0u);
    }).join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
