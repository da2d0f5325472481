#include "framewright/thornmere/system_calls.h"

#include "thornmere/support.h"

namespace {

TEST(SystemCalls, InterruptedOnesAreTriedAgain) {
    int calls = 0;
    int const result = thornmere::RetryInterrupted([&] {
        errno = EINTR;
        return ++calls < 4 ? -1 : 7;
    });
    EXPECT_EQ(result, 7);
    EXPECT_EQ(calls, 4);
}

TEST(SystemCalls, OtherFailuresAreNot) {
    int calls = 0;
    int const result = thornmere::RetryInterrupted([&] {
        errno = ENOSPC;
        ++calls;
        return -1;
    });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(calls, 1);
}

struct StErrorRow {
    int systemError;
    long code;
};

TEST(SystemCalls, ErrorsHaveCodes) {
    StErrorRow const rows[] = {
        {ENOENT, -43},       {ENOTDIR, -43}, {ENOSPC, -34}, {EDQUOT, -34},  {EFBIG, -34},
        {EACCES, -54},       {EPERM, -54},   {EROFS, -54},  {EEXIST, -48},  {EIO, -36},
        {ENAMETOOLONG, -50}, {EBADF, -36},   {ELOOP, -50},  {ENOMEM, -108}, {0, -36},
    };
    for (StErrorRow const& row : rows) {
        EXPECT_EQ(thornmere::CodeOfSystemError(row.systemError), row.code) << row.systemError;
    }
}

TEST(SystemCalls, FileReferencesAreNeverZero) {
    EXPECT_EQ(thornmere::FileRefOf(0), 1u);
    EXPECT_EQ(thornmere::DescriptorOf(1), 0);
    EXPECT_LT(thornmere::DescriptorOf(0), 0) << "no file";
}

}  // namespace
