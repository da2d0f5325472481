// Compositing a row of pixels over another of the same record.
#pragma once

#include "framewright/frame/copy_road.h"
#include "framewright/frame/pixel_mixing.h"
#include "framewright/pixel/row_access.h"

namespace frame {

/// The plain way: each pixel by the record's rule, from left to right.
template <class Pixel>
void MergeRowByPixel(void* row, long column, void const* sourceRow, long sourceColumn, long count) {
    for (long i = 0; i < count; ++i) {
        Pixel pixel{};
        Pixel over{};
        pixel::LoadPixel(row, column + i, pixel);
        pixel::LoadPixel(sourceRow, sourceColumn + i, over);
        MergePixels(pixel, over);
        pixel::StorePixel(row, column + i, pixel);
    }
}

/// `count` pixels of 32-bit straight alpha that share no byte: the result of StRGBA32Pixel::Merge for each.
void MergeRGBA32(StRGBA32Pixel* pixels, StRGBA32Pixel const* over, long count);

/// Lays `count` pixels of a source row, from `sourceColumn` on, over those of `row` from `column` on.
template <class Pixel>
void MergeRow(void* row, long column, void const* sourceRow, long sourceColumn, long count) {
    if constexpr (std::same_as<Pixel, StRGBA32Pixel>) {
        auto* const pixels = static_cast<StRGBA32Pixel*>(row) + column;
        auto const* const over = static_cast<StRGBA32Pixel const*>(sourceRow) + sourceColumn;
        if (count > 0 && Disjoint(pixels, over, static_cast<std::size_t>(count) * sizeof(Pixel))) {
            MergeRGBA32(pixels, over, count);
            return;
        }
    }
    MergeRowByPixel<Pixel>(row, column, sourceRow, sourceColumn, count);
}

}  // namespace frame
