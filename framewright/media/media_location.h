// Media locations: where a piece of media lies, without opening it. Everything that reads or writes media
// gets a location and never a path; it asks the location for a stream, for what is known of the file, or for
// the next number of a sequence of files.
//
// A location is a plain object: it lives on the stack, in one holder that deletes it, and is copied with
// Clone. It belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "framewright/media/media_errors.h"
#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/text.h"

class SmStream;

/// What a location knows of its file.
using StSearchResult = std::uint8_t;
constexpr StSearchResult kSearchNotFound = 0;
constexpr StSearchResult kSearchFound = 1;
constexpr StSearchResult kSearchNotDone = 255;

/// What GetStream may do to a file that is to be written: make it when it is missing, or make it anew.
constexpr long kCreateIfMissing = 1;
constexpr long kDeleteAndCreate = 2;

/// The base. Its own operations are those of a location without a file: what asks gets nothing, what sets
/// fails.
class FRAMEWRIGHT_EXPORT ScMediaLocation {
  public:
    ScMediaLocation(ScMediaLocation const&) = delete;
    ScMediaLocation& operator=(ScMediaLocation const&) = delete;

    // The virtual operations, in slot order.
    virtual ~ScMediaLocation();
    /// The code that stands for the kind of location in a stream.
    virtual unsigned long GetClass() = 0;
    /// A new location of the same kind, which the caller deletes. It is closed; a location of a file also
    /// forgets its own open stream (see ScMediaFileLocation::Clone). -108 when memory is refused.
    virtual ScMediaLocation* Clone() const = 0;
    virtual bool SetFullPath(char const* path);
    virtual bool GetFullPath(ScSx& path);
    virtual bool GetFileSpec(StFileSpec& spec);
    virtual bool SetFileSpec(StFileSpec const& spec);
    virtual StSearchResult GetFileInfo(StFileInfo& info);
    /// The stream of the media, borrowed until the matching ReleaseStream; null when there is none. `info`
    /// describes a file that is to be created. `createMode` is kCreateIfMissing or kDeleteAndCreate, and any
    /// other value only opens.
    virtual SmStream* GetStream(StFilePermission permission, StFileInfo const& info, long createMode);
    virtual void ReleaseStream(SmStream* stream);
    virtual void SetStream(SmStream* stream);
    /// The number in the name of a file of a numbered sequence.
    virtual long GetSequence();
    virtual bool SetSequence(long number);
    virtual long GetOffset();
    virtual void SetOffset(long offset);
    /// Writes the record that SrReadMediaLocationFromStream reads: its version, 3, as 16 bits and GetClass()
    /// as 32 bits, both big-endian, then what the kind of location adds.
    virtual void WriteTo(SmStream* stream);
    /// Reads what WriteTo adds behind the version and the class.
    virtual void ReadFrom(SmStream* stream);

    /// The version of the record that ReadFrom is reading; of no meaning at any other time.
    std::int16_t version = 0;

    /// Memory of the framework's allocator; throws -108.
    static void* operator new(std::size_t size);
    static void operator delete(void* location, std::size_t size);

  protected:
    ScMediaLocation() = default;
};

/// A file, named by its path or by its spec. It need not exist: only GetFileInfo and GetStream look.
class FRAMEWRIGHT_EXPORT ScMediaFileLocation : public ScMediaLocation {
  public:
    ScMediaFileLocation() = default;
    /// Releases and closes an open stream.
    ~ScMediaFileLocation() override;

    /// "MeFL".
    unsigned long GetClass() override;
    /// The copy is closed. This location forgets its open stream: until the uses of it have been released
    /// GetStream gives null. The stream itself stays open for who has it, who may also take over its
    /// reference; the file is closed when this location goes or forgets another stream.
    ScMediaLocation* Clone() const override;
    /// Absolute or relative. True, also for a file or folder that does not exist yet. A path that names no
    /// file (-50) is thrown, and the location then names nothing.
    bool SetFullPath(char const* path) override;
    /// Always true; a location that was never set gives an empty text.
    bool GetFullPath(ScSx& path) override;
    bool GetFileSpec(StFileSpec& spec) override;
    bool SetFileSpec(StFileSpec const& spec) override;
    /// Looks once and remembers the answer, also that there is no such file: one made afterwards is not seen
    /// before the next SetFullPath or SetFileSpec.
    StSearchResult GetFileInfo(StFileInfo& info) override;
    /// Null when the file cannot be opened or made, whatever the reason; -108 when there is no memory for the
    /// stream. While the stream is in use all callers get the same one, whatever their `permission`.
    SmStream* GetStream(StFilePermission permission, StFileInfo const& info, long createMode) override;
    /// The last release closes the file, flushed if it was opened for writing. What the system reports only
    /// then of a file that was written is thrown, after the stream is gone; a file that was read was read.
    void ReleaseStream(SmStream* stream) override;
    /// -1 for a name without a number of at least two digits. Numbers past 32 bits wrap.
    long GetSequence() override;
    /// Writes `number` over the digits of the name, or in four digits before the last dot if there are none,
    /// or too few; the location then names that file. A number below 0 is refused.
    bool SetSequence(long number) override;
    /// Adds the full path, then the path as seen from the file behind the stream (the full path where there
    /// is none), so that a folder may move with all that it holds. A location that names nothing throws -50
    /// and writes nothing: no reader takes such a record.
    void WriteTo(SmStream* stream) override;
    /// Reads versions 1 (full path alone), 2 (both, with 16-bit lengths) and 3. A file that is not where the
    /// full path says is looked for along the relative path. A length beyond the stream's end throws, and so
    /// does a full path that SetFullPath refuses, whatever the relative one.
    void ReadFrom(SmStream* stream) override;

  private:
    struct StOpenStream {
        SmStream* stream = nullptr;
        unsigned int fileRef = 0;
        StFilePermission permission = kFileRead;
    };

    void OpenFile(StFileSpec const& spec, StFilePermission permission);
    SmStream* NewStream(StFileSpec const& spec);
    void ForgetStream() const;
    void CloseForgotten() const;

    StFileSpec mFileSpec;
    ScHeapString mFullPath;
    bool mFullPathValid = false;  ///< mFullPath agrees with mFileSpec
    mutable unsigned int mFileRef = 0;
    mutable SmStream* mStream = nullptr;
    StFilePermission mPermission = kFileRead;
    long mStreamUseCount = 0;
    StSearchResult mSearchResult = kSearchNotDone;
    StFileInfo mFileInfo{};  ///< valid when mSearchResult is kSearchFound
    mutable StOpenStream mForgotten;
};

/// A marker: the media lies in the stream that holds the reference. Every operation on a file fails.
class FRAMEWRIGHT_EXPORT ScMediaInline : public ScMediaLocation {
  public:
    ScMediaInline() = default;
    ~ScMediaInline() override;
    /// "MeIn".
    unsigned long GetClass() override;
    ScMediaLocation* Clone() const override;
};

/// A stream that is already open. It writes nothing to a stream, so a reference to it cannot be read back.
class FRAMEWRIGHT_EXPORT ScMediaLocationOpenMedia : public ScMediaLocation {
  public:
    ScMediaLocationOpenMedia();
    ~ScMediaLocationOpenMedia() override;
    /// "MeSt".
    unsigned long GetClass() override;
    /// The copy names the same stream.
    ScMediaLocation* Clone() const override;
    /// Always false, with the spec that names nothing.
    bool GetFileSpec(StFileSpec& spec) override;
    /// The stream, whatever is asked for.
    SmStream* GetStream(StFilePermission permission, StFileInfo const& info, long createMode) override;
    /// Keeps the plain pointer: `stream` stays the caller's and must outlive this location's use of it.
    void SetStream(SmStream* stream) override;
    /// Writes nothing at all.
    void WriteTo(SmStream* stream) override;
    /// Makes a new, empty stream, which this location owns.
    void ReadFrom(SmStream* stream) override;

  private:
    SmStream* mStream = nullptr;
    StRef<SmStream> mOwnStream;  ///< the stream of ReadFrom
};

/// Reads a record that WriteTo wrote; the caller deletes the location. A kind that is not known throws
/// SkBadFileFormatErrC(), a short stream -39.
FRAMEWRIGHT_EXPORT ScMediaLocation* SrReadMediaLocationFromStream(SmStream* stream);

/// A location from a length-prefixed file name in the current folder; the caller deletes it. Volume and
/// directory numbers have no meaning on this system.
FRAMEWRIGHT_EXPORT ScMediaFileLocation* SrMediaIDFromInfo(short volume, long directory,
                                                          unsigned char const* name);
