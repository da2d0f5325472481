// Streams of bytes: sequential, with a position, in memory and on a file. A stream is used by one thread at a
// time. Failures are exceptions. Positions and lengths have 32 bits: a write that would pass 4 GiB throws
// SkStreamTooLongErrC(), and so does asking a longer file for its length.
#pragma once

#include <cstdint>
#include <type_traits>

#include "framewright/thornmere/export.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/vector.h"

SM_CLASS(SmStream, SmObject, 0);
/// A sequential stream. At this level it is empty: every read ends the file, writes are lost.
class FRAMEWRIGHT_EXPORT SmStream : public SmManaged<SmStream> {
    friend SmManaged<SmStream>;

  public:
    void IStream();
    void Free() override;

    /// Reads `size` bytes and returns `destination`. Past the end it transfers what is there, leaves the
    /// position at the end and throws -39.
    virtual void* Read(unsigned int size, void* destination);
    /// Writes all of `size` bytes or throws.
    virtual void Write(unsigned int size, void const* source);
    /// One flag, in a byte of its own: 0 or 1.
    virtual void PutBit(bool bit);
    /// Any byte but 0 reads as true.
    virtual void GetBit(bool& bit);
    /// The spec of the file behind the stream; false where there is none.
    virtual bool GetFileSpec(StFileSpec& spec) const;
    /// How many bytes a read could still give, where the stream knows: false where it does not. What a
    /// file claims is checked against this before memory is asked for.
    virtual bool GetRemaining(std::uint64_t& bytes) const;

    /// The layout version that the data on this stream was written with for `cls`: the class's current one,
    /// unless SetStoredClassVersion said otherwise. The stream keeps what it was told; it writes none of it.
    int StoredClassVersion(ScMC_ const* cls) const;
    void SetStoredClassVersion(ScMC_ const* cls, int version);

    /// Numbers in big-endian order, T being any integer or float of 1, 2, 4 or 8 bytes. A `long` has the
    /// width of the machine: give the width of the file's field, PutBigEndian<std::int32_t>(value). Flags are
    /// PutBit's.
    template <class T>
    void PutBigEndian(T value) {
        static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>);
        Write(sizeof(T), BigEndianByteSwap(sizeof(T), &value));
    }
    template <class T>
    T GetBigEndian() {
        static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>);
        T value{};
        Read(sizeof(T), &value);
        BigEndianByteSwap(sizeof(T), &value);
        return value;
    }

  protected:
    SmStream() = default;
    ~SmStream() override;
    void CloneFrom(SmStream const& other);
    /// Puts the value of `size` bytes into, or out of, big-endian order in place; returns `value`.
    static void* BigEndianByteSwap(unsigned int size, void* value);

  private:
    struct StStoredVersion {
        ScMC_ const* cls;
        int version;
    };
    ScVector<StStoredVersion> mStoredVersions;
};

SM_CLASS(SmRandomStream, SmStream, 0);
/// A stream with a position that can be set.
class FRAMEWRIGHT_EXPORT SmRandomStream : public SmManaged<SmRandomStream> {
    friend SmManaged<SmRandomStream>;

  public:
    virtual unsigned int GetPosition();
    /// A position behind the end is allowed: a write there fills the gap with zeroes, a read ends the file
    /// and so brings the position back to the end.
    virtual void SetPosition(unsigned int position);
    virtual unsigned int GetLength();
    /// From the position to the end; 0 behind the end.
    bool GetRemaining(std::uint64_t& bytes) const override;

  protected:
    SmRandomStream() = default;
    ~SmRandomStream() override;
    void CloneFrom(SmRandomStream const& other) { SmStream::CloneFrom(other); }
};

SM_CLASS(SmMemoryStream, SmRandomStream, 0);
/// A stream in memory: one position for reading and writing, overwrites in place, grows at the end.
class FRAMEWRIGHT_EXPORT SmMemoryStream : public SmManaged<SmMemoryStream> {
    friend SmManaged<SmMemoryStream>;

  public:
    /// Empty, at position 0.
    void IMemoryStream();
    /// A copy of `size` bytes, at position 0.
    void IMemoryStream(void const* bytes, unsigned int size);
    /// All bytes; borrowed, valid until the next write. GetLength() tells how many.
    unsigned char* Data() { return mBytes.data(); }
    unsigned char const* Data() const { return mBytes.data(); }

    void Free() override;
    void* Read(unsigned int size, void* destination) override;
    /// `source` is not among the stream's own bytes. Memory refused throws -108 and leaves the stream as it
    /// was.
    void Write(unsigned int size, void const* source) override;
    unsigned int GetPosition() override;
    void SetPosition(unsigned int position) override;
    unsigned int GetLength() override;

  protected:
    SmMemoryStream() = default;
    ~SmMemoryStream() override;
    void CloneFrom(SmMemoryStream const& other);

  private:
    ScVector<unsigned char> mBytes;
    std::uint32_t mPosition = 0;
};

SM_CLASS(SmFileStream, SmRandomStream, 0);
/// A stream on an open file. It does not close the file: who opened it does. Nothing is held back: each Read
/// and Write is one call of the system, so bulk data goes through in rows and not in pixels, and a write that
/// failed has been reported when Write returns.
class FRAMEWRIGHT_EXPORT SmFileStream : public SmManaged<SmFileStream> {
    friend SmManaged<SmFileStream>;

  public:
    /// `fileRef` from SrFileOpen, at its current position; `spec` is what GetFileSpec answers.
    void IFileStream(unsigned int fileRef, StFileSpec const& spec);

    void Free() override;
    void* Read(unsigned int size, void* destination) override;
    void Write(unsigned int size, void const* source) override;
    bool GetFileSpec(StFileSpec& spec) const override;
    unsigned int GetPosition() override;
    void SetPosition(unsigned int position) override;
    unsigned int GetLength() override;

  protected:
    SmFileStream() = default;
    ~SmFileStream() override;
    /// The copy shares the file and its position.
    void CloneFrom(SmFileStream const& other);

  private:
    unsigned int mFileRef = 0;
    StFileSpec mSpec;
};
