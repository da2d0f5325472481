// Where the rows of a layer lie, and who owns them.
#include <algorithm>
#include <numeric>
#include <set>

#include "framewright/frame/frame_limit.h"
#include "kinds.h"
#include "spies.h"

using namespace testing_frames;

namespace {

using Gray = PlainLayer<StGray8Pixel>;

/// A block of 8 rows, 16 bytes apart, byte i holding i.
struct Block {
    Block() { std::iota(bytes.begin(), bytes.end(), std::uint8_t{0}); }
    std::array<std::uint8_t, 128> bytes;
    std::uint8_t* At(long row, long column) { return bytes.data() + row * 16 + column; }
};

StRef<Gray> MakeOn(Block& block, StPoint const& topLeft, StPoint const& size) {
    auto layer = StRef<Gray>::Adopt(Gray::New());
    layer->IImagerLayer(topLeft, size, false, block.bytes.data(), 16, nullptr);
    return layer;
}

TEST(Storage, RowsArePaddedTo32Bits) {
    EXPECT_EQ(MakeLayer<StGray4Pixel>({1, 3})->BytesPerRow(), 4);
    EXPECT_EQ(MakeLayer<StBlackWhitePixel>({1, 33})->BytesPerRow(), 8);
    EXPECT_EQ(MakeLayer<StRGB24Pixel>({1, 1})->BytesPerRow(), 4);
    EXPECT_EQ(MakeLayer<StRGB24Pixel>({1, 3})->BytesPerRow(), 12);
    EXPECT_EQ(MakeLayer<StRGBAFloatPixel>({1, 1})->BytesPerRow(), 16);
    EXPECT_EQ(MakeLayer<StGray8Pixel>({1, 0})->BytesPerRow(), 0);
}

TEST(Storage, InitialisingClearsUpdated_NewDoesNotSetAnything) {
    auto layer = StRef<Gray>::Adopt(Gray::New());
    EXPECT_EQ(layer->GetSize(), (StPoint{0, 0}));
    EXPECT_EQ(layer->GetPurpose(), 0x3F3F3F3F);
    EXPECT_EQ(layer->GetDithering(), 0x42494449u);
    EXPECT_EQ(layer->BytesPerRow(), 0);
    EXPECT_EQ(layer->GetParent(), nullptr);
    layer->SetUpdated(true);
    layer->IImagerLayer({0, 0}, {2, 2}, false, nullptr, 0, nullptr);
    EXPECT_FALSE(layer->GetUpdated());
}

TEST(Storage, RowBytesMayBeGiven) {
    auto layer = StRef<Gray>::Adopt(Gray::New());
    layer->IImagerLayer({0, 0}, {3, 5}, false, nullptr, 20, nullptr);
    EXPECT_EQ(layer->BytesPerRow(), 20);
    EXPECT_EQ(static_cast<std::uint8_t*>(layer->GetRow(2)) - static_cast<std::uint8_t*>(layer->GetRow(0)),
              40);
}

TEST(Storage, ALayerLooksIntoAForeignBlock) {
    Block block;
    auto const layer = MakeOn(block, {2, 3}, {4, 5});
    EXPECT_EQ(layer->GetTopLeft(), (StPoint{2, 3}));
    for (long row = 0; row < 4; ++row)
        EXPECT_EQ(layer->GetRow(row), block.At(2 + row, 3));
    EXPECT_EQ(layer->GetMatchedPixelAt(4, 3).level, 5 * 16 + 7);
    layer->PutMatchedPixelAt(0, 0, {200});
    EXPECT_EQ(*block.At(2, 3), 200);
}

TEST(Storage, ASubByteLayerStartsOnAWholeByte) {
    Block block;
    auto layer = StRef<PlainLayer<StGray4Pixel>>::Adopt(PlainLayer<StGray4Pixel>::New());
    layer->IImagerLayer({1, 5}, {2, 4}, false, block.bytes.data(), 16, nullptr);
    EXPECT_EQ(layer->GetRow(0), block.At(1, 2)) << "column 5 of four bits begins inside byte 2";
}

TEST(Storage, APictureFromTheBottomUpHasNegativeRowBytes) {
    Block block;
    auto layer = StRef<Gray>::Adopt(Gray::New());
    layer->IImagerLayer({0, 0}, {8, 16}, false, block.At(7, 0), -16, nullptr);
    EXPECT_EQ(layer->BytesPerRow(), -16);
    EXPECT_EQ(layer->GetRow(0), block.At(7, 0));
    EXPECT_EQ(layer->GetRow(7), block.At(0, 0));
}

TEST(Storage, RowBytesMustHoldARow_OfEitherSign) {
    std::vector<std::uint8_t> block(4096);
    auto const errorOf = [&]<class Record>(Record, std::int32_t columns, void* base, long rowBytes) {
        auto const layer = StRef<PlainLayer<Record>>::Adopt(PlainLayer<Record>::New());
        long const code = ThrownBy([&] {
            layer->IImagerLayer({0, 0}, {3, columns}, false, base, rowBytes, nullptr);
        });
        EXPECT_EQ(layer->GetSize(), code ? (StPoint{0, 0}) : (StPoint{3, columns}));
        if (!code) layer->Erase();
        return code;
    };
    for (void* const base : {static_cast<void*>(nullptr), static_cast<void*>(block.data() + 2048)}) {
        EXPECT_EQ(errorOf(StRGBA32Pixel{}, 5, base, 19), -108);
        EXPECT_EQ(errorOf(StRGBA32Pixel{}, 5, base, 20), 0);
        EXPECT_EQ(errorOf(StRGB24Pixel{}, 5, base, 14), -108);
        EXPECT_EQ(errorOf(StRGB24Pixel{}, 5, base, 15), 0) << "rows need no padding";
        EXPECT_EQ(errorOf(StGray4Pixel{}, 5, base, 2), -108);
        EXPECT_EQ(errorOf(StGray4Pixel{}, 5, base, 3), 0);
        EXPECT_EQ(errorOf(StBlackWhitePixel{}, 33, base, 4), -108);
        EXPECT_EQ(errorOf(StBlackWhitePixel{}, 33, base, 5), 0);
    }
    EXPECT_EQ(errorOf(StRGBA32Pixel{}, 5, block.data() + 2048, -19), -108);
    EXPECT_EQ(errorOf(StRGBA32Pixel{}, 5, block.data() + 2048, -20), 0);
}

TEST(Storage, RowsMayLieAtAnyAddress) {
    for (StKind const& kind : Kinds()) {
        FrameRef const aligned = kind.make({3, 8});
        FillRandom(*aligned, kind, 1);
        FrameRef const frame = kind.make({3, 8});
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(frame->BytesPerRow() * 3 + 1));
        frame->ResetBaseAddress(bytes.data() + 1);
        frame->BlitRect(aligned.Get(), {0, 0, 3, 8}, {0, 0});
        frame->Flip(true, true);
        aligned->Flip(true, true);
        EXPECT_TRUE(Same(Shot(*aligned), Shot(*frame))) << kind.name;
        frame->Invert();
        frame->Erase();
        frame->StretchBlit(aligned.Get(), {0, 0, 3, 8}, {0, 0, 2, 7});
        frame->MergeRect(aligned.Get(), {0, 0, 3, 8}, {0, 0});
    }
}

TEST(Storage, TopLeftOfAnOwnedBlockMovesNothing) {
    auto layer = StRef<Gray>::Adopt(Gray::New());
    layer->IImagerLayer({5, 5}, {2, 8}, false, nullptr, 0, nullptr);
    EXPECT_EQ(layer->GetTopLeft(), (StPoint{5, 5}));
    layer->Erase();
    FillRandom(*layer, KindOfID(SrCode("Gry8")), 1);
}

TEST(Storage, AParentIsKeptAndContiguous) {
    auto const parent = Spy<StGray8Pixel>::Make({4, 16});
    {
        auto layer = StRef<Gray>::Adopt(Gray::New());
        layer->IImagerLayer({0, 0}, {2, 2}, false, parent->Gray::GetRow(0), 16, parent.Get());
        EXPECT_EQ(layer->GetParent(), parent.Get());
        EXPECT_EQ(parent->ReferenceCount(), 2);
        EXPECT_EQ(parent->forced, 1);
        {
            StRef<Gray> const clone = StRef<Gray>::Adopt(layer->Clone());
            EXPECT_EQ(clone->GetParent(), parent.Get());
            EXPECT_EQ(parent->ReferenceCount(), 3);
        }
        EXPECT_EQ(parent->forced - parent->released, 1) << "a clone that goes leaves its original's claim";
    }
    EXPECT_EQ(parent->ReferenceCount(), 1);
    EXPECT_EQ(parent->forced, parent->released);
}

TEST(Storage, ANewParentTakesThePlaceOfTheOneBefore) {
    auto const first = Spy<StGray8Pixel>::Make({4, 16}), second = Spy<StGray8Pixel>::Make({4, 16});
    {
        auto layer = StRef<Gray>::Adopt(Gray::New());
        auto const lookInto = [&](Spy<StGray8Pixel>* parent) {
            layer->IImagerLayer({0, 0}, {2, 2}, false, parent->Gray::GetRow(0), 16, parent);
        };
        lookInto(first.Get());
        lookInto(second.Get());
        EXPECT_EQ(layer->GetParent(), second.Get());
        EXPECT_EQ(first->ReferenceCount(), 1);
        EXPECT_EQ(first->forced, 1);
        EXPECT_EQ(first->released, 1);
        EXPECT_EQ(second->forced - second->released, 1);
        lookInto(second.Get());
        EXPECT_EQ(second->ReferenceCount(), 2);
        EXPECT_EQ(second->forced - second->released, 1) << "one layer, one claim";
    }
    EXPECT_EQ(second->ReferenceCount(), 1);
    EXPECT_EQ(second->forced, second->released);
}

TEST(Storage, AParentThatOnlyItsLayerHolds_OutlivesANewStart) {
    auto layer = StRef<Gray>::Adopt(Gray::New());
    {
        auto const parent = Spy<StGray8Pixel>::Make({4, 16});
        layer->IImagerLayer({0, 0}, {2, 2}, false, parent->Gray::GetRow(0), 16, parent.Get());
    }
    layer->IImagerLayer({0, 0}, {2, 2}, false, layer->GetRow(0), 16, layer->GetParent());
    EXPECT_EQ(layer->GetParent()->ReferenceCount(), 1);
    layer->Erase();
}

// Cloning.

TEST(Storage, AClone_OnAForeignBlock_StartsAtTheBase) {
    Block block;
    auto const layer = MakeOn(block, {2, 3}, {4, 5});
    auto const clone = StRef<Gray>::Adopt(layer->Clone());
    EXPECT_EQ(clone->GetTopLeft(), (StPoint{2, 3}));
    EXPECT_EQ(clone->BytesPerRow(), 16);
    for (long row = 0; row < 4; ++row)
        EXPECT_EQ(clone->GetRow(row), block.At(row, 0));
    // The pixels came along, upward within the block.
    EXPECT_EQ(*block.At(0, 0), 2 * 16 + 3);
    EXPECT_EQ(*block.At(3, 4), 5 * 16 + 7);
}

TEST(Storage, AClone_HasTheFieldsOfItsOriginal) {
    auto const layer = MakeLayer<StRGBA32Pixel>({2, 2});
    layer->SetForeground({1, 2, 3, 4});
    layer->SetBackground({5, 6, 7, 8});
    layer->SetPurpose(77);
    layer->SetDithering(0);
    layer->SetSaveIntent(true);
    layer->SetStreamingCompression(0);
    auto const clone = StRef<PlainLayer<StRGBA32Pixel>>::Adopt(layer->Clone());
    StRGBA32Pixel color{};
    clone->GetForeground(color);
    EXPECT_EQ(color, (StRGBA32Pixel{1, 2, 3, 4}));
    clone->GetBackground(color);
    EXPECT_EQ(color, (StRGBA32Pixel{5, 6, 7, 8}));
    EXPECT_EQ(clone->GetPurpose(), 77);
    EXPECT_EQ(clone->GetDithering(), 0u);
    EXPECT_TRUE(clone->GetSaveIntent());
    EXPECT_TRUE(clone->GetUpdated()) << "the pixels were blitted in";
}

TEST(Storage, AMirror_OwnsItsBlock_AtTheSameTopLeft) {
    Block block;
    auto const layer = MakeOn(block, {2, 3}, {4, 5});
    layer->SetPurpose(77);
    FrameRef const mirror = FrameRef::Adopt(layer->MirrorLayer());
    EXPECT_EQ(mirror->GetTopLeft(), (StPoint{2, 3}));
    EXPECT_EQ(mirror->BytesPerRow(), 8);
    EXPECT_EQ(mirror->GetPurpose(), 0x3F3F3F3F) << "only place, size and pixels";
    EXPECT_TRUE(Same(Shot(*layer), Shot(*mirror)));
    mirror->Erase();
    EXPECT_EQ(*block.At(2, 3), 2 * 16 + 3);
}

// Resizing.

TEST(Storage, Resize_OnAForeignBlock_KeepsRowBytesAndPlace) {
    Block block;
    auto const layer = MakeOn(block, {1, 2}, {2, 2});
    layer->Resize({5, 7}, StImageInterpolationMethod::kNone);
    EXPECT_TRUE(layer->GetUpdated());
    EXPECT_EQ(layer->BytesPerRow(), 16);
    for (long row = 0; row < 5; ++row)
        EXPECT_EQ(layer->GetRow(row), block.At(1 + row, 2));
    EXPECT_EQ(layer->GetMatchedPixelAt(6, 4).level, 5 * 16 + 8);
}

TEST(Storage, Resize_ThatFails_LeavesAFrameOfNoPixels) {
    auto const layer = MakeLayer<StGray8Pixel>({4, 4});
    SrSetAllocationGate([](std::size_t) { return false; });
    EXPECT_EQ(ThrownBy([&] { layer->Resize({9, 9}, StImageInterpolationMethod::kNone); }), -108);
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(layer->GetRow(0), nullptr) << "no base";
    layer->Erase();
    layer->Invert();
    layer->Resize({9, 9}, StImageInterpolationMethod::kNone);
    FillRandom(*layer, KindOfID(SrCode("Gry8")), 1);
}

TEST(Storage, Resize_RefusedRowTable_GivesTheNewBlockBack) {
    auto const layer = MakeLayer<StGray8Pixel>({4, 4});
    // The block of 9 rows of 12 bytes is allowed, the table of 9 addresses is not.
    SrSetAllocationGate([](std::size_t size) { return size != 9 * sizeof(void*); });
    EXPECT_EQ(ThrownBy([&] { layer->Resize({9, 9}, StImageInterpolationMethod::kNone); }), -108);
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(layer->GetRow(0), nullptr);
    layer->Resize({9, 9}, StImageInterpolationMethod::kNone);
    FillRandom(*layer, KindOfID(SrCode("Gry8")), 1);
}

// Moving.

TEST(Storage, MoveFrame_WithinAForeignBlock) {
    Block block;
    auto const layer = MakeOn(block, {0, 0}, {8, 16});
    layer->MoveFrame({2, 3, 5, 9});
    EXPECT_EQ(layer->GetTopLeft(), (StPoint{2, 3}));
    EXPECT_EQ(layer->GetSize(), (StPoint{3, 6}));
    for (long row = 0; row < 3; ++row)
        EXPECT_EQ(layer->GetRow(row), block.At(2 + row, 3));
    layer->MoveFrame({4, 1, 7, 7});
    EXPECT_EQ(layer->GetRow(0), block.At(4, 1)) << "of the same size";
}

TEST(Storage, MoveFrame_OfAnOwner_LeavesItsRowsWithoutAddress) {
    for (StRect const rect : {StRect{1, 1, 5, 5}, StRect{0, 0, 9, 9}}) {
        auto const layer = MakeLayer<StGray8Pixel>({4, 4});
        layer->MoveFrame(rect);
        EXPECT_EQ(layer->GetTopLeft(), (StPoint{rect.top, rect.left}));
        for (long row = 0; row < layer->GetSize().vertical; ++row)
            EXPECT_EQ(layer->GetRow(row), nullptr);
        std::vector<std::uint8_t> bytes(20 * 20);
        layer->ResetBaseAddress(bytes.data());
        EXPECT_EQ(layer->GetRow(0), bytes.data() + rect.top * layer->BytesPerRow() + rect.left);
    }
}

TEST(Storage, MoveFrame_ToNothingNew_DoesNothing) {
    Block block;
    auto const layer = MakeOn(block, {1, 2}, {2, 2});
    layer->MoveFrame(block.bytes.data(), {1, 2}, {2, 2});
    EXPECT_FALSE(layer->GetUpdated());
    EXPECT_EQ(layer->GetRow(0), block.At(1, 2));
}

TEST(Storage, MoveFrame_TopLeftAlone_MovesTheRows) {
    Block block, other;
    auto const layer = MakeOn(block, {1, 2}, {2, 2});
    layer->MoveFrame(block.bytes.data(), {3, 4}, {2, 2});
    EXPECT_EQ(layer->GetTopLeft(), (StPoint{3, 4}));
    EXPECT_EQ(layer->GetRow(1), block.At(4, 4));
    layer->MoveFrame(other.bytes.data(), {0, 5}, {2, 2});
    EXPECT_EQ(layer->GetRow(1), other.At(1, 5)) << "with a new base too";
}

TEST(Storage, MoveFrame_BaseAlone_KeepsTheOldAddresses) {
    Block block, other;
    auto const layer = MakeOn(block, {1, 2}, {2, 2});
    layer->MoveFrame(other.bytes.data(), {1, 2}, {2, 2});
    EXPECT_EQ(layer->GetRow(0), block.At(1, 2));
    layer->Resize({3, 3}, StImageInterpolationMethod::kNone);
    EXPECT_EQ(layer->GetRow(0), other.At(1, 2)) << "until the rows are bound again";
}

TEST(Storage, MoveFrame_TopLeftAndSize_LosesTheTopLeft) {
    Block block, other;
    auto const layer = MakeOn(block, {1, 2}, {2, 2});
    layer->MoveFrame(other.bytes.data(), {3, 4}, {3, 3});
    EXPECT_EQ(layer->GetTopLeft(), (StPoint{1, 2}));
    EXPECT_EQ(layer->GetSize(), (StPoint{3, 3}));
    EXPECT_EQ(layer->GetRow(0), other.At(1, 2));
}

TEST(Storage, ResetBaseAddress_CountsTopLeft_WhoeverOwnsTheBlock) {
    Block block, other;
    auto const layer = MakeOn(block, {1, 2}, {2, 2});
    layer->ResetBaseAddress(other.bytes.data());
    EXPECT_EQ(layer->GetRow(0), other.At(1, 2));

    auto owner = StRef<Gray>::Adopt(Gray::New());
    owner->IImagerLayer({1, 2}, {2, 8}, false, nullptr, 0, nullptr);
    owner->ResetBaseAddress(block.bytes.data());
    EXPECT_EQ(owner->GetRow(0), block.bytes.data() + 8 + 2) << "rows of 8 bytes";
    owner->ResetBaseAddress(nullptr);
    EXPECT_EQ(owner->GetRow(0), nullptr);
}

TEST(Storage, ALayerFreesWhatItAllocated_NotWhatItWasLent) {
    // The sanitizers watch this one.
    Block block;
    {
        auto const owner = MakeLayer<StGray8Pixel>({2, 16});
        owner->ResetBaseAddress(block.bytes.data());
        EXPECT_EQ(owner->GetMatchedPixelAt(3, 1).level, 19);
    }
    {
        auto const owner = MakeLayer<StGray8Pixel>({2, 16});
        owner->MoveFrame(block.bytes.data(), {0, 0}, {3, 16});
        EXPECT_NE(owner->GetRow(0), block.bytes.data()) << "an owner takes a block of its own for a new size";
    }
    {
        auto const owner = MakeLayer<StGray8Pixel>({2, 16});
        owner->IImagerLayer({0, 0}, {4, 4}, false, nullptr, 0, nullptr);
        owner->IImagerLayer({0, 0}, {4, 4}, false, block.bytes.data(), 16, nullptr);
        EXPECT_EQ(owner->GetRow(1), block.At(1, 0));
    }
}

// Native bitmaps.

TEST(Storage, NativeBitmapsAreBlocksOfRows) {
    for (StKind const& kind : Kinds()) {
        if (kind.mapped) continue;
        FrameRef const prototype = kind.make({1, 1});
        FrameRef const native = FrameRef::Adopt(prototype->CloneAtNewSize({5, 33}, false, true));
        EXPECT_EQ(native->BytesPerRow(), (33 * kind.bits + 31) / 32 * 4) << kind.name;
        EXPECT_EQ(native->GetNativeImageContext(), nullptr) << "there is no imaging system here";
        FillRandom(*native, kind, 1);
        FrameRef const clone = FrameRef::Adopt(native->Clone());
        EXPECT_TRUE(Same(Shot(*native), Shot(*clone))) << kind.name;
        clone->Resize({7, 2}, StImageInterpolationMethod::kNone);
        FillRandom(*clone, kind, 2);
    }
}

/// The largest allocation since it was last set to 0.
std::size_t gLargest = 0;

TEST(Storage, NativeBitmapsAreForFiveRecords) {
    std::set<unsigned long> const native{SrCode("ColB"), SrCode("RG32"), SrCode("RG24"), SrCode("RG15"),
                                         SrCode("Map8")};
    for (StKind const& kind : Kinds()) {
        FrameRef const prototype = kind.make({1, 1});
        auto const blockOf = [&](bool nativeBitmap) {
            gLargest = 0;
            SrSetAllocationGate([](std::size_t size) {
                gLargest = std::max(gLargest, size);
                return true;
            });
            FrameRef const frame = FrameRef::Adopt(prototype->CloneAtNewSize({40, 999}, false, nativeBitmap));
            SrSetAllocationGate(nullptr);
            return gLargest;
        };
        auto const rows = static_cast<std::size_t>(40 * ((999 * kind.bits + 31) / 32 * 4));
        EXPECT_EQ(blockOf(false), rows) << kind.name;
        // A bitmap keeps its size before its rows, in as many bytes as keep them aligned.
        EXPECT_EQ(blockOf(true), rows + (native.count(kind.id) ? 16 : 0)) << kind.name;
    }
}

TEST(Storage, RefusedNativeBitmap_IsMinus108) {
    FrameRef const prototype = FrameRef::Adopt(MakeLayer<StRGBA32Pixel>({1, 1}).Release());
    SrSetAllocationGate([](std::size_t size) { return size < 64 * 64 * 4; });
    EXPECT_EQ(ThrownBy([&] { prototype->CloneAtNewSize({64, 64}, false, true); }), -108);
    SrSetAllocationGate(nullptr);
}

// Limits.

TEST(Limit, AFrameWithoutRowsMayBeOfAnyWidth) {
    for (StKind const& kind : Kinds()) {
        FrameRef const frame = kind.make({0, INT32_MAX});
        EXPECT_EQ(frame->GetSize(), (StPoint{0, INT32_MAX})) << kind.name;
        frame->Erase();
        frame->Invert();
    }
}

struct LimitRow {
    StPoint size;
    long code;
};

TEST(Limit, SizesAreRefusedBeforeAnythingIsAllocated) {
    EXPECT_EQ(SrGetFrameSizeLimit(), std::uint64_t{1} << 31);
    SrSetFrameSizeLimit(4096);
    for (LimitRow const& row : {LimitRow{{32, 32}, 0}, LimitRow{{1, 1024}, 0}, LimitRow{{33, 32}, -108},
                                LimitRow{{1, 1025}, -108}, LimitRow{{512, 1}, 0}, LimitRow{{513, 1}, -108},
                                LimitRow{{512, 0}, 0}, LimitRow{{513, 0}, -108}, LimitRow{{0, 5000}, 0}}) {
        EXPECT_EQ(ThrownBy([&] { MakeLayer<StRGBA32Pixel>(row.size); }), row.code)
            << testing::PrintToString(row.size);
    }
    SrSetFrameSizeLimit(std::uint64_t{1} << 31);
}

TEST(Limit, AbsurdSizesAreRefused) {
    for (StPoint const size : {StPoint{-1, 1},
                               {1, -1},
                               {-1, -1},
                               {INT32_MIN, INT32_MIN},
                               {INT32_MAX, INT32_MAX},
                               {INT32_MAX, 1},
                               {1, INT32_MAX},
                               {65536, 65536},
                               {INT32_MAX, 0}}) {
        EXPECT_EQ(ThrownBy([&] { MakeLayer<StRGBAFloatPixel>(size); }), -108) << testing::PrintToString(size);
        auto const layer = MakeLayer<StRGBAFloatPixel>({2, 2});
        EXPECT_EQ(ThrownBy([&] { layer->Resize(size, StImageInterpolationMethod::kNone); }), -108);
        layer->Erase();
    }
}

TEST(Limit, AForeignBlockMayBeOfAnySize) {
    Block block;
    SrSetFrameSizeLimit(64);
    auto const layer = MakeOn(block, {0, 0}, {8, 16});
    EXPECT_EQ(layer->GetRow(7), block.At(7, 0));
    SrSetFrameSizeLimit(std::uint64_t{1} << 31);
    EXPECT_EQ(ThrownBy([&] { MakeOn(block, {0, 0}, {-1, 4}); }), -108);
    auto wide = StRef<Gray>::Adopt(Gray::New());
    EXPECT_EQ(ThrownBy([&] {
                  wide->IImagerLayer({0, 0}, {1, 1}, false, block.bytes.data(), 1L << 40, nullptr);
              }),
              -108);
    EXPECT_EQ(ThrownBy([&] { wide->IImagerLayer({0, 0}, {2, 2}, false, nullptr, -8, nullptr); }), -108);
}

TEST(Limit, AMoveToAnAbsurdRectangleIsRefused) {
    Block block;
    auto const layer = MakeOn(block, {0, 0}, {8, 16});
    EXPECT_EQ(ThrownBy([&] { layer->MoveFrame({5, 5, 2, 2}); }), -108);
    EXPECT_EQ(ThrownBy([&] { layer->MoveFrame({INT32_MIN, 0, INT32_MAX, 1}); }), -108);
    layer->Erase();
}

// Memory that is refused.

long gAllowed = 0;
/// Lets the first `allowed` allocations pass.
void RefuseAfter(long allowed) {
    gAllowed = allowed;
    SrSetAllocationGate([](std::size_t) { return gAllowed-- > 0; });
}

/// Runs `work` with ever more allocations allowed, until it succeeds; each failure is -108.
template <class Work>
int RefuseEach(Work const& work) {
    for (int allowed = 0;; ++allowed) {
        RefuseAfter(allowed);
        long const code = ThrownBy(work);
        SrSetAllocationGate(nullptr);
        if (code == 0) return allowed;
        EXPECT_EQ(code, -108) << "after " << allowed << " allocations";
        if (allowed > 100) return allowed;
    }
}

TEST(Memory, RefusedAtEachAllocation_LeavesNothing) {
    // What stays allocated the leak checker finds.
    for (StKind const& kind : Kinds()) {
        FrameRef const frame = kind.make({3, 8});
        FillRandom(*frame, kind, 1);
        Picture const picture = Shot(*frame);
        EXPECT_EQ(RefuseEach([&] { FrameRef::Adopt(frame->Clone()); }), 3) << "object, block and table";
        EXPECT_EQ(RefuseEach([&] { FrameRef::Adopt(frame->MirrorLayer()); }), 3);
        EXPECT_EQ(RefuseEach([&] { FrameRef::Adopt(frame->CloneAtNewSize({4, 4}, false, false)); }), 3);
        EXPECT_EQ(RefuseEach([&] { FrameRef::Adopt(frame->CloneAtNewSize({4, 4}, false, true)); }), 3);
        EXPECT_EQ(RefuseEach([&] { SmartRef(frame->NewSmartPixel()); }), 1);
        StKind const& otherKind = KindOfID(kind.id == SrCode("ColB") ? SrCode("Gry8") : SrCode("ColB"));
        FrameRef const other = otherKind.make({3, 8});
        EXPECT_EQ(RefuseEach([&] { other->BlitRect(frame.Get(), {0, 0, 3, 8}, {0, 0}); }), 1);
        EXPECT_EQ(RefuseEach([&] { other->StretchBlit(frame.Get(), {0, 0, 3, 8}, {0, 0, 2, 2}); }), 1);
        EXPECT_EQ(RefuseEach([&] { other->StretchBlitFast(frame.Get(), {0, 0, 3, 8}, {0, 0, 2, 2}); }), 1);
        FrameRef const target = kind.make({1, 1});
        EXPECT_EQ(RefuseEach([&] { target->ImplementBecome(frame.Get()); }), 3)
            << "saved bytes, block, table";
        EXPECT_TRUE(Same(picture, Shot(*target)));
        EXPECT_TRUE(Same(picture, Shot(*frame)));
    }
}

TEST(Memory, PixelAccessAsksForNone) {
    for (StKind const& kind : Kinds()) {
        FrameRef const frame = kind.make({2, 8});
        SmartRef const smart(frame->NewSmartPixel());
        SrSetAllocationGate([](std::size_t) { return false; });
        StRGBA32Pixel color{};
        StColorFloats floats{};
        StRGBAFloatPixel four{};
        StAlpha8Pixel alpha{};
        float intensity = 0;
        EXPECT_EQ(ThrownBy([&] {
                      frame->PutPixelAt(1, 1, color);
                      frame->PutPixelAt(1, 1, floats);
                      frame->PutPixelAt(1, 1, four);
                      frame->PutPixelAt(1, 1, StDepthFloatPixel{0.5f});
                      frame->PutPixelAt(1, 1, alpha);
                      frame->PutPixelAt(1, 1, static_cast<ScSmartPixel const*>(smart.get()));
                      frame->GetPixelAt(1, 1, color);
                      frame->GetPixelAt(1, 1, floats);
                      frame->GetPixelAt(1, 1, four);
                      frame->GetPixelAt(1, 1, intensity);
                      frame->GetPixelAt(1, 1, alpha);
                      frame->GetPixelAt(1, 1, smart.get());
                      frame->MergePixelAt(1, 1, color);
                      frame->GetFractionalSmartPixel(0.5f, 0.5f, smart.get());
                      frame->GetFractionalUVPixel(0.5f, 0.5f, color, SkNoTilings(), 0);
                      frame->BlitRect(frame.Get(), {0, 0, 2, 8}, {0, 0});
                      frame->MergeRect(frame.Get(), {0, 0, 2, 8}, {0, 0});
                      frame->StretchBlit(frame.Get(), {0, 0, 2, 2}, {0, 0, 2, 2});
                  }),
                  0)
            << kind.name;
        SrSetAllocationGate(nullptr);
    }
}

// The spooler by itself.

TEST(NonSpool, KeepsATableOfAddresses) {
    Block block;
    ScImagerNonSpool spooler;
    spooler.ISpooler(4, 16, block.bytes.data());
    for (long row = 0; row < 4; ++row) {
        EXPECT_EQ(spooler.GetPtrRow(row), block.At(row, 0));
        EXPECT_EQ(spooler.Lock(row, nullptr), block.At(row, 0));
        spooler.Unlock(row);
    }
    EXPECT_TRUE(spooler.LockRows(0, 3, nullptr));
    spooler.UnlockRows(0, 3);
    spooler.ForceContiguous();
    EXPECT_TRUE(spooler.IsContiguous());
    spooler.ReleaseContiguous();
    EXPECT_TRUE(spooler.IsContiguous());
}

TEST(NonSpool, WithoutBaseOrRowBytes_RowsHaveNoMemory) {
    Block block;
    ScImagerNonSpool spooler;
    spooler.ISpooler(2, 16, nullptr);
    EXPECT_EQ(spooler.GetPtrRow(1), nullptr);
    spooler.ISpooler(2, 0, block.bytes.data());
    EXPECT_EQ(spooler.GetPtrRow(1), nullptr);
}

TEST(NonSpool, ResizeRebindsOnlyWithABase) {
    Block block;
    ScImagerNonSpool spooler;
    spooler.ISpooler(2, 16, block.bytes.data());
    spooler.Resize(2, 8, nullptr);
    EXPECT_EQ(spooler.GetPtrRow(1), block.At(1, 0));
    spooler.Resize(2, 8, block.bytes.data());
    EXPECT_EQ(spooler.GetPtrRow(1), block.At(0, 8));
    spooler.Resize(5, 4, block.bytes.data());
    EXPECT_EQ(spooler.GetPtrRow(4), block.At(1, 0));
    spooler.Resize(3, 4, nullptr);
    EXPECT_EQ(spooler.GetPtrRow(2), nullptr) << "a new table has no rows yet";
}

TEST(NonSpool, RefusedTableIsMinus108) {
    ScImagerNonSpool spooler;
    SrSetAllocationGate([](std::size_t) { return false; });
    EXPECT_EQ(ThrownBy([&] { spooler.ISpooler(2, 16, nullptr); }), -108);
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(ThrownBy([&] { spooler.ISpooler(-1, 16, nullptr); }), -108);
    spooler.ISpooler(0, 16, nullptr);
}

}  // namespace
