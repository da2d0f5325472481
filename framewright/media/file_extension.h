// Names of files and their extensions, against what the global manager's formats go by.
#pragma once

#include "framewright/thornmere/export.h"

class ScSx;

/// Appends what stands behind the last dot of `name` to `extension`, which is not cleared first. False, with
/// `extension` left alone, for a name without a dot. A dot in a folder's name counts like any other.
FRAMEWRIGHT_EXPORT bool SrGetFileExtension(ScSx& name, ScSx& extension);

/// Makes `name` ready to take the extension of format `type`: false when it has one already. Another format's
/// extension is taken off with its dot; an unknown one stays.
FRAMEWRIGHT_EXPORT bool SrStripKnownFileExtensions(ScSx& name, unsigned long type);

/// Gives `name` the first extension of format `type`: shot.pict becomes shot.bmp, a.xyz becomes a.xyz.bmp,
/// and a.BMP stays. A name that would get too long (the two lengths reaching 261 bytes) is not extended.
FRAMEWRIGHT_EXPORT void SrAppendFileNameWithExtension(ScSx& name, unsigned long type);
