// From the pixels of a scaled copy's destination back to places in its source.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "framewright/frame/frame.h"
#include "framewright/thornmere/numbers.h"

namespace frame {

/// One axis. The first pixel maps to the first and the last to the last; a destination of one pixel takes the
/// first. All in 32-bit floats: from 2 to the 23 pixels on rounding may lift a place past the last one, so
/// who reads there clamps it.
class ScStretchAxis {
  public:
    ScStretchAxis(long from, long fromEnd, long to, long toEnd)
        : mFrom(from),
          mTo(to),
          mScale(static_cast<float>(fromEnd - from - 1) /
                 (toEnd - to == 1 ? 1.0f : static_cast<float>(toEnd - to - 1))) {}

    float At(long position) const {
        return static_cast<float>(position - mTo) * mScale + static_cast<float>(mFrom);
    }
    /// The truncated place for a masked copy, which is plain offsets where both rectangles are of one size.
    long MaskedPixelAt(long position, bool sameSize) const {
        return sameSize ? position + (mFrom - mTo) : SrITrunc(At(position));
    }

  private:
    long mFrom;
    long mTo;
    float mScale;
};

/// The pixels of a source axis, for places that may lie past its ends.
class ScSourceAxis {
  public:
    explicit ScSourceAxis(std::int32_t count) : mLast(count - 1), mLastPlace(static_cast<float>(mLast)) {
        // A float that is rounded up lies past the last pixel.
        if (static_cast<double>(mLastPlace) > mLast) mLastPlace = std::nextafter(mLastPlace, 0.0f);
    }
    /// The pixel at the truncated place, or the nearest edge.
    std::int32_t PixelAt(float place) const {
        return static_cast<std::int32_t>(std::min(std::max(0.0f, place), mLastPlace));
    }
    /// The next pixel, or the same one at the end.
    std::int32_t Next(std::int32_t pixel) const { return pixel < mLast ? pixel + 1 : pixel; }

  private:
    std::int32_t mLast;
    float mLastPlace;
};

struct StStretchMap {
    StStretchMap(StRect const& from, StRect const& to)
        : rows(from.top, from.bottom, to.top, to.bottom),
          columns(from.left, from.right, to.left, to.right),
          sameSize(long{from.bottom} - from.top == long{to.bottom} - to.top &&
                   long{from.right} - from.left == long{to.right} - to.left) {}

    ScStretchAxis rows;
    ScStretchAxis columns;
    bool sameSize;
};

/// The destination of a masked copy, cut to its frame: left and top to a column and row that exist, right and
/// bottom to the frame's.
StRect ClipStretchTarget(StRect const& to, StPoint const& size);

/// Reads masks. A pixel counts as set when the fourth byte of its native record is not 0: the alpha of
/// StRGBA32Pixel, the top byte of StAlpha32Pixel. Records of fewer bytes never are.
class ScMaskPixel {
  public:
    bool IsSet(SmImagerFrame* mask, long x, long y) {
        mask->GetPixelAt(x, y, static_cast<void*>(mRecord));
        return mRecord[3] != 0;
    }

  private:
    alignas(16) std::uint8_t mRecord[64] = {};  ///< with room for any record
};

}  // namespace frame
