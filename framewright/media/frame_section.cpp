#include "framewright/media/frame_section.h"

#include "framewright/media/media_location.h"
#include "framewright/media/stream_use.h"
#include "framewright/thornmere/catalog_stream.h"
#include "framewright/thornmere/error.h"

SmImagerFrame* SrImagerFrameFromStream(ScMediaLocation* location, unsigned long version, bool) {
    ScCatalogReadStream catalog;
    media::StStreamUse const stream(location, kFileRead, SkNoFileInfo());
    SrThrowIfNIL(stream.Get());
    catalog.ICatalogStream(stream.Get());
    if (!catalog.IsCatalogStream() ||
        !catalog.PrepareStreamForRead(SrGetImagerFrameFileType(), version, nullptr)) {
        return nullptr;
    }
    return SrReadImagerFrameFromStream(*stream.Get(), false, false);
}
