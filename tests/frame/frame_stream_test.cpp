// The body of a frame on a stream.
#include "framewright/thornmere/stream.h"
#include "kinds.h"

using namespace testing_frames;

namespace {

using Bytes = std::vector<std::uint8_t>;
using StreamRef = StRef<SmMemoryStream>;

StreamRef Stream(Bytes const& bytes = {}) {
    auto stream = StreamRef::Adopt(SmMemoryStream::New());
    stream->IMemoryStream(bytes.data(), static_cast<unsigned>(bytes.size()));
    return stream;
}

Bytes Contents(SmMemoryStream& stream) {
    return {stream.Data(), stream.Data() + stream.GetLength()};
}

Bytes Written(SmImagerFrame& frame, unsigned short compression) {
    auto const stream = Stream();
    frame.SetStreamingCompression(compression);
    frame.WriteTo(stream.Get());
    return Contents(*stream);
}

/// Top left (0, 0), purpose "????", dithering "BIDI", then marker and packed row bytes.
Bytes Body(std::uint8_t marker, std::uint8_t packed, Bytes const& rows) {
    Bytes body{0,    0,    0,    0,    0,    0, 0,      0, 0x3F, 0x3F, 0x3F,
               0x3F, 0x42, 0x49, 0x44, 0x49, 0, marker, 0, 0,    0,    packed};
    body.insert(body.end(), rows.begin(), rows.end());
    return body;
}

bool WritesItsPixels(StKind const& kind) {
    return kind.id != SrCode("De16") && kind.id != SrCode("De24") && kind.id != SrCode("De32");
}

TEST(FrameStream, PlainBytes) {
    auto const layer = MakeLayer<StGray8Pixel>({2, 3});
    for (std::uint8_t i = 0; i < 6; ++i)
        layer->PutMatchedPixelAt(i % 3, i / 3, {static_cast<std::uint8_t>(i + 1)});
    EXPECT_EQ(Written(*layer, 0), Body(0, 3, {1, 2, 3, 4, 5, 6}));
}

TEST(FrameStream, PlainSubBytes_StayPacked) {
    auto const layer = MakeLayer<StGray4Pixel>({2, 3});
    for (long y = 0; y < 2; ++y)
        std::memset(layer->GetRow(y), 0, 4);
    for (unsigned i = 0; i < 6; ++i) {
        StGray4Pixel pixel{};
        pixel.level = (i + 1) & 15;
        layer->PutMatchedPixelAt(i % 3, i / 3, pixel);
    }
    EXPECT_EQ(Written(*layer, 0), Body(0, 2, {0x12, 0x30, 0x45, 0x60}));
}

TEST(FrameStream, PlainWidePixels_GoInTheRecordsForm) {
    auto const layer = MakeLayer<StRGBA32Pixel>({1, 2});
    layer->PutMatchedPixelAt(0, 0, {1, 2, 3, 4});
    layer->PutMatchedPixelAt(1, 0, {5, 6, 7, 8});
    EXPECT_EQ(Written(*layer, 0), Body(0, 8, {3, 2, 1, 4, 7, 6, 5, 8}));
}

TEST(FrameStream, Runs_OfEqualPixelsAreOnePixel) {
    auto const layer = MakeLayer<StGray8Pixel>({2, 3});
    for (long x = 0; x < 3; ++x) {
        layer->PutMatchedPixelAt(x, 0, {9});
        layer->PutMatchedPixelAt(x, 1, {static_cast<std::uint8_t>(x)});
    }
    EXPECT_EQ(Written(*layer, 1), Body(1, 3, {1, 9, 0, 0, 1, 2}));
    EXPECT_EQ(Written(*layer, 5), Body(1, 3, {1, 9, 0, 0, 1, 2})) << "any compression but 0";
}

TEST(FrameStream, Runs_IgnoreTheFillerOfRGB32) {
    auto const layer = MakeLayer<StRGB32Pixel>({1, 2});
    layer->PutMatchedPixelAt(0, 0, {1, 2, 3, 50});
    layer->PutMatchedPixelAt(1, 0, {1, 2, 3, 60});
    EXPECT_EQ(Written(*layer, 1), Body(1, 8, {1, 50, 3, 2, 1}));
}

TEST(FrameStream, Runs_OfFourBytesAndMore_AreNeverSeen) {
    auto const layer = MakeLayer<StRGBA32Pixel>({1, 2});
    layer->PutMatchedPixelAt(0, 0, {1, 2, 3, 4});
    layer->PutMatchedPixelAt(1, 0, {1, 2, 3, 4});
    EXPECT_EQ(Written(*layer, 1), Body(1, 8, {0, 3, 2, 1, 4, 3, 2, 1, 4}));
    auto const one = MakeLayer<StRGBA32Pixel>({1, 1});
    one->PutMatchedPixelAt(0, 0, {1, 2, 3, 4});
    EXPECT_EQ(Written(*one, 1), Body(1, 4, {1, 3, 2, 1, 4})) << "one pixel has none to differ from";
}

TEST(FrameStream, Runs_BelowAByte_HaveNoFlag) {
    auto const layer = MakeLayer<StGray4Pixel>({1, 3});
    for (long x = 0; x < 3; ++x) {
        StGray4Pixel pixel{};
        pixel.level = 7;
        layer->PutMatchedPixelAt(x, 0, pixel);
    }
    EXPECT_EQ(Written(*layer, 1), Body(1, 2, {7, 7, 7}));
}

TEST(FrameStream, HundredEqualGrayRows_TakeTwoBytesEach) {
    auto const layer = MakeLayer<StGray8Pixel>({100, 100});
    layer->SetBackground({80, 80, 80, 255});
    layer->Erase();
    EXPECT_EQ(Written(*layer, 1).size(), 22u + 100 * 2);
}

TEST(FrameStream, ReadsBackWhatWasWritten) {
    for (StKind const& kind : Kinds())
        for (unsigned short const compression : {0, 1})
            for (StPoint const size : {StPoint{3, 13}, {4, 1}, {1, 64}, {0, 5}}) {
                if (!WritesItsPixels(kind)) continue;
                FrameRef const frame = kind.make(size);
                FillRandom(*frame, kind, 1);
                frame->SetPurpose(0x54455850);
                frame->SetDithering(0);
                Bytes const bytes = Written(*frame, compression);
                FrameRef const read = kind.make(size);
                FillRandom(*read, kind, 2);
                auto const stream = Stream(bytes);
                read->ReadFrom(stream.Get());
                EXPECT_TRUE(Same(Shot(*frame), Shot(*read))) << kind.name << " marker " << compression;
                EXPECT_EQ(stream->GetPosition(), bytes.size());
                EXPECT_EQ(read->GetPurpose(), 0x54455850);
                EXPECT_EQ(read->GetDithering(), 0u);
            }
}

TEST(FrameStream, ReadsRunsIntoAllColumns) {
    auto const layer = MakeLayer<StRGBA32Pixel>({1, 3});
    auto const stream = Stream(Body(1, 12, {1, 3, 2, 1, 4}));
    layer->ReadFrom(stream.Get());
    for (long x = 0; x < 3; ++x)
        EXPECT_EQ(layer->GetMatchedPixelAt(x, 0), (StRGBA32Pixel{1, 2, 3, 4}));
}

TEST(FrameStream, TopLeftIsTaken_RowsStay) {
    auto const layer = MakeLayer<StGray8Pixel>({1, 1});
    void* const row = layer->GetRow(0);
    Bytes body = Body(0, 1, {42});
    body[3] = 5;
    body[7] = 6;
    layer->ReadFrom(Stream(body).Get());
    EXPECT_EQ(layer->GetTopLeft(), (StPoint{5, 6}));
    EXPECT_EQ(layer->GetRow(0), row);
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0).level, 42);
}

struct BadRow {
    char const* what;
    std::uint8_t markerHigh, marker;
    std::array<std::uint8_t, 4> packed;
};

TEST(FrameStream, RefusesWhatItDoesNotKnow) {
    constexpr BadRow kBad[] = {
        {"marker 2", 0, 2, {0, 0, 0, 3}},     {"marker 256", 1, 0, {0, 0, 0, 3}},
        {"no row bytes", 0, 0, {0, 0, 0, 0}}, {"negative row bytes", 0, 0, {0xFF, 0xFF, 0xFF, 0xFF}},
        {"too many", 0, 0, {0, 0x10, 0, 0}},  {"another width", 0, 0, {0, 0, 0, 4}},
    };
    for (BadRow const& row : kBad) {
        auto const layer = MakeLayer<StGray8Pixel>({2, 3});
        Bytes body = Body(row.marker, 0, Bytes(64, 0));
        body[16] = row.markerHigh;
        std::copy(row.packed.begin(), row.packed.end(), body.begin() + 18);
        EXPECT_EQ(ThrownBy([&] { layer->ReadFrom(Stream(body).Get()); }), SkBadStreamFormatErrC())
            << row.what;
    }
    // Wide pixels do not look at the exact number, and runs at none at all.
    auto const wide = MakeLayer<StRGBA32Pixel>({1, 1});
    EXPECT_EQ(ThrownBy([&] { wide->ReadFrom(Stream(Body(0, 99, {3, 2, 1, 4})).Get()); }), 0);
    EXPECT_EQ(ThrownBy([&] { wide->ReadFrom(Stream(Body(1, 0, {0, 3, 2, 1, 4})).Get()); }), 0);
    // A row without pixels cannot be all of one.
    auto const empty = MakeLayer<StGray8Pixel>({1, 0});
    EXPECT_EQ(ThrownBy([&] { empty->ReadFrom(Stream(Body(1, 0, {1, 9})).Get()); }), SkBadStreamFormatErrC());
}

TEST(FrameStream, ShortStreamsThrow_WhereverTheyEnd) {
    for (StKind const& kind : Kinds())
        for (unsigned short const compression : {0, 1}) {
            if (!WritesItsPixels(kind)) continue;
            FrameRef const frame = kind.make({2, 9});
            FillRandom(*frame, kind, 1);
            Bytes const bytes = Written(*frame, compression);
            for (std::size_t length = 0; length < bytes.size(); ++length) {
                FrameRef const read = kind.make({2, 9});
                EXPECT_EQ(ThrownBy([&] {
                              read->ReadFrom(
                                  Stream({bytes.begin(), bytes.begin() + static_cast<long>(length)}).Get());
                          }),
                          -39)
                    << kind.name << " cut to " << length;
            }
        }
}

TEST(FrameStream, WideIntegerDepths_ReadWhereTheyShouldWrite) {
    for (StKind const& kind : Kinds()) {
        if (WritesItsPixels(kind)) continue;
        FrameRef const frame = kind.make({1, 1});
        EXPECT_EQ(ThrownBy([&] { Written(*frame, 0); }), -39) << kind.name << " at the end of a stream";
    }
}

TEST(FrameStream, WritePixels_TakesTheFirstOfARow) {
    auto const layer = MakeLayer<StGray8Pixel>({2, 3});
    for (std::uint8_t i = 0; i < 6; ++i)
        layer->PutMatchedPixelAt(i % 3, i / 3, {i});
    auto const stream = Stream();
    layer->WritePixels(stream.Get(), 1, 2);
    EXPECT_EQ(Contents(*stream), (Bytes{3, 4}));
    stream->SetPosition(0);
    layer->ReadPixels(stream.Get(), 0, 2);
    EXPECT_EQ(layer->GetMatchedPixelAt(0, 0).level, 3);
    EXPECT_EQ(layer->GetMatchedPixelAt(1, 0).level, 4);
    EXPECT_EQ(layer->GetMatchedPixelAt(2, 0).level, 2);
}

/// Counts row locks, and can fail while one is held.
class Locks : public PlainLayer<StGray8Pixel> {
  public:
    int held = 0;
    int most = 0;
    void* LockRow(long row) override {
        most = std::max(most, ++held);
        return PlainLayer<StGray8Pixel>::LockRow(row);
    }
    void UnlockRow(long row) override {
        --held;
        PlainLayer<StGray8Pixel>::UnlockRow(row);
    }
};

TEST(FrameStream, RowLocksAreReleased_AlsoOnTheWayOut) {
    auto const layer = StRef<Locks>::Adopt(new Locks);
    layer->IImagerLayer({0, 0}, {2, 3}, false, nullptr, 0, nullptr);
    layer->Erase();
    Bytes const plain = Written(*layer, 0), runs = Written(*layer, 1);
    EXPECT_EQ(layer->held, 0);
    EXPECT_GE(layer->most, 1);
    for (Bytes bytes : {plain, runs}) {
        bytes.pop_back();
        EXPECT_EQ(ThrownBy([&] { layer->ReadFrom(Stream(bytes).Get()); }), -39);
        EXPECT_EQ(layer->held, 0);
    }
}

}  // namespace
