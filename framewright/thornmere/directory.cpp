// Walking over the files of a folder.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/system_calls.h"

namespace {

struct StCloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

/// The names in a folder, sorted. Taken all before the first file is handed on, so that files may come and go
/// during the walk.
long ReadNames(char const* path, std::vector<std::string>& names) {
    std::unique_ptr<DIR, StCloseFolder> folder(opendir(path));
    if (!folder) return thornmere::CodeOfSystemError(errno);
    for (;;) {
        errno = 0;
        dirent const* const entry = readdir(folder.get());
        if (!entry) break;
        std::string name(entry->d_name);
        if (name != "." && name != "..") names.push_back(std::move(name));
    }
    if (errno != 0) return thornmere::CodeOfSystemError(errno);
    std::sort(names.begin(), names.end());
    return SkNoError();
}

struct StWalk {
    ScFileFilter* files;
    ScFolderFilter* folders;
    ScFileIterator& iterator;
    bool enterFolders;
    bool ended = false;

    long Folder(StFileSpec const& folder) {
        std::vector<std::string> names;
        long result = ReadNames(folder.GetPath(), names);
        for (std::string const& name : names) {
            if (result != SkNoError() || ended) break;
            StFileSpec entry(folder);
            entry.ConcatFileName(name.c_str());
            result = Entry(entry);
        }
        return result;
    }

    long Entry(StFileSpec const& entry) {
        struct stat status;
        if (lstat(entry.GetPath(), &status) != 0) return SkNoError();  // gone since the names were read
        if (S_ISDIR(status.st_mode)) {
            bool const enter = enterFolders && (!folders || folders->CallbackForFolder(entry));
            return enter ? Folder(entry) : SkNoError();
        }
        StFileInfo info;
        bool const isFile = stat(entry.GetPath(), &status) == 0 && S_ISREG(status.st_mode);
        if (isFile && SrGetFileInfo(entry, info) == SkNoError()) {
            if (!files || files->CallbackForFile(entry, info)) ended = iterator.HandleFile(entry, info);
        }
        return SkNoError();
    }
};

}  // namespace

ScFileFilter::~ScFileFilter() = default;
bool ScFileFilter::CallbackForFile(StFileSpec const&, StFileInfo const&) {
    return true;
}

ScFolderFilter::~ScFolderFilter() = default;
bool ScFolderFilter::CallbackForFolder(StFileSpec const& folder) {
    return ShouldEnter(folder);
}
bool ScFolderFilter::ShouldEnter(StFileSpec const&) {
    return true;
}

ScFileIterator::~ScFileIterator() = default;

long SrDirectoryEachFile(StFileSpec const& folder, ScFileFilter* files, ScFolderFilter* folders,
                         ScFileIterator& iterator, bool enterFolders) {
    return StWalk{files, folders, iterator, enterFolders}.Folder(folder);
}
