// The stream of a location for as long as it is needed.
#pragma once

#include "framewright/media/media_location.h"

namespace media {

class StStreamUse {
  public:
    StStreamUse(ScMediaLocation* location, StFilePermission permission, StFileInfo const& info)
        : mLocation(location), mStream(location->GetStream(permission, info, kCreateIfMissing)) {}
    StStreamUse(StStreamUse const&) = delete;
    StStreamUse& operator=(StStreamUse const&) = delete;
    ~StStreamUse() {
        if (mStream) mLocation->ReleaseStream(mStream);
    }

    /// Null when there is none.
    SmStream* Get() const { return mStream; }

  private:
    ScMediaLocation* mLocation;
    SmStream* mStream;
};

}  // namespace media
