// Whole frames on a stream: the header, what a reader makes of it, and what it refuses.
#include "framewright/frame/frame_limit.h"
#include "framewright/frame/frame_reader.h"
#include "framewright/frame/frame_stream.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/pixel/dithered_layer.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/thornmere/catalog_stream.h"
#include "framewright/thornmere/memory.h"
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

void Add32(Bytes& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

struct Header {
    std::uint32_t version = 1;
    std::uint32_t pixelID = SrCode("Gry8");
    std::uint32_t familyID = SrCode("ColF");
    std::uint32_t bits = 8;
    std::uint32_t rows = 2;
    std::uint32_t columns = 3;
};

/// Header and body, with top left (0, 0), no purpose and "BIDI".
Bytes Record(Header const& header, std::uint16_t marker, std::uint32_t packed, Bytes const& rows) {
    Bytes bytes;
    for (std::uint32_t const field :
         {header.version, header.pixelID, header.familyID, header.bits, header.rows, header.columns, 0u, 0u,
          std::uint32_t{SrCode("????")}, std::uint32_t{SrCode("BIDI")}}) {
        Add32(bytes, field);
    }
    bytes.push_back(static_cast<std::uint8_t>(marker >> 8));
    bytes.push_back(static_cast<std::uint8_t>(marker));
    Add32(bytes, packed);
    bytes.insert(bytes.end(), rows.begin(), rows.end());
    return bytes;
}

Bytes Written(SmImagerFrame& frame, unsigned short compression) {
    auto const stream = Stream();
    SrWriteImagerFrameToStream(*stream, &frame, compression);
    return Contents(*stream);
}

FrameRef Read(SmStream& stream) {
    return FrameRef::Adopt(SrReadImagerFrameFromStream(stream, false, false));
}
FrameRef Read(Bytes const& bytes) {
    return Read(*Stream(bytes));
}

StRef<PlainLayer<StGray8Pixel>> SixGrays() {
    auto layer = MakeLayer<StGray8Pixel>({2, 3});
    for (std::uint8_t i = 0; i < 6; ++i)
        layer->PutMatchedPixelAt(i % 3, i / 3, {static_cast<std::uint8_t>(i + 1)});
    return layer;
}

TEST(FrameRecord, ByteForByte) {
    EXPECT_EQ(SrGetImagerFrameFileType(), 0x496D4672u);
    EXPECT_EQ(Written(*SixGrays(), 0), Record({}, 0, 3, {1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(Written(*SixGrays(), 1), Record({}, 1, 3, {0, 1, 2, 3, 0, 4, 5, 6}));

    auto const color = MakeLayer<StRGBA32Pixel>({1, 1});
    color->PutMatchedPixelAt(0, 0, {1, 2, 3, 4});
    color->SetPurpose(SrCode("TEXP"));
    color->SetDithering(0);
    Header header{1, SrCode("ColB"), SrCode("ColF"), 32, 1, 1};
    Bytes expected = Record(header, 0, 4, {3, 2, 1, 4});
    std::copy_n("TEXP\0\0\0\0", 8, expected.begin() + 32);
    EXPECT_EQ(Written(*color, 0), expected);
}

TEST(FrameRecord, TheFrameKeepsTheCompression) {
    auto const layer = SixGrays();
    EXPECT_EQ(Written(*layer, 5)[41], 1) << "any compression but 0 writes marker 1";
    auto const body = Stream();
    layer->WriteTo(body.Get());
    EXPECT_EQ(body->Data()[17], 1) << "and stays";
    Written(*layer, 0);
    auto const plain = Stream();
    layer->WriteTo(plain.Get());
    EXPECT_EQ(plain->Data()[17], 0);
}

/// The prototypes of the factory, by pixel type.
std::vector<SmImagerFrame*> Prototypes() {
    std::vector<SmImagerFrame*> prototypes;
    for (int i = 0; SmImagerFrame* const prototype = SrGetLayerRegistry()->GetObjectByIndex(i); ++i)
        prototypes.push_back(prototype);
    return prototypes;
}

bool WritesItsPixels(unsigned long id) {
    return id != SrCode("De16") && id != SrCode("De24") && id != SrCode("De32");
}

TEST(FrameRecord, EveryRegisteredLayerReadsBack) {
    ASSERT_EQ(Prototypes().size(), 21u);
    for (SmImagerFrame* const prototype : Prototypes())
        for (unsigned short const compression : {0, 1})
            for (StPoint const size : {StPoint{3, 13}, {4, 1}, {1, 64}, {0, 5}}) {
                if (!WritesItsPixels(prototype->PixelID())) continue;
                StKind const& kind = KindOfID(prototype->PixelID());
                auto const frame = FrameRef::Adopt(prototype->CloneAtNewSize(size, false, false));
                FillRandom(*frame, kind, 7);
                frame->SetPurpose(SrCode("DEPT"));
                auto const stream = Stream(Written(*frame, compression));
                FrameRef const read = Read(*stream);
                EXPECT_EQ(read->GetClass(), frame->GetClass()) << kind.name;
                EXPECT_TRUE(Same(Shot(*frame), Shot(*read))) << kind.name << " compression " << compression;
                EXPECT_EQ(read->GetPurpose(), long{SrCode("DEPT")});
                EXPECT_EQ(stream->GetPosition(), stream->GetLength());
                EXPECT_EQ(read->ReferenceCount(), 1);
                EXPECT_FALSE(read->GetSaveIntent());
            }
}

TEST(FrameRecord, TheColoursOfAMapComeAlong) {
    auto const frame = FrameRef::Adopt(SrMakeFrame({2, 2}, SrCode("Map8"), false, false));
    SrGetColorMapFromFrame(frame.Get())->SetColor(7, {10, 20, 30, 255});
    for (long i = 0; i < 4; ++i)
        Put(*frame, i % 2, i / 2, {7});
    FrameRef const read = Read(Written(*frame, 1));
    EXPECT_EQ(read->GetRGBAPixelAt(1, 1), (StRGBA32Pixel{10, 20, 30, 255}));
}

TEST(FrameRecord, NobodyLooksAtTheVersion) {
    Header header;
    header.version = 99;
    EXPECT_EQ(At(*Read(Record(header, 0, 3, {1, 2, 3, 4, 5, 6})), 2, 1)[0], 6);
}

TEST(FrameRecord, WideIntegerDepths_ThrowAtTheirFirstPixel) {
    for (unsigned long const id : {SrCode("De16"), SrCode("De24"), SrCode("De32")}) {
        auto const frame = FrameRef::Adopt(SrMakeFrame({1, 1}, id, false, false));
        EXPECT_EQ(ThrownBy([&] { Written(*frame, 0); }), -39);
    }
}

/// The error of a type that no layer has, and its message.
struct Refusal {
    long code = 0;
    std::string text;
};

Refusal RefusalOf(Bytes const& bytes) {
    try {
        Read(bytes);
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        long const code = SrGetExceptionValues(exception, message);
        return {code, message ? message->GetText() : "no message"};
    }
    return {};
}

TEST(FrameRecord, TypesWithoutALayer_HaveAnErrorOfTheirOwn) {
    Header const unknown[] = {
        {1, SrCode("Gry9"), SrCode("ColF"), 8, 2, 3},   // no such pixel
        {1, SrCode("Gry8"), SrCode("AlpF"), 8, 2, 3},   // of another family
        {1, SrCode("Gry8"), SrCode("ColF"), 16, 2, 3},  // of another width
        {1, SrCode("Gry8"), SrCode("ColF"), 0xFFFFFFF8u, 2, 3},
        {1, SrCode("Gry9"), SrCode("ColF"), 8, 0x7FFFFFFF, 0x7FFFFFFF},
    };
    ScMessageBuzzStrings const expected(SkAlertStrings(), 2, 1, 1, SkSimpleAlert());
    for (Header const& header : unknown) {
        Refusal const refusal = RefusalOf(Record(header, 0, 3, {1, 2, 3, 4, 5, 6}));
        EXPECT_LE(refusal.code, -100000) << "an allocated code";
        EXPECT_NE(refusal.code, SkBadStreamFormatErrC());
        EXPECT_EQ(refusal.text, expected.GetText());
    }
    // A header alone will do.
    Bytes header = Record(unknown[0], 0, 3, {});
    header.resize(24);
    EXPECT_EQ(RefusalOf(header).text, expected.GetText());
}

TEST(FrameRecord, LayersWithoutAPrototype_AreWrittenButNotRead) {
    long const code = RefusalOf(Record({1, SrCode("Gry9"), SrCode("ColF"), 8, 2, 3}, 0, 3, {})).code;
    for (unsigned long const id : {SrCode("RGFL"), SrCode("CoFl"), SrCode("ColW")}) {
        StKind const& kind = KindOfID(id);
        FrameRef const frame = kind.make({2, 2});
        FillRandom(*frame, kind, 1);
        EXPECT_EQ(RefusalOf(Written(*frame, 0)).code, code);
    }
}

TEST(FrameRecord, NegativeSizesAreABadFormat) {
    for (Header const& header : {Header{1, SrCode("Gry8"), SrCode("ColF"), 8, 0xFFFFFFFF, 3},
                                 {1, SrCode("Gry8"), SrCode("ColF"), 8, 2, 0x80000000},
                                 {1, SrCode("Gry9"), 0, 8, 0x80000000, 3}}) {
        EXPECT_EQ(ThrownBy([&] { Read(Record(header, 0, 3, {1, 2, 3})); }), SkBadStreamFormatErrC());
    }
}

std::size_t gMostAsked = 0;

bool WatchGate(std::size_t size) {
    gMostAsked = std::max(gMostAsked, size);
    return true;
}

struct GateGuard {
    GateGuard() {
        gMostAsked = 0;
        SrSetAllocationGate(WatchGate);
    }
    ~GateGuard() { SrSetAllocationGate(nullptr); }
};

/// A stream that does not know how much it holds.
class Forward : public SmStream {
  public:
    explicit Forward(Bytes bytes) : mBytes(std::move(bytes)) {}
    void* Read(unsigned int size, void* destination) override {
        if (size > mBytes.size() - mPosition) SrThrow(SkEndOfFile(), nullptr);
        std::copy_n(mBytes.begin() + static_cast<long>(mPosition), size,
                    static_cast<std::uint8_t*>(destination));
        mPosition += size;
        return destination;
    }

  private:
    Bytes mBytes;
    std::size_t mPosition = 0;
};

struct Size {
    char const* pixelID;
    std::uint32_t bits, rows, columns;
    std::uint16_t marker;
    std::size_t rowBytes;  ///< the fewest that the rows can take
};

TEST(FrameRecord, SizesThatTheStreamCannotHold_AllocateNothing) {
    constexpr Size kSizes[] = {
        // plain rows: the packed row, or each pixel in its stream form
        {"Gry8", 8, 100, 30, 0, 100 * 30},
        {"Gry4", 4, 100, 31, 0, 100 * 16},
        {"ColB", 32, 20, 30, 0, 20 * 30 * 4},
        {"RG64", 64, 20, 30, 0, 20 * 30 * 8},
        // runs: a flag and a pixel a row
        {"Gry8", 8, 100, 0x10000, 1, 100 * 2},
        {"ColB", 32, 100, 0x1000, 1, 100 * 5},
        // below a byte a pixel: one byte each
        {"Gry4", 4, 100, 31, 1, 100 * 31},
        // absurd
        {"ColB", 32, 0x7FFFFFFF, 0x7FFFFFFF, 0, std::size_t{0x7FFFFFFF} * 0x7FFFFFFF * 4},
        {"RG64", 64, 0x7FFFFFFF, 0x7FFFFFFF, 1, std::size_t{0x7FFFFFFF} * 9},
        {"Gry8", 8, 0x7FFFFFFF, 0, 1, 0x7FFFFFFF},
    };
    for (Size const& size : kSizes) {
        std::uint32_t id = 0;
        for (int i = 0; i < 4; ++i)
            id = id << 8 | static_cast<std::uint8_t>(size.pixelID[i]);
        Header const header{1, id, SrCode("ColF"), size.bits, size.rows, size.columns};
        auto const packed = static_cast<std::uint32_t>((std::uint64_t{size.bits} * size.columns + 7) / 8);
        Bytes const fixed = Record(header, size.marker, packed, {});
        std::size_t const held = std::min<std::size_t>(size.rowBytes - 1, 10000);
        auto const stream = Stream(Record(header, size.marker, packed, Bytes(held, 0)));
        GateGuard const gate;
        EXPECT_EQ(ThrownBy([&] { Read(*stream); }), -108) << size.pixelID << " marker " << size.marker;
        EXPECT_LT(gMostAsked, 4096u);
        if (size.rowBytes > 10000) continue;
        // With one byte more it can be there.
        auto const whole = Stream(Record(header, size.marker, packed, Bytes(size.rowBytes, 1)));
        long const code = ThrownBy([&] { Read(*whole); });
        EXPECT_NE(code, -108) << size.pixelID << " marker " << size.marker;
    }
}

TEST(FrameRecord, RowsWithoutPixels_AreCountedToo) {
    // Pixels of two bytes and more do not compare the packed row bytes.
    Header const header{1, SrCode("ColB"), SrCode("ColF"), 32, 0x7FFFFFFF, 0};
    GateGuard const gate;
    EXPECT_EQ(ThrownBy([&] { Read(Record(header, 0, 1, Bytes(100, 0))); }), -108);
    EXPECT_LT(gMostAsked, 4096u);
    auto const empty = MakeLayer<StGray4Pixel>({5, 0});
    EXPECT_EQ(Read(Written(*empty, 1))->GetSize(), (StPoint{5, 0}));
}

TEST(FrameRecord, SizesOverTheLimit_AreRefusedOnStreamsOfUnknownLength) {
    Header const header{1, SrCode("ColB"), SrCode("ColF"), 32, 0x7FFFFFFF, 0x7FFFFFFF};
    auto const stream = StRef<SmStream>::Adopt(new Forward(Record(header, 0, 4, {})));
    GateGuard const gate;
    EXPECT_EQ(ThrownBy([&] { Read(*stream); }), -108);
    EXPECT_LT(gMostAsked, 4096u);

    SrSetFrameSizeLimit(8);
    auto const small = StRef<SmStream>::Adopt(new Forward(Record({}, 0, 3, {1, 2, 3, 4, 5, 6})));
    EXPECT_EQ(ThrownBy([&] { Read(*small); }), -108) << "the table of rows counts";
    SrSetFrameSizeLimit(std::uint64_t{1} << 31);
}

TEST(FrameRecord, StreamsOfUnknownLengthRead) {
    auto const stream = StRef<SmStream>::Adopt(new Forward(Record({}, 0, 3, {1, 2, 3, 4, 5, 6})));
    EXPECT_EQ(At(*Read(*stream), 2, 1)[0], 6);
}

/// A layer class that remembers what it made, so that a frame that a reader gave up can be looked at.
class Maker : public PlainLayer<StGray8Pixel> {
  public:
    static SmImagerFrame* made;
    static long living;
    Maker() { ++living; }
    ~Maker() override { --living; }
    SmImagerFrame* CloneAtNewSize(StPoint const& size, bool, bool) override {
        auto layer = StRef<Maker>::Adopt(new Maker);
        layer->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
        made = layer.Get();
        return layer.Release();
    }
};
SmImagerFrame* Maker::made = nullptr;
long Maker::living = 0;

/// Puts a Maker in the place of the grey prototype.
struct MakerGuard {
    MakerGuard() : kept(ScLayerRegistry::GetObjectByID(cls, false)) {
        auto const maker = StRef<Maker>::Adopt(new Maker);
        maker->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
        ScLayerRegistry::UnRegisterObject(cls);
        ScLayerRegistry::RegisterObject(cls, maker.Get());
    }
    ~MakerGuard() {
        ScLayerRegistry::UnRegisterObject(cls);
        ScLayerRegistry::RegisterObject(cls, kept.Get());
    }
    ScMC_* const cls = PlainLayer<StGray8Pixel>::Class();
    FrameRef const kept;
};

TEST(FrameRecord, CutAnywhere_Throws) {
    MakerGuard const guard;
    for (std::uint16_t const marker : {0, 1}) {
        Bytes const rows = marker == 0 ? Bytes{1, 2, 3, 4, 5, 6} : Bytes{0, 1, 2, 3, 1, 9};
        Bytes const whole = Record({}, marker, 3, rows);
        FrameRef const read = Read(whole);
        EXPECT_EQ(At(*read, 2, 0)[0], 3);
        // On a stream that knows its length no rows can be behind the cut; elsewhere the stream ends.
        std::size_t const least = 46 + (marker == 0 ? 6 : 4);
        for (std::size_t length = 0; length < whole.size(); ++length) {
            Bytes const cut(whole.begin(), whole.begin() + static_cast<long>(length));
            Maker::made = nullptr;
            EXPECT_EQ(ThrownBy([&] { Read(cut); }), length < 24 || length >= least ? -39 : -108) << length;
            if (length < least) {
                EXPECT_EQ(Maker::made, nullptr);
            } else {
                ASSERT_NE(Maker::made, nullptr);
                Maker::made->ReleaseReference();
            }
            Maker::made = nullptr;
            auto const forward = StRef<SmStream>::Adopt(new Forward(cut));
            EXPECT_EQ(ThrownBy([&] { Read(*forward); }), -39) << length;
            if (Maker::made) Maker::made->ReleaseReference();
        }
    }
}

TEST(FrameRecord, AFrameWhoseBodyThrows_KeepsItsReference) {
    MakerGuard const guard;
    struct {
        std::uint16_t marker;
        std::uint32_t packed;
    } constexpr kBad[] = {{2, 3}, {0x100, 3}, {0, 0}, {0, 4}, {0, 0x100000}, {0, 0xFFFFFFFF}};
    for (auto const& bad : kBad) {
        Maker::made = nullptr;
        Bytes const bytes = Record({}, bad.marker, bad.packed, Bytes(64, 0));
        EXPECT_EQ(ThrownBy([&] { Read(bytes); }), SkBadStreamFormatErrC());
        ASSERT_NE(Maker::made, nullptr);
        EXPECT_EQ(Maker::made->ReferenceCount(), 1);
        Maker::made->ReleaseReference();
    }
}

TEST(FrameRecord, ReadersOfSeveralFrames_KeepNoneWhoseBodyThrows) {
    MakerGuard const guard;
    Maker::made = nullptr;
    long const living = Maker::living;
    auto const bad = Stream(Record({}, 2, 3, Bytes(64, 0)));
    EXPECT_EQ(ThrownBy([&] { frame::ReadFrameFromStream(*bad, false, false); }), SkBadStreamFormatErrC());
    ASSERT_NE(Maker::made, nullptr);
    EXPECT_EQ(Maker::living, living);
    auto const good = Stream(Record({}, 0, 3, {1, 2, 3, 4, 5, 6}));
    FrameRef const read = frame::ReadFrameFromStream(*good, false, false);
    EXPECT_EQ(read->ReferenceCount(), 1);
    EXPECT_EQ(At(*read, 2, 1)[0], 6);
}

TEST(FrameRecord, Catalog_HoldsASection) {
    auto const stream = Stream();
    ScCatalogWriteStream catalog;
    catalog.ICatalogStream(stream.Get());
    SrImagerFrameToStream(catalog, SixGrays().Get(), 0);
    Bytes expected;
    Bytes const record = Record({}, 0, 3, {1, 2, 3, 4, 5, 6});
    for (std::uint32_t const field :
         {std::uint32_t{SrCode("CtSc")}, 0x496D4672u, 0x100u, static_cast<std::uint32_t>(record.size())})
        Add32(expected, field);
    Bytes const contents = Contents(*stream);
    ASSERT_GT(contents.size(), expected.size() + record.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), contents.begin()));
    EXPECT_TRUE(std::equal(record.rbegin(), record.rend(), contents.rbegin()));
    EXPECT_TRUE(catalog.PrepareStreamForWrite(1, 1, nullptr)) << "the section is closed";
}

TEST(FrameRecord, Catalog_WithoutAStream_Throws) {
    ScCatalogWriteStream catalog;
    auto const frame = SixGrays();
    EXPECT_EQ(ThrownBy([&] { SrImagerFrameToStream(catalog, frame.Get(), 0); }), -108);
}

}  // namespace
