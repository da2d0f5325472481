// SmImagerLayer: the class object, life, storage and rows.
#pragma once

#include "framewright/frame/layer.h"
#include "framewright/frame/storage_choice.h"
#include "framewright/thornmere/reference.h"

template <class Pixel, class Spool>
ScMC_* StClassFacts<SmImagerLayer<Pixel, Spool>>::Object() {
    return SrClassObjectOnFirstUse<SmImagerLayer<Pixel, Spool>>();
}

template <class Pixel, class Spool>
SmImagerLayer<Pixel, Spool>::SmImagerLayer() {
    this->mCountsFailedLocks = Spool::kRowsLeaveMemory;
}

template <class Pixel, class Spool>
SmImagerLayer<Pixel, Spool>::~SmImagerLayer() = default;

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::IImagerLayer(StPoint const& topLeft, StPoint const& size,
                                               [[maybe_unused]] bool nativeBitmap, void* base, long rowBytes,
                                               SmImagerFrame* parent) {
    try {
        this->TakeGeometry(topLeft, size, kKind.bits, Spool::kTableEntryBytes, base, rowBytes, parent);
        mSpooler.ISpooler(size.vertical, RowDistance(), nullptr);
        if constexpr (!Spool::kRowsLeaveMemory) {
            if (this->mOwnsBase) this->AllocateBlock(kKind, nativeBitmap);
            BindRows(this->RowStart(kKind.bits));
        }
    } catch (...) {
        mSpooler.TearDown();
        this->mSize = {0, 0};  // no rows are left to draw in, so no operation may find any
        throw;
    }
    this->mUpdated = false;
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::Free() {
    mSpooler.TearDown();
    frame::SmLayerBase::Free();
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::CloneFrom(SmImagerLayer const& other) {
    this->CloneGeometry(other);
    mForeground = other.mForeground;
    mBackground = other.mBackground;
    if constexpr (!Spool::kRowsLeaveMemory) {
        if (this->mOwnsBase) this->AllocateBlock(kKind, other.HasNativeBitmap());
    }
    mSpooler.ISpooler(this->mSize.vertical, RowDistance(), this->mBase);
    // This class's own copy: the pixels are of one kind, whatever a derived class makes of BlitRect.
    SmImagerLayer::BlitRect(const_cast<SmImagerLayer*>(&other), SrWholeRect(this->mSize), {0, 0});
}

template <class Pixel, class Spool>
SmImagerFrame* SmImagerLayer<Pixel, Spool>::MirrorLayer() {
    using Mirror = SmImagerLayer<Pixel, ScImagerNonSpool>;
    auto mirror = StRef<Mirror>::Adopt(Mirror::New());
    SrThrowIfNIL(mirror.Get());
    StPoint const size = this->GetSize();  // a frame may show less than it stores
    mirror->IImagerLayer(this->mTopLeft, size, false, nullptr, 0, nullptr);
    mirror->BlitRect(this, SrWholeRect(size), {0, 0});
    return mirror.Release();
}

template <class Pixel, class Spool>
SmImagerFrame* SmImagerLayer<Pixel, Spool>::CloneAtNewSize(StPoint const& size, bool spooled,
                                                           bool nativeBitmap) {
    return frame::WithSpooler(spooled, [&]<class Storage>(std::type_identity<Storage>) -> SmImagerFrame* {
        using Layer = SmImagerLayer<Pixel, Storage>;
        auto layer = StRef<Layer>::Adopt(Layer::New());
        SrThrowIfNIL(layer.Get());
        layer->IImagerLayer({0, 0}, size, nativeBitmap, nullptr, 0, nullptr);
        return layer.Release();
    });
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::Resize(StPoint const& size, StImageInterpolationMethod) {
    if (size == this->mSize) return;
    this->mUpdated = true;
    try {
        [[maybe_unused]] bool const native = this->HasNativeBitmap();
        if (this->mOwnsBase) this->ReleaseBlock();
        this->mSize = size;
        if (this->mOwnsBase) this->ComputeRowBytes(kKind.bits);
        this->RefuseOverLimit(Spool::kTableEntryBytes);
        if constexpr (!Spool::kRowsLeaveMemory) {
            if (this->mOwnsBase) this->AllocateBlock(kKind, native);
        }
        mSpooler.Resize(size.vertical, RowDistance(), this->RowStart(kKind.bits));
    } catch (...) {
        // No rows are left to draw in, so no operation may find any.
        if (this->mOwnsBase) this->ReleaseBlock();
        if constexpr (!Spool::kRowsLeaveMemory) BindRows(nullptr);
        this->mSize = {0, 0};
        throw;
    }
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::MoveFrame(StRect const& rect) {
    this->mTopLeft = {rect.top, rect.left};
    auto const distance = [](std::int32_t from, std::int32_t to) {
        return static_cast<std::int32_t>(std::int64_t{to} - from);
    };
    this->Resize({distance(rect.top, rect.bottom), distance(rect.left, rect.right)},
                 StImageInterpolationMethod::kNone);
    bool const unbound = Spool::kRowsLeaveMemory || this->mOwnsBase;
    BindRows(unbound ? nullptr : this->PlaceInBlock(kKind.bits));
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::MoveFrame(void* base, StPoint const& topLeft, StPoint const& size) {
    if (base == this->mBase && topLeft == this->mTopLeft && size == this->mSize) return;
    this->mBase = base;
    if (topLeft != this->mTopLeft && size == this->mSize) {
        this->mTopLeft = topLeft;
        BindRows(this->RowStart(kKind.bits));
    }
    this->Resize(size, StImageInterpolationMethod::kNone);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::ResetBaseAddress(void* base) {
    this->mBase = base;
    BindRows(this->PlaceInBlock(kKind.bits));
}

template <class Pixel, class Spool>
bool SmImagerLayer<Pixel, Spool>::LockRows(long first, long last) {
    return mSpooler.LockRows(first, last, this);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::UnlockRows(long first, long last) {
    mSpooler.UnlockRows(first, last);
}

template <class Pixel, class Spool>
void* SmImagerLayer<Pixel, Spool>::LockRow(long row) {
    return mSpooler.Lock(row, this);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::UnlockRow(long row) {
    mSpooler.Unlock(row);
}

template <class Pixel, class Spool>
void* SmImagerLayer<Pixel, Spool>::GetRow(long row) {
    return Row(row);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::ForceContiguous() {
    mSpooler.ForceContiguous();
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::ReleaseContiguous() {
    mSpooler.ReleaseContiguous();
}

template <class Pixel, class Spool>
bool SmImagerLayer<Pixel, Spool>::IsContiguous() {
    return mSpooler.IsContiguous();
}
