#include "framewright/media/bmp.h"

#include <algorithm>
#include <cstdio>

#include "framewright/frame/frame.h"
#include "framewright/media/bmp/reader.h"
#include "framewright/media/bmp/writer.h"
#include "framewright/media/format_registration.h"
#include "framewright/media/ordered_stream.h"
#include "framewright/media/stream_use.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitializeGlobalMedia);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitializeMappedLayers);
SR_DEPENDS_ON(SrRegisterBmp);

SM_DEFINE_CLASS(SmMediaRecognizerBmp);

namespace {

constexpr unsigned long kBmpType = SrCode("BMP ");
/// Of the format's name in the list of stream names.
constexpr long kBmpStreamName = 10;
/// What the signature of a file without an extension is read in.
constexpr unsigned int kSignatureBytes = 4;
constexpr float kDefaultResolution = 72.0F;

constexpr StMediaFileDesc kFileDescs[] = {
    {SrCode("BMP "), 0, "bmp", 0, "Bitmap"},
    {SrCode("DIB "), 0, "dib", 0, "Bitmap"},
};

SmStream* GetOrThrow(media::StStreamUse const& use) {
    if (!use.Get()) media::ThrowMediaError(SkFileNotFound());
    return use.Get();
}

bool BeginsWithSignature(ScMediaLocation* location) {
    media::StStreamUse const stream(location, kFileRead, SkNoFileInfo());
    unsigned char bytes[kSignatureBytes];
    return stream.Get() && SrStreamIn(stream.Get(), bytes, kSignatureBytes) == kSignatureBytes &&
           bytes[0] == 'B' && bytes[1] == 'M';
}

/// What the spec of the media's first track says, if there is one.
bmp::StResolution ResolutionOf(SmMedia* media) {
    SmMediaTrack* const track = media ? media->GetTrack(0) : nullptr;
    auto const spec = StRef<SmTrackSpec>::Adopt(track ? track->GetSpec() : nullptr);
    if (!spec || !spec->IsMemberOf(SmVideoSpec::Class())) return {kDefaultResolution, kDefaultResolution};
    auto const* const video = static_cast<SmVideoSpec const*>(spec.Get());
    return {video->mResolutionX, video->mResolutionY};
}

}  // namespace

SmMediaRecognizerBmp::~SmMediaRecognizerBmp() = default;

unsigned long SmMediaRecognizerBmp::GetType() {
    return kBmpType;
}

bool SmMediaRecognizerBmp::GetFileDesc(long index, StMediaFileDesc& desc) {
    if (index < 0 || index >= std::ssize(kFileDescs)) return false;
    desc = kFileDescs[index];
    return true;
}

short SmMediaRecognizerBmp::CanOpen(ScMediaLocation* location) {
    StFileInfo info = SkNoFileInfo();
    if (location->GetFileInfo(info) != kSearchFound) return 0;
    char const* const type = info.typeText;
    bool const known = *type ? std::any_of(std::begin(kFileDescs), std::end(kFileDescs),
                                           [&](StMediaFileDesc const& row) { return row == type; })
                             : BeginsWithSignature(location);
    return known ? kCertain : 0;
}

void SmMediaRecognizerBmp::ReadFrame(ScMediaLocation* location, SmImagerFrame*& frame, long,
                                     ScProgressIndicator*, unsigned long option) {
    media::StStreamUse const stream(location, kFileRead, SkNoFileInfo());
    frame = bmp::ReadPicture(GetOrThrow(stream), frame, option);
}

void SmMediaRecognizerBmp::WriteFrame(ScMediaLocation* location, SmImagerFrame* frame, long,
                                      ScProgressIndicator*) {
    if (!frame) media::ThrowMediaError(SkMediaIncapableOfFormat());
    bmp::StResolution const resolution = ResolutionOf(mCurrentMedia);
    StFileInfo info = SkNoFileInfo();
    std::snprintf(info.typeText, sizeof info.typeText, "%s", kFileDescs[0].mExtension);
    media::StStreamUse stream(location, kFileReadWrite, info);
    bmp::WritePicture(GetOrThrow(stream), frame, resolution);
    stream.EndFileHere();
    stream.Release();
}

void SrRegisterBmp(bool terminate) {
    if (terminate) {
        media::UnregisterFormat(SmMediaRecognizerBmp::Class(), kBmpType);
        return;
    }
    auto const recognizer = StRef<SmMediaRecognizerBmp>::Adopt(SmMediaRecognizerBmp::New());
    SrThrowIfNIL(recognizer.Get());
    media::RegisterFormat(recognizer.Get(), kBmpStreamName);
}
