// Frames in the catalog of a media location.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "framewright/frame/layer.h"
#include "framewright/media/frame_section.h"
#include "framewright/media/media_location.h"
#include "framewright/thornmere/catalog_stream.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/stream.h"

namespace {

using FrameRef = StRef<SmImagerFrame>;
using GrayLayer = SmImagerLayer<StGray8Pixel, ScImagerNonSpool>;

StRef<SmMemoryStream> NewStream() {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream();
    return stream;
}

StRef<GrayLayer> Gray(std::uint8_t level) {
    auto layer = StRef<GrayLayer>::Adopt(GrayLayer::New());
    layer->IImagerLayer({0, 0}, {1, 2}, false, nullptr, 0, nullptr);
    layer->PutMatchedPixelAt(0, 0, {level});
    layer->PutMatchedPixelAt(1, 0, {level});
    return layer;
}

/// A location of an open stream that counts its uses.
class Location : public ScMediaLocationOpenMedia {
  public:
    explicit Location(SmStream* stream) { SetStream(stream); }
    SmStream* GetStream(StFilePermission permission, StFileInfo const& info, long createMode) override {
        EXPECT_EQ(permission, 1);
        EXPECT_EQ(createMode, 1);
        SmStream* const stream = ScMediaLocationOpenMedia::GetStream(permission, info, createMode);
        if (stream) ++uses;
        return stream;
    }
    void ReleaseStream(SmStream* stream) override {
        --uses;
        ScMediaLocationOpenMedia::ReleaseStream(stream);
    }
    int uses = 0;
};

long CodeOf(ScMediaLocation& location) {
    try {
        FrameRef::Adopt(SrImagerFrameFromStream(&location, 0x100, false));
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        return SrGetExceptionValues(exception, message);
    }
    return 0;
}

TEST(FrameSection, IsFoundByTypeAndVersion) {
    auto const stream = NewStream();
    ScCatalogWriteStream catalog;
    catalog.ICatalogStream(stream.Get());
    ASSERT_TRUE(catalog.PrepareStreamForWrite(0x58585858, 0x100, "another thing"));
    std::uint32_t const other = 17;
    catalog.GetStream()->Write(sizeof other, &other);
    catalog.FinishStreamWrite();
    SrImagerFrameToStream(catalog, Gray(50).Get(), 1);
    SrImagerFrameToStream(catalog, Gray(60).Get(), 1);

    Location location(stream.Get());
    auto const frame = FrameRef::Adopt(SrImagerFrameFromStream(&location, 0x100, true));
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->GetSize(), (StPoint{1, 2}));
    EXPECT_EQ(frame->GetRGBAPixelAt(1, 0).red, 50) << "the first section";
    EXPECT_EQ(frame->ReferenceCount(), 1);
    EXPECT_EQ(SrImagerFrameFromStream(&location, 0x101, false), nullptr) << "of another version";
    EXPECT_EQ(location.uses, 0);
}

TEST(FrameSection, ForeignBytesHoldNone) {
    for (char const* const bytes : {"", "BM", "no catalog here at all"}) {
        auto const stream = NewStream();
        stream->Write(static_cast<unsigned>(std::strlen(bytes)), bytes);
        Location location(stream.Get());
        EXPECT_EQ(SrImagerFrameFromStream(&location, 0x100, false), nullptr);
        EXPECT_EQ(location.uses, 0);
    }
}

TEST(FrameSection, WithoutAStream_ThrowsMemoryFull) {
    ScMediaInline nowhere;
    EXPECT_EQ(CodeOf(nowhere), -108);
}

TEST(FrameSection, TheStreamIsReleasedOnTheWayOut) {
    auto const stream = NewStream();
    ScCatalogWriteStream catalog;
    catalog.ICatalogStream(stream.Get());
    ASSERT_TRUE(catalog.PrepareStreamForWrite(SrGetImagerFrameFileType(), 0x100, nullptr));
    std::uint8_t const header[20] = {0, 0, 0, 1};
    catalog.GetStream()->Write(sizeof header, header);
    catalog.FinishStreamWrite();
    Location location(stream.Get());
    EXPECT_EQ(CodeOf(location), -39) << "the header is cut off";
    EXPECT_EQ(location.uses, 0);
}

}  // namespace
