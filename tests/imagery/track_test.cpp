#include "framewright/imagery/track.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "framewright/frame/frame.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/settings.h"

namespace {

constexpr long kOutOfRange = -2147483648L;  // what a number past 32 bits becomes

StRef<SmImagerTrack> NewTrack() {
    auto track = StRef<SmImagerTrack>::Adopt(SmImagerTrack::New());
    track->IImagerTrack();
    return track;
}

StRef<SmImagerFrame> NewFrame() {
    return StRef<SmImagerFrame>::Adopt(SrMakeFrame({1, 1}, SrCode("ColB"), false, false));
}

template <class Action>
long ErrorOf(Action action) {
    try {
        action();
        return 0;
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        return SrGetExceptionValues(exception, message);
    }
}

// --- defaults and fields

TEST(ImagerTrack, StartsWithDefaults) {
    auto const track = StRef<SmImagerTrack>::Adopt(SmImagerTrack::New());
    EXPECT_STREQ(track->GetClassName(), "SmImagerTrack");
    EXPECT_EQ(track->GetDesiredSize(), (StPoint{200, 320}));
    EXPECT_EQ(track->GetNumberOfFrames(), 1);
    EXPECT_EQ(track->GetFrameRate(), 30.0F);
    bool loop = true, pingPong = true;
    track->GetLoop(loop, pingPong);
    EXPECT_FALSE(loop);
    EXPECT_FALSE(pingPong);
    EXPECT_EQ(track->GetStereoArrangement(), 0);
    EXPECT_EQ(track->GetStereoFirstEye(), 1);
    EXPECT_EQ(track->GetStereoGap(), 0);
    EXPECT_EQ(track->GetSizingMode(), 0x43524F50U);
    EXPECT_FALSE(track->GetMipmapping());
    EXPECT_EQ(track->GetPrototypeFrame(), nullptr);
    EXPECT_EQ(track->GetStoredFrame(0), nullptr);
}

TEST(ImagerTrack, FieldsKeepWhatIsSet) {
    auto const track = NewTrack();
    track->SetDesiredSize({3, 4});
    track->SetNumberOfFrames(-5);
    track->SetFrameRate(-2.5F);
    track->SetLoop(true, false);
    track->SetStereoArrangement(200);
    track->SetStereoFirstEye(2);
    track->SetStereoGap(-7);
    track->SetSizingMode(0x5245535A);
    track->SetMipmapping(true);
    EXPECT_EQ(track->GetDesiredSize(), (StPoint{3, 4}));
    EXPECT_EQ(track->GetNumberOfFrames(), -5);
    EXPECT_EQ(track->GetFrameRate(), -2.5F);
    bool loop = false, pingPong = true;
    track->GetLoop(loop, pingPong);
    EXPECT_TRUE(loop);
    EXPECT_FALSE(pingPong);
    track->SetLoop(false, true);
    track->GetLoop(loop, pingPong);
    EXPECT_FALSE(loop);
    EXPECT_TRUE(pingPong);
    EXPECT_EQ(track->GetStereoArrangement(), 200);
    EXPECT_EQ(track->GetStereoFirstEye(), 2);
    EXPECT_EQ(track->GetStereoGap(), -7);
    EXPECT_EQ(track->GetSizingMode(), 0x5245535AU);
    EXPECT_TRUE(track->GetMipmapping());
    // The initialiser sets rate and count alone.
    track->IImagerTrack();
    EXPECT_EQ(track->GetNumberOfFrames(), 1);
    EXPECT_EQ(track->GetFrameRate(), 30.0F);
    EXPECT_EQ(track->GetStereoGap(), -7);
}

TEST(ImagerTrack, PrototypeIsCounted) {
    auto const track = NewTrack();
    auto const first = NewFrame(), second = NewFrame();
    track->SetPrototypeFrame(first.Get());
    EXPECT_EQ(first->ReferenceCount(), 2);
    EXPECT_EQ(track->GetPrototypeFrame(), first.Get());
    track->SetPrototypeFrame(second.Get());
    EXPECT_EQ(first->ReferenceCount(), 1);
    track->SetPrototypeFrame(nullptr);
    EXPECT_EQ(second->ReferenceCount(), 1);
}

// --- entries

TEST(ImagerTrack, SetFrame_GrowsWithNulls) {
    auto const track = NewTrack();
    auto const frame = NewFrame();
    track->SetFrame(3, frame.Get());
    EXPECT_EQ(frame->ReferenceCount(), 2);
    for (long i : {-1L, 0L, 1L, 2L, 4L, 1000000L})
        EXPECT_EQ(track->GetStoredFrame(i), nullptr) << i;
    EXPECT_EQ(track->GetStoredFrame(3), frame.Get());
    EXPECT_EQ(frame->ReferenceCount(), 2) << "getters lend";
    EXPECT_EQ(track->GetNumberOfFrames(), 1) << "the count is a field of its own";
}

TEST(ImagerTrack, SetFrame_ReplacesTheEntry) {
    auto const track = NewTrack();
    auto const first = NewFrame(), second = NewFrame();
    track->SetFrame(0, first.Get());
    track->SetFrame(0, second.Get());
    EXPECT_EQ(first->ReferenceCount(), 1);
    EXPECT_EQ(second->ReferenceCount(), 2);
    track->SetFrame(0, second.Get());
    EXPECT_EQ(second->ReferenceCount(), 2) << "the same once more";
    track->SetFrame(0, nullptr);
    EXPECT_EQ(second->ReferenceCount(), 1);
    EXPECT_EQ(track->GetStoredFrame(0), nullptr);
}

TEST(ImagerTrack, SetFrame_BelowZeroIsZero) {
    auto const track = NewTrack();
    auto const frame = NewFrame();
    track->SetFrame(-17, frame.Get());
    EXPECT_EQ(track->GetStoredFrame(0), frame.Get());
    EXPECT_EQ(track->GetStoredFrame(-17), nullptr);
}

TEST(ImagerTrack, SetFrame_WhereMemoryIsRefusedLeavesTheTrack) {
    auto const track = NewTrack();
    auto const frame = NewFrame();
    track->SetFrame(0, frame.Get());
    SrSetAllocationGate([](std::size_t) { return false; });
    EXPECT_EQ(ErrorOf([&] { track->SetFrame(100, frame.Get()); }), -108);
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(frame->ReferenceCount(), 2);
    EXPECT_EQ(track->GetStoredFrame(0), frame.Get());
    EXPECT_EQ(track->GetStoredFrame(100), nullptr);
    EXPECT_EQ(ErrorOf([&] { track->SetFrame(1L << 31, frame.Get()); }), -108) << "past 32 bits";
    EXPECT_EQ(ErrorOf([&] { track->SetFrame(std::numeric_limits<long>::max(), frame.Get()); }), -108);
}

TEST(ImagerTrack, ReleaseFrame_LeavesNull) {
    auto const track = NewTrack();
    auto const frame = NewFrame();
    track->SetFrame(1, frame.Get());
    for (long i : {-1L, 0L, 2L, 1L, 1L})
        track->ReleaseFrame(i);
    EXPECT_EQ(frame->ReferenceCount(), 1);
    EXPECT_EQ(track->GetStoredFrame(1), nullptr);
}

TEST(ImagerTrack, ClearFrames_EmptiesTheArray) {
    auto const track = NewTrack();
    auto const frame = NewFrame();
    track->SetFrame(0, frame.Get());
    track->SetFrame(2, frame.Get());
    track->SetPrototypeFrame(frame.Get());
    track->ClearFrames();
    EXPECT_EQ(frame->ReferenceCount(), 2) << "the prototype stays";
    EXPECT_EQ(track->GetStoredFrame(0), nullptr);
}

TEST(ImagerTrack, SaveFrame_DoesNothing) {
    auto const track = NewTrack();
    auto const frame = NewFrame();
    track->SetFrame(0, frame.Get());
    track->SaveFrame(0, 0);
    track->SaveFrame(99, 2);
    EXPECT_EQ(track->GetStoredFrame(0), frame.Get());
}

// --- fetching

struct FetchCase {
    StStereoArrangement arrangement;
    StLeftOrRight firstEye;
    long frame;
    long entry;
};

TEST(ImagerTrack, GetFrame_PicksTheEntry) {
    FetchCase const cases[] = {
        {0, 1, 3, 3},  {0, 2, 3, 3}, {4, 2, 3, 2},  // 3 / 2, and one more for the second eye first
        {4, 1, 3, 1},  {4, 0, 3, 1}, {4, 1, 0, 0},  {4, 2, 0, 1},
        {4, 1, 1, 0},  {4, 1, 6, 3}, {4, 2, -1, 1},  // -1 / 2 is 0
        {4, 1, -1, 0},
    };
    auto const track = NewTrack();
    StRef<SmImagerFrame> frames[5];
    for (long i = 0; i < 5; ++i) {
        frames[i] = NewFrame();
        track->SetFrame(i, frames[i].Get());
    }
    for (FetchCase const& row : cases) {
        track->SetStereoArrangement(row.arrangement);
        track->SetStereoFirstEye(row.firstEye);
        for (StLeftOrRight eye : {0, 1, 2}) {
            EXPECT_EQ(track->GetFrame(row.frame, eye), frames[row.entry].Get())
                << int(row.arrangement) << " " << int(row.firstEye) << " " << row.frame << " eye "
                << int(eye);
        }
    }
    EXPECT_EQ(frames[1]->ReferenceCount(), 2) << "lent";
    EXPECT_EQ(frames[0]->ReferenceCount(), 3)
        << "the eye that was lent last is kept, and is the frame itself";
    track->SetStereoArrangement(0);
    EXPECT_EQ(track->GetFrame(-1, 0), nullptr);
    EXPECT_EQ(track->GetFrame(5, 0), nullptr);
}

// --- stereo

/// 5 rows by 3 columns: with a gap of 1 an eye has rows 0 and 1, the other 3 and 4, or one column each.
StRef<SmImagerFrame> NewStereoFrame() {
    auto frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({5, 3}, SrCode("ColB"), false, false));
    for (long y = 0; y < 5; ++y) {
        for (long x = 0; x < 3; ++x)
            frame->PutPixelAt(x, y, StRGBA32Pixel{0, 0, static_cast<unsigned char>(10 * y + x), 255});
    }
    return frame;
}

TEST(ImagerTrack, GetFrame_CutsAnEyeOut) {
    struct {
        StStereoArrangement arrangement;
        StLeftOrRight firstEye, eye;
        StPoint size;
        int red;  ///< of the first pixel
    } const rows[] = {
        {1, 1, 1, {2, 3}, 0},  {1, 1, 2, {2, 3}, 30}, {1, 1, 0, {2, 3}, 0}, {2, 1, 1, {5, 1}, 0},
        {2, 1, 2, {5, 1}, 2},  {1, 2, 1, {2, 3}, 0},  // the first eye plays no part in a track
        {1, 2, 2, {2, 3}, 30}, {3, 1, 2, {5, 3}, 0},
    };
    auto const track = NewTrack();
    auto const frame = NewStereoFrame();
    track->SetFrame(0, frame.Get());
    track->SetStereoGap(1);
    for (auto const& row : rows) {
        track->SetStereoArrangement(row.arrangement);
        track->SetStereoFirstEye(row.firstEye);
        SmImagerFrame* const eye = track->GetFrame(0, row.eye);
        ASSERT_NE(eye, nullptr);
        EXPECT_EQ(eye->GetSize(), row.size) << int{row.arrangement} << " eye " << int{row.eye};
        EXPECT_EQ(eye->GetRGBAPixelAt(0, 0).red, row.red) << int{row.arrangement} << " eye " << int{row.eye};
    }
}

TEST(ImagerTrack, GetFrame_LendsTheEye_UntilTheNextOne) {
    auto const track = NewTrack();
    auto const frame = NewStereoFrame();
    track->SetFrame(0, frame.Get());
    track->SetStereoArrangement(1);
    StRef<SmImagerFrame> const left = track->GetFrame(0, 1);
    EXPECT_EQ(left->ReferenceCount(), 2) << "the track's and this one";
    EXPECT_NE(track->GetFrame(0, 1), left.Get()) << "cut anew each time";
    EXPECT_EQ(left->ReferenceCount(), 1);
    StRef<SmImagerFrame> const again = track->GetFrame(0, 1);
    track->Free();
    EXPECT_EQ(again->ReferenceCount(), 1);
}

TEST(ImagerTrack, GetFrame_OfNothing_HasNoEye) {
    auto const track = NewTrack();
    for (int arrangement : {1, 2, 3, 4, 5, 6}) {
        track->SetStereoArrangement(static_cast<StStereoArrangement>(arrangement));
        EXPECT_EQ(track->GetFrame(0, 1), nullptr) << arrangement;
    }
    track->SetFrame(0, NewStereoFrame().Get());
    EXPECT_EQ(track->GetFrame(0, 1), nullptr) << "there is no arrangement 6";
}

// --- mipmaps

TEST(ImagerTrack, GetFrame_TurnsAFrameIntoAMipmapOnce) {
    auto const track = NewTrack();
    auto const frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({4, 8}, SrCode("Gry8"), false, false));
    frame->Erase();
    track->SetFrame(2, frame.Get());
    EXPECT_EQ(track->GetFrame(2, 0), frame.Get());
    track->SetMipmapping(true);
    SmImagerFrame* const mipmap = track->GetFrame(2, 0);
    ASSERT_NE(mipmap, nullptr);
    EXPECT_TRUE(mipmap->IsUVTriLinear());
    EXPECT_EQ(mipmap->GetSize(), (StPoint{4, 8}));
    EXPECT_EQ(mipmap->ReferenceCount(), 1) << "the array's";
    EXPECT_EQ(frame->ReferenceCount(), 1) << "its place is taken";
    EXPECT_EQ(track->GetStoredFrame(2), mipmap);
    EXPECT_EQ(track->GetFrame(2, 0), mipmap);
    EXPECT_EQ(track->GetFrame(1, 0), nullptr);
}

TEST(ImagerTrack, GetFrame_LeavesWhatHasNoMipmaps) {
    auto const track = NewTrack();
    auto const frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({4, 8}, SrCode("Alp8"), false, false));
    track->SetFrame(0, frame.Get());
    track->SetMipmapping(true);
    EXPECT_EQ(track->GetFrame(0, 0), frame.Get());
    EXPECT_EQ(frame->ReferenceCount(), 2);
}

TEST(ImagerTrack, GetFrame_OfAnEye_LeavesItsMipmapInTheEntry) {
    // The next fetch cuts the eye out of that mipmap: the window is one level of detail too.
    auto const track = NewTrack();
    auto const frame = NewStereoFrame();
    track->SetFrame(0, frame.Get());
    track->SetStereoArrangement(1);
    track->SetStereoGap(1);
    track->SetMipmapping(true);
    SmImagerFrame* const left = track->GetFrame(0, 1);
    EXPECT_TRUE(left->IsUVTriLinear());
    EXPECT_EQ(left, track->GetStoredFrame(0));
    EXPECT_EQ(left->GetOriginalSize(), (StPoint{2, 3}));
    SmImagerFrame* const next = track->GetFrame(0, 1);
    EXPECT_NE(next, left);
    EXPECT_TRUE(next->IsUVTriLinear());
    EXPECT_EQ(track->GetStoredFrame(0), left);
}

/// A track whose frames come from elsewhere.
class LazyTrack : public SmImagerTrack {
  public:
    SmImagerFrame* GetStoredFrame(long frame) override {
        asked = frame;
        return only.Get();
    }
    StRef<SmImagerFrame> only = NewFrame();
    long asked = -1;
};

TEST(ImagerTrack, GetFrame_AsksTheVirtualOperation) {
    auto const track = StRef<LazyTrack>::Adopt(new LazyTrack);
    EXPECT_EQ(track->GetFrame(7, 1), track->only.Get());
    EXPECT_EQ(track->asked, 7);
}

// --- time

TEST(ImagerTrack, GetDuration_IsCountOverRate) {
    struct {
        long count;
        float rate;
        double duration;
    } const rows[] = {
        {1, 4.0F, 0.25}, {30, 30.0F, 1.0},   {7, -2.0F, -3.5},     {0, 30.0F, 0.0},
        {5, 0.0F, 0.0},  {5, 0.00001F, 0.0}, {5, -0.000009F, 0.0},
    };
    for (auto const& row : rows) {
        auto const track = NewTrack();
        track->SetNumberOfFrames(row.count);
        track->SetFrameRate(row.rate);
        EXPECT_EQ(track->GetDuration(), row.duration) << row.count << " at " << row.rate;
    }
    auto const track = NewTrack();
    track->SetFrameRate(std::nanf(""));
    EXPECT_EQ(track->GetDuration(), 0.0);
    track->SetFrameRate(0.00002F);
    EXPECT_GT(track->GetDuration(), 49000.0) << "just above the limit";
}

struct TimeCase {
    double seconds;
    long frame;
};

TEST(ImagerTrack, FrameNumberForTime_WithoutLoop) {
    auto const track = NewTrack();  // 30 frames a second, one frame
    TimeCase const cases[] = {
        {0.0, 0},    {1.0, 30},        {0.0333333, 1},  // 0.999999 and the slack
        {0.0333, 0}, {0.5, 15},        {100.0, 3000},   // not limited to the count
        {-0.1, -3},  {-0.0333334, -1},                  // -1.000002 lies above -1 with the slack
        {-1e-9, 0},  {-1e-3, -1},      {1e30, kOutOfRange}, {std::nan(""), kOutOfRange},
    };
    for (TimeCase const& row : cases)
        EXPECT_EQ(track->FrameNumberForTime(row.seconds), row.frame) << row.seconds;
}

TEST(ImagerTrack, FrameNumberForTime_WithoutLoopIsInSinglePrecision) {
    // 16777217 is no float: the product falls to 16777216, and the slack is lost beside it.
    auto const track = NewTrack();
    track->SetFrameRate(1.0F);
    EXPECT_EQ(track->FrameNumberForTime(16777217.0), 16777216);
    track->SetLoop(true, false);
    track->SetNumberOfFrames(20000000);
    EXPECT_EQ(track->FrameNumberForTime(16777217.0), 16777217) << "with a loop it is double";
}

TEST(ImagerTrack, FrameNumberForTime_Loops) {
    auto const track = NewTrack();
    track->SetFrameRate(10.0F);
    track->SetNumberOfFrames(20);  // two seconds
    track->SetLoop(true, false);
    TimeCase const cases[] = {
        {0.0, 0}, {0.5, 5}, {1.99, 19}, {2.0, 0}, {3.0, 10}, {3.5, 15}, {5.25, 12}, {-0.5, 15}, {-2.0, 0},
    };
    for (TimeCase const& row : cases)
        EXPECT_EQ(track->FrameNumberForTime(row.seconds), row.frame) << row.seconds;
}

TEST(ImagerTrack, FrameNumberForTime_PingPongMirrorsOddCycles) {
    auto const track = NewTrack();
    track->SetFrameRate(10.0F);
    track->SetNumberOfFrames(20);
    track->SetLoop(true, true);
    TimeCase const cases[] = {
        {0.5, 5},   {1.5, 15}, {3.0, 10},  // cycle 1, 1 second in, mirrored to 1
        {3.5, 5},                          // 1.5 in, mirrored to 0.5
        {2.0, 20},                         // the very start of the way back lies behind the last frame
        {4.0, 0},   {4.5, 5},  {-0.5, 5},  // cycle -1 is odd too: 1.5 in, mirrored to 0.5
        {-2.5, 15},
    };
    for (TimeCase const& row : cases)
        EXPECT_EQ(track->FrameNumberForTime(row.seconds), row.frame) << row.seconds;
}

TEST(ImagerTrack, FrameNumberForTime_PingPongNeedsTheLoop) {
    auto const track = NewTrack();
    track->SetFrameRate(10.0F);
    track->SetNumberOfFrames(20);
    track->SetLoop(false, true);
    EXPECT_EQ(track->FrameNumberForTime(3.5), 35);
}

TEST(ImagerTrack, FrameNumberForTime_LoopWithoutDurationIsZero) {
    auto const track = NewTrack();
    track->SetLoop(true, false);
    track->SetFrameRate(0.0F);
    EXPECT_EQ(track->FrameNumberForTime(5.0), 0);
    track->SetFrameRate(30.0F);
    track->SetNumberOfFrames(0);
    EXPECT_EQ(track->FrameNumberForTime(5.0), 0);
}

TEST(ImagerTrack, FrameNumberForTime_IsDefinedForEveryTime) {
    auto const track = NewTrack();
    track->SetLoop(true, true);
    for (double seconds : {1e300, -1e300, 1e18, std::nan(""), std::numeric_limits<double>::infinity()})
        track->FrameNumberForTime(seconds);
    EXPECT_EQ(track->FrameNumberForTime(std::nan("")), kOutOfRange);
}

/// A track that knows its duration from elsewhere.
class LongTrack : public SmImagerTrack {
  public:
    double GetDuration() override { return 4.0; }
};

TEST(ImagerTrack, FrameNumberForTime_AsksForTheDuration) {
    auto const track = StRef<LongTrack>::Adopt(new LongTrack);
    track->SetFrameRate(10.0F);
    track->SetLoop(true, false);
    EXPECT_EQ(track->FrameNumberForTime(5.0), 10);
    track->SetFrameRate(-10.0F);
    EXPECT_EQ(track->FrameNumberForTime(0.55), -6) << "-5.49999, rounded down";
}

// --- life

TEST(ImagerTrack, Clone_HasFramesOfItsOwn) {
    auto const track = NewTrack();
    auto const frame = NewFrame(), prototype = NewFrame();
    frame->PutPixelAt(0, 0, StRGBA32Pixel{1, 2, 3, 4});
    track->SetFrame(2, frame.Get());
    track->SetPrototypeFrame(prototype.Get());
    track->SetDesiredSize({3, 4});
    track->SetNumberOfFrames(9);
    track->SetFrameRate(12.0F);
    track->SetLoop(true, true);
    track->SetStereoArrangement(2);
    track->SetStereoFirstEye(2);
    track->SetStereoGap(5);
    track->SetSizingMode(0x5245535A);
    track->SetMipmapping(true);

    auto const copy = StRef<SmImagerTrack>::Adopt(track->Clone());
    EXPECT_EQ(copy->GetStoredFrame(0), nullptr);
    ASSERT_NE(copy->GetStoredFrame(2), nullptr);
    EXPECT_NE(copy->GetStoredFrame(2), frame.Get());
    EXPECT_EQ(copy->GetStoredFrame(2)->ReferenceCount(), 1);
    StRGBA32Pixel pixel{};
    copy->GetStoredFrame(2)->GetPixelAt(0, 0, pixel);
    EXPECT_EQ(pixel.red, 3);
    EXPECT_EQ(frame->ReferenceCount(), 2);
    EXPECT_EQ(copy->GetPrototypeFrame(), prototype.Get());
    EXPECT_EQ(prototype->ReferenceCount(), 3);
    EXPECT_EQ(copy->GetDesiredSize(), (StPoint{3, 4}));
    EXPECT_EQ(copy->GetNumberOfFrames(), 9);
    EXPECT_EQ(copy->GetFrameRate(), 12.0F);
    bool loop = false, pingPong = false;
    copy->GetLoop(loop, pingPong);
    EXPECT_TRUE(loop && pingPong);
    EXPECT_EQ(copy->GetStereoArrangement(), 2);
    EXPECT_EQ(copy->GetStereoFirstEye(), 2);
    EXPECT_EQ(copy->GetStereoGap(), 5);
    EXPECT_EQ(copy->GetSizingMode(), 0x5245535AU);
    EXPECT_TRUE(copy->GetMipmapping());
}

TEST(ImagerTrack, Clone_ThatMemoryRefusesLeavesNothing) {
    auto const track = NewTrack();
    auto const frame = NewFrame();
    track->SetFrame(0, frame.Get());
    track->SetFrame(1, frame.Get());
    static long allowed;
    long runs = 0;
    for (bool done = false; !done; ++runs) {
        allowed = runs;
        SrSetAllocationGate([](std::size_t) { return allowed-- > 0; });
        SmImagerTrack* copy = nullptr;
        long const code = ErrorOf([&] { copy = track->Clone(); });
        SrSetAllocationGate(nullptr);
        done = code == 0;
        EXPECT_TRUE(done || code == -108) << code;
        if (copy) copy->ReleaseReference();
    }
    EXPECT_GT(runs, 3);
    EXPECT_EQ(frame->ReferenceCount(), 3);
}

TEST(ImagerTrack, Free_DropsFramesAndPrototype) {
    auto const track = NewTrack();
    auto const frame = NewFrame();
    track->SetFrame(0, frame.Get());
    track->SetPrototypeFrame(frame.Get());
    track->Free();
    EXPECT_EQ(frame->ReferenceCount(), 1);
    EXPECT_EQ(track->GetStoredFrame(0), nullptr);
    EXPECT_EQ(track->GetPrototypeFrame(), nullptr);
    track->Free();
}

TEST(ImagerTrack, ImplementBecome_TakesOnTheOthersState) {
    auto const track = NewTrack(), other = NewTrack();
    auto const frame = NewFrame(), old = NewFrame();
    track->SetFrame(0, old.Get());
    other->SetFrame(1, frame.Get());
    other->SetFrameRate(5.0F);
    track->AddReference();
    track->ImplementBecome(other.Get());
    EXPECT_EQ(track->ReferenceCount(), 2);
    track->ReleaseReference();
    EXPECT_EQ(old->ReferenceCount(), 1);
    EXPECT_EQ(track->GetStoredFrame(0), nullptr);
    EXPECT_NE(track->GetStoredFrame(1), nullptr);
    EXPECT_EQ(track->GetFrameRate(), 5.0F);
    EXPECT_EQ(other->GetStoredFrame(1), frame.Get());
}

// --- the preference

TEST(MipmapPreference, IsStoredInTheOppositeSense) {
    bool const before = SrGetMipmapsEnabled();
    SrSetMipmapsEnabled(false);
    EXPECT_FALSE(SrGetMipmapsEnabled());
    // The value is kept: made anew, the flag has it.
    SrInitializeTracks(true);
    EXPECT_TRUE(SrGetMipmapsEnabled()) << "true while there is no flag";
    SrSetMipmapsEnabled(true);
    SrInitializeTracks(false);
    EXPECT_FALSE(SrGetMipmapsEnabled()) << "setting did nothing while there was none";
    SrSetMipmapsEnabled(true);
    EXPECT_TRUE(SrGetMipmapsEnabled());
    SrInitializeTracks(false);
    EXPECT_TRUE(SrGetMipmapsEnabled());
    SrSetMipmapsEnabled(before);
}

TEST(MipmapPreference, HasItsKey) {
    bool const before = SrGetMipmapsEnabled();
    SrSetMipmapsEnabled(true);
    ScPersistentData<bool, ScNormalPersistentBehavior<bool>> flag(nullptr, "MIP Mapping disabled", true);
    EXPECT_FALSE(flag.GetValue());
    SrSetMipmapsEnabled(before);
}

}  // namespace
