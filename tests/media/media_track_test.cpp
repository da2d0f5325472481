// What the base of media tracks does for whole imager tracks.
#include "framewright/media/media_track.h"

#include <gtest/gtest.h>

#include "framewright/frame/frame.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/imagery/track.h"
#include "media/media_test_support.h"

namespace {

using namespace media_test;
using Lines = std::vector<std::string>;

StRef<SmImagerFrame> NewFrame() {
    return StRef<SmImagerFrame>::Adopt(SrMakeFrame({1, 1}, SrCode("Gry8"), false, false));
}

/// A format's track: it reads and writes frames, whose level is their number, and leaves imager tracks to the
/// base.
class FrameTrack : public SmMediaTrack {
  public:
    explicit FrameTrack(Log& log) : mLog(log) {}

    void ReadFrames(SmObject*& object, ScMC_* objectClass, SmObject*& extra, long first, long count,
                    long destination, ScProgressIndicator* progress, unsigned long option) override {
        if (objectClass != SmImagerFrame::Class()) {
            SmMediaTrack::ReadFrames(object, objectClass, extra, first, count, destination, progress, option);
            return;
        }
        std::ostringstream line;
        line << "read " << (object ? "into " : "new ") << first << " " << count << " " << destination
             << (progress ? " progress " : " ") << option;
        mLog.Add(line.str());
        extra = new SpyObject(mLog);
        if (replaces || !object) object = NewFrame().Release();
        static_cast<SmImagerFrame*>(object)->SetPurpose(first);
        if (first == throwAt) SrThrow(-50, nullptr);
    }
    void WriteFrames(SmObject* object, ScMC_* objectClass, long first, long count, long destination,
                     unsigned char position, ScProgressIndicator* progress) override {
        if (objectClass != SmImagerFrame::Class()) {
            SmMediaTrack::WriteFrames(object, objectClass, first, count, destination, position, progress);
            return;
        }
        std::ostringstream line;
        line << "write " << static_cast<SmImagerFrame*>(object)->GetPurpose() << " as " << first << " "
             << count << " " << destination << " at " << int(position) << (progress ? " progress" : "");
        mLog.Add(line.str());
    }

    bool replaces = false;
    long throwAt = -1;

  private:
    Log& mLog;
};

/// Records what is stored in it.
class SpyImagerTrack : public SmImagerTrack {
  public:
    explicit SpyImagerTrack(Log& log) : mLog(log) {}
    void SetFrame(long frame, SmImagerFrame* image) override {
        mLog.Add("set " + std::to_string(frame));
        SmImagerTrack::SetFrame(frame, image);
    }
    void SaveFrame(long frame, StLeftOrRight eye) override {
        mLog.Add("save " + std::to_string(frame) + " " + std::to_string(int(eye)));
    }

  private:
    Log& mLog;
};

class MediaTrack : public testing::Test {
  protected:
    MediaTrack() : track(StRef<FrameTrack>::Adopt(new FrameTrack(log))) {}
    ~MediaTrack() override { EXPECT_EQ(log.alive, 0) << "extras are dropped"; }

    long Read(SmObject*& object, long first, long count, long destination,
              ScProgressIndicator* progress = nullptr) {
        return ErrorOf([&] {
            track->ReadFrames(object, SmImagerTrack::Class(), extra, first, count, destination, progress, 5);
        });
    }

    Log log;
    StRef<FrameTrack> track;
    SmObject* extra = nullptr;
};

TEST_F(MediaTrack, Read_MakesATrackWhereThereIsNone) {
    SmObject* object = nullptr;
    EXPECT_EQ(Read(object, 4, 2, 7), 0);
    auto const made = StRef<SmObject>::Adopt(object);
    ASSERT_TRUE(made && made->GetClass() == SmImagerTrack::Class());
    EXPECT_EQ(made->ReferenceCount(), 1);
    auto* const frames = static_cast<SmImagerTrack*>(made.Get());
    EXPECT_EQ(frames->GetFrameRate(), 30.0F);
    EXPECT_EQ(frames->GetStoredFrame(6), nullptr);
    EXPECT_EQ(frames->GetStoredFrame(7)->GetPurpose(), 4);
    EXPECT_EQ(frames->GetStoredFrame(8)->GetPurpose(), 5);
    EXPECT_EQ(frames->GetStoredFrame(9), nullptr);
    EXPECT_EQ(frames->GetStoredFrame(7)->ReferenceCount(), 1) << "the track's";
    EXPECT_EQ(extra, nullptr);
    EXPECT_EQ(log.lines, (Lines{"read new 4 1 0 5", "read new 5 1 0 5"}));
}

TEST_F(MediaTrack, Read_StoresThroughBothOperations) {
    auto const target = StRef<SmImagerTrack>::Adopt(new SpyImagerTrack(log));
    SmObject* object = target.Get();
    SpyProgress progress;
    EXPECT_EQ(Read(object, 0, 2, 0, &progress), 0);
    EXPECT_EQ(object, target.Get());
    EXPECT_EQ(target->ReferenceCount(), 1);
    EXPECT_EQ(log.lines, (Lines{"read new 0 1 0 progress 5", "set 0", "save 0 0", "read new 1 1 0 progress 5",
                                "set 1", "save 1 0"}));
}

TEST_F(MediaTrack, Read_FillsAFrameThatIsThere) {
    auto const target = StRef<SmImagerTrack>::Adopt(SmImagerTrack::New());
    auto const there = NewFrame();
    target->SetFrame(1, there.Get());
    SmObject* object = target.Get();
    EXPECT_EQ(Read(object, 0, 2, 0), 0);
    EXPECT_EQ(target->GetStoredFrame(1), there.Get());
    EXPECT_EQ(there->GetPurpose(), 1);
    EXPECT_EQ(there->ReferenceCount(), 2);
    EXPECT_EQ(log.lines, (Lines{"read new 0 1 0 5", "read into 1 1 0 5"}));

    // A format that gives another one back has it stored in its place.
    track->replaces = true;
    EXPECT_EQ(Read(object, 9, 1, 1), 0);
    EXPECT_NE(target->GetStoredFrame(1), there.Get());
    EXPECT_EQ(target->GetStoredFrame(1)->GetPurpose(), 9);
    EXPECT_EQ(target->GetStoredFrame(1)->ReferenceCount(), 1);
    EXPECT_EQ(there->ReferenceCount(), 1);
}

TEST_F(MediaTrack, Read_OfNothingMakesAnEmptyTrack) {
    for (long count : {0L, -3L}) {
        SmObject* object = nullptr;
        EXPECT_EQ(Read(object, 0, count, 0), 0);
        ASSERT_NE(object, nullptr);
        object->ReleaseReference();
    }
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(MediaTrack, Read_ThatThrowsReleasesWhatItMade) {
    track->throwAt = 1;
    SmObject* object = nullptr;
    EXPECT_EQ(Read(object, 0, 3, 0), -50);
    EXPECT_EQ(object, nullptr);
    auto const target = StRef<SmImagerTrack>::Adopt(SmImagerTrack::New());
    object = target.Get();
    EXPECT_EQ(Read(object, 0, 3, 0), -50);
    EXPECT_EQ(object, target.Get());
    EXPECT_NE(target->GetStoredFrame(0), nullptr) << "what was read before stays";
    EXPECT_EQ(target->GetStoredFrame(1), nullptr);
}

TEST_F(MediaTrack, Read_WhereMemoryIsRefused) {
    SmObject* object = nullptr;
    RefusedMemory const refused;
    EXPECT_EQ(Read(object, 0, 1, 0), -108);
    EXPECT_EQ(object, nullptr);
}

TEST_F(MediaTrack, Write_GivesFramesOneByOne) {
    auto const source = StRef<SmImagerTrack>::Adopt(SmImagerTrack::New());
    for (long i : {0, 1, 2, 4}) {
        auto const frame = NewFrame();
        frame->SetPurpose(100 + i);
        source->SetFrame(i, frame.Get());
    }
    SpyProgress progress;
    track->WriteFrames(source.Get(), SmImagerTrack::Class(), 1, 4, 9, 3, &progress);
    EXPECT_EQ(log.lines,
              (Lines{"write 101 as 1 1 1 at 3", "write 102 as 2 1 2 at 3", "write 104 as 4 1 4 at 3"}))
        << "entry 3 has no frame";
}

TEST_F(MediaTrack, Write_OfEyesThatAlternate) {
    auto const source = StRef<SmImagerTrack>::Adopt(SmImagerTrack::New());
    for (long i : {0, 1}) {
        auto const frame = NewFrame();
        frame->SetPurpose(100 + i);
        source->SetFrame(i, frame.Get());
    }
    source->SetStereoArrangement(4);
    track->WriteFrames(source.Get(), SmImagerTrack::Class(), 0, 4, 0, 3, nullptr);
    EXPECT_EQ(log.lines, (Lines{"write 100 as 0 1 0 at 3", "write 100 as 1 1 1 at 3",
                                "write 101 as 2 1 2 at 3", "write 101 as 3 1 3 at 3"}));
}

}  // namespace
