#include "framewright/imagery/stereo.h"

#include "framewright/imagery/stereo_codes.h"
#include "framewright/imagery/subframe.h"
#include "framewright/imagery/updated.h"
#include "framewright/thornmere/reference.h"

namespace {

/// The part of an axis that an eye takes.
struct StEyeSpan {
    StEyeSpan(std::int32_t length, StLeftOrRight eye, long gap) {
        auto const between = static_cast<std::int32_t>(gap);
        long const half = (long{length} - between) / 2;
        long const start = eye == imagery::kRightEye ? half + between : 0;
        first = static_cast<std::int32_t>(start);
        end = static_cast<std::int32_t>(start + half);
    }
    std::int32_t first;
    std::int32_t end;
};

/// An image without layers.
StRef<SmImagerImage> NewImageLike(SmImagerImage& image) {
    if (image.GetClass() == SmImagerUpdated::Class()) {
        auto updated = StRef<SmImagerUpdated>::Adopt(SmImagerUpdated::New());
        SrThrowIfNIL(updated.Get());
        updated->IImagerUpdated();
        return updated.Get();
    }
    auto plain = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
    SrThrowIfNIL(plain.Get());
    plain->IImagerImage();
    return plain;
}

}  // namespace

SmImagerFrame* SrStereoSubframe(SmImagerFrame* frame, StStereoArrangement arrangement, StLeftOrRight eye,
                                long gap) {
    if (!frame || arrangement > imagery::kLastArrangement) return nullptr;
    StRect subrect = SrWholeRect(frame->GetSize());
    if (arrangement == imagery::kEyesAbove) {
        StEyeSpan const rows(subrect.bottom, eye, gap);
        subrect.top = rows.first;
        subrect.bottom = rows.end;
    } else if (arrangement == imagery::kEyesBeside) {
        StEyeSpan const columns(subrect.right, eye, gap);
        subrect.left = columns.first;
        subrect.right = columns.end;
    } else {
        return StRef<SmImagerFrame>(frame).Release();
    }
    auto window = StRef<SmImagerSubframe>::Adopt(SmImagerSubframe::New());
    SrThrowIfNIL(window.Get());
    window->IImagerSubframe(frame, subrect, 1, 1);
    return window.Release();
}

SmImagerImage* SrStereoSubimage(SmImagerImage* image, StStereoArrangement arrangement, StLeftOrRight eye,
                                long gap) {
    StRef<SmImagerImage> cut = NewImageLike(*image);
    long const layers = image->GetLayerCount();
    for (long i = 0; i < layers; ++i) {
        auto const frame =
            StRef<SmImagerFrame>::Adopt(SrStereoSubframe(image->GetLayer(i), arrangement, eye, gap));
        if (frame) cut->SetLayer(i, frame.Get());
    }
    return cut.Release();
}
