// Pixels of a file into rows of a frame in memory, and back. Here is decided which pairs of forms are
// converted several pixels at a time; the result is always that of one pixel after the other.
#pragma once

#include <concepts>
#include <cstring>

#include "framewright/media/bmp/pixel_forms.h"
#include "framewright/media/bmp/row_bytes.h"
#include "framewright/pixel/pixel_ops.h"
#include "framewright/pixel/row_access.h"

namespace bmp {

/// Records of four bytes that begin with blue, green and red.
template <class Record>
concept FourByteColor = std::same_as<Record, StRGBA32Pixel> || std::same_as<Record, StRGB32Pixel>;

/// Stores colours as pixels `left` and on of a row. Parts of a record that no colour reaches stay.
template <class Record, class Colors>
void StoreColors(Colors const& colors, void* row, long left, long count) {
    auto* const to = static_cast<unsigned char*>(row);
    if constexpr (FourByteColor<Record> && std::same_as<Colors, StColorBytes<3>>) {
        constexpr bool kAlpha = std::same_as<Record, StRGBA32Pixel>;
        WidenRow(colors.bytes, to + 4 * left, count, kAlpha ? StFourth::kOpaque : StFourth::kKept);
    } else if constexpr (std::same_as<Record, StRGB24Pixel> && std::same_as<Colors, StColorBytes<3>>) {
        std::memcpy(to + 3 * left, colors.bytes, static_cast<std::size_t>(3 * count));
    } else {
        Record record{};
        for (long i = 0; i < count; ++i) {
            pixel::LoadPixel(row, left + i, record);
            pixel::SetRGBA32(record, colors(i));
            pixel::StorePixel(row, left + i, record);
        }
    }
}

/// Stores indices as pixels `left` and on of a row.
template <class Record, class Indices>
void StoreIndices(Indices const& indices, void* row, long left, long count) {
    constexpr long kBits = Record::PixelSize();
    long i = 0;
    if constexpr (std::same_as<Indices, StIndices<kBits>>) {
        // Both sides are packed alike: whole bytes are copied, where they begin with a byte on both sides.
        if (left * kBits % 8 == 0) {
            long const bytes = count * kBits / 8;
            std::memcpy(static_cast<unsigned char*>(row) + left * kBits / 8, indices.bytes,
                        static_cast<std::size_t>(bytes));
            i = bytes * 8 / kBits;
        }
    }
    Record record{};
    for (; i < count; ++i) {
        record.index = indices(i);
        pixel::StorePixel(row, left + i, record);
    }
}

/// Writes the first `count` pixels of a row as blue, green and red bytes. `colorOf` gives a record's colour.
template <class Record, class ColorOf>
void FetchColors(void const* row, unsigned char* bytes, long count, ColorOf const& colorOf) {
    if constexpr (FourByteColor<Record>) {
        NarrowRow(static_cast<unsigned char const*>(row), bytes, count);
    } else if constexpr (std::same_as<Record, StRGB24Pixel>) {
        std::memcpy(bytes, row, static_cast<std::size_t>(3 * count));
    } else {
        Record record{};
        for (long x = 0; x < count; ++x) {
            pixel::LoadPixel(row, x, record);
            StRGBA32Pixel const color = colorOf(record);
            bytes[3 * x] = color.blue;
            bytes[3 * x + 1] = color.green;
            bytes[3 * x + 2] = color.red;
        }
    }
}

}  // namespace bmp
