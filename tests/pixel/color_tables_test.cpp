#include "framewright/pixel/color_tables.h"

#include <set>

#include "color_test_support.h"
#include "framewright/core/startup.h"

using namespace color_test;

namespace {

/// Entry `index`, which may stand behind the one that the record declares.
ColorSpec SpecOf(ColorTable** table, int index) {
    ColorSpec const* const specs = (*table)->ctTable;
    return specs[index];
}

/// Expects a table of greys whose levels are `level(index)`.
template <class Level>
void ExpectGreys(ColorTable** table, int entries, int flags, Level const& level) {
    ASSERT_NE(table, nullptr);
    EXPECT_EQ((*table)->ctSize, entries - 1);
    EXPECT_EQ(static_cast<std::uint16_t>((*table)->ctFlags), flags);
    for (int i = 0; i < entries; ++i) {
        ColorSpec const spec = SpecOf(table, i);
        EXPECT_EQ(spec.value, i);
        EXPECT_EQ(spec.rgb.red, level(i)) << i;
        EXPECT_EQ(spec.rgb.green, level(i)) << i;
        EXPECT_EQ(spec.rgb.blue, level(i)) << i;
    }
}

/// Puts the tables back as they were after loading, whatever a test did to them.
class ColorTables : public testing::Test {
  protected:
    void TearDown() override {
        SrInitColorMaps(true);
        SrInitColorMaps(false);
    }
};

}  // namespace

TEST_F(ColorTables, OneBitIsWhiteThenBlackAndMarked) {
    ExpectGreys(SkColorTable1Bit(), 2, 0x8000, [](int i) { return i == 0 ? 0xFFFF : 0; });
}

TEST_F(ColorTables, GreysRunFromWhiteToBlack) {
    ExpectGreys(SkColorTable8Bit(), 256, 0, [](int i) { return (255 - i) * 0x101; });
    ExpectGreys(SkColorTable4Bit(), 16, 0, [](int i) { return (15 - i) * 0x1111; });
    int const levels[] = {0xFFFF, 0xAAAA, 0x5555, 0};
    ExpectGreys(SkColorTable2Bit(), 4, 0, [&](int i) { return levels[i]; });
}

TEST_F(ColorTables, RampRunsFromBlackToWhite) {
    ExpectGreys(SkColorTableGrayRamp(), 256, 0, [](int i) { return i * 65535 / 255; });
    EXPECT_EQ(SpecOf(SkColorTableGrayRamp(), 128).rgb.red, 32896);
}

TEST_F(ColorTables, TrueColorsHaveNoEntriesWithoutThePlatform) {
    ASSERT_NE(SkColorTableTrue(), nullptr);
    EXPECT_EQ((*SkColorTableTrue())->ctSize, -1);
    EXPECT_EQ((*SkColorTableTrue())->ctFlags, 0);
}

TEST_F(ColorTables, SeedsTellTablesApart) {
    std::set<std::int32_t> seeds;
    for (ColorTable** table : {SkColorTableTrue(), SkColorTable1Bit(), SkColorTable2Bit(), SkColorTable4Bit(),
                               SkColorTable8Bit(), SkColorTableGrayRamp()}) {
        seeds.insert((*table)->ctSeed);
    }
    EXPECT_EQ(seeds.size(), 6u);
}

TEST_F(ColorTables, HandlesHaveEightBytesMoreThanTheTableNeeds) {
    struct {
        ColorTable** table;
        std::size_t entries;
    } const rows[] = {{SkColorTable1Bit(), 2},   {SkColorTable2Bit(), 4},       {SkColorTable4Bit(), 16},
                      {SkColorTable8Bit(), 256}, {SkColorTableGrayRamp(), 256}, {SkColorTableTrue(), 0}};
    for (auto const& row : rows) {
        // Seed, flags and size take eight bytes, an entry takes eight.
        EXPECT_EQ(SrHandleSize(reinterpret_cast<void**>(row.table)), 8 + 8 * row.entries + 8) << row.entries;
    }
}

TEST_F(ColorTables, ShutDownDisposesOfAllAndSetUpBuildsThemAgain) {
    SrInitColorMaps(true);
    SrInitColorMaps(true);
    for (ColorTable** table : {SkColorTableTrue(), SkColorTable1Bit(), SkColorTable2Bit(), SkColorTable4Bit(),
                               SkColorTable8Bit(), SkColorTableGrayRamp()}) {
        EXPECT_EQ(table, nullptr);
    }
    SrInitColorMaps(false);
    SrInitColorMaps(false);
    EXPECT_EQ((*SkColorTable8Bit())->ctSize, 255);
}

TEST_F(ColorTables, RefusedHandlesThrowTheErrorOfTheirTable) {
    long perHandle = 0;
    {
        ScRefuseAllocations const gate(1000);
        SrDeallocateHandle(SrAllocateHandle(16));
        perHandle = ScRefuseAllocations::Seen();
    }
    // Eight tables of the platform's kind, then the cube with its map, then the ramp.
    long const first = 8 * perHandle, all = first + 1 + 2 * perHandle;
    for (long allowed = 0; allowed <= all; ++allowed) {
        SrInitColorMaps(true);
        ScRefuseAllocations const gate(allowed);
        long const expected = allowed < first ? SkResourceMissing()
                              : allowed < all ? SkMemoryFull()
                                              : SkNoError();
        EXPECT_EQ(ErrorOf([] { SrInitColorMaps(false); }), expected) << allowed;
    }
}
