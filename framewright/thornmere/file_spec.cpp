// Specs: which file is meant, and what is known of it.
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/system_calls.h"

namespace {

/// 0 when something of that path exists.
long LookUp(char const* path) {
    struct stat status;
    return stat(path, &status) == 0 ? SkNoError() : thornmere::CodeOfSystemError(errno);
}

/// What stands behind the last `/`.
char const* FileNameOf(char const* path) {
    char const* const slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

/// The dot before a file name's extension; null for a name without one.
char const* ExtensionDotOf(char const* fileName) {
    char const* const dot = std::strrchr(fileName, '.');
    return dot && dot != fileName ? dot : nullptr;
}

char const* TextOrEmpty(char const* text) {
    return text ? text : "";
}

}  // namespace

char const* StFileSpec::GetFileName() const {
    return FileNameOf(GetPath());
}

void StFileSpec::SetFileName(char const* name) {
    std::string path(GetPath(), GetFileName());
    path += TextOrEmpty(name);
    mPath.Assign(path.c_str());
}

void StFileSpec::SetExtension(char const* extension) {
    std::string path(GetPath());
    if (char const* dot = ExtensionDotOf(GetFileName())) path.resize(std::size_t(dot - GetPath()));
    if (*TextOrEmpty(extension)) path.append(".").append(extension);
    mPath.Assign(path.c_str());
}

long StFileSpec::ConcatFileName(char const* name) {
    std::string path(GetPath());
    if (!path.empty() && path.back() != '/') path += '/';
    path += TextOrEmpty(name);
    mPath.Assign(path.c_str());
    return LookUp(GetPath());
}

bool StFileSpec::operator==(StFileSpec const& other) const {
    return std::strcmp(GetPath(), other.GetPath()) == 0;
}

StFileInfo const& SkNoFileInfo() {
    static constexpr StFileInfo none{};
    return none;
}

StFileSpec const& SkInvalidFileSpec() {
    static StFileSpec const invalid;
    return invalid;
}

long SrFileSpecFromFullPath(char const* path, StFileSpec& spec) {
    if (!path || !*path) return SkFileParameter();
    long const result = LookUp(path);
    if (result == SkNoError() || result == SkFileMissing()) spec = StFileSpec(path);
    return result;
}

long SrFullPathFromFileSpec(StFileSpec const& spec, ScSx& path) {
    path.Assign(spec.GetPath());
    return spec.IsValid() ? SkNoError() : SkFileParameter();
}

long SrGetFileInfo(StFileSpec const& spec, StFileInfo& info) {
    long const result = LookUp(spec.GetPath());
    if (result != SkNoError()) return result;
    info = SkNoFileInfo();
    if (char const* dot = ExtensionDotOf(spec.GetFileName())) {
        std::strncpy(info.typeText, dot + 1, sizeof info.typeText - 1);
    }
    return SkNoError();
}

long SrFindFolder(StFileSpec& spec, short folderType, bool create) {
    constexpr short kTemporaryFolder = 2;
    if (folderType != kTemporaryFolder) return SkFileMissing();
    long const result = LookUp(spec.GetPath());
    if (result != SkFileMissing() || !create) return result;
    return mkdir(spec.GetPath(), 0777) == 0 ? SkNoError() : thornmere::CodeOfSystemError(errno);
}
