#include "framewright/media/bmp/decode.h"

#include <algorithm>

#include "framewright/pixel/row_packing.h"

namespace bmp {

namespace {

// Pixels of a stretch of bytes, as ScPixelSink takes them.

template <int Bits>
struct StIndices {
    static constexpr bool kIndexed = true;
    unsigned char const* bytes;
    unsigned char operator()(long i) const {
        return static_cast<unsigned char>(pixel::StRowPacking<Bits>::Get(bytes, i));
    }
};

template <>
struct StIndices<8> {
    static constexpr bool kIndexed = true;
    unsigned char const* bytes;
    unsigned char operator()(long i) const { return bytes[i]; }
};

/// A run of one index.
struct StOneIndex {
    static constexpr bool kIndexed = true;
    unsigned char index;
    unsigned char operator()(long) const { return index; }
};

struct StColors16 {
    static constexpr bool kIndexed = false;
    unsigned char const* bytes;
    /// Blue and green are those of a 15-bit word, widened. Red is not: it takes the high five bits of the
    /// second byte, and pictures have come out so ever since.
    StRGBA32Pixel operator()(long i) const {
        unsigned const low = bytes[2 * i];
        unsigned const high = bytes[2 * i + 1];
        return {static_cast<unsigned char>((low & 0x1F) << 3),
                static_cast<unsigned char>(((low & 0xE0) >> 2) + ((high & 3) << 6)),
                static_cast<unsigned char>(high & 0xF8), 255};
    }
};

/// Blue, green, red, and at 32 bits a byte that is not looked at.
template <int Bytes>
struct StColorBytes {
    static constexpr bool kIndexed = false;
    unsigned char const* bytes;
    StRGBA32Pixel operator()(long i) const {
        unsigned char const* const pixel = bytes + Bytes * i;
        return {pixel[0], pixel[1], pixel[2], 255};
    }
};

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

StDepth const* FindDepth(std::uint32_t bitCount) {
    auto const found = std::find_if(std::begin(kDepths), std::end(kDepths),
                                    [&](StDepth const& depth) { return depth.bitCount == bitCount; });
    return found == std::end(kDepths) ? nullptr : found;
}

}  // namespace

bool CanDecode(std::uint32_t bitCount) {
    return FindDepth(bitCount) != nullptr;
}

void Decode(StHeader const& header, ScPixelData& data, ScPixelSink& sink) {
    if (StDepth const* const depth = FindDepth(header.bitCount)) depth->decode(header, data, sink);
}

}  // namespace bmp
