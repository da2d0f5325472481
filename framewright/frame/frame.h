// The frame: the one picture type of the library, a rectangle of pixels of some format seen through virtual
// operations alone. Code that draws, copies, samples, saves and loads works on SmImagerFrame* and never asks
// for the concrete class. SmImagerLayer (frame/layer.h) is the general concrete frame.
//
// A frame is used by one thread at a time; even reading may change it (a spooled row is loaded, a colour map
// remembers an answer).
//
// Life: New, then an initialiser of the concrete class, then use, then the last release. Routines named
// New..., Clone... and Mirror... give the caller one reference; getters give borrowed pointers.
//
// Coordinates are not checked: a row or column outside the frame is the caller's fault, and only the
// operations that say so clip a rectangle. Single pixels are addressed by (x, y), points and sizes by (row,
// column).
#pragma once

#include <cstdint>

#include "framewright/frame/geometry.h"
#include "framewright/pixel/pixels.h"
#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"

class ScSmartPixel;
class SmStream;

/// The host's view and window types. The library stores pointers to them, hands them back and never looks
/// inside.
class TView;
struct CGrafPort;

/// How a resized picture is to be computed. SmImagerFrame::Resize takes it for the sake of frames that may
/// read it; layers do not.
enum class StImageInterpolationMethod : std::int32_t { kNone = 0, kNearest = 1, kBilinear = 2, kBicubic = 3 };

SM_CLASS(SmImagerFrame, SmObject, 0);
class FRAMEWRIGHT_EXPORT SmImagerFrame : public SmManaged<SmImagerFrame> {
    friend SmManaged<SmImagerFrame>;

  public:
    /// What every derived initialiser calls first. Does nothing: they set the fields themselves.
    void IImagerFrame() {}

    /// Whether the frame is meant to be saved with its image. Nothing in the frame itself reads it.
    bool GetSaveIntent() const { return mSaveIntent; }
    void SetSaveIntent(bool intent) { mSaveIntent = intent; }

    // The virtual operations, in slot order.

    // Identity.

    /// The four-character codes of the pixel record and of its family, and the bits that a pixel takes in a
    /// row.
    virtual unsigned long PixelID() = 0;
    virtual unsigned long FamilyID() = 0;
    virtual long PixelSize() = 0;
    /// Rows, columns.
    virtual StPoint GetSize();
    /// The position of this frame in the coordinates of its storage: non-zero for a frame that looks into a
    /// block that it does not own.
    virtual StPoint GetTopLeft();
    /// The size before any resizing. Equal to GetSize but for subframes and mipmaps.
    virtual StPoint GetOriginalSize();
    /// What the frame holds in an image, a four-character code; "????" until set.
    virtual long GetPurpose();
    virtual void SetPurpose(long purpose);
    /// The distance between rows in the storage, in bytes.
    virtual long BytesPerRow() = 0;
    /// Whether texture reads choose between levels of detail: true on mipmaps alone.
    virtual bool IsUVTriLinear();

    // Rows. A row's address may be held across other calls only while the row is locked.

    /// Keeps the rows `first` to `last`, both included, in memory until UnlockRows with the same arguments.
    /// False when that cannot be: a layer whose rows can leave memory then keeps one lock, on `first`.
    virtual bool LockRows(long first, long last) = 0;
    virtual void UnlockRows(long first, long last) = 0;
    /// Keeps one row in memory until UnlockRow and returns its address. Locks count.
    virtual void* LockRow(long row) = 0;
    virtual void UnlockRow(long row) = 0;
    /// Moves all rows into one block, where they stay until ReleaseContiguous. Calls count.
    virtual void ForceContiguous() = 0;
    virtual void ReleaseContiguous() = 0;
    /// Whether all rows lie in one block.
    virtual bool IsContiguous() = 0;
    /// Rebinds the rows to a block of the caller, which must hold them and outlive their use.
    virtual void ResetBaseAddress(void* base) = 0;

    // Reading a pixel. The typed forms convert by the record's rules.

    virtual void GetPixelAt(long x, long y, StRGBA32Pixel& pixel) = 0;
    virtual void GetPixelAt(long x, long y, StColorFloats& pixel) = 0;
    virtual void GetPixelAt(long x, long y, StRGBAFloatPixel& pixel) = 0;
    /// The pixel as one intensity.
    virtual void GetPixelAt(long x, long y, float& intensity) = 0;
    /// The pixel's opacity.
    virtual void GetPixelAt(long x, long y, StAlpha8Pixel& opacity) = 0;
    /// Stores the pixel in a smart pixel of this frame's own kind (see NewSmartPixel); no other kind will do.
    virtual void GetPixelAt(long x, long y, ScSmartPixel* pixel) = 0;
    /// Copies the native record out: as many bytes as it takes in a row. A pixel of less than a byte goes
    /// into the low bits of the first byte, whose other bits are kept.
    virtual void GetPixelAt(long x, long y, void* record) = 0;

    // Writing a pixel. None of these sets the updated flag.

    virtual void PutPixelAt(long x, long y, StRGBA32Pixel const& pixel) = 0;
    virtual void PutPixelAt(long x, long y, StColorFloats const& pixel) = 0;
    virtual void PutPixelAt(long x, long y, StRGBAFloatPixel const& pixel) = 0;
    virtual void PutPixelAt(long x, long y, StDepthFloatPixel const& depth) = 0;
    /// White, as opaque as told.
    virtual void PutPixelAt(long x, long y, StAlpha8Pixel const& opacity) = 0;
    /// A smart pixel of any kind, converted.
    virtual void PutPixelAt(long x, long y, ScSmartPixel const* pixel) = 0;
    /// Copies the native record in, the reverse of GetPixelAt.
    virtual void PutPixelAt(long x, long y, void const* record) = 0;
    /// Writes the foreground pixel.
    virtual void DrawPixelAt(long x, long y) = 0;

    // Pixels of other shapes.

    /// A smart pixel of this frame's kind, its contents not set. The caller deletes it. -108 when memory is
    /// refused.
    virtual ScSmartPixel* NewSmartPixel() = 0;
    /// A bilinear sample at pixel coordinates, into a smart pixel of this frame's own kind.
    virtual void GetFractionalSmartPixel(float x, float y, ScSmartPixel* pixel) = 0;
    virtual StRGBA32Pixel GetRGBAPixelAt(long x, long y) = 0;
    /// The same as one word, 0xAARRGGBB.
    virtual unsigned long GetRGBAPixelAsLong(long x, long y) = 0;
    /// Composites `pixel` over what is there.
    virtual void MergePixelAt(long x, long y, StRGBA32Pixel pixel) = 0;
    /// The address of a row, without a lock: valid until another row is touched. Null for a row that has no
    /// memory behind it.
    virtual void* GetRow(long row) = 0;

    // The pixels that DrawPixelAt and Erase write. Set them before use.

    virtual void SetForeground(StRGBA32Pixel const& color) = 0;
    virtual void GetForeground(StRGBA32Pixel& color) = 0;
    virtual void SetBackground(StRGBA32Pixel const& color) = 0;
    virtual void GetBackground(StRGBA32Pixel& color) = 0;

    // Copies and state.

    /// A new frame of the same kind, its rows in memory, that holds a copy of the pixels.
    virtual SmImagerFrame* MirrorLayer() = 0;
    /// A new frame of the same pixel type; its pixels are not set. `spooled` asks for rows that may leave
    /// memory, `nativeBitmap` for a block that the host's imaging system can draw from.
    virtual SmImagerFrame* CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) = 0;
    /// Copies the whole of `source` in, stretched if the sizes differ.
    virtual void CopyFromLayer(SmImagerFrame* source);
    /// The changed-since-last-asked flag: set by the operations that say so, cleared by the caller.
    virtual void SetUpdated(bool updated) = 0;
    virtual bool GetUpdated() = 0;
    /// The dithering method of mapped and dithered layers, a four-character code: "BIDI" until set, 0 for
    /// none.
    virtual void SetDithering(unsigned long dithering);
    virtual unsigned long GetDithering();

    // Rectangles. All are called on the destination and return false in every case. `from` is in source
    // coordinates, `to` in this frame's. They set the updated flag.

    /// Composites a rectangle of `source` over this frame. Nothing is clipped: it must fit both frames.
    virtual bool MergeRect(SmImagerFrame* source, StRect const& from, StPoint const& to) = 0;
    /// Copies a rectangle of `source`: raw where both have one PixelID, converted else. What reaches past the
    /// right or bottom of either frame is cut off; a negative position is the caller's fault. Rows go from
    /// top to bottom and bytes upward, so a frame can be copied onto itself upward, or to the left on its
    /// rows.
    virtual bool BlitRect(SmImagerFrame* source, StRect const& from, StPoint const& to) = 0;
    /// Copies scaled, first pixel to first and last to last: bilinear, nearest, and nearest where `mask`,
    /// read in this frame's coordinates, has a fourth byte that is not 0. Only the masked form clips.
    virtual bool StretchBlit(SmImagerFrame* source, StRect const& from, StRect const& to) = 0;
    virtual bool StretchBlitFast(SmImagerFrame* source, StRect const& from, StRect const& to) = 0;
    virtual bool StretchBlitMasked(SmImagerFrame* source, SmImagerFrame* mask, StRect const& from,
                                   StRect const& to) = 0;

    // Place and size.

    /// Moves and resizes the frame within its block.
    virtual void MoveFrame(StRect const& rect) = 0;
    /// Moves it, also to another block.
    virtual void MoveFrame(void* base, StPoint const& topLeft, StPoint const& size) = 0;
    /// Changes the size. The pixels are not kept, unless the size is what it was. Sets updated if it was not.
    virtual void Resize(StPoint const& size, StImageInterpolationMethod method) = 0;

    // Texture reads: u to the right, v up from the bottom row, each from 0 to 1. `width` is the width of the
    // filter as a part of the texture; only mipmaps read it.

    virtual void GetFractionalUVPixel(float u, float v, StColorFloats& pixel, StTilingStyles const& tiling,
                                      float width) = 0;
    virtual void GetFractionalUVPixel(float u, float v, float& intensity, StTilingStyles const& tiling,
                                      float width) = 0;
    virtual void GetFractionalUVPixel(float u, float v, StRGBA32Pixel& pixel, StTilingStyles const& tiling,
                                      float width) = 0;
    /// The gradient of the intensity. Signs are those of the image: `dv` grows downward.
    virtual void GetUVDerivatives(float u, float v, float& du, float& dv, StTilingStyles const& tiling,
                                  float width) = 0;

    // The host's handles on the picture. Each Get that finds one counts a use, each Release gives one back.

    virtual void* GetNativeImageContext() = 0;
    virtual void ReleaseNativeImageContext() = 0;
    virtual void SetNativeImageContext(void* context) = 0;
    virtual TView* GetNativeViewContext() = 0;
    virtual void ReleaseNativeViewContext() = 0;
    virtual void SetNativeViewContext(TView* view) = 0;
    /// The view, without counting a use.
    virtual TView* ReportNativeViewContext() = 0;
    virtual CGrafPort* GetNativeWindowContext() = 0;
    virtual void ReleaseNativeWindowContext() = 0;
    virtual void SetNativeGrafPtr(CGrafPort* port) = 0;
    virtual CGrafPort* GetNativeGrafPtr() = 0;
    /// Called before the pixels of a rectangle are written and after, so that a frame on a screen can protect
    /// them. The brackets nest.
    virtual void EnsureScreenSafe(StRect const& rect) = 0;
    virtual void ReleaseScreenSafe() = 0;

    // Streams.

    /// Non-zero: WriteTo stores a row of equal pixels as one pixel, where the pixel type can.
    virtual void SetStreamingCompression(unsigned short compression);
    /// The frame body: top left, purpose, dithering, format marker, row length, rows. The header that names
    /// type and size comes from who writes the frame.
    virtual void WriteTo(SmStream* stream);
    /// Reads a body into this frame, whose size must be that of the frame that was written.
    virtual void ReadFrom(SmStream* stream);
    /// The first `count` pixels of a row in the record's stream form.
    virtual void WritePixels(SmStream* stream, long row, long count) = 0;
    virtual void ReadPixels(SmStream* stream, long row, long count) = 0;

    // The whole frame in place.

    /// Fills the frame with the background pixel. Does not set updated.
    virtual void Erase() = 0;
    /// Mirrors; with both false nothing happens, else sets updated.
    virtual void Flip(bool horizontal, bool vertical) = 0;
    /// Complements every pixel. Sets updated.
    virtual void Invert() = 0;
    /// Fills a rectangle, clipped to the frame, with `pixel`, converted once. Sets updated.
    virtual void RectFill(StRect const& rect, ScSmartPixel* pixel) = 0;

  protected:
    /// The conversion path of BlitRect: pixel by pixel through a smart pixel, without any clipping.
    virtual bool DissimilarBlit(SmImagerFrame* source, StRect const& from, StPoint const& to) = 0;

    SmImagerFrame() = default;
    ~SmImagerFrame() override;
    /// Copies all six fields.
    void CloneFrom(SmImagerFrame const& other);
    void Free() override;

    StPoint mTopLeft{0, 0};
    StPoint mSize{0, 0};
    std::int32_t mPurpose = static_cast<std::int32_t>(kUnknownCode);
    std::uint32_t mDithering = SrCode("BIDI");
    std::uint16_t mStreamingCompression = 1;
    bool mSaveIntent = false;
};
