#include "framewright/thornmere/stream.h"

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "framewright/thornmere/reference.h"
#include "thornmere/support.h"

namespace {

template <class Stream>
StRef<Stream> New() {
    return StRef<Stream>::Adopt(Stream::New());
}

StRef<SmMemoryStream> NewMemoryStream(std::string const& bytes = {}) {
    auto stream = New<SmMemoryStream>();
    stream->IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return stream;
}

std::string Contents(SmMemoryStream& stream) {
    return {reinterpret_cast<char const*>(stream.Data()), stream.GetLength()};
}

/// Shows the protected helper.
class SwapStream : public SmStream {
  public:
    using SmStream::BigEndianByteSwap;
};

/// The random streams, each on the bytes that it is given.
class RandomStream : public testing::TestWithParam<bool> {
  protected:
    ~RandomStream() override {
        mStream = {};
        SrFileClose(mFile, false);
    }

    SmRandomStream& On(std::string const& bytes) {
        if (GetParam()) {
            StFileSpec const spec((mFolder / "stream").c_str());
            WriteWholeFile(spec.GetPath(), bytes);
            SrFileOpen(spec, mFile, kFileReadWrite);
            auto stream = New<SmFileStream>();
            stream->IFileStream(mFile, spec);
            mStream = StRef<SmRandomStream>(stream.Get());
        } else {
            mStream = StRef<SmRandomStream>(NewMemoryStream(bytes).Get());
        }
        return *mStream;
    }

    std::string Everything() {
        mStream->SetPosition(0);
        std::string bytes(mStream->GetLength(), '\0');
        mStream->Read(static_cast<unsigned int>(bytes.size()), bytes.data());
        return bytes;
    }

  private:
    TemporaryFolder mFolder;
    unsigned int mFile = 0;
    StRef<SmRandomStream> mStream;
};

INSTANTIATE_TEST_SUITE_P(Kinds, RandomStream, testing::Values(false, true),
                         [](auto const& info) { return info.param ? "File" : "Memory"; });

TEST_P(RandomStream, ReadGivesTheDestinationAndMovesOn) {
    SmRandomStream& stream = On("abcdef");
    EXPECT_EQ(stream.GetPosition(), 0u);
    EXPECT_EQ(stream.GetLength(), 6u);
    char bytes[4] = {};
    EXPECT_EQ(stream.Read(2, bytes), bytes);
    EXPECT_STREQ(bytes, "ab");
    EXPECT_EQ(stream.GetPosition(), 2u);
    stream.SetPosition(3);
    stream.Read(3, bytes);
    EXPECT_STREQ(bytes, "def");
    EXPECT_EQ(stream.GetPosition(), 6u) << "the last byte is no end of file yet";
}

TEST_P(RandomStream, ReadPastTheEndTransfersWhatIsThere) {
    SmRandomStream& stream = On("abcdef");
    stream.SetPosition(4);
    char bytes[] = "......";
    EXPECT_EQ(CaughtCode([&] { stream.Read(5, bytes); }), -39);
    EXPECT_STREQ(bytes, "ef....");
    EXPECT_EQ(stream.GetPosition(), 6u);
    EXPECT_EQ(CaughtCode([&] { stream.Read(1, bytes); }), -39);
    EXPECT_EQ(stream.GetPosition(), 6u);
}

TEST_P(RandomStream, ReadFromBehindTheEndGoesBackToIt) {
    SmRandomStream& stream = On("abc");
    stream.SetPosition(100);
    EXPECT_EQ(stream.GetPosition(), 100u);
    char byte = '.';
    EXPECT_EQ(CaughtCode([&] { stream.Read(1, &byte); }), -39);
    EXPECT_EQ(byte, '.');
    EXPECT_EQ(stream.GetPosition(), 3u);
}

TEST_P(RandomStream, ReadOfNothingNeverFails) {
    SmRandomStream& stream = On("");
    EXPECT_EQ(stream.Read(0, nullptr), nullptr);
    stream.Write(0, nullptr);
    EXPECT_EQ(stream.GetLength(), 0u);
}

TEST_P(RandomStream, WritesOverwriteInPlaceAndGrowAtTheEnd) {
    SmRandomStream& stream = On("abcdef");
    stream.SetPosition(2);
    stream.Write(2, "XY");
    EXPECT_EQ(stream.GetPosition(), 4u);
    EXPECT_EQ(stream.GetLength(), 6u);
    stream.Write(4, "1234");
    EXPECT_EQ(stream.GetLength(), 8u);
    EXPECT_EQ(Everything(), "abXY1234");
}

TEST_P(RandomStream, OnePositionServesBoth) {
    SmRandomStream& stream = On("abcdef");
    char byte = 0;
    stream.Read(1, &byte);
    stream.Write(1, "X");
    stream.Read(1, &byte);
    EXPECT_EQ(byte, 'c');
    EXPECT_EQ(Everything(), "aXcdef");
}

TEST_P(RandomStream, WriteBehindTheEndFillsTheGapWithZeroes) {
    SmRandomStream& stream = On("ab");
    stream.SetPosition(5);
    stream.Write(1, "c");
    EXPECT_EQ(Everything(), std::string("ab\0\0\0c", 6));
}

TEST_P(RandomStream, SettingAPositionDoesNotGrowTheStream) {
    SmRandomStream& stream = On("ab");
    stream.SetPosition(0xFFFFFFFF);
    EXPECT_EQ(stream.GetPosition(), 0xFFFFFFFFu);
    EXPECT_EQ(stream.GetLength(), 2u);
}

TEST_P(RandomStream, WritesThatWouldPass4GiBAreRefused) {
    SmRandomStream& stream = On("ab");
    stream.SetPosition(0xFFFFFFFE);
    EXPECT_EQ(CaughtCode([&] { stream.Write(2, "xy"); }), SkStreamTooLongErrC());
    EXPECT_EQ(stream.GetLength(), 2u);
}

TEST_P(RandomStream, RemainingIsKnown) {
    SmRandomStream& stream = On("abcdef");
    std::uint64_t bytes = 0;
    EXPECT_TRUE(stream.GetRemaining(bytes));
    EXPECT_EQ(bytes, 6u);
    stream.SetPosition(4);
    EXPECT_TRUE(stream.GetRemaining(bytes));
    EXPECT_EQ(bytes, 2u);
    stream.SetPosition(60);
    EXPECT_TRUE(stream.GetRemaining(bytes));
    EXPECT_EQ(bytes, 0u);
}

TEST_P(RandomStream, FlagsTakeOneWholeByte) {
    SmRandomStream& stream = On("");
    stream.PutBit(true);
    stream.PutBit(false);
    stream.Write(1, "\x05");
    EXPECT_EQ(Everything(), std::string("\1\0\5", 3));
    stream.SetPosition(0);
    bool a = false, b = true, c = false;
    stream.GetBit(a);
    stream.GetBit(b);
    stream.GetBit(c);
    EXPECT_TRUE(a);
    EXPECT_FALSE(b);
    EXPECT_TRUE(c) << "any byte but 0 is true";
    bool kept = true;
    EXPECT_EQ(CaughtCode([&] { stream.GetBit(kept); }), -39);
    EXPECT_TRUE(kept);
}

TEST_P(RandomStream, NumbersAreBigEndian) {
    SmRandomStream& stream = On("");
    stream.PutBigEndian<std::uint8_t>(0x12);
    stream.PutBigEndian<std::int16_t>(-2);
    stream.PutBigEndian<std::uint32_t>(0x436F6C42);
    stream.PutBigEndian<std::uint64_t>(0x0102030405060708);
    stream.PutBigEndian(1.0f);  // 0x3F800000
    stream.PutBigEndian(-2.0);  // 0xC000000000000000
    EXPECT_EQ(Everything(), std::string("\x12\xFF\xFE"
                                        "ColB"
                                        "\1\2\3\4\5\6\7\10"
                                        "\x3F\x80\0\0"
                                        "\xC0\0\0\0\0\0\0\0",
                                        27));
    stream.SetPosition(0);
    EXPECT_EQ(stream.GetBigEndian<std::uint8_t>(), 0x12);
    EXPECT_EQ(stream.GetBigEndian<std::int16_t>(), -2);
    EXPECT_EQ(stream.GetBigEndian<std::uint32_t>(), 0x436F6C42u);
    EXPECT_EQ(stream.GetBigEndian<std::uint64_t>(), 0x0102030405060708u);
    EXPECT_EQ(stream.GetBigEndian<float>(), 1.0f);
    EXPECT_EQ(stream.GetBigEndian<double>(), -2.0);
}

TEST(Stream, ByteSwapReversesInPlaceAndGivesTheValue) {
    unsigned char bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    std::uint16_t word = 0x0102;
    unsigned char const wordBytes[] = {1, 2};
    EXPECT_EQ(SwapStream::BigEndianByteSwap(2, &word), &word);
    EXPECT_EQ(std::memcmp(&word, wordBytes, 2), 0);
    std::uint64_t value;
    std::memcpy(&value, bytes, 8);
    SwapStream::BigEndianByteSwap(8, &value);
    EXPECT_EQ(value, 0x0102030405060708u);
    SwapStream::BigEndianByteSwap(8, &value);
    EXPECT_EQ(std::memcmp(&value, bytes, 8), 0);
    unsigned char one = 7;
    SwapStream::BigEndianByteSwap(1, &one);
    EXPECT_EQ(one, 7);
}

TEST(Stream, PlainStreamIsEmpty) {
    auto const stream = New<SmStream>();
    stream->IStream();
    char byte = '.';
    EXPECT_EQ(CaughtCode([&] { stream->Read(1, &byte); }), -39);
    EXPECT_EQ(byte, '.');
    EXPECT_EQ(stream->Read(0, &byte), &byte);
    stream->Write(1, "x");
    StFileSpec spec("kept");
    EXPECT_FALSE(stream->GetFileSpec(spec));
    std::uint64_t bytes = 0;
    EXPECT_FALSE(stream->GetRemaining(bytes));
    EXPECT_EQ(CaughtCode([&] { stream->GetBigEndian<std::uint32_t>(); }), -39);
}

TEST(Stream, StoredClassVersionDefaultsToTheClasssOwn) {
    auto const stream = New<SmStream>();
    EXPECT_EQ(stream->StoredClassVersion(SmStream::Class()), 0);
    stream->SetStoredClassVersion(SmStream::Class(), 4);
    stream->SetStoredClassVersion(SmObject::Class(), 2);
    EXPECT_EQ(stream->StoredClassVersion(SmStream::Class()), 4);
    stream->SetStoredClassVersion(SmStream::Class(), 5);
    EXPECT_EQ(stream->StoredClassVersion(SmStream::Class()), 5);
    EXPECT_EQ(stream->StoredClassVersion(SmObject::Class()), 2);
    EXPECT_EQ(stream->StoredClassVersion(SmRandomStream::Class()), 0);
    EXPECT_EQ(stream->StoredClassVersion(nullptr), 0);
}

TEST(MemoryStream, CopiesWhatItIsMadeOf) {
    std::string bytes = "abc";
    auto const stream = NewMemoryStream(bytes);
    bytes[0] = 'X';
    EXPECT_EQ(Contents(*stream), "abc");
    EXPECT_EQ(stream->GetPosition(), 0u);
    stream->IMemoryStream();
    EXPECT_EQ(stream->GetLength(), 0u);
    EXPECT_EQ(stream->GetPosition(), 0u);
}

TEST(MemoryStream, MayBeMadeOfItsOwnBytes) {
    auto const stream = NewMemoryStream("abcdef");
    stream->IMemoryStream(stream->Data() + 2, 3);
    EXPECT_EQ(Contents(*stream), "cde");
}

TEST(MemoryStream, CloneHasItsOwnBytesAndThePosition) {
    auto const stream = NewMemoryStream("abc");
    stream->SetPosition(2);
    auto const copy = StRef<SmMemoryStream>::Adopt(stream->Clone());
    copy->Write(1, "X");
    EXPECT_EQ(Contents(*copy), "abX");
    EXPECT_EQ(Contents(*stream), "abc");
    EXPECT_EQ(stream->GetPosition(), 2u);
}

TEST(MemoryStream, RefusedGrowthThrowsAndChangesNothing) {
    auto const stream = NewMemoryStream("abc");
    stream->SetPosition(1);
    std::string const more(100, 'x');
    RefusedMemory const refused;
    EXPECT_EQ(CaughtCode([&] { stream->Write(100, more.data()); }), -108);
    EXPECT_EQ(Contents(*stream), "abc");
    EXPECT_EQ(stream->GetPosition(), 1u);
}

TEST(MemoryStream, HostsDerivePlainly) {
    class Failing : public SmMemoryStream {
      public:
        void Write(unsigned int, void const*) override { SrThrow(-34, nullptr); }
    };
    auto const stream = StRef<Failing>::Adopt(new Failing);
    stream->IMemoryStream("a", 1);
    EXPECT_EQ(CaughtCode([&] { stream->PutBigEndian<std::uint32_t>(1); }), -34);
}

TEST(FileStream, AnswersWithTheSpecOfItsFile) {
    TemporaryFolder const folder;
    StFileSpec const spec((folder / "a.bin").c_str());
    WriteWholeFile(spec.GetPath(), "abc");
    unsigned int file = 0;
    SrFileOpen(spec, file, kFileRead);
    auto const stream = New<SmFileStream>();
    stream->IFileStream(file, spec);
    StFileSpec answer;
    EXPECT_TRUE(stream->GetFileSpec(answer));
    EXPECT_EQ(answer, spec);
    SrFileClose(file, false);
}

TEST(FileStream, StartsAtTheFilesPositionAndLeavesItOpen) {
    TemporaryFolder const folder;
    StFileSpec const spec((folder / "a.bin").c_str());
    WriteWholeFile(spec.GetPath(), "abcdef");
    unsigned int file = 0;
    SrFileOpen(spec, file, kFileRead);
    SrFileSetPos(file, 2);
    {
        auto const stream = New<SmFileStream>();
        stream->IFileStream(file, spec);
        char byte = 0;
        stream->Read(1, &byte);
        EXPECT_EQ(byte, 'c');
    }
    EXPECT_EQ(SrFileGetPos(file), 3u);
    EXPECT_EQ(SrFileClose(file, false), 0);
}

TEST(FileStream, WritingToAFileOpenForReadingIsReported) {
    TemporaryFolder const folder;
    StFileSpec const spec((folder / "a.bin").c_str());
    WriteWholeFile(spec.GetPath(), "abc");
    unsigned int file = 0;
    SrFileOpen(spec, file, kFileRead);
    auto const stream = New<SmFileStream>();
    stream->IFileStream(file, spec);
    EXPECT_EQ(CaughtCode([&] { stream->Write(1, "x"); }), -36);
    SrFileClose(file, false);
}

TEST(FileStream, OfNoFileFailsCleanly) {
    auto const stream = New<SmFileStream>();
    char byte = 0;
    EXPECT_EQ(CaughtCode([&] { stream->Read(1, &byte); }), -36);
    EXPECT_EQ(CaughtCode([&] { stream->Write(1, &byte); }), -36);
    EXPECT_EQ(CaughtCode([&] { stream->GetPosition(); }), -36);
    EXPECT_EQ(CaughtCode([&] { stream->SetPosition(1); }), -36);
    EXPECT_EQ(CaughtCode([&] { stream->GetLength(); }), -36);
    StFileSpec spec;
    EXPECT_FALSE(stream->GetFileSpec(spec));
}

}  // namespace
