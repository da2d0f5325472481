// Indices into a colour map. Without their map they mean no colour, so these records convert to none; the
// mapped smart pixels and the mapped layers, which know the map, do.
#pragma once

#include "framewright/pixel/color_pixels.h"
#include "framewright/pixel/row_packing.h"

template <class Index, class Color>
class ScColorMap;

/// One byte: the index of an entry.
///
///     byte    0
///           index
///
/// Index 255 is FF.
struct FRAMEWRIGHT_EXPORT StMapped8Pixel {
    std::uint8_t index;

    SR_LAYER_PIXEL_RECORD(StMapped8Pixel);

    /// Blends the two entries of `map` and takes the index nearest to the result.
    void Blend(StMapped8Pixel const& other, float t, ScColorMap<unsigned char, StRGBA32Pixel>* map);
    /// The index in `destinationMap` nearest to the source's colour, cut to the record's width. A source of
    /// this very record has its colour looked up in `sourceMap`.
    void ConvertSmart(ScSmartPixel const* source, ScColorMap<unsigned char, StRGBA32Pixel>* sourceMap,
                      ScColorMap<unsigned char, StRGBA32Pixel>* destinationMap);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    void Invert() { index = static_cast<std::uint8_t>(255 - index); }
};

/// An index of four bits in the low bits of a 32-bit record; a row holds two a byte. `rest` means nothing:
/// copies carry it along, everything else leaves it.
///
///     bit   31 ... 4   3 ... 0
///             rest      index
///
/// The indices 1 and 2 side by side in a row are 12.
struct FRAMEWRIGHT_EXPORT StMapped4Pixel {
    std::uint32_t index : 4, rest : 28 = 0;

    SR_LAYER_PIXEL_RECORD(StMapped4Pixel);

    void Blend(StMapped4Pixel const& other, float t, ScColorMap<unsigned char, StRGBA32Pixel>* map);
    void ConvertSmart(ScSmartPixel const* source, ScColorMap<unsigned char, StRGBA32Pixel>* sourceMap,
                      ScColorMap<unsigned char, StRGBA32Pixel>* destinationMap);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;
    void PlacePixelInRow(void* row, long x) const { pixel::StRowPacking<4>::Put(row, x, index); }
    void GetPixelFromRow(void const* row, long x) { index = pixel::StRowPacking<4>::Get(row, x) & 15; }

    void Invert() { index = ~index & 15u; }
};

/// An index of two bits in the low bits of a 32-bit record; a row holds four a byte.
///
///     bit   31 ... 2   1 0
///             rest    index
///
/// The indices 0, 1, 2, 3 side by side in a row are 1B.
struct FRAMEWRIGHT_EXPORT StMapped2Pixel {
    std::uint32_t index : 2, rest : 30 = 0;

    SR_LAYER_PIXEL_RECORD(StMapped2Pixel);

    void Blend(StMapped2Pixel const& other, float t, ScColorMap<unsigned char, StRGBA32Pixel>* map);
    void ConvertSmart(ScSmartPixel const* source, ScColorMap<unsigned char, StRGBA32Pixel>* sourceMap,
                      ScColorMap<unsigned char, StRGBA32Pixel>* destinationMap);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;
    void PlacePixelInRow(void* row, long x) const { pixel::StRowPacking<2>::Put(row, x, index); }
    void GetPixelFromRow(void const* row, long x) { index = pixel::StRowPacking<2>::Get(row, x) & 3; }

    void Invert() { index = ~index & 3u; }
};

/// An index of one bit in the low bit of a 32-bit record; a row holds eight a byte.
///
///     bit   31 ... 1     0
///             rest     index
///
/// Index 1 as the first pixel of a row is 80.
struct FRAMEWRIGHT_EXPORT StMapped1Pixel {
    std::uint32_t index : 1, rest : 31 = 0;

    SR_LAYER_PIXEL_RECORD(StMapped1Pixel);

    void Blend(StMapped1Pixel const& other, float t, ScColorMap<unsigned char, StRGBA32Pixel>* map);
    void ConvertSmart(ScSmartPixel const* source, ScColorMap<unsigned char, StRGBA32Pixel>* sourceMap,
                      ScColorMap<unsigned char, StRGBA32Pixel>* destinationMap);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;
    void PlacePixelInRow(void* row, long x) const { pixel::StRowPacking<1>::Put(row, x, index); }
    void GetPixelFromRow(void const* row, long x) { index = pixel::StRowPacking<1>::Get(row, x) & 1; }

    void Invert() { index = ~index & 1u; }
};
