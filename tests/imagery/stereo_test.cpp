#include "framewright/imagery/stereo.h"

#include <gtest/gtest.h>

#include "frame/kinds.h"
#include "framewright/imagery/subframe.h"
#include "framewright/imagery/updated.h"
#include "framewright/thornmere/memory.h"

SM_CLASS(SmDerivedUpdated, SmImagerUpdated, 0);
/// A class below the image that keeps its updated rectangle.
class SmDerivedUpdated : public SmManaged<SmDerivedUpdated> {
    friend SmManaged<SmDerivedUpdated>;
};
SM_DEFINE_CLASS(SmDerivedUpdated);

using namespace testing_frames;

namespace {

FrameRef Cut(SmImagerFrame* frame, StStereoArrangement arrangement, StLeftOrRight eye, long gap) {
    return FrameRef::Adopt(SrStereoSubframe(frame, arrangement, eye, gap));
}

StRect SubrectOf(SmImagerFrame& frame) {
    StRect rect{};
    dynamic_cast<SmImagerSubframe&>(frame).GetSubrect(rect);
    return rect;
}

TEST(Stereo, NoFrameGivesNone) {
    for (int arrangement = 0; arrangement < 256; ++arrangement)
        EXPECT_FALSE(Cut(nullptr, static_cast<StStereoArrangement>(arrangement), 1, 0));
}

TEST(Stereo, FramesOfOneEyeAreThemselves) {
    FrameRef const frame = MakeLayer<StRGBA32Pixel>({8, 8}).Get();
    for (StStereoArrangement const arrangement : {0, 3, 4, 5}) {
        FrameRef const eye = Cut(frame.Get(), arrangement, 2, 1);
        EXPECT_EQ(eye.Get(), frame.Get()) << int{arrangement};
        EXPECT_EQ(frame->ReferenceCount(), 2);
    }
    EXPECT_EQ(frame->ReferenceCount(), 1);
}

TEST(Stereo, UnknownArrangementsGiveNone) {
    FrameRef const frame = MakeLayer<StRGBA32Pixel>({8, 8}).Get();
    for (int arrangement = 6; arrangement < 256; ++arrangement)
        EXPECT_FALSE(Cut(frame.Get(), static_cast<StStereoArrangement>(arrangement), 1, 0));
    EXPECT_EQ(frame->ReferenceCount(), 1);
}

struct StEyeRow {
    StPoint size;
    StStereoArrangement arrangement;
    StLeftOrRight eye;
    long gap;
    StRect subrect;
};

constexpr StEyeRow kEyes[] = {
    // Above each other: (101 - 1) / 2 is 50.
    {{101, 30}, 1, 1, 1, {0, 0, 50, 30}},
    {{101, 30}, 1, 2, 1, {51, 0, 101, 30}},
    {{101, 30}, 1, 0, 1, {0, 0, 50, 30}},
    {{101, 30}, 1, 3, 1, {0, 0, 50, 30}},
    {{100, 30}, 1, 1, 0, {0, 0, 50, 30}},
    {{100, 30}, 1, 2, 0, {50, 0, 100, 30}},
    // An odd rest is left over at the bottom.
    {{101, 30}, 1, 1, 0, {0, 0, 50, 30}},
    {{101, 30}, 1, 2, 0, {50, 0, 100, 30}},
    // Side by side.
    {{30, 101}, 2, 1, 1, {0, 0, 30, 50}},
    {{30, 101}, 2, 2, 1, {0, 51, 30, 101}},
    {{30, 101}, 2, 0, 1, {0, 0, 30, 50}},
    {{30, 100}, 2, 2, 7, {0, 53, 30, 99}},
    // Gaps that leave nothing; the division truncates toward zero.
    {{10, 30}, 1, 2, 10, {10, 0, 10, 30}},
    {{10, 30}, 1, 1, 11, {0, 0, 0, 30}},
    {{10, 30}, 1, 1, 13, {0, 0, -1, 30}},
    {{10, 30}, 1, 2, 13, {12, 0, 11, 30}},
    {{10, 30}, 1, 2, -2, {4, 0, 10, 30}},
};

TEST(Stereo, EyesSpanTheirHalves) {
    for (StEyeRow const& row : kEyes) {
        FrameRef const frame = MakeLayer<StGray8Pixel>(row.size).Get();
        FrameRef const eye = Cut(frame.Get(), row.arrangement, row.eye, row.gap);
        ASSERT_TRUE(eye);
        EXPECT_EQ(eye->GetClass(), SmImagerSubframe::Class());
        EXPECT_EQ(eye->ReferenceCount(), 1);
        StRect const subrect = SubrectOf(*eye);
        EXPECT_EQ(subrect, row.subrect)
            << subrect.top << ' ' << subrect.left << ' ' << subrect.bottom << ' ' << subrect.right;
        auto& window = dynamic_cast<SmImagerSubframe&>(*eye);
        EXPECT_EQ(window.GetLineSpacing(), 1);
        EXPECT_EQ(window.GetColumnSpacing(), 1);
        EXPECT_EQ(window.GetParent(), frame.Get());
    }
}

TEST(Stereo, AnEyeShowsItsHalf) {
    FrameRef const frame = MakeLayer<StRGBA32Pixel>({4, 9}).Get();
    FillRandom(*frame, KindOfID(SrCode("ColB")), 1);
    FrameRef const right = Cut(frame.Get(), 2, 2, 1);
    ASSERT_EQ(right->GetSize(), (StPoint{4, 4}));
    for (long y = 0; y < 4; ++y)
        for (long x = 0; x < 4; ++x)
            EXPECT_EQ(At(*right, x, y), At(*frame, x + 5, y));
}

TEST(Stereo, RefusedMemoryIsTold) {
    FrameRef const frame = MakeLayer<StRGBA32Pixel>({4, 9}).Get();
    SrSetAllocationGate([](std::size_t) { return false; });
    long error = 0;
    try {
        Cut(frame.Get(), 1, 1, 0);
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        error = SrGetExceptionValues(exception, message);
    }
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(error, -108);
    EXPECT_EQ(frame->ReferenceCount(), 1);
}

// --- images

using ImageRef = StRef<SmImagerImage>;

ImageRef Cut(SmImagerImage* image, StStereoArrangement arrangement, StLeftOrRight eye, long gap) {
    return ImageRef::Adopt(SrStereoSubimage(image, arrangement, eye, gap));
}

ImageRef NewImage() {
    auto image = ImageRef::Adopt(SmImagerImage::New());
    image->IImagerImage();
    return image;
}

TEST(StereoImage, CutsEachLayer_InItsPlace) {
    ImageRef const image = NewImage();
    FrameRef const color = MakeLayer<StRGBA32Pixel>({101, 30}).Get();
    FrameRef const depth = MakeLayer<StDepthFloatPixel>({101, 30}).Get();
    image->SetLayer(0, color.Get());
    image->SetLayer(2, depth.Get());
    ImageRef const right = Cut(image.Get(), 1, 2, 1);
    EXPECT_EQ(right->ReferenceCount(), 1);
    EXPECT_EQ(right->GetClass(), SmImagerImage::Class());
    EXPECT_EQ(right->GetSize(), (StPoint{50, 30})) << "as SetLayer has it, of the colour layer";
    ASSERT_EQ(right->GetLayerCount(), 3);
    EXPECT_EQ(right->GetLayer(1), nullptr);
    for (auto [index, parent] : {std::pair{0L, color.Get()}, {2, depth.Get()}}) {
        SmImagerFrame* const layer = right->GetLayer(index);
        ASSERT_NE(layer, nullptr);
        EXPECT_EQ(SubrectOf(*layer), (StRect{51, 0, 101, 30}));
        EXPECT_EQ(dynamic_cast<SmImagerSubframe&>(*layer).GetParent(), parent);
        EXPECT_EQ(layer->ReferenceCount(), 1) << "the image's";
    }
    EXPECT_EQ(right->GetColorLayer(), right->GetLayer(0));
    EXPECT_EQ(right->GetDepthLayer(), right->GetLayer(2));
}

TEST(StereoImage, SharesLayersOfOneEye_AndLeavesOutUnknownArrangements) {
    ImageRef const image = NewImage();
    FrameRef const color = MakeLayer<StRGBA32Pixel>({10, 30}).Get();
    image->SetLayer(0, color.Get());
    EXPECT_EQ(Cut(image.Get(), 4, 1, 0)->GetLayer(0), color.Get());
    EXPECT_EQ(Cut(image.Get(), 6, 1, 0)->GetLayerCount(), 0);
    EXPECT_EQ(color->ReferenceCount(), 2);
}

TEST(StereoImage, KeepsItsParentsAlive) {
    ImageRef image = NewImage();
    image->SetLayer(0, FrameRef(MakeLayer<StRGBA32Pixel>({4, 9}).Get()).Get());
    FillRandom(*image->GetLayer(0), KindOfID(SrCode("ColB")), 1);
    StRGBA32Pixel const corner = image->GetRGBAAt(8, 3);
    ImageRef const right = Cut(image.Get(), 2, 2, 1);
    image = nullptr;
    EXPECT_EQ(right->GetRGBAAt(3, 3), corner);
}

TEST(StereoImage, AnExactUpdatedImageAloneStaysOne) {
    auto const updated = StRef<SmImagerUpdated>::Adopt(SmImagerUpdated::New());
    updated->IImagerUpdated();
    ImageRef const cut = Cut(updated.Get(), 1, 1, 0);
    EXPECT_EQ(cut->GetClass(), SmImagerUpdated::Class());
    EXPECT_EQ(cut->ReferenceCount(), 1);
    StRect rect{};
    EXPECT_FALSE(static_cast<SmImagerUpdated&>(*cut).GetUpdatedRect(rect));
}

TEST(StereoImage, AClassBelowTheUpdatedImageGivesAPlainImage) {
    auto const derived = StRef<SmDerivedUpdated>::Adopt(SmDerivedUpdated::New());
    derived->IImagerUpdated();
    EXPECT_EQ(Cut(derived.Get(), 1, 1, 0)->GetClass(), SmImagerImage::Class());
}

}  // namespace
