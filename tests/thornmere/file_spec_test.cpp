#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "framewright/thornmere/files.h"
#include "thornmere/support.h"

namespace {

struct StNameRow {
    char const* path;
    char const* fileName;
    char const* withName;       ///< after SetFileName("new.x")
    char const* withExtension;  ///< after SetExtension("STch")
    char const* withoutExtension;
};

TEST(FileSpec, NamesAndExtensions) {
    StNameRow const rows[] = {
        {"/a/b.pic", "b.pic", "/a/new.x", "/a/b.STch", "/a/b"},
        {"b.pic", "b.pic", "new.x", "b.STch", "b"},
        {"/a.d/b", "b", "/a.d/new.x", "/a.d/b.STch", "/a.d/b"},
        {"a/b.tar.gz", "b.tar.gz", "a/new.x", "a/b.tar.STch", "a/b.tar"},
        {"a/.hidden", ".hidden", "a/new.x", "a/.hidden.STch", "a/.hidden"},
        {"a/.hidden.bmp", ".hidden.bmp", "a/new.x", "a/.hidden.STch", "a/.hidden"},
        {"a/b.", "b.", "a/new.x", "a/b.STch", "a/b"},
        {"/b", "b", "/new.x", "/b.STch", "/b"},
        {"a/", "", "a/new.x", "a/.STch", "a/"},
        {"", "", "new.x", ".STch", ""},
    };
    for (StNameRow const& row : rows) {
        StFileSpec const spec(row.path);
        EXPECT_STREQ(spec.GetPath(), row.path);
        EXPECT_STREQ(spec.GetFileName(), row.fileName) << row.path;
        StFileSpec named(spec);
        named.SetFileName("new.x");
        EXPECT_STREQ(named.GetPath(), row.withName) << row.path;
        StFileSpec extended(spec);
        extended.SetExtension("STch");
        EXPECT_STREQ(extended.GetPath(), row.withExtension) << row.path;
        extended = spec;
        extended.SetExtension("");
        EXPECT_STREQ(extended.GetPath(), row.withoutExtension) << row.path;
        EXPECT_STREQ(spec.GetPath(), row.path) << "copies are copies";
    }
}

TEST(FileSpec, SpoolFileNames) {
    StFileSpec spec("/tmp/Temp");
    spec.SetFileName("T0012345678");
    spec.SetExtension("STch");
    EXPECT_STREQ(spec.GetPath(), "/tmp/T0012345678.STch");
}

TEST(FileSpec, ConcatFileNameGoesIntoTheFolder) {
    TemporaryFolder const folder;
    WriteWholeFile(folder / "a", "");
    StFileSpec spec(folder.Path().c_str());
    EXPECT_EQ(spec.ConcatFileName("a"), 0);
    EXPECT_EQ(spec.GetPath(), folder / "a");
    StFileSpec missing(folder.Path().c_str());
    EXPECT_EQ(missing.ConcatFileName("Temp"), -43);
    EXPECT_EQ(missing.GetPath(), folder / "Temp");
    StFileSpec withSlash((folder.Path() + "/").c_str());
    EXPECT_EQ(withSlash.ConcatFileName("a"), 0);
    EXPECT_EQ(withSlash.GetPath(), folder / "a") << "no second separator";
    StFileSpec empty;
    empty.ConcatFileName("a");
    EXPECT_STREQ(empty.GetPath(), "a");
}

TEST(FileSpec, EqualityComparesPaths) {
    EXPECT_EQ(StFileSpec("a/b"), StFileSpec("a/b"));
    EXPECT_NE(StFileSpec("a/b"), StFileSpec("a/B"));
    EXPECT_EQ(StFileSpec(), SkInvalidFileSpec());
    EXPECT_FALSE(SkInvalidFileSpec().IsValid());
    EXPECT_TRUE(StFileSpec("a").IsValid());
}

TEST(FileSpec, FromFullPath) {
    TemporaryFolder const folder;
    WriteWholeFile(folder / "a.bmp", "");
    StFileSpec spec;
    EXPECT_EQ(SrFileSpecFromFullPath((folder / "a.bmp").c_str(), spec), 0);
    EXPECT_EQ(spec.GetPath(), folder / "a.bmp");
    EXPECT_EQ(SrFileSpecFromFullPath(folder.Path().c_str(), spec), 0) << "a folder is there too";
    EXPECT_EQ(SrFileSpecFromFullPath((folder / "b.bmp").c_str(), spec), -43);
    EXPECT_EQ(spec.GetPath(), folder / "b.bmp") << "the spec of a file to come";
    EXPECT_EQ(SrFileSpecFromFullPath((folder / "none/b.bmp").c_str(), spec), -43) << "a missing folder";
    EXPECT_EQ(SrFileSpecFromFullPath((folder / "a.bmp/b").c_str(), spec), -43) << "a file as folder";
    EXPECT_EQ(spec.GetPath(), folder / "a.bmp/b");
    EXPECT_EQ(SrFileSpecFromFullPath("", spec), -50);
    EXPECT_EQ(SrFileSpecFromFullPath(nullptr, spec), -50);
    EXPECT_EQ(SrFileSpecFromFullPath((folder / std::string(5000, 'x')).c_str(), spec), -50);
    EXPECT_EQ(spec.GetPath(), folder / "a.bmp/b") << "the spec is left";
}

TEST(FileSpec, FromRelativePath) {
    TemporaryFolder const folder;
    WriteWholeFile(folder / "a.bmp", "");
    auto const before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    StFileSpec spec;
    EXPECT_EQ(SrFileSpecFromFullPath("a.bmp", spec), 0);
    EXPECT_EQ(SrFileSpecFromFullPath("./b.bmp", spec), -43);
    std::filesystem::current_path(before);
    ScHeapString path;
    EXPECT_EQ(SrFullPathFromFileSpec(spec, path), 0);
    EXPECT_STREQ(path.AsCString(), "./b.bmp");
}

TEST(FileSpec, FullPathOfNothing) {
    ScHeapString path("before");
    EXPECT_EQ(SrFullPathFromFileSpec(SkInvalidFileSpec(), path), -50);
    EXPECT_STREQ(path.AsCString(), "");
}

TEST(FileSpec, InfoHoldsTheExtensionAsTypeText) {
    TemporaryFolder const folder;
    struct StRow {
        char const* name;
        char const* typeText;
    };
    for (StRow const& row : {StRow{"a.bmp", "bmp"}, StRow{"a.BMP", "BMP"}, StRow{"a", ""}, StRow{"a.", ""},
                             StRow{".bmp", ""}, StRow{"a.tar.gz", "gz"}, StRow{"T0012345678.STch", "STch"}}) {
        WriteWholeFile(folder / row.name, "");
        StFileInfo info;
        std::memset(&info, 'x', sizeof info);
        EXPECT_EQ(SrGetFileInfo(StFileSpec((folder / row.name).c_str()), info), 0) << row.name;
        EXPECT_STREQ(info.typeText, row.typeText) << row.name;
    }
}

TEST(FileSpec, InfoOfTheLongestExtensionFits) {
    TemporaryFolder const folder;
    std::string const extension(253, 'e');
    WriteWholeFile(folder / ("a." + extension), "");
    StFileInfo info;
    EXPECT_EQ(SrGetFileInfo(StFileSpec((folder / ("a." + extension)).c_str()), info), 0);
    EXPECT_EQ(info.typeText, extension);
}

TEST(FileSpec, InfoOfAMissingFileLeavesTheRecord) {
    TemporaryFolder const folder;
    StFileInfo info = {"kept"};
    EXPECT_EQ(SrGetFileInfo(StFileSpec((folder / "a.bmp").c_str()), info), -43);
    EXPECT_EQ(SrGetFileInfo(SkInvalidFileSpec(), info), -43);
    EXPECT_STREQ(info.typeText, "kept");
}

TEST(FileSpec, InfoIs257BytesCopiedByValue) {
    static_assert(sizeof(StFileInfo) == 257);
    StFileInfo info = {"bmp"};
    StFileInfo const copy = info;
    info.typeText[0] = 'd';
    EXPECT_STREQ(copy.typeText, "bmp");
    EXPECT_STREQ(SkNoFileInfo().typeText, "");
}

TEST(FileSpec, TemporaryFolderIsTheFolderItself) {
    TemporaryFolder const folder;
    StFileSpec spec(folder.Path().c_str());
    EXPECT_EQ(SrFindFolder(spec, 2, false), 0);
    EXPECT_EQ(spec.GetPath(), folder.Path());
    StFileSpec missing((folder / "new").c_str());
    EXPECT_EQ(SrFindFolder(missing, 2, false), -43);
    EXPECT_EQ(SrFindFolder(missing, 2, true), 0);
    EXPECT_EQ(SrFindFolder(missing, 2, false), 0);
    EXPECT_EQ(SrFindFolder(missing, 3, false), -43) << "no other type is known";
}

}  // namespace
