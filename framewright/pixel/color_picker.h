// Asking the user for a colour.
#pragma once

#include "framewright/pixel/color_pixels.h"

/// Shows `color` in the system's colour dialog (see ostlinger/color_dialog.h) and returns whether the user
/// accepted. Then `color` is what they chose, in steps of 1/65535; otherwise it is unchanged.
FRAMEWRIGHT_EXPORT bool SrChooseColorWithSystemPicker(StColorFloats& color);

/// A code for a dialog that could not be shown, for the host's routine to throw. The library throws it
/// nowhere.
FRAMEWRIGHT_EXPORT long SkColorPickerError();
