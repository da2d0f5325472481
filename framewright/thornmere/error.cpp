#include "framewright/thornmere/error.h"

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>
#include <vector>

#include "framewright/thornmere/string_lists.h"

namespace {

struct StCodeName {
    long code;
    char const* name;
};

constexpr StCodeName kFixedNames[] = {
    {SkNoError(), "no error"},
    {SkMemoryFull(), "out of memory"},
    {SkResourceMissing(), "a resource is missing"},
    {SkDiskFull(), "the disk is full"},
    {SkInputOutput(), "input or output failed"},
    {SkEndOfFile(), "unexpected end of file"},
    {SkFileMissing(), "file not found"},
    {SkDuplicateFileName(), "a file of that name exists"},
    {SkFileParameter(), "not a usable file name"},
    {SkNoPermission(), "permission denied"},
    {SkNotFirstClassThread(), "not a first-class thread"},
    {SkInternalRefusal(), "refused"},
    {SkNothingCaught(), "nothing was caught"},
};

enum EnNamedCode {
    kAbstractClass,
    kBadFileVersion,
    kBadFileFormat,
    kBadStreamFormat,
    kSymbolNotFound,
    kStreamTooLong,
    kNamedCodeCount
};

constexpr char const* kNamedCodeNames[] = {
    "an abstract class has no objects",
    "bad file version",
    "bad file format",
    "bad stream format",
    "symbol not found",
    "longer than 4 GiB",
};
static_assert(std::size(kNamedCodeNames) == kNamedCodeCount);

/// Run-time codes count down from here, away from all fixed ones; the framework's named codes come first.
constexpr long kFirstRunTimeCode = -100000;

struct StRunTimeCodes {
    std::mutex mutex;
    std::vector<char const*> names{std::begin(kNamedCodeNames), std::end(kNamedCodeNames)};
};

/// Made on first use: other files allocate codes while the library loads.
StRunTimeCodes& RunTimeCodes() {
    static StRunTimeCodes codes;
    return codes;
}

/// Null for a code without a name.
char const* FindErrorName(long error) {
    for (StCodeName const& row : kFixedNames) {
        if (row.code == error) return row.name;
    }
    if (error > kFirstRunTimeCode) return nullptr;
    StRunTimeCodes& codes = RunTimeCodes();
    std::lock_guard lock(codes.mutex);
    std::size_t const index = std::size_t(kFirstRunTimeCode) - std::size_t(error);
    return index < codes.names.size() ? codes.names[index] : nullptr;
}

/// Room for one message. Its owner drops the message; a thread's slot has no destructor, since those of
/// thread-local objects would hold the library in memory.
struct StMessageSlot {
    alignas(std::max_align_t) unsigned char storage[kMessageCapacity];
    ScMessageClass* message;

    void Keep(ScMessageClass const* other) {
        Drop();
        if (other) message = other->CloneToStorage(storage, kMessageCapacity);
    }
    void Drop() {
        if (message) message->~ScMessageClass();
        message = nullptr;
    }
};

/// What SrThrow throws.
class StThrown : public std::exception {
  public:
    StThrown(long error, ScMessageClass const* message) : mError(error), mName(FindErrorName(error)) {
        mSlot.message = nullptr;
        mSlot.Keep(message);
        std::snprintf(mNumber, sizeof mNumber, "error %ld", error);
    }
    StThrown(StThrown const& other) : StThrown(other.mError, other.mSlot.message) {}
    StThrown& operator=(StThrown const&) = delete;
    ~StThrown() override { mSlot.Drop(); }

    char const* what() const noexcept override {
        char const* const text = mSlot.message ? mSlot.message->GetText() : "";
        if (*text) return text;
        return mName ? mName : mNumber;
    }
    long Error() const { return mError; }
    ScMessageClass const* Message() const { return mSlot.message; }

  private:
    long mError;
    char const* mName;
    char mNumber[32];
    StMessageSlot mSlot;
};

/// A message of one fixed text.
class ScMessageFixed : public ScMessageClass {
  public:
    explicit ScMessageFixed(char const* text) : mText(text) {}
    ScMessageClass* CloneToStorage(void* storage, unsigned int size) const override;
    char const* GetText() const override { return mText; }

  private:
    char const* mText;
};

template <class T>
ScMessageClass* CopyToStorage(T const& message, void* storage, unsigned int size) {
    static_assert(sizeof(T) <= kMessageCapacity);
    return size >= sizeof(T) ? new (storage) T(message) : nullptr;
}

ScMessageClass* ScMessageFixed::CloneToStorage(void* storage, unsigned int size) const {
    return CopyToStorage(*this, storage, size);
}

long RunTimeCode(EnNamedCode code) {
    return kFirstRunTimeCode - code;
}

}  // namespace

// --- messages

ScMessageClass::~ScMessageClass() = default;
ScMessageClass* ScMessageClass::CloneToStorage(void* storage, unsigned int size) const {
    return CopyToStorage(*this, storage, size);
}
long ScMessageClass::ResolveError(long error) const {
    return error;
}
char const* ScMessageClass::GetText() const {
    return "";
}

ScMessageClass* ScMessageStrings::CloneToStorage(void* storage, unsigned int size) const {
    return CopyToStorage(*this, storage, size);
}
long ScMessageStrings::ResolveError(long error) const {
    return ScMessageClass::ResolveError(error);
}

ScMessageBuzzStrings::ScMessageBuzzStrings(short list, long index, long second, long third, short alert)
    : mList(list), mAlert(alert), mIndex(index), mSecond(second), mThird(third) {
    ScPString text;
    SrGetIndexedString(text, list, index);
    std::memcpy(mText, text.AsCString(), text.Length() + 1);
}
ScMessageClass* ScMessageBuzzStrings::CloneToStorage(void* storage, unsigned int size) const {
    return CopyToStorage(*this, storage, size);
}
char const* ScMessageBuzzStrings::GetText() const {
    return mText;
}

// --- throwing and catching

void SrThrow(long error, ScMessageClass* message) {
    throw StThrown(error, message);
}

long SrGetExceptionValues(std::exception const& exception, ScMessageClass*& message) {
    static constinit thread_local StMessageSlot lastMessage{};
    auto const* thrown = dynamic_cast<StThrown const*>(&exception);
    lastMessage.Keep(thrown ? thrown->Message() : nullptr);
    message = lastMessage.message;
    if (thrown) return thrown->Error();
    return dynamic_cast<std::bad_alloc const*>(&exception) ? SkMemoryFull() : SkInternalRefusal();
}

void SrThrowIfNIL(void const* p) {
    if (!p) SrThrow(SkMemoryFull(), nullptr);
}

// --- codes

long SrAllocateError(char const* name) {
    StRunTimeCodes& codes = RunTimeCodes();
    std::lock_guard lock(codes.mutex);
    codes.names.push_back(name);
    return kFirstRunTimeCode - static_cast<long>(codes.names.size() - 1);
}

char const* SrErrorName(long error) {
    if (char const* name = FindErrorName(error)) return name;
    static constinit thread_local char number[32] = {};
    std::snprintf(number, sizeof number, "error %ld", error);
    return number;
}

long SkAbstractClassErrC() {
    return RunTimeCode(kAbstractClass);
}
long SkBadFileVersionErrC() {
    return RunTimeCode(kBadFileVersion);
}
long SkBadFileFormatErrC() {
    return RunTimeCode(kBadFileFormat);
}
long SkBadStreamFormatErrC() {
    return RunTimeCode(kBadStreamFormat);
}
long SkSymbolNotFoundErrC() {
    return RunTimeCode(kSymbolNotFound);
}
long SkStreamTooLongErrC() {
    return RunTimeCode(kStreamTooLong);
}

ScMessageClass* SkBadFileVersionMsgC() {
    static ScMessageFixed message("The file was written by a version that this one cannot read.");
    return &message;
}
ScMessageClass* SkBadFileFormatMsgC() {
    static ScMessageFixed message("The file is damaged, or not of the format that it claims.");
    return &message;
}
