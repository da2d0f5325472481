// Reading BMP files into frames of the caller, of any kind and by both roads.
#include <gtest/gtest.h>

#include <algorithm>

#include "bmp_file.h"
#include "framewright/pixel/color_map.h"
#include "framewright/pixel/mapped_layer.h"

namespace {

using namespace bmp_test;

TEST(BmpGivenFrame, KeepsItsSizeAndDropsWhatFallsOutside) {
    File file;
    file.width = 3;
    file.height = 3;
    file.bitCount = 24;
    file.data = {1, 1, 1, 2, 2, 2, 3, 3, 3, 0, 0, 0, 4, 4, 4, 5, 5, 5,
                 6, 6, 6, 0, 0, 0, 7, 7, 7, 8, 8, 8, 9, 9, 9, 0, 0, 0};
    StRef<SmImagerFrame> const smaller = Frame(2, 2, SrCode("ColB"));
    EXPECT_EQ(PictureOf(Read(file, smaller.Get()).Get()),
              (Picture{{Rgb(7, 7, 7), Rgb(8, 8, 8)}, {Rgb(4, 4, 4), Rgb(5, 5, 5)}}));

    StRef<SmImagerFrame> const wider = Frame(1, 5, SrCode("ColB"));
    Fill(wider.Get(), {50, 50, 50, 50});
    EXPECT_EQ(PictureOf(Read(file, wider.Get()).Get()),
              (Picture{{Rgb(7, 7, 7), Rgb(8, 8, 8), Rgb(9, 9, 9), 0x32323232, 0x32323232}}));
}

TEST(BmpGivenFrame, IsResizedWhenAskedTo) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 24;
    file.data = {1, 2, 3, 4, 5, 6, 0, 0};
    StRef<SmImagerFrame> const frame = Frame(5, 5, SrCode("RG24"));
    EXPECT_EQ(PictureOf(Read(file, frame.Get(), kResize).Get()), (Picture{{Rgb(3, 2, 1), Rgb(6, 5, 4)}}));
    EXPECT_EQ(frame->PixelID(), SrCode("RG24"));
    EXPECT_EQ(frame->ReferenceCount(), 1);
}

/// Counts resizings.
class ResizeCounter : public SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool> {
  public:
    explicit ResizeCounter(StPoint const& size) { IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr); }
    void Resize(StPoint const& size, StImageInterpolationMethod method) override {
        ++resizings;
        SmImagerLayer::Resize(size, method);
    }
    int resizings = 0;
};

TEST(BmpGivenFrame, OfTheRightSize_IsNotResized) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 24;
    file.data.assign(8, 1);
    auto const frame = StRef<ResizeCounter>::Adopt(new ResizeCounter({1, 2}));
    Read(file, frame.Get(), kResize);
    EXPECT_EQ(frame->resizings, 0);
    file.width = 1;
    Read(file, frame.Get(), kResize);
    EXPECT_EQ(frame->resizings, 1);
}

TEST(BmpGivenFrame, OfTheOwnMappedType_KeepsIndicesAndTakesThePalette) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 4;
    file.palette = Palette(16);
    file.palette[4 * 7] = file.palette[4 * 7 + 1] = file.palette[4 * 7 + 2] = 0;  // 7 and 8 are one colour
    file.palette[4 * 8] = file.palette[4 * 8 + 1] = file.palette[4 * 8 + 2] = 0;
    file.data = {0x78, 0, 0, 0};
    StRef<SmImagerFrame> const frame = Frame(1, 3, SrCode("Map4"));
    unsigned char const last = 5;
    frame->PutPixelAt(2, 0, static_cast<void const*>(&last));
    Read(file, frame.Get());
    EXPECT_EQ(IndicesOf(frame.Get()), (std::vector<std::vector<int>>{{7, 8, 5}}));
    EXPECT_EQ(PictureOf(frame.Get())[0][0], Rgb(0, 0, 0));
}

TEST(BmpGivenFrame, OfAnotherMappedType_TakesColors) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 1;
    file.palette = {0,   0, 255, 0,   // red
                    255, 0, 0,   0};  // blue
    file.data = {0x40, 0, 0, 0};
    // The file's two entries take the places of the frame's first two.
    StRef<SmImagerFrame> const frame = Frame(1, 2, SrCode("Map8"));
    Read(file, frame.Get());
    EXPECT_EQ(PictureOf(frame.Get()), (Picture{{kRed, kBlue}}));
    auto* const map = SrGetColorMapFromFrame(frame.Get());
    EXPECT_EQ((*map)[0].red, 255);
    EXPECT_EQ((*map)[1].blue, 255);
}

TEST(BmpGivenFrame, OfAnyType_TakesColors) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 4;
    file.palette = Palette(16);
    file.data = {0x30, 0, 0, 0};  // white, red
    struct Row {
        char const (&id)[5];
        Picture expected;
    };
    Row const rows[] = {
        {"ColB", {{kWhite, kRed}}},
        {"RG32", {{kWhite, kRed}}},
        {"RG24", {{kWhite, kRed}}},
        {"RG15", {{kWhite, kRed}}},
        {"RG64", {{kWhite, kRed}}},
        {"Gry8", {{kWhite, Rgb(85, 85, 85)}}},  // (255 + 0 + 0) / 3
        {"Gry4", {{kWhite, Rgb(85, 85, 85)}}},  // 85 >> 4 is 5, times 17
        {"BnW1", {{kWhite, 0x00000000}}},       // 255 is below 383, so black, which is transparent
        {"Alp8", {{0xFFFFFFFF, 0xFFFFFFFF}}},   // both are opaque
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.id);
        StRef<SmImagerFrame> const frame = Frame(1, 2, SrCode(row.id));
        EXPECT_EQ(PictureOf(Read(file, frame.Get()).Get()), row.expected);
    }
}

// Classes that a host derives from a layer.

/// Notes the colours that arrive.
class PutWatcher : public SmImagerMappedLayer<StMapped8Pixel, ScImagerNonSpool> {
  public:
    explicit PutWatcher(StPoint const& size) { IImagerMappedLayer({0, 0}, size, false, nullptr, 0); }
    using SmImagerMappedLayer::PutPixelAt;
    void PutPixelAt(long x, long y, StRGBA32Pixel const& pixel) override {
        put.push_back(Rgb(pixel.red, pixel.green, pixel.blue));
        SmImagerMappedLayer::PutPixelAt(x, y, pixel);
    }
    std::vector<std::uint32_t> put;
};

TEST(BmpGivenFrame, OfAClassDerivedFromAMappedLayer_TakesColorsThroughItsOperations) {
    for (std::uint32_t compression : {0u, 1u}) {
        SCOPED_TRACE(compression);
        File file;
        file.width = 3;
        file.height = 1;
        file.bitCount = 8;
        file.compression = compression;
        file.palette = Palette(256);
        file.data = compression ? Bytes{0, 3, 2, 0, 1, 0, 0, 1} : Bytes{2, 0, 1, 0};
        file.imageSize = static_cast<std::uint32_t>(file.data.size());
        auto const frame = StRef<PutWatcher>::Adopt(new PutWatcher({1, 3}));
        Read(file, frame.Get());
        EXPECT_EQ(frame->put, (std::vector<std::uint32_t>{kBlue, kRed, kGreen}));
        EXPECT_EQ(PictureOf(frame.Get()), (Picture{{kBlue, kRed, kGreen}}));
    }
}

// Frames that lie in a larger block, of 16 bytes a row.

constexpr long kBlockRowBytes = 16;

/// A frame of one row that begins in column `left` of the block.
template <class Pixel>
StRef<SmImagerFrame> ColorFrameIn(void* block, std::int32_t left) {
    using Layer = SmImagerLayer<Pixel, ScImagerNonSpool>;
    auto frame = StRef<Layer>::Adopt(Layer::New());
    frame->IImagerLayer({0, left}, {1, 2}, false, block, kBlockRowBytes, nullptr);
    return StRef<SmImagerFrame>(frame.Get());
}
template <class Pixel>
StRef<SmImagerFrame> MappedFrameIn(void* block, std::int32_t left) {
    using Layer = SmImagerMappedLayer<Pixel, ScImagerNonSpool>;
    auto frame = StRef<Layer>::Adopt(Layer::New());
    frame->IImagerMappedLayer({0, left}, {1, 2}, false, block, kBlockRowBytes);
    return StRef<SmImagerFrame>(frame.Get());
}

TEST(BmpGivenFrame, InALargerBlock_LeavesTheRestOfIt) {
    struct Row {
        std::uint16_t bitCount;
        std::uint32_t compression;
        Bytes data;
        StRef<SmImagerFrame> (*frameIn)(void* block, std::int32_t left);
        std::int32_t left;
        std::size_t at;  ///< of that column in a row of the block, in bytes
        Bytes expected;  ///< in both rows there
    };
    Row const rows[] = {
        {24, 0, Bytes(16, 7), ColorFrameIn<StRGBA32Pixel>, 2, 8, {7, 7, 7, 255, 7, 7, 7, 255}},
        {8, 0, Bytes(8, 7), MappedFrameIn<StMapped8Pixel>, 2, 2, {7, 7}},
        {8, 1, {2, 7, 0, 0, 2, 7, 0, 1}, MappedFrameIn<StMapped8Pixel>, 2, 2, {7, 7}},
        {4, 0, {7, 0, 0, 0, 7, 0, 0, 0}, MappedFrameIn<StMapped4Pixel>, 2, 1, {0x07}},
        // The low six bits are not the frame's.
        {1, 0, Bytes(8, 0), MappedFrameIn<StMapped1Pixel>, 8, 1, {0x25}},
        // A depth that nothing is decoded of.
        {7, 0, {}, ColorFrameIn<StRGBA32Pixel>, 2, 8, Bytes(8, 0)},
        {7, 0, {}, MappedFrameIn<StMapped1Pixel>, 8, 1, {0x25}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::Message() << row.bitCount << " bits, compression " << row.compression);
        File file;
        file.width = file.height = 2;
        file.bitCount = row.bitCount;
        file.compression = row.compression;
        if (row.bitCount < 16) file.palette = Palette(std::size_t{1} << row.bitCount);
        file.data = row.data;
        file.imageSize = static_cast<std::uint32_t>(file.data.size());
        Bytes block(3 * kBlockRowBytes, 0xA5), expected = block;
        for (std::size_t y = 0; y < 2; ++y)
            std::copy(row.expected.begin(), row.expected.end(), &expected[y * kBlockRowBytes + row.at]);
        StRef<SmImagerFrame> const frame = row.frameIn(block.data(), row.left);
        Read(file, frame.Get(), kResize);
        EXPECT_EQ(block, expected);
    }
}

TEST(BmpGivenFrame, OnABlockFromTheBottomUp_IsResizedAndFilled) {
    Bytes block(2 * kBlockRowBytes, 0xA5);
    using Layer = SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>;
    auto const frame = StRef<Layer>::Adopt(Layer::New());
    frame->IImagerLayer({0, 0}, {1, 1}, false, &block[kBlockRowBytes], -kBlockRowBytes, nullptr);
    File file;
    file.width = 1;
    file.height = 2;
    file.bitCount = 24;
    file.data = {1, 2, 3, 0, 4, 5, 6, 0};
    Read(file, frame.Get(), kResize);
    EXPECT_EQ(Bytes(block.begin(), block.begin() + 5), (Bytes{1, 2, 3, 255, 0xA5}));
    EXPECT_EQ(Bytes(block.begin() + 16, block.begin() + 21), (Bytes{4, 5, 6, 255, 0xA5}));
}

TEST(BmpGivenFrame, ResizedForADepthThatIsNotDecoded_IsZeros) {
    File file;
    file.width = 40;
    file.height = 30;
    file.bitCount = 7;
    file.palette = Palette(128);
    for (auto const& id : {"ColB", "RG32", "RG24", "RG15", "RG64", "Map8", "Map1", "Gry4"}) {
        SCOPED_TRACE(id);
        auto const code = static_cast<unsigned long>(id[0] << 24 | id[1] << 16 | id[2] << 8 | id[3]);
        StRef<SmImagerFrame> const frame = Frame(2, 2, code);
        Read(file, frame.Get(), kResize);
        ASSERT_EQ(frame->GetSize(), (StPoint{30, 40}));
        for (long y = 0; y < 30; ++y) {
            auto const* const row = static_cast<unsigned char const*>(frame->GetRow(y));
            long const bytes = 40 * frame->PixelSize() / 8;
            EXPECT_EQ(std::count(row, row + bytes, 0), bytes);
        }
    }
}

TEST(BmpGivenFrame, IsResizedToNoRowsOrColumns) {
    for (StPoint const& size : {StPoint{4, 0}, StPoint{0, 4}, StPoint{0, 0}}) {
        for (std::uint16_t bits : {1, 8, 24}) {
            SCOPED_TRACE(testing::Message() << size.vertical << " by " << size.horizontal << ", " << bits);
            File file;
            file.width = static_cast<std::uint32_t>(size.horizontal);
            file.height = static_cast<std::uint32_t>(size.vertical);
            file.bitCount = bits;
            if (bits <= 8) file.palette = Palette(std::size_t{1} << bits);
            StRef<SmImagerFrame> const frame = Frame(2, 3, SrCode("Map8"));
            Read(file, frame.Get(), kResize);
            EXPECT_EQ(frame->GetSize(), size);
        }
    }
}

// The two roads into a frame.

template <class Pixel>
class BmpRoads : public testing::Test {};
TYPED_TEST_SUITE(BmpRoads, RoadPixels);

TYPED_TEST(BmpRoads, RowsAndPixels_GiveTheSameBytes) {
    for (std::uint16_t bits : {1, 4, 8, 16, 24, 32}) {
        for (std::uint32_t compression : {0u, 1u}) {
            SCOPED_TRACE(testing::Message() << bits << " bits, compression " << compression);
            File file;
            file.width = 19;
            file.height = 7;
            file.bitCount = bits;
            file.compression = compression;
            std::uint32_t state = bits;
            auto const next = [&] {
                state = state * 1664525 + 1013904223;
                return static_cast<unsigned char>(state >> 24);
            };
            if (bits <= 8) {
                for (std::size_t i = 0; i < std::size_t{4} << bits; ++i)
                    file.palette.push_back(next());
            }
            for (int i = 0; i < 19 * 7 * 4; ++i)
                file.data.push_back(next());
            for (StPoint const& size : {StPoint{7, 19}, StPoint{4, 11}, StPoint{9, 23}}) {
                StRef<SmImagerFrame> const rows = Frame(size.vertical, size.horizontal, TypeParam::PixelID());
                auto const pixels = StRef<SmImagerFrame>::Adopt(new ForeignFrame<TypeParam>(size));
                auto const bytes = static_cast<std::size_t>(rows->BytesPerRow());
                for (SmImagerFrame* frame : {rows.Get(), pixels.Get()}) {
                    // Bytes that no colour reaches must stay, so they begin as something.
                    for (long y = 0; y < size.vertical; ++y)
                        std::memset(frame->GetRow(y), 0xA5, bytes);
                    Read(file, frame);
                }
                for (long y = 0; y < size.vertical; ++y) {
                    EXPECT_EQ(std::memcmp(rows->GetRow(y), pixels->GetRow(y), bytes), 0) << "row " << y;
                }
            }
        }
    }
}

}  // namespace
