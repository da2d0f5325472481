// Clips for the tests of tracks and movies with media: a format that tells what it was asked, and frames that
// count themselves.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "../media/media_test_support.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/frame/registries.h"

namespace clips {

using media_test::ErrorOf;
using media_test::LocationOf;
using media_test::Outcome;
using media_test::OutcomeOf;
using media_test::PathOf;

using ColorLayer = SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>;

/// A frame that counts how many of its kind live, and how many lived at most.
class CountedFrame : public ColorLayer {
  public:
    CountedFrame() { peak = std::max(peak, ++living); }
    ~CountedFrame() override { --living; }

    static inline long living = 0;
    static inline long peak = 0;
};

inline StRef<SmImagerFrame> NewFrame(StPoint const& size = {1, 1}, unsigned long type = SrCode("ColB")) {
    return StRef<SmImagerFrame>::Adopt(SrMakeFrame(size, type, false, false));
}

/// Frames of a clip know their number: it is the red of their first pixel.
inline void PutNumber(SmImagerFrame& frame, long number) {
    frame.PutPixelAt(0, 0, StRGBA32Pixel{0, 0, static_cast<unsigned char>(number), 255});
}
inline long NumberOf(SmImagerFrame* frame) {
    return frame ? frame->GetRGBAPixelAt(0, 0).red : -1;
}

/// A track of frames of 4 rows by 5 columns that it makes itself where it is given none.
class ClipTrack : public SmMediaTrack {
  public:
    explicit ClipTrack(long frames, float rate = 10.0F) : frames(frames), rate(rate) {}

    unsigned long GetTrackType() override { return type; }
    long NumberOfFrames() override { return frames; }
    float GetFrameRate() override { return rate; }

    void ReadFrames(SmObject*& object, ScMC_* objectClass, SmObject*& extra, long first, long count,
                    long destination, ScProgressIndicator* progress, unsigned long option) override {
        EXPECT_EQ(objectClass, SmImagerFrame::Class());
        EXPECT_EQ(count, 1);
        EXPECT_EQ(destination, 0);
        EXPECT_EQ(progress, nullptr);
        asked.push_back(first);
        options.push_back(option);
        auto* given = static_cast<SmImagerFrame*>(object);
        givenSizes.push_back(given ? given->GetSize() : StPoint{0, 0});
        givenNumbers.push_back(NumberOf(given));
        if (makesExtra) extra = new media_test::SpyObject(extras);
        if (throwsBefore) SrThrow(-36, nullptr);
        if (!given || replaces) object = given = Made();
        if (!leavesPixels) PutNumber(*given, first);
        if (throwsAfter) SrThrow(-36, nullptr);
    }

    void WriteFrames(SmObject* object, ScMC_* objectClass, long first, long count, long destination,
                     unsigned char position, ScProgressIndicator*) override {
        EXPECT_EQ(objectClass, SmImagerFrame::Class());
        written.push_back("red " + std::to_string(NumberOf(static_cast<SmImagerFrame*>(object))) + ": " +
                          std::to_string(first) + " " + std::to_string(count) + " " +
                          std::to_string(destination) + " at " + std::to_string(int{position}));
    }

    unsigned long type = kVideoTrack;
    long frames;
    float rate;
    bool replaces = false;      ///< gives a frame of its own where it was given one
    bool leavesPixels = false;  ///< does not draw
    bool throwsBefore = false;
    bool throwsAfter = false;  ///< with the frame made
    bool makesExtra = false;
    std::vector<long> asked;
    std::vector<unsigned long> options;
    std::vector<StPoint> givenSizes;  ///< 0, 0 where none was given
    std::vector<long> givenNumbers;
    std::vector<std::string> written;
    media_test::Log extras;

  private:
    static SmImagerFrame* Made() {
        auto frame = StRef<CountedFrame>::Adopt(new CountedFrame);
        frame->IImagerLayer({0, 0}, {4, 5}, false, nullptr, 0, nullptr);
        return frame.Release();
    }
};

class ClipMedia : public SmMedia {
  public:
    double GetDuration() override {
        ++durationCalls;
        return duration;
    }
    ClipTrack* Add(long frames, float rate = 10.0F) {
        auto const track = StRef<ClipTrack>::Adopt(new ClipTrack(frames, rate));
        AddTrack(track.Get());
        return track.Get();
    }
    SmMediaTrack* NewTrack(unsigned long type, SmTrackSpec* spec) override {
        EXPECT_EQ(type, kVideoTrack);
        specs.push_back(spec);
        return refusesTracks ? nullptr : Add(1);
    }

    double duration = 0.0;
    long durationCalls = 0;
    bool refusesTracks = false;
    std::vector<SmTrackSpec*> specs;  ///< what NewTrack was given
};

/// The manager has one format, which takes any location and gives the media that the test fills.
class Clip : public testing::Test {
  protected:
    Clip() {
        format = formats.Add(log, "Clip", 10);
        media = NewMedia();
        format->opens = StRef<SmMedia>(media.Get());
        CountedFrame::peak = CountedFrame::living;
    }
    static StRef<ClipMedia> NewMedia() { return StRef<ClipMedia>::Adopt(new ClipMedia); }

    media_test::Log log;
    media_test::GlobalFormats formats;
    media_test::SpyRecognizer* format;
    StRef<ClipMedia> media;
    std::unique_ptr<ScMediaFileLocation> location = LocationOf("/clips/shot0001.bmp");
};

}  // namespace clips
