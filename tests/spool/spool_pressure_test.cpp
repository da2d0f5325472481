// Frames far larger than the memory that they may use: nothing is lost. Smaller ones under the thread
// sanitizer, which takes long over pixels.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "framewright/frame/layer_factory.h"
#include "framewright/thornmere/reference.h"
#include "spool_test_support.h"

// Sanitizers keep address space of their own, without bound.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define LIMIT_ADDRESS_SPACE 0
#else
#define LIMIT_ADDRESS_SPACE 1
#endif

using namespace testing_spool;

namespace {

using FrameRef = StRef<SmImagerFrame>;

#if defined(__SANITIZE_THREAD__)
constexpr long kSide = 1024;  // 4 MiB a frame
constexpr unsigned kCap = 1u << 20;
#else
constexpr long kSide = 4096;  // 64 MiB a frame, 16 KiB a row
constexpr unsigned kCap = 12u << 20;
#endif

bool AllowUnderCap(std::size_t size) {
    return SrGetGlobalSpoolManager()->MemoryInUse() + size <= kCap;
}

std::uint32_t Word(long x, long y, unsigned seed) {
    return static_cast<std::uint32_t>(x * 2654435761u ^ y * 40503u ^ seed);
}

FrameRef NewFrame() {
    return FrameRef::Adopt(SrMakeFrame({kSide, kSide}, SrCode("ColB"), true, false));
}

void Fill(SmImagerFrame& frame, unsigned seed) {
    for (long y = 0; y < kSide; ++y) {
        auto* const row = static_cast<std::uint32_t*>(frame.LockRow(y));
        for (long x = 0; x < kSide; ++x)
            row[x] = Word(x, y, seed);
        frame.UnlockRow(y);
    }
}

/// How many pixels differ from Fill, or from what `expected` makes of it.
long Wrong(SmImagerFrame& frame, unsigned seed, long shift) {
    long wrong = 0;
    for (long y = 0; y < kSide; ++y) {
        auto const* const row = static_cast<std::uint32_t const*>(frame.LockRow(y));
        for (long x = 0; x < kSide; ++x)
            wrong += row[x] != Word(x, (y + shift) % kSide, seed);
        frame.UnlockRow(y);
    }
    return wrong;
}

class SpoolPressure : public Spooling {
  protected:
    SpoolPressure() { SrSetTickSource(nullptr); }
    void AddFileHere() { SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str())); }
};

TEST_F(SpoolPressure, UnderAGate_TwoFramesOfFiveTimesTheCap) {
    AddFileHere();
    FrameRef const a = NewFrame();
    FrameRef const b = NewFrame();
    SrSetAllocationGate(AllowUnderCap);
    Fill(*a, 1);
    EXPECT_LE(Manager().MemoryInUse(), kCap);
    // The first frame has all the memory; the host makes room before it turns to another.
    EXPECT_GT(Manager().UseLessMemory(kCap / 2), kCap / 4);
    b->BlitRect(a.Get(), {0, 0, kSide, kSide}, {0, 0});
    EXPECT_LE(Manager().MemoryInUse(), kCap);
    EXPECT_EQ(Wrong(*b, 1, 0), 0);
    b->BlitRect(b.Get(), {8, 0, kSide, kSide}, {0, 0});
    b->BlitRect(a.Get(), {0, 0, 8, kSide}, {kSide - 8, 0});
    EXPECT_EQ(Wrong(*b, 1, 8), 0);
    EXPECT_EQ(Wrong(*a, 1, 0), 0);
    EXPECT_LE(Manager().MemoryInUse(), kCap);
}

#if LIMIT_ADDRESS_SPACE
/// The bytes of address space that this process has.
rlim_t AddressSpace() {
    unsigned long pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<unsigned long>(sysconf(_SC_PAGESIZE));
}

void LimitMemory() {
    rlim_t const bytes = AddressSpace() + kCap;
    rlimit const limit{bytes, bytes};
    if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(10);
}
#else
void LimitMemory() {
    SrSetAllocationGate(AllowUnderCap);
}
#endif

/// The life of a process that may use little more memory than it has. Gives its exit status.
int LiveUnderLimit(std::filesystem::path const& folder) {
    try {
        SrAddImagerSpoolFileInFolder(StFileSpec(folder.c_str()));
        LimitMemory();
        {
            FrameRef const frame = NewFrame();
            Fill(*frame, 7);
            if (Wrong(*frame, 7, 0) != 0) return 1;
            frame->Flip(false, true);
            frame->Flip(false, true);
            if (Wrong(*frame, 7, 0) != 0) return 2;
            if (std::filesystem::is_empty(folder)) return 3;
        }
        SrInitializeGlobalSpoolManager(true);
        return std::filesystem::is_empty(folder) ? 0 : 4;
    } catch (std::exception const& exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return 5;
    }
}

TEST_F(SpoolPressure, AProcessOfLimitedMemory_DrawsAFrameFarLarger) {
    pid_t const child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) _exit(LiveUnderLimit(Folder()));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_TRUE(Files().empty());
}

}  // namespace
