// Output that appears whole or not at all: files are written in a hidden folder beside their destination and
// moved into place by rename once all of them are complete.
#pragma once

#include <string>
#include <vector>

class OutputFiles {
  public:
    /// Prepares to write `path`, or files whose names come from it, in its folder. A symbolic link stands for
    /// what it points at. Throws HostError when that folder can't be written or `path` is a folder.
    explicit OutputFiles(std::string const& path);
    /// Removes what has not been published.
    ~OutputFiles();
    OutputFiles(OutputFiles const&) = delete;
    OutputFiles& operator=(OutputFiles const&) = delete;

    /// Where to write: a path in the hidden folder that ends in the destination's file name.
    std::string const& StagingPath() const { return mStagingPath; }
    /// Moves every file of the hidden folder into place and returns their final paths, in the order of their
    /// names. A file that was there before is replaced and keeps its permissions.
    std::vector<std::string> Publish();

  private:
    std::string mShownPath;  ///< as the user gave it, for messages
    std::string mFolder;     ///< of the destination
    std::string mStaging;    ///< the hidden folder
    std::string mStagingPath;
};
