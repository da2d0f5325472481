// Files on disk, named by path: `/` separated UTF-8. Routines that answer a long give 0 for success, -43 for
// a file or folder that is not there and other codes of error.h; the transfer routines throw.
#pragma once

#include <cstdint>

#include "framewright/thornmere/export.h"
#include "framewright/thornmere/text.h"

class SmStream;

/// Names one file or folder, which need not exist. Copied by value; can be moved as bytes.
class FRAMEWRIGHT_EXPORT StFileSpec {
  public:
    StFileSpec() = default;
    explicit StFileSpec(char const* path) : mPath(path) {}

    /// The path as it was given, relative paths included; empty for a spec that names nothing.
    char const* GetPath() const { return mPath.AsCString(); }
    bool IsValid() const { return mPath.Length() != 0; }
    /// The part behind the last `/`. Borrowed.
    char const* GetFileName() const;
    /// Replaces the part behind the last `/`.
    void SetFileName(char const* name);
    /// Replaces the file name's extension, or adds one: the characters behind its last dot.
    void SetExtension(char const* extension);
    /// Goes into the folder: appends `/` and `name`. 0 when that exists, else -43; the spec is changed either
    /// way.
    long ConcatFileName(char const* name);

    bool operator==(StFileSpec const& other) const;
    bool operator!=(StFileSpec const& other) const { return !(*this == other); }

  private:
    ScHeapString mPath;
};

/// What is known of a file. Copied by value.
struct StFileInfo {
    char typeText[257];  ///< the extension without its dot; empty for a name without one
};

/// How a file is opened: for reading, or with one of the two writing permissions. A plain number, so that the
/// values can be written as such.
using StFilePermission = std::uint8_t;
constexpr StFilePermission kFileRead = 1;
constexpr StFilePermission kFileWrite = 2;
constexpr StFilePermission kFileReadWrite = 3;

/// The info that means that nothing is known, and the spec that names nothing.
FRAMEWRIGHT_EXPORT StFileInfo const& SkNoFileInfo();
FRAMEWRIGHT_EXPORT StFileSpec const& SkInvalidFileSpec();

/// The spec of a path, absolute or relative. 0 when the file exists; -43 when it, or its folder, does not:
/// the spec is good all the same. -50 for an empty path or one that no file system could hold; `spec` is
/// left.
FRAMEWRIGHT_EXPORT long SrFileSpecFromFullPath(char const* path, StFileSpec& spec);
FRAMEWRIGHT_EXPORT long SrFullPathFromFileSpec(StFileSpec const& spec, ScSx& path);
/// What is known of an existing file or folder.
FRAMEWRIGHT_EXPORT long SrGetFileInfo(StFileSpec const& spec, StFileInfo& info);

/// Opens an existing file and stores a reference that is not 0. Throws -43, -54 or -36, with `fileRef` 0.
FRAMEWRIGHT_EXPORT void SrFileOpen(StFileSpec const& spec, unsigned int& fileRef,
                                   StFilePermission permission);
/// Closes; with `flush` the data is handed to the disk first. A reference of 0 is ignored. Returns a code.
FRAMEWRIGHT_EXPORT long SrFileClose(unsigned int fileRef, bool flush);
/// Makes an empty file. On an existing name gives -48 and leaves the file alone. `info` is not stored: a
/// file's type is its extension here.
FRAMEWRIGHT_EXPORT long SrFileCreate(StFileSpec const& spec, StFileInfo const& info);
FRAMEWRIGHT_EXPORT long SrFileDelete(StFileSpec const& spec);
/// Reads at the file's position and moves it. Gives the bytes read, fewer only at the end of the file; a
/// failure throws -36.
FRAMEWRIGHT_EXPORT unsigned int SrFileRead(unsigned int fileRef, void* destination, unsigned int size);
/// Writes all of `size` bytes or throws: -34 for a full disk or size limit, -36 else. Gives `size`.
FRAMEWRIGHT_EXPORT unsigned int SrFileWrite(unsigned int fileRef, void const* source, unsigned int size);
FRAMEWRIGHT_EXPORT void SrFileSetPos(unsigned int fileRef, unsigned int position);
FRAMEWRIGHT_EXPORT unsigned int SrFileGetPos(unsigned int fileRef);
/// The file's length in bytes; one past 32 bits throws -36.
FRAMEWRIGHT_EXPORT unsigned int SrFileGetEOF(unsigned int fileRef);

/// Replaces the folder in `spec` by a system folder. Type 2, temporary files, is the folder itself.
FRAMEWRIGHT_EXPORT long SrFindFolder(StFileSpec& spec, short folderType, bool create);

class FRAMEWRIGHT_EXPORT ScFileFilter {
  public:
    virtual ~ScFileFilter();
    virtual bool Accept(StFileSpec const& file, StFileInfo const& info) = 0;
};
class FRAMEWRIGHT_EXPORT ScFolderFilter {
  public:
    virtual ~ScFolderFilter();
    virtual bool Accept(StFileSpec const& folder) = 0;
};
class FRAMEWRIGHT_EXPORT ScFileIterator {
  public:
    virtual ~ScFileIterator();
    /// False ends the walk.
    virtual bool HandleFile(StFileSpec const& file, StFileInfo const& info) = 0;
};
/// Hands every accepted file of a folder to `iterator`, in the order of their names; enters the sub-folders
/// that `folders` accepts (null: none). A null `files` accepts all. 0 or the code of the folder that can't be
/// read.
FRAMEWRIGHT_EXPORT long SrDirectoryEachFile(StFileSpec const& folder, ScFileFilter* files,
                                            ScFolderFilter* folders, ScFileIterator& iterator);

/// `fullPath` as seen from the folder of the file `basePath`; the full path where the two share nothing.
FRAMEWRIGHT_EXPORT void SrMakeRelativePath(char const* fullPath, char const* basePath, ScSx& relativePath);
/// Looks for a file that has moved: `relativePath` from the folder of the file `basePath`. True, with the
/// path in `out`, when a file is there or `mustExist` is false and the path could be made; else `out` is
/// fullPath.
FRAMEWRIGHT_EXPORT bool SrMakeAbsolutePath(ScSx& out, char const* fullPath, char const* relativePath,
                                           char const* basePath, bool mustExist);

/// A path on a stream: 32-bit big-endian length, then its bytes. A length beyond what the stream holds
/// throws.
FRAMEWRIGHT_EXPORT void SrPutPathStringToStream(SmStream* stream, char const* path);
FRAMEWRIGHT_EXPORT void SrGetPathStringFromStream(SmStream* stream, ScSx& path);
