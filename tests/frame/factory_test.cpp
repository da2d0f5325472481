#include "framewright/frame/layer_factory.h"

#include "framewright/frame/frame_limit.h"
#include "framewright/spool/spool_preferences.h"
#include "framewright/thornmere/string_lists.h"
#include "kinds.h"

using namespace testing_frames;

namespace {

struct LayerRow {
    char const* id;
    int nameIndex;
};

// In the order of registration.
constexpr LayerRow kRows[] = {
    {"ColB", 1},  {"RG32", 2},  {"DepF", 5},  {"RG64", 9},  {"Gry8", 14}, {"Gry4", 16},
    {"Gry2", 17}, {"Alp8", 3},  {"Al32", 10}, {"BnW1", 11}, {"RG24", 4},  {"CMYK", 15},
    {"Dep8", 21}, {"De16", 22}, {"De24", 23}, {"De32", 24},
};

unsigned long Code(char const* text) {
    unsigned long code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

std::string ListEntry(short list, long index) {
    ScHeapString text;
    SrGetIndexedString(text, list, index);
    return text.AsCString();
}

TEST(Registries, HoldAPrototypeAndANameForEachLayer) {
    for (LayerRow const& row : kRows) {
        FrameRef const frame = FrameRef::Adopt(SrMakeLayerWithSpooling({2, 3}, Code(row.id), false, false));
        ASSERT_TRUE(frame) << row.id;
        SmImagerFrame* prototype = nullptr;
        ASSERT_TRUE(ScLayerRegistry::GetObjectByID(frame->GetClass(), false, prototype)) << row.id;
        EXPECT_EQ(prototype->GetClass(), frame->GetClass());
        EXPECT_EQ(prototype->GetSize(), (StPoint{1, 1}));
        EXPECT_EQ(prototype->GetTopLeft(), (StPoint{0, 0}));
        EXPECT_EQ(prototype->ReferenceCount(), 1) << "the registry's";
        EXPECT_STREQ(prototype->GetClassName(), "SmImagerLayer<class template>");
        char const* name = nullptr;
        ASSERT_TRUE(ScLayerNameRegistry::GetObjectByID(Code(row.id), false, name)) << row.id;
        EXPECT_EQ(name, ListEntry(20912, row.nameIndex));
        EXPECT_STRNE(name, "") << row.id;
    }
}

TEST(Registries, NamesDifferFromEachOther) {
    std::vector<std::string> names;
    for (LayerRow const& row : kRows)
        names.push_back(ScLayerNameRegistry::GetObjectByID(Code(row.id), false));
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

TEST(Registries, LookUpByClass) {
    auto* const cls = PlainLayer<StRGBA32Pixel>::Class();
    SmImagerFrame* shared = nullptr;
    SmImagerFrame* clone = nullptr;
    ASSERT_TRUE(ScLayerRegistry::GetObjectByID(cls, false, shared));
    ASSERT_TRUE(ScLayerRegistry::GetObjectByID(cls, true, clone));
    EXPECT_NE(shared, clone);
    EXPECT_EQ(clone->ReferenceCount(), 1);
    clone->ReleaseReference();
    EXPECT_EQ(ScLayerRegistry::GetObjectByID(cls, true), shared) << "this form never clones";
    EXPECT_EQ(ThrownBy([] { ScLayerRegistry::GetObjectByID(PlainLayer<StColorFloats>::Class(), false); }),
              SkSymbolNotFoundErrC());
}

TEST(Registries, WalkByIndex) {
    ScLayerRegistry* const layers = SrGetLayerRegistry();
    ASSERT_TRUE(layers);
    std::vector<SmImagerFrame*> seen;
    while (SmImagerFrame* const frame = layers->GetObjectByIndex(static_cast<int>(seen.size())))
        seen.push_back(frame);
    EXPECT_GE(seen.size(), std::size(kRows));
    EXPECT_EQ(layers->GetObjectByIndex(-1), nullptr);
    EXPECT_EQ(layers->GetObjectByIndex(static_cast<int>(seen.size())), nullptr);

    unsigned long id = 0, last = 0;
    char const* name = nullptr;
    int count = 0;
    for (; ScLayerNameRegistry::GetObjectByIndex(count, id, name); ++count) {
        EXPECT_GT(id, last) << "in the order of the keys";
        last = id;
    }
    EXPECT_EQ(static_cast<std::size_t>(count), seen.size());
    EXPECT_FALSE(ScLayerNameRegistry::GetObjectByIndex(-1, id, name));
    EXPECT_FALSE(ScLayerNameRegistry::GetObjectByIndex(count, id, name));
    EXPECT_EQ(name, nullptr);
}

struct PurposeRow {
    char const* code;
    unsigned value;
    int nameIndex;
};

constexpr PurposeRow kPurposes[] = {
    {"VIEW", 0x56494557, 2}, {"DEPT", 0x44455054, 3}, {"TEXP", 0x54455850, 4}, {"ILLU", 0x494C4C55, 5},
    {"VELO", 0x56454C4F, 6}, {"OBIN", 0x4F42494E, 7}, {"????", 0x3F3F3F3F, 1},
};

TEST(Registries, HoldThePurposes) {
    for (PurposeRow const& row : kPurposes) {
        EXPECT_EQ(Code(row.code), row.value);
        char const* name = nullptr;
        ASSERT_TRUE(ScLayerPurposeRegistry::GetObjectByID(static_cast<long>(row.value), false, name))
            << row.code;
        EXPECT_EQ(name, ListEntry(20913, row.nameIndex));
    }
    EXPECT_TRUE(SrGetLayerPurposeRegistry());
    EXPECT_TRUE(SrGetLayerNameRegistry());
}

TEST(Registries, GoAndComeBack) {
    // A purpose that another module entered first keeps its name.
    SrInitializeLayerRegistries(true);
    for (LayerRow const& row : kRows) {
        EXPECT_EQ(SrMakeLayerWithSpooling({1, 1}, Code(row.id), false, false), nullptr) << row.id;
        char const* name = nullptr;
        EXPECT_FALSE(ScLayerNameRegistry::GetObjectByID(Code(row.id), false, name)) << row.id;
    }
    for (PurposeRow const& row : kPurposes) {
        char const* name = nullptr;
        EXPECT_FALSE(ScLayerPurposeRegistry::GetObjectByID(static_cast<long>(row.value), false, name))
            << row.code;
    }
    SrInitializeLayerRegistries(true);  // what is not there is no error
    ScLayerPurposeRegistry::RegisterObject(0x56494557, "mine");
    SrInitializeLayerRegistries(false);
    EXPECT_STREQ(ScLayerPurposeRegistry::GetObjectByID(0x56494557, false), "mine");
    for (LayerRow const& row : kRows) {
        FrameRef const frame = FrameRef::Adopt(SrMakeLayerWithSpooling({1, 1}, Code(row.id), false, false));
        EXPECT_TRUE(frame) << row.id;
    }
    SrInitializeLayerRegistries(true);
    SrInitializeLayerRegistries(false);
    EXPECT_STRNE(ScLayerPurposeRegistry::GetObjectByID(0x56494557, false), "mine");
}

TEST(Registries, SetUpThatMemoryRefuses_CanBeTakenBack) {
    for (int allowed = 0;; ++allowed) {
        SrInitializeLayerRegistries(true);
        static int left;
        left = allowed;
        SrSetAllocationGate([](std::size_t) { return left-- > 0; });
        long const code = ThrownBy([] { SrInitializeLayerRegistries(false); });
        SrSetAllocationGate(nullptr);
        if (code == 0) break;
        ASSERT_EQ(code, -108) << "after " << allowed;
        ASSERT_LT(allowed, 10000);
    }
}

// The makers.

TEST(Factory, MakesWhatIsAsked) {
    for (LayerRow const& row : kRows)
        for (bool const spool : {false, true})
            for (bool const native : {false, true}) {
                FrameRef const frame = FrameRef::Adopt(SrMakeFrame({66, 70}, Code(row.id), spool, native));
                ASSERT_TRUE(frame);
                EXPECT_EQ(frame->PixelID(), Code(row.id));
                EXPECT_EQ(frame->GetSize(), (StPoint{66, 70}));
                EXPECT_EQ(frame->ReferenceCount(), 1);
                FillRandom(*frame, KindOfID(Code(row.id)), 1);
            }
}

TEST(Factory, UnknownTypesGiveNull) {
    for (char const* id : {"RGFL", "ColW", "CoFl", "????", "colb", "HSLA"}) {
        EXPECT_EQ(SrMakeFrame({4, 4}, Code(id), true, false), nullptr) << id;
        EXPECT_EQ(SrMakeFrameWithSpooling({4, 4}, Code(id), false), nullptr) << id;
        EXPECT_EQ(SrMakeLayerWithSpooling({4, 4}, Code(id), true, false), nullptr) << id;
    }
}

TEST(Factory, FromType_AllThreeMustMatch) {
    StPoint const size{3, 4};
    FrameRef const frame =
        FrameRef::Adopt(SrImagerLayerFromType(SrCode("Gry4"), SrCode("ColF"), 4, size, false, false));
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->PixelID(), SrCode("Gry4"));
    EXPECT_EQ(frame->GetSize(), size);
    EXPECT_EQ(SrImagerLayerFromType(SrCode("Gry4"), SrCode("ColF"), 8, size, false, false), nullptr);
    EXPECT_EQ(SrImagerLayerFromType(SrCode("Gry4"), SrCode("AlpF"), 4, size, false, false), nullptr);
    EXPECT_EQ(SrImagerLayerFromType(SrCode("Gry9"), SrCode("ColF"), 4, size, false, false), nullptr);
}

TEST(Factory, RefusedMemoryAndAbsurdSizesThrow) {
    EXPECT_EQ(ThrownBy([] { SrMakeFrame({-1, 4}, SrCode("ColB"), false, false); }), -108);
    EXPECT_EQ(ThrownBy([] { SrMakeFrame({1 << 20, 1 << 20}, SrCode("ColB"), true, false); }), -108);
    EXPECT_EQ(ThrownBy([] { SrMakeFrameWithSpooling({4, INT32_MIN}, SrCode("ColB"), false); }), -108);
    SrSetAllocationGate([](std::size_t size) { return size < 4096; });
    EXPECT_EQ(ThrownBy([] { SrMakeFrame({64, 64}, SrCode("ColB"), false, true); }), -108);
    SrSetAllocationGate(nullptr);
}

/// A prototype that records how it was asked.
class Asked : public PlainLayer<StColorFloats> {
  public:
    StPoint size{};
    bool spooled = false;
    bool native = false;
    int calls = 0;
    SmImagerFrame* CloneAtNewSize(StPoint const& newSize, bool spool, bool nativeBitmap) override {
        size = newSize;
        spooled = spool;
        native = nativeBitmap;
        ++calls;
        return nullptr;
    }
};

class Thresholds : public testing::Test {
  protected:
    void SetUp() override {
        mAsked = StRef<Asked>::Adopt(new Asked);
        mAsked->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
        ScLayerRegistry::RegisterObject(PlainLayer<StColorFloats>::Class(), mAsked.Get());
    }
    void TearDown() override {
        ScLayerRegistry::UnRegisterObject(PlainLayer<StColorFloats>::Class());
        SrSetImageSpoolingState(false);
    }
    StRef<Asked> mAsked;
};

struct ThresholdRow {
    StPoint size;
    bool big;
};

constexpr ThresholdRow kThresholds[] = {
    {{64, 64}, false},   {{64, 65}, false},   {{65, 64}, false}, {{65, 65}, true},
    {{64, 1000}, false}, {{1000, 64}, false}, {{10, 10}, false}, {{1000, 1000}, true},
};

TEST_F(Thresholds, SpooledOnlyWhenBigAndAsked) {
    for (ThresholdRow const& row : kThresholds)
        for (bool const spool : {false, true}) {
            SrMakeFrame(row.size, SrCode("CoFl"), spool, true);
            EXPECT_EQ(mAsked->size, row.size);
            EXPECT_EQ(mAsked->spooled, row.big && spool);
            EXPECT_TRUE(mAsked->native);
        }
}

TEST_F(Thresholds, ThePreferenceDecidesForBigFrames) {
    for (bool const state : {false, true}) {
        SrSetImageSpoolingState(state);
        for (ThresholdRow const& row : kThresholds) {
            SrMakeFrameWithSpooling(row.size, SrCode("CoFl"), false);
            EXPECT_EQ(mAsked->spooled, row.big && state);
            EXPECT_FALSE(mAsked->native);
        }
    }
}

TEST_F(Thresholds, SpooledAsTold_WhateverTheSize) {
    SrMakeLayerWithSpooling({2, 2}, SrCode("CoFl"), true, false);
    EXPECT_TRUE(mAsked->spooled);
    SrImagerLayerFromType(SrCode("CoFl"), SrCode("ColF"), 96, {2, 2}, true, false);
    EXPECT_TRUE(mAsked->spooled);
    EXPECT_EQ(mAsked->calls, 2);
}

}  // namespace
