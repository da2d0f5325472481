#include "framewright/media/scratch_media.h"

#include <cstdint>

#include "framewright/frame/frame.h"
#include "framewright/imagery/image.h"
#include "framewright/media/media.h"
#include "framewright/media/media_manager.h"
#include "framewright/media/video_spec.h"
#include "framewright/spool/scratch_list.h"
#include "framewright/spool/t_name.h"

namespace {

/// The low 32 bits of the image's address: no other image has them while this one lives, but by chance.
std::uint32_t NumberOf(SmImagerImage const* image) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(image));
}

/// The media in the first folder that takes it, which `file` then names.
StRef<SmMedia> CreateInScratchFolder(SmImagerImage const* image, ScMediaFileLocation& file,
                                     unsigned long mediaType) {
    StRef<SmMedia> media;
    for (StRef<SmScratchLocation> const& folder : spool::ScratchLocations()) {
        StFileSpec spec = folder->GetFolder();
        spec.ConcatFileName(spool::StTName(NumberOf(image)).text);
        file.SetFileSpec(spec);
        media = StRef<SmMedia>::Adopt(media::GlobalMediaManager().CreateMedia(&file, mediaType));
        if (media) break;
    }
    return media;
}

StRef<SmVideoSpec> SpecLike(SmVideoSpec* given) {
    auto spec = StRef<SmVideoSpec>::Adopt(given ? given->Clone() : SmVideoSpec::New());
    SrThrowIfNIL(spec.Get());
    if (!given) spec->IVideoSpec();
    return spec;
}

void AddTracks(SmMedia& media, SmImagerImage& image, SmVideoSpec& spec) {
    for (long i = 0; i < image.GetLayerCount(); ++i) {
        SmImagerFrame* const layer = image.GetLayer(i);
        if (!layer || !layer->GetSaveIntent()) continue;
        spec.mFrameSize = layer->GetSize();
        spec.mFrameType = static_cast<std::uint32_t>(layer->PixelID());
        media.NewTrack(kVideoTrack, &spec);
    }
}

}  // namespace

SmMedia* SrCreateScratchMediaForImager(SmImagerImage* image, ScMediaLocation** location,
                                       unsigned long mediaType, SmVideoSpec* spec) {
    SmMediaManager& manager = media::GlobalMediaManager();
    StRef<SmMedia> media;
    if (location && *location) {
        media = StRef<SmMedia>::Adopt(manager.CreateMedia(*location, mediaType));
    } else {
        ScMediaFileLocation file;
        media = CreateInScratchFolder(image, file, mediaType);
        if (location) *location = file.Clone();
    }
    if (media) AddTracks(*media, *image, *SpecLike(spec));
    return media.Release();
}
