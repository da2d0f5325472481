#include "rotation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "frame_transform.h"

namespace {

/// The length that a turned picture takes on an axis: `along` of its sides by the cosine, `across` by the
/// sine. What rounding adds to a whole number of pixels is no pixel.
std::int32_t TurnedLength(long along, long across, double cosine, double sine) {
    double const length =
        static_cast<double>(along) * std::fabs(cosine) + static_cast<double>(across) * std::fabs(sine);
    return static_cast<std::int32_t>(std::clamp(std::ceil(length - 1e-6), 1.0, 2147483647.0));
}

float MiddleOf(std::int32_t length) {
    return static_cast<float>(length - 1) / 2.0F;
}

}  // namespace

StRef<SmImagerFrame> Turned(StRef<SmImagerFrame> const& picture, Rotation const& rotation) {
    StPoint const size = picture->GetSize();
    if (!SrHasPixels(size)) return picture;
    double const degrees = std::fmod(rotation.degrees, 360.0);
    // Between quarter turns pixels fall between pixels; at them nothing is to be mixed.
    bool const smooth = rotation.smooth && std::fmod(degrees, 90.0) != 0.0;
    double const radians = degrees * std::numbers::pi / 180.0;
    double const cosine = std::cos(radians), sine = std::sin(radians);
    StPoint const turnedSize{TurnedLength(size.vertical, size.horizontal, cosine, sine),
                             TurnedLength(size.horizontal, size.vertical, cosine, sine)};

    // Indices do not mix, and the canvas would have another palette.
    StRef<SmImagerFrame> const source = SrGetColorMapFromFrame(picture.Get()) ? InColors(picture) : picture;
    auto canvas = StRef<SmImagerFrame>::Adopt(SrMakeFrame(turnedSize, source->PixelID(), true, false));
    SrThrowIfNIL(canvas.Get());
    canvas->SetBackground({0, 0, 0, 0});
    canvas->Erase();

    // Samples are taken at the middles of pixels; single pixels are found by truncation, half a pixel on.
    float const shift = smooth ? 0.0F : 0.5F;
    ScRotatedBlit blit;
    blit.SetSource(SrWholeRect(size), MiddleOf(size.horizontal) + shift, MiddleOf(size.vertical) + shift);
    blit.SetTarget(MiddleOf(turnedSize.horizontal), MiddleOf(turnedSize.vertical));
    blit.SetInterpolation(smooth);
    blit.DoIt(source.Get(), canvas.Get(), static_cast<float>(radians));
    return canvas;
}
