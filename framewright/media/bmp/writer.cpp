#include "framewright/media/bmp/writer.h"

#include <algorithm>
#include <cstring>

#include "framewright/frame/frame.h"
#include "framewright/media/bmp/header.h"
#include "framewright/media/bmp/row_conversion.h"
#include "framewright/media/bmp/row_records.h"
#include "framewright/media/media_errors.h"
#include "framewright/pixel/color_map.h"
#include "framewright/pixel/mapped_layer.h"
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

/// Gathers what goes to a stream. It goes out in blocks whose ends are multiples of kWriteBytes: those are
/// whole pages of a file that is written from its beginning, which the system takes fastest.
class ScBlocks {
  public:
    /// For `total` bytes, which come in pieces of at most `greatest`.
    ScBlocks(SmStream* stream, std::size_t total, std::size_t greatest) : mStream(stream) {
        mBytes.resize(std::min(total, kWriteBytes) + greatest);
    }
    /// Room for one piece.
    unsigned char* Room() { return mBytes.data() + mFilled; }
    /// The next piece stands in that room.
    void Add(std::size_t bytes) {
        mFilled += bytes;
        if (mFilled >= kWriteBytes) Write(mFilled - mFilled % kWriteBytes);
    }
    void Finish() {
        if (mFilled > 0) Write(mFilled);
    }

  private:
    void Write(std::size_t bytes) {
        mStream->Write(static_cast<unsigned int>(bytes), mBytes.data());
        mFilled -= bytes;
        std::memmove(mBytes.data(), mBytes.data() + bytes, mFilled);
    }

    SmStream* mStream;
    ScVector<unsigned char> mBytes;
    std::size_t mFilled = 0;
};

void AddHeaders(ScBlocks& blocks, StHeader const& header) {
    auto const bytes = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    SrThrowIfNIL(bytes.Get());
    WriteHeader(bytes.Get(), header);
    std::memcpy(blocks.Room(), bytes->Data(), bytes->GetLength());
    blocks.Add(bytes->GetLength());
}

/// Gives the rows of a frame as blue, green and red bytes.
class ScPixelSource {
  public:
    explicit ScPixelSource(SmImagerFrame* frame)
        : mFrame(frame),
          mMap(HasPlainRows(frame) ? SrGetColorMapFromFrame(frame) : nullptr),
          mRow(frame),
          mColumns(frame->GetSize().horizontal),
          mPixelID(frame->PixelID()),
          mHasColorRows(ColorRecords::Contains(mPixelID) && HasPlainRows(frame)) {}

    void FetchRow(long y, unsigned char* bytes) {
        if (mHasColorRows) {
            ColorRecords::Visit(mPixelID, [&]<class Record>(Record) {
                FetchColors<Record>(mRow.At(y), bytes, mColumns, pixel::GetRGBA32<Record>);
            });
        } else if (mMap) {
            MappedRecords::Visit(mPixelID, [&]<class Record>(Record) {
                FetchColors<Record>(mRow.At(y), bytes, mColumns, [&](Record const& record) {
                    return (*mMap)[static_cast<unsigned char>(record.index)];
                });
            });
        } else {
            for (long x = 0; x < mColumns; ++x) {
                StRGBA32Pixel color{};
                mFrame->GetPixelAt(x, y, color);
                std::memcpy(bytes + x * kBytesPerPixel, &color, kBytesPerPixel);
            }
        }
    }

  private:
    SmImagerFrame* mFrame;
    ScColorMap<unsigned char, StRGBA32Pixel>* mMap;  ///< null where rows are no plain indices
    ScLockedRow mRow;
    long mColumns;
    unsigned long mPixelID;
    bool mHasColorRows;
};

}  // namespace

void WritePicture(SmStream* stream, SmImagerFrame* frame, StResolution const& resolution) {
    StPoint const size = frame->GetSize();
    StHeader const header = HeaderFor(size, resolution);
    auto const stride = static_cast<std::size_t>(header.Stride());
    std::size_t const pixelBytes = header.width * kBytesPerPixel;
    // A picture without rows has no row to make room for, however wide.
    ScBlocks blocks(stream, header.fileSize,
                    std::max<std::size_t>(header.imageSize > 0 ? stride : 0, kDataOffset));
    AddHeaders(blocks, header);
    if (header.imageSize > 0) {
        ScPixelSource pixels(frame);
        for (long y = size.vertical - 1; y >= 0; --y) {
            unsigned char* const row = blocks.Room();
            pixels.FetchRow(y, row);
            std::memcpy(row + pixelBytes, row + pixelBytes - kBytesPerPixel, stride - pixelBytes);
            blocks.Add(stride);
        }
    }
    blocks.Finish();
}

}  // namespace bmp
