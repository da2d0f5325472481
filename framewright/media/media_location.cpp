#include "framewright/media/media_location.h"

#include <memory>
#include <string>
#include <utility>

#include "framewright/core/startup.h"
#include "framewright/media/sequence_number.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/stream.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStringUtils);
SR_DEPENDS_ON(SrInitStorageManager);

namespace {

// The codes of media_errors.h, in its order.
long const gErrors[] = {SrAllocateError(nullptr), SrAllocateError(nullptr), SrAllocateError(nullptr),
                        SrAllocateError(nullptr), SrAllocateError(nullptr), SrAllocateError(nullptr)};
// Where the texts of all but the last stand in the list of alerts.
constexpr long kFirstAlert = 6;
constexpr long kAlerts = 5;

constexpr unsigned long kFileClass = SrCode("MeFL");
constexpr unsigned long kInlineClass = SrCode("MeIn");
constexpr unsigned long kOpenMediaClass = SrCode("MeSt");
constexpr std::int16_t kRecordVersion = 3;

bool IsWriting(StFilePermission permission) {
    return permission == kFileWrite || permission == kFileReadWrite;
}

/// A path of a record of `version`: before version 3 with a length of 16 bits.
ScHeapString ReadPath(SmStream* stream, int version) {
    ScHeapString path;
    if (version >= kRecordVersion) {
        SrGetPathStringFromStream(stream, path);
        return path;
    }
    auto const length = stream->GetBigEndian<std::uint16_t>();
    std::uint64_t remaining = 0;
    if (stream->GetRemaining(remaining) && remaining < length) SrThrow(SkEndOfFile(), nullptr);
    std::string text(length, '\0');
    stream->Read(length, text.data());
    if (text.find('\0') != std::string::npos) SrThrow(SkBadStreamFormatErrC(), nullptr);
    path.Assign(text.c_str());
    return path;
}

/// The path of the file behind a stream; false where there is none.
bool GetStreamPath(SmStream* stream, ScSx& path) {
    StFileSpec spec;
    return stream->GetFileSpec(spec) && SrFullPathFromFileSpec(spec, path) == SkNoError();
}

ScMediaLocation* NewLocation(unsigned long cls) {
    switch (cls) {
        case kFileClass:
            return new ScMediaFileLocation;
        case kInlineClass:
            return new ScMediaInline;
        case kOpenMediaClass:
            return new ScMediaLocationOpenMedia;
        default:
            SrThrow(SkBadFileFormatErrC(), SkBadFileFormatMsgC());
    }
}

}  // namespace

// --- errors

long SkFileNotFound() {
    return gErrors[0];
}
long SkMediaManagerMissing() {
    return gErrors[1];
}
long SkUnrecognizedMedia() {
    return gErrors[2];
}
long SkMediaFileIsEmpty() {
    return gErrors[3];
}
long SkMediaIncapableOfFormat() {
    return gErrors[4];
}
long SkMediaParsingProblem() {
    return gErrors[5];
}

void media::ThrowMediaError(long code) {
    for (long i = 0; i < kAlerts; ++i) {
        if (gErrors[i] != code) continue;
        ScMessageBuzzStrings message(SkAlertStrings(), kFirstAlert + i, 1, 1, SkSimpleAlert());
        SrThrow(code, &message);
    }
    SrThrow(code, nullptr);
}

// --- the base

ScMediaLocation::~ScMediaLocation() = default;

bool ScMediaLocation::SetFullPath(char const*) {
    return false;
}
bool ScMediaLocation::GetFullPath(ScSx&) {
    return false;
}
bool ScMediaLocation::GetFileSpec(StFileSpec&) {
    return false;
}
bool ScMediaLocation::SetFileSpec(StFileSpec const&) {
    return false;
}
StSearchResult ScMediaLocation::GetFileInfo(StFileInfo&) {
    return kSearchNotFound;
}
SmStream* ScMediaLocation::GetStream(StFilePermission, StFileInfo const&, long) {
    return nullptr;
}
void ScMediaLocation::ReleaseStream(SmStream*) {}
void ScMediaLocation::SetStream(SmStream*) {}
long ScMediaLocation::GetSequence() {
    return 0;
}
bool ScMediaLocation::SetSequence(long) {
    return false;
}
long ScMediaLocation::GetOffset() {
    return 0;
}
void ScMediaLocation::SetOffset(long) {}

void ScMediaLocation::WriteTo(SmStream* stream) {
    stream->PutBigEndian<std::int16_t>(kRecordVersion);
    stream->PutBigEndian(static_cast<std::uint32_t>(GetClass()));
}

void ScMediaLocation::ReadFrom(SmStream*) {}

void* ScMediaLocation::operator new(std::size_t size) {
    void* const place = SrAllocatePointer(size);
    SrThrowIfNIL(place);
    return place;
}
void ScMediaLocation::operator delete(void* location, std::size_t size) {
    SrDeallocatePointer(location, size);
}

// --- a file: names

ScMediaFileLocation::~ScMediaFileLocation() {
    ForgetStream();
    CloseForgotten();
}

unsigned long ScMediaFileLocation::GetClass() {
    return kFileClass;
}

ScMediaLocation* ScMediaFileLocation::Clone() const {
    auto copy = std::make_unique<ScMediaFileLocation>();
    copy->mFileSpec = mFileSpec;
    copy->mFullPath = mFullPath;
    copy->mFullPathValid = mFullPathValid;
    ForgetStream();
    return copy.release();
}

bool ScMediaFileLocation::SetFullPath(char const* path) {
    mSearchResult = kSearchNotDone;
    mFullPath.Assign(path);
    mFullPathValid = true;
    mFileSpec = SkInvalidFileSpec();
    long const result = SrFileSpecFromFullPath(mFullPath.AsCString(), mFileSpec);
    if (result != SkNoError() && result != SkFileMissing()) SrThrow(result, nullptr);
    return true;
}

bool ScMediaFileLocation::GetFullPath(ScSx& path) {
    if (!mFullPathValid) {
        if (SrFullPathFromFileSpec(mFileSpec, mFullPath) != SkNoError()) mFullPath.Assign("");
        mFullPathValid = true;
    }
    path.Assign(mFullPath.AsCString());
    return true;
}

bool ScMediaFileLocation::GetFileSpec(StFileSpec& spec) {
    spec = mFileSpec;
    return true;
}

bool ScMediaFileLocation::SetFileSpec(StFileSpec const& spec) {
    mSearchResult = kSearchNotDone;
    mFileSpec = spec;
    mFullPathValid = false;
    return true;
}

StSearchResult ScMediaFileLocation::GetFileInfo(StFileInfo& info) {
    if (mSearchResult == kSearchNotDone) {
        mSearchResult = SrGetFileInfo(mFileSpec, mFileInfo) == SkNoError() ? kSearchFound : kSearchNotFound;
    }
    if (mSearchResult == kSearchFound) info = mFileInfo;
    return mSearchResult;
}

long ScMediaFileLocation::GetSequence() {
    ScHeapString path;
    if (!GetFullPath(path)) return -1;
    media::StSequenceNumber const number = media::FindSequenceNumber(path.AsCString());
    return number.first == number.last ? -1 : number.value;
}

bool ScMediaFileLocation::SetSequence(long number) {
    ScHeapString path;
    if (number < 0 || !GetFullPath(path)) return false;
    return SetFullPath(media::WithSequenceNumber(path.AsCString(), number).c_str());
}

// --- a file: its stream

SmStream* ScMediaFileLocation::GetStream(StFilePermission permission, StFileInfo const& info,
                                         long createMode) {
    if (mStreamUseCount > 0) {
        ++mStreamUseCount;
        return mStream;
    }
    StFileSpec spec;
    GetFileSpec(spec);
    ForgetStream();  // one that more releases than uses left open
    if (createMode == kDeleteAndCreate) {
        SrFileDelete(spec);
    } else {
        OpenFile(spec, permission);
    }
    bool const creates = createMode == kCreateIfMissing || createMode == kDeleteAndCreate;
    if (!mFileRef && creates && IsWriting(permission) && SrFileCreate(spec, info) == SkNoError()) {
        OpenFile(spec, permission);
    }
    if (!mFileRef) return nullptr;
    mPermission = permission;
    mStream = NewStream(spec);
    if (mStream) ++mStreamUseCount;
    return mStream;
}

/// Leaves mFileRef 0 when the file cannot be opened.
void ScMediaFileLocation::OpenFile(StFileSpec const& spec, StFilePermission permission) {
    try {
        SrFileOpen(spec, mFileRef, permission);
    } catch (...) {
        mFileRef = 0;
    }
}

/// A stream on mFileRef, which is closed if there can be none: null, or -108 for want of memory.
SmStream* ScMediaFileLocation::NewStream(StFileSpec const& spec) {
    auto stream = StRef<SmFileStream>::Adopt(SmFileStream::New());
    bool const refused = !stream;
    try {
        if (stream) stream->IFileStream(mFileRef, spec);
    } catch (...) {
        stream = nullptr;
    }
    if (!stream) SrFileClose(std::exchange(mFileRef, 0), IsWriting(mPermission));
    if (refused) SrThrow(SkMemoryFull(), nullptr);
    return stream.Release();
}

void ScMediaFileLocation::ReleaseStream(SmStream* stream) {
    if (mStreamUseCount-- != 1) return;
    if (stream != mStream || !mFileRef) {
        ForgetStream();
        return;
    }
    std::exchange(mStream, nullptr)->ReleaseReference();
    long const result = SrFileClose(std::exchange(mFileRef, 0), IsWriting(mPermission));
    if (result != SkNoError() && IsWriting(mPermission)) SrThrow(result, nullptr);
}

/// Parts with the open stream without closing it: somebody may still have it.
void ScMediaFileLocation::ForgetStream() const {
    if (!mStream) return;
    CloseForgotten();
    mForgotten = {mStream, mFileRef, mPermission};
    mStream->AddReference();  // whoever has the stream may take the location's reference for his own
    mStream = nullptr;
    mFileRef = 0;
}

void ScMediaFileLocation::CloseForgotten() const {
    StOpenStream const open = std::exchange(mForgotten, {});
    if (!open.stream) return;
    if (open.stream->ReferenceCount() > 1) open.stream->ReleaseReference();
    open.stream->ReleaseReference();
    SrFileClose(open.fileRef, IsWriting(open.permission));
}

// --- a file: its record

void ScMediaFileLocation::WriteTo(SmStream* stream) {
    if (!mFileSpec.IsValid()) SrThrow(SkFileParameter(), nullptr);
    ScMediaLocation::WriteTo(stream);
    ScHeapString path, relativePath, streamPath;
    GetFullPath(path);
    if (GetStreamPath(stream, streamPath)) {
        SrMakeRelativePath(path.AsCString(), streamPath.AsCString(), relativePath);
    } else {
        relativePath = path;
    }
    SrPutPathStringToStream(stream, path.AsCString());
    SrPutPathStringToStream(stream, relativePath.AsCString());
}

void ScMediaFileLocation::ReadFrom(SmStream* stream) {
    ScHeapString const path = ReadPath(stream, version);
    SetFullPath(path.AsCString());
    if (version <= 1) return;
    ScHeapString const relativePath = ReadPath(stream, version);
    StFileSpec spec;
    if (SrFileSpecFromFullPath(path.AsCString(), spec) == SkNoError()) return;
    ScHeapString streamPath, found;
    if (!GetStreamPath(stream, streamPath)) streamPath.Assign("");
    if (SrMakeAbsolutePath(found, path.AsCString(), relativePath.AsCString(), streamPath.AsCString(),
                           false)) {
        SetFullPath(found.AsCString());
    }
}

// --- in the stream that holds the reference

ScMediaInline::~ScMediaInline() = default;

unsigned long ScMediaInline::GetClass() {
    return kInlineClass;
}
ScMediaLocation* ScMediaInline::Clone() const {
    return new ScMediaInline;
}

// --- an open stream

ScMediaLocationOpenMedia::ScMediaLocationOpenMedia() = default;
ScMediaLocationOpenMedia::~ScMediaLocationOpenMedia() = default;

unsigned long ScMediaLocationOpenMedia::GetClass() {
    return kOpenMediaClass;
}

ScMediaLocation* ScMediaLocationOpenMedia::Clone() const {
    auto copy = std::make_unique<ScMediaLocationOpenMedia>();
    // Asking is what a derived location may change, and it changes nothing at this level.
    copy->SetStream(
        const_cast<ScMediaLocationOpenMedia*>(this)->GetStream(kFileRead, SkNoFileInfo(), kCreateIfMissing));
    copy->mOwnStream = mOwnStream;
    return copy.release();
}

bool ScMediaLocationOpenMedia::GetFileSpec(StFileSpec& spec) {
    spec = SkInvalidFileSpec();
    return false;
}

SmStream* ScMediaLocationOpenMedia::GetStream(StFilePermission, StFileInfo const&, long) {
    return mStream;
}

void ScMediaLocationOpenMedia::SetStream(SmStream* stream) {
    mStream = stream;
}

void ScMediaLocationOpenMedia::WriteTo(SmStream*) {}

void ScMediaLocationOpenMedia::ReadFrom(SmStream*) {
    auto stream = StRef<SmStream>::Adopt(SmStream::New());
    SrThrowIfNIL(stream.Get());
    stream->IStream();
    mOwnStream = std::move(stream);
    mStream = mOwnStream.Get();
}

// --- free routines

ScMediaLocation* SrReadMediaLocationFromStream(SmStream* stream) {
    auto const version = stream->GetBigEndian<std::int16_t>();
    auto const cls = stream->GetBigEndian<std::uint32_t>();
    std::unique_ptr<ScMediaLocation> location(NewLocation(cls));
    location->version = version;
    location->ReadFrom(stream);
    return location.release();
}

ScMediaFileLocation* SrMediaIDFromInfo(short, long, unsigned char const* name) {
    StFileSpec const spec(ScPString::FromPascal(name).AsCString());
    ScHeapString path;
    SrFullPathFromFileSpec(spec, path);
    auto location = std::make_unique<ScMediaFileLocation>();
    location->SetFullPath(path.AsCString());
    return location.release();
}
