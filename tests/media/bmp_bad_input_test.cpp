// BMP files that are cut or lie: safe, bounded, and undone on the way out.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "bmp_file.h"
#include "framewright/frame/frame_limit.h"

namespace {

using namespace bmp_test;

File SmallFile(std::uint16_t bitCount, std::uint32_t compression, std::uint32_t headerSize) {
    File file;
    file.headerSize = headerSize;
    file.width = 5;
    file.height = 3;
    file.bitCount = bitCount;
    file.compression = compression;
    if (bitCount <= 8) {
        std::size_t const entry = headerSize == 12 ? 3 : 4;
        for (std::size_t i = 0; i < entry << bitCount; ++i)
            file.palette.push_back(static_cast<unsigned char>(i));
    }
    file.data = compression ? Bytes{3, 1, 0, 0, 0, 4, 0x12, 0x34, 5, 6, 0, 2, 1, 1, 9, 7, 0, 1}
                            : Bytes(3 * ((bitCount * 5u + 31) / 32 * 4), 0x5A);
    return file;
}

/// All forms of file there are, by name.
std::vector<std::pair<std::string, File>> AllForms() {
    std::vector<std::pair<std::string, File>> forms;
    for (std::uint16_t bits : {1, 4, 8, 16, 24, 32}) {
        for (std::uint32_t headerSize : {40u, 12u}) {
            for (std::uint32_t compression : {0u, 1u}) {
                if (compression && (headerSize == 12 || (bits != 4 && bits != 8))) continue;
                forms.emplace_back(std::to_string(bits) + " bits, header " + std::to_string(headerSize) +
                                       (compression ? ", run-length" : ""),
                                   SmallFile(bits, compression, headerSize));
            }
        }
    }
    return forms;
}

/// A picture of the named size, or the end of the file: what any cut or changed file may give.
void ExpectPictureOrError(Bytes const& bytes) {
    long const code = ErrorOf([&] { Read(bytes); });
    EXPECT_TRUE(code == 0 || code == -39 || code == -108) << code;
}

TEST(BmpTruncated, AnyPrefix_EndsTheFileOrReadsZeros) {
    for (auto const& [name, file] : AllForms()) {
        SCOPED_TRACE(name);
        Bytes const whole = file.Build();
        std::size_t const behindPalette = whole.size() - file.data.size();
        for (std::size_t length = 0; length <= whole.size(); ++length) {
            SCOPED_TRACE(length);
            Bytes const cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            long const code = ErrorOf([&] { Read(cut); });
            EXPECT_EQ(code, length < behindPalette ? -39 : 0);

            auto const sequential = StRef<SequentialStream>::Adopt(new SequentialStream(cut));
            EXPECT_EQ(ErrorOf([&] { ReadStream(sequential.Get()); }), code);
        }
    }
}

TEST(BmpTruncated, MissingPixels_AreZeros) {
    for (std::uint16_t bits : {8, 16, 24, 32}) {
        SCOPED_TRACE(bits);
        File file = SmallFile(bits, 0, 40);
        Picture const whole = PictureOf(Read(file).Get());
        std::size_t const stride = file.data.size() / 3;
        file.data.resize(stride + bits / 8);  // one row and one pixel
        Picture const picture = PictureOf(Read(file).Get());
        // Entry 0 of the palette is 0, 1, 2 and an alpha of 3: other entries have more than a filler.
        std::uint32_t const zero = bits == 8 ? 0x03020100 : Rgb(0, 0, 0);
        EXPECT_EQ(picture[2], whole[2]);
        EXPECT_EQ(picture[1][0], whole[1][0]);
        EXPECT_EQ(picture[1][1], zero);
        EXPECT_EQ(picture[0], std::vector<std::uint32_t>(5, zero));
    }
}

TEST(BmpLying, AnyByteOfTheHeaders_IsSafe) {
    for (auto const& [name, file] : AllForms()) {
        SCOPED_TRACE(name);
        Bytes const whole = file.Build();
        for (std::size_t at = 0; at < std::min<std::size_t>(whole.size(), 54); ++at) {
            for (unsigned char value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
                SCOPED_TRACE(testing::Message() << "byte " << at << " is " << int{value});
                Bytes bytes = whole;
                bytes[at] = value;
                // Width and height of up to 2^31 bytes are honest: keep them off this machine's memory.
                std::uint64_t const limit = SrGetFrameSizeLimit();
                SrSetFrameSizeLimit(1u << 20);
                ExpectPictureOrError(bytes);
                SrSetFrameSizeLimit(limit);
            }
        }
    }
}

TEST(BmpLying, FieldsAtTheirLimits_AreSafeInAFrameOfTheCaller) {
    // The frame is there, so the file's size asks for nothing.
    using Field = std::function<void(File&, std::uint32_t)>;
    Field const fields[] = {
        [](File& file, std::uint32_t value) { file.width = value; },
        [](File& file, std::uint32_t value) { file.height = value; },
        [](File& file, std::uint32_t value) { file.width = file.height = value; },
        [](File& file, std::uint32_t value) { file.imageSize = value; },
        [](File& file, std::uint32_t value) { file.width = file.height = file.imageSize = value; },
        [](File& file, std::uint32_t value) { file.dataOffset = value; },
    };
    StRef<SmImagerFrame> const frame = Frame(4, 6, SrCode("ColB"));
    for (auto const& [name, file] : AllForms()) {
        SCOPED_TRACE(name);
        for (Field const& set : fields) {
            for (std::uint32_t value :
                 {0u, 1u, 0x7FFFu, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
                SCOPED_TRACE(testing::Message() << std::hex << value);
                File changed = file;
                set(changed, value);
                EXPECT_EQ(ErrorOf([&] { Read(changed, frame.Get()); }), 0);
            }
        }
    }
}

TEST(BmpLying, ColorsUsed_ReadsNoMoreThanAPalette) {
    for (std::uint32_t used : {257u, 65536u, 0xFFFFFFFFu}) {
        File file;
        file.width = file.height = 1;
        file.bitCount = 8;
        file.colorsUsed = used;
        file.palette.assign(1024, 9);
        file.data = {1, 0, 0, 0};
        EXPECT_EQ(PictureOf(Read(file).Get()), (Picture{{0x09090909}})) << used;

        // With too few entries it is the end of the file.
        file.palette.resize(512);
        EXPECT_EQ(ErrorOf([&] { Read(file); }), -39);

        // A stream without a position has no more than it has.
        auto const stream = StRef<SequentialStream>::Adopt(new SequentialStream(file.Build()));
        EXPECT_EQ(ErrorOf([&] { ReadStream(stream.Get()); }), -39);
    }
}

TEST(BmpLying, NegativeHeight_IsOverTheLimit) {
    File file = SmallFile(24, 0, 40);
    file.height = static_cast<std::uint32_t>(-3);
    EXPECT_EQ(ErrorOf([&] { Read(file); }), -108);
    StRef<SmImagerFrame> const frame = Frame(3, 5, SrCode("RG32"));
    EXPECT_EQ(ErrorOf([&] { Read(file, frame.Get(), kResize); }), -108);
    EXPECT_EQ(frame->GetSize(), (StPoint{3, 5}));
}

TEST(BmpLying, DataOffsetBehindTheEnd_ReadsZeros) {
    File file = SmallFile(24, 0, 40);
    file.dataOffset = 100000;
    EXPECT_EQ(PictureOf(Read(file).Get()), Picture(3, std::vector<std::uint32_t>(5, Rgb(0, 0, 0))));
}

/// Watches what the framework is asked for while this object lives, and refuses blocks of one size.
class Allocations {
  public:
    explicit Allocations(std::size_t refusedSize = SIZE_MAX) {
        sTotal = sLargest = 0;
        sRefusedSize = refusedSize;
        SrSetAllocationGate([](std::size_t size) {
            sTotal += size;
            sLargest = std::max(sLargest, size);
            return size != sRefusedSize;
        });
    }
    ~Allocations() { SrSetAllocationGate(nullptr); }
    std::size_t Largest() const { return sLargest; }
    std::size_t Total() const { return sTotal; }

  private:
    static inline std::size_t sTotal, sLargest, sRefusedSize;
};

TEST(BmpMemory, SizesThatLie_AllocateNothingBeyondTheFrame) {
    // A frame of 3 by 5, and a header that claims four gigabytes of pixels for it, in all ways there are.
    for (std::uint16_t bits : {4, 8, 24}) {
        for (std::uint32_t compression : {0u, 1u}) {
            File file = SmallFile(bits, bits == 24 ? 0 : compression, 40);
            file.imageSize = 0xFFFFFFFF;
            file.colorsUsed = bits == 24 ? 0xFFFFFFFF : 0;
            if (bits == 24) file.palette.assign(1024, 0);
            file.dataOffset = 14 + 40 + static_cast<std::uint32_t>(file.palette.size());
            Bytes const bytes = file.Build();
            StRef<SmMemoryStream> const stream = MemoryStream(bytes);
            Allocations const allocations;
            ReadStream(stream.Get());
            EXPECT_LT(allocations.Largest(), 10000u) << bits;  // objects and colour maps
        }
    }
}

TEST(BmpMemory, HugeSizes_AllocateNothingForAFrameOfTheCaller) {
    File file = SmallFile(32, 0, 40);
    file.width = file.height = file.imageSize = 0xFFFFFFFF;
    StRef<SmImagerFrame> const frame = Frame(3, 5, SrCode("ColB"));
    StRef<SmMemoryStream> const stream = MemoryStream(file.Build());
    Allocations const allocations;
    ReadStream(stream.Get(), frame.Get());
    EXPECT_LT(allocations.Largest(), 1000u);
}

TEST(BmpMemory, NoRows_CostNothingHoweverWide) {
    for (std::uint16_t bits : {1, 8, 24, 32}) {
        SCOPED_TRACE(bits);
        File file = SmallFile(bits, 0, 40);
        file.width = INT32_MAX / 32;
        file.height = 0;
        StRef<SmMemoryStream> const stream = MemoryStream(file.Build());
        StRef<SmMemoryStream> const written = MemoryStream({});
        StreamLocation location(written.Get());
        Allocations const allocations;
        StRef<SmImagerFrame> const frame = ReadStream(stream.Get());
        EXPECT_EQ(frame->GetSize(), (StPoint{0, INT32_MAX / 32}));
        Recognizer()->WriteFrame(&location, frame.Get(), 0, nullptr);
        EXPECT_EQ(written->GetLength(), 54u);
        EXPECT_LT(allocations.Largest(), 10000u);
    }
}

TEST(BmpMemory, FrameOverTheLimit_IsRefusedBeforeItIsAllocated) {
    File file = SmallFile(24, 0, 40);
    file.width = 0x10000;
    file.height = 0x2001;  // as a frame of four bytes a pixel, 2^31 bytes and one row more
    StRef<SmMemoryStream> const stream = MemoryStream(file.Build());
    Allocations const allocations;
    EXPECT_EQ(ErrorOf([&] { ReadStream(stream.Get()); }), -108);
    EXPECT_LT(allocations.Total(), 10000u);
}

TEST(BmpMemory, Limit_CanBeSet) {
    File file = SmallFile(24, 0, 40);  // 3 rows of 5 pixels of four bytes: 60
    std::uint64_t const limit = SrGetFrameSizeLimit();
    SrSetFrameSizeLimit(59);
    EXPECT_EQ(ErrorOf([&] { Read(file); }), -108);
    SrSetFrameSizeLimit(60);
    EXPECT_EQ(ErrorOf([&] { Read(file); }), 0);
    SrSetFrameSizeLimit(limit);
}

TEST(BmpMemory, RefusedDataBuffer_Is108AndEverythingIsGivenBack) {
    // 3 rows of 16 bytes; nothing else is of that size.
    File const file = SmallFile(24, 0, 40);
    ASSERT_EQ(file.data.size(), 48u);
    StRef<SmMemoryStream> const stream = MemoryStream(file.Build());
    StRef<SmImagerFrame> const frame = Frame(3, 5, SrCode("ColB"));
    Allocations const refused(48);
    EXPECT_EQ(ErrorOf([&] { ReadStream(stream.Get(), frame.Get()); }), -108);
    EXPECT_EQ(frame->ReferenceCount(), 1);
    EXPECT_EQ(stream->ReferenceCount(), 1);
}

TEST(BmpMemory, AnyRefusedAllocation_Is108AndEverythingIsGivenBack) {
    // Leaks show under the address sanitizer.
    for (auto const& [name, file] : AllForms()) {
        SCOPED_TRACE(name);
        StRef<SmMemoryStream> const stream = MemoryStream(file.Build());
        StreamLocation location(stream.Get());
        StRef<SmMediaRecognizerBmp> const recognizer = Recognizer();
        SmImagerFrame* frame = nullptr;
        long const refused = media_test::RefusedRuns([&] {
            EXPECT_EQ(location.outstanding, 0);
            EXPECT_FALSE(frame);
            stream->SetPosition(0);
            recognizer->ReadFrame(&location, frame, 0, nullptr, 0);
        });
        EXPECT_GE(refused, 3);  // the frame, its rows, the data
        EXPECT_EQ(location.outstanding, 0);
        StRef<SmImagerFrame>::Adopt(frame);
    }
}

/// A stream of sure content that fails, with a code of its own, at a position.
class FailingStream : public SmMemoryStream {
  public:
    FailingStream(Bytes const& bytes, unsigned int failsAt) : mFailsAt(failsAt) {
        IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    }
    void* Read(unsigned int size, void* destination) override {
        if (GetPosition() + size > mFailsAt) SrThrow(SkInputOutput(), nullptr);
        return SmMemoryStream::Read(size, destination);
    }

  private:
    unsigned int mFailsAt;
};

TEST(BmpFailure, OfTheStream_PassesThroughUpToThePixels) {
    File const file = SmallFile(8, 0, 40);
    Bytes const bytes = file.Build();
    auto const pixels = static_cast<unsigned int>(bytes.size() - file.data.size());
    for (unsigned int at = 2; at < bytes.size(); ++at) {
        auto const stream = StRef<FailingStream>::Adopt(new FailingStream(bytes, at));
        EXPECT_EQ(ErrorOf([&] { ReadStream(stream.Get()); }), at < pixels ? -36 : 0) << at;
    }
}

}  // namespace
