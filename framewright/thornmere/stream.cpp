#include "framewright/thornmere/stream.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

// --- sequential

SM_DEFINE_CLASS(SmStream);
SmStream::~SmStream() = default;

void SmStream::IStream() {}

void SmStream::Free() {
    mStoredVersions = {};
    SmObject::Free();
}

void SmStream::CloneFrom(SmStream const& other) {
    SmObject::CloneFrom(other);
    mStoredVersions = other.mStoredVersions;
}

void* SmStream::Read(unsigned int size, void* destination) {
    if (size > 0) SrThrow(SkEndOfFile(), nullptr);
    return destination;
}

void SmStream::Write(unsigned int, void const*) {}

void SmStream::PutBit(bool bit) {
    PutBigEndian<std::uint8_t>(bit ? 1 : 0);
}
void SmStream::GetBit(bool& bit) {
    bit = GetBigEndian<std::uint8_t>() != 0;
}

bool SmStream::GetFileSpec(StFileSpec&) const {
    return false;
}
bool SmStream::GetRemaining(std::uint64_t&) const {
    return false;
}

int SmStream::StoredClassVersion(ScMC_ const* cls) const {
    for (StStoredVersion const& stored : mStoredVersions) {
        if (stored.cls == cls) return stored.version;
    }
    return cls ? cls->Version() : 0;
}

void SmStream::SetStoredClassVersion(ScMC_ const* cls, int version) {
    for (StStoredVersion& stored : mStoredVersions) {
        if (stored.cls == cls) {
            stored.version = version;
            return;
        }
    }
    mStoredVersions.push_back({cls, version});
}

void* SmStream::BigEndianByteSwap(unsigned int size, void* value) {
    if constexpr (std::endian::native == std::endian::little) {
        auto* const bytes = static_cast<unsigned char*>(value);
        std::reverse(bytes, bytes + size);
    }
    return value;
}

// --- with a position

SM_DEFINE_CLASS(SmRandomStream);
SmRandomStream::~SmRandomStream() = default;

unsigned int SmRandomStream::GetPosition() {
    return 0;
}
void SmRandomStream::SetPosition(unsigned int) {}
unsigned int SmRandomStream::GetLength() {
    return 0;
}

bool SmRandomStream::GetRemaining(std::uint64_t& bytes) const {
    // Asking changes nothing, but a file has to be asked through operations that are not const.
    auto* const stream = const_cast<SmRandomStream*>(this);
    unsigned int const position = stream->GetPosition(), length = stream->GetLength();
    bytes = length > position ? length - position : 0;
    return true;
}

// --- in memory

SM_DEFINE_CLASS(SmMemoryStream);
SmMemoryStream::~SmMemoryStream() = default;

void SmMemoryStream::IMemoryStream() {
    IMemoryStream(nullptr, 0);
}

void SmMemoryStream::IMemoryStream(void const* bytes, unsigned int size) {
    IStream();
    ScVector<unsigned char> copy;
    copy.resize(size);
    if (size > 0) std::memcpy(copy.data(), bytes, size);
    mBytes.swap(copy);
    mPosition = 0;
}

void SmMemoryStream::Free() {
    mBytes = {};
    mPosition = 0;
    SmRandomStream::Free();
}

void SmMemoryStream::CloneFrom(SmMemoryStream const& other) {
    SmRandomStream::CloneFrom(other);
    mBytes = other.mBytes;
    mPosition = other.mPosition;
}

void* SmMemoryStream::Read(unsigned int size, void* destination) {
    unsigned int const length = GetLength();
    unsigned int const start = std::min(mPosition, length);
    unsigned int const count = std::min(size, length - start);
    if (count > 0) std::memcpy(destination, mBytes.data() + start, count);
    if (count < size) {
        mPosition = length;
        SrThrow(SkEndOfFile(), nullptr);
    }
    mPosition += count;
    return destination;
}

void SmMemoryStream::Write(unsigned int size, void const* source) {
    if (size == 0) return;
    if (size > std::numeric_limits<std::uint32_t>::max() - mPosition) {
        SrThrow(SkStreamTooLongErrC(), nullptr);
    }
    std::uint32_t const end = mPosition + size;
    if (end > mBytes.size()) mBytes.resize(end);
    std::memcpy(mBytes.data() + mPosition, source, size);
    mPosition = end;
}

unsigned int SmMemoryStream::GetPosition() {
    return mPosition;
}
void SmMemoryStream::SetPosition(unsigned int position) {
    mPosition = position;
}
unsigned int SmMemoryStream::GetLength() {
    return static_cast<unsigned int>(mBytes.size());
}

// --- on a file

SM_DEFINE_CLASS(SmFileStream);
SmFileStream::~SmFileStream() = default;

void SmFileStream::IFileStream(unsigned int fileRef, StFileSpec const& spec) {
    IStream();
    mSpec = spec;
    mFileRef = fileRef;
}

void SmFileStream::Free() {
    mFileRef = 0;
    mSpec = {};
    SmRandomStream::Free();
}

void SmFileStream::CloneFrom(SmFileStream const& other) {
    SmRandomStream::CloneFrom(other);
    mFileRef = other.mFileRef;
    mSpec = other.mSpec;
}

void* SmFileStream::Read(unsigned int size, void* destination) {
    if (SrFileRead(mFileRef, destination, size) < size) {
        // Nothing was read from behind the end, and the position is still there.
        unsigned int const length = GetLength();
        if (GetPosition() > length) SetPosition(length);
        SrThrow(SkEndOfFile(), nullptr);
    }
    return destination;
}

void SmFileStream::Write(unsigned int size, void const* source) {
    SrFileWrite(mFileRef, source, size);
}

bool SmFileStream::GetFileSpec(StFileSpec& spec) const {
    spec = mSpec;
    return mSpec.IsValid();
}

unsigned int SmFileStream::GetPosition() {
    return SrFileGetPos(mFileRef);
}
void SmFileStream::SetPosition(unsigned int position) {
    SrFileSetPos(mFileRef, position);
}
unsigned int SmFileStream::GetLength() {
    return SrFileGetEOF(mFileRef);
}
