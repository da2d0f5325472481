// Tracks with media on a stream; the form is told in track_with_media.h.
#include "framewright/frame/frame.h"
#include "framewright/frame/frame_reader.h"
#include "framewright/frame/frame_stream.h"
#include "framewright/imagery/track_with_media.h"
#include "framewright/media/media_manager.h"
#include "framewright/media/media_objects.h"
#include "framewright/thornmere/stream.h"

namespace {

constexpr unsigned short kRuns = 1;

void PutFrames(SmStream& stream, SmImagerTrackWithMedia& track) {
    long const count = track.GetNumberOfFrames();
    stream.PutBigEndian(static_cast<std::int32_t>(count));
    for (long i = 0; i < count; ++i) {
        SmImagerFrame* const frame = track.GetFrame(i, 0);
        if (!frame) SrThrow(SkInternalRefusal(), nullptr);
        SrWriteImagerFrameToStream(stream, frame, kRuns);
    }
}

void GetFrames(SmStream& stream, SmImagerTrackWithMedia& track) {
    frame::ScFrameReader frames(stream, false, false);
    std::int32_t const count = frames.ReadCount();
    track.SetNumberOfFrames(count);
    for (std::int32_t i = 0; i < count; ++i)
        track.SetFrame(i, frames.Next().Get());
}

/// A file that is not there is noted for the host, and the track goes without.
void GetMediaOf(SmStream& stream, SmImagerTrackWithMedia& track) {
    std::unique_ptr<ScMediaLocation> const location(SrReadMediaLocationFromStream(&stream));
    try {
        track.SetLocation(location.get(), 1, true);
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        if (SrGetExceptionValues(exception, message) != SkFileNotFound()) throw;
        media::GlobalMediaManager().AddMissingMedia(location.get());
    }
}

}  // namespace

void SrPutTrackWithMedia(SmStream& stream, SmImagerTrackWithMedia* track) {
    if (track->GetLocation() && track->GetNumberOfFrames() > 1) {
        stream.PutBigEndian(media::StoredByLocationTag());
        track->GetLocation()->WriteTo(&stream);
    } else {
        stream.PutBigEndian(media::StoredInlineTag());
        PutFrames(stream, *track);
    }
}

void SrGetTrackWithMedia(SmStream& stream, SmImagerTrackWithMedia*& track) {
    auto const kind = stream.GetBigEndian<std::uint32_t>();
    auto made = StRef<SmImagerTrackWithMedia>::Adopt(SmImagerTrackWithMedia::New());
    SrThrowIfNIL(made.Get());
    made->IImagerTrackWithMedia();
    if (kind == media::StoredInlineTag()) GetFrames(stream, *made);
    if (kind == media::StoredByLocationTag()) GetMediaOf(stream, *made);
    track = made.Release();
}
