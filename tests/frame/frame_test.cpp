// The abstract frame and the spatial types.
#include "framewright/frame/frame.h"

#include "framewright/frame/frame_globals.h"
#include "framewright/thornmere/stream.h"
#include "kinds.h"

using namespace testing_frames;

namespace {

// Spatial types.

struct ClipRow {
    StRect in, out;
};

TEST(Geometry, ClipsEachEdgeOnItsOwn) {
    constexpr StPoint kSize{6, 10};
    for (ClipRow const& row : {ClipRow{{-5, 3, 7, 20}, {0, 3, 6, 10}}, ClipRow{{1, 1, 1, 1}, {1, 1, 1, 1}},
                               ClipRow{{0, 0, 6, 10}, {0, 0, 6, 10}}, ClipRow{{9, 11, 9, 11}, {6, 10, 6, 10}},
                               ClipRow{{5, 9, 2, -3}, {5, 9, 2, 0}},
                               ClipRow{{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, {0, 0, 6, 10}}}) {
        StRect out{};
        SrClipRectToFrame(out, row.in, kSize);
        EXPECT_EQ(out, row.out);
    }
}

TEST(Geometry, InsideMeansBothCoordinates) {
    constexpr StPoint kSize{6, 10};
    EXPECT_TRUE(SrInsideFrame({0, 0}, kSize));
    EXPECT_TRUE(SrInsideFrame({5, 9}, kSize));
    EXPECT_FALSE(SrInsideFrame({6, 0}, kSize));
    EXPECT_FALSE(SrInsideFrame({0, 10}, kSize));
    EXPECT_FALSE(SrInsideFrame({-1, 0}, kSize));
    EXPECT_FALSE(SrInsideFrame({0, -1}, kSize));
    EXPECT_FALSE(SrInsideFrame({0, 0}, {0, 0}));
}

TEST(Geometry, FieldsStandInOrder) {
    EXPECT_EQ(sizeof(StPoint), 8u);
    EXPECT_EQ(offsetof(StPoint, vertical), 0u);
    EXPECT_EQ(sizeof(StRect), 16u);
    EXPECT_EQ(offsetof(StRect, left), 4u);
    EXPECT_EQ(offsetof(StRect, bottom), 8u);
    EXPECT_EQ(offsetof(StFloatPoint, horizontal), 4u);
    EXPECT_EQ(sizeof(StTilingStyles), 2u);
    EXPECT_EQ(SkNoTilings(), (StTilingStyles{0, 0}));
    EXPECT_EQ(&SkNoTilings(), &SkNoTilings());
}

TEST(Geometry, PointsGoBigEndian_RowsFirst) {
    auto const stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream();
    SrPutToStream(*stream, StPoint{0x01020304, -2});
    ASSERT_EQ(stream->GetLength(), 8u);
    std::uint8_t const expected[] = {1, 2, 3, 4, 0xFF, 0xFF, 0xFF, 0xFE};
    EXPECT_EQ(std::memcmp(stream->Data(), expected, 8), 0);
    stream->SetPosition(0);
    StPoint point{};
    SrGetFromStream(*stream, point);
    EXPECT_EQ(point, (StPoint{0x01020304, -2}));
}

TEST(Geometry, AlertsHaveTheirNumbers) {
    EXPECT_EQ(SkAlertStrings(), 20991);
    EXPECT_EQ(SkSimpleAlert(), 191);
}

// The abstract class.

TEST(Frame, IsAbstract) {
    EXPECT_EQ(ThrownBy([] { SmImagerFrame::New(); }), SkAbstractClassErrC());
    EXPECT_STREQ(SmImagerFrame::ClassName(), "SmImagerFrame");
    EXPECT_EQ(SmImagerFrame::ClassVersion(), 0);
    EXPECT_EQ(SmImagerFrame::Class()->Parent(), SmObject::Class());
    auto const layer = MakeLayer<StGray8Pixel>({1, 1});
    SmImagerFrame& frame = *layer;
    EXPECT_EQ(ThrownBy([&] { frame.SmImagerFrame::ImplementClone(); }), SkAbstractClassErrC());
    EXPECT_EQ(ThrownBy([&] { frame.SmImagerFrame::ImplementBecome(layer.Get()); }), SkAbstractClassErrC());
}

TEST(Frame, FieldsHaveTheirWidths) {
    auto const layer = MakeLayer<StGray8Pixel>({1, 1});
    layer->SetPurpose(static_cast<long>(0x1FFFFFFFFL));
    EXPECT_EQ(layer->GetPurpose(), -1) << "32 bits, signed";
    layer->SetDithering(0x1FFFFFFFFL);
    EXPECT_EQ(layer->GetDithering(), 0xFFFFFFFFu);
}

TEST(Frame, AllocatesTwoErrorsOfItsOwn) {
    EXPECT_NE(frame::NoSuchLayerError(), 0);
    EXPECT_NE(frame::NoSuchLayerError(), SkAbstractClassErrC());
    EXPECT_EQ(frame::gSpoolThresholdHeight, 64);
    EXPECT_EQ(frame::gSpoolThresholdWidth, 64);
}

TEST(Frame, InterpolationMethodsCastFromNumbers) {
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(static_cast<int>(static_cast<StImageInterpolationMethod>(i)), i);
}

// The class objects of the layers.

TEST(Classes, OneNameButOneObjectEach) {
    auto* const rgba = PlainLayer<StRGBA32Pixel>::Class();
    auto* const gray = PlainLayer<StGray8Pixel>::Class();
    EXPECT_NE(rgba, gray);
    EXPECT_EQ(rgba, PlainLayer<StRGBA32Pixel>::Class());
    EXPECT_STREQ(rgba->Name(), "SmImagerLayer<class template>");
    EXPECT_EQ(rgba->Name(), gray->Name()) << "the very same string";
    EXPECT_EQ(rgba->Parent(), SmImagerFrame::Class());
    EXPECT_EQ(rgba->Version(), 0);
    EXPECT_EQ(rgba->Size(), sizeof(PlainLayer<StRGBA32Pixel>));
    auto const layer = MakeLayer<StRGBA32Pixel>({1, 1});
    EXPECT_EQ(layer->GetClass(), rgba);
    EXPECT_TRUE(layer->IsMemberOf(rgba));
    EXPECT_FALSE(layer->IsMemberOf(gray));
    EXPECT_TRUE(layer->IsMemberOf(SmObject::Class()));
}

TEST(Classes, NewThroughTheClassObject_IsOfThatClass) {
    SmImagerLayer__Class<StGray8Pixel, ScImagerNonSpool> const& cls =
        static_cast<SmImagerLayer__Class<StGray8Pixel, ScImagerNonSpool>&>(
            *PlainLayer<StGray8Pixel>::Class());
    auto const layer =
        StRef<PlainLayer<StGray8Pixel>>::Adopt(static_cast<PlainLayer<StGray8Pixel>*>(cls.New()));
    EXPECT_EQ(layer->PixelID(), SrCode("Gry8"));
    EXPECT_EQ(layer->ReferenceCount(), 1);
}

}  // namespace
