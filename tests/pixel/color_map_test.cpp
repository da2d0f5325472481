#include "framewright/pixel/color_map.h"

#include <random>

#include "color_test_support.h"

using namespace color_test;

namespace {

constexpr unsigned kCacheBytes = 4096;

/// A stream form, field by field.
struct StMapBytes {
    unsigned char version = 0;
    std::uint32_t limit = 2, used = 2, entries = 2;
    std::vector<StRGBA32Pixel> colors = {Rgba(1, 2, 3, 4), Rgba(5, 6, 7, 8)};
    std::uint32_t cacheSize = kCacheBytes;
    Bytes cache = Bytes(kCacheBytes);

    Bytes Build() const {
        Bytes bytes = {version};
        Append32(bytes, limit);
        Append32(bytes, used);
        Append32(bytes, entries);
        for (StRGBA32Pixel color : colors) {
            for (unsigned char byte : {color.red, color.green, color.blue, color.alpha})
                bytes.push_back(byte);
        }
        Append32(bytes, cacheSize);
        bytes.insert(bytes.end(), cache.begin(), cache.end());
        return bytes;
    }
};

std::uint32_t FieldAt(Bytes const& bytes, std::size_t offset) {
    return std::uint32_t{bytes[offset]} << 24 | std::uint32_t{bytes[offset + 1]} << 16 |
           std::uint32_t{bytes[offset + 2]} << 8 | bytes[offset + 3];
}

ScPalette MapOf(std::vector<StRGBA32Pixel> const& colors) {
    ScPalette map;
    unsigned char index = 0;
    for (StRGBA32Pixel color : colors)
        map.SetColor(index++, color);
    return map;
}

}  // namespace

// Construction.

TEST(ColorMap, Construction_CountBelowOneMeans256) {
    struct {
        int count;
        std::uint32_t limit, entries;
    } const rows[] = {{0, 256, 256}, {-1, 256, 256}, {-100000, 256, 256}, {1, 1, 1},
                      {2, 2, 2},     {16, 16, 16},   {256, 256, 256}};
    for (auto const& row : rows) {
        SCOPED_TRACE(row.count);
        Bytes const bytes = Written(ScPalette(row.count));
        EXPECT_EQ(FieldAt(bytes, 1), row.limit);
        EXPECT_EQ(FieldAt(bytes, 5), 0u);
        EXPECT_EQ(FieldAt(bytes, 9), row.entries);
        EXPECT_EQ(bytes.size(), 17 + 4 * row.entries + kCacheBytes);
    }
}

TEST(ColorMap, Construction_DefaultIsTheSameAs256) {
    EXPECT_EQ(Written(ScPalette()), Written(ScPalette(256)));
}

TEST(ColorMap, Construction_EntriesAndCacheAreZero) {
    Bytes const bytes = Written(ScPalette(16));
    for (std::size_t i = 13; i < 13 + 64; ++i)
        EXPECT_EQ(bytes[i], 0);
    for (std::size_t i = 17 + 64; i < bytes.size(); ++i)
        EXPECT_EQ(bytes[i], 0);
}

// SetColor and access.

TEST(ColorMap, SetColor_RaisesUsedCountToTheHighestIndexAndNeverLowersIt) {
    ScPalette map;
    map.SetColor(3, Rgba(1, 2, 3));
    EXPECT_EQ(map.UsedCount(), 4);
    map.SetColor(0, Rgba(1, 2, 3));
    EXPECT_EQ(map.UsedCount(), 4);
    map.SetColor(255, Rgba(1, 2, 3));
    EXPECT_EQ(map.UsedCount(), 256);
}

TEST(ColorMap, SetColor_PutsTheIndexIntoTheCellOfTheColor) {
    ScPalette map;
    map.SetColor(7, Rgba(0x1F, 0x2A, 0x35));
    Bytes const bytes = Written(map);
    for (unsigned cell = 0; cell < kCacheBytes; ++cell) {
        EXPECT_EQ(bytes[17 + 1024 + cell], cell == 0x123 ? 7 : 0) << cell;
    }
}

TEST(ColorMap, SetColor_BeyondTheEntriesIsSafeAndNotSearched) {
    ScPalette map(2);
    map.SetColor(0, Rgba(0, 0, 0));
    map.SetColor(1, Rgba(255, 255, 255));
    map.SetColor(200, Rgba(100, 0, 0));
    EXPECT_EQ(map.UsedCount(), 201);
    EXPECT_EQ(Word(map[200]), Word(Rgba(100, 0, 0)));
    EXPECT_EQ(map.ClosestColorIndex(Rgba(120, 0, 0)), 0);
    EXPECT_EQ(Written(map).size(), 17 + 8 + kCacheBytes);
}

TEST(ColorMap, Entry_IsAReference) {
    ScPalette map;
    map[9] = Rgba(9, 8, 7, 6);
    EXPECT_EQ(Word(map[9]), Word(Rgba(9, 8, 7, 6)));
    EXPECT_EQ(map.UsedCount(), 0) << "writing through the reference changes the colour alone";
}

// Nearest colour.

TEST(ColorMap, Closest_UnusedMapGivesZeroForAllColors) {
    ScPalette map;
    map[5] = Rgba(255, 255, 255);
    for (int value = 0; value < 256; value += 5) {
        EXPECT_EQ(map.ClosestColorIndex(Rgba(value, 255 - value, value)), 0);
    }
    for (unsigned i = 0; i < kCacheBytes; ++i)
        ASSERT_EQ(Written(map)[17 + 1024 + i], 0);
}

TEST(ColorMap, Closest_TiesGoToTheLowerIndex) {
    ScPalette map = MapOf({Rgba(0, 0, 0), Rgba(100, 0, 0), Rgba(120, 0, 0), Rgba(120, 0, 0)});
    EXPECT_EQ(map.ClosestColorIndex(Rgba(110, 64, 0)), 1) << "equally far from 1 and 2";
    EXPECT_EQ(map.ClosestColorIndex(Rgba(130, 90, 0)), 2) << "equally far from 2 and 3";
}

TEST(ColorMap, Closest_AlphaDoesNotCount) {
    ScPalette map = MapOf({Rgba(0, 0, 0, 255), Rgba(200, 0, 0, 0), Rgba(250, 0, 0, 255)});
    EXPECT_EQ(map.ClosestColorIndex(Rgba(210, 32, 0, 255)), 1);
}

TEST(ColorMap, Closest_SearchesUsedEntriesAlone) {
    ScPalette map = MapOf({Rgba(0, 0, 0), Rgba(10, 0, 0)});
    map[2] = Rgba(255, 255, 255);
    EXPECT_EQ(map.ClosestColorIndex(Rgba(240, 240, 240)), 1);
    map.SetColor(2, Rgba(255, 255, 255));
    EXPECT_EQ(map.ClosestColorIndex(Rgba(200, 200, 200)), 2);
}

TEST(ColorMap, Closest_FirstColorOfACellFixesTheAnswerOfTheCell) {
    ScPalette map = MapOf({Rgba(50, 50, 50), Rgba(0, 0, 16), Rgba(0, 16, 0)});
    // (0, 0, 1) and (0, 0, 15) share the cell 0. From the first both entries are 15 and over 16 away.
    EXPECT_EQ(map.ClosestColorIndex(Rgba(0, 0, 1)), 1);
    EXPECT_EQ(map.ClosestColorIndex(Rgba(0, 15, 0)), 1) << "entry 2 is nearer, but the cell has its answer";
    ScPalette other = MapOf({Rgba(50, 50, 50), Rgba(0, 0, 16), Rgba(0, 16, 0)});
    EXPECT_EQ(other.ClosestColorIndex(Rgba(0, 15, 0)), 2) << "asked first, it gets its own";
    EXPECT_EQ(other.ClosestColorIndex(Rgba(0, 0, 15)), 2);
}

TEST(ColorMap, Closest_AnswerZeroIsSearchedAgainEachTime) {
    ScPalette map = MapOf({Rgba(0, 0, 0), Rgba(16, 16, 16)});
    EXPECT_EQ(map.ClosestColorIndex(Rgba(1, 1, 1)), 0);
    EXPECT_EQ(map.ClosestColorIndex(Rgba(15, 15, 15)), 1) << "an answer of 0 does not settle the cell";
    EXPECT_EQ(map.ClosestColorIndex(Rgba(1, 1, 1)), 1) << "now it is settled";
}

TEST(ColorMap, SetColor_DoesNotEvictStaleAnswersOfOtherCells) {
    ScPalette map = MapOf({Rgba(0, 0, 0), Rgba(100, 0, 0)});
    EXPECT_EQ(map.ClosestColorIndex(Rgba(200, 0, 0)), 1);
    map.SetColor(2, Rgba(200, 0, 0));
    EXPECT_EQ(map.ClosestColorIndex(Rgba(200, 0, 0)), 2) << "the cell of the colour itself is set";
    EXPECT_EQ(map.ClosestColorIndex(Rgba(220, 0, 0)), 2);
    map.SetColor(1, Rgba(0, 255, 0));
    EXPECT_EQ(map.ClosestColorIndex(Rgba(100, 0, 0)), 1) << "the old cell of entry 1 still answers 1";
}

TEST(ColorMap, Closest_EqualsThePlainSearchOnRandomMaps) {
    std::mt19937 random(7);
    auto const color = [&] { return Rgba(random() & 255, random() & 255, random() & 255, random() & 255); };
    for (int used : {1, 2, 3, 16, 100, 255, 256}) {
        ScPalette map;
        for (int i = 0; i < used; ++i)
            map.SetColor(static_cast<unsigned char>(i), color());
        for (int n = 0; n < 2000; ++n) {
            StRGBA32Pixel const asked = color();
            ScPalette bare;
            for (int i = 0; i < used; ++i)
                bare[static_cast<unsigned char>(i)] = map[static_cast<unsigned char>(i)];
            // Used count without cached answers: the last entry alone goes through SetColor, outside the
            // asked cell.
            bare.SetColor(static_cast<unsigned char>(used - 1), map[static_cast<unsigned char>(used - 1)]);
            if (bare.CachedIndex(asked)) continue;
            ASSERT_EQ(bare.ClosestColorIndex(asked), NearestIndex(map, used, asked))
                << used << " entries, colour " << std::hex << Word(asked);
        }
    }
}

// Standard fills.

TEST(ColorMap, StandardFill_Cube) {
    ScPalette map;
    StuffDefaultColors(map, 256);
    EXPECT_EQ(map.UsedCount(), 256);
    int const steps[] = {0, 51, 102, 153, 204, 255, 50};  // 306 is cut to 50, and stays
    for (int blue = 0; blue < 6; ++blue)
        for (int green = 0; green < 7; ++green)
            for (int red = 0; red < 6; ++red) {
                auto const index = static_cast<unsigned char>((blue * 7 + green) * 6 + red);
                EXPECT_EQ(Word(map[index]), Word(Rgba(steps[red], steps[green], steps[blue]))) << int{index};
            }
    int const greys[] = {51, 102, 153, 204};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(Word(map[static_cast<unsigned char>(252 + i)]), Word(Rgba(greys[i], greys[i], greys[i])));
    }
}

TEST(ColorMap, StandardFill_AscendingOrderSettlesTheCells) {
    ScPalette map;
    StuffDefaultColors(map, 256);
    // Greens 51 and 50 share a cell; the later index, of step 6, has it. The greys at the end take their
    // cells.
    EXPECT_EQ(map.ClosestColorIndex(Rgba(0, 51, 0)), 36);
    EXPECT_EQ(map.ClosestColorIndex(Rgba(51, 51, 51)), 252);
}

TEST(ColorMap, StandardFill_Sixteen) {
    StRGBA32Pixel const expected[16] = {
        Rgba(0, 0, 0, 0),  Rgba(255, 255, 255), Rgba(255, 0, 0),     Rgba(0, 255, 0),
        Rgba(0, 0, 255),   Rgba(64, 64, 64),    Rgba(128, 128, 128), Rgba(192, 192, 192),
        Rgba(255, 255, 0), Rgba(0, 255, 255),   Rgba(255, 0, 255),   Rgba(0, 128, 128),
        Rgba(128, 0, 128), Rgba(128, 128, 0),   Rgba(255, 128, 128), Rgba(128, 255, 128)};
    for (int count : {16, 17, 255}) {
        ScPalette map;
        StuffDefaultColors(map, count);
        EXPECT_EQ(map.UsedCount(), 16);
        for (int i = 0; i < 16; ++i)
            EXPECT_EQ(Word(map[static_cast<unsigned char>(i)]), Word(expected[i])) << i;
    }
}

TEST(ColorMap, StandardFill_Few) {
    StRGBA32Pixel const expected[4] = {Rgba(0, 0, 0, 0), Rgba(255, 255, 255), Rgba(0, 0, 255),
                                       Rgba(0, 255, 0)};
    struct {
        int count, colors;
    } const rows[] = {{1, 1}, {2, 2}, {3, 2}, {4, 4}, {5, 4}, {15, 4}};
    for (auto const& row : rows) {
        SCOPED_TRACE(row.count);
        ScPalette map;
        StuffDefaultColors(map, row.count);
        EXPECT_EQ(map.UsedCount(), row.colors);
        for (int i = 0; i < row.colors; ++i)
            EXPECT_EQ(Word(map[static_cast<unsigned char>(i)]), Word(expected[i]));
    }
}

TEST(ColorMap, StandardFill_CountBelowOneMeansTheEntriesOfTheMap) {
    struct {
        int entries, used;
    } const rows[] = {{1, 1}, {2, 2}, {4, 4}, {16, 16}, {256, 256}};
    for (auto const& row : rows) {
        for (int count : {0, -5}) {
            ScPalette map(row.entries);
            StuffDefaultColors(map, count);
            EXPECT_EQ(map.UsedCount(), row.used) << row.entries;
        }
    }
}

// Copies.

TEST(ColorMap, Copy_SetsTheUsedColorsAndLeavesTheRest) {
    ScPalette source = MapOf({Rgba(1, 1, 1), Rgba(2, 2, 2)});
    source[2] = Rgba(3, 3, 3);
    ScPalette destination;
    StuffDefaultColors(destination, 256);
    ScPalette expected = destination;
    expected.SetColor(0, Rgba(1, 1, 1));
    expected.SetColor(1, Rgba(2, 2, 2));
    SrCopyColorMap(&destination, &source);
    EXPECT_EQ(Written(destination), Written(expected)) << "entries above and the cache are kept";
}

TEST(ColorMap, Copy_EndsWithTheEntriesWhateverTheUsedCount) {
    StMapBytes form;
    form.used = 0x7FFFFFFF;
    ScPalette source;
    source.GetFromStream(*StreamOf(form.Build()));
    ScPalette destination;
    SrCopyColorMap(&destination, &source);
    EXPECT_EQ(destination.UsedCount(), 2);
    EXPECT_EQ(Word(destination[1]), Word(Rgba(5, 6, 7, 8)));
}

// Stream form.

TEST(ColorMap, Stream_WritesEachFieldInItsPlace) {
    ScPalette map(2);
    map.SetColor(0, Rgba(0x10, 0x20, 0x30, 0x40));
    map.SetColor(1, Rgba(0xF0, 0xE0, 0xD0, 0xC0));
    StMapBytes form;
    form.colors = {Rgba(0x10, 0x20, 0x30, 0x40), Rgba(0xF0, 0xE0, 0xD0, 0xC0)};
    form.cache[0xFED] = 1;
    EXPECT_EQ(Written(map), form.Build());
}

TEST(ColorMap, Stream_ReadingReplacesEverything) {
    StMapBytes form;
    form.limit = 77;
    form.used = 1;
    form.cache[0x123] = 200;
    ScPalette map;
    StuffDefaultColors(map, 256);
    map.GetFromStream(*StreamOf(form.Build()));
    EXPECT_EQ(map.EntryLimit(), 77);
    EXPECT_EQ(map.UsedCount(), 1);
    EXPECT_EQ(map.EntryCount(), 2);
    EXPECT_EQ(Word(map[0]), Word(Rgba(1, 2, 3, 4)));
    EXPECT_EQ(Word(map[1]), Word(Rgba(5, 6, 7, 8)));
    EXPECT_EQ(Word(map[2]), 0u);
    EXPECT_EQ(map.ClosestColorIndex(Rgba(0x10, 0x20, 0x30)), 200) << "the cache is restored as stored";
    EXPECT_EQ(Word(map[200]), 0u);
    EXPECT_EQ(Written(map), form.Build());
}

TEST(ColorMap, Stream_RoundTripKeepsTheAnswers) {
    ScPalette map;
    StuffDefaultColors(map, 256);
    std::mt19937 random(3);
    for (int n = 0; n < 1000; ++n)
        map.ClosestColorIndex(Rgba(random() & 255, random() & 255, random() & 255));
    ScPalette copy(2);
    copy.GetFromStream(*StreamOf(Written(map)));
    EXPECT_EQ(Written(copy), Written(map));
}

TEST(ColorMap, Stream_SearchStopsAtTheEntriesWhateverTheUsedCountSays) {
    for (std::uint32_t used : {3u, 256u, 0x7FFFFFFFu}) {
        StMapBytes form;
        form.used = used;
        ScPalette map;
        map.GetFromStream(*StreamOf(form.Build()));
        EXPECT_EQ(map.ClosestColorIndex(Rgba(255, 255, 255)), 1);
    }
    StMapBytes form;
    form.used = 0x80000000u;
    ScPalette map;
    map.GetFromStream(*StreamOf(form.Build()));
    EXPECT_EQ(map.ClosestColorIndex(Rgba(255, 255, 255)), 0) << "a negative count leaves nothing to search";
}

TEST(ColorMap, Stream_NoEntriesAtAll) {
    StMapBytes form;
    form.entries = 0;
    form.colors.clear();
    ScPalette map;
    map.GetFromStream(*StreamOf(form.Build()));
    EXPECT_EQ(map.ClosestColorIndex(Rgba(255, 255, 255)), 0);
    EXPECT_EQ(Word(map[0]), 0u);
}

TEST(ColorMap, Stream_OtherVersionIsABadFileVersion) {
    for (int version : {1, 2, 255}) {
        StMapBytes form;
        form.version = static_cast<unsigned char>(version);
        ScPalette map;
        StuffDefaultColors(map, 16);
        ScPalette const before = map;
        auto const read = [&] { map.GetFromStream(*StreamOf(form.Build())); };
        EXPECT_EQ(ErrorOf(read), SkBadFileVersionErrC());
        EXPECT_TRUE(ThrowsMessage(read));
        EXPECT_EQ(Written(map), Written(before));
    }
}

TEST(ColorMap, Stream_EntriesOutOfRangeAreABadFileFormat) {
    for (std::uint32_t entries : {257u, 0x10000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        StMapBytes form;
        form.entries = entries;
        ScPalette map;
        ScRefuseAllocations const none(1000);
        auto const stream = StreamOf(form.Build());
        long const before = ScRefuseAllocations::Seen();
        EXPECT_EQ(ErrorOf([&] { map.GetFromStream(*stream); }), SkBadFileFormatErrC()) << entries;
        EXPECT_EQ(ScRefuseAllocations::Seen(), before) << "nothing is allocated for what a file claims";
    }
}

TEST(ColorMap, Stream_OtherCacheSizeIsABadFileFormatAndTheEntriesStay) {
    for (std::uint32_t size : {0u, 4095u, 4097u, 0xFFFFFFFFu}) {
        StMapBytes form;
        form.cacheSize = size;
        ScPalette map;
        auto const read = [&] { map.GetFromStream(*StreamOf(form.Build())); };
        EXPECT_EQ(ErrorOf(read), SkBadFileFormatErrC());
        EXPECT_TRUE(ThrowsMessage(read));
        EXPECT_EQ(Word(map[1]), Word(Rgba(5, 6, 7, 8)));
    }
}

TEST(ColorMap, Stream_EndsEarlyAtAnyByte) {
    Bytes const whole = StMapBytes().Build();
    for (std::size_t length = 0; length < whole.size(); length += length < 30 ? 1 : 911) {
        ScPalette map;
        Bytes const part(whole.begin(), whole.begin() + static_cast<long>(length));
        EXPECT_EQ(ErrorOf([&] { map.GetFromStream(*StreamOf(part)); }), SkEndOfFile()) << length;
    }
}

// Memory.

TEST(ColorMap, New_RefusedMemoryThrows) {
    ScRefuseAllocations const none(0);
    EXPECT_EQ(ErrorOf([] { delete new ScPalette(2); }), SkMemoryFull());
}
