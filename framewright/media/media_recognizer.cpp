#include "framewright/media/media_recognizer.h"

#include <cstdint>

#include "framewright/core/startup.h"
#include "framewright/media/media.h"
#include "framewright/thornmere/settings.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitStringUtils);
SR_DEPENDS_ON(SrInitializeGlobalMedia);

SM_DEFINE_CLASS(SmMediaRecognizer);

namespace {

ScPersistentData<bool, ScNormalPersistentBehavior<bool>> gAppendFileExtensions(
    nullptr, "Add file extensions to filenames", true);

/// ASCII letters in lower case, whatever the locale.
char Folded(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool SgGetAppendFileExtensions() {
    return gAppendFileExtensions.GetValue();
}
void SgSetAppendFileExtensions(bool append) {
    gAppendFileExtensions.SetValue(append);
}

// Codes have 32 bits whatever the width of their type.
bool StMediaFileDesc::operator==(long fileType) const {
    return mFileType && static_cast<std::uint32_t>(mFileType) == static_cast<std::uint32_t>(fileType);
}

bool StMediaFileDesc::operator==(char const* extension) const {
    if (!mExtension || !extension) return false;
    char const* own = mExtension;
    while (*own && Folded(*own) == Folded(*extension)) {
        ++own;
        ++extension;
    }
    return Folded(*own) == Folded(*extension);
}

SmMediaRecognizer::~SmMediaRecognizer() = default;

short SmMediaRecognizer::Recognize(ScMediaLocation*, unsigned long*, StRef<SmMedia>*, unsigned long, ScMC_*) {
    return 0;
}
SmMedia* SmMediaRecognizer::NewMedia(ScMediaLocation*) {
    return nullptr;
}
unsigned long SmMediaRecognizer::GetType() {
    return 0;
}
bool SmMediaRecognizer::GetFileDesc(long, StMediaFileDesc&) {
    return false;
}
unsigned long SmMediaRecognizer::GetInputFamilyType() {
    return kUnknownCode;
}
long SmMediaRecognizer::NumberOfObjectClasses() {
    return 0;
}

ScMC_* SmMediaRecognizer::ObjectClass(long, unsigned long* family) {
    if (family) *family = kVideoTrack;
    return nullptr;
}

void SmMediaRecognizer::CapableOfReadAndWrite(bool& read, bool& write) {
    read = true;
    write = true;
}

long SmMediaRecognizer::HowManyCodecs() {
    return 1;
}

unsigned long SmMediaRecognizer::AvailableCodec(long, unsigned long& depth, StPoint& maxSize,
                                                bool& hasQuality, unsigned long* family) {
    depth = SrCode("ColB");
    maxSize = {32767, 32767};
    hasQuality = false;
    if (family) *family = kVideoTrack;
    return SrCode("none");
}

void SmMediaRecognizer::Preview(SmObject*&, SmTrackSpec*) {}
