#include "framewright/thornmere/catalog_stream.h"

#include <cstring>

#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/error.h"

namespace {

constexpr std::uint32_t kSectionMark = SrCode("CtSc");
constexpr std::uint64_t kMarkSize = 4;

struct StSection {
    std::uint32_t type, version, length;
    ScHeapString name;

    bool Matches(unsigned long wantedType, unsigned long wantedVersion, char const* wantedName) const {
        return type == static_cast<std::uint32_t>(wantedType) &&
               version == static_cast<std::uint32_t>(wantedVersion) &&
               (!wantedName || std::strcmp(name.AsCString(), wantedName) == 0);
    }
};

std::uint64_t Remaining(SmStream& stream) {
    std::uint64_t bytes = 0;
    stream.GetRemaining(bytes);
    return bytes;
}

/// Reads a section's header from the position; false where no section begins.
bool ReadHeader(SmStream& stream, StSection& section) {
    if (Remaining(stream) < kMarkSize || stream.GetBigEndian<std::uint32_t>() != kSectionMark) return false;
    section.type = stream.GetBigEndian<std::uint32_t>();
    section.version = stream.GetBigEndian<std::uint32_t>();
    section.length = stream.GetBigEndian<std::uint32_t>();
    SrGetPathStringFromStream(&stream, section.name);
    if (section.length > Remaining(stream)) SrThrow(SkBadStreamFormatErrC(), nullptr);
    return true;
}

}  // namespace

ScCatalogStream::~ScCatalogStream() = default;

bool ScCatalogStream::IsCatalogStream() const {
    if (!mStream) return false;
    unsigned int const position = mStream->GetPosition();
    mStream->SetPosition(0);
    bool const marked =
        Remaining(*mStream) >= kMarkSize && mStream->GetBigEndian<std::uint32_t>() == kSectionMark;
    mStream->SetPosition(position);
    return marked;
}

void ScCatalogWriteStream::ICatalogStream(SmRandomStream* stream) {
    mStream = stream;
    mLengthPosition = 0;
}

bool ScCatalogWriteStream::PrepareStreamForWrite(unsigned long type, unsigned long version,
                                                 char const* name) {
    if (!mStream || mLengthPosition != 0) return false;
    mStream->SetPosition(mStream->GetLength());
    mStream->PutBigEndian(kSectionMark);
    mStream->PutBigEndian(static_cast<std::uint32_t>(type));
    mStream->PutBigEndian(static_cast<std::uint32_t>(version));
    unsigned int const lengthPosition = mStream->GetPosition();
    mStream->PutBigEndian<std::uint32_t>(0);
    SrPutPathStringToStream(mStream, name);
    mBodyPosition = mStream->GetPosition();
    mLengthPosition = lengthPosition;
    return true;
}

void ScCatalogWriteStream::FinishStreamWrite() {
    if (mLengthPosition == 0) return;
    unsigned int const end = mStream->GetLength();
    mStream->SetPosition(mLengthPosition);
    mLengthPosition = 0;
    mStream->PutBigEndian<std::uint32_t>(end - mBodyPosition);
    mStream->SetPosition(end);
}

void ScCatalogReadStream::ICatalogStream(SmStream* stream) {
    mStream = dynamic_cast<SmRandomStream*>(stream);
}

bool ScCatalogReadStream::PrepareStreamForRead(unsigned long type, unsigned long version, char const* name) {
    if (!mStream) return false;
    unsigned int const before = mStream->GetPosition();
    mStream->SetPosition(0);
    for (StSection section; ReadHeader(*mStream, section);) {
        if (section.Matches(type, version, name)) return true;
        mStream->SetPosition(mStream->GetPosition() + section.length);
    }
    mStream->SetPosition(before);
    return false;
}
