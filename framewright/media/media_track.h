// A track of media: what is read from and written to, frame by frame.
#pragma once

#include <memory>

#include "framewright/frame/geometry.h"
#include "framewright/media/media_location.h"
#include "framewright/media/video_spec.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"

class ScProgressIndicator;
class SmMediaRecognizer;

/// The type of the tracks that all formats of the library have.
constexpr unsigned long kVideoTrack = SrCode("VIDE");
/// The option of ReadFrames that has the frame given by the caller resized to the file's size.
constexpr unsigned long kResizeFrame = SrCode("RESZ");

/// The place of a frame in the output, for WriteFrames.
constexpr unsigned char kMiddleFrame = 0;
constexpr unsigned char kFirstFrame = 1;
constexpr unsigned char kLastFrame = 2;
constexpr unsigned char kOnlyFrame = 3;

SM_ABSTRACT_CLASS(SmMediaTrack, SmObject, 0);
/// The base of all formats' tracks. A format gives at least NumberOfFrames, GetFrameRate, GetFrameSize,
/// GetSpec, SetSpec, and for single frames ReadFrames and WriteFrames.
class FRAMEWRIGHT_EXPORT SmMediaTrack : public SmManaged<SmMediaTrack> {
    friend SmManaged<SmMediaTrack>;

  public:
    /// Keeps a clone of the location in place of the one before. Null throws SkInternalRefusal().
    void Open(ScMediaLocation* location);
    void Free() override;

    // The virtual operations, in slot order.

    /// "VIDE" at this level.
    virtual unsigned long GetTrackType();
    virtual long NumberOfFrames();
    /// In seconds: NumberOfFrames over GetFrameRate; 0 for a rate of 0.
    virtual double GetDuration();
    /// Frames a second.
    virtual float GetFrameRate();
    /// Rows, columns.
    virtual StPoint GetFrameSize();
    /// A copy, with one reference for the caller; null at this level.
    virtual SmTrackSpec* GetSpec();
    virtual void SetSpec(SmTrackSpec* spec);
    /// What can be read and written: 0 is SmImagerFrame, 1 SmImagerTrack, null outside.
    virtual long NumberOfObjectClasses();
    virtual ScMC_* ObjectClass(long index);

    /// Reads `count` frames from `first` on. `object` is filled, or made where it is null, the caller then
    /// owning its reference: a frame of the file's size and type, or a track. `objectClass` tells which of
    /// the two; any other does nothing. `first` counts from the location's own sequence number. `option`
    /// kResizeFrame has a given frame resized to the file's size first. Frame `first + i` of a track goes to
    /// entry `destination + i`. `extra` is a second result that few formats have: the caller owns it where it
    /// is not null. `progress` may be null.
    ///
    /// This level serves SmImagerTrack, by one call of this operation a frame; a format serves SmImagerFrame
    /// and may leave the rest to here. A frame that the track holds already at its entry is filled in place.
    virtual void ReadFrames(SmObject*& object, ScMC_* objectClass, SmObject*& extra, long first, long count,
                            long destination, ScProgressIndicator* progress, unsigned long option);
    /// The same in seconds. Media that is no numbered sequence gives its frame 0, whatever the times; else
    /// each is times the rate, rounded down.
    virtual void ReadTime(SmObject*& object, ScMC_* objectClass, SmObject*& extra, double first, double count,
                          double destination, ScProgressIndicator* progress, unsigned long option);
    /// Writes `object`, a frame, as frame `first` of `count`; `position` is its place in the output. A track
    /// has its frames from `first` on written one by one: this level does that, a format writes frames.
    virtual void WriteFrames(SmObject* object, ScMC_* objectClass, long first, long count, long destination,
                             unsigned char position, ScProgressIndicator* progress);
    /// The three values are frame numbers here too, cut to whole ones: no rate takes part, other than in
    /// ReadTime.
    virtual void WriteTime(SmObject* object, ScMC_* objectClass, double first, double count,
                           double destination, unsigned char position, ScProgressIndicator* progress);

  protected:
    SmMediaTrack();
    ~SmMediaTrack() override;
    /// Has a clone of the location.
    void CloneFrom(SmMediaTrack const& other);

    /// The location of Open; borrowed, null before it.
    ScMediaLocation* Location() { return mLocation.get(); }

  private:
    std::unique_ptr<ScMediaLocation> mLocation;
};

namespace media {

/// Whether the file with the number behind that of `location` is there and surely (10) of the recognizer's
/// format: the sign of a numbered sequence.
bool NextInSequenceIsCertain(ScMediaLocation& location, SmMediaRecognizer& recognizer);

}  // namespace media
