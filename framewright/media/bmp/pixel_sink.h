// Where the pixels of a BMP file go.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "framewright/media/bmp/row_conversion.h"
#include "framewright/media/bmp/row_records.h"

namespace bmp {

/// What of a frame was never set: nothing, its pixels, or whole rows with what pads them. The rest of a row
/// is no part of a frame that lies in a larger block.
enum class StUnset { kNothing, kPixels, kRows };

/// A frame that takes stretches of pixels, in the forms of pixel_forms.h; what falls outside of it is
/// dropped.
///
/// An index goes as it is into a frame of the file's own mapped type, so that a palette shows exactly
/// whatever its colours, and into any other frame as its colour. Only a frame with plain rows is of that
/// type: a class that a host derives from it gets colours, through its own operations.
class ScPixelSink {
  public:
    /// `indexID` is the mapped type of the file's pixels, or 0 when the frame is not to take indices. What
    /// was never set becomes 0 where no pixel reaches it.
    ScPixelSink(SmImagerFrame* frame, StRGBA32Pixel const* palette, unsigned long indexID, StUnset unset)
        : mFrame(frame),
          mPalette(palette),
          mRow(frame),
          mSize(frame->GetSize()),
          mPixelID(frame->PixelID()),
          mUnset(unset),
          mHasPlainRows(HasPlainRows(frame)),
          mTakesIndices(mHasPlainRows && mPixelID == indexID),
          mTakesColorRows(mHasPlainRows && ColorRecords::Contains(mPixelID)) {
        std::int64_t const bits = unset == StUnset::kRows
                                      ? std::int64_t{frame->BytesPerRow()} * 8
                                      : std::int64_t{mSize.horizontal} * frame->PixelSize();
        mClearedBytes = static_cast<std::size_t>(bits / 8);
        mClearedBits = static_cast<int>(bits % 8);
    }

    /// Rows and columns of the frame.
    StPoint const& Size() const { return mSize; }

    /// Called before the first pixels of a row are placed.
    void BeginRow(std::int64_t y) {
        if (mUnset != StUnset::kNothing && mHasPlainRows) ClearRow(static_cast<long>(y));
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
        if (mUnset == StUnset::kNothing) return;
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
        auto* const row = static_cast<unsigned char*>(mRow.At(y));
        std::memset(row, 0, mClearedBytes);
        // Pixels run from the high bits of a byte to the low ones.
        if (mClearedBits > 0) row[mClearedBytes] &= static_cast<unsigned char>(0xFF >> mClearedBits);
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
    StUnset mUnset;
    bool mHasPlainRows;
    bool mTakesIndices;
    bool mTakesColorRows;
    std::size_t mClearedBytes;  ///< of a row, and how many bits of the byte behind them
    int mClearedBits;
};

}  // namespace bmp
