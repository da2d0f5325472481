#include <algorithm>
#include <cstring>
#include <string>

#include "framewright/thornmere/files.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"
#include "thornmere/support.h"

namespace {

std::string Relative(char const* fullPath, char const* basePath) {
    ScHeapString path("before");
    SrMakeRelativePath(fullPath, basePath, path);
    return path.AsCString();
}

struct StRelativeRow {
    char const* fullPath;
    char const* basePath;
    char const* expected;
};

TEST(RelativePath, AsSeenFromTheFolderOfTheBase) {
    StRelativeRow const rows[] = {
        {"/show/a/pic.bmp", "/show/a/scene.bin", "pic.bmp"},
        {"/show/a/maps/pic.bmp", "/show/a/scene.bin", "maps/pic.bmp"},
        {"/show/a/pic.bmp", "/show/a/scenes/scene.bin", "../pic.bmp"},
        {"/show/b/c/pic.bmp", "/show/a/d/scene.bin", "../../b/c/pic.bmp"},
        {"/show/ab/pic.bmp", "/show/a/scene.bin", "../ab/pic.bmp"},
        {"/show/a/scene.bin", "/show/a/scene.bin", "scene.bin"},
        {"/show//a/./pic.bmp", "/show/a/scene.bin", "pic.bmp"},
        {"/pic.bmp", "/scene.bin", "/pic.bmp"},  // nothing shared but the root
        {"/mnt/pic.bmp", "/show/scene.bin", "/mnt/pic.bmp"},
        {"pic.bmp", "scene.bin", "pic.bmp"},
        {"a/pic.bmp", "scene.bin", "a/pic.bmp"},
        {"pic.bmp", "a/scene.bin", "../pic.bmp"},
        {"b/pic.bmp", "a/scene.bin", "../b/pic.bmp"},
        {"../b/pic.bmp", "../a/scene.bin", "../b/pic.bmp"},
        {"b/pic.bmp", "../a/scene.bin", "b/pic.bmp"},  // the way back would be unknown
        {"pic.bmp", "/show/scene.bin", "pic.bmp"},     // relative and absolute
        {"/show/pic.bmp", "scene.bin", "/show/pic.bmp"},
        {"/show/pic.bmp", "", "/show/pic.bmp"},
        {"", "/show/scene.bin", ""},
        {"/show", "/show/scene.bin", "/show"},       // the base's own folder
        {"/show/a/pic.bmp", "/show/a/", "pic.bmp"},  // a folder as base
        {"/w\xC3\xB6rk/a/pic.bmp", "/w\xC3\xB6rk/scene.bin", "a/pic.bmp"},
    };
    for (StRelativeRow const& row : rows) {
        EXPECT_EQ(Relative(row.fullPath, row.basePath), row.expected)
            << row.fullPath << " from " << row.basePath;
    }
    EXPECT_EQ(Relative(nullptr, nullptr), "");
}

struct StAbsoluteRow {
    char const* fullPath;
    char const* relativePath;
    char const* basePath;
    bool found;
    char const* expected;
};

TEST(AbsolutePath, FromTheFolderOfTheBase) {
    StAbsoluteRow const rows[] = {
        {"/old/pic.bmp", "pic.bmp", "/new/scene.bin", true, "/new/pic.bmp"},
        {"/old/pic.bmp", "maps/pic.bmp", "/new/scene.bin", true, "/new/maps/pic.bmp"},
        {"/old/pic.bmp", "../pic.bmp", "/new/a/scene.bin", true, "/new/pic.bmp"},
        {"/old/pic.bmp", "../../b/pic.bmp", "/new/a/d/scene.bin", true, "/new/b/pic.bmp"},
        {"/old/pic.bmp", "../pic.bmp", "/scene.bin", false, "/old/pic.bmp"},  // above the root
        {"/old/pic.bmp", "pic.bmp", "/scene.bin", true, "/pic.bmp"},
        {"/old/pic.bmp", "pic.bmp", "", false, "/old/pic.bmp"},
        {"/old/pic.bmp", "", "/new/scene.bin", false, "/old/pic.bmp"},
        {"/old/pic.bmp", "/other/pic.bmp", "/new/scene.bin", true, "/other/pic.bmp"},
        {"/old/pic.bmp", "/other/pic.bmp", "", true, "/other/pic.bmp"},
        {"pic.bmp", "pic.bmp", "scene.bin", true, "pic.bmp"},
        {"pic.bmp", "../pic.bmp", "a/scene.bin", true, "pic.bmp"},
        {"pic.bmp", "../pic.bmp", "scene.bin", true, "../pic.bmp"},
        {"pic.bmp", "../../pic.bmp", "../scene.bin", true, "../../../pic.bmp"},
        {"pic.bmp", "./a//pic.bmp", "b/scene.bin", true, "b/a/pic.bmp"},
    };
    for (StAbsoluteRow const& row : rows) {
        ScHeapString out("before");
        EXPECT_EQ(SrMakeAbsolutePath(out, row.fullPath, row.relativePath, row.basePath, false), row.found)
            << row.relativePath << " from " << row.basePath;
        EXPECT_STREQ(out.AsCString(), row.expected) << row.relativePath << " from " << row.basePath;
    }
    ScHeapString out("before");
    EXPECT_FALSE(SrMakeAbsolutePath(out, nullptr, nullptr, nullptr, false));
    EXPECT_STREQ(out.AsCString(), "");
}

TEST(AbsolutePath, UndoesARelativeOne) {
    char const* const pairs[][2] = {{"/show/a/pic.bmp", "/show/a/scene.bin"},
                                    {"/show/b/c/pic.bmp", "/show/a/d/scene.bin"},
                                    {"/mnt/pic.bmp", "/show/scene.bin"},
                                    {"b/pic.bmp", "a/scene.bin"},
                                    {"../b/pic.bmp", "../a/scene.bin"}};
    for (auto const& [fullPath, basePath] : pairs) {
        ScHeapString out;
        EXPECT_TRUE(
            SrMakeAbsolutePath(out, "elsewhere", Relative(fullPath, basePath).c_str(), basePath, false));
        EXPECT_STREQ(out.AsCString(), fullPath);
    }
}

TEST(AbsolutePath, FindsAFileThatMovedWithItsFolder) {
    TemporaryFolder const folder;
    WriteWholeFile(folder / "pic.bmp", "");
    ScHeapString out;
    std::string const base = folder / "scene.bin";
    EXPECT_TRUE(SrMakeAbsolutePath(out, "/gone/pic.bmp", "pic.bmp", base.c_str(), true));
    EXPECT_EQ(out.AsCString(), folder / "pic.bmp");
    EXPECT_FALSE(SrMakeAbsolutePath(out, "/gone/other.bmp", "other.bmp", base.c_str(), true));
    EXPECT_STREQ(out.AsCString(), "/gone/other.bmp");
}

TEST(AbsolutePath, ArgumentsMayBeTheResult) {
    ScHeapString path("pic.bmp");
    EXPECT_TRUE(SrMakeAbsolutePath(path, "/old/pic.bmp", path.AsCString(), "/new/scene.bin", false));
    EXPECT_STREQ(path.AsCString(), "/new/pic.bmp");
    SrMakeRelativePath(path.AsCString(), "/new/a/scene.bin", path);
    EXPECT_STREQ(path.AsCString(), "../pic.bmp");
}

// --- path strings

StRef<SmMemoryStream> NewStream(std::string const& bytes) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return stream;
}

TEST(PathString, IsALengthAndItsBytes) {
    auto const stream = NewStream("");
    SrPutPathStringToStream(stream.Get(), "a/\xC3\xA4");
    unsigned char const expected[] = {0, 0, 0, 4, 'a', '/', 0xC3, 0xA4};
    ASSERT_EQ(stream->GetLength(), sizeof expected);
    EXPECT_EQ(std::memcmp(stream->Data(), expected, sizeof expected), 0);
    stream->SetPosition(0);
    ScHeapString path;
    SrGetPathStringFromStream(stream.Get(), path);
    EXPECT_STREQ(path.AsCString(), "a/\xC3\xA4");
}

TEST(PathString, EmptyOnesAndNull) {
    auto const stream = NewStream("");
    SrPutPathStringToStream(stream.Get(), "");
    SrPutPathStringToStream(stream.Get(), nullptr);
    EXPECT_EQ(stream->GetLength(), 8u);
    stream->SetPosition(0);
    ScHeapString path("before");
    SrGetPathStringFromStream(stream.Get(), path);
    EXPECT_STREQ(path.AsCString(), "");
}

TEST(PathString, LongestOneComesBack) {
    auto const stream = NewStream("");
    std::string const longest(65535, 'p');
    SrPutPathStringToStream(stream.Get(), longest.c_str());
    stream->SetPosition(0);
    ScHeapString path;
    SrGetPathStringFromStream(stream.Get(), path);
    EXPECT_EQ(path.AsCString(), longest);
    EXPECT_EQ(CaughtCode([&] { SrPutPathStringToStream(stream.Get(), (longest + "p").c_str()); }), -50);
}

struct StBadPathRow {
    std::string bytes;
    long error;
};

TEST(PathString, LyingLengthsThrow) {
    StBadPathRow const rows[] = {
        {std::string("\0\0\0\4abc", 7), -39},
        {std::string("\0\0\377\377abc", 7), -39},
        {std::string("\0\1\0\0abc", 7), SkBadStreamFormatErrC()},
        {std::string("\377\377\377\377abc", 7), SkBadStreamFormatErrC()},
        {std::string("\200\0\0\0", 4), SkBadStreamFormatErrC()},
        {std::string("\0\0\0", 3), -39},
        {"", -39},
        {std::string("\0\0\0\3a\0b", 7), SkBadStreamFormatErrC()},
    };
    for (StBadPathRow const& row : rows) {
        auto const stream = NewStream(row.bytes);
        ScHeapString path("kept");
        RefusedMemory const refused;  // nothing is asked for
        EXPECT_EQ(CaughtCode([&] { SrGetPathStringFromStream(stream.Get(), path); }), row.error);
        EXPECT_STREQ(path.AsCString(), "kept");
    }
}

TEST(PathString, NothingIsReadForALengthBeyondTheEnd) {
    class Watched : public SmMemoryStream {
      public:
        void* Read(unsigned int size, void* destination) override {
            largest = std::max(largest, size);
            return SmMemoryStream::Read(size, destination);
        }
        unsigned int largest = 0;
    };
    auto const stream = StRef<Watched>::Adopt(new Watched);
    stream->IMemoryStream("\0\0\377\377abc", 7);
    ScHeapString path;
    EXPECT_EQ(CaughtCode([&] { SrGetPathStringFromStream(stream.Get(), path); }), -39);
    EXPECT_EQ(stream->largest, 4u) << "the length alone";
}

TEST(PathString, StreamThatDoesNotKnowItsEnd) {
    class Endless : public SmStream {
      public:
        void* Read(unsigned int size, void* destination) override {
            return std::memset(destination, 0x7F, size);
        }
    };
    auto const stream = StRef<Endless>::Adopt(new Endless);
    ScHeapString path;
    EXPECT_EQ(CaughtCode([&] { SrGetPathStringFromStream(stream.Get(), path); }), SkBadStreamFormatErrC());
}

}  // namespace
