// The places of the virtual operations in their tables. Hosts that were compiled against one version of the
// library call into another by these, so an operation may be added only behind the last.
#include <string>
#include <vector>

#include "framewright/pixel/dithered_layer.h"
#include "framewright/pixel/mapped_layer.h"
#include "kinds.h"
#include "slots.h"

using namespace testing_frames;

namespace {

struct StSlot {
    std::string name;
    long slot;
};

/// The operation that only derived classes may name.
struct ProtectedOperations : SmImagerFrame {
    static long SlotOfDissimilarBlit() { return SlotOf(&ProtectedOperations::DissimilarBlit); }
};

template <class Result, class... Arguments>
using Operation = Result (SmImagerFrame::*)(Arguments...);

/// The frame's operations as they are told, from the first to the last.
std::vector<StSlot> FrameSlots() {
    using Tiling = StTilingStyles const&;
#define ONE(Name) \
    { #Name, SlotOf(&SmImagerFrame::Name) }
#define FORM(Name, Result, ...) \
    { #Name "(" #__VA_ARGS__ ")", SlotOf(Operation <Result, __VA_ARGS__>(&SmImagerFrame::Name)) }
    return {
        ONE(PixelID),
        ONE(FamilyID),
        ONE(PixelSize),
        ONE(GetSize),
        ONE(GetTopLeft),
        ONE(GetOriginalSize),
        ONE(GetPurpose),
        ONE(SetPurpose),
        ONE(BytesPerRow),
        ONE(IsUVTriLinear),
        ONE(LockRows),
        ONE(UnlockRows),
        ONE(LockRow),
        ONE(UnlockRow),
        ONE(ForceContiguous),
        ONE(ReleaseContiguous),
        ONE(IsContiguous),
        ONE(ResetBaseAddress),
        FORM(GetPixelAt, void, long, long, StRGBA32Pixel&),
        FORM(GetPixelAt, void, long, long, StColorFloats&),
        FORM(GetPixelAt, void, long, long, StRGBAFloatPixel&),
        FORM(GetPixelAt, void, long, long, float&),
        FORM(GetPixelAt, void, long, long, StAlpha8Pixel&),
        FORM(GetPixelAt, void, long, long, ScSmartPixel*),
        FORM(GetPixelAt, void, long, long, void*),
        FORM(PutPixelAt, void, long, long, StRGBA32Pixel const&),
        FORM(PutPixelAt, void, long, long, StColorFloats const&),
        FORM(PutPixelAt, void, long, long, StRGBAFloatPixel const&),
        FORM(PutPixelAt, void, long, long, StDepthFloatPixel const&),
        FORM(PutPixelAt, void, long, long, StAlpha8Pixel const&),
        FORM(PutPixelAt, void, long, long, ScSmartPixel const*),
        FORM(PutPixelAt, void, long, long, void const*),
        ONE(DrawPixelAt),
        ONE(NewSmartPixel),
        ONE(GetFractionalSmartPixel),
        ONE(GetRGBAPixelAt),
        ONE(GetRGBAPixelAsLong),
        ONE(MergePixelAt),
        ONE(GetRow),
        ONE(SetForeground),
        ONE(GetForeground),
        ONE(SetBackground),
        ONE(GetBackground),
        ONE(MirrorLayer),
        ONE(CloneAtNewSize),
        ONE(CopyFromLayer),
        ONE(SetUpdated),
        ONE(GetUpdated),
        ONE(SetDithering),
        ONE(GetDithering),
        ONE(MergeRect),
        ONE(BlitRect),
        ONE(StretchBlit),
        ONE(StretchBlitFast),
        ONE(StretchBlitMasked),
        FORM(MoveFrame, void, StRect const&),
        FORM(MoveFrame, void, void*, StPoint const&, StPoint const&),
        ONE(Resize),
        FORM(GetFractionalUVPixel, void, float, float, StColorFloats&, Tiling, float),
        FORM(GetFractionalUVPixel, void, float, float, float&, Tiling, float),
        FORM(GetFractionalUVPixel, void, float, float, StRGBA32Pixel&, Tiling, float),
        ONE(GetUVDerivatives),
        ONE(GetNativeImageContext),
        ONE(ReleaseNativeImageContext),
        ONE(SetNativeImageContext),
        ONE(GetNativeViewContext),
        ONE(ReleaseNativeViewContext),
        ONE(SetNativeViewContext),
        ONE(ReportNativeViewContext),
        ONE(GetNativeWindowContext),
        ONE(ReleaseNativeWindowContext),
        ONE(SetNativeGrafPtr),
        ONE(GetNativeGrafPtr),
        ONE(EnsureScreenSafe),
        ONE(ReleaseScreenSafe),
        ONE(SetStreamingCompression),
        ONE(WriteTo),
        ONE(ReadFrom),
        ONE(WritePixels),
        ONE(ReadPixels),
        ONE(Erase),
        ONE(Flip),
        ONE(Invert),
        ONE(RectFill),
        {"DissimilarBlit", ProtectedOperations::SlotOfDissimilarBlit()},
    };
#undef FORM
#undef ONE
}

TEST(SlotOrder, OfTheFrame_StandsBehindTheObject) {
    std::vector<StSlot> const slots = FrameSlots();
    long expected = SlotOf(&SmObjectBase::ReplaceObject) + 1;
    for (StSlot const& operation : slots)
        EXPECT_EQ(operation.slot, expected++) << operation.name;
}

/// Replaces the private operation, so its place can be asked here.
template <class Layer>
struct NamesDitheredBlit : Layer {
    bool DitheredBlit(SmImagerFrame*, StRect const&, StPoint const&) override { return false; }
};

template <class Layer>
void ExpectTwoMoreSlots() {
    long const last = FrameSlots().back().slot;
    EXPECT_EQ(SlotOf(&Layer::ClearDither), last + 1);
    EXPECT_EQ(SlotOf(&NamesDitheredBlit<Layer>::DitheredBlit), last + 2);
}

TEST(SlotOrder, OfDitheredAndMappedLayers_GoesOnBehindTheFrame) {
    ExpectTwoMoreSlots<SmImagerDitheredLayer<StRGB15Pixel, ScImagerNonSpool>>();
    ExpectTwoMoreSlots<SmImagerDitheredLayer<StMapped8Pixel, ScImagerNonSpool>>();
    ExpectTwoMoreSlots<SmImagerMappedLayer<StMapped8Pixel, ScImagerNonSpool>>();
    ExpectTwoMoreSlots<SmImagerMappedLayer<StMapped1Pixel, ScImagerNonSpool>>();
}

}  // namespace
