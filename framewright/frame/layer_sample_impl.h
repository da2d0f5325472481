// SmImagerLayer: reads between pixels.
#pragma once

#include "framewright/frame/corners.h"
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

}  // namespace frame

template <class Pixel, class Spool>
Pixel SmImagerLayer<Pixel, Spool>::GetFractionalPixel(float x, float y) {
    if (!SrHasPixels(this->mSize)) return Pixel{};
    if constexpr (frame::UnblendedPixel<Pixel>) {
        return GetMatchedPixelAt(frame::NearestPixel(x, this->mSize.horizontal),
                                 frame::NearestPixel(y, this->mSize.vertical));
    } else {
        frame::StPlace const place = frame::PlaceOfPixel(x, y, this->mSize);
        return frame::BlendCorners(CornersAs<Pixel>(place), place);
    }
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetFractionalSmartPixel(float x, float y, ScSmartPixel* pixel) {
    Pixel const record = GetFractionalPixel(x, y);
    pixel->SetPixelData(&record);
}

template <class Pixel, class Spool>
template <class Value>
frame::StCorners<Value> SmImagerLayer<Pixel, Spool>::CornersAs(frame::StPlace const& place) {
    if constexpr (pixel::MappedPixel<Pixel>) {
        // Through the operation that classes with a map replace.
        return frame::ReadCorners<Value>(
            place, [](long y) { return y; },
            [this](long y, long x) {
                Value value{};
                this->GetPixelAt(x, y, value);
                return value;
            });
    } else {
        return frame::ReadCorners<Value>(
            place, [this](long y) { return Row(y); },
            [](void const* row, long x) { return frame::PixelAs<Value>(frame::PixelOf<Pixel>(row, x)); });
    }
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetFractionalUVPixel(float u, float v, StRGBA32Pixel& pixel,
                                                       StTilingStyles const& tiling, float) {
    if (!SrHasPixels(this->mSize)) return;
    frame::StPlace const place = frame::PlaceOfTexture(u, v, this->mSize, tiling);
    pixel = frame::BlendCorners(CornersAs<StRGBA32Pixel>(place), place);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetFractionalUVPixel(float u, float v, float& intensity,
                                                       StTilingStyles const& tiling, float) {
    if (!SrHasPixels(this->mSize)) return;
    frame::StPlace const place = frame::PlaceOfTexture(u, v, this->mSize, tiling);
    auto const corners = CornersAs<float>(place);
    intensity = frame::MixIntensities(corners.a, corners.b, corners.c, corners.d, place);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetFractionalUVPixel(float u, float v, StColorFloats& pixel,
                                                       StTilingStyles const& tiling, float) {
    if (!SrHasPixels(this->mSize)) return;
    frame::StPlace const place = frame::PlaceOfColorTexture(u, v, this->mSize, tiling);
    pixel = frame::BlendCorners(CornersAs<StColorFloats>(place), place);
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
            float value = 0.0f;
            this->GetPixelAt(frame::NearestPixel(x, this->mSize.horizontal),
                             frame::NearestPixel(y, this->mSize.vertical), value);
            return value;
        } else {
            return pixel::GetFloat(GetFractionalPixel(x, y));
        }
    };
    frame::MixDerivatives(intensity(-0.5, -0.5), intensity(0.5, -0.5), intensity(-0.5, 0.5),
                          intensity(0.5, 0.5), this->mSize, du, dv);
}
