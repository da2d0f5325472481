// Transfer of bytes between files and memory.
#include "framewright/thornmere/files.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/system_calls.h"

using thornmere::CodeOfSystemError;
using thornmere::DescriptorOf;
using thornmere::RetryInterrupted;

namespace {

constexpr std::uint64_t kLongest = std::numeric_limits<std::uint32_t>::max();

/// A failure to transfer: out of room, or else of the input and output.
[[noreturn]] void ThrowTransferError(int systemError) {
    long const code = CodeOfSystemError(systemError);
    SrThrow(code == SkDiskFull() ? code : SkInputOutput(), nullptr);
}

std::uint64_t PositionOf(int descriptor) {
    off_t const position = lseek(descriptor, 0, SEEK_CUR);
    if (position < 0) ThrowTransferError(errno);
    return std::uint64_t(position);
}

unsigned int In32Bits(std::uint64_t value) {
    if (value > kLongest) SrThrow(SkStreamTooLongErrC(), nullptr);
    return static_cast<unsigned int>(value);
}

/// The bytes that the process's limit on file sizes leaves at `position`. A write that passes the limit would
/// be answered by a signal that ends the process by default.
std::uint64_t RoomBelowSizeLimit(std::uint64_t position) {
    rlimit limit;
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return std::numeric_limits<std::uint64_t>::max();
    }
    return limit.rlim_cur > position ? limit.rlim_cur - position : 0;
}

bool HasLengthAndPosition(int descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0) return false;
    return !S_ISDIR(status.st_mode) && !S_ISFIFO(status.st_mode) && !S_ISSOCK(status.st_mode);
}

}  // namespace

void SrFileOpen(StFileSpec const& spec, unsigned int& fileRef, StFilePermission permission) {
    fileRef = 0;
    int const access = permission == kFileRead ? O_RDONLY : permission == kFileWrite ? O_WRONLY : O_RDWR;
    // Without blocking: a pipe of that name would hold the caller up until somebody opens its other end.
    int const flags = access | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    int const descriptor = RetryInterrupted([&] { return open(spec.GetPath(), flags); });
    if (descriptor < 0) SrThrow(CodeOfSystemError(errno), nullptr);
    if (!HasLengthAndPosition(descriptor)) {
        close(descriptor);
        SrThrow(SkInputOutput(), nullptr);
    }
    fileRef = thornmere::FileRefOf(descriptor);
}

long SrFileClose(unsigned int fileRef, bool) {
    if (fileRef == 0) return SkNoError();
    // An interrupted close has closed: trying again could close what another thread has just opened.
    if (close(DescriptorOf(fileRef)) == 0 || errno == EINTR) return SkNoError();
    return CodeOfSystemError(errno);
}

static long CreateFile(StFileSpec const& spec, mode_t mode) {
    int const flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    int const descriptor = RetryInterrupted([&] { return open(spec.GetPath(), flags, mode); });
    if (descriptor < 0) return CodeOfSystemError(errno);
    close(descriptor);
    return SkNoError();
}

long SrFileCreate(StFileSpec const& spec, StFileInfo const&) {
    return CreateFile(spec, 0666);
}

long SrFileCreatePrivate(StFileSpec const& spec) {
    return CreateFile(spec, 0600);
}

long SrFileDelete(StFileSpec const& spec) {
    return unlink(spec.GetPath()) == 0 ? SkNoError() : CodeOfSystemError(errno);
}

unsigned int SrFileRead(unsigned int fileRef, void* destination, unsigned int size) {
    int const descriptor = DescriptorOf(fileRef);
    auto* const bytes = static_cast<unsigned char*>(destination);
    unsigned int done = 0;
    while (done < size) {
        ssize_t const count = RetryInterrupted([&] { return read(descriptor, bytes + done, size - done); });
        if (count < 0) SrThrow(SkInputOutput(), nullptr);
        if (count == 0) break;
        done += static_cast<unsigned int>(count);
    }
    return done;
}

unsigned int SrFileWrite(unsigned int fileRef, void const* source, unsigned int size) {
    int const descriptor = DescriptorOf(fileRef);
    auto const* const bytes = static_cast<unsigned char const*>(source);
    std::uint64_t const position = PositionOf(descriptor);
    if (position + size > kLongest) SrThrow(SkStreamTooLongErrC(), nullptr);
    std::uint64_t const room = RoomBelowSizeLimit(position);
    unsigned int const part = static_cast<unsigned int>(std::min<std::uint64_t>(size, room));
    for (unsigned int done = 0; done < part;) {
        ssize_t const count = RetryInterrupted([&] { return write(descriptor, bytes + done, part - done); });
        if (count < 0) ThrowTransferError(errno);
        if (count == 0) SrThrow(SkInputOutput(), nullptr);  // no progress and no reason: do not try for ever
        done += static_cast<unsigned int>(count);
    }
    if (part < size) SrThrow(SkDiskFull(), nullptr);
    return size;
}

void SrFileSetPos(unsigned int fileRef, unsigned int position) {
    if (lseek(DescriptorOf(fileRef), off_t(position), SEEK_SET) < 0) SrThrow(SkInputOutput(), nullptr);
}

unsigned int SrFileGetPos(unsigned int fileRef) {
    return In32Bits(PositionOf(DescriptorOf(fileRef)));
}

unsigned int SrFileGetEOF(unsigned int fileRef) {
    struct stat status;
    if (fstat(DescriptorOf(fileRef), &status) != 0) SrThrow(SkInputOutput(), nullptr);
    return In32Bits(std::uint64_t(status.st_size));
}
