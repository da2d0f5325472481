// Paths as texts: seen from another file, and on streams.
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/stream.h"

namespace {

constexpr std::uint32_t kLongestStoredPath = 65535;

char const* TextOrEmpty(char const* text) {
    return text ? text : "";
}

/// A path taken apart; empty and `.` components are left out.
struct StPathParts {
    bool absolute;
    std::vector<std::string_view> parts;

    explicit StPathParts(std::string_view path) : absolute(!path.empty() && path.front() == '/') {
        while (!path.empty()) {
            std::size_t const length = std::min(path.find('/'), path.size());
            std::string_view const part = path.substr(0, length);
            if (!part.empty() && part != ".") parts.push_back(part);
            path.remove_prefix(std::min(length + 1, path.size()));
        }
    }

    std::string Text() const {
        std::string text(absolute ? "/" : "");
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (i > 0) text += '/';
            text += parts[i];
        }
        return text;
    }
};

/// The folder of a file; a path that ends in `/` is a folder already.
StPathParts FolderOf(std::string_view path) {
    return StPathParts(path.substr(0, path.rfind('/') + 1));
}

/// Follows `way` from `folder`; false where that would leave the root.
bool Follow(StPathParts& folder, StPathParts const& way) {
    for (std::string_view part : way.parts) {
        bool const up = part == "..";
        bool const canGoUp = !folder.parts.empty() && folder.parts.back() != "..";
        if (up && canGoUp) {
            folder.parts.pop_back();
        } else if (up && folder.absolute) {
            return false;
        } else {
            folder.parts.push_back(part);
        }
    }
    return true;
}

bool Exists(char const* path) {
    struct stat status;
    return stat(path, &status) == 0;
}

}  // namespace

void SrMakeRelativePath(char const* fullPath, char const* basePath, ScSx& relativePath) {
    fullPath = TextOrEmpty(fullPath);
    basePath = TextOrEmpty(basePath);
    StPathParts const full{std::string_view(fullPath)};
    StPathParts const folder = FolderOf(basePath);
    auto const [fullRest, folderRest] =
        std::mismatch(full.parts.begin(), full.parts.end(), folder.parts.begin(), folder.parts.end());
    bool const together =
        *basePath && full.absolute == folder.absolute && (!full.absolute || fullRest != full.parts.begin());
    bool const canLeave = std::find(folderRest, folder.parts.end(), "..") == folder.parts.end();
    if (!together || !canLeave || fullRest == full.parts.end()) {
        relativePath.Assign(fullPath);
        return;
    }
    StPathParts relative{std::string_view()};
    relative.parts.assign(std::size_t(folder.parts.end() - folderRest), "..");
    relative.parts.insert(relative.parts.end(), fullRest, full.parts.end());
    relativePath.Assign(relative.Text().c_str());
}

bool SrMakeAbsolutePath(ScSx& out, char const* fullPath, char const* relativePath, char const* basePath,
                        bool mustExist) {
    std::string_view const relative(TextOrEmpty(relativePath));
    std::string_view const base(TextOrEmpty(basePath));
    std::string path;
    if (!relative.empty() && relative.front() == '/') {
        path = relative;
    } else if (!relative.empty() && !base.empty()) {
        StPathParts folder = FolderOf(base);
        if (Follow(folder, StPathParts(relative))) path = folder.Text();
    }
    bool const found = !path.empty() && (!mustExist || Exists(path.c_str()));
    if (!found) path = TextOrEmpty(fullPath);
    out.Assign(path.c_str());
    return found;
}

void SrPutPathStringToStream(SmStream* stream, char const* path) {
    path = TextOrEmpty(path);
    std::size_t const length = std::strlen(path);
    if (length > kLongestStoredPath) SrThrow(SkFileParameter(), nullptr);
    stream->PutBigEndian(static_cast<std::uint32_t>(length));
    stream->Write(static_cast<unsigned int>(length), path);
}

void SrGetPathStringFromStream(SmStream* stream, ScSx& path) {
    std::uint32_t const length = stream->GetBigEndian<std::uint32_t>();
    if (length > kLongestStoredPath) SrThrow(SkBadStreamFormatErrC(), nullptr);
    std::uint64_t remaining = 0;
    if (stream->GetRemaining(remaining) && length > remaining) SrThrow(SkEndOfFile(), nullptr);
    std::string text(length, '\0');
    stream->Read(length, text.data());
    if (text.find('\0') != std::string::npos) SrThrow(SkBadStreamFormatErrC(), nullptr);
    path.Assign(text.c_str());
}
