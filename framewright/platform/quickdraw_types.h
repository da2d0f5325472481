// The plain records of QuickDraw that the library meets: colours of 16-bit components and tables of them.
// They are data alone; nothing here needs the platform.
#pragma once

#include <cstdint>

/// A colour of three unsigned 16-bit components, 0xFFFF full.
struct RGBColor {
    std::uint16_t red;
    std::uint16_t green;
    std::uint16_t blue;
};

/// One entry of a colour table: its number, then its colour.
struct ColorSpec {
    std::int16_t value;
    RGBColor rgb;
};

/// A colour table: eight bytes, then its entries, which run on behind the record. Tables live in handles, as
/// `ColorTable**`.
struct ColorTable {
    std::int32_t ctSeed;   ///< tells tables apart: equal seeds mean equal contents
    std::int16_t ctFlags;  ///< 0x8000 marks the table of a device, 0 a table of a picture
    std::int16_t ctSize;   ///< the number of entries less one; -1 in a table without entries
    ColorSpec ctTable[1];  ///< ctSize + 1 of them
};
