// FillRectAt where its two shared pixels could not be made. They come with the first image of a process, so
// each check runs in a process of its own.
#include <cstdlib>

#include "framewright/pixel/smart_pixel.h"
#include "imagery/images.h"

namespace {

using namespace testing_images;

/// Makes the first image while both pixels are refused, then a second one.
bool FillWithoutPixelsPassesOverLayers() {
    SrSetAllocationGate([](std::size_t size) {
        return size != sizeof(ScDerivedPixel<StRGBAFloatPixel>) &&
               size != sizeof(ScDerivedPixel<StDepthFloatPixel>);
    });
    std::vector<std::string> log;
    auto const image = NewImage();
    SrSetAllocationGate(nullptr);
    image->AddLayer(NewColor({1, 1}).Get());
    image->AddLayer(NewDepth({1, 1}).Get());
    image->AddCallback(NewRecorder("a", log).Get());
    image->FillRectAt(0, 0, 1, 1, {1.0F, 1.0F, 1.0F}, 0.0F, 5.0F);
    bool const passedOver = image->GetRGBAAt(0, 0) == StRGBA32Pixel{0, 0, 0, 0} &&
                            image->GetDepthAt(0, 0) == 0.0F &&
                            log == std::vector<std::string>{"a rect 0 0 1 1"};
    NewImage();
    image->FillRectAt(0, 0, 1, 1, {1.0F, 1.0F, 1.0F}, 0.0F, 5.0F);
    return passedOver && image->GetRGBAAt(0, 0) == StRGBA32Pixel{255, 255, 255, 255} &&
           image->GetDepthAt(0, 0) == 5.0F;
}

TEST(ImageFillDeathTest, WithoutTheSharedPixelsLayersArePassedOver) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a new process
    EXPECT_EXIT(std::exit(FillWithoutPixelsPassesOverLayers() ? 0 : 1), testing::ExitedWithCode(0), "");
}

}  // namespace
