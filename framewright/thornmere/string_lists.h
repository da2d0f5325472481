// Numbered lists of texts, as a host's resources would hold them. The library ships English texts for every
// list and index that it uses; a host may replace a list.
#pragma once

#include <string>
#include <vector>

#include "framewright/thornmere/export.h"
#include "framewright/thornmere/text.h"

/// Stores the text of entry `index`, counted from 1, of string list `list`; empty where there is none.
FRAMEWRIGHT_EXPORT void SrGetIndexedString(ScSx& out, short list, long index);
/// Replaces a whole list. Names that registries have already copied keep their text.
FRAMEWRIGHT_EXPORT void SrSetIndexedStrings(short list, std::vector<std::string> texts);

// The lists that the library uses.
constexpr short kStreamNameStrings = 20911;
constexpr short kLayerNameStrings = 20912;
constexpr short kPurposeNameStrings = 20913;
constexpr short kTrackTypeNameStrings = 20914;
constexpr short kCodecNameStrings = 20915;
