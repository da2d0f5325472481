// Windows: rectangles. A plain window hands each rectangle to its parent, translated; a spaced one takes it
// apart into rows, columns or pixels. Which rows and columns of the source meet which of the parent is as odd
// as it looks in the spaced cases, and kept.
#include <algorithm>
#include <memory>

#include "framewright/imagery/subframe.h"
#include "framewright/pixel/smart_pixel.h"

namespace {

/// Calls visit(place) for each place from `first` on, below `end`, by `step`; nothing where a step leads
/// nowhere. Ends with false as soon as a visit does.
template <class Visit>
bool EachStep(long first, long end, long step, Visit const& visit) {
    if (step < 1) return true;
    for (long place = first; place < end; place += step)
        if (!visit(place)) return false;
    return true;
}

/// The first place of those from `first` on, by `step`, that is not negative.
std::int32_t FirstInside(std::int32_t first, std::int32_t step) {
    if (first >= 0 || step < 1) return first;
    long const behind = first % step;
    return static_cast<std::int32_t>(behind < 0 ? behind + step : behind);
}

long WidthOf(StRect const& rect) {
    return long{rect.right} - rect.left;
}
long HeightOf(StRect const& rect) {
    return long{rect.bottom} - rect.top;
}
bool SameSize(StRect const& a, StRect const& b) {
    return WidthOf(a) == WidthOf(b) && HeightOf(a) == HeightOf(b);
}

StRect RectOf(long top, long left, long bottom, long right) {
    return {static_cast<std::int32_t>(top), static_cast<std::int32_t>(left),
            static_cast<std::int32_t>(bottom), static_cast<std::int32_t>(right)};
}
StPoint PointOf(long vertical, long horizontal) {
    return {static_cast<std::int32_t>(vertical), static_cast<std::int32_t>(horizontal)};
}

/// The size of the raster of a layer, outside of which nothing is to be touched. None for frames that are no
/// layers: they look after themselves.
std::optional<StPoint> RasterOf(SmImagerFrame* source) {
    auto* const layer = dynamic_cast<frame::SmLayerBase*>(source);
    if (!layer) return std::nullopt;
    return layer->SmImagerFrame::GetSize();
}

bool HasPixel(std::optional<StPoint> const& raster, long x, long y) {
    return !raster || (x >= 0 && y >= 0 && x < raster->horizontal && y < raster->vertical);
}

/// One axis of a nearest-pixel copy, over the places `start` to `end` of the destination.
struct StNearestAxis {
    StNearestAxis(long start, long end) : start(start), steps(end - start - 1) {
        if (steps > 1) --steps;
    }
    /// A destination place, scaled to a length of so many steps. There must be steps.
    long At(long place, long ofSteps) const {
        // Unsigned, so that no product of two distances overflows.
        auto const product = static_cast<unsigned long>(place - start) * static_cast<unsigned long>(ofSteps);
        return static_cast<long>(product) / steps;
    }

    long start;
    long steps;
};

/// The steps across a source of so many pixels.
long SourceSteps(long length) {
    return length > 1 ? length - 1 : length;
}
/// The steps across a mask over so many pixels.
long MaskSteps(long length) {
    return length > 0 ? length - 1 : 1;
}

}  // namespace

// --- filling

void SmImagerSubframe::Erase() {
    std::unique_ptr<ScSmartPixel> const smart(mParent->NewSmartPixel());
    StRGBA32Pixel background{};
    mParent->GetBackground(background);
    smart->SetRGBA32(background);
    RectFill(SrWholeRect(mSize), smart.get());
}

void SmImagerSubframe::RectFill(StRect const& rect, ScSmartPixel* pixel) {
    StRect const area = AreaOf(rect);
    if (IsPlain()) {
        mParent->RectFill(area, pixel);
    } else if (mColumnSpacing == 1) {
        EachStep(mSubrect.top, mSubrect.bottom, mLineSpacing, [&](long row) {
            mParent->RectFill(RectOf(row, area.left, row + 1, area.right), pixel);
            return true;
        });
    } else if (mLineSpacing == 1) {
        EachStep(mSubrect.left, mSubrect.right, mColumnSpacing, [&](long column) {
            mParent->RectFill(RectOf(area.top, column, area.bottom, column + 1), pixel);
            return true;
        });
    } else {
        EachParentPixel([&](long column, long row) { mParent->PutPixelAt(column, row, pixel); });
    }
}

/// Calls access(column, row) for each pixel of the parent that the rectangle and the spacings meet.
template <class Access>
void SmImagerSubframe::EachParentPixel(Access const& access) const {
    StRect area = mSubrect;
    if (std::optional<StPoint> const raster = Raster()) {
        // A rectangle may reach far beyond what there is.
        area.top = FirstInside(area.top, mLineSpacing);
        area.left = FirstInside(area.left, mColumnSpacing);
        area.bottom = std::min(area.bottom, raster->vertical);
        area.right = std::min(area.right, raster->horizontal);
    }
    EachStep(area.top, area.bottom, mLineSpacing, [&](long row) {
        return EachStep(area.left, area.right, mColumnSpacing, [&](long column) {
            access(column, row);
            return true;
        });
    });
}

void SmImagerSubframe::Invert() {
    EachParentPixel([this](long column, long row) {
        StRGBA32Pixel color{};
        mParent->GetPixelAt(column, row, color);
        StRGBA32Pixel const inverse{static_cast<std::uint8_t>(255 - color.blue),
                                    static_cast<std::uint8_t>(255 - color.green),
                                    static_cast<std::uint8_t>(255 - color.red), color.alpha};
        mParent->PutPixelAt(column, row, inverse);
    });
}

void SmImagerSubframe::Flip(bool, bool) {
    Invert();
}

// --- copying

bool SmImagerSubframe::BlitRect(SmImagerFrame* source, StRect const& from, StPoint const& to) {
    if (IsPlain()) return mParent->BlitRect(source, from, PlaceOf(to));
    auto const blit = [&](StRect const& part, StPoint const& place) {
        return mParent->BlitRect(source, part, place);
    };
    auto const eachRow = [&](auto const& visit) {
        return EachStep(to.vertical, to.vertical + HeightOf(from), mLineSpacing, visit);
    };
    if (mColumnSpacing == 1) {
        return eachRow([&](long r) {
            return blit(RectOf(r, from.left, r + 1, from.right), {RowOf(r), ColumnOf(to.horizontal)});
        });
    }
    if (mLineSpacing == 1) {
        return EachStep(mSubrect.left, mSubrect.right, mColumnSpacing, [&](long c) {
            return blit(RectOf(from.top, c, from.bottom, c + 1), {RowOf(to.vertical), ColumnOf(c)});
        });
    }
    return eachRow([&](long r) {
        return EachStep(to.horizontal, to.horizontal + WidthOf(from), mColumnSpacing, [&](long c) {
            return blit(RectOf(r, c, r + 1, c + 1), {RowOf(r), ColumnOf(c)});
        });
    });
}

/// Nothing but BlitRect of a layer asks for this, of itself; a window's copies are its parent's.
bool SmImagerSubframe::DissimilarBlit(SmImagerFrame* source, StRect const& from, StPoint const& to) {
    return BlitRect(source, from, to);
}

bool SmImagerSubframe::MergeRect(SmImagerFrame* source, StRect const& from, StPoint const& to) {
    if (IsPlain()) return MergePart(source, from, PlaceOf(to));
    bool result = true;
    auto const merge = [&](StRect const& part, long y, long x) {
        if (!MergePart(source, part, {RowOf(y), ColumnOf(x)})) result = false;
        return true;
    };
    auto const rowFor = [&](long r) { return to.vertical + r - from.top; };
    auto const columnFor = [&](long c) { return to.horizontal + c - from.left; };
    auto const eachColumn = [&](auto const& visit) {
        return EachStep(mSubrect.left, mSubrect.right, mColumnSpacing, visit);
    };
    if (mColumnSpacing == 1) {
        EachStep(from.top, from.bottom, mLineSpacing, [&](long r) {
            return merge(RectOf(r, from.left, r + 1, from.right), rowFor(r), to.horizontal);
        });
    } else if (mLineSpacing == 1) {
        eachColumn([&](long c) {
            return merge(RectOf(from.top, c, from.bottom, c + 1), to.vertical, columnFor(c));
        });
    } else {
        EachStep(mSubrect.top, mSubrect.bottom, mLineSpacing, [&](long r) {
            return eachColumn(
                [&](long c) { return merge(RectOf(r, c, r + 1, c + 1), rowFor(r), columnFor(c)); });
        });
    }
    return result;
}

/// Merges what of `part` lies in the source and, at `place`, in the parent: layers clip no merge themselves,
/// and rows and columns that are counted from a window's rectangle may lie anywhere.
bool SmImagerSubframe::MergePart(SmImagerFrame* source, StRect const& part, StPoint const& place) const {
    long const down = long{place.vertical} - part.top, across = long{place.horizontal} - part.left;
    StRect const area = MergeableArea(source);
    long top = std::max(part.top, area.top), left = std::max(part.left, area.left);
    long bottom = std::min(part.bottom, area.bottom), right = std::min(part.right, area.right);
    if (std::optional<StPoint> const raster = Raster()) {
        top = std::max(top, -down);
        left = std::max(left, -across);
        bottom = std::min(bottom, raster->vertical - down);
        right = std::min(right, raster->horizontal - across);
    }
    // Nothing is left to merge, but the answer is the parent's all the same.
    if (top >= bottom || left >= right)
        return mParent->MergeRect(source, {part.top, part.left, part.top, part.left}, place);
    return mParent->MergeRect(source, RectOf(top, left, bottom, right), PointOf(top + down, left + across));
}

/// What a merge into the parent may read of `source`. A window looks after its rows and pixels, but of a
/// window of the parent's own pixel type whole rows are read, from column 0 of the layer behind it on.
StRect SmImagerSubframe::MergeableArea(SmImagerFrame* source) const {
    StRect area{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    SmImagerFrame* behind = source;
    while (auto* const window = dynamic_cast<SmImagerSubframe*>(behind))
        behind = window->GetParent();
    std::optional<StPoint> const raster = RasterOf(behind);
    if (!raster) return area;
    if (behind == source) return SrWholeRect(*raster);
    if (source->PixelID() == mParent->PixelID()) {
        area.left = 0;
        area.right = raster->horizontal;
    }
    return area;
}

// --- scaling

bool SmImagerSubframe::StretchBlit(SmImagerFrame* source, StRect const& from, StRect const& to) {
    if (SameSize(from, to)) return BlitRect(source, from, {to.top, to.left});
    if (IsPlain()) return mParent->StretchBlit(source, from, AreaOf(to));
    CopyNearest(source, nullptr, from, to);
    return true;
}

bool SmImagerSubframe::StretchBlitFast(SmImagerFrame* source, StRect const& from, StRect const& to) {
    if (IsPlain() && !SameSize(from, to)) return mParent->StretchBlitFast(source, from, AreaOf(to));
    return StretchBlit(source, from, to);
}

bool SmImagerSubframe::StretchBlitMasked(SmImagerFrame* source, SmImagerFrame* mask, StRect const& from,
                                         StRect const& to) {
    if (IsPlain()) return mParent->StretchBlitMasked(source, mask, from, AreaOf(to));
    CopyNearest(source, mask, from, to);
    return false;
}

/// `mask` may be null, for all.
void SmImagerSubframe::CopyNearest(SmImagerFrame* source, SmImagerFrame* mask, StRect const& from,
                                   StRect const& to) {
    StRect const area = AreaOf(to);
    StNearestAxis const rows(area.top, area.bottom), columns(area.left, area.right);
    if (rows.steps == 0 || columns.steps == 0) return;
    // A smart pixel takes the records of its own kind alone.
    bool const alike = source->PixelID() == PixelID();
    std::unique_ptr<ScSmartPixel> const smart(alike ? NewSmartPixel() : source->NewSmartPixel());
    std::optional<StPoint> const sourceRaster = RasterOf(source);
    std::optional<StPoint> const maskRaster = mask ? RasterOf(mask) : std::nullopt;
    auto const masked = [&](long column, long row) {
        if (!mask) return false;
        long const x = columns.At(column, MaskSteps(WidthOf(to)));
        long const y = rows.At(row, MaskSteps(HeightOf(to)));
        StAlpha8Pixel opacity{0};
        if (HasPixel(maskRaster, x, y)) mask->GetPixelAt(x, y, opacity);
        return opacity.alpha == 0;
    };
    EachStep(area.top, area.bottom, mLineSpacing, [&](long row) {
        return EachStep(area.left, area.right, mColumnSpacing, [&](long column) {
            // Top for x and left for y, and a place that PutPixelAt translates once more: see the header.
            long const x = columns.At(column, SourceSteps(WidthOf(from))) + from.top;
            long const y = rows.At(row, SourceSteps(HeightOf(from))) + from.left;
            if (!HasPixel(sourceRaster, x, y) || masked(column, row)) return true;
            source->GetPixelAt(x, y, smart.get());
            PutPixelAt(column, row, smart.get());
            return true;
        });
    });
}
