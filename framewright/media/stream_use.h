// The stream of a location for as long as it is needed.
#pragma once

#include <filesystem>
#include <system_error>
#include <utility>

#include "framewright/media/media_location.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/stream.h"

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

    /// Ends a file where the stream stands: what a longer one of that name had behind is no part of the new
    /// one. Only for files that the location itself opened; a host's open stream may go on. -36 where the
    /// file cannot be cut.
    void EndFileHere() {
        StFileSpec spec;
        auto* const file = dynamic_cast<SmFileStream*>(mStream);
        if (!file || !dynamic_cast<ScMediaFileLocation*>(mLocation) || !file->GetFileSpec(spec)) return;
        if (file->GetPosition() >= file->GetLength()) return;
        std::error_code error;
        std::filesystem::resize_file(spec.GetPath(), file->GetPosition(), error);
        if (error) SrThrow(SkInputOutput(), nullptr);
    }

    /// Null when there is none.
    SmStream* Get() const { return mStream; }

  private:
    ScMediaLocation* mLocation;
    SmStream* mStream;
};

}  // namespace media
