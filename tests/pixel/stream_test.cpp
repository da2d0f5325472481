// The stream forms of the records, byte for byte.
#include "framewright/thornmere/stream.h"

#include <cstring>

#include "framewright/thornmere/reference.h"
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

using Bytes = std::vector<int>;

StRef<SmMemoryStream> NewStream(Bytes const& bytes = {}) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    std::vector<unsigned char> const data(bytes.begin(), bytes.end());
    stream->IMemoryStream(data.data(), static_cast<unsigned>(data.size()));
    return stream;
}
Bytes Contents(SmMemoryStream& stream) {
    return {stream.Data(), stream.Data() + stream.GetLength()};
}

/// What the record puts on a stream.
template <class Record>
Bytes Put(Record record) {
    auto stream = NewStream();
    record.PutToStream(*stream.Get());
    return Contents(*stream.Get());
}
/// `record` after it read `bytes`, all of them.
template <class Record>
Record Get(Record record, Bytes const& bytes) {
    auto stream = NewStream(bytes);
    record.GetFromStream(*stream.Get());
    EXPECT_EQ(stream->GetPosition(), bytes.size());
    return record;
}

TEST(Streams, RecordsOfBytes_HaveRedFirst) {
    EXPECT_EQ(Put(Color(1, 2, 3, 4)), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Of(Get(StRGBA32Pixel{}, {1, 2, 3, 4})), (Fields<4>{1, 2, 3, 4}));
    EXPECT_EQ(Put(StRGB32Pixel{3, 2, 1, 0xF4}), (Bytes{0xF4, 1, 2, 3}));
    EXPECT_EQ(Of(Get(StRGB32Pixel{}, {0xF4, 1, 2, 3})), (Fields<4>{1, 2, 3, 0xF4}));
    EXPECT_EQ(Put(StRGB24Pixel{3, 2, 1}), (Bytes{1, 2, 3}));
    EXPECT_EQ(Of(Get(StRGB24Pixel{}, {1, 2, 3})), (Fields<3>{1, 2, 3}));
    EXPECT_EQ(Put(StCMYKPixel{1, 2, 3, 4}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Of(Get(StCMYKPixel{}, {1, 2, 3, 4})), (Fields<4>{1, 2, 3, 4}));
}

TEST(Streams, RGB15_HasTheFlagLowAndBlueHigh) {
    EXPECT_EQ(Put(StRGB15Pixel{0, 0, 0, 1}), (Bytes{0x01, 0x00}));
    EXPECT_EQ(Put(StRGB15Pixel{0, 0, 31, 0}), (Bytes{0x3E, 0x00}));
    EXPECT_EQ(Put(StRGB15Pixel{0, 31, 0, 0}), (Bytes{0xC0, 0x07}));
    EXPECT_EQ(Put(StRGB15Pixel{31, 0, 0, 0}), (Bytes{0x00, 0xF8}));
    for (unsigned word = 0; word < 65536; ++word) {
        Bytes const bytes = {static_cast<int>(word % 256), static_cast<int>(word / 256)};
        StRGB15Pixel const p = Get(StRGB15Pixel{}, bytes);
        ASSERT_EQ(Of(p), (Fields<4>{word / 2 % 32, word / 64 % 32, word / 2048, word % 2}));
        ASSERT_EQ(Put(p), bytes);
    }
}

TEST(Streams, WordsAndFloats_AreBigEndian) {
    EXPECT_EQ(Put(StRGB48Pixel{0x0102, 0x0304, 0x0506}), (Bytes{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(Of(Get(StRGB48Pixel{}, {1, 2, 3, 4, 5, 6})), (Fields<3>{0x0102, 0x0304, 0x0506}));
    EXPECT_EQ(Put(StRGBA64Pixel{0x0102, 0x0304, 0x0506, 0x0708}), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(Of(Get(StRGBA64Pixel{}, {1, 2, 3, 4, 5, 6, 7, 8})),
              (Fields<4>{0x0102, 0x0304, 0x0506, 0x0708}));
    Bytes const color = {0x3F, 0x80, 0, 0, 0xBE, 0x80, 0, 0, 0x7F, 0x80, 0, 0};  // 1.0, -0.25, infinity
    EXPECT_EQ(Put(StColorFloats{1.0f, -0.25f, kInf}), color);
    EXPECT_EQ(Of(Get(StColorFloats{}, color)), Of(StColorFloats{1.0f, -0.25f, kInf}));
    Bytes rgba = color;
    rgba.insert(rgba.end(), {0x3F, 0, 0, 0});
    EXPECT_EQ(Put(StRGBAFloatPixel{1.0f, -0.25f, kInf, 0.5f}), rgba);
    EXPECT_EQ(Of(Get(StRGBAFloatPixel{}, rgba)), Of(StRGBAFloatPixel{1.0f, -0.25f, kInf, 0.5f}));
    EXPECT_EQ(Put(StDepthFloatPixel{-0.25f}), (Bytes{0xBE, 0x80, 0, 0}));
    EXPECT_EQ(Of(Get(StDepthFloatPixel{}, {0xBE, 0x80, 0, 0})), Of(StDepthFloatPixel{-0.25f}));
    EXPECT_EQ(Put(StAlpha32Pixel{0x01020304}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Of(Get(StAlpha32Pixel{}, {1, 2, 3, 4})), (Fields<1>{0x01020304}));
}

TEST(Streams, SingleBytes) {
    for (int v = 0; v < 256; ++v) {
        auto const byte = static_cast<std::uint8_t>(v);
        ASSERT_EQ(Put(StGray8Pixel{byte}), (Bytes{v}));
        ASSERT_EQ(Get(StGray8Pixel{}, {v}).level, v);
        ASSERT_EQ(Put(StAlpha8Pixel{byte}), (Bytes{v}));
        ASSERT_EQ(Get(StAlpha8Pixel{}, {v}).alpha, v);
        ASSERT_EQ(Put(StDepthUInt8Pixel{byte}), (Bytes{v}));
        ASSERT_EQ(Get(StDepthUInt8Pixel{}, {v}).depth, v);
        ASSERT_EQ(Put(StMapped8Pixel{byte}), (Bytes{v}));
        ASSERT_EQ(Get(StMapped8Pixel{}, {v}).index, v);
    }
}

/// One byte a pixel with the value in its low bits; a reader takes those bits alone and keeps its rest.
template <class Record>
void CheckNarrow(unsigned bits) {
    unsigned const mask = (1u << bits) - 1;
    for (int v = 0; v < 256; ++v) {
        Record p{};
        p.rest = 0x2AAAAAA;
        std::uint32_t const rest = Of(p)[1];
        p = Get(p, {v});
        ASSERT_EQ(Of(p), (Fields<2>{v & mask, rest})) << v;
        ASSERT_EQ(Put(p), (Bytes{static_cast<int>(v & mask)})) << v;
    }
}
TEST(Streams, NarrowRecords_TakeAByteEach) {
    CheckNarrow<StGray4Pixel>(4);
    CheckNarrow<StGray2Pixel>(2);
    CheckNarrow<StBlackWhitePixel>(1);
    CheckNarrow<StMapped4Pixel>(4);
    CheckNarrow<StMapped2Pixel>(2);
    CheckNarrow<StMapped1Pixel>(1);
}

TEST(Streams, WideIntegerDepths_Read) {
    EXPECT_EQ(Of(Get(StDepthUInt16Pixel{}, {1, 2})), (Fields<1>{0x0102}));
    EXPECT_EQ(Of(Get(StDepthUInt24Pixel{0, 0x9A}, {0xFF, 1, 2, 3})), (Fields<2>{0x010203, 0x9A}));
    EXPECT_EQ(Of(Get(StDepthUInt32Pixel{}, {0xFF, 1, 2, 3})), (Fields<1>{0xFF010203}));
}

/// Their PutToStream reads as GetFromStream does: nothing is written, and the position moves on.
template <class Record>
void CheckPutReads(unsigned size) {
    auto stream = NewStream({0xFF, 1, 2, 3, 0xFF, 4, 5, 6});
    Bytes const before = Contents(*stream.Get());
    Record p{}, read{};
    p.PutToStream(*stream.Get());
    EXPECT_EQ(Contents(*stream.Get()), before);
    EXPECT_EQ(stream->GetPosition(), size);
    stream->SetPosition(0);
    read.GetFromStream(*stream.Get());
    EXPECT_EQ(Of(p), Of(read));

    // At the end of a stream that is being written there is nothing to read.
    auto empty = NewStream();
    EXPECT_THROW(p.PutToStream(*empty.Get()), std::exception);
    EXPECT_EQ(empty->GetLength(), 0u);
}
TEST(Streams, WideIntegerDepths_DoNotWrite) {
    CheckPutReads<StDepthUInt16Pixel>(2);
    CheckPutReads<StDepthUInt24Pixel>(4);
    CheckPutReads<StDepthUInt32Pixel>(4);
}

/// A stream on which so many bytes find room, and no more.
class FullStream : public SmStream {
  public:
    explicit FullStream(unsigned room) : mRoom(room) {}
    void Write(unsigned int size, void const*) override {
        if (size > mRoom) SrThrow(-34, nullptr);
        mRoom -= size;
    }

  private:
    unsigned mRoom;
};

template <class Record>
long ErrorOfPut(unsigned room) {
    auto const stream = StRef<FullStream>::Adopt(new FullStream(room));
    try {
        Record{}.PutToStream(*stream.Get());
        return 0;
    } catch (std::exception const& failure) {
        ScMessageClass* message;
        return SrGetExceptionValues(failure, message);
    }
}

template <class Record>
void CheckFailingWrites(unsigned bytes, char const* name) {
    for (unsigned room = 0; room < bytes; ++room)
        EXPECT_EQ(ErrorOfPut<Record>(room), -34) << name << ' ' << room;
    EXPECT_EQ(ErrorOfPut<Record>(bytes), 0) << name;
}

TEST(Streams, AFailedWrite_ThrowsWhatTheStreamThrows) {
#define CHECK_WRITES(Record, bytes) CheckFailingWrites<Record>(bytes, #Record)
    CHECK_WRITES(StRGBA32Pixel, 4);
    CHECK_WRITES(StRGB32Pixel, 4);
    CHECK_WRITES(StRGB24Pixel, 3);
    CHECK_WRITES(StRGB15Pixel, 2);
    CHECK_WRITES(StRGB48Pixel, 6);
    CHECK_WRITES(StRGBA64Pixel, 8);
    CHECK_WRITES(StRGBAFloatPixel, 16);
    CHECK_WRITES(StColorFloats, 12);
    CHECK_WRITES(StGray8Pixel, 1);
    CHECK_WRITES(StGray4Pixel, 1);
    CHECK_WRITES(StGray2Pixel, 1);
    CHECK_WRITES(StBlackWhitePixel, 1);
    CHECK_WRITES(StMapped8Pixel, 1);
    CHECK_WRITES(StMapped4Pixel, 1);
    CHECK_WRITES(StMapped2Pixel, 1);
    CHECK_WRITES(StMapped1Pixel, 1);
    CHECK_WRITES(StAlpha8Pixel, 1);
    CHECK_WRITES(StAlpha32Pixel, 4);
    CHECK_WRITES(StDepthFloatPixel, 4);
    CHECK_WRITES(StDepthUInt8Pixel, 1);
    CHECK_WRITES(StCMYKPixel, 4);
#undef CHECK_WRITES
}

TEST(Streams, AShortRead_ThrowsEndOfFile) {
#define ROW(Record, ...)                                                                 \
    {                                                                                    \
        auto stream = NewStream();                                                       \
        Record p{};                                                                      \
        try {                                                                            \
            p.GetFromStream(*stream.Get());                                              \
            ADD_FAILURE() << #Record " read from an empty stream";                       \
        } catch (std::exception const& failure) {                                        \
            ScMessageClass* message;                                                     \
            EXPECT_EQ(SrGetExceptionValues(failure, message), SkEndOfFile()) << #Record; \
        }                                                                                \
    }
    FOR_EACH_LAYER_PIXEL(ROW)
#undef ROW
}

}  // namespace
