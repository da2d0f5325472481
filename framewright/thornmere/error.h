// Errors: a code and, sometimes, a message that a host can show. Failures travel as exceptions; a clean-up
// on the way is a destructor, so an exception goes on with the code and message that it had.
#pragma once

#include <exception>

#include "framewright/thornmere/export.h"

/// Messages take at most this many bytes.
constexpr unsigned int kMessageCapacity = 512;

/// A message that goes with an error code. It is copied by CloneToStorage wherever it goes, and the last copy
/// a thread is given is never destroyed: a message holds what it says inside itself and owns nothing else.
class FRAMEWRIGHT_EXPORT ScMessageClass {
  public:
    virtual ~ScMessageClass();
    /// Copies this message into `storage` of `size` bytes and returns the copy; null if it does not fit.
    virtual ScMessageClass* CloneToStorage(void* storage, unsigned int size) const;
    /// Maps an error code before it is shown; the base gives it back unchanged.
    virtual long ResolveError(long error) const;
    /// The message as text; empty at this level. Borrowed, lives as long as the message.
    virtual char const* GetText() const;
};

/// A message whose text comes from string lists.
class FRAMEWRIGHT_EXPORT ScMessageStrings : public ScMessageClass {
  public:
    ScMessageClass* CloneToStorage(void* storage, unsigned int size) const override;
    long ResolveError(long error) const override;
};

/// The message of string `index`, counted from 1, of a numbered string list, shown with alert `alert`.
class FRAMEWRIGHT_EXPORT ScMessageBuzzStrings : public ScMessageStrings {
  public:
    ScMessageBuzzStrings(short list, long index, long second, long third, short alert);
    ScMessageClass* CloneToStorage(void* storage, unsigned int size) const override;
    /// The English text of the list entry, read when the message was made.
    char const* GetText() const override;

    short List() const { return mList; }
    long Index() const { return mIndex; }
    short Alert() const { return mAlert; }

  private:
    short mList;
    short mAlert;
    long mIndex, mSecond, mThird;
    char mText[256];
};

/// Throws an exception derived from std::exception that carries `error` and a copy of `message`, which may
/// be null. Its what() is the message's text, else the name of the code. Takes nothing from the framework's
/// allocator, so -108 can always be thrown.
[[noreturn]] FRAMEWRIGHT_EXPORT void SrThrow(long error, ScMessageClass* message);

/// The code of a caught exception; `message` receives its message or null. The message is the framework's:
/// borrowed, kept for this thread until its next call. A std::bad_alloc counts as -108, an exception that the
/// framework does not know as -32768.
FRAMEWRIGHT_EXPORT long SrGetExceptionValues(std::exception const& exception, ScMessageClass*& message);

/// Throws -108 when `p` is null.
FRAMEWRIGHT_EXPORT void SrThrowIfNIL(void const* p);

/// A new run-time error code, unique in this process and unlike every fixed code. `name`, which may be null,
/// is what what() calls it; the text is borrowed and must outlive the use of the code. Any thread may call.
FRAMEWRIGHT_EXPORT long SrAllocateError(char const* name);
/// The name of a code: of the fixed codes, and of those allocated with a name; else "error N".
/// Borrowed, valid for this thread until its next call.
FRAMEWRIGHT_EXPORT char const* SrErrorName(long error);

// The fixed codes.
constexpr long SkNoError() {
    return 0;
}
constexpr long SkMemoryFull() {
    return -108;
}
constexpr long SkResourceMissing() {
    return -192;
}
constexpr long SkDiskFull() {
    return -34;
}
constexpr long SkInputOutput() {
    return -36;
}
constexpr long SkEndOfFile() {
    return -39;
}
constexpr long SkFileMissing() {
    return -43;
}
constexpr long SkDuplicateFileName() {
    return -48;
}
constexpr long SkFileParameter() {
    return -50;
}
constexpr long SkNoPermission() {
    return -54;
}
constexpr long SkNotFirstClassThread() {
    return -29299;
}
constexpr long SkInternalRefusal() {
    return -32768;
}
/// The value of a local error variable while nothing has been caught.
constexpr long SkNothingCaught() {
    return 32767;
}

// The framework's named codes: the first run-time codes. Their values are not fixed.
FRAMEWRIGHT_EXPORT long SkAbstractClassErrC();
FRAMEWRIGHT_EXPORT long SkBadFileVersionErrC();
FRAMEWRIGHT_EXPORT long SkBadFileFormatErrC();
FRAMEWRIGHT_EXPORT long SkBadStreamFormatErrC();
FRAMEWRIGHT_EXPORT long SkSymbolNotFoundErrC();
/// A position or length that 32 bits cannot hold.
FRAMEWRIGHT_EXPORT long SkStreamTooLongErrC();
/// Messages that go with the two codes of the same name; borrowed.
FRAMEWRIGHT_EXPORT ScMessageClass* SkBadFileVersionMsgC();
FRAMEWRIGHT_EXPORT ScMessageClass* SkBadFileFormatMsgC();

/// The number of the string list of alerts, 20991, and of the alert that shows them, 191.
constexpr short SkAlertStrings() {
    return 20991;
}
constexpr short SkSimpleAlert() {
    return 191;
}
