// SmImagerLayer: scaled copies.
#pragma once

#include <algorithm>
#include <memory>

#include "framewright/frame/copy_road.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/pixel_mixing.h"
#include "framewright/frame/row_lock.h"
#include "framewright/frame/stretch_map.h"
#include "framewright/pixel/smart_pixel.h"

template <class Pixel, class Spool>
bool SmImagerLayer<Pixel, Spool>::StretchBlit(SmImagerFrame* source, StRect const& from, StRect const& to) {
    StPoint const sourceSize = source->GetSize();
    this->mUpdated = true;
    this->EnsureScreenSafe(to);
    if (SrHasPixels(sourceSize)) {
        frame::StStretchMap const map(from, to);
        if (frame::OnePixelType(*source, *this)) {
            for (long y = to.top; y < to.bottom; ++y)
                StretchRow(source, sourceSize, map, to, y);
        } else {
            std::unique_ptr<ScSmartPixel> const smart(source->NewSmartPixel());
            for (long y = to.top; y < to.bottom; ++y) {
                for (long x = to.left; x < to.right; ++x) {
                    source->GetFractionalSmartPixel(map.columns.At(x), map.rows.At(y), smart.get());
                    this->PutPixelAt(x, y, smart.get());
                }
            }
        }
    }
    this->ReleaseScreenSafe();
    return false;
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::StretchRow(SmImagerFrame* source, StPoint const& sourceSize,
                                             frame::StStretchMap const& map, StRect const& to, long y) {
    frame::ScSourceAxis const sourceRows(sourceSize.vertical);
    float const fy = map.rows.At(y);
    std::int32_t const y0 = sourceRows.PixelAt(fy);
    std::int32_t const y1 = sourceRows.Next(y0);
    float const down = fy - static_cast<float>(y0);
    frame::StRowLock upperLock(*source, y0);
    frame::StRowLock lowerLock(*source, y1);
    frame::StRowLock rowLock(*this, y);
    // All that the loop reads stands in variables of its own: no pixel that it stores could change them.
    void const* const upper = upperLock.Address();
    void const* const lower = lowerLock.Address();
    void* const row = rowLock.Address();
    frame::ScStretchAxis const columns = map.columns;
    frame::ScSourceAxis const sourceColumns(sourceSize.horizontal);
    long const right = to.right;
    for (long x = to.left; x < right; ++x) {
        float const fx = columns.At(x);
        std::int32_t const x0 = sourceColumns.PixelAt(fx);
        std::int32_t const x1 = sourceColumns.Next(x0);
        float const across = fx - static_cast<float>(x0);
        Pixel a{}, b{}, c{}, d{};
        pixel::LoadPixel(upper, x0, a);
        pixel::LoadPixel(lower, x0, b);
        pixel::LoadPixel(upper, x1, c);
        pixel::LoadPixel(lower, x1, d);
        frame::BlendPixels(a, c, across);
        frame::BlendPixels(b, d, across);
        frame::BlendPixels(a, b, down);
        pixel::StorePixel(row, x, a);
    }
    upperLock.Release();
    lowerLock.Release();
    rowLock.Release();
}

template <class Pixel, class Spool>
bool SmImagerLayer<Pixel, Spool>::StretchBlitFast(SmImagerFrame* source, StRect const& from,
                                                  StRect const& to) {
    this->mUpdated = true;
    this->EnsureScreenSafe(to);
    StPoint const sourceSize = source->GetSize();
    if (SrHasPixels(sourceSize)) {
        frame::StStretchMap const map(from, to);
        frame::ScStretchAxis const columns = map.columns;
        frame::ScSourceAxis const sourceRows(sourceSize.vertical);
        frame::ScSourceAxis const sourceColumns(sourceSize.horizontal);
        bool const onePixelType = frame::OnePixelType(*source, *this);
        std::unique_ptr<ScSmartPixel> const smart(onePixelType ? nullptr : source->NewSmartPixel());
        for (long y = to.top; y < to.bottom; ++y) {
            long const sy = sourceRows.PixelAt(map.rows.At(y));
            auto const forEachPixel = [&](auto const& copy) {
                for (long x = to.left; x < to.right; ++x)
                    copy(sourceColumns.PixelAt(columns.At(x)), x);
            };
            if (onePixelType) {
                frame::StOwnRow const own(mSpooler, y);
                void const* const sourceRow = source->GetRow(sy);
                void* const row = own.Address();
                forEachPixel([&](long sx, long x) {
                    Pixel pixel{};
                    pixel::LoadPixel(sourceRow, sx, pixel);
                    pixel::StorePixel(row, x, pixel);
                });
            } else {
                forEachPixel([&](long sx, long x) {
                    source->GetPixelAt(sx, sy, smart.get());
                    this->PutPixelAt(x, y, smart.get());
                });
            }
        }
    }
    this->ReleaseScreenSafe();
    return false;
}

template <class Pixel, class Spool>
bool SmImagerLayer<Pixel, Spool>::StretchBlitMasked(SmImagerFrame* source, SmImagerFrame* mask,
                                                    StRect const& from, StRect const& to) {
    StPoint const sourceSize = source->GetSize();
    StPoint const maskSize = mask->GetSize();
    this->mUpdated = true;
    this->EnsureScreenSafe(to);
    StRect const target = frame::ClipStretchTarget(to, this->GetSize());
    frame::StStretchMap const map(from, to);
    frame::ScMaskPixel maskPixel;
    for (long y = target.top; y < target.bottom; ++y) {
        long const sy = map.rows.MaskedPixelAt(y, map.sameSize);
        if (sy < 0 || sy >= sourceSize.vertical || y >= maskSize.vertical) continue;
        for (long x = target.left; x < target.right; ++x) {
            if (x >= maskSize.horizontal || !maskPixel.IsSet(mask, x, y)) continue;
            long const sx = map.columns.MaskedPixelAt(x, map.sameSize);
            if (sx < 0 || sx >= sourceSize.horizontal) continue;
            StRGBA32Pixel color{};
            source->GetPixelAt(sx, sy, color);
            this->PutPixelAt(x, y, color);
        }
    }
    this->ReleaseScreenSafe();
    return false;
}
