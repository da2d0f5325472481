#include "framewright/thornmere/memory.h"

#include <sys/resource.h>

#include <cstdint>
#include <cstring>
#include <numeric>
#include <vector>

#include "thornmere/support.h"

namespace {

std::vector<std::size_t> gAsked;

bool RecordAndAllow(std::size_t size) {
    gAsked.push_back(size);
    return true;
}

class MemoryGate : public testing::Test {
  protected:
    MemoryGate() { gAsked.clear(); }
    ~MemoryGate() override { SrSetAllocationGate(nullptr); }
};

TEST(Memory, BlocksAreAlignedForAnyType) {
    for (std::size_t size : {0, 1, 3, 8, 17, 4096, 100003}) {
        void* block = SrAllocatePointer(size);
        ASSERT_NE(block, nullptr) << size;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u) << size;
        std::memset(block, 0xA5, size);
        EXPECT_EQ(SrDeallocatePointer(block, size), nullptr);
    }
}

TEST(Memory, BlocksOfSizeZeroAreDistinct) {
    void* a = SrAllocatePointer(0);
    void* b = SrAllocatePointer(0);
    EXPECT_NE(a, nullptr);
    EXPECT_NE(a, b);
    SrDeallocatePointer(a, 0);
    SrDeallocatePointer(b, 0);
}

TEST(Memory, NullIsGivenBackQuietly) {
    EXPECT_EQ(SrDeallocatePointer(nullptr, 10), nullptr);
    EXPECT_EQ(SrDeallocateHandle(nullptr), nullptr);
    EXPECT_EQ(SrHandleSize(nullptr), 0u);
    char* nothing = nullptr;
    SrDeallocateIfPointer(nothing, 10);
    EXPECT_EQ(nothing, nullptr);
    void** noHandle = nullptr;
    SrDeallocateIfHandle(noHandle);
    EXPECT_EQ(noHandle, nullptr);
}

TEST(Memory, DeallocateIfPointerClearsThePointer) {
    auto* words = static_cast<std::uint32_t*>(SrAllocatePointer(16));
    SrDeallocateIfPointer(words, 16);
    EXPECT_EQ(words, nullptr);
}

TEST(Memory, SizesThatNoSystemHasGiveNull) {
    volatile std::size_t const size = SIZE_MAX;
    EXPECT_EQ(SrAllocatePointer(size), nullptr);
    EXPECT_EQ(SrAllocatePointer(size / 2 + 1), nullptr);
}

TEST(Memory, HandlesPointToTheirBlockAndKnowItsSize) {
    void** handle = SrAllocateHandle(300);
    ASSERT_NE(handle, nullptr);
    ASSERT_NE(*handle, nullptr);
    std::memset(*handle, 1, 300);
    EXPECT_EQ(SrHandleSize(handle), 300u);
    SrDeallocateIfHandle(handle);
    EXPECT_EQ(handle, nullptr);
}

TEST(Memory, SwapBytesExchangesBlocksOfAnySize) {
    for (std::size_t size : {0, 1, 7, 8, 9, 64, 1000}) {
        std::vector<unsigned char> a(size + 1), b(size + 1);
        std::iota(a.begin(), a.end(), static_cast<unsigned char>(1));
        std::iota(b.begin(), b.end(), static_cast<unsigned char>(100));
        auto const oldA = a, oldB = b;
        SrSwapBytes(a.data(), b.data(), size);
        EXPECT_TRUE(std::equal(a.begin(), a.begin() + std::ptrdiff_t(size), oldB.begin())) << size;
        EXPECT_TRUE(std::equal(b.begin(), b.begin() + std::ptrdiff_t(size), oldA.begin())) << size;
        EXPECT_EQ(a.back(), oldA.back()) << "the byte behind the block stays, size " << size;
        EXPECT_EQ(b.back(), oldB.back()) << "the byte behind the block stays, size " << size;
    }
}

TEST_F(MemoryGate, SeesExactlyTheSizeAsked) {
    SrSetAllocationGate(RecordAndAllow);
    std::vector<std::size_t> const sizes = {0, 1, 17, 12345};
    for (std::size_t size : sizes)
        SrDeallocatePointer(SrAllocatePointer(size), size);
    EXPECT_EQ(gAsked, sizes) << "and giving back does not ask";
}

TEST_F(MemoryGate, FalseRefuses) {
    SrSetAllocationGate([](std::size_t size) { return size < 100; });
    void* small = SrAllocatePointer(99);
    EXPECT_NE(small, nullptr);
    EXPECT_EQ(SrAllocatePointer(100), nullptr);
    SrDeallocatePointer(small, 99);
    EXPECT_EQ(SrAllocateHandle(100), nullptr) << "the master pointer alone is no handle";
}

TEST_F(MemoryGate, NullAllowsAll) {
    SrSetAllocationGate([](std::size_t) { return false; });
    EXPECT_EQ(SrAllocatePointer(1), nullptr);
    SrSetAllocationGate(nullptr);
    void* block = SrAllocatePointer(1);
    EXPECT_NE(block, nullptr);
    SrDeallocatePointer(block, 1);
}

TEST(Memory, TotalFreeMemoryIsPlausible) {
    std::size_t const bytes = SrTotalFreeMemory(true, true, true);
    EXPECT_GT(bytes, 1u << 20);
    EXPECT_LT(bytes, std::size_t(1) << 50);
}

TEST(Memory, TotalFreeMemoryKeepsToTheProcessLimit) {
    rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_AS, &old), 0);
    rlimit limited = old;
    limited.rlim_cur = 1 << 20;  // less than the process has mapped already
    ASSERT_EQ(setrlimit(RLIMIT_AS, &limited), 0);
    std::size_t const bytes = SrTotalFreeMemory(false, false, false);
    ASSERT_EQ(setrlimit(RLIMIT_AS, &old), 0);
    EXPECT_EQ(bytes, 0u);
}

}  // namespace
