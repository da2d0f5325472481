#include "framewright/imagery/track_with_media.h"

#include <gtest/gtest.h>

#include "clips.h"
#include "framewright/spool/imager_spool.h"
#include "framewright/thornmere/settings.h"

namespace {

using namespace clips;

constexpr unsigned long kCrop = SrCode("CROP"), kResize = SrCode("RESZ");

class TrackWithMedia : public Clip {
  protected:
    TrackWithMedia() { track->IImagerTrackWithMedia(); }

    /// Opens the clip of ten frames.
    void Open(long frames = 10) {
        clip = media->Add(frames);
        track->SetLocation(location.get(), 1, true);
    }
    /// The numbers of the entries that are held.
    std::vector<long> Held() {
        std::vector<long> held;
        for (long i = 0; i < 20; ++i)
            if (track->SmImagerTrack::GetStoredFrame(i)) held.push_back(i);
        return held;
    }

    StRef<SmImagerTrackWithMedia> track = StRef<SmImagerTrackWithMedia>::Adopt(SmImagerTrackWithMedia::New());
    ClipTrack* clip = nullptr;
};

// --- fields

TEST_F(TrackWithMedia, StartsWithItsOwnDefaults) {
    EXPECT_STREQ(track->GetClassName(), "SmImagerTrackWithMedia");
    EXPECT_EQ(SmImagerTrackWithMedia::Class()->Parent(), SmImagerTrack::Class());
    EXPECT_EQ(track->GetSizingMode(), kResize);
    EXPECT_EQ(track->GetDesiredSize(), (StPoint{200, 320}));
    EXPECT_EQ(track->GetFrameRate(), 30.0F);
    EXPECT_EQ(track->GetDuration(), 0.0);
    EXPECT_EQ(track->GetLocation(), nullptr);
    EXPECT_EQ(track->GetSecondLocation(), nullptr);
    EXPECT_EQ(track->GetMedia(), nullptr);
    SmMediaTrack* none = media->Add(1);
    EXPECT_EQ(track->GetTrack(none), 0);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(track->GetNumberOfFrames(), 0) << "no entries; the count that was set is not looked at";
    track->SetNumberOfFrames(7);
    EXPECT_EQ(track->GetNumberOfFrames(), 0);
    track->SetFrame(3, NewFrame().Get());
    EXPECT_EQ(track->GetNumberOfFrames(), 4);
    track->SetSizingMode(kCrop);
    track->SetDesiredSize({1, 2});
    track->IImagerTrackWithMedia();
    EXPECT_EQ(track->GetSizingMode(), kResize);
    EXPECT_EQ(track->GetDesiredSize(), (StPoint{200, 320}));
}

// --- locations

TEST_F(TrackWithMedia, SetLocation_KeepsACloneAndTakesTheFirstVideoTrack) {
    media->Add(3)->type = SrCode("AUDI");
    clip = media->Add(12, 24.0F);
    media->Add(5, 5.0F);
    track->SetLocation(location.get(), 1, true);
    ASSERT_NE(track->GetLocation(), nullptr);
    EXPECT_NE(track->GetLocation(), location.get());
    EXPECT_EQ(PathOf(*track->GetLocation()), "/clips/shot0001.bmp");
    EXPECT_EQ(track->GetMedia(), media.Get());
    EXPECT_EQ(media->ReferenceCount(), 3) << "here, the format's, the track's";
    SmMediaTrack* found = nullptr;
    EXPECT_EQ(track->GetTrack(found), 1);
    EXPECT_EQ(found, clip);
    EXPECT_EQ(clip->ReferenceCount(), 1) << "the media's alone";
    EXPECT_EQ(track->GetNumberOfFrames(), 12);
    EXPECT_EQ(track->GetFrameRate(), 24.0F);
    EXPECT_EQ(track->SmImagerTrack::GetNumberOfFrames(), 12);
}

TEST_F(TrackWithMedia, SetLocation_ReplacesTheMedia) {
    Open();
    StRef<ClipMedia> const first = media;
    media = NewMedia();
    media->Add(4);
    format->opens = StRef<SmMedia>(media.Get());
    auto const other = LocationOf("/clips/other01.bmp");
    track->SetLocation(other.get(), 1, true);
    EXPECT_EQ(first->ReferenceCount(), 1);
    EXPECT_EQ(PathOf(*track->GetLocation()), "/clips/other01.bmp");
    EXPECT_EQ(track->GetNumberOfFrames(), 4);
    // Its own location too can be set.
    track->SetLocation(track->GetLocation(), 1, true);
    EXPECT_EQ(PathOf(*track->GetLocation()), "/clips/other01.bmp");
    track->SetLocation(nullptr, 1, true);
    EXPECT_EQ(track->GetLocation(), nullptr);
    EXPECT_EQ(track->GetMedia(), nullptr);
    EXPECT_EQ(media->ReferenceCount(), 2);
    EXPECT_EQ(track->GetNumberOfFrames(), 0);
}

TEST_F(TrackWithMedia, SetLocation_ClearsTheEntriesOrKeepsThem) {
    auto const frame = NewFrame();
    track->SetFrame(2, frame.Get());
    media->Add(10);
    track->SetLocation(location.get(), 1, false);
    EXPECT_EQ(track->GetStoredFrame(2), frame.Get());
    track->SetLocation(location.get(), 1, true);
    EXPECT_EQ(frame->ReferenceCount(), 1);
    track->SetFrame(1, frame.Get());
    track->SetLocation(nullptr, 1, true);
    EXPECT_EQ(frame->ReferenceCount(), 1);
}

TEST_F(TrackWithMedia, SetLocation_OfMediaWithoutVideoTracks_HoldsTheMedia) {
    media->Add(3)->type = SrCode("AUDI");
    track->SetLocation(location.get(), 1, true);
    EXPECT_EQ(track->GetMedia(), media.Get());
    SmMediaTrack* none = nullptr;
    track->GetTrack(none);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(track->GetFrameRate(), 30.0F);
    EXPECT_EQ(track->GetNumberOfFrames(), 0);
    EXPECT_EQ(track->GetDuration(), 0.0);
}

TEST_F(TrackWithMedia, SetLocation_OfAFileThatNoFormatTakes_IsNotFound) {
    Open();
    format->confidence = 0;
    auto const other = LocationOf("/clips/none.bmp");
    EXPECT_EQ(OutcomeOf([&] { track->SetLocation(other.get(), 1, true); }), (Outcome{SkFileNotFound(), 6}));
    EXPECT_EQ(PathOf(*track->GetLocation()), "/clips/none.bmp") << "for whoever looks for it";
    EXPECT_EQ(track->GetMedia(), nullptr);
    EXPECT_EQ(media->ReferenceCount(), 2);
    EXPECT_EQ(track->GetNumberOfFrames(), 0);
}

TEST_F(TrackWithMedia, SetTrack_TakesItsCount_NotItsRate) {
    media->Add(3, 12.0F);
    media->Add(8, 6.0F);
    track->SetLocation(location.get(), 1, true);
    track->SetTrack(1);
    SmMediaTrack* found = nullptr;
    EXPECT_EQ(track->GetTrack(found), 1);
    EXPECT_EQ(found, media->GetTrack(1));
    EXPECT_EQ(track->GetNumberOfFrames(), 8);
    EXPECT_EQ(track->SmImagerTrack::GetNumberOfFrames(), 8);
    EXPECT_EQ(track->GetFrameRate(), 12.0F);
    for (long none : {2L, -1L}) {
        track->SetTrack(none);
        EXPECT_EQ(track->GetTrack(found), none);
        EXPECT_EQ(found, nullptr);
    }
    track->SetLocation(nullptr, 1, true);
    track->SetTrack(0);
    track->GetTrack(found);
    EXPECT_EQ(found, nullptr);
}

TEST_F(TrackWithMedia, SecondLocation_IsHeldForTheHost) {
    auto const other = LocationOf("/clips/right0001.bmp");
    Open();
    auto const second = NewMedia();
    second->Add(3);
    format->opens = StRef<SmMedia>(second.Get());
    track->SetSecondLocation(other.get());
    EXPECT_EQ(PathOf(*track->GetSecondLocation()), "/clips/right0001.bmp");
    EXPECT_NE(track->GetSecondLocation(), other.get());
    EXPECT_EQ(second->ReferenceCount(), 3);
    // Nothing else has changed.
    EXPECT_EQ(track->GetMedia(), media.Get());
    EXPECT_EQ(track->GetNumberOfFrames(), 10);
    track->SetSecondLocation(track->GetSecondLocation());
    EXPECT_EQ(PathOf(*track->GetSecondLocation()), "/clips/right0001.bmp");
    track->SetSecondLocation(nullptr);
    EXPECT_EQ(track->GetSecondLocation(), nullptr);
    EXPECT_EQ(second->ReferenceCount(), 2);
    format->confidence = 0;
    track->SetSecondLocation(other.get());
    EXPECT_NE(track->GetSecondLocation(), nullptr) << "a file that is missing is no failure here";
}

TEST_F(TrackWithMedia, Free_DropsLocationsAndMedia) {
    Open();
    track->SetSecondLocation(location.get());
    EXPECT_EQ(media->ReferenceCount(), 4);
    auto const frame = NewFrame();
    track->SetFrame(0, frame.Get());
    track->Free();
    EXPECT_EQ(media->ReferenceCount(), 2);
    EXPECT_EQ(track->GetLocation(), nullptr);
    EXPECT_EQ(track->GetSecondLocation(), nullptr);
    EXPECT_EQ(frame->ReferenceCount(), 1);
    track->Free();
}

TEST_F(TrackWithMedia, Clone_SharesTheMedia_AndHasLocationsOfItsOwn) {
    Open();
    track->SetSecondLocation(location.get());
    track->GetFrame(1, 0);
    auto const copy = StRef<SmImagerTrackWithMedia>::Adopt(track->Clone());
    EXPECT_EQ(media->ReferenceCount(), 6);
    EXPECT_NE(copy->GetLocation(), track->GetLocation());
    EXPECT_EQ(PathOf(*copy->GetLocation()), PathOf(*track->GetLocation()));
    EXPECT_NE(copy->GetSecondLocation(), track->GetSecondLocation());
    EXPECT_EQ(copy->GetNumberOfFrames(), 10);
    EXPECT_NE(copy->GetFrame(1, 0), track->GetFrame(1, 0));
    EXPECT_EQ(NumberOf(copy->GetFrame(1, 0)), 1);
    EXPECT_EQ(clip->asked, std::vector<long>{1}) << "the clone has the frame";
}

// --- reading

TEST_F(TrackWithMedia, FramesAreReadWhenTheyAreAskedFor_Once) {
    Open();
    EXPECT_TRUE(clip->asked.empty());
    SmImagerFrame* const frame = track->GetFrame(4, 0);
    EXPECT_EQ(NumberOf(frame), 4);
    EXPECT_EQ(frame->ReferenceCount(), 1) << "the array's";
    EXPECT_EQ(frame->GetSize(), (StPoint{4, 5})) << "as it is in the file";
    EXPECT_EQ(track->GetFrame(4, 0), frame);
    EXPECT_EQ(clip->asked, std::vector<long>{4});
    EXPECT_EQ(clip->options, std::vector<unsigned long>{kResize});
    EXPECT_EQ(clip->givenSizes, std::vector<StPoint>({{0, 0}})) << "the format makes it";
}

TEST_F(TrackWithMedia, NumbersOutsideGiveTheNearestFrame) {
    Open();
    EXPECT_EQ(NumberOf(track->GetFrame(10, 0)), 9);
    EXPECT_EQ(NumberOf(track->GetFrame(1L << 40, 0)), 9);
    EXPECT_EQ(NumberOf(track->GetFrame(-1, 0)), 0);
    EXPECT_EQ(clip->asked, (std::vector<long>{9, 0}));
    clip->frames = 0;
    EXPECT_EQ(NumberOf(track->GetStoredFrame(5)), 0) << "of no frames it is the first";
}

TEST_F(TrackWithMedia, PlayedForward_TheFrameTwoPlacesBackIsDropped_ButForTheFirst) {
    Open();
    std::vector<std::vector<long>> const held = {{0}, {0, 1}, {0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 5}};
    for (long i = 0; i < 6; ++i) {
        track->GetFrame(i, 0);
        EXPECT_EQ(Held(), held[static_cast<std::size_t>(i)]) << "after " << i;
    }
    // Backwards nothing is dropped but what lies two places before.
    track->GetFrame(2, 0);
    EXPECT_EQ(Held(), (std::vector<long>{0, 2, 4, 5}));
    track->GetFrame(7, 0);
    EXPECT_EQ(Held(), (std::vector<long>{0, 2, 4, 7}));
    // What is there is not read, so nothing goes.
    track->GetFrame(4, 0);
    EXPECT_EQ(Held(), (std::vector<long>{0, 2, 4, 7}));
}

TEST_F(TrackWithMedia, InAnotherModeAFrameOfTheDesiredSizeIsMade) {
    Open();
    track->SetSizingMode(kCrop);
    track->SetDesiredSize({2, 3});
    SmImagerFrame* const frame = track->GetFrame(5, 0);
    EXPECT_EQ(frame->PixelID(), SrCode("ColB"));
    EXPECT_EQ(frame->GetSize(), (StPoint{2, 3}));
    EXPECT_EQ(frame->ReferenceCount(), 1);
    EXPECT_EQ(clip->givenSizes, std::vector<StPoint>({{2, 3}}));
    EXPECT_EQ(clip->options, std::vector<unsigned long>{kCrop});
    EXPECT_EQ(NumberOf(frame), 5);
}

TEST_F(TrackWithMedia, APrototypeGivesTheKind_InEveryMode) {
    Open();
    auto const prototype = NewFrame({1, 1}, SrCode("Gry8"));
    track->SetPrototypeFrame(prototype.Get());
    track->SetDesiredSize({2, 3});
    for (unsigned long const mode : {kResize, kCrop}) {
        track->ClearFrames();
        track->SetSizingMode(mode);
        SmImagerFrame* const frame = track->GetFrame(5, 0);
        EXPECT_EQ(frame->PixelID(), SrCode("Gry8"));
        EXPECT_EQ(clip->givenSizes.back(), (StPoint{2, 3}));
        EXPECT_EQ(clip->options.back(), mode);
    }
    EXPECT_EQ(prototype->ReferenceCount(), 2);
}

TEST_F(TrackWithMedia, ANewFrameStartsAsItsNeighbour) {
    Open();
    clip->leavesPixels = true;
    track->SetSizingMode(kCrop);
    track->SetDesiredSize({2, 3});
    auto const numbered = [](long number, StPoint const& size) {
        auto const frame = NewFrame(size);
        PutNumber(*frame, number);
        frame->PutPixelAt(size.horizontal - 1, size.vertical - 1, StRGBA32Pixel{7, 8, 9, 10});
        return frame;
    };
    track->SetFrame(2, numbered(42, {2, 3}).Get());
    track->SetFrame(4, numbered(44, {2, 3}).Get());
    SmImagerFrame* frame = track->GetFrame(3, 0);
    EXPECT_EQ(clip->givenNumbers.back(), 42) << "the one before";
    EXPECT_EQ(frame->GetRGBAPixelAt(2, 1).red, 9) << "the whole of it";
    track->ReleaseFrame(3);
    track->SetFrame(2, numbered(42, {2, 2}).Get());
    track->GetFrame(3, 0);
    EXPECT_EQ(clip->givenNumbers.back(), 44) << "the one before has another size";
    track->ReleaseFrame(3);
    track->SetFrame(2, nullptr);
    track->GetFrame(3, 0);
    EXPECT_EQ(clip->givenNumbers.back(), 44) << "there is none before";
}

TEST_F(TrackWithMedia, WithoutMediaFramesStayAsTheyWereMade) {
    track->SetSizingMode(kCrop);
    track->SetDesiredSize({2, 3});
    auto const first = NewFrame({2, 3});
    PutNumber(*first, 9);
    track->SetFrame(0, first.Get());
    track->SetFrame(3, nullptr);  // four entries
    SmImagerFrame* const frame = track->GetFrame(1, 0);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(NumberOf(frame), 9) << "seeded";
    EXPECT_EQ(track->GetFrame(1, 0), frame);
    EXPECT_NE(track->GetFrame(3, 0), nullptr);
    EXPECT_EQ(track->GetStoredFrame(1), frame) << "nothing is dropped without media";
    // In the mode of the media too: there is no format to make them.
    track->ClearFrames();
    track->SetSizingMode(kResize);
    track->SetFrame(1, nullptr);
    ASSERT_NE(track->GetFrame(1, 0), nullptr);
    EXPECT_EQ(track->GetFrame(1, 0)->GetSize(), (StPoint{2, 3}));
}

TEST_F(TrackWithMedia, AnEmptyMediaTrackLeavesFramesAsTheyWereMade) {
    Open(0);
    clip->leavesPixels = true;
    track->SetSizingMode(kCrop);
    track->SetDesiredSize({2, 3});
    SmImagerFrame* const frame = track->GetFrame(3, 0);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->GetSize(), (StPoint{2, 3}));
    EXPECT_EQ(clip->asked, std::vector<long>{0});
}

TEST_F(TrackWithMedia, AFrameThatComesBackReplacesTheOneThatWasMade) {
    Open();
    clip->replaces = true;
    track->SetSizingMode(kCrop);
    track->SetDesiredSize({2, 3});
    SmImagerFrame* const frame = track->GetFrame(3, 0);
    EXPECT_EQ(frame->GetSize(), (StPoint{4, 5})) << "the format's own";
    EXPECT_EQ(frame->ReferenceCount(), 1);
    EXPECT_EQ(CountedFrame::living, 1);
}

TEST_F(TrackWithMedia, ASecondResultIsDropped) {
    Open();
    clip->makesExtra = true;
    track->GetFrame(3, 0);
    EXPECT_EQ(clip->extras.alive, 0);
}

TEST_F(TrackWithMedia, AnErrorDropsWhatWasMade_AndLeavesTheEntryEmpty) {
    Open();
    clip->makesExtra = true;
    for (bool const before : {true, false}) {
        for (unsigned long const mode : {kResize, kCrop}) {
            clip->throwsBefore = before;
            clip->throwsAfter = !before;
            clip->replaces = true;
            track->SetSizingMode(mode);
            EXPECT_EQ(ErrorOf([&] { track->GetFrame(3, 0); }), -36);
            EXPECT_EQ(CountedFrame::living, 0);
            EXPECT_EQ(clip->extras.alive, 0);
            EXPECT_TRUE(Held().empty());
        }
    }
    clip->throwsAfter = false;
    EXPECT_EQ(NumberOf(track->GetFrame(3, 0)), 3) << "and it can be read later";
}

TEST_F(TrackWithMedia, WhatIsNoFrameIsRefused) {
    class Odd : public SmMediaTrack {
      public:
        explicit Odd(media_test::Log& log) : log(log) {}
        long NumberOfFrames() override { return 3; }
        void ReadFrames(SmObject*& object, ScMC_*, SmObject*&, long, long, long, ScProgressIndicator*,
                        unsigned long) override {
            object = new media_test::SpyObject(log);
        }
        media_test::Log& log;
    };
    media->AddTrack(StRef<SmMediaTrack>::Adopt(new Odd(log)).Get());
    track->SetLocation(location.get(), 1, true);
    EXPECT_EQ(ErrorOf([&] { track->GetFrame(0, 0); }), SkInternalRefusal());
    EXPECT_EQ(log.alive, 1) << "the format alone";
}

TEST_F(TrackWithMedia, FramesSpoolWhereThePreferenceForImageMapsSaysSo) {
    // Nothing in the library sets it: it comes from the settings.
    Open();
    track->SetSizingMode(kCrop);
    track->SetDesiredSize({65, 65});
    auto const isSpooled = [&](long number) {
        SmImagerFrame* const frame = track->GetFrame(number, 0);
        return frame->IsMemberOf(SmImagerLayer<StRGBA32Pixel, ScImagerSpool>::Class());
    };
    EXPECT_FALSE(isSpooled(0));
    using Flag = ScPersistentData<bool, ScNormalPersistentBehavior<bool>>;
    Flag(nullptr, "Default image map spooling state", false).SetValue(true);
    SrInitializeGlobalSpoolManager(false);  // the flags are made anew
    EXPECT_TRUE(isSpooled(1));
    Flag(nullptr, "Default image map spooling state", false).SetValue(false);
    SrInitializeGlobalSpoolManager(false);
    EXPECT_FALSE(isSpooled(2));
}

TEST_F(TrackWithMedia, SaveFrame_WritesNothing) {
    Open();
    track->GetFrame(0, 0);
    track->SaveFrame(0, 0);
    EXPECT_TRUE(clip->written.empty());
}

TEST_F(TrackWithMedia, MipmapsTakeTheFramesPlaces) {
    Open();
    track->SetMipmapping(true);
    for (long i = 0; i < 5; ++i)
        EXPECT_TRUE(track->GetFrame(i, 0)->IsUVTriLinear());
    EXPECT_EQ(track->GetFrame(4, 0), track->GetFrame(4, 0));
    EXPECT_EQ(clip->asked, (std::vector<long>{0, 1, 2, 3, 4}));
    EXPECT_EQ(Held(), (std::vector<long>{0, 3, 4}));
    EXPECT_EQ(CountedFrame::living, 0);
}

// --- length

TEST_F(TrackWithMedia, GetDuration_IsTheMediasAtTheRateThatWasSet) {
    media->duration = 10.0;
    media->Add(300, 30.0F);
    track->SetLocation(location.get(), 1, true);
    EXPECT_EQ(track->GetDuration(), 10.0);
    track->SetFrameRate(15.0F);
    EXPECT_EQ(track->GetDuration(), 20.0);
    track->SetFrameRate(60.0F);
    EXPECT_EQ(track->GetDuration(), 5.0);
    track->SetFrameRate(-30.0F);
    EXPECT_EQ(track->GetDuration(), -10.0);
    track->SetFrameRate(0.0F);
    EXPECT_EQ(track->GetDuration(), 0.0) << "nothing moves";
}

TEST_F(TrackWithMedia, GetDuration_IsAskedForOnce) {
    media->duration = 10.0;
    media->Add(300, 30.0F);
    track->SetLocation(location.get(), 1, true);
    EXPECT_EQ(media->durationCalls, 0);
    track->GetDuration();
    media->duration = 99.0;
    EXPECT_EQ(track->GetDuration(), 10.0);
    EXPECT_EQ(media->durationCalls, 1);
    track->SetFrameRate(30.0F);
    EXPECT_EQ(track->GetDuration(), 99.0);
    media->duration = 5.0;
    track->SetLocation(location.get(), 1, true);
    EXPECT_EQ(track->GetDuration(), 5.0);
}

TEST_F(TrackWithMedia, ItLoopsByThatDuration) {
    media->duration = 2.0;
    media->Add(20, 10.0F);
    track->SetLocation(location.get(), 1, true);
    track->SetLoop(true, false);
    EXPECT_EQ(track->FrameNumberForTime(3.5), 15);
    track->SetFrameRate(0.0F);
    EXPECT_EQ(track->FrameNumberForTime(3.5), 0);
}

// --- stereo

TEST_F(TrackWithMedia, AlternatingEyesReadEveryOtherEntry) {
    Open();
    track->SetStereoArrangement(4);
    track->SetStereoFirstEye(2);
    EXPECT_EQ(NumberOf(track->GetFrame(3, 1)), 2);
    EXPECT_EQ(clip->asked, std::vector<long>{2});
}

}  // namespace
