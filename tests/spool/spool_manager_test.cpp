// The manager: spool files, places in them, the choice between spoolers.
#include "framewright/spool/spool_manager.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>

#include "framewright/spool/spool_locks.h"
#include "framewright/thornmere/reference.h"
#include "spool_test_support.h"

using namespace testing_spool;

namespace {

struct StPlace {
    short file = -1;
    unsigned int position = 0;

    friend bool operator==(StPlace const&, StPlace const&) = default;
    friend void PrintTo(StPlace const& place, std::ostream* out) {
        *out << "file " << place.file << " at " << place.position;
    }
};

class SpoolManager : public Spooling {
  protected:
    /// Writes a row of `bytes` bytes that all have the value `fill`.
    StPlace Write(unsigned int bytes, unsigned char fill = 0) {
        StPlace place;
        std::vector<unsigned char> const row(bytes, fill);
        EXPECT_EQ(Manager().WriteRow(place.file, place.position, row.data(), bytes), bytes);
        return place;
    }
    /// Writes as many rows of 100 bytes, at 4, 104, 204...
    void WriteRows(int count) {
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(Write(100), (StPlace{0, 4u + 100u * static_cast<unsigned>(i)}));
    }
    void Free(unsigned int position, unsigned int bytes) { Manager().FreeExtent(0, position, bytes); }
};

// --- the object

TEST_F(SpoolManager, IsAManagedObject) {
    EXPECT_STREQ(SmSpoolManager::ClassName(), "SmSpoolManager");
    EXPECT_EQ(SmSpoolManager::ClassVersion(), 0);
    EXPECT_TRUE(Manager().IsMemberOf(SmObject::Class()));
    EXPECT_EQ(Manager().MemoryIsLow(1000), 0u);
}

TEST_F(SpoolManager, ACloneHasNoFilesAndNoSpoolers) {
    AddFile();
    ScImagerSpool spooler;
    FillRows(spooler, {5, 6}, 64);
    auto const clone = StRef<SmSpoolManager>::Adopt(Manager().Clone());
    EXPECT_EQ(clone->UseLessMemory(1000), 0u);
    short file = 0;
    unsigned int position = 0;
    EXPECT_EQ(CaughtCode([&] { clone->WriteRow(file, position, "", 1); }), SkNoSpoolFileErrC());
}

TEST_F(SpoolManager, IsMadeOnceAndEndedOnce) {
    SmSpoolManager* const manager = SrGetGlobalSpoolManager();
    SrInitializeGlobalSpoolManager(false);
    EXPECT_EQ(SrGetGlobalSpoolManager(), manager) << "only the preferences are made anew";
    SrInitializeGlobalSpoolManager(true);
    EXPECT_EQ(SrGetGlobalSpoolManager(), nullptr);
    SrInitializeGlobalSpoolManager(true);
    EXPECT_EQ(SrGetGlobalSpoolManager(), nullptr);
    SrInitializeGlobalSpoolManager(false);
    EXPECT_NE(SrGetGlobalSpoolManager(), nullptr);
}

TEST_F(SpoolManager, NoMemoryForTheManager_IsMinus108) {
    SrInitializeGlobalSpoolManager(true);
    {
        RefusedMemory const refused;
        EXPECT_EQ(CaughtCode([] { SrInitializeGlobalSpoolManager(false); }), -108);
    }
    EXPECT_EQ(SrGetGlobalSpoolManager(), nullptr);
}

// --- spool files

TEST_F(SpoolManager, ASpoolFileIsNamedByTheTick_AndStartsWithItsMark) {
    gTick = 12345678;
    Manager().AddSpoolFile(StFileSpec((Folder() / "some name.txt").c_str()), 1000);
    EXPECT_EQ(Files(), std::vector<std::string>{"T0012345678.STch"});
    EXPECT_EQ(ReadWholeFile(Folder() / "T0012345678.STch"), "lsPS");
    gTick = 4294967295u;
    Manager().AddSpoolFile(StFileSpec((Folder() / "x").c_str()), 1000);
    EXPECT_EQ(Files(), (std::vector<std::string>{"T0012345678.STch", "T4294967295.STch"}));
}

TEST_F(SpoolManager, OnlyTheUserMayReadASpoolFile) {
    using std::filesystem::perms;
    AddFile();
    EXPECT_EQ(std::filesystem::status(Folder() / Files()[0]).permissions(),
              perms::owner_read | perms::owner_write);
}

TEST_F(SpoolManager, SpoolFilesGoWithTheManager) {
    AddFile();
    AddFile();
    Write(10);
    EXPECT_EQ(Files().size(), 2u);
    SrInitializeGlobalSpoolManager(true);
    EXPECT_TRUE(Files().empty());
}

TEST_F(SpoolManager, ATakenName_IsMinus48_AndTheFileStays) {
    gTick = 7;
    std::string const name = Folder() / "T0000000007.STch";
    WriteWholeFile(name, "somebody's");
    EXPECT_EQ(CaughtCode([&] { Manager().AddSpoolFile(StFileSpec((Folder() / "x").c_str()), 1000); }), -48);
    EXPECT_EQ(ReadWholeFile(name), "somebody's");
}

TEST_F(SpoolManager, AFileThatCannotBe_LeavesNothing) {
    StFileSpec const nowhere((Folder() / "missing/x").c_str());
    EXPECT_EQ(CaughtCode([&] { Manager().AddSpoolFile(nowhere, 1000); }), -43);
    StFileSpec const here((Folder() / "x").c_str());
    for (int allowed : {0, 1}) {
        RefusedMemory const refused(allowed);
        EXPECT_EQ(CaughtCode([&] { Manager().AddSpoolFile(here, 1000); }), -108) << allowed;
        EXPECT_TRUE(Files().empty()) << allowed;
    }
}

TEST_F(SpoolManager, FilesAreForFirstClassThreads) {
    AddFile();
    StPlace place = Write(10);
    OnOtherThread([&] {
        char row[10] = {};
        StFileSpec const here((Folder() / "x").c_str());
        EXPECT_EQ(CaughtCode([&] { Manager().AddSpoolFile(here, 1000); }), -29299);
        EXPECT_EQ(CaughtCode([&] { SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str())); }), -29299);
        EXPECT_EQ(CaughtCode([&] { Manager().WriteRow(place.file, place.position, row, 10); }), -29299);
        EXPECT_EQ(CaughtCode([&] { Manager().ReadRow(place.file, place.position, row, 10); }), -29299);
        EXPECT_EQ(CaughtCode([&] { Manager().FreeExtent(place.file, place.position, 10); }), -29299);
        EXPECT_EQ(Manager().UseLessMemory(10), 0u);
        StFirstClassThread const firstClass;
        EXPECT_EQ(CaughtCode([&] { Manager().ReadRow(place.file, place.position, row, 10); }),
                  SkNothingCaught());
    });
}

TEST_F(SpoolManager, AddedInAFolder_AFileLiesDirectlyInIt) {
    gTick = 20;
    SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str()));
    EXPECT_EQ(Files(), std::vector<std::string>{"T0000000020.STch"});
    gTick = 21;
    SrAddImagerSpoolFileInFolder(StFileSpec((Folder().string() + "/").c_str()));
    EXPECT_EQ(Files(), (std::vector<std::string>{"T0000000020.STch", "T0000000021.STch"}));
}

/// Reads of the clock, which stands still until the tries up to `gTriesThatFail` have failed.
int gTickReads = 0;
int gTickMovesAt = 0;

TEST_F(SpoolManager, AddedInAFolder_TriesEightTimesInAll) {
    WriteWholeFile(Folder() / "T0000000020.STch", "");
    gTick = 20;
    gTickReads = 0;
    SrSetTickSource([] { return ++gTickReads >= gTickMovesAt ? 21u : 20u; });
    // The first read is the routine's own; then each try reads once.
    gTickMovesAt = 9;
    SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str()));
    EXPECT_EQ(gTickReads, 9);
    EXPECT_EQ(Files(), (std::vector<std::string>{"T0000000020.STch", "T0000000021.STch"}));

    gTickReads = 0;
    gTickMovesAt = 10;
    EXPECT_EQ(CaughtCode([&] { SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str())); }), -48);
    EXPECT_EQ(gTickReads, 9);

    gTickReads = 0;
    gTickMovesAt = 0;
    std::filesystem::remove(Folder() / "T0000000021.STch");
    SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str()));
    EXPECT_EQ(gTickReads, 2);
}

TEST_F(SpoolManager, AddedInAFolder_AllowsHalfAGibibyte) {
    SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str()));
    StPlace place;
    char const row[4] = {};
    // The first fits if it ends below 512 MiB, counted from the mark; neither is written.
    Manager().FreeExtent(0, 0x1FFFFFF0, 8);
    EXPECT_EQ(Write(8), (StPlace{0, 0x1FFFFFF0}));
    EXPECT_EQ(CaughtCode([&] { Manager().WriteRow(place.file, place.position, row, 0x1FFFFFFC); }),
              SkSpoolFilesFullErrC());
}

TEST_F(SpoolManager, AddedInAFolderThatIsMissing_IsMinus43) {
    StFileSpec const nowhere((Folder() / "missing").c_str());
    EXPECT_EQ(CaughtCode([&] { SrAddImagerSpoolFileInFolder(nowhere); }), -43);
}

TEST_F(SpoolManager, AddedInAFolderWithoutAManager_NothingHappens) {
    SrInitializeGlobalSpoolManager(true);
    SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str()));
    EXPECT_TRUE(Files().empty());
}

// --- writing

TEST_F(SpoolManager, RowsLieBehindEachOther_AsTheyAre) {
    AddFile();
    EXPECT_EQ(Write(3, 'a'), (StPlace{0, 4}));
    EXPECT_EQ(Write(5, 'b'), (StPlace{0, 7}));
    EXPECT_EQ(ReadWholeFile(Folder() / Files()[0]), "lsPSaaabbbbb");
}

TEST_F(SpoolManager, AFileMustStayBelowItsMaximum) {
    AddFile(24);
    AddFile(1000);
    EXPECT_EQ(Write(20), (StPlace{1, 4})) << "4 + 20 is not below 24";
    EXPECT_EQ(Write(19), (StPlace{0, 4}));
    EXPECT_EQ(Write(1), (StPlace{1, 24})) << "the first file is full now";
}

TEST_F(SpoolManager, WithoutAFile_TheFirstError) {
    StPlace place{7, 8};
    try {
        Manager().WriteRow(place.file, place.position, "", 1);
        FAIL() << "nothing thrown";
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        EXPECT_EQ(SrGetExceptionValues(exception, message), SkNoSpoolFileErrC());
        auto const* const alert = dynamic_cast<ScMessageBuzzStrings*>(message);
        ASSERT_NE(alert, nullptr);
        EXPECT_EQ(alert->List(), 20991);
        EXPECT_EQ(alert->Index(), 4);
        EXPECT_EQ(alert->Alert(), 191);
        EXPECT_STRNE(alert->GetText(), "");
    }
    EXPECT_EQ(place, (StPlace{7, 8}));
}

TEST_F(SpoolManager, WithFullFiles_TheSecondError) {
    AddFile(10);
    AddFile(10);
    StPlace place{7, 8};
    try {
        Manager().WriteRow(place.file, place.position, "123456", 6);
        FAIL() << "nothing thrown";
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        EXPECT_EQ(SrGetExceptionValues(exception, message), SkSpoolFilesFullErrC());
        auto const* const alert = dynamic_cast<ScMessageBuzzStrings*>(message);
        ASSERT_NE(alert, nullptr);
        EXPECT_EQ(alert->List(), 20991);
        EXPECT_EQ(alert->Index(), 5);
    }
    EXPECT_EQ(place, (StPlace{7, 8}));
    EXPECT_NE(SkNoSpoolFileErrC(), SkSpoolFilesFullErrC());
}

// --- free extents

TEST_F(SpoolManager, AFreedPlaceIsTakenAgain) {
    AddFile();
    WriteRows(3);
    Free(104, 100);
    EXPECT_EQ(Write(100), (StPlace{0, 104}));
    EXPECT_EQ(Write(100), (StPlace{0, 304}));
}

TEST_F(SpoolManager, TheFirstExtentThatIsLongEnoughIsUsed_FromItsStart) {
    AddFile();
    WriteRows(8);
    Free(104, 100);
    Free(304, 200);
    Free(604, 100);
    EXPECT_EQ(Write(150), (StPlace{0, 304}));
    EXPECT_EQ(Write(100), (StPlace{0, 104}));
    EXPECT_EQ(Write(30), (StPlace{0, 454})) << "what is left of the longer one";
    EXPECT_EQ(Write(30), (StPlace{0, 604}));
    EXPECT_EQ(Write(20), (StPlace{0, 484}));
    EXPECT_EQ(Write(71), (StPlace{0, 804}));
}

TEST_F(SpoolManager, ExtentsOfEarlierFilesComeFirst) {
    AddFile(104);
    AddFile();
    EXPECT_EQ(Write(90), (StPlace{0, 4}));
    EXPECT_EQ(Write(90), (StPlace{1, 4}));
    Manager().FreeExtent(1, 4, 90);
    Manager().FreeExtent(0, 4, 90);
    EXPECT_EQ(Write(90), (StPlace{0, 4}));
    EXPECT_EQ(Write(90), (StPlace{1, 4}));
}

TEST_F(SpoolManager, AFreedPlaceJoinsTheExtentBeforeIt) {
    AddFile();
    WriteRows(4);
    Free(4, 100);
    Free(104, 100);
    EXPECT_EQ(Write(200), (StPlace{0, 4}));
}

TEST_F(SpoolManager, BetweenTwoExtents_OneExtentIsLeft) {
    AddFile();
    WriteRows(4);
    Free(4, 100);
    Free(204, 100);
    Free(104, 100);
    EXPECT_EQ(Write(300), (StPlace{0, 4}));
}

TEST_F(SpoolManager, RightBeforeAnExtent_TheExtentMovesUp) {
    // Kept: position and length both grow, so the extent starts behind the place that was freed.
    AddFile();
    WriteRows(6);
    Free(104, 100);
    Free(4, 100);  // 104 + 100 long becomes 204 + 200 long
    EXPECT_EQ(Write(200), (StPlace{0, 204})) << "over two rows that this caller had not freed";
    EXPECT_EQ(Write(100), (StPlace{0, 604})) << "and the place at 4 is not known any more";
}

TEST_F(SpoolManager, AnExtentThatMovedUpCanReachPastTheData) {
    AddFile();
    WriteRows(3);
    Free(204, 100);
    Free(104, 100);  // 304 + 200, behind the data
    EXPECT_EQ(Write(100), (StPlace{0, 304}));
    EXPECT_EQ(Write(101), (StPlace{0, 304})) << "the end of the data has not moved";
}

TEST_F(SpoolManager, PlacesApartStayApart) {
    AddFile();
    WriteRows(7);
    Free(404, 100);
    Free(4, 100);
    Free(204, 100);
    EXPECT_EQ(Write(50), (StPlace{0, 4}));
    EXPECT_EQ(Write(100), (StPlace{0, 204}));
    EXPECT_EQ(Write(100), (StPlace{0, 404}));
    EXPECT_EQ(Write(50), (StPlace{0, 54}));
    EXPECT_EQ(Write(1), (StPlace{0, 704}));
}

TEST_F(SpoolManager, NoMemoryForAnExtent_GivesThePlaceUp) {
    constexpr unsigned kExtents = 256;  // so many there is room for from the beginning
    AddFile();
    WriteRows(2 * kExtents + 1);
    {
        RefusedMemory const refused;
        for (unsigned i = 0; i <= kExtents; ++i)
            Free(4 + 200 * i, 100);
    }
    for (unsigned i = 0; i < kExtents; ++i)
        ASSERT_EQ(Write(100), (StPlace{0, 4 + 200 * i}));
    EXPECT_EQ(Write(100), (StPlace{0, 4 + 100 * (2 * kExtents + 1)}));
}

TEST_F(SpoolManager, AFileThatThereIsNot_IsMinus50) {
    AddFile();
    char row[4];
    for (short file : {short{-1}, short{1}, short{32767}}) {
        EXPECT_EQ(CaughtCode([&] { Manager().ReadRow(file, 4, row, 4); }), -50);
        EXPECT_EQ(CaughtCode([&] { Manager().FreeExtent(file, 4, 4); }), -50);
    }
}

// --- reading

TEST_F(SpoolManager, ReadingFreesThePlace) {
    AddFile();
    Write(10, 'a');
    Write(10, 'b');
    char row[10];
    Manager().ReadRow(0, 4, row, 10);
    EXPECT_EQ(std::string(row, 10), "aaaaaaaaaa");
    EXPECT_EQ(Write(10, 'c'), (StPlace{0, 4}));
    Manager().ReadRow(0, 14, row, 10);
    EXPECT_EQ(std::string(row, 10), "bbbbbbbbbb");
}

TEST_F(SpoolManager, AShortRead_IsMinus39_AndFreesNothing) {
    AddFile();
    Write(10, 'a');
    ASSERT_EQ(truncate((Folder() / Files()[0]).c_str(), 9), 0);
    char row[10];
    EXPECT_EQ(CaughtCode([&] { Manager().ReadRow(0, 4, row, 10); }), -39);
    EXPECT_EQ(Write(10), (StPlace{0, 14}));
}

// --- memory

TEST_F(SpoolManager, CountsTheMemoryThatGoesThroughIt) {
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    void* const a = Manager().Allocate(100);
    void* const b = Manager().Allocate(50);
    EXPECT_EQ(Manager().MemoryInUse(), 150u);
    EXPECT_EQ(Manager().Deallocate(a, 100), nullptr);
    EXPECT_EQ(Manager().MemoryInUse(), 50u);
    {
        RefusedMemory const refused;
        EXPECT_EQ(Manager().Allocate(10), nullptr);
    }
    EXPECT_EQ(Manager().MemoryInUse(), 50u);
    Manager().Deallocate(b, 50);
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
}

TEST_F(SpoolManager, AvailableMemory_IsTheSmallerOfEstimateAndRoom) {
    // The room is what is left of 1 GiB. A fraction of 0 estimates 0.
    EXPECT_EQ(Manager().AvailableMemory(0.0f), 0u);
    // An estimate that 32 bits cannot hold is 2^31.
    EXPECT_EQ(Manager().AvailableMemory(1e9f), 0x40000000u);
    Manager().Deallocate(nullptr, 0x60000000);  // in use: wrapped to 0xA0000000; room: 0xA0000000
    EXPECT_EQ(Manager().AvailableMemory(1e9f), 0x80000000u) << "the estimate wins over a room that wrapped";
    EXPECT_EQ(Manager().AvailableMemory(0.0f), 0u);
}

TEST_F(SpoolManager, AvailableMemory_TakesNineTenthsOfTheFraction) {
    // Of what is free the test knows only what it is told a moment before and after.
    double const before = static_cast<double>(SrTotalFreeMemory(true, true, true));
    float const fraction = static_cast<float>(1e8 / before);
    unsigned int const estimate = Manager().AvailableMemory(fraction);
    EXPECT_NEAR(estimate, 0.9e8, 0.2e8);
}

// --- the choice between spoolers

TEST_F(SpoolManager, UseLessMemory_WithoutSpoolers_Is0) {
    EXPECT_EQ(Manager().UseLessMemory(1000), 0u);
}

TEST_F(SpoolManager, UseLessMemory_WhileTheRegistryIsTaken_Is0AtOnce) {
    AddFile();
    ScImagerSpool spooler;
    FillRows(spooler, {5}, 64);
    std::atomic<int> step{0};
    std::thread other([&] {
        spool::StHold const registry(spool::gRegistryLock);
        step = 1;
        while (step != 2)
            std::this_thread::yield();
    });
    while (step != 1)
        std::this_thread::yield();
    EXPECT_EQ(Manager().UseLessMemory(64), 0u);
    step = 2;
    other.join();
    EXPECT_EQ(Manager().UseLessMemory(64), 64u);
}

TEST_F(SpoolManager, UseLessMemory_OfOneSpooler_AsksItOnce) {
    AddFile();
    ScImagerSpool spooler;
    FillRows(spooler, {5, 6, 7}, 64);
    EXPECT_EQ(Manager().UseLessMemory(1000), 64u) << "below eight rows one goes";
    EXPECT_EQ(Manager().UseLessMemory(1000), 64u);
}

TEST_F(SpoolManager, UseLessMemory_TakesTheOldestSpooler) {
    AddFile();
    ScImagerSpool a, b, c;
    FillRows(a, {30}, 10);
    FillRows(b, {20}, 20);
    FillRows(c, {40}, 40);
    EXPECT_EQ(Manager().UseLessMemory(1), 20u);
}

TEST_F(SpoolManager, UseLessMemory_OfEqualAges_TakesTheFirst_AndNoOther) {
    AddFile();
    ScImagerSpool a, b;
    FillRows(a, {30}, 10);
    FillRows(b, {30}, 20);
    EXPECT_EQ(Manager().UseLessMemory(1000), 10u) << "all bands are empty";
    EXPECT_EQ(Manager().UseLessMemory(1000), 0u) << "the first is still the oldest";
}

TEST_F(SpoolManager, UseLessMemory_GoesOnInBandsOfAge) {
    AddFile();
    // Oldest 100, newest 140: bands (100, 110], (110, 120], (120, 130], (130, 140].
    ScImagerSpool newest, oldest, third, first, second;
    FillRows(newest, {140}, 1);
    FillRows(oldest, {100}, 2);
    FillRows(third, {130}, 4);
    FillRows(first, {110}, 8);
    FillRows(second, {111}, 16);
    EXPECT_EQ(Manager().UseLessMemory(3), 2u + 8u);
    EXPECT_EQ(Manager().UseLessMemory(11), 16u) << "the spoolers before have nothing more";
    EXPECT_EQ(Manager().UseLessMemory(1000), 4u + 1u);
}

TEST_F(SpoolManager, UseLessMemory_WithinABandTheOrderOfRegistrationDecides) {
    AddFile();
    ScImagerSpool oldest, b, a, newest;
    FillRows(oldest, {100}, 1);
    FillRows(b, {109}, 2);
    FillRows(a, {101}, 4);
    FillRows(newest, {140}, 8);
    EXPECT_EQ(Manager().UseLessMemory(2), 1u + 2u);
}

TEST_F(SpoolManager, UseLessMemory_ASpoolerNeverTouchedIsTheOldest) {
    AddFile();
    ScImagerSpool used, never;
    FillRows(used, {100}, 1);
    never.ISpooler(3, 10, nullptr);
    EXPECT_EQ(Manager().UseLessMemory(1), 1u) << "it has nothing, so the bands follow, from 0 to 100";
}

TEST_F(SpoolManager, UseLessMemory_SwallowsErrors) {
    ScImagerSpool spooler;
    FillRows(spooler, {5, 6}, 64);
    EXPECT_EQ(Manager().UseLessMemory(64), 0u) << "there is no spool file";
    AddFile(100);
    ScImagerSpool older;
    FillRows(older, {1}, 64);
    EXPECT_EQ(Manager().UseLessMemory(128), 64u) << "the second row found no room";
    EXPECT_TRUE(Holds(spooler, 0, 64));
    EXPECT_TRUE(Holds(spooler, 1, 64));
    EXPECT_TRUE(Holds(older, 0, 64));
}

TEST_F(SpoolManager, ARemovedSpoolerIsNotAsked) {
    AddFile();
    ScImagerSpool spooler;
    FillRows(spooler, {5}, 64);
    Manager().RemoveSpooler(&spooler);
    EXPECT_EQ(Manager().UseLessMemory(64), 0u);
    Manager().RemoveSpooler(&spooler);
    Manager().AddSpooler(&spooler);
    EXPECT_EQ(Manager().UseLessMemory(64), 64u);
}

// --- rows of spoolers are never overwritten

TEST_F(SpoolManager, ARowOfASpoolerIsSafeFromAnExtentThatMovedUp) {
    AddFile();
    ScImagerSpool spooler;
    FillRows(spooler, {1, 2, 3, 4}, 100);
    // Evicted one by one, the oldest first: rows 0 to 3 at 4, 104, 204 and 304.
    for (int i = 0; i < 4; ++i)
        ASSERT_EQ(spooler.EvictRows(1), 100u);
    EXPECT_TRUE(Holds(spooler, 1, 100));  // frees 104
    EXPECT_TRUE(Holds(spooler, 0, 100));  // frees 4: the extent covers 204 to 404 now, rows 2 and 3
    EXPECT_EQ(Write(100, 'x'), (StPlace{0, 404}));
    EXPECT_TRUE(Holds(spooler, 2, 100));
    EXPECT_EQ(Write(100, 'x'), (StPlace{0, 204})) << "its place is free now";
    EXPECT_TRUE(Holds(spooler, 3, 100));
}

TEST_F(SpoolManager, ARowOfASpoolerIsSafeBehindTheEndOfData) {
    AddFile();
    AddFile();
    ScImagerSpool spooler;
    FillRows(spooler, {1, 2, 3, 4}, 100);
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(spooler.EvictRows(1), 100u);
    EXPECT_TRUE(Holds(spooler, 2, 100));  // frees 204
    EXPECT_TRUE(Holds(spooler, 1, 100));  // frees 104: the extent is 304 to 504, behind the data
    ASSERT_TRUE(spooler.LockRows(1, 2, nullptr));
    ASSERT_EQ(spooler.EvictRows(1), 100u);  // row 3, to 304
    EXPECT_EQ(Write(150, 'x'), (StPlace{1, 4})) << "304 is the end of the first file's data";
    EXPECT_TRUE(Holds(spooler, 3, 100));  // frees 304, right before the extent at 404, which moves up
    EXPECT_EQ(Write(150, 'x'), (StPlace{0, 504}));
    EXPECT_EQ(Write(250, 'x'), (StPlace{0, 304})) << "the end of the data is free now";
}

TEST_F(SpoolManager, GapsServeWhenTheExtentsHaveLostThem) {
    AddFile(4 + 401);
    ScImagerSpool spooler;
    FillRows(spooler, {1, 2, 3, 4, 5}, 100);
    for (int i = 0; i < 4; ++i)
        ASSERT_EQ(spooler.EvictRows(1), 100u);
    EXPECT_EQ(CaughtCode([&] { spooler.EvictRows(1); }), SkSpoolFilesFullErrC());
    ASSERT_TRUE(spooler.LockRows(4, 4, nullptr));
    EXPECT_TRUE(Holds(spooler, 1, 100));  // frees 104
    EXPECT_TRUE(Holds(spooler, 0, 100));  // frees 4: the extent covers the rows at 204 and 304 now
    EXPECT_EQ(spooler.EvictRows(1), 100u);
    EXPECT_EQ(spooler.EvictRows(1), 100u);
    for (long row = 0; row < 5; ++row)
        EXPECT_TRUE(Holds(spooler, row, 100));
    spooler.Unlock(4);
}

TEST_F(SpoolManager, GapsBetweenRowsOfOtherCallersDoNotServe) {
    AddFile(4 + 401);
    WriteRows(4);
    Free(104, 100);
    Free(4, 100);  // the extent covers 204 to 404
    EXPECT_EQ(Write(200), (StPlace{0, 204}));
    StPlace place;
    char const row[100] = {};
    EXPECT_EQ(CaughtCode([&] { Manager().WriteRow(place.file, place.position, row, 100); }),
              SkSpoolFilesFullErrC());
}

}  // namespace
