#include "framewright/pixel/source_rows.h"

#include <typeinfo>

#include "framewright/frame/layer.h"

namespace pixel {

template <class Record>
static bool IsPlainLayerOf(std::type_info const& type) {
    return type == typeid(SmImagerLayer<Record, ScImagerNonSpool>) ||
           type == typeid(SmImagerLayer<Record, ScImagerSpool>);
}

StRowForm RowFormOf(SmImagerFrame* frame) {
    std::type_info const& type = typeid(*frame);
    if (IsPlainLayerOf<StRGBA32Pixel>(type)) return StRowForm::kRGBA32;
    if (IsPlainLayerOf<StRGB32Pixel>(type)) return StRowForm::kRGB32;
    if (IsPlainLayerOf<StRGB24Pixel>(type)) return StRowForm::kRGB24;
    return StRowForm::kAskFrame;
}

}  // namespace pixel
