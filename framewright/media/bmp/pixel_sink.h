// Where the pixels of a BMP file go.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "framewright/media/bmp/row_records.h"
#include "framewright/pixel/pixel_ops.h"
#include "framewright/pixel/row_access.h"

namespace bmp {

/// A frame that takes stretches of pixels; what falls outside of it is dropped.
///
/// A stretch comes as a source: a function of the pixel's number in the stretch that gives an index into the
/// palette (then its kIndexed is true) or a colour. An index goes as it is into a frame of the file's own
/// mapped type, so that a palette shows exactly whatever its colours, and into any other frame as its colour.
class ScPixelSink {
  public:
    /// `indexID` is the mapped type of the file's pixels, or 0 when the frame is not to take indices.
    ScPixelSink(SmImagerFrame* frame, StRGBA32Pixel const* palette, unsigned long indexID)
        : mFrame(frame), mPalette(palette), mRow(frame), mSize(frame->GetSize()), mPixelID(frame->PixelID()) {
        mTakesIndices = mPixelID == indexID;
        mTakesColorRows = ColorRecords::Contains(mPixelID) && HasPlainRows(frame);
    }

    /// Rows and columns of the frame.
    StPoint const& Size() const { return mSize; }

    /// The whole frame shows the palette's first colour.
    void EraseToFirstColor() {
        mFrame->SetBackground(mPalette[0]);
        mFrame->Erase();
        if (!mTakesIndices || mSize.horizontal == 0) return;
        // The background is the index nearest to the colour, and another entry may pass for it.
        for (long y = 0; y < mSize.vertical; ++y) {
            std::memset(mRow.At(y), 0, static_cast<std::size_t>(mFrame->BytesPerRow()));
        }
    }

    /// Stores `count` pixels from (x, y) to the right.
    template <class Source>
    void Place(std::int64_t x, std::int64_t y, std::int64_t count, Source const& source) {
        if (y < 0 || y >= mSize.vertical || x >= mSize.horizontal) return;
        long const left = static_cast<long>(x);
        long const row = static_cast<long>(y);
        long const columns = static_cast<long>(std::min<std::int64_t>(count, mSize.horizontal - x));
        if constexpr (Source::kIndexed) {
            if (mTakesIndices) {
                StoreIndices(left, row, columns, source);
            } else {
                StoreColors(left, row, columns, [&](long i) { return mPalette[source(i)]; });
            }
        } else {
            StoreColors(left, row, columns, source);
        }
    }

  private:
    template <class Source>
    void StoreIndices(long left, long y, long columns, Source const& source) {
        void* const row = mRow.At(y);
        MappedRecords::Visit(mPixelID, [&]<class Record>(Record record) {
            for (long i = 0; i < columns; ++i) {
                record.index = source(i);
                pixel::StorePixel(row, left + i, record);
            }
        });
    }

    template <class Colors>
    void StoreColors(long left, long y, long columns, Colors const& colors) {
        if (!mTakesColorRows) {
            for (long i = 0; i < columns; ++i) {
                StRGBA32Pixel const color = colors(i);
                mFrame->PutPixelAt(left + i, y, color);
            }
            return;
        }
        void* const row = mRow.At(y);
        ColorRecords::Visit(mPixelID, [&]<class Record>(Record record) {
            for (long i = 0; i < columns; ++i) {
                pixel::LoadPixel(row, left + i, record);
                pixel::SetRGBA32(record, colors(i));
                pixel::StorePixel(row, left + i, record);
            }
        });
    }

    SmImagerFrame* mFrame;
    StRGBA32Pixel const* mPalette;
    ScLockedRow mRow;
    StPoint mSize;
    unsigned long mPixelID;
    bool mTakesIndices = false;
    bool mTakesColorRows = false;
};

}  // namespace bmp
