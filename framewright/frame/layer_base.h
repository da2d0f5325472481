// What a layer is apart from its pixels: its block, row bytes, parent, and the host's handles on it. Written
// once for all pixel types; SmImagerLayer (frame/layer.h) derives from it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "framewright/frame/frame.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/reference.h"

namespace frame {

/// What the storage of a layer must know of its pixel record.
struct StPixelKind {
    unsigned long id;  ///< PixelID
    long bits;         ///< PixelSize

    /// Whether a layer of the record may live in a bitmap of the host's imaging system.
    bool MayBeNative() const;
};

/// No class of its own to the object contract: its parent's class object stands for it.
///
/// A layer frees exactly the blocks that it allocated. A base that a caller gave, at initialisation or later,
/// is lent: it must outlive the layer or its next base, and is never freed here.
class FRAMEWRIGHT_EXPORT SmLayerBase : public SmImagerFrame {
  public:
    long BytesPerRow() override { return mRowBytes; }
    void SetUpdated(bool updated) override { mUpdated = updated; }
    bool GetUpdated() override { return mUpdated; }

    /// Whether a LockRow that throws is counted all the same, so that UnlockRow is due.
    bool CountsFailedLocks() const { return mCountsFailedLocks; }

    /// The frame whose pixels this layer looks into, or null; borrowed.
    SmImagerFrame* GetParent() const { return mParent.Get(); }

    void* GetNativeImageContext() override;
    void ReleaseNativeImageContext() override;
    void SetNativeImageContext(void* context) override { mNativeImageContext = context; }
    TView* GetNativeViewContext() override;
    void ReleaseNativeViewContext() override;
    void SetNativeViewContext(TView* view) override { mNativeView = view; }
    TView* ReportNativeViewContext() override { return mNativeView; }
    CGrafPort* GetNativeWindowContext() override { return mNativeWindow; }
    void ReleaseNativeWindowContext() override {}
    void SetNativeGrafPtr(CGrafPort* port) override { mNativeGrafPtr = port; }
    CGrafPort* GetNativeGrafPtr() override { return mNativeGrafPtr; }
    void EnsureScreenSafe(StRect const&) override {}
    void ReleaseScreenSafe() override {}

  protected:
    SmLayerBase() = default;
    ~SmLayerBase() override;
    /// Keeps other threads from evicting rows of this layer while its bytes are exchanged.
    void Become(void const* other, StBecomeParts const& parts);
    /// Gives back the block and the parent.
    void Free() override;

    /// The first half of initialisation: takes place, size, a lent base (or null) and the parent, which is
    /// asked to be contiguous; computes the row bytes where `rowBytes` is 0. -108 for a size that is negative
    /// or over the limit, and for row bytes, of either sign, that hold less than a row.
    void TakeGeometry(StPoint const& topLeft, StPoint const& size, long bits, std::size_t tableEntryBytes,
                      void* base, long rowBytes, SmImagerFrame* parent);
    /// The first half of cloning: the frame's fields, geometry and parent of `other`, and its base if that is
    /// lent. The host's handles start empty.
    void CloneGeometry(SmLayerBase const& other);

    /// Row bytes for the current size, -108 when they do not fit.
    void ComputeRowBytes(long bits);
    /// -108 for a size that is negative, or for rows or a table of rows over the limit; the table takes
    /// `tableEntryBytes` for each row.
    void RefuseOverLimit(std::size_t tableEntryBytes) const;
    /// Allocates the layer's own block for the current size and makes it the base; -108 when memory is
    /// refused.
    void AllocateBlock(StPixelKind const& kind, bool nativeBitmap);
    /// Gives the layer's own block back, and leaves base null if the layer owns it.
    void ReleaseBlock();
    bool HasNativeBitmap() const { return mNativeBitmap != nullptr; }

    /// Where row 0 lies: at base, and in a lent block at the place of top left in it. Null without a base.
    void* RowStart(long bits) const { return mOwnsBase ? mBase : PlaceInBlock(bits); }
    /// The place of top left in the block at base, whoever owns that; null without a base. Columns are
    /// truncated to whole bytes.
    void* PlaceInBlock(long bits) const;

    bool mUpdated = false;
    bool mCountsFailedLocks = false;
    void* mBase = nullptr;
    bool mOwnsBase = true;
    std::int32_t mRowBytes = 0;

  private:
    void TakeParent(SmImagerFrame* parent);
    /// Takes a parent that has been made contiguous, or none, and ends that of the one before.
    void ReplaceParent(SmImagerFrame* parent);

    void* mNativeImageContext = nullptr;
    void* mNativeBitmap = nullptr;  ///< non-null when mBlock is a native bitmap's
    std::int32_t mImageContextUses = 0;
    TView* mNativeView = nullptr;
    std::int32_t mViewUses = 0;
    CGrafPort* mNativeWindow = nullptr;  ///< nothing here sets it
    CGrafPort* mNativeGrafPtr = nullptr;
    StRef<SmImagerFrame> mParent;
    void* mBlock = nullptr;  ///< what this layer allocated
    std::size_t mBlockBytes = 0;
};

}  // namespace frame
