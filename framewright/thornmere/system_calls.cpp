#include "framewright/thornmere/system_calls.h"

#include "framewright/thornmere/error.h"

namespace {

struct StSystemErrorRow {
    int systemError;
    long code;
};

constexpr StSystemErrorRow kRows[] = {
    {ENOENT, SkFileMissing()},
    {ENOTDIR, SkFileMissing()},
    {EEXIST, SkDuplicateFileName()},
    {ENOSPC, SkDiskFull()},
    {EDQUOT, SkDiskFull()},
    {EFBIG, SkDiskFull()},
    {EACCES, SkNoPermission()},
    {EPERM, SkNoPermission()},
    {EROFS, SkNoPermission()},
    {EINVAL, SkFileParameter()},
    {ENAMETOOLONG, SkFileParameter()},
    {ELOOP, SkFileParameter()},
    {EILSEQ, SkFileParameter()},
    {ENOMEM, SkMemoryFull()},
};

}  // namespace

long thornmere::CodeOfSystemError(int systemError) {
    for (StSystemErrorRow const& row : kRows) {
        if (row.systemError == systemError) return row.code;
    }
    return SkInputOutput();
}
