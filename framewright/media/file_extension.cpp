#include "framewright/media/file_extension.h"

#include <cstring>
#include <string>

#include "framewright/media/media_manager.h"
#include "framewright/thornmere/text.h"

namespace {

// No name is made longer than this, its dot not counted.
constexpr unsigned kLongestName = 260;

SmMediaRecognizer* FindFormat(unsigned long type) {
    SmMediaManager* const manager = SrGlobalMediaManager();
    return manager ? manager->GetRecognizerByType(type) : nullptr;
}

}  // namespace

bool SrGetFileExtension(ScSx& name, ScSx& extension) {
    char const* const dot = std::strrchr(name.AsCString(), '.');
    if (!dot) return false;
    extension.Append(dot + 1);
    return true;
}

bool SrStripKnownFileExtensions(ScSx& name, unsigned long type) {
    SmMediaRecognizer* const own = FindFormat(type);
    ScHeapString extension;
    if (!own || !SrGetFileExtension(name, extension)) return true;
    if (media::GoesBy(*own, extension.AsCString())) return false;
    SmMediaManager& manager = *SrGlobalMediaManager();
    for (long i = 0; i < manager.NumberOfRecognizers(); ++i) {
        if (!media::GoesBy(*manager.GetRecognizer(i), extension.AsCString())) continue;
        std::string const stem(name.AsCString(), name.Length() - extension.Length() - 1);
        name.Assign(stem.c_str());
        break;
    }
    return true;
}

void SrAppendFileNameWithExtension(ScSx& name, unsigned long type) {
    SmMediaRecognizer* const format = FindFormat(type);
    if (!SrStripKnownFileExtensions(name, type) || !format) return;
    StMediaFileDesc row{};
    if (!format->GetFileDesc(0, row) || !row.mExtension) return;
    std::size_t const length = name.Length() + std::strlen(row.mExtension);
    if (length > kLongestName) return;
    name.Append((std::string(".") + row.mExtension).c_str());
}
