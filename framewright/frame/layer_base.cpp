#include "framewright/frame/layer_base.h"

#include <cstdlib>
#include <utility>

#include "framewright/frame/frame_limit.h"
#include "framewright/frame/row_lock.h"
#include "framewright/platform/win_bitmap.h"
#include "framewright/spool/spool_locks.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

namespace frame {

bool StPixelKind::MayBeNative() const {
    return id == SrCode("Map8") || id == SrCode("RG15") || id == SrCode("RG24") || id == SrCode("RG32") ||
           id == SrCode("ColB");
}

void GiveBackFailedLock(SmImagerFrame& frame, long row) {
    auto const* const layer = dynamic_cast<SmLayerBase*>(&frame);
    if (layer && layer->CountsFailedLocks()) frame.UnlockRow(row);
}

SmLayerBase::~SmLayerBase() = default;

void SmLayerBase::Become(void const* other, StBecomeParts const& parts) {
    spool::StHold const registry(spool::gRegistryLock);
    spool::StHold const rows(spool::gRowLock);
    spool::StHold const storage(spool::gStorageLock);
    SmImagerFrame::Become(other, parts);
}

void SmLayerBase::Free() {
    ReleaseBlock();
    ReplaceParent(nullptr);
    SmImagerFrame::Free();
}

void SmLayerBase::TakeParent(SmImagerFrame* parent) {
    // In this order a parent that cannot be contiguous is not asked to end it either.
    parent->ForceContiguous();
    ReplaceParent(parent);
}

void SmLayerBase::ReplaceParent(SmImagerFrame* parent) {
    StRef<SmImagerFrame> const before = std::exchange(mParent, StRef<SmImagerFrame>(parent));
    if (before) before->ReleaseContiguous();
}

void SmLayerBase::TakeGeometry(StPoint const& topLeft, StPoint const& size, long bits,
                               std::size_t tableEntryBytes, void* base, long rowBytes,
                               SmImagerFrame* parent) {
    IImagerFrame();
    ReleaseBlock();
    mTopLeft = topLeft;
    mSize = size;
    mBase = base;
    mOwnsBase = !base;
    if (rowBytes != static_cast<std::int32_t>(rowBytes)) SrThrow(SkMemoryFull(), nullptr);
    mRowBytes = static_cast<std::int32_t>(rowBytes);
    if (rowBytes == 0) ComputeRowBytes(bits);
    RefuseOverLimit(tableEntryBytes);
    if (SrHasPixels(mSize) && std::abs(std::int64_t{mRowBytes}) < (mSize.horizontal * bits + 7) / 8)
        SrThrow(SkMemoryFull(), nullptr);
    if (parent) TakeParent(parent);
}

void SmLayerBase::CloneGeometry(SmLayerBase const& other) {
    SmImagerFrame::CloneFrom(other);
    mNativeImageContext = nullptr;
    mImageContextUses = 0;
    mNativeView = nullptr;
    mViewUses = 0;
    mNativeWindow = nullptr;
    mNativeGrafPtr = nullptr;
    mOwnsBase = other.mOwnsBase;
    mBase = mOwnsBase ? nullptr : other.mBase;
    mRowBytes = other.mRowBytes;
    if (other.mParent) TakeParent(other.mParent.Get());
}

void SmLayerBase::ComputeRowBytes(long bits) {
    long const bytes = (mSize.horizontal * bits + 31) / 32 * 4;
    // A frame without rows may be of any width.
    if (bytes > INT32_MAX && mSize.vertical > 0) SrThrow(SkMemoryFull(), nullptr);
    mRowBytes = static_cast<std::int32_t>(bytes);
}

void SmLayerBase::RefuseOverLimit(std::size_t tableEntryBytes) const {
    auto const limit = SrGetFrameSizeLimit();
    auto const fits = [limit](std::int64_t count, std::int64_t bytes) {
        return count >= 0 &&
               (count == 0 || (bytes >= 0 && static_cast<std::uint64_t>(bytes * count) <= limit));
    };
    bool const fine = mSize.horizontal >= 0 &&
                      fits(mSize.vertical, static_cast<std::int64_t>(tableEntryBytes)) &&
                      (!mOwnsBase || fits(mSize.vertical, mRowBytes));
    if (!fine) SrThrow(SkMemoryFull(), nullptr);
}

void SmLayerBase::AllocateBlock(StPixelKind const& kind, bool nativeBitmap) {
    mBlockBytes = static_cast<std::size_t>(mSize.vertical == 0 ? 0 : mRowBytes) *
                  static_cast<std::size_t>(mSize.vertical);
    if (nativeBitmap && kind.MayBeNative() && SrHasPixels(mSize)) {
        mBlock = SrCreateWinBitmap(mSize.horizontal, mSize.vertical, mRowBytes, kind.bits,
                                   static_cast<long>(kind.id), mNativeBitmap, mNativeImageContext, nullptr);
    } else {
        mBlock = SrAllocatePointer(mBlockBytes);
    }
    SrThrowIfNIL(mBlock);
    mBase = mBlock;
}

void SmLayerBase::ReleaseBlock() {
    if (mNativeBitmap) {
        SrDestroyWinBitmap(mNativeBitmap, mNativeImageContext);
    } else {
        SrDeallocatePointer(mBlock, mBlockBytes);
    }
    mBlock = nullptr;
    mBlockBytes = 0;
    if (mOwnsBase) mBase = nullptr;
}

void* SmLayerBase::PlaceInBlock(long bits) const {
    if (!mBase) return nullptr;
    std::ptrdiff_t const offset =
        std::ptrdiff_t{mTopLeft.vertical} * mRowBytes + mTopLeft.horizontal * bits / 8;
    return static_cast<std::byte*>(mBase) + offset;
}

void* SmLayerBase::GetNativeImageContext() {
    if (mNativeImageContext) ++mImageContextUses;
    return mNativeImageContext;
}

void SmLayerBase::ReleaseNativeImageContext() {
    if (mImageContextUses) --mImageContextUses;
}

TView* SmLayerBase::GetNativeViewContext() {
    if (mNativeView) ++mViewUses;
    return mNativeView;
}

void SmLayerBase::ReleaseNativeViewContext() {
    if (mViewUses) --mViewUses;
}

}  // namespace frame
