// The body of a frame on a stream. Numbers are big-endian.
//
//     offset   size   field
//     0        4      top left row
//     4        4      top left column
//     8        4      purpose, a four-character code
//     12       4      dithering, a four-character code
//     16       2      format marker: 0 plain, 1 row runs
//     18       4      packed row bytes: (bits of a pixel * columns + 7) / 8
//     22       ...    rows
//
// Plain rows of pixels below 16 bits are the packed bytes of memory; wider pixels go one by one in the
// record's stream form. With row runs, and whole bytes a pixel, each row is a flag and then one pixel (true:
// all pixels are that one) or all; pixels below a byte go one by one without a flag.
#include <cstring>

#include "framewright/frame/frame.h"
#include "framewright/frame/frame_body_format.h"
#include "framewright/frame/row_lock.h"
#include "framewright/thornmere/stream.h"

namespace {

using frame::kLeastStreamedBits;
using frame::kPlainRows;
using frame::kRunRows;

constexpr std::int32_t kMostPackedRowBytes = 0xFFFFF;

std::int32_t PackedRowBytes(SmImagerFrame& frame) {
    return static_cast<std::int32_t>((frame.PixelSize() * frame.GetSize().horizontal + 7) / 8);
}

/// How many bytes of a pixel count when a row is tested for one colour: the filler of 32-bit RGB does not.
long BytesThatCount(SmImagerFrame& frame) {
    return frame.PixelID() == SrCode("RG32") ? 3 : frame.PixelSize() / 8;
}

/// Pixels of four bytes and more never compare equal: such rows are always stored in full, unless they have
/// one pixel. Files rely on it.
bool SamePixels(std::byte const* a, std::byte const* b, long bytes) {
    return bytes < 4 && std::memcmp(a, b, static_cast<std::size_t>(bytes)) == 0;
}

bool IsConstantRow(SmImagerFrame& frame, long row) {
    long const columns = frame.GetSize().horizontal;
    long const step = frame.PixelSize() / 8;
    long const counted = BytesThatCount(frame);
    frame::StRowLock const locked(frame, row);
    auto const* const first = static_cast<std::byte const*>(locked.Address());
    for (long x = 1; x < columns; ++x) {
        if (!SamePixels(first, first + x * step, counted)) return false;
    }
    return columns > 0;
}

void SpreadFirstPixel(SmImagerFrame& frame, long row) {
    long const step = frame.PixelSize() / 8;
    long const bytes = step * frame.GetSize().horizontal;
    frame::StRowLock const locked(frame, row);
    auto* const pixels = static_cast<std::byte*>(locked.Address());
    for (long i = step; i < bytes; ++i)
        pixels[i] = pixels[i - step];
}

[[noreturn]] void ThrowBadFormat() {
    SrThrow(SkBadStreamFormatErrC(), nullptr);
}

void WritePlainRow(SmImagerFrame& frame, SmStream& stream, long row, std::int32_t packed) {
    if (frame.PixelSize() >= kLeastStreamedBits) {
        frame.WritePixels(&stream, row, frame.GetSize().horizontal);
        return;
    }
    frame::StRowLock const locked(frame, row);
    stream.Write(static_cast<unsigned>(packed), locked.Address());
}

void ReadPlainRow(SmImagerFrame& frame, SmStream& stream, long row, std::int32_t packed) {
    if (frame.PixelSize() >= kLeastStreamedBits) {
        frame.ReadPixels(&stream, row, frame.GetSize().horizontal);
        return;
    }
    frame::StRowLock const locked(frame, row);
    stream.Read(static_cast<unsigned>(packed), locked.Address());
}

void WriteRunRow(SmImagerFrame& frame, SmStream& stream, long row) {
    long const columns = frame.GetSize().horizontal;
    bool constant = false;
    if (frame.PixelSize() % 8 == 0) {
        constant = IsConstantRow(frame, row);
        stream.PutBit(constant);
    }
    frame.WritePixels(&stream, row, constant ? 1 : columns);
}

void ReadRunRow(SmImagerFrame& frame, SmStream& stream, long row) {
    long const columns = frame.GetSize().horizontal;
    bool constant = false;
    if (frame.PixelSize() % 8 == 0) stream.GetBit(constant);
    // A row without pixels has no first one.
    if (constant && columns == 0) ThrowBadFormat();
    frame.ReadPixels(&stream, row, constant ? 1 : columns);
    if (constant) SpreadFirstPixel(frame, row);
}

}  // namespace

void SmImagerFrame::WriteTo(SmStream* stream) {
    SrPutToStream(*stream, GetTopLeft());
    stream->PutBigEndian(static_cast<std::int32_t>(GetPurpose()));
    stream->PutBigEndian(static_cast<std::uint32_t>(GetDithering()));
    std::int32_t const packed = PackedRowBytes(*this);
    long const rows = GetSize().vertical;
    std::uint16_t const marker = mStreamingCompression ? kRunRows : kPlainRows;
    stream->PutBigEndian(marker);
    stream->PutBigEndian(packed);
    for (long row = 0; row < rows; ++row) {
        if (marker == kPlainRows) {
            WritePlainRow(*this, *stream, row, packed);
        } else {
            WriteRunRow(*this, *stream, row);
        }
    }
}

void SmImagerFrame::ReadFrom(SmStream* stream) {
    SrGetFromStream(*stream, mTopLeft);
    SetPurpose(stream->GetBigEndian<std::int32_t>());
    SetDithering(stream->GetBigEndian<std::uint32_t>());
    auto const marker = stream->GetBigEndian<std::uint16_t>();
    auto const packed = stream->GetBigEndian<std::int32_t>();
    if (marker == kPlainRows) {
        if (packed < 1 || packed > kMostPackedRowBytes) ThrowBadFormat();
        if (PixelSize() < kLeastStreamedBits && packed != PackedRowBytes(*this)) ThrowBadFormat();
    } else if (marker != kRunRows) {
        ThrowBadFormat();
    }
    long const rows = GetSize().vertical;
    for (long row = 0; row < rows; ++row) {
        if (marker == kPlainRows) {
            ReadPlainRow(*this, *stream, row, packed);
        } else {
            ReadRunRow(*this, *stream, row);
        }
    }
}
