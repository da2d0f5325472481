// A timed sequence of images: what a track (imagery/track.h) is for frames. The array of entries, the count,
// the rate and the duration are told apart: a movie may be longer than what it holds at the moment.
#pragma once

#include "framewright/frame/geometry.h"
#include "framewright/imagery/sequence.h"
#include "framewright/imagery/stereo.h"
#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/reference.h"

class SmImagerFrame;
class SmImagerImage;

SM_CLASS(SmImagerMovie, SmObject, 0);
/// New gives a movie that can be used. Images are lent: a pointer that GetImage gave is good until the next
/// call on the movie that reads, stores or drops an entry.
class FRAMEWRIGHT_EXPORT SmImagerMovie : public SmManaged<SmImagerMovie> {
    friend SmManaged<SmImagerMovie>;

  public:
    /// Does nothing; every field has its default from New.
    void IImagerMovie();
    void Free() override;

    // The virtual operations, in slot order.

    /// The image of that number, for an eye: 1 left, 2 right, 0 the stored image as a whole. Borrowed.
    ///
    /// An eye is cut out of the stored image when arrangement, first eye and `eye` are all set: first eye 2
    /// changes the two halves' places. Where nothing is stored under the number, entry 0 or 1 stands in (even
    /// numbers 0, odd ones 1, and then 0 for both), and -108 is thrown where there is none either. With
    /// arrangement 4 each number has two entries, 2 x frame and the one behind, of which the second is the
    /// other eye than the first. Without stereo, null where nothing is stored.
    ///
    /// With mipmapping on, an image with a colour layer that is no mipmap has all its layers turned into
    /// mipmaps in the stored entry; layers of pixel types without mipmaps stay. The trap: of a stereo image
    /// it is the half that was cut which the entry keeps, so mipmapping and eyes are better not set together.
    virtual SmImagerImage* GetImage(long frame, StLeftOrRight eye);
    /// Keeps a changed image for good. Nothing at this level.
    virtual void SaveImage(long frame, StLeftOrRight eye);
    /// Stores an image, or null, in place of the entry that was there and adds a reference. A number below 0
    /// counts as 0; the array grows with nulls up to the entry; the count stays. With `adoptSize` the desired
    /// frame size becomes the image's size.
    virtual void SetImage(long frame, SmImagerImage* image, bool adoptSize);
    /// Drops an entry and leaves null; nothing outside the array.
    virtual void ReleaseImage(long frame);
    /// As SmImagerTrack::FrameNumberForTime. The duration is the stored one, which a looping movie must be
    /// given: SetDuration.
    virtual long FrameNumberForTime(double seconds);
    virtual float GetFrameRate();
    virtual void SetFrameRate(float framesPerSecond);
    virtual void GetLoop(bool& loop, bool& pingPong);
    virtual void SetLoop(bool loop, bool pingPong);
    virtual StStereoArrangement GetStereoArrangement();
    virtual void SetStereoArrangement(StStereoArrangement arrangement);
    virtual StLeftOrRight GetStereoFirstEye();
    virtual void SetStereoFirstEye(StLeftOrRight eye);
    /// Rows or columns between the two eyes of one image.
    virtual long GetStereoGap();
    virtual void SetStereoGap(long gap);
    /// The entry as it stands; borrowed, null outside the array.
    virtual SmImagerImage* GetStoredImage(long frame);

    // Fields. The wishes for images that are made for this movie are read by movies with media alone.

    /// Rows, columns; 1, 1 at first.
    StPoint GetDesiredFrameSize() { return mDesiredFrameSize; }
    void SetDesiredFrameSize(StPoint const& size) { mDesiredFrameSize = size; }
    /// In seconds, as it was set: it follows neither count nor rate.
    double GetDuration() { return mDuration; }
    void SetDuration(double seconds) { mDuration = seconds; }
    long GetNumberOfFrames() { return mNumberOfFrames; }
    void SetNumberOfFrames(long count) { mNumberOfFrames = static_cast<std::int32_t>(count); }
    /// "CROP", or "RESZ" to take the size of the media.
    void SetSizingMode(unsigned long mode) { mSizingMode = static_cast<std::uint32_t>(mode); }
    unsigned long GetSizingMode() { return mSizingMode; }
    void SetMipmapping(bool mipmapping) { mMipmapping = mipmapping; }
    bool GetMipmapping() { return mMipmapping; }
    /// The image whose layers new images take after; null for none. Adds a reference.
    void SetPrototypeImage(SmImagerImage* prototype);
    SmImagerImage* GetPrototypeImage();
    /// The size of a stored image that holds both eyes, each of the desired size, with the gap between them.
    /// True for arrangements 1 and 2; the desired size itself, and false, for all others.
    bool GetAdjustedFrameSize(StPoint& size);

    /// Gives one layer of an entry. An entry that is missing becomes a new image with that layer alone,
    /// unless `layer` is null. A number below 0 counts as 0.
    void SetLayerOfImage(long frame, long index, SmImagerFrame* layer);
    /// Drops all entries and empties the array.
    void ClearAll();

  protected:
    SmImagerMovie();
    ~SmImagerMovie() override;
    /// Has a clone of each entry; shares prototype and the images that were cut last.
    void CloneFrom(SmImagerMovie const& other);

    /// The array of entries, whatever GetStoredImage does.
    ScSequence<SmImagerImage> const& Entries() const { return mImages; }
    /// Where arrangement 4 has the image of that number and eye; for all others the number itself.
    long EntryNumber(long frame, StLeftOrRight eye) const;

  private:
    SmImagerImage* CutEye(long frame, StLeftOrRight eye);
    void MakeMipmaps(long frame, StRef<SmImagerImage> image);
    void Replace(long frame, SmImagerImage* image);
    void DropEyesOf(long frame);
    void DropEyes();

    ScSequence<SmImagerImage> mImages;
    StPoint mDesiredFrameSize{1, 1};
    double mDuration = 0.0;
    std::int32_t mNumberOfFrames = 1;
    float mFrameRate = 30.0F;
    bool mLoop = false;
    bool mPingPong = false;
    StStereoArrangement mStereoArrangement = 0;
    StLeftOrRight mStereoFirstEye = 1;
    std::int32_t mStereoGap = 0;
    std::uint32_t mSizingMode = SrCode("CROP");
    bool mMipmapping = false;
    StRef<SmImagerImage> mPrototypeImage;
    // The eyes that were cut last, of the source as it was then.
    StRef<SmImagerImage> mLeftImage;
    StRef<SmImagerImage> mRightImage;
    SmImagerImage const* mCachedSource = nullptr;  ///< for comparison only
    std::int32_t mCachedFrame = 0;
    std::int32_t mCachedGap = 0;
    StRef<SmImagerImage> mLentImage;  ///< what GetImage gave last and nobody else keeps
};
