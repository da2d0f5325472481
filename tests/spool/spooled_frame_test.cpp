// Frames on spooled rows: which frames are, what a layer makes of its spooler, and what failing files do.
#include <sys/resource.h>

#include "../frame/kinds.h"
#include "framewright/frame/frame_limit.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/pixel/dithered_layer.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/spool/spool_preferences.h"
#include "spool_test_support.h"

using namespace testing_frames;
using namespace testing_spool;

namespace {

class SpooledFrame : public Spooling {
  protected:
    ~SpooledFrame() override { SrSetImageSpoolingState(false); }

    using Layer = SmImagerLayer<StRGBA32Pixel, ScImagerSpool>;

    static StRef<Layer> NewLayer(StPoint const& size) {
        auto layer = StRef<Layer>::Adopt(Layer::New());
        layer->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
        return layer;
    }
    /// A spooled frame of 70 by 70 whose pixels tell where they are; 280 bytes a row.
    static StRef<Layer> Filled(unsigned seed) {
        auto layer = NewLayer({70, 70});
        Fill(*layer, seed);
        return layer;
    }
    static StRGBA32Pixel Color(long x, long y, unsigned seed) {
        return {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), static_cast<std::uint8_t>(x * y),
                static_cast<std::uint8_t>(seed)};
    }
    static void Fill(SmImagerFrame& frame, unsigned seed) {
        for (long y = 0; y < frame.GetSize().vertical; ++y) {
            ++gTick;
            frame.LockRow(y);
            for (long x = 0; x < frame.GetSize().horizontal; ++x)
                frame.PutPixelAt(x, y, Color(x, y, seed));
            frame.UnlockRow(y);
        }
    }
    static testing::AssertionResult IsFilled(SmImagerFrame& frame, unsigned seed) {
        for (long y = 0; y < frame.GetSize().vertical; ++y)
            for (long x = 0; x < frame.GetSize().horizontal; ++x)
                if (!(frame.GetRGBAPixelAt(x, y) == Color(x, y, seed)))
                    return testing::AssertionFailure() << "other pixel at (" << x << ", " << y << ")";
        return testing::AssertionSuccess();
    }
    static constexpr unsigned kAll = 1u << 30;
    void EvictAll() {
        while (Manager().UseLessMemory(kAll) != 0) {
        }
    }
};

bool IsSpooled(SmImagerFrame& frame) {
    unsigned int const before = SrGetGlobalSpoolManager()->MemoryInUse();
    frame.LockRow(0);
    frame.UnlockRow(0);
    return SrGetGlobalSpoolManager()->MemoryInUse() != before;
}

// --- the choice of storage

/// Notes the ranges of rows that are locked, and may refuse.
class LockWatcher : public SmImagerLayer<StRGBA32Pixel, ScImagerSpool> {
  public:
    explicit LockWatcher(StPoint const& size) { IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr); }
    bool LockRows(long first, long last) override {
        ranges.push_back({first, last});
        return !refuses && SmImagerLayer::LockRows(first, last);
    }
    void UnlockRows(long first, long last) override {
        ranges.push_back({-first, -last});
        SmImagerLayer::UnlockRows(first, last);
    }
    std::vector<std::pair<long, long>> ranges;
    bool refuses = false;
};

TEST_F(SpooledFrame, ABlitHoldsItsRows_ByTheLayersOwnOperations) {
    using Ranges = std::vector<std::pair<long, long>>;
    AddFile();
    auto const source = Filled(1);
    auto const layer = StRef<LockWatcher>::Adopt(new LockWatcher({70, 70}));
    ++gTick;
    layer->BlitRect(source.Get(), {0, 0, 5, 70}, {3, 0});
    EXPECT_EQ(layer->ranges, (Ranges{{3, 7}, {-3, -7}}));
    // Refused, each row is held while it is written, and no lock is given back that was never taken.
    layer->ranges.clear();
    layer->refuses = true;
    layer->BlitRect(source.Get(), {0, 0, 70, 70}, {0, 0});
    EXPECT_EQ(layer->ranges, (Ranges{{0, 69}}));
    EXPECT_TRUE(IsFilled(*layer, 1));
    EvictAll();
    EXPECT_EQ(Manager().MemoryInUse(), 0u) << "a row is still locked";
    EXPECT_TRUE(IsFilled(*layer, 1));
}

TEST_F(SpooledFrame, BigFramesSpoolWhereAsked) {
    struct {
        StPoint size;
        bool big;
    } const rows[] = {{{64, 1000}, false}, {{1000, 64}, false}, {{64, 65}, false}, {{65, 65}, true}};
    for (auto const& row : rows) {
        for (bool const spool : {false, true}) {
            auto const frame = FrameRef::Adopt(SrMakeFrame(row.size, SrCode("ColB"), spool, false));
            EXPECT_EQ(IsSpooled(*frame), row.big && spool);
        }
        for (bool const state : {false, true}) {
            SrSetImageSpoolingState(state);
            auto const frame = FrameRef::Adopt(SrMakeFrameWithSpooling(row.size, SrCode("ColB"), false));
            EXPECT_EQ(IsSpooled(*frame), row.big && state);
        }
        for (bool const spool : {false, true}) {
            auto const frame =
                FrameRef::Adopt(SrMakeLayerWithSpooling(row.size, SrCode("ColB"), spool, false));
            EXPECT_EQ(IsSpooled(*frame), spool);
            auto const described = FrameRef::Adopt(
                SrImagerLayerFromType(SrCode("ColB"), SrCode("ColF"), 32, row.size, spool, false));
            EXPECT_EQ(IsSpooled(*described), spool);
        }
    }
}

TEST_F(SpooledFrame, AreOfTheirOwnClasses) {
    auto const classOf = [](char const(&id)[5]) {
        auto const frame = FrameRef::Adopt(SrMakeLayerWithSpooling({2, 2}, SrCode(id), true, false));
        return frame->GetClass();
    };
    EXPECT_EQ(classOf("ColB"), Layer::Class());
    EXPECT_NE(Layer::Class(), (SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>::Class()));
    EXPECT_STREQ(Layer::ClassName(), "SmImagerLayer<class template>");
    EXPECT_EQ(classOf("RG15"), (SmImagerDitheredLayer<StRGB15Pixel, ScImagerSpool>::Class()));
    EXPECT_EQ(classOf("Map8"), (SmImagerMappedLayer<StMapped8Pixel, ScImagerSpool>::Class()));
    EXPECT_EQ(classOf("Map1"), (SmImagerMappedLayer<StMapped1Pixel, ScImagerSpool>::Class()));
    EXPECT_EQ(classOf("De24"), (SmImagerLayer<StDepthUInt24Pixel, ScImagerSpool>::Class()));
}

class SpooledKind : public testing::TestWithParam<StKind> {};

TEST_P(SpooledKind, ClonesToBothStorages) {
    for (bool const registered : {false, true}) {
        auto prototype = GetParam().make({1, 1});
        if (registered) {
            auto* const made = SrMakeLayerWithSpooling({1, 1}, GetParam().id, false, false);
            if (!made) return;
            prototype = FrameRef::Adopt(made);
        }
        auto const spooled = FrameRef::Adopt(prototype->CloneAtNewSize({5, 9}, true, true));
        EXPECT_EQ(spooled->PixelID(), GetParam().id);
        EXPECT_EQ(spooled->GetSize(), (StPoint{5, 9}));
        EXPECT_FALSE(spooled->IsContiguous());
        EXPECT_EQ(spooled->GetNativeImageContext(), nullptr);
        EXPECT_TRUE(IsSpooled(*spooled));
        auto const again = FrameRef::Adopt(spooled->CloneAtNewSize({5, 9}, true, false));
        EXPECT_EQ(again->GetClass(), spooled->GetClass());
        auto const plain = FrameRef::Adopt(spooled->CloneAtNewSize({5, 9}, false, false));
        EXPECT_EQ(plain->GetClass(), prototype->GetClass());
    }
}

INSTANTIATE_TEST_SUITE_P(Layers, SpooledKind, testing::ValuesIn(Kinds()), NameOf);

TEST_F(SpooledFrame, MirrorsInMemory_ExceptMappedOnes) {
    auto const layer = Filled(3);
    auto const mirror = FrameRef::Adopt(layer->MirrorLayer());
    EXPECT_EQ(mirror->GetClass(), (SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>::Class()));
    EXPECT_TRUE(IsFilled(*mirror, 3));
    auto const mapped = FrameRef::Adopt(SrMakeLayerWithSpooling({2, 2}, SrCode("Map4"), true, false));
    mapped->Erase();
    EXPECT_EQ(FrameRef::Adopt(mapped->MirrorLayer())->GetClass(), mapped->GetClass());
}

TEST_F(SpooledFrame, AMappedOne_DoesNotCountAsColorMapped) {
    auto const mapped = FrameRef::Adopt(SrMakeLayerWithSpooling({2, 2}, SrCode("Map8"), true, false));
    EXPECT_FALSE(SrIsColorMappedFrame(mapped.Get()));
    EXPECT_EQ(SrGetColorMapFromFrame(mapped.Get()), nullptr);
}

// --- the layer and its spooler

TEST_F(SpooledFrame, CopiesAreWhole) {
    AddFile();
    auto const layer = Filled(9);
    EvictAll();
    auto const clone = StRef<Layer>::Adopt(layer->Clone());
    EXPECT_TRUE(IsFilled(*clone, 9));
    auto const other = Filled(4);
    EvictAll();
    other->ImplementBecome(layer.Get());
    EvictAll();
    EXPECT_TRUE(IsFilled(*other, 9));
    EXPECT_TRUE(IsFilled(*layer, 9));
}

TEST_F(SpooledFrame, AFailedBecome_LeavesTheFrameAsItWas) {
    AddFile();
    auto const layer = Filled(9);
    auto const other = Filled(4);
    EvictAll();
    ASSERT_EQ(truncate((Folder() / Files()[0]).c_str(), 4 + 280 * 30), 0);
    // Some of the rows that are to be copied are gone; those of the other frame lie before them.
    EXPECT_EQ(CaughtCode([&] { layer->ImplementBecome(other.Get()); }), -39);
    EXPECT_EQ(layer->ReferenceCount(), 1);
    EXPECT_EQ(layer->GetSize(), (StPoint{70, 70}));
}

TEST_F(SpooledFrame, ABaseIsLent) {
    AddFile();
    auto const layer = NewLayer({3, 4});
    std::vector<std::uint8_t> block(3 * 16);
    layer->ResetBaseAddress(block.data());
    layer->PutPixelAt(1, 2, StRGBA32Pixel{1, 2, 3, 4});
    EXPECT_EQ(block[2 * 16 + 4], 1);
    EXPECT_EQ(layer->GetRow(1), block.data() + 16);
    EXPECT_EQ(Manager().UseLessMemory(kAll), 0u);
    layer->Resize({5, 5}, StImageInterpolationMethod::kNone);
    EXPECT_NE(layer->GetRow(0), block.data());
}

TEST_F(SpooledFrame, MoveFrameEmptiesEveryRow) {
    auto const layer = Filled(3);
    EXPECT_NE(Manager().MemoryInUse(), 0u);
    layer->MoveFrame(StRect{7, 8, 77, 78});
    EXPECT_EQ(layer->GetTopLeft(), (StPoint{7, 8}));
    EXPECT_EQ(layer->GetSize(), (StPoint{70, 70}));
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
    EXPECT_NE(layer->GetRow(0), nullptr) << "and it gets memory again when it is touched";
}

TEST_F(SpooledFrame, ATableOverTheLimitIsRefused) {
    // A table entry takes more here than it does in memory.
    std::uint64_t const limit = SrGetFrameSizeLimit();
    SrSetFrameSizeLimit(1000 * sizeof(StSpoolRow));
    EXPECT_EQ(CaughtCode([] { NewLayer({1001, 0}); }), -108);
    EXPECT_EQ(NewLayer({1000, 0})->GetSize(), (StPoint{1000, 0}));
    SrSetFrameSizeLimit(limit);
}

TEST_F(SpooledFrame, AParentIsKeptInOneBlock) {
    AddFile();
    auto const parent = Filled(3);
    {
        auto child = StRef<SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>>::Adopt(
            SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>::New());
        parent->ForceContiguous();
        child->IImagerLayer({0, 0}, {70, 70}, false, parent->GetRow(0), 280, parent.Get());
        parent->ReleaseContiguous();
        EXPECT_EQ(Manager().UseLessMemory(kAll), 0u);
        EXPECT_TRUE(IsFilled(*child, 3));
    }
    EXPECT_FALSE(parent->IsContiguous());
    EXPECT_EQ(Manager().UseLessMemory(1), 70u * 280);
    EXPECT_TRUE(IsFilled(*parent, 3));
}

TEST_F(SpooledFrame, ResizedOffAFirstClassThread) {
    AddFile();
    auto const layer = Filled(3);
    EvictAll();
    OnOtherThread([&] {
        EXPECT_EQ(CaughtCode([&] { layer->Resize({1, 1}, StImageInterpolationMethod::kNone); }), -29299);
    });
    layer->Resize({70, 70}, StImageInterpolationMethod::kNone);
    Fill(*layer, 5);
    EXPECT_TRUE(IsFilled(*layer, 5));
}

TEST_F(SpooledFrame, ReleasedOffAFirstClassThread_NothingHappens) {
    AddFile();
    auto layer = Filled(3);
    EvictAll();
    OnOtherThread([&] { layer = StRef<Layer>(); });
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
}

// --- a cap, and frames that touch each other

/// The gate allows this many bytes of rows of 280 bytes.
unsigned gCap = 0;
void CapRows(unsigned rows) {
    gCap = rows * 280;
    SrSetAllocationGate([](std::size_t size) {
        return size != 280 || SrGetGlobalSpoolManager()->MemoryInUse() + size <= gCap;
    });
}

TEST_F(SpooledFrame, OneRowOfMemoryIsEnoughForAFrame) {
    AddFile();
    CapRows(1);
    auto const layer = Filled(3);
    EXPECT_TRUE(IsFilled(*layer, 3));
    layer->Invert();
    layer->Invert();
    layer->Flip(false, true);
    layer->Flip(true, true);
    layer->Flip(true, false);
    EXPECT_TRUE(IsFilled(*layer, 3));
    EXPECT_LE(Manager().MemoryInUse(), 280u);
}

TEST_F(SpooledFrame, RowsThatAreWorkedOnTogetherStay) {
    AddFile();
    auto const other = Filled(8);
    auto const layer = Filled(3);
    EvictAll();
    // Within one frame the row that is written must outlive the loading of the row that is read.
    CapRows(2);
    layer->BlitRect(layer.Get(), {10, 0, 70, 70}, {0, 0});
    for (long y = 0; y < 60; ++y)
        for (long x = 0; x < 70; ++x)
            ASSERT_EQ(layer->GetRGBAPixelAt(x, y), Color(x, y + 10, 3)) << x << ", " << y;
    layer->StretchBlitFast(layer.Get(), {0, 0, 70, 70}, {0, 0, 70, 70});
    layer->MergeRect(layer.Get(), {0, 0, 70, 70}, {0, 0});
    CapRows(3);
    layer->StretchBlit(layer.Get(), {0, 0, 70, 70}, {0, 0, 70, 70});
    // Between two frames, each larger than what there is.
    EvictAll();
    CapRows(8);
    layer->BlitRect(other.Get(), {0, 0, 70, 70}, {0, 0});
    EXPECT_TRUE(IsFilled(*layer, 8));
    EXPECT_LE(Manager().MemoryInUse(), 8 * 280u);
    EvictAll();  // of two frames of one age only the first
    ++gTick;
    layer->LockRow(0);
    layer->UnlockRow(0);
    EvictAll();
    EXPECT_EQ(Manager().MemoryInUse(), 0u) << "no lock was left";
}

// --- failing files

/// Limits the size that files may have, for as long as it lives.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &mBefore);
        rlimit const limit{bytes, mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &mBefore); }

  private:
    rlimit mBefore;
};

TEST_F(SpooledFrame, AFullDisk_IsMinus34_AndNothingIsLost) {
    AddFile();
    auto const a = Filled(1);
    auto const b = Filled(2);
    {
        FileSizeLimit const limit(4 + 280 * 20 + 100);  // a row that fits in part
        EvictAll();
        EXPECT_EQ(Manager().MemoryInUse(), 280u * (140 - 20));
        CapRows(120);
        auto const c = NewLayer({70, 70});
        EXPECT_EQ(CaughtCode([&] { c->GetRow(0); }), -108) << "it has nothing of its own to evict";
        CapRows(121);
        EXPECT_NE(c->GetRow(0), nullptr);
        EXPECT_EQ(CaughtCode([&] { c->GetRow(1); }), -34);
        EXPECT_EQ(CaughtCode([&] { c->LockRow(1); }), -34);
        c->UnlockRow(1);
        EXPECT_FALSE(c->LockRows(1, 2));
        c->UnlockRow(1);
        SrSetAllocationGate(nullptr);
        EXPECT_TRUE(IsFilled(*a, 1));
        EXPECT_TRUE(IsFilled(*b, 2));
        Fill(*c, 3);
        EXPECT_TRUE(IsFilled(*c, 3));
    }
    EvictAll();
    EXPECT_TRUE(IsFilled(*a, 1));
    EXPECT_TRUE(IsFilled(*b, 2));
}

TEST_F(SpooledFrame, AFullDisk_FreePlacesStillServe) {
    AddFile();
    auto const a = Filled(1);
    EvictAll();
    FileSizeLimit const limit(4 + 280 * 70);
    auto const b = Filled(2);
    EXPECT_TRUE(IsFilled(*a, 1));  // all places are free now
    EvictAll();
    EXPECT_EQ(Manager().MemoryInUse(), 280u * 70);
    EXPECT_TRUE(IsFilled(*a, 1));
    EXPECT_TRUE(IsFilled(*b, 2));
}

TEST_F(SpooledFrame, ASpoolFileThatIsDeleted_ServesOn) {
    AddFile();
    auto const a = Filled(1);
    EvictAll();
    std::filesystem::remove(Folder() / Files()[0]);
    EXPECT_TRUE(IsFilled(*a, 1)) << "an open file outlives its name";
    EvictAll();
    EXPECT_TRUE(IsFilled(*a, 1));
}

TEST_F(SpooledFrame, ASpoolFileThatIsCutOff_IsMinus39_AndOtherFramesLiveOn) {
    AddFile();
    auto const kept = Filled(1);
    for (int i = 0; i < 70; ++i)
        ASSERT_NE(Manager().UseLessMemory(1), 0u);
    auto const lost = Filled(2);
    EvictAll();
    std::string const path = Folder() / Files()[0];
    ASSERT_EQ(truncate(path.c_str(), 4 + 280 * 70), 0);
    EXPECT_EQ(CaughtCode([&] { lost->GetRow(5); }), -39);
    EXPECT_EQ(CaughtCode([&] { lost->Invert(); }), -39);
    EXPECT_EQ(CaughtCode([&] { lost->ForceContiguous(); }), -39);
    EXPECT_EQ(CaughtCode([&] { NewLayer({70, 70})->BlitRect(lost.Get(), {0, 0, 70, 70}, {0, 0}); }), -39);
    EXPECT_EQ(CaughtCode([&] {
                  NewLayer({70, 70})->StretchBlit(lost.Get(), {0, 0, 70, 70}, {0, 0, 9, 9});
              }),
              -39);
    EXPECT_TRUE(IsFilled(*kept, 1));
    OnOtherThread([&] {
        StFirstClassThread const firstClass;
        EXPECT_TRUE(IsFilled(*kept, 1)) << "all locks are free";
        EXPECT_NE(Manager().UseLessMemory(1), 0u);
    });
    lost->Resize({70, 71}, StImageInterpolationMethod::kNone);
    Fill(*lost, 5);
    EvictAll();
    EXPECT_TRUE(IsFilled(*lost, 5));
    EXPECT_TRUE(IsFilled(*kept, 1));
}

}  // namespace
