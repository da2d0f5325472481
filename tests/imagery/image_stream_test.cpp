// Images on streams.
#include "framewright/imagery/image_stream.h"

#include <bit>
#include <cstring>

#include "framewright/frame/frame_limit.h"
#include "framewright/frame/frame_stream.h"
#include "framewright/frame/registries.h"
#include "framewright/thornmere/stream.h"
#include "imagery/images.h"

namespace {

using namespace testing_images;

using Bytes = std::vector<unsigned char>;

/// Builds a stream field by field.
struct Writer {
    Bytes bytes;
    Writer& Long(std::uint32_t value) {
        for (int shift : {24, 16, 8, 0})
            bytes.push_back(static_cast<unsigned char>(value >> shift));
        return *this;
    }
    Writer& Short(unsigned value) {
        bytes.push_back(static_cast<unsigned char>(value >> 8));
        bytes.push_back(static_cast<unsigned char>(value));
        return *this;
    }
    Writer& Byte(unsigned value) {
        bytes.push_back(static_cast<unsigned char>(value));
        return *this;
    }
    Writer& Float(float value) { return Long(std::bit_cast<std::uint32_t>(value)); }
    /// Everything before the number of layers.
    Writer& Head(std::uint32_t rows = 1, std::uint32_t columns = 1) {
        return Long(rows).Long(columns).Float(72.0F).Float(72.0F).Byte(0);
    }
    /// The header of a frame and its body up to the rows.
    Writer& Frame(char const (&id)[5], char const (&family)[5], std::uint32_t bits, std::uint32_t rows,
                  std::uint32_t columns, unsigned marker) {
        Long(1).Long(SrCode(id)).Long(SrCode(family)).Long(bits).Long(rows).Long(columns);
        return Long(0)
            .Long(0)
            .Long(SrCode("????"))
            .Long(SrCode("BIDI"))
            .Short(marker)
            .Long((bits * columns + 7) / 8);
    }
};

StRef<SmMemoryStream> StreamOf(Bytes const& bytes) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return stream;
}

Bytes Written(SmImagerImage& image, unsigned short compression) {
    auto const stream = StreamOf({});
    SrPutImagerToStream(*stream, &image, compression);
    return Bytes(stream->Data(), stream->Data() + stream->GetLength());
}

long ReadError(Bytes const& bytes, SmImagerImage* image) {
    auto const stream = StreamOf(bytes);
    return ThrownBy([&] { SrGetImagerFromStream(*stream, image, false, false); });
}

TEST(ImageStream, TheFormatByteByByte) {
    auto const image = NewImage();
    auto const mask = NewMask({1, 2});
    mask->PutPixelAt(0, 0, StAlpha8Pixel{7});
    mask->PutPixelAt(1, 0, StAlpha8Pixel{9});
    mask->SetPurpose(SrCode("Mask"));
    image->AddLayer(mask.Get());
    image->SetSize({-3, 0x01020304});
    image->SetResolution({300.0F, -0.5F});
    Writer expected;
    expected.Long(0xFFFFFFFDu).Long(0x01020304).Long(0x43960000).Long(0xBF000000).Byte(0).Long(1);
    expected.Long(1).Long(0x416C7038).Long(0x416C7046).Long(8).Long(1).Long(2);  // "Alp8", "AlpF"
    expected.Long(0).Long(0).Long(SrCode("Mask")).Long(SrCode("BIDI")).Short(0).Long(2).Byte(7).Byte(9);
    expected.Long(0x47436C69);
    EXPECT_EQ(Written(*image, 0), expected.bytes);

    auto const read = NewImage();
    EXPECT_EQ(ReadError(expected.bytes, read.Get()), 0);
    EXPECT_EQ(read->GetLayerCount(), 1);
    EXPECT_EQ(read->GetResolution(), (StFloatPoint{300.0F, -0.5F}));
    EXPECT_EQ(read->GetSize(), (StPoint{1, 2}));  // that of the layer: there is no colour
    EXPECT_EQ(read->GetLayer(0)->GetPurpose(), static_cast<long>(SrCode("Mask")));
    EXPECT_EQ(read->GetMaskLayer(), nullptr);
    EXPECT_EQ(read->GetLayer(0)->ReferenceCount(), 1);
}

TEST(ImageStream, CompressionGoesToTheLayers) {
    auto const image = NewImage();
    image->AddLayer(NewMask({1, 6}).Get());
    // A row of one value: a flag and one pixel instead of six.
    EXPECT_EQ(Written(*image, 0).size(), Written(*image, 1).size() + 4);
    EXPECT_EQ(Written(*image, 1)[21 + 24 + 17], 1);  // the marker's low byte
}

TEST(ImageStream, RoundTrip) {
    for (unsigned short compression : {0, 1}) {
        auto const image = NewDeepImage({4, 5});
        image->AddLayer(NewMask({4, 5}).Get());
        for (long i = 0; i < 20; ++i) {
            auto const level = static_cast<std::uint8_t>(i * 11);
            image->PutRGBAAt(i % 5, i / 5, {level, 2, 3, static_cast<std::uint8_t>(255 - level)});
            image->GetDepthLayer()->PutPixelAt(i % 5, i / 5, StDepthFloatPixel{i / 7.0F});
        }
        image->SetResolution({10.0F, 20.0F});
        auto const read = NewImage();
        ASSERT_EQ(ReadError(Written(*image, compression), read.Get()), 0);
        EXPECT_EQ(read->GetSize(), (StPoint{4, 5}));
        EXPECT_EQ(read->GetResolution(), (StFloatPoint{10.0F, 20.0F}));
        ASSERT_EQ(read->GetLayerCount(), 3);
        EXPECT_EQ(read->GetColorLayer(), read->GetLayer(0));
        EXPECT_EQ(read->GetDepthLayer(), read->GetLayer(1));
        EXPECT_TRUE(read->GetColorLayer()->GetSaveIntent());
        for (long i = 0; i < 20; ++i) {
            EXPECT_EQ(read->GetRGBAAt(i % 5, i / 5), image->GetRGBAAt(i % 5, i / 5));
            EXPECT_EQ(read->GetDepthAt(i % 5, i / 5), image->GetDepthAt(i % 5, i / 5));
        }
    }
}

TEST(ImageStream, KeepsTheGamut) {
    auto const image = NewImage();
    auto const read = NewImage();
    image->SetGamut(new ScScaledGamut);
    ASSERT_EQ(ReadError(Written(*image, 0), read.Get()), 0);
    EXPECT_EQ(read->GetGamut()->GetGamutSelector(), 0x47536361u);
    image->SetGamut(new ScDebugGamut({0.0F, 1.0F, 0.0F}, {0.0F, 0.0F, 1.0F}));
    ASSERT_EQ(ReadError(Written(*image, 0), read.Get()), 0);
    EXPECT_EQ(read->GetGamut()->GetGamutSelector(), 0x47446562u);
    StColorFloats color{2.0F, 0.0F, 0.0F};
    read->GetGamut()->Constrain(color);
    EXPECT_EQ(color.green, 1.0F);
}

TEST(ImageStream, WithoutAGamutOneIsWrittenThatClips) {
    auto const image = ImageRef::Adopt(SmImagerImage::New());
    Writer expected;
    expected.Long(0).Long(0).Float(72.0F).Float(72.0F).Byte(0).Long(0).Long(0x47436C69);
    EXPECT_EQ(Written(*image, 0), expected.bytes);
    auto const read = ImageRef::Adopt(SmImagerImage::New());
    EXPECT_EQ(ReadError(expected.bytes, read.Get()), 0);
    ASSERT_NE(read->GetGamut(), nullptr);
}

TEST(ImageStream, EmptyPlacesAreNotWritten) {
    auto const image = NewImage();
    image->SetLayer(3, NewMask({1, 1}).Get());
    auto const read = NewImage();
    ASSERT_EQ(ReadError(Written(*image, 0), read.Get()), 0);
    EXPECT_EQ(read->GetLayerCount(), 1);
}

TEST(ImageStream, ReadingAddsToTheLayersThatAreThere) {
    auto const source = NewImage();
    source->AddLayer(NewColor({2, 3}).Get());
    source->AddLayer(NewDepth({2, 3}).Get());
    auto const image = NewImage();
    auto const color = NewColor({7, 7});
    image->AddLayer(color.Get());
    ASSERT_EQ(ReadError(Written(*source, 0), image.Get()), 0);
    EXPECT_EQ(image->GetLayerCount(), 3);
    EXPECT_EQ(image->GetColorLayer(), color.Get());
    EXPECT_FALSE(image->GetLayer(1)->GetSaveIntent());
    EXPECT_EQ(image->GetDepthLayer(), image->GetLayer(2));
    EXPECT_EQ(image->GetSize(), (StPoint{2, 3}));  // as it stands in the stream; no layer has changed it
}

TEST(ImageStream, TheFlagIsFetchedAndIgnored) {
    auto const image = NewImage();
    Bytes bytes = Written(*image, 0);
    ASSERT_EQ(bytes[16], 0);
    bytes[16] = 1;
    EXPECT_EQ(ReadError(bytes, image.Get()), 0);
}

TEST(ImageStream, RowsAndBitmapsAreAsAsked) {
    auto const image = NewDeepImage({3, 3});
    auto const stream = StreamOf(Written(*image, 0));
    auto const read = NewImage();
    SrGetImagerFromStream(*stream, read.Get(), true, false);
    EXPECT_EQ(read->GetLayer(0)->GetClass(), (SmImagerLayer<StRGBA32Pixel, ScImagerSpool>::Class()));
    EXPECT_EQ(read->GetLayer(1)->GetClass(), (SmImagerLayer<StDepthFloatPixel, ScImagerSpool>::Class()));
}

// --- bad streams

TEST(ImageStream, AnUnknownGamutIsRefused) {
    auto const image = NewImage();
    ScGamut* const gamut = image->GetGamut();
    EXPECT_EQ(ReadError(Writer().Head().Long(0).Long(SrCode("GXxx")).bytes, image.Get()),
              SkUnknownGamutError());
    EXPECT_EQ(image->GetGamut(), gamut);
}

TEST(ImageStream, CountsThatTheStreamCannotHoldAreRefusedBeforeAnythingIsMade) {
    for (std::uint32_t count : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 1000u, 1u}) {
        auto const image = NewImage();
        Bytes const bytes = Writer().Head().Long(count).Long(0x47436C69).bytes;
        bool const isNegative = count >= 0x80000000u;
        EXPECT_EQ(ReadError(bytes, image.Get()), isNegative ? SkBadStreamFormatErrC() : SkEndOfFile())
            << count;
        EXPECT_EQ(image->GetLayerCount(), 0);
    }
}

/// A stream that runs forward and does not know its length.
class ForwardStream : public SmStream {
  public:
    explicit ForwardStream(Bytes bytes) : mBytes(std::move(bytes)) {}
    void* Read(unsigned int size, void* destination) override {
        if (size > mBytes.size() - mPosition) SrThrow(SkEndOfFile(), nullptr);
        std::memcpy(destination, mBytes.data() + mPosition, size);
        mPosition += size;
        return destination;
    }

  private:
    Bytes mBytes;
    std::size_t mPosition = 0;
};

TEST(ImageStream, AStreamOfUnknownLengthIsReadUntilItEnds) {
    auto const image = NewDeepImage({3, 3});
    auto const good = StRef<ForwardStream>::Adopt(new ForwardStream(Written(*image, 1)));
    auto const read = NewImage();
    SrGetImagerFromStream(*good, read.Get(), false, false);
    EXPECT_EQ(read->GetLayerCount(), 2);
    auto const bad = StRef<ForwardStream>::Adopt(
        new ForwardStream(Writer().Head().Long(0x7FFFFFFF).Long(0x47436C69).bytes));
    EXPECT_EQ(ThrownBy([&] { SrGetImagerFromStream(*bad, read.Get(), false, false); }), SkEndOfFile());
    auto const negative =
        StRef<ForwardStream>::Adopt(new ForwardStream(Writer().Head().Long(0xFFFFFFFFu).bytes));
    EXPECT_EQ(ThrownBy([&] { SrGetImagerFromStream(*negative, read.Get(), false, false); }),
              SkBadStreamFormatErrC());
}

TEST(ImageStream, CutAnywhereItIsAnErrorAndWholeLayersStay) {
    auto const image = NewDeepImage({3, 3});
    image->SetGamut(new ScDebugGamut({0.0F, 1.0F, 0.0F}, {0.0F, 0.0F, 1.0F}));
    Bytes const whole = Written(*image, 0);
    std::size_t const head = 21, frame = 24 + 22 + 9 * 4;
    ASSERT_EQ(whole.size(), head + 2 * frame + 40);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        auto const read = NewImage();
        EXPECT_NE(ReadError(Bytes(whole.begin(), whole.begin() + static_cast<long>(size)), read.Get()), 0)
            << size;
        long const layers = size < head + frame ? 0 : size < head + 2 * frame ? 1 : 2;
        // The second header is missed before the first frame is made.
        EXPECT_EQ(read->GetLayerCount(), size < head + 48 ? 0 : layers) << size;
        EXPECT_EQ(read->GetGamut()->GetGamutSelector(), 0x47436C69u);
    }
}

/// A layer that counts how many there are.
class Counted : public SmImagerLayer<StGray8Pixel, ScImagerNonSpool> {
  public:
    static inline int alive = 0;
    Counted() { ++alive; }
    ~Counted() override { --alive; }
    SmImagerFrame* CloneAtNewSize(StPoint const& size, bool, bool) override {
        auto layer = StRef<Counted>::Adopt(new Counted);
        layer->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
        return layer.Release();
    }
};

TEST(ImageStream, ALayerThatCannotBeReadIsReleased) {
    ScMC_* const key = SmImagerLayer<StGray8Pixel, ScImagerNonSpool>::Class();
    SmImagerFrame* usual = nullptr;
    ASSERT_TRUE(ScLayerRegistry::GetObjectByID(key, false, usual));
    FrameRef const kept(usual);
    auto counted = StRef<Counted>::Adopt(new Counted);
    counted->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    ScLayerRegistry::UnRegisterObject(key);
    ScLayerRegistry::RegisterObject(key, counted.Get());
    {
        auto const image = NewImage();
        Writer bad;
        bad.Head().Long(2).Frame("Gry8", "ColF", 8, 1, 2, 0).Byte(1).Byte(2);
        bad.Frame("Gry8", "ColF", 8, 1, 2, 9).Byte(1).Byte(2);  // no such marker
        EXPECT_EQ(ReadError(bad.bytes, image.Get()), SkBadStreamFormatErrC());
        EXPECT_EQ(image->GetLayerCount(), 1);
        EXPECT_EQ(Counted::alive, 2);  // the prototype and the layer that was whole
    }
    EXPECT_EQ(Counted::alive, 1);
    ScLayerRegistry::UnRegisterObject(key);
    ScLayerRegistry::RegisterObject(key, kept.Get());
}

TEST(ImageStream, AnUnknownPixelTypeIsTheErrorOfFrames) {
    auto const image = NewImage();
    Bytes const bytes = Writer().Head().Long(1).Frame("None", "ColF", 8, 1, 1, 0).Byte(0).bytes;
    Writer frame;
    frame.Frame("None", "ColF", 8, 1, 1, 0).Byte(0);
    auto const alone = StreamOf(frame.bytes);
    long const expected = ThrownBy([&] { SrReadImagerFrameFromStream(*alone, false, false); });
    EXPECT_LT(expected, -32768);
    EXPECT_EQ(ReadError(bytes, image.Get()), expected);
}

/// Sets the limit and puts it back.
struct FrameLimit {
    explicit FrameLimit(std::uint64_t bytes) { SrSetFrameSizeLimit(bytes); }
    ~FrameLimit() { SrSetFrameSizeLimit(was); }
    std::uint64_t was = SrGetFrameSizeLimit();
};

// Each of these frames is within the limit, and all together are not.
TEST(ImageStream, RowsThatTakeNothingOnTheStreamAreLimitedTogether) {
    FrameLimit const limit(1 << 16);
    for (int frames : {15, 17}) {
        auto const image = NewImage();
        Writer runs;
        runs.Head().Long(static_cast<std::uint32_t>(frames));
        // One row of 4096 equal pixels, in two bytes; 16 of them take a little less than the limit.
        for (int i = 0; i < frames; ++i)
            runs.Frame("Gry8", "ColF", 8, 1, 4096, 1).Byte(1).Byte(77);
        runs.Long(0x47436C69);
        EXPECT_EQ(ReadError(runs.bytes, image.Get()), frames == 15 ? 0 : SkMemoryFull()) << frames;
    }
    auto const image = NewImage();
    Writer empty;
    empty.Head().Long(100);
    // 1000 rows without pixels, which take 8000 bytes of a table. The padding behind lets them pass one by
    // one.
    for (int i = 0; i < 100; ++i)
        empty.Frame("Gry4", "ColF", 4, 1000, 0, 1);
    for (int i = 0; i < 1000; ++i)
        empty.Byte(0);
    EXPECT_EQ(ReadError(empty.bytes, image.Get()), SkMemoryFull());
    EXPECT_LT(image->GetLayerCount(), 10);
}

TEST(ImageStream, PlainLayersAreNotLimitedTogether) {
    auto const image = NewImage();
    for (int i = 0; i < 4; ++i)
        image->AddLayer(NewColor({64, 64}).Get());
    FrameLimit const limit(64 * 64 * 4);
    auto const read = NewImage();
    EXPECT_EQ(ReadError(Written(*image, 0), read.Get()), 0);
    EXPECT_EQ(read->GetLayerCount(), 4);
}

}  // namespace
