// The list of layers, its slots, purposes, and what works on all layers at once.
#include "framewright/frame/registries.h"
#include "framewright/spool/spool_manager.h"
#include "framewright/spool/spool_preferences.h"
#include "imagery/images.h"

namespace {

using namespace testing_images;

constexpr long kNoPurpose = 0x3F3F3F3F;
constexpr long kView = 0x56494557;
constexpr long kDepthPurpose = 0x44455054;
constexpr long kOther = SrCode("Othr");

/// Writes down its locks, and refuses them when told.
class LockSpy : public SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool> {
  public:
    LockSpy(char name, std::string& log) : mName(name), mLog(log) {
        IImagerLayer({0, 0}, {4, 4}, false, nullptr, 0, nullptr);
    }
    bool refuses = false;
    long failure = 0;

    bool LockRows(long first, long last) override {
        Note('L', first, last);
        if (failure) SrThrow(failure, nullptr);
        return !refuses;
    }
    void UnlockRows(long first, long last) override { Note('U', first, last); }
    void* LockRow(long row) override {
        Note('l', row, row);
        return SmImagerLayer::LockRow(row);
    }
    void UnlockRow(long row) override {
        Note('u', row, row);
        SmImagerLayer::UnlockRow(row);
    }

  private:
    void Note(char what, long first, long last) {
        mLog += {mName, what};
        mLog += std::to_string(first) + std::to_string(last) + " ";
    }
    char mName;
    std::string& mLog;
};

StRef<LockSpy> NewSpy(char name, std::string& log) {
    return StRef<LockSpy>::Adopt(new LockSpy(name, log));
}

// --- AddLayer

TEST(ImageLayers, Add_TheFirstColorFrameBecomesTheColorLayer) {
    auto const image = NewImage();
    auto const color = NewColor({3, 5});
    ASSERT_EQ(color->GetPurpose(), kNoPurpose);
    image->AddLayer(color.Get());
    EXPECT_EQ(image->GetColorLayer(), color.Get());
    EXPECT_EQ(image->GetSize(), (StPoint{3, 5}));
    EXPECT_EQ(color->GetPurpose(), kView);
    EXPECT_TRUE(color->GetSaveIntent());
    EXPECT_EQ(color->ReferenceCount(), 2);
    EXPECT_EQ(image->GetLayerCount(), 1);
    EXPECT_EQ(image->GetLayer(0), color.Get());
}

TEST(ImageLayers, Add_KeepsAPurposeThatIsSet) {
    auto const image = NewImage();
    auto const color = NewColor({3, 5});
    auto const depth = NewDepth({3, 5});
    color->SetPurpose(kOther);
    depth->SetPurpose(kOther);
    image->AddLayer(color.Get());
    image->AddLayer(depth.Get());
    EXPECT_EQ(color->GetPurpose(), kOther);
    EXPECT_EQ(depth->GetPurpose(), kOther);
}

TEST(ImageLayers, Add_ASecondColorFrameJoinsTheListWithoutSaveIntent) {
    auto const image = NewImage();
    auto const first = NewColor({3, 5});
    auto const second = NewLayer<StGray8Pixel>({7, 9});  // grey is of the colour family
    second->SetSaveIntent(true);
    image->AddLayer(first.Get());
    image->AddLayer(second.Get());
    EXPECT_EQ(image->GetColorLayer(), first.Get());
    EXPECT_EQ(image->GetLayerCount(), 2);
    EXPECT_EQ(image->GetLayer(1), second.Get());
    EXPECT_FALSE(second->GetSaveIntent());
    EXPECT_TRUE(first->GetSaveIntent());
    EXPECT_EQ(second->GetPurpose(), kNoPurpose);
    EXPECT_EQ(image->GetSize(), (StPoint{3, 5}));
}

TEST(ImageLayers, Add_TheFirstDepthFrameBecomesTheDepthLayer) {
    auto const image = NewImage();
    auto const depth = NewDepth({3, 5});
    auto const second = NewDepth({4, 6});
    for (SmImagerFrame* frame : {depth.Get(), second.Get()}) {
        frame->SetSaveIntent(true);
        image->AddLayer(frame);
        EXPECT_FALSE(frame->GetSaveIntent());
    }
    EXPECT_EQ(image->GetDepthLayer(), depth.Get());
    EXPECT_EQ(depth->GetPurpose(), kDepthPurpose);
    EXPECT_EQ(second->GetPurpose(), kNoPurpose);
}

TEST(ImageLayers, Add_NeverSetsTheMaskLayer) {
    auto const image = NewImage();
    auto const mask = NewMask({3, 5});
    mask->SetSaveIntent(true);
    image->AddLayer(mask.Get());
    EXPECT_EQ(image->GetMaskLayer(), nullptr);
    EXPECT_EQ(image->GetLayer(0), mask.Get());
    EXPECT_FALSE(mask->GetSaveIntent());
    EXPECT_EQ(mask->GetPurpose(), kNoPurpose);
}

TEST(ImageLayers, Add_WithoutColorTheSizeIsThatOfTheLastLayer) {
    auto const image = NewImage();
    image->AddLayer(NewDepth({3, 5}).Get());
    EXPECT_EQ(image->GetSize(), (StPoint{3, 5}));
    image->AddLayer(NewMask({7, 2}).Get());
    EXPECT_EQ(image->GetSize(), (StPoint{7, 2}));
    image->AddLayer(NewDepth({4, 8}).Get());
    EXPECT_EQ(image->GetSize(), (StPoint{4, 8}));
    image->AddLayer(NewColor({2, 2}).Get());
    image->AddLayer(NewMask({9, 9}).Get());
    EXPECT_EQ(image->GetSize(), (StPoint{2, 2}));
}

TEST(ImageLayers, Add_RefusesNull) {
    auto const image = NewImage();
    EXPECT_EQ(ThrownBy([&] { image->AddLayer(nullptr); }), SkInternalRefusal());
    EXPECT_EQ(image->GetLayerCount(), 0);
}

// --- RemoveLayer

TEST(ImageLayers, Remove_ClosesTheGapAndDropsTheReference) {
    auto const image = NewImage();
    auto const color = NewColor({3, 5});
    auto const depth = NewDepth({3, 5});
    auto const mask = NewMask({3, 5});
    for (SmImagerFrame* frame : {color.Get(), depth.Get(), mask.Get()})
        image->AddLayer(frame);
    image->RemoveLayer(depth.Get());
    EXPECT_EQ(depth->ReferenceCount(), 1);
    EXPECT_EQ(image->GetDepthLayer(), nullptr);
    EXPECT_EQ(image->GetColorLayer(), color.Get());
    EXPECT_EQ(image->GetLayerCount(), 2);
    EXPECT_EQ(image->GetLayer(1), mask.Get());
    image->RemoveLayer(color.Get());
    EXPECT_EQ(image->GetColorLayer(), nullptr);
    EXPECT_EQ(image->GetLayer(0), mask.Get());
    EXPECT_EQ(image->GetSize(), (StPoint{3, 5}));
}

TEST(ImageLayers, Remove_TakesTheFirstEqualEntryAlone) {
    auto const image = NewImage();
    auto const color = NewColor({3, 5});
    auto const mask = NewMask({3, 5});
    for (SmImagerFrame* frame : {color.Get(), mask.Get(), color.Get()})
        image->AddLayer(frame);
    image->RemoveLayer(color.Get());
    EXPECT_EQ(image->GetLayerCount(), 2);
    EXPECT_EQ(image->GetLayer(0), mask.Get());
    EXPECT_EQ(image->GetLayer(1), color.Get());
    EXPECT_EQ(image->GetColorLayer(), nullptr);
    EXPECT_EQ(color->ReferenceCount(), 2);
}

TEST(ImageLayers, Remove_OfAStrangerDoesNothing) {
    auto const image = NewDeepImage({3, 5});
    auto const stranger = NewColor({3, 5});
    image->RemoveLayer(stranger.Get());
    EXPECT_EQ(image->GetLayerCount(), 2);
    EXPECT_EQ(stranger->ReferenceCount(), 1);
    image->RemoveLayer(nullptr);
    EXPECT_EQ(image->GetLayerCount(), 2);
}

TEST(ImageLayers, Remove_LeavesTheMaskPointerAsItStands) {
    auto image = NewImage();
    auto const mask = NewMask({3, 5});
    image->SetLayer(0, mask.Get());
    image->RemoveLayer(mask.Get());
    EXPECT_EQ(image->GetMaskLayer(), mask.Get());
    EXPECT_EQ(image->GetLayerCount(), 0);
    image = nullptr;
    EXPECT_EQ(mask->ReferenceCount(), 1);
}

TEST(ImageLayers, AMaskThatIsNoLayerAnyMore_CanStillBeRead) {
    for (bool replaced : {false, true}) {
        auto const image = NewImage();
        image->SetLayer(0, NewMask({3, 5}).Get());
        image->GetMaskLayer()->PutPixelAt(1, 2, StAlpha8Pixel{9});
        if (replaced)
            image->SetLayer(0, NewMask({3, 5}).Get());
        else
            image->RemoveLayer(image->GetMaskLayer());
        EXPECT_EQ(image->GetMaskAt(1, 2), 9);
    }
}

// --- SetLayer

TEST(ImageLayers, Set_GrowsTheListWithEmptyPlaces) {
    auto const image = NewImage();
    auto const color = NewColor({3, 5});
    image->SetLayer(5, color.Get());
    EXPECT_EQ(image->GetLayerCount(), 6);
    for (long i = 0; i < 5; ++i)
        EXPECT_EQ(image->GetLayer(i), nullptr) << i;
    EXPECT_EQ(image->GetLayer(5), color.Get());
    EXPECT_EQ(color->ReferenceCount(), 2);
    EXPECT_EQ(image->GetLayer(6), nullptr);
    EXPECT_EQ(image->GetLayer(-1), nullptr);
}

TEST(ImageLayers, Set_FillsEachSlotByFamilyAndSetsNeitherPurposeNorIntent) {
    auto const image = NewImage();
    auto const mask = NewMask({1, 2});
    auto const depth = NewDepth({2, 3});
    auto const color = NewColor({3, 4});
    mask->SetSaveIntent(true);
    image->SetLayer(0, mask.Get());
    EXPECT_EQ(image->GetSize(), (StPoint{1, 2}));
    image->SetLayer(1, depth.Get());
    EXPECT_EQ(image->GetSize(), (StPoint{2, 3}));
    image->SetLayer(2, color.Get());
    EXPECT_EQ(image->GetSize(), (StPoint{3, 4}));
    image->SetLayer(3, NewMask({9, 9}).Get());
    EXPECT_EQ(image->GetSize(), (StPoint{3, 4}));
    EXPECT_EQ(image->GetMaskLayer(), mask.Get());
    EXPECT_EQ(image->GetDepthLayer(), depth.Get());
    EXPECT_EQ(image->GetColorLayer(), color.Get());
    for (SmImagerFrame* frame : {mask.Get(), depth.Get(), color.Get()})
        EXPECT_EQ(frame->GetPurpose(), kNoPurpose);
    EXPECT_TRUE(mask->GetSaveIntent());
    EXPECT_FALSE(color->GetSaveIntent());
}

TEST(ImageLayers, Set_LeavesSlotsThatAreFull) {
    auto const image = NewImage();
    auto const color = NewColor({3, 4});
    auto const depth = NewDepth({3, 4});
    auto const mask = NewMask({3, 4});
    image->SetLayer(0, color.Get());
    image->SetLayer(1, depth.Get());
    image->SetLayer(2, mask.Get());
    image->SetLayer(3, NewColor({9, 9}).Get());
    image->SetLayer(4, NewDepth({9, 9}).Get());
    image->SetLayer(5, NewMask({9, 9}).Get());
    EXPECT_EQ(image->GetColorLayer(), color.Get());
    EXPECT_EQ(image->GetDepthLayer(), depth.Get());
    EXPECT_EQ(image->GetMaskLayer(), mask.Get());
    EXPECT_EQ(image->GetSize(), (StPoint{3, 4}));
}

TEST(ImageLayers, Set_ReplacesColorAndDepthAndDropsTheReference) {
    auto const image = NewImage();
    auto const color = NewColor({3, 4});
    auto const depth = NewDepth({3, 4});
    image->SetLayer(0, color.Get());
    image->SetLayer(1, depth.Get());
    auto const newColor = NewColor({5, 6});
    auto const newDepth = NewDepth({5, 6});
    image->SetLayer(0, newColor.Get());
    image->SetLayer(1, newDepth.Get());
    EXPECT_EQ(image->GetColorLayer(), newColor.Get());
    EXPECT_EQ(image->GetDepthLayer(), newDepth.Get());
    EXPECT_EQ(image->GetSize(), (StPoint{5, 6}));
    EXPECT_EQ(color->ReferenceCount(), 1);
    EXPECT_EQ(depth->ReferenceCount(), 1);
    image->SetLayer(0, newColor.Get());
    EXPECT_EQ(image->GetColorLayer(), newColor.Get());
    EXPECT_EQ(newColor->ReferenceCount(), 2);
}

TEST(ImageLayers, Set_NullEmptiesAPlaceAndKeepsTheSize) {
    auto const image = NewImage();
    auto const color = NewColor({3, 4});
    image->SetLayer(0, color.Get());
    image->SetLayer(0, nullptr);
    EXPECT_EQ(image->GetColorLayer(), nullptr);
    EXPECT_EQ(image->GetLayerCount(), 1);
    EXPECT_EQ(image->GetLayer(0), nullptr);
    EXPECT_EQ(image->GetSize(), (StPoint{3, 4}));
    EXPECT_EQ(color->ReferenceCount(), 1);
}

TEST(ImageLayers, Set_DoesNotClearTheMaskSlot) {
    auto const image = NewImage();
    auto const mask = NewMask({3, 4});
    image->SetLayer(0, mask.Get());
    image->SetLayer(0, nullptr);
    EXPECT_EQ(image->GetMaskLayer(), mask.Get());
    image->SetLayer(0, NewMask({3, 4}).Get());
    EXPECT_EQ(image->GetMaskLayer(), mask.Get());
}

TEST(ImageLayers, Set_RefusesPlacesThatNoListHas) {
    auto const image = NewImage();
    auto const color = NewColor({3, 4});
    EXPECT_EQ(ThrownBy([&] { image->SetLayer(-1, color.Get()); }), SkInternalRefusal());
    EXPECT_EQ(ThrownBy([&] { image->SetLayer(0x100000000L, color.Get()); }), SkMemoryFull());
    {
        NoMemory const none;
        EXPECT_EQ(ThrownBy([&] { image->SetLayer(3, color.Get()); }), SkMemoryFull());
    }
    EXPECT_EQ(image->GetLayerCount(), 0);
    EXPECT_EQ(color->ReferenceCount(), 1);
}

// --- kinds

TEST(ImageLayers, ByKind_ZeroToTwoAreTheSlots) {
    auto const image = NewImage();
    for (unsigned char kind : {0, 1, 2, 3}) {
        EXPECT_FALSE(image->HasLayer(kind));
        EXPECT_EQ(image->GetLayerByKind(kind), nullptr);
        EXPECT_EQ(image->LockLayerRow(kind, 0), nullptr);
        image->UnlockLayerRow(kind, 0);
    }
    FrameRef const layers[] = {NewColor({2, 2}), NewDepth({2, 2}), NewMask({2, 2})};
    for (long i = 0; i < 3; ++i)
        image->SetLayer(i, layers[i].Get());
    for (unsigned char kind : {0, 1, 2}) {
        EXPECT_TRUE(image->HasLayer(kind));
        EXPECT_EQ(image->GetLayerByKind(kind), layers[kind].Get());
    }
    EXPECT_FALSE(image->HasLayer(3));
}

/// A frame of a family whose code fits into a byte.
class OddFamily : public SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool> {
  public:
    OddFamily() { IImagerLayer({0, 0}, {2, 2}, false, nullptr, 0, nullptr); }
    unsigned long FamilyID() override { return 77; }
};

TEST(ImageLayers, ByKind_OtherValuesAreFamilies) {
    auto const image = NewImage();
    auto const first = StRef<OddFamily>::Adopt(new OddFamily);
    auto const second = StRef<OddFamily>::Adopt(new OddFamily);
    image->SetLayer(1, NewColor({2, 2}).Get());
    image->SetLayer(2, first.Get());
    image->SetLayer(3, second.Get());
    EXPECT_EQ(image->GetLayerByKind(77), first.Get());
    EXPECT_TRUE(image->HasLayer(77));
    EXPECT_FALSE(image->HasLayer(78));
}

TEST(ImageLayers, LockLayerRow_LocksThatRowOfThatLayer) {
    std::string log;
    auto const image = NewImage();
    auto const spy = NewSpy('a', log);
    image->AddLayer(spy.Get());
    void* const row = image->LockLayerRow(0, 2);
    EXPECT_EQ(row, spy->GetRow(2));
    image->UnlockLayerRow(0, 2);
    EXPECT_EQ(log, "al22 au22 ");
}

TEST(ImageLayers, Make_GivesALayerOfEachKindThatIsNotAdded) {
    auto const image = NewImage();
    image->SetSize({3, 5});
    struct Row {
        unsigned char kind;
        bool spool;
        ScMC_* cls;
    } const rows[] = {
        {0, false, SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>::Class()},
        {0, true, SmImagerLayer<StRGBA32Pixel, ScImagerSpool>::Class()},
        {1, false, SmImagerLayer<StDepthFloatPixel, ScImagerNonSpool>::Class()},
        {1, true, SmImagerLayer<StDepthFloatPixel, ScImagerSpool>::Class()},
        {2, false, SmImagerLayer<StAlpha8Pixel, ScImagerNonSpool>::Class()},
        {2, true, SmImagerLayer<StAlpha8Pixel, ScImagerSpool>::Class()},
    };
    for (Row const& row : rows) {
        auto const layer = FrameRef::Adopt(image->MakeLayer(row.kind, row.spool));
        EXPECT_EQ(layer->GetClass(), row.cls) << int{row.kind} << row.spool;
        EXPECT_EQ(layer->GetSize(), (StPoint{3, 5}));
        EXPECT_EQ(layer->ReferenceCount(), 1);
    }
    EXPECT_EQ(image->MakeLayer(3, false), nullptr);
    EXPECT_EQ(image->MakeLayer(255, true), nullptr);
    EXPECT_EQ(image->GetLayerCount(), 0);
    NoMemory const none;
    EXPECT_EQ(ThrownBy([&] { image->MakeLayer(0, false); }), SkMemoryFull());
}

// --- all layers at once

TEST(ImageLayers, LockRows_GoesThroughTheLayersInOrder) {
    std::string log;
    auto const image = NewImage();
    image->SetLayer(0, NewSpy('a', log).Get());
    image->SetLayer(2, NewSpy('b', log).Get());
    EXPECT_TRUE(image->LockRows(1, 3));
    image->UnlockRows(1, 3);
    EXPECT_EQ(log, "aL13 bL13 aU13 bU13 ");
}

TEST(ImageLayers, LockRows_GivesBackWhatWasDoneWhenOneRefuses) {
    std::string log;
    auto const image = NewImage();
    auto const refusing = NewSpy('c', log);
    refusing->refuses = true;
    image->SetLayer(0, NewSpy('a', log).Get());
    image->SetLayer(1, NewSpy('b', log).Get());
    image->SetLayer(3, refusing.Get());
    image->SetLayer(4, NewSpy('d', log).Get());
    EXPECT_FALSE(image->LockRows(0, 1));
    EXPECT_EQ(log, "aL01 bL01 cL01 aU01 bU01 ");
    log.clear();
    refusing->failure = -36;
    EXPECT_EQ(ThrownBy([&] { image->LockRows(0, 1); }), -36);
    EXPECT_EQ(log, "aL01 bL01 cL01 aU01 bU01 ");
}

/// Sets the preference and puts it back.
struct Spooling {
    explicit Spooling(bool state) { SrSetImageSpoolingState(state); }
    ~Spooling() { SrSetImageSpoolingState(was); }
    bool was = SrGetImageSpoolingState();
};

TEST(ImageLayers, BandHeight_WithoutSpoolingIsTheWholeImage) {
    Spooling const off(false);
    auto const image = NewImage();
    unsigned rows = 0;
    image->SetSize({123, 7});
    EXPECT_FALSE(image->GetBandHeight(rows, 0.5F));
    EXPECT_EQ(rows, 123u);
    image->SetSize({0, 7});
    EXPECT_FALSE(image->GetBandHeight(rows, 0.5F));
    EXPECT_EQ(rows, 480u);
}

TEST(ImageLayers, BandHeight_WithSpoolingDividesMemoryByTheRowsOfAllLayers) {
    Spooling const on(true);
    // So great a part of memory has no 32-bit number: the manager's limit of 1 GiB is what is left.
    constexpr float kAll = 1e9F;
    constexpr unsigned kLimit = 0x40000000;
    ASSERT_EQ(SrGetGlobalSpoolManager()->MemoryInUse(), 0u);
    ASSERT_EQ(SrGetGlobalSpoolManager()->AvailableMemory(kAll), kLimit);

    auto const image = NewImage();
    unsigned rows = 0;
    image->SetSize({10, 0});
    EXPECT_TRUE(image->GetBandHeight(rows, kAll));
    EXPECT_EQ(rows, kLimit / 2560);
    image->SetSize({10, 7});
    EXPECT_TRUE(image->GetBandHeight(rows, kAll));
    EXPECT_EQ(rows, kLimit / 28);

    image->SetLayer(0, NewColor({10, 100}).Get());  // 400 bytes a row
    image->SetLayer(3, NewMask({10, 101}).Get());   // 104, padded to 32 bits
    EXPECT_TRUE(image->GetBandHeight(rows, kAll));
    EXPECT_EQ(rows, kLimit / 504);
    EXPECT_TRUE(image->GetBandHeight(rows, 0.0F));
    EXPECT_EQ(rows, 1u);
}

TEST(ImageLayers, MatchLayers_AndPrepareBandChangeNothing) {
    auto const image = NewDeepImage({3, 4});
    auto const other = NewImage();
    other->SetLayer(5, NewColor({9, 9}).Get());
    image->MatchLayers(other.Get());
    image->MatchLayers(image.Get());
    image->PrepareBand(0, 2, 1);
    EXPECT_EQ(image->GetLayerCount(), 2);
    EXPECT_EQ(image->GetSize(), (StPoint{3, 4}));
}

TEST(ImageLayers, Erase_FillsTheColorLayerOrAllLayers) {
    auto const image = NewImage();
    EXPECT_FALSE(SrImagerErase(image.Get(), true));
    EXPECT_FALSE(SrImagerErase(image.Get(), false));
    auto const mask = NewMask({1, 1});
    mask->SetBackground({0, 0, 0, 9});
    image->SetLayer(2, mask.Get());
    EXPECT_FALSE(SrImagerErase(image.Get(), true));
    EXPECT_EQ(image->GetMaskAt(0, 0), 0);

    auto const color = NewColor({1, 1});
    color->SetBackground({1, 2, 3, 4});
    image->SetLayer(0, color.Get());
    EXPECT_TRUE(SrImagerErase(image.Get(), true));
    EXPECT_EQ(image->GetRGBAAt(0, 0), (StRGBA32Pixel{1, 2, 3, 4}));
    EXPECT_EQ(image->GetMaskAt(0, 0), 0);
    EXPECT_TRUE(SrImagerErase(image.Get(), false));
    EXPECT_EQ(image->GetMaskAt(0, 0), 9);
}

// --- purposes

TEST(ImageLayers, Purposed_TheFirstOfThePurposeWins) {
    auto const image = NewImage();
    auto const first = NewMask({2, 2});
    auto const second = NewMask({2, 2});
    first->SetPurpose(kOther);
    second->SetPurpose(kOther);
    image->SetLayer(0, NewColor({2, 2}).Get());
    image->SetLayer(2, first.Get());
    image->SetLayer(3, second.Get());
    EXPECT_EQ(SrGetPurposedLayer(image.Get(), kOther), first.Get());
    EXPECT_EQ(SrGetPurposedLayer(image.Get(), kNoPurpose), image->GetColorLayer());
    EXPECT_EQ(SrGetPurposedLayer(image.Get(), SrCode("None")), nullptr);
}

TEST(ImageLayers, AddPurposed_GivesTheLayerThatIsThere) {
    auto const image = NewImage();
    auto const layer = NewMask({2, 2});
    layer->SetPurpose(kOther);
    image->AddLayer(layer.Get());
    EXPECT_EQ(SrAddPurposedLayer(image.Get(), kOther, nullptr), layer.Get());
    EXPECT_EQ(image->GetLayerCount(), 1);
}

TEST(ImageLayers, AddPurposed_MakesOneOfTheClassAndHoldsTheOnlyReference) {
    Spooling const off(false);
    using Gray = SmImagerLayer<StGray8Pixel, ScImagerNonSpool>;
    auto const image = NewImage();
    image->AddLayer(NewColor({3, 5}).Get());
    SmImagerFrame* const layer = SrAddPurposedLayer(image.Get(), kOther, Gray::Class());
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->GetClass(), Gray::Class());
    EXPECT_EQ(layer->GetSize(), (StPoint{3, 5}));
    EXPECT_EQ(layer->GetPurpose(), kOther);
    EXPECT_EQ(layer->ReferenceCount(), 1);
    EXPECT_EQ(image->GetLayer(1), layer);
    EXPECT_FALSE(layer->GetSaveIntent());
}

TEST(ImageLayers, AddPurposed_SpoolsAsThePreferenceSays) {
    Spooling const on(true);
    auto const image = NewImage();
    image->SetSize({3, 5});
    SmImagerFrame* const layer =
        SrAddPurposedLayer(image.Get(), kView, SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>::Class());
    EXPECT_EQ(layer->GetClass(), (SmImagerLayer<StRGBA32Pixel, ScImagerSpool>::Class()));
    EXPECT_EQ(image->GetColorLayer(), layer);
}

TEST(ImageLayers, AddPurposed_RefusesAClassWithoutAPrototype) {
    auto const image = NewImage();
    for (ScMC_* cls : {SmImagerImage::Class(), static_cast<ScMC_*>(nullptr)}) {
        try {
            SrAddPurposedLayer(image.Get(), kOther, cls);
            FAIL();
        } catch (std::exception const& exception) {
            ScMessageClass* message = nullptr;
            EXPECT_LT(SrGetExceptionValues(exception, message), -32768);
            auto const* const strings = dynamic_cast<ScMessageBuzzStrings*>(message);
            ASSERT_NE(strings, nullptr);
            EXPECT_EQ(strings->List(), 20991);
            EXPECT_EQ(strings->Index(), 3);
            EXPECT_EQ(strings->Alert(), 191);
        }
    }
    EXPECT_EQ(image->GetLayerCount(), 0);
}

TEST(ImageLayers, AddPurposed_WithoutMemoryAddsNothing) {
    auto const image = NewImage();
    NoMemory const none;
    EXPECT_EQ(ThrownBy([&] {
                  SrAddPurposedLayer(image.Get(), kOther,
                                     SmImagerLayer<StGray8Pixel, ScImagerNonSpool>::Class());
              }),
              SkMemoryFull());
    EXPECT_EQ(image->GetLayerCount(), 0);
}

}  // namespace
