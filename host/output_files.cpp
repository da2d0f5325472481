#include "output_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>

#include "host_error.h"
#include "interrupt.h"

namespace fs = std::filesystem;

namespace {

/// As many symbolic links in a row are followed.
constexpr int kMaxLinks = 40;

[[noreturn]] void Fail(std::string const& shown, int error) {
    throw HostError(shown, std::strerror(error));
}

/// What `path` points at, through symbolic links, whether that exists or not; the path itself where there is
/// no link.
fs::path Destination(std::string const& shown, fs::path const& path) {
    std::error_code ignored;
    fs::path target = path;
    for (int links = 0; fs::is_symlink(target, ignored); ++links) {
        if (links == kMaxLinks) Fail(shown, ELOOP);
        fs::path const next = fs::read_symlink(target, ignored);
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target;
}

/// Throws when `file` exists and may not be replaced.
void RequireReplaceable(std::string const& shown, fs::path const& file) {
    struct stat facts {};
    if (stat(file.c_str(), &facts) != 0) return;
    if (S_ISDIR(facts.st_mode)) throw HostError(shown, "is a folder");
    if (!S_ISREG(facts.st_mode)) throw HostError(shown, "is not a plain file");
    if (access(file.c_str(), W_OK) != 0) Fail(shown, errno);
}

/// Gives `file` the permissions of the file that it is to replace, if there is one, and waits until its bytes
/// are on the disk: a rename may get there before the bytes do. What makes a program run as somebody else is
/// not carried over.
void Complete(std::string const& shown, fs::path const& file, fs::path const& replaced) {
    int const descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor == -1) Fail(shown, errno);
    struct stat facts {};
    if (stat(replaced.c_str(), &facts) == 0) (void)fchmod(descriptor, facts.st_mode & 0777);
    int const error = fsync(descriptor) == 0 ? 0 : errno;
    close(descriptor);
    // Some file systems have nothing to wait for.
    if (error != 0 && error != EINVAL && error != ENOSYS) Fail(shown, error);
}

}  // namespace

/// The way of one file into its place.
struct OutputFiles::Move {
    std::string shown;  ///< the final path as the user would write it
    fs::path from, to;  ///< `to` is no link
    fs::path kept;      ///< where the replaced file is kept; empty while nothing is
    bool inPlace = false;

    /// Moves the file. `safe` empty: the file that it replaces is given up at once, in one step; else that is
    /// kept under the name `safe`.
    void Do(fs::path const& safe) {
        std::error_code ignored;
        if (!safe.empty() && fs::exists(to, ignored)) {
            // By a second name, so that there is a file at each moment; by its only name where there are no
            // second ones.
            if (link(to.c_str(), safe.c_str()) != 0 && rename(to.c_str(), safe.c_str()) != 0)
                Fail(shown, errno);
            kept = safe;
        }
        if (rename(from.c_str(), to.c_str()) != 0) Fail(shown, errno);
        inPlace = true;
    }
    /// Puts back what was there before; returns whether that is so.
    bool Undo() const {
        if (!kept.empty()) return rename(kept.c_str(), to.c_str()) == 0;
        return !inPlace || unlink(to.c_str()) == 0;
    }
};

OutputFiles::OutputFiles(std::string const& path) {
    fs::path const name = fs::path(path).filename();
    if (name.empty() || name == "." || name == "..") throw HostError(path, "names no file");
    mShownFolder = path.substr(0, path.size() - name.string().size());
    fs::path const destination = Destination(path, path);
    RequireReplaceable(path, destination);

    // Beside what will be replaced, since a rename stays within one file system.
    fs::path const folder = destination.has_parent_path() ? destination.parent_path() : fs::path(".");
    std::string staging = fs::absolute(folder / ".framewright-XXXXXX").string();
    auto const hold = HoldInterrupts();
    if (!mkdtemp(staging.data())) Fail(path, errno);
    mStaging = staging;
    fs::path const written = fs::path(mStaging) / "new";
    std::error_code error, ignored;
    if (fs::create_directory(written, error)) fs::create_directory(fs::path(mStaging) / "old", error);
    if (error) {
        fs::remove_all(mStaging, ignored);
        throw HostError(path, error.message());
    }
    RemoveOnInterrupt(mStaging);
    mStagingPath = (written / name).string();
}

OutputFiles::~OutputFiles() {
    auto const hold = HoldInterrupts();
    std::error_code ignored;
    if (!mKeepStaging) fs::remove_all(mStaging, ignored);
    RemoveOnInterrupt("");
}

/// In the order of the names; none has a file or folder in its way that may not be replaced.
std::vector<OutputFiles::Move> OutputFiles::PlannedMoves() const {
    std::vector<Move> moves;
    for (fs::directory_entry const& entry : fs::directory_iterator(fs::path(mStaging) / "new")) {
        std::string const shown = mShownFolder + entry.path().filename().string();
        moves.push_back({shown, entry.path(), Destination(shown, shown), {}});
    }
    std::sort(moves.begin(), moves.end(), [](Move const& a, Move const& b) { return a.shown < b.shown; });
    std::set<fs::path> taken;
    for (Move const& move : moves) {
        RequireReplaceable(move.shown, move.to);
        if (!taken.insert(fs::weakly_canonical(move.to)).second)
            throw HostError(move.shown, "is a link to another file of the same sequence");
    }
    return moves;
}

void OutputFiles::Publish() {
    std::vector<Move> moves = PlannedMoves();
    for (Move const& move : moves)
        Complete(move.shown, move.from, move.to);

    auto const hold = HoldInterrupts();
    fs::path const old = fs::path(mStaging) / "old";
    try {
        for (Move& move : moves)
            move.Do(moves.size() > 1 ? old / move.from.filename() : fs::path());
    } catch (HostError const& error) {
        TakeBack(moves, error.what());
        throw;
    }
}

/// Undoes `moves` from the last on. Where that fails too, throws what failed and what is where.
void OutputFiles::TakeBack(std::vector<Move> const& moves, std::string const& failure) {
    std::string stuck;
    for (auto move = moves.rbegin(); move != moves.rend(); ++move) {
        if (move->Undo()) continue;
        stuck += "; " + move->shown + " could not be put back";
        if (!move->kept.empty()) {
            stuck += ", it is kept as " + move->kept.string();
            mKeepStaging = true;
            RemoveOnInterrupt("");
        }
    }
    if (!stuck.empty()) throw HostError(failure + stuck);
}
