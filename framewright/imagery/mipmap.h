// SmImagerMipmap<Pixel, Spool>: a texture together with its chain of ever smaller, filtered copies. A texture
// read takes the width of its filter, as a part of the whole texture, and reads the levels that match it: a
// filter of 1 / the larger side is one pixel of level 0, each doubling goes one level down, and between two
// levels both are read and mixed.
//
//     auto mipmap = StRef<SmImagerFrame>::Adopt(SrMakeMipmapFromFrame(picture));   // null: no such mipmaps
//     mipmap->GetFractionalUVPixel(u, v, color, SkNoTilings(), 0.01f);
//
// To the outside it is a frame of the size of level 0, both sides powers of two. The smaller levels lie in
// the same raster, below level 0 (see mip_chain.h), so operations that walk the whole raster (Erase, Flip,
// Invert) reach them too. Pixels that are written into level 0 do not reach the smaller levels: CopyFromLayer
// and ReadFrom alone make these anew. A mipmap is made at its size and not resized.
//
// Reading from a mipmap allocates nothing and takes no lock.
//
// The bodies are in mipmap_impl.h and are compiled once for each record, in imagery/mipmaps/.
#pragma once

#include "framewright/core/startup.h"
#include "framewright/frame/layer.h"
#include "framewright/imagery/mip_chain.h"
#include "framewright/thornmere/export.h"

// clang-format off
/// The records that mipmaps are made of, in the order of their prototypes.
#define FOR_EACH_MIPMAP_PIXEL(ROW) \
    ROW(StRGBA32Pixel)             \
    ROW(StRGB32Pixel)              \
    ROW(StRGB15Pixel)              \
    ROW(StRGBAFloatPixel)          \
    ROW(StColorFloats)             \
    ROW(StGray8Pixel)              \
    ROW(StGray4Pixel)              \
    ROW(StGray2Pixel)
// clang-format on

template <class Pixel, class Spool>
class SmImagerMipmap;

template <class Pixel, class Spool>
using SmImagerMipmap__Class = ScClassObject<SmImagerMipmap<Pixel, Spool>>;

/// All instantiations share one name; the class object, made at the first call of Class(), tells them apart.
template <class Pixel, class Spool>
struct FRAMEWRIGHT_EXPORT StClassFacts<SmImagerMipmap<Pixel, Spool>> {
    using ParentClass = SmImagerLayer<Pixel, Spool>;
    static constexpr char const* kName = "SmImagerMipmap<class template>";
    static constexpr unsigned char kVersion = 0;
    static constexpr bool kAbstract = false;
    static ScMC_* Object();
};

/// Each operation means here what SmImagerFrame says; comments below add what is a mipmap's own.
template <class Pixel, class Spool>
class FRAMEWRIGHT_EXPORT SmImagerMipmap : public SmManaged<SmImagerMipmap<Pixel, Spool>> {
    friend SmManaged<SmImagerMipmap>;

  public:
    using Layer = SmImagerLayer<Pixel, Spool>;

    /// The initialiser. Level 0 takes the powers of two nearest to the sides of `size`, the greater where two
    /// are equally near. The chain ends at the first level of which a pixel covers `maximumFilter` of the
    /// larger side: 1.0 goes down to one pixel, and so does 0. The pixels are not set. -108 when memory is
    /// refused.
    void IImagerMipmap(StPoint const& size, float maximumFilter, bool nativeBitmap);
    /// What GetOriginalSize answers.
    void SetOriginalSize(StPoint const& size) { mChain.originalSize = size; }
    /// The levels: how many, where, and the filters that they are for. Without a table before initialisation.
    StMipChain const& Chain() const { return mChain; }

    /// The size of level 0.
    StPoint GetSize() override;
    /// The size of the picture that CopyFromLayer took; 0, 0 before.
    StPoint GetOriginalSize() override { return mChain.originalSize; }
    bool IsUVTriLinear() override { return true; }

    /// A mipmap of this pixel type, for pictures of `size`, with as deep a chain as this one's.
    SmImagerFrame* CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) override;
    /// Fills level 0, stretched where the sizes differ, then the smaller levels.
    void CopyFromLayer(SmImagerFrame* source) override;

    // Texture reads, trilinear. u and v are clamped to 0 and 1 whatever the tiling, a negative width counts
    // as 0 and reads level 0 alone. v runs up from the bottom row. -108 when a row has no memory behind it.

    void GetFractionalUVPixel(float u, float v, StColorFloats& pixel, StTilingStyles const& tiling,
                              float filter) override;
    void GetFractionalUVPixel(float u, float v, float& intensity, StTilingStyles const& tiling,
                              float filter) override;
    /// The mixed pixel of this mipmap's own type, converted.
    void GetFractionalUVPixel(float u, float v, StRGBA32Pixel& pixel, StTilingStyles const& tiling,
                              float filter) override;
    void GetUVDerivatives(float u, float v, float& du, float& dv, StTilingStyles const& tiling,
                          float filter) override;

    /// Level 0 is read from the stream, the smaller levels are made from it.
    void ReadFrom(SmStream* stream) override;

    // The virtual operations of mipmaps, in slot order.

    /// The size of the whole raster.
    virtual StPoint GetStorageSize();
    /// A trilinear read in the pixel's own type, without any clamp of u, v and `filter`.
    virtual Pixel GetFilteredPixel(float u, float v, float filter, StTilingStyles const& tiling);
    /// A bilinear read of one level, or of the last one for a number past it. Behind the last pixel of an
    /// axis comes the first, and an axis whose style is not 1 is one pixel short: u = 1.0 reads column 0 in
    /// both. u and v from 0 to 1 stay in the level; others wrap once and then end at the raster's edges.
    virtual Pixel SampleLevel(float u, float v, long level, StTilingStyles const& tiling);
    /// The gradient of the intensity in one level. Tiling counts the other way round here: an axis of style 0
    /// has its whole length and pixels centred on half steps. `dv` grows downward.
    virtual void LevelDerivatives(float u, float v, float& du, float& dv, long level,
                                  StTilingStyles const& tiling);

  protected:
    SmImagerMipmap();
    ~SmImagerMipmap() override;
    /// The copy has all levels.
    void CloneFrom(SmImagerMipmap const& other);
    void Free() override;

    /// Makes each level from the one before: two by two pixels, blended in pairs by halves. So levels of
    /// integer pixels lose up to half a step at each blend.
    void RebuildLevels();

  private:
    StMipLevel const& LevelAt(long level) const;
    /// The address of a row of the raster; -108 when it has no memory.
    void* ExistingRow(long row) const;
    /// The pixels around a place of the raster, converted.
    template <class Value>
    frame::StCorners<Value> CornersAs(frame::StPlace const& place) const;
    void RebuildLevel(StMipLevel const& from, StMipLevel const& to);
    /// One mixed read of the levels that `filter` selects, each converted before they are mixed.
    template <class Value, class Convert, class Mix>
    Value Trilinear(float u, float v, float filter, StTilingStyles const& tiling, Convert const& convert,
                    Mix const& mix);

    StMipChain mChain;
};

#define SR_ROW(Record)                                                             \
    extern template struct StClassFacts<SmImagerMipmap<Record, ScImagerNonSpool>>; \
    extern template struct StClassFacts<SmImagerMipmap<Record, ScImagerSpool>>;    \
    extern template class SmImagerMipmap<Record, ScImagerNonSpool>;                \
    extern template class SmImagerMipmap<Record, ScImagerSpool>;
FOR_EACH_MIPMAP_PIXEL(SR_ROW)
#undef SR_ROW

/// A mipmap of a picture: its rows in memory, of the picture's pixel type and the powers of two nearest to
/// its size. The caller has the one reference. Null for pixel types that have no mipmaps.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrMakeMipmapFromFrame(SmImagerFrame* frame);
