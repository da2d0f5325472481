// Writing BMP files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "../thornmere/support.h"
#include "bmp_file.h"
#include "framewright/pixel/color_map.h"
#include "framewright/pixel/mapped_layer.h"

namespace {

using namespace bmp_test;

/// Counts the writes that arrive.
class CountedStream : public SmMemoryStream {
  public:
    CountedStream() { IMemoryStream(); }
    void Write(unsigned int size, void const* source) override {
        ++writes;
        if (GetPosition() + size > room) SrThrow(SkDiskFull(), nullptr);
        SmMemoryStream::Write(size, source);
    }
    Bytes Written() { return Bytes(Data(), Data() + GetLength()); }

    int writes = 0;
    unsigned int room = UINT32_MAX;
};

StRef<CountedStream> Counted() {
    return StRef<CountedStream>::Adopt(new CountedStream);
}

void Write(SmStream* stream, SmImagerFrame* frame) {
    StreamLocation location(stream);
    try {
        Recognizer()->WriteFrame(&location, frame, 0, nullptr);
    } catch (...) {
        EXPECT_EQ(location.outstanding, 0);
        throw;
    }
    EXPECT_EQ(location.outstanding, 0);
    EXPECT_EQ(location.lastPermission, 3);
    EXPECT_EQ(location.lastCreateMode, 1);
    EXPECT_STREQ(location.lastInfo.typeText, "bmp");
}

Bytes Written(SmImagerFrame* frame) {
    StRef<CountedStream> const stream = Counted();
    Write(stream.Get(), frame);
    return stream->Written();
}

void Put(SmImagerFrame* frame, long x, long y, unsigned char red, unsigned char green, unsigned char blue) {
    frame->PutPixelAt(x, y, StRGBA32Pixel{blue, green, red, 255});
}

TEST(BmpWrite, TwoByTwo_ByteForByte) {
    StRef<SmImagerFrame> const frame = Frame(2, 2, SrCode("ColB"));
    Put(frame.Get(), 0, 0, 1, 2, 3);
    Put(frame.Get(), 1, 0, 4, 5, 6);
    Put(frame.Get(), 0, 1, 7, 8, 9);
    Put(frame.Get(), 1, 1, 10, 11, 12);
    Bytes const expected{
        'B',  'M',                  // signature
        70,   0,    0, 0,           // file size: 8 * 2 + 54
        0,    0,    0, 0,           // reserved
        54,   0,    0, 0,           // data offset
        40,   0,    0, 0,           // header size
        2,    0,    0, 0,           // width
        2,    0,    0, 0,           // height
        1,    0,                    // planes
        24,   0,                    // bit count
        0,    0,    0, 0,           // compression
        16,   0,    0, 0,           // image size
        0x12, 0x0B, 0, 0,           // x pixels per metre: 72 dots per inch times 39.37008 is 2834.6
        0x12, 0x0B, 0, 0,           // y pixels per metre
        0,    0,    0, 0,           // colours used
        0,    0,    0, 0,           // colours important
        9,    8,    7, 12, 11, 10,  // the lower row: blue, green, red
        12,   11,                   // padding repeats its last pixel
        3,    2,    1, 6,  5,  4,   // the upper row
        6,    5,
    };
    EXPECT_EQ(Written(frame.Get()), expected);
}

TEST(BmpWrite, Padding_RepeatsTheLastPixel) {
    for (std::int32_t width = 1; width <= 9; ++width) {
        SCOPED_TRACE(width);
        StRef<SmImagerFrame> const frame = Frame(1, width, SrCode("RG24"));
        Fill(frame.Get(), {1, 2, 3, 255});
        Put(frame.Get(), width - 1, 0, 30, 20, 10);
        Bytes const bytes = Written(frame.Get());
        std::size_t const stride = (static_cast<std::size_t>(width) * 24 + 31) / 32 * 4;
        ASSERT_EQ(bytes.size(), 54 + stride);
        Bytes const last{10, 20, 30};
        for (std::size_t at = 3 * static_cast<std::size_t>(width); at < stride; ++at) {
            EXPECT_EQ(bytes[54 + at], last[at % 3]);
        }
    }
}

TEST(BmpWrite, EmptyFrames_AreHeadersAlone) {
    for (StPoint const& size : {StPoint{0, 3}, StPoint{3, 0}, StPoint{0, 0}}) {
        Bytes const bytes = Written(Frame(size.vertical, size.horizontal, SrCode("RG32")).Get());
        ASSERT_EQ(bytes.size(), 54u);
        EXPECT_EQ(bytes[2], 54);
        EXPECT_EQ(bytes[18], size.horizontal);
        EXPECT_EQ(bytes[22], size.vertical);
        EXPECT_EQ(Read(bytes)->GetSize(), size);
    }
}

template <class Pixel>
class BmpWriteRoads : public testing::Test {};
TYPED_TEST_SUITE(BmpWriteRoads, RoadPixels);

TYPED_TEST(BmpWriteRoads, RowsAndPixels_GiveTheSameBytes) {
    StPoint const size{11, 23};
    StRef<SmImagerFrame> const rows = Frame(size.vertical, size.horizontal, TypeParam::PixelID());
    auto const pixels = StRef<SmImagerFrame>::Adopt(new ForeignFrame<TypeParam>(size));
    std::uint32_t state = 1;
    for (long y = 0; y < size.vertical; ++y) {
        for (long x = 0; x < size.horizontal; ++x) {
            state = state * 1664525 + 1013904223;
            StRGBA32Pixel const color{static_cast<unsigned char>(state >> 24),
                                      static_cast<unsigned char>(state >> 16),
                                      static_cast<unsigned char>(state >> 8), 255};
            rows->PutPixelAt(x, y, color);
            pixels->PutPixelAt(x, y, color);
        }
    }
    EXPECT_EQ(Written(rows.Get()), Written(pixels.Get()));
}

TEST(BmpWrite, AnyKindOfFrame_IsWrittenAsItsColors) {
    constexpr unsigned long kKinds[] = {
        SrCode("ColB"), SrCode("RG32"), SrCode("RG24"), SrCode("RG15"), SrCode("RG64"), SrCode("Gry8"),
        SrCode("Gry4"), SrCode("Gry2"), SrCode("BnW1"), SrCode("Map8"), SrCode("Map4"), SrCode("Map2"),
        SrCode("Map1"), SrCode("Alp8"), SrCode("Al32"), SrCode("DepF"), SrCode("Dep8"), SrCode("De16"),
        SrCode("De24"), SrCode("De32"), SrCode("CMYK"),
    };
    for (unsigned i = 0; i < 2 * std::size(kKinds); ++i) {
        unsigned long const id = kKinds[i / 2];
        bool const spooled = i % 2 != 0;
        SCOPED_TRACE(CodeText(id) + (spooled ? ", rows leave memory" : ""));
        auto const frame = StRef<SmImagerFrame>::Adopt(SrMakeLayerWithSpooling({3, 7}, id, spooled, false));
        for (long y = 0; y < 3; ++y) {
            for (long x = 0; x < 7; ++x) {
                Put(frame.Get(), x, y, static_cast<unsigned char>(x * 36),
                    static_cast<unsigned char>(y * 100), 200);
            }
        }
        Bytes const bytes = Written(frame.Get());
        std::size_t const stride = 24;
        for (long y = 0; y < 3; ++y) {
            for (long x = 0; x < 7; ++x) {
                StRGBA32Pixel const expected = frame->GetRGBAPixelAt(x, y);
                unsigned char const* const pixel =
                    bytes.data() + 54 + static_cast<std::size_t>(2 - y) * stride + 3 * x;
                EXPECT_EQ(pixel[0], expected.blue);
                EXPECT_EQ(pixel[1], expected.green);
                EXPECT_EQ(pixel[2], expected.red);
            }
        }
    }
}

/// Shows each colour without its red.
class RedlessFrame : public SmImagerMappedLayer<StMapped8Pixel, ScImagerNonSpool> {
  public:
    explicit RedlessFrame(StPoint const& size) { IImagerMappedLayer({0, 0}, size, false, nullptr, 0); }
    using SmImagerMappedLayer::GetPixelAt;
    void GetPixelAt(long x, long y, StRGBA32Pixel& pixel) override {
        SmImagerMappedLayer::GetPixelAt(x, y, pixel);
        pixel.red = 0;
    }
};

TEST(BmpWrite, AClassDerivedFromAMappedLayer_IsAskedForItsColors) {
    auto const frame = StRef<SmImagerFrame>::Adopt(new RedlessFrame({1, 1}));
    Put(frame.Get(), 0, 0, 255, 255, 255);
    Bytes const bytes = Written(frame.Get());
    EXPECT_EQ(Bytes(bytes.begin() + 54, bytes.end()), (Bytes{255, 255, 0, 255}));
}

TEST(BmpWrite, OverALongerFile_NothingOfThatIsLeft) {
    TemporaryFolder const folder;
    std::string const path = folder.Path() + "/picture.bmp";
    for (std::int32_t const rows : {20, 3}) {
        ScMediaFileLocation location;
        location.SetFullPath(path.c_str());
        Recognizer()->WriteFrame(&location, Frame(rows, 4, SrCode("RG24")).Get(), 0, nullptr);
        EXPECT_EQ(std::filesystem::file_size(path), 54u + static_cast<unsigned>(rows) * 12);
    }
}

TEST(BmpWrite, RoundTrip_KeepsTheColors) {
    // More rows than go out in one write.
    StRef<SmImagerFrame> const frame = Frame(300, 201, SrCode("RG32"));
    for (long y = 0; y < 300; ++y) {
        for (long x = 0; x < 201; ++x) {
            Put(frame.Get(), x, y, static_cast<unsigned char>(x), static_cast<unsigned char>(y),
                static_cast<unsigned char>(x * y));
        }
    }
    EXPECT_EQ(PictureOf(Read(Written(frame.Get())).Get()), PictureOf(frame.Get()));
}

TEST(BmpWrite, Rows_GoOutManyAtATime) {
    StRef<SmImagerFrame> const frame = Frame(500, 100, SrCode("RG32"));
    Fill(frame.Get(), {1, 2, 3, 4});
    StRef<CountedStream> const stream = Counted();
    Write(stream.Get(), frame.Get());
    EXPECT_EQ(stream->GetLength(), 54u + 500 * 300);
    EXPECT_LE(stream->writes, 5);  // the headers, and a few blocks
}

TEST(BmpWrite, LongerFile_KeepsItsTail) {
    StRef<SmImagerFrame> const frame = Frame(1, 1, SrCode("RG32"));
    Put(frame.Get(), 0, 0, 1, 2, 3);
    StRef<SmMemoryStream> const stream = MemoryStream(Bytes(60, 0xEE));
    Write(stream.Get(), frame.Get());
    ASSERT_EQ(stream->GetLength(), 60u);
    EXPECT_EQ(Bytes(stream->Data() + 54, stream->Data() + 60), (Bytes{3, 2, 1, 3, 0xEE, 0xEE}));
}

TEST(BmpWrite, FailureOfTheStream_PassesThrough) {
    StRef<SmImagerFrame> const frame = Frame(4, 4, SrCode("RG32"));
    Fill(frame.Get(), {1, 2, 3, 4});
    for (unsigned int room : {0u, 1u, 53u, 54u, 100u}) {
        StRef<CountedStream> const stream = Counted();
        stream->room = room;
        EXPECT_EQ(ErrorOf([&] { Write(stream.Get(), frame.Get()); }), -34) << room;
    }
}

TEST(BmpWrite, RefusedMemory_Is108) {
    StRef<SmImagerFrame> const frame = Frame(4, 4, SrCode("RG32"));
    Fill(frame.Get(), {1, 2, 3, 4});
    StRef<CountedStream> const stream = Counted();
    StreamLocation location(stream.Get());
    StRef<SmMediaRecognizerBmp> const recognizer = Recognizer();
    EXPECT_GT(media_test::RefusedRuns([&] { recognizer->WriteFrame(&location, frame.Get(), 0, nullptr); }),
              0);
    EXPECT_EQ(location.outstanding, 0);
}

TEST(BmpWrite, MissingStream_IsFileNotFound) {
    StreamLocation location(nullptr);
    StRef<SmImagerFrame> const frame = Frame(1, 1, SrCode("RG32"));
    EXPECT_EQ(ErrorOf([&] { Recognizer()->WriteFrame(&location, frame.Get(), 0, nullptr); }),
              SkFileNotFound());
}

TEST(BmpWrite, NoFrame_IsRefusedBeforeTheStreamIsAskedFor) {
    StRef<CountedStream> const stream = Counted();
    StreamLocation location(stream.Get());
    EXPECT_EQ(ErrorOf([&] { Recognizer()->WriteFrame(&location, nullptr, 0, nullptr); }),
              SkMediaIncapableOfFormat());
    EXPECT_EQ(location.lastCreateMode, 0);
}

/// Fails when its stream comes back, as a file may that is closed.
class FailingLocation : public StreamLocation {
  public:
    using StreamLocation::StreamLocation;
    void ReleaseStream(SmStream* stream) override {
        StreamLocation::ReleaseStream(stream);
        SrThrow(SkInputOutput(), nullptr);
    }
};

TEST(BmpWrite, FailureOfTheRelease_IsReported) {
    StRef<SmImagerFrame> const frame = Frame(1, 1, SrCode("RG32"));
    StRef<CountedStream> const stream = Counted();
    FailingLocation location(stream.Get());
    EXPECT_EQ(ErrorOf([&] { Recognizer()->WriteFrame(&location, frame.Get(), 0, nullptr); }),
              SkInputOutput());
    EXPECT_EQ(location.outstanding, 0);
    // What failed first is what is told.
    stream->room = 0;
    EXPECT_EQ(ErrorOf([&] { Recognizer()->WriteFrame(&location, frame.Get(), 0, nullptr); }), SkDiskFull());
    EXPECT_EQ(location.outstanding, 0);
}

/// A frame that claims a size and is never looked into.
class ClaimingFrame : public SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool> {
  public:
    explicit ClaimingFrame(StPoint const& size) : mClaim(size) {
        IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    }
    StPoint GetSize() override { return mClaim; }

  private:
    StPoint mClaim;
};

TEST(BmpWrite, PictureBeyond32Bits_IsRefusedBeforeAnythingIsWritten) {
    // 1024 columns are 3072 bytes a row; 2^32 - 1 - 54 bytes are 1398101 such rows and a part.
    for (StPoint const& size :
         {StPoint{1398102, 1024}, StPoint{INT32_MAX, INT32_MAX}, StPoint{65536, 65536}}) {
        auto const frame = StRef<SmImagerFrame>::Adopt(new ClaimingFrame(size));
        StRef<CountedStream> const stream = Counted();
        EXPECT_EQ(ErrorOf([&] { Write(stream.Get(), frame.Get()); }), SkMediaIncapableOfFormat());
        EXPECT_EQ(stream->writes, 0);
    }
}

// The resolution comes from the track of the media that is being written.

/// Gives out the protected operation's view of the current media.
class OpenRecognizer : public SmMediaRecognizerBmp {
  public:
    void SetMedia(SmMedia* media) { mCurrentMedia = media; }
};

TEST(BmpWrite, Resolution_IsThatOfTheFirstTrack) {
    struct Row {
        float x, y;
        Bytes expected;
    };
    Row const rows[] = {
        {72.0F, 72.0F, {0x12, 0x0B, 0, 0, 0x12, 0x0B, 0, 0}},     // 2834.64
        {300.0F, 1.0F, {0x23, 0x2E, 0, 0, 39, 0, 0, 0}},          // 11811.02 and 39.37
        {0.0F, 0.5F, {0, 0, 0, 0, 19, 0, 0, 0}},                  // 19.68
        {-1.0F, 1e12F, {0xD9, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0x80}},  // -39, and no integer of 32 bits
    };
    for (Row const& row : rows) {
        auto const recognizer = StRef<OpenRecognizer>::Adopt(new OpenRecognizer);
        auto const media = StRef<SmMedia>::Adopt(recognizer->NewMediaObject());
        ScMediaFileLocation nowhere;
        nowhere.SetFullPath("/nowhere/a.bmp");
        media->OpenNew(&nowhere);
        auto const spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
        spec->IVideoSpec();
        spec->mResolutionX = row.x;
        spec->mResolutionY = row.y;
        media->NewTrack(SrCode("VIDE"), spec.Get());
        recognizer->SetMedia(media.Get());

        StRef<SmMemoryStream> const stream = MemoryStream({});
        StreamLocation location(stream.Get());
        recognizer->WriteFrame(&location, Frame(1, 1, SrCode("RG32")).Get(), 0, nullptr);
        EXPECT_EQ(Bytes(stream->Data() + 38, stream->Data() + 46), row.expected);
        recognizer->SetMedia(nullptr);
    }
}

}  // namespace
