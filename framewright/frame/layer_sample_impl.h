// SmImagerLayer: reads between pixels.
#pragma once

#include "framewright/frame/layer.h"
#include "framewright/frame/layer_pixels_impl.h"
#include "framewright/frame/pixel_mixing.h"
#include "framewright/frame/sampling.h"
#include "framewright/pixel/pixel_ops.h"
#include "framewright/pixel/smart_pixel.h"

namespace frame {

/// A record whose values do not blend.
template <class Record>
concept UnblendedPixel = pixel::MappedPixel<Record> || IntegerDepthPixel<Record>;

/// The four pixels around a place: a and b above, c and d below, b and d to the right.
template <class Value>
struct StCorners {
    Value a, b, c, d;

    /// Mixes them: across, then down.
    Value Blend(StPlace const& place) const {
        Value upper = a;
        Value lower = c;
        upper.Blend(b, place.across);
        lower.Blend(d, place.across);
        upper.Blend(lower, place.down);
        return upper;
    }
};

/// The corners as `Value`, row by row: each row may drive the other out of memory.
template <class Value, class Read>
StCorners<Value> ReadCorners(StPlace const& place, Read const& read) {
    StCorners<Value> corners;
    corners.a = read(place.x0, place.y0);
    corners.b = read(place.x1, place.y0);
    corners.c = read(place.x0, place.y1);
    corners.d = read(place.x1, place.y1);
    return corners;
}

}  // namespace frame

template <class Pixel, class Spool>
Pixel SmImagerLayer<Pixel, Spool>::GetFractionalPixel(float x, float y) {
    if (!SrHasPixels(this->mSize)) return Pixel{};
    if constexpr (frame::UnblendedPixel<Pixel>) {
        return GetMatchedPixelAt(frame::NearestPixel(x, this->mSize.horizontal),
                                 frame::NearestPixel(y, this->mSize.vertical));
    } else {
        frame::StPlace const place = frame::PlaceOfPixel(x, y, this->mSize);
        return frame::ReadCorners<Pixel>(
                   place, [this](long column, long row) { return GetMatchedPixelAt(column, row); })
            .Blend(place);
    }
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetFractionalSmartPixel(float x, float y, ScSmartPixel* pixel) {
    Pixel const record = GetFractionalPixel(x, y);
    pixel->SetPixelData(&record);
}

template <class Pixel, class Spool>
template <class Value>
Value SmImagerLayer<Pixel, Spool>::ConvertedPixelAt(long x, long y) {
    Value value{};
    if constexpr (pixel::MappedPixel<Pixel>) {
        // Through the operation that classes with a map replace.
        this->GetPixelAt(x, y, value);
    } else {
        SmImagerLayer::GetPixelAt(x, y, value);
    }
    return value;
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetFractionalUVPixel(float u, float v, StRGBA32Pixel& pixel,
                                                       StTilingStyles const& tiling, float) {
    if (!SrHasPixels(this->mSize)) return;
    frame::StPlace const place = frame::PlaceOfTexture(u, v, this->mSize, tiling);
    pixel = frame::ReadCorners<StRGBA32Pixel>(place, [this](long x, long y) {
                return ConvertedPixelAt<StRGBA32Pixel>(x, y);
            }).Blend(place);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetFractionalUVPixel(float u, float v, float& intensity,
                                                       StTilingStyles const& tiling, float) {
    if (!SrHasPixels(this->mSize)) return;
    frame::StPlace const place = frame::PlaceOfTexture(u, v, this->mSize, tiling);
    auto const corners =
        frame::ReadCorners<float>(place, [this](long x, long y) { return ConvertedPixelAt<float>(x, y); });
    intensity = frame::MixIntensities(corners.a, corners.b, corners.c, corners.d, place);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetFractionalUVPixel(float u, float v, StColorFloats& pixel,
                                                       StTilingStyles const& tiling, float) {
    if (!SrHasPixels(this->mSize)) return;
    frame::StPlace const place = frame::PlaceOfColorTexture(u, v, this->mSize, tiling);
    pixel = frame::ReadCorners<StColorFloats>(place, [this](long x, long y) {
                return ConvertedPixelAt<StColorFloats>(x, y);
            }).Blend(place);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetUVDerivatives(float u, float v, float& du, float& dv,
                                                   StTilingStyles const& tiling, float) {
    if (!SrHasPixels(this->mSize)) return;
    StFloatPoint const place = frame::PlaceOfDerivatives(u, v, this->mSize, tiling);
    auto const intensity = [&](double right, double below) -> float {
        auto const x = static_cast<float>(place.horizontal + right);
        auto const y = static_cast<float>(place.vertical + below);
        if constexpr (pixel::MappedPixel<Pixel>) {
            return ConvertedPixelAt<float>(frame::NearestPixel(x, this->mSize.horizontal),
                                           frame::NearestPixel(y, this->mSize.vertical));
        } else {
            return pixel::GetFloat(GetFractionalPixel(x, y));
        }
    };
    frame::MixDerivatives(intensity(-0.5, -0.5), intensity(0.5, -0.5), intensity(-0.5, 0.5),
                          intensity(0.5, 0.5), this->mSize, du, dv);
}
