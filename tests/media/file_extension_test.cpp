#include "framewright/media/file_extension.h"

#include <gtest/gtest.h>

#include "framewright/core/startup.h"
#include "media/media_test_support.h"

namespace {

using namespace media_test;

/// Two formats: BMP with two names, PICT with two, and one without any.
class FileExtension : public testing::Test {
  protected:
    FileExtension() {
        formats.Add(log, "PICT")->rows = {{SrCode("PICT"), 0, "pct", 0, ""},
                                          {SrCode("PICT"), 0, "pict", 0, ""}};
        formats.Add(log, "BMP ")->rows = {{SrCode("BMP "), 0, "bmp", 0, ""},
                                          {SrCode("DIB "), 0, "dib", 0, ""}};
        formats.Add(log, "Bare");
        formats.Add(log, "Null")->rows = {{SrCode("Null"), 0, nullptr, 0, ""}};
    }

    Log log;
    GlobalFormats formats;
};

struct ExtensionCase {
    char const* name;
    bool result;
    char const* extension;  ///< of "[" before
};

TEST(FileExtensions, Get_AppendsWhatStandsBehindTheLastDot) {
    ExtensionCase const cases[] = {
        {"a.bmp", true, "[bmp"}, {"a.b.BMP", true, "[BMP"}, {"a.", true, "["},        {"a", false, "["},
        {"", false, "["},        {".bmp", true, "[bmp"},    {"/b.c/a", true, "[c/a"},  // a dot in a folder's
                                                                                       // name counts
    };
    for (ExtensionCase const& row : cases) {
        ScHeapString name(row.name), extension("[");
        EXPECT_EQ(SrGetFileExtension(name, extension), row.result) << row.name;
        EXPECT_STREQ(extension.AsCString(), row.extension) << row.name;
        EXPECT_STREQ(name.AsCString(), row.name);
    }
}

struct StripCase {
    char const* name;
    char const (&type)[5];
    bool result;
    char const* stripped;
};

TEST_F(FileExtension, Strip_SaysWhetherOneIsToBeAdded) {
    StripCase const cases[] = {
        {"a.bmp", "BMP ", false, "a.bmp"},                                    // right already
        {"a.DIB", "BMP ", false, "a.DIB"}, {"a.pict", "BMP ", true, "a"},     // another format's
        {"a.b.PCT", "BMP ", true, "a.b"},  {"a.xyz", "BMP ", true, "a.xyz"},  // unknown
        {"a.", "BMP ", true, "a."},        {"a", "BMP ", true, "a"},           {"", "BMP ", true, ""},
        {".pict", "BMP ", true, ""},       {"a.pict", "Xxxx", true, "a.pict"},  // no such format
        {"a.pict", "Bare", true, "a"},     {"/b.c/a", "BMP ", true, "/b.c/a"},
    };
    for (StripCase const& row : cases) {
        ScHeapString name(row.name);
        EXPECT_EQ(SrStripKnownFileExtensions(name, SrCode(row.type)), row.result) << row.name;
        EXPECT_STREQ(name.AsCString(), row.stripped) << row.name;
    }
}

struct AppendCase {
    char const* name;
    char const (&type)[5];
    char const* result;
};

TEST_F(FileExtension, Append_GivesTheFirstExtension) {
    AppendCase const cases[] = {
        {"shot.pict", "BMP ", "shot.bmp"},
        {"a.xyz", "BMP ", "a.xyz.bmp"},
        {"a.BMP", "BMP ", "a.BMP"},
        {"a.dib", "BMP ", "a.dib"},
        {"a", "PICT", "a.pct"},
        {"a.", "BMP ", "a..bmp"},
        {"a", "Xxxx", "a"},
        {"a", "Bare", "a"},
        {"a", "Null", "a"},
        {"a.bmp", "Bare", "a"},  // stripped, and nothing to add
    };
    for (AppendCase const& row : cases) {
        ScHeapString name(row.name);
        SrAppendFileNameWithExtension(name, SrCode(row.type));
        EXPECT_STREQ(name.AsCString(), row.result) << row.name << " " << row.type;
    }
}

TEST_F(FileExtension, Append_StopsAtLongNames) {
    // The two lengths have to stay below 261, the dot not counted.
    for (unsigned length : {256U, 257U, 258U, 259U}) {
        std::string const text(length, 'a');
        ScHeapString name(text.c_str());
        SrAppendFileNameWithExtension(name, SrCode("BMP "));
        EXPECT_EQ(name.AsCString(), length + 3 < 261 ? text + ".bmp" : text) << length;
    }
}

TEST_F(FileExtension, WithoutAManagerNamesStay) {
    SrInitializeGlobalMedia(true);
    ScHeapString name("a.pict");
    EXPECT_TRUE(SrStripKnownFileExtensions(name, SrCode("BMP ")));
    SrAppendFileNameWithExtension(name, SrCode("BMP "));
    EXPECT_STREQ(name.AsCString(), "a.pict");
}

TEST_F(FileExtension, ABoundedNameIsCutAtItsCapacity) {
    ScCString name("abc", 5);
    SrAppendFileNameWithExtension(name, SrCode("BMP "));
    EXPECT_STREQ(name.AsCString(), "abc.b");
}

}  // namespace
