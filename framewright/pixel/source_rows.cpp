#include "framewright/pixel/source_rows.h"

#include <typeinfo>

#include "framewright/frame/layer.h"

namespace pixel {

StRowForm RowFormOf(SmImagerFrame* frame) {
    std::type_info const& type = typeid(*frame);
    if (type == typeid(SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>)) return StRowForm::kRGBA32;
    if (type == typeid(SmImagerLayer<StRGB32Pixel, ScImagerNonSpool>)) return StRowForm::kRGB32;
    if (type == typeid(SmImagerLayer<StRGB24Pixel, ScImagerNonSpool>)) return StRowForm::kRGB24;
    return StRowForm::kAskFrame;
}

}  // namespace pixel
