// Simple media: formats that hold one video track whose frames can be got at by number. The author of such a
// format derives from SmMediaSimple and says how a file is recognized and how one frame is read and written;
// the media, its track and numbered file sequences come from here.
//
// There are two kinds. A still format has one frame a file and gets many from numbered files that follow each
// other. A movie format has many frames in a file and reports its length in seconds.
#pragma once

#include <memory>

#include "framewright/media/media.h"
#include "framewright/media/media_recognizer.h"
#include "framewright/media/media_track.h"
#include "framewright/media/video_spec.h"

class SmImagerFrame;

SM_CLASS(SmMediaSimple, SmMediaRecognizer, 0);
/// The base of a simple format's recognizer.
class FRAMEWRIGHT_EXPORT SmMediaSimple : public SmManaged<SmMediaSimple> {
    friend SmManaged<SmMediaSimple>;

  public:
    // What a format supplies, behind GetType and GetFileDesc of all recognizers.

    /// How sure this format is of the location, 0 to 10. The base gives 0.
    virtual short CanOpen(ScMediaLocation* location);
    /// Reads frame `number`. A null `frame` is made here and handed to the caller with one reference; a given
    /// one is filled, and resized first when `option` is "RESZ". The base does nothing.
    virtual void ReadFrame(ScMediaLocation* location, SmImagerFrame*& frame, long number,
                           ScProgressIndicator* progress, unsigned long option);
    /// Writes `frame` as frame `number`. The base does nothing.
    virtual void WriteFrame(ScMediaLocation* location, SmImagerFrame* frame, long number,
                            ScProgressIndicator* progress);
    /// Whether one file holds many frames. The base gives false.
    virtual bool IsMovieFormat(ScMediaLocation* location);
    /// A new media of this format, with one reference for the caller. The base gives a SmMediaStreamSimple
    /// that is bound to this recognizer.
    virtual SmMedia* NewMediaObject();
    /// The length of a movie in seconds. The base gives 0.
    virtual double DurationOfFile(ScMediaLocation* location);

    // What it does for the format.

    /// CanOpen decides. Above 0, `media` receives a NewMediaObject() that is open on the location.
    short Recognize(ScMediaLocation* location, unsigned long* type, StRef<SmMedia>* media,
                    unsigned long family, ScMC_* objectClass) override;
    /// NewMediaObject(), prepared by its OpenNew.
    SmMedia* NewMedia(ScMediaLocation* location) override;
    /// 2: SmImagerFrame, then SmImagerTrack, both of the family "VIDE".
    long NumberOfObjectClasses() override;
    /// Null outside 0 and 1.
    ScMC_* ObjectClass(long index, unsigned long* family) override;

  protected:
    friend class StCurrentMedia;

    SmMediaSimple() = default;
    ~SmMediaSimple() override;
    /// A clone stands in no call.
    void CloneFrom(SmMediaSimple const& other) { SmMediaRecognizer::CloneFrom(other); }

    /// The media whose track is calling ReadFrame, WriteFrame or DurationOfFile; not owned, null outside such
    /// a call, and null in a call that comes from no track.
    SmMedia* mCurrentMedia = nullptr;
};

/// Sets a recognizer's current media for the length of a call.
class StCurrentMedia {
  public:
    StCurrentMedia(SmMediaSimple* recognizer, SmMedia* media) : mRecognizer(recognizer) {
        mRecognizer->mCurrentMedia = media;
    }
    StCurrentMedia(StCurrentMedia const&) = delete;
    StCurrentMedia& operator=(StCurrentMedia const&) = delete;
    ~StCurrentMedia() { mRecognizer->mCurrentMedia = nullptr; }

  private:
    SmMediaSimple* mRecognizer;
};

SM_CLASS(SmMediaStreamSimple, SmMedia, 0);
/// The media of a simple format: one video track on the location. Before its initialiser an operation that
/// asks the recognizer throws SkInternalRefusal().
class FRAMEWRIGHT_EXPORT SmMediaStreamSimple : public SmManaged<SmMediaStreamSimple> {
    friend SmManaged<SmMediaStreamSimple>;

  public:
    /// Takes a reference of its own to the recognizer.
    void ISimple(SmMediaSimple* recognizer);

    /// Adds a track that is open on the location.
    void Open(ScMediaLocation* location) override;
    void Close() override;
    /// The recognizer's.
    unsigned long GetMediaType() override;
    /// A new track on the media's location for "VIDE", shaped by `spec` if one is given; null for any other
    /// type. Borrowed: the media holds it.
    SmMediaTrack* NewTrack(unsigned long trackType, SmTrackSpec* spec) override;

  protected:
    SmMediaStreamSimple() = default;
    ~SmMediaStreamSimple() override;
    void CloneFrom(SmMediaStreamSimple const& other);
    void Free() override;

    StRef<SmMediaSimple> mRecognizer;
};

SM_CLASS(SmMediaTrackSimple, SmMediaTrack, 0);
/// The one track of a simple media. Before its initialiser, and before it is open where a location is needed,
/// an operation throws SkInternalRefusal().
///
/// A track on numbered files reads frame n from the file whose number is the location's own plus n, and
/// writes frame n to the file of number n + 1.
class FRAMEWRIGHT_EXPORT SmMediaTrackSimple : public SmManaged<SmMediaTrackSimple> {
    friend SmManaged<SmMediaTrackSimple>;

  public:
    /// Takes a reference to the recognizer, none to the media.
    void ITrackSimple(SmMediaSimple* recognizer, SmMedia* media);
    /// Opens the track of an existing file: keeps a clone of the location, looks whether that begins a
    /// numbered sequence, and counts the frames. A movie's count is its length times the frame rate of the
    /// track's spec, which is 15 unless SetSpec said otherwise before: the file's own rate is not taken over.
    void Open(ScMediaLocation* location);
    /// Prepares the track of a new file: keeps a clone of the location.
    void OpenNew(ScMediaLocation* location) { SmMediaTrack::Open(location); }
    /// The media is going: later calls of the recognizer have no current media.
    void ForgetMedia(SmMedia* media);

    long NumberOfFrames() override;
    float GetFrameRate() override;
    /// As the spec says; the size in the file is known once a frame has been read.
    StPoint GetFrameSize() override;
    SmTrackSpec* GetSpec() override;
    /// Takes over a copy. Null and specs of other kinds are ignored.
    void SetSpec(SmTrackSpec* spec) override;
    long NumberOfObjectClasses() override;
    ScMC_* ObjectClass(long index) override;

    /// The number of a still location is added to `first`: -1 for one that has none. For a SmImagerTrack it
    /// is added once more for each frame, which shows in sequences that do not begin with 0. An object that
    /// is no frame throws SkMediaIncapableOfFormat() where a frame is to be filled.
    void ReadFrames(SmObject*& object, ScMC_* objectClass, SmObject*& extra, long first, long count,
                    long destination, ScProgressIndicator* progress, unsigned long option) override;
    /// A `count` above 1 makes the track a sequence for the rest of its life. What is no frame, or null,
    /// throws SkMediaIncapableOfFormat() where a frame is to be written.
    void WriteFrames(SmObject* object, ScMC_* objectClass, long first, long count, long destination,
                     unsigned char position, ScProgressIndicator* progress) override;

  protected:
    SmMediaTrackSimple() = default;
    ~SmMediaTrackSimple() override;
    /// Shares recognizer and media; has a clone of the spec.
    void CloneFrom(SmMediaTrackSimple const& other);
    void Free() override;

    long mCurrentFrame = 0;  ///< the `first` of the last ReadFrames; while a track is read, where that stands
    long mLastFrame = 0;     ///< for formats that keep a place in their file
    long mFrameCount = 1;
    StRef<SmVideoSpec> mSpec;
    StRef<SmMediaSimple> mRecognizer;
    SmMedia* mMedia = nullptr;  ///< not owned

  private:
    SmMediaSimple& Format();
    SmVideoSpec& Spec();
    void CountFrames(ScMediaLocation* location, bool isMovie);
    /// A clone of the location that names the file of frame `number` where the track is a sequence.
    std::unique_ptr<ScMediaLocation> LocationOfFrame(bool isMovie, long number);
};
