// A window: a frame without pixels of its own, which shows a rectangle of a parent frame. It may step
// through the parent by a line and a column spacing, so that every second line reads as a frame by itself.
//
//     auto window = StRef<SmImagerSubframe>::Adopt(SmImagerSubframe::New());
//     window->IImagerSubframe(picture, {10, 20, 110, 220}, 1, 1);  // 100 rows by 200 columns
//
// Pixel (x, y) of the window is the parent's column x * column spacing + left and row y * line spacing + top;
// below, "translated" means this. Most operations are the parent's own, some with translated coordinates.
// A window with both spacings 1 is plain: it does what its parent does, in its place.
//
// Traps, all of which callers rely on:
// - The size is that of the rectangle, whatever the spacings: with line spacing 2, only as many rows can be
//   read as the parent has at twice the distance. Read and fill no further than that.
// - GetRow gives the start of the parent's row, LockRow the window's first pixel in it. Copies between equal
//   pixel types (BlitRect, MergeRect, MirrorLayer, CopyFromLayer, each with the window as source) go through
//   GetRow and so take the parent's columns from 0 on, unspaced, when left is not 0. To copy out of a window
//   whose left is not 0, or which has a column spacing, go by pixel or through LockRow.
// - Blits into a spaced window stop at the first call on the parent that gives false, and layers always give
//   false: one row, one column or one pixel is copied.
// - A window does not mirror: Flip inverts, as Invert does. It is never streamed.
//
// The rectangle is to lie in the parent. What spacings and twice translated places reach outside a parent
// that is a layer is made safe: reads give the nearest row and column, writes do nothing.
#pragma once

#include <optional>

#include "framewright/frame/frame.h"
#include "framewright/frame/layer_base.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/reference.h"

SM_CLASS(SmImagerSubframe, SmImagerFrame, 0);
class FRAMEWRIGHT_EXPORT SmImagerSubframe : public SmManaged<SmImagerSubframe> {
    friend SmManaged<SmImagerSubframe>;

  public:
    /// Shows `subrect` of `parent`, which is kept alive; there must be one. Both spacings are at least 1, and
    /// loops by a lesser one visit nothing. Purpose and dithering are copied from the parent, but asked of it
    /// ever after.
    void IImagerSubframe(SmImagerFrame* parent, StRect const& subrect, long columnSpacing, long lineSpacing);

    /// Borrowed.
    SmImagerFrame* GetParent() const { return mParent; }
    /// Looks into another frame from now on. That one is not kept alive: it must outlive the window's use of
    /// it. The parent of the initialiser stays alive until the window goes.
    void SetParent(SmImagerFrame* parent);
    void GetSubrect(StRect& subrect) const { subrect = mSubrect; }
    /// The size stays as it was.
    void SetSubrect(StRect const& subrect);
    long GetLineSpacing() const { return mLineSpacing; }
    void SetLineSpacing(long spacing);
    long GetColumnSpacing() const { return mColumnSpacing; }
    void SetColumnSpacing(long spacing);

    unsigned long PixelID() override { return mParent->PixelID(); }
    unsigned long FamilyID() override { return mParent->FamilyID(); }
    long PixelSize() override { return mParent->PixelSize(); }
    /// The window's own, of the rectangle as it was initialised.
    StPoint GetSize() override { return mSize; }
    StPoint GetTopLeft() override { return mTopLeft; }
    StPoint GetOriginalSize() override { return mSize; }
    long GetPurpose() override { return mParent->GetPurpose(); }
    void SetPurpose(long purpose) override { mParent->SetPurpose(purpose); }
    long BytesPerRow() override { return mParent->BytesPerRow(); }
    bool IsUVTriLinear() override { return mParent->IsUVTriLinear(); }

    /// Locks one row after the other and ends with false at the first that gives no address. The rows before
    /// stay locked then.
    bool LockRows(long first, long last) override;
    void UnlockRows(long first, long last) override;
    /// Leads to the window's first pixel: past the parent's row by the bytes of the pixels left of it,
    /// rounded up.
    void* LockRow(long row) override;
    void UnlockRow(long row) override;
    void ForceContiguous() override { mParent->ForceContiguous(); }
    void ReleaseContiguous() override { mParent->ReleaseContiguous(); }
    bool IsContiguous() override { return mParent->IsContiguous(); }
    void ResetBaseAddress(void* base) override { mParent->ResetBaseAddress(base); }

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
    ScSmartPixel* NewSmartPixel() override { return mParent->NewSmartPixel(); }
    void GetFractionalSmartPixel(float x, float y, ScSmartPixel* pixel) override;
    StRGBA32Pixel GetRGBAPixelAt(long x, long y) override;
    unsigned long GetRGBAPixelAsLong(long x, long y) override;
    void MergePixelAt(long x, long y, StRGBA32Pixel pixel) override;
    /// The start of the parent's row, not moved to the window's left.
    void* GetRow(long row) override;

    void SetForeground(StRGBA32Pixel const& color) override { mParent->SetForeground(color); }
    void GetForeground(StRGBA32Pixel& color) override { mParent->GetForeground(color); }
    void SetBackground(StRGBA32Pixel const& color) override { mParent->SetBackground(color); }
    void GetBackground(StRGBA32Pixel& color) override { mParent->GetBackground(color); }

    /// A clone of the parent at the window's size, into which the window is copied.
    SmImagerFrame* MirrorLayer() override;
    SmImagerFrame* CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) override;
    void SetUpdated(bool updated) override { mParent->SetUpdated(updated); }
    bool GetUpdated() override { return mParent->GetUpdated(); }
    void SetDithering(unsigned long dithering) override { mParent->SetDithering(dithering); }
    unsigned long GetDithering() override { return mParent->GetDithering(); }

    /// In a spaced window the rows of `from`, by the line spacing, go to the rows of the window that they are
    /// counted from; columns are those of the window's rectangle, in the source as well. True when no call on
    /// the parent gave false.
    bool MergeRect(SmImagerFrame* source, StRect const& from, StPoint const& to) override;
    /// In a spaced window source rows are taken from `to` on and, where columns are spaced alone, source
    /// columns from the window's rectangle. Stops at the first call that gives false.
    bool BlitRect(SmImagerFrame* source, StRect const& from, StPoint const& to) override;
    /// Rectangles of one size go to BlitRect. In a spaced window this copies the nearest pixel, with two
    /// peculiarities that are kept: the source's rows are counted from the left of `from` and its columns
    /// from the top, and destination places are translated twice. Nothing is copied where the destination is
    /// one pixel high or wide after translation. True.
    bool StretchBlit(SmImagerFrame* source, StRect const& from, StRect const& to) override;
    bool StretchBlitFast(SmImagerFrame* source, StRect const& from, StRect const& to) override;
    /// In a spaced window as StretchBlit there, where the opacity of `mask`, stretched over the destination,
    /// is not 0. False.
    bool StretchBlitMasked(SmImagerFrame* source, SmImagerFrame* mask, StRect const& from,
                           StRect const& to) override;

    void MoveFrame(StRect const& rect) override { mParent->MoveFrame(rect); }
    void MoveFrame(void* base, StPoint const& topLeft, StPoint const& size) override;
    /// The parent's; the window keeps its own size.
    void Resize(StPoint const& size, StImageInterpolationMethod method) override;

    /// Texture reads are the parent's at u * column spacing + left and v * column spacing + left. Both axes
    /// use the columns' values, and left is in pixels: a window at the parent's origin with column spacing 1
    /// reads as its parent, and nothing else makes sense.
    void GetFractionalUVPixel(float u, float v, StColorFloats& pixel, StTilingStyles const& tiling,
                              float width) override;
    void GetFractionalUVPixel(float u, float v, float& intensity, StTilingStyles const& tiling,
                              float width) override;
    void GetFractionalUVPixel(float u, float v, StRGBA32Pixel& pixel, StTilingStyles const& tiling,
                              float width) override;
    void GetUVDerivatives(float u, float v, float& du, float& dv, StTilingStyles const& tiling,
                          float width) override;

    void* GetNativeImageContext() override { return mParent->GetNativeImageContext(); }
    void ReleaseNativeImageContext() override { mParent->ReleaseNativeImageContext(); }
    void SetNativeImageContext(void* context) override { mParent->SetNativeImageContext(context); }
    TView* GetNativeViewContext() override { return mParent->GetNativeViewContext(); }
    void ReleaseNativeViewContext() override { mParent->ReleaseNativeViewContext(); }
    void SetNativeViewContext(TView* view) override { mParent->SetNativeViewContext(view); }
    TView* ReportNativeViewContext() override { return mParent->ReportNativeViewContext(); }
    CGrafPort* GetNativeWindowContext() override { return mParent->GetNativeWindowContext(); }
    void ReleaseNativeWindowContext() override { mParent->ReleaseNativeWindowContext(); }
    void SetNativeGrafPtr(CGrafPort* port) override { mParent->SetNativeGrafPtr(port); }
    CGrafPort* GetNativeGrafPtr() override { return mParent->GetNativeGrafPtr(); }
    void EnsureScreenSafe(StRect const& rect) override;
    void ReleaseScreenSafe() override { mParent->ReleaseScreenSafe(); }

    // A window is never streamed: these do nothing, and no bytes are written or read.
    void WriteTo(SmStream*) override {}
    void ReadFrom(SmStream*) override {}
    void WritePixels(SmStream*, long, long) override {}
    void ReadPixels(SmStream*, long, long) override {}

    /// Fills the window with the parent's background, as RectFill of its whole does.
    void Erase() override;
    /// Inverts, whatever the arguments.
    void Flip(bool horizontal, bool vertical) override;
    /// Complements red, green and blue of each pixel of the rectangle that the spacings meet, as 32-bit
    /// colours; alpha stays.
    void Invert() override;
    /// In a spaced window the window's rectangle takes the part of `rect` on each axis that is spaced.
    void RectFill(StRect const& rect, ScSmartPixel* pixel) override;

  protected:
    SmImagerSubframe() = default;
    ~SmImagerSubframe() override = default;
    /// Shares the parent, and keeps it alive.
    void CloneFrom(SmImagerSubframe const& other);
    void Free() override;
    bool DissimilarBlit(SmImagerFrame* source, StRect const& from, StPoint const& to) override;

  private:
    void TakeParent(SmImagerFrame* parent);
    /// The test for both spacings being 1 is made bit by bit.
    bool IsPlain() const { return (mColumnSpacing | mLineSpacing) == 1; }

    // Translation, in 32 bits as all places are.
    std::int32_t ColumnOf(long x) const;
    std::int32_t RowOf(long y) const;
    StPoint PlaceOf(StPoint const& point) const;
    StRect AreaOf(StRect const& rect) const;

    /// The size of the raster behind the window, where its parent is a layer.
    std::optional<StPoint> Raster() const;
    /// The parent's row to read for row `y`.
    long ReadableRow(long y) const;
    void* LockParentRow(long y);
    template <class Access>
    void Read(long x, long y, Access const& access) const;
    template <class Access>
    void Write(long x, long y, Access const& access) const;
    template <class Value>
    void ReadTexture(float u, float v, Value& value, StTilingStyles const& tiling, float width) const;

    template <class Access>
    void EachParentPixel(Access const& access) const;
    bool MergePart(SmImagerFrame* source, StRect const& part, StPoint const& place) const;
    StRect MergeableArea(SmImagerFrame* source) const;
    void CopyNearest(SmImagerFrame* source, SmImagerFrame* mask, StRect const& from, StRect const& to);

    SmImagerFrame* mParent = nullptr;
    StRect mSubrect{0, 0, 0, 0};
    std::int32_t mLineSpacing = 1;
    std::int32_t mColumnSpacing = 1;
    float mLeft = 0.0F;
    float mTop = 0.0F;
    float mFloatLineSpacing = 1.0F;
    float mFloatColumnSpacing = 1.0F;
    frame::SmLayerBase* mLayer = nullptr;  ///< the parent, where it is a layer
    StRef<SmImagerFrame> mKept;            ///< the parent that this window keeps alive
};
