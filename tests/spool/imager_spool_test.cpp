// The spooler: states of rows, locks, eviction by age, rows in one block, failures.
#include "framewright/spool/imager_spool.h"

#include <unistd.h>

#include <atomic>
#include <random>

#include "framewright/spool/spool_locks.h"
#include "spool_test_support.h"

using namespace testing_spool;

namespace {

class ImagerSpool : public Spooling {
  protected:
    ScImagerSpool mSpooler;

    /// How many rows have memory now, by what the manager counts.
    long Resident(unsigned int rowBytes) { return Manager().MemoryInUse() / rowBytes; }
    void Evict(int rows) {
        for (int i = 0; i < rows; ++i)
            ASSERT_NE(mSpooler.EvictRows(1), 0u);
    }
    void LoseFile() { ASSERT_EQ(truncate((Folder() / Files()[0]).c_str(), 4), 0); }
};

// --- tables

TEST_F(ImagerSpool, RowsGetMemoryAtTheFirstTouch) {
    mSpooler.ISpooler(10, 100, nullptr);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    void* const row = mSpooler.GetPtrRow(7);
    EXPECT_NE(row, nullptr);
    EXPECT_EQ(Manager().MemoryInUse(), 100u);
    EXPECT_EQ(mSpooler.GetPtrRow(7), row);
    EXPECT_EQ(mSpooler.Lock(7, nullptr), row);
    EXPECT_EQ(Manager().MemoryInUse(), 100u);
    mSpooler.Unlock(7);
}

TEST_F(ImagerSpool, TheBaseIsIgnored) {
    char block[400];
    mSpooler.ISpooler(4, 100, block);
    void* const row = mSpooler.GetPtrRow(0);
    EXPECT_TRUE(row < block || row >= block + sizeof(block));
}

TEST_F(ImagerSpool, WithoutRowsItIsRegisteredAllTheSame) {
    AddFile();
    mSpooler.ISpooler(0, 100, nullptr);
    EXPECT_EQ(mSpooler.EvictRows(1000), 0u);
    EXPECT_EQ(Manager().UseLessMemory(1000), 0u);
    mSpooler.ForceContiguous();
    mSpooler.ReleaseContiguous();
    EXPECT_EQ(mSpooler.EvictRows(1000), 0u);
}

TEST_F(ImagerSpool, RefusedMemoryAndAbsurdSizesAreMinus108) {
    for (int allowed = 0; allowed < 2; ++allowed) {
        RefusedMemory const refused(allowed);  // the table, then the manager's array
        EXPECT_EQ(CaughtCode([&] { mSpooler.ISpooler(10, 100, nullptr); }), -108);
    }
    EXPECT_EQ(CaughtCode([&] { mSpooler.ISpooler(-1, 100, nullptr); }), -108);
    EXPECT_EQ(CaughtCode([&] { mSpooler.ISpooler(1, 0x80000000u, nullptr); }), -108);
    EXPECT_EQ(Manager().UseLessMemory(1), 0u);
    mSpooler.ISpooler(10, 100, nullptr);
    EXPECT_NE(mSpooler.GetPtrRow(9), nullptr);
}

TEST_F(ImagerSpool, MakesTheManagerIfThereIsNone) {
    SrInitializeGlobalSpoolManager(true);
    mSpooler.ISpooler(2, 10, nullptr);
    ASSERT_NE(SrGetGlobalSpoolManager(), nullptr);
    mSpooler.GetPtrRow(0);
    EXPECT_EQ(Manager().MemoryInUse(), 10u);
}

TEST_F(ImagerSpool, GivesEverythingBackWhenItGoes) {
    AddFile();
    {
        ScImagerSpool spooler;
        FillRows(spooler, {1, 2, 3, 4}, 100);
        ASSERT_EQ(spooler.EvictRows(1), 100u);
        ASSERT_EQ(spooler.EvictRows(1), 100u);
        EXPECT_EQ(Manager().MemoryInUse(), 200u);
    }
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    short file = 0;
    unsigned int position = 0;
    char const row[200] = {};
    Manager().WriteRow(file, position, row, 200);
    EXPECT_EQ(position, 4u) << "the places of rows 0 and 1";
}

TEST_F(ImagerSpool, ResizeDropsTheContents) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3}, 100);
    Evict(1);
    mSpooler.Resize(5, 60, nullptr);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    mSpooler.GetPtrRow(4);
    EXPECT_EQ(Manager().MemoryInUse(), 60u);
    EXPECT_EQ(mSpooler.LastUse(), 3u) << "the clock of the test still shows 3";
}

TEST_F(ImagerSpool, ResizeKeepsTheCountOfContiguousCalls) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3}, 100);
    mSpooler.ForceContiguous();
    mSpooler.Resize(3, 100, nullptr);
    EXPECT_TRUE(mSpooler.IsContiguous());
    EXPECT_EQ(Manager().MemoryInUse(), 0u) << "but the block is gone";
    mSpooler.GetPtrRow(1);
    EXPECT_EQ(Manager().MemoryInUse(), 100u);
    EXPECT_EQ(mSpooler.EvictRows(1), 0u);
    mSpooler.ReleaseContiguous();
    EXPECT_FALSE(mSpooler.IsContiguous());
    EXPECT_EQ(mSpooler.EvictRows(1), 100u);
}

// --- ages

TEST_F(ImagerSpool, LockAndLoadMakeYounger_GetPtrRowDoesNot) {
    mSpooler.ISpooler(4, 10, nullptr);
    EXPECT_EQ(mSpooler.LastUse(), 0u);
    gTick = 50;
    mSpooler.GetPtrRow(0);
    EXPECT_EQ(mSpooler.LastUse(), 50u) << "it was loaded";
    gTick = 60;
    mSpooler.GetPtrRow(0);
    EXPECT_EQ(mSpooler.LastUse(), 50u);
    mSpooler.Lock(0, nullptr);
    EXPECT_EQ(mSpooler.LastUse(), 60u);
    gTick = 70;
    mSpooler.Unlock(0);
    EXPECT_EQ(mSpooler.LastUse(), 60u);
}

TEST_F(ImagerSpool, RowsReadThroughGetPtrRowAge) {
    AddFile();
    FillRows(mSpooler, {10, 20}, 100);
    gTick = 30;
    EXPECT_TRUE(Holds(mSpooler, 0, 100));
    Evict(1);
    EXPECT_EQ(Manager().MemoryInUse(), 100u);
    gTick = 40;
    EXPECT_TRUE(Holds(mSpooler, 0, 100));  // comes back, and is the younger one now
    Evict(1);
    void* const row0 = mSpooler.GetPtrRow(0);
    EXPECT_EQ(Manager().MemoryInUse(), 100u) << "row 0 was resident";
    EXPECT_NE(row0, nullptr);
}

TEST_F(ImagerSpool, EvictionTakesTheOldestFirst_OfTiesTheFirst) {
    AddFile();
    FillRows(mSpooler, {30, 20, 20, 40}, 100);
    std::vector<long> const order = {1, 2, 0, 3};
    Evict(4);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    // In the file they lie in the order in which they went.
    std::string const file = ReadWholeFile(Folder() / Files()[0]);
    ASSERT_EQ(file.size(), 404u);
    for (std::size_t i = 0; i < order.size(); ++i) {
        auto const row = RowBytes(static_cast<unsigned>(order[i]), 100);
        EXPECT_EQ(file.substr(4 + i * 100, 100), std::string(row.begin(), row.end())) << i;
    }
}

TEST_F(ImagerSpool, EvictionTakesTheOldestFirst_InTallFramesOfAnyHistory) {
    constexpr long kRows = 300;
    AddFile();
    std::mt19937 random(7);
    auto const below = [&](std::uint32_t bound) { return static_cast<std::uint32_t>(random() % bound); };
    std::vector<std::uint32_t> lastUse(kRows);
    std::vector<bool> resident(kRows), locked(kRows);
    std::vector<std::uint32_t> expected;
    mSpooler.ISpooler(kRows, sizeof(std::uint32_t), nullptr);
    auto const touch = [&](long row) {
        gTick = 1 + below(1000) * (1 + below(2) * 4294966);  // the clock may run back, as when it wraps
        auto const content = static_cast<std::uint32_t>(row);
        std::memcpy(mSpooler.Lock(row, nullptr), &content, sizeof(content));
        mSpooler.Unlock(row);
        lastUse[row] = gTick;
        resident[row] = true;
    };
    for (long row = 0; row < kRows; ++row)
        touch(row);
    for (std::uint32_t left = kRows; left > 0;) {
        auto const row = static_cast<long>(below(kRows));
        if (resident[row] && below(2) == 0) touch(row);
        if (resident[row] && below(8) == 0 && left > 20) {
            locked[row] ? mSpooler.Unlock(row) : static_cast<void>(mSpooler.Lock(row, nullptr));
            locked[row] = !locked[row];
            lastUse[row] = locked[row] ? gTick : lastUse[row];
        }
        if (left <= 20 && locked[row]) {
            mSpooler.Unlock(row);
            locked[row] = false;
        }
        long oldest = -1;
        for (long i = 0; i < kRows; ++i) {
            if (resident[i] && !locked[i] && (oldest < 0 || lastUse[i] < lastUse[oldest])) oldest = i;
        }
        ASSERT_EQ(mSpooler.EvictRows(1), oldest < 0 ? 0u : 4u);
        if (oldest < 0) continue;
        resident[oldest] = false;
        expected.push_back(static_cast<std::uint32_t>(oldest));
        --left;
    }
    std::string const file = ReadWholeFile(Folder() / Files()[0]);
    ASSERT_EQ(file.size(), 4 + kRows * sizeof(std::uint32_t));
    EXPECT_EQ(std::memcmp(file.data() + 4, expected.data(), file.size() - 4), 0);
}

TEST_F(ImagerSpool, NineRows_SevenStay) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3, 4, 5, 6, 7, 8, 9}, 100);
    EXPECT_EQ(mSpooler.EvictRows(1000000), 200u);
    EXPECT_EQ(Resident(100), 7);
    EXPECT_EQ(mSpooler.EvictRows(1000000), 100u) << "below eight one goes";
    EXPECT_EQ(Resident(100), 6);
}

TEST_F(ImagerSpool, OneUnlockedRow_GoesAlone) {
    AddFile();
    FillRows(mSpooler, std::vector<std::uint32_t>(20, 5), 100);
    mSpooler.LockRows(0, 18, nullptr);
    EXPECT_EQ(mSpooler.EvictRows(1000000), 100u);
    EXPECT_EQ(mSpooler.EvictRows(1000000), 0u);
    mSpooler.UnlockRows(0, 18);
}

TEST_F(ImagerSpool, LockedRowsCountAmongTheResident) {
    AddFile();
    // Ten rows, seven of them locked: the three others go before fewer than eight are resident.
    FillRows(mSpooler, {1, 2, 3, 9, 9, 9, 9, 9, 9, 9}, 100);
    mSpooler.LockRows(3, 9, nullptr);
    EXPECT_EQ(mSpooler.EvictRows(1000000), 300u);
    EXPECT_EQ(Resident(100), 7);
    mSpooler.UnlockRows(3, 9);
}

TEST_F(ImagerSpool, EqualAges_OneGoes) {
    AddFile();
    FillRows(mSpooler, std::vector<std::uint32_t>(20, 5), 100);
    EXPECT_EQ(mSpooler.EvictRows(1000000), 100u) << "all bands are empty";
}

TEST_F(ImagerSpool, BandsOfAge_WithinABandTheOrderOfRows) {
    AddFile();
    // Oldest 100, newest 140: bands (100, 110], (110, 120], (120, 130], (130, 140].
    std::vector<std::uint32_t> ages = {140, 130, 109, 100, 115, 101, 110, 120};
    ages.insert(ages.end(), 8, 140);  // so many that the few stay
    FillRows(mSpooler, ages, 10);
    EXPECT_EQ(mSpooler.EvictRows(65), 70u);
    std::string const file = ReadWholeFile(Folder() / Files()[0]);
    ASSERT_EQ(file.size(), 74u);
    long const order[] = {3, 2, 5, 6, 4, 7, 1};
    for (std::size_t i = 0; i < 7; ++i) {
        auto const row = RowBytes(static_cast<unsigned>(order[i]), 10);
        EXPECT_EQ(file.substr(4 + i * 10, 10), std::string(row.begin(), row.end())) << i;
    }
}

TEST_F(ImagerSpool, EvictionStopsWhenEnoughIsFreed) {
    AddFile();
    std::vector<std::uint32_t> ages;
    for (std::uint32_t age = 1; age <= 20; ++age)
        ages.push_back(age);
    FillRows(mSpooler, ages, 100);
    EXPECT_EQ(mSpooler.EvictRows(0), 100u) << "the oldest goes whatever is wanted";
    EXPECT_EQ(mSpooler.EvictRows(100), 100u);
    EXPECT_EQ(mSpooler.EvictRows(101), 200u);
    EXPECT_EQ(mSpooler.EvictRows(300), 300u);
}

TEST_F(ImagerSpool, RowsNeverUsedHaveNoAge) {
    AddFile();
    gTick = 0;
    mSpooler.ISpooler(3, 100, nullptr);
    for (long row = 0; row < 3; ++row)
        mSpooler.GetPtrRow(row);
    EXPECT_EQ(mSpooler.EvictRows(1), 0u);
    gTick = 5;
    mSpooler.Lock(1, nullptr);
    mSpooler.Unlock(1);
    EXPECT_EQ(mSpooler.EvictRows(1), 100u);
    EXPECT_EQ(mSpooler.EvictRows(1), 0u) << "rows 0 and 2 stay";
}

TEST_F(ImagerSpool, ARoomThatIsTaken_IsNotWaitedFor) {
    AddFile();
    FillRows(mSpooler, {1, 2}, 100);
    std::atomic<int> step{0};
    std::thread other([&] {
        spool::StHold const storage(spool::gStorageLock);
        step = 1;
        while (step != 2)
            std::this_thread::yield();
    });
    while (step != 1)
        std::this_thread::yield();
    EXPECT_EQ(mSpooler.EvictRows(100), 0u);
    EXPECT_EQ(Manager().UseLessMemory(100), 0u);
    step = 2;
    other.join();
    EXPECT_EQ(mSpooler.EvictRows(100), 100u);
}

// --- there and back

TEST_F(ImagerSpool, RowsComeBackAsTheyWere) {
    AddFile();
    std::vector<std::uint32_t> ages;
    for (std::uint32_t age = 1; age <= 40; ++age)
        ages.push_back(age * 7 % 41);
    FillRows(mSpooler, ages, 1000);
    gTick = 100;
    Evict(40);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    for (long row = 39; row >= 0; --row)
        EXPECT_TRUE(Holds(mSpooler, row, 1000));
}

/// How many bytes of rows the gate allows.
unsigned int gCap = 0;

void CapRows(unsigned int bytes) {
    gCap = bytes;
    SrSetAllocationGate(
        [](std::size_t size) { return SrGetGlobalSpoolManager()->MemoryInUse() + size <= gCap; });
}

TEST_F(ImagerSpool, WithoutMemoryForARow_ItMakesRoomAmongItsOwn) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3, 4}, 100);
    ScImagerSpool other;
    other.ISpooler(1, 100, nullptr);
    CapRows(400);
    EXPECT_EQ(CaughtCode([&] { other.GetPtrRow(0); }), -108) << "other spoolers are not asked";
    EXPECT_EQ(Manager().MemoryInUse(), 400u);
    gTick = 9;
    Evict(1);  // row 0
    CapRows(300);
    EXPECT_TRUE(Holds(mSpooler, 0, 100)) << "row 1 made room";
    EXPECT_EQ(Manager().MemoryInUse(), 300u);
    EXPECT_TRUE(Holds(mSpooler, 1, 100)) << "row 2 did";
    EXPECT_EQ(Manager().MemoryInUse(), 300u);
}

TEST_F(ImagerSpool, WithoutMemoryAndWithoutASpoolFile_TheErrorSaysSo) {
    FillRows(mSpooler, {1}, 100);
    mSpooler.Resize(2, 100, nullptr);
    mSpooler.GetPtrRow(0);
    RefusedMemory const refused;
    EXPECT_EQ(CaughtCode([&] { mSpooler.GetPtrRow(1); }), SkNoSpoolFileErrC());
    EXPECT_EQ(CaughtCode([&] { mSpooler.Lock(1, nullptr); }), SkNoSpoolFileErrC());
}

TEST_F(ImagerSpool, NothingToEvict_IsMinus108) {
    AddFile();
    mSpooler.ISpooler(2, 100, nullptr);
    RefusedMemory const refused;
    EXPECT_EQ(CaughtCode([&] { mSpooler.GetPtrRow(0); }), -108);
}

// --- locks

TEST_F(ImagerSpool, LockedRowsStay_LocksCount) {
    AddFile();
    FillRows(mSpooler, {1, 2}, 100);
    void* const row = mSpooler.Lock(0, nullptr);
    mSpooler.Lock(0, nullptr);
    EXPECT_EQ(mSpooler.EvictRows(1), 100u);
    EXPECT_EQ(mSpooler.EvictRows(1), 0u);
    mSpooler.Unlock(0);
    EXPECT_EQ(mSpooler.EvictRows(1), 0u);
    EXPECT_EQ(mSpooler.GetPtrRow(0), row);
    mSpooler.Unlock(0);
    EXPECT_EQ(mSpooler.EvictRows(1), 100u);
}

TEST_F(ImagerSpool, LockRows_IncludesBothEnds) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3, 4}, 100);
    EXPECT_TRUE(mSpooler.LockRows(1, 2, nullptr));
    EXPECT_EQ(mSpooler.EvictRows(1) + mSpooler.EvictRows(1) + mSpooler.EvictRows(1), 200u);
    mSpooler.UnlockRows(1, 2);
    EXPECT_EQ(mSpooler.EvictRows(1) + mSpooler.EvictRows(1) + mSpooler.EvictRows(1), 200u);
    EXPECT_TRUE(mSpooler.LockRows(3, 2, nullptr)) << "no rows at all";
}

TEST_F(ImagerSpool, LockRowsThatFails_LeavesOneLockOnTheFirst) {
    AddFile();
    mSpooler.ISpooler(10, 100, nullptr);
    {
        RefusedMemory const refused(2);  // rows 5 and 6, which are locked when row 7 wants memory
        EXPECT_FALSE(mSpooler.LockRows(5, 9, nullptr));
    }
    EXPECT_EQ(Resident(100), 2);
    EXPECT_EQ(mSpooler.EvictRows(1), 100u) << "row 6";
    EXPECT_EQ(mSpooler.EvictRows(1), 0u) << "row 5 has its lock";
    mSpooler.Unlock(5);
    EXPECT_EQ(mSpooler.EvictRows(1), 100u);
    // Row 7 has no lock either.
    mSpooler.GetPtrRow(7);
    EXPECT_EQ(mSpooler.EvictRows(1), 100u);
}

TEST_F(ImagerSpool, LockRowsThatFailsAtItsFirst_LeavesItsLockToo) {
    AddFile();
    FillRows(mSpooler, {1, 2}, 100);
    Evict(2);
    LoseFile();
    EXPECT_FALSE(mSpooler.LockRows(0, 1, nullptr));
    mSpooler.Unlock(0);
}

TEST_F(ImagerSpool, ALockThatFails_IsCounted) {
    AddFile();
    mSpooler.ISpooler(1, 100, nullptr);
    {
        RefusedMemory const refused;
        EXPECT_EQ(CaughtCode([&] { mSpooler.Lock(0, nullptr); }), -108);
    }
    mSpooler.GetPtrRow(0);
    EXPECT_EQ(mSpooler.EvictRows(1), 0u);
    mSpooler.Unlock(0);
    EXPECT_EQ(mSpooler.EvictRows(1), 100u);
}

// --- rows in one block

TEST_F(ImagerSpool, ForceContiguous_PutsAllRowsIntoOneBlock) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3, 4}, 100);
    Evict(2);
    EXPECT_FALSE(mSpooler.IsContiguous());
    gTick = 77;
    mSpooler.ForceContiguous();
    EXPECT_TRUE(mSpooler.IsContiguous());
    EXPECT_EQ(mSpooler.LastUse(), 77u) << "rows were read back";
    EXPECT_EQ(Manager().MemoryInUse(), 400u);
    auto* const first = static_cast<char*>(mSpooler.GetPtrRow(0));
    for (long row = 0; row < 4; ++row) {
        EXPECT_EQ(mSpooler.GetPtrRow(row), first + row * 100);
        EXPECT_TRUE(Holds(mSpooler, row, 100));
    }
}

TEST_F(ImagerSpool, ABlockInUseStays) {
    AddFile();
    FillRows(mSpooler, {1, 2}, 100);
    mSpooler.ForceContiguous();
    mSpooler.ForceContiguous();
    EXPECT_EQ(mSpooler.EvictRows(1), 0u);
    mSpooler.ReleaseContiguous();
    EXPECT_TRUE(mSpooler.IsContiguous());
    EXPECT_EQ(mSpooler.EvictRows(1), 0u);
    mSpooler.ReleaseContiguous();
    mSpooler.ReleaseContiguous();  // one too many means nothing
    EXPECT_FALSE(mSpooler.IsContiguous());
    mSpooler.ForceContiguous();
    EXPECT_TRUE(mSpooler.IsContiguous());
}

TEST_F(ImagerSpool, AnIdleBlockGoesAsAWhole) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3}, 100);
    mSpooler.ForceContiguous();
    void* const row = mSpooler.GetPtrRow(0);
    mSpooler.ReleaseContiguous();
    EXPECT_EQ(mSpooler.GetPtrRow(0), row) << "nothing moves yet";
    EXPECT_EQ(mSpooler.EvictRows(1), 300u);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    for (long i = 0; i < 3; ++i)
        EXPECT_TRUE(Holds(mSpooler, i, 100));
    EXPECT_EQ(Manager().MemoryInUse(), 300u) << "single rows again";
    EXPECT_EQ(mSpooler.EvictRows(1), 100u);
}

TEST_F(ImagerSpool, AnIdleBlockWithALockedRowStays) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3}, 100);
    mSpooler.ForceContiguous();
    mSpooler.ReleaseContiguous();
    mSpooler.Lock(1, nullptr);
    EXPECT_EQ(mSpooler.EvictRows(1000), 0u);
    mSpooler.Unlock(1);
    EXPECT_EQ(mSpooler.EvictRows(1), 300u);
}

TEST_F(ImagerSpool, AnIdleBlockIsTakenAgainAtNoCost) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3}, 100);
    mSpooler.ForceContiguous();
    mSpooler.ReleaseContiguous();
    RefusedMemory const refused;
    mSpooler.ForceContiguous();
    EXPECT_TRUE(mSpooler.IsContiguous());
}

TEST_F(ImagerSpool, ForceContiguous_Refused) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3}, 100);
    OnOtherThread([&] { EXPECT_EQ(CaughtCode([&] { mSpooler.ForceContiguous(); }), -29299); });
    {
        RefusedMemory const refused;
        EXPECT_EQ(CaughtCode([&] { mSpooler.ForceContiguous(); }), -108);
    }
    EXPECT_FALSE(mSpooler.IsContiguous());
    EXPECT_EQ(Manager().MemoryInUse(), 300u) << "nothing was evicted for it";
    for (long i = 0; i < 3; ++i)
        EXPECT_TRUE(Holds(mSpooler, i, 100));
}

TEST_F(ImagerSpool, ForceContiguousThatCannotReadARow_LosesNoOther) {
    AddFile();
    FillRows(mSpooler, {3, 1, 2}, 100);
    Evict(1);  // row 1
    LoseFile();
    EXPECT_EQ(CaughtCode([&] { mSpooler.ForceContiguous(); }), -39);
    EXPECT_FALSE(mSpooler.IsContiguous());
    EXPECT_TRUE(Holds(mSpooler, 0, 100));
    EXPECT_TRUE(Holds(mSpooler, 2, 100));
    EXPECT_EQ(CaughtCode([&] { mSpooler.GetPtrRow(1); }), -39);
    // The file is whole again: so is the frame.
    auto const row = RowBytes(1, 100);
    WriteWholeFile(Folder() / Files()[0], "lsPS" + std::string(row.begin(), row.end()));
    mSpooler.ForceContiguous();
    EXPECT_EQ(Manager().MemoryInUse(), 300u);
    for (long i = 0; i < 3; ++i)
        EXPECT_TRUE(Holds(mSpooler, i, 100));
}

TEST_F(ImagerSpool, AnIdleBlockThatCannotBeWritten_LosesNothing) {
    AddFile(4 + 250);  // two rows
    FillRows(mSpooler, {1, 2, 3}, 100);
    mSpooler.ForceContiguous();
    mSpooler.ReleaseContiguous();
    EXPECT_EQ(CaughtCode([&] { mSpooler.EvictRows(1); }), SkSpoolFilesFullErrC());
    for (long i = 0; i < 3; ++i)
        EXPECT_TRUE(Holds(mSpooler, i, 100));
    EXPECT_EQ(Manager().MemoryInUse(), 300u);
    AddFile();
    EXPECT_EQ(mSpooler.EvictRows(1), 300u);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    for (long i = 0; i < 3; ++i)
        EXPECT_TRUE(Holds(mSpooler, i, 100));
}

TEST_F(ImagerSpool, AnIdleBlockThatWasWrittenInPart_IsMadeWholeAgain) {
    AddFile(4 + 250);  // two rows
    FillRows(mSpooler, {1, 2, 3}, 100);
    mSpooler.ForceContiguous();
    auto* const block = static_cast<char*>(mSpooler.GetPtrRow(0));
    mSpooler.ReleaseContiguous();
    EXPECT_EQ(CaughtCode([&] { mSpooler.EvictRows(1); }), SkSpoolFilesFullErrC());
    mSpooler.ForceContiguous();
    std::fill_n(block, 300, 'x');  // as a child does, which asks the spooler for no row
    for (long i = 0; i < 3; ++i) {
        auto* const row = static_cast<char*>(mSpooler.GetPtrRow(i));
        EXPECT_EQ(row, block + 100 * i);
        EXPECT_EQ(row[99], 'x') << "row " << i;
    }
}

TEST_F(ImagerSpool, ABlockInUseOutlivesTheBindingOfItsRows) {
    AddFile();
    FillRows(mSpooler, {1, 2}, 100);
    mSpooler.ForceContiguous();
    auto* const block = static_cast<char*>(mSpooler.GetPtrRow(0));
    std::vector<char> lent(200);
    mSpooler.BindRows(lent.data(), 100);
    EXPECT_TRUE(mSpooler.IsContiguous());
    EXPECT_EQ(mSpooler.GetPtrRow(1), lent.data() + 100);
    EXPECT_EQ(Manager().MemoryInUse(), 200u);
    block[199] = 'x';  // still there for those who have its address
    EXPECT_EQ(mSpooler.EvictRows(1), 0u);
    mSpooler.ReleaseContiguous();
    EXPECT_EQ(mSpooler.EvictRows(1), 200u) << "the block alone, no row of the caller's";
    EXPECT_EQ(mSpooler.GetPtrRow(1), lent.data() + 100);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
}

// --- lent memory

TEST_F(ImagerSpool, BoundRowsAreTheCallers_AndStay) {
    AddFile();
    FillRows(mSpooler, {1, 2}, 100);
    Evict(1);
    std::vector<char> block(200);
    mSpooler.Lock(1, nullptr);
    mSpooler.BindRows(block.data(), 100);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    EXPECT_EQ(mSpooler.GetPtrRow(0), block.data());
    EXPECT_EQ(mSpooler.Lock(1, nullptr), block.data() + 100);
    mSpooler.Unlock(1);
    EXPECT_EQ(mSpooler.EvictRows(1000), 0u) << "nothing would be given back";
    block[150] = 'x';
    mSpooler.ForceContiguous();
    EXPECT_EQ(static_cast<char*>(mSpooler.GetPtrRow(1))[50], 'x');
    EXPECT_NE(mSpooler.GetPtrRow(0), block.data());
    mSpooler.ReleaseContiguous();
    mSpooler.BindRows(nullptr, 100);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    EXPECT_NE(mSpooler.GetPtrRow(0), block.data());
    EXPECT_EQ(Manager().MemoryInUse(), 100u);
}

// --- failures

TEST_F(ImagerSpool, ARowThatCannotBeReadBack_KeepsItsPlace) {
    AddFile();
    FillRows(mSpooler, {1, 2}, 100);
    Evict(2);
    std::string const path = Folder() / Files()[0];
    std::string const whole = ReadWholeFile(path);
    ASSERT_EQ(truncate(path.c_str(), 150), 0);
    EXPECT_TRUE(Holds(mSpooler, 0, 100));
    EXPECT_EQ(CaughtCode([&] { mSpooler.GetPtrRow(1); }), -39);
    EXPECT_EQ(CaughtCode([&] { mSpooler.Lock(1, nullptr); }), -39);
    mSpooler.Unlock(1);
    EXPECT_EQ(Manager().MemoryInUse(), 100u);
    WriteWholeFile(path, whole);
    EXPECT_TRUE(Holds(mSpooler, 1, 100));
}

TEST_F(ImagerSpool, ARowThatCannotBeWritten_StaysInMemory) {
    FillRows(mSpooler, {1, 2}, 100);
    EXPECT_EQ(CaughtCode([&] { mSpooler.EvictRows(1); }), SkNoSpoolFileErrC());
    EXPECT_EQ(Manager().MemoryInUse(), 200u);
    EXPECT_TRUE(Holds(mSpooler, 0, 100));
    AddFile();
    EXPECT_EQ(mSpooler.EvictRows(1), 100u) << "no lock was left behind";
    OnOtherThread([&] {
        StFirstClassThread const firstClass;
        EXPECT_EQ(mSpooler.EvictRows(1), 100u) << "nor for another thread";
    });
}

TEST_F(ImagerSpool, OffAFirstClassThread_OnlyMemoryCanBeHad) {
    AddFile();
    FillRows(mSpooler, {1, 2, 3}, 100);
    Evict(1);
    OnOtherThread([&] {
        EXPECT_EQ(CaughtCode([&] { mSpooler.GetPtrRow(0); }), -29299);
        EXPECT_EQ(CaughtCode([&] { mSpooler.Lock(0, nullptr); }), -29299);
        mSpooler.Unlock(0);
        EXPECT_EQ(CaughtCode([&] { mSpooler.EvictRows(1); }), -29299);
        EXPECT_TRUE(Holds(mSpooler, 1, 100));
        EXPECT_NE(mSpooler.Lock(2, nullptr), nullptr);
        mSpooler.Unlock(2);
        EXPECT_EQ(CaughtCode([&] { mSpooler.Resize(1, 1, nullptr); }), -29299);
        EXPECT_EQ(CaughtCode([&] { mSpooler.BindRows(nullptr, 100); }), -29299);
    });
    for (long i = 0; i < 3; ++i)
        EXPECT_TRUE(Holds(mSpooler, i, 100));
    OnOtherThread([&] {
        ScImagerSpool untouched;
        untouched.ISpooler(1, 10, nullptr);
        EXPECT_NE(untouched.GetPtrRow(0), nullptr);
        EXPECT_EQ(CaughtCode([&] { mSpooler.Resize(1, 1, nullptr); }), SkNothingCaught())
            << "no row is in a file any more";
    });
}

TEST_F(ImagerSpool, EndedOffAFirstClassThread_ItsPlacesStayTaken) {
    AddFile();
    auto spooler = std::make_unique<ScImagerSpool>();
    FillRows(*spooler, {1, 2}, 100);
    ASSERT_EQ(spooler->EvictRows(1), 100u);
    OnOtherThread([&] { spooler.reset(); });
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    EXPECT_EQ(Manager().UseLessMemory(1), 0u);
    short file = 0;
    unsigned int position = 0;
    char const row[100] = {};
    Manager().WriteRow(file, position, row, 100);
    EXPECT_EQ(position, 104u);
}

TEST_F(ImagerSpool, OutlivesTheManager) {
    AddFile();
    FillRows(mSpooler, {1, 2}, 100);
    Evict(1);
    RenewManager();
    EXPECT_EQ(CaughtCode([&] { mSpooler.GetPtrRow(0); }), -43) << "its file has gone";
    EXPECT_TRUE(Holds(mSpooler, 1, 100));
    EXPECT_EQ(mSpooler.EvictRows(1), 0u);
    mSpooler.Resize(2, 50, nullptr);
    mSpooler.GetPtrRow(0);
    EXPECT_EQ(Manager().MemoryInUse(), 50u) << "it belongs to the new manager";
}

}  // namespace
