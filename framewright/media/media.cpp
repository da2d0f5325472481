#include "framewright/media/media.h"

#include "framewright/core/startup.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);

SM_DEFINE_CLASS(SmMedia);

SmMedia::SmMedia() = default;
SmMedia::~SmMedia() = default;

void SmMedia::IMedia() {}

void SmMedia::CloneFrom(SmMedia const& other) {
    SmObject::CloneFrom(other);
    mTracks = other.mTracks;
    if (other.mLocation) mLocation.reset(other.mLocation->Clone());
}

void SmMedia::Free() {
    mTracks.clear();
    mLocation.reset();
    SmObject::Free();
}

void SmMedia::SetLocation(ScMediaLocation* location) {
    if (!location) SrThrow(SkInternalRefusal(), nullptr);
    mLocation.reset(location->Clone());
}

void SmMedia::Open(ScMediaLocation*) {
    SrThrow(SkAbstractClassErrC(), nullptr);
}
void SmMedia::OpenNew(ScMediaLocation* location) {
    SetLocation(location);
}
void SmMedia::Close() {}
unsigned long SmMedia::GetMediaType() {
    return 0;
}

double SmMedia::GetDuration() {
    SmMediaTrack* const first = GetTrack(0);
    return first ? first->GetDuration() : 1.0;
}

long SmMedia::NumberOfTracks() {
    return static_cast<long>(mTracks.size());
}

SmMediaTrack* SmMedia::GetTrack(long index) {
    bool const there = index >= 0 && static_cast<std::size_t>(index) < mTracks.size();
    return there ? mTracks[static_cast<std::size_t>(index)].Get() : nullptr;
}

ScMediaLocation* SmMedia::GetLocation() {
    return mLocation.get();
}

void SmMedia::AddTrack(SmMediaTrack* track) {
    if (track) mTracks.push_back(track);
}

void SmMedia::DeleteTrack(SmMediaTrack* track) {
    for (auto entry = mTracks.begin(); entry != mTracks.end(); ++entry) {
        if (entry->Get() != track) continue;
        mTracks.erase(entry);
        break;
    }
}

SmMediaTrack* SmMedia::NewTrack(unsigned long, SmTrackSpec*) {
    return nullptr;
}
