#include "framewright/pixel/color_picker.h"

#include "framewright/core/startup.h"
#include "framewright/ostlinger/color_dialog.h"
#include "framewright/pixel/color_models.h"
#include "framewright/thornmere/error.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);

namespace {

long const gColorPickerError = SrAllocateError(nullptr);

}  // namespace

long SkColorPickerError() {
    return gColorPickerError;
}

bool SrChooseColorWithSystemPicker(StColorFloats& color) {
    RGBColor chosen;
    SrConvertPixel(color, chosen);
    if (!SrChooseColor(chosen)) return false;
    SrConvertPixel(chosen, color);
    return true;
}
