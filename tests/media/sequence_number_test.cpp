#include "framewright/media/sequence_number.h"

#include <gtest/gtest.h>

#include <string>

#include "media/media_test_support.h"

namespace {

using namespace media_test;
using media::FindSequenceNumber;
using media::StSequenceNumber;
using media::WithSequenceNumber;

struct FindCase {
    char const* path;
    long first;
    long last;
    long value;
};

TEST(SequenceNumber, Find_SeesTheDigitsOfTheFileName) {
    FindCase const cases[] = {
        // path                 first  last  value
        {"x07.pic", 1, 2, 7},
        {"x7.pic", -1, -1, -1},  // a lone digit is no number
        {"x7", -1, -1, -1},      // ... also before the end of the text
        {"x71", 1, 2, 71},
        {"ab12cd34", 2, 7, 1234},  // a later run extends the first
        {"ab12cd3.e", 2, 6, 123},
        {"a1b23", 3, 4, 23},  // the lone digit is forgotten
        {"a1b2c3", -1, -1, -1},
        {"12.pic", -1, -1, -1},  // the first character is never looked at
        {"123.pic", 1, 2, 23},
        {"/12.pic", 1, 2, 12},
        {"/shots/0012.pic", 7, 10, 12},
        {"/take12/a.pic", -1, -1, -1},  // a separator starts over
        {"/take12/a34.pic", 9, 10, 34},
        {"disk12:a34", 8, 9, 34},
        {"c:\\12\\a34", 7, 8, 34},
        {"/a12/", -1, -1, -1},
        {"a12b/", -1, -1, -1},
        {"a12.b3", 1, 5, 123},  // an extension's digits count like any others
        {"", -1, -1, -1},
        {"x", -1, -1, -1},
        {"x00", 1, 2, 0},
        {"x2147483647", 1, 10, 2147483647},
        {"x4294967296", 1, 10, 0},  // past 32 bits the value wraps
        {"x4294967301", 1, 10, 5},
        {"x2147483648", 1, 10, -2147483648L},
        {"x4294967295", 1, 10, -1},
        {"\xC3\xA9"
         "12",
         2, 3, 12},
    };
    for (FindCase const& row : cases) {
        StSequenceNumber const found = FindSequenceNumber(row.path);
        EXPECT_EQ(found.first, row.first) << row.path;
        EXPECT_EQ(found.last, row.last) << row.path;
        EXPECT_EQ(found.value, row.value) << row.path;
    }
}

TEST(SequenceNumber, Find_VeryLongRunWraps) {
    // 10^k is a multiple of 2^32 from k = 32 on, so only the last 32 digits count.
    std::string const path = "x" + std::string(100000, '9') + std::string(31, '0') + "5";
    StSequenceNumber const found = FindSequenceNumber(path.c_str());
    EXPECT_EQ(found.first, 1);
    EXPECT_EQ(found.last, static_cast<long>(path.size()) - 1);
    EXPECT_EQ(found.value, 5);
}

struct WithCase {
    char const* path;
    long number;
    char const* result;
};

TEST(SequenceNumber, With_WritesOverTheSpanOrInsertsAtTheDot) {
    WithCase const cases[] = {
        {"x07.pic", 8, "x08.pic"},
        {"x07.pic", 99, "x99.pic"},
        {"x07.pic", 0, "x00.pic"},
        {"x07.pic", 123, "x230123.pic"},    // two digits are written before it shows that three are needed
        {"x07.pic", 12345, "x452345.pic"},  // ... and the four that are inserted are cut too
        {"a.pic", 12, "a0012.pic"},
        {"a.pic", 12345, "a2345.pic"},
        {"a", 12, "a.0012"},
        {"/b/a", 12, "/b/a.0012"},
        {"/b.c/a", 12, "/b0012.c/a"},  // the last dot of the whole path
        {"a.b.pic", 7, "a.b0007.pic"},
        {".pic", 7, "0007.pic"},
        {"x7.pic", 8, "x70008.pic"},
        {"ab12cd34", 567890, "ab567890"},  // letters inside the span are written over
        {"ab12cd34", 5, "ab000005"},
        {"ab12cd34", 1234567, "ab234567.4567"},
        {"", 3, ".0003"},
        {"x0000000000.b", 4294967296L, "x4294967296.b"},
        {"x2147483648.b", 1, "x21474836480001.b"},  // a value that wrapped below 0 is no number
        {"x4294967296.b", 1, "x0000000001.b"},      // one that wrapped to 0 is
    };
    for (WithCase const& row : cases)
        EXPECT_EQ(WithSequenceNumber(row.path, row.number), row.result) << row.path << " " << row.number;
}

// --- counting files

TEST(SequenceNumber, Count_WithoutNumberIsOne) {
    TempFolder const folder;
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Write("a.pic")).get()), 1);
    folder.Write("a8.pic");
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Write("a7.pic")).get()), 1);
    ScMediaInline nowhere;
    EXPECT_EQ(SrCountSequentialFiles(&nowhere), 1);
}

TEST(SequenceNumber, Count_EndsAtTheFirstGap) {
    TempFolder const folder;
    for (char const* name : {"a01.pic", "a02.pic", "a03.pic", "a05.pic"})
        folder.Write(name);
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Path("a01.pic")).get()), 3);
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Path("a03.pic")).get()), 1);
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Path("a05.pic")).get()), 1);
}

TEST(SequenceNumber, Count_DoesNotLookForTheFileItself) {
    TempFolder const folder;
    folder.Write("a01.pic");
    folder.Write("a02.pic");
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Path("a00.pic")).get()), 3);
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Path("a40.pic")).get()), 1);
}

TEST(SequenceNumber, Count_LeavesTheLocationAlone) {
    TempFolder const folder;
    folder.Write("a02.pic");
    auto const location = LocationOf(folder.Path("a01.pic"));
    EXPECT_EQ(SrCountSequentialFiles(location.get()), 2);
    EXPECT_EQ(PathOf(*location), folder.Path("a01.pic"));
}

TEST(SequenceNumber, Count_PastTheDigitsFollowsTheInsertedName) {
    // 99 leaves the two digits as 00 and puts 0100 behind them; from there on six digits are counted over.
    TempFolder const folder;
    for (char const* name : {"a98.pic", "a99.pic", "a000100.pic", "a000101.pic"})
        folder.Write(name);
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Path("a98.pic")).get()), 4);
}

TEST(SequenceNumber, Count_TriesNoMoreNumbersThanTheDigitsCanCount) {
    TempFolder const folder;
    for (int i = 1; i < 100; ++i)
        folder.Write((i < 10 ? "a0" : "a") + std::to_string(i) + ".pic");
    for (int i = 100; i < 130; ++i)
        folder.Write("a000" + std::to_string(i) + ".pic");
    // Ninety-nine numbers behind the base, whatever stands behind them.
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Path("a09.pic")).get()), 100);
}

/// A location of a folder that has every file.
class Everywhere : public ScMediaFileLocation {
  public:
    explicit Everywhere(std::string path) : mPath(std::move(path)) {}
    ScMediaLocation* Clone() const override { return new Everywhere(mPath); }
    bool GetFullPath(ScSx& path) override {
        path.Assign(mPath.c_str());
        return true;
    }
    bool SetFullPath(char const* path) override {
        mPath = path;
        return true;
    }
    StSearchResult GetFileInfo(StFileInfo&) override { return kSearchFound; }

  private:
    std::string mPath;
};

TEST(SequenceNumber, Count_IsLimitedByTheDigits) {
    struct {
        char const* path;
        long count;
    } const rows[] = {
        {"a01.pic", 100},        {"a001.pic", 1000},     {"a0001.pic", 10000}, {"a00001.pic", 100000},
        {"a000001.pic", 100000}, {"a99999.pic", 100000}, {"a0x1.pic", 1},  // a lone digit each
        {"a00x1.pic", 10000},    // the span counts, with its letters
        {"a4294967200.pic", 1},  // wrapped below 0
    };
    for (auto const& row : rows) {
        Everywhere location(row.path);
        EXPECT_EQ(SrCountSequentialFiles(&location), row.count) << row.path;
    }
}

TEST(SequenceNumber, Count_EndsAtANameTooLongToExist) {
    // The next number takes four characters more than a file name may have.
    TempFolder const folder;
    std::string const name = std::string(249, 'a') + "99.bmp";
    EXPECT_EQ(SrCountSequentialFiles(LocationOf(folder.Write(name)).get()), 1);
}

TEST(SequenceNumber, Count_WhereMemoryIsRefused) {
    TempFolder const folder;
    folder.Write("a02.pic");
    auto const location = LocationOf(folder.Path("a01.pic"));
    EXPECT_GT(RefusedRuns([&] { EXPECT_EQ(SrCountSequentialFiles(location.get()), 2); }), 0);
}

}  // namespace
