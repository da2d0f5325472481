// Text: the abstract ScSx and its three storages. Bytes are UTF-8; lengths count bytes.
#pragma once

#include "framewright/thornmere/export.h"

/// A text that can be read as a C string and replaced.
class FRAMEWRIGHT_EXPORT ScSx {
  public:
    virtual ~ScSx();
    /// Null-terminated; borrowed, valid until the text changes.
    virtual char const* AsCString() const = 0;
    /// Bytes without the terminating null.
    virtual unsigned Length() const = 0;
    /// Replaces the text; null counts as empty. What a bounded text cannot hold is cut off.
    virtual void Assign(char const* text) = 0;
    virtual void Append(char const* text) = 0;
};

/// A text of any length, on memory of the framework's allocator. It holds one pointer, so it can be moved as
/// bytes. Memory refused throws -108 and leaves the text as it was.
class FRAMEWRIGHT_EXPORT ScHeapString : public ScSx {
  public:
    ScHeapString(char const* text = "");
    ScHeapString(ScHeapString const& other);
    ScHeapString(ScHeapString&& other) noexcept;
    ScHeapString& operator=(ScHeapString const& other);
    ScHeapString& operator=(ScHeapString&& other) noexcept;
    ~ScHeapString() override;

    char const* AsCString() const override;
    unsigned Length() const override;
    void Assign(char const* text) override;
    void Append(char const* text) override;

  private:
    /// Makes the text of two parts.
    void Replace(char const* head, char const* tail);

    char* mText = nullptr;  ///< null stands for the empty text
    unsigned mLength = 0;
};

/// A C string in a buffer of fixed capacity (bytes without the null), which it keeps when it is assigned to;
/// longer text is cut off. The buffer is the framework's memory: only construction can throw -108.
class FRAMEWRIGHT_EXPORT ScCString : public ScSx {
  public:
    ScCString(char const* text = "", unsigned capacity = 255);
    ScCString(ScCString const& other);
    ScCString& operator=(ScCString const& other);
    ~ScCString() override;

    char const* AsCString() const override { return mText; }
    unsigned Length() const override;
    unsigned Capacity() const { return mCapacity; }
    void Assign(char const* text) override;
    void Append(char const* text) override;

  private:
    char* mText;
    unsigned mCapacity;
};

/// A length-prefixed string of at most 255 bytes.
class FRAMEWRIGHT_EXPORT ScPString : public ScSx {
  public:
    ScPString(char const* text = "");
    /// From a length byte and that many bytes; ends early at a null byte. Null gives the empty text.
    static ScPString FromPascal(unsigned char const* text);

    char const* AsCString() const override { return mText + 1; }
    unsigned Length() const override { return static_cast<unsigned char>(mText[0]); }
    /// The length byte, then the text.
    unsigned char const* AsPString() const { return reinterpret_cast<unsigned char const*>(mText); }
    void Assign(char const* text) override;
    void Append(char const* text) override;

  private:
    static constexpr unsigned kCapacity = 255;
    /// Puts at most `room` bytes of `text` at `at`, where the text then ends.
    void SetPart(unsigned at, char const* text, unsigned room);

    char mText[kCapacity + 2];
};

/// A C string of at most 63 bytes, as name registries store it.
class FRAMEWRIGHT_EXPORT ScString63 : public ScCString {
  public:
    ScString63(char const* text = "") : ScCString(text, 63) {}
};
