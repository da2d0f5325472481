// Mipmaps: layout, chain, copies, streams, prototypes.
#include <cmath>
#include <limits>

#include "framewright/core/startup.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/stream.h"
#include "mipmaps.h"

using namespace testing_frames;
using namespace testing_mipmaps;

namespace {

using Color = StRGBA32Pixel;

std::vector<StMipLevel> Levels(StMipChain const& chain) {
    return {chain.table, chain.table + chain.levels};
}

struct LayoutRow {
    StPoint asked;
    float filter;
    StPoint top;
    StPoint raster;
    long levels;
};

TEST(MipmapLayout, SidesGoToTheNearestPowerOfTwo) {
    constexpr LayoutRow kRows[] = {
        // rows, columns      filter  level 0     raster      levels
        {{100, 200}, 1.0f, {128, 256}, {192, 256}, 9},
        {{96, 96}, 1.0f, {128, 128}, {192, 128}, 8},  // a tie goes up
        {{95, 97}, 1.0f, {64, 128}, {96, 128}, 8},
        {{1, 1}, 1.0f, {1, 1}, {2, 1}, 1},
        {{1, 4}, 1.0f, {1, 4}, {2, 4}, 3},
        {{3, 5}, 1.0f, {4, 4}, {6, 4}, 3},
        {{6, 2}, 1.0f, {8, 2}, {12, 2}, 4},
        {{0, -3}, 1.0f, {1, 1}, {2, 1}, 1},
        // The chain stops where one pixel covers the filter.
        {{64, 32}, 0.125f, {64, 32}, {96, 32}, 4},
        {{64, 32}, 0.126f, {64, 32}, {96, 32}, 5},
        {{64, 32}, 0.124f, {64, 32}, {96, 32}, 4},
        {{64, 32}, 0.015625f, {64, 32}, {96, 32}, 1},
        {{64, 32}, 5.0f, {64, 32}, {96, 32}, 7},
        {{64, 32}, -1.0f, {64, 32}, {96, 32}, 1},
        // 0 counts the halvings of the larger side, less one where the side fell back.
        {{64, 32}, 0.0f, {64, 32}, {96, 32}, 7},
        {{70, 32}, 0.0f, {64, 32}, {96, 32}, 7},
        {{100, 32}, 0.0f, {128, 32}, {192, 32}, 8},
        {{1, 1}, 0.0f, {1, 1}, {2, 1}, 1},
    };
    for (LayoutRow const& row : kRows) {
        SCOPED_TRACE(testing::Message()
                     << row.asked.vertical << " by " << row.asked.horizontal << ", filter " << row.filter);
        auto const mipmap = NewMipmap<Color>(row.asked, row.filter);
        EXPECT_EQ(mipmap->GetSize(), row.top);
        EXPECT_EQ(mipmap->GetStorageSize(), row.raster);
        EXPECT_EQ(mipmap->Chain().levels, row.levels);
        EXPECT_EQ(mipmap->GetTopLeft(), (StPoint{0, 0}));
    }
    float const none = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(NewMipmap<Color>({64, 32}, none)->Chain().levels, 1);
    float const infinite = std::numeric_limits<float>::infinity();
    EXPECT_EQ(NewMipmap<Color>({64, 32}, infinite)->Chain().levels, 7);
}

TEST(MipmapLayout, LevelsRunBelowAndThenToTheRight) {
    EXPECT_EQ(
        Levels(NewMipmap<Color>({8, 16})->Chain()),
        (std::vector<StMipLevel>{{0, 0, 8, 16}, {8, 0, 4, 8}, {8, 8, 2, 4}, {8, 12, 1, 2}, {8, 14, 1, 1}}));
    EXPECT_EQ(Levels(NewMipmap<Color>({1, 4})->Chain()),
              (std::vector<StMipLevel>{{0, 0, 1, 4}, {1, 0, 1, 2}, {1, 2, 1, 1}}));
    // Four times as high as wide: the last level lies right of the raster.
    EXPECT_EQ(Levels(NewMipmap<Color>({8, 2})->Chain()),
              (std::vector<StMipLevel>{{0, 0, 8, 2}, {8, 0, 4, 1}, {8, 1, 2, 1}, {8, 2, 1, 1}}));
}

TEST(MipmapLayout, FieldsOfTheFilters) {
    auto const mipmap = NewMipmap<Color>({8, 32});
    StMipChain const& chain = mipmap->Chain();
    EXPECT_EQ(chain.minimumFilter, 1.0f / 32);
    EXPECT_EQ(chain.levelBias, 5.0f);
    EXPECT_EQ(chain.maximumFilter, 1.0f);
    EXPECT_EQ(chain.log2Width, 5.0f);
    EXPECT_EQ(chain.log2Height, 3.0f);
    EXPECT_EQ(chain.originalSize, (StPoint{0, 0}));
    // From the smallest level, not from the argument: 2 by 8 is the third.
    auto const shallow = NewMipmap<Color>({8, 32}, 0.1f);
    EXPECT_EQ(shallow->Chain().levels, 3);
    EXPECT_EQ(shallow->Chain().maximumFilter, 0.5f);
    EXPECT_EQ(NewMipmap<Color>({1, 1})->Chain().minimumFilter, 1.0f);
}

TEST(MipmapLayout, SizesThatNoRasterCanHave) {
    for (StPoint const size : {StPoint{0x7FFFFFFF, 1}, {1, 0x7FFFFFFF}, {0x40000000, 0x40000000}}) {
        auto const mipmap = StRef<Mipmap<Color>>::Adopt(new Mipmap<Color>);
        EXPECT_EQ(ThrownBy([&] { mipmap->IImagerMipmap(size, 1.0f, false); }), -108);
        EXPECT_EQ(mipmap->GetSize(), (StPoint{0, 0}));
    }
}

std::size_t gRefused = 0;

TEST(MipmapLayout, ATableThatIsRefused_ThrowsMemoryFull) {
    gRefused = 5 * sizeof(StMipLevel);
    SrSetAllocationGate([](std::size_t size) { return size != gRefused; });
    auto const mipmap = StRef<Mipmap<Color>>::Adopt(new Mipmap<Color>);
    long const code = ThrownBy([&] { mipmap->IImagerMipmap({16, 16}, 1.0f, false); });
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(code, -108);
    EXPECT_EQ(mipmap->Chain().levels, 0);
    EXPECT_EQ(ThrownBy([&] { mipmap->SampleLevel(0, 0, 0, SkNoTilings()); }), -108);
}

TEST(Mipmap, IsAFrameOfLevel0) {
    auto const mipmap = NewMipmap<Color>({100, 200});
    SmImagerFrame& frame = *mipmap;
    EXPECT_TRUE(frame.IsUVTriLinear());
    EXPECT_EQ(frame.PixelID(), SrCode("ColB"));
    EXPECT_EQ(frame.GetOriginalSize(), (StPoint{0, 0}));
    mipmap->SetOriginalSize({3, 4});
    EXPECT_EQ(frame.GetOriginalSize(), (StPoint{3, 4}));
    EXPECT_STREQ(frame.GetClassName(), "SmImagerMipmap<class template>");
    EXPECT_TRUE(frame.IsMemberOf((SmImagerLayer<Color, ScImagerNonSpool>::Class())));
}

// The chain.

template <class Record>
class MipmapOf : public testing::Test {};
TYPED_TEST_SUITE(MipmapOf, MipmapRecords);

/// The rule of one level, pixel by pixel.
template <class Record>
Record BoxOf(Mipmap<Record>& mipmap, StMipLevel const& from, long x, long y) {
    auto const at = [&](long column, long row) {
        return mipmap.GetMatchedPixelAt(from.left + column, from.top + row);
    };
    Record a = at(2 * x, 2 * y);
    if (from.width > 1) a.Blend(at(2 * x + 1, 2 * y), 0.5f);
    if (from.height > 1) {
        Record b = at(2 * x, 2 * y + 1);
        if (from.width > 1) b.Blend(at(2 * x + 1, 2 * y + 1), 0.5f);
        a.Blend(b, 0.5f);
    }
    return a;
}

TYPED_TEST(MipmapOf, EachLevelIsTheOneBeforeInPairsOfBlends) {
    using Record = TypeParam;
    for (StPoint const size : {StPoint{8, 8}, {4, 16}, {16, 8}, {1, 8}, {2, 2}, {1, 1}, {32, 4}, {16, 1}}) {
        auto const mipmap = RandomMipmap<Record>(size);
        StMipChain const& chain = mipmap->Chain();
        for (long i = 1; i < chain.levels; ++i) {
            StMipLevel const& level = chain.table[i];
            if (level.left >= size.horizontal) continue;  // right of the raster
            for (long y = 0; y < level.height; ++y)
                for (long x = 0; x < level.width; ++x) {
                    auto const expected = BoxOf(*mipmap, chain.table[i - 1], x, y);
                    auto const actual = mipmap->GetMatchedPixelAt(level.left + x, level.top + y);
                    EXPECT_EQ(ToNative(actual), ToNative(expected))
                        << size.vertical << " by " << size.horizontal << " level " << i;
                }
        }
    }
}

TEST(Mipmap, BytesRoundDownAtEachBlend) {
    auto const mipmap = NewMipmap<Color>({2, 2});
    mipmap->PutMatchedPixelAt(0, 0, {0, 255, 10, 1});
    mipmap->PutMatchedPixelAt(1, 0, {1, 255, 20, 0});
    mipmap->PutMatchedPixelAt(0, 1, {2, 255, 31, 0});
    mipmap->PutMatchedPixelAt(1, 1, {3, 0, 40, 2});
    mipmap->RebuildLevels();
    // (0 + 1) / 2 = 0, (2 + 3) / 2 = 2, so 1; and so on.
    EXPECT_EQ(mipmap->GetMatchedPixelAt(0, 2), (Color{1, 191, 25, 0}));
}

TEST(Mipmap, TheFillerOfRGB32ComesFromTheFirstPixel) {
    auto const mipmap = NewMipmap<StRGB32Pixel>({2, 2});
    for (std::uint8_t i = 0; i < 4; ++i)
        mipmap->PutMatchedPixelAt(i % 2, i / 2, {0, 0, 0, static_cast<std::uint8_t>(40 + i)});
    mipmap->RebuildLevels();
    EXPECT_EQ(mipmap->GetMatchedPixelAt(0, 2).filler, 40);
}

TEST(Mipmap, PixelsWrittenLaterDoNotReachTheLevels) {
    auto const mipmap = NewMipmap<Color>({2, 2});
    for (long i = 0; i < 4; ++i)
        mipmap->PutMatchedPixelAt(i % 2, i / 2, {10, 10, 10, 10});
    mipmap->RebuildLevels();
    mipmap->PutMatchedPixelAt(0, 0, {250, 250, 250, 250});
    EXPECT_EQ(mipmap->GetMatchedPixelAt(0, 2), (Color{10, 10, 10, 10}));
}

TYPED_TEST(MipmapOf, CopyFromLayer_TakesAFrameOfLevel0sSize) {
    using Record = TypeParam;
    auto const source = MakeLayer<Record>({8, 4});
    FillRandom(*source, KindOfID(Record::PixelID()), 3);
    auto const mipmap = NewMipmap<Record>({8, 4});
    mipmap->CopyFromLayer(source.Get());
    EXPECT_TRUE(Same(Shot(*source), Shot(*mipmap)));
    auto const expected = BoxOf(*mipmap, mipmap->Chain().table[0], 1, 3);
    EXPECT_EQ(ToNative(mipmap->GetMatchedPixelAt(1, 8 + 3)), ToNative(expected));
    EXPECT_EQ(mipmap->GetOriginalSize(), (StPoint{8, 4}));
}

TEST(Mipmap, CopyFromLayer_StretchesOtherSizes) {
    auto const source = MakeLayer<Color>({5, 7});
    FillRandom(*source, KindOfID(SrCode("ColB")), 3);
    auto const mipmap = NewMipmap<Color>({5, 7});
    ASSERT_EQ(mipmap->GetSize(), (StPoint{4, 8}));
    auto const stretched = MakeLayer<Color>({4, 8});
    stretched->StretchBlit(source.Get(), {0, 0, 5, 7}, {0, 0, 4, 8});
    mipmap->CopyFromLayer(source.Get());
    EXPECT_TRUE(Same(Shot(*stretched), Shot(*mipmap)));
    EXPECT_EQ(mipmap->GetOriginalSize(), (StPoint{5, 7}));
    EXPECT_EQ(mipmap->GetSize(), (StPoint{4, 8}));
}

TEST(Mipmap, CopyFromLayer_ConvertsOtherPixels_AndTakesMipmapsByLevel0) {
    auto const gray = MakeLayer<StGray8Pixel>({2, 2});
    for (std::uint8_t i = 0; i < 4; ++i)
        gray->PutMatchedPixelAt(i % 2, i / 2, {static_cast<std::uint8_t>(i * 20)});
    auto const mipmap = NewMipmap<Color>({2, 2});
    mipmap->CopyFromLayer(gray.Get());
    EXPECT_EQ(mipmap->GetMatchedPixelAt(1, 1), (Color{60, 60, 60, 255}));
    auto const again = NewMipmap<Color>({2, 2});
    again->CopyFromLayer(mipmap.Get());
    EXPECT_TRUE(Same(Shot(*mipmap), Shot(*again)));
    EXPECT_EQ(again->GetMatchedPixelAt(0, 2), mipmap->GetMatchedPixelAt(0, 2));
}

TEST(Mipmap, CopyFromLayer_OfAnEmptyFrame) {
    auto const empty = MakeLayer<Color>({0, 3});
    auto const mipmap = NewMipmap<Color>({1, 4});
    mipmap->SetBackground({1, 2, 3, 4});
    mipmap->Erase();
    mipmap->CopyFromLayer(empty.Get());
    EXPECT_EQ(mipmap->GetMatchedPixelAt(3, 0), (Color{1, 2, 3, 4}));
    EXPECT_EQ(mipmap->GetOriginalSize(), (StPoint{0, 3}));
}

// Clones.

TYPED_TEST(MipmapOf, CloneAtNewSize_IsAMipmapOfTheNearestPowersOfTwo) {
    using Record = TypeParam;
    auto const shallow = NewMipmap<Record>({64, 64}, 0.1f);  // down to 8 by 8
    ASSERT_EQ(shallow->Chain().maximumFilter, 0.125f);
    for (bool const spooled : {false, true}) {
        auto const clone = FrameRef::Adopt(shallow->CloneAtNewSize({100, 20}, spooled, false));
        EXPECT_EQ(clone->GetSize(), (StPoint{128, 16}));
        EXPECT_TRUE(clone->IsUVTriLinear());
        EXPECT_EQ(clone->PixelID(), Record::PixelID());
        EXPECT_EQ(clone->ReferenceCount(), 1);
        EXPECT_EQ(clone->GetOriginalSize(), (StPoint{0, 0}));
    }
    auto const clone = FrameRef::Adopt(shallow->CloneAtNewSize({100, 20}, false, false));
    auto& mipmap = AsMipmap<Record>(*clone);
    EXPECT_EQ(mipmap.Chain().levels, 5) << "128 pixels a side down to 8";
}

TYPED_TEST(MipmapOf, Clone_HasAllLevels) {
    using Record = TypeParam;
    for (StPoint const size : {StPoint{8, 16}, {1, 2}, {8, 2}}) {
        auto const mipmap = RandomMipmap<Record>(size);
        mipmap->SetOriginalSize({7, 15});
        auto const copy = StRef<SmImagerMipmap<Record, ScImagerNonSpool>>::Adopt(mipmap->Clone());
        EXPECT_EQ(copy->GetSize(), size);
        EXPECT_EQ(copy->GetOriginalSize(), (StPoint{7, 15}));
        EXPECT_EQ(Levels(copy->Chain()), Levels(mipmap->Chain()));
        EXPECT_NE(copy->Chain().table, mipmap->Chain().table);
        EXPECT_EQ(copy->Chain().levelBias, mipmap->Chain().levelBias);
        for (StMipLevel const& level : Levels(mipmap->Chain()))
            for (long y = level.top; y < level.top + level.height; ++y)
                for (long x = level.left; x < std::min(level.left + level.width, size.horizontal); ++x) {
                    EXPECT_EQ(ToNative(copy->GetMatchedPixelAt(x, y)),
                              ToNative(mipmap->GetMatchedPixelAt(x, y)));
                }
        EXPECT_NE(copy->GetRow(0), mipmap->GetRow(0));
    }
}

TEST(Mipmap, Mirror_IsAPlainLayerOfLevel0) {
    auto const mipmap = RandomMipmap<Color>({4, 8});
    auto const mirror = FrameRef::Adopt(mipmap->MirrorLayer());
    EXPECT_EQ(mirror->GetClass(), PlainLayer<Color>::Class());
    EXPECT_TRUE(Same(Shot(*mipmap), Shot(*mirror)));
}

TEST(Mipmap, Become_TakesTheLevelsOver) {
    auto const mipmap = RandomMipmap<Color>({8, 8});
    auto const other = StRef<SmImagerMipmap<Color, ScImagerNonSpool>>::Adopt(mipmap->Clone());
    auto const small =
        StRef<SmImagerMipmap<Color, ScImagerNonSpool>>::Adopt(SmImagerMipmap<Color, ScImagerNonSpool>::New());
    small->IImagerMipmap({2, 2}, 1.0f, false);
    small->ImplementBecome(other.Get());
    EXPECT_EQ(small->Chain().levels, 4);
    EXPECT_EQ(small->GetMatchedPixelAt(0, 8), mipmap->GetMatchedPixelAt(0, 8));
}

TEST(Mipmap, CloneOfOneThatWasNeverInitialised) {
    using Class = SmImagerMipmap<Color, ScImagerNonSpool>;
    auto const mipmap = StRef<Mipmap<Color>>::Adopt(new Mipmap<Color>);
    auto const copy = StRef<Class>::Adopt(mipmap->Clone());
    EXPECT_EQ(copy->GetSize(), (StPoint{0, 0}));
    EXPECT_EQ(copy->Chain().table, nullptr);
    Color pixel{};
    EXPECT_EQ(ThrownBy([&] { copy->GetFractionalUVPixel(0, 0, pixel, SkNoTilings(), 0); }), -108);
    float du = 0, dv = 0;
    EXPECT_EQ(ThrownBy([&] { copy->GetUVDerivatives(0, 0, du, dv, SkNoTilings(), 0); }), -108);
    mipmap->RebuildLevels();
}

TEST(Mipmap, AResizedRaster_IsReadNoFurtherThanItGoes) {
    auto const mipmap = RandomMipmap<Color>({8, 8});
    mipmap->Resize({3, 3}, StImageInterpolationMethod::kNone);
    mipmap->Erase();
    EXPECT_EQ(mipmap->GetSize(), (StPoint{3, 3}));
    mipmap->RebuildLevels();
    Color pixel{};
    for (float const filter : {0.0f, 0.2f, 0.9f})
        mipmap->GetFractionalUVPixel(0.9f, 0.1f, pixel, SkNoTilings(), filter);
    auto const other = MakeLayer<Color>({8, 8});
    other->CopyFromLayer(mipmap.Get());
}

TEST(Mipmap, RowsWithoutMemory_ThrowMemoryFull) {
    auto const mipmap = RandomMipmap<Color>({4, 4});
    mipmap->MoveFrame({0, 0, 6, 4});  // an owner's rows have no address afterwards
    float du = 0, dv = 0;
    EXPECT_EQ(ThrownBy([&] { mipmap->SampleLevel(0.5f, 0.5f, 0, SkNoTilings()); }), -108);
    EXPECT_EQ(ThrownBy([&] { mipmap->LevelDerivatives(0.5f, 0.5f, du, dv, 0, SkNoTilings()); }), -108);
    EXPECT_EQ(ThrownBy([&] { mipmap->RebuildLevels(); }), -108);
}

// Streams.

TYPED_TEST(MipmapOf, StreamsHoldLevel0) {
    using Record = TypeParam;
    auto const mipmap = RandomMipmap<Record>({4, 8});
    auto const layer = MakeLayer<Record>({4, 8});
    layer->BlitRect(mipmap.Get(), {0, 0, 4, 8}, {0, 0});
    for (unsigned short const compression : {0, 1}) {
        auto const stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
        auto const expected = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
        stream->IMemoryStream();
        expected->IMemoryStream();
        mipmap->SetStreamingCompression(compression);
        layer->SetStreamingCompression(compression);
        mipmap->WriteTo(stream.Get());
        layer->WriteTo(expected.Get());
        ASSERT_EQ(stream->GetLength(), expected->GetLength());
        EXPECT_EQ(std::memcmp(stream->Data(), expected->Data(), stream->GetLength()), 0);

        auto const read = NewMipmap<Record>({4, 8});
        stream->SetPosition(0);
        read->ReadFrom(stream.Get());
        EXPECT_TRUE(Same(Shot(*mipmap), Shot(*read)));
        for (StMipLevel const& level : Levels(mipmap->Chain()))
            EXPECT_EQ(ToNative(read->GetMatchedPixelAt(level.left, level.top)),
                      ToNative(mipmap->GetMatchedPixelAt(level.left, level.top)))
                << "the chain is made anew";
    }
}

// Prototypes.

TYPED_TEST(MipmapOf, SrMakeMipmapFromFrame_FillsAMipmapOfTheFramesKind) {
    using Record = TypeParam;
    auto const source = MakeLayer<Record>({6, 3});
    FillRandom(*source, KindOfID(Record::PixelID()), 9);
    auto const frame = FrameRef::Adopt(SrMakeMipmapFromFrame(source.Get()));
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->GetClass(), (SmImagerMipmap<Record, ScImagerNonSpool>::Class()));
    EXPECT_EQ(frame->GetSize(), (StPoint{8, 4}));
    EXPECT_EQ(frame->GetOriginalSize(), (StPoint{6, 3}));
    EXPECT_EQ(frame->ReferenceCount(), 1);
    EXPECT_EQ(AsMipmap<Record>(*frame).Chain().levels, 4) << "down to one pixel";
}

TEST(Mipmap, PixelTypesWithoutMipmaps) {
    int with = 0;
    for (StKind const& kind : Kinds()) {
        FrameRef const frame = kind.make({2, 2});
        FillRandom(*frame, kind, 1);
        auto const mipmap = FrameRef::Adopt(SrMakeMipmapFromFrame(frame.Get()));
        if (mipmap) {
            ++with;
            EXPECT_EQ(mipmap->PixelID(), kind.id);
        }
    }
    EXPECT_EQ(with, 8);
}

TEST(Mipmap, PrototypesComeAndGo_ApartFromTheLayerRegistry) {
    auto const frame = MakeLayer<Color>({2, 2});
    SmImagerFrame* found = nullptr;
    EXPECT_FALSE(
        ScLayerRegistry::GetObjectByID(SmImagerMipmap<Color, ScImagerNonSpool>::Class(), false, found));
    SrInitMipmaps(true);
    EXPECT_EQ(SrMakeMipmapFromFrame(frame.Get()), nullptr);
    SrInitMipmaps(true);
    SrInitMipmaps(false);
    EXPECT_TRUE(FrameRef::Adopt(SrMakeMipmapFromFrame(frame.Get())));
    SrInitMipmaps(false);
    EXPECT_TRUE(FrameRef::Adopt(SrMakeMipmapFromFrame(frame.Get()))) << "a second set-up is harmless";
}

}  // namespace
