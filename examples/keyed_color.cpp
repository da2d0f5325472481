// Keyframes the colours of a sky and draws three days from left to right as sky.bmp: a winter day, the same
// keys moved apart for a summer day, and the winter day without passage between the keys. docs/keyed_color.md
// shows it.
#include <framewright/framewright.h>

namespace {

constexpr long kWidth = 480, kBand = 96, kGap = 8;  // an hour is 20 columns
constexpr double kHours = 24.0;

/// No passage: the colour of each key stays until the next.
class Steps : public ScVI<StColorFloats> {
  public:
    void Interpolate(float, double, double, StColorFloats const& earlier, StColorFloats const&,
                     StColorFloats& out) override {
        out = earlier;
    }
};

/// A sky is two colours: above, and at the horizon.
struct StSky {
    StTimeVaryingColor above, horizon;
};

StSky Winter() {
    StColorFloats const night{0.02f, 0.03f, 0.10f}, day{0.25f, 0.50f, 0.90f};
    StSky sky{night,
              StColorFloats{0.05f, 0.06f, 0.16f}};  // constant, until a key elsewhere than at 0.0 is set

    sky.above.SetExtendedValue(6.5, night);
    sky.above.SetExtendedValue(9.0, day);
    sky.above.SetExtendedValue(15.0, day);
    sky.above.SetExtendedValue(18.0, night);

    sky.horizon.SetExtendedValue(6.0, sky.horizon.GetValue(0.0));
    sky.horizon.SetExtendedValue(7.5, {0.95f, 0.55f, 0.45f});
    sky.horizon.SetExtendedValue(9.5, {0.75f, 0.87f, 0.97f});
    sky.horizon.SetExtendedValue(14.5, {0.75f, 0.87f, 0.97f});
    sky.horizon.SetExtendedValue(16.5, {1.00f, 0.45f, 0.15f});
    sky.horizon.SetExtendedValue(18.5, sky.horizon.GetValue(0.0));
    return sky;
}

/// The morning three hours earlier, the evening three hours later. What was in between is interpolated anew.
StSky Summer() {
    StSky sky = Winter();
    for (StTimeVaryingColor* color : {&sky.above, &sky.horizon}) {
        color->MoveKeyTimes(6.0, 10.0, -3.0);
        color->MoveKeyTimes(14.0, 19.0, 3.0);
    }
    return sky;
}

void Draw(SmImagerFrame& frame, long top, StSky const& sky, ScVI<StColorFloats>& interpolator) {
    for (long x = 0; x < kWidth; ++x) {
        double const time = kHours * static_cast<double>(x) / kWidth;
        StColorFloats const above = sky.above.GetValue(time, interpolator);
        StColorFloats const horizon = sky.horizon.GetValue(time, interpolator);
        for (long y = 0; y < kBand; ++y) {
            StColorFloats color = above;
            color.Blend(horizon, static_cast<float>(y) / kBand);
            frame.PutPixelAt(x, top + y, color);
        }
    }
    // Marks where the horizon's keys are.
    for (auto key = sky.horizon.GetKeyTimeBegin(); key != sky.horizon.GetKeyTimeEnd(); ++key)
        for (long y = kBand - 8; y < kBand; ++y)
            frame.PutPixelAt(static_cast<long>(*key * kWidth / kHours), top + y, StColorFloats{1, 1, 1});
}

}  // namespace

int main() {
    auto frame = StRef<SmImagerFrame>::Adopt(
        SrMakeFrame({3 * kBand + 2 * kGap, kWidth}, SrCode("RG24"), false, false));
    frame->SetBackground(SkWhiteColorBytes());
    frame->Erase();

    Steps steps;
    Draw(*frame, 0, Winter(), ScLI<StColorFloats>::GetInterpolator());
    Draw(*frame, kBand + kGap, Summer(), ScLI<StColorFloats>::GetInterpolator());
    Draw(*frame, 2 * (kBand + kGap), Winter(), steps);

    ScMediaFileLocation location;
    location.SetFullPath("sky.bmp");
    SrSaveObjectToMedia(&location, SmImagerFrame::Class(), frame.Get(), SrCode("BMP "), nullptr);
}
