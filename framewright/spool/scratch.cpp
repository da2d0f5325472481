#include "framewright/spool/scratch.h"

#include <strings.h>

#include "framewright/core/startup.h"
#include "framewright/spool/scratch_list.h"
#include "framewright/thornmere/error.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitializeScratch);

SM_DEFINE_CLASS(SmScratchLocation);

static ScVector<StRef<SmScratchLocation>> gLocations;

namespace {

/// Takes all files.
class ScDefaultScratchFileFilter : public ScFileFilter {};

/// Keeps a walk in the folder that it starts from.
class ScNoScratchFolderRecursion : public ScFolderFilter {
  public:
    bool ShouldEnter(StFileSpec const&) override { return false; }
};

/// Notes spool files: a walk does not delete what it walks over.
class ScDeleteScratchCacheIterator : public ScFileIterator {
  public:
    bool HandleFile(StFileSpec const& file, StFileInfo const& info) override {
        if (strcasecmp(info.typeText, "STch") == 0) mFiles.push_back(file);
        return false;
    }
    ScVector<StFileSpec> const& Files() const { return mFiles; }

  private:
    ScVector<StFileSpec> mFiles;
};

void ThrowUnlessDone(long result) {
    if (result != SkNoError()) SrThrow(result, nullptr);
}

}  // namespace

SmScratchLocation::~SmScratchLocation() = default;

void SmScratchLocation::CloneFrom(SmScratchLocation const& other) {
    SmObject::CloneFrom(other);
    mFolder = other.mFolder;
}

ScVector<StRef<SmScratchLocation>> const& spool::ScratchLocations() {
    return gLocations;
}

void SrInitializeScratch(bool shuttingDown) {
    if (shuttingDown) gLocations.clear();
}

void SrAddScratchFolder(StFileSpec const& folder) {
    auto location = StRef<SmScratchLocation>::Adopt(SmScratchLocation::New());
    SrThrowIfNIL(location.Get());
    location->SetFolder(folder);
    gLocations.push_back(std::move(location));
}

void SrPurgeScratchFolder(StFileSpec const& folder) {
    ScDefaultScratchFileFilter files;
    ScNoScratchFolderRecursion folders;
    ScDeleteScratchCacheIterator spoolFiles;
    ThrowUnlessDone(SrDirectoryEachFile(folder, &files, &folders, spoolFiles, true));
    for (StFileSpec const& file : spoolFiles.Files())
        ThrowUnlessDone(SrFileDelete(file));
}
