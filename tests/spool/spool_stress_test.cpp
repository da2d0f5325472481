// Many spooled frames of all pixel types under a cap on memory, drawn into at random, beside frames in memory
// that get the same drawing: nothing may tell them apart. Seeded, so a failure comes again.
#include <algorithm>
#include <memory>
#include <random>

#include "../frame/kinds.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/thornmere/stream.h"
#include "spool_test_support.h"

using namespace testing_frames;
using namespace testing_spool;

namespace {

constexpr int kFrames = 32;
#if defined(__SANITIZE_THREAD__)
constexpr int kSteps = 200;  // one thread, of which that sanitizer makes a long story
#else
constexpr int kSteps = 2000;
#endif
constexpr unsigned int kCap = 24 * 1024;
/// What an operation may need at once beside the rows that its frames have already.
constexpr unsigned int kHeadroom = 10 * 1024;

/// The widths that frames have; so the gate can tell rows from all else.
constexpr std::int32_t kWidths[] = {61, 67, 83};

std::vector<std::size_t> gRowSizes;

bool AllowCapped(std::size_t size) {
    bool const isRow = std::binary_search(gRowSizes.begin(), gRowSizes.end(), size);
    return !isRow || SrGetGlobalSpoolManager()->MemoryInUse() + size <= kCap;
}

/// A spooled frame and its model.
struct StPair {
    StKind const* kind = nullptr;
    bool registered = false;  ///< made by the factory: dithered or mapped where that has its own class
    FrameRef spooled, model;
};

class SpoolStress : public Spooling {
  protected:
    SpoolStress() {
        for (StKind const& kind : Kinds()) {
            for (std::int32_t width : kWidths)
                gRowSizes.push_back(static_cast<std::size_t>((width * kind.bits + 31) / 32 * 4));
        }
        std::sort(gRowSizes.begin(), gRowSizes.end());
    }

    long Below(long end) { return static_cast<long>(mRandom() % static_cast<unsigned long>(end)); }
    bool Chance(int percent) { return Below(100) < percent; }

    StPoint AnySize() {
        return {static_cast<std::int32_t>(20 + Below(50)), kWidths[Below(std::size(kWidths))]};
    }
    StRect RectIn(StPoint const& size) {
        auto const top = static_cast<std::int32_t>(Below(size.vertical));
        auto const left = static_cast<std::int32_t>(Below(size.horizontal));
        return {top, left, static_cast<std::int32_t>(top + 1 + Below(size.vertical - top)),
                static_cast<std::int32_t>(left + 1 + Below(size.horizontal - left))};
    }
    StRGBA32Pixel AnyColor() {
        auto const byte = [this] { return static_cast<std::uint8_t>(mRandom()); };
        return {byte(), byte(), byte(), byte()};
    }

    void Make(StPair& pair, StKind const& kind) {
        pair.kind = &kind;
        StPoint const size = AnySize();
        FrameRef prototype = kind.make({1, 1});
        if (Chance(50)) {
            if (auto* const made = SrMakeLayerWithSpooling({1, 1}, kind.id, false, false))
                prototype = FrameRef::Adopt(made);
        }
        pair.spooled = FrameRef::Adopt(prototype->CloneAtNewSize(size, true, false));
        pair.model = FrameRef::Adopt(prototype->CloneAtNewSize(size, false, false));
        Erase(pair);
    }

    /// Runs `work` on both frames of a pair; the model's allocations are not capped.
    template <class Work>
    void Both(StPair& pair, Work const& work) {
        SrSetAllocationGate(nullptr);
        work(*pair.model, false);
        SrSetAllocationGate(AllowCapped);
        work(*pair.spooled, true);
        SrSetAllocationGate(nullptr);
    }
    void Erase(StPair& pair) {
        StRGBA32Pixel const color = AnyColor();
        Both(pair, [&](SmImagerFrame& frame, bool) {
            frame.SetBackground(color);
            frame.Erase();
        });
    }

    void MakeRoom() {
        for (int i = 0; i < 1000 && Manager().MemoryInUse() > kCap - kHeadroom; ++i) {
            ++gTick;
            if (Manager().UseLessMemory(kHeadroom) != 0) continue;
            // The oldest spooler has nothing that could go: make it younger.
            for (StPair& pair : mPairs) {
                pair.spooled->LockRow(0);
                pair.spooled->UnlockRow(0);
            }
        }
        ASSERT_LE(Manager().MemoryInUse(), kCap - kHeadroom);
    }

    void Draw(StPair& pair, StPair& source) {
        StPoint const size = pair.model->GetSize();
        StRect const rect = RectIn(size);
        StRect const from = RectIn(source.model->GetSize());
        StPoint const to{rect.top, rect.left};
        auto const sourceOf = [&](bool spooled) {
            return spooled ? source.spooled.Get() : source.model.Get();
        };
        switch (Below(16)) {
            case 0: {
                Native const native = RandomNative(*pair.kind, mRandom);
                Both(pair, [&](SmImagerFrame& frame, bool) { Put(frame, rect.left, rect.top, native); });
                break;
            }
            case 1: {
                StRGBA32Pixel const color = AnyColor();
                Both(pair, [&](SmImagerFrame& frame, bool) {
                    for (long y = rect.top; y < rect.bottom; ++y)
                        frame.PutPixelAt(rect.left, y, color);
                });
                break;
            }
            case 2: {
                Native const native = RandomNative(*pair.kind, mRandom);
                Both(pair, [&](SmImagerFrame& frame, bool) {
                    SmartRef const smart(frame.NewSmartPixel());
                    smart->SetPixelData(native.data());
                    frame.RectFill(rect, smart.get());
                });
                break;
            }
            case 3:
                Both(pair, [&](SmImagerFrame& frame, bool) { frame.Invert(); });
                break;
            case 4: {
                bool const across = Chance(50), down = Chance(50);
                Both(pair, [&](SmImagerFrame& frame, bool) { frame.Flip(across, down); });
                break;
            }
            case 5:
            case 6:
            case 7:
                Both(pair, [&](SmImagerFrame& frame, bool spooled) {
                    frame.BlitRect(sourceOf(spooled), from, to);
                });
                break;
            case 8: {
                // Nothing clips a merge.
                StRect const part{0, 0,
                                  std::min(rect.bottom - rect.top, source.model->GetSize().vertical) - 1,
                                  std::min(rect.right - rect.left, source.model->GetSize().horizontal) - 1};
                Both(pair, [&](SmImagerFrame& frame, bool spooled) {
                    frame.MergeRect(sourceOf(spooled), part, to);
                });
                break;
            }
            case 9:
                Both(pair, [&](SmImagerFrame& frame, bool spooled) {
                    frame.StretchBlit(sourceOf(spooled), from, rect);
                });
                break;
            case 10:
                Both(pair, [&](SmImagerFrame& frame, bool spooled) {
                    frame.StretchBlitFast(sourceOf(spooled), from, rect);
                });
                break;
            case 11: {
                // Rows under locks, as a host writes them.
                unsigned const seed = static_cast<unsigned>(mRandom());
                auto const bytes = static_cast<std::size_t>(size.horizontal * pair.kind->bits / 8);
                if (pair.kind->floats) break;  // any bytes would make any floats
                Both(pair, [&](SmImagerFrame& frame, bool) {
                    long const last = std::min<long>(rect.top + 2, rect.bottom - 1);
                    EXPECT_TRUE(frame.LockRows(rect.top, last));
                    for (long y = rect.top; y <= last; ++y)
                        std::memcpy(frame.GetRow(y), RowBytes(seed + static_cast<unsigned>(y), bytes).data(),
                                    bytes);
                    frame.UnlockRows(rect.top, last);
                });
                break;
            }
            case 12:
                pair.spooled->ForceContiguous();
                EXPECT_TRUE(pair.spooled->IsContiguous());
                pair.spooled->ReleaseContiguous();
                break;
            case 13: {
                StPoint const newSize = AnySize();
                Both(pair, [&](SmImagerFrame& frame, bool) {
                    frame.Resize(newSize, StImageInterpolationMethod::kNone);
                });
                Erase(pair);
                break;
            }
            case 14: {
                SrSetAllocationGate(AllowCapped);
                FrameRef const clone =
                    FrameRef::Adopt(static_cast<SmImagerFrame*>(pair.spooled->ImplementClone()));
                SrSetAllocationGate(nullptr);
                pair.spooled = clone;
                pair.model = FrameRef::Adopt(static_cast<SmImagerFrame*>(pair.model->ImplementClone()));
                break;
            }
            default: {
                if (pair.kind->family == SrCode("DepF")) break;  // integer depths read while they write
                auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
                stream->IMemoryStream();
                pair.spooled->WriteTo(stream.Get());
                stream->SetPosition(0);
                pair.model->ReadFrom(stream.Get());
                break;
            }
        }
    }

    std::mt19937 mRandom{20240607};
    std::vector<StPair> mPairs{kFrames};
};

TEST_F(SpoolStress, SpooledFramesAreTheFramesInMemory) {
    AddFile(400 * 1024);
    AddFile();
    for (int i = 0; i < kFrames; ++i) {
        ++gTick;
        MakeRoom();
        Make(mPairs[static_cast<std::size_t>(i)], Kinds()[static_cast<std::size_t>(i) % Kinds().size()]);
    }
    for (int step = 0; step < kSteps; ++step) {
        SCOPED_TRACE(step);
        ++gTick;
        MakeRoom();
        StPair& pair = mPairs[static_cast<std::size_t>(Below(kFrames))];
        // Half of the time from the same frame or one of its kind, for the raw roads.
        std::size_t const same = static_cast<std::size_t>(&pair - mPairs.data());
        std::size_t const other = Chance(50) ? (Chance(30) ? same : (same + Kinds().size()) % kFrames)
                                             : static_cast<std::size_t>(Below(kFrames));
        StPair& source = mPairs[other];
        Draw(pair, source);
        if (step % 20 == 0) {
            ASSERT_TRUE(Same(Shot(*pair.model), Shot(*pair.spooled))) << pair.kind->name;
        }
        if (Chance(2)) Make(pair, *pair.kind);
        if (testing::Test::HasFailure()) return;
    }
    for (StPair& pair : mPairs)
        EXPECT_TRUE(Same(Shot(*pair.model), Shot(*pair.spooled))) << pair.kind->name;
    mPairs.clear();
    EXPECT_EQ(Manager().MemoryInUse(), 0u);
}

}  // namespace
