// Holding what an operation leaves in a parameter that goes in and out.
#pragma once

#include "framewright/thornmere/object.h"

namespace media {

/// Goes into an operation as `object`, which is borrowed, or null. What comes out in its place is owned, and
/// released at the end of the scope, also when the operation threw behind it.
class StResult {
  public:
    explicit StResult(SmObject* given = nullptr) : object(given), mGiven(given) {}
    StResult(StResult const&) = delete;
    StResult& operator=(StResult const&) = delete;
    ~StResult() {
        if (IsNew()) object->ReleaseReference();
    }

    bool IsNew() const { return object && object != mGiven; }

    SmObject* object;

  private:
    SmObject* const mGiven;
};

}  // namespace media
