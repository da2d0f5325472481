// A thousand numbered files played forward: how many frames are held on the way.
#include <gtest/gtest.h>

#include "clips.h"
#include "framewright/imagery/image.h"
#include "framewright/imagery/movie_with_media.h"
#include "framewright/imagery/track_with_media.h"
#include "framewright/media/simple_media.h"

namespace {

using namespace clips;

constexpr long kFrames = 1000;
constexpr long kMostHeld = 4;

/// Still pictures of one number: the file says which frame it is.
class NumberFormat : public SmMediaSimple {
  public:
    unsigned long GetType() override { return SrCode("Numb"); }
    bool GetFileDesc(long, StMediaFileDesc&) override { return false; }
    void CapableOfReadAndWrite(bool& read, bool& write) override {
        read = true;
        write = false;
    }
    short CanOpen(ScMediaLocation* location) override {
        StFileInfo info;
        return location->GetFileInfo(info) == kSearchFound ? 10 : 0;
    }
    void ReadFrame(ScMediaLocation* location, SmImagerFrame*& frame, long number, ScProgressIndicator*,
                   unsigned long) override {
        EXPECT_EQ(location->GetSequence(), number);
        auto made = StRef<CountedFrame>::Adopt(new CountedFrame);
        made->IImagerLayer({0, 0}, {2, 2}, false, nullptr, 0, nullptr);
        made->PutPixelAt(0, 0,
                         StRGBA32Pixel{0, static_cast<unsigned char>(number >> 8),
                                       static_cast<unsigned char>(number & 0xFF), 255});
        frame = made.Release();
    }
};

class Playback : public testing::Test {
  protected:
    Playback() {
        SrGlobalMediaManager()->Register(StRef<SmMediaRecognizer>::Adopt(new NumberFormat).Get());
        for (long i = 1; i <= kFrames; ++i) {
            std::string const digits = std::to_string(i);
            folder.Write("shot" + std::string(4 - digits.size(), '0') + digits + ".nmb");
        }
        location = LocationOf(folder.Path("shot0001.nmb"));
        CountedFrame::peak = CountedFrame::living;
    }
    static long NumberIn(SmImagerFrame* frame) {
        StRGBA32Pixel const pixel = frame->GetRGBAPixelAt(0, 0);
        return pixel.green * 256 + pixel.red;
    }

    media_test::GlobalFormats formats;
    media_test::TempFolder folder;
    std::unique_ptr<ScMediaFileLocation> location;
};

TEST_F(Playback, AMovieOfAThousandFiles_HoldsFourFramesAtMost) {
    auto const movie = StRef<SmImagerMovieWithMedia>::Adopt(SmImagerMovieWithMedia::New());
    movie->IImagerMovieWithMedia();
    movie->SetLocation(location.get(), kReadMovie, true, 0, 0);
    ASSERT_EQ(movie->GetNumberOfFrames(), kFrames);
    for (long i = 0; i < kFrames; ++i) {
        ASSERT_EQ(NumberIn(movie->GetImage(i, 0)->GetColorLayer()), i + 1);
        ASSERT_LE(CountedFrame::living, kMostHeld) << i;
    }
    EXPECT_EQ(CountedFrame::peak, kMostHeld) << "while one was read, too";
    EXPECT_EQ(CountedFrame::living, 3) << "the first and the last two";
}

TEST_F(Playback, ATrackOfAThousandFiles_HoldsFourFramesAtMost) {
    auto const track = StRef<SmImagerTrackWithMedia>::Adopt(SmImagerTrackWithMedia::New());
    track->IImagerTrackWithMedia();
    track->SetLocation(location.get(), 1, true);
    ASSERT_EQ(track->GetNumberOfFrames(), kFrames);
    for (long i = 0; i < kFrames; ++i)
        ASSERT_EQ(NumberIn(track->GetFrame(i, 0)), i + 1);
    EXPECT_EQ(CountedFrame::peak, kMostHeld);
    EXPECT_EQ(CountedFrame::living, 3);
}

}  // namespace
