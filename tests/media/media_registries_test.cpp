#include "framewright/media/media_registries.h"

#include <gtest/gtest.h>

#include "framewright/core/startup.h"
#include "framewright/thornmere/string_lists.h"
#include "media/media_test_support.h"

namespace {

using namespace media_test;

TEST(MediaRegistries, AccessorsAreNeverNull) {
    EXPECT_NE(SrGetMediaRegistry(), nullptr);
    EXPECT_NE(SrGetStreamNameRegistry(), nullptr);
    EXPECT_NE(SrGetCodecNameRegistry(), nullptr);
    EXPECT_NE(SrGetTrackNameRegistry(), nullptr);
}

TEST(MediaRegistry, HoldsAReferenceWhileRegistered) {
    Log log;
    auto const format = StRef<SpyRecognizer>::Adopt(new SpyRecognizer(log, SrCode("Spy1")));
    EXPECT_TRUE(ScMediaRegistry::RegisterObject(SrCode("Spy1"), format.Get()));
    EXPECT_EQ(format->ReferenceCount(), 2);
    EXPECT_FALSE(ScMediaRegistry::RegisterObject(SrCode("Spy1"), nullptr)) << "the first stays";
    SmMediaRecognizer* found = nullptr;
    EXPECT_TRUE(ScMediaRegistry::GetObjectByID(SrCode("Spy1"), false, found));
    EXPECT_EQ(found, format.Get());
    EXPECT_EQ(format->ReferenceCount(), 2);
    EXPECT_EQ(ScMediaRegistry::GetObjectByID(SrCode("Spy1"), false), format.Get());
    ScMediaRegistry::UnRegisterObject(SrCode("Spy1"));
    EXPECT_EQ(format->ReferenceCount(), 1);
    EXPECT_FALSE(ScMediaRegistry::GetObjectByID(SrCode("Spy1"), false, found));
    EXPECT_EQ(ErrorOf([] { ScMediaRegistry::GetObjectByID(SrCode("Spy1"), false); }), SkSymbolNotFoundErrC());
}

template <class Registry>
void CheckNames() {
    // Codes between those of real formats; the last one sorts behind all, as unsigned.
    Registry::RegisterObject(0xFFFFFFF0UL, "last");
    Registry::RegisterObject(1UL, "first");
    unsigned long id = 0;
    char const* name = nullptr;
    EXPECT_TRUE(Registry::GetObjectByIndex(0, id, name));
    EXPECT_EQ(id, 1U);
    EXPECT_STREQ(name, "first");
    int last = 0;
    while (Registry::GetObjectByIndex(last, id, name))
        ++last;
    EXPECT_EQ(name, nullptr) << "past the end the name is null";
    EXPECT_TRUE(Registry::GetObjectByIndex(last - 1, id, name));
    EXPECT_EQ(id, 0xFFFFFFF0U);
    EXPECT_STREQ(name, "last");
    EXPECT_FALSE(Registry::GetObjectByIndex(-1, id, name));
    EXPECT_EQ(name, nullptr);
    Registry::UnRegisterObject(1);
    Registry::UnRegisterObject(0xFFFFFFF0UL);
    EXPECT_FALSE(Registry::GetObjectByID(1UL, false, name));
}

TEST(MediaRegistries, NamesAreWalkedInTheOrderOfTheirCodes) {
    CheckNames<ScStreamNameRegistry>();
    CheckNames<ScCodecNameRegistry>();
}

struct TrackName {
    unsigned long type;
    long index;
};
constexpr TrackName kTrackNames[] = {
    {0x56494445, 1}, {0x41554449, 2}, {0x54455854, 3}, {0x4D494449, 4}, {0x33444F42, 5}, {0x54574545, 6},
};

TEST(TrackTypeNames, StandUnderTheirTypes) {
    for (TrackName const& row : kTrackNames) {
        ScHeapString text;
        SrGetIndexedString(text, 20914, row.index);
        EXPECT_NE(text.Length(), 0U);
        char const* name = nullptr;
        EXPECT_TRUE(ScTrackNameRegistry::GetObjectByID(row.type, false, name));
        EXPECT_STREQ(name, text.AsCString());
    }
}

TEST(TrackTypeNames, ComeAndGoWithTheirRoutine) {
    char const* name = nullptr;
    ScTrackNameRegistry::RegisterObject(7, "another module's");
    SrRegisterTrackTypeNames(true);
    for (TrackName const& row : kTrackNames)
        EXPECT_FALSE(ScTrackNameRegistry::GetObjectByID(row.type, false, name)) << row.index;
    EXPECT_TRUE(ScTrackNameRegistry::GetObjectByID(7UL, false, name)) << "only the six are removed";
    SrRegisterTrackTypeNames(true);
    SrRegisterTrackTypeNames(false);
    for (TrackName const& row : kTrackNames)
        EXPECT_TRUE(ScTrackNameRegistry::GetObjectByID(row.type, false, name)) << row.index;
    ScTrackNameRegistry::UnRegisterObject(7);
}

TEST(TrackTypeNames, WhereMemoryIsRefused) {
    SrRegisterTrackTypeNames(true);
    EXPECT_GT(RefusedRuns([] { SrRegisterTrackTypeNames(false); }), 6);
    char const* name = nullptr;
    EXPECT_TRUE(ScTrackNameRegistry::GetObjectByID(SrCode("TWEE"), false, name));
}

}  // namespace
