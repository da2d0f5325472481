// Where the pixels of fewer than eight bits lie in the bytes of a row: from the most significant bits down,
// pixel 0 first.
//
//     4 bits   x0 x0 x0 x0 x1 x1 x1 x1
//     2 bits   x0 x0 x1 x1 x2 x2 x3 x3
//     1 bit    x0 x1 x2 x3 x4 x5 x6 x7
//
// Internal to the library, and installed only because the records' inline members are made of it: a host uses
// PlacePixelInRow and GetPixelFromRow of the records, or pixel/row_access.h.
#pragma once

#include <cstdint>

namespace pixel {

template <int Bits>
struct StRowPacking {
    static_assert(Bits == 1 || Bits == 2 || Bits == 4);
    static constexpr int kShift = Bits == 1 ? 3 : Bits == 2 ? 2 : 1;  ///< 1 << kShift pixels a byte
    static constexpr unsigned kMask = (1u << Bits) - 1;

    /// How far the bits of pixel x stand above bit 0 of their byte.
    static unsigned Position(long x) {
        constexpr unsigned kLast = (1u << kShift) - 1;
        return (kLast - (static_cast<unsigned long>(x) & kLast)) * Bits;
    }
    static unsigned Get(void const* row, long x) {
        return static_cast<unsigned char const*>(row)[x >> kShift] >> Position(x) & kMask;
    }
    /// Replaces the bits of pixel x alone. Stored as a char8_t, for the reason told in row_access.h.
    static void Put(void* row, long x, unsigned value) {
        unsigned char const byte = static_cast<unsigned char*>(row)[x >> kShift];
        unsigned const position = Position(x);
        static_cast<char8_t*>(row)[x >> kShift] =
            static_cast<char8_t>((byte & ~(kMask << position)) | (value & kMask) << position);
    }
};

}  // namespace pixel
