#include "framewright/media/media_manager.h"

#include "framewright/core/startup.h"
#include "framewright/media/media.h"
#include "framewright/media/media_registries.h"
#include "framewright/thornmere/string_lists.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitializeGlobalMedia);

SM_DEFINE_CLASS(SmMediaManager);

static ScMediaRegistry::Registry gMedia;
static ScStreamNameRegistry::Registry gStreamNames;
static ScCodecNameRegistry::Registry gCodecNames;
static ScTrackNameRegistry::Registry gTrackNames;
static ScMediaRegistry gMediaRegistry;
static ScStreamNameRegistry gStreamNameRegistry;
static ScCodecNameRegistry gCodecNameRegistry;
static ScTrackNameRegistry gTrackNameRegistry;

namespace {

StRef<SmMediaManager> gManager;

struct StTrackTypeName {
    unsigned long type;
    long index;  ///< of its name in kTrackTypeNameStrings
};
constexpr StTrackTypeName kTrackTypeNames[] = {
    {SrCode("VIDE"), 1}, {SrCode("AUDI"), 2}, {SrCode("TEXT"), 3},
    {SrCode("MIDI"), 4}, {SrCode("3DOB"), 5}, {SrCode("TWEE"), 6},
};

/// The first entry that `matches`; borrowed, null if there is none.
template <class Matches>
SmMediaRecognizer* FindFirst(ScVector<StRef<SmMediaRecognizer>> const& recognizers, Matches matches) {
    for (StRef<SmMediaRecognizer> const& recognizer : recognizers) {
        if (matches(*recognizer)) return recognizer.Get();
    }
    return nullptr;
}

/// Whether the format yields objects of a family and a class, where 0 and null stand for any.
bool Yields(SmMediaRecognizer& recognizer, unsigned long family, ScMC_* objectClass) {
    if (!family && !objectClass) return true;
    for (long i = 0; i < recognizer.NumberOfObjectClasses(); ++i) {
        unsigned long itsFamily = 0;
        ScMC_* const itsClass = recognizer.ObjectClass(i, &itsFamily);
        if ((!family || itsFamily == family) && (!objectClass || itsClass == objectClass)) return true;
    }
    return false;
}

/// The surest answer of a walk, the earlier one among equals.
class ScSurest {
  public:
    /// True when `confidence` is the best so far.
    bool Take(short confidence) {
        if (confidence <= mBest) return false;
        mBest = confidence;
        return true;
    }
    bool IsCertain() const { return mBest >= kCertain; }

  private:
    short mBest = 0;
};

}  // namespace

// --- the registries

ScMediaRegistry::Registry& ScMediaRegistry::Global() {
    return gMedia;
}
ScStreamNameRegistry::Registry& ScStreamNameRegistry::Global() {
    return gStreamNames;
}
ScCodecNameRegistry::Registry& ScCodecNameRegistry::Global() {
    return gCodecNames;
}
ScTrackNameRegistry::Registry& ScTrackNameRegistry::Global() {
    return gTrackNames;
}

ScMediaRegistry* SrGetMediaRegistry() {
    return &gMediaRegistry;
}
ScStreamNameRegistry* SrGetStreamNameRegistry() {
    return &gStreamNameRegistry;
}
ScCodecNameRegistry* SrGetCodecNameRegistry() {
    return &gCodecNameRegistry;
}
ScTrackNameRegistry* SrGetTrackNameRegistry() {
    return &gTrackNameRegistry;
}

void SrRegisterTrackTypeNames(bool terminate) {
    ScTrackNameRegistry* const registry = SrGetTrackNameRegistry();
    if (terminate && !registry) return;
    SrThrowIfNIL(registry);
    for (StTrackTypeName const& row : kTrackTypeNames) {
        if (terminate) {
            registry->UnRegisterObject(row.type);
        } else {
            ScString63 name;
            SrGetIndexedString(name, kTrackTypeNameStrings, row.index);
            registry->RegisterObject(row.type, name.AsCString());
        }
    }
}

// --- the global manager

SmMediaManager* SrGlobalMediaManager() {
    return gManager.Get();
}

SmMediaManager& media::GlobalMediaManager() {
    if (!gManager) ThrowMediaError(SkMediaManagerMissing());
    return *gManager;
}

void SrInitializeGlobalMedia(bool terminate) {
    gManager = nullptr;
    if (terminate) return;
    try {
        gManager = StRef<SmMediaManager>::Adopt(SmMediaManager::New());
        SrThrowIfNIL(gManager.Get());
        gManager->IMediaManager();
        SrAddGlobalRecognizers(gManager.Get());
    } catch (...) {
        gManager = nullptr;
        throw;
    }
}

void SrAddGlobalRecognizers(SmMediaManager* manager) {
    while (long const count = manager->NumberOfRecognizers())
        manager->UnregisterByClass(manager->GetRecognizer(count - 1)->GetClass());
    unsigned long type = 0;
    SmMediaRecognizer* prototype = nullptr;
    for (int i = 0; gMedia.GetObjectByIndex(i, type, prototype); ++i) {
        if (!prototype->IsMemberOf(SmMediaRecognizer::Class())) continue;
        auto const clone = StRef<SmMediaRecognizer>::Adopt(prototype->Clone());
        manager->Register(clone.Get());
    }
}

ScVector<ScMediaLocation*>& SrGetMissingMediaList() {
    return media::GlobalMediaManager().mMissingMedia;
}

// --- the manager

SmMediaManager::SmMediaManager() = default;
SmMediaManager::~SmMediaManager() = default;

void SmMediaManager::IMediaManager() {}

void SmMediaManager::CloneFrom(SmMediaManager const& other) {
    SmObject::CloneFrom(other);
    mOpenMedia = other.mOpenMedia;
    mRecognizers = other.mRecognizers;
    for (ScMediaLocation* const location : other.mMissingMedia)
        AddMissingMedia(location);
}

void SmMediaManager::Free() {
    mOpenMedia.clear();
    mRecognizers.clear();
    PurgeMissingMediaList();
    SmObject::Free();
}

void SmMediaManager::Register(SmMediaRecognizer* recognizer) {
    if (recognizer) mRecognizers.push_back(recognizer);
}

void SmMediaManager::UnregisterByClass(ScMC_* cls) {
    for (auto entry = mRecognizers.begin(); entry != mRecognizers.end(); ++entry) {
        if ((*entry)->GetClass() != cls) continue;
        mRecognizers.erase(entry);
        break;
    }
}

long SmMediaManager::NumberOfRecognizers() {
    return static_cast<long>(mRecognizers.size());
}

SmMediaRecognizer* SmMediaManager::GetRecognizer(long index) {
    bool const there = index >= 0 && index < NumberOfRecognizers();
    return there ? mRecognizers[static_cast<std::size_t>(index)].Get() : nullptr;
}

SmMediaRecognizer* SmMediaManager::GetRecognizerByType(unsigned long type) {
    return FindFirst(mRecognizers,
                     [type](SmMediaRecognizer& format) { return !type || format.GetType() == type; });
}

SmMediaRecognizer* SmMediaManager::GetRecognizerByFileType(long type) {
    return FindFirst(mRecognizers, [type](SmMediaRecognizer& format) { return media::GoesBy(format, type); });
}

SmMediaRecognizer* SmMediaManager::GetRecognizerBySample(ScMC_* objectClass, unsigned long* family) {
    return FindFirst(mRecognizers, [objectClass, family](SmMediaRecognizer& format) {
        bool found = false;
        // The walk goes on behind a hit, so `family` ends as the last entry's.
        for (long i = 0; i < format.NumberOfObjectClasses(); ++i)
            found |= format.ObjectClass(i, family) == objectClass;
        return found;
    });
}

bool SmMediaManager::IsMediaMatching(unsigned long type, StFileInfo const& info) {
    SmMediaRecognizer* const recognizer = GetRecognizerByType(type);
    return recognizer && media::GoesBy(*recognizer, static_cast<char const*>(info.typeText));
}

unsigned long SmMediaManager::IdentifyMedia(ScMediaLocation* location, unsigned long family,
                                            ScMC_* objectClass) {
    unsigned long result = kUnknownCode;
    ScSurest surest;
    for (StRef<SmMediaRecognizer> const& recognizer : mRecognizers) {
        bool read = false, write = false;
        recognizer->CapableOfReadAndWrite(read, write);
        if (!read || !Yields(*recognizer, family, objectClass)) continue;
        unsigned long type = 0;
        if (surest.Take(recognizer->Recognize(location, &type, nullptr, family, objectClass))) result = type;
        if (surest.IsCertain()) break;
    }
    return result;
}

SmMedia* SmMediaManager::CreateMedia(ScMediaLocation* location, unsigned long type) {
    SmMediaRecognizer* const recognizer = FindFirst(mRecognizers, [type](SmMediaRecognizer& format) {
        bool read = false, write = false;
        format.CapableOfReadAndWrite(read, write);
        return write && format.GetType() == type;
    });
    return recognizer ? recognizer->NewMedia(location) : nullptr;
}

SmMediaRecognizer* SmMediaManager::FindSurest(ScMediaLocation* location) {
    SmMediaRecognizer* result = nullptr;
    ScSurest surest;
    for (StRef<SmMediaRecognizer> const& recognizer : mRecognizers) {
        if (surest.Take(recognizer->Recognize(location, nullptr, nullptr, 0, nullptr)))
            result = recognizer.Get();
        if (surest.IsCertain()) break;
    }
    return result;
}

SmMediaRecognizer* SmMediaManager::FindByName(ScMediaLocation* location, unsigned long type) {
    SmMediaRecognizer* result = GetRecognizerByType(type);
    if (!result) result = GetRecognizerByFileType(static_cast<long>(type));
    if (!result) media::ThrowMediaError(SkUnrecognizedMedia());
    return result->Recognize(location, nullptr, nullptr, 0, nullptr) > 0 ? result : nullptr;
}

SmMedia* SmMediaManager::OpenMedia(ScMediaLocation* location, long, unsigned long type) {
    SmMediaRecognizer* const recognizer = type ? FindByName(location, type) : FindSurest(location);
    if (!recognizer) return nullptr;
    StRef<SmMedia> media;
    unsigned long itsType = 0;
    recognizer->Recognize(location, &itsType, &media, 0, nullptr);
    if (!media) SrThrow(SkInternalRefusal(), nullptr);
    return media.Release();
}

void SmMediaManager::AddMissingMedia(ScMediaLocation* location) {
    std::unique_ptr<ScMediaLocation> clone(location->Clone());
    mMissingMedia.push_back(clone.get());
    static_cast<void>(clone.release());
}

void SmMediaManager::PurgeMissingMediaList() {
    for (ScMediaLocation* const location : mMissingMedia)
        delete location;
    mMissingMedia.clear();
}

void SmMediaManager::ReleaseMedia(SmMedia* media) {
    for (auto entry = mOpenMedia.begin(); entry != mOpenMedia.end(); ++entry) {
        if (entry->Get() != media) continue;
        entry->Release();  // the one reference that goes is dropped below
        mOpenMedia.erase(entry);
        break;
    }
    if (media) media->ReleaseReference();
}
