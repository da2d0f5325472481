// Reading run-length encoded BMP files of 4 and 8 bits.
#include <gtest/gtest.h>

#include "bmp_file.h"

namespace {

using namespace bmp_test;

/// A picture as text, a row a string: a digit or letter for the index of each pixel.
using Rows = std::vector<std::string>;

Rows RowsOf(SmImagerFrame* frame) {
    Rows rows;
    for (std::vector<int> const& indices : IndicesOf(frame)) {
        rows.emplace_back();
        for (int const index : indices)
            rows.back().push_back("0123456789ABCDEFGHIJ"[index]);
    }
    return rows;
}

/// A palette whose entry i is the grey 10 * i.
File RunLengthFile(std::uint16_t bitCount, std::uint32_t rows, std::uint32_t columns, Bytes data) {
    File file;
    file.width = columns;
    file.height = rows;
    file.bitCount = bitCount;
    file.compression = bitCount == 8 ? 1 : 2;
    file.imageSize = static_cast<std::uint32_t>(data.size());
    for (unsigned i = 0; i < 1u << bitCount; ++i) {
        auto const shade = static_cast<unsigned char>(10 * i);
        file.palette.insert(file.palette.end(), {shade, shade, shade, 0});
    }
    file.data = std::move(data);
    return file;
}

struct Row {
    char const* what;
    std::uint32_t rows, columns;
    Bytes data;
    Rows expected;
};

void Check(std::uint16_t bitCount, std::vector<Row> const& rows) {
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(RowsOf(Read(RunLengthFile(bitCount, row.rows, row.columns, row.data)).Get()), row.expected);
    }
}

TEST(BmpRle8, Runs) {
    Check(8, {
                 {"nothing at all", 2, 3, {}, {"000", "000"}},
                 {"one run on the lowest line", 2, 3, {2, 7}, {"000", "770"}},
                 {"runs one behind the other", 1, 5, {2, 7, 1, 3, 2, 9}, {"77399"}},
                 {"the excess of a run is lost", 2, 3, {9, 7}, {"000", "777"}},
                 {"a run at the end of a line is lost whole", 2, 3, {3, 7, 2, 8}, {"000", "777"}},
                 {"a run of 255", 1, 4, {255, 5}, {"5555"}},
             });
}

TEST(BmpRle8, Lines) {
    Check(8, {
                 {"end of line", 2, 3, {1, 7, 0, 0, 2, 8}, {"880", "700"}},
                 {"an empty line", 3, 2, {0, 0, 0, 0, 2, 8}, {"88", "00", "00"}},
                 {"the upper line is not left", 2, 2, {0, 0, 1, 7, 0, 0, 2, 8}, {"88", "00"}},
                 {"end of bitmap", 2, 3, {1, 7, 0, 1, 2, 8}, {"000", "700"}},
             });
}

TEST(BmpRle8, Deltas) {
    Check(8, {
                 {"to the right and up", 3, 4, {0, 2, 2, 1, 1, 7}, {"0000", "0070", "0000"}},
                 {"from where a run ended", 2, 4, {1, 7, 0, 2, 1, 1, 1, 8}, {"0080", "7000"}},
                 {"past the right end nothing is placed", 2, 2, {0, 2, 5, 0, 1, 7, 0, 0, 1, 8}, {"80", "00"}},
                 {"past the upper line it is over", 2, 2, {0, 2, 0, 2, 1, 7, 0, 0, 1, 8}, {"00", "00"}},
                 {"exactly to the upper line", 2, 2, {0, 2, 0, 1, 1, 7}, {"70", "00"}},
             });
}

TEST(BmpRle8, AbsolutePixels) {
    Check(8, {
                 {"four", 1, 5, {0, 4, 1, 2, 3, 4}, {"12340"}},
                 {"an odd number takes one byte more", 1, 5, {0, 3, 1, 2, 3, 99, 1, 9}, {"12390"}},
                 {"they wrap at the end of a line", 2, 3, {0, 4, 1, 2, 3, 4}, {"400", "123"}},
                 {"and stay on the upper line", 1, 3, {0, 5, 1, 2, 3, 4, 5, 0}, {"453"}},
                 {"behind a full line they go on at the next", 2, 2, {2, 7, 0, 3, 1, 2, 3, 0}, {"32", "77"}},
                 {"past the end after a delta they never wrap",
                  2,
                  2,
                  {0, 2, 3, 0, 0, 4, 1, 2, 3, 4, 0, 0, 1, 9},
                  {"90", "00"}},
             });
}

TEST(BmpRle4, Runs_HaveTheLowNibbleAllAlong) {
    Check(4, {
                 {"the high nibble plays no part", 1, 4, {4, 0x12}, {"2222"}},
                 {"one pixel", 1, 4, {1, 0x70}, {"0000"}},
                 {"runs one behind the other", 1, 5, {2, 0x07, 1, 0x03, 2, 0x09}, {"77399"}},
                 {"a run wraps at the end of a line", 2, 3, {5, 0x07}, {"770", "777"}},
                 {"the next run wraps first", 2, 3, {3, 0x07, 2, 0x08}, {"880", "777"}},
                 {"on the upper line it goes over itself", 1, 3, {3, 0x07, 2, 0x08}, {"887"}},
                 {"255 pixels", 2, 3, {255, 0x05}, {"555", "555"}},
             });
}

TEST(BmpRle4, LinesAndDeltas) {
    Check(
        4,
        {
            {"end of line", 2, 3, {1, 7, 0, 0, 2, 8}, {"880", "700"}},
            {"end of bitmap", 2, 3, {1, 7, 0, 1, 2, 8}, {"000", "700"}},
            {"delta", 3, 4, {0, 2, 2, 1, 1, 7}, {"0000", "0070", "0000"}},
            {"past the end after a delta nothing wraps", 2, 2, {0, 2, 3, 0, 4, 7, 0, 0, 1, 8}, {"80", "00"}},
            {"past the upper line it goes on, out of sight",
             2,
             2,
             {0, 2, 0, 2, 2, 7, 0, 0, 2, 8},
             {"00", "00"}},
        });
}

TEST(BmpRle4, AbsolutePixels_AreHighNibbleThenLow) {
    Check(4, {
                 {"three take two bytes", 1, 5, {0, 3, 0x12, 0x3F, 1, 9}, {"12390"}},
                 {"four", 1, 5, {0, 4, 0x12, 0x34, 1, 9}, {"12349"}},
                 {"five take four bytes", 1, 6, {0, 5, 0x12, 0x34, 0x5F, 0xFF, 1, 9}, {"123459"}},
                 {"they wrap", 2, 3, {0, 5, 0x12, 0x34, 0x50, 0}, {"450", "123"}},
                 {"behind a full line too", 2, 2, {2, 7, 0, 3, 0x12, 0x30}, {"32", "77"}},
             });
}

TEST(BmpRle4, BytesOfAbsolutePixels_AreRoundedToWords) {
    // 2 * ((count + 3) / 4) bytes, then the run of the index F that marks their end.
    for (int count = 3; count <= 255; ++count) {
        Bytes data{0, static_cast<unsigned char>(count)};
        data.resize(2 + 2 * static_cast<std::size_t>((count + 3) / 4), 0x11);
        data.insert(data.end(), {1, 0x0F});
        Rows const rows = RowsOf(Read(RunLengthFile(4, 1, 256, data)).Get());
        Rows const expected{std::string(static_cast<std::size_t>(count), '1') + "F" +
                            std::string(static_cast<std::size_t>(255 - count), '0')};
        EXPECT_EQ(rows, expected) << count;
    }
}

TEST(BmpRle8, BytesOfAbsolutePixels_AreRoundedToWords) {
    for (int count = 3; count <= 255; ++count) {
        Bytes data{0, static_cast<unsigned char>(count)};
        data.resize(2 + static_cast<std::size_t>(count + count % 2), 1);
        data.insert(data.end(), {1, 0x0F});
        Rows const rows = RowsOf(Read(RunLengthFile(8, 1, 256, data)).Get());
        Rows const expected{std::string(static_cast<std::size_t>(count), '1') + "F" +
                            std::string(static_cast<std::size_t>(255 - count), '0')};
        EXPECT_EQ(rows, expected) << count;
    }
}

TEST(BmpRle, AnyCompressionButZero_IsRunLength) {
    for (std::uint32_t compression : {1u, 2u, 3u, 0xFFFFFFFFu}) {
        for (std::uint16_t bits : {4, 8}) {
            File file = RunLengthFile(bits, 1, 4, {4, 7});
            file.compression = compression;
            EXPECT_EQ(RowsOf(Read(file).Get()), (Rows{"7777"}));
        }
    }
}

TEST(BmpRle, SkippedPixels_ShowTheFirstColor) {
    File file = RunLengthFile(8, 2, 2, {1, 7});
    file.palette[0] = 1;
    file.palette[1] = 2;
    file.palette[2] = 3;
    // In the file's own kind of frame, in one of colours, and where it is larger than the picture.
    std::uint32_t const first = Rgb(3, 2, 1);
    std::uint32_t const seven = Rgb(70, 70, 70);
    EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{first, first}, {seven, first}}));
    StRef<SmImagerFrame> const frame = Frame(3, 3, SrCode("ColB"));
    EXPECT_EQ(PictureOf(Read(file, frame.Get()).Get()),
              (Picture{{first, first, first}, {seven, first, first}, {first, first, first}}));
    StRGBA32Pixel background{};
    frame->GetBackground(background);
    EXPECT_EQ(background.red, 3);
}

TEST(BmpRle, SkippedPixels_ShowTheFirstColorAlsoWhereAnotherIsNearIt) {
    // Entries 0 and 5 fall into one cell of the colour map, and the cell's answer is the later one.
    File file = RunLengthFile(8, 1, 2, {1, 7});
    file.palette[4 * 5] = file.palette[4 * 5 + 1] = file.palette[4 * 5 + 2] = 1;
    StRef<SmImagerFrame> const frame = Read(file);
    EXPECT_EQ(RowsOf(frame.Get()), (Rows{"70"}));
}

TEST(BmpRle, ImageSizeOfZero_IsThatOfTheRows) {
    // One row of four pixels takes four bytes: the third pair is not looked at.
    File file = RunLengthFile(8, 1, 4, {1, 7, 1, 8, 1, 9});
    file.imageSize = 0;
    EXPECT_EQ(RowsOf(Read(file).Get()), (Rows{"7800"}));
}

TEST(BmpRle, ImageSize_EndsTheCommands) {
    File file = RunLengthFile(8, 1, 4, {1, 7, 1, 8, 1, 9});
    file.imageSize = 4;
    EXPECT_EQ(RowsOf(Read(file).Get()), (Rows{"7800"}));
    file.imageSize = 3;  // cut within a run: the index that is not claimed is 0
    EXPECT_EQ(RowsOf(Read(file).Get()), (Rows{"7000"}));
}

TEST(BmpRle, CommandCutByTheEndOfTheFile_ReadsZeros) {
    struct Row {
        char const* what;
        Bytes data;
        Rows expected;
    };
    Row const rows[] = {
        {"a run, now of index 0", {1, 7, 2}, {"0000", "7000"}},
        {"an end of line", {1, 7, 0}, {"0000", "7000"}},
        {"a delta of nothing", {0, 2}, {"0000", "0000"}},
        {"a delta to the right", {0, 2, 3}, {"0000", "0000"}},
        {"two of four absolute pixels", {0, 4, 1, 2}, {"0000", "1200"}},
        {"of 200, which wrap over the upper line time and again", {0, 200, 1, 2, 3, 4, 5}, {"0000", "1234"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        File file = RunLengthFile(8, 2, 4, row.data);
        file.imageSize = 1000;
        EXPECT_EQ(RowsOf(Read(file).Get()), row.expected);
    }
}

TEST(BmpRle, PixelsOutsideASmallerFrame_AreDropped) {
    // The frame shows the upper two lines and the left three columns.
    File const file = RunLengthFile(8, 3, 5, {5, 1, 0, 0, 0, 5, 2, 3, 4, 5, 6, 0, 0, 0, 2, 7, 3, 8});
    StRef<SmImagerFrame> const frame = Frame(2, 3, SrCode("Map8"));
    EXPECT_EQ(RowsOf(Read(file, frame.Get()).Get()), (Rows{"778", "234"}));
}

TEST(BmpRle, CoreHeader_IsNeverRunLength) {
    File file;
    file.headerSize = 12;
    file.width = 2;
    file.height = 1;
    file.bitCount = 8;
    file.palette.assign(768, 0);
    file.data = {4, 7, 0, 0};
    EXPECT_EQ(RowsOf(Read(file).Get()), (Rows{"47"}));
}

}  // namespace
