#include "framewright/thornmere/text.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

namespace {

char const* TextOrEmpty(char const* text) {
    return text ? text : "";
}

/// The length of a text, of which `room` bytes are left; longer ones count as `room`.
unsigned BoundedLength(char const* text, unsigned room) {
    return unsigned(strnlen(text, room));
}

}  // namespace

ScSx::~ScSx() = default;

// --- on the heap

ScHeapString::ScHeapString(char const* text) {
    ScHeapString::Assign(text);
}
ScHeapString::ScHeapString(ScHeapString const& other) : ScHeapString(other.AsCString()) {}
ScHeapString::ScHeapString(ScHeapString&& other) noexcept
    : mText(std::exchange(other.mText, nullptr)), mLength(std::exchange(other.mLength, 0)) {}

ScHeapString& ScHeapString::operator=(ScHeapString const& other) {
    if (this != &other) Assign(other.AsCString());
    return *this;
}

ScHeapString& ScHeapString::operator=(ScHeapString&& other) noexcept {
    std::swap(mText, other.mText);
    std::swap(mLength, other.mLength);
    return *this;
}

ScHeapString::~ScHeapString() {
    SrDeallocatePointer(mText, std::size_t(mLength) + 1);
}

char const* ScHeapString::AsCString() const {
    return TextOrEmpty(mText);
}
unsigned ScHeapString::Length() const {
    return mLength;
}

void ScHeapString::Assign(char const* text) {
    Replace("", TextOrEmpty(text));
}
void ScHeapString::Append(char const* text) {
    Replace(AsCString(), TextOrEmpty(text));
}

void ScHeapString::Replace(char const* head, char const* tail) {
    // The new text is made before the old one goes: either part may lie inside it.
    std::size_t const headLength = std::strlen(head), tailLength = std::strlen(tail);
    std::size_t const length = headLength + tailLength;
    if (length >= std::numeric_limits<unsigned>::max()) SrThrow(SkMemoryFull(), nullptr);
    char* text = nullptr;
    if (length) {
        text = static_cast<char*>(SrAllocatePointer(length + 1));
        SrThrowIfNIL(text);
        std::memcpy(text, head, headLength);
        std::memcpy(text + headLength, tail, tailLength + 1);
    }
    SrDeallocatePointer(mText, std::size_t(mLength) + 1);
    mText = text;
    mLength = unsigned(length);
}

// --- in a buffer of fixed capacity

ScCString::ScCString(char const* text, unsigned capacity)
    : mText(static_cast<char*>(SrAllocatePointer(std::size_t(capacity) + 1))), mCapacity(capacity) {
    SrThrowIfNIL(mText);
    mText[0] = '\0';
    ScCString::Assign(text);
}
ScCString::ScCString(ScCString const& other) : ScCString(other.mText, other.mCapacity) {}

ScCString& ScCString::operator=(ScCString const& other) {
    Assign(other.mText);
    return *this;
}

ScCString::~ScCString() {
    SrDeallocatePointer(mText, std::size_t(mCapacity) + 1);
}

unsigned ScCString::Length() const {
    return unsigned(std::strlen(mText));
}

void ScCString::Assign(char const* text) {
    text = TextOrEmpty(text);
    unsigned const length = BoundedLength(text, mCapacity);
    std::memmove(mText, text, length);
    mText[length] = '\0';
}

void ScCString::Append(char const* text) {
    text = TextOrEmpty(text);
    unsigned const old = Length();
    unsigned const added = BoundedLength(text, mCapacity - old);
    std::memmove(mText + old, text, added);
    mText[old + added] = '\0';
}

// --- length-prefixed

ScPString::ScPString(char const* text) : mText{} {
    ScPString::Assign(text);
}

ScPString ScPString::FromPascal(unsigned char const* text) {
    ScPString result;
    if (text) result.SetPart(0, reinterpret_cast<char const*>(text + 1), text[0]);
    return result;
}

void ScPString::Assign(char const* text) {
    SetPart(0, TextOrEmpty(text), kCapacity);
}
void ScPString::Append(char const* text) {
    SetPart(Length(), TextOrEmpty(text), kCapacity - Length());
}

void ScPString::SetPart(unsigned at, char const* text, unsigned room) {
    unsigned const length = BoundedLength(text, room);
    std::memmove(mText + 1 + at, text, length);
    mText[1 + at + length] = '\0';
    mText[0] = static_cast<char>(static_cast<unsigned char>(at + length));
}
