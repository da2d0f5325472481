#include "stereo_cut.h"

#include <array>

#include "frame_transform.h"

StRef<SmImagerFrame> EyeOf(StRef<SmImagerFrame> const& picture, StereoCut const& cut) {
    // An eye of its own would have the standard palette.
    StRef<SmImagerFrame> const both = SrGetColorMapFromFrame(picture.Get()) ? InColors(picture) : picture;
    StStereoArrangement const arrangement = cut.layout == StereoLayout::kAbove ? 1 : 2;
    StLeftOrRight const side = cut.rightEye ? 2 : 1;
    auto const window = StRef<SmImagerFrame>::Adopt(SrStereoSubframe(both.Get(), arrangement, side, cut.gap));
    StPoint const size = window->GetSize();
    if (!SrHasPixels(size)) return {};

    auto eye = StRef<SmImagerFrame>::Adopt(SrMakeFrame(size, both->PixelID(), true, false));
    SrThrowIfNIL(eye.Get());
    // By record: a block copy out of a window takes the rows of its parent from column 0 on.
    for (long y = 0; y < size.vertical; ++y) {
        for (long x = 0; x < size.horizontal; ++x) {
            std::array<std::byte, 16> record{};
            window->GetPixelAt(x, y, static_cast<void*>(record.data()));
            eye->PutPixelAt(x, y, static_cast<void const*>(record.data()));
        }
    }
    return eye;
}
