// The stream of a location for as long as it is needed.
#pragma once

#include <utility>

#include "framewright/media/media_location.h"

namespace media {

/// Who wrote to the stream ends with Release, which reports what the end of the scope cannot.
class StStreamUse {
  public:
    StStreamUse(ScMediaLocation* location, StFilePermission permission, StFileInfo const& info)
        : mLocation(location), mStream(location->GetStream(permission, info, kCreateIfMissing)) {}
    StStreamUse(StStreamUse const&) = delete;
    StStreamUse& operator=(StStreamUse const&) = delete;
    ~StStreamUse() {
        try {
            Release();
        } catch (...) {
            // Something else has failed already, or nothing was written.
        }
    }
    void Release() {
        if (SmStream* const stream = std::exchange(mStream, nullptr)) mLocation->ReleaseStream(stream);
    }

    /// Null when there is none.
    SmStream* Get() const { return mStream; }

  private:
    ScMediaLocation* mLocation;
    SmStream* mStream;
};

}  // namespace media
