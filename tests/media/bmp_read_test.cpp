// Reading BMP files: headers and the uncompressed depths.
#include <gtest/gtest.h>

#include "bmp_file.h"

namespace {

using namespace bmp_test;

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
