// The rectangle of what has been drawn.
#include <climits>

#include "imagery/images.h"

namespace {

using namespace testing_images;

constexpr StColorFloats kColor{0.2F, 0.4F, 0.6F};
constexpr StRect kUntouched{-7, -7, -7, -7};

StRef<SmImagerUpdated> NewUpdatedImage() {
    auto image = NewUpdated();
    image->AddLayer(NewColor({10, 12}).Get());
    image->AddLayer(NewDepth({10, 12}).Get());
    return image;
}

StRect UpdatedRect(SmImagerUpdated& image) {
    StRect rect = kUntouched;
    image.GetUpdatedRect(rect);
    return rect;
}

TEST(ImageUpdated, IsAnImageOfItsOwnClass) {
    auto const image = NewUpdated();
    EXPECT_STREQ(image->GetClassName(), "SmImagerUpdated");
    EXPECT_EQ(SmImagerUpdated::Class()->Parent(), SmImagerImage::Class());
    EXPECT_TRUE(image->IsMemberOf(SmImagerImage::Class()));
    EXPECT_EQ(image->GetClassVersion(), 0);
    EXPECT_EQ(image->GetSize(), (StPoint{1, 1}));
    EXPECT_EQ(image->GetGamut()->GetGamutSelector(), 0x47436C69u);
}

TEST(ImageUpdated, IsEmptyAtFirst) {
    auto const image = NewUpdated();
    StRect rect = kUntouched;
    EXPECT_FALSE(image->GetUpdatedRect(rect));
    EXPECT_FALSE(image->TakeUpdatedRect(rect));
    EXPECT_EQ(rect, kUntouched);
}

TEST(ImageUpdated, DrawingAPixelAddsIt) {
    auto const blended = NewUpdatedImage();
    blended->BlendPixelAt(0.5F, 3, 7, kColor, 0.0F, 1.0F);
    EXPECT_EQ(UpdatedRect(*blended), (StRect{7, 3, 8, 4}));
    auto const put = NewUpdatedImage();
    put->PutPixelAt(3, 7, kColor, 0.0F, 1.0F);
    EXPECT_EQ(UpdatedRect(*put), (StRect{7, 3, 8, 4}));
    auto const bytes = NewUpdatedImage();
    bytes->PutRGBAAt(3, 7, {});
    EXPECT_EQ(UpdatedRect(*bytes), (StRect{7, 3, 8, 4}));
}

TEST(ImageUpdated, DrawsAsAnImageDoes) {
    auto const image = NewUpdatedImage();
    image->PutPixelAt(3, 7, kColor, 0.0F, 1.0F);
    image->PutRGBAAt(4, 7, {1, 2, 3, 4});
    image->PutRunAt(5, 7, 1, kColor, 0.0F, 2.0F);
    image->FillRectAt(6, 7, 1, 1, kColor, 0.0F, 3.0F);
    image->BlendPixelAt(1.0F, 7, 7, kColor, 0.0F, 4.0F);
    for (long x : {3, 5, 6, 7})
        EXPECT_EQ(image->GetRGBAAt(x, 7), (StRGBA32Pixel{153, 102, 51, 255})) << x;
    EXPECT_EQ(image->GetRGBAAt(4, 7), (StRGBA32Pixel{1, 2, 3, 4}));
    EXPECT_EQ(image->GetDepthAt(7, 7), 4.0F);
}

TEST(ImageUpdated, PixelsGrowTheRectangle) {
    auto const image = NewUpdatedImage();
    image->PutRGBAAt(5, 5, {});
    image->PutRGBAAt(2, 6, {});
    EXPECT_EQ(UpdatedRect(*image), (StRect{5, 2, 7, 6}));
    image->PutRGBAAt(8, 1, {});
    EXPECT_EQ(UpdatedRect(*image), (StRect{1, 2, 7, 9}));
    image->PutRGBAAt(4, 4, {});
    EXPECT_EQ(UpdatedRect(*image), (StRect{1, 2, 7, 9}));
}

TEST(ImageUpdated, ARunAddsItsEndsUnlessItIsEmpty) {
    auto const image = NewUpdatedImage();
    image->PutRunAt(3, 7, 0, kColor, 0.0F, 1.0F);
    image->PutRunAt(3, 7, -2, kColor, 0.0F, 1.0F);
    StRect rect{};
    EXPECT_FALSE(image->GetUpdatedRect(rect));
    image->PutRunAt(3, 7, 5, kColor, 0.0F, 1.0F);
    EXPECT_EQ(UpdatedRect(*image), (StRect{7, 3, 8, 8}));
}

TEST(ImageUpdated, ARectangleAddsItsCornersWhateverItsSize) {
    auto const image = NewUpdatedImage();
    image->FillRectAt(3, 7, 4, 2, kColor, 0.0F, 1.0F);
    EXPECT_EQ(UpdatedRect(*image), (StRect{7, 3, 9, 7}));
    image->ClearUpdatedRect();
    image->FillRectAt(3, 7, 0, 0, kColor, 0.0F, 1.0F);  // (7, 3) and (6, 2)
    EXPECT_EQ(UpdatedRect(*image), (StRect{6, 2, 8, 4}));
    image->ClearUpdatedRect();
    image->FillRectAt(8, 7, 40, 30, kColor, 0.0F, 1.0F);  // past the frame, and not clipped
    EXPECT_EQ(UpdatedRect(*image), (StRect{7, 8, 37, 48}));
}

TEST(ImageUpdated, TakingTwiceGivesTrueThenFalse) {
    auto const image = NewUpdatedImage();
    image->PutRGBAAt(3, 7, {});
    StRect rect = kUntouched;
    EXPECT_TRUE(image->TakeUpdatedRect(rect));
    EXPECT_EQ(rect, (StRect{7, 3, 8, 4}));
    rect = kUntouched;
    EXPECT_FALSE(image->TakeUpdatedRect(rect));
    EXPECT_EQ(rect, kUntouched);
}

TEST(ImageUpdated, GettingAndClearing) {
    auto const image = NewUpdatedImage();
    image->PutRGBAAt(3, 7, {});
    StRect rect{};
    EXPECT_TRUE(image->GetUpdatedRect(rect));
    EXPECT_TRUE(image->GetUpdatedRect(rect));
    image->ClearUpdatedRect();
    EXPECT_FALSE(image->GetUpdatedRect(rect));
}

TEST(ImageUpdated, SetStoresAsGivenAndPointsGrowThat) {
    auto const image = NewUpdatedImage();
    StRect const odd{9, 3, 1, 3};  // bottom above top, but left not above right: not empty
    image->SetUpdatedRect(odd);
    EXPECT_EQ(UpdatedRect(*image), odd);
    image->AddUpdatedPoint({5, 8});
    EXPECT_EQ(UpdatedRect(*image), (StRect{5, 3, 6, 9}));
    image->SetUpdatedRect({0, 4, 8, 3});
    StRect rect{};
    EXPECT_FALSE(image->GetUpdatedRect(rect));
}

TEST(ImageUpdated, TheEmptyRectangleIsOneThatAnyPixelReplaces) {
    auto const image = NewUpdatedImage();
    image->AddUpdatedPoint({0, 0});
    EXPECT_EQ(UpdatedRect(*image), (StRect{0, 0, 1, 1}));
    image->ClearUpdatedRect();
    // Top and left 0x7FFFFFFF, bottom and right -1: below that they stay.
    image->AddUpdatedPoint({-5, -6});
    EXPECT_EQ(UpdatedRect(*image), (StRect{-5, -6, -1, -1}));
}

TEST(ImageUpdated, PointsAtTheEndOfTheNumbersAreDefined) {
    auto const image = NewUpdated();
    image->AddUpdatedPoint({INT_MAX, INT_MAX});
    image->FillRectAt(INT_MAX, INT_MAX, INT_MAX, INT_MAX, kColor, 0.0F, 0.0F);
    image->FillRectAt(LONG_MAX, LONG_MAX, LONG_MAX, LONG_MAX, kColor, 0.0F, 0.0F);
    image->FillRectAt(LONG_MIN, LONG_MIN, LONG_MIN, LONG_MIN, kColor, 0.0F, 0.0F);
}

TEST(ImageUpdated, ACopyStartsEmpty) {
    auto const image = NewUpdatedImage();
    image->PutRGBAAt(3, 7, {1, 2, 3, 4});
    auto const copy = StRef<SmImagerUpdated>::Adopt(image->Clone());
    StRect rect{};
    EXPECT_FALSE(copy->GetUpdatedRect(rect));
    EXPECT_EQ(copy->GetRGBAAt(3, 7), (StRGBA32Pixel{1, 2, 3, 4}));
    EXPECT_TRUE(image->GetUpdatedRect(rect));
    image->ImplementBecome(copy.Get());
    EXPECT_FALSE(image->GetUpdatedRect(rect));
}

}  // namespace
