#include "output_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "host_error.h"

namespace fs = std::filesystem;

namespace {

/// What `path` points at, through symbolic links; the path itself where there is none.
fs::path Destination(std::string const& path) {
    std::error_code ignored;
    fs::path target = path;
    for (int links = 0; links < 40 && fs::is_symlink(target, ignored); ++links) {
        fs::path const next = fs::read_symlink(target, ignored);
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target;
}

/// Throws when `file` exists and may not be replaced.
void RequireReplaceable(std::string const& shownPath, fs::path const& file) {
    struct stat facts {};
    if (stat(file.c_str(), &facts) != 0) return;
    if (S_ISDIR(facts.st_mode)) throw HostError(shownPath, "is a folder");
    if (!S_ISREG(facts.st_mode)) throw HostError(shownPath, "is not a plain file");
    if (access(file.c_str(), W_OK) != 0) throw HostError(shownPath, std::strerror(errno));
}

void KeepPermissions(fs::path const& from, fs::path const& to) {
    struct stat facts {};
    if (stat(from.c_str(), &facts) == 0) (void)chmod(to.c_str(), facts.st_mode & 07777);
}

}  // namespace

OutputFiles::OutputFiles(std::string const& path) : mShownPath(path) {
    fs::path const destination = Destination(path);
    if (destination.filename().empty()) throw HostError(path, "names no file");
    RequireReplaceable(path, destination);
    fs::path const folder = destination.has_parent_path() ? destination.parent_path() : fs::path(".");
    std::string staging = (folder / ".framewright-XXXXXX").string();
    if (!mkdtemp(staging.data())) throw HostError(path, std::strerror(errno));
    mFolder = folder.string();
    mStaging = staging;
    mStagingPath = (fs::path(staging) / destination.filename()).string();
}

OutputFiles::~OutputFiles() {
    std::error_code ignored;
    fs::remove_all(mStaging, ignored);
}

std::vector<std::string> OutputFiles::Publish() {
    std::vector<fs::path> names;
    for (fs::directory_entry const& entry : fs::directory_iterator(mStaging))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    for (fs::path const& name : names)
        RequireReplaceable(mShownPath, mFolder / name);
    std::vector<std::string> published;
    for (fs::path const& name : names) {
        fs::path const from = mStaging / name, to = mFolder / name;
        KeepPermissions(to, from);
        std::error_code error;
        fs::rename(from, to, error);
        if (error) throw HostError(mShownPath, error.message());
        published.push_back(to.string());
    }
    return published;
}
