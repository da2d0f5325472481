// An opened file, or a sequence of numbered files: a list of tracks, and the location that it lies at.
//
//     recognizer -> Open or OpenNew -> GetTrack or NewTrack -> reads or writes -> the last release
#pragma once

#include <memory>

#include "framewright/media/media_location.h"
#include "framewright/media/media_track.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/vector.h"

SM_ABSTRACT_CLASS(SmMedia, SmObject, 0);
/// The base of all formats' media.
class FRAMEWRIGHT_EXPORT SmMedia : public SmManaged<SmMedia> {
    friend SmManaged<SmMedia>;

  public:
    /// Media without tracks and location, which is what New gives too.
    void IMedia();
    void Free() override;

    // The virtual operations, in slot order. `location` stays the caller's.

    /// Opens an existing file. Every format gives its own; at this level it throws SkAbstractClassErrC().
    virtual void Open(ScMediaLocation* location);
    /// Prepares a new file: keeps a clone of the location.
    virtual void OpenNew(ScMediaLocation* location);
    /// Ends the media; a format that writes at its end does so here. Nothing at this level.
    virtual void Close();
    /// The type of the recognizer that the media comes from; 0 at this level.
    virtual unsigned long GetMediaType();
    /// In seconds: the first track's, or 1 without tracks.
    virtual double GetDuration();
    virtual long NumberOfTracks();
    /// Borrowed; null outside the list.
    virtual SmMediaTrack* GetTrack(long index);
    /// Borrowed; null before Open or OpenNew.
    virtual ScMediaLocation* GetLocation();
    /// Appends and adds a reference; null is ignored.
    virtual void AddTrack(SmMediaTrack* track);
    /// Takes the first entry of that track out and drops its reference.
    virtual void DeleteTrack(SmMediaTrack* track);
    /// Makes a track, gives it `spec` unless that is null, and adds it. Borrowed: the media holds the
    /// reference. Null for a type that the format has not, so always at this level.
    virtual SmMediaTrack* NewTrack(unsigned long trackType, SmTrackSpec* spec);

  protected:
    SmMedia();
    ~SmMedia() override;
    /// Shares the tracks; has a clone of the location.
    void CloneFrom(SmMedia const& other);

    /// Keeps a clone of the location in place of the one before. Null throws SkInternalRefusal().
    void SetLocation(ScMediaLocation* location);

  private:
    ScVector<StRef<SmMediaTrack>> mTracks;
    std::unique_ptr<ScMediaLocation> mLocation;
};
