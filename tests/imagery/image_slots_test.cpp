// The places of the virtual operations of images, of images that keep what has changed, and of callbacks.
#include "imagery/images.h"
#include "slots.h"

namespace {

struct StSlot {
    char const* name;
    long slot;
};

#define ONE(Class, Name) \
    { #Name, SlotOf(&Class::Name) }

std::vector<StSlot> ImageSlots() {
    return {
        ONE(SmImagerImage, GetSize),       ONE(SmImagerImage, SetSize),
        ONE(SmImagerImage, GetLayerCount), ONE(SmImagerImage, AddLayer),
        ONE(SmImagerImage, RemoveLayer),   ONE(SmImagerImage, GetLayer),
        ONE(SmImagerImage, SetLayer),      ONE(SmImagerImage, CompositeInto),
        ONE(SmImagerImage, BlitFrom),      ONE(SmImagerImage, CloneAtNewSize),
        ONE(SmImagerImage, GetBandHeight), ONE(SmImagerImage, LockRows),
        ONE(SmImagerImage, UnlockRows),    ONE(SmImagerImage, MatchLayers),
        ONE(SmImagerImage, PrepareBand),   ONE(SmImagerImage, MakeLayer),
        ONE(SmImagerImage, LockLayerRow),  ONE(SmImagerImage, UnlockLayerRow),
        ONE(SmImagerImage, HasLayer),      ONE(SmImagerImage, GetColorAt),
        ONE(SmImagerImage, GetRGBAAt),     ONE(SmImagerImage, GetDepthAt),
        ONE(SmImagerImage, GetMaskAt),     ONE(SmImagerImage, GetTransparencyAt),
        ONE(SmImagerImage, BlendPixelAt),  ONE(SmImagerImage, PutPixelAt),
        ONE(SmImagerImage, PutRGBAAt),     ONE(SmImagerImage, PutRunAt),
        ONE(SmImagerImage, FillRectAt),    ONE(SmImagerImage, SamplesMatch),
        ONE(SmImagerImage, SetGamut),      ONE(SmImagerImage, GetGamut),
        ONE(SmImagerImage, GetColorLayer), ONE(SmImagerImage, GetDepthLayer),
        ONE(SmImagerImage, GetMaskLayer),  ONE(SmImagerImage, GetLayerByKind),
        ONE(SmImagerImage, GetResolution), ONE(SmImagerImage, SetResolution),
    };
}

void ExpectInOrder(long first, std::vector<StSlot> const& slots) {
    for (StSlot const& operation : slots)
        EXPECT_EQ(operation.slot, first++) << operation.name;
}

TEST(ImageSlots, OfAnImage_StandBehindTheObject) {
    ExpectInOrder(SlotOf(&SmObjectBase::ReplaceObject) + 1, ImageSlots());
}

TEST(ImageSlots, OfAnUpdatedImage_StandBehindTheImage) {
    ExpectInOrder(ImageSlots().back().slot + 1,
                  {ONE(SmImagerUpdated, GetUpdatedRect), ONE(SmImagerUpdated, ClearUpdatedRect),
                   ONE(SmImagerUpdated, TakeUpdatedRect), ONE(SmImagerUpdated, SetUpdatedRect),
                   ONE(SmImagerUpdated, AddUpdatedPoint)});
}

TEST(ImageSlots, OfACallback_StandBehindItsDestructor) {
    ExpectInOrder(2, {ONE(ScLayerCallback, OnBlendPixel), ONE(ScLayerCallback, OnPutPixel),
                      ONE(ScLayerCallback, OnPutRun), ONE(ScLayerCallback, OnFillRect),
                      ONE(ScLayerCallback, OnCompareSamples), ONE(ScLayerCallback, DeleteThis)});
}

#undef ONE

}  // namespace
