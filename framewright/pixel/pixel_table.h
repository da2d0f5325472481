// All pixel records, one row each. Identifiers, families and widths stand here and nowhere else: the records
// take them from this list, and so does everything that walks all records or all layers.
//
//     #define SR_ROW(Record, ID, Family, Bits) ...
//     FOR_EACH_LAYER_PIXEL(SR_ROW)
//     #undef SR_ROW
//
// Identifiers are written to files and never change, whatever pattern they seem to miss.
#pragma once

#include <cstdint>

#include "framewright/thornmere/codes.h"

// The records that rows of layers are made of. `Bits` is the width of a pixel in a row: 15 bits of colour
// and a flag count 16, and a record of fewer than 8 bits, or of 24 depth bits, is wider as a variable.
// clang-format off
//      record               id      family  bits
#define FOR_EACH_LAYER_PIXEL(ROW)                    \
    ROW(StRGBA32Pixel,      "ColB", "ColF",  32)     \
    ROW(StRGB32Pixel,       "RG32", "ColF",  32)     \
    ROW(StRGB24Pixel,       "RG24", "ColF",  24)     \
    ROW(StRGB15Pixel,       "RG15", "ColF",  16)     \
    ROW(StRGB48Pixel,       "ColW", "ColF",  48)     \
    ROW(StRGBA64Pixel,      "RG64", "ColF",  64)     \
    ROW(StRGBAFloatPixel,   "RGFL", "ColF", 128)     \
    ROW(StColorFloats,      "CoFl", "ColF",  96)     \
    ROW(StGray8Pixel,       "Gry8", "ColF",   8)     \
    ROW(StGray4Pixel,       "Gry4", "ColF",   4)     \
    ROW(StGray2Pixel,       "Gry2", "ColF",   2)     \
    ROW(StBlackWhitePixel,  "BnW1", "ColF",   1)     \
    ROW(StMapped8Pixel,     "Map8", "ColF",   8)     \
    ROW(StMapped4Pixel,     "Map4", "ColF",   4)     \
    ROW(StMapped2Pixel,     "Map2", "ColF",   2)     \
    ROW(StMapped1Pixel,     "Map1", "ColF",   1)     \
    ROW(StAlpha8Pixel,      "Alp8", "AlpF",   8)     \
    ROW(StAlpha32Pixel,     "Al32", "AlpF",  32)     \
    ROW(StDepthFloatPixel,  "DepF", "DepF",  32)     \
    ROW(StDepthUInt8Pixel,  "Dep8", "DepF",   8)     \
    ROW(StDepthUInt16Pixel, "De16", "DepF",  16)     \
    ROW(StDepthUInt24Pixel, "De24", "DepF",  24)     \
    ROW(StDepthUInt32Pixel, "De32", "DepF",  32)     \
    ROW(StCMYKPixel,        "CMYK", "CmyF",  32)

// The records without layers: plain values and smart pixels only.
//      record               id      family
#define FOR_EACH_PLAIN_PIXEL(ROW)           \
    ROW(StRGBTFloatPixel,   "RGFT", "ColF") \
    ROW(StHSLAPixel,        "HSLA", "ColF") \
    ROW(StHSVAPixel,        "HSVA", "ColF") \
    ROW(StYIQAPixel,        "YIQA", "VidF") \
    ROW(StVelocityPixel,    "VELO", "Posn")

// The layer records that are indices into a colour map, and with them the 15-bit one: the records of layers
// that receive pictures by dithering.
#define FOR_EACH_MAPPED_PIXEL(ROW) \
    ROW(StMapped8Pixel)            \
    ROW(StMapped4Pixel)            \
    ROW(StMapped2Pixel)            \
    ROW(StMapped1Pixel)
#define FOR_EACH_DITHERED_PIXEL(ROW) ROW(StRGB15Pixel) FOR_EACH_MAPPED_PIXEL(ROW)
// clang-format on

#define SR_ROW(...) +1
static_assert(0 FOR_EACH_LAYER_PIXEL(SR_ROW) == 24);
static_assert(0 FOR_EACH_PLAIN_PIXEL(SR_ROW) == 5);
#undef SR_ROW

class ScSmartPixel;
#define SR_ROW(Record, ...) struct Record;
FOR_EACH_LAYER_PIXEL(SR_ROW)
FOR_EACH_PLAIN_PIXEL(SR_ROW)
#undef SR_ROW

namespace pixel {

/// The row of a record.
template <class Record>
struct StFacts;

#define SR_ROW(Record, ID, Family, Bits)                           \
    template <>                                                    \
    struct StFacts<Record> {                                       \
        static constexpr std::uint32_t kPixelID = SrCode(ID);      \
        static constexpr std::uint32_t kFamilyID = SrCode(Family); \
        static constexpr std::int32_t kBits = Bits;                \
    };
FOR_EACH_LAYER_PIXEL(SR_ROW)
#undef SR_ROW

#define SR_ROW(Record, ID, Family)                                 \
    template <>                                                    \
    struct StFacts<Record> {                                       \
        static constexpr std::uint32_t kPixelID = SrCode(ID);      \
        static constexpr std::uint32_t kFamilyID = SrCode(Family); \
    };
FOR_EACH_PLAIN_PIXEL(SR_ROW)
#undef SR_ROW

}  // namespace pixel

/// What every record has: its identifiers, and a new smart pixel of its type with all bytes 0, which the
/// caller owns (-108 when memory is refused).
#define SR_PIXEL_RECORD(Record)                   \
    static constexpr unsigned long PixelID() {    \
        return pixel::StFacts<Record>::kPixelID;  \
    }                                             \
    static constexpr unsigned long FamilyID() {   \
        return pixel::StFacts<Record>::kFamilyID; \
    }                                             \
    static ScSmartPixel* NewSmartPixel()

/// The same for a record that layers are made of, with its width in a row in bits.
#define SR_LAYER_PIXEL_RECORD(Record)         \
    static constexpr long PixelSize() {       \
        return pixel::StFacts<Record>::kBits; \
    }                                         \
    SR_PIXEL_RECORD(Record)
