// Who wants to know what is drawn into an image: ScLayerCallback, called by the drawing operations of
// SmImagerImage after they have drawn. An image calls its callbacks in the order in which they came to it, on
// the thread that draws.
#pragma once

#include <cstdint>

#include "framewright/thornmere/export.h"

class SmImagerImage;
struct StReferenceCountableFunctionTable;

/// A counted object of its own kind, made with `new` and a count of 1, and ended by the last
/// ReleaseReference. Not a managed object: it has no class object and is not cloned, so copies of an image
/// share its callbacks. Coordinates are columns, then rows.
class FRAMEWRIGHT_EXPORT ScLayerCallback {
  public:
    ScLayerCallback() = default;
    ScLayerCallback(ScLayerCallback const&) = delete;
    ScLayerCallback& operator=(ScLayerCallback const&) = delete;

    // The virtual operations, in slot order. `image` is the one that was drawn into, borrowed.

    virtual ~ScLayerCallback();
    virtual void OnBlendPixel(SmImagerImage* image, float blend, long x, long y) = 0;
    virtual void OnPutPixel(SmImagerImage* image, long x, long y) = 0;
    virtual void OnPutRun(SmImagerImage* image, long x, long y, long length) = 0;
    virtual void OnFillRect(SmImagerImage* image, long x, long y, long width, long height) = 0;
    /// Asked by SmImagerImage::SamplesMatch, `a` and `b` being the colours of the two samples as 0xAARRGGBB.
    /// `result` comes in as whether they match, `stop` false. If `result` goes out true the samples match,
    /// whatever else; with `stop` they do not, and either ends the walk. Else the next callback is asked,
    /// with the result that there was at first, which stands when all have been asked.
    virtual void OnCompareSamples(SmImagerImage* image, long x1, long y1, long x2, long y2, unsigned long a,
                                  unsigned long b, unsigned char which, bool& stop, bool& result) = 0;
    /// Called when the count reaches zero: deletes the object. Returns true.
    virtual bool DeleteThis();

    void AddReference() const { ++mReferenceCount; }
    void ReleaseReference() const;
    long ReferenceCount() const { return mReferenceCount; }
    /// How a type-erased reference counts these objects; it points to the ScLayerCallback.
    static StReferenceCountableFunctionTable const* GetReferenceCountableFunctionTable();

  private:
    mutable std::int32_t mReferenceCount = 1;
};
