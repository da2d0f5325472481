#include "framewright/media/bmp/decode.h"

#include <algorithm>

#include "framewright/media/bmp/pixel_forms.h"

namespace bmp {

namespace {

/// Rows as they are, one behind the other.
template <class Source>
void DecodeRows(StHeader const& header, ScPixelData& data, ScPixelSink& sink) {
    bool const topDown = header.bitCount == 1;
    std::int64_t const rows = std::min<std::int64_t>(header.height, sink.Size().vertical);
    std::int64_t const columns = std::min<std::int64_t>(header.width, sink.Size().horizontal);
    if (columns == 0) return;
    auto const bytes = static_cast<std::size_t>((columns * header.bitCount + 7) / 8);
    for (std::int64_t y = 0; y < rows; ++y) {
        auto const row = static_cast<std::uint32_t>(topDown ? y : header.height - 1 - y);
        sink.BeginRow(y);
        sink.Place(0, y, columns, Source{data.Bytes(header.RowOffset(row), bytes)});
    }
}

/// Runs of one index, and stretches that stand in the data as they are.
template <int Bits>
class ScRunLengthDecoder {
  public:
    ScRunLengthDecoder(StHeader const& header, ScPixelData const& data, ScPixelSink& sink)
        : mData(data), mSink(sink), mWidth(header.width), mY(std::int64_t{header.height} - 1) {}

    void Decode() {
        mSink.EraseToFirstColor();
        while (mAt < mData.Size() && (Bits == 4 || mY >= 0)) {
            unsigned char const count = Next();
            unsigned char const value = Next();
            if (count != 0) {
                Run(count, value);
            } else if (value == kEndOfLine) {
                NewLine();
            } else if (value == kEndOfBitmap) {
                return;
            } else if (value == kDelta) {
                mX += Next();
                mY -= Next();
            } else {
                Absolute(value);
            }
        }
    }

  private:
    // What the byte behind a 0 means; greater ones count pixels.
    static constexpr unsigned char kEndOfLine = 0;
    static constexpr unsigned char kEndOfBitmap = 1;
    static constexpr unsigned char kDelta = 2;

    unsigned char Next() { return mData[mAt++]; }

    /// The bottom line, once reached, is not left.
    void NewLine() {
        mX = 0;
        if (mY != 0) --mY;
    }

    void Run(long count, unsigned char value) {
        if constexpr (Bits == 4) {
            // All pixels of the run have the low one of the two indices; they do not take turns.
            PlaceWrapped(count, [&](long) { return StOneIndex{static_cast<unsigned char>(value & 0x0F)}; });
        } else {
            // What does not fit on the line is lost.
            std::int64_t const fits = std::clamp<std::int64_t>(mWidth - mX, 0, count);
            mSink.Place(mX, mY, fits, StOneIndex{value});
            mX += fits;
        }
    }

    void Absolute(long count) {
        unsigned char bytes[256];
        long const consumed = Bits == 4 ? 2 * ((count + 3) / 4) : (count + 1) / 2 * 2;
        for (long i = 0; i < consumed; ++i)
            bytes[i] = Next();
        unsigned char indices[256];
        for (long i = 0; i < count; ++i)
            indices[i] = StIndices<Bits>{bytes}(i);
        PlaceWrapped(count, [&](long done) { return StIndices<8>{indices + done}; });
    }

    /// Places `count` pixels; at the end of a line they go on at the beginning of the next. A position that a
    /// delta has moved past the end never meets it and stays on its line.
    template <class SourceFrom>
    void PlaceWrapped(std::int64_t count, SourceFrom sourceFrom) {
        for (std::int64_t done = 0; done < count;) {
            if (mX == mWidth) NewLine();
            std::int64_t const stretch = mX < mWidth ? std::min(count - done, mWidth - mX) : count - done;
            mSink.Place(mX, mY, stretch, sourceFrom(static_cast<long>(done)));
            mX += stretch;
            done += stretch;
        }
    }

    ScPixelData const& mData;
    ScPixelSink& mSink;
    std::int64_t const mWidth;
    std::int64_t mX = 0;
    std::int64_t mY;
    std::uint64_t mAt = 0;
};

template <int Bits>
void DecodeIndices(StHeader const& header, ScPixelData& data, ScPixelSink& sink) {
    if (header.IsRunLength()) {
        ScRunLengthDecoder<Bits>(header, data, sink).Decode();
    } else {
        DecodeRows<StIndices<Bits>>(header, data, sink);
    }
}

struct StDepth {
    std::uint32_t bitCount;
    void (*decode)(StHeader const& header, ScPixelData& data, ScPixelSink& sink);
};

constexpr StDepth kDepths[] = {
    {1, DecodeRows<StIndices<1>>},
    {4, DecodeIndices<4>},
    {8, DecodeIndices<8>},
    {16, DecodeRows<StColors16>},
    {24, DecodeRows<StColorBytes<3>>},
    {32, DecodeRows<StColorBytes<4>>},
};

}  // namespace

void Decode(StHeader const& header, ScPixelData& data, ScPixelSink& sink) {
    auto const depth = std::find_if(std::begin(kDepths), std::end(kDepths),
                                    [&](StDepth const& row) { return row.bitCount == header.bitCount; });
    if (depth != std::end(kDepths)) {
        depth->decode(header, data, sink);
    } else {
        sink.LeaveEmpty();
    }
}

}  // namespace bmp
