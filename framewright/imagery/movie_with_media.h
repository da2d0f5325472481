// A movie whose images come from a file, or a sequence of numbered files, and may be written to one. An image
// is read when it is first asked for, and the one two places before it is dropped then. Each video track of
// the media is one layer of the images, in the order of the tracks.
//
//     auto movie = StRef<SmImagerMovieWithMedia>::Adopt(SmImagerMovieWithMedia::New());
//     movie->IImagerMovieWithMedia();
//     movie->SetLocation(&location, kReadMovie, true, 0, 0);
//     for (long i = 0; i < movie->GetNumberOfFrames(); ++i)
//         Show(movie->GetImage(i, 0)->GetColorLayer());
#pragma once

#include <memory>

#include "framewright/imagery/movie.h"
#include "framewright/media/media.h"
#include "framewright/media/media_location.h"
#include "framewright/media/media_track.h"
#include "framewright/media/video_spec.h"
#include "framewright/thornmere/export.h"

/// Access modes: only a movie of kWriteMovie writes.
constexpr long kReadMovie = 1;
constexpr long kWriteMovie = 2;
/// Create modes, for the file of a location: any value but 0 makes new media where none can be opened, this
/// one does not look whether there is any.
constexpr long kCreateMovie = 2;

SM_CLASS(SmImagerMovieWithMedia, SmImagerMovie, 0);
class FRAMEWRIGHT_EXPORT SmImagerMovieWithMedia : public SmManaged<SmImagerMovieWithMedia> {
    friend SmManaged<SmImagerMovieWithMedia>;

  public:
    /// IImagerMovie; then the sizing mode is "RESZ", the desired frame size 200 rows by 320 columns, and the
    /// movie reads.
    void IImagerMovieWithMedia();
    void Free() override;

    /// Sends the stored image to the file, if the movie writes. Each layer with its save intent set goes to a
    /// track of its own, in their order; tracks that are missing are made, shaped by the track spec of the
    /// layer's index, or by the only one that there is. The number counts as GetImage takes it.
    ///
    /// Two traps. Each image is written as the only one of its media: a format of single pictures writes them
    /// all into one file unless the spec says that they are a sequence (SmVideoSpec::mIsSequence). And layers
    /// that were read here, or put into an image by SetLayer, have no save intent: SetSaveIntent first.
    void SaveImage(long frame, StLeftOrRight eye) override;
    void SetFrameRate(float framesPerSecond) override;
    /// The entry of the nearest number that there is, read from the media if it is not there yet. Borrowed.
    ///
    /// The image is a CloneAtNewSize of the prototype at the desired size, or else SrMakeImage of that size
    /// in "ColB", spooled where the preference for image maps says so; the formats fill its layers. In the
    /// mode "RESZ" and without a prototype it is a new image whose layers the formats make, as they are in
    /// the file. The desired size becomes that of the image.
    ///
    /// Reading an image above 2 drops the entry two places before. What a format throws travels on; the entry
    /// then stays empty.
    ///
    /// The trap: with mipmapping on, GetImage keeps the mipmaps that it makes under the number that it was
    /// asked for, also where that lies past the end: one more set for each such number. Keep to those that
    /// there are.
    SmImagerImage* GetStoredImage(long frame) override;

    // The virtual operations, in slot order.

    /// Borrowed; null before SetLocation.
    virtual ScMediaLocation* GetLocation();
    /// Takes the images from the media of that location, opened or created as `createMode` says, as
    /// `mediaType` (0 for whatever the file is; a new file needs one). Count and rate become those of its
    /// first video track. Keeps a clone; null takes them from nowhere. With `clearImages` the entries are
    /// dropped. SkFileNotFound() where there is no media; the movie then has the location alone.
    virtual void SetLocation(ScMediaLocation* location, long accessMode, bool clearImages, long createMode,
                             unsigned long mediaType);

    /// Borrowed; null without.
    SmMedia* GetMedia() { return mMedia.Get(); }
    /// Of the media's first video track; without one the number of entries. What SetNumberOfFrames set is not
    /// looked at.
    long GetNumberOfFrames();
    /// In seconds: the media's duration, stretched to the rate that was set; 0 without a video track.
    ///
    /// The trap: FrameNumberForTime goes by the stored duration. A movie that is to loop is given it:
    /// `movie->SetDuration(movie->GetDuration())`.
    double GetDuration();
    /// The shape of the track that SaveImage makes for a layer; null for none. Adds a reference. Nothing for
    /// an index below 0.
    void SetTrackSpec(long index, SmVideoSpec* spec);
    /// Borrowed; null where there is none.
    SmVideoSpec* GetTrackSpec(long index);

  protected:
    SmImagerMovieWithMedia();
    ~SmImagerMovieWithMedia() override;
    /// Has clones of the location and of the entries; shares media and specs.
    void CloneFrom(SmImagerMovieWithMedia const& other);

  private:
    SmMediaTrack* FirstVideoTrack();
    StRef<SmImagerImage> NewImage(long number);
    void ReadLayers(SmImagerImage& image, long number);
    SmVideoSpec* SpecOfLayer(long index);

    std::unique_ptr<ScMediaLocation> mLocation;
    StRef<SmMedia> mMedia;
    double mDuration = 0.0;  ///< 0 until it is asked for
    std::int32_t mAccessMode = kReadMovie;
    ScSequence<SmVideoSpec> mTrackSpecs;  ///< by layer
};
