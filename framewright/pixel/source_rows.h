// The colours of a frame, read row by row. Internal to the library.
//
// One place decides how: the rows of a plain layer of byte colours are read where they lie, every other frame
// is asked for each pixel. Both give the same colours.
#pragma once

#include <cstdint>

#include "framewright/frame/frame.h"
#include "framewright/frame/row_lock.h"
#include "framewright/pixel/pixels.h"
#include "framewright/pixel/row_access.h"
#include "framewright/thornmere/error.h"

namespace pixel {

/// What the rows of a frame hold, where they may be read directly.
enum class StRowForm { kAskFrame, kRGBA32, kRGB32, kRGB24 };

/// The form of `frame`'s rows. A class that derives from a plain layer may answer for its pixels in its own
/// way, so only the very classes count.
StRowForm RowFormOf(SmImagerFrame* frame);

/// Calls `body(colors)` for row `y` of `source`, where `colors(x)` is what GetPixelAt(x, y) gives. -108 for a
/// row that has no memory behind it.
template <class Body>
void WithColorsOfRow(SmImagerFrame* source, StRowForm form, long y, Body const& body) {
    if (form == StRowForm::kAskFrame) {
        body([source, y](long x) {
            StRGBA32Pixel color{};
            source->GetPixelAt(x, y, color);
            return color;
        });
        return;
    }
    frame::StRowLock const lock(*source, y);
    void const* const row = lock.Address();
    SrThrowIfNIL(row);
    auto const read = [row]<class Record>(long x, Record pixel) {
        LoadPixel(row, x, pixel);
        return pixel.GetRGBA32();
    };
    if (form == StRowForm::kRGBA32)
        body([read](long x) { return read(x, StRGBA32Pixel{}); });
    else if (form == StRowForm::kRGB32)
        body([read](long x) { return read(x, StRGB32Pixel{}); });
    else
        body([read](long x) { return read(x, StRGB24Pixel{}); });
}

}  // namespace pixel
