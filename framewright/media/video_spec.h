// The shape of a track: what a reader found and a writer is to make. Specs are written to streams with their
// owners.
#pragma once

#include <cstdint>

#include "framewright/frame/geometry.h"
#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/reference.h"

SM_ABSTRACT_CLASS(SmTrackSpec, SmStorageObject, 0);
/// Any track's shape. Only that of video tracks has a content so far.
class FRAMEWRIGHT_EXPORT SmTrackSpec : public SmManaged<SmTrackSpec> {
    friend SmManaged<SmTrackSpec>;

  protected:
    SmTrackSpec() = default;
    ~SmTrackSpec() override;
    void CloneFrom(SmTrackSpec const& other) { SmStorageObject::CloneFrom(other); }
};

// Version 1 added the resolutions.
SM_CLASS(SmVideoSpec, SmTrackSpec, 1);
/// A video track's shape. New leaves the resolutions at 0 and gives the rest its default; IVideoSpec gives
/// all.
class FRAMEWRIGHT_EXPORT SmVideoSpec : public SmManaged<SmVideoSpec> {
    friend SmManaged<SmVideoSpec>;

  public:
    void IVideoSpec();

    /// All fields in their order, big-endian: the size as two 32-bit values, type, rate and codec in 32 bits,
    /// the quality in 16, the flag in one byte, the resolutions in 32 each. 31 bytes.
    void WriteTo(SmStream* stream) override;
    /// Data of an earlier class version has no resolutions; they become 72.
    void ReadFrom(SmStream* stream) override;

    StPoint mFrameSize{200, 320};               ///< rows, columns
    std::uint32_t mFrameType = SrCode("ColB");  ///< the layer type of the frames
    float mFrameRate = 15.0F;                   ///< frames a second
    std::uint32_t mCodec = SrCode("rle ");
    std::int16_t mQuality = 100;  ///< of the codec, 0 to 100
    bool mIsSequence = false;     ///< the media is a sequence of numbered files
    float mResolutionX = 0.0F;    ///< dots an inch
    float mResolutionY = 0.0F;

  protected:
    SmVideoSpec() = default;
    ~SmVideoSpec() override;
    void CloneFrom(SmVideoSpec const& other);
};

namespace media {

/// What SetSpec does in every format: a clone of `spec` takes the place of `held`, unless `spec` is null or
/// no video spec.
void ReplaceVideoSpec(StRef<SmVideoSpec>& held, SmTrackSpec* spec);

}  // namespace media
