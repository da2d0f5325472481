#include "framewright/core/startup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "framewright/thornmere/error.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr char const* kOrder[] = {
    "SrInitMemory",
    "SrInitObjectBase",
    "SrInitStorageManager",
    "SrRegisterTrackTypeNames",
    "SrRegisterResPict",
    "SrInitializeGlobalMedia",
    "SrInitColorMaps",
    "SrInitializeGlobalSpoolManager",
    "SrInitializeLayerRegistries",
    "SrInitializeMappedLayers",
    "SrRegisterPict",
    "SrInitializeScratch",
    "SrInitMipmaps",
    "SrInitStringUtils",
    "SrInitThread",
    "SrInitializeTracks",
    "SrInitSfQuickTime",
    "SrRegisterAvi",
    "SrRegisterBmp",
};

std::vector<std::string> NamesOf(std::vector<StStartupRow> const& rows) {
    std::vector<std::string> names;
    for (StStartupRow const& row : rows)
        names.push_back(row.name);
    return names;
}

TEST(Startup, LibraryIsInService) {
    EXPECT_EQ(SrGetStartupError(), 0);
}

TEST(Startup, RoutinesRanOnceEachInOrder) {
    std::vector<char const*> const names = SrGetInitializerNames();
    EXPECT_THAT(std::vector<std::string>(names.begin(), names.end()), ElementsAreArray(kOrder));
}

TEST(Startup, RecordsWereFirstMarkedInTheSameOrder) {
    auto const table = core::StartupTable();
    std::vector<StStartupRow> rows(table.begin(), table.end());
    for (StStartupRow const& row : rows)
        EXPECT_GT(row.record->firstTrigger, 0u) << row.name;
    std::ranges::sort(rows, {}, [](StStartupRow const& row) { return row.record->firstTrigger; });
    EXPECT_THAT(NamesOf(rows), ElementsAreArray(kOrder));
}

TEST(Startup, FrameworkOwnsFiveRoutines) {
    std::vector<std::string> names;
    for (StStartupRow const& row : core::StartupTable())
        if (row.owner == std::string("framework")) names.push_back(row.name);
    EXPECT_THAT(names, ElementsAre("SrInitMemory", "SrInitObjectBase", "SrInitStorageManager",
                                   "SrInitStringUtils", "SrInitThread"));
}

TEST(Startup, TriggerMarksItsRecordWithoutRunningTheRoutine) {
    StInitializerRecord first, second;
    auto const never = [](bool) { FAIL() << "a trigger ran its routine"; };
    StInitializerTrigger(second, never, 1, 0, nullptr, "second");
    StInitializerTrigger(first, never, 1, 0, nullptr, "first");
    StInitializerTrigger(second, never, 1, 0, nullptr, "second");
    EXPECT_EQ(second.triggers, 2u);
    EXPECT_EQ(first.triggers, 1u);
    EXPECT_LT(second.firstTrigger, first.firstTrigger);
    EXPECT_EQ(second.ran, 0u);
}

// A start-up table of its own, whose routines write down how they were called.
std::vector<std::string> gCalls;

template <char name>
void Note(bool terminate) {
    gCalls.push_back(std::string(1, name) + (terminate ? "-" : "+"));
}
template <char name, long error>
void Fail(bool terminate) {
    Note<name>(terminate);
    if (!terminate) SrThrow(error, nullptr);
}
template <char name>
void FailAtBothEnds(bool terminate) {
    Note<name>(terminate);
    throw 1;
}
void FailToTerminate(bool terminate) {
    Note<'t'>(terminate);
    if (terminate) throw std::runtime_error("cannot stop");
}

struct Sequence {
    explicit Sequence(std::initializer_list<StInitializerRoutine> routines) : records(routines.size()) {
        gCalls.clear();
        for (StInitializerRoutine const routine : routines) {
            StInitializerRecord& record = records[rows.size()];
            record.triggers = 1;
            rows.push_back({routine, &record, "", "", ""});
        }
    }
    std::vector<StInitializerRecord> records;
    std::vector<StStartupRow> rows;
};

TEST(StartupSequence, RunsForwardAndBackward) {
    Sequence sequence{Note<'a'>, Note<'b'>, Note<'c'>};
    EXPECT_EQ(SrRunSetUp(sequence.rows), 0);
    EXPECT_THAT(gCalls, ElementsAre("a+", "b+", "c+"));
    EXPECT_EQ(sequence.records[2].ran, 3u);
    SrRunShutDown(sequence.rows);
    EXPECT_THAT(gCalls, ElementsAre("a+", "b+", "c+", "c-", "b-", "a-"));
    EXPECT_EQ(sequence.records[2].ran, 0u);
}

TEST(StartupSequence, RoutineOfTwentyTriggersRunsOnce) {
    Sequence sequence{Note<'a'>};
    sequence.records[0].triggers = 20;
    SrRunSetUp(sequence.rows);
    SrRunShutDown(sequence.rows);
    EXPECT_THAT(gCalls, ElementsAre("a+", "a-"));
}

TEST(StartupSequence, RoutineThatNoFileDependsOnIsLeftOut) {
    Sequence sequence{Note<'a'>, Note<'b'>, Note<'c'>};
    sequence.records[1].triggers = 0;
    SrRunSetUp(sequence.rows);
    SrRunShutDown(sequence.rows);
    EXPECT_THAT(gCalls, ElementsAre("a+", "c+", "c-", "a-"));
}

TEST(StartupSequence, SecondShutDownDoesNothing) {
    Sequence sequence{Note<'a'>};
    SrRunSetUp(sequence.rows);
    SrRunShutDown(sequence.rows);
    SrRunShutDown(sequence.rows);
    EXPECT_THAT(gCalls, ElementsAre("a+", "a-"));
}

TEST(StartupSequence, FailureTakesBackWhatHadBeenSetUp) {
    Sequence sequence{Note<'a'>, Fail<'b', -192>, Note<'c'>};
    EXPECT_EQ(SrRunSetUp(sequence.rows), -192);
    // The routine that failed is taken back too: it may have set up a part.
    EXPECT_THAT(gCalls, ElementsAre("a+", "b+", "b-", "a-"));
    SrRunShutDown(sequence.rows);
    EXPECT_EQ(gCalls.size(), 4u);
}

TEST(StartupSequence, FailureOfAnyKindHasACode) {
    Sequence plain{[](bool) { throw std::bad_alloc(); }};
    EXPECT_EQ(SrRunSetUp(plain.rows), -108);
    Sequence unknown{FailAtBothEnds<'u'>};
    EXPECT_EQ(SrRunSetUp(unknown.rows), -32768);
    Sequence zero{Fail<'z', 0>};
    EXPECT_NE(SrRunSetUp(zero.rows), 0);
}

TEST(StartupSequence, FailureAtShutDownStopsNoOther) {
    Sequence sequence{Note<'a'>, FailToTerminate, Note<'c'>};
    EXPECT_EQ(SrRunSetUp(sequence.rows), 0);
    SrRunShutDown(sequence.rows);
    EXPECT_THAT(gCalls, ElementsAre("a+", "t+", "c+", "c-", "t-", "a-"));
}

}  // namespace
