// A timed sequence of frames: an array of entries, a count, a rate, and how it repeats. Count and array are
// apart: the one tells how long the track is, the other what it holds at the moment.
#pragma once

#include "framewright/core/startup.h"
#include "framewright/frame/geometry.h"
#include "framewright/imagery/sequence.h"
#include "framewright/imagery/stereo.h"
#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/reference.h"

class SmImagerFrame;

SM_CLASS(SmImagerTrack, SmObject, 0);
class FRAMEWRIGHT_EXPORT SmImagerTrack : public SmManaged<SmImagerTrack> {
    friend SmManaged<SmImagerTrack>;

  public:
    /// Sets the rate to 30 frames a second and the count to 1.
    void IImagerTrack();
    void Free() override;

    // The virtual operations, in slot order.

    /// The stored frame of that number, for an eye: 1 left, 2 right. Borrowed: good until the next call on
    /// the track that reads, stores or drops an entry. Null where nothing is stored.
    ///
    /// With arrangement 1 or 2 it is a window (SmImagerSubframe) on that eye's half. With arrangement 4 two
    /// numbers share a moment, and the entry is frame / 2, one more where the first eye is 2; `eye` plays no
    /// part in that.
    ///
    /// With mipmapping on, a frame that is no mipmap is turned into one, which takes its entry: the next call
    /// finds it ready. Frames of pixel types without mipmaps stay. The trap: of a stereo frame it is the half
    /// that was cut which takes the entry, so mipmapping and eyes are better not set together.
    virtual SmImagerFrame* GetFrame(long frame, StLeftOrRight eye);
    /// The second storing operation: keeps a changed frame for good. Nothing at this level.
    virtual void SaveFrame(long frame, StLeftOrRight eye);
    /// Stores a frame, or null, in place of the entry that was there and adds a reference. A number below 0
    /// counts as 0; the array grows with nulls up to the entry. The count stays as it is.
    virtual void SetFrame(long frame, SmImagerFrame* image);
    /// Drops an entry and leaves null; nothing outside the array.
    virtual void ReleaseFrame(long frame);
    /// The number of the frame to show at a time, rounded down. With looping the time is first folded into
    /// one duration, every second one backwards with ping-pong; a track of no duration gives 0 then. Not
    /// limited to the count. A hundred-thousandth of a frame is added, so that a time just short of a frame
    /// gives it.
    virtual long FrameNumberForTime(double seconds);
    /// In seconds: count over rate; 0 where the rate is not above 0.00001 either way.
    virtual double GetDuration();
    virtual long GetNumberOfFrames();
    virtual void SetNumberOfFrames(long count);
    virtual float GetFrameRate();
    virtual void SetFrameRate(float framesPerSecond);
    virtual void GetLoop(bool& loop, bool& pingPong);
    virtual void SetLoop(bool loop, bool pingPong);
    virtual StStereoArrangement GetStereoArrangement();
    virtual void SetStereoArrangement(StStereoArrangement arrangement);
    virtual StLeftOrRight GetStereoFirstEye();
    virtual void SetStereoFirstEye(StLeftOrRight eye);
    /// Rows or columns between the two eyes of one frame.
    virtual long GetStereoGap();
    virtual void SetStereoGap(long gap);
    /// The entry as it stands; borrowed, null outside the array.
    virtual SmImagerFrame* GetStoredFrame(long frame);

    // Wishes for frames that are made for this track. Mipmapping apart, tracks with media alone read them.

    /// Rows, columns.
    StPoint GetDesiredSize() { return mDesiredSize; }
    void SetDesiredSize(StPoint const& size) { mDesiredSize = size; }
    /// "CROP", or "RESZ" to take the size of the media.
    void SetSizingMode(unsigned long mode) { mSizingMode = static_cast<std::uint32_t>(mode); }
    unsigned long GetSizingMode() { return mSizingMode; }
    void SetMipmapping(bool mipmapping) { mMipmapping = mipmapping; }
    bool GetMipmapping() { return mMipmapping; }
    /// The frame whose kind new frames take; null for none. Adds a reference.
    void SetPrototypeFrame(SmImagerFrame* prototype);
    SmImagerFrame* GetPrototypeFrame();
    /// Drops all entries and empties the array.
    void ClearFrames();

  protected:
    SmImagerTrack();
    ~SmImagerTrack() override;
    /// Has a clone of each entry; shares the prototype. The window that was cut last stays behind.
    void CloneFrom(SmImagerTrack const& other);

    /// The array of entries, whatever GetStoredFrame does.
    ScSequence<SmImagerFrame> const& Entries() const { return mFrames; }

  private:
    SmImagerFrame* AsMipmap(long frame, SmImagerFrame* image);

    ScSequence<SmImagerFrame> mFrames;
    StPoint mDesiredSize{200, 320};
    std::int32_t mNumberOfFrames = 1;
    float mFrameRate = 30.0F;
    bool mLoop = false;
    bool mPingPong = false;
    StStereoArrangement mStereoArrangement = 0;
    StLeftOrRight mStereoFirstEye = 1;
    std::int32_t mStereoGap = 0;
    std::uint32_t mSizingMode = SrCode("CROP");
    bool mMipmapping = false;
    StRef<SmImagerFrame> mPrototypeFrame;
    StRef<SmImagerFrame> mLastStereoFrame;  ///< lent by GetFrame
};

/// The user's wish to have mipmaps, kept across runs as "MIP Mapping disabled", in the opposite sense. True
/// at first, and while the preference is not there. The library reads it nowhere.
FRAMEWRIGHT_EXPORT bool SrGetMipmapsEnabled();
/// Does nothing while the preference is not there.
FRAMEWRIGHT_EXPORT void SrSetMipmapsEnabled(bool enabled);
