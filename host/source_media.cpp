#include "source_media.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "file_location.h"
#include "host_error.h"

namespace {

void RequireReadableFile(std::string const& path) {
    struct stat facts {};
    if (stat(path.c_str(), &facts) != 0) throw HostError(path, std::strerror(errno));
    if (S_ISDIR(facts.st_mode)) throw HostError(path, "is a folder");
    if (access(path.c_str(), R_OK) != 0) throw HostError(path, std::strerror(errno));
}

SmMediaTrack* FirstFrameTrack(SmMedia& media) {
    for (long i = 0; i < media.NumberOfTracks(); ++i) {
        SmMediaTrack* track = media.GetTrack(i);
        for (long c = 0; c < track->NumberOfObjectClasses(); ++c)
            if (track->ObjectClass(c) == SmImagerFrame::Class()) return track;
    }
    return nullptr;
}

}  // namespace

SourceMedia::SourceMedia(std::string const& path) : mPath(path) {
    RequireReadableFile(path);
    Blaming(path, true, [&] {
        mLocation = LocationOf(path);
        mMedia = StRef<SmMedia>::Adopt(SrGlobalMediaManager()->OpenMedia(mLocation.get(), 1, 0));
    });
    if (!mMedia) throw HostError(path, "no format that can be read here");
    mTrack = FirstFrameTrack(*mMedia);
    if (!mTrack) throw HostError(path, "holds no pictures");
}

StRef<SmImagerFrame> SourceMedia::ReadFrame(long index) const {
    return Blaming(mPath, true, [&] {
        SmObject* object = nullptr;
        SmObject* extra = nullptr;
        mTrack->ReadFrames(object, SmImagerFrame::Class(), extra, index, 1, 0, nullptr, 0);
        StRef<SmObject> const dropExtra = StRef<SmObject>::Adopt(extra);
        if (!object) throw HostError(mPath, "holds no picture");
        return StRef<SmImagerFrame>::Adopt(static_cast<SmImagerFrame*>(object));
    });
}

StRef<SmVideoSpec> SourceMedia::Spec() const {
    auto spec = StRef<SmTrackSpec>::Adopt(mTrack->GetSpec());
    if (!spec || !spec->IsMemberOf(SmVideoSpec::Class())) return {};
    return StRef<SmVideoSpec>::Adopt(static_cast<SmVideoSpec*>(spec.Release()));
}

bool SourceMedia::IsMovie() const {
    SmMediaRecognizer* format = SrGlobalMediaManager()->GetRecognizerByType(mMedia->GetMediaType());
    // The simple formats tell; others are those of movies.
    if (!format || !format->IsMemberOf(SmMediaSimple::Class())) return true;
    return static_cast<SmMediaSimple*>(format)->IsMovieFormat(mLocation.get());
}

std::string FormatName(SmMediaRecognizer& recognizer) {
    StMediaFileDesc row{};
    if (recognizer.GetFileDesc(0, row) && row.mDescription) return row.mDescription;
    return CodeText(recognizer.GetType());
}

std::string CodeText(unsigned long code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        char const c = static_cast<char>(code >> shift & 0xFF);
        text += c >= ' ' && c < 127 ? c : '?';
    }
    return text;
}

std::string PixelName(unsigned long pixelID) {
    char const* name = nullptr;
    return ScLayerNameRegistry::GetObjectByID(pixelID, false, name) && name ? name : "";
}
