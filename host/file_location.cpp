#include "file_location.h"

namespace {

/// A file whose name takes no part in numbering.
class LoneFileLocation : public ScMediaFileLocation {
  public:
    ScMediaLocation* Clone() const override {
        std::unique_ptr<ScMediaLocation> const plain(ScMediaFileLocation::Clone());
        ScHeapString path;
        plain->GetFullPath(path);
        auto copy = std::make_unique<LoneFileLocation>();
        copy->SetFullPath(path.AsCString());
        return copy.release();
    }
    long GetSequence() override { return -1; }
    bool SetSequence(long) override { return false; }
};

/// The library looks for digits behind the first character of a path, so that a bare name gets a folder.
std::string WithFolder(std::string const& path) {
    return path.find('/') == std::string::npos ? "./" + path : path;
}

}  // namespace

NameNumber NumberInName(std::string const& path) {
    std::string const full = WithFolder(path);
    ScMediaFileLocation location;
    location.SetFullPath(full.c_str());
    long const number = location.GetSequence();
    // A number can be written back without a change; where there is none it can be added.
    bool const fit =
        number == -1 ? PathOfNumber(location, 0).has_value() : PathOfNumber(location, number) == full;
    if (!fit) return NameNumber::kUnfit;
    return number == -1 ? NameNumber::kNone : NameNumber::kNumber;
}

std::unique_ptr<ScMediaFileLocation> LocationOf(std::string const& path) {
    std::unique_ptr<ScMediaFileLocation> location;
    if (NumberInName(path) == NameNumber::kUnfit)
        location = std::make_unique<LoneFileLocation>();
    else
        location = std::make_unique<ScMediaFileLocation>();
    location->SetFullPath(WithFolder(path).c_str());
    return location;
}

std::optional<std::string> PathOfNumber(ScMediaLocation const& location, long number) {
    std::unique_ptr<ScMediaLocation> const file(location.Clone());
    ScHeapString path;
    try {
        if (!file->SetSequence(number) || file->GetSequence() != number || !file->GetFullPath(path))
            return {};
    } catch (std::exception const&) {
        return {};  // a name that is too long for any file
    }
    return path.AsCString();
}
