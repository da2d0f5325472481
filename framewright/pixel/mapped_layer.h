// SmImagerMappedLayer<Pixel, Spool>: a layer whose pixels are indices into a colour map of its own.
// Everything that concerns colours goes through the map; what copies native records (the void* forms,
// GetMatchedPixelAt, blits between layers of one class) moves indices and leaves the map alone.
//
// Two traps. A blit between two layers of one class copies indices without comparing the maps: with different
// maps the picture changes colour. And even reading a colour may write to the map's cache (see color_map.h).
#pragma once

#include <memory>

#include "framewright/pixel/color_map.h"
#include "framewright/pixel/dithered_layer.h"
#include "framewright/thornmere/export.h"

template <class Pixel, class Spool>
class SmImagerMappedLayer;

template <class Pixel, class Spool>
using SmImagerMappedLayer__Class = ScClassObject<SmImagerMappedLayer<Pixel, Spool>>;

/// All instantiations share one name; the class object, made at the first call of Class(), tells them apart.
template <class Pixel, class Spool>
struct FRAMEWRIGHT_EXPORT StClassFacts<SmImagerMappedLayer<Pixel, Spool>> {
    using ParentClass = SmImagerDitheredLayer<Pixel, Spool>;
    static constexpr char const* kName = "SmImagerMappedLayer<class template>";
    static constexpr unsigned char kVersion = 0;
    static constexpr bool kAbstract = false;
    static ScMC_* Object();
};

/// Each operation means here what SmImagerFrame says; comments below add what is a mapped layer's own. A
/// colour that is written becomes the index that the map calls the closest, so it need not read back as it
/// was.
template <class Pixel, class Spool>
class FRAMEWRIGHT_EXPORT SmImagerMappedLayer : public SmManaged<SmImagerMappedLayer<Pixel, Spool>> {
    friend SmManaged<SmImagerMappedLayer>;

  public:
    using Dithered = SmImagerDitheredLayer<Pixel, Spool>;
    using ScPalette = ScColorMap<unsigned char, StRGBA32Pixel>;

    /// How many entries the map of such a layer has: 256, 16, 4 or 2.
    static constexpr int kMapEntries = 1 << Pixel::PixelSize();

    /// IImagerDitheredLayer, and a map of the standard colours; foreground and background become the indices
    /// closest to black and white. -108 when memory is refused.
    void IImagerMappedLayer(StPoint const& topLeft, StPoint const& size, bool nativeBitmap, void* base,
                            long rowBytes);

    /// The layer's map, borrowed. Null in the prototypes of the registry, and before initialisation, until
    /// the layer is first asked for a colour: it makes itself a standard map then.
    ScPalette* GetColorMap() const { return mMap.get(); }

    using Dithered::GetPixelAt;  // into a smart pixel and a plain record: the index
    void GetPixelAt(long x, long y, StRGBA32Pixel& pixel) override;
    void GetPixelAt(long x, long y, StColorFloats& pixel) override;
    void GetPixelAt(long x, long y, StRGBAFloatPixel& pixel) override;
    void GetPixelAt(long x, long y, float& intensity) override;
    /// The grey of the colour, not its opacity.
    void GetPixelAt(long x, long y, StAlpha8Pixel& grey) override;
    StRGBA32Pixel GetRGBAPixelAt(long x, long y) override;
    using Dithered::PutPixelAt;  // from a plain record: the index
    void PutPixelAt(long x, long y, StRGBA32Pixel const& pixel) override;
    void PutPixelAt(long x, long y, StColorFloats const& pixel) override;
    void PutPixelAt(long x, long y, StRGBAFloatPixel const& pixel) override;
    void PutPixelAt(long x, long y, StDepthFloatPixel const& depth) override;
    /// The opacity in all four bytes of the colour.
    void PutPixelAt(long x, long y, StAlpha8Pixel const& opacity) override;
    /// An index of this layer's own kind is read with this layer's map, whatever map it came from.
    void PutPixelAt(long x, long y, ScSmartPixel const* pixel) override;
    void MergePixelAt(long x, long y, StRGBA32Pixel color) override;

    void SetForeground(StRGBA32Pixel const& color) override;
    void GetForeground(StRGBA32Pixel& color) override;
    void SetBackground(StRGBA32Pixel const& color) override;
    void GetBackground(StRGBA32Pixel& color) override;

    /// Bound to this layer's map, which must outlive its use.
    ScSmartPixel* NewSmartPixel() override;
    /// A bilinear sample at pixel coordinates. Each of the three blends ends at the closest entry of the map.
    /// The neighbour of the last pixel is the first one; positions outside count as the nearest edge.
    Pixel GetFractionalPixel(float x, float y);
    void GetFractionalSmartPixel(float x, float y, ScSmartPixel* pixel) override;

    /// Composites colour by colour. Right and bottom of `from` are included, unlike everywhere else. Pixels
    /// that lie outside either frame are left out.
    bool MergeRect(SmImagerFrame* source, StRect const& from, StPoint const& to) override;
    bool BlitRect(SmImagerFrame* source, StRect const& from, StPoint const& to) override;
    /// Whatever the source is, through a smart pixel: first pixel to first, last to last, bilinear.
    bool StretchBlit(SmImagerFrame* source, StRect const& from, StRect const& to) override;
    /// Takes the used colours of a source of the same class along, then its pixels.
    void CopyFromLayer(SmImagerFrame* source) override;

    /// A layer of the same class at the same place, of the same indices, with the standard map.
    SmImagerFrame* MirrorLayer() override;
    /// With the standard map, not this layer's.
    SmImagerFrame* CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) override;

    /// Gives the context the colours of the map first.
    void* GetNativeImageContext() override;

    /// The frame body, then the mark "Mapd", a version byte, 1, and the colour map.
    void WriteTo(SmStream* stream) override;
    /// Another mark throws SkBadFileFormatErrC() and another version SkBadFileVersionErrC(), each with its
    /// message; the map is as before then.
    void ReadFrom(SmStream* stream) override;

  protected:
    SmImagerMappedLayer();
    ~SmImagerMappedLayer() override;
    /// The copy has the same used colours, and black and white for foreground and background.
    void CloneFrom(SmImagerMappedLayer const& other);
    void Free() override;

    /// Between layers of one class the indices move as they are, also where pixels begin or end inside a
    /// byte.
    bool DissimilarBlit(SmImagerFrame* source, StRect const& from, StPoint const& to) override;

  private:
    bool DitheredBlit(SmImagerFrame* source, StRect const& from, StPoint const& to) override;

    /// The map, which is made here if there is none.
    ScPalette& Map();
    static std::unique_ptr<ScPalette> NewStandardMap();
    StRGBA32Pixel ColorOf(Pixel const& pixel);
    Pixel ClosestTo(StRGBA32Pixel color);
    StRGBA32Pixel ColorAt(long x, long y) { return ColorOf(this->GetMatchedPixelAt(x, y)); }
    void SetStandardGrounds();

    std::unique_ptr<ScPalette> mMap;
};

#define SR_ROW(Record)                                                                  \
    extern template struct StClassFacts<SmImagerMappedLayer<Record, ScImagerNonSpool>>; \
    extern template struct StClassFacts<SmImagerMappedLayer<Record, ScImagerSpool>>;    \
    extern template class SmImagerMappedLayer<Record, ScImagerNonSpool>;                \
    extern template class SmImagerMappedLayer<Record, ScImagerSpool>;
FOR_EACH_MAPPED_PIXEL(SR_ROW)
#undef SR_ROW

/// Whether `frame` is a mapped layer whose rows stay in memory; a spooled one does not count.
FRAMEWRIGHT_EXPORT bool SrIsColorMappedFrame(SmImagerFrame* frame);
/// The map of such a frame, borrowed; null for every other frame.
FRAMEWRIGHT_EXPORT ScColorMap<unsigned char, StRGBA32Pixel>* SrGetColorMapFromFrame(SmImagerFrame* frame);
