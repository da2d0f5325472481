// Files on disk, named by path: `/` separated UTF-8. Routines that answer a long give 0 for success, -43 for
// a file or folder that is not there and other codes of error.h; the transfer routines throw. Paths may be
// relative to the process's working folder everywhere; "full" tells them from bare file names.
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
    /// Replaces the file name's extension, or adds one. The extension is what stands behind the name's last
    /// dot; a dot at the start of a name begins no extension. An empty one is taken off with its dot.
    void SetExtension(char const* extension);
    /// Goes into the folder: appends `/` and `name`. 0 when that exists, else -43 or the code that says why
    /// it can't be looked up; the spec is changed either way.
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
/// the spec is good all the same. Else `spec` is left: -50 for an empty path or one that no file system could
/// hold, -54 for one behind a closed folder.
FRAMEWRIGHT_EXPORT long SrFileSpecFromFullPath(char const* path, StFileSpec& spec);
/// The path that `spec` was made of; -50, with an empty path, for a spec that names nothing.
FRAMEWRIGHT_EXPORT long SrFullPathFromFileSpec(StFileSpec const& spec, ScSx& path);
/// What is known of an existing file or folder; `info` is left when there is none.
FRAMEWRIGHT_EXPORT long SrGetFileInfo(StFileSpec const& spec, StFileInfo& info);

/// Opens an existing file and stores a reference that is not 0. Throws -43, -54 or -36, with `fileRef` 0.
/// Folders, pipes and sockets are refused with -36: a file has a length and a position.
FRAMEWRIGHT_EXPORT void SrFileOpen(StFileSpec const& spec, unsigned int& fileRef,
                                   StFilePermission permission);
/// Closes; a reference of 0 is ignored. Returns a code: what the system reports only now. Nothing is held
/// back in this process, so `flush`, which promises that the system has all data, costs nothing; it does not
/// wait for the disk.
FRAMEWRIGHT_EXPORT long SrFileClose(unsigned int fileRef, bool flush);
/// Makes an empty file. On an existing name gives -48 and leaves the file alone. `info` is not stored: a
/// file's type is its extension here.
FRAMEWRIGHT_EXPORT long SrFileCreate(StFileSpec const& spec, StFileInfo const& info);
/// The same for a file that nobody but the user may read or write.
FRAMEWRIGHT_EXPORT long SrFileCreatePrivate(StFileSpec const& spec);
FRAMEWRIGHT_EXPORT long SrFileDelete(StFileSpec const& spec);
/// Reads at the file's position and moves it. Gives the bytes read, fewer only at the end of the file; a
/// failure throws -36.
FRAMEWRIGHT_EXPORT unsigned int SrFileRead(unsigned int fileRef, void* destination, unsigned int size);
/// Writes all of `size` bytes or throws: -34 for a full disk, quota or size limit, SkStreamTooLongErrC() for
/// a file that would pass 4 GiB, -36 else. What fits has then been written. Gives `size`. A limit on the size
/// of files is tested before it is hit, so it raises no signal and touches no signal's handling.
FRAMEWRIGHT_EXPORT unsigned int SrFileWrite(unsigned int fileRef, void const* source, unsigned int size);
/// A position behind the end is allowed; writing there fills the gap with zeroes.
FRAMEWRIGHT_EXPORT void SrFileSetPos(unsigned int fileRef, unsigned int position);
FRAMEWRIGHT_EXPORT unsigned int SrFileGetPos(unsigned int fileRef);
/// The file's length in bytes; one past 32 bits throws SkStreamTooLongErrC().
FRAMEWRIGHT_EXPORT unsigned int SrFileGetEOF(unsigned int fileRef);

/// Replaces the folder in `spec` by the system folder of that type. Type 2, the place for temporary files on
/// the same disk, is the folder itself; with `create` it is made when it is missing. Other types give -43.
FRAMEWRIGHT_EXPORT long SrFindFolder(StFileSpec& spec, short folderType, bool create);

/// Which files a directory walk hands on; the base takes all.
class FRAMEWRIGHT_EXPORT ScFileFilter {
  public:
    virtual ~ScFileFilter();
    virtual bool CallbackForFile(StFileSpec const& file, StFileInfo const& info);
};
/// Which sub-folders a directory walk enters; the base enters all.
class FRAMEWRIGHT_EXPORT ScFolderFilter {
  public:
    virtual ~ScFolderFilter();
    /// Called once for each sub-folder; the base answers with ShouldEnter.
    virtual bool CallbackForFolder(StFileSpec const& folder);
    virtual bool ShouldEnter(StFileSpec const& folder);
};
/// Receives the files.
class FRAMEWRIGHT_EXPORT ScFileIterator {
  public:
    virtual ~ScFileIterator();
    /// True ends the walk. The file may be deleted.
    virtual bool HandleFile(StFileSpec const& file, StFileInfo const& info) = 0;
};
/// Hands every regular file of a folder that `files` takes to `iterator`, in the order of the bytes of their
/// names; with `enterFolders` it goes into those sub-folders that `folders` takes, where they stand in that
/// order. A null filter takes all. Folders behind symbolic links are not entered. 0, or the code of the
/// folder that can't be read, at which the walk ends. Exceptions of the three objects travel on.
FRAMEWRIGHT_EXPORT long SrDirectoryEachFile(StFileSpec const& folder, ScFileFilter* files,
                                            ScFolderFilter* folders, ScFileIterator& iterator,
                                            bool enterFolders);

/// `fullPath` as seen from the folder of the file `basePath`, for two files that may move together. Works on
/// the texts alone; empty and `.` components drop out. It is the full path itself where the two share
/// nothing: one is absolute and the other relative, both are absolute but share no folder below the root, the
/// base is empty, or the way out of its folder would lead back through a `..`.
FRAMEWRIGHT_EXPORT void SrMakeRelativePath(char const* fullPath, char const* basePath, ScSx& relativePath);
/// Looks for a file that has moved: `relativePath`, if it is not absolute itself, from the folder of the file
/// `basePath`. True, with the path in `out`, when a file is there, or when `mustExist` is false and the path
/// could be made; else `out` is fullPath. It can't be made of an empty relative path, from an empty base, or
/// above the root.
FRAMEWRIGHT_EXPORT bool SrMakeAbsolutePath(ScSx& out, char const* fullPath, char const* relativePath,
                                           char const* basePath, bool mustExist);

/// A path on a stream: 32-bit big-endian length, then its bytes, at most 65535. Writing a longer one throws
/// -50.
FRAMEWRIGHT_EXPORT void SrPutPathStringToStream(SmStream* stream, char const* path);
/// Reads it back. Throws, before any memory is asked for, SkBadStreamFormatErrC() for a longer one and -39
/// for a length beyond what the stream holds; SkBadStreamFormatErrC() for one with a null byte in it.
FRAMEWRIGHT_EXPORT void SrGetPathStringFromStream(SmStream* stream, ScSx& path);
