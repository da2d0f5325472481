// The bodies of SmImagerDitheredLayer. Only the sources that instantiate it, or a class below it, include
// this.
#pragma once

#include <algorithm>

#include "framewright/frame/copy_road.h"
#include "framewright/frame/frame_limit.h"
#include "framewright/frame/storage_choice.h"
#include "framewright/pixel/blit_part.h"
#include "framewright/pixel/dither.h"
#include "framewright/pixel/dithered_layer.h"
#include "framewright/pixel/source_rows.h"
#include "framewright/thornmere/reference.h"

namespace pixel {

/// Dithers the rows of `from`, which with its place at `to` lies within both frames.
template <class Put>
void DitherRows(SmImagerFrame* source, StRect const& from, SmImagerFrame* destination, StPoint const& to,
                StDitherErrors errors, Put& put) {
    StRowForm const form = RowFormOf(source);
    for (long y = from.top; y < from.bottom; ++y) {
        frame::StRowLock const row(*destination, to.vertical + (y - from.top));
        SrThrowIfNIL(row.Address());
        StDitherSpan const span{from.left, from.right, to.horizontal, row.Address(), (y & 1) != 0};
        WithColorsOfRow(source, form, y, [&](auto const& colors) { DitherRow(span, errors, colors, put); });
    }
}

}  // namespace pixel

template <class Pixel, class Spool>
ScMC_* StClassFacts<SmImagerDitheredLayer<Pixel, Spool>>::Object() {
    return SrClassObjectOnFirstUse<SmImagerDitheredLayer<Pixel, Spool>>();
}

template <class Pixel, class Spool>
SmImagerDitheredLayer<Pixel, Spool>::SmImagerDitheredLayer() = default;

template <class Pixel, class Spool>
SmImagerDitheredLayer<Pixel, Spool>::~SmImagerDitheredLayer() = default;

template <class Pixel, class Spool>
void SmImagerDitheredLayer<Pixel, Spool>::IImagerDitheredLayer(StPoint const& topLeft, StPoint const& size,
                                                               bool nativeBitmap, void* base, long rowBytes) {
    this->IImagerLayer(topLeft, size, nativeBitmap, base, rowBytes, nullptr);
    NewErrorsWith(size);
}

template <class Pixel, class Spool>
SmImagerFrame* SmImagerDitheredLayer<Pixel, Spool>::CloneAtNewSize(StPoint const& size, bool spooled,
                                                                   bool nativeBitmap) {
    return frame::WithSpooler(spooled, [&]<class Storage>(std::type_identity<Storage>) -> SmImagerFrame* {
        using Clone = SmImagerDitheredLayer<Pixel, Storage>;
        auto layer = StRef<Clone>::Adopt(Clone::New());
        SrThrowIfNIL(layer.Get());
        layer->IImagerDitheredLayer({0, 0}, size, nativeBitmap, nullptr, 0);
        return layer.Release();
    });
}

template <class Pixel, class Spool>
bool SmImagerDitheredLayer<Pixel, Spool>::BlitRect(SmImagerFrame* source, StRect const& from,
                                                   StPoint const& to) {
    if (source == this) return Layer::BlitRect(source, from, to);

    StPoint const sourceSize = source->GetSize(), size = this->GetSize();
    if (!frame::MeetsFrames(sourceSize, size, from, to)) return false;

    unsigned long const dithering = this->GetDithering();
    bool const diffuse = dithering == SrCode("BIDI");
    if (!diffuse && dithering != 0) return false;
    this->SetUpdated(true);
    pixel::StBlitPart const part = pixel::PartWithin(from, to, sourceSize, size);
    return diffuse ? DitheredBlit(source, part.from, part.to)
                   : this->DissimilarBlit(source, part.from, part.to);
}

template <class Pixel, class Spool>
bool SmImagerDitheredLayer<Pixel, Spool>::DitheredBlit(SmImagerFrame* source, StRect const& from,
                                                       StPoint const& to) {
    if constexpr (std::is_same_v<Pixel, StRGB15Pixel>) {
        pixel::StPutRGB15 put;
        Diffuse(source, from, to, put);
    } else {
        this->DissimilarBlit(source, from, to);  // indices without a map have no colours to be short of
    }
    return false;
}

template <class Pixel, class Spool>
template <class Put>
void SmImagerDitheredLayer<Pixel, Spool>::Diffuse(SmImagerFrame* source, StRect const& from,
                                                  StPoint const& to, Put& put) {
    this->EnsureScreenSafe(frame::PlacedAt(from, to));
    if (from.top < mLastTop || mErrors.empty()) ClearDither(0, 0);
    pixel::DitherRows(source, from, this, to, {mErrors.data(), static_cast<long>(mErrors.size())}, put);
    mLastTop = from.top;
    this->ReleaseScreenSafe();
}

template <class Pixel, class Spool>
void SmImagerDitheredLayer<Pixel, Spool>::ClearDither(long left, long right) {
    long const width = this->GetSize().horizontal;
    if (mErrors.empty()) {
        NewErrors(width);
        return;
    }
    if (left == 0 && right == 0) right = width;
    long const count = static_cast<long>(mErrors.size());
    left = std::clamp(left, 0L, count);
    right = std::clamp(right, left, count);
    std::fill(mErrors.begin() + left, mErrors.begin() + right, pixel::StDitherError{});
}

template <class Pixel, class Spool>
void SmImagerDitheredLayer<Pixel, Spool>::ReleaseErrors() {
    // Not `= {}`: in a template clang 14 forgets to destroy what that makes, and the old errors with it.
    mErrors = ScVector<pixel::StDitherError>();
}

template <class Pixel, class Spool>
void SmImagerDitheredLayer<Pixel, Spool>::NewErrors(long columns) {
    ReleaseErrors();
    auto const count = static_cast<std::uint64_t>(std::max(columns, 0L));
    if (count * sizeof(pixel::StDitherError) > SrGetFrameSizeLimit()) SrThrow(SkMemoryFull(), nullptr);
    mErrors.resize(static_cast<std::size_t>(count));
}

template <class Pixel, class Spool>
void SmImagerDitheredLayer<Pixel, Spool>::NewErrorsWith(StPoint const& size) {
    ReleaseErrors();
    std::int64_t const bytes = size.horizontal * std::int64_t{sizeof(pixel::StDitherError)};
    // More bits a column than all rows have there.
    bool const outweighs =
        std::int64_t{size.vertical} * Pixel::PixelSize() < long{sizeof(pixel::StDitherError) * 8};
    bool const outgrowsFrame = bytes > kSmallErrorRow && outweighs;
    if (SrHasPixels(size) && !outgrowsFrame) NewErrors(size.horizontal);
}

template <class Pixel, class Spool>
void SmImagerDitheredLayer<Pixel, Spool>::Resize(StPoint const& size, StImageInterpolationMethod) {
    if (size.horizontal != this->GetSize().horizontal) {
        NewErrorsWith(size);
    }
    Layer::Resize(size, StImageInterpolationMethod::kNone);
}

template <class Pixel, class Spool>
void SmImagerDitheredLayer<Pixel, Spool>::CloneFrom(SmImagerDitheredLayer const& other) {
    NewErrorsWith(other.mSize);
    mLastTop = 0;
    Layer::CloneFrom(other);
}

template <class Pixel, class Spool>
void SmImagerDitheredLayer<Pixel, Spool>::Free() {
    ReleaseErrors();
    Layer::Free();
}
