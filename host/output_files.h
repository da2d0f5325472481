// Output that appears whole or not at all: files are written in a hidden folder beside their destination and
// moved into place by rename once all of them are complete.
#pragma once

#include <string>
#include <vector>

class OutputFiles {
  public:
    /// Prepares to write `path`, or files whose names come from it, in its folder. Where the name of a file
    /// is that of a symbolic link, what the link points at is written, and the link stays. Throws HostError
    /// when the folder can't be written or `path` is a folder.
    explicit OutputFiles(std::string const& path);
    /// Removes what has not been published; so does a signal that ends the program.
    ~OutputFiles();
    OutputFiles(OutputFiles const&) = delete;
    OutputFiles& operator=(OutputFiles const&) = delete;

    /// Where to write: a path in the hidden folder that ends in the file name of `path`.
    std::string const& StagingPath() const { return mStagingPath; }
    /// Moves every file of the hidden folder into place, its contents safe on disk. A file that was there
    /// before is replaced, and its permissions are kept. All or nothing: when one can't be moved, those moved
    /// before it are taken back, what they replaced returns, and HostError names the one at fault. No signal
    /// ends the program halfway.
    void Publish();

  private:
    struct Move;

    std::vector<Move> PlannedMoves() const;
    void TakeBack(std::vector<Move> const& moves, std::string const& failure);

    std::string mShownFolder;  ///< as the user gave it, "" or with a slash at its end, for messages
    std::string mStaging;      ///< the hidden folder; in it new/ holds what is written, old/ what is replaced
    std::string mStagingPath;
    bool mKeepStaging = false;  ///< it holds the only copy of something
};
