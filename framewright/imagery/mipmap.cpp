// The prototypes of mipmaps.
#include "framewright/imagery/mipmap.h"

#include "framewright/core/startup.h"
#include "framewright/core/type_registry.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/reference.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitMipmaps);

namespace {

/// One prototype a class, in memory; spooled mipmaps come from their CloneAtNewSize.
ScTR_<ScMC_*, ScObjectStore<SmImagerFrame>, SmImagerFrame*, SmImagerFrame*> gMipmaps;

template <class Pixel>
void RegisterMipmap() {
    using Mipmap = SmImagerMipmap<Pixel, ScImagerNonSpool>;
    auto prototype = StRef<Mipmap>::Adopt(Mipmap::New());
    SrThrowIfNIL(prototype.Get());
    prototype->IImagerMipmap({2, 2}, 1.0f, false);
    gMipmaps.RegisterObject(Mipmap::Class(), prototype.Get());
}

SmImagerFrame* FindPrototype(unsigned long pixelID) {
    ScMC_* cls = nullptr;
    SmImagerFrame* prototype = nullptr;
    for (int i = 0; gMipmaps.GetObjectByIndex(i, cls, prototype); ++i) {
        if (prototype->PixelID() == pixelID) return prototype;
    }
    return nullptr;
}

}  // namespace

void SrInitMipmaps(bool shuttingDown) {
    if (shuttingDown) {
#define ROW(Record) gMipmaps.UnRegisterObject(SmImagerMipmap<Record, ScImagerNonSpool>::Class());
        FOR_EACH_MIPMAP_PIXEL(ROW)
#undef ROW
    } else {
#define ROW(Record) RegisterMipmap<Record>();
        FOR_EACH_MIPMAP_PIXEL(ROW)
#undef ROW
    }
}

SmImagerFrame* SrMakeMipmapFromFrame(SmImagerFrame* frame) {
    SmImagerFrame* const prototype = FindPrototype(frame->PixelID());
    if (!prototype) return nullptr;
    auto mipmap = StRef<SmImagerFrame>::Adopt(prototype->CloneAtNewSize(frame->GetSize(), false, false));
    mipmap->CopyFromLayer(frame);
    return mipmap.Release();
}
