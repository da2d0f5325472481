// ScRotatedBlit: copies a rectangle of one frame into another, turned about a centre and scaled on each axis.
// A plain object: set it up, then run it as often as is wanted.
//
//     ScRotatedBlit blit;
//     blit.SetSource({0, 0, rows, columns}, columns / 2.0f, rows / 2.0f);
//     blit.SetTarget(columns / 2.0f, rows / 2.0f);
//     blit.SetInterpolation(true);
//     blit.DoIt(picture, canvas, angle);
//
// It walks the destination and asks for each pixel where it comes from, so the result has no holes. Pixels
// that come from outside the source rectangle stay as they were, and the destination is not marked as
// updated.
//
// The trap: centres are x, then y; the rectangle is top, left, bottom, right. One thread at a time.
#pragma once

#include "framewright/frame/geometry.h"
#include "framewright/thornmere/export.h"

class SmImagerFrame;

class FRAMEWRIGHT_EXPORT ScRotatedBlit {
  public:
    /// A source of 320 columns by 200 rows is what the default centres, (160, 100) in x and y, would fit; the
    /// default rectangle has 320 for its bottom and 200 for its right. Call SetSource. Scale 1, no
    /// interpolation.
    ScRotatedBlit();

    /// The rectangle, in the source frame, and the point of it that lies on the target's centre.
    void SetSource(StRect const& rect, float centreX, float centreY);
    /// The point of the destination about which the source is turned.
    void SetTarget(float centreX, float centreY);
    /// Destination pixels to a source pixel. Counts from the next DoIt on; 0 draws nothing.
    void SetScale(float scale);
    void SetScale(float x, float y);
    /// Without it each pixel is the nearest toward the source's top left, as a 32-bit colour, whatever the
    /// pixel types. With it pixels are sampled bilinearly, as pixels of the source's type; only places up to
    /// the last row and column are sampled, not the pixel's width behind them.
    void SetInterpolation(bool interpolation);

    /// Copies, turned by `angle` radians, counterclockwise as the eye sees it: a quarter turn brings the
    /// source's top to the left. The rectangle may reach beyond the source: what lies outside is passed over.
    /// A frame turned into itself reads pixels that it has just written.
    void DoIt(SmImagerFrame* source, SmImagerFrame* destination, float angle);

  protected:
    /// Makes the terms of both rotations from the stored angle, the negative of what DoIt was given, and the
    /// scale.
    void CalculateRotationMatrix();
    /// From the source to the destination.
    void ForwardRotate(float& x, float& y);
    /// From the destination to the source.
    void ReverseRotate(float& x, float& y);
    /// Grows `rect` until it holds the pixel.
    void ExtendLimits(StRect& rect, long x, long y);

  private:
    struct StReverse;

    StReverse Reverse() const;
    /// Rows and columns of the destination that the source can reach.
    StRect ReachedBounds(StPoint const& sourceSize, StPoint const& destinationSize);
    template <class Copy>
    void Walk(StRect const& bounds, Copy const& copy);
    template <class Pixels>
    void Carry(Pixels const& pixels, StPoint const& sourceSize, StRect const& bounds);

    StRect mSource{0, 0, 320, 200};
    float mSourceX = 160.0F;
    float mSourceY = 100.0F;
    float mTargetX = 160.0F;
    float mTargetY = 100.0F;
    float mScaleX = 1.0F;
    float mScaleY = 1.0F;
    bool mInterpolation = false;
    float mAngle = 0.7853981852531433F;
    float mForwardCosine;
    float mForwardSine;
    float mReverse[4];
};
