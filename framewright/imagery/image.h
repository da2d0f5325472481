// An image: frames of one size that together form one picture - a colour layer, a depth layer, a mask layer,
// and any others, told apart by their purpose. It is also what a renderer draws into: the drawing operations
// take a sample (colour, transparency, depth), bring its colour into the gamut, write it into the layers and
// tell the callbacks.
//
//     auto image = StRef<SmImagerImage>::Adopt(SrMakeImage({rows, columns}, SrCode("ColB"), false));
//     image->FillRectAt(x, y, width, height, color, transparency, depth);
//
// Layers are counted: the image holds one reference to each. An image, with its layers, is used by one thread
// at a time. FillRectAt keeps its sample in two pixels that all images share: no two threads call it at once,
// not even on different images.
//
// The trap: sizes and points are rows, then columns, while pixels are addressed by x, the column, then y, the
// row. Neither is checked: a pixel outside the layers is the caller's fault.
#pragma once

#include <cstdint>

#include "framewright/frame/geometry.h"
#include "framewright/imagery/layer_callback.h"
#include "framewright/pixel/pixels.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/vector.h"

class ScGamut;
class SmImagerFrame;

SM_CLASS(SmImagerImage, SmObject, 0);
class FRAMEWRIGHT_EXPORT SmImagerImage : public SmManaged<SmImagerImage> {
    friend SmManaged<SmImagerImage>;

  public:
    /// Sets the size to 1 by 1 and makes a ScClippedGamut; -108 when memory is refused.
    void IImagerImage();
    void Free() override;

    /// How far two samples may differ for SamplesMatch, as a part of each channel's range: two ranges, 0.01
    /// in every channel until set. SetRange sets both, or the second one alone.
    void SetRange(StRGBAFloatPixel const& range, bool secondOnly);
    void GetRange(StRGBAFloatPixel& range, bool second) const;

    // The virtual operations, in slot order.

    // Layers.

    /// Rows, columns. That of the colour layer, or of the last layer that came while there was none.
    virtual StPoint GetSize();
    /// Sets the size that the image tells, and that its next layers are made at. No layer changes.
    virtual void SetSize(StPoint const& size);
    /// The places in the list of layers, empty ones included.
    virtual long GetLayerCount();
    /// Appends a frame and adds a reference. The first frame of the colour family ("ColF") becomes the colour
    /// layer, with save intent, and the image takes its size; the first of the depth family ("DepF") becomes
    /// the depth layer. Each takes the purpose "VIEW" or "DEPT" if it has none. All but the colour layer
    /// lose their save intent, a second "ColF" too. Without a colour layer the image takes the size of every
    /// frame that comes. The mask layer is SetLayer's business.
    virtual void AddLayer(SmImagerFrame* frame);
    /// Takes the first entry that is this frame off the list and drops its reference; nothing if there is
    /// none. The entries behind it move up.
    ///
    /// The mask layer is left as it stands: once off the list, the frame is still the mask, and the image
    /// keeps its reference until it goes.
    virtual void RemoveLayer(SmImagerFrame* frame);
    /// The entry at `index`, counted from 0. Borrowed; null for an empty place, and outside the list.
    virtual SmImagerFrame* GetLayer(long index);
    /// Puts a frame, or null, at a place; the list grows with empty places up to it. Adds a reference and
    /// drops that of the old entry. The frame fills the slot of its family if that is free: colour ("ColF",
    /// which sets the size of the image), depth ("DepF") or mask ("AlpF"). Without a colour layer the image
    /// takes the size of the frame; null leaves it. Purpose and save intent stay as they are. A negative
    /// index throws SkInternalRefusal().
    ///
    /// Here too the mask layer is left as it stands: replacing it does not free its slot.
    virtual void SetLayer(long index, SmImagerFrame* frame);

    // Whole images.

    /// Composites this image, stretched to `rect` of `destination`, over that: each source pixel is merged
    /// into the one pixel that it falls on, first to first and last to last, so that an image that grows
    /// leaves holes. With depth in both images, only where this one is nearer, and what is not wholly
    /// transparent leaves its depth. Nothing without colour in both, and places outside the destination are
    /// passed over.
    ///
    /// The trap: an image of one row or one column has no step from its first to its last pixel, and leaves
    /// nothing.
    virtual void CompositeInto(SmImagerImage* destination, StRect const& rect);
    /// Copies a rectangle of each layer of `source` into the matching layer of this image, at `to`: colour to
    /// colour, depth to depth, and, for each other layer with a purpose, from the source's layer at the same
    /// place in the list, if that has the same purpose; others are not looked for. SmImagerFrame::BlitRect
    /// tells the rest.
    virtual void BlitFrom(SmImagerImage* source, StRect const& from, StPoint const& to);
    /// A new image of that size, each layer being a CloneAtNewSize of the layer here; pixels are not set. The
    /// caller owns one reference. Callbacks, ranges, gamut and resolution are those of a new image.
    virtual SmImagerImage* CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap);
    /// How many rows of all layers together are to be worked on at once, at least 1, if the work may take
    /// `fraction` of the free memory. With spooling switched off (SrGetImageSpoolingState) that is all rows,
    /// 480 for an image without any, and the result is false; true where memory was asked.
    virtual bool GetBandHeight(unsigned& rows, float fraction);
    /// SmImagerFrame::LockRows of each layer, `first` and `last` included. When one layer refuses, those
    /// before it are unlocked again and the result is false.
    virtual bool LockRows(long first, long last);
    virtual void UnlockRows(long first, long last);
    /// Has no effect: layers are compared with themselves.
    virtual void MatchLayers(SmImagerImage* other);
    /// Told before a band of rows is drawn, for subclasses that want to know. Nothing at this level.
    virtual void PrepareBand(long first, long last, long pass);

    // Layers by kind: 0 colour, 1 depth, 2 mask.

    /// A new layer of the image's size, its rows in memory or spooled: 0 StRGBA32Pixel, 1 StDepthFloatPixel,
    /// 2 StAlpha8Pixel. The caller owns it; it is not added. Null for other kinds.
    virtual SmImagerFrame* MakeLayer(unsigned char kind, bool spool);
    /// SmImagerFrame::LockRow of that layer; null when there is none. UnlockLayerRow gives the lock back.
    virtual void* LockLayerRow(unsigned char kind, long row);
    virtual void UnlockLayerRow(unsigned char kind, long row);
    virtual bool HasLayer(unsigned char kind);

    // Reading samples. What needs a layer that the image has not throws SkInternalRefusal().

    virtual void GetColorAt(long x, long y, StColorFloats& color);
    virtual StRGBA32Pixel GetRGBAAt(long x, long y);
    virtual float GetDepthAt(long x, long y);
    /// 255 where there is no mask layer.
    virtual unsigned char GetMaskAt(long x, long y);
    /// 0.0 opaque, 1.0 wholly transparent: from the alpha of the colour layer.
    virtual float GetTransparencyAt(long x, long y);

    // Drawing. `color` is brought into the gamut, `transparency` becomes an alpha from 255 for 0.0 to 0 for
    // 1.0, `depth` goes to the depth layer as it is. A layer that is missing is passed over. Callbacks come
    // last.

    /// Moves the pixel that is there toward the new one, by `blend` from 0.0 to 1.0.
    ///
    /// The trap: the depth is not moved but replaced.
    virtual void BlendPixelAt(float blend, long x, long y, StColorFloats const& color, float transparency,
                              float depth);
    virtual void PutPixelAt(long x, long y, StColorFloats const& color, float transparency, float depth);
    /// Writes a colour as it is, past the gamut; depth stays. SkInternalRefusal() without a colour layer.
    virtual void PutRGBAAt(long x, long y, StRGBA32Pixel color);
    /// The same sample from x to x + length - 1.
    virtual void PutRunAt(long x, long y, long length, StColorFloats const& color, float transparency,
                          float depth);
    /// The same sample in a rectangle, which is clipped to each layer (SmImagerFrame::RectFill).
    virtual void FillRectAt(long x, long y, long width, long height, StColorFloats const& color,
                            float transparency, float depth);
    /// Whether two samples of the colour layer are so near that nothing needs to be drawn between them: all
    /// their channels differ by no more than the range `which` (0, else the second) allows. The callbacks may
    /// have it otherwise. SkInternalRefusal() without a colour layer.
    virtual bool SamplesMatch(long x1, long y1, long x2, long y2, unsigned char which);

    // The rest.

    /// Takes ownership and deletes the gamut before; null leaves the image without one, and colours as they
    /// come.
    virtual void SetGamut(ScGamut* gamut);
    virtual ScGamut* GetGamut();
    virtual SmImagerFrame* GetColorLayer();
    virtual SmImagerFrame* GetDepthLayer();
    virtual SmImagerFrame* GetMaskLayer();
    /// By kind; for other values the first layer whose FamilyID() is `kind`. Null if there is none.
    virtual SmImagerFrame* GetLayerByKind(unsigned char kind);
    /// Pixels per inch, vertical and horizontal; 72.0 until set.
    virtual StFloatPoint GetResolution();
    virtual void SetResolution(StFloatPoint const& resolution);

  protected:
    SmImagerImage();
    ~SmImagerImage() override;
    /// Has a clone of each layer, added by AddLayer, and of the gamut; shares the callbacks. Empty places are
    /// left out, the mask layer is none in the copy, and the ranges are those of a new image.
    void CloneFrom(SmImagerImage const& other);

    /// Puts a callback behind those that there are and adds a reference.
    void AddCallback(ScLayerCallback* callback);

  private:
    /// Makes the pixels that FillRectAt uses, with the first image; what memory refuses is tried again with
    /// the next.
    static void MakeFillPixels();

    StPoint mSize{0, 0};
    StFloatPoint mResolution{72.0F, 72.0F};
    ScVector<StRef<SmImagerFrame>> mLayers;
    ScVector<StRef<ScLayerCallback>> mCallbacks;
    SmImagerFrame* mColorLayer = nullptr;  // entries of mLayers, not counted again
    SmImagerFrame* mDepthLayer = nullptr;
    SmImagerFrame* mMaskLayer = nullptr;
    StRef<SmImagerFrame> mFormerMask;  // mMaskLayer, once that is no entry any more
    ScGamut* mGamut = nullptr;         // owned
    StRGBAFloatPixel mRanges[2] = {{0.01F, 0.01F, 0.01F, 0.01F}, {0.01F, 0.01F, 0.01F, 0.01F}};
    std::uint32_t mTolerances[2] = {0x01010101, 0x01010101};  // 0xAARRGGBB, as GetRGBAPixelAsLong
    std::uint32_t mMasks[2] = {0xFEFEFEFE, 0xFEFEFEFE};
};

/// An image of one layer: a frame that SrMakeFrame makes of `size`, `pixelType` and `spoolIfLarge`. For an
/// unknown pixel type the one place is empty. The caller owns one reference. -108 when memory is refused.
FRAMEWRIGHT_EXPORT SmImagerImage* SrMakeImage(StPoint const& size, unsigned long pixelType,
                                              bool spoolIfLarge);

/// The first layer with that purpose; null if there is none. Borrowed.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrGetPurposedLayer(SmImagerImage* image, long purpose);
/// The same, and where there is none a new layer: of the registered layer class `cls`, of the image's size,
/// spooled as SrGetImageSpoolingState() says, added with that purpose. Borrowed: the image holds the one
/// reference. A class that no prototype has throws an error of its own, with a message; -108 when memory is
/// refused.
FRAMEWRIGHT_EXPORT SmImagerFrame* SrAddPurposedLayer(SmImagerImage* image, long purpose, ScMC_* cls);

/// Fills the colour layer, or all layers, with their background pixels. Whether there was a layer to fill.
FRAMEWRIGHT_EXPORT bool SrImagerErase(SmImagerImage* image, bool colorOnly);
