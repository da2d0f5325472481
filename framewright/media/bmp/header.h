// The headers of a BMP file: what it says of itself, before anything is checked against what is there.
#pragma once

#include <cstdint>

class SmStream;

namespace bmp {

/// Bytes of the file header, to which positions behind the second header are counted.
constexpr std::uint32_t kFileHeaderBytes = 14;
constexpr std::uint32_t kCoreHeaderBytes = 12;
constexpr std::uint32_t kInfoHeaderBytes = 40;

/// The fields of the file header and of the header behind it. Fields of 16 bits in the file are held in 32.
struct StHeader {
    std::uint32_t signature = 0;  ///< "BM" on a stream; not looked at
    std::uint32_t fileSize = 0;   ///< not looked at
    std::uint32_t reserved1 = 0;
    std::uint32_t reserved2 = 0;
    std::uint32_t dataOffset = 0;  ///< of the pixels, from the beginning of the stream
    std::uint32_t headerSize = 0;  ///< of the second header; kCoreHeaderBytes for the old, short one
    std::uint32_t width = 0;
    std::uint32_t height = 0;  ///< without a sign: what was written as a negative height is a huge one
    std::uint32_t planes = 0;
    std::uint32_t bitCount = 0;
    std::uint32_t compression = 0;
    std::uint32_t imageSize = 0;  ///< bytes of pixel data as the file tells them, 0 for unknown
    std::uint32_t xPixelsPerMetre = 0;
    std::uint32_t yPixelsPerMetre = 0;
    std::uint32_t colorsUsed = 0;  ///< entries of the palette
    std::uint32_t colorsImportant = 0;

    bool IsCore() const { return headerSize == kCoreHeaderBytes; }
    /// Bytes of a palette entry: the short header's has no fourth one.
    std::uint32_t PaletteEntryBytes() const { return IsCore() ? 3 : 4; }
    /// 4 and 8 bits know a run-length form; at all other depths the compression has no meaning.
    bool IsRunLength() const { return compression != 0 && (bitCount == 4 || bitCount == 8); }
    /// Bytes from one row to the next: rows are padded to 32 bits.
    std::uint64_t Stride() const { return (std::uint64_t{bitCount} * width + 31) / 32 * 4; }
    /// Where row `row` of the file begins, from the first byte of pixel data; UINT64_MAX beyond 64 bits.
    std::uint64_t RowOffset(std::uint32_t row) const;
    /// How many bytes of pixel data the header claims: no more than its rows take, unless run lengths say
    /// what is there.
    std::uint64_t ClaimedBytes() const;
};

/// Reads both headers from where the stream stands. Afterwards `colorsUsed` is the number of palette entries
/// in the file, also where that was left to the depth. Anything goes: only the end of the stream throws.
StHeader ReadHeader(SmStream* stream);

/// Writes the file header and the info header.
void WriteHeader(SmStream* stream, StHeader const& header);

}  // namespace bmp
