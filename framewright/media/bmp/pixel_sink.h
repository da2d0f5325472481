// Where the pixels of a BMP file go.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "framewright/media/bmp/row_conversion.h"
#include "framewright/media/bmp/row_records.h"

namespace bmp {

/// A frame that takes stretches of pixels, in the forms of pixel_forms.h; what falls outside of it is
/// dropped.
///
/// An index goes as it is into a frame of the file's own mapped type, so that a palette shows exactly
/// whatever its colours, and into any other frame as its colour. Only a frame with plain rows is of that
/// type: a class that a host derives from it gets colours, through its own operations.
class ScPixelSink {
  public:
    /// `indexID` is the mapped type of the file's pixels, or 0 when the frame is not to take indices. The
    /// bytes of a new frame were never set: those that no pixel reaches become 0. (A frame without plain rows
    /// may look into a larger one: its rows are not its own to clear.)
    ScPixelSink(SmImagerFrame* frame, StRGBA32Pixel const* palette, unsigned long indexID, bool isNew)
        : mFrame(frame),
          mPalette(palette),
          mRow(frame),
          mSize(frame->GetSize()),
          mPixelID(frame->PixelID()),
          mIsNew(isNew),
          mHasPlainRows(HasPlainRows(frame)),
          mTakesIndices(mHasPlainRows && mPixelID == indexID),
          mTakesColorRows(mHasPlainRows && ColorRecords::Contains(mPixelID)) {}

    /// Rows and columns of the frame.
    StPoint const& Size() const { return mSize; }

    /// Called before the first pixels of a row are placed.
    void BeginRow(std::int64_t y) {
        if (mIsNew && mHasPlainRows) ClearRow(static_cast<long>(y));
    }

    /// The whole frame shows the palette's first colour.
    void EraseToFirstColor() {
        mFrame->SetBackground(mPalette[0]);
        mFrame->Erase();
        // A mapped frame's background is an index near to the colour, and another entry may pass for it.
        if (mTakesIndices) ClearRows();
    }

    /// No pixels come at all.
    void LeaveEmpty() {
        if (!mIsNew) return;
        if (mHasPlainRows) {
            ClearRows();
            return;
        }
        for (long y = 0; y < mSize.vertical; ++y)
            PlaceColors({0, y, mSize.horizontal}, [](long) { return StRGBA32Pixel{}; });
    }

    /// Stores `count` pixels from (x, y) to the right.
    template <class Source>
    void Place(std::int64_t x, std::int64_t y, std::int64_t count, Source const& source) {
        if (y < 0 || y >= mSize.vertical || x >= mSize.horizontal) return;
        StStretch const to{static_cast<long>(x), static_cast<long>(y),
                           static_cast<long>(std::min<std::int64_t>(count, mSize.horizontal - x))};
        if constexpr (!Source::kIndexed) {
            PlaceColors(to, source);
        } else if (mTakesIndices) {
            PlaceIndices(to, source);
        } else {
            PlaceColors(to, [&](long i) { return mPalette[source(i)]; });
        }
    }

  private:
    struct StStretch {
        long left, row, columns;
    };

    template <class Indices>
    void PlaceIndices(StStretch const& to, Indices const& indices) {
        void* const row = mRow.At(to.row);
        MappedRecords::Visit(
            mPixelID, [&]<class Record>(Record) { StoreIndices<Record>(indices, row, to.left, to.columns); });
    }

    template <class Colors>
    void PlaceColors(StStretch const& to, Colors const& colors) {
        if (mTakesColorRows) {
            void* const row = mRow.At(to.row);
            ColorRecords::Visit(mPixelID, [&]<class Record>(Record) {
                StoreColors<Record>(colors, row, to.left, to.columns);
            });
            return;
        }
        for (long i = 0; i < to.columns; ++i) {
            StRGBA32Pixel const color = colors(i);
            mFrame->PutPixelAt(to.left + i, to.row, color);
        }
    }

    void ClearRow(long y) {
        auto const bytes = static_cast<std::size_t>(mFrame->BytesPerRow());
        if (bytes > 0) std::memset(mRow.At(y), 0, bytes);
    }
    void ClearRows() {
        if (mSize.horizontal == 0) return;
        for (long y = 0; y < mSize.vertical; ++y)
            ClearRow(y);
    }

    SmImagerFrame* mFrame;
    StRGBA32Pixel const* mPalette;
    ScLockedRow mRow;
    StPoint mSize;
    unsigned long mPixelID;
    bool mIsNew;
    bool mHasPlainRows;
    bool mTakesIndices;
    bool mTakesColorRows;
};

}  // namespace bmp
