// The system's colour dialog. The library draws no windows: a host supplies the dialog as a routine.
#pragma once

#include "framewright/platform/quickdraw_types.h"
#include "framewright/thornmere/export.h"

/// Shows `color` to the user, lets them change it, and returns whether they accepted.
using StColorPicker = bool (*)(RGBColor& color);

/// Supplies the dialog; null takes it away. Belongs to one thread at a time, as the dialog does.
FRAMEWRIGHT_EXPORT void SrSetColorPicker(StColorPicker picker);
/// Runs the dialog. Without one, nobody accepts: false, and `color` is unchanged.
FRAMEWRIGHT_EXPORT bool SrChooseColor(RGBColor& color);
