// Images as objects: their start, end, copies, and the images that are made of a size.
#include "imagery/images.h"

namespace {

using namespace testing_images;

TEST(ImageLife, IsAManagedObject) {
    auto const image = ImageRef::Adopt(SmImagerImage::New());
    EXPECT_STREQ(image->GetClassName(), "SmImagerImage");
    EXPECT_EQ(SmImagerImage::Class()->Parent(), SmObject::Class());
    EXPECT_EQ(image->GetClassVersion(), 0);
}

TEST(ImageLife, StartsWithDefaults) {
    auto const image = NewImage();
    EXPECT_EQ(image->GetSize(), (StPoint{1, 1}));
    EXPECT_EQ(image->GetResolution(), (StFloatPoint{72.0F, 72.0F}));
    EXPECT_EQ(image->GetLayerCount(), 0);
    EXPECT_EQ(image->GetColorLayer(), nullptr);
    EXPECT_EQ(image->GetDepthLayer(), nullptr);
    EXPECT_EQ(image->GetMaskLayer(), nullptr);
    ASSERT_NE(image->GetGamut(), nullptr);
    EXPECT_EQ(image->GetGamut()->GetGamutSelector(), 0x47436C69u);
}

TEST(ImageLife, WithoutItsInitialiserItHasNoGamutAndWorks) {
    auto const image = ImageRef::Adopt(SmImagerImage::New());
    EXPECT_EQ(image->GetGamut(), nullptr);
    image->AddLayer(NewColor({2, 2}).Get());
    image->PutPixelAt(0, 0, {0.2F, 0.4F, 0.6F}, 0.0F, 0.0F);
    image->FillRectAt(1, 0, 1, 1, {0.2F, 0.4F, 0.6F}, 0.0F, 0.0F);
    image->BlendPixelAt(1.0F, 0, 1, {0.2F, 0.4F, 0.6F}, 0.0F, 0.0F);
    image->PutRunAt(1, 1, 1, {0.2F, 0.4F, 0.6F}, 0.0F, 0.0F);
    for (long i = 0; i < 4; ++i)
        EXPECT_EQ(image->GetRGBAAt(i % 2, i / 2), (StRGBA32Pixel{153, 102, 51, 255}));
    auto const copy = ImageRef::Adopt(image->Clone());
    EXPECT_EQ(copy->GetGamut(), nullptr);
}

TEST(ImageLife, TheInitialiserNeedsMemoryForTheGamut) {
    auto const image = ImageRef::Adopt(SmImagerImage::New());
    NoMemory const none;
    EXPECT_EQ(ThrownBy([&] { image->IImagerImage(); }), SkMemoryFull());
    EXPECT_EQ(SmImagerImage::New(), nullptr);
}

TEST(ImageLife, SizeAndResolutionAreFields) {
    auto const image = NewDeepImage({3, 4});
    image->SetSize({7, 8});
    EXPECT_EQ(image->GetSize(), (StPoint{7, 8}));
    EXPECT_EQ(image->GetColorLayer()->GetSize(), (StPoint{3, 4}));
    image->SetResolution({300.0F, 150.0F});
    EXPECT_EQ(image->GetResolution(), (StFloatPoint{300.0F, 150.0F}));
}

/// Counts those that are there.
struct CountedGamut : ScClippedGamut {
    explicit CountedGamut(int& count) : alive(count) { ++alive; }
    ~CountedGamut() override { --alive; }
    int& alive;
};

TEST(ImageLife, SetGamut_OwnsTheNewOneAndDeletesTheOld) {
    int alive = 0;
    auto image = NewImage();
    ScGamut* const first = new CountedGamut(alive);
    image->SetGamut(first);
    EXPECT_EQ(image->GetGamut(), first);
    image->SetGamut(first);
    EXPECT_EQ(alive, 1);
    image->SetGamut(new CountedGamut(alive));
    EXPECT_EQ(alive, 1);
    image->SetGamut(nullptr);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(image->GetGamut(), nullptr);
    image->SetGamut(new CountedGamut(alive));
    image = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST(ImageLife, FreeDropsEverything) {
    std::vector<std::string> log;
    auto const color = NewColor({2, 2});
    auto const mask = NewMask({2, 2});
    auto image = NewImage();
    image->AddLayer(color.Get());
    image->AddLayer(color.Get());
    image->SetLayer(3, mask.Get());
    image->AddCallback(NewRecorder("a", log).Get());
    EXPECT_EQ(color->ReferenceCount(), 3);
    image->Free();
    EXPECT_EQ(color->ReferenceCount(), 1);
    EXPECT_EQ(mask->ReferenceCount(), 1);
    EXPECT_EQ(log, std::vector<std::string>{"a ends"});
    EXPECT_EQ(image->GetLayerCount(), 0);
    EXPECT_EQ(image->GetColorLayer(), nullptr);
    EXPECT_EQ(image->GetMaskLayer(), nullptr);
    EXPECT_EQ(image->GetGamut(), nullptr);
    image->AddLayer(color.Get());  // it may be used again
    EXPECT_EQ(image->GetColorLayer(), color.Get());
}

// --- copies

TEST(ImageLife, Clone_HasClonesOfTheLayers) {
    auto const image = NewImage();
    image->SetResolution({10.0F, 20.0F});
    image->SetLayer(1, NewColor({2, 3}).Get());
    image->SetLayer(3, NewDepth({2, 3}).Get());
    image->SetLayer(4, NewMask({2, 3}).Get());
    image->PutRGBAAt(1, 1, {1, 2, 3, 4});
    image->SetSize({50, 60});
    auto const copy = ImageRef::Adopt(image->SmImagerImage::Clone());
    ASSERT_EQ(copy->GetLayerCount(), 3);  // without the empty places
    EXPECT_EQ(copy->GetColorLayer(), copy->GetLayer(0));
    EXPECT_EQ(copy->GetDepthLayer(), copy->GetLayer(1));
    EXPECT_EQ(copy->GetMaskLayer(), nullptr);  // layers come by AddLayer
    EXPECT_EQ(copy->GetLayer(2)->FamilyID(), 0x416C7046u);
    EXPECT_NE(copy->GetColorLayer(), image->GetColorLayer());
    EXPECT_EQ(copy->GetRGBAAt(1, 1), (StRGBA32Pixel{1, 2, 3, 4}));
    EXPECT_EQ(copy->GetLayer(0)->ReferenceCount(), 1);
    EXPECT_EQ(copy->GetSize(), (StPoint{2, 3}));  // and give the size
    EXPECT_EQ(copy->GetResolution(), (StFloatPoint{10.0F, 20.0F}));
    EXPECT_EQ(copy->GetColorLayer()->GetPurpose(), 0x56494557);
    EXPECT_TRUE(copy->GetColorLayer()->GetSaveIntent());
}

TEST(ImageLife, Clone_OfAnImageWithoutLayersKeepsTheSize) {
    auto const image = NewImage();
    image->SetSize({50, 60});
    auto const copy = ImageRef::Adopt(image->SmImagerImage::Clone());
    EXPECT_EQ(copy->GetSize(), (StPoint{50, 60}));
}

TEST(ImageLife, Clone_SharesCallbacksAndClonesTheGamut) {
    std::vector<std::string> log;
    auto const image = NewDeepImage({1, 2});
    auto const callback = NewRecorder("a", log);
    image->AddCallback(callback.Get());
    image->SetGamut(new ScDebugGamut({0.0F, 1.0F, 0.0F}, {0.0F, 0.0F, 1.0F}));
    auto const copy = ImageRef::Adopt(image->SmImagerImage::Clone());
    EXPECT_EQ(callback->ReferenceCount(), 3);
    copy->PutPixelAt(1, 0, {2.0F, 0.0F, 0.0F}, 0.0F, 0.0F);
    EXPECT_EQ(log, std::vector<std::string>{"a pixel 1 0"});
    EXPECT_EQ(callback->image, copy.Get());
    EXPECT_NE(copy->GetGamut(), image->GetGamut());
    EXPECT_EQ(copy->GetRGBAAt(1, 0), (StRGBA32Pixel{0, 255, 0, 255}));
}

TEST(ImageLife, Clone_HasDefaultRanges) {
    auto const image = NewDeepImage({1, 2});
    image->SetRange({0.5F, 0.5F, 0.5F, 0.5F}, false);
    image->PutRGBAAt(0, 0, {10, 10, 10, 10});
    image->PutRGBAAt(1, 0, {50, 10, 10, 10});
    EXPECT_TRUE(image->SamplesMatch(0, 0, 1, 0, 0));
    auto const copy = ImageRef::Adopt(image->SmImagerImage::Clone());
    StRGBAFloatPixel range{};
    copy->GetRange(range, false);
    EXPECT_EQ(range.red, 0.01F);
    EXPECT_FALSE(copy->SamplesMatch(0, 0, 1, 0, 0));
}

TEST(ImageLife, Clone_WithoutMemoryLeavesNothingBehind) {
    std::vector<std::string> log;
    auto const image = NewDeepImage({1, 2});
    auto const callback = NewRecorder("a", log);
    image->AddCallback(callback.Get());
    static int left;
    for (int allowed = 0;; ++allowed) {
        left = allowed;
        SrSetAllocationGate([](std::size_t) { return left-- > 0; });
        ImageRef copy;
        long const error = ThrownBy([&] { copy = ImageRef::Adopt(image->SmImagerImage::Clone()); });
        SrSetAllocationGate(nullptr);
        if (!error) break;
        EXPECT_EQ(error, SkMemoryFull());
        EXPECT_EQ(callback->ReferenceCount(), 2) << allowed;
    }
}

TEST(ImageLife, Become_TakesOnTheState) {
    auto const image = ImageRef::Adopt(SmImagerImage::New());
    image->IImagerImage();
    auto const color = NewColor({9, 9});
    image->AddLayer(color.Get());
    auto const other = ImageRef::Adopt(SmImagerImage::New());
    other->IImagerImage();
    other->AddLayer(NewColor({2, 3}).Get());
    other->PutRGBAAt(1, 1, {1, 2, 3, 4});
    image->ImplementBecome(other.Get());
    EXPECT_EQ(color->ReferenceCount(), 1);
    EXPECT_EQ(image->GetSize(), (StPoint{2, 3}));
    EXPECT_EQ(image->GetRGBAAt(1, 1), (StRGBA32Pixel{1, 2, 3, 4}));
    EXPECT_EQ(other->GetRGBAAt(1, 1), (StRGBA32Pixel{1, 2, 3, 4}));
}

TEST(ImageLife, CloneAtNewSize_HasLayersOfTheSameTypesAtTheSamePlaces) {
    std::vector<std::string> log;
    auto const image = NewImage();
    image->SetLayer(0, NewLayer<StGray8Pixel>({2, 3}).Get());
    image->SetLayer(2, NewDepth({2, 3}).Get());
    image->SetLayer(3, NewMask({2, 3}).Get());
    image->SetResolution({10.0F, 20.0F});
    image->SetRange({0.5F, 0.5F, 0.5F, 0.5F}, false);
    image->SetGamut(new ScScaledGamut);
    image->AddCallback(NewRecorder("a", log).Get());
    auto const copy = ImageRef::Adopt(image->CloneAtNewSize({70, 80}, true, false));
    EXPECT_EQ(copy->GetClass(), SmImagerImage::Class());
    EXPECT_EQ(copy->ReferenceCount(), 1);
    EXPECT_EQ(copy->GetSize(), (StPoint{70, 80}));
    ASSERT_EQ(copy->GetLayerCount(), 4);
    EXPECT_EQ(copy->GetLayer(0)->GetClass(), (SmImagerLayer<StGray8Pixel, ScImagerSpool>::Class()));
    EXPECT_EQ(copy->GetLayer(1), nullptr);
    EXPECT_EQ(copy->GetLayer(2)->GetClass(), (SmImagerLayer<StDepthFloatPixel, ScImagerSpool>::Class()));
    EXPECT_EQ(copy->GetColorLayer(), copy->GetLayer(0));
    EXPECT_EQ(copy->GetDepthLayer(), copy->GetLayer(2));
    EXPECT_EQ(copy->GetMaskLayer(), copy->GetLayer(3));
    for (long i : {0, 2, 3}) {
        EXPECT_EQ(copy->GetLayer(i)->GetSize(), (StPoint{70, 80}));
        EXPECT_EQ(copy->GetLayer(i)->ReferenceCount(), 1);
    }
    EXPECT_EQ(copy->GetResolution(), (StFloatPoint{72.0F, 72.0F}));
    EXPECT_EQ(copy->GetGamut()->GetGamutSelector(), 0x47436C69u);
    StRGBAFloatPixel range{};
    copy->GetRange(range, false);
    EXPECT_EQ(range.red, 0.01F);
    copy->PutRGBAAt(0, 0, {});
    EXPECT_TRUE(log.empty());

    auto const inMemory = ImageRef::Adopt(image->CloneAtNewSize({70, 80}, false, false));
    EXPECT_EQ(inMemory->GetLayer(0)->GetClass(), (SmImagerLayer<StGray8Pixel, ScImagerNonSpool>::Class()));
}

TEST(ImageLife, CloneAtNewSize_OfAnUpdatedImageIsAnImage) {
    auto const image = NewUpdated();
    auto const copy = ImageRef::Adopt(image->CloneAtNewSize({5, 6}, false, false));
    EXPECT_EQ(copy->GetClass(), SmImagerImage::Class());
    EXPECT_EQ(copy->GetSize(), (StPoint{5, 6}));
    NoMemory const none;
    EXPECT_EQ(ThrownBy([&] { image->CloneAtNewSize({5, 6}, false, false); }), SkMemoryFull());
}

// --- SrMakeImage

TEST(ImageLife, MakeImage_HoldsOneFrame) {
    auto const image = ImageRef::Adopt(SrMakeImage({3, 4}, SrCode("Gry8"), true));
    EXPECT_EQ(image->GetClass(), SmImagerImage::Class());
    EXPECT_EQ(image->ReferenceCount(), 1);
    EXPECT_EQ(image->GetSize(), (StPoint{3, 4}));
    ASSERT_EQ(image->GetLayerCount(), 1);
    EXPECT_EQ(image->GetColorLayer(), image->GetLayer(0));
    EXPECT_EQ(image->GetLayer(0)->GetClass(), (SmImagerLayer<StGray8Pixel, ScImagerNonSpool>::Class()));
    EXPECT_EQ(image->GetLayer(0)->ReferenceCount(), 1);
    EXPECT_EQ(image->GetLayer(0)->GetPurpose(), 0x3F3F3F3F);  // SetLayer gives none
}

TEST(ImageLife, MakeImage_SpoolsLargeFramesIfAsked) {
    for (bool spool : {false, true}) {
        auto const image = ImageRef::Adopt(SrMakeImage({65, 65}, SrCode("ColB"), spool));
        ScMC_* const spooled = SmImagerLayer<StRGBA32Pixel, ScImagerSpool>::Class();
        EXPECT_EQ(image->GetColorLayer()->GetClass() == spooled, spool);
    }
}

TEST(ImageLife, MakeImage_OfAnUnknownPixelTypeHasAnEmptyPlace) {
    auto const image = ImageRef::Adopt(SrMakeImage({3, 4}, SrCode("none"), false));
    EXPECT_EQ(image->GetLayerCount(), 1);
    EXPECT_EQ(image->GetLayer(0), nullptr);
    EXPECT_EQ(image->GetSize(), (StPoint{3, 4}));
}

TEST(ImageLife, MakeImage_RefusesWhatNoMemoryHolds) {
    EXPECT_EQ(ThrownBy([] { SrMakeImage({-1, 4}, SrCode("ColB"), false); }), SkMemoryFull());
    NoMemory const none;
    EXPECT_EQ(ThrownBy([] { SrMakeImage({3, 4}, SrCode("ColB"), false); }), SkMemoryFull());
}

}  // namespace
