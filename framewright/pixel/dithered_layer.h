// SmImagerDitheredLayer<Pixel, Spool>: a layer of few colours that receives pictures of more colours by error
// diffusion. It exists for the 15-bit record and the four mapped ones; the 15-bit layers stand on their own,
// the mapped ones are the base of SmImagerMappedLayer, without which indices have no colours.
//
// The frame's dithering code (SetDithering) says how a blit transfers colours:
//
//     "BIDI"   error diffusion along a serpentine path, the default
//     0        pixel by pixel, without dithering
//     other    nothing is transferred
//
// A layer keeps the errors of the row it dithered last, one for each column, from one blit to the next: a
// picture that comes in strips from the top down is dithered as if it came whole. A blit whose source
// rectangle starts above that of the one before begins without errors.
//
// Used by one thread at a time, like all frames.
#pragma once

#include <cstdint>

#include "framewright/frame/layer.h"
#include "framewright/pixel/pixel_table.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/vector.h"

namespace pixel {
struct StDitherError;
}

template <class Pixel, class Spool>
class SmImagerDitheredLayer;

template <class Pixel, class Spool>
using SmImagerDitheredLayer__Class = ScClassObject<SmImagerDitheredLayer<Pixel, Spool>>;

/// All instantiations share one name; the class object, made at the first call of Class(), tells them apart.
template <class Pixel, class Spool>
struct FRAMEWRIGHT_EXPORT StClassFacts<SmImagerDitheredLayer<Pixel, Spool>> {
    using ParentClass = SmImagerLayer<Pixel, Spool>;
    static constexpr char const* kName = "SmImagerDitheredLayer<class template>";
    static constexpr unsigned char kVersion = 0;
    static constexpr bool kAbstract = false;
    static ScMC_* Object();
};

template <class Pixel, class Spool>
class FRAMEWRIGHT_EXPORT SmImagerDitheredLayer : public SmManaged<SmImagerDitheredLayer<Pixel, Spool>> {
    friend SmManaged<SmImagerDitheredLayer>;

  public:
    using Layer = SmImagerLayer<Pixel, Spool>;

    /// IImagerLayer without a parent, and a row of errors, all 0. -108 when memory is refused.
    void IImagerDitheredLayer(StPoint const& topLeft, StPoint const& size, bool nativeBitmap, void* base,
                              long rowBytes);

    SmImagerFrame* CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) override;

    /// Copies a rectangle of `source`, dithered as the dithering code says; a copy onto itself is raw. Pixels
    /// that lie outside either frame are left out. Does nothing, and leaves the updated flag, with an unknown
    /// code.
    bool BlitRect(SmImagerFrame* source, StRect const& from, StPoint const& to) override;

    /// A new width clears the errors; with a new height alone they stay.
    void Resize(StPoint const& size, StImageInterpolationMethod method) override;

    // Added behind the slots of the frame.

    /// Forgets the errors of the columns from `left` up to `right`, of all columns where both are 0. A layer
    /// that has no row of errors gets one. -108 when memory is refused.
    virtual void ClearDither(long left, long right);

  protected:
    SmImagerDitheredLayer();
    ~SmImagerDitheredLayer() override;
    /// The copy starts without errors.
    void CloneFrom(SmImagerDitheredLayer const& other);
    void Free() override;

    /// The frame of a dithered blit: the part `from` of `source`, which with its place at `to` lies within
    /// both frames, goes row by row through `put` (see DitherRow).
    template <class Put>
    void Diffuse(SmImagerFrame* source, StRect const& from, StPoint const& to, Put& put);

  private:
    /// The transfer of "BIDI", through the colours that this layer's pixels can have. Returns false.
    virtual bool DitheredBlit(SmImagerFrame* source, StRect const& from, StPoint const& to);

    /// A row of errors above this size in bytes that would outweigh the pixels waits for the first dithered
    /// blit.
    static constexpr std::int64_t kSmallErrorRow = 1 << 20;

    /// The layer has no row of errors.
    void ReleaseErrors();
    /// Errors of 0. -108 when memory is refused, or for a row over the frame limit.
    void NewErrors(long columns);
    /// What a layer of that size starts with.
    void NewErrorsWith(StPoint const& size);

    ScVector<pixel::StDitherError>
        mErrors;                ///< empty before initialisation and where the first blit makes it
    std::int32_t mLastTop = 0;  ///< the source top of the dithered blit before
};

#define SR_ROW(Record)                                                                    \
    extern template struct StClassFacts<SmImagerDitheredLayer<Record, ScImagerNonSpool>>; \
    extern template struct StClassFacts<SmImagerDitheredLayer<Record, ScImagerSpool>>;    \
    extern template class SmImagerDitheredLayer<Record, ScImagerNonSpool>;                \
    extern template class SmImagerDitheredLayer<Record, ScImagerSpool>;
FOR_EACH_DITHERED_PIXEL(SR_ROW)
#undef SR_ROW
