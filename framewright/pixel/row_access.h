// One pixel of a row in memory, for every record that layers are made of. No bounds are checked; the record
// is known when it is compiled, so each of these is a load or a store, with a shift below eight bits.
#pragma once

#include <cstring>
#include <type_traits>

#include "framewright/pixel/pixels.h"

namespace pixel {

/// Whether a row packs several of these into a byte.
template <class Record>
constexpr bool kSubByte = StFacts<Record>::kBits < 8;

/// Copies pixel `x` of `row` to `out`. Of a record that is wider as a variable only the pixel's bits are
/// replaced.
template <class Record>
inline void LoadPixel(void const* row, long x, Record& out) {
    constexpr long kBytes = StFacts<Record>::kBits / 8;
    if constexpr (requires { out.GetPixelFromRow(row, x); })
        out.GetPixelFromRow(row, x);
    else if constexpr (std::is_same_v<Record, StBlackWhitePixel>)
        out.black = StRowPacking<1>::Get(row, x) & 1;
    else if constexpr (sizeof(Record) == 3)
        // Compilers keep the three bytes apart here; of a memcpy they make a word and a byte, and take the
        // word to pieces again.
        out = static_cast<Record const*>(row)[x];
    else
        std::memcpy(static_cast<void*>(&out), static_cast<unsigned char const*>(row) + x * kBytes, kBytes);
}

/// What a record is stored in, at any address: the type of its fields, or wider or narrower bytes. Never
/// unsigned char: a store of that type may change any object, the table of rows included, which would then be
/// read anew for each pixel.
template <class Record>
struct StRowCell {
    static constexpr bool kFloats = std::is_same_v<Record, StColorFloats> ||
                                    std::is_same_v<Record, StRGBAFloatPixel> ||
                                    std::is_same_v<Record, StDepthFloatPixel>;
    using Bytes = std::conditional_t<StFacts<Record>::kBits == 32, std::uint32_t, char8_t>;
    using Words = std::conditional_t<alignof(Record) == 2, std::uint16_t, Bytes>;
    typedef std::conditional_t<kFloats, float, Words> Type __attribute__((aligned(1)));
};

/// Stores `pixel` as pixel `x` of `row`; the other pixels of its byte stay.
template <class Record>
inline void StorePixel(void* row, long x, Record const& pixel) {
    constexpr long kBytes = StFacts<Record>::kBits / 8;
    if constexpr (requires { pixel.PlacePixelInRow(row, x); })
        pixel.PlacePixelInRow(row, x);
    else if constexpr (std::is_same_v<Record, StBlackWhitePixel>)
        StRowPacking<1>::Put(row, x, pixel.black);
    else {
        using Cell = typename StRowCell<Record>::Type;
        constexpr long kCells = kBytes / static_cast<long>(sizeof(Cell));
        Cell* const to = static_cast<Cell*>(row) + x * kCells;
        for (long i = 0; i < kCells; ++i) {
            Cell cell;
            std::memcpy(&cell, reinterpret_cast<unsigned char const*>(&pixel) + i * sizeof(Cell),
                        sizeof(Cell));
            to[i] = cell;
        }
    }
}

}  // namespace pixel
