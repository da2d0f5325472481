// Writes a movie as numbered pictures, clip0001.bmp to clip0120.bmp, and plays it back while no more than
// three images are ever held; every fifteenth image goes onto film.bmp. docs/movies.md shows it.
#include <framewright/framewright.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr long kFrames = 120;
constexpr float kRate = 30.0F;
constexpr StPoint kSize{90, 120};         // rows, columns
constexpr long kEvery = 15, kAcross = 4;  // of the film
constexpr StRect kWhole{0, 0, kSize.vertical, kSize.horizontal};

using Movie = StRef<SmImagerMovieWithMedia>;

Movie NewMovie() {
    auto movie = Movie::Adopt(SmImagerMovieWithMedia::New());
    movie->IImagerMovieWithMedia();
    return movie;
}

/// A ball that bounces from left to right, on a floor.
void Draw(SmImagerImage& image, double seconds) {
    constexpr long kFloor = 72, kRadius = 12;
    image.FillRectAt(0, 0, kSize.horizontal, kFloor, {0.55F, 0.75F, 0.95F}, 0.0F, 0.0F);
    image.FillRectAt(0, kFloor, kSize.horizontal, kSize.vertical - kFloor, {0.35F, 0.30F, 0.25F}, 0.0F, 0.0F);
    double const bounce = std::fabs(std::sin(seconds * 3.14159265));
    auto const x = static_cast<long>(seconds / (kFrames / kRate) * kSize.horizontal);
    auto const y = kFloor - kRadius - static_cast<long>(bounce * 44);
    for (long row = -kRadius; row <= kRadius; ++row) {
        auto const half = static_cast<long>(std::sqrt(static_cast<double>(kRadius * kRadius - row * row)));
        long const left = std::max(0L, x - half), right = std::min<long>(kSize.horizontal, x + half + 1);
        float const light = 1.0F - static_cast<float>(row + kRadius) / (4 * kRadius);
        if (left < right)
            image.PutRunAt(left, y + row, right - left, {light, 0.35F * light, 0.1F}, 0.0F, 0.0F);
    }
}

void Write(ScMediaLocation& location) {
    Movie const movie = NewMovie();
    movie->SetLocation(&location, kWriteMovie, true, kCreateMovie, SrCode("BMP "));
    // One file an image: the format is told that the files are a sequence.
    auto const spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    spec->IVideoSpec();
    spec->mIsSequence = true;
    movie->SetTrackSpec(0, spec.Get());
    for (long i = 0; i < kFrames; ++i) {
        auto const image = StRef<SmImagerImage>::Adopt(SrMakeImage(kSize, SrCode("RG24"), false));
        image->GetColorLayer()->SetSaveIntent(true);  // what is to be written
        Draw(*image, static_cast<double>(i) / kRate);
        movie->SetImage(i, image.Get(), false);
        movie->SaveImage(i, 0);
        movie->ReleaseImage(i);
    }
}

long HeldImages(SmImagerMovie& movie) {
    long held = 0;
    for (long i = 0; i < kFrames; ++i)
        held +=
            movie.SmImagerMovie::GetStoredImage(i) != nullptr;  // the entries as they are: nothing is read
    return held;
}

/// Plays the movie by the clock of a display, at 60 pictures a second. Gives the most images that were held.
long Play(ScMediaLocation& location, SmImagerFrame& film) {
    Movie const movie = NewMovie();
    movie->SetLocation(&location, kReadMovie, true, 0, 0);
    movie->SetFrameRate(kRate);  // numbered pictures do not tell their own
    long mostHeld = 0, shown = 0;
    for (double seconds = 0.0; seconds < movie->GetDuration(); seconds += 1.0 / 60.0) {
        long const number = movie->FrameNumberForTime(seconds);
        SmImagerImage* const image = movie->GetImage(number, 0);
        mostHeld = std::max(mostHeld, HeldImages(*movie));
        if (number < shown * kEvery) continue;
        auto const row = static_cast<std::int32_t>(shown / kAcross * (kSize.vertical + 4));
        auto const column = static_cast<std::int32_t>(shown % kAcross * (kSize.horizontal + 4));
        film.BlitRect(image->GetColorLayer(), kWhole, {row + 4, column + 4});
        ++shown;
    }
    std::printf("%ld images in %.1f seconds: %ld held at most\n", movie->GetNumberOfFrames(),
                movie->GetDuration(), mostHeld);
    return mostHeld;
}

}  // namespace

int main() {
    try {
        ScMediaFileLocation clip;
        clip.SetFullPath("./clip0001.bmp");
        Write(clip);

        constexpr long kDown = kFrames / kEvery / kAcross;
        auto const film = StRef<SmImagerFrame>::Adopt(
            SrMakeFrame({static_cast<std::int32_t>(kDown * (kSize.vertical + 4) + 4),
                         static_cast<std::int32_t>(kAcross * (kSize.horizontal + 4) + 4)},
                        SrCode("RG24"), false, false));
        film->SetBackground(SkBlackColorBytes());
        film->Erase();
        long const mostHeld = Play(clip, *film);

        ScMediaFileLocation picture;
        picture.SetFullPath("film.bmp");
        SrSaveObjectToMedia(&picture, SmImagerFrame::Class(), film.Get(), SrCode("BMP "), nullptr);
        return mostHeld <= 3 ? 0 : 1;
    } catch (std::exception const& exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return 1;
    }
}
