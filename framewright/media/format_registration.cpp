#include "framewright/media/format_registration.h"

#include "framewright/media/media_manager.h"
#include "framewright/media/media_registries.h"
#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/string_lists.h"

namespace media {

namespace {

constexpr unsigned long kNoCodec = SrCode("none");
constexpr long kNoCodecName = 1;

ScString63 NameOf(short list, long index) {
    ScString63 name;
    SrGetIndexedString(name, list, index);
    return name;
}

}  // namespace

void RegisterFormat(SmMediaRecognizer* recognizer, long nameIndex) {
    SrThrowIfNIL(SrGetMediaRegistry());
    SrThrowIfNIL(SrGetStreamNameRegistry());
    SrThrowIfNIL(SrGetCodecNameRegistry());
    unsigned long const type = recognizer->GetType();
    ScMediaRegistry::RegisterObject(type, recognizer);
    if (SmMediaManager* const manager = SrGlobalMediaManager()) manager->Register(recognizer);
    ScStreamNameRegistry::RegisterObject(type, NameOf(kStreamNameStrings, nameIndex).AsCString());
    // A name that is there already stays.
    ScCodecNameRegistry::RegisterObject(kNoCodec, NameOf(kCodecNameStrings, kNoCodecName).AsCString());
}

void UnregisterFormat(ScMC_* cls, unsigned long type) {
    if (SrGetMediaRegistry()) ScMediaRegistry::UnRegisterObject(type);
    if (SrGetStreamNameRegistry()) ScStreamNameRegistry::UnRegisterObject(type);
    if (SmMediaManager* const manager = SrGlobalMediaManager()) manager->UnregisterByClass(cls);
}

}  // namespace media
