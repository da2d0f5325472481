#include "framewright/imagery/movie_with_media.h"

#include <gtest/gtest.h>

#include "clips.h"
#include "framewright/imagery/image.h"

namespace {

using namespace clips;

constexpr unsigned long kCrop = SrCode("CROP"), kResize = SrCode("RESZ");

class MovieWithMedia : public Clip {
  protected:
    MovieWithMedia() { movie->IImagerMovieWithMedia(); }

    void Open(long frames = 10) {
        clip = media->Add(frames);
        movie->SetLocation(location.get(), kReadMovie, true, 0, 0);
    }
    std::vector<long> Held() {
        std::vector<long> held;
        for (long i = 0; i < 20; ++i)
            if (movie->SmImagerMovie::GetStoredImage(i)) held.push_back(i);
        return held;
    }
    long Red(long frame) { return NumberOf(movie->GetImage(frame, 0)->GetColorLayer()); }

    StRef<SmImagerMovieWithMedia> movie = StRef<SmImagerMovieWithMedia>::Adopt(SmImagerMovieWithMedia::New());
    ClipTrack* clip = nullptr;
};

StRef<SmImagerImage> NewImage() {
    auto image = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
    image->IImagerImage();
    return image;
}

StRef<SmVideoSpec> NewSpec() {
    auto spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    spec->IVideoSpec();
    return spec;
}

// --- fields

TEST_F(MovieWithMedia, StartsWithItsOwnDefaults) {
    EXPECT_STREQ(movie->GetClassName(), "SmImagerMovieWithMedia");
    EXPECT_EQ(SmImagerMovieWithMedia::Class()->Parent(), SmImagerMovie::Class());
    EXPECT_EQ(movie->GetSizingMode(), kResize);
    EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{200, 320}));
    EXPECT_EQ(movie->GetDuration(), 0.0);
    EXPECT_EQ(movie->GetLocation(), nullptr);
    EXPECT_EQ(movie->GetMedia(), nullptr);
    EXPECT_EQ(movie->GetTrackSpec(0), nullptr);
    movie->SetNumberOfFrames(7);
    EXPECT_EQ(movie->GetNumberOfFrames(), 0);
    movie->SetImage(2, NewImage().Get(), false);
    EXPECT_EQ(movie->GetNumberOfFrames(), 3) << "entries";
    movie->SetSizingMode(kCrop);
    movie->IImagerMovieWithMedia();
    EXPECT_EQ(movie->GetSizingMode(), kResize);
}

TEST_F(MovieWithMedia, TrackSpecsStandByIndex) {
    auto const first = NewSpec(), second = NewSpec();
    movie->SetTrackSpec(2, first.Get());
    EXPECT_EQ(first->ReferenceCount(), 2);
    for (long i : {-1L, 0L, 1L, 3L})
        EXPECT_EQ(movie->GetTrackSpec(i), nullptr) << i;
    EXPECT_EQ(movie->GetTrackSpec(2), first.Get());
    movie->SetTrackSpec(2, second.Get());
    EXPECT_EQ(first->ReferenceCount(), 1);
    movie->SetTrackSpec(-1, first.Get());
    EXPECT_EQ(movie->GetTrackSpec(0), nullptr);
    EXPECT_EQ(first->ReferenceCount(), 1);
    movie->SetTrackSpec(2, nullptr);
    EXPECT_EQ(second->ReferenceCount(), 1);
}

// --- locations

TEST_F(MovieWithMedia, SetLocation_KeepsACloneAndTakesCountAndRateOfTheFirstVideoTrack) {
    media->Add(3)->type = SrCode("AUDI");
    media->Add(12, 24.0F);
    media->Add(5, 5.0F);
    movie->SetLocation(location.get(), kReadMovie, true, 0, 0);
    EXPECT_NE(movie->GetLocation(), location.get());
    EXPECT_EQ(PathOf(*movie->GetLocation()), "/clips/shot0001.bmp");
    EXPECT_EQ(movie->GetMedia(), media.Get());
    EXPECT_EQ(media->ReferenceCount(), 3);
    EXPECT_EQ(movie->GetNumberOfFrames(), 12);
    EXPECT_EQ(movie->SmImagerMovie::GetNumberOfFrames(), 12);
    EXPECT_EQ(movie->GetFrameRate(), 24.0F);
    movie->SetLocation(movie->GetLocation(), kReadMovie, true, 0, 0);
    EXPECT_EQ(PathOf(*movie->GetLocation()), "/clips/shot0001.bmp");
    movie->SetLocation(nullptr, kReadMovie, true, 0, 0);
    EXPECT_EQ(movie->GetLocation(), nullptr);
    EXPECT_EQ(media->ReferenceCount(), 2);
    EXPECT_EQ(movie->GetNumberOfFrames(), 0);
}

TEST_F(MovieWithMedia, SetLocation_ClearsTheEntriesOrKeepsThem) {
    auto const image = NewImage();
    media->Add(10);
    movie->SetImage(2, image.Get(), false);
    movie->SetLocation(location.get(), kReadMovie, false, 0, 0);
    EXPECT_EQ(movie->GetImage(2, 0), image.Get());
    movie->SetLocation(location.get(), kReadMovie, true, 0, 0);
    EXPECT_EQ(image->ReferenceCount(), 1);
}

struct CreateCase {
    long createMode;
    bool opens, creates;       ///< what the format can do
    bool isOpened, isCreated;  ///< what is asked of it
    long code;                 ///< 0: the movie has media
};

TEST_F(MovieWithMedia, SetLocation_OpensOrCreates) {
    long const notFound = SkFileNotFound();
    CreateCase const cases[] = {
        {0, true, true, true, false, 0},          {0, false, true, false, false, notFound},
        {1, true, true, true, false, 0},          {1, false, true, false, true, 0},
        {1, false, false, false, true, notFound}, {7, false, true, false, true, 0},
        {2, true, true, false, true, 0},          {2, true, false, false, true, notFound},
    };
    auto const created = NewMedia();
    for (CreateCase const& row : cases) {
        log.lines.clear();
        format->confidence = row.opens ? 10 : 0;
        format->makes = row.creates ? StRef<SmMedia>(created.Get()) : nullptr;
        Outcome const outcome = OutcomeOf(
            [&] { movie->SetLocation(location.get(), kReadMovie, true, row.createMode, SrCode("Clip")); });
        EXPECT_EQ(outcome, (Outcome{row.code, row.code ? 6 : 0})) << row.createMode;
        auto const wasAsked = [&](char const* line) {
            return std::find(log.lines.begin(), log.lines.end(), line) != log.lines.end();
        };
        EXPECT_EQ(wasAsked("Clip asked type media"), row.isOpened) << row.createMode;
        EXPECT_EQ(wasAsked("Clip new media"), row.isCreated) << row.createMode;
        SmMedia* const expected = row.isCreated ? created.Get() : media.Get();
        EXPECT_EQ(movie->GetMedia(), row.code ? nullptr : expected) << row.createMode;
        EXPECT_NE(movie->GetLocation(), nullptr) << "also of what was not found";
    }
}

TEST_F(MovieWithMedia, Clone_SharesMediaAndSpecs) {
    Open();
    auto const spec = NewSpec();
    movie->SetTrackSpec(1, spec.Get());
    Red(3);
    auto const copy = StRef<SmImagerMovieWithMedia>::Adopt(movie->Clone());
    EXPECT_EQ(media->ReferenceCount(), 4);
    EXPECT_EQ(spec->ReferenceCount(), 3);
    EXPECT_EQ(copy->GetTrackSpec(1), spec.Get());
    EXPECT_NE(copy->GetLocation(), movie->GetLocation());
    EXPECT_EQ(PathOf(*copy->GetLocation()), PathOf(*movie->GetLocation()));
    EXPECT_NE(copy->GetImage(3, 0), movie->GetImage(3, 0));
    EXPECT_EQ(NumberOf(copy->GetImage(3, 0)->GetLayer(0)), 3);
    EXPECT_EQ(clip->asked, std::vector<long>{3});
}

TEST_F(MovieWithMedia, Free_DropsLocationMediaAndSpecs) {
    Open();
    auto const spec = NewSpec();
    movie->SetTrackSpec(0, spec.Get());
    movie->GetImage(0, 0);
    movie->Free();
    EXPECT_EQ(media->ReferenceCount(), 2);
    EXPECT_EQ(spec->ReferenceCount(), 1);
    EXPECT_EQ(movie->GetLocation(), nullptr);
    EXPECT_EQ(CountedFrame::living, 0);
    movie->Free();
}

// --- reading

TEST_F(MovieWithMedia, ImagesAreReadWhenTheyAreAskedFor_Once) {
    Open();
    EXPECT_TRUE(clip->asked.empty());
    SmImagerImage* const image = movie->GetImage(4, 0);
    EXPECT_EQ(image->ReferenceCount(), 1);
    EXPECT_EQ(image->GetLayerCount(), 1);
    EXPECT_EQ(NumberOf(image->GetColorLayer()), 4);
    EXPECT_EQ(image->GetLayer(0)->ReferenceCount(), 1);
    EXPECT_EQ(movie->GetImage(4, 0), image);
    EXPECT_EQ(clip->asked, std::vector<long>{4});
    EXPECT_EQ(clip->options, std::vector<unsigned long>{kResize});
}

TEST_F(MovieWithMedia, WithoutPrototypeTheFormatsMakeTheLayers_AndTheMovieTakesTheirSize) {
    Open();
    SmImagerImage* const image = movie->GetImage(0, 0);
    EXPECT_EQ(clip->givenSizes, std::vector<StPoint>({{0, 0}}));
    EXPECT_EQ(image->GetSize(), (StPoint{4, 5}));
    EXPECT_NE(image->GetGamut(), nullptr) << "an initialised image";
    EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{4, 5}));
}

TEST_F(MovieWithMedia, InAnotherModeAnImageOfTheDesiredSizeIsMade) {
    Open();
    movie->SetSizingMode(kCrop);
    movie->SetDesiredFrameSize({2, 3});
    SmImagerImage* const image = movie->GetImage(5, 0);
    EXPECT_EQ(image->GetSize(), (StPoint{2, 3}));
    EXPECT_EQ(image->GetColorLayer()->PixelID(), SrCode("ColB"));
    EXPECT_EQ(clip->givenSizes, std::vector<StPoint>({{2, 3}}));
    EXPECT_EQ(clip->options, std::vector<unsigned long>{kCrop});
    EXPECT_EQ(Red(5), 5);
}

TEST_F(MovieWithMedia, APrototypeGivesTheLayers_InEveryMode) {
    Open();
    auto const prototype = NewImage();
    prototype->AddLayer(NewFrame({1, 1}, SrCode("Gry8")).Get());
    prototype->AddLayer(NewFrame({1, 1}, SrCode("Alp8")).Get());
    movie->SetPrototypeImage(prototype.Get());
    for (unsigned long const mode : {kResize, kCrop}) {
        movie->ClearAll();
        movie->SetDesiredFrameSize({2, 3});
        movie->SetSizingMode(mode);
        SmImagerImage* const image = movie->GetImage(5, 0);
        EXPECT_EQ(image->GetLayerCount(), 2);
        EXPECT_EQ(image->GetLayer(0)->PixelID(), SrCode("Gry8"));
        EXPECT_EQ(clip->givenSizes.back(), (StPoint{2, 3}));
        EXPECT_EQ(clip->options.back(), mode);
        EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{2, 3}));
    }
}

TEST_F(MovieWithMedia, EachVideoTrackIsALayer_OthersAreNone) {
    ClipTrack* const first = media->Add(10);
    media->Add(10)->type = SrCode("AUDI");
    ClipTrack* const second = media->Add(4);
    movie->SetLocation(location.get(), kReadMovie, true, 0, 0);
    SmImagerImage* const image = movie->GetImage(6, 0);
    ASSERT_EQ(image->GetLayerCount(), 2);
    EXPECT_EQ(NumberOf(image->GetLayer(0)), 6);
    EXPECT_EQ(NumberOf(image->GetLayer(1)), 6);
    EXPECT_EQ(first->asked, std::vector<long>{6});
    EXPECT_EQ(second->asked, std::vector<long>{6}) << "whatever its own count";
    // Into the layers that an image has.
    movie->SetSizingMode(kCrop);
    movie->SetDesiredFrameSize({2, 3});
    SmImagerImage* const made = movie->GetImage(7, 0);
    EXPECT_EQ(first->givenSizes.back(), (StPoint{2, 3}));
    EXPECT_EQ(second->givenSizes.back(), (StPoint{0, 0})) << "the image was made with one";
    EXPECT_EQ(made->GetLayerCount(), 2);
}

TEST_F(MovieWithMedia, AFrameThatComesBackReplacesTheLayer) {
    Open();
    clip->replaces = true;
    movie->SetSizingMode(kCrop);
    movie->SetDesiredFrameSize({2, 3});
    SmImagerImage* const image = movie->GetImage(3, 0);
    EXPECT_EQ(image->GetLayer(0)->GetSize(), (StPoint{4, 5}));
    EXPECT_EQ(image->GetLayer(0)->ReferenceCount(), 1);
    EXPECT_EQ(image->GetSize(), (StPoint{4, 5}));
    EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{4, 5}));
}

TEST_F(MovieWithMedia, NumbersOutsideGiveTheNearestImage) {
    Open();
    EXPECT_EQ(Red(10), 9);
    EXPECT_EQ(Red(-1), 0);
    EXPECT_EQ(clip->asked, (std::vector<long>{9, 0}));
}

TEST_F(MovieWithMedia, PlayedForward_TheImageTwoPlacesBackIsDropped_ButForTheFirst) {
    Open();
    std::vector<std::vector<long>> const held = {{0}, {0, 1}, {0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 5}};
    for (long i = 0; i < 6; ++i) {
        movie->GetImage(i, 0);
        EXPECT_EQ(Held(), held[static_cast<std::size_t>(i)]) << "after " << i;
    }
    movie->GetImage(2, 0);
    EXPECT_EQ(Held(), (std::vector<long>{0, 2, 4, 5}));
}

TEST_F(MovieWithMedia, AnErrorDropsTheImage_AndLeavesTheEntryEmpty) {
    Open();
    clip->makesExtra = true;
    for (bool const before : {true, false}) {
        for (unsigned long const mode : {kResize, kCrop}) {
            clip->throwsBefore = before;
            clip->throwsAfter = !before;
            clip->replaces = true;
            movie->SetSizingMode(mode);
            EXPECT_EQ(ErrorOf([&] { movie->GetImage(3, 0); }), -36);
            EXPECT_EQ(CountedFrame::living, 0);
            EXPECT_EQ(clip->extras.alive, 0);
            EXPECT_TRUE(Held().empty());
        }
    }
    clip->throwsAfter = false;
    EXPECT_EQ(Red(3), 3);
    EXPECT_EQ(clip->extras.alive, 0);
}

TEST_F(MovieWithMedia, WithoutMediaImagesStayAsTheyWereMade) {
    movie->SetSizingMode(kCrop);
    movie->SetDesiredFrameSize({2, 3});
    SmImagerImage* image = movie->GetImage(3, 0);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetSize(), (StPoint{2, 3}));
    EXPECT_EQ(Held(), std::vector<long>{0}) << "the nearest number of none";
    movie->ClearAll();
    movie->SetSizingMode(kResize);
    image = movie->GetImage(0, 0);
    EXPECT_EQ(image->GetLayerCount(), 0);
    EXPECT_EQ(movie->GetDesiredFrameSize(), (StPoint{1, 1}));
}

// --- length

TEST_F(MovieWithMedia, GetDuration_IsTheMediasAtTheRateThatWasSet) {
    media->duration = 10.0;
    media->Add(300, 30.0F);
    movie->SetLocation(location.get(), kReadMovie, true, 0, 0);
    EXPECT_EQ(movie->GetDuration(), 10.0);
    movie->SetFrameRate(15.0F);
    EXPECT_EQ(movie->GetDuration(), 20.0);
    EXPECT_EQ(movie->GetDuration(), 20.0);
    EXPECT_EQ(media->durationCalls, 2) << "asked once for each rate";
    movie->SetFrameRate(0.0F);
    EXPECT_EQ(movie->GetDuration(), 0.0);
}

TEST_F(MovieWithMedia, ItLoopsByTheStoredDuration) {
    media->duration = 2.0;
    media->Add(20, 10.0F);
    movie->SetLocation(location.get(), kReadMovie, true, 0, 0);
    movie->SetLoop(true, false);
    EXPECT_EQ(movie->FrameNumberForTime(3.5), 0);
    movie->SetDuration(movie->GetDuration());
    EXPECT_EQ(movie->FrameNumberForTime(3.5), 15);
}

// --- writing

/// A movie that writes, with an image of three layers: colour, mask without save intent, and grey.
class WritingMovie : public MovieWithMedia {
  protected:
    WritingMovie() {
        format->makes = StRef<SmMedia>(media.Get());
        movie->SetLocation(location.get(), kWriteMovie, true, kCreateMovie, SrCode("Clip"));
        image->AddLayer(Numbered(SrCode("ColB"), 10).Get());
        image->AddLayer(Numbered(SrCode("Alp8"), 0).Get());
        auto const gray = Numbered(SrCode("Gry8"), 30);
        image->SetLayer(3, gray.Get());
        gray->SetSaveIntent(true);
    }
    static StRef<SmImagerFrame> Numbered(unsigned long type, long number) {
        auto frame = NewFrame({2, 2}, type);
        frame->PutPixelAt(0, 0, StRGBA32Pixel{30, 30, static_cast<unsigned char>(number), 255});
        return frame;
    }
    std::vector<std::string> const& Written(long track) {
        return static_cast<ClipTrack*>(media->GetTrack(track))->written;
    }
    using Lines = std::vector<std::string>;

    StRef<SmImagerImage> image = NewImage();
};

TEST_F(WritingMovie, EachLayerThatIsToBeSavedGoesToATrackOfItsOwn_AsTheOnlyFrame) {
    movie->SetImage(5, image.Get(), false);
    movie->SaveImage(5, 0);
    ASSERT_EQ(media->NumberOfTracks(), 2);
    EXPECT_EQ(Written(0), Lines{"red 10: 5 1 0 at 3"});
    EXPECT_EQ(Written(1), Lines{"red 30: 5 1 0 at 3"});
    movie->SaveImage(5, 0);
    EXPECT_EQ(media->NumberOfTracks(), 2) << "the tracks are there now";
    EXPECT_EQ(Written(0).size(), 2u);
}

TEST_F(WritingMovie, TracksAreShapedByTheSpecOfTheLayer_OrByTheOnlyOne) {
    auto const first = NewSpec(), fourth = NewSpec();
    movie->SetImage(0, image.Get(), false);
    movie->SaveImage(0, 0);
    EXPECT_EQ(media->specs, (std::vector<SmTrackSpec*>{nullptr, nullptr})) << "none was given";

    auto const writeAnew = [&] {
        media->specs.clear();
        while (SmMediaTrack* const track = media->GetTrack(0))
            media->DeleteTrack(track);
        movie->SaveImage(0, 0);
        return media->specs;
    };
    movie->SetTrackSpec(0, first.Get());
    EXPECT_EQ(writeAnew(), (std::vector<SmTrackSpec*>{first.Get(), first.Get()}));
    movie->SetTrackSpec(1, NewSpec().Get());
    EXPECT_EQ(writeAnew(), (std::vector<SmTrackSpec*>{first.Get(), nullptr})) << "two are not one";
    movie->SetTrackSpec(3, fourth.Get());
    EXPECT_EQ(writeAnew(), (std::vector<SmTrackSpec*>{first.Get(), fourth.Get()}));
}

TEST_F(WritingMovie, AMediaThatMakesNoTrackIsPassedOver) {
    media->refusesTracks = true;
    movie->SetImage(0, image.Get(), false);
    movie->SaveImage(0, 0);
    EXPECT_EQ(media->NumberOfTracks(), 0);
    EXPECT_EQ(media->specs.size(), 2u);
}

TEST_F(WritingMovie, NothingIsWrittenWithoutEntryMediaOrMode) {
    movie->SaveImage(0, 0);
    movie->SetImage(0, image.Get(), false);
    movie->SaveImage(1, 0);
    movie->SaveImage(-1, 0);
    EXPECT_EQ(media->NumberOfTracks(), 0) << "the entry itself, not the nearest";
    movie->SetLocation(location.get(), kReadMovie, false, kCreateMovie, SrCode("Clip"));
    movie->SaveImage(0, 0);
    EXPECT_EQ(media->NumberOfTracks(), 0);
    movie->SetLocation(nullptr, kWriteMovie, false, 0, 0);
    movie->SaveImage(0, 0);
    EXPECT_EQ(media->NumberOfTracks(), 0);
}

TEST_F(WritingMovie, AlternatingEyesAreEntriesOfTheirOwn) {
    movie->SetStereoArrangement(4);
    movie->SetImage(7, image.Get(), false);
    movie->SaveImage(3, 1);
    EXPECT_EQ(media->NumberOfTracks(), 0) << "that is entry 6";
    movie->SaveImage(3, 2);
    ASSERT_EQ(media->NumberOfTracks(), 2);
    EXPECT_EQ(Written(0), Lines{"red 10: 7 1 0 at 3"});
}

}  // namespace
