#include "framewright/imagery/rotated_blit.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <typeinfo>

#include "framewright/frame/layer.h"
#include "framewright/pixel/smart_pixel.h"
#include "framewright/thornmere/numbers.h"

ScRotatedBlit::ScRotatedBlit() {
    CalculateRotationMatrix();
}

void ScRotatedBlit::SetSource(StRect const& rect, float centreX, float centreY) {
    mSource = rect;
    mSourceX = centreX;
    mSourceY = centreY;
}

void ScRotatedBlit::SetTarget(float centreX, float centreY) {
    mTargetX = centreX;
    mTargetY = centreY;
}

void ScRotatedBlit::SetScale(float scale) {
    SetScale(scale, scale);
}

void ScRotatedBlit::SetScale(float x, float y) {
    mScaleX = x;
    mScaleY = y;
}

void ScRotatedBlit::SetInterpolation(bool interpolation) {
    mInterpolation = interpolation;
}

// --- rotation

void ScRotatedBlit::CalculateRotationMatrix() {
    double const angle = mAngle, scaleX = mScaleX, scaleY = mScaleY;
    mForwardCosine = static_cast<float>(std::cos(-angle));
    mForwardSine = static_cast<float>(std::sin(-angle));
    mReverse[0] = static_cast<float>(std::cos(angle) / scaleX);
    mReverse[1] = static_cast<float>(std::sin(angle) / scaleY);
    mReverse[2] = static_cast<float>(std::cos(angle) / scaleY);
    mReverse[3] = static_cast<float>(std::sin(angle) / scaleX);
}

void ScRotatedBlit::ForwardRotate(float& x, float& y) {
    float const u = (x - mSourceX) * mScaleX;
    float const v = (y - mSourceY) * mScaleY;
    x = u * mForwardCosine + v * mForwardSine + mTargetX;
    y = mTargetY - u * mForwardSine + v * mForwardCosine;
}

/// The rotation back, by terms of its own that no pixel which is stored can change.
struct ScRotatedBlit::StReverse {
    void Rotate(float& x, float& y) const {
        float const u = x - targetX;
        float const v = y - targetY;
        x = u * r1 + sourceX + v * r4;
        y = sourceY - u * r2 + v * r3;
    }
    float targetX, targetY, sourceX, sourceY;
    float r1, r2, r3, r4;
};

ScRotatedBlit::StReverse ScRotatedBlit::Reverse() const {
    return {mTargetX, mTargetY, mSourceX, mSourceY, mReverse[0], mReverse[1], mReverse[2], mReverse[3]};
}

void ScRotatedBlit::ReverseRotate(float& x, float& y) {
    Reverse().Rotate(x, y);
}

void ScRotatedBlit::ExtendLimits(StRect& rect, long x, long y) {
    auto const extend = [](std::int32_t& first, std::int32_t& end, long place) {
        if (place < first) first = static_cast<std::int32_t>(place);
        if (place >= end) end = static_cast<std::int32_t>(place + 1);
    };
    extend(rect.left, rect.right, x);
    extend(rect.top, rect.bottom, y);
}

// --- copying

StRect ScRotatedBlit::ReachedBounds(StPoint const& sourceSize, StPoint const& destinationSize) {
    StRect clipped{};
    SrClipRectToFrame(clipped, mSource, sourceSize);
    auto const reached = [this](long column, long row) {
        StFloatPoint point{static_cast<float>(row), static_cast<float>(column)};
        ForwardRotate(point.horizontal, point.vertical);
        return point;
    };
    StFloatPoint const first = reached(clipped.left, clipped.top);
    StRect bounds{SrITrunc(first.vertical), SrITrunc(first.horizontal), SrITrunc(first.vertical + 1.0F),
                  SrITrunc(first.horizontal + 1.0F)};
    for (StFloatPoint const& corner :
         {reached(clipped.right, clipped.top), reached(clipped.left, clipped.bottom),
          reached(clipped.right, clipped.bottom)})
        ExtendLimits(bounds, SrITrunc(corner.horizontal), SrITrunc(corner.vertical));
    return {std::max(bounds.top, 0), std::max(bounds.left, 0),
            std::min(bounds.bottom, destinationSize.vertical),
            std::min(bounds.right, destinationSize.horizontal)};
}

namespace {

/// By way of double, which costs the processor less and gives the same.
long Truncated(float value) {
    return SrITrunc(static_cast<double>(value));
}

/// Carries pixels between frames of any kind.
class ScAnyPixels {
  public:
    ScAnyPixels(SmImagerFrame& source, SmImagerFrame& destination, bool sampled)
        : mSource(source), mDestination(destination), mSmart(sampled ? source.NewSmartPixel() : nullptr) {}

    void Copy(long x, long y, long column, long row) const {
        StRGBA32Pixel color{};
        mSource.GetPixelAt(x, y, color);
        mDestination.PutPixelAt(column, row, color);
    }
    void Sample(float x, float y, long column, long row) const {
        mSource.GetFractionalSmartPixel(x, y, mSmart.get());
        mDestination.PutPixelAt(column, row, mSmart.get());
    }

  private:
    SmImagerFrame& mSource;
    SmImagerFrame& mDestination;
    std::unique_ptr<ScSmartPixel> const mSmart;
};

/// The same between plain layers of 32-bit colours, where no pixel is converted.
class ScColorPixels {
  public:
    using Layer = SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>;

    /// Null for frames of any other class: one that derives from this may answer in its own way.
    static Layer* From(SmImagerFrame& frame) {
        return typeid(frame) == typeid(Layer) ? static_cast<Layer*>(&frame) : nullptr;
    }

    ScColorPixels(Layer& source, Layer& destination) : mSource(source), mDestination(destination) {}

    void Copy(long x, long y, long column, long row) const {
        mDestination.PutMatchedPixelAt(column, row, mSource.GetMatchedPixelAt(x, y));
    }
    void Sample(float x, float y, long column, long row) const {
        mDestination.PutMatchedPixelAt(column, row, mSource.GetFractionalPixel(x, y));
    }

  private:
    Layer& mSource;
    Layer& mDestination;
};

}  // namespace

/// Calls copy(x, y, column, row) with the source place of each pixel in the bounds.
template <class Copy>
void ScRotatedBlit::Walk(StRect const& bounds, Copy const& copy) {
    StReverse const reverse = Reverse();
    for (long row = bounds.top; row < bounds.bottom; ++row) {
        for (long column = bounds.left; column < bounds.right; ++column) {
            auto x = static_cast<float>(column), y = static_cast<float>(row);
            reverse.Rotate(x, y);
            copy(x, y, column, row);
        }
    }
}

template <class Pixels>
void ScRotatedBlit::Carry(Pixels const& pixels, StPoint const& sourceSize, StRect const& bounds) {
    StRect const rect = mSource;
    auto const inside = [size = sourceSize](long x, long y) {
        return x >= 0 && y >= 0 && x < size.horizontal && y < size.vertical;
    };
    if (mInterpolation) {
        auto const left = static_cast<float>(rect.left), top = static_cast<float>(rect.top);
        auto const lastColumn = static_cast<float>(long{rect.right} - 1);
        auto const lastRow = static_cast<float>(long{rect.bottom} - 1);
        Walk(bounds, [&](float x, float y, long column, long row) {
            bool const inRect = x >= left && x <= lastColumn && y >= top && y <= lastRow;
            if (inRect && inside(Truncated(x), Truncated(y))) pixels.Sample(x, y, column, row);
        });
    } else {
        Walk(bounds, [&](float fx, float fy, long column, long row) {
            long const x = Truncated(fx), y = Truncated(fy);
            bool const inRect = x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
            if (inRect && inside(x, y)) pixels.Copy(x, y, column, row);
        });
    }
}

void ScRotatedBlit::DoIt(SmImagerFrame* source, SmImagerFrame* destination, float angle) {
    mAngle = -angle;
    CalculateRotationMatrix();
    StPoint const sourceSize = source->GetSize();
    StRect const bounds = ReachedBounds(sourceSize, destination->GetSize());
    auto* const sourceColors = ScColorPixels::From(*source);
    auto* const destinationColors = ScColorPixels::From(*destination);
    if (sourceColors && destinationColors) {
        Carry(ScColorPixels(*sourceColors, *destinationColors), sourceSize, bounds);
    } else {
        Carry(ScAnyPixels(*source, *destination, mInterpolation), sourceSize, bounds);
    }
}
