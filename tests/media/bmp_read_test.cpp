// Reading BMP files: headers, palettes and the uncompressed depths.
#include <gtest/gtest.h>

#include "bmp_file.h"
#include "framewright/frame/layer.h"
#include "framewright/pixel/color_map.h"
#include "framewright/pixel/mapped_layer.h"

namespace {

using namespace bmp_test;

constexpr std::uint32_t kRed = Rgb(255, 0, 0);
constexpr std::uint32_t kGreen = Rgb(0, 255, 0);
constexpr std::uint32_t kBlue = Rgb(0, 0, 255);
constexpr std::uint32_t kWhite = Rgb(255, 255, 255);

/// Blue, green, red, fourth byte: red, green, blue, white, and twelve shades of grey.
Bytes Palette(std::size_t entries, std::size_t width = 4) {
    Bytes bytes;
    for (std::size_t i = 0; i < entries; ++i) {
        unsigned char const shade = static_cast<unsigned char>(i * 16);
        Bytes const entry = i == 0   ? Bytes{0, 0, 255, 0}
                            : i == 1 ? Bytes{0, 255, 0, 0}
                            : i == 2 ? Bytes{255, 0, 0, 0}
                            : i == 3 ? Bytes{255, 255, 255, 0}
                                     : Bytes{shade, shade, shade, 0};
        bytes.insert(bytes.end(), entry.begin(), entry.begin() + static_cast<std::ptrdiff_t>(width));
    }
    return bytes;
}

std::string KindOf(StRef<SmImagerFrame> const& frame) {
    return CodeText(frame->PixelID());
}

// One file of each depth.

TEST(BmpRead, OneBit_RunsFromTheTopDown) {
    File file;
    file.width = 10;
    file.height = 2;
    file.bitCount = 1;
    file.palette = Palette(2);
    file.data = {0x80, 0x40, 0, 0,  // the first row is the upper one: pixels 0 and 9
                 0x00, 0x00, 0, 0};
    StRef<SmImagerFrame> const frame = Read(file);
    EXPECT_EQ(KindOf(frame), "Map1");
    EXPECT_EQ(IndicesOf(frame.Get()), (std::vector<std::vector<int>>{{1, 0, 0, 0, 0, 0, 0, 0, 0, 1},
                                                                     {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}));
    EXPECT_EQ(PictureOf(frame.Get())[0][0], kGreen);
    EXPECT_EQ(PictureOf(frame.Get())[1][0], kRed);
}

TEST(BmpRead, FourBits_RunFromTheBottomUpHighNibbleFirst) {
    File file;
    file.width = 3;
    file.height = 2;
    file.bitCount = 4;
    file.palette = Palette(16);
    file.data = {0x01, 0x20, 0, 0,  // the lower row
                 0x32, 0x10, 0, 0};
    StRef<SmImagerFrame> const frame = Read(file);
    EXPECT_EQ(KindOf(frame), "Map4");
    EXPECT_EQ(PictureOf(frame.Get()), (Picture{{kWhite, kBlue, kGreen}, {kRed, kGreen, kBlue}}));
    EXPECT_EQ(IndicesOf(frame.Get()), (std::vector<std::vector<int>>{{3, 2, 1}, {0, 1, 2}}));
}

TEST(BmpRead, OneBitIsUpsideDownAgainstFourBits) {
    File one, four;
    one.width = four.width = 1;
    one.height = four.height = 2;
    one.bitCount = 1;
    one.palette = Palette(2);
    one.data = {0x80, 0, 0, 0, 0x00, 0, 0, 0};
    four.bitCount = 4;
    four.palette = Palette(16);
    four.data = {0x10, 0, 0, 0, 0x00, 0, 0, 0};
    EXPECT_EQ(PictureOf(Read(one).Get()), (Picture{{kGreen}, {kRed}}));
    EXPECT_EQ(PictureOf(Read(four).Get()), (Picture{{kRed}, {kGreen}}));
}

TEST(BmpRead, EightBits_RunFromTheBottomUp) {
    File file;
    file.width = 5;
    file.height = 2;
    file.bitCount = 8;
    file.palette = Palette(256);
    file.data = {0,  1, 2, 3, 4,   9, 9, 9,  // padded to eight bytes
                 15, 3, 3, 0, 200, 9, 9, 9};
    StRef<SmImagerFrame> const frame = Read(file);
    EXPECT_EQ(KindOf(frame), "Map8");
    EXPECT_EQ(IndicesOf(frame.Get()), (std::vector<std::vector<int>>{{15, 3, 3, 0, 200}, {0, 1, 2, 3, 4}}));
    EXPECT_EQ(PictureOf(frame.Get())[1],
              (std::vector<std::uint32_t>{kRed, kGreen, kBlue, kWhite, Rgb(64, 64, 64)}));
}

TEST(BmpRead, SixteenBits_TakeRedFromTheHighFiveBits) {
    // A 15-bit frame keeps five bits a channel, and widens them by v * 255 / 31.
    struct Row {
        unsigned char low, high;
        unsigned blue, green, red;  // five bits each
    };
    Row const rows[] = {
        {0x1F, 0x00, 31, 0, 0}, {0x01, 0x00, 1, 0, 0},    {0xE0, 0x00, 0, 7, 0},
        {0x00, 0x03, 0, 24, 0}, {0x00, 0x04, 0, 0, 0},    {0x00, 0x08, 0, 0, 1},
        {0x00, 0x80, 0, 0, 16}, {0xFF, 0xFF, 31, 31, 31}, {0xFF, 0x7F, 31, 31, 15},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << int{row.low} << " " << int{row.high});
        File file;
        file.width = file.height = 1;
        file.bitCount = 16;
        file.data = {row.low, row.high, 0, 0};
        StRef<SmImagerFrame> const frame = Read(file);
        EXPECT_EQ(KindOf(frame), "RG15");
        EXPECT_EQ(PictureOf(frame.Get())[0][0],
                  Rgb(row.red * 255 / 31, row.green * 255 / 31, row.blue * 255 / 31));
    }
}

TEST(BmpRead, SixteenBits_AreWholeBytesInADeeperFrame) {
    // Every word, in a frame that keeps all eight bits of a channel.
    File file;
    file.width = 256;
    file.height = 256;
    file.bitCount = 16;
    for (unsigned high = 0; high < 256; ++high) {
        for (unsigned low = 0; low < 256; ++low) {
            file.data.push_back(static_cast<unsigned char>(low));
            file.data.push_back(static_cast<unsigned char>(high));
        }
    }
    StRef<SmImagerFrame> const frame = Frame(256, 256, SrCode("ColB"));
    Picture const picture = PictureOf(Read(file, frame.Get()).Get());
    for (unsigned high = 0; high < 256; ++high) {
        for (unsigned low = 0; low < 256; ++low) {
            unsigned const blue = (low & 0x1F) << 3;
            unsigned const green = ((low & 0xE0) >> 2) + ((high & 3) << 6);
            unsigned const red = high & 0xF8;
            ASSERT_EQ(picture[255 - high][low], Rgb(red, green, blue)) << high << " " << low;
        }
    }
}

TEST(BmpRead, TwentyFourBits_AreBlueGreenRed) {
    File file;
    file.width = 2;
    file.height = 2;
    file.bitCount = 24;
    file.data = {1, 2, 3, 4,  5,  6,  0, 0,  // the lower row, padded to eight bytes
                 7, 8, 9, 10, 11, 12, 0, 0};
    StRef<SmImagerFrame> const frame = Read(file);
    EXPECT_EQ(KindOf(frame), "RG32");
    EXPECT_EQ(PictureOf(frame.Get()),
              (Picture{{Rgb(9, 8, 7), Rgb(12, 11, 10)}, {Rgb(3, 2, 1), Rgb(6, 5, 4)}}));
}

TEST(BmpRead, ThirtyTwoBits_AreOpaque) {
    File file;
    file.width = 2;
    file.height = 2;
    file.bitCount = 32;
    file.data = {1, 2, 3, 0, 4, 5, 6, 77, 7, 8, 9, 255, 10, 11, 12, 128};
    StRef<SmImagerFrame> const frame = Read(file);
    EXPECT_EQ(KindOf(frame), "ColB");
    EXPECT_EQ(PictureOf(frame.Get()),
              (Picture{{Rgb(9, 8, 7), Rgb(12, 11, 10)}, {Rgb(3, 2, 1), Rgb(6, 5, 4)}}));
}

TEST(BmpRead, Rows_ArePaddedTo32Bits) {
    // Two rows of each width; the first pixel of the second file row lies at the stride.
    struct Row {
        std::uint16_t bitCount;
        std::uint32_t width;
        std::size_t stride;
    };
    Row const rows[] = {
        {1, 1, 4},  {1, 32, 4},  {1, 33, 8},  {4, 1, 4},  {4, 8, 4},   {4, 9, 8},
        {8, 1, 4},  {8, 4, 4},   {8, 5, 8},   {16, 1, 4}, {16, 2, 4},  {16, 3, 8},
        {24, 1, 4}, {24, 4, 12}, {24, 5, 16}, {32, 1, 4}, {32, 3, 12},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::Message() << row.bitCount << " bits, width " << row.width);
        File file;
        file.width = row.width;
        file.height = 2;
        file.bitCount = row.bitCount;
        if (row.bitCount <= 8) file.palette = Palette(std::size_t{1} << row.bitCount);
        file.data.assign(2 * row.stride, 0);
        file.data[row.stride] = row.bitCount <= 8 ? 0xFF : 0x0F;
        Picture const picture = PictureOf(Read(file).Get());
        // The second file row is the upper one, but at one bit the lower one.
        std::uint32_t const marked = picture[row.bitCount == 1 ? 1 : 0][0];
        std::uint32_t const other = picture[row.bitCount == 1 ? 0 : 1][0];
        EXPECT_NE(marked, other);
        EXPECT_EQ(other, row.bitCount <= 8 ? kRed : 0xFF000000);
    }
}

// The kind of frame for each depth.

TEST(BmpRead, BitCount_ChoosesTheKindOfFrame) {
    struct Row {
        unsigned first, last;
        char const* kind;
    };
    Row const rows[] = {
        {1, 1, "Map1"},   {2, 2, "Map2"},   {3, 4, "Map4"}, {5, 8, "Map8"},         {9, 16, "RG15"},
        {17, 24, "RG32"}, {25, 40, "ColB"}, {0, 0, "ColB"}, {65535, 65535, "ColB"},
    };
    for (Row const& row : rows) {
        for (unsigned bits = row.first; bits <= row.last; ++bits) {
            SCOPED_TRACE(bits);
            File file;
            file.width = 3;
            file.height = 2;
            file.bitCount = static_cast<std::uint16_t>(bits);
            file.colorsUsed = 1;
            file.masks.assign(12, 0);
            file.palette = {0, 0, 0, 0};
            StRef<SmImagerFrame> const frame = Read(file);
            EXPECT_EQ(KindOf(frame), row.kind);
            EXPECT_EQ(frame->GetSize(), (StPoint{2, 3}));
        }
    }
}

TEST(BmpRead, UnknownDepths_DecodeNothing) {
    for (std::uint16_t bits : {0, 2, 3, 5, 6, 7, 9, 15, 17, 23, 25, 31, 33, 64}) {
        SCOPED_TRACE(bits);
        File file;
        file.width = file.height = 2;
        file.bitCount = bits;
        file.colorsUsed = 1;
        file.palette = {0, 0, 0, 0};
        file.data.assign(64, 0xFF);
        StRef<SmImagerFrame> const given = Frame(2, 2, SrCode("ColB"));
        Fill(given.Get(), {1, 2, 3, 4});
        EXPECT_EQ(PictureOf(Read(file, given.Get()).Get()),
                  Picture(2, std::vector<std::uint32_t>(2, 0x04030201)));

        // A frame made here has zeros, not what memory happened to hold.
        StRef<SmImagerFrame> const made = Read(file);
        for (long y = 0; y < 2; ++y) {
            auto const* const row = static_cast<unsigned char const*>(made->GetRow(y));
            for (long i = 0; i < made->BytesPerRow(); ++i)
                EXPECT_EQ(row[i], 0);
        }
    }
}

TEST(BmpRead, NoRowsOrColumns_AreAnEmptyFrame) {
    for (auto const& [rows, columns] : {std::pair{0u, 5u}, std::pair{5u, 0u}, std::pair{0u, 0u}}) {
        for (std::uint16_t bits : {1, 4, 8, 16, 24, 32}) {
            for (std::uint32_t compression : {0u, 1u}) {
                SCOPED_TRACE(testing::Message() << rows << " by " << columns << ", " << bits << " bits");
                File file;
                file.width = columns;
                file.height = rows;
                file.bitCount = bits;
                file.compression = compression;
                file.colorsUsed = 1;
                file.palette = {0, 0, 0, 0};
                file.data = {3, 1, 0, 0, 5, 1, 0, 4, 1, 1, 1, 1};
                EXPECT_EQ(Read(file)->GetSize(),
                          (StPoint{static_cast<std::int32_t>(rows), static_cast<std::int32_t>(columns)}));
            }
        }
    }
}

// Headers.

TEST(BmpRead, SignatureAndFileSizeAndPlanes_AreNotLookedAt) {
    File file;
    file.signature = "xy";
    file.fileSize = 0xFFFFFFFF;
    file.planes = 77;
    file.width = file.height = 1;
    file.bitCount = 24;
    file.data = {1, 2, 3, 0};
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{Rgb(3, 2, 1)}}));
}

TEST(BmpRead, CoreHeader_HasPaletteEntriesOfThreeBytes) {
    File file;
    file.headerSize = 12;
    file.width = 2;
    file.height = 1;
    file.bitCount = 4;
    file.palette = Palette(16, 3);
    file.data = {0x12, 0, 0, 0};
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{kGreen, kBlue}}));
}

TEST(BmpRead, CoreHeaderOf24Bits_HasNoPalette) {
    File file;
    file.headerSize = 12;
    file.width = file.height = 1;
    file.bitCount = 24;
    file.data = {1, 2, 3, 0};
    Bytes const bytes = file.Build();
    ASSERT_EQ(bytes.size(), 14u + 12 + 4);
    EXPECT_EQ(PictureOf(Read(bytes).Get()), (Picture{{Rgb(3, 2, 1)}}));
}

TEST(BmpRead, LongerHeaders_HaveTheirPaletteBehindThem) {
    File file;
    file.headerSize = 108;
    file.width = file.height = 1;
    file.bitCount = 8;
    file.colorsUsed = 2;
    file.palette.assign(108 - 40, 0xEE);  // the rest of the header
    Bytes const palette = Palette(2);
    file.palette.insert(file.palette.end(), palette.begin(), palette.end());
    file.data = {1, 0, 0, 0};
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{kGreen}}));
}

TEST(BmpRead, DataOffset_IsFollowed) {
    File file;
    file.width = file.height = 1;
    file.bitCount = 24;
    file.dataOffset = 60;
    file.data = {9, 9, 9, 9, 9, 9, 1, 2, 3, 0};  // begins at 54
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{Rgb(3, 2, 1)}}));
}

TEST(BmpRead, Masks_ArePassedOverAndNotUsed) {
    for (std::uint32_t compression : {0u, 3u}) {
        File file;
        file.width = file.height = 1;
        file.bitCount = 32;
        file.compression = compression;
        file.masks = {0xFF, 0, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0xFF, 0};
        file.colorsUsed = 1;
        file.palette = {0, 0, 0, 0};
        file.data = {1, 2, 3, 4};
        EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{Rgb(3, 2, 1)}}));
    }
}

TEST(BmpRead, TinyDeepFileWithoutMasks_IsReadAllTheSame) {
    // There are fewer bytes behind the header than the masks would take.
    for (std::uint16_t bits : {16, 32}) {
        File file;
        file.width = file.height = 1;
        file.bitCount = bits;
        file.data = {0xFF, 0xFF, 0xFF, 0xFF};
        EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{kWhite}}));
    }
}

TEST(BmpRead, Compression_IsIgnoredAtOtherDepthsThan4And8) {
    for (std::uint32_t compression : {1u, 2u, 3u, 99u}) {
        File file;
        file.width = file.height = 1;
        file.compression = compression;
        file.bitCount = 24;
        file.data = {1, 2, 3, 0};
        EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{Rgb(3, 2, 1)}}));
        file.bitCount = 1;
        file.palette = Palette(2);
        file.data = {0x80, 0, 0, 0};
        EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{kGreen}}));
    }
}

TEST(BmpRead, ImageSize_BoundsTheRowsThatAreRead) {
    File file;
    file.width = 1;
    file.height = 3;
    file.bitCount = 24;
    file.data = {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0};
    Picture const whole{{Rgb(9, 8, 7)}, {Rgb(6, 5, 4)}, {Rgb(3, 2, 1)}};
    for (std::uint32_t size : {0u, 12u, 13u, 0xFFFFFFFFu}) {
        file.imageSize = size;
        EXPECT_EQ(PictureOf(Read(file).Get()), whole) << size;
    }
    // Bytes that the header does not claim are zeros.
    file.imageSize = 5;
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{Rgb(0, 0, 0)}, {Rgb(0, 0, 4)}, {Rgb(3, 2, 1)}}));
}

// Palettes.

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

// Frames of the caller.

TEST(BmpGivenFrame, KeepsItsSizeAndDropsWhatFallsOutside) {
    File file;
    file.width = 3;
    file.height = 3;
    file.bitCount = 24;
    file.data = {1, 1, 1, 2, 2, 2, 3, 3, 3, 0, 0, 0, 4, 4, 4, 5, 5, 5,
                 6, 6, 6, 0, 0, 0, 7, 7, 7, 8, 8, 8, 9, 9, 9, 0, 0, 0};
    StRef<SmImagerFrame> const smaller = Frame(2, 2, SrCode("ColB"));
    EXPECT_EQ(PictureOf(Read(file, smaller.Get()).Get()),
              (Picture{{Rgb(7, 7, 7), Rgb(8, 8, 8)}, {Rgb(4, 4, 4), Rgb(5, 5, 5)}}));

    StRef<SmImagerFrame> const wider = Frame(1, 5, SrCode("ColB"));
    Fill(wider.Get(), {50, 50, 50, 50});
    EXPECT_EQ(PictureOf(Read(file, wider.Get()).Get()),
              (Picture{{Rgb(7, 7, 7), Rgb(8, 8, 8), Rgb(9, 9, 9), 0x32323232, 0x32323232}}));
}

TEST(BmpGivenFrame, IsResizedWhenAskedTo) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 24;
    file.data = {1, 2, 3, 4, 5, 6, 0, 0};
    StRef<SmImagerFrame> const frame = Frame(5, 5, SrCode("RG24"));
    EXPECT_EQ(PictureOf(Read(file, frame.Get(), kResize).Get()), (Picture{{Rgb(3, 2, 1), Rgb(6, 5, 4)}}));
    EXPECT_EQ(frame->PixelID(), SrCode("RG24"));
    EXPECT_EQ(frame->ReferenceCount(), 1);
}

/// Counts resizings.
class ResizeCounter : public SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool> {
  public:
    explicit ResizeCounter(StPoint const& size) { IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr); }
    void Resize(StPoint const& size, StImageInterpolationMethod method) override {
        ++resizings;
        SmImagerLayer::Resize(size, method);
    }
    int resizings = 0;
};

TEST(BmpGivenFrame, OfTheRightSize_IsNotResized) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 24;
    file.data.assign(8, 1);
    auto const frame = StRef<ResizeCounter>::Adopt(new ResizeCounter({1, 2}));
    Read(file, frame.Get(), kResize);
    EXPECT_EQ(frame->resizings, 0);
    file.width = 1;
    Read(file, frame.Get(), kResize);
    EXPECT_EQ(frame->resizings, 1);
}

TEST(BmpGivenFrame, OfTheOwnMappedType_KeepsIndicesAndTakesThePalette) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 4;
    file.palette = Palette(16);
    file.palette[4 * 7] = file.palette[4 * 7 + 1] = file.palette[4 * 7 + 2] = 0;  // 7 and 8 are one colour
    file.palette[4 * 8] = file.palette[4 * 8 + 1] = file.palette[4 * 8 + 2] = 0;
    file.data = {0x78, 0, 0, 0};
    StRef<SmImagerFrame> const frame = Frame(1, 3, SrCode("Map4"));
    unsigned char const last = 5;
    frame->PutPixelAt(2, 0, static_cast<void const*>(&last));
    Read(file, frame.Get());
    EXPECT_EQ(IndicesOf(frame.Get()), (std::vector<std::vector<int>>{{7, 8, 5}}));
    EXPECT_EQ(PictureOf(frame.Get())[0][0], Rgb(0, 0, 0));
}

TEST(BmpGivenFrame, OfAnotherMappedType_TakesColors) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 1;
    file.palette = {0,   0, 255, 0,   // red
                    255, 0, 0,   0};  // blue
    file.data = {0x40, 0, 0, 0};
    // The file's two entries take the places of the frame's first two.
    StRef<SmImagerFrame> const frame = Frame(1, 2, SrCode("Map8"));
    Read(file, frame.Get());
    EXPECT_EQ(PictureOf(frame.Get()), (Picture{{kRed, kBlue}}));
    auto* const map = SrGetColorMapFromFrame(frame.Get());
    EXPECT_EQ((*map)[0].red, 255);
    EXPECT_EQ((*map)[1].blue, 255);
}

TEST(BmpGivenFrame, OfAnyType_TakesColors) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 4;
    file.palette = Palette(16);
    file.data = {0x30, 0, 0, 0};  // white, red
    struct Row {
        char const (&id)[5];
        Picture expected;
    };
    Row const rows[] = {
        {"ColB", {{kWhite, kRed}}},
        {"RG32", {{kWhite, kRed}}},
        {"RG24", {{kWhite, kRed}}},
        {"RG15", {{kWhite, kRed}}},
        {"RG64", {{kWhite, kRed}}},
        {"Gry8", {{kWhite, Rgb(85, 85, 85)}}},  // (255 + 0 + 0) / 3
        {"Gry4", {{kWhite, Rgb(85, 85, 85)}}},  // 85 >> 4 is 5, times 17
        {"BnW1", {{kWhite, 0x00000000}}},       // 255 is below 383, so black, which is transparent
        {"Alp8", {{0xFFFFFFFF, 0xFFFFFFFF}}},   // both are opaque
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.id);
        StRef<SmImagerFrame> const frame = Frame(1, 2, SrCode(row.id));
        EXPECT_EQ(PictureOf(Read(file, frame.Get()).Get()), row.expected);
    }
}

// The two roads into a frame.

/// A layer that passes for a frame of a foreign class, so that pixels come one by one.
template <class Pixel>
class ForeignFrame : public SmImagerLayer<Pixel, ScImagerNonSpool> {
  public:
    explicit ForeignFrame(StPoint const& size) {
        this->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
    }
    ScMC_* GetClass() const override { return SmObject::Class(); }
};

template <class Pixel>
class BmpRoads : public testing::Test {};
using RoadPixels = testing::Types<StRGBA32Pixel, StRGB32Pixel, StRGB24Pixel, StRGB15Pixel>;
TYPED_TEST_SUITE(BmpRoads, RoadPixels);

TYPED_TEST(BmpRoads, RowsAndPixels_GiveTheSameBytes) {
    for (std::uint16_t bits : {1, 4, 8, 16, 24, 32}) {
        for (std::uint32_t compression : {0u, 1u}) {
            SCOPED_TRACE(testing::Message() << bits << " bits, compression " << compression);
            File file;
            file.width = 19;
            file.height = 7;
            file.bitCount = bits;
            file.compression = compression;
            std::uint32_t state = bits;
            auto const next = [&] {
                state = state * 1664525 + 1013904223;
                return static_cast<unsigned char>(state >> 24);
            };
            if (bits <= 8) {
                for (std::size_t i = 0; i < std::size_t{4} << bits; ++i)
                    file.palette.push_back(next());
            }
            for (int i = 0; i < 19 * 7 * 4; ++i)
                file.data.push_back(next());
            for (StPoint const& size : {StPoint{7, 19}, StPoint{4, 11}, StPoint{9, 23}}) {
                StRef<SmImagerFrame> const rows = Frame(size.vertical, size.horizontal, TypeParam::PixelID());
                auto const pixels = StRef<SmImagerFrame>::Adopt(new ForeignFrame<TypeParam>(size));
                auto const bytes = static_cast<std::size_t>(rows->BytesPerRow());
                for (SmImagerFrame* frame : {rows.Get(), pixels.Get()}) {
                    // Bytes that no colour reaches must stay, so they begin as something.
                    for (long y = 0; y < size.vertical; ++y)
                        std::memset(frame->GetRow(y), 0xA5, bytes);
                    Read(file, frame);
                }
                for (long y = 0; y < size.vertical; ++y) {
                    EXPECT_EQ(std::memcmp(rows->GetRow(y), pixels->GetRow(y), bytes), 0) << "row " << y;
                }
            }
        }
    }
}

// Streams without a position.

TEST(BmpSequentialStream, IsReadOnAsItComes) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 8;
    file.colorsUsed = 3;
    file.palette = Palette(3);
    file.data = {1, 2, 0, 0};
    auto const stream = StRef<SequentialStream>::Adopt(new SequentialStream(file.Build()));
    EXPECT_EQ(PictureOf(ReadStream(stream.Get()).Get()), (Picture{{kGreen, kBlue}}));
}

TEST(BmpSequentialStream, DoesNotFollowOffsets) {
    File file;
    file.width = file.height = 1;
    file.bitCount = 24;
    file.dataOffset = 60;
    file.data = {9, 8, 7, 9, 9, 9, 1, 2, 3, 0};
    auto const stream = StRef<SequentialStream>::Adopt(new SequentialStream(file.Build()));
    EXPECT_EQ(PictureOf(ReadStream(stream.Get()).Get()), (Picture{{Rgb(7, 8, 9)}}));
}

TEST(BmpSequentialStream, MasksAndSurplusEntries_ArePassedOver) {
    File file;
    file.width = file.height = 1;
    file.bitCount = 32;
    file.masks.assign(12, 0xEE);
    file.colorsUsed = 300;
    file.palette = Palette(300);
    file.data = {1, 2, 3, 4};
    auto const stream = StRef<SequentialStream>::Adopt(new SequentialStream(file.Build()));
    EXPECT_EQ(PictureOf(ReadStream(stream.Get()).Get()), (Picture{{Rgb(3, 2, 1)}}));
}

TEST(BmpSequentialStream, LargeData_ComesWhole) {
    // More than the first piece that is asked of a stream of unknown length.
    File file;
    file.width = 256;
    file.height = 400;
    file.bitCount = 24;
    for (int i = 0; i < 256 * 400 * 3; ++i)
        file.data.push_back(static_cast<unsigned char>(i * 7 >> 3));
    auto const stream = StRef<SequentialStream>::Adopt(new SequentialStream(file.Build()));
    EXPECT_EQ(PictureOf(ReadStream(stream.Get()).Get()), PictureOf(Read(file).Get()));
}

TEST(BmpRead, MissingStream_IsFileNotFound) {
    StreamLocation location(nullptr);
    SmImagerFrame* frame = nullptr;
    ScMessageClass* message = nullptr;
    try {
        Recognizer()->ReadFrame(&location, frame, 0, nullptr, 0);
        FAIL();
    } catch (std::exception const& exception) {
        EXPECT_EQ(SrGetExceptionValues(exception, message), SkFileNotFound());
        auto const* const strings = dynamic_cast<ScMessageBuzzStrings*>(message);
        ASSERT_TRUE(strings);
        EXPECT_EQ(strings->List(), 20991);
        EXPECT_EQ(strings->Index(), 6);
        EXPECT_EQ(strings->Alert(), 191);
    }
}

}  // namespace
