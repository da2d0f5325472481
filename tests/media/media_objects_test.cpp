#include "framewright/media/media_objects.h"

#include <gtest/gtest.h>

#include "framewright/core/startup.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/imagery/image.h"
#include "media/media_test_support.h"

namespace {

using namespace media_test;
using Lines = std::vector<std::string>;

ScMC_* OneClass() {
    return SmVideoSpec::Class();
}
ScMC_* OtherClass() {
    return SmStream::Class();
}

/// One global format, "Aaaa", sure of everything, whose media has one track that yields OneClass().
class MediaObjects : public testing::Test {
  protected:
    MediaObjects() : format(formats.Add(log, "Aaaa", 10)) {
        media = StRef<SpyMedia>::Adopt(new SpyMedia(log));
        media->type = SrCode("Aaaa");
        track = AddTrack("one");
        format->opens = media.Get();
        format->makes = StRef<SmMedia>::Adopt(new SpyMedia(log));
        target = static_cast<SpyMedia*>(format->makes.Get());
        format->classes = {OneClass()};
        format->families = {kVideoTrack};
        log.lines.clear();
    }
    ~MediaObjects() override {
        if (format) format->opens = format->makes = nullptr;
        media = nullptr;
    }

    SpyTrack* AddTrack(char const* name) {
        auto const made = StRef<SpyTrack>::Adopt(new SpyTrack(log));
        made->name = name;
        made->objectClasses = {OneClass()};
        media->AddTrack(made.Get());
        return made.Get();
    }

    Outcome Load(unsigned long type = 0, ScProgressIndicator* progress = nullptr) {
        return OutcomeOf([&] { SrLoadObjectFromMedia(&location, objectClass, object, type, progress); });
    }
    Outcome LoadTargetted(ScMC_* cls) {
        return OutcomeOf([&] { SrLoadTargettedObjectFromMedia(&location, cls, object, extra, nullptr); });
    }
    Outcome Save(ScMC_* cls, unsigned long type, ScProgressIndicator* progress = nullptr) {
        auto const saved = StRef<SpyObject>::Adopt(new SpyObject(log));
        return OutcomeOf([&] { SrSaveObjectToMedia(&location, cls, saved.Get(), type, progress); });
    }
    bool Copy(unsigned long type, SmVideoSpec* spec = nullptr, ScProgressIndicator* progress = nullptr) {
        return SrCopyMedia(&location, &destination, type, spec, progress);
    }
    void Drop(SmObject*& held) {
        if (held) held->ReleaseReference();
        held = nullptr;
    }

    Log log;
    GlobalFormats formats;
    SpyRecognizer* format;
    StRef<SpyMedia> media;
    SpyMedia* target;
    SpyTrack* track;
    ScMediaInline location, destination;
    ScMC_* objectClass = nullptr;
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
};

TEST_F(MediaObjects, TagsOfStorage) {
    EXPECT_EQ(media::StoredInlineTag(), 0U);
    EXPECT_EQ(media::StoredByLocationTag(), 2U);
}

// --- loading

TEST_F(MediaObjects, Load_ReadsTheFirstFrameOfTheFirstTrack) {
    AddTrack("two");
    track->makesExtra = true;
    long const alive = log.alive;
    SpyProgress progress;
    EXPECT_EQ(Load(0, &progress), (Outcome{0, 0}));
    EXPECT_EQ(objectClass, OneClass());
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->ReferenceCount(), 1);
    EXPECT_EQ(log.lines, (Lines{"Aaaa asked type", "Aaaa asked", "Aaaa asked type media",
                                "one read SmVideoSpec new 0 1 0 progress 5245535a"}));
    EXPECT_EQ(log.alive, alive + 1) << "what came as extra is dropped";
    EXPECT_EQ(media->ReferenceCount(), 2) << "and so is the media";
    Drop(object);
}

TEST_F(MediaObjects, Load_FillsAGivenObject) {
    auto const given = StRef<SpyObject>::Adopt(new SpyObject(log));
    object = given.Get();
    EXPECT_EQ(Load(), (Outcome{0, 0}));
    EXPECT_EQ(object, given.Get());
    EXPECT_EQ(log.lines.back(), "one read SmVideoSpec into 0 1 0 5245535a");
}

TEST_F(MediaObjects, Load_WithATypeAsksThatFormat) {
    formats.Add(log, "Bbbb", 10);
    EXPECT_EQ(Load(SrCode("Aaaa")), (Outcome{0, 0}));
    EXPECT_EQ(log.lines.front(), "Aaaa asked media");
    EXPECT_EQ(log.lines.size(), 2U);
    Drop(object);
}

TEST_F(MediaObjects, Load_WithATypeThatDoesNotTakeTheFileAsksAll) {
    formats.Add(log, "Bbbb", 0);
    EXPECT_EQ(Load(SrCode("Bbbb")), (Outcome{0, 0}));
    EXPECT_EQ(log.lines, (Lines{"Bbbb asked media", "Aaaa asked type", "Aaaa asked", "Aaaa asked type media",
                                "one read SmVideoSpec new 0 1 0 5245535a"}));
    Drop(object);
}

TEST_F(MediaObjects, Load_FailsWithTheRightCode) {
    EXPECT_EQ(Load(SrCode("Xxxx")), (Outcome{SkUnrecognizedMedia(), 8}));
    track->makesObject = false;
    EXPECT_EQ(Load(), (Outcome{SkMediaFileIsEmpty(), 9})) << "nothing read";
    media->DeleteTrack(track);
    EXPECT_EQ(Load(), (Outcome{SkMediaFileIsEmpty(), 9})) << "no track";
    format->confidence = 0;
    EXPECT_EQ(Load(), (Outcome{SkUnrecognizedMedia(), 8}));
    EXPECT_EQ(object, nullptr);
}

TEST_F(MediaObjects, Load_ThatThrowsReleasesWhatItHolds) {
    track->makesExtra = true;
    track->throws = true;
    long const alive = log.alive;
    EXPECT_EQ(Load(), (Outcome{-50, 0}));
    EXPECT_EQ(media->ReferenceCount(), 2);
    Drop(object);
    EXPECT_EQ(log.alive, alive);
}

TEST_F(MediaObjects, Load_WithoutAManagerThrows) {
    format->opens = nullptr;
    format->makes = nullptr;
    format = nullptr;
    SrInitializeGlobalMedia(true);
    EXPECT_EQ(Load(), (Outcome{SkMediaManagerMissing(), 7}));
    EXPECT_EQ(Load(SrCode("Aaaa")), (Outcome{SkMediaManagerMissing(), 7}));
    EXPECT_EQ(LoadTargetted(OneClass()), (Outcome{SkMediaManagerMissing(), 7}));
    EXPECT_EQ(Save(OneClass(), 0), (Outcome{SkMediaManagerMissing(), 7}));
    EXPECT_EQ(OutcomeOf([&] { Copy(0); }), (Outcome{SkMediaManagerMissing(), 7}));
}

TEST_F(MediaObjects, LoadTargetted_TakesTheFirstTrackThatYieldsTheClass) {
    format->classes = {OneClass(), OtherClass()};
    format->families = {1, 1};
    AddTrack("two")->objectClasses = {OneClass(), OtherClass()};
    AddTrack("three")->objectClasses = {OtherClass()};
    EXPECT_EQ(LoadTargetted(OtherClass()), (Outcome{0, 0}));
    EXPECT_EQ(log.lines, (Lines{"Aaaa asked type class", "Aaaa asked", "Aaaa asked type media",
                                "two read SmStream new 0 1 0 5245535a"}));
    Drop(object);
}

TEST_F(MediaObjects, LoadTargetted_LeavesTheExtraToTheCaller) {
    track->makesExtra = true;
    EXPECT_EQ(LoadTargetted(OneClass()), (Outcome{0, 0}));
    ASSERT_NE(extra, nullptr);
    EXPECT_EQ(extra->ReferenceCount(), 1);
    EXPECT_EQ(media->ReferenceCount(), 2);
    Drop(object);
    Drop(extra);
}

TEST_F(MediaObjects, LoadTargetted_FailsWithTheRightCode) {
    EXPECT_EQ(LoadTargetted(OtherClass()), (Outcome{SkUnrecognizedMedia(), 8})) << "no format yields it";
    track->makesObject = false;
    EXPECT_EQ(LoadTargetted(OneClass()), (Outcome{SkMediaFileIsEmpty(), 9}));
    track->objectClasses = {OtherClass()};
    EXPECT_EQ(LoadTargetted(OneClass()), (Outcome{SkMediaFileIsEmpty(), 9})) << "no track yields it";
    format->type = 0;
    EXPECT_EQ(LoadTargetted(OneClass()), (Outcome{SkUnrecognizedMedia(), 8})) << "a format without a type";
}

// --- saving

TEST_F(MediaObjects, Save_WritesTheOnlyFrame) {
    SpyProgress progress;
    EXPECT_EQ(Save(OneClass(), SrCode("Aaaa"), &progress), (Outcome{0, 0}));
    EXPECT_EQ(log.lines, (Lines{"Aaaa new media", "new track", "new write SmVideoSpec 0 1 0 at 3 progress"}));
    EXPECT_EQ(target->ReferenceCount(), 1) << "the media's reference is dropped";
    EXPECT_EQ(Save(OneClass(), 0), (Outcome{0, 0})) << "the first format that yields it";
}

TEST_F(MediaObjects, Save_HandsOnTheFamilyOfTheLastClass) {
    format->classes = {OneClass(), OtherClass()};
    format->families = {kVideoTrack, SrCode("AUDI")};
    target->acceptedTrack = SrCode("AUDI");
    EXPECT_EQ(Save(OneClass(), SrCode("Aaaa")), (Outcome{0, 0}));
    EXPECT_EQ(Save(OneClass(), 0), (Outcome{0, 0}));
    target->acceptedTrack = kVideoTrack;
    EXPECT_EQ(Save(OneClass(), SrCode("Aaaa")), (Outcome{SkMediaFileIsEmpty(), 9}));
    EXPECT_EQ(Save(OneClass(), 0), (Outcome{SkMediaFileIsEmpty(), 9}));
    EXPECT_EQ(target->ReferenceCount(), 1);
}

TEST_F(MediaObjects, Save_FailsWithTheRightCode) {
    EXPECT_EQ(Save(OneClass(), SrCode("Xxxx")), (Outcome{SkUnrecognizedMedia(), 8}));
    EXPECT_EQ(Save(OtherClass(), SrCode("Aaaa")), (Outcome{SkMediaIncapableOfFormat(), 10}));
    EXPECT_EQ(Save(OtherClass(), 0), (Outcome{SkMediaIncapableOfFormat(), 10}));
    format->makes = nullptr;
    EXPECT_EQ(Save(OneClass(), 0), (Outcome{SkMediaIncapableOfFormat(), 10}))
        << "a format that makes no media";
}

TEST_F(MediaObjects, Save_OfNothingIsRefusedBeforeThereIsMedia) {
    for (unsigned long const type : std::initializer_list<unsigned long>{0, SrCode("Aaaa")}) {
        Outcome const outcome =
            OutcomeOf([&] { SrSaveObjectToMedia(&location, OneClass(), nullptr, type, nullptr); });
        EXPECT_EQ(outcome, (Outcome{SkMediaIncapableOfFormat(), 10}));
    }
    EXPECT_EQ(log.lines, std::vector<std::string>{});
}

TEST_F(MediaObjects, Save_ThatThrowsReleasesTheMedia) {
    target->tracksThrow = true;
    EXPECT_EQ(Save(OneClass(), 0), (Outcome{-50, 0}));
    EXPECT_EQ(target->ReferenceCount(), 1);
}

// --- copying

TEST_F(MediaObjects, Copy_OneFrameIsTheOnlyOne) {
    SpyProgress progress;
    EXPECT_TRUE(Copy(0, nullptr, &progress));
    EXPECT_EQ(log.lines,
              (Lines{"Aaaa asked", "Aaaa asked type media", "Aaaa new media", "new track",
                     "one read SmVideoSpec new 0 1 0 5245535a", "new write SmVideoSpec 0 1 0 at 3"}));
    EXPECT_EQ(progress.reports, (Lines{"0/1", "100/100"}));
    EXPECT_EQ(media->ReferenceCount(), 2);
    EXPECT_EQ(target->ReferenceCount(), 1);
}

TEST_F(MediaObjects, Copy_TellsThePlaceOfEachFrame) {
    struct {
        long frames;
        Lines positions;
    } const rows[] = {
        {0, {}}, {1, {"3"}}, {2, {"1", "2"}}, {3, {"1", "0", "2"}}, {5, {"1", "0", "0", "0", "2"}},
    };
    for (auto const& row : rows) {
        track->frames = row.frames;
        log.lines.clear();
        EXPECT_TRUE(Copy(0));
        Lines positions;
        for (std::string const& line : log.lines) {
            if (line.find(" write ") != std::string::npos) positions.push_back(line.substr(line.size() - 1));
        }
        EXPECT_EQ(positions, row.positions) << row.frames;
    }
}

TEST_F(MediaObjects, Copy_CarriesOneFrameThroughTheLoop) {
    track->frames = 3;
    track->makesExtra = true;
    long const alive = log.alive;
    SpyProgress progress;
    EXPECT_TRUE(Copy(SrCode("Aaaa"), nullptr, &progress));
    EXPECT_EQ(Lines(log.lines.begin() + 4, log.lines.end()),
              (Lines{"one read SmVideoSpec new 0 1 0 5245535a", "new write SmVideoSpec 0 3 0 at 1",
                     "one read SmVideoSpec into 1 1 0 5245535a", "new write SmVideoSpec 1 3 0 at 0",
                     "one read SmVideoSpec into 2 1 0 5245535a", "new write SmVideoSpec 2 3 0 at 2"}));
    EXPECT_EQ(progress.reports, (Lines{"0/3", "1/3", "2/3", "100/100"}));
    media->DeleteTrack(track);
    target->DeleteTrack(target->GetTrack(0));
    EXPECT_EQ(log.alive, alive - 1) << "the frame and the extras are gone; so is the track";
}

TEST_F(MediaObjects, Copy_TakesTheSpecOfEachTrackOrTheGivenOne) {
    track->spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    track->spec->mQuality = 11;
    EXPECT_TRUE(Copy(0));
    EXPECT_EQ(target->lastTrack->spec->mQuality, 11);
    EXPECT_EQ(track->spec->ReferenceCount(), 1);
    auto const given = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    given->mQuality = 22;
    EXPECT_TRUE(Copy(0, given.Get()));
    EXPECT_EQ(target->lastTrack->spec->mQuality, 22);
    EXPECT_EQ(given->ReferenceCount(), 1);
}

TEST_F(MediaObjects, Copy_LeavesOutTracksThatTheTargetHasNot) {
    AddTrack("two");
    target->acceptedTrack = SrCode("AUDI");
    SpyProgress progress;
    EXPECT_TRUE(Copy(0, nullptr, &progress));
    EXPECT_EQ(Lines(log.lines.begin() + 3, log.lines.end()),
              (Lines{"new track refused", "new track refused"}));
    EXPECT_EQ(progress.reports, Lines{"100/100"});
}

TEST_F(MediaObjects, Copy_ReportsTheEndOnce) {
    AddTrack("two");
    SpyProgress progress;
    EXPECT_TRUE(Copy(0, nullptr, &progress));
    EXPECT_EQ(progress.reports, (Lines{"0/1", "0/1", "100/100"}));
}

TEST_F(MediaObjects, Copy_OfAnUnknownSourceIsFalse) {
    format->confidence = 0;
    EXPECT_FALSE(Copy(SrCode("Aaaa")));
    EXPECT_EQ(log.lines, Lines{"Aaaa asked"});
}

TEST_F(MediaObjects, Copy_ToATypeThatNobodyWritesThrows) {
    EXPECT_EQ(OutcomeOf([&] { Copy(SrCode("Xxxx")); }), (Outcome{SkUnrecognizedMedia(), 8}));
    format->canWrite = false;
    EXPECT_EQ(OutcomeOf([&] { Copy(0); }), (Outcome{SkUnrecognizedMedia(), 8}));
    EXPECT_EQ(media->ReferenceCount(), 2);
}

TEST_F(MediaObjects, Copy_OfATrackThatReadsNothingThrows) {
    track->makesObject = false;
    EXPECT_EQ(OutcomeOf([&] { Copy(0); }), (Outcome{SkMediaFileIsEmpty(), 9}));
}

TEST_F(MediaObjects, Copy_ThatThrowsReleasesWhatItHolds) {
    track->frames = 3;
    track->makesExtra = true;
    auto const check = [&](char const* where) {
        target->DeleteTrack(target->GetTrack(0));
        EXPECT_EQ(media->ReferenceCount(), 2) << where;
        EXPECT_EQ(target->ReferenceCount(), 1) << where;
    };
    long const alive = log.alive;
    track->throws = true;
    EXPECT_EQ(ErrorOf([&] { Copy(0); }), -50);
    check("reading");
    track->throws = false;
    target->tracksThrow = true;
    EXPECT_EQ(ErrorOf([&] { Copy(0); }), -50);
    check("writing");
    target->tracksThrow = false;
    SpyProgress progress;
    progress.throwAt = 2;
    EXPECT_EQ(ErrorOf([&] { Copy(0, nullptr, &progress); }), -128);
    check("cancelled");
    EXPECT_EQ(log.alive, alive);
}

// --- images

TEST_F(MediaObjects, WriteImager_GivesEachLayerThatIsToBeSavedToTheNextTrack) {
    auto const image = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
    image->IImagerImage();
    bool const intents[] = {false, true, true, true};
    for (bool const intent : intents) {
        auto const layer = StRef<SmImagerFrame>::Adopt(SrMakeFrame({1, 1}, SrCode("ColB"), false, false));
        image->AddLayer(layer.Get());
        layer->SetSaveIntent(intent);
    }
    image->SetLayer(2, nullptr);  // the second that would be saved is gone
    AddTrack("two");
    log.lines.clear();
    SrWriteImagerToMedia(media.Get(), image.Get(), 7, kLastFrame);
    EXPECT_EQ(log.lines, (Lines{"one write SmImagerFrame 7 1 0 at 2", "two write SmImagerFrame 7 1 0 at 2"}));

    log.lines.clear();
    image->GetLayer(0)->SetSaveIntent(true);
    SrWriteImagerToMedia(media.Get(), image.Get(), 0, kOnlyFrame);
    EXPECT_EQ(log.lines, (Lines{"one write SmImagerFrame 0 1 0 at 3", "two write SmImagerFrame 0 1 0 at 3"}))
        << "there is no third track, and none is made";
    EXPECT_EQ(media->NumberOfTracks(), 2);
}

}  // namespace
