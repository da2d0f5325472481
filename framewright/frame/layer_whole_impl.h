// SmImagerLayer: the whole frame in place.
#pragma once

#include <algorithm>

#include "framewright/frame/layer.h"
#include "framewright/frame/layer_pixels_impl.h"
#include "framewright/pixel/pixel_ops.h"

namespace frame {

/// Stores `pixel` in the columns `left` to `right` - 1 of a row.
template <class Pixel>
void FillRow(void* row, long left, long right, Pixel const& pixel) {
    for (long x = left; x < right; ++x)
        pixel::StorePixel(row, x, pixel);
}

template <class Pixel>
void InvertRow(void* row, long columns) {
    for (long x = 0; x < columns; ++x) {
        Pixel pixel{};
        pixel::LoadPixel(row, x, pixel);
        pixel::Invert(pixel);
        pixel::StorePixel(row, x, pixel);
    }
}

/// Exchanges two pixels of a layer, which may lie in different rows.
template <class Pixel, class Spool>
void SwapPixels(SmImagerLayer<Pixel, Spool>& layer, long x, long y, long otherX, long otherY) {
    Pixel const pixel = layer.GetMatchedPixelAt(x, y);
    layer.PutMatchedPixelAt(x, y, layer.GetMatchedPixelAt(otherX, otherY));
    layer.PutMatchedPixelAt(otherX, otherY, pixel);
}

}  // namespace frame

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::Erase() {
    for (long y = 0; y < this->mSize.vertical; ++y) {
        frame::FillRow(Row(y), 0, this->mSize.horizontal, mBackground);
    }
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::Flip(bool horizontal, bool vertical) {
    if (!horizontal && !vertical) return;
    this->mUpdated = true;
    long const rows = this->mSize.vertical;
    long const columns = this->mSize.horizontal;
    auto const mirrorRow = [&](long y) {
        for (long x = 0; x < columns / 2; ++x)
            frame::SwapPixels(*this, x, y, columns - 1 - x, y);
    };
    if (!vertical) {
        for (long y = 0; y < rows; ++y)
            mirrorRow(y);
        return;
    }
    for (long y = 0; y < rows / 2; ++y) {
        for (long x = 0; x < columns; ++x) {
            frame::SwapPixels(*this, x, y, horizontal ? columns - 1 - x : x, rows - 1 - y);
        }
    }
    if (horizontal && rows % 2) mirrorRow(rows / 2);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::Invert() {
    this->mUpdated = true;
    for (long y = 0; y < this->mSize.vertical; ++y)
        frame::InvertRow<Pixel>(Row(y), this->mSize.horizontal);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::RectFill(StRect const& rect, ScSmartPixel* pixel) {
    this->mUpdated = true;
    long const left = std::max(rect.left, 0);
    long const top = std::max(rect.top, 0);
    long const right = std::min(rect.right, this->mSize.horizontal);
    long const bottom = std::min(rect.bottom, this->mSize.vertical);
    if (left >= right || top >= bottom) return;
    Pixel record{};
    if constexpr (pixel::MappedPixel<Pixel>) {
        // Through the operation that classes with a map replace.
        this->PutPixelAt(left, top, pixel);
        record = GetMatchedPixelAt(left, top);
    } else {
        frame::ConvertSmartPixel(record, pixel);
    }
    for (long y = top; y < bottom; ++y)
        frame::FillRow(Row(y), left, right, record);
}
