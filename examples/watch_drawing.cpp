// Draws into an image and shows, after each step, the part of it that has changed and no more. The picture on
// the "screen", with the rectangles that were shown drawn around their parts, is saved as watch_drawing.bmp.
#include <framewright/framewright.h>

#include <cmath>
#include <cstdio>
#include <vector>

namespace {

constexpr StPoint kSize{160, 240};
constexpr float kDepth = 0.0F;  // the image has no depth layer, so any will do

struct StBall {
    float x, y, radius;
    StColorFloats color;
};

constexpr StBall kBalls[] = {
    {46, 52, 30, {0.93F, 0.35F, 0.23F}},
    {118, 104, 44, {0.18F, 0.55F, 0.85F}},
    {196, 50, 26, {0.98F, 0.77F, 0.24F}},
};

/// A ball with a soft edge: whole runs inside, and pixels blended by how much of them it covers at its ends.
void Draw(SmImagerImage& image, StBall const& ball) {
    long const top = std::lround(ball.y - ball.radius), bottom = std::lround(ball.y + ball.radius);
    for (long y = top; y <= bottom; ++y) {
        float const away = (static_cast<float>(y) - ball.y) / ball.radius;
        float const half = ball.radius * std::sqrt(std::fmax(0.0F, 1.0F - away * away));
        float const left = std::ceil(ball.x - half), right = std::floor(ball.x + half);
        // Darker toward the bottom; the image's gamut cuts what would be brighter than white.
        float const light = 1.15F - 0.45F * (away + 1.0F) / 2.0F;
        StColorFloats const color{ball.color.red * light, ball.color.green * light, ball.color.blue * light};
        long const first = std::lround(left), last = std::lround(right);
        image.PutRunAt(first, y, last - first + 1, color, 0.0F, kDepth);
        image.BlendPixelAt(left - (ball.x - half), first - 1, y, color, 0.0F, kDepth);
        image.BlendPixelAt(ball.x + half - right, last + 1, y, color, 0.0F, kDepth);
    }
}

/// Copies what has changed since the last time from the image to the screen. False when nothing has.
bool Show(SmImagerUpdated& image, SmImagerFrame& screen, StRect& changed) {
    if (!image.TakeUpdatedRect(changed)) return false;
    std::printf("rows %d to %d, columns %d to %d\n", changed.top, changed.bottom - 1, changed.left,
                changed.right - 1);
    screen.BlitRect(image.GetColorLayer(), changed, {changed.top, changed.left});
    return true;
}

bool SamePictures(SmImagerFrame& a, SmImagerFrame& b) {
    for (long y = 0; y < kSize.vertical; ++y) {
        for (long x = 0; x < kSize.horizontal; ++x) {
            if (a.GetRGBAPixelAsLong(x, y) != b.GetRGBAPixelAsLong(x, y)) return false;
        }
    }
    return true;
}

void Outline(SmImagerFrame& frame, StRect const& rect) {
    StRGBA32Pixel const white{255, 255, 255, 255};
    for (long x = rect.left; x < rect.right; ++x) {
        frame.PutPixelAt(x, rect.top, white);
        frame.PutPixelAt(x, rect.bottom - 1, white);
    }
    for (long y = rect.top; y < rect.bottom; ++y) {
        frame.PutPixelAt(rect.left, y, white);
        frame.PutPixelAt(rect.right - 1, y, white);
    }
}

}  // namespace

int main() {
    auto const image = StRef<SmImagerUpdated>::Adopt(SmImagerUpdated::New());
    image->IImagerUpdated();
    auto const layer = StRef<SmImagerFrame>::Adopt(SrMakeFrame(kSize, SrCode("ColB"), false, false));
    image->AddLayer(layer.Get());  // the image holds a reference of its own, and takes the layer's size
    auto const screen = StRef<SmImagerFrame>::Adopt(SrMakeFrame(kSize, SrCode("ColB"), false, false));

    StRect changed;
    image->FillRectAt(0, 0, kSize.horizontal, kSize.vertical, {0.12F, 0.14F, 0.2F}, 0.0F, kDepth);
    Show(*image, *screen, changed);
    std::vector<StRect> shown;
    for (StBall const& ball : kBalls) {
        Draw(*image, ball);
        if (Show(*image, *screen, changed)) shown.push_back(changed);
    }
    if (Show(*image, *screen, changed) || !SamePictures(*layer, *screen)) {
        std::fprintf(stderr, "the screen does not show the image\n");
        return 1;
    }

    for (StRect const& rect : shown)
        Outline(*screen, rect);
    ScMediaFileLocation location;
    location.SetFullPath("watch_drawing.bmp");
    SrSaveObjectToMedia(&location, SmImagerFrame::Class(), screen.Get(), SrCode("BMP "), nullptr);
}
