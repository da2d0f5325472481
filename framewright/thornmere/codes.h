// Four-character codes: pixel types, families, purposes, dithering kinds, track and media types.
#pragma once

#include <cstdint>

/// The code of four characters, the first in the top byte: SrCode("ColB") is 0x436F6C42.
constexpr std::uint32_t SrCode(char const (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

/// "????": a purpose, type or family that is not known.
constexpr std::uint32_t kUnknownCode = SrCode("????");
