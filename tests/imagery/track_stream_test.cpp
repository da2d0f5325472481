// Tracks with media on a stream.
#include <gtest/gtest.h>

#include "clips.h"
#include "framewright/frame/frame_limit.h"
#include "framewright/frame/frame_stream.h"
#include "framewright/imagery/track_with_media.h"

namespace {

using namespace clips;
using media_test::BytesOf;
using media_test::MemoryStream;

using Track = StRef<SmImagerTrackWithMedia>;

Track NewTrack() {
    auto track = Track::Adopt(SmImagerTrackWithMedia::New());
    track->IImagerTrackWithMedia();
    return track;
}

std::string Written(SmImagerTrackWithMedia& track) {
    auto const stream = MemoryStream();
    SrPutTrackWithMedia(*stream, &track);
    return BytesOf(*stream);
}

Track Read(std::string const& bytes) {
    auto const stream = MemoryStream(bytes);
    SmImagerTrackWithMedia* track = nullptr;
    SrGetTrackWithMedia(*stream, track);
    return Track::Adopt(track);
}

std::string Long(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

std::string FrameBytes(SmImagerFrame& frame) {
    auto const stream = MemoryStream();
    SrWriteImagerFrameToStream(*stream, &frame, 1);
    return BytesOf(*stream);
}

std::string LocationBytes(ScMediaLocation& location) {
    auto const stream = MemoryStream();
    location.WriteTo(stream.Get());
    return BytesOf(*stream);
}

StRef<SmImagerFrame> Numbered(long number, StPoint const& size = {2, 3}) {
    auto frame = NewFrame(size);
    frame->Erase();
    PutNumber(*frame, number);
    return frame;
}

class TrackStream : public Clip {
  protected:
    ~TrackStream() override {
        if (SrGlobalMediaManager()) SrGlobalMediaManager()->PurgeMissingMediaList();
    }
    Track OpenTrack(long frames) {
        Track track = NewTrack();
        media->Add(frames, 12.0F);
        track->SetLocation(location.get(), 1, true);
        return track;
    }
};

// --- writing

TEST_F(TrackStream, WithoutLocation_TheFramesAreWritten_WithRuns) {
    Track const track = NewTrack();
    auto const first = Numbered(1), second = Numbered(2, {5, 7});
    track->SetFrame(0, first.Get());
    track->SetFrame(1, second.Get());
    EXPECT_EQ(Written(*track), Long(0) + Long(2) + FrameBytes(*first) + FrameBytes(*second));
    EXPECT_EQ(Written(*NewTrack()), Long(0) + Long(0));
}

TEST_F(TrackStream, WithALocationAndSeveralFrames_TheLocationIsWritten) {
    EXPECT_EQ(Written(*OpenTrack(2)), Long(2) + LocationBytes(*location));
    EXPECT_TRUE(static_cast<ClipTrack*>(media->GetTrack(0))->asked.empty()) << "and nothing read";
}

TEST_F(TrackStream, OneFrameIsWrittenItself_WhereverItComesFrom) {
    std::string const bytes = Written(*OpenTrack(1));
    EXPECT_EQ(bytes.substr(0, 8), Long(0) + Long(1));
    Track const read = Read(bytes);
    EXPECT_EQ(read->GetLocation(), nullptr);
    EXPECT_EQ(read->GetFrame(0, 0)->GetSize(), (StPoint{4, 5}));
}

TEST_F(TrackStream, FramesAreFetchedAsTheyAreShown) {
    Track const track = NewTrack();
    auto const frame = NewFrame({4, 2}, SrCode("Gry8"));
    frame->Erase();
    track->SetFrame(0, frame.Get());
    track->SetMipmapping(true);
    Written(*track);
    EXPECT_TRUE(track->GetStoredFrame(0)->IsUVTriLinear());
}

TEST_F(TrackStream, AFrameThatCannotBeHadIsRefused) {
    Track const track = NewTrack();
    track->SetFrame(0, Numbered(1).Get());
    track->SetStereoArrangement(9);  // there is no such arrangement, and so no eye
    EXPECT_EQ(ErrorOf([&] { Written(*track); }), SkInternalRefusal());
}

// --- reading

TEST_F(TrackStream, FramesReadBack) {
    Track const track = NewTrack();
    for (long i = 0; i < 3; ++i)
        track->SetFrame(i, Numbered(i + 10).Get());
    Track const read = Read(Written(*track));
    EXPECT_EQ(read->ReferenceCount(), 1);
    EXPECT_EQ(read->GetNumberOfFrames(), 3);
    EXPECT_EQ(read->SmImagerTrack::GetNumberOfFrames(), 3);
    EXPECT_EQ(read->GetSizingMode(), SrCode("RESZ"));
    EXPECT_EQ(read->GetMedia(), nullptr);
    for (long i = 0; i < 3; ++i) {
        EXPECT_EQ(NumberOf(read->GetFrame(i, 0)), i + 10);
        EXPECT_EQ(read->GetFrame(i, 0)->ReferenceCount(), 1);
    }
    Track const empty = Read(Long(0) + Long(0));
    EXPECT_EQ(empty->GetNumberOfFrames(), 0);
}

TEST_F(TrackStream, AReferenceOpensTheFile) {
    Track const read = Read(Written(*OpenTrack(6)));
    EXPECT_EQ(read->GetMedia(), media.Get());
    EXPECT_EQ(PathOf(*read->GetLocation()), "/clips/shot0001.bmp");
    EXPECT_EQ(read->GetNumberOfFrames(), 6);
    EXPECT_EQ(read->GetFrameRate(), 12.0F);
    EXPECT_EQ(NumberOf(read->GetFrame(4, 0)), 4);
    EXPECT_TRUE(SrGetMissingMediaList().empty());
}

TEST_F(TrackStream, AMissingFileIsListed_AndTheTrackIsBuilt) {
    std::string const bytes = Written(*OpenTrack(6));
    format->confidence = 0;
    Track const read = Read(bytes);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->ReferenceCount(), 1);
    EXPECT_EQ(PathOf(*read->GetLocation()), "/clips/shot0001.bmp");
    EXPECT_EQ(read->GetMedia(), nullptr);
    EXPECT_EQ(read->GetNumberOfFrames(), 0);
    auto& missing = SrGetMissingMediaList();
    ASSERT_EQ(missing.size(), 1u);
    EXPECT_EQ(PathOf(*missing[0]), "/clips/shot0001.bmp");
    EXPECT_NE(missing[0], read->GetLocation());
    // The host has found it.
    format->confidence = 10;
    read->SetLocation(missing[0], 1, true);
    EXPECT_EQ(read->GetNumberOfFrames(), 6);
}

TEST_F(TrackStream, OtherFailuresOfTheFileTravelOn) {
    std::string const bytes = Written(*OpenTrack(6));
    format->throws = true;
    EXPECT_EQ(ErrorOf([&] { Read(bytes); }), -50);
    EXPECT_TRUE(SrGetMissingMediaList().empty());
    SrInitializeGlobalMedia(true);
    EXPECT_EQ(OutcomeOf([&] { Read(bytes); }), (Outcome{SkMediaManagerMissing(), 7}));
    SrInitializeGlobalMedia(false);
}

TEST_F(TrackStream, AnyOtherKindIsAnEmptyTrack_AndNothingMoreIsRead) {
    for (std::uint32_t const kind : {1u, 3u, 0x02000000u, 0xFFFFFFFFu}) {
        auto const stream = MemoryStream(Long(kind) + Long(1) + "rest");
        SmImagerTrackWithMedia* track = nullptr;
        SrGetTrackWithMedia(*stream, track);
        Track const owned = Track::Adopt(track);
        ASSERT_NE(track, nullptr);
        EXPECT_EQ(track->GetNumberOfFrames(), 0);
        EXPECT_EQ(track->GetLocation(), nullptr);
        EXPECT_EQ(stream->GetPosition(), 4u) << kind;
    }
}

/// A stream that does not know how much it holds.
class Forward : public SmStream {
  public:
    explicit Forward(std::string bytes) : mBytes(std::move(bytes)) {}
    void* Read(unsigned int size, void* destination) override {
        if (size > mBytes.size() - mPosition) SrThrow(SkEndOfFile(), nullptr);
        mBytes.copy(static_cast<char*>(destination), size, mPosition);
        mPosition += size;
        return destination;
    }

  private:
    std::string mBytes;
    std::size_t mPosition = 0;
};

TEST_F(TrackStream, CountsThatTheStreamCannotHold_AreRefusedBeforeTheFirstFrame) {
    auto const frame = Numbered(1, {1, 1});
    std::string const bytes = FrameBytes(*frame);
    // 24 bytes a frame at the least: a frame of 51 bytes leaves room for a claim of two, not of three.
    ASSERT_EQ(bytes.size(), 24u + 22u + 5u);
    auto const codeOf = [](std::string const& text, long& position) {
        auto const stream = MemoryStream(text);
        SmImagerTrackWithMedia* track = nullptr;
        long const code = ErrorOf([&] { SrGetTrackWithMedia(*stream, track); });
        EXPECT_EQ(track, nullptr);
        position = stream->GetPosition();
        return code;
    };
    long position = 0;
    EXPECT_EQ(codeOf(Long(0) + Long(3) + bytes, position), -39);
    EXPECT_EQ(position, 8);
    EXPECT_EQ(codeOf(Long(0) + Long(0x7FFFFFFF) + bytes, position), -39);
    EXPECT_EQ(position, 8);
    EXPECT_EQ(codeOf(Long(0) + Long(2) + bytes, position), -39) << "the second frame is not there";
    EXPECT_GT(position, 8);
    for (std::uint32_t const negative : {0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(codeOf(Long(0) + Long(negative) + bytes, position), SkBadStreamFormatErrC());
        EXPECT_EQ(position, 8);
    }
    auto const forward = StRef<SmStream>::Adopt(new Forward(Long(0) + Long(0x7FFFFFFF) + bytes));
    SmImagerTrackWithMedia* track = nullptr;
    EXPECT_EQ(ErrorOf([&] { SrGetTrackWithMedia(*forward, track); }), -39) << "at the end of what is there";
}

/// Sets the limit and puts it back.
struct FrameLimit {
    explicit FrameLimit(std::uint64_t bytes) { SrSetFrameSizeLimit(bytes); }
    ~FrameLimit() { SrSetFrameSizeLimit(was); }
    std::uint64_t const was = SrGetFrameSizeLimit();
};

TEST_F(TrackStream, FramesThatTakeNothingOnTheStreamAreLimitedTogether) {
    // One row of 4096 equal pixels: a few bytes on the stream.
    auto const row = NewFrame({1, 4096}, SrCode("Gry8"));
    row->Erase();
    std::string const bytes = FrameBytes(*row);
    ASSERT_LT(bytes.size(), 64u);
    FrameLimit const limit(1 << 16);
    for (std::uint32_t const count : {15u, 17u}) {
        std::string whole = Long(0) + Long(count);
        for (std::uint32_t i = 0; i < count; ++i)
            whole += bytes;
        long const expected = count == 15 ? 0 : SkMemoryFull();
        EXPECT_EQ(ErrorOf([&] { Read(whole); }), expected);
        auto const forward = StRef<SmStream>::Adopt(new Forward(whole));
        EXPECT_EQ(ErrorOf([&] {
                      SmImagerTrackWithMedia* track = nullptr;
                      SrGetTrackWithMedia(*forward, track);
                      Track::Adopt(track);
                  }),
                  expected);
    }
}

TEST_F(TrackStream, ShortStreamsThrow_WhereverTheyEnd_AndLeaveNothing) {
    Track const track = NewTrack();
    track->SetFrame(0, Numbered(1).Get());
    track->SetFrame(1, Numbered(2).Get());
    std::string const inlined = Written(*track), referred = Written(*OpenTrack(6));
    for (std::string const& whole : {inlined, referred}) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            // A frame that says it is larger than what is left is refused for want of memory.
            long const code = ErrorOf([&] { Read(whole.substr(0, length)); });
            EXPECT_TRUE(code == -39 || code == -108) << length << " of " << whole.size() << ": " << code;
        }
    }
    EXPECT_EQ(media->ReferenceCount(), 2) << "here and the format's";
}

TEST_F(TrackStream, WhereMemoryIsRefused_NothingIsLeft) {
    Track const track = NewTrack();
    track->SetFrame(0, Numbered(1).Get());
    track->SetFrame(1, Numbered(2).Get());
    std::string const bytes = Written(*track);
    auto const stream = MemoryStream(bytes);
    EXPECT_GT(media_test::RefusedRuns([&] {
                  stream->SetPosition(0);
                  SmImagerTrackWithMedia* read = nullptr;
                  SrGetTrackWithMedia(*stream, read);
                  Track::Adopt(read);
              }),
              3);
}

}  // namespace
