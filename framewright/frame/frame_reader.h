// For readers of records that hold several frames: images and tracks.
#pragma once

#include <cstdint>

#include "framewright/frame/frame.h"
#include "framewright/thornmere/reference.h"

class SmStream;

namespace frame {

/// As SrReadImagerFrameFromStream (frame/frame_stream.h), but a frame whose body cannot be read is released.
StRef<SmImagerFrame> ReadFrameFromStream(SmStream& stream, bool spooled, bool nativeBitmap);

/// Reads a number of frames and the frames behind it. Rows of one colour take a few bytes on a stream, and
/// rows without pixels none, so many small records could ask for any amount of memory. What the frames take
/// beyond their bytes on the stream is limited, for all together as for one: -108 past SrGetFrameSizeLimit().
class ScFrameReader {
  public:
    ScFrameReader(SmStream& stream, bool spooled, bool nativeBitmap)
        : mStream(stream), mSpooled(spooled), mNativeBitmap(nativeBitmap) {}

    /// The number: 32 bits, signed, big-endian. A negative one throws SkBadStreamFormatErrC(); -39 for more
    /// frames than a stream of known length has room for, as the frame would that is not there.
    std::int32_t ReadCount();
    /// The next frame; what SrReadImagerFrameFromStream throws.
    StRef<SmImagerFrame> Next();

  private:
    SmStream& mStream;
    bool mSpooled;
    bool mNativeBitmap;
    std::uint64_t mExcess = 0;
};

}  // namespace frame
