#include "pyramid.h"

#include <algorithm>

#include "frame_transform.h"
#include "host_error.h"

namespace {

template <class Pixel>
StRef<SmImagerFrame> PictureOf(SmImagerMipmap<Pixel, ScImagerNonSpool>& mipmap) {
    using Layer = SmImagerLayer<Pixel, ScImagerNonSpool>;
    StPoint const size = mipmap.GetStorageSize();
    auto picture = StRef<Layer>::Adopt(Layer::New());
    SrThrowIfNIL(picture.Get());
    picture->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
    picture->SetBackground({0, 0, 0, 255});
    picture->Erase();
    StMipChain const& chain = mipmap.Chain();
    for (long i = 0; i < chain.levels; ++i) {
        StMipLevel const& level = chain.table[i];
        long const right = std::min(level.left + level.width, size.horizontal);
        for (long y = level.top; y < level.top + level.height; ++y)
            for (long x = level.left; x < right; ++x)
                picture->PutMatchedPixelAt(x, y, mipmap.GetMatchedPixelAt(x, y));
    }
    return StRef<SmImagerFrame>(picture.Get());
}

}  // namespace

StRef<SmImagerFrame> PyramidOf(StRef<SmImagerFrame> const& picture) {
    if (!SrHasPixels(picture->GetSize())) throw HostError("a picture without pixels has no mipmap");
    auto mipmap = StRef<SmImagerFrame>::Adopt(SrMakeMipmapFromFrame(picture.Get()));
    if (!mipmap) mipmap = StRef<SmImagerFrame>::Adopt(SrMakeMipmapFromFrame(InColors(picture).Get()));
#define ROW(Record)                             \
    if (mipmap->PixelID() == Record::PixelID()) \
        return PictureOf(static_cast<SmImagerMipmap<Record, ScImagerNonSpool>&>(*mipmap));
    FOR_EACH_MIPMAP_PIXEL(ROW)
#undef ROW
    throw HostError("no mipmap can be made of this picture");
}
