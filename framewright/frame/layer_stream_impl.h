// SmImagerLayer: rows on a stream.
#pragma once

#include "framewright/frame/layer.h"
#include "framewright/frame/row_lock.h"
#include "framewright/pixel/row_access.h"

namespace frame {

template <class Pixel>
void PutRowToStream(SmStream& stream, void const* row, long count) {
    for (long x = 0; x < count; ++x) {
        Pixel pixel{};
        pixel::LoadPixel(row, x, pixel);
        pixel.PutToStream(stream);
    }
}

template <class Pixel>
void GetRowFromStream(SmStream& stream, void* row, long count) {
    for (long x = 0; x < count; ++x) {
        Pixel pixel{};
        pixel::LoadPixel(row, x, pixel);
        pixel.GetFromStream(stream);
        pixel::StorePixel(row, x, pixel);
    }
}

}  // namespace frame

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::WritePixels(SmStream* stream, long row, long count) {
    frame::StRowLock const locked(*this, row);
    frame::PutRowToStream<Pixel>(*stream, locked.Address(), count);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::ReadPixels(SmStream* stream, long row, long count) {
    frame::StRowLock const locked(*this, row);
    frame::GetRowFromStream<Pixel>(*stream, locked.Address(), count);
}
