// Every operation that holds rows gives each of them back, whichever of its locks or pixels fails.
#include <map>

#include "framewright/frame/row_lock.h"
#include "framewright/pixel/dithered_layer.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/thornmere/stream.h"
#include "kinds.h"

using namespace testing_frames;

namespace {

/// What is asked of the frames that share it.
struct StLocks {
    std::vector<std::string> log;
    std::map<std::string, int> held;
    int failing = -1;  ///< the lock that throws, counted from 0
    int asked = 0;

    void Lock(std::string const& row) {
        if (asked++ == failing) SrThrow(-39, nullptr);
        log.push_back("+" + row);
        ++held[row];
    }
    void Unlock(std::string const& row) {
        log.push_back("-" + row);
        --held[row];
    }
    bool NothingHeld() const {
        for (auto const& [row, count] : held)
            if (count != 0) return false;
        return true;
    }
};

template <class Layer>
class Counted : public Layer {
  public:
    Counted(StLocks& locks, std::string name) : mLocks(locks), mName(std::move(name)) {}

    long failingRow = -1;  ///< whose pixels cannot be read

    void* LockRow(long row) override {
        mLocks.Lock(mName + std::to_string(row));
        return Layer::LockRow(row);
    }
    void UnlockRow(long row) override {
        mLocks.Unlock(mName + std::to_string(row));
        Layer::UnlockRow(row);
    }
    using Layer::GetPixelAt;
    void GetPixelAt(long x, long y, StRGBA32Pixel& pixel) override {
        if (y == failingRow) SrThrow(-36, nullptr);
        Layer::GetPixelAt(x, y, pixel);
    }

  private:
    StLocks& mLocks;
    std::string mName;
};

using Gray = Counted<PlainLayer<StGray8Pixel>>;
using Color = Counted<PlainLayer<StRGBA32Pixel>>;
using Dithered = Counted<SmImagerDitheredLayer<StRGB15Pixel, ScImagerNonSpool>>;
using Mapped = Counted<SmImagerMappedLayer<StMapped8Pixel, ScImagerNonSpool>>;

template <class Layer>
StRef<Layer> MakeCounted(StLocks& locks, char const* name, StPoint const& size) {
    auto layer = StRef<Layer>::Adopt(new Layer(locks, name));
    if constexpr (requires { layer->IImagerMappedLayer({0, 0}, size, false, nullptr, 0); })
        layer->IImagerMappedLayer({0, 0}, size, false, nullptr, 0);
    else if constexpr (requires { layer->IImagerDitheredLayer({0, 0}, size, false, nullptr, 0); })
        layer->IImagerDitheredLayer({0, 0}, size, false, nullptr, 0);
    else
        layer->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
    layer->Erase();
    return layer;
}

/// Runs `work` with its first lock failing, then its second, until it needs no more. Returns how many it
/// took.
template <class Work>
int FailEachLock(StLocks& locks, Work const& work) {
    for (int failing = 0;; ++failing) {
        locks = {};
        locks.failing = failing;
        long const code = ThrownBy(work);
        EXPECT_TRUE(locks.NothingHeld()) << "after lock " << failing;
        if (code == 0) {
            EXPECT_EQ(locks.asked, failing);
            return failing;
        }
        EXPECT_EQ(code, -39);
        if (failing > 100) return -1;
    }
}

using Log = std::vector<std::string>;

TEST(RowLocks, AStretchHoldsTwoSourceRowsAndItsOwn) {
    StLocks locks;
    auto const source = MakeCounted<Gray>(locks, "source ", {2, 4}),
               layer = MakeCounted<Gray>(locks, "own ", {3, 4});
    auto const stretch = [&] { layer->StretchBlit(source.Get(), {0, 0, 2, 4}, {0, 0, 3, 4}); };
    locks = {};
    stretch();
    // Rows 0, 0.5 and 1 of the source; its last row has no other below it.
    EXPECT_EQ(locks.log, (Log{"+source 0", "+source 1", "+own 0", "-source 0", "-source 1", "-own 0",  //
                              "+source 0", "+source 1", "+own 1", "-source 0", "-source 1", "-own 1",  //
                              "+source 1", "+source 1", "+own 2", "-source 1", "-source 1", "-own 2"}));
    EXPECT_EQ(FailEachLock(locks, stretch), 9);
}

template <class Layer>
class RowLocksOf : public testing::Test {};
using ErrorDiffusing = testing::Types<Dithered, Mapped>;
TYPED_TEST_SUITE(RowLocksOf, ErrorDiffusing);

TYPED_TEST(RowLocksOf, ADitheredBlitHoldsOneRowAtATime) {
    StLocks locks, sourceLocks;
    auto const source = MakeCounted<Color>(sourceLocks, "source ", {3, 4});
    auto const layer = MakeCounted<TypeParam>(locks, "own ", {5, 4});
    auto const blit = [&] { layer->BlitRect(source.Get(), {0, 0, 3, 4}, {1, 0}); };
    locks = {};
    blit();
    EXPECT_EQ(locks.log, (Log{"+own 1", "-own 1", "+own 2", "-own 2", "+own 3", "-own 3"}));
    EXPECT_EQ(FailEachLock(locks, blit), 3);
    EXPECT_TRUE(sourceLocks.NothingHeld());
}

TYPED_TEST(RowLocksOf, AFailingSource_HoldsNoRowOfADitheredBlit) {
    StLocks locks;
    auto const source = MakeCounted<Color>(locks, "source ", {3, 4});
    auto const layer = MakeCounted<TypeParam>(locks, "own ", {3, 4});
    auto const blit = [&] { layer->BlitRect(source.Get(), {0, 0, 3, 4}, {0, 0}); };
    source->failingRow = 1;
    locks = {};
    EXPECT_EQ(ThrownBy(blit), -36);
    EXPECT_EQ(locks.log, (Log{"+own 0", "-own 0", "+own 1", "-own 1"}));
    source->failingRow = -1;
    blit();
    EXPECT_TRUE(locks.NothingHeld());
}

TEST(RowLocks, StreamsHoldOneRowAtATime_InBothDirections) {
    StLocks locks;
    auto const check = [&](auto const& layer) {
        for (unsigned short compression : {0, 1}) {
            layer->SetStreamingCompression(compression);
            StRef<SmMemoryStream> stream;
            auto const renew = [&](bool keep) {
                auto fresh = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
                fresh->IMemoryStream(keep ? stream->Data() : nullptr, keep ? stream->GetLength() : 0);
                stream = fresh;
            };
            int const written = FailEachLock(locks, [&] {
                renew(false);
                layer->WriteTo(stream.Get());
            });
            EXPECT_GE(written, 3) << "a lock for each row";
            int const read = FailEachLock(locks, [&] {
                renew(true);
                layer->ReadFrom(stream.Get());
            });
            EXPECT_GE(read, 3);
            for (std::size_t i = 1; i < locks.log.size(); ++i)
                EXPECT_NE(locks.log[i - 1][0], locks.log[i][0]) << "never two at once";
        }
    };
    check(MakeCounted<Gray>(locks, "own ", {3, 4}));
    check(MakeCounted<Color>(locks, "own ", {3, 4}));
    check(MakeCounted<Counted<PlainLayer<StGray4Pixel>>>(locks, "own ", {3, 4}));
}

/// A row that does not go back.
class Stuck : public PlainLayer<StGray8Pixel> {
  public:
    void UnlockRow(long) override { SrThrow(-36, nullptr); }
};

TEST(RowLocks, ARowThatDoesNotGoBack_EndsNoProgram) {
    auto const layer = StRef<Stuck>::Adopt(new Stuck);
    layer->IImagerLayer({0, 0}, {2, 2}, false, nullptr, 0, nullptr);
    EXPECT_EQ(ThrownBy([&] {
                  frame::StRowLock const lock(*layer, 1);
                  SrThrow(-39, nullptr);
              }),
              -39)
        << "the error on its way stays";
    EXPECT_EQ(ThrownBy([&] { frame::StRowLock(*layer, 1).Release(); }), -36) << "told to who asks";
    EXPECT_EQ(ThrownBy([&] { frame::StRowLock const lock(*layer, 1); }), 0);
}

}  // namespace
