// A track whose frames come from a file, or a sequence of numbered files: a frame is read when it is first
// asked for, and the one two places before it is dropped then. A long clip that is played forward holds few
// frames: the first one and the last three at most.
//
//     auto track = StRef<SmImagerTrackWithMedia>::Adopt(SmImagerTrackWithMedia::New());
//     track->IImagerTrackWithMedia();
//     track->SetLocation(&location, 1, true);
//     SmImagerFrame* frame = track->GetFrame(track->FrameNumberForTime(seconds), 0);
#pragma once

#include <memory>

#include "framewright/imagery/track.h"
#include "framewright/media/media.h"
#include "framewright/media/media_location.h"
#include "framewright/media/media_track.h"
#include "framewright/thornmere/export.h"

class SmStream;

SM_CLASS(SmImagerTrackWithMedia, SmImagerTrack, 0);
class FRAMEWRIGHT_EXPORT SmImagerTrackWithMedia : public SmManaged<SmImagerTrackWithMedia> {
    friend SmManaged<SmImagerTrackWithMedia>;

  public:
    /// IImagerTrack; then the sizing mode is "RESZ" and the desired size 200 rows by 320 columns.
    void IImagerTrackWithMedia();
    void Free() override;

    /// Writes nothing: a track is read only.
    void SaveFrame(long frame, StLeftOrRight eye) override;
    /// In seconds: the media's duration, stretched to the rate that was set; 0 without media. It is asked for
    /// once, until the next SetFrameRate or SetLocation.
    double GetDuration() override;
    /// The media's; without media the number of entries. What SetNumberOfFrames set is not looked at.
    long GetNumberOfFrames() override;
    void SetFrameRate(float framesPerSecond) override;
    /// The entry of the nearest number that there is, read from the media if it is not there yet. Borrowed.
    ///
    /// In the mode "RESZ" and without a prototype the format makes the frame, as it is in the file. Else a
    /// frame of the desired size is made, of the prototype's kind or "ColB", spooled where the preference for
    /// image maps says so. It starts as a copy of the entry before it, else of the one behind, if that has
    /// the desired size, so that a format may draw over it; then the format fills it, resizing it to the
    /// file's size in the mode "RESZ". Without media it stays as it was made.
    ///
    /// Reading a frame above 2 drops the entry two places before. What the format throws travels on; the
    /// entry then stays empty.
    ///
    /// The trap: with mipmapping on, GetFrame keeps the mipmap that it makes under the number that it was
    /// asked for, also where that lies past the end: one more for each such number. Keep to those that there
    /// are.
    SmImagerFrame* GetStoredFrame(long frame) override;

    // The virtual operations, in slot order.

    /// Borrowed; null before SetLocation.
    virtual ScMediaLocation* GetLocation();
    /// Takes the frames from the file of that location: from its first video track, whose count and rate
    /// become the track's. Keeps a clone; null takes them from nowhere. `openArgument` goes to OpenMedia.
    /// With `clearFrames` the entries are dropped, which are the old file's otherwise. SkFileNotFound() where
    /// no format takes the file; the track then has the location and no media.
    virtual void SetLocation(ScMediaLocation* location, long openArgument, bool clearFrames);
    virtual ScMediaLocation* GetSecondLocation();
    /// Opens a second file and holds it for the host; the track itself reads nothing from it. Its video track
    /// is looked for only while the first location has none.
    virtual void SetSecondLocation(ScMediaLocation* location);

    /// Borrowed; null without.
    SmMedia* GetMedia() { return mMedia.Get(); }
    /// Reads from another track of the media from now on, or from none where there is no such track. The
    /// entries and the frame rate stay.
    void SetTrack(long index);
    /// The track that is read, borrowed or null, and its place in the media.
    long GetTrack(SmMediaTrack*& track);

  protected:
    SmImagerTrackWithMedia();
    ~SmImagerTrackWithMedia() override;
    /// Has clones of the locations and of the entries; shares the media.
    void CloneFrom(SmImagerTrackWithMedia const& other);

  private:
    StRef<SmImagerFrame> NewFrame(long number);
    void UseTrack(SmMediaTrack* track);

    std::unique_ptr<ScMediaLocation> mLocation;
    std::unique_ptr<ScMediaLocation> mSecondLocation;
    StRef<SmMedia> mMedia;
    SmMediaTrack* mMediaTrack = nullptr;  ///< the media's
    std::int32_t mTrackIndex = 0;
    StRef<SmMedia> mSecondMedia;
    SmMediaTrack* mSecondMediaTrack = nullptr;  ///< the second media's
    double mDuration = 0.0;                     ///< 0 until it is asked for
};

/// A track on a stream. Numbers are big-endian.
///
///     offset   size   field
///     0        4      2: by its location, 0: by its frames
///     4        ...    2: the location's record, see media_location.h
///                     0: the number of frames in four bytes, then the frames, see frame_stream.h
///
/// A track with a location and more than one frame goes by its location, any other by its frames, with runs.
/// A frame that cannot be had throws SkInternalRefusal().
FRAMEWRIGHT_EXPORT void SrPutTrackWithMedia(SmStream& stream, SmImagerTrackWithMedia* track);
/// Reads what the former wrote, into a new track with one reference for the caller. A file that is not there
/// is no failure: its location goes on the list of missing media (SrGetMissingMediaList), and the track has
/// the location and no frames. Any other first number gives a new, empty track. A bad stream throws, and
/// `track` is left: a number of frames that is negative SkBadStreamFormatErrC(), one that the stream cannot
/// hold -39, and frames that together take more memory beyond their bytes on the stream than one frame may
/// (SrGetFrameSizeLimit) -108.
FRAMEWRIGHT_EXPORT void SrGetTrackWithMedia(SmStream& stream, SmImagerTrackWithMedia*& track);
