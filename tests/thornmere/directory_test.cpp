#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "framewright/thornmere/files.h"
#include "thornmere/support.h"

namespace {

using Names = std::vector<std::string>;

class Collector : public ScFileIterator {
  public:
    bool HandleFile(StFileSpec const& file, StFileInfo const& info) override {
        names.push_back(file.GetFileName());
        types.push_back(info.typeText);
        specs.push_back(file);
        return names.size() == endAfter;
    }
    Names names, types;
    std::vector<StFileSpec> specs;
    std::size_t endAfter = 0;
};

class OnlyBitmaps : public ScFileFilter {
  public:
    bool CallbackForFile(StFileSpec const&, StFileInfo const& info) override {
        return std::strcmp(info.typeText, "bmp") == 0;
    }
};

class NoFolder : public ScFolderFilter {
  public:
    bool ShouldEnter(StFileSpec const& folder) override {
        asked.push_back(folder.GetFileName());
        return false;
    }
    Names asked;
};

class Directory : public testing::Test {
  protected:
    Directory() {
        for (char const* name : {"c.bmp", "a.bmp", "b.STch", "B.txt", ".hidden"}) {
            WriteWholeFile(mFolder / name, name);
        }
        std::filesystem::create_directories(mFolder / "aa/deep");
        WriteWholeFile(mFolder / "aa/x.bmp", "");
        WriteWholeFile(mFolder / "aa/deep/y.bmp", "");
    }
    long Walk(ScFileFilter* files, ScFolderFilter* folders, bool enterFolders) {
        return SrDirectoryEachFile(StFileSpec(mFolder.Path().c_str()), files, folders, collector,
                                   enterFolders);
    }

    TemporaryFolder mFolder;
    Collector collector;
};

TEST_F(Directory, HandsOnTheFilesInTheOrderOfTheirNames) {
    EXPECT_EQ(Walk(nullptr, nullptr, false), 0);
    EXPECT_EQ(collector.names, (Names{".hidden", "B.txt", "a.bmp", "b.STch", "c.bmp"}));
    EXPECT_EQ(collector.types, (Names{"", "txt", "bmp", "STch", "bmp"}));
    EXPECT_EQ(collector.specs[2].GetPath(), mFolder / "a.bmp");
}

TEST_F(Directory, EntersSubFolders) {
    EXPECT_EQ(Walk(nullptr, nullptr, true), 0);
    EXPECT_EQ(collector.names, (Names{".hidden", "B.txt", "a.bmp", "y.bmp", "x.bmp", "b.STch", "c.bmp"}));
}

TEST_F(Directory, BasesTakeAll) {
    ScFileFilter files;
    ScFolderFilter folders;
    EXPECT_EQ(Walk(&files, &folders, true), 0);
    EXPECT_EQ(collector.names.size(), 7u);
}

TEST_F(Directory, FiltersDecide) {
    OnlyBitmaps files;
    NoFolder folders;
    EXPECT_EQ(Walk(&files, &folders, true), 0);
    EXPECT_EQ(collector.names, (Names{"a.bmp", "c.bmp"}));
    EXPECT_EQ(folders.asked, (Names{"aa"}));
}

TEST_F(Directory, TrueEndsTheWalk) {
    collector.endAfter = 3;
    EXPECT_EQ(Walk(nullptr, nullptr, true), 0);
    EXPECT_EQ(collector.names, (Names{".hidden", "B.txt", "a.bmp"}));
}

TEST_F(Directory, TrueEndsTheWalkFromWithinASubFolder) {
    collector.endAfter = 4;
    EXPECT_EQ(Walk(nullptr, nullptr, true), 0);
    EXPECT_EQ(collector.names.back(), "y.bmp");
    EXPECT_EQ(collector.names.size(), 4u);
}

TEST_F(Directory, FilesMayBeDeletedOnTheWay) {
    class Deleter : public ScFileIterator {
      public:
        bool HandleFile(StFileSpec const& file, StFileInfo const&) override {
            EXPECT_EQ(SrFileDelete(file), 0);
            return false;
        }
    } deleter;
    EXPECT_EQ(SrDirectoryEachFile(StFileSpec(mFolder.Path().c_str()), nullptr, nullptr, deleter, false), 0);
    EXPECT_EQ(Walk(nullptr, nullptr, false), 0);
    EXPECT_TRUE(collector.names.empty());
}

TEST_F(Directory, OnlyRegularFilesCount) {
    ASSERT_EQ(mkfifo((mFolder / "pipe").c_str(), 0600), 0);
    ASSERT_EQ(symlink("a.bmp", (mFolder / "link.bmp").c_str()), 0);
    ASSERT_EQ(symlink("nowhere", (mFolder / "dangling").c_str()), 0);
    EXPECT_EQ(Walk(nullptr, nullptr, false), 0);
    EXPECT_EQ(collector.names, (Names{".hidden", "B.txt", "a.bmp", "b.STch", "c.bmp", "link.bmp"}));
}

TEST_F(Directory, CirclesOfLinksEnd) {
    ASSERT_EQ(symlink("..", (mFolder / "aa/back").c_str()), 0);
    EXPECT_EQ(Walk(nullptr, nullptr, true), 0);
    EXPECT_EQ(collector.names.size(), 7u);
}

TEST_F(Directory, UnreadableFoldersHaveTheirCode) {
    EXPECT_EQ(SrDirectoryEachFile(StFileSpec((mFolder / "none").c_str()), nullptr, nullptr, collector, true),
              -43);
    EXPECT_EQ(SrDirectoryEachFile(StFileSpec((mFolder / "a.bmp").c_str()), nullptr, nullptr, collector, true),
              -43);
    EXPECT_TRUE(collector.names.empty());
}

TEST_F(Directory, ExceptionsTravelOn) {
    class Thrower : public ScFileIterator {
      public:
        bool HandleFile(StFileSpec const&, StFileInfo const&) override { SrThrow(-32768, nullptr); }
    } thrower;
    EXPECT_EQ(CaughtCode([&] {
                  SrDirectoryEachFile(StFileSpec(mFolder.Path().c_str()), nullptr, nullptr, thrower, false);
              }),
              -32768);
}

}  // namespace
