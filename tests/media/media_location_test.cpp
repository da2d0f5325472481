#include "framewright/media/media_location.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "media/media_test_support.h"

namespace {

using namespace media_test;

/// Reads up to `size` bytes through a stream of the location, "(none)" if it gives none.
std::string ReadThrough(ScMediaLocation& location, unsigned size) {
    SmStream* const stream = location.GetStream(1, SkNoFileInfo(), 1);
    if (!stream) return "(none)";
    std::string text(size, '\0');
    stream->Read(size, text.data());
    location.ReleaseStream(stream);
    return text;
}

bool WriteThrough(ScMediaLocation& location, StFilePermission permission, long createMode,
                  std::string const& text) {
    SmStream* const stream = location.GetStream(permission, SkNoFileInfo(), createMode);
    if (!stream) return false;
    stream->Write(static_cast<unsigned>(text.size()), text.data());
    location.ReleaseStream(stream);
    return true;
}

// --- codes

TEST(MediaErrors, TheSixCodesDiffer) {
    long const codes[] = {SkFileNotFound(),     SkMediaManagerMissing(),    SkUnrecognizedMedia(),
                          SkMediaFileIsEmpty(), SkMediaIncapableOfFormat(), SkMediaParsingProblem()};
    for (int i = 0; i < 6; ++i) {
        EXPECT_NE(codes[i], 0);
        for (int k = 0; k < i; ++k)
            EXPECT_NE(codes[i], codes[k]) << i << " and " << k;
    }
}

TEST(MediaErrors, EachTravelsWithItsAlert) {
    struct {
        long code;
        long alert;
    } const rows[] = {
        {SkFileNotFound(), 6},     {SkMediaManagerMissing(), 7},     {SkUnrecognizedMedia(), 8},
        {SkMediaFileIsEmpty(), 9}, {SkMediaIncapableOfFormat(), 10}, {SkMediaParsingProblem(), 0},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(OutcomeOf([&] { media::ThrowMediaError(row.code); }), (Outcome{row.code, row.alert}));
    }
    try {
        media::ThrowMediaError(SkUnrecognizedMedia());
    } catch (std::exception const& exception) {
        EXPECT_STRNE(exception.what(), "");
    }
}

// --- names

TEST(MediaFileLocation, StartsWithoutAName) {
    ScMediaFileLocation location;
    EXPECT_EQ(location.GetClass(), 0x4D65464CU);
    EXPECT_EQ(location.version, 0);
    EXPECT_EQ(PathOf(location), "");
    StFileSpec spec("left from before");
    EXPECT_TRUE(location.GetFileSpec(spec));
    EXPECT_TRUE(spec == SkInvalidFileSpec());
    StFileInfo info;
    EXPECT_EQ(location.GetFileInfo(info), 0);
    EXPECT_EQ(location.GetStream(1, SkNoFileInfo(), 1), nullptr);
    EXPECT_EQ(location.GetSequence(), -1);
    EXPECT_EQ(location.GetOffset(), 0);
    location.SetOffset(17);
    EXPECT_EQ(location.GetOffset(), 0);
}

TEST(MediaFileLocation, SetFullPath_NamesAFileThatNeedNotExist) {
    TempFolder const folder;
    ScMediaFileLocation location;
    for (std::string const& path :
         {folder.Write("a.pic"), folder.Path("missing.pic"), folder.Path("no/such/a.pic")}) {
        EXPECT_TRUE(location.SetFullPath(path.c_str()));
        EXPECT_EQ(PathOf(location), path);
        StFileSpec spec;
        EXPECT_TRUE(location.GetFileSpec(spec));
        EXPECT_STREQ(spec.GetPath(), path.c_str());
    }
}

TEST(MediaFileLocation, SetFullPath_ThrowsWhatNamesNoFile) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.pic"));
    EXPECT_EQ(ErrorOf([&] { location->SetFullPath(""); }), -50);
    EXPECT_EQ(ErrorOf([&] { location->SetFullPath(nullptr); }), -50);
    std::string const tooLong = folder.Path(std::string(300, 'a'));
    EXPECT_EQ(ErrorOf([&] { location->SetFullPath(tooLong.c_str()); }), -50);
    // It does not go on naming the file that it named before.
    EXPECT_EQ(location->GetStream(1, SkNoFileInfo(), 1), nullptr);
    EXPECT_TRUE(location->SetFullPath(folder.Path("a.pic").c_str()));
    EXPECT_EQ(ReadThrough(*location, 1), "x");
}

TEST(MediaFileLocation, SetFileSpec_RebuildsThePath) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Path("a.pic"));
    EXPECT_TRUE(location->SetFileSpec(StFileSpec(folder.Path("b.pic").c_str())));
    EXPECT_EQ(PathOf(*location), folder.Path("b.pic"));
    EXPECT_TRUE(location->SetFileSpec(SkInvalidFileSpec()));
    EXPECT_EQ(PathOf(*location), "");
}

// --- what is known of the file

TEST(MediaFileLocation, GetFileInfo_GivesTheExtension) {
    TempFolder const folder;
    StFileInfo info;
    EXPECT_EQ(LocationOf(folder.Write("a.Pict"))->GetFileInfo(info), 1);
    EXPECT_STREQ(info.typeText, "Pict");
    EXPECT_EQ(LocationOf(folder.Write("plain"))->GetFileInfo(info), 1);
    EXPECT_STREQ(info.typeText, "");
}

TEST(MediaFileLocation, GetFileInfo_RemembersThatThereIsNone) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Path("a.pic"));
    StFileInfo info;
    EXPECT_EQ(location->GetFileInfo(info), 0);
    folder.Write("a.pic");
    EXPECT_EQ(location->GetFileInfo(info), 0) << "a file made afterwards stays unseen";
    location->SetFullPath(folder.Path("a.pic").c_str());
    EXPECT_EQ(location->GetFileInfo(info), 1);
}

TEST(MediaFileLocation, GetFileInfo_SetFileSpecLooksAnew) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Path("a.pic"));
    StFileInfo info;
    EXPECT_EQ(location->GetFileInfo(info), 0);
    location->SetFileSpec(StFileSpec(folder.Write("a.pic").c_str()));
    EXPECT_EQ(location->GetFileInfo(info), 1);
}

TEST(MediaFileLocation, GetFileInfo_RemembersWhatItFound) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.pic"));
    StFileInfo info;
    EXPECT_EQ(location->GetFileInfo(info), 1);
    unlink(folder.Path("a.pic").c_str());
    info = SkNoFileInfo();
    EXPECT_EQ(location->GetFileInfo(info), 1);
    EXPECT_STREQ(info.typeText, "pic");
}

TEST(MediaFileLocation, GetFileInfo_LeavesTheRecordOfAMissingFile) {
    TempFolder const folder;
    StFileInfo info = SkNoFileInfo();
    info.typeText[0] = '!';
    EXPECT_EQ(LocationOf(folder.Path("a.pic"))->GetFileInfo(info), 0);
    EXPECT_EQ(info.typeText[0], '!');
}

// --- streams

TEST(MediaFileLocation, GetStream_ReadsTheFile) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.pic", "hello"));
    SmStream* const stream = location->GetStream(1, SkNoFileInfo(), 1);
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(stream->IsMemberOf(SmFileStream::Class()));
    StFileSpec spec;
    EXPECT_TRUE(stream->GetFileSpec(spec));
    EXPECT_STREQ(spec.GetPath(), folder.Path("a.pic").c_str());
    char text[5];
    stream->Read(5, text);
    EXPECT_EQ(std::string(text, 5), "hello");
    location->ReleaseStream(stream);
}

TEST(MediaFileLocation, GetStream_OfAMissingFileIsNull) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Path("a.pic"));
    EXPECT_EQ(location->GetStream(1, SkNoFileInfo(), 1), nullptr);
    EXPECT_FALSE(folder.Has("a.pic")) << "reading makes no file";
    // The use count is still 0: the next call opens the file that is there now.
    folder.Write("a.pic", "now");
    EXPECT_EQ(ReadThrough(*location, 3), "now");
}

TEST(MediaFileLocation, GetStream_NestsOnOneStream) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.pic", "hello"));
    long const files = OpenFiles();
    SmStream* const first = location->GetStream(1, SkNoFileInfo(), 1);
    SmStream* const second = location->GetStream(3, SkNoFileInfo(), 2);
    EXPECT_EQ(first, second) << "whatever the permission and the mode";
    EXPECT_EQ(folder.Read("a.pic"), "hello");
    EXPECT_EQ(OpenFiles(), files + 1);
    location->ReleaseStream(second);
    EXPECT_EQ(OpenFiles(), files + 1);
    location->ReleaseStream(first);
    EXPECT_EQ(OpenFiles(), files);
}

TEST(MediaFileLocation, GetStream_ToAFolderOrAPipeIsNull) {
    TempFolder const folder;
    EXPECT_EQ(LocationOf(folder.Path())->GetStream(1, SkNoFileInfo(), 1), nullptr);
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(LocationOf(folder.Path("pipe"))->GetStream(1, SkNoFileInfo(), 1), nullptr);
    EXPECT_EQ(LocationOf(folder.Path("no/such/a.pic"))->GetStream(2, SkNoFileInfo(), 1), nullptr);
}

struct CreateCase {
    StFilePermission permission;
    long createMode;
    bool exists;
    char const* result;  ///< the file's bytes after "new" was written, "(none)" where there was no stream
    bool remains;        ///< whether there is a file afterwards
};

TEST(MediaFileLocation, GetStream_CreatesAsTold) {
    CreateCase const cases[] = {
        // permission, mode, exists
        {2, 1, true, "new45", true},                                 // opened as it is
        {3, 1, true, "new45", true},    {2, 1, false, "new", true},  // made when missing
        {3, 1, false, "new", true},     {2, 2, true, "new", true},   // deleted and made
        {3, 2, true, "new", true},      {2, 2, false, "new", true},
        {2, 0, true, "new45", true},  // any other mode only opens
        {2, 3, true, "new45", true},    {2, 0, false, "(none)", false},
        {2, 3, false, "(none)", false}, {1, 1, false, "(none)", false},  // reading makes no file
        {1, 2, false, "(none)", false}, {1, 2, true, "(none)", false},   // but mode 2 has deleted it
    };
    for (CreateCase const& row : cases) {
        TempFolder const folder;
        if (row.exists) folder.Write("a.pic", "12345");
        auto const location = LocationOf(folder.Path("a.pic"));
        bool const written = WriteThrough(*location, row.permission, row.createMode, "new");
        std::string const label = std::to_string(row.permission) + " " + std::to_string(row.createMode) +
                                  (row.exists ? " exists" : " missing");
        EXPECT_EQ(folder.Has("a.pic"), row.remains) << label;
        EXPECT_EQ(written ? folder.Read("a.pic") : "(none)", row.result) << label;
    }
}

TEST(MediaFileLocation, GetStream_WhereMemoryIsRefusedLeavesNothingOpen) {
    TempFolder const folder;
    folder.Write("a.pic", "hello");
    long const files = OpenFiles();
    // An allocation that fails on the way ends in -108 or, inside the opening, in a null stream.
    for (long allowed = 0;; ++allowed) {
        auto const location = LocationOf(folder.Path("a.pic"));
        SmStream* stream = nullptr;
        long code;
        {
            RefusedMemory const refused(allowed);
            code = ErrorOf([&] { stream = location->GetStream(1, SkNoFileInfo(), 1); });
        }
        if (stream) {
            EXPECT_GT(allowed, 0);
            location->ReleaseStream(stream);
            break;
        }
        EXPECT_TRUE(code == 0 || code == -108) << code;
        EXPECT_EQ(OpenFiles(), files) << allowed;
        EXPECT_EQ(ReadThrough(*location, 5), "hello") << "the use count is still 0";
    }
    EXPECT_EQ(OpenFiles(), files);
}

TEST(MediaFileLocation, GetStream_ThrowsWhenThereIsNoMemoryForTheStream) {
    TempFolder const folder;
    folder.Write("a.pic");
    auto const location = LocationOf(folder.Path("a.pic"));
    long const files = OpenFiles();
    StFileSpec spec;
    long forTheSpec = 0;  // allocations that go before the stream's: those of the copied spec
    {
        RefusedMemory const refused(1000);
        location->GetFileSpec(spec);
    }
    bool thrown = false;
    for (; forTheSpec < 4 && !thrown; ++forTheSpec) {
        RefusedMemory const refused(forTheSpec);
        thrown = ErrorOf([&] { location->GetStream(1, SkNoFileInfo(), 1); }) == -108 && forTheSpec > 0;
    }
    EXPECT_TRUE(thrown);
    EXPECT_EQ(OpenFiles(), files);
}

TEST(MediaFileLocation, Destructor_ClosesAnOpenStream) {
    TempFolder const folder;
    folder.Write("a.pic");
    long const files = OpenFiles();
    {
        ScMediaFileLocation location;
        location.SetFullPath(folder.Path("a.pic").c_str());
        EXPECT_NE(location.GetStream(1, SkNoFileInfo(), 1), nullptr);
        EXPECT_NE(location.GetStream(1, SkNoFileInfo(), 1), nullptr);
        EXPECT_EQ(OpenFiles(), files + 1);
    }
    EXPECT_EQ(OpenFiles(), files);
}

TEST(MediaFileLocation, ReleaseStream_OfAnotherStreamForgetsItsOwn) {
    TempFolder const folder;
    folder.Write("a.pic", "hello");
    long const files = OpenFiles();
    {
        auto const location = LocationOf(folder.Path("a.pic"));
        SmStream* const stream = location->GetStream(1, SkNoFileInfo(), 1);
        location->ReleaseStream(nullptr);
        char c = 0;
        stream->Read(1, &c);
        EXPECT_EQ(c, 'h') << "not closed";
        EXPECT_EQ(ReadThrough(*location, 5), "hello") << "the count is 0: a stream of its own";
    }
    EXPECT_EQ(OpenFiles(), files);
}

/// Closes the file behind a location's back, so that closing it properly fails.
void CloseBehindTheBack(std::string const& path) {
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        if (std::filesystem::read_symlink(entry.path(), ignored) != path) continue;
        close(std::stoi(entry.path().filename().string()));
        return;
    }
    FAIL() << path << " is not open";
}

TEST(MediaFileLocation, ReleaseStream_ReportsAWrittenFileThatDoesNotClose) {
    TempFolder const folder;
    std::string const path = std::filesystem::canonical(folder.Write("a.pic", "hello")).string();
    auto const location = LocationOf(path);
    for (StFilePermission const permission : {kFileWrite, kFileReadWrite, kFileRead}) {
        SCOPED_TRACE(int{permission});
        SmStream* const stream = location->GetStream(permission, SkNoFileInfo(), 0);
        ASSERT_TRUE(stream);
        CloseBehindTheBack(path);
        EXPECT_EQ(ErrorOf([&] { location->ReleaseStream(stream); }), permission == kFileRead ? 0 : -36);
        EXPECT_EQ(ReadThrough(*location, 5), "hello") << "released all the same";
    }
}

TEST(MediaFileLocation, Destructor_SwallowsAFileThatDoesNotClose) {
    TempFolder const folder;
    std::string const path = std::filesystem::canonical(folder.Write("a.pic", "hello")).string();
    auto location = LocationOf(path);
    ASSERT_TRUE(location->GetStream(kFileWrite, SkNoFileInfo(), 0));
    CloseBehindTheBack(path);
    location.reset();
}

TEST(MediaFileLocation, ReleaseStream_TooOftenIsCountedBelowZero) {
    TempFolder const folder;
    folder.Write("a.pic", "hello");
    long const files = OpenFiles();
    {
        auto const location = LocationOf(folder.Path("a.pic"));
        location->ReleaseStream(nullptr);
        SmStream* const first = location->GetStream(1, SkNoFileInfo(), 1);
        ASSERT_NE(first, nullptr);
        // With the count at 0 again the next call opens a second stream; the first stays usable.
        SmStream* const second = location->GetStream(1, SkNoFileInfo(), 1);
        ASSERT_NE(second, nullptr);
        EXPECT_NE(first, second);
        char c = 0;
        first->Read(1, &c);
        EXPECT_EQ(c, 'h');
        location->ReleaseStream(second);
    }
    EXPECT_EQ(OpenFiles(), files);
}

TEST(MediaFileLocation, SetStream_DoesNothing) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Path("a.pic"));
    auto const stream = MemoryStream("12345");
    location->SetStream(stream.Get());
    EXPECT_EQ(location->GetStream(1, SkNoFileInfo(), 1), nullptr);
    EXPECT_EQ(stream->ReferenceCount(), 1);
}

// --- clones

TEST(MediaFileLocation, Clone_HasTheName) {
    TempFolder const folder;
    for (std::string const& path : {folder.Write("a.pic"), folder.Path("missing.pic")}) {
        auto const location = LocationOf(path);
        location->version = 2;
        std::unique_ptr<ScMediaLocation> const copy(location->Clone());
        EXPECT_EQ(copy->GetClass(), location->GetClass());
        EXPECT_EQ(PathOf(*copy), path);
        EXPECT_EQ(copy->version, 0);
        StFileSpec spec;
        EXPECT_TRUE(copy->GetFileSpec(spec));
        EXPECT_STREQ(spec.GetPath(), path.c_str());
    }
}

TEST(MediaFileLocation, Clone_LooksForTheFileItself) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Path("a.pic"));
    StFileInfo info;
    EXPECT_EQ(location->GetFileInfo(info), 0);
    folder.Write("a.pic");
    std::unique_ptr<ScMediaLocation> const copy(location->Clone());
    EXPECT_EQ(copy->GetFileInfo(info), 1);
}

TEST(MediaFileLocation, Clone_IsClosedAndTheSourceForgetsItsStream) {
    TempFolder const folder;
    folder.Write("a.pic", "hello");
    long const files = OpenFiles();
    {
        auto const location = LocationOf(folder.Path("a.pic"));
        SmStream* const stream = location->GetStream(1, SkNoFileInfo(), 1);
        std::unique_ptr<ScMediaLocation> const copy(location->Clone());
        EXPECT_EQ(OpenFiles(), files + 1) << "the clone is closed, the stream is not";
        char c = 0;
        stream->Read(1, &c);
        EXPECT_EQ(c, 'h');
        // The use count has stayed at 1.
        EXPECT_EQ(location->GetStream(1, SkNoFileInfo(), 1), nullptr);
        location->ReleaseStream(nullptr);
        location->ReleaseStream(stream);
        EXPECT_EQ(ReadThrough(*location, 5), "hello");
        EXPECT_EQ(ReadThrough(*copy, 5), "hello");
    }
    EXPECT_EQ(OpenFiles(), files) << "a forgotten stream goes with the location";
}

TEST(MediaFileLocation, Clone_WhoHasTheForgottenStreamMayDropIt) {
    TempFolder const folder;
    folder.Write("a.pic");
    long const files = OpenFiles();
    {
        auto const location = LocationOf(folder.Path("a.pic"));
        SmStream* const stream = location->GetStream(1, SkNoFileInfo(), 1);
        std::unique_ptr<ScMediaLocation> const copy(location->Clone());
        stream->ReleaseReference();
    }
    EXPECT_EQ(OpenFiles(), files);
}

TEST(MediaFileLocation, Clone_AgainAndAgainDoesNotPileUpFiles) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.pic"));
    long const files = OpenFiles();
    for (int i = 0; i < 100; ++i) {
        SmStream* const stream = location->GetStream(1, SkNoFileInfo(), 1);
        std::unique_ptr<ScMediaLocation> const copy(location->Clone());
        location->ReleaseStream(stream);
    }
    EXPECT_LE(OpenFiles(), files + 1);
}

TEST(MediaFileLocation, Clone_WhereMemoryIsRefusedKeepsTheStream) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.pic", "hello"));
    SmStream* const stream = location->GetStream(1, SkNoFileInfo(), 1);
    {
        RefusedMemory const refused;
        EXPECT_EQ(ErrorOf([&] { location->Clone(); }), -108);
    }
    EXPECT_EQ(location->GetStream(1, SkNoFileInfo(), 1), stream);
    std::unique_ptr<ScMediaLocation> copy;
    EXPECT_GT(RefusedRuns([&] { copy.reset(location->Clone()); }), 1);
    EXPECT_EQ(PathOf(*copy), folder.Path("a.pic"));
}

// --- sequence numbers

TEST(MediaFileLocation, Sequence_IsTheNumberOfTheName) {
    TempFolder const folder;
    EXPECT_EQ(LocationOf(folder.Path("x07.pic"))->GetSequence(), 7);
    EXPECT_EQ(LocationOf(folder.Path("x7.pic"))->GetSequence(), -1);
    EXPECT_EQ(LocationOf(folder.Path("x.pic"))->GetSequence(), -1);
    EXPECT_EQ(LocationOf(folder.Path("ab12cd34"))->GetSequence(), 1234);
    EXPECT_EQ(LocationOf(folder.Path("x4294967290"))->GetSequence(), -6) << "wraps in 32 bits";
}

TEST(MediaFileLocation, Sequence_SetRenames) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Path("x07.pic"));
    EXPECT_TRUE(location->SetSequence(8));
    EXPECT_EQ(PathOf(*location), folder.Path("x08.pic"));
    EXPECT_TRUE(location->SetSequence(123));
    EXPECT_EQ(PathOf(*location), folder.Path("x230123.pic"));
    auto const plain = LocationOf(folder.Path("a.pic"));
    EXPECT_TRUE(plain->SetSequence(12));
    EXPECT_EQ(PathOf(*plain), folder.Path("a0012.pic"));
}

TEST(MediaFileLocation, Sequence_SetLooksForTheNewFile) {
    TempFolder const folder;
    folder.Write("x08.pic", "eight");
    auto const location = LocationOf(folder.Path("x07.pic"));
    StFileInfo info;
    EXPECT_EQ(location->GetFileInfo(info), 0);
    EXPECT_TRUE(location->SetSequence(8));
    EXPECT_EQ(location->GetFileInfo(info), 1);
    EXPECT_EQ(ReadThrough(*location, 5), "eight");
}

TEST(MediaFileLocation, Sequence_BelowZeroIsRefused) {
    TempFolder const folder;
    for (char const* name : {"x07.pic", "a.pic"}) {
        auto const location = LocationOf(folder.Path(name));
        EXPECT_FALSE(location->SetSequence(-1));
        EXPECT_EQ(PathOf(*location), folder.Path(name));
    }
}

/// A location whose path cannot be had, and that counts who asks it.
class Pathless : public ScMediaFileLocation {
  public:
    bool GetFullPath(ScSx&) override { return false; }
    bool SetFullPath(char const*) override {
        ++sets;
        return true;
    }
    int sets = 0;
};

TEST(MediaFileLocation, Sequence_WithoutAPathFails) {
    Pathless location;
    EXPECT_EQ(location.GetSequence(), -1);
    EXPECT_FALSE(location.SetSequence(3));
    EXPECT_EQ(location.sets, 0);
}

// --- the other kinds

TEST(MediaInline, EveryOperationOnAFileFails) {
    ScMediaInline location;
    EXPECT_EQ(location.GetClass(), 0x4D65496EU);
    ScHeapString path("left");
    EXPECT_FALSE(location.SetFullPath("/a.pic"));
    EXPECT_FALSE(location.GetFullPath(path));
    EXPECT_STREQ(path.AsCString(), "left");
    StFileSpec spec;
    EXPECT_FALSE(location.GetFileSpec(spec));
    EXPECT_FALSE(location.SetFileSpec(spec));
    StFileInfo info;
    EXPECT_EQ(location.GetFileInfo(info), 0);
    EXPECT_EQ(location.GetStream(1, SkNoFileInfo(), 1), nullptr);
    location.SetStream(MemoryStream().Get());
    EXPECT_EQ(location.GetStream(1, SkNoFileInfo(), 1), nullptr);
    location.ReleaseStream(nullptr);
    EXPECT_EQ(location.GetSequence(), 0);
    EXPECT_FALSE(location.SetSequence(2));
    EXPECT_EQ(location.GetOffset(), 0);
    std::unique_ptr<ScMediaLocation> const copy(location.Clone());
    EXPECT_EQ(copy->GetClass(), 0x4D65496EU);
}

TEST(MediaLocationOpenMedia, GivesItsStream) {
    auto const stream = MemoryStream("12345");
    ScMediaLocationOpenMedia location;
    EXPECT_EQ(location.GetClass(), 0x4D655374U);
    EXPECT_EQ(location.GetStream(1, SkNoFileInfo(), 1), nullptr);
    location.SetStream(stream.Get());
    EXPECT_EQ(location.GetStream(3, SkNoFileInfo(), 2), stream.Get());
    location.ReleaseStream(stream.Get());
    EXPECT_EQ(location.GetStream(1, SkNoFileInfo(), 1), stream.Get());
    EXPECT_EQ(stream->ReferenceCount(), 1) << "a plain pointer";
}

TEST(MediaLocationOpenMedia, OperationsOnAFileFail) {
    ScMediaLocationOpenMedia location;
    ScHeapString path;
    EXPECT_FALSE(location.SetFullPath("/a.pic"));
    EXPECT_FALSE(location.GetFullPath(path));
    StFileSpec spec("/left/from/before");
    EXPECT_FALSE(location.GetFileSpec(spec));
    EXPECT_TRUE(spec == SkInvalidFileSpec());
    EXPECT_FALSE(location.SetFileSpec(StFileSpec("/a.pic")));
    StFileInfo info;
    EXPECT_EQ(location.GetFileInfo(info), 0);
    EXPECT_EQ(location.GetSequence(), 0);
    EXPECT_FALSE(location.SetSequence(2));
    location.SetOffset(3);
    EXPECT_EQ(location.GetOffset(), 0);
}

TEST(MediaLocationOpenMedia, Clone_NamesTheSameStream) {
    auto const stream = MemoryStream("12345");
    ScMediaLocationOpenMedia location;
    location.SetStream(stream.Get());
    std::unique_ptr<ScMediaLocation> const copy(location.Clone());
    EXPECT_EQ(copy->GetClass(), 0x4D655374U);
    EXPECT_EQ(copy->GetStream(1, SkNoFileInfo(), 1), stream.Get());
    EXPECT_EQ(location.GetStream(1, SkNoFileInfo(), 1), stream.Get());
}

TEST(MediaLocationOpenMedia, ReadFrom_MakesAStreamOfItsOwn) {
    auto const source = MemoryStream();
    std::unique_ptr<ScMediaLocation> copy;
    {
        ScMediaLocationOpenMedia location;
        location.ReadFrom(source.Get());
        SmStream* const stream = location.GetStream(1, SkNoFileInfo(), 1);
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(stream->GetClass(), SmStream::Class());
        copy.reset(location.Clone());
        EXPECT_EQ(copy->GetStream(1, SkNoFileInfo(), 1), stream);
        // Another stream takes its place; its own is still its to free.
        location.SetStream(source.Get());
        EXPECT_EQ(location.GetStream(1, SkNoFileInfo(), 1), source.Get());
        location.ReadFrom(source.Get());
        EXPECT_NE(location.GetStream(1, SkNoFileInfo(), 1), source.Get());
    }
    // The clone's stream outlives the location that made it.
    char c;
    EXPECT_EQ(ErrorOf([&] { copy->GetStream(1, SkNoFileInfo(), 1)->Read(1, &c); }), -39);
    RefusedMemory const refused;
    EXPECT_EQ(ErrorOf([&] { copy->ReadFrom(source.Get()); }), -108);
}

// --- from system values

TEST(MediaLocation, MediaIDFromInfo_NamesAFileOfTheCurrentFolder) {
    TempFolder const folder;
    folder.Write("a.pic", "here");
    std::string const before = std::filesystem::current_path().string();
    std::filesystem::current_path(folder.Path());
    std::unique_ptr<ScMediaLocation> const location(
        SrMediaIDFromInfo(-3, 4711, reinterpret_cast<unsigned char const*>("\005a.picTHE REST")));
    EXPECT_EQ(std::filesystem::path(PathOf(*location)).filename(), "a.pic");
    EXPECT_EQ(ReadThrough(*location, 4), "here");
    std::filesystem::current_path(before);
}

TEST(MediaLocation, MediaIDFromInfo_WithoutANameThrows) {
    EXPECT_EQ(ErrorOf([] { SrMediaIDFromInfo(0, 0, reinterpret_cast<unsigned char const*>("")); }), -50);
    EXPECT_EQ(ErrorOf([] { SrMediaIDFromInfo(0, 0, nullptr); }), -50);
}

}  // namespace
