#include "framewright/media/video_spec.h"

#include "framewright/thornmere/stream.h"

SM_DEFINE_CLASS(SmTrackSpec);
SM_DEFINE_CLASS(SmVideoSpec);

SmTrackSpec::~SmTrackSpec() = default;
SmVideoSpec::~SmVideoSpec() = default;

namespace {

constexpr float kScreenResolution = 72.0F;

}  // namespace

void SmVideoSpec::IVideoSpec() {
    mFrameSize = {200, 320};
    mFrameType = SrCode("ColB");
    mFrameRate = 15.0F;
    mCodec = SrCode("rle ");
    mQuality = 100;
    mIsSequence = false;
    mResolutionX = kScreenResolution;
    mResolutionY = kScreenResolution;
}

void SmVideoSpec::CloneFrom(SmVideoSpec const& other) {
    SmTrackSpec::CloneFrom(other);
    mFrameSize = other.mFrameSize;
    mFrameType = other.mFrameType;
    mFrameRate = other.mFrameRate;
    mCodec = other.mCodec;
    mQuality = other.mQuality;
    mIsSequence = other.mIsSequence;
    mResolutionX = other.mResolutionX;
    mResolutionY = other.mResolutionY;
}

void SmVideoSpec::WriteTo(SmStream* stream) {
    SmTrackSpec::WriteTo(stream);
    SrPutToStream(*stream, mFrameSize);
    stream->PutBigEndian(mFrameType);
    stream->PutBigEndian(mFrameRate);
    stream->PutBigEndian(mCodec);
    stream->PutBigEndian(mQuality);
    stream->PutBit(mIsSequence);
    stream->PutBigEndian(mResolutionX);
    stream->PutBigEndian(mResolutionY);
}

void SmVideoSpec::ReadFrom(SmStream* stream) {
    SmTrackSpec::ReadFrom(stream);
    SrGetFromStream(*stream, mFrameSize);
    mFrameType = stream->GetBigEndian<std::uint32_t>();
    mFrameRate = stream->GetBigEndian<float>();
    mCodec = stream->GetBigEndian<std::uint32_t>();
    mQuality = stream->GetBigEndian<std::int16_t>();
    stream->GetBit(mIsSequence);
    bool const hasResolutions = stream->StoredClassVersion(Class()) == ClassVersion();
    mResolutionX = hasResolutions ? stream->GetBigEndian<float>() : kScreenResolution;
    mResolutionY = hasResolutions ? stream->GetBigEndian<float>() : kScreenResolution;
}

void media::ReplaceVideoSpec(StRef<SmVideoSpec>& held, SmTrackSpec* spec) {
    if (!spec || !spec->IsMemberOf(SmVideoSpec::Class())) return;
    held = StRef<SmVideoSpec>::Adopt(static_cast<SmVideoSpec*>(spec)->Clone());
}
