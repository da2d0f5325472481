// Gamuts: what happens to a colour outside 0.0 to 1.0. An image owns one and passes each colour that is drawn
// into it through it.
//
//     ScClippedGamut   cuts each channel to the range; what an image has unless it is told otherwise
//     ScScaledGamut    scales a colour back into the range, so that its hue stays
//     ScDebugGamut     shows a loud colour instead, to find where such colours come from
//
// A gamut is made on the stack, or with `new` (null when memory is refused) and deleted. It works on single
// colours and on whole collections of samples. No operation reports anything; not-a-number is neither above
// the range nor below it and stays. One that only looks (all but GetFromStream) may be used by any number of
// threads.
#pragma once

#include "framewright/pixel/color_pixels.h"
#include "framewright/pixel/smart_pixel.h"
#include "framewright/thornmere/export.h"

class SmStream;

/// Sees, and may change, the components of a collection of samples one by one. Not deleted through this
/// class.
class FRAMEWRIGHT_EXPORT ScColorSampleIterator {
  public:
    /// Called once for each component of each sample, to change in place. `tag` is the collection's to give,
    /// say the number of the sample; no gamut reads it.
    virtual void HandleSample(long tag, float& sample) = 0;

  protected:
    ~ScColorSampleIterator() = default;
};

/// A collection of colour samples that a gamut can work on as a whole. Hosts derive their own; the library
/// has none and does not delete one.
class FRAMEWRIGHT_EXPORT ScColorSampleSet {
  public:
    /// Hands each component of each sample to `iterator`. Called up to twice for one ConstrainSamples, with
    /// the same samples.
    virtual void ForEachSample(ScColorSampleIterator& iterator) = 0;
    /// Every sample becomes `color`.
    virtual void SetAllSamples(StColorFloats const& color) = 0;

  protected:
    ~ScColorSampleSet() = default;
};

class FRAMEWRIGHT_EXPORT ScGamut : public SxFastAllocator {
  public:
    // The virtual operations, in slot order.
    virtual ~ScGamut();
    /// The class as a four-character code; it stands before the gamut's own data in a stream.
    virtual unsigned long GetGamutSelector() const = 0;
    /// Brings a colour into the gamut.
    virtual void Constrain(StColorFloats& color) = 0;
    /// The same with alpha.
    virtual void Constrain(StRGBAFloatPixel& color) = 0;
    /// The same for a value that stands alone.
    virtual void Constrain(float& value) = 0;
    /// Brings a whole collection into the gamut. Beware that the scaled gamut does more here than it does to
    /// single colours.
    virtual void ConstrainSamples(ScColorSampleSet& samples) = 0;
    /// Writes the gamut's own data, which the selector does not belong to; see WriteGamut.
    virtual void PutToStream(SmStream& stream) const = 0;
    virtual void GetFromStream(SmStream& stream) = 0;
    /// A new gamut that the caller deletes; -108 when memory is refused.
    virtual ScGamut* Clone() const = 0;
};

/// "GCli": at or above 1.0 becomes 1.0, below 0.0 becomes 0.0, channel by channel, alpha too. Has no data.
class FRAMEWRIGHT_EXPORT ScClippedGamut : public ScGamut {
  public:
    unsigned long GetGamutSelector() const override;
    void Constrain(StColorFloats& color) override;
    void Constrain(StRGBAFloatPixel& color) override;
    void Constrain(float& value) override;
    void ConstrainSamples(ScColorSampleSet& samples) override;
    void PutToStream(SmStream& stream) const override;
    void GetFromStream(SmStream& stream) override;
    ScGamut* Clone() const override;
};

/// "GSca": a colour with a channel outside the range is moved and scaled as a whole, so that its lowest
/// channel, or 0.0 if none is below, lands on 0.0 and its highest, or 1.0 if none is above, on 1.0: red 2.0,
/// green 1.0, blue 0.0 becomes 1.0, 0.5, 0.0. A colour within the range stays. Alpha and lone values are cut
/// to the range. Has no data.
///
/// ConstrainSamples is different: it always scales, so that the highest sample lands on 1.0, also where all
/// lie within the range, and the lowest (at most 0.0) on 0.0. Where all samples are 0.0 that divides by zero
/// and gives not-a-number.
class FRAMEWRIGHT_EXPORT ScScaledGamut : public ScGamut {
  public:
    unsigned long GetGamutSelector() const override;
    void Constrain(StColorFloats& color) override;
    void Constrain(StRGBAFloatPixel& color) override;
    void Constrain(float& value) override;
    void ConstrainSamples(ScColorSampleSet& samples) override;
    void PutToStream(SmStream& stream) const override;
    void GetFromStream(SmStream& stream) override;
    ScGamut* Clone() const override;
};

/// Red, 1.0, 0.0, 0.0: what a debug gamut that comes from a stream shows until its data are read.
FRAMEWRIGHT_EXPORT StColorFloats const& SkDefaultDebugOverflowColor();
/// The same red.
FRAMEWRIGHT_EXPORT StColorFloats const& SkDefaultDebugUnderflowColor();

/// "GDeb": a colour with a channel above 1.0 becomes the overflow colour; otherwise one with a channel below
/// 0.0 becomes the underflow colour. Where there is an alpha it is tested like a channel and becomes the
/// overflow or underflow value, as a lone value does. One sample outside the range makes all samples of a
/// collection loud.
class FRAMEWRIGHT_EXPORT ScDebugGamut : public ScGamut {
  public:
    /// Overflow and underflow value are 1.0.
    ScDebugGamut(StColorFloats const& overflow, StColorFloats const& underflow);

    unsigned long GetGamutSelector() const override;
    void Constrain(StColorFloats& color) override;
    void Constrain(StRGBAFloatPixel& color) override;
    void Constrain(float& value) override;
    void ConstrainSamples(ScColorSampleSet& samples) override;
    /// 36 bytes, numbers big-endian: version 1, the overflow and the underflow colour as three floats each,
    /// the overflow and the underflow value.
    void PutToStream(SmStream& stream) const override;
    /// The version is not looked at. What was read before a failure stays.
    void GetFromStream(SmStream& stream) override;
    ScGamut* Clone() const override;

  private:
    StColorFloats mOverflowColor;
    StColorFloats mUnderflowColor;
    float mOverflowValue;
    float mUnderflowValue;
};

/// Writes the selector as a big-endian 32-bit value, then the gamut's own data. Null is written as a
/// ScClippedGamut, which is what lacking a gamut comes back as.
FRAMEWRIGHT_EXPORT void WriteGamut(SmStream& stream, ScGamut* gamut);
/// Makes the gamut that WriteGamut wrote, of the library's three classes; the caller deletes it. The old
/// value of `gamut` is not deleted, and stays when this fails. An unknown selector throws
/// SkUnknownGamutError() without a message, refused memory -108.
FRAMEWRIGHT_EXPORT void ReadGamut(SmStream& stream, ScGamut*& gamut);

/// The selector of a gamut that the library does not know. Given out when the library loads: compare, don't
/// store.
FRAMEWRIGHT_EXPORT long SkUnknownGamutError();
