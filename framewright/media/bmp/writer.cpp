#include "framewright/media/bmp/writer.h"

#include <algorithm>
#include <cstring>

#include "framewright/frame/frame.h"
#include "framewright/media/bmp/header.h"
#include "framewright/media/bmp/row_records.h"
#include "framewright/media/media_errors.h"
#include "framewright/pixel/color_map.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/pixel/pixel_ops.h"
#include "framewright/pixel/row_access.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/numbers.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"
#include "framewright/thornmere/vector.h"

namespace bmp {

namespace {

constexpr std::uint32_t kSignature = 'B' | 'M' << 8;
constexpr std::uint32_t kDataOffset = kFileHeaderBytes + kInfoHeaderBytes;
constexpr std::uint32_t kBitCount = 24;
constexpr std::size_t kBytesPerPixel = 3;
constexpr double kInchesPerMetre = 39.37008;
/// About how many bytes go out at a time.
constexpr std::size_t kWriteBytes = 0x20000;

StHeader HeaderFor(StPoint const& size, StResolution const& resolution) {
    StHeader header;
    header.signature = kSignature;
    header.dataOffset = kDataOffset;
    header.headerSize = kInfoHeaderBytes;
    header.width = static_cast<std::uint32_t>(size.horizontal);
    header.height = static_cast<std::uint32_t>(size.vertical);
    header.planes = 1;
    header.bitCount = kBitCount;
    std::uint64_t const imageSize = header.RowOffset(header.height);
    if (imageSize > UINT32_MAX - kDataOffset) media::ThrowMediaError(SkMediaIncapableOfFormat());
    header.imageSize = static_cast<std::uint32_t>(imageSize);
    header.fileSize = header.imageSize + kDataOffset;
    header.xPixelsPerMetre = static_cast<std::uint32_t>(SrITrunc(resolution.x * kInchesPerMetre));
    header.yPixelsPerMetre = static_cast<std::uint32_t>(SrITrunc(resolution.y * kInchesPerMetre));
    return header;
}

/// Both headers in one write.
void WriteHeaders(SmStream* stream, StHeader const& header) {
    auto const bytes = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    SrThrowIfNIL(bytes.Get());
    WriteHeader(bytes.Get(), header);
    stream->Write(bytes->GetLength(), bytes->Data());
}

/// Gives the rows of a frame as blue, green and red bytes.
class ScPixelSource {
  public:
    explicit ScPixelSource(SmImagerFrame* frame)
        : mFrame(frame),
          mMap(SrGetColorMapFromFrame(frame)),
          mRow(frame),
          mColumns(frame->GetSize().horizontal),
          mPixelID(frame->PixelID()),
          mHasColorRows(ColorRecords::Contains(mPixelID) && HasPlainRows(frame)) {}

    void FetchRow(long y, unsigned char* bytes) {
        if (mHasColorRows) {
            void const* const row = mRow.At(y);
            ColorRecords::Visit(mPixelID, [&]<class Record>(Record record) {
                for (long x = 0; x < mColumns; ++x) {
                    pixel::LoadPixel(row, x, record);
                    Store(pixel::GetRGBA32(record), bytes + x * kBytesPerPixel);
                }
            });
        } else if (mMap) {
            void const* const row = mRow.At(y);
            MappedRecords::Visit(mPixelID, [&]<class Record>(Record record) {
                for (long x = 0; x < mColumns; ++x) {
                    pixel::LoadPixel(row, x, record);
                    Store((*mMap)[static_cast<unsigned char>(record.index)], bytes + x * kBytesPerPixel);
                }
            });
        } else {
            for (long x = 0; x < mColumns; ++x) {
                StRGBA32Pixel color{};
                mFrame->GetPixelAt(x, y, color);
                Store(color, bytes + x * kBytesPerPixel);
            }
        }
    }

  private:
    static void Store(StRGBA32Pixel color, unsigned char* bytes) {
        bytes[0] = color.blue;
        bytes[1] = color.green;
        bytes[2] = color.red;
    }

    SmImagerFrame* mFrame;
    ScColorMap<unsigned char, StRGBA32Pixel>* mMap;
    ScLockedRow mRow;
    long mColumns;
    unsigned long mPixelID;
    bool mHasColorRows;
};

}  // namespace

void WritePicture(SmStream* stream, SmImagerFrame* frame, StResolution const& resolution) {
    StPoint const size = frame->GetSize();
    StHeader const header = HeaderFor(size, resolution);
    WriteHeaders(stream, header);
    if (header.imageSize == 0) return;

    auto const stride = static_cast<std::size_t>(header.Stride());
    std::size_t const pixelBytes = header.width * kBytesPerPixel;
    std::size_t const rowsAtOnce = std::clamp<std::size_t>(kWriteBytes / stride, 1, header.height);
    ScVector<unsigned char> buffer;
    buffer.resize(rowsAtOnce * stride);
    std::size_t filled = 0;
    ScPixelSource pixels(frame);
    for (long y = size.vertical - 1; y >= 0; --y) {
        unsigned char* const row = buffer.data() + filled;
        pixels.FetchRow(y, row);
        std::memcpy(row + pixelBytes, row + pixelBytes - kBytesPerPixel, stride - pixelBytes);
        filled += stride;
        if (filled == buffer.size() || y == 0) {
            stream->Write(static_cast<unsigned int>(filled), buffer.data());
            filled = 0;
        }
    }
}

}  // namespace bmp
