// Ordered integers and moves along a stream.
#include "framewright/media/ordered_stream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr bool kLittle = true;
constexpr bool kBig = false;

StRef<SmMemoryStream> MemoryStream(Bytes const& bytes) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return stream;
}

Bytes Written(SmMemoryStream* stream) {
    return Bytes(stream->Data(), stream->Data() + stream->GetLength());
}

long CodeOf(std::exception const& exception) {
    ScMessageClass* message = nullptr;
    return SrGetExceptionValues(exception, message);
}

/// The code that `work` throws, or 32767 for none.
template <class Work>
long Thrown(Work work) {
    try {
        work();
    } catch (std::exception const& exception) {
        return CodeOf(exception);
    }
    return SkNothingCaught();
}

/// A stream without a position over a few bytes; counts the calls.
class SequentialStream : public SmStream {
  public:
    explicit SequentialStream(Bytes bytes) : mBytes(std::move(bytes)) {}
    void* Read(unsigned int size, void* destination) override {
        ++reads;
        for (unsigned int i = 0; i < size; ++i) {
            if (mAt == mBytes.size()) SrThrow(SkEndOfFile(), nullptr);
            static_cast<unsigned char*>(destination)[i] = mBytes[mAt++];
        }
        return destination;
    }
    void Write(unsigned int size, void const* source) override {
        ++writes;
        if (full) SrThrow(SkDiskFull(), nullptr);
        auto const* const bytes = static_cast<unsigned char const*>(source);
        written.insert(written.end(), bytes, bytes + size);
    }

    Bytes written;
    int reads = 0;
    int writes = 0;
    bool full = false;

  private:
    Bytes mBytes;
    std::size_t mAt = 0;
};

/// A memory stream that counts its reads and has room for no more than `room` bytes.
class CountedStream : public SmMemoryStream {
  public:
    explicit CountedStream(Bytes const& bytes) {
        IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    }
    void* Read(unsigned int size, void* destination) override {
        ++reads;
        return SmMemoryStream::Read(size, destination);
    }
    void Write(unsigned int size, void const* source) override {
        ++writes;
        if (size > room) {
            SmMemoryStream::Write(room, source);
            SrThrow(SkDiskFull(), nullptr);
        }
        SmMemoryStream::Write(size, source);
    }

    int reads = 0;
    int writes = 0;
    unsigned int room = UINT32_MAX;
};

template <class T>
StRef<T> Made(T* object) {
    return StRef<T>::Adopt(object);
}

// One row per routine: the bytes on the stream, the value they are in little-endian and in big-endian order.
template <class Value>
struct OrderedRow {
    char const* name;
    void (*read)(SmStream*, Value&, bool, bool);
    void (*write)(SmStream*, Value const&, bool, bool);
    Bytes bytes;
    Value little;
    Value big;
};

template <class Value>
void CheckRow(OrderedRow<Value> const& row) {
    SCOPED_TRACE(row.name);
    bool const ours = SrOurByteOrder();
    for (bool const theirs : {kLittle, kBig}) {
        Value const expected = theirs == kLittle ? row.little : row.big;
        SCOPED_TRACE(theirs == kLittle ? "little-endian" : "big-endian");

        StRef<SmMemoryStream> const in = MemoryStream(row.bytes);
        Value value{};
        row.read(in.Get(), value, ours, theirs);
        EXPECT_EQ(value, expected);
        EXPECT_EQ(in->GetPosition(), row.bytes.size());

        StRef<SmMemoryStream> const out = MemoryStream({});
        Value const source = expected;
        row.write(out.Get(), source, ours, theirs);
        EXPECT_EQ(Written(out.Get()), row.bytes);
        EXPECT_EQ(source, expected);

        // Only the difference of the two orders counts, so two wrong ones make the same bytes.
        StRef<SmMemoryStream> const same = MemoryStream(row.bytes);
        value = Value{};
        row.read(same.Get(), value, !ours, !theirs);
        EXPECT_EQ(value, expected);
    }

    // One byte short: the error passes through and the value stays.
    Bytes const cut(row.bytes.begin(), row.bytes.end() - 1);
    Value value = 99;
    EXPECT_EQ(Thrown([&] { row.read(MemoryStream(cut).Get(), value, ours, kLittle); }), -39);
    EXPECT_EQ(value, 99);

    StRef<SequentialStream> const full = Made(new SequentialStream({}));
    full->full = true;
    EXPECT_EQ(Thrown([&] { row.write(full.Get(), value, ours, kBig); }), -34);
}

TEST(OrderedStream, UnsignedValues_AreSwappedWhenTheOrdersDiffer) {
    CheckRow<unsigned char>({"UInt8", SrReadOrderedUInt8, SrWriteOrderedUInt8, {0x9C}, 0x9C, 0x9C});
    CheckRow<unsigned short>(
        {"UInt16", SrReadOrderedUInt16, SrWriteOrderedUInt16, {0x12, 0xFE}, 0xFE12, 0x12FE});
    CheckRow<unsigned long>({"UInt32",
                             SrReadOrderedUInt32,
                             SrWriteOrderedUInt32,
                             {0x81, 0x23, 0x45, 0xF7},
                             0xF7452381,
                             0x812345F7});
}

TEST(OrderedStream, SignedValues_AreExtended) {
    CheckRow<signed char>({"Int8", SrReadOrderedInt8, SrWriteOrderedInt8, {0x9C}, -100, -100});
    CheckRow<short>({"Int16", SrReadOrderedInt16, SrWriteOrderedInt16, {0x12, 0xFE}, -494, 0x12FE});
    CheckRow<long>({"Int32",
                    SrReadOrderedInt32,
                    SrWriteOrderedInt32,
                    {0xFE, 0xFF, 0xFF, 0x7F},
                    0x7FFFFFFE,
                    -16777345});  // 0xFEFFFF7F
}

TEST(OrderedStream, LongOfMoreThan32Bits_WritesItsLowBits) {
    StRef<SmMemoryStream> const out = MemoryStream({});
    SrWriteOrderedUInt32(out.Get(), 0x1122334455667788UL, SrOurByteOrder(), kBig);
    SrWriteOrderedInt32(out.Get(), -2L, SrOurByteOrder(), kBig);
    EXPECT_EQ(Written(out.Get()), (Bytes{0x55, 0x66, 0x77, 0x88, 0xFF, 0xFF, 0xFF, 0xFE}));
}

TEST(OrderedStream, UnsignedLong_IsNotExtendedBySign) {
    unsigned long value = 0;
    SrReadOrderedUInt32(MemoryStream({0xFF, 0xFF, 0xFF, 0xFF}).Get(), value, SrOurByteOrder(), kLittle);
    EXPECT_EQ(value, 0xFFFFFFFFUL);
}

TEST(OrderedStream, OurByteOrder_IsThatOfTheProcessor) {
    std::uint16_t const one = 1;
    EXPECT_EQ(SrOurByteOrder(), reinterpret_cast<unsigned char const*>(&one)[0] == 1);
}

TEST(OrderedSize, Width_ChoosesWhatIsRead) {
    struct Row {
        long bits;
        bool theirs;
        unsigned long expected;
        unsigned int position;
    };
    // 0x0000010A is 266, 0x00000007 is 7; backwards they are 0x0A010000 and 0x07000000.
    Bytes const bytes{0x00, 0x00, 0x01, 0x0A, 0x00, 0x00, 0x00, 0x07};
    Row const rows[] = {
        {8, kBig, 0, 1},
        {16, kBig, 0, 2},
        {32, kBig, 0x10A, 4},
        {64, kBig, 38, 8},
        {16, kLittle, 0, 2},
        {0, kBig, 0, 0},
        {32, kLittle, 0x0A010000, 4},
        {64, kLittle, 1, 8},
        {24, kLittle, 0, 0},
        {7, kBig, 0, 0},
        {-8, kBig, 0, 0},
        {128, kBig, 0, 0},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.bits);
        StRef<SmMemoryStream> const stream = MemoryStream(bytes);
        EXPECT_EQ(SrReadOrderedSize(stream.Get(), row.bits, SrOurByteOrder(), row.theirs), row.expected);
        EXPECT_EQ(stream->GetPosition(), row.position);
    }
}

TEST(OrderedSize, Rational_DividesUnsigned) {
    StRef<SmMemoryStream> const stream = MemoryStream({0xFF, 0xFF, 0xFF, 0xFE, 0x00, 0x00, 0x00, 0x02});
    EXPECT_EQ(SrReadOrderedSize(stream.Get(), 64, SrOurByteOrder(), kBig), 0x7FFFFFFFUL);
}

TEST(OrderedSize, RationalOverZero_Throws) {
    StRef<SmMemoryStream> const stream = MemoryStream({1, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(Thrown([&] { SrReadOrderedSize(stream.Get(), 64, SrOurByteOrder(), kLittle); }),
              SkBadStreamFormatErrC());
}

TEST(StreamIn, WholeCount_IsOneCallOnARandomStream) {
    StRef<CountedStream> const stream = Made(new CountedStream({1, 2, 3, 4, 5}));
    unsigned char buffer[4] = {};
    EXPECT_EQ(SrStreamIn(stream.Get(), buffer, 4), 4u);
    EXPECT_EQ(stream->reads, 1);
    EXPECT_EQ(Bytes(buffer, buffer + 4), (Bytes{1, 2, 3, 4}));
}

TEST(StreamIn, PastTheEnd_GivesAShortCountAndNoException) {
    StRef<SmMemoryStream> const random = MemoryStream({1, 2, 3});
    unsigned char buffer[4] = {9, 9, 9, 9};
    EXPECT_EQ(SrStreamIn(random.Get(), buffer, 4), 3u);
    EXPECT_EQ(Bytes(buffer, buffer + 4), (Bytes{1, 2, 3, 9}));
    EXPECT_EQ(SrStreamIn(random.Get(), buffer, 4), 0u);

    StRef<SequentialStream> const sequential = Made(new SequentialStream({1, 2, 3}));
    std::memset(buffer, 9, 4);
    EXPECT_EQ(SrStreamIn(sequential.Get(), buffer, 4), 3u);
    EXPECT_EQ(Bytes(buffer, buffer + 4), (Bytes{1, 2, 3, 9}));
}

TEST(StreamIn, StartBehindTheEnd_IsNothingRead) {
    StRef<SmMemoryStream> const stream = MemoryStream({1, 2, 3});
    stream->SetPosition(100);
    unsigned char buffer[4] = {};
    EXPECT_EQ(SrStreamIn(stream.Get(), buffer, 4), 0u);
}

TEST(StreamIn, SequentialStream_IsReadByteByByte) {
    // A stream without a position cannot tell how far one failed call came.
    StRef<SequentialStream> const stream = Made(new SequentialStream({1, 2, 3, 4, 5}));
    unsigned char buffer[3] = {};
    EXPECT_EQ(SrStreamIn(stream.Get(), buffer, 3), 3u);
    EXPECT_EQ(stream->reads, 3);
}

TEST(StreamIn, NoBytes_IsNoRead) {
    StRef<SequentialStream> const stream = Made(new SequentialStream({1}));
    EXPECT_EQ(SrStreamIn(stream.Get(), nullptr, 0), 0u);
    EXPECT_EQ(stream->reads, 0);
}

TEST(StreamOut, WritesInOneCall) {
    unsigned char bytes[] = {1, 2, 3};
    StRef<CountedStream> const random = Made(new CountedStream({}));
    EXPECT_EQ(SrStreamOut(random.Get(), bytes, 3), 3u);
    EXPECT_EQ(random->writes, 1);
    EXPECT_EQ(Written(random.Get()), (Bytes{1, 2, 3}));

    StRef<SequentialStream> const sequential = Made(new SequentialStream({}));
    EXPECT_EQ(SrStreamOut(sequential.Get(), bytes, 3), 3u);
    EXPECT_EQ(sequential->writes, 1);
    EXPECT_EQ(sequential->written, (Bytes{1, 2, 3}));
}

TEST(StreamOut, Failure_IsTheDistanceMoved) {
    unsigned char bytes[] = {1, 2, 3};
    StRef<CountedStream> const random = Made(new CountedStream({}));
    random->room = 2;
    EXPECT_EQ(SrStreamOut(random.Get(), bytes, 3), 2u);

    StRef<SequentialStream> const sequential = Made(new SequentialStream({}));
    sequential->full = true;
    EXPECT_EQ(SrStreamOut(sequential.Get(), bytes, 3), 0u);
}

TEST(StreamSeek, SetsAndReturnsThePosition) {
    StRef<SmMemoryStream> const stream = MemoryStream({1, 2, 3, 4, 5});
    EXPECT_EQ(SrStreamSeek(stream.Get(), 2, 3), 3u);
    EXPECT_EQ(stream->GetPosition(), 3u);
    EXPECT_EQ(SrStreamSeek(stream.Get(), 0, 1), 1u);
    EXPECT_EQ(stream->GetPosition(), 1u);
}

TEST(StreamSkip, Count_IsWhatWasThere) {
    struct Row {
        std::size_t length;
        unsigned int count, expected;
    };
    Row const rows[] = {
        {5, 129, 5},     {5, 5, 5},       {5, 0, 0},       {0, 1, 0},       {300, 127, 127},  {300, 128, 128},
        {300, 129, 129}, {300, 256, 256}, {300, 300, 300}, {300, 301, 300}, {300, 1000, 300}, {128, 129, 128},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(std::to_string(row.count) + " of " + std::to_string(row.length));
        Bytes const bytes(row.length, 7);
        EXPECT_EQ(SrStreamSkip(MemoryStream(bytes).Get(), row.count), row.expected);
        EXPECT_EQ(SrStreamSkip(Made(new SequentialStream(bytes)).Get(), row.count), row.expected);
    }
}

TEST(StreamSkip, ShortBlock_EndsTheBlocksAndStillReadsTheRemainder) {
    // 1025 is eight blocks and one byte: the first block is short, the one byte is asked for all the same.
    StRef<CountedStream> const stream = Made(new CountedStream(Bytes(5, 7)));
    EXPECT_EQ(SrStreamSkip(stream.Get(), 1025), 5u);
    EXPECT_EQ(stream->reads, 2);
}

TEST(MediaBlock, LiesBehindItsMarkAndSize) {
    void* const block = SrMediaNew(5);
    std::uint32_t header[2];
    std::memcpy(header, static_cast<unsigned char*>(block) - 8, 8);
    EXPECT_EQ(header[0], 0xDEADu);
    EXPECT_EQ(header[1], 32u);  // 5 * 4 + 12
    std::memset(block, 0xA5, 20);
    EXPECT_EQ(SrMediaDelete(block), nullptr);
    EXPECT_EQ(SrMediaDelete(nullptr), nullptr);
}

std::size_t gAskedFor = 0;

TEST(MediaBlock, Refusal_Throws) {
    SrSetAllocationGate([](std::size_t size) {
        gAskedFor = size;
        return false;
    });
    long const code = Thrown([] { SrMediaNew(5); });
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(code, -108);
    EXPECT_EQ(gAskedFor, 32u);
}

TEST(MediaBlock, SizeBeyond32Bits_Throws) {
    EXPECT_EQ(Thrown([] { SrMediaNew(0xFFFFFFFF); }), -108);
    EXPECT_EQ(Thrown([] { SrMediaNew(0x40000000); }), -108);
}

}  // namespace
