#include "framewright/pixel/mapped_layer.h"

#include "framewright/pixel/mapped_layer_impl.h"

#define ROW(Record)                                                              \
    template struct StClassFacts<SmImagerMappedLayer<Record, ScImagerNonSpool>>; \
    template struct StClassFacts<SmImagerMappedLayer<Record, ScImagerSpool>>;    \
    template class SmImagerMappedLayer<Record, ScImagerNonSpool>;                \
    template class SmImagerMappedLayer<Record, ScImagerSpool>;
FOR_EACH_MAPPED_PIXEL(ROW)
#undef ROW

namespace {

/// Calls `use` with the mapped layer of rows in memory that `frame` is, or gives `otherwise`.
template <class Result, class Use>
Result WithMappedLayer(SmImagerFrame* frame, Result otherwise, Use const& use) {
#define ROW(Record)                                                  \
    if (frame->PixelID() == Record::PixelID()) {                     \
        using Layer = SmImagerMappedLayer<Record, ScImagerNonSpool>; \
        bool const isOne = frame->IsMemberOf(Layer::Class());        \
        return isOne ? use(static_cast<Layer*>(frame)) : otherwise;  \
    }
    FOR_EACH_MAPPED_PIXEL(ROW)
#undef ROW
    return otherwise;
}

}  // namespace

bool SrIsColorMappedFrame(SmImagerFrame* frame) {
    return WithMappedLayer(frame, false, [](auto*) { return true; });
}

ScColorMap<unsigned char, StRGBA32Pixel>* SrGetColorMapFromFrame(SmImagerFrame* frame) {
    ScColorMap<unsigned char, StRGBA32Pixel>* const none = nullptr;
    return WithMappedLayer(frame, none, [](auto* layer) { return layer->GetColorMap(); });
}
