// The records of locations on streams.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "media/media_test_support.h"

namespace {

using namespace media_test;
using namespace std::string_literals;

std::string Big16(unsigned value) {
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
}
std::string Big32(unsigned long value) {
    return Big16(static_cast<unsigned>(value >> 16 & 0xFFFF)) + Big16(static_cast<unsigned>(value & 0xFFFF));
}
/// A path as versions 1 and 2 hold it, and as version 3 does.
std::string OldPath(std::string const& path) {
    return Big16(static_cast<unsigned>(path.size())) + path;
}
std::string NewPath(std::string const& path) {
    return Big32(path.size()) + path;
}

std::unique_ptr<ScMediaLocation> Read(std::string const& bytes) {
    return std::unique_ptr<ScMediaLocation>(SrReadMediaLocationFromStream(MemoryStream(bytes).Get()));
}

/// Runs `action` with a stream on a new file.
template <class Action>
void OnFile(std::string const& path, StFilePermission permission, Action action) {
    auto const location = LocationOf(path);
    SmStream* const stream = location->GetStream(permission, SkNoFileInfo(), kCreateIfMissing);
    ASSERT_NE(stream, nullptr);
    action(stream);
    location->ReleaseStream(stream);
}

TEST(MediaLocationStream, WriteTo_MemoryHasTheFullPathTwice) {
    auto const stream = MemoryStream();
    LocationOf("/shots/a01.pic")->WriteTo(stream.Get());
    EXPECT_EQ(BytesOf(*stream), Big16(3) + "MeFL" + NewPath("/shots/a01.pic") + NewPath("/shots/a01.pic"));
}

TEST(MediaLocationStream, WriteTo_FileHasTheRelativePath) {
    TempFolder const folder;
    OnFile(folder.Path("scene"), kFileWrite,
           [&](SmStream* stream) { LocationOf(folder.Path("maps/a.pic"))->WriteTo(stream); });
    EXPECT_EQ(folder.Read("scene"),
              Big16(3) + "MeFL" + NewPath(folder.Path("maps/a.pic")) + NewPath("maps/a.pic"));
}

TEST(MediaLocationStream, RoundTrip_GivesThePath) {
    TempFolder const folder;
    for (std::string const& path : {folder.Write("a.pic"), folder.Path("missing.pic")}) {
        auto const stream = MemoryStream();
        LocationOf(path)->WriteTo(stream.Get());
        stream->SetPosition(0);
        std::unique_ptr<ScMediaLocation> const location(SrReadMediaLocationFromStream(stream.Get()));
        EXPECT_EQ(location->GetClass(), SrCode("MeFL"));
        EXPECT_EQ(PathOf(*location), path);
        EXPECT_EQ(stream->GetPosition(), stream->GetLength()) << "the whole record is read";
    }
}

TEST(MediaLocationStream, Version1_HasTheFullPathAlone) {
    auto const stream = MemoryStream(Big16(1) + "MeFL" + OldPath("/shots/a.pic") + "next");
    std::unique_ptr<ScMediaLocation> const location(SrReadMediaLocationFromStream(stream.Get()));
    EXPECT_EQ(PathOf(*location), "/shots/a.pic");
    EXPECT_EQ(location->version, 1);
    EXPECT_EQ(stream->GetPosition(), stream->GetLength() - 4);
}

TEST(MediaLocationStream, Version2_HasBothInTheOldForm) {
    auto const stream =
        MemoryStream(Big16(2) + "MeFL" + OldPath("/no such folder/a.pic") + OldPath("a.pic") + "next");
    std::unique_ptr<ScMediaLocation> const location(SrReadMediaLocationFromStream(stream.Get()));
    EXPECT_EQ(PathOf(*location), "/no such folder/a.pic") << "no file behind the stream to look from";
    EXPECT_EQ(stream->GetPosition(), stream->GetLength() - 4);
}

TEST(MediaLocationStream, OtherVersions_ReadLikeTheirNeighbours) {
    // Below 1 like 1, above 3 like 3.
    for (unsigned version : {0x0000U, 0x8000U, 0xFFFFU})
        EXPECT_EQ(PathOf(*Read(Big16(version) + "MeFL" + OldPath("/a/b.pic"))), "/a/b.pic") << version;
    for (unsigned version : {4U, 0x7FFFU}) {
        EXPECT_EQ(PathOf(*Read(Big16(version) + "MeFL" + NewPath("/a/b.pic") + NewPath("b.pic"))), "/a/b.pic")
            << version;
    }
}

TEST(MediaLocationStream, AnAbsoluteRelativePathIsTakenForAMissingFile) {
    TempFolder const folder;
    std::string const there = folder.Write("there.pic");
    auto const location = Read(Big16(3) + "MeFL" + NewPath("/no such folder/a.pic") + NewPath(there));
    EXPECT_EQ(PathOf(*location), there);
}

TEST(MediaLocationStream, AFileThatIsThereIsNotLookedForElsewhere) {
    TempFolder const folder;
    std::string const there = folder.Write("there.pic"), other = folder.Write("other.pic");
    EXPECT_EQ(PathOf(*Read(Big16(3) + "MeFL" + NewPath(there) + NewPath(other))), there);
}

TEST(MediaLocationStream, AReferenceSurvivesAMovedFolder) {
    TempFolder const folder;
    std::filesystem::create_directories(folder.Path("old/maps"));
    folder.Write("old/maps/a.pic", "picture");
    OnFile(folder.Path("old/scene"), kFileWrite,
           [&](SmStream* stream) { LocationOf(folder.Path("old/maps/a.pic"))->WriteTo(stream); });
    std::filesystem::rename(folder.Path("old"), folder.Path("new"));

    std::unique_ptr<ScMediaLocation> location;
    OnFile(folder.Path("new/scene"), kFileRead,
           [&](SmStream* stream) { location.reset(SrReadMediaLocationFromStream(stream)); });
    EXPECT_EQ(PathOf(*location), folder.Path("new/maps/a.pic"));
    StFileInfo info;
    EXPECT_EQ(location->GetFileInfo(info), 1);
}

TEST(MediaLocationStream, AReferenceOfVersion2SurvivesAMovedFolderToo) {
    TempFolder const folder;
    folder.Write("a.pic");
    folder.Write("scene", Big16(2) + "MeFL" + OldPath("/no such folder/a.pic") + OldPath("a.pic"));
    OnFile(folder.Path("scene"), kFileRead, [&](SmStream* stream) {
        std::unique_ptr<ScMediaLocation> const location(SrReadMediaLocationFromStream(stream));
        EXPECT_EQ(PathOf(*location), folder.Path("a.pic"));
    });
}

TEST(MediaLocationStream, Inline_IsTheCommonRecordAlone) {
    auto const stream = MemoryStream();
    ScMediaInline().WriteTo(stream.Get());
    EXPECT_EQ(BytesOf(*stream), Big16(3) + "MeIn");
    stream->Write(4, "next");
    stream->SetPosition(0);
    std::unique_ptr<ScMediaLocation> const location(SrReadMediaLocationFromStream(stream.Get()));
    EXPECT_EQ(location->GetClass(), SrCode("MeIn"));
    EXPECT_EQ(stream->GetPosition(), 6U);
}

TEST(MediaLocationStream, OpenMedia_WritesNothing) {
    auto const stream = MemoryStream();
    ScMediaLocationOpenMedia().WriteTo(stream.Get());
    EXPECT_EQ(stream->GetLength(), 0U);
}

TEST(MediaLocationStream, OpenMedia_ReadGivesAnEmptyStream) {
    auto const location = Read(Big16(3) + "MeSt");
    EXPECT_EQ(location->GetClass(), SrCode("MeSt"));
    EXPECT_NE(location->GetStream(1, SkNoFileInfo(), 1), nullptr);
}

// --- bad records

TEST(MediaLocationStream, UnknownClassIsABadFormat) {
    for (char const* cls : {"MeXX", "meFL", "LFeM", "????"}) {
        EXPECT_EQ(ErrorOf([&] { Read(Big16(3) + cls + NewPath("/a") + NewPath("a")); }),
                  SkBadFileFormatErrC());
    }
    EXPECT_EQ(ErrorOf([] { Read(Big16(3) + Big32(0)); }), SkBadFileFormatErrC());
}

TEST(MediaLocationStream, EveryTruncationThrows) {
    std::string const records[] = {
        Big16(1) + "MeFL" + OldPath("/a/b.pic"),
        Big16(2) + "MeFL" + OldPath("/a/b.pic") + OldPath("b.pic"),
        Big16(3) + "MeFL" + NewPath("/a/b.pic") + NewPath("b.pic"),
        Big16(3) + "MeIn",
        Big16(3) + "MeSt",
    };
    for (std::string const& record : records) {
        for (std::size_t length = 0; length < record.size(); ++length)
            EXPECT_EQ(ErrorOf([&] { Read(record.substr(0, length)); }), -39) << length << " of " << record;
        EXPECT_EQ(ErrorOf([&] { Read(record); }), 0);
    }
}

TEST(MediaLocationStream, LengthsBeyondTheEndThrowBeforeMemoryIsAskedFor) {
    std::string const records[] = {
        Big16(1) + "MeFL" + Big16(0xFFFF) + "/a",
        Big16(2) + "MeFL" + OldPath("/a") + Big16(0xFFFF) + "a",
        Big16(3) + "MeFL" + Big32(0x7FFFFFFF) + "/a",
        Big16(3) + "MeFL" + Big32(0xFFFFFFFF) + "/a",
        Big16(3) + "MeFL" + NewPath("/a") + Big32(0xFFFFFFFF) + "a",
    };
    for (std::string const& record : records) {
        SrSetAllocationGate([](std::size_t size) { return size < 4096; });
        EXPECT_NE(ErrorOf([&] { Read(record); }), 0) << record;
        EXPECT_NE(ErrorOf([&] { Read(record); }), -108) << record;
        SrSetAllocationGate(nullptr);
    }
}

TEST(MediaLocationStream, PathsThatNoFileCanHaveThrow) {
    EXPECT_EQ(ErrorOf([] { Read(Big16(1) + "MeFL" + OldPath("")); }), -50);
    EXPECT_EQ(ErrorOf([] { Read(Big16(3) + "MeFL" + NewPath("") + NewPath("")); }), -50);
    EXPECT_EQ(ErrorOf([] { Read(Big16(1) + "MeFL" + OldPath("/a\0b"s)); }), SkBadStreamFormatErrC());
    EXPECT_EQ(ErrorOf([] { Read(Big16(3) + "MeFL" + NewPath("/a\0b"s) + NewPath("a")); }),
              SkBadStreamFormatErrC());
}

TEST(MediaLocationStream, AFullPathThatIsRefusedThrowsWhateverTheRelativeOne) {
    TempFolder const folder;
    std::string const there = folder.Write("a.pic");
    std::string const tooLong = folder.Path(std::string(300, 'a'));
    EXPECT_EQ(ErrorOf([&] { Read(Big16(3) + "MeFL" + NewPath(tooLong) + NewPath(there)); }), -50);
}

TEST(MediaLocationStream, ALocationThatNamesNothingWritesNothing) {
    ScMediaFileLocation location;
    auto const stream = MemoryStream();
    EXPECT_EQ(ErrorOf([&] { location.WriteTo(stream.Get()); }), -50);
    EXPECT_EQ(ErrorOf([&] { location.SetFullPath(std::string(5000, 'a').c_str()); }), -50);
    EXPECT_EQ(ErrorOf([&] { location.WriteTo(stream.Get()); }), -50);
    EXPECT_EQ(stream->GetLength(), 0u);
}

TEST(MediaLocationStream, AnEmptyRelativePathLeavesTheFullOne) {
    EXPECT_EQ(PathOf(*Read(Big16(3) + "MeFL" + NewPath("/no such/a.pic") + NewPath(""))), "/no such/a.pic");
}

TEST(MediaLocationStream, WhereMemoryIsRefused) {
    std::string const record = Big16(3) + "MeFL" + NewPath("/no such/a.pic") + NewPath("/no such/b.pic");
    auto const stream = MemoryStream(record);
    std::unique_ptr<ScMediaLocation> location;
    EXPECT_GT(RefusedRuns([&] {
                  stream->SetPosition(0);
                  location.reset(SrReadMediaLocationFromStream(stream.Get()));
              }),
              2);
    EXPECT_EQ(PathOf(*location), "/no such/b.pic");
    for (char const* cls : {"MeIn", "MeSt"}) {
        auto const other = MemoryStream(Big16(3) + cls);
        RefusedMemory const refused;
        EXPECT_EQ(ErrorOf([&] { SrReadMediaLocationFromStream(other.Get()); }), -108);
    }
}

}  // namespace
