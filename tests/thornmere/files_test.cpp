#include "framewright/thornmere/files.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "thornmere/support.h"

namespace {

/// An open file that closes itself.
class OpenFile {
  public:
    OpenFile(std::string const& path, StFilePermission permission) {
        SrFileOpen(StFileSpec(path.c_str()), mRef, permission);
    }
    OpenFile(OpenFile const&) = delete;
    OpenFile& operator=(OpenFile const&) = delete;
    ~OpenFile() { SrFileClose(mRef, false); }
    operator unsigned int() const { return mRef; }

  private:
    unsigned int mRef = 0;
};

long OpenCode(std::string const& path, StFilePermission permission) {
    unsigned int file = 99;
    long const code = CaughtCode([&] { SrFileOpen(StFileSpec(path.c_str()), file, permission); });
    EXPECT_EQ(file == 0, code != SkNothingCaught());
    SrFileClose(file, false);
    return code;
}

TEST(Files, OpenReadsWhatIsThere) {
    TemporaryFolder const folder;
    WriteWholeFile(folder / "a", "abcdef");
    OpenFile const file(folder / "a", kFileRead);
    EXPECT_NE(static_cast<unsigned int>(file), 0u);
    char bytes[10] = {};
    EXPECT_EQ(SrFileRead(file, bytes, 4), 4u);
    EXPECT_STREQ(bytes, "abcd");
    EXPECT_EQ(SrFileGetPos(file), 4u);
    EXPECT_EQ(SrFileRead(file, bytes, 10), 2u) << "fewer at the end";
    EXPECT_STREQ(bytes, "efcd");
    EXPECT_EQ(SrFileRead(file, bytes, 10), 0u);
    SrFileSetPos(file, 1);
    EXPECT_EQ(SrFileRead(file, bytes, 1), 1u);
    EXPECT_EQ(bytes[0], 'b');
    EXPECT_EQ(SrFileGetEOF(file), 6u);
}

TEST(Files, OpenFailuresHaveTheirCodes) {
    TemporaryFolder const folder;
    WriteWholeFile(folder / "a", "abc");
    EXPECT_EQ(OpenCode(folder / "missing", kFileRead), -43);
    EXPECT_EQ(OpenCode(folder / "missing/a", kFileRead), -43);
    EXPECT_EQ(OpenCode(folder / "a/b", kFileRead), -43);
    EXPECT_EQ(OpenCode("", kFileRead), -43);
    EXPECT_EQ(OpenCode(folder.Path(), kFileRead), -36) << "a folder is no file";
    EXPECT_EQ(OpenCode(folder.Path(), kFileReadWrite), -36);
    if (geteuid() != 0) {
        chmod((folder / "a").c_str(), 0400);
        EXPECT_EQ(OpenCode(folder / "a", kFileReadWrite), -54);
        EXPECT_EQ(OpenCode(folder / "a", kFileRead), SkNothingCaught());
    }
}

TEST(Files, OpeningAPipeNeitherWaitsNorSucceeds) {
    TemporaryFolder const folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (StFilePermission permission : {kFileRead, kFileWrite, kFileReadWrite}) {
        EXPECT_EQ(OpenCode(folder / "pipe", permission), -36);
    }
}

TEST(Files, OpenFilesAreNotInherited) {
    TemporaryFolder const folder;
    WriteWholeFile(folder / "a", "abc");
    OpenFile const file(folder / "a", kFileRead);
    EXPECT_NE(fcntl(static_cast<int>(file) - 1, F_GETFD) & FD_CLOEXEC, 0);
}

TEST(Files, PermissionsAreKeptTo) {
    TemporaryFolder const folder;
    WriteWholeFile(folder / "a", "abc");
    char byte = 0;
    {
        OpenFile const file(folder / "a", kFileRead);
        EXPECT_EQ(CaughtCode([&] { SrFileWrite(file, "x", 1); }), -36);
    }
    {
        OpenFile const file(folder / "a", kFileWrite);
        EXPECT_EQ(SrFileWrite(file, "X", 1), 1u);
        EXPECT_EQ(CaughtCode([&] { SrFileRead(file, &byte, 1); }), -36);
    }
    {
        OpenFile const file(folder / "a", kFileReadWrite);
        EXPECT_EQ(SrFileRead(file, &byte, 1), 1u);
        EXPECT_EQ(SrFileWrite(file, "Y", 1), 1u);
    }
    EXPECT_EQ(ReadWholeFile(folder / "a"), "XYc") << "writing over a longer file keeps its tail";
}

TEST(Files, CreateMakesAnEmptyFileOnce) {
    TemporaryFolder const folder;
    StFileSpec const spec((folder / "new").c_str());
    EXPECT_EQ(SrFileCreate(spec, SkNoFileInfo()), 0);
    EXPECT_EQ(ReadWholeFile(folder / "new"), "");
    WriteWholeFile(folder / "new", "kept");
    EXPECT_EQ(SrFileCreate(spec, SkNoFileInfo()), -48);
    EXPECT_EQ(ReadWholeFile(folder / "new"), "kept");
    EXPECT_EQ(SrFileCreate(StFileSpec((folder / "none/new").c_str()), SkNoFileInfo()), -43);
    EXPECT_NE(SrFileCreate(SkInvalidFileSpec(), SkNoFileInfo()), 0);
}

TEST(Files, DeleteRemovesAFile) {
    TemporaryFolder const folder;
    StFileSpec const spec((folder / "a").c_str());
    WriteWholeFile(spec.GetPath(), "abc");
    EXPECT_EQ(SrFileDelete(spec), 0);
    EXPECT_EQ(SrFileDelete(spec), -43);
    EXPECT_NE(SrFileDelete(StFileSpec(folder.Path().c_str())), 0) << "a folder is no file";
}

TEST(Files, CloseOfNothingIsFine) {
    EXPECT_EQ(SrFileClose(0, false), 0);
    EXPECT_EQ(SrFileClose(0, true), 0);
    EXPECT_NE(SrFileClose(0x7FFFFFFF, false), 0) << "no such file";
    EXPECT_NE(SrFileClose(0xFFFFFFFF, false), 0);
    EXPECT_NE(SrFileClose(0x80000000, false), 0);
}

TEST(Files, TransfersOnAClosedReferenceFail) {
    char byte = 0;
    EXPECT_EQ(CaughtCode([&] { SrFileRead(0, &byte, 1); }), -36);
    EXPECT_EQ(CaughtCode([&] { SrFileWrite(0, &byte, 1); }), -36);
    EXPECT_EQ(CaughtCode([&] { SrFileSetPos(0, 1); }), -36);
    EXPECT_EQ(CaughtCode([&] { SrFileGetPos(0); }), -36);
    EXPECT_EQ(CaughtCode([&] { SrFileGetEOF(0); }), -36);
}

TEST(Files, FullDiskIsReported) {
    OpenFile const file("/dev/full", kFileWrite);
    EXPECT_EQ(CaughtCode([&] { SrFileWrite(file, "x", 1); }), -34);
}

TEST(Files, LongFilesAreRefusedClearly) {
    TemporaryFolder const folder;
    WriteWholeFile(folder / "a", "");
    OpenFile const file(folder / "a", kFileReadWrite);
    ASSERT_EQ(truncate((folder / "a").c_str(), 0xFFFFFFFFLL), 0);
    EXPECT_EQ(SrFileGetEOF(file), 0xFFFFFFFFu);
    ASSERT_EQ(truncate((folder / "a").c_str(), 0x100000000LL), 0);
    EXPECT_EQ(CaughtCode([&] { SrFileGetEOF(file); }), SkStreamTooLongErrC());
    SrFileSetPos(file, 0xFFFFFFFF);
    EXPECT_EQ(SrFileGetPos(file), 0xFFFFFFFFu);
    EXPECT_EQ(CaughtCode([&] { SrFileWrite(file, "x", 1); }), SkStreamTooLongErrC());
    SrFileSetPos(file, 0xFFFFFFFE);
    EXPECT_EQ(SrFileWrite(file, "x", 1), 1u) << "the last byte that a position reaches";
    char bytes[2];
    SrFileSetPos(file, 0xFFFFFFFE);
    EXPECT_EQ(SrFileRead(file, bytes, 2), 2u);
    EXPECT_EQ(CaughtCode([&] { SrFileGetPos(file); }), SkStreamTooLongErrC());
}

/// Runs `body` in a child process and gives its exit status; -1 if a signal ended it.
template <class Body>
int InChild(Body body) {
    pid_t const child = fork();
    if (child == 0) _exit(body());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Files, SizeLimitIsAnErrorAndNoSignal) {
    TemporaryFolder const folder;
    std::string const path = folder / "limited";
    WriteWholeFile(path, "");
    int const status = InChild([&] {
        signal(SIGXFSZ, SIG_DFL);  // which would end the process
        rlimit const limit{1000, RLIM_INFINITY};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 10;
        OpenFile const file(path, kFileReadWrite);
        std::string const bytes(600, 'x');
        if (SrFileWrite(file, bytes.data(), 600) != 600) return 11;
        if (CaughtCode([&] { SrFileWrite(file, bytes.data(), 600); }) != -34) return 12;
        if (CaughtCode([&] { SrFileWrite(file, "x", 1); }) != -34) return 13;
        SrFileSetPos(file, 5000);
        if (CaughtCode([&] { SrFileWrite(file, "x", 1); }) != -34) return 14;
        SrFileSetPos(file, 999);
        if (SrFileWrite(file, "y", 1) != 1) return 15;
        return 0;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(ReadWholeFile(path), std::string(999, 'x') + "y") << "what fits has been written";
}

TEST(Files, InterruptedAndPartialTransfersGoOn) {
    // A stream of timer signals, without restarting, during large transfers.
    TemporaryFolder const folder;
    std::string const path = folder / "large";
    WriteWholeFile(path, "");
    struct sigaction quiet = {}, old = {};
    quiet.sa_handler = [](int) {};
    sigaction(SIGALRM, &quiet, &old);
    itimerval const often = {{0, 200}, {0, 200}}, never = {};
    std::string bytes(64 << 20, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 31 >> 3);
    std::string back(bytes.size(), '\0');
    {
        OpenFile const file(path, kFileReadWrite);
        setitimer(ITIMER_REAL, &often, nullptr);
        unsigned int const size = static_cast<unsigned int>(bytes.size());
        EXPECT_EQ(SrFileWrite(file, bytes.data(), size), size);
        SrFileSetPos(file, 0);
        EXPECT_EQ(SrFileRead(file, back.data(), size), size);
        setitimer(ITIMER_REAL, &never, nullptr);
    }
    sigaction(SIGALRM, &old, nullptr);
    EXPECT_TRUE(back == bytes);
}

}  // namespace
