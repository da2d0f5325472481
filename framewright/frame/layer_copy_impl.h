// SmImagerLayer: block copies.
#pragma once

#include <memory>

#include "framewright/frame/copy_road.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/merge_row.h"
#include "framewright/frame/row_lock.h"
#include "framewright/pixel/smart_pixel.h"

template <class Pixel, class Spool>
bool SmImagerLayer<Pixel, Spool>::BlitRect(SmImagerFrame* source, StRect const& from, StPoint const& to) {
    StRect clipped{};
    if (!frame::ClipCopy(source->GetSize(), this->mSize, from, to, clipped)) return false;
    this->mUpdated = true;
    frame::CopyRoad const road = frame::ChooseCopyRoad(*source, *this, clipped, to);
    if (road == frame::CopyRoad::kConverted) return this->DissimilarBlit(source, clipped, to);

    StRect const target = frame::PlacedAt(clipped, to);
    this->EnsureScreenSafe(target);
    bool locked = false;
    auto const finish = [&] {
        if (locked) this->UnlockRows(target.top, long{target.bottom} - 1);
        this->ReleaseScreenSafe();
    };
    try {
        if constexpr (Spool::kRowsLeaveMemory) {
            locked = this->LockRows(target.top, long{target.bottom} - 1);
            if (!locked) {
                // More rows than memory holds: then each is held while it is written. The source gets memory
                // for a row before this layer takes all again; from then on each makes room among its own.
                mSpooler.GiveUpLocks(target.top, static_cast<unsigned int>(source->BytesPerRow()));
                source->GetRow(clipped.top);
            }
        }
        if (road == frame::CopyRoad::kRawRows) {
            CopyRows(source, clipped, to);
        } else {
            this->DissimilarBlit(source, clipped, to);
        }
    } catch (...) {
        finish();
        throw;
    }
    finish();
    return false;
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::CopyRows(SmImagerFrame* source, StRect const& from, StPoint const& to) {
    long const bytes = (long{from.right} - from.left) * kKind.bits / 8;
    if (bytes <= 0) return;
    long const sourceOffset = from.left * kKind.bits / 8;
    long const offset = to.horizontal * kKind.bits / 8;
    long row = to.vertical;
    for (long y = from.top; y < from.bottom; ++y, ++row) {
        // The source may be this frame.
        frame::StOwnRow const own(mSpooler, row);
        auto* const destinationRow = static_cast<std::byte*>(own.Address());
        auto const* const sourceRow = static_cast<std::byte const*>(source->GetRow(y));
        SrThrowIfNIL(destinationRow);
        SrThrowIfNIL(sourceRow);
        frame::CopyUpward(destinationRow + offset, sourceRow + sourceOffset, static_cast<std::size_t>(bytes));
    }
}

template <class Pixel, class Spool>
bool SmImagerLayer<Pixel, Spool>::DissimilarBlit(SmImagerFrame* source, StRect const& from,
                                                 StPoint const& to) {
    this->EnsureScreenSafe(frame::PlacedAt(from, to));
    std::unique_ptr<ScSmartPixel> const smart(source->NewSmartPixel());
    long row = to.vertical;
    for (long y = from.top; y < from.bottom; ++y, ++row) {
        long column = to.horizontal;
        for (long x = from.left; x < from.right; ++x, ++column) {
            source->GetPixelAt(x, y, smart.get());
            this->PutPixelAt(column, row, smart.get());
        }
    }
    this->ReleaseScreenSafe();
    return false;
}

template <class Pixel, class Spool>
bool SmImagerLayer<Pixel, Spool>::MergeRect(SmImagerFrame* source, StRect const& from, StPoint const& to) {
    this->mUpdated = true;
    this->EnsureScreenSafe(frame::PlacedAt(from, to));
    long const width = long{from.right} - from.left;
    long row = to.vertical;
    if (frame::OnePixelType(*source, *this)) {
        for (long y = from.top; y < from.bottom; ++y, ++row) {
            frame::StOwnRow const own(mSpooler, row);
            void const* const sourceRow = source->GetRow(y);
            frame::MergeRow<Pixel>(own.Address(), to.horizontal, sourceRow, from.left, width);
        }
        // This way ends without ReleaseScreenSafe; a frame that counts brackets relies on it.
        return false;
    }
    for (long y = from.top; y < from.bottom; ++y, ++row) {
        for (long i = 0; i < width; ++i) {
            StRGBA32Pixel const over = source->GetRGBAPixelAt(from.left + i, y);
            StRGBA32Pixel color = this->GetRGBAPixelAt(to.horizontal + i, row);
            color.Merge(over);
            this->PutPixelAt(to.horizontal + i, row, color);
        }
    }
    this->ReleaseScreenSafe();
    return false;
}
