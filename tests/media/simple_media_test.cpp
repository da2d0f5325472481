// Simple media, through formats that record how they are called.
#include "framewright/media/simple_media.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "framewright/frame/layer_factory.h"
#include "framewright/imagery/track.h"
#include "media_test_support.h"

namespace {

using media_test::ErrorOf;
using media_test::LocationOf;
using media_test::PathOf;
using media_test::SpyProgress;
using media_test::TempFolder;

using Lines = std::vector<std::string>;

constexpr unsigned long kVideo = SrCode("VIDE");
constexpr unsigned long kResize = SrCode("RESZ");

/// A format whose files are those that exist; frames are one pixel, whose red is the frame's number.
class SpyFormat : public SmMediaSimple {
  public:
    unsigned long GetType() override { return SrCode("Spy "); }
    short CanOpen(ScMediaLocation* location) override {
        StFileInfo info;
        return location->GetFileInfo(info) == kSearchFound ? confidence : static_cast<short>(0);
    }
    void ReadFrame(ScMediaLocation* location, SmImagerFrame*& frame, long number,
                   ScProgressIndicator* progress, unsigned long option) override {
        Note("read", location, number, progress);
        lines.back() += frame ? " into" : " new";
        if (option == kResize) lines.back() += " resized";
        if (fails) SrThrow(-50, nullptr);
        if (!frame && makesFrames) frame = SrMakeFrame({1, 1}, SrCode("ColB"), false, false);
        if (frame) frame->PutPixelAt(0, 0, StRGBA32Pixel{0, 0, static_cast<unsigned char>(number), 255});
    }
    void WriteFrame(ScMediaLocation* location, SmImagerFrame* frame, long number,
                    ScProgressIndicator* progress) override {
        Note("write", location, number, progress);
        if (frame) lines.back() += " red " + std::to_string(frame->GetRGBAPixelAt(0, 0).red);
        if (fails) SrThrow(-50, nullptr);
    }
    SmMedia* Current() { return mCurrentMedia; }

    Lines lines;
    short confidence = 10;
    bool fails = false;
    bool makesFrames = true;
    SmMedia* expectedMedia = nullptr;

  protected:
    void Note(char const* what, ScMediaLocation* location, long number, ScProgressIndicator* progress) {
        ScHeapString path;
        location->GetFullPath(path);
        std::string const text = path.AsCString();
        lines.push_back(std::string(what) + " " + text.substr(text.rfind('/') + 1) + " " +
                        std::to_string(number) + (progress ? " progress" : ""));
        EXPECT_EQ(mCurrentMedia, expectedMedia);
    }
};

/// The same with many frames in a file.
class SpyMovieFormat : public SpyFormat {
  public:
    bool IsMovieFormat(ScMediaLocation*) override { return true; }
    double DurationOfFile(ScMediaLocation*) override {
        sawMedia = mCurrentMedia;
        return duration;
    }
    double duration = 2.0;
    SmMedia* sawMedia = nullptr;
};

template <class T>
StRef<T> Made() {
    return StRef<T>::Adopt(new T);
}

/// A format with its media open on a file.
template <class Format>
struct Opened {
    explicit Opened(std::string const& path) : format(Made<Format>()), location(LocationOf(path)) {
        EXPECT_EQ(format->Recognize(location.get(), nullptr, &media, 0, nullptr), format->confidence);
        format->expectedMedia = media.Get();
    }
    SmMediaTrack* Track() const { return media->GetTrack(0); }
    bool IsSequence() const {
        auto const spec = StRef<SmTrackSpec>::Adopt(Track()->GetSpec());
        return static_cast<SmVideoSpec*>(spec.Get())->mIsSequence;
    }

    StRef<Format> format;
    std::unique_ptr<ScMediaFileLocation> location;
    StRef<SmMedia> media;
};

/// Writes files s<first>.spy and on, with two digits.
void WriteSequence(TempFolder const& folder, int first, int count) {
    for (int i = first; i < first + count; ++i) {
        folder.Write(std::string("s") + static_cast<char>('0' + i / 10) + static_cast<char>('0' + i % 10) +
                     ".spy");
    }
}

StRef<SmObject> ReadFrameOf(SmMediaTrack* track, long first) {
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    track->ReadFrames(object, SmImagerFrame::Class(), extra, first, 1, 0, nullptr, 0);
    EXPECT_EQ(extra, nullptr);
    return StRef<SmObject>::Adopt(object);
}

StRef<SmImagerTrack> TrackOf(std::vector<int> const& reds) {
    auto track = StRef<SmImagerTrack>::Adopt(SmImagerTrack::New());
    track->IImagerTrack();
    for (std::size_t i = 0; i < reds.size(); ++i) {
        if (reds[i] < 0) continue;
        auto const frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({1, 1}, SrCode("ColB"), false, false));
        frame->PutPixelAt(0, 0, StRGBA32Pixel{0, 0, static_cast<unsigned char>(reds[i]), 255});
        track->SetFrame(static_cast<long>(i), frame.Get());
    }
    return track;
}

// The recognizer.

TEST(SimpleRecognizer, Base_IsAStillFormatThatOpensNothing) {
    auto const base = StRef<SmMediaSimple>::Adopt(SmMediaSimple::New());
    EXPECT_STREQ(base->GetClassName(), "SmMediaSimple");
    EXPECT_TRUE(base->IsMemberOf(SmMediaRecognizer::Class()));
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.spy"));
    EXPECT_FALSE(base->IsMovieFormat(location.get()));
    EXPECT_EQ(base->DurationOfFile(location.get()), 0.0);
    EXPECT_EQ(base->CanOpen(location.get()), 0);
    StRef<SmMedia> media;
    EXPECT_EQ(base->Recognize(location.get(), nullptr, &media, 0, nullptr), 0);
    EXPECT_FALSE(media);
}

TEST(SimpleRecognizer, Recognize_GivesConfidenceTypeAndMedia) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.spy"));
    auto const format = Made<SpyFormat>();
    for (short confidence : {0, 1, 5, 10}) {
        format->confidence = confidence;
        unsigned long type = 0;
        StRef<SmMedia> media;
        EXPECT_EQ(format->Recognize(location.get(), &type, &media, 0, nullptr), confidence);
        EXPECT_EQ(type, SrCode("Spy "));  // also of a file that is not of the format
        EXPECT_EQ(static_cast<bool>(media), confidence > 0);
        if (!media) continue;
        EXPECT_EQ(media->ReferenceCount(), 1);
        EXPECT_EQ(media->GetClass(), SmMediaStreamSimple::Class());
        EXPECT_EQ(media->GetMediaType(), SrCode("Spy "));
        EXPECT_EQ(PathOf(*media->GetLocation()), folder.Path("a.spy"));
        EXPECT_NE(media->GetLocation(), location.get());
    }
    EXPECT_EQ(format->ReferenceCount(), 1);
}

TEST(SimpleRecognizer, Objects_AreFramesAndTracks) {
    auto const format = Made<SpyFormat>();
    EXPECT_EQ(format->NumberOfObjectClasses(), 2);
    unsigned long family = 0;
    EXPECT_EQ(format->ObjectClass(0, &family), SmImagerFrame::Class());
    EXPECT_EQ(family, kVideo);
    family = 0;
    EXPECT_EQ(format->ObjectClass(1, &family), SmImagerTrack::Class());
    EXPECT_EQ(family, kVideo);
    EXPECT_EQ(format->ObjectClass(2, nullptr), nullptr);
    EXPECT_EQ(format->ObjectClass(-1, nullptr), nullptr);
}

TEST(SimpleRecognizer, NewMedia_HasALocationAndNoTrack) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Path("new.spy"));
    auto const format = Made<SpyFormat>();
    auto const media = StRef<SmMedia>::Adopt(format->NewMedia(location.get()));
    EXPECT_EQ(media->ReferenceCount(), 1);
    EXPECT_EQ(PathOf(*media->GetLocation()), folder.Path("new.spy"));
    EXPECT_EQ(media->NumberOfTracks(), 0);
    EXPECT_EQ(media->GetDuration(), 1.0);
    media->Close();
}

/// A format with media of its own, which cannot be opened.
class FailingMediaFormat : public SpyFormat {
  public:
    class Media : public SmMediaStreamSimple {
      public:
        void Open(ScMediaLocation*) override { SrThrow(-50, nullptr); }
    };
    SmMedia* NewMediaObject() override {
        auto media = Made<Media>();
        media->ISimple(this);
        return media.Release();
    }
};

TEST(SimpleRecognizer, MediaThatCannotBeOpened_IsReleased) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.spy"));
    auto const format = Made<FailingMediaFormat>();
    StRef<SmMedia> media;
    EXPECT_EQ(ErrorOf([&] { format->Recognize(location.get(), nullptr, &media, 0, nullptr); }), -50);
    EXPECT_FALSE(media);
    EXPECT_EQ(format->ReferenceCount(), 1);
}

TEST(SimpleRecognizer, RefusedMemory_Is108AndNothingStays) {
    TempFolder const folder;
    WriteSequence(folder, 1, 3);
    auto const format = Made<SpyFormat>();
    auto const location = LocationOf(folder.Path("s01.spy"));
    EXPECT_GT(media_test::RefusedRuns([&] {
                  StRef<SmMedia> media;
                  format->Recognize(location.get(), nullptr, &media, 0, nullptr);
              }),
              0);
    EXPECT_EQ(format->ReferenceCount(), 1);
}

// Opening: sequences and counts.

TEST(SimpleTrack, Still_HasOneFrame) {
    TempFolder const folder;
    Opened<SpyFormat> const opened(folder.Write("a.spy"));
    EXPECT_EQ(opened.media->NumberOfTracks(), 1);
    SmMediaTrack* const track = opened.Track();
    EXPECT_EQ(track->GetClass(), SmMediaTrackSimple::Class());
    EXPECT_EQ(track->ReferenceCount(), 1);
    EXPECT_EQ(track->GetTrackType(), kVideo);
    EXPECT_EQ(track->NumberOfFrames(), 1);
    EXPECT_FALSE(opened.IsSequence());
    EXPECT_EQ(track->GetFrameRate(), 15.0F);
    EXPECT_EQ(track->GetFrameSize(), (StPoint{200, 320}));
    EXPECT_EQ(track->GetDuration(), 1 / 15.0);
    EXPECT_EQ(track->NumberOfObjectClasses(), 2);
    EXPECT_EQ(track->ObjectClass(0), SmImagerFrame::Class());
    EXPECT_EQ(track->ObjectClass(1), SmImagerTrack::Class());
}

TEST(SimpleTrack, NumberedFiles_AreASequence) {
    struct Row {
        int first, count, opened;
        long frames;
        bool sequence;
    };
    Row const rows[] = {
        {1, 1, 1, 1, false},  // a number without a file behind it
        {1, 2, 1, 2, true},  {1, 5, 1, 5, true},
        {0, 5, 0, 5, true},  {1, 5, 4, 2, true},  // counted from the file that was opened
        {1, 5, 5, 1, false},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << row.count << " files from " << row.first << ", opened " << row.opened);
        TempFolder const folder;
        WriteSequence(folder, row.first, row.count);
        Opened<SpyFormat> const opened(folder.Path("s0" + std::to_string(row.opened) + ".spy"));
        EXPECT_EQ(opened.Track()->NumberOfFrames(), row.frames);
        EXPECT_EQ(opened.IsSequence(), row.sequence);
    }
}

/// Sure of a file only when its name ends in an even number.
class EvenFormat : public SpyFormat {
  public:
    short CanOpen(ScMediaLocation* location) override {
        short const sure = SpyFormat::CanOpen(location);
        return location->GetSequence() % 2 == 0 ? sure : std::min<short>(sure, 9);
    }
};

TEST(SimpleTrack, NextFileMustBeSure_OrCounted) {
    // The next file is not sure, yet two files follow each other.
    TempFolder const folder;
    WriteSequence(folder, 2, 2);
    auto const format = Made<EvenFormat>();
    StRef<SmMedia> media;
    auto const location = LocationOf(folder.Path("s02.spy"));
    format->Recognize(location.get(), nullptr, &media, 0, nullptr);
    EXPECT_EQ(media->GetTrack(0)->NumberOfFrames(), 2);
}

TEST(SimpleTrack, Movie_CountsFromDurationAndRate) {
    struct Row {
        double duration;
        long frames;
    };
    Row const rows[] = {{2.0, 30}, {0.0, 0}, {0.1, 1}, {0.99, 14}, {1e300, INT32_MIN}};
    TempFolder const folder;
    WriteSequence(folder, 1, 3);
    for (Row const& row : rows) {
        auto const format = Made<SpyMovieFormat>();
        format->duration = row.duration;
        StRef<SmMedia> media;
        auto const location = LocationOf(folder.Path("s01.spy"));
        format->Recognize(location.get(), nullptr, &media, 0, nullptr);
        EXPECT_EQ(media->GetTrack(0)->NumberOfFrames(), row.frames);
        EXPECT_EQ(format->sawMedia, media.Get());
        EXPECT_EQ(format->Current(), nullptr);
        auto const spec = StRef<SmTrackSpec>::Adopt(media->GetTrack(0)->GetSpec());
        EXPECT_FALSE(static_cast<SmVideoSpec*>(spec.Get())->mIsSequence);  // whatever files lie beside it
    }
}

TEST(SimpleTrack, MovieReopenedWithAnotherRate_CountsAnew) {
    TempFolder const folder;
    Opened<SpyMovieFormat> const opened(folder.Write("a.spy"));
    auto* const track = static_cast<SmMediaTrackSimple*>(opened.Track());
    EXPECT_EQ(track->NumberOfFrames(), 30);
    EXPECT_EQ(track->GetDuration(), 2.0);
    auto const spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    spec->IVideoSpec();
    spec->mFrameRate = 10.0F;
    spec->mIsSequence = true;
    track->SetSpec(spec.Get());
    EXPECT_EQ(track->NumberOfFrames(), 30);
    track->Open(opened.location.get());
    EXPECT_EQ(track->NumberOfFrames(), 20);
    EXPECT_FALSE(opened.IsSequence());
}

// Specs.

TEST(SimpleTrack, Spec_GoesInAndOutAsACopy) {
    TempFolder const folder;
    Opened<SpyFormat> const opened(folder.Write("a.spy"));
    auto const spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    spec->IVideoSpec();
    spec->mFrameSize = {3, 4};
    spec->mFrameRate = 25.0F;
    opened.Track()->SetSpec(spec.Get());
    EXPECT_EQ(spec->ReferenceCount(), 1);
    spec->mFrameRate = 99.0F;
    EXPECT_EQ(opened.Track()->GetFrameRate(), 25.0F);
    EXPECT_EQ(opened.Track()->GetFrameSize(), (StPoint{3, 4}));
    auto const out = StRef<SmTrackSpec>::Adopt(opened.Track()->GetSpec());
    EXPECT_EQ(out->ReferenceCount(), 1);
    static_cast<SmVideoSpec*>(out.Get())->mFrameRate = 98.0F;
    EXPECT_EQ(opened.Track()->GetFrameRate(), 25.0F);

    opened.Track()->SetSpec(nullptr);
    EXPECT_EQ(opened.Track()->GetFrameRate(), 25.0F);
}

TEST(SimpleMedia, NewTrack_TakesVideoAlone) {
    TempFolder const folder;
    auto const format = Made<SpyFormat>();
    auto const location = LocationOf(folder.Path("new.spy"));
    auto const media = StRef<SmMedia>::Adopt(format->NewMedia(location.get()));
    EXPECT_EQ(media->NewTrack(SrCode("AUDI"), nullptr), nullptr);
    EXPECT_EQ(media->NumberOfTracks(), 0);
    auto const spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    spec->IVideoSpec();
    spec->mFrameRate = 7.0F;
    SmMediaTrack* const track = media->NewTrack(kVideo, spec.Get());
    ASSERT_TRUE(track);
    EXPECT_EQ(media->GetTrack(0), track);
    EXPECT_EQ(track->ReferenceCount(), 1);
    EXPECT_EQ(track->GetFrameRate(), 7.0F);
    EXPECT_EQ(media->NewTrack(kVideo, nullptr)->GetFrameRate(), 15.0F);
}

TEST(SimpleMedia, NewTrackBesideNumberedFiles_IsNoSequence) {
    // One frame that is saved as s01 goes into s01, whatever stands beside it.
    TempFolder const folder;
    WriteSequence(folder, 1, 3);
    auto const format = Made<SpyFormat>();
    auto const location = LocationOf(folder.Path("s02.spy"));
    auto const media = StRef<SmMedia>::Adopt(format->NewMedia(location.get()));
    format->expectedMedia = media.Get();
    auto const frames = TrackOf({5});
    media->NewTrack(kVideo, nullptr)
        ->WriteFrames(frames->GetStoredFrame(0), SmImagerFrame::Class(), 0, 1, 0, 3, nullptr);
    EXPECT_EQ(format->lines, (Lines{"write s02.spy 0 red 5"}));
}

// Reading.

TEST(SimpleRead, StillWithoutANumber_ReadsItsFile) {
    TempFolder const folder;
    Opened<SpyFormat> const opened(folder.Write("a.spy"));
    // Its number is -1, and that is what is added.
    StRef<SmObject> const frame = ReadFrameOf(opened.Track(), 0);
    EXPECT_TRUE(frame->IsMemberOf(SmImagerFrame::Class()));
    EXPECT_EQ(frame->ReferenceCount(), 1);
    ReadFrameOf(opened.Track(), 3);
    EXPECT_EQ(opened.format->lines, (Lines{"read a.spy -1 new", "read a.spy 2 new"}));
    EXPECT_EQ(opened.format->Current(), nullptr);
}

TEST(SimpleRead, Sequence_AddsTheNumberOfTheFile) {
    TempFolder const folder;
    WriteSequence(folder, 3, 3);
    Opened<SpyFormat> const opened(folder.Path("s03.spy"));
    for (long i = 0; i < 3; ++i)
        ReadFrameOf(opened.Track(), i);
    EXPECT_EQ(opened.format->lines,
              (Lines{"read s03.spy 3 new", "read s04.spy 4 new", "read s05.spy 5 new"}));
    EXPECT_EQ(PathOf(*opened.location), folder.Path("s03.spy"));
}

TEST(SimpleRead, NumberedStillThatIsNoSequence_StaysOnItsFile) {
    TempFolder const folder;
    WriteSequence(folder, 7, 1);
    Opened<SpyFormat> const opened(folder.Path("s07.spy"));
    ReadFrameOf(opened.Track(), 2);
    EXPECT_EQ(opened.format->lines, (Lines{"read s07.spy 9 new"}));
}

TEST(SimpleRead, Movie_AddsNothing) {
    TempFolder const folder;
    WriteSequence(folder, 3, 3);
    Opened<SpyMovieFormat> const opened(folder.Path("s03.spy"));
    ReadFrameOf(opened.Track(), 5);
    EXPECT_EQ(opened.format->lines, (Lines{"read s03.spy 5 new"}));
}

TEST(SimpleRead, GivenFrameOptionAndProgress_ArePassedOn) {
    TempFolder const folder;
    Opened<SpyMovieFormat> const opened(folder.Write("a.spy"));
    auto const given = StRef<SmImagerFrame>::Adopt(SrMakeFrame({1, 1}, SrCode("ColB"), false, false));
    SmObject* object = given.Get();
    SmObject* extra = nullptr;
    SpyProgress progress;
    opened.Track()->ReadFrames(object, SmImagerFrame::Class(), extra, 4, 1, 0, &progress, kResize);
    EXPECT_EQ(object, given.Get());
    EXPECT_EQ(given->ReferenceCount(), 1);
    EXPECT_EQ(opened.format->lines, (Lines{"read a.spy 4 progress into resized"}));
}

TEST(SimpleRead, OtherClasses_DoNothing) {
    TempFolder const folder;
    Opened<SpyFormat> const opened(folder.Write("a.spy"));
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    opened.Track()->ReadFrames(object, SmMedia::Class(), extra, 0, 1, 0, nullptr, 0);
    EXPECT_EQ(object, nullptr);
    EXPECT_TRUE(opened.format->lines.empty());
}

TEST(SimpleRead, Failure_ClearsTheCurrentMediaAndLeavesTheObject) {
    TempFolder const folder;
    Opened<SpyFormat> const opened(folder.Write("a.spy"));
    opened.format->fails = true;
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    for (ScMC_* const objectClass : {SmImagerFrame::Class(), SmImagerTrack::Class()}) {
        EXPECT_EQ(
            ErrorOf([&] { opened.Track()->ReadFrames(object, objectClass, extra, 0, 1, 0, nullptr, 0); }),
            -50);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(opened.format->Current(), nullptr);
    }
}

TEST(SimpleRead, Track_AddsTheNumberTwice) {
    // The number of the first file is added for the track and once more for each of its frames.
    TempFolder const folder;
    WriteSequence(folder, 1, 6);
    Opened<SpyFormat> const opened(folder.Path("s01.spy"));
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    opened.Track()->ReadFrames(object, SmImagerTrack::Class(), extra, 1, 3, 5, nullptr, 0);
    auto const track = StRef<SmObject>::Adopt(object);
    EXPECT_EQ(track->GetClass(), SmImagerTrack::Class());
    EXPECT_EQ(track->ReferenceCount(), 1);
    EXPECT_EQ(opened.format->lines,
              (Lines{"read s03.spy 3 new", "read s04.spy 4 new", "read s05.spy 5 new"}));
    auto* const frames = static_cast<SmImagerTrack*>(object);
    EXPECT_EQ(frames->GetStoredFrame(4), nullptr);
    for (long i = 0; i < 3; ++i) {
        ASSERT_TRUE(frames->GetStoredFrame(5 + i));
        EXPECT_EQ(frames->GetStoredFrame(5 + i)->ReferenceCount(), 1);
        EXPECT_EQ(frames->GetStoredFrame(5 + i)->GetRGBAPixelAt(0, 0).red, 3 + i);
    }
}

TEST(SimpleRead, TrackFromNumberZero_IsAsItLooks) {
    TempFolder const folder;
    WriteSequence(folder, 0, 3);
    Opened<SpyFormat> const opened(folder.Path("s00.spy"));
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    opened.Track()->ReadFrames(object, SmImagerTrack::Class(), extra, 0, 3, 0, nullptr, 0);
    auto const track = StRef<SmObject>::Adopt(object);
    EXPECT_EQ(opened.format->lines,
              (Lines{"read s00.spy 0 new", "read s01.spy 1 new", "read s02.spy 2 new"}));
}

TEST(SimpleRead, FramesThatTheTrackHolds_AreFilled) {
    TempFolder const folder;
    Opened<SpyMovieFormat> const opened(folder.Write("a.spy"));
    StRef<SmImagerTrack> const track = TrackOf({100, -1, 102});
    SmImagerFrame* const held = track->GetStoredFrame(0);
    SmObject* object = track.Get();
    SmObject* extra = nullptr;
    opened.Track()->ReadFrames(object, SmImagerTrack::Class(), extra, 7, 2, 0, nullptr, 0);
    EXPECT_EQ(object, track.Get());
    EXPECT_EQ(track->ReferenceCount(), 1);
    EXPECT_EQ(opened.format->lines, (Lines{"read a.spy 7 into", "read a.spy 8 new"}));
    EXPECT_EQ(track->GetStoredFrame(0), held);
    EXPECT_EQ(held->ReferenceCount(), 1);
    EXPECT_EQ(held->GetRGBAPixelAt(0, 0).red, 7);
    EXPECT_EQ(track->GetStoredFrame(1)->GetRGBAPixelAt(0, 0).red, 8);
    EXPECT_EQ(track->GetStoredFrame(2)->GetRGBAPixelAt(0, 0).red, 102);
}

TEST(SimpleRead, FormatThatMakesNoFrame_LeavesTheEntryEmpty) {
    TempFolder const folder;
    Opened<SpyMovieFormat> const opened(folder.Write("a.spy"));
    opened.format->makesFrames = false;
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    opened.Track()->ReadFrames(object, SmImagerTrack::Class(), extra, 0, 2, 0, nullptr, 0);
    auto const track = StRef<SmObject>::Adopt(object);
    EXPECT_EQ(static_cast<SmImagerTrack*>(object)->GetStoredFrame(0), nullptr);
}

TEST(SimpleRead, Times_AreFramesOfASequenceAlone) {
    TempFolder const folder;
    WriteSequence(folder, 0, 5);
    SmObject* object = nullptr;
    SmObject* extra = nullptr;
    Opened<SpyFormat> const sequence(folder.Path("s00.spy"));
    sequence.Track()->ReadTime(object, SmImagerFrame::Class(), extra, 0.21, 0.07, 0.0, nullptr,
                               0);  // 15 a second
    EXPECT_EQ(sequence.format->lines, (Lines{"read s03.spy 3 new"}));
    object->ReleaseReference();
    object = nullptr;

    Opened<SpyMovieFormat> const movie(folder.Write("a.spy"));
    movie.Track()->ReadTime(object, SmImagerFrame::Class(), extra, 0.21, 0.07, 0.0, nullptr, 0);
    EXPECT_EQ(movie.format->lines, (Lines{"read a.spy 0 new"}));
    object->ReleaseReference();
}

// Writing.

template <class Format>
struct Prepared {
    explicit Prepared(std::string const& path) : format(Made<Format>()), location(LocationOf(path)) {
        media = StRef<SmMedia>::Adopt(format->NewMedia(location.get()));
        format->expectedMedia = media.Get();
        track = media->NewTrack(kVideo, nullptr);
    }
    StRef<Format> format;
    std::unique_ptr<ScMediaFileLocation> location;
    StRef<SmMedia> media;
    SmMediaTrack* track;
};

TEST(SimpleWrite, OneFrame_GoesIntoTheFile) {
    TempFolder const folder;
    Prepared<SpyFormat> const prepared(folder.Path("s05.spy"));
    StRef<SmImagerTrack> const frames = TrackOf({9});
    SpyProgress progress;
    prepared.track->WriteFrames(frames->GetStoredFrame(0), SmImagerFrame::Class(), 0, 1, 0, 3, &progress);
    prepared.track->WriteFrames(frames->GetStoredFrame(0), SmImagerFrame::Class(), 4, 1, 0, 3, nullptr);
    EXPECT_EQ(prepared.format->lines, (Lines{"write s05.spy 0 progress red 9", "write s05.spy 4 red 9"}));
    EXPECT_EQ(prepared.format->Current(), nullptr);
}

TEST(SimpleWrite, MoreFrames_MakeASequenceFromNumberOneOn) {
    TempFolder const folder;
    Prepared<SpyFormat> const prepared(folder.Path("s05.spy"));
    StRef<SmImagerTrack> const frames = TrackOf({9});
    SmObject* const frame = frames->GetStoredFrame(0);
    prepared.track->WriteFrames(frame, SmImagerFrame::Class(), 0, 3, 0, 1, nullptr);
    prepared.track->WriteFrames(frame, SmImagerFrame::Class(), 1, 3, 0, 0, nullptr);
    // It stays one, also for a single frame.
    prepared.track->WriteFrames(frame, SmImagerFrame::Class(), 8, 1, 0, 3, nullptr);
    EXPECT_EQ(prepared.format->lines,
              (Lines{"write s01.spy 0 red 9", "write s02.spy 1 red 9", "write s09.spy 8 red 9"}));
    auto const spec = StRef<SmTrackSpec>::Adopt(prepared.track->GetSpec());
    EXPECT_TRUE(static_cast<SmVideoSpec*>(spec.Get())->mIsSequence);
}

TEST(SimpleWrite, Movie_StaysInItsFile) {
    TempFolder const folder;
    Prepared<SpyMovieFormat> const prepared(folder.Path("s05.spy"));
    StRef<SmImagerTrack> const frames = TrackOf({9});
    prepared.track->WriteFrames(frames->GetStoredFrame(0), SmImagerFrame::Class(), 2, 3, 0, 0, nullptr);
    EXPECT_EQ(prepared.format->lines, (Lines{"write s05.spy 2 red 9"}));
}

TEST(SimpleWrite, Track_WritesItsFramesOneByOne) {
    TempFolder const folder;
    Prepared<SpyFormat> const prepared(folder.Path("out.spy"));
    StRef<SmImagerTrack> const frames = TrackOf({9, 8, 7, 6});
    prepared.track->WriteFrames(frames.Get(), SmImagerTrack::Class(), 1, 2, 0, 3, nullptr);
    EXPECT_EQ(prepared.format->lines, (Lines{"write out0002.spy 1 red 8", "write out0003.spy 2 red 7"}));
}

TEST(SimpleWrite, TrackOfOneFrame_IsOneFile) {
    TempFolder const folder;
    Prepared<SpyFormat> const prepared(folder.Path("out.spy"));
    prepared.track->WriteFrames(TrackOf({9}).Get(), SmImagerTrack::Class(), 0, 1, 0, 3, nullptr);
    EXPECT_EQ(prepared.format->lines, (Lines{"write out.spy 0 red 9"}));
}

TEST(SimpleWrite, EmptyEntriesOfATrack_ArePassedOver) {
    TempFolder const folder;
    Prepared<SpyFormat> const prepared(folder.Path("out.spy"));
    prepared.track->WriteFrames(TrackOf({9, -1, 7}).Get(), SmImagerTrack::Class(), 0, 3, 0, 3, nullptr);
    EXPECT_EQ(prepared.format->lines, (Lines{"write out0001.spy 0 red 9", "write out0003.spy 2 red 7"}));
}

TEST(SimpleWrite, Times_AreFrameNumbers) {
    TempFolder const folder;
    Prepared<SpyFormat> const prepared(folder.Path("out.spy"));
    StRef<SmImagerTrack> const frames = TrackOf({9});
    prepared.track->WriteTime(frames->GetStoredFrame(0), SmImagerFrame::Class(), 2.9, 1.9, 0.0, 3, nullptr);
    EXPECT_EQ(prepared.format->lines, (Lines{"write out.spy 2 red 9"}));
}

TEST(SimpleWrite, Failure_ClearsTheCurrentMedia) {
    TempFolder const folder;
    Prepared<SpyFormat> const prepared(folder.Path("out.spy"));
    prepared.format->fails = true;
    EXPECT_EQ(ErrorOf([&] {
                  prepared.track->WriteFrames(TrackOf({9})->GetStoredFrame(0), SmImagerFrame::Class(), 0, 1,
                                              0, 3, nullptr);
              }),
              -50);
    EXPECT_EQ(prepared.format->Current(), nullptr);
}

// Lives.

TEST(SimpleMedia, HoldsItsRecognizerAndTracks) {
    TempFolder const folder;
    auto const format = Made<SpyFormat>();
    {
        StRef<SmMedia> media;
        auto const location = LocationOf(folder.Write("a.spy"));
        format->Recognize(location.get(), nullptr, &media, 0, nullptr);
        EXPECT_EQ(format->ReferenceCount(), 3);  // the test's, the media's, the track's
    }
    EXPECT_EQ(format->ReferenceCount(), 1);
}

TEST(SimpleMedia, TrackThatOutlivesItsMedia_HasNone) {
    TempFolder const folder;
    auto const format = Made<SpyFormat>();
    StRef<SmMediaTrack> track;
    {
        StRef<SmMedia> media;
        auto const location = LocationOf(folder.Write("a.spy"));
        format->Recognize(location.get(), nullptr, &media, 0, nullptr);
        track = media->GetTrack(0);
    }
    format->expectedMedia = nullptr;
    ReadFrameOf(track.Get(), 0);
    EXPECT_EQ(format->lines.size(), 1u);
}

TEST(SimpleTrack, Clone_HasASpecOfItsOwn) {
    TempFolder const folder;
    WriteSequence(folder, 1, 3);
    Opened<SpyFormat> const opened(folder.Path("s01.spy"));
    auto const clone =
        StRef<SmMediaTrackSimple>::Adopt(static_cast<SmMediaTrackSimple*>(opened.Track())->Clone());
    EXPECT_EQ(clone->NumberOfFrames(), 3);
    auto const spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    spec->IVideoSpec();
    spec->mFrameRate = 3.0F;
    clone->SetSpec(spec.Get());
    EXPECT_EQ(opened.Track()->GetFrameRate(), 15.0F);
    EXPECT_EQ(clone->GetFrameRate(), 3.0F);
    ReadFrameOf(opened.Track(), 1);
    EXPECT_EQ(opened.format->lines, (Lines{"read s02.spy 2 new"}));
}

// Use that is refused.

TEST(SimpleTrack, BeforeItsInitialiser_Refuses) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.spy"));
    auto const frames = TrackOf({9});
    auto const track = StRef<SmMediaTrackSimple>::Adopt(SmMediaTrackSimple::New());
    track->OpenNew(location.get());
    SmObject *object = nullptr, *extra = nullptr;
    std::function<void()> const uses[] = {
        [&] { track->GetFrameRate(); },
        [&] { track->GetFrameSize(); },
        [&] { track->GetDuration(); },
        [&] { track->GetSpec(); },
        [&] { track->NumberOfObjectClasses(); },
        [&] { track->ObjectClass(0); },
        [&] { track->Open(location.get()); },
        [&] { track->ReadFrames(object, SmImagerFrame::Class(), extra, 0, 1, 0, nullptr, 0); },
        [&] { track->ReadFrames(object, SmImagerTrack::Class(), extra, 0, 1, 0, nullptr, 0); },
        [&] { track->ReadTime(object, SmImagerFrame::Class(), extra, 0, 1, 0, nullptr, 0); },
        [&] { track->WriteFrames(frames->GetStoredFrame(0), SmImagerFrame::Class(), 0, 1, 0, 3, nullptr); },
        [&] { track->WriteFrames(frames->GetStoredFrame(0), SmImagerFrame::Class(), 0, 2, 0, 3, nullptr); },
    };
    for (auto const& use : uses)
        EXPECT_EQ(ErrorOf(use), SkInternalRefusal());
    EXPECT_EQ(object, nullptr);
    auto const clone = StRef<SmMediaTrackSimple>::Adopt(track->Clone());
    EXPECT_EQ(ErrorOf([&] { clone->GetFrameRate(); }), SkInternalRefusal());
    track->ITrackSimple(Made<SpyFormat>().Get(), nullptr);
    EXPECT_EQ(track->GetFrameRate(), 15.0F);
}

TEST(SimpleTrack, BeforeItIsOpen_Refuses) {
    auto const track = StRef<SmMediaTrackSimple>::Adopt(SmMediaTrackSimple::New());
    track->ITrackSimple(Made<SpyFormat>().Get(), nullptr);
    auto const frames = TrackOf({9});
    SmObject *object = nullptr, *extra = nullptr;
    EXPECT_EQ(ErrorOf([&] { track->ReadFrames(object, SmImagerFrame::Class(), extra, 0, 1, 0, nullptr, 0); }),
              SkInternalRefusal());
    EXPECT_EQ(ErrorOf([&] {
                  track->WriteFrames(frames->GetStoredFrame(0), SmImagerFrame::Class(), 0, 1, 0, 3, nullptr);
              }),
              SkInternalRefusal());
    EXPECT_EQ(ErrorOf([&] { track->Open(nullptr); }), SkInternalRefusal());
}

TEST(SimpleMedia, BeforeItsInitialiser_Refuses) {
    TempFolder const folder;
    auto const location = LocationOf(folder.Write("a.spy"));
    auto const media = StRef<SmMediaStreamSimple>::Adopt(SmMediaStreamSimple::New());
    EXPECT_EQ(ErrorOf([&] { media->GetMediaType(); }), SkInternalRefusal());
    EXPECT_EQ(ErrorOf([&] { media->Open(location.get()); }), SkInternalRefusal());
    media->OpenNew(location.get());
    EXPECT_EQ(ErrorOf([&] { media->NewTrack(kVideo, nullptr); }), SkInternalRefusal());
    EXPECT_EQ(media->NumberOfTracks(), 0);
}

TEST(SimpleMedia, BeforeItHasALocation_MakesNoTrack) {
    auto const format = Made<SpyFormat>();
    auto const media = StRef<SmMedia>::Adopt(format->NewMediaObject());
    EXPECT_EQ(ErrorOf([&] { media->NewTrack(kVideo, nullptr); }), SkInternalRefusal());
    EXPECT_EQ(ErrorOf([&] { media->OpenNew(nullptr); }), SkInternalRefusal());
    EXPECT_EQ(media->NumberOfTracks(), 0);
}

TEST(SimpleRead, ObjectThatIsNoFrame_IsRefused) {
    TempFolder const folder;
    Opened<SpyFormat> const still(folder.Write("a.spy"));
    auto const frames = TrackOf({9});
    SmObject *object = frames.Get(), *extra = nullptr;
    EXPECT_EQ(ErrorOf([&] {
                  still.Track()->ReadFrames(object, SmImagerFrame::Class(), extra, 0, 1, 0, nullptr, 0);
              }),
              SkMediaIncapableOfFormat());
    EXPECT_EQ(object, frames.Get());
    EXPECT_EQ(still.format->lines, Lines{});
}

TEST(SimpleWrite, ObjectThatIsNoFrame_IsRefused) {
    TempFolder const folder;
    Prepared<SpyFormat> const prepared(folder.Path("a.spy"));
    auto const frames = TrackOf({9});
    for (SmObject* object : {static_cast<SmObject*>(frames.Get()), static_cast<SmObject*>(nullptr)}) {
        EXPECT_EQ(ErrorOf([&] {
                      prepared.track->WriteFrames(object, SmImagerFrame::Class(), 0, 1, 0, 3, nullptr);
                  }),
                  SkMediaIncapableOfFormat());
    }
    EXPECT_EQ(prepared.format->lines, Lines{});
}

}  // namespace
