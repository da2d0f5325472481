#include "framewright/imagery/updated.h"

#include <algorithm>

SM_DEFINE_CLASS(SmImagerUpdated);

namespace {

StPoint PointAt(long x, long y) {
    return {static_cast<std::int32_t>(y), static_cast<std::int32_t>(x)};
}

/// The last of `count` places from `first` on, in the 32 bits that places have.
long Last(long first, long count) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(first) + static_cast<std::uint32_t>(count) -
                                     1);
}

/// Grows the span from `low` to before `high` to hold `place`.
void Grow(std::int32_t& low, std::int32_t& high, std::int32_t place) {
    low = std::min(low, place);
    if (place >= high) high = static_cast<std::int32_t>(static_cast<std::uint32_t>(place) + 1);
}

}  // namespace

SmImagerUpdated::SmImagerUpdated() = default;
SmImagerUpdated::~SmImagerUpdated() = default;

void SmImagerUpdated::IImagerUpdated() {
    IImagerImage();
}

void SmImagerUpdated::CloneFrom(SmImagerUpdated const& other) {
    SmImagerImage::CloneFrom(other);
    mUpdated = kEmpty;
}

void SmImagerUpdated::BlendPixelAt(float blend, long x, long y, StColorFloats const& color,
                                   float transparency, float depth) {
    SmImagerImage::BlendPixelAt(blend, x, y, color, transparency, depth);
    AddUpdatedPoint(PointAt(x, y));
}

void SmImagerUpdated::PutPixelAt(long x, long y, StColorFloats const& color, float transparency,
                                 float depth) {
    SmImagerImage::PutPixelAt(x, y, color, transparency, depth);
    AddUpdatedPoint(PointAt(x, y));
}

void SmImagerUpdated::PutRGBAAt(long x, long y, StRGBA32Pixel color) {
    SmImagerImage::PutRGBAAt(x, y, color);
    AddUpdatedPoint(PointAt(x, y));
}

void SmImagerUpdated::PutRunAt(long x, long y, long length, StColorFloats const& color, float transparency,
                               float depth) {
    SmImagerImage::PutRunAt(x, y, length, color, transparency, depth);
    if (length <= 0) return;
    AddUpdatedPoint(PointAt(x, y));
    AddUpdatedPoint(PointAt(Last(x, length), y));
}

void SmImagerUpdated::FillRectAt(long x, long y, long width, long height, StColorFloats const& color,
                                 float transparency, float depth) {
    SmImagerImage::FillRectAt(x, y, width, height, color, transparency, depth);
    AddUpdatedPoint(PointAt(x, y));
    AddUpdatedPoint(PointAt(Last(x, width), Last(y, height)));
}

bool SmImagerUpdated::GetUpdatedRect(StRect& rect) {
    if (mUpdated.left > mUpdated.right) return false;
    rect = mUpdated;
    return true;
}

void SmImagerUpdated::ClearUpdatedRect() {
    mUpdated = kEmpty;
}

bool SmImagerUpdated::TakeUpdatedRect(StRect& rect) {
    bool const updated = GetUpdatedRect(rect);
    if (updated) ClearUpdatedRect();
    return updated;
}

void SmImagerUpdated::SetUpdatedRect(StRect const& rect) {
    mUpdated = rect;
}

void SmImagerUpdated::AddUpdatedPoint(StPoint const& point) {
    Grow(mUpdated.top, mUpdated.bottom, point.vertical);
    Grow(mUpdated.left, mUpdated.right, point.horizontal);
}
