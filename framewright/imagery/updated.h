// SmImagerUpdated: an image that keeps the rectangle of what has been drawn into it, so that a host shows
// that part again and no more.
//
//     StRect changed;
//     if (image->TakeUpdatedRect(changed)) Show(image, changed);
//
// The drawing operations of the image grow the rectangle; what is written into its layers directly does not.
// Threads: as an image.
#pragma once

#include "framewright/imagery/image.h"

SM_CLASS(SmImagerUpdated, SmImagerImage, 0);
class FRAMEWRIGHT_EXPORT SmImagerUpdated : public SmManaged<SmImagerUpdated> {
    friend SmManaged<SmImagerUpdated>;

  public:
    /// IImagerImage, and no more.
    void IImagerUpdated();

    // Each draws as an image does and adds the pixel, or the first and the last pixel, that it was told:
    // clipped to nothing, and whether there was a layer or not. A run adds nothing when its length is not
    // above 0; a rectangle adds its corners whatever its size is.

    void BlendPixelAt(float blend, long x, long y, StColorFloats const& color, float transparency,
                      float depth) override;
    void PutPixelAt(long x, long y, StColorFloats const& color, float transparency, float depth) override;
    void PutRGBAAt(long x, long y, StRGBA32Pixel color) override;
    void PutRunAt(long x, long y, long length, StColorFloats const& color, float transparency,
                  float depth) override;
    void FillRectAt(long x, long y, long width, long height, StColorFloats const& color, float transparency,
                    float depth) override;

    // The virtual operations that it adds, in slot order. The rectangle is empty when its left is above its
    // right, and is so at first, in a copy, and after it has been cleared.

    /// Copies the rectangle out, unless it is empty: then the result is false and `rect` stays as it is.
    virtual bool GetUpdatedRect(StRect& rect);
    virtual void ClearUpdatedRect();
    /// The same as GetUpdatedRect, and clears it.
    virtual bool TakeUpdatedRect(StRect& rect);
    /// Stores the rectangle as given.
    virtual void SetUpdatedRect(StRect const& rect);
    /// Grows the rectangle to hold a pixel, given as row, column. To an empty one that SetUpdatedRect stored
    /// its edges still count.
    virtual void AddUpdatedPoint(StPoint const& point);

  protected:
    SmImagerUpdated();
    ~SmImagerUpdated() override;
    /// The image's, with an empty rectangle.
    void CloneFrom(SmImagerUpdated const& other);

  private:
    /// No pixel at all: any point is above its right and bottom and below its left and top.
    static constexpr StRect kEmpty{INT32_MAX, INT32_MAX, -1, -1};

    StRect mUpdated = kEmpty;
};
