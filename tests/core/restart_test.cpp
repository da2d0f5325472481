// Set-up routines in mid-process: run with true and then with false, each brings back what it had set up.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "framewright/core/startup.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/frame/registries.h"
#include "framewright/imagery/track.h"
#include "framewright/media/media_manager.h"
#include "framewright/media/media_registries.h"
#include "framewright/pixel/color_tables.h"
#include "framewright/spool/spool_preferences.h"
#include "framewright/thornmere/codes.h"

namespace {

using Lines = std::vector<std::string>;

std::string CodeText(unsigned long code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(code >> shift & 0xFF);
    return text;
}

template <class Registry>
void AddNames(Lines& lines, char const* title) {
    unsigned long id = 0;
    char const* name = nullptr;
    for (int i = 0; Registry::GetObjectByIndex(i, id, name); ++i)
        lines.push_back(title + CodeText(id) + " " + name);
}

template <class Registry>
void AddNamesOf(Lines& lines, char const* title, std::vector<std::uint32_t> const& codes) {
    char const* name = nullptr;
    for (std::uint32_t const code : codes)
        if (Registry::GetObjectByID(code, false, name)) lines.push_back(title + CodeText(code) + " " + name);
}

/// What set-up leaves behind, as far as hosts can see it.
Lines Snapshot() {
    Lines lines;
    for (int i = 0; SmImagerFrame* const prototype = SrGetLayerRegistry()->GetObjectByIndex(i); ++i)
        lines.push_back("layer " + CodeText(prototype->PixelID()) + " " + prototype->GetClassName());
    std::ranges::sort(lines);  // their own order is that of addresses
    AddNames<ScLayerNameRegistry>(lines, "layer name ");
    AddNames<ScStreamNameRegistry>(lines, "stream ");
    AddNames<ScCodecNameRegistry>(lines, "codec ");
    AddNamesOf<ScLayerPurposeRegistry>(lines, "purpose ",
                                       {SrCode("VIEW"), SrCode("DEPT"), SrCode("TEXP"), SrCode("ILLU"),
                                        SrCode("VELO"), SrCode("OBIN"), SrCode("????")});
    AddNamesOf<ScTrackNameRegistry>(
        lines, "track ",
        {SrCode("VIDE"), SrCode("AUDI"), SrCode("TEXT"), SrCode("MIDI"), SrCode("3DOB"), SrCode("TWEE")});
    if (SmMediaManager* const manager = SrGlobalMediaManager()) {
        lines.push_back("media manager");
        for (long i = 0; i < manager->NumberOfRecognizers(); ++i)
            lines.push_back("recognizer " + CodeText(manager->GetRecognizer(i)->GetType()));
    }
    for (ColorTable** const table : {SkColorTable1Bit(), SkColorTable2Bit(), SkColorTable4Bit(),
                                     SkColorTable8Bit(), SkColorTableGrayRamp()})
        if (table) lines.push_back("colour table");
    if (SrGetImageOptimization()) lines.push_back("spooling preferences");
    return lines;
}

TEST(Restart, ServiceHasAllThatSetUpMakes) {
    Lines const lines = Snapshot();
    auto const count = [&](char const* start) {
        return std::ranges::count_if(lines, [&](std::string const& line) { return line.starts_with(start); });
    };
    EXPECT_EQ(count("layer name "), 21);
    EXPECT_EQ(count("layer ") - count("layer name "), 21);
    EXPECT_EQ(count("purpose "), 7);
    EXPECT_EQ(count("track "), 6);
    EXPECT_EQ(count("media manager"), 1);
    EXPECT_EQ(count("recognizer BMP "), 1);
    EXPECT_EQ(count("stream BMP "), 1);
    EXPECT_EQ(count("codec none"), 1);
    EXPECT_EQ(count("colour table"), 5);
    EXPECT_EQ(count("spooling preferences"), 1);
}

class RestartOf : public testing::TestWithParam<StStartupRow> {};

TEST_P(RestartOf, BringsEverythingBack) {
    Lines const before = Snapshot();
    GetParam().routine(true);
    GetParam().routine(false);
    EXPECT_EQ(Snapshot(), before);
}

TEST_P(RestartOf, SurvivesBeingTornDownTwice) {
    Lines const before = Snapshot();
    GetParam().routine(true);
    Lines const torn = Snapshot();
    GetParam().routine(true);
    EXPECT_EQ(Snapshot(), torn);
    GetParam().routine(false);
    EXPECT_EQ(Snapshot(), before);
}

INSTANTIATE_TEST_SUITE_P(Each, RestartOf,
                         testing::ValuesIn(core::StartupTable().begin(), core::StartupTable().end()),
                         [](auto const& info) { return std::string(info.param.name); });

TEST(Restart, WholeTableBringsEverythingBack) {
    Lines const before = Snapshot();
    SrRunShutDown(core::StartupTable());
    // The codec's name is no single format's, so none takes it away.
    EXPECT_THAT(Snapshot(), testing::ElementsAre("codec none none"));
    EXPECT_THAT(SrGetInitializerNames(), testing::IsEmpty());
    EXPECT_EQ(SrRunSetUp(core::StartupTable()), 0);
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(SrGetInitializerNames().size(), 19u);
}

TEST(Restart, OutOfServiceNothingCanBeMadeAndNothingBreaks) {
    SrRunShutDown(core::StartupTable());
    EXPECT_EQ(SrMakeFrame({2, 2}, SrCode("ColB"), false, false), nullptr);
    EXPECT_EQ(SrGlobalMediaManager(), nullptr);
    EXPECT_EQ(SrGetLayerRegistry()->GetObjectByIndex(0), nullptr);
    EXPECT_EQ(SrRunSetUp(core::StartupTable()), 0);
}

TEST(Restart, SomeRoutinesDoNothing) {
    Lines const before = Snapshot();
    SrRegisterResPict(false);
    SrRegisterResPict(true);
    SrInitializeScratch(false);
    SrInitializeScratch(false);
    EXPECT_EQ(Snapshot(), before);
}

}  // namespace
