#include "framewright/imagery/subframe.h"

#include <algorithm>
#include <cstddef>

#include "framewright/core/startup.h"
#include "framewright/frame/row_lock.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);

SM_DEFINE_CLASS(SmImagerSubframe);

namespace {

/// Sums and products keep their low 32 bits.
std::int32_t Translated(long place, std::int32_t spacing, std::int32_t start) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(place) * static_cast<std::uint32_t>(spacing) +
                                     static_cast<std::uint32_t>(start));
}

std::int32_t Distance(std::int32_t from, std::int32_t to) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from));
}

}  // namespace

// --- life

void SmImagerSubframe::IImagerSubframe(SmImagerFrame* parent, StRect const& subrect, long columnSpacing,
                                       long lineSpacing) {
    IImagerFrame();
    mKept = parent;
    TakeParent(parent);
    SetSubrect(subrect);
    SetColumnSpacing(columnSpacing);
    SetLineSpacing(lineSpacing);
    mSize = {Distance(subrect.top, subrect.bottom), Distance(subrect.left, subrect.right)};
    mPurpose = static_cast<std::int32_t>(parent->GetPurpose());
    mDithering = static_cast<std::uint32_t>(parent->GetDithering());
}

void SmImagerSubframe::CloneFrom(SmImagerSubframe const& other) {
    SmImagerFrame::CloneFrom(other);
    mKept = other.mParent;
    TakeParent(other.mParent);
    mSubrect = other.mSubrect;
    mLineSpacing = other.mLineSpacing;
    mColumnSpacing = other.mColumnSpacing;
    mLeft = other.mLeft;
    mTop = other.mTop;
    mFloatLineSpacing = other.mFloatLineSpacing;
    mFloatColumnSpacing = other.mFloatColumnSpacing;
}

void SmImagerSubframe::Free() {
    TakeParent(nullptr);
    mKept = nullptr;
    SmImagerFrame::Free();
}

void SmImagerSubframe::TakeParent(SmImagerFrame* parent) {
    mParent = parent;
    mLayer = dynamic_cast<frame::SmLayerBase*>(parent);
}

// --- fields

void SmImagerSubframe::SetParent(SmImagerFrame* parent) {
    TakeParent(parent);
}

void SmImagerSubframe::SetSubrect(StRect const& subrect) {
    mSubrect = subrect;
    mLeft = static_cast<float>(subrect.left);
    mTop = static_cast<float>(subrect.top);
}

void SmImagerSubframe::SetLineSpacing(long spacing) {
    mLineSpacing = static_cast<std::int32_t>(spacing);
    mFloatLineSpacing = static_cast<float>(mLineSpacing);
}

void SmImagerSubframe::SetColumnSpacing(long spacing) {
    mColumnSpacing = static_cast<std::int32_t>(spacing);
    mFloatColumnSpacing = static_cast<float>(mColumnSpacing);
}

// --- translation

std::int32_t SmImagerSubframe::ColumnOf(long x) const {
    return Translated(x, mColumnSpacing, mSubrect.left);
}

std::int32_t SmImagerSubframe::RowOf(long y) const {
    return Translated(y, mLineSpacing, mSubrect.top);
}

StPoint SmImagerSubframe::PlaceOf(StPoint const& point) const {
    return {RowOf(point.vertical), ColumnOf(point.horizontal)};
}

StRect SmImagerSubframe::AreaOf(StRect const& rect) const {
    return {RowOf(rect.top), ColumnOf(rect.left), RowOf(rect.bottom), ColumnOf(rect.right)};
}

std::optional<StPoint> SmImagerSubframe::Raster() const {
    if (!mLayer) return std::nullopt;
    // Not the virtual operation: the raster of a mipmap is larger than what it shows.
    return mLayer->SmImagerFrame::GetSize();
}

long SmImagerSubframe::ReadableRow(long y) const {
    long const row = RowOf(y);
    std::optional<StPoint> const raster = Raster();
    return raster ? std::clamp(row, 0L, std::max(long{raster->vertical} - 1, 0L)) : row;
}

// --- rows

bool SmImagerSubframe::LockRows(long first, long last) {
    for (long row = first; row <= last; ++row)
        if (!LockParentRow(row)) return false;
    return true;
}

void SmImagerSubframe::UnlockRows(long first, long last) {
    for (long row = first; row <= last; ++row)
        UnlockRow(row);
}

void* SmImagerSubframe::LockRow(long row) {
    auto* const start = static_cast<std::byte*>(LockParentRow(row));
    return start ? start + (PixelSize() * mSubrect.left + 7) / 8 : nullptr;
}

void* SmImagerSubframe::LockParentRow(long y) {
    long const row = ReadableRow(y);
    try {
        return mParent->LockRow(row);
    } catch (...) {
        // Nobody who holds a window knows whether the layer behind it counts such a lock.
        frame::GiveBackFailedLock(*mParent, row);
        throw;
    }
}

void SmImagerSubframe::UnlockRow(long row) {
    mParent->UnlockRow(ReadableRow(row));
}

void* SmImagerSubframe::GetRow(long row) {
    return mParent->GetRow(ReadableRow(row));
}

// --- pixels

/// Calls access(column, row) with the place of a pixel in the parent, or the nearest that it has.
template <class Access>
void SmImagerSubframe::Read(long x, long y, Access const& access) const {
    long column = ColumnOf(x);
    long row = RowOf(y);
    if (std::optional<StPoint> const raster = Raster()) {
        if (!SrHasPixels(*raster)) return;
        column = std::clamp(column, 0L, long{raster->horizontal} - 1);
        row = std::clamp(row, 0L, long{raster->vertical} - 1);
    }
    access(column, row);
}

/// The same, for a place that the parent has.
template <class Access>
void SmImagerSubframe::Write(long x, long y, Access const& access) const {
    StPoint const place{RowOf(y), ColumnOf(x)};
    std::optional<StPoint> const raster = Raster();
    if (!raster || SrInsideFrame(place, *raster)) access(long{place.horizontal}, long{place.vertical});
}

void SmImagerSubframe::GetPixelAt(long x, long y, StRGBA32Pixel& pixel) {
    Read(x, y, [&](long column, long row) { mParent->GetPixelAt(column, row, pixel); });
}
void SmImagerSubframe::GetPixelAt(long x, long y, StColorFloats& pixel) {
    Read(x, y, [&](long column, long row) { mParent->GetPixelAt(column, row, pixel); });
}
void SmImagerSubframe::GetPixelAt(long x, long y, StRGBAFloatPixel& pixel) {
    Read(x, y, [&](long column, long row) { mParent->GetPixelAt(column, row, pixel); });
}
void SmImagerSubframe::GetPixelAt(long x, long y, float& intensity) {
    Read(x, y, [&](long column, long row) { mParent->GetPixelAt(column, row, intensity); });
}
void SmImagerSubframe::GetPixelAt(long x, long y, StAlpha8Pixel& opacity) {
    Read(x, y, [&](long column, long row) { mParent->GetPixelAt(column, row, opacity); });
}
void SmImagerSubframe::GetPixelAt(long x, long y, ScSmartPixel* pixel) {
    Read(x, y, [&](long column, long row) { mParent->GetPixelAt(column, row, pixel); });
}
void SmImagerSubframe::GetPixelAt(long x, long y, void* record) {
    Read(x, y, [&](long column, long row) { mParent->GetPixelAt(column, row, record); });
}

void SmImagerSubframe::PutPixelAt(long x, long y, StRGBA32Pixel const& pixel) {
    Write(x, y, [&](long column, long row) { mParent->PutPixelAt(column, row, pixel); });
}
void SmImagerSubframe::PutPixelAt(long x, long y, StColorFloats const& pixel) {
    Write(x, y, [&](long column, long row) { mParent->PutPixelAt(column, row, pixel); });
}
void SmImagerSubframe::PutPixelAt(long x, long y, StRGBAFloatPixel const& pixel) {
    Write(x, y, [&](long column, long row) { mParent->PutPixelAt(column, row, pixel); });
}
void SmImagerSubframe::PutPixelAt(long x, long y, StDepthFloatPixel const& depth) {
    Write(x, y, [&](long column, long row) { mParent->PutPixelAt(column, row, depth); });
}
void SmImagerSubframe::PutPixelAt(long x, long y, StAlpha8Pixel const& opacity) {
    Write(x, y, [&](long column, long row) { mParent->PutPixelAt(column, row, opacity); });
}
void SmImagerSubframe::PutPixelAt(long x, long y, ScSmartPixel const* pixel) {
    Write(x, y, [&](long column, long row) { mParent->PutPixelAt(column, row, pixel); });
}
void SmImagerSubframe::PutPixelAt(long x, long y, void const* record) {
    Write(x, y, [&](long column, long row) { mParent->PutPixelAt(column, row, record); });
}
void SmImagerSubframe::DrawPixelAt(long x, long y) {
    Write(x, y, [&](long column, long row) { mParent->DrawPixelAt(column, row); });
}
void SmImagerSubframe::MergePixelAt(long x, long y, StRGBA32Pixel pixel) {
    Write(x, y, [&](long column, long row) { mParent->MergePixelAt(column, row, pixel); });
}

StRGBA32Pixel SmImagerSubframe::GetRGBAPixelAt(long x, long y) {
    StRGBA32Pixel color{};
    Read(x, y, [&](long column, long row) { color = mParent->GetRGBAPixelAt(column, row); });
    return color;
}
unsigned long SmImagerSubframe::GetRGBAPixelAsLong(long x, long y) {
    unsigned long word = 0;
    Read(x, y, [&](long column, long row) { word = mParent->GetRGBAPixelAsLong(column, row); });
    return word;
}

void SmImagerSubframe::GetFractionalSmartPixel(float x, float y, ScSmartPixel* pixel) {
    mParent->GetFractionalSmartPixel(x * mFloatColumnSpacing + mLeft, y * mFloatLineSpacing + mTop, pixel);
}

// --- textures

template <class Value>
void SmImagerSubframe::ReadTexture(float u, float v, Value& value, StTilingStyles const& tiling,
                                   float width) const {
    // The columns' values for both axes, in pixels: see the header.
    mParent->GetFractionalUVPixel(u * mFloatColumnSpacing + mLeft, v * mFloatColumnSpacing + mLeft, value,
                                  tiling, width);
}

void SmImagerSubframe::GetFractionalUVPixel(float u, float v, StColorFloats& pixel,
                                            StTilingStyles const& tiling, float width) {
    ReadTexture(u, v, pixel, tiling, width);
}
void SmImagerSubframe::GetFractionalUVPixel(float u, float v, float& intensity, StTilingStyles const& tiling,
                                            float width) {
    ReadTexture(u, v, intensity, tiling, width);
}
void SmImagerSubframe::GetFractionalUVPixel(float u, float v, StRGBA32Pixel& pixel,
                                            StTilingStyles const& tiling, float width) {
    ReadTexture(u, v, pixel, tiling, width);
}
void SmImagerSubframe::GetUVDerivatives(float u, float v, float& du, float& dv, StTilingStyles const& tiling,
                                        float width) {
    mParent->GetUVDerivatives(u * mFloatColumnSpacing + mLeft, v * mFloatColumnSpacing + mLeft, du, dv,
                              tiling, width);
}

// --- the rest of what the parent does

SmImagerFrame* SmImagerSubframe::MirrorLayer() {
    auto mirror = StRef<SmImagerFrame>::Adopt(mParent->CloneAtNewSize(mSize, false, false));
    SrThrowIfNIL(mirror.Get());
    mirror->CopyFromLayer(this);
    return mirror.Release();
}

SmImagerFrame* SmImagerSubframe::CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) {
    return mParent->CloneAtNewSize(size, spooled, nativeBitmap);
}

void SmImagerSubframe::MoveFrame(void* base, StPoint const& topLeft, StPoint const& size) {
    mParent->MoveFrame(base, topLeft, size);
}

void SmImagerSubframe::Resize(StPoint const& size, StImageInterpolationMethod method) {
    mParent->Resize(size, method);
}

void SmImagerSubframe::EnsureScreenSafe(StRect const& rect) {
    mParent->EnsureScreenSafe(AreaOf(rect));
}
