// SmImagerLayer: rows on a stream.
#pragma once

#include "framewright/frame/layer.h"
#include "framewright/frame/row_lock.h"
#include "framewright/pixel/row_access.h"

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::WritePixels(SmStream* stream, long row, long count) {
    frame::StRowLock const locked(*this, row);
    for (long x = 0; x < count; ++x) {
        Pixel pixel{};
        pixel::LoadPixel(locked.Address(), x, pixel);
        pixel.PutToStream(*stream);
    }
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::ReadPixels(SmStream* stream, long row, long count) {
    frame::StRowLock const locked(*this, row);
    for (long x = 0; x < count; ++x) {
        Pixel pixel{};
        pixel::LoadPixel(locked.Address(), x, pixel);
        pixel.GetFromStream(*stream);
        pixel::StorePixel(locked.Address(), x, pixel);
    }
}
