// Windows: their fields, and what each operation asks of the parent.
#include "framewright/imagery/subframe.h"

#include <gmock/gmock.h>

#include "frame/kinds.h"
#include "framewright/imagery/mipmap.h"
#include "framewright/thornmere/stream.h"
#include "recording_frame.h"

using namespace testing_frames;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_imagery::RecordingFrame;
using Window = StRef<SmImagerSubframe>;

namespace {

constexpr StRect kRect{10, 20, 110, 220};

Window NewWindow(SmImagerFrame* parent, StRect const& rect, long columnSpacing = 1, long lineSpacing = 1) {
    auto window = Window::Adopt(SmImagerSubframe::New());
    window->IImagerSubframe(parent, rect, columnSpacing, lineSpacing);
    return window;
}

/// A window of every third column and every second row, and what its parent has been asked since.
class SpacedWindow : public testing::Test {
  protected:
    SpacedWindow() { parent->log.clear(); }
    std::vector<std::string> Asked() { return parent->Taken(); }

    StRef<RecordingFrame> parent = RecordingFrame::Make();
    Window window = NewWindow(parent.Get(), kRect, 3, 2);
};

// --- fields

TEST(Subframe, HasItsName) {
    EXPECT_STREQ(SmImagerSubframe::ClassName(), "SmImagerSubframe");
    EXPECT_EQ(SmImagerSubframe::Class()->Parent(), SmImagerFrame::Class());
    EXPECT_EQ(SmImagerSubframe::ClassVersion(), 0);
}

TEST(Subframe, StartsWithoutParent) {
    auto const window = Window::Adopt(SmImagerSubframe::New());
    EXPECT_EQ(window->GetParent(), nullptr);
    EXPECT_EQ(window->GetSize(), (StPoint{0, 0}));
}

TEST(Subframe, KeepsWhatItWasInitialisedWith) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({200, 300}).Get();
    Window const window = NewWindow(parent.Get(), kRect, 3, 2);
    EXPECT_EQ(window->GetParent(), parent.Get());
    StRect rect{};
    window->GetSubrect(rect);
    EXPECT_EQ(rect, kRect);
    EXPECT_EQ(window->GetColumnSpacing(), 3);
    EXPECT_EQ(window->GetLineSpacing(), 2);
}

TEST(Subframe, SizeIsNotDividedByTheSpacings) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({100, 50}).Get();
    Window const window = NewWindow(parent.Get(), {0, 10, 100, 50}, 1, 2);
    EXPECT_EQ(window->GetSize(), (StPoint{100, 40}));
    EXPECT_EQ(window->GetOriginalSize(), (StPoint{100, 40}));
    EXPECT_EQ(window->GetTopLeft(), (StPoint{0, 0})) << "its own field";
}

TEST(Subframe, SettersKeepTheSize) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({100, 50}).Get();
    Window const window = NewWindow(parent.Get(), {0, 10, 100, 50});
    window->SetSubrect({1, 2, 3, 4});
    window->SetLineSpacing(5);
    window->SetColumnSpacing(6);
    EXPECT_EQ(window->GetSize(), (StPoint{100, 40}));
    StRect rect{};
    window->GetSubrect(rect);
    EXPECT_EQ(rect, (StRect{1, 2, 3, 4}));
    EXPECT_EQ(window->GetLineSpacing(), 5);
    EXPECT_EQ(window->GetColumnSpacing(), 6);
}

TEST_F(SpacedWindow, SettersUpdateTheFloatsThatFractionsUse) {
    window->SetSubrect({7, 9, 0, 0});
    window->SetLineSpacing(5);
    window->SetColumnSpacing(4);
    window->GetFractionalSmartPixel(1.5F, 2.5F, nullptr);
    EXPECT_THAT(Asked(), ElementsAre("GetFractionalSmartPixel, 15, 19.5"));
}

/// Shows the frame's own fields, which the window's operations do not read.
struct OwnFields : SmImagerSubframe {
    long Purpose() const { return mPurpose; }
    unsigned long Dithering() const { return mDithering; }
    unsigned Compression() const { return mStreamingCompression; }
};

TEST(Subframe, CopiesPurposeAndDithering_ButAsksTheParent) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({10, 10}).Get();
    parent->SetPurpose(static_cast<long>(SrCode("VIEW")));
    parent->SetDithering(5);
    auto const window = StRef<OwnFields>::Adopt(new OwnFields);
    window->IImagerSubframe(parent.Get(), {0, 0, 5, 5}, 1, 1);
    parent->SetPurpose(1);
    parent->SetDithering(6);
    EXPECT_EQ(window->Purpose(), static_cast<long>(SrCode("VIEW")));
    EXPECT_EQ(window->Dithering(), 5U);
    EXPECT_EQ(window->GetPurpose(), 1);
    EXPECT_EQ(window->GetDithering(), 6U);
}

TEST(Subframe, StreamingCompressionIsItsOwn) {
    auto const parent = RecordingFrame::Make();
    auto const window = StRef<OwnFields>::Adopt(new OwnFields);
    window->IImagerSubframe(parent.Get(), kRect, 1, 1);
    parent->log.clear();
    window->SetStreamingCompression(9);
    EXPECT_EQ(window->Compression(), 9U);
    EXPECT_THAT(parent->log, IsEmpty());
}

// --- references

TEST(Subframe, KeepsItsParentAlive) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({10, 10}).Get();
    long const before = parent->ReferenceCount();
    Window window = NewWindow(parent.Get(), {0, 0, 5, 5});
    EXPECT_EQ(parent->ReferenceCount(), before + 1);
    Window clone = Window::Adopt(window->Clone());
    EXPECT_EQ(parent->ReferenceCount(), before + 2);
    window = nullptr;
    clone = nullptr;
    EXPECT_EQ(parent->ReferenceCount(), before);
}

TEST(Subframe, SetParentCountsNothing) {
    FrameRef const first = MakeLayer<StRGBA32Pixel>({10, 10}).Get();
    FrameRef const second = MakeLayer<StRGBA32Pixel>({10, 10}).Get();
    long const ofFirst = first->ReferenceCount(), ofSecond = second->ReferenceCount();
    Window window = NewWindow(first.Get(), {0, 0, 5, 5});
    window->SetParent(second.Get());
    EXPECT_EQ(window->GetParent(), second.Get());
    EXPECT_EQ(first->ReferenceCount(), ofFirst + 1);
    EXPECT_EQ(second->ReferenceCount(), ofSecond);
    window = nullptr;
    EXPECT_EQ(first->ReferenceCount(), ofFirst);
    EXPECT_EQ(second->ReferenceCount(), ofSecond);
}

TEST(Subframe, ACloneLooksThroughTheSameWindow) {
    auto const parent = RecordingFrame::Make();
    Window const window = NewWindow(parent.Get(), kRect, 3, 2);
    Window const clone = Window::Adopt(window->Clone());
    StRect rect{};
    clone->GetSubrect(rect);
    EXPECT_EQ(rect, kRect);
    EXPECT_EQ(clone->GetSize(), (StPoint{100, 200}));
    parent->log.clear();
    clone->DrawPixelAt(4, 5);
    clone->GetFractionalSmartPixel(0.5F, 0.25F, nullptr);
    EXPECT_THAT(parent->log, ElementsAre("DrawPixelAt, 32, 20", "GetFractionalSmartPixel, 21.5, 10.5"));
}

TEST(Subframe, BecomesAnother) {
    auto const parent = RecordingFrame::Make();
    Window const window = NewWindow(parent.Get(), kRect, 3, 2);
    auto const other = RecordingFrame::Make();
    Window const changing = NewWindow(other.Get(), {0, 0, 1, 1});
    changing->ImplementBecome(window.Get());
    EXPECT_EQ(changing->GetParent(), parent.Get());
    EXPECT_EQ(parent->ReferenceCount(), 3);
    EXPECT_EQ(other->ReferenceCount(), 1);
}

// --- forwarded unchanged

TEST_F(SpacedWindow, ForwardsUnchanged) {
    EXPECT_EQ(window->PixelID(), 77U);
    EXPECT_EQ(window->FamilyID(), 78U);
    EXPECT_EQ(window->PixelSize(), 32);
    EXPECT_EQ(window->GetPurpose(), 79);
    window->SetPurpose(5);
    EXPECT_EQ(window->BytesPerRow(), 80);
    EXPECT_TRUE(window->IsUVTriLinear());
    window->ForceContiguous();
    window->ReleaseContiguous();
    EXPECT_TRUE(window->IsContiguous());
    window->ResetBaseAddress(nullptr);
    delete window->NewSmartPixel();
    window->SetForeground({1, 2, 3, 4});
    StRGBA32Pixel color{};
    window->GetForeground(color);
    EXPECT_EQ(color.blue, 9);
    window->SetBackground({5, 6, 7, 8});
    window->GetBackground(color);
    EXPECT_EQ(color.blue, 50);
    FrameRef const clone = FrameRef::Adopt(window->CloneAtNewSize({3, 4}, true, false));
    EXPECT_TRUE(clone);
    window->SetUpdated(true);
    EXPECT_TRUE(window->GetUpdated());
    window->SetDithering(6);
    EXPECT_EQ(window->GetDithering(), 82U);
    window->MoveFrame({1, 2, 3, 4});
    window->MoveFrame(nullptr, {5, 6}, {7, 8});
    window->Resize({9, 10}, StImageInterpolationMethod::kBilinear);
    EXPECT_THAT(Asked(), ElementsAre("PixelID", "FamilyID", "PixelSize", "GetPurpose", "SetPurpose, 5",
                                     "BytesPerRow", "IsUVTriLinear", "ForceContiguous", "ReleaseContiguous",
                                     "IsContiguous", "ResetBaseAddress, 0", "NewSmartPixel",
                                     "SetForeground, #1 2 3 4", "GetForeground", "SetBackground, #5 6 7 8",
                                     "GetBackground", "CloneAtNewSize, 3 4, 1, 0", "SetUpdated, 1",
                                     "GetUpdated", "SetDithering, 6", "GetDithering", "MoveFrame, 1 2 3 4",
                                     "MoveFrame, 0, 5 6, 7 8", "Resize, 9 10, 2"));
    EXPECT_EQ(window->GetSize(), (StPoint{100, 200})) << "its own size stays";
}

TEST_F(SpacedWindow, ForwardsTheNativeContexts) {
    EXPECT_EQ(window->GetNativeImageContext(), parent->storage);
    window->ReleaseNativeImageContext();
    window->SetNativeImageContext(nullptr);
    window->GetNativeViewContext();
    window->ReleaseNativeViewContext();
    window->SetNativeViewContext(nullptr);
    window->ReportNativeViewContext();
    window->GetNativeWindowContext();
    window->ReleaseNativeWindowContext();
    window->SetNativeGrafPtr(nullptr);
    window->GetNativeGrafPtr();
    window->ReleaseScreenSafe();
    EXPECT_THAT(Asked(),
                ElementsAre("GetNativeImageContext", "ReleaseNativeImageContext", "SetNativeImageContext, 0",
                            "GetNativeViewContext", "ReleaseNativeViewContext", "SetNativeViewContext, 0",
                            "ReportNativeViewContext", "GetNativeWindowContext", "ReleaseNativeWindowContext",
                            "SetNativeGrafPtr, 0", "GetNativeGrafPtr", "ReleaseScreenSafe"));
}

TEST_F(SpacedWindow, AnswersFromItsOwnFields) {
    EXPECT_EQ(window->GetSize(), (StPoint{100, 200}));
    EXPECT_EQ(window->GetTopLeft(), (StPoint{0, 0}));
    EXPECT_EQ(window->GetOriginalSize(), (StPoint{100, 200}));
    EXPECT_THAT(Asked(), IsEmpty());
}

// --- coordinates translated

TEST_F(SpacedWindow, TranslatesPixels) {
    StRGBA32Pixel rgba{};
    StColorFloats floats{};
    StRGBAFloatPixel rgbaFloats{};
    float value = 0;
    StAlpha8Pixel alpha{};
    StDepthFloatPixel depth{};
    std::unique_ptr<ScSmartPixel> const smart(new ScDerivedPixel<StRGBA32Pixel>);
    void* const record = &rgba;
    window->GetPixelAt(4, 5, rgba);
    window->GetPixelAt(4, 5, floats);
    window->GetPixelAt(4, 5, rgbaFloats);
    window->GetPixelAt(4, 5, value);
    window->GetPixelAt(4, 5, alpha);
    window->GetPixelAt(4, 5, smart.get());
    window->GetPixelAt(4, 5, record);
    EXPECT_THAT(Asked(), ElementsAre("GetPixelAt RGBA32, 32, 20", "GetPixelAt ColorFloats, 32, 20",
                                     "GetPixelAt RGBAFloat, 32, 20", "GetPixelAt float, 32, 20",
                                     "GetPixelAt Alpha8, 32, 20", "GetPixelAt smart, 32, 20",
                                     "GetPixelAt record, 32, 20"));
    EXPECT_EQ(rgba, (StRGBA32Pixel{10, 20, 30, 40}));
    window->PutPixelAt(4, 5, StRGBA32Pixel{1, 2, 3, 4});
    window->PutPixelAt(4, 5, floats);
    window->PutPixelAt(4, 5, rgbaFloats);
    window->PutPixelAt(4, 5, depth);
    window->PutPixelAt(4, 5, alpha);
    window->PutPixelAt(4, 5, const_cast<ScSmartPixel const*>(smart.get()));
    window->PutPixelAt(4, 5, const_cast<void const*>(record));
    EXPECT_THAT(Asked(), ElementsAre("PutPixelAt RGBA32, 32, 20, #1 2 3 4", "PutPixelAt ColorFloats, 32, 20",
                                     "PutPixelAt RGBAFloat, 32, 20", "PutPixelAt DepthFloat, 32, 20",
                                     "PutPixelAt Alpha8, 32, 20", "PutPixelAt smart, 32, 20",
                                     "PutPixelAt record, 32, 20"));
    window->DrawPixelAt(0, 0);
    EXPECT_EQ(window->GetRGBAPixelAt(4, 5), (StRGBA32Pixel{1, 2, 3, 4}));
    EXPECT_EQ(window->GetRGBAPixelAsLong(4, 5), 81U);
    window->MergePixelAt(4, 5, {5, 6, 7, 8});
    EXPECT_THAT(Asked(), ElementsAre("DrawPixelAt, 20, 10", "GetRGBAPixelAt, 32, 20",
                                     "GetRGBAPixelAsLong, 32, 20", "MergePixelAt, 32, 20, #5 6 7 8"));
}

TEST_F(SpacedWindow, TranslatesFractionsInFloats_AndRectanglesByTheirSides) {
    window->GetFractionalSmartPixel(0.5F, 0.25F, nullptr);
    window->EnsureScreenSafe({1, 2, 3, 4});
    EXPECT_THAT(Asked(), ElementsAre("GetFractionalSmartPixel, 21.5, 10.5", "EnsureScreenSafe, 12 26 16 32"));
}

TEST_F(SpacedWindow, TextureReadsUseTheColumnsValuesOnBothAxes) {
    StColorFloats floats{};
    float value = 0, du = 0, dv = 0;
    StRGBA32Pixel rgba{};
    window->GetFractionalUVPixel(0.5F, 0.25F, floats, SkNoTilings(), 0.125F);
    window->GetFractionalUVPixel(0.5F, 0.25F, value, SkNoTilings(), 0.125F);
    window->GetFractionalUVPixel(0.5F, 0.25F, rgba, SkNoTilings(), 0.125F);
    window->GetUVDerivatives(0.5F, 0.25F, du, dv, SkNoTilings(), 0.125F);
    EXPECT_THAT(Asked(),
                ElementsAre("UV ColorFloats, 21.5, 20.75, 0.125", "UV float, 21.5, 20.75, 0.125",
                            "UV RGBA32, 21.5, 20.75, 0.125", "GetUVDerivatives, 21.5, 20.75, 0.125"));
}

TEST(Subframe, AtTheOriginWithSpacing1_PassesTexturePlacesOn) {
    auto const parent = RecordingFrame::Make();
    Window const window = NewWindow(parent.Get(), {0, 0, 10, 10});
    parent->log.clear();
    float value = 0;
    window->GetFractionalUVPixel(0.375F, 0.75F, value, SkNoTilings(), 1.0F);
    EXPECT_THAT(parent->log, ElementsAre("UV float, 0.375, 0.75, 1"));
}

// --- rows

TEST_F(SpacedWindow, TranslatesRows) {
    EXPECT_EQ(window->GetRow(5), parent->storage) << "not moved to the window's left";
    window->UnlockRow(5);
    EXPECT_THAT(Asked(), ElementsAre("GetRow, 20", "UnlockRow, 20"));
}

TEST(Subframe, LockRowLeadsToTheFirstPixel_RoundedUpToABytes) {
    struct Row {
        long bits, left, offset;
    };
    for (Row const& row : {Row{32, 20, 80},
                           {24, 3, 9},
                           {8, 5, 5},
                           {4, 2, 1},
                           {4, 3, 2},
                           {1, 7, 1},
                           {1, 8, 1},
                           {1, 9, 2},
                           {128, 1, 16}}) {
        auto const parent = RecordingFrame::Make();
        parent->bits = row.bits;
        Window const window =
            NewWindow(parent.Get(), {10, static_cast<std::int32_t>(row.left), 20, 50}, 1, 2);
        EXPECT_EQ(window->LockRow(3), parent->storage + row.offset) << row.bits << " bits from " << row.left;
        EXPECT_THAT(parent->log, testing::Contains("LockRow, 16"));
    }
}

TEST(Subframe, LockRowAndGetRowDifferByTheLeft) {
    FrameRef const parent = MakeLayer<StRGB24Pixel>({8, 40}).Get();
    Window const window = NewWindow(parent.Get(), {2, 5, 8, 40});
    auto const* const start = static_cast<std::byte*>(window->GetRow(1));
    EXPECT_EQ(start, parent->GetRow(3));
    EXPECT_EQ(static_cast<std::byte*>(window->LockRow(1)) - start, 15);
    window->UnlockRow(1);
}

TEST_F(SpacedWindow, LocksRowByRow_AndUnlocksTheSame) {
    EXPECT_TRUE(window->LockRows(2, 4));
    EXPECT_THAT(Asked(), ElementsAre("LockRow, 14", "LockRow, 16", "LockRow, 18"));
    window->UnlockRows(2, 4);
    EXPECT_THAT(Asked(), ElementsAre("UnlockRow, 14", "UnlockRow, 16", "UnlockRow, 18"));
}

TEST_F(SpacedWindow, ARowWithoutAddressEndsLockRows_TheOthersStayLocked) {
    parent->lockableRows = 16;
    EXPECT_FALSE(window->LockRows(2, 4));
    EXPECT_THAT(Asked(), ElementsAre("LockRow, 14", "LockRow, 16"));
    EXPECT_EQ(window->LockRow(3), nullptr) << "null is not moved on";
}

TEST_F(SpacedWindow, ErrorsOfLocksPassThrough) {
    parent->failingRow = 16;
    EXPECT_THROW(window->LockRows(2, 4), std::exception);
    EXPECT_THAT(Asked(), ElementsAre("LockRow, 14", "LockRow, 16"));
    EXPECT_THROW(window->LockRow(3), std::exception);
}

// --- streams

TEST(Subframe, IsNeverStreamed) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({4, 4}).Get();
    Window const window = NewWindow(parent.Get(), {0, 0, 4, 4});
    auto const stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream();
    window->WriteTo(stream.Get());
    window->WritePixels(stream.Get(), 0, 4);
    EXPECT_EQ(stream->GetLength(), 0U);
    window->ReadFrom(stream.Get());
    window->ReadPixels(stream.Get(), 0, 4);
}

// --- mirrors

TEST_F(SpacedWindow, MirrorIsACloneOfTheParentAtTheWindowsSize) {
    FrameRef const mirror = FrameRef::Adopt(window->MirrorLayer());
    EXPECT_THAT(Asked(), ElementsAre("CloneAtNewSize, 100 200, 0, 0"));
    EXPECT_EQ(mirror->ReferenceCount(), 1);
    EXPECT_THAT(static_cast<RecordingFrame&>(*mirror).log, ElementsAre("CopyFromLayer"));
}

TEST(Subframe, MirrorsItsPixels_FromColumn0On) {
    // Copies between equal pixel types take rows by GetRow, which leads to the parent's column 0.
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({6, 9}).Get();
    FillRandom(*parent, KindOfID(SrCode("ColB")), 1);
    Window const window = NewWindow(parent.Get(), {2, 3, 6, 9});
    FrameRef const mirror = FrameRef::Adopt(window->MirrorLayer());
    ASSERT_EQ(mirror->GetSize(), (StPoint{4, 6}));
    for (long y = 0; y < 4; ++y)
        for (long x = 0; x < 6; ++x)
            EXPECT_EQ(At(*mirror, x, y), At(*parent, x, y + 2)) << x << ' ' << y;
}

TEST(Subframe, CopiesOutToAnotherTypeArePixelByPixel) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({6, 9}).Get();
    FillRandom(*parent, KindOfID(SrCode("ColB")), 1);
    Window const window = NewWindow(parent.Get(), {2, 3, 6, 9}, 2, 2);
    FrameRef const copy = MakeLayer<StRGB24Pixel>({2, 3}).Get();
    copy->BlitRect(window.Get(), {0, 0, 2, 3}, {0, 0});
    for (long y = 0; y < 2; ++y)
        for (long x = 0; x < 3; ++x) {
            StRGBA32Pixel expected = parent->GetRGBAPixelAt(x * 2 + 3, y * 2 + 2);
            expected.alpha = 255;
            EXPECT_EQ(copy->GetRGBAPixelAt(x, y), expected);
        }
}

// --- outside the parent

TEST(Subframe, ReadsBeyondALayer_GiveItsEdge) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({6, 9}).Get();
    FillRandom(*parent, KindOfID(SrCode("ColB")), 1);
    Window const window = NewWindow(parent.Get(), {0, 0, 6, 9}, 2, 2);
    EXPECT_EQ(window->GetRow(2), parent->GetRow(4));
    EXPECT_EQ(window->GetRow(3), parent->GetRow(5));
    EXPECT_EQ(window->LockRow(100000), parent->GetRow(5));
    window->UnlockRow(100000);
    EXPECT_TRUE(window->LockRows(0, 5));
    window->UnlockRows(0, 5);
    EXPECT_EQ(window->GetRGBAPixelAt(8, 1), parent->GetRGBAPixelAt(8, 2));
    EXPECT_EQ(window->GetRGBAPixelAt(1, 5), parent->GetRGBAPixelAt(2, 5));
    EXPECT_EQ(window->GetRGBAPixelAsLong(-1, -1), parent->GetRGBAPixelAsLong(0, 0));
    FrameRef const mirror = FrameRef::Adopt(window->MirrorLayer());
    for (long y = 0; y < 6; ++y)
        EXPECT_EQ(At(*mirror, 0, y), At(*parent, 0, std::min(2 * y, 5L)));
}

TEST(Subframe, WritesBeyondALayer_DoNothing) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({6, 9}).Get();
    FillRandom(*parent, KindOfID(SrCode("ColB")), 1);
    Picture const before = Shot(*parent);
    Window const window = NewWindow(parent.Get(), {0, 0, 6, 9}, 2, 2);
    window->PutPixelAt(5, 0, StRGBA32Pixel{1, 2, 3, 4});
    window->PutPixelAt(0, 3, StRGBA32Pixel{1, 2, 3, 4});
    window->PutPixelAt(-1, 0, StRGBA32Pixel{1, 2, 3, 4});
    window->DrawPixelAt(0, 0x7FFFFFFF);
    window->MergePixelAt(0x7FFFFFFFFFFFFFFF, 0, {});
    EXPECT_TRUE(Same(before, Shot(*parent)));
}

TEST(Subframe, OfALayerWithoutPixels_ReadsNothing) {
    FrameRef const parent = MakeLayer<StRGBA32Pixel>({0, 0}).Get();
    Window const window = NewWindow(parent.Get(), {0, 0, 1, 1});
    StRGBA32Pixel color{1, 2, 3, 4};
    window->GetPixelAt(0, 0, color);
    EXPECT_EQ(color, (StRGBA32Pixel{1, 2, 3, 4}));
    EXPECT_EQ(window->GetRGBAPixelAt(0, 0), (StRGBA32Pixel{0, 0, 0, 0}));
    window->Invert();
}

TEST(Subframe, SeesTheWholeRasterOfAMipmap) {
    // The smaller levels lie below level 0, in rows that the mipmap does not count to its size.
    FrameRef const picture = MakeLayer<StRGBA32Pixel>({8, 8}).Get();
    FrameRef const mipmap = FrameRef::Adopt(SrMakeMipmapFromFrame(picture.Get()));
    Window const window = NewWindow(mipmap.Get(), {8, 0, 12, 4});
    EXPECT_EQ(mipmap->GetSize(), (StPoint{8, 8}));
    EXPECT_EQ(window->GetRow(0), mipmap->GetRow(8));
    window->PutPixelAt(1, 1, StRGBA32Pixel{1, 2, 3, 4});
    EXPECT_EQ(mipmap->GetRGBAPixelAt(1, 9), (StRGBA32Pixel{1, 2, 3, 4}));
}

}  // namespace
