// The concrete raster: SmImagerLayer<Pixel, Spool>, over a pixel record (pixel/pixels.h) and a row spooler.
// The record says what a pixel is, the spooler where a row lies; everything else is one text. There are two
// spoolers: ScImagerNonSpool keeps all rows in one block in memory, ScImagerSpool lets single rows go to
// spool files when memory runs short.
//
//     StRef<SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>> layer = ...Adopt(...::New());
//     layer->IImagerLayer({0, 0}, {rows, columns}, false, nullptr, 0, nullptr);
//
// Most callers want a frame and go through SrMakeFrame (frame/layer_factory.h) instead.
//
// Speed: within a layer a pixel is an indexed load from a table of rows; only the interface of the frame is
// virtual. GetMatchedPixelAt and PutMatchedPixelAt are the way to walk pixels of a known type.
//
// The bodies are in layer_impl.h and are compiled once for each record, in frame/layers/.
#pragma once

#include "framewright/frame/layer_base.h"
#include "framewright/frame/non_spool.h"
#include "framewright/pixel/pixel_table.h"
#include "framewright/pixel/pixels.h"
#include "framewright/pixel/row_access.h"
#include "framewright/spool/imager_spool.h"
#include "framewright/thornmere/export.h"

namespace frame {

struct StPlace;
struct StStretchMap;
template <class Value>
struct StCorners;

/// One string for all, so that names can be compared by address too.
inline constexpr char kLayerClassName[] = "SmImagerLayer<class template>";

}  // namespace frame

template <class Pixel, class Spool>
class SmImagerLayer;

template <class Pixel, class Spool>
using SmImagerLayer__Class = ScClassObject<SmImagerLayer<Pixel, Spool>>;

/// All instantiations share one name; the class object, made at the first call of Class(), tells them apart.
template <class Pixel, class Spool>
struct FRAMEWRIGHT_EXPORT StClassFacts<SmImagerLayer<Pixel, Spool>> {
    using ParentClass = frame::SmLayerBase;
    static constexpr char const* kName = frame::kLayerClassName;
    static constexpr unsigned char kVersion = 0;
    static constexpr bool kAbstract = false;
    static ScMC_* Object();
};

/// Each operation of SmImagerFrame means here what it says there; comments below add what is a layer's own.
///
/// A mapped record has no colours without a colour map, so on a plain layer of one, reading a colour does
/// nothing, setting foreground or background does nothing, and writing a colour stores index 0. Such layers
/// hold indices; colours come with SmImagerMappedLayer.
template <class Pixel, class Spool>
class FRAMEWRIGHT_EXPORT SmImagerLayer : public SmManaged<SmImagerLayer<Pixel, Spool>> {
    friend SmManaged<SmImagerLayer>;

  public:
    using PixelType = Pixel;
    using SpoolType = Spool;

    /// The initialiser. `rowBytes` 0 means rows padded to 32 bits. Without a `base` the layer allocates one
    /// block, which with `nativeBitmap` the host's imaging system can draw from if the record allows it. With
    /// one the rows lie in the caller's block: `topLeft` is then the place of this layer in that block, on a
    /// whole byte. `parent` is the frame whose block that is; it is kept alive and contiguous.
    ///
    /// Where rows leave memory nothing is allocated yet, and `nativeBitmap` means nothing.
    ///
    /// -108 when memory is refused, when the size is negative or over SrGetFrameSizeLimit(), or when
    /// `rowBytes`, of either sign, holds less than a row. Foreground, background and the pixels are not set.
    /// A layer that is initialised again without a parent keeps the one it has.
    void IImagerLayer(StPoint const& topLeft, StPoint const& size, bool nativeBitmap, void* base,
                      long rowBytes, SmImagerFrame* parent);

    /// The record at (x, y), not converted.
    Pixel GetMatchedPixelAt(long x, long y) const {
        Pixel pixel{};
        pixel::LoadPixel(mSpooler.GetPtrRow(y), x, pixel);
        return pixel;
    }
    void PutMatchedPixelAt(long x, long y, Pixel const& pixel) {
        pixel::StorePixel(mSpooler.GetPtrRow(y), x, pixel);
    }
    /// A bilinear sample at pixel coordinates: at 3.25 three parts of column 3 and one of column 4. The
    /// neighbour of the last pixel is the first one, and what lies outside counts as the nearest edge.
    /// Records that cannot blend (mapped and integer depth) give the pixel at the truncated position.
    Pixel GetFractionalPixel(float x, float y);

    unsigned long PixelID() override { return Pixel::PixelID(); }
    unsigned long FamilyID() override { return Pixel::FamilyID(); }
    long PixelSize() override { return Pixel::PixelSize(); }

    /// Where rows leave memory, a call that fails leaves one lock on `first`.
    bool LockRows(long first, long last) override;
    void UnlockRows(long first, long last) override;
    /// Where rows leave memory, a call that throws is counted too: the row is to be unlocked.
    void* LockRow(long row) override;
    void UnlockRow(long row) override;
    void ForceContiguous() override;
    void ReleaseContiguous() override;
    bool IsContiguous() override;
    /// Row 0 goes to `base` plus the place of top left in it, whoever owned the block before. `base` is lent.
    void ResetBaseAddress(void* base) override;

    void GetPixelAt(long x, long y, StRGBA32Pixel& pixel) override;
    void GetPixelAt(long x, long y, StColorFloats& pixel) override;
    void GetPixelAt(long x, long y, StRGBAFloatPixel& pixel) override;
    void GetPixelAt(long x, long y, float& intensity) override;
    void GetPixelAt(long x, long y, StAlpha8Pixel& opacity) override;
    void GetPixelAt(long x, long y, ScSmartPixel* pixel) override;
    void GetPixelAt(long x, long y, void* record) override;
    void PutPixelAt(long x, long y, StRGBA32Pixel const& pixel) override;
    void PutPixelAt(long x, long y, StColorFloats const& pixel) override;
    void PutPixelAt(long x, long y, StRGBAFloatPixel const& pixel) override;
    void PutPixelAt(long x, long y, StDepthFloatPixel const& depth) override;
    void PutPixelAt(long x, long y, StAlpha8Pixel const& opacity) override;
    void PutPixelAt(long x, long y, ScSmartPixel const* pixel) override;
    void PutPixelAt(long x, long y, void const* record) override;
    void DrawPixelAt(long x, long y) override;
    ScSmartPixel* NewSmartPixel() override;
    void GetFractionalSmartPixel(float x, float y, ScSmartPixel* pixel) override;
    StRGBA32Pixel GetRGBAPixelAt(long x, long y) override;
    unsigned long GetRGBAPixelAsLong(long x, long y) override;
    void MergePixelAt(long x, long y, StRGBA32Pixel pixel) override;
    void* GetRow(long row) override;

    void SetForeground(StRGBA32Pixel const& color) override;
    void GetForeground(StRGBA32Pixel& color) override;
    void SetBackground(StRGBA32Pixel const& color) override;
    void GetBackground(StRGBA32Pixel& color) override;

    /// Always a plain layer with its rows in memory, at the same top left.
    SmImagerFrame* MirrorLayer() override;
    SmImagerFrame* CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) override;

    bool MergeRect(SmImagerFrame* source, StRect const& from, StPoint const& to) override;
    bool BlitRect(SmImagerFrame* source, StRect const& from, StPoint const& to) override;
    bool StretchBlit(SmImagerFrame* source, StRect const& from, StRect const& to) override;
    bool StretchBlitFast(SmImagerFrame* source, StRect const& from, StRect const& to) override;
    bool StretchBlitMasked(SmImagerFrame* source, SmImagerFrame* mask, StRect const& from,
                           StRect const& to) override;

    /// On a layer that owns its block no row has an address afterwards, until ResetBaseAddress.
    void MoveFrame(StRect const& rect) override;
    /// Takes `base`, then the new top left if the size stays, then the size. So where both change, top left
    /// stays as it was, and where only `base` changes the rows keep their old addresses: callers rely on
    /// both.
    void MoveFrame(void* base, StPoint const& topLeft, StPoint const& size) override;
    /// A layer on a lent block keeps its row bytes. One that owns its block gets a new one; when memory is
    /// refused (-108) it is left without a block, as a frame of no pixels.
    void Resize(StPoint const& size, StImageInterpolationMethod method) override;

    void GetFractionalUVPixel(float u, float v, StColorFloats& pixel, StTilingStyles const& tiling,
                              float width) override;
    void GetFractionalUVPixel(float u, float v, float& intensity, StTilingStyles const& tiling,
                              float width) override;
    void GetFractionalUVPixel(float u, float v, StRGBA32Pixel& pixel, StTilingStyles const& tiling,
                              float width) override;
    void GetUVDerivatives(float u, float v, float& du, float& dv, StTilingStyles const& tiling,
                          float width) override;

    void WritePixels(SmStream* stream, long row, long count) override;
    void ReadPixels(SmStream* stream, long row, long count) override;

    void Erase() override;
    void Flip(bool horizontal, bool vertical) override;
    void Invert() override;
    void RectFill(StRect const& rect, ScSmartPixel* pixel) override;

  protected:
    bool DissimilarBlit(SmImagerFrame* source, StRect const& from, StPoint const& to) override;

    SmImagerLayer();
    ~SmImagerLayer() override;
    /// A copy on a lent block looks at the same block, its rows starting at base whatever top left says; one
    /// of a layer that owns its block has a block of its own. Then the pixels are copied.
    void CloneFrom(SmImagerLayer const& other);
    void Free() override;

    /// The address of a row, without a lock.
    void* Row(long row) const { return mSpooler.GetPtrRow(row); }
    Spool& Spooler() { return mSpooler; }

    Pixel mForeground{};
    Pixel mBackground{};

  private:
    static constexpr frame::StPixelKind kKind{Pixel::PixelID(), Pixel::PixelSize()};

    /// One row of StretchBlit between like pixels.
    void StretchRow(SmImagerFrame* source, StPoint const& sourceSize, frame::StStretchMap const& map,
                    StRect const& to, long y);
    /// The pixels around a place, as the class that knows their colours converts them.
    template <class Value>
    frame::StCorners<Value> CornersAs(frame::StPlace const& place);
    /// The raw road of BlitRect.
    void CopyRows(SmImagerFrame* source, StRect const& from, StPoint const& to);
    void BindRows(void* start) { mSpooler.BindRows(start, RowDistance()); }
    unsigned int RowDistance() const { return static_cast<unsigned int>(this->mRowBytes); }

    Spool mSpooler;
};

#define SR_ROW(Record, ...)                                                       \
    extern template struct StClassFacts<SmImagerLayer<Record, ScImagerNonSpool>>; \
    extern template struct StClassFacts<SmImagerLayer<Record, ScImagerSpool>>;    \
    extern template class SmImagerLayer<Record, ScImagerNonSpool>;                \
    extern template class SmImagerLayer<Record, ScImagerSpool>;
FOR_EACH_LAYER_PIXEL(SR_ROW)
#undef SR_ROW
