#include "framewright/media/video_spec.h"

#include <gtest/gtest.h>

#include "media/media_test_support.h"

namespace {

using namespace media_test;
using namespace std::string_literals;

StRef<SmVideoSpec> NewSpec() {
    auto spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    spec->IVideoSpec();
    return spec;
}

/// A spec with every field at a value of its own.
StRef<SmVideoSpec> OddSpec() {
    auto spec = NewSpec();
    spec->mFrameSize = {480, 640};
    spec->mFrameType = SrCode("Gry8");
    spec->mFrameRate = 24.0F;
    spec->mCodec = SrCode("jpeg");
    spec->mQuality = -2;
    spec->mIsSequence = true;
    spec->mResolutionX = 300.0F;
    spec->mResolutionY = 150.0F;
    return spec;
}

void ExpectEqual(SmVideoSpec const& a, SmVideoSpec const& b) {
    EXPECT_EQ(a.mFrameSize, b.mFrameSize);
    EXPECT_EQ(a.mFrameType, b.mFrameType);
    EXPECT_EQ(a.mFrameRate, b.mFrameRate);
    EXPECT_EQ(a.mCodec, b.mCodec);
    EXPECT_EQ(a.mQuality, b.mQuality);
    EXPECT_EQ(a.mIsSequence, b.mIsSequence);
    EXPECT_EQ(a.mResolutionX, b.mResolutionX);
    EXPECT_EQ(a.mResolutionY, b.mResolutionY);
}

// The stream form of OddSpec, its resolutions apart.
std::string const kOddBytes =
    "\x00\x00\x01\xE0"s  // 480 rows
    "\x00\x00\x02\x80"s  // 640 columns
    "Gry8"
    "\x41\xC0\x00\x00"s  // 24.0
    "jpeg"
    "\xFF\xFE"s  // quality -2
    "\x01"s;     // is a sequence
std::string const kOddResolutions =
    "\x43\x96\x00\x00"s   // 300.0
    "\x43\x16\x00\x00"s;  // 150.0

TEST(VideoSpec, Class) {
    EXPECT_STREQ(SmVideoSpec::ClassName(), "SmVideoSpec");
    EXPECT_EQ(SmVideoSpec::ClassVersion(), 1);
    EXPECT_STREQ(SmTrackSpec::ClassName(), "SmTrackSpec");
    EXPECT_EQ(SmTrackSpec::ClassVersion(), 0);
    EXPECT_EQ(ErrorOf([] { SmTrackSpec::New(); }), SkAbstractClassErrC());
    EXPECT_TRUE(NewSpec()->IsMemberOf(SmTrackSpec::Class()));
    EXPECT_TRUE(NewSpec()->IsMemberOf(SmStorageObject::Class()));
}

TEST(VideoSpec, New_LeavesTheResolutionsAtZero) {
    auto const spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    EXPECT_EQ(spec->mResolutionX, 0.0F);
    EXPECT_EQ(spec->mResolutionY, 0.0F);
}

TEST(VideoSpec, Initialiser_GivesTheDefaults) {
    auto const spec = OddSpec();
    spec->IVideoSpec();
    EXPECT_EQ(spec->mFrameSize.vertical, 200);
    EXPECT_EQ(spec->mFrameSize.horizontal, 320);
    EXPECT_EQ(spec->mFrameType, SrCode("ColB"));
    EXPECT_EQ(spec->mFrameRate, 15.0F);
    EXPECT_EQ(spec->mCodec, SrCode("rle "));
    EXPECT_EQ(spec->mQuality, 100);
    EXPECT_FALSE(spec->mIsSequence);
    EXPECT_EQ(spec->mResolutionX, 72.0F);
    EXPECT_EQ(spec->mResolutionY, 72.0F);
}

TEST(VideoSpec, Clone_HasEveryField) {
    auto const spec = OddSpec();
    ExpectEqual(*StRef<SmVideoSpec>::Adopt(spec->Clone()), *spec);
}

TEST(VideoSpec, WriteTo_IsBigEndianInFieldOrder) {
    auto const stream = MemoryStream();
    OddSpec()->WriteTo(stream.Get());
    EXPECT_EQ(BytesOf(*stream), kOddBytes + kOddResolutions);
}

TEST(VideoSpec, ReadFrom_ReadsTheSame) {
    auto const spec = NewSpec();
    auto const stream = MemoryStream(kOddBytes + kOddResolutions + "next");
    spec->ReadFrom(stream.Get());
    ExpectEqual(*spec, *OddSpec());
    EXPECT_EQ(stream->GetPosition(), stream->GetLength() - 4);
}

TEST(VideoSpec, ReadFrom_OlderDataHasNoResolutions) {
    auto const spec = OddSpec();
    auto const stream = MemoryStream(kOddBytes + "next");
    stream->SetStoredClassVersion(SmVideoSpec::Class(), 0);
    spec->ReadFrom(stream.Get());
    EXPECT_EQ(spec->mResolutionX, 72.0F);
    EXPECT_EQ(spec->mResolutionY, 72.0F);
    EXPECT_EQ(spec->mFrameType, SrCode("Gry8"));
    EXPECT_EQ(stream->GetPosition(), stream->GetLength() - 4);
}

TEST(VideoSpec, ReadFrom_TruncatedThrows) {
    std::string const bytes = kOddBytes + kOddResolutions;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        auto const stream = MemoryStream(bytes.substr(0, length));
        EXPECT_EQ(ErrorOf([&] { NewSpec()->ReadFrom(stream.Get()); }), -39) << length;
    }
}

/// A spec of another kind of track.
class OtherSpec : public SmTrackSpec {};

TEST(VideoSpec, Replace_TakesAClone) {
    auto const given = OddSpec();
    StRef<SmVideoSpec> held = NewSpec(), old = held;
    media::ReplaceVideoSpec(held, given.Get());
    EXPECT_EQ(old->ReferenceCount(), 1) << "the old one's reference is dropped";
    EXPECT_NE(held.Get(), given.Get());
    EXPECT_EQ(given->ReferenceCount(), 1);
    ExpectEqual(*held, *given);
}

TEST(VideoSpec, Replace_IgnoresNullAndOtherKinds) {
    StRef<SmVideoSpec> held = NewSpec();
    SmVideoSpec* const old = held.Get();
    media::ReplaceVideoSpec(held, nullptr);
    EXPECT_EQ(held.Get(), old);
    auto const other = StRef<SmTrackSpec>::Adopt(new OtherSpec);
    media::ReplaceVideoSpec(held, other.Get());
    EXPECT_EQ(held.Get(), old);
    auto const given = OddSpec();
    RefusedMemory const refused;
    EXPECT_EQ(ErrorOf([&] { media::ReplaceVideoSpec(held, given.Get()); }), -108);
    EXPECT_EQ(held.Get(), old);
}

}  // namespace
