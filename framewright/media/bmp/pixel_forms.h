// The forms that pixels have in the data of a BMP file, each as a function of the pixel's number in a stretch
// of bytes: an index into the palette where kIndexed is true, a colour else.
#pragma once

#include "framewright/pixel/pixels.h"
#include "framewright/pixel/row_packing.h"

namespace bmp {

/// Indices packed as in a row of a mapped frame.
template <int Bits>
struct StIndices {
    static constexpr bool kIndexed = true;
    unsigned char const* bytes;
    unsigned char operator()(long i) const {
        if constexpr (Bits == 8)
            return bytes[i];
        else
            return static_cast<unsigned char>(pixel::StRowPacking<Bits>::Get(bytes, i));
    }
};

/// A run of one index.
struct StOneIndex {
    static constexpr bool kIndexed = true;
    unsigned char index;
    unsigned char operator()(long) const { return index; }
};

struct StColors16 {
    static constexpr bool kIndexed = false;
    unsigned char const* bytes;
    /// Blue and green are those of a 15-bit word, widened. Red is not: it takes the high five bits of the
    /// second byte, and pictures have come out so ever since.
    StRGBA32Pixel operator()(long i) const {
        unsigned const low = bytes[2 * i];
        unsigned const high = bytes[2 * i + 1];
        return {static_cast<unsigned char>((low & 0x1F) << 3),
                static_cast<unsigned char>(((low & 0xE0) >> 2) + ((high & 3) << 6)),
                static_cast<unsigned char>(high & 0xF8), 255};
    }
};

/// Blue, green, red, and at four bytes one that is not looked at.
template <int Bytes>
struct StColorBytes {
    static constexpr bool kIndexed = false;
    unsigned char const* bytes;
    StRGBA32Pixel operator()(long i) const {
        unsigned char const* const pixel = bytes + Bytes * i;
        return {pixel[0], pixel[1], pixel[2], 255};
    }
};

}  // namespace bmp
