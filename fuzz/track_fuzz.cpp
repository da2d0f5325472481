// Reads anything as a track with media on a stream. What could be read is written and read again, which must
// give the same track.
//
// The first byte chooses the kind of stream: bit 0 one that only runs forward and does not know its length.
// The record is behind it.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "framewright/frame/frame.h"
#include "framewright/frame/frame_limit.h"
#include "framewright/imagery/track_with_media.h"
#include "framewright/media/media_manager.h"
#include "framewright/thornmere/memory.h"
#include "fuzz/input.h"

namespace {

constexpr std::size_t kGreatestFrame = 1 << 18;
constexpr std::size_t kGreatestBlock = 1 << 20;
/// Of a track by its location, which may name a long sequence.
constexpr long kMostFramesRead = 4;

using Track = StRef<SmImagerTrackWithMedia>;

Track ReadTrack(SmStream& stream) {
    SmImagerTrackWithMedia* track = nullptr;
    SrGetTrackWithMedia(stream, track);
    Check(track && track->ReferenceCount() == 1);
    return Track::Adopt(track);
}

/// These records read where they should write, and rows without pixels claim no bytes, which is refused.
bool CanBeWritten(SmImagerFrame& frame) {
    unsigned long const id = frame.PixelID();
    return frame.GetSize().horizontal > 0 && id != SrCode("De16") && id != SrCode("De24") &&
           id != SrCode("De32");
}

void Play(SmImagerTrackWithMedia& track) {
    for (long i = 0; i < std::min(kMostFramesRead, track.GetNumberOfFrames()); ++i)
        Check(track.GetFrame(i, 0));
}

void WriteAndReadAgain(SmImagerTrackWithMedia& track) {
    long const count = track.GetNumberOfFrames();
    for (long i = 0; i < count; ++i) {
        if (!CanBeWritten(*track.GetFrame(i, 0))) return;
    }
    auto const first = MemoryStream(nullptr, 0);
    SrPutTrackWithMedia(*first, &track);
    first->SetPosition(0);
    Track const again = ReadTrack(*first);
    Check(first->GetPosition() == first->GetLength());
    Check(again->GetNumberOfFrames() == count);
    auto const second = MemoryStream(nullptr, 0);
    SrPutTrackWithMedia(*second, again.Get());
    Check(first->GetLength() == second->GetLength());
    Check(std::memcmp(first->Data(), second->Data(), first->GetLength()) == 0);
}

void Run(std::uint8_t const* data, std::size_t size) {
    StRef<SmStream> const stream = StreamOf(data + 1, size - 1, data[0] & 1);
    Track const track = ReadTrack(*stream);
    if (track->GetMedia()) {
        Play(*track);
    } else {
        WriteAndReadAgain(*track);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SrSetFrameSizeLimit(kGreatestFrame);
    SrSetAllocationGate([](std::size_t size) { return size <= kGreatestBlock; });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    try {
        Run(data, size);
    } catch (std::exception const&) {
        // Bad tracks throw; that is what is wanted of them.
    }
    SrGlobalMediaManager()->PurgeMissingMediaList();
    return 0;
}
