#include "framewright/pixel/gamut.h"

#include <memory>

#include "framewright/core/startup.h"
#include "framewright/pixel/pixel_stream.h"
#include "framewright/thornmere/error.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);

namespace {

constexpr std::uint32_t kClipped = SrCode("GCli");
constexpr std::uint32_t kScaled = SrCode("GSca");
constexpr std::uint32_t kDebug = SrCode("GDeb");

constexpr std::uint32_t kDebugVersion = 1;

// Constant-initialised: other files' static initialisers may use it.
constinit StColorFloats const gLoudRed{1.0f, 0.0f, 0.0f};

long const gUnknownGamutError = SrAllocateError(nullptr);

void Clip(float& value) {
    if (value >= 1.0f) {
        value = 1.0f;
    } else if (value < 0.0f) {
        value = 0.0f;
    }
}

template <class Gamut>
ScGamut* CloneOf(Gamut const& gamut) {
    ScGamut* const clone = new Gamut(gamut);
    SrThrowIfNIL(clone);
    return clone;
}

/// Whether one of the values that were looked at is above the range, and whether one is below it.
struct StOutside {
    bool above = false, below = false;

    void Look(float value) {
        above |= value > 1.0f;
        below |= value < 0.0f;
    }
    template <class Color>
    void LookAtColors(Color const& color) {
        Look(color.red);
        Look(color.green);
        Look(color.blue);
    }
};

/// Scales red, green and blue back into the range if one of them is outside.
template <class Color>
void ScaleColors(Color& color) {
    float high = 1.0f, low = 0.0f;
    for (float const channel : {color.red, color.green, color.blue}) {
        if (channel > high) {
            high = channel;
        } else if (channel < low) {
            low = channel;
        }
    }
    if (high == 1.0f && low == 0.0f) return;
    float const scale = 1.0f / (high - low);
    color.red = (color.red - low) * scale;
    color.green = (color.green - low) * scale;
    color.blue = (color.blue - low) * scale;
}

class ClippedModifyIterator final : public ScColorSampleIterator {
  public:
    void HandleSample(long, float& sample) override { Clip(sample); }
};

class ScaledMaxIterator final : public ScColorSampleIterator {
  public:
    void HandleSample(long, float& sample) override {
        if (sample > mMax) mMax = sample;
        if (sample < mMin) mMin = sample;
    }
    float Max() const { return mMax; }
    float Min() const { return mMin; }

  private:
    float mMax = 0.0f;
    float mMin = 0.0f;
};

class ScaledModifyIterator final : public ScColorSampleIterator {
  public:
    ScaledModifyIterator(float scale, float offset) : mScale(scale), mOffset(offset) {}
    void HandleSample(long, float& sample) override { sample = (sample - mOffset) * mScale; }

  private:
    float mScale;
    float mOffset;
};

class DebugOverflowIterator final : public ScColorSampleIterator {
  public:
    void HandleSample(long, float& sample) override { mOutside.Look(sample); }
    bool Overflowed() const { return mOutside.above; }
    bool Underflowed() const { return mOutside.below; }

  private:
    StOutside mOutside;
};

}  // namespace

StColorFloats const& SkDefaultDebugOverflowColor() {
    return gLoudRed;
}
StColorFloats const& SkDefaultDebugUnderflowColor() {
    return gLoudRed;
}
long SkUnknownGamutError() {
    return gUnknownGamutError;
}

ScGamut::~ScGamut() = default;

// ScClippedGamut

unsigned long ScClippedGamut::GetGamutSelector() const {
    return kClipped;
}
void ScClippedGamut::Constrain(StColorFloats& color) {
    Clip(color.red);
    Clip(color.green);
    Clip(color.blue);
}
void ScClippedGamut::Constrain(StRGBAFloatPixel& color) {
    Clip(color.red);
    Clip(color.green);
    Clip(color.blue);
    Clip(color.alpha);
}
void ScClippedGamut::Constrain(float& value) {
    Clip(value);
}
void ScClippedGamut::ConstrainSamples(ScColorSampleSet& samples) {
    ClippedModifyIterator clip;
    samples.ForEachSample(clip);
}
void ScClippedGamut::PutToStream(SmStream&) const {}
void ScClippedGamut::GetFromStream(SmStream&) {}
ScGamut* ScClippedGamut::Clone() const {
    return CloneOf(*this);
}

// ScScaledGamut

unsigned long ScScaledGamut::GetGamutSelector() const {
    return kScaled;
}
void ScScaledGamut::Constrain(StColorFloats& color) {
    ScaleColors(color);
}
void ScScaledGamut::Constrain(StRGBAFloatPixel& color) {
    Clip(color.alpha);
    ScaleColors(color);
}
void ScScaledGamut::Constrain(float& value) {
    Clip(value);
}
void ScScaledGamut::ConstrainSamples(ScColorSampleSet& samples) {
    ScaledMaxIterator range;
    samples.ForEachSample(range);
    ScaledModifyIterator scale(1.0f / (range.Max() - range.Min()), range.Min());
    samples.ForEachSample(scale);
}
void ScScaledGamut::PutToStream(SmStream&) const {}
void ScScaledGamut::GetFromStream(SmStream&) {}
ScGamut* ScScaledGamut::Clone() const {
    return CloneOf(*this);
}

// ScDebugGamut

ScDebugGamut::ScDebugGamut(StColorFloats const& overflow, StColorFloats const& underflow)
    : mOverflowColor(overflow), mUnderflowColor(underflow), mOverflowValue(1.0f), mUnderflowValue(1.0f) {}

unsigned long ScDebugGamut::GetGamutSelector() const {
    return kDebug;
}
void ScDebugGamut::Constrain(StColorFloats& color) {
    StOutside outside;
    outside.LookAtColors(color);
    if (outside.above) {
        color = mOverflowColor;
    } else if (outside.below) {
        color = mUnderflowColor;
    }
}
void ScDebugGamut::Constrain(StRGBAFloatPixel& color) {
    StOutside outside;
    outside.LookAtColors(color);
    outside.Look(color.alpha);
    if (outside.above) {
        pixel::TakeColors(color, mOverflowColor);
        color.alpha = mOverflowValue;
    } else if (outside.below) {
        pixel::TakeColors(color, mUnderflowColor);
        color.alpha = mUnderflowValue;
    }
}
void ScDebugGamut::Constrain(float& value) {
    if (value > 1.0f) {
        value = mOverflowValue;
    } else if (value < 0.0f) {
        value = mUnderflowValue;
    }
}
void ScDebugGamut::ConstrainSamples(ScColorSampleSet& samples) {
    DebugOverflowIterator look;
    samples.ForEachSample(look);
    if (look.Overflowed()) {
        samples.SetAllSamples(mOverflowColor);
    } else if (look.Underflowed()) {
        samples.SetAllSamples(mUnderflowColor);
    }
}
void ScDebugGamut::PutToStream(SmStream& stream) const {
    stream.PutBigEndian(kDebugVersion);
    mOverflowColor.PutToStream(stream);
    mUnderflowColor.PutToStream(stream);
    pixel::PutBigEndian(stream, mOverflowValue, mUnderflowValue);
}
void ScDebugGamut::GetFromStream(SmStream& stream) {
    stream.GetBigEndian<std::uint32_t>();  // every version reads alike
    mOverflowColor.GetFromStream(stream);
    mUnderflowColor.GetFromStream(stream);
    pixel::GetBigEndian(stream, mOverflowValue, mUnderflowValue);
}
ScGamut* ScDebugGamut::Clone() const {
    return CloneOf(*this);
}

// Streams

namespace {

struct StGamutRow {
    std::uint32_t selector;
    ScGamut* (*make)();
};

// clang-format off
constexpr StGamutRow kGamuts[] = {
    {kClipped, [] () -> ScGamut* { return new ScClippedGamut; }},
    {kScaled,  [] () -> ScGamut* { return new ScScaledGamut; }},
    {kDebug,   [] () -> ScGamut* {
        return new ScDebugGamut(SkDefaultDebugOverflowColor(), SkDefaultDebugUnderflowColor());
    }},
};
// clang-format on

ScGamut* MakeGamut(std::uint32_t selector) {
    for (StGamutRow const& row : kGamuts)
        if (row.selector == selector) return row.make();
    SrThrow(SkUnknownGamutError(), nullptr);
}

}  // namespace

void WriteGamut(SmStream& stream, ScGamut* gamut) {
    ScClippedGamut const clipped;
    ScGamut const& written = gamut ? *gamut : static_cast<ScGamut const&>(clipped);
    stream.PutBigEndian(static_cast<std::uint32_t>(written.GetGamutSelector()));
    written.PutToStream(stream);
}

void ReadGamut(SmStream& stream, ScGamut*& gamut) {
    std::unique_ptr<ScGamut> read(MakeGamut(stream.GetBigEndian<std::uint32_t>()));
    SrThrowIfNIL(read.get());
    read->GetFromStream(stream);
    gamut = read.release();
}
