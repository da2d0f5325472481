// Palettes of BMP files.
#include <gtest/gtest.h>

#include "bmp_file.h"
#include "framewright/pixel/color_map.h"
#include "framewright/pixel/mapped_layer.h"

namespace {

using namespace bmp_test;

TEST(BmpPalette, FourthBytesUpToFive_AreNoAlpha) {
    struct Row {
        unsigned char fourth;
        std::uint32_t expected;
    };
    Row const rows[] = {
        {0, 0xFF030201}, {1, 0xFF030201},   {5, 0xFF030201},
        {6, 0x06030201}, {128, 0x80030201}, {255, 0xFF030201},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(int{row.fourth});
        File file;
        file.width = file.height = 1;
        file.bitCount = 8;
        file.colorsUsed = 1;
        file.palette = {1, 2, 3, row.fourth};
        file.data = {0, 0, 0, 0};
        EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{row.expected}}));
    }
}

TEST(BmpPalette, OneFourthByteOfSix_KeepsTheAlphaOfAll) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 8;
    file.palette = Palette(256);
    file.palette[4 * 100 + 3] = 6;
    file.data = {0, 100, 0, 0};
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{0x00FF0000, 0x06404040}}));
    file.palette[4 * 100 + 3] = 5;
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{0xFFFF0000, 0xFF404040}}));
}

TEST(BmpPalette, ColorsUsed_CountsTheEntries) {
    File file;
    file.width = 4;
    file.height = 1;
    file.bitCount = 8;
    file.colorsUsed = 3;
    file.palette = Palette(3);
    file.data = {0, 1, 2, 0};
    StRef<SmImagerFrame> const frame = Read(file);
    EXPECT_EQ(PictureOf(frame.Get()), (Picture{{kRed, kGreen, kBlue, kRed}}));

    // The other entries of the frame's own map stay: entry 3 of the standard colours is three reds of five.
    auto* const map = SrGetColorMapFromFrame(frame.Get());
    EXPECT_EQ((*map)[3].red, 153);
}

TEST(BmpPalette, NoColorsUsed_IsAFullPalette) {
    for (std::uint16_t bits : {1, 4, 8}) {
        SCOPED_TRACE(bits);
        std::size_t const entries = std::size_t{1} << bits;
        File file;
        file.width = file.height = 1;
        file.bitCount = bits;
        file.palette = Palette(entries);
        file.data = {0xFF, 0, 0, 0};
        // The last entry, bytes 255 and 0 in turns.
        file.palette[4 * entries - 4] = 10;
        file.palette[4 * entries - 3] = 20;
        file.palette[4 * entries - 2] = 30;
        EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{Rgb(30, 20, 10)}}));
    }
}

TEST(BmpPalette, DeepPicturesMayHaveOne_ForOthersToUse) {
    File file;
    file.width = file.height = 1;
    file.bitCount = 24;
    file.colorsUsed = 256;
    file.palette = Palette(256);
    file.data = {1, 2, 3, 0};
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{Rgb(3, 2, 1)}}));
}

TEST(BmpPalette, MoreThan256Entries_AreNotKept) {
    File file;
    file.width = file.height = 1;
    file.bitCount = 8;
    file.colorsUsed = 300;
    file.palette = Palette(300);
    file.data = {255, 0, 0, 0};
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{Rgb(240, 240, 240)}}));  // 255 * 16, low byte
}

TEST(BmpPalette, EntriesThatTheMapHasNot_AreNotSet) {
    File file;
    file.width = file.height = 1;
    file.bitCount = 1;
    file.colorsUsed = 256;
    file.palette = Palette(256);
    file.data = {0x80, 0, 0, 0};
    StRef<SmImagerFrame> const frame = Read(file);
    EXPECT_EQ(PictureOf(frame.Get()), (Picture{{kGreen}}));
    EXPECT_EQ(SrGetColorMapFromFrame(frame.Get())->UsedCount(), 2);
}

TEST(BmpPalette, EveryPaletteShowsExactly) {
    // 256 colours that all fall into a few cells of the colour map's inverse.
    File file;
    file.width = 256;
    file.height = 1;
    file.bitCount = 8;
    for (unsigned i = 0; i < 256; ++i) {
        file.data.push_back(static_cast<unsigned char>(i));
        for (unsigned char byte : {static_cast<unsigned char>(i / 16), static_cast<unsigned char>(i % 16),
                                   static_cast<unsigned char>(7), static_cast<unsigned char>(0)}) {
            file.palette.push_back(byte);
        }
    }
    Picture const picture = PictureOf(Read(file).Get());
    for (unsigned i = 0; i < 256; ++i)
        EXPECT_EQ(picture[0][i], Rgb(7, i % 16, i / 16));
}

}  // namespace
