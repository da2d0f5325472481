#include "framewright/ostlinger/color_dialog.h"

namespace {

constinit StColorPicker gPicker = nullptr;

}  // namespace

void SrSetColorPicker(StColorPicker picker) {
    gPicker = picker;
}

bool SrChooseColor(RGBColor& color) {
    return gPicker && gPicker(color);
}
