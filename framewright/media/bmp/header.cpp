#include "framewright/media/bmp/header.h"

#include <algorithm>
#include <span>

#include "framewright/media/ordered_stream.h"

namespace bmp {

namespace {

constexpr bool kLittleEndian = true;
/// Both resolutions of a core header, which has none.
constexpr std::uint32_t kCorePixelsPerMetre = 1000;

/// A field of a header: its width in the file, and where it goes.
struct StField {
    int bits;
    std::uint32_t StHeader::*member;
};

// The fields in the order in which they stand in the file.
constexpr StField kFileHeader[] = {
    {16, &StHeader::signature}, {32, &StHeader::fileSize},   {16, &StHeader::reserved1},
    {16, &StHeader::reserved2}, {32, &StHeader::dataOffset}, {32, &StHeader::headerSize},
};
constexpr StField kCoreHeader[] = {
    {16, &StHeader::width},
    {16, &StHeader::height},
    {16, &StHeader::planes},
    {16, &StHeader::bitCount},
};
constexpr StField kInfoHeader[] = {
    {32, &StHeader::width},           {32, &StHeader::height},          {16, &StHeader::planes},
    {16, &StHeader::bitCount},        {32, &StHeader::compression},     {32, &StHeader::imageSize},
    {32, &StHeader::xPixelsPerMetre}, {32, &StHeader::yPixelsPerMetre}, {32, &StHeader::colorsUsed},
    {32, &StHeader::colorsImportant},
};

void ReadFields(SmStream* stream, std::span<StField const> fields, StHeader& header) {
    for (StField const& field : fields) {
        header.*field.member = static_cast<std::uint32_t>(
            SrReadOrderedSize(stream, field.bits, SrOurByteOrder(), kLittleEndian));
    }
}

void WriteFields(SmStream* stream, std::span<StField const> fields, StHeader const& header) {
    for (StField const& field : fields) {
        std::uint32_t const value = header.*field.member;
        if (field.bits == 16) {
            SrWriteOrderedUInt16(stream, static_cast<std::uint16_t>(value), SrOurByteOrder(), kLittleEndian);
        } else {
            SrWriteOrderedUInt32(stream, value, SrOurByteOrder(), kLittleEndian);
        }
    }
}

/// The number of colours that pixels of `bitCount` bits choose from; 0 where pixels are colours themselves.
std::uint32_t PaletteSize(std::uint32_t bitCount) {
    return bitCount < 16 ? 1u << bitCount : 0;
}

}  // namespace

std::uint64_t StHeader::RowOffset(std::uint32_t row) const {
    std::uint64_t const stride = Stride();
    // Two numbers of 32 bits never pass 64: no division for rows that are not absurdly wide.
    bool const fits = stride <= UINT32_MAX || row == 0 || stride <= UINT64_MAX / row;
    return fits ? stride * row : UINT64_MAX;
}

std::uint64_t StHeader::ClaimedBytes() const {
    std::uint64_t const rows = RowOffset(height);
    if (imageSize == 0) return rows;
    return IsRunLength() ? imageSize : std::min<std::uint64_t>(imageSize, rows);
}

StHeader ReadHeader(SmStream* stream) {
    StHeader header;
    ReadFields(stream, kFileHeader, header);
    if (header.IsCore()) {
        ReadFields(stream, kCoreHeader, header);
        header.xPixelsPerMetre = header.yPixelsPerMetre = kCorePixelsPerMetre;
        header.colorsUsed = header.colorsImportant = PaletteSize(header.bitCount);
    } else {
        ReadFields(stream, kInfoHeader, header);
        if (header.colorsUsed == 0) header.colorsUsed = PaletteSize(header.bitCount);
        header.colorsImportant = std::min(header.colorsImportant, header.colorsUsed);
    }
    return header;
}

void WriteHeader(SmStream* stream, StHeader const& header) {
    WriteFields(stream, kFileHeader, header);
    WriteFields(stream, kInfoHeader, header);
}

}  // namespace bmp
