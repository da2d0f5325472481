// Small shapes that paint themselves into a frame: rectangles and lines. Plain objects of the caller.
//
//     ScPrimitiveRect box({10, 20, 40, 60}, {0, 128, 255, 255}, false);
//     box.XOR(frame);   // drawn...
//     box.XOR(frame);   // ...and gone, whatever was below
//
// Pixels outside the frame are skipped, and nothing here sets a frame's updated flag. A shape is used by one
// thread at a time.
//
// The trap: places are StPoint and StRect, the vertical member first. In StFloatPoint too x is `horizontal`
// and y is `vertical`, whatever their order.
#pragma once

#include "framewright/frame/geometry.h"
#include "framewright/pixel/pixels.h"
#include "framewright/thornmere/export.h"

class ScSmartPixel;
class SmImagerFrame;

/// A shape. It has two corners: a rectangle's top left and bottom right, a line's start and end. All
/// arithmetic on them keeps 32 bits, and floats are truncated toward zero.
class FRAMEWRIGHT_EXPORT ScImagerPrimitive {
  public:
    // The virtual operations, in slot order.
    virtual ~ScImagerPrimitive();
    /// Takes on the value of a smart pixel of any kind.
    virtual void SetColor(ScSmartPixel* pixel) = 0;
    /// Gives the colour to a smart pixel of any kind.
    virtual void GetColor(ScSmartPixel* pixel) = 0;
    /// The corners as four 32-bit values: vertical, horizontal, vertical, horizontal.
    virtual void SetData(void* data) = 0;
    /// Copies them out, unless `data` is null. 16 in any case.
    virtual long GetData(void* data) = 0;
    /// Moves the first corner to the point, its coordinates truncated, and the other along with it.
    virtual void MoveAbsolute(StFloatPoint point) = 0;
    /// Moves both corners by the point, its coordinates truncated.
    virtual void MoveRelative(StFloatPoint distance) = 0;
    /// Puts the second corner this far from the first.
    virtual void ResizeAbsolute(StFloatPoint size) = 0;
    /// Scales the distance of the second corner from the first.
    virtual void ResizeRelative(StFloatPoint factors) = 0;
    /// Sets both corners to 0, 0.
    virtual void EmptyData() = 0;
    /// Means something to rectangles alone.
    virtual void SetFilled(bool filled);
    virtual bool GetFilled();
    /// Writes the colour.
    virtual void Replace(SmImagerFrame* frame) = 0;
    /// Composites the colour over what is there.
    virtual void Merge(SmImagerFrame* frame) = 0;
    /// The same with alpha times `t`, truncated, of which the low byte counts.
    virtual void Blend(SmImagerFrame* frame, float t) = 0;
    /// Flips bits of the pixels as they are stored, so that drawing the shape again takes it back, whatever
    /// the pixel type. Which bits, says the colour as a pixel of the frame: its first four bytes, or all
    /// there are of fewer. A colour whose bytes are 0 there flips nothing.
    virtual void XOR(SmImagerFrame* frame) = 0;

  protected:
    ScImagerPrimitive() = default;
    ScImagerPrimitive(ScImagerPrimitive const&) = default;
    ScImagerPrimitive& operator=(ScImagerPrimitive const&) = default;

    bool mFilled = false;
};

namespace imagery {

/// What is done at each pixel of a shape.
class ScPixelTask {
  public:
    virtual void Do(long x, long y) = 0;

  protected:
    ~ScPixelTask() = default;
};

/// What the shapes share: two corners, a colour, and everything but the walk over the pixels.
class FRAMEWRIGHT_EXPORT ScCorneredPrimitive : public ScImagerPrimitive {
  public:
    void SetColor(ScSmartPixel* pixel) override;
    void GetColor(ScSmartPixel* pixel) override;
    void SetData(void* data) override;
    long GetData(void* data) override;
    void MoveAbsolute(StFloatPoint point) override;
    void MoveRelative(StFloatPoint distance) override;
    void ResizeAbsolute(StFloatPoint size) override;
    void ResizeRelative(StFloatPoint factors) override;
    void EmptyData() override;
    void Replace(SmImagerFrame* frame) override;
    void Merge(SmImagerFrame* frame) override;
    void Blend(SmImagerFrame* frame, float t) override;
    void XOR(SmImagerFrame* frame) override;

  protected:
    ScCorneredPrimitive(StPoint const& first, StPoint const& second, StRGBA32Pixel color);
    ~ScCorneredPrimitive() override;
    ScCorneredPrimitive(ScCorneredPrimitive const&) = default;
    ScCorneredPrimitive& operator=(ScCorneredPrimitive const&) = default;

    /// Visits the shape's pixels that lie in a frame of `size`, each as often as the shape meets it.
    virtual void Walk(StPoint const& size, ScPixelTask& task) const = 0;
    /// The colour with alpha times `t`.
    StRGBA32Pixel Faded(float t) const;

    StPoint mFirst;
    StPoint mSecond;
    StRGBA32Pixel mColor;

  private:
    template <class Action>
    void Draw(SmImagerFrame& frame, Action action) const;
};

}  // namespace imagery

/// A rectangle, bottom and right exclusive: its outline, or all of it when filled.
///
/// The outline's top row and bottom row are two passes, and so are its left and right column: in a rectangle
/// one pixel high or wide both meet the same pixels. There XOR cancels itself, and Merge composites twice.
class FRAMEWRIGHT_EXPORT ScPrimitiveRect : public imagery::ScCorneredPrimitive {
  public:
    ScPrimitiveRect(StRect const& rect, StRGBA32Pixel color, bool filled);
    ~ScPrimitiveRect() override;
    /// An outline draws nothing once its alpha comes to 0; a filled rectangle merges nevertheless.
    void Blend(SmImagerFrame* frame, float t) override;

  protected:
    void Walk(StPoint const& size, imagery::ScPixelTask& task) const override;
};

/// A line of single pixels, both ends included: one for each step along the longer axis, the vertical one if
/// they are equally long. The other coordinate is an integer division, truncated from the start on, and so
/// lies not always nearest to the ideal line.
class FRAMEWRIGHT_EXPORT ScPrimitiveLine : public imagery::ScCorneredPrimitive {
  public:
    ScPrimitiveLine(StPoint const& start, StPoint const& end, StRGBA32Pixel color);
    ~ScPrimitiveLine() override;

  protected:
    void Walk(StPoint const& size, imagery::ScPixelTask& task) const override;
};
