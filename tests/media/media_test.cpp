#include "framewright/media/media.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "framewright/frame/frame.h"
#include "framewright/imagery/track.h"
#include "framewright/thornmere/numbers.h"
#include "media/media_test_support.h"

namespace {

using namespace media_test;
using Lines = std::vector<std::string>;

class Media : public testing::Test {
  protected:
    ~Media() override { EXPECT_EQ(log.alive, 0); }

    StRef<SpyTrack> NewTrack(char const* name = "track") {
        auto track = StRef<SpyTrack>::Adopt(new SpyTrack(log));
        track->name = name;
        return track;
    }
    StRef<SpyMedia> NewMedia() {
        auto media = StRef<SpyMedia>::Adopt(new SpyMedia(log));
        media->IMedia();
        return media;
    }

    Log log;
};

/// Media of a format that says nothing of its own.
class PlainMedia : public SmMedia {};
class PlainTrack : public SmMediaTrack {};

// --- media

TEST_F(Media, BasesAreAbstract) {
    EXPECT_EQ(ErrorOf([] { SmMedia::New(); }), SkAbstractClassErrC());
    EXPECT_EQ(ErrorOf([] { SmMediaTrack::New(); }), SkAbstractClassErrC());
    EXPECT_STREQ(SmMedia::ClassName(), "SmMedia");
    EXPECT_STREQ(SmMediaTrack::ClassName(), "SmMediaTrack");
}

TEST_F(Media, BaseAnswers) {
    auto const media = StRef<SmMedia>::Adopt(new PlainMedia);
    media->IMedia();
    ScMediaInline location;
    EXPECT_EQ(ErrorOf([&] { media->Open(&location); }), SkAbstractClassErrC());
    EXPECT_EQ(media->NewTrack(kVideoTrack, nullptr), nullptr);
    EXPECT_EQ(media->GetMediaType(), 0U);
    EXPECT_EQ(media->GetLocation(), nullptr);
    media->Close();
}

TEST_F(Media, OpenNew_KeepsAClone) {
    auto const media = NewMedia();
    {
        auto const location = LocationOf("/no such/a.pic");
        media->OpenNew(location.get());
        EXPECT_NE(media->GetLocation(), location.get());
    }
    EXPECT_EQ(PathOf(*media->GetLocation()), "/no such/a.pic");
    media->OpenNew(LocationOf("/no such/b.pic").get());
    EXPECT_EQ(PathOf(*media->GetLocation()), "/no such/b.pic");
}

TEST_F(Media, Tracks_AreHeldInOrder) {
    auto const media = NewMedia();
    auto const first = NewTrack(), second = NewTrack();
    EXPECT_EQ(media->NumberOfTracks(), 0);
    media->AddTrack(first.Get());
    media->AddTrack(second.Get());
    media->AddTrack(first.Get());
    media->AddTrack(nullptr);
    EXPECT_EQ(media->NumberOfTracks(), 3);
    EXPECT_EQ(first->ReferenceCount(), 3);
    EXPECT_EQ(media->GetTrack(0), first.Get());
    EXPECT_EQ(media->GetTrack(1), second.Get());
    EXPECT_EQ(media->GetTrack(2), first.Get());
    EXPECT_EQ(media->GetTrack(3), nullptr);
    EXPECT_EQ(media->GetTrack(-1), nullptr);
    EXPECT_EQ(first->ReferenceCount(), 3) << "GetTrack lends";

    media->DeleteTrack(first.Get());
    EXPECT_EQ(media->NumberOfTracks(), 2);
    EXPECT_EQ(media->GetTrack(0), second.Get()) << "the first match goes";
    EXPECT_EQ(first->ReferenceCount(), 2);
    media->DeleteTrack(nullptr);
    media->DeleteTrack(NewTrack().Get());
    EXPECT_EQ(media->NumberOfTracks(), 2);
}

TEST_F(Media, GetDuration_IsTheFirstTracksOrOne) {
    auto const media = NewMedia();
    EXPECT_EQ(media->GetDuration(), 1.0);
    auto const first = NewTrack(), second = NewTrack();
    first->frames = 5;
    second->frames = 90;
    media->AddTrack(first.Get());
    media->AddTrack(second.Get());
    EXPECT_EQ(media->GetDuration(), 0.5);
}

TEST_F(Media, Free_GivesBackTracksAndLocation) {
    auto const media = NewMedia();
    auto const track = NewTrack();
    media->AddTrack(track.Get());
    media->OpenNew(LocationOf("/no such/a.pic").get());
    media->Free();
    EXPECT_EQ(track->ReferenceCount(), 1);
    EXPECT_EQ(media->NumberOfTracks(), 0);
    EXPECT_EQ(media->GetLocation(), nullptr);
    media->Free();
}

// A format with class machinery, for the object contract.
}  // namespace

SM_CLASS(SmTestMedia, SmMedia, 0);
class SmTestMedia : public SmManaged<SmTestMedia> {
    friend SmManaged<SmTestMedia>;

  protected:
    void CloneFrom(SmTestMedia const& other) { SmMedia::CloneFrom(other); }
};
SM_DEFINE_CLASS(SmTestMedia);

SM_CLASS(SmTestTrack, SmMediaTrack, 0);
class SmTestTrack : public SmManaged<SmTestTrack> {
    friend SmManaged<SmTestTrack>;

  public:
    ScMediaLocation* TestLocation() { return Location(); }

  protected:
    void CloneFrom(SmTestTrack const& other) { SmMediaTrack::CloneFrom(other); }
};
SM_DEFINE_CLASS(SmTestTrack);

namespace {

TEST_F(Media, Clone_SharesTracksAndClonesTheLocation) {
    auto const media = StRef<SmTestMedia>::Adopt(SmTestMedia::New());
    auto const track = NewTrack();
    media->AddTrack(track.Get());
    media->OpenNew(LocationOf("/no such/a.pic").get());
    auto const copy = StRef<SmTestMedia>::Adopt(media->Clone());
    EXPECT_EQ(copy->GetTrack(0), track.Get());
    EXPECT_EQ(track->ReferenceCount(), 3);
    EXPECT_NE(copy->GetLocation(), media->GetLocation());
    EXPECT_EQ(PathOf(*copy->GetLocation()), "/no such/a.pic");
    EXPECT_GT(RefusedRuns([&] { StRef<SmTestMedia>::Adopt(media->Clone()); }), 2);

    auto const empty = StRef<SmTestMedia>::Adopt(SmTestMedia::New());
    media->ImplementBecome(empty.Get());
    EXPECT_EQ(media->NumberOfTracks(), 0);
    EXPECT_EQ(media->GetLocation(), nullptr);
    EXPECT_EQ(track->ReferenceCount(), 2);
}

// --- tracks

TEST_F(Media, Track_BaseAnswers) {
    auto const track = StRef<SmMediaTrack>::Adopt(new PlainTrack);
    EXPECT_EQ(track->GetTrackType(), SrCode("VIDE"));
    EXPECT_EQ(track->GetSpec(), nullptr);
    track->SetSpec(nullptr);
    EXPECT_EQ(track->NumberOfObjectClasses(), 2);
    EXPECT_EQ(track->ObjectClass(0), SmImagerFrame::Class());
    EXPECT_EQ(track->ObjectClass(1), SmImagerTrack::Class());
    EXPECT_EQ(track->ObjectClass(2), nullptr);
    EXPECT_EQ(track->ObjectClass(-1), nullptr);
}

TEST_F(Media, Track_OpenKeepsAClone) {
    auto const track = StRef<SmTestTrack>::Adopt(SmTestTrack::New());
    EXPECT_EQ(track->TestLocation(), nullptr);
    track->Open(LocationOf("/no such/a.pic").get());
    EXPECT_EQ(PathOf(*track->TestLocation()), "/no such/a.pic");
    auto const copy = StRef<SmTestTrack>::Adopt(track->Clone());
    track->Free();
    EXPECT_EQ(track->TestLocation(), nullptr);
    EXPECT_EQ(PathOf(*copy->TestLocation()), "/no such/a.pic");
}

TEST_F(Media, Track_GetDurationIsFramesOverRate) {
    auto const track = NewTrack();
    track->frames = 3;
    track->rate = 12.0F;
    EXPECT_EQ(track->GetDuration(), 0.25);
    track->rate = 0.0F;
    EXPECT_EQ(track->GetDuration(), 0.0) << "no division by zero";
    track->rate = -1.0F;
    EXPECT_EQ(track->GetDuration(), -3.0);
}

TEST_F(Media, Track_OtherClassesDoNothing) {
    auto const track = StRef<SmMediaTrack>::Adopt(new PlainTrack);
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    for (ScMC_* cls : {SmObject::Class(), SmImagerFrame::Class(), static_cast<ScMC_*>(nullptr)}) {
        track->ReadFrames(object, cls, extra, 0, 1, 0, nullptr, 0);
        EXPECT_EQ(object, nullptr);
        track->WriteFrames(nullptr, cls, 0, 1, 0, 3, nullptr);
    }
    track->WriteFrames(nullptr, SmImagerTrack::Class(), 0, 1, 0, 3, nullptr);
    // An object that is not of the class that was named.
    auto const other = StRef<SpyObject>::Adopt(new SpyObject(log));
    object = other.Get();
    track->ReadFrames(object, SmImagerTrack::Class(), extra, 0, 1, 0, nullptr, 0);
    EXPECT_EQ(object, other.Get());
    track->WriteFrames(object, SmImagerTrack::Class(), 0, 1, 0, 3, nullptr);
}

// --- times

TEST_F(Media, ReadTime_WithoutASequenceReadsFrameZero) {
    auto const track = NewTrack();
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    track->ReadTime(object, SmObject::Class(), extra, 7.5, 3.0, 2.0, nullptr, 1);
    object->ReleaseReference();
    track->spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    object = nullptr;
    SpyProgress progress;
    track->ReadTime(object, SmObject::Class(), extra, 7.5, 3.0, 2.0, &progress, 1);
    object->ReleaseReference();
    EXPECT_EQ(log.lines,
              (Lines{"track read SmObject new 0 1 0 1", "track read SmObject new 0 1 0 progress 1"}));
}

TEST_F(Media, ReadTime_OfASequenceRoundsRateTimesSecondsDown) {
    auto const track = NewTrack();
    track->spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    track->spec->mIsSequence = true;
    track->rate = 10.0F;
    track->makesObject = false;
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    track->ReadTime(object, SmObject::Class(), extra, 0.79, 0.3125, 1.0, nullptr, 0);
    track->ReadTime(object, SmObject::Class(), extra, -0.01, -1.0, 0.0, nullptr, 0);
    track->ReadTime(object, SmObject::Class(), extra, 1e300, std::numeric_limits<double>::quiet_NaN(), -1e300,
                    nullptr, 0);
    EXPECT_EQ(log.lines, (Lines{"track read SmObject new 7 3 10 0", "track read SmObject new -1 -10 0 0",
                                "track read SmObject new -2147483648 -2147483648 -2147483648 0"}));
}

TEST_F(Media, WriteTime_TakesTheTimesForFrameNumbers) {
    auto const track = NewTrack();
    track->rate = 10.0F;
    track->spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    track->spec->mIsSequence = true;
    track->WriteTime(nullptr, SmObject::Class(), 2.9, 3.1, -1.9, 2, nullptr);
    SpyProgress progress;
    track->WriteTime(nullptr, SmObject::Class(), 1e300, std::nan(""), 0.0, 0, &progress);
    EXPECT_EQ(log.lines, (Lines{"track write SmObject null 2 3 -1 at 2",
                                "track write SmObject null -2147483648 -2147483648 0 at 0 progress"}));
}

// --- the sign of a sequence

TEST_F(Media, NextInSequence_AsksForTheNumberBehind) {
    struct {
        char const* name;
        short confidence;
        bool result;
        std::size_t asked;
    } const rows[] = {
        {"a01.spy", 10, true, 1}, {"a01.spy", 9, false, 1}, {"a01.spy", 0, false, 1},
        {"a00.spy", 10, true, 1}, {"a.spy", 10, false, 0},  {"a1.spy", 10, false, 0},
    };
    for (auto const& row : rows) {
        log.lines.clear();
        auto const format = StRef<SpyRecognizer>::Adopt(new SpyRecognizer(log, 1, row.confidence));
        auto const location = LocationOf(std::string("/no such/") + row.name);
        EXPECT_EQ(media::NextInSequenceIsCertain(*location, *format), row.result) << row.name;
        EXPECT_EQ(log.lines.size(), row.asked) << row.name;
        EXPECT_EQ(PathOf(*location), std::string("/no such/") + row.name);
    }
}

TEST_F(Media, NextInSequence_OfANameThatCannotGrow) {
    TempFolder const folder;
    auto const format = StRef<SpyRecognizer>::Adopt(new SpyRecognizer(log, 1, 10));
    std::string const name = std::string(249, 'a') + "99.spy";
    EXPECT_FALSE(media::NextInSequenceIsCertain(*LocationOf(folder.Write(name)), *format));
}

}  // namespace
