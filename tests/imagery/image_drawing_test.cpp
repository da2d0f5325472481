// Drawing samples into an image, and reading them.
#include <cmath>
#include <limits>

#include "framewright/pixel/pixel_constants.h"
#include "imagery/images.h"

namespace {

using namespace testing_images;

constexpr StColorFloats kColor{0.2F, 0.4F, 0.6F};  // bytes 51, 102, 153
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

StRGBA32Pixel Pixel(int red, int green, int blue, int alpha) {
    return {static_cast<std::uint8_t>(blue), static_cast<std::uint8_t>(green), static_cast<std::uint8_t>(red),
            static_cast<std::uint8_t>(alpha)};
}

// --- reading

TEST(ImageDrawing, GetColorAt_IsEachByteTimesTheInverse) {
    auto const image = NewDeepImage({2, 3});
    image->GetColorLayer()->PutPixelAt(2, 1, Pixel(255, 128, 1, 7));
    EXPECT_EQ(image->GetRGBAAt(2, 1), Pixel(255, 128, 1, 7));
    StColorFloats color{};
    image->GetColorAt(2, 1, color);
    EXPECT_EQ(color.red, 255 * SkInverseColorByte());
    EXPECT_EQ(color.green, 128 * SkInverseColorByte());
    EXPECT_EQ(color.blue, 1 * SkInverseColorByte());
}

TEST(ImageDrawing, GetDepthAt_IsThePixelOfTheDepthLayer) {
    auto const image = NewDeepImage({2, 3});
    image->GetDepthLayer()->PutPixelAt(2, 1, StDepthFloatPixel{-7.25F});
    EXPECT_EQ(image->GetDepthAt(2, 1), -7.25F);
}

TEST(ImageDrawing, GetMaskAt_IsOpaqueWithoutAMask) {
    auto const image = NewDeepImage({2, 3});
    EXPECT_EQ(image->GetMaskAt(0, 0), 255);
    auto const mask = NewMask({2, 3});
    image->SetLayer(2, mask.Get());
    mask->PutPixelAt(2, 1, StAlpha8Pixel{77});
    EXPECT_EQ(image->GetMaskAt(2, 1), 77);
    EXPECT_EQ(image->GetMaskAt(1, 1), 0);
}

TEST(ImageDrawing, GetTransparencyAt_IsWhatAlphaLeaves) {
    auto const image = NewDeepImage({1, 1});
    for (int alpha = 0; alpha <= 255; ++alpha) {
        image->PutRGBAAt(0, 0, Pixel(9, 9, 9, alpha));
        EXPECT_EQ(image->GetTransparencyAt(0, 0), static_cast<float>(1.0 - alpha * (1.0 / 255))) << alpha;
    }
    EXPECT_EQ(image->GetTransparencyAt(0, 0), 0.0F);
    image->PutRGBAAt(0, 0, Pixel(9, 9, 9, 0));
    EXPECT_EQ(image->GetTransparencyAt(0, 0), 1.0F);
}

TEST(ImageDrawing, ReadingALayerThatIsMissingIsRefused) {
    auto const image = NewImage();
    StColorFloats color{};
    EXPECT_EQ(ThrownBy([&] { image->GetColorAt(0, 0, color); }), SkInternalRefusal());
    EXPECT_EQ(ThrownBy([&] { image->GetRGBAAt(0, 0); }), SkInternalRefusal());
    EXPECT_EQ(ThrownBy([&] { image->GetDepthAt(0, 0); }), SkInternalRefusal());
    EXPECT_EQ(ThrownBy([&] { image->GetTransparencyAt(0, 0); }), SkInternalRefusal());
    EXPECT_EQ(ThrownBy([&] { image->PutRGBAAt(0, 0, {}); }), SkInternalRefusal());
    EXPECT_EQ(ThrownBy([&] { image->SamplesMatch(0, 0, 0, 0, 0); }), SkInternalRefusal());
}

// --- samples

TEST(ImageDrawing, PutPixel_WritesBytesOfTheColorAndTheDepth) {
    auto const image = NewDeepImage({2, 3});
    image->PutPixelAt(2, 1, kColor, 0.5F, -3.5F);
    EXPECT_EQ(image->GetRGBAAt(2, 1), Pixel(51, 102, 153, 128));
    EXPECT_EQ(image->GetDepthAt(2, 1), -3.5F);
    EXPECT_EQ(image->GetRGBAAt(1, 1), Pixel(0, 0, 0, 0));
    EXPECT_EQ(image->GetDepthAt(1, 1), 0.0F);
}

TEST(ImageDrawing, PutPixel_TruncatesChannels) {
    auto const image = NewDeepImage({1, 1});
    image->PutPixelAt(0, 0, {0.5F, 0.999F, 0.0078F}, 0.0F, 0.0F);  // 127.5, 254.7, 1.99
    EXPECT_EQ(image->GetRGBAAt(0, 0), Pixel(127, 254, 1, 255));
}

TEST(ImageDrawing, PutPixel_AlphaIs255LessTheTruncatedTransparency) {
    struct Row {
        float transparency;
        int alpha;
    } const rows[] = {
        {0.0F, 255},   {1.0F, 0},     {0.5F, 128},     // 127.5
        {0.003F, 255}, {0.004F, 254},                  // 0.77, 1.02
        {0.996F, 2},   {0.9961F, 1},  {0.99999F, 1},   // 253.98, 254.006, 254.997
        {1.01F, 0},    {3.0F, 0},     {-0.003F, 255},  // 257.6, 765, -0.77
        {-2.0F, 255},                                  // below 0
        {1e30F, 0},    {kNaN, 0},                      // has no number
    };
    auto const image = NewDeepImage({1, 1});
    for (Row const& row : rows) {
        image->PutPixelAt(0, 0, kColor, row.transparency, 0.0F);
        EXPECT_EQ(image->GetRGBAAt(0, 0), Pixel(51, 102, 153, row.alpha)) << row.transparency;
    }
}

TEST(ImageDrawing, PutPixel_PassesTheColorThroughTheGamut) {
    auto const image = NewDeepImage({1, 1});
    auto const drawn = [&](StColorFloats color) {
        image->PutPixelAt(0, 0, color, 0.0F, 0.0F);
        return image->GetRGBAAt(0, 0);
    };
    EXPECT_EQ(drawn({2.0F, 1.0F, -1.0F}), Pixel(255, 255, 0, 255));
    image->SetGamut(new ScScaledGamut);
    EXPECT_EQ(drawn({2.0F, 1.0F, 0.0F}), Pixel(255, 127, 0, 255));
    image->SetGamut(new ScDebugGamut({0.0F, 1.0F, 0.0F}, {0.0F, 0.0F, 1.0F}));
    EXPECT_EQ(drawn({2.0F, 1.0F, 0.0F}), Pixel(0, 255, 0, 255));
    EXPECT_EQ(drawn({0.5F, 1.0F, -0.5F}), Pixel(0, 0, 255, 255));
    image->SetGamut(nullptr);
    EXPECT_EQ(drawn(kColor), Pixel(51, 102, 153, 255));
}

TEST(ImageDrawing, DrawingLeavesTheCallersColorAlone) {
    auto const image = NewDeepImage({1, 1});
    StColorFloats const color{2.0F, -1.0F, 0.5F};
    image->PutPixelAt(0, 0, color, 0.0F, 0.0F);
    image->PutRunAt(0, 0, 1, color, 0.0F, 0.0F);
    image->FillRectAt(0, 0, 1, 1, color, 0.0F, 0.0F);
    image->BlendPixelAt(1.0F, 0, 0, color, 0.0F, 0.0F);
    EXPECT_EQ(color.red, 2.0F);
    EXPECT_EQ(color.green, -1.0F);
}

TEST(ImageDrawing, BlendPixel_MovesTheColorTowardTheNewOne) {
    auto const image = NewDeepImage({2, 2});
    image->PutRGBAAt(1, 0, Pixel(100, 200, 0, 40));
    StRGBA32Pixel expected = Pixel(100, 200, 0, 40);
    expected.Blend(Pixel(51, 102, 153, 255), 0.25F);
    image->BlendPixelAt(0.25F, 1, 0, kColor, 0.0F, 1.0F);
    EXPECT_EQ(image->GetRGBAAt(1, 0), expected);
    image->BlendPixelAt(0.0F, 1, 0, kColor, 0.0F, 1.0F);
    EXPECT_EQ(image->GetRGBAAt(1, 0), expected);
    image->BlendPixelAt(1.0F, 1, 0, kColor, 0.0F, 1.0F);
    EXPECT_EQ(image->GetRGBAAt(1, 0), Pixel(51, 102, 153, 255));
}

TEST(ImageDrawing, BlendPixel_PassesTheColorThroughTheGamut) {
    auto const image = NewDeepImage({1, 1});
    image->BlendPixelAt(1.0F, 0, 0, {2.0F, -1.0F, 0.5F}, 0.0F, 0.0F);
    EXPECT_EQ(image->GetRGBAAt(0, 0), Pixel(255, 0, 127, 255));
}

// The depth of a pixel that is drawn in part is that of what was drawn last.
TEST(ImageDrawing, BlendPixel_ReplacesTheDepthWithoutBlending) {
    auto const image = NewDeepImage({1, 1});
    image->PutPixelAt(0, 0, kColor, 0.0F, 8.0F);
    image->BlendPixelAt(0.25F, 0, 0, kColor, 0.0F, 4.0F);
    EXPECT_EQ(image->GetDepthAt(0, 0), 4.0F);
    image->BlendPixelAt(0.0F, 0, 0, kColor, 0.0F, 2.0F);
    EXPECT_EQ(image->GetDepthAt(0, 0), 2.0F);
}

TEST(ImageDrawing, PutRGBA_WritesPastTheGamutAndLeavesTheDepth) {
    auto const image = NewDeepImage({1, 2});
    image->SetGamut(new ScDebugGamut({0.0F, 1.0F, 0.0F}, {0.0F, 0.0F, 1.0F}));
    image->PutPixelAt(1, 0, kColor, 0.0F, 8.0F);
    image->PutRGBAAt(1, 0, Pixel(1, 2, 3, 4));
    EXPECT_EQ(image->GetRGBAAt(1, 0), Pixel(1, 2, 3, 4));
    EXPECT_EQ(image->GetDepthAt(1, 0), 8.0F);
}

TEST(ImageDrawing, PutRun_WritesOneSampleAlongTheRow) {
    auto const image = NewDeepImage({3, 6});
    image->PutRunAt(1, 1, 3, {2.0F, 0.4F, 0.6F}, 0.5F, 2.5F);
    for (long y = 0; y < 3; ++y) {
        for (long x = 0; x < 6; ++x) {
            bool const drawn = y == 1 && x >= 1 && x < 4;
            EXPECT_EQ(image->GetRGBAAt(x, y), drawn ? Pixel(255, 102, 153, 128) : Pixel(0, 0, 0, 0));
            EXPECT_EQ(image->GetDepthAt(x, y), drawn ? 2.5F : 0.0F);
        }
    }
    image->PutRunAt(0, 0, 0, kColor, 0.0F, 9.0F);
    image->PutRunAt(0, 0, -5, kColor, 0.0F, 9.0F);
    EXPECT_EQ(image->GetDepthAt(0, 0), 0.0F);
}

TEST(ImageDrawing, FillRect_FillsBothLayersWithinTheFrame) {
    auto const image = NewDeepImage({4, 5});
    image->FillRectAt(3, 1, 4, 2, {2.0F, 0.4F, 0.6F}, 0.25F, 2.5F);  // alpha 0.75: 191.25
    for (long y = 0; y < 4; ++y) {
        for (long x = 0; x < 5; ++x) {
            bool const drawn = y >= 1 && y < 3 && x >= 3;
            EXPECT_EQ(image->GetRGBAAt(x, y), drawn ? Pixel(255, 102, 153, 191) : Pixel(0, 0, 0, 0));
            EXPECT_EQ(image->GetDepthAt(x, y), drawn ? 2.5F : 0.0F);
        }
    }
}

// Where PutPixelAt would limit alpha to a byte, a rectangle carries it as it is.
TEST(ImageDrawing, FillRect_CarriesAlphaAsAFloatPastTheGamut) {
    auto const image = NewImage();
    image->AddLayer(NewLayer<StRGBAFloatPixel>({1, 1}).Get());
    image->FillRectAt(0, 0, 1, 1, {2.0F, -1.0F, 0.5F}, -0.5F, 0.0F);
    StRGBAFloatPixel pixel{};
    image->GetColorLayer()->GetPixelAt(0, 0, pixel);
    EXPECT_EQ(pixel.red, 1.0F);
    EXPECT_EQ(pixel.green, 0.0F);
    EXPECT_EQ(pixel.blue, 0.5F);
    EXPECT_EQ(pixel.alpha, 1.5F);
}

TEST(ImageDrawing, FillRect_OfAbsurdSizesStaysWithinTheFrame) {
    auto const image = NewDeepImage({2, 2});
    long const most = std::numeric_limits<std::int32_t>::max();
    image->FillRectAt(0, 0, -1, 5, kColor, 0.0F, 1.0F);
    image->FillRectAt(1, 1, most, most, kColor, 0.0F, 1.0F);  // the end has no 32-bit number: nothing
    EXPECT_EQ(image->GetDepthAt(0, 0), 0.0F);
    EXPECT_EQ(image->GetDepthAt(1, 1), 0.0F);
    image->FillRectAt(-most, -most, most, most, kColor, 0.0F, 1.0F);
    EXPECT_EQ(image->GetDepthAt(0, 0), 0.0F);
    image->FillRectAt(std::numeric_limits<long>::max(), 0, std::numeric_limits<long>::max(), 1, kColor, 0.0F,
                      1.0F);
    image->FillRectAt(-5, -5, most, most, kColor, 0.0F, 1.0F);
    EXPECT_EQ(image->GetDepthAt(1, 1), 1.0F);
}

TEST(ImageDrawing, ALayerThatIsMissingIsPassedOver) {
    auto const onlyDepth = NewImage();
    onlyDepth->AddLayer(NewDepth({1, 4}).Get());
    onlyDepth->BlendPixelAt(0.5F, 0, 0, kColor, 0.0F, 1.0F);
    onlyDepth->PutPixelAt(1, 0, kColor, 0.0F, 2.0F);
    onlyDepth->PutRunAt(2, 0, 1, kColor, 0.0F, 3.0F);
    onlyDepth->FillRectAt(3, 0, 1, 1, kColor, 0.0F, 4.0F);
    for (long x = 0; x < 4; ++x)
        EXPECT_EQ(onlyDepth->GetDepthAt(x, 0), static_cast<float>(x + 1));

    auto const onlyColor = NewImage();
    onlyColor->AddLayer(NewColor({1, 4}).Get());
    onlyColor->BlendPixelAt(1.0F, 0, 0, kColor, 0.0F, 1.0F);
    onlyColor->PutPixelAt(1, 0, kColor, 0.0F, 2.0F);
    onlyColor->PutRunAt(2, 0, 1, kColor, 0.0F, 3.0F);
    onlyColor->FillRectAt(3, 0, 1, 1, kColor, 0.0F, 4.0F);
    for (long x = 0; x < 4; ++x)
        EXPECT_EQ(onlyColor->GetRGBAAt(x, 0), Pixel(51, 102, 153, 255));

    auto const neither = NewImage();
    neither->BlendPixelAt(0.5F, 0, 0, kColor, 0.0F, 1.0F);
    neither->PutPixelAt(0, 0, kColor, 0.0F, 1.0F);
    neither->PutRunAt(0, 0, 3, kColor, 0.0F, 1.0F);
    neither->FillRectAt(0, 0, 3, 3, kColor, 0.0F, 1.0F);
}

TEST(ImageDrawing, DrawsIntoLayersOfAnyRecord) {
    auto const image = NewImage();
    image->AddLayer(NewLayer<StGray8Pixel>({1, 3}).Get());
    image->AddLayer(NewLayer<StDepthUInt8Pixel>({1, 3}).Get());
    ASSERT_NE(image->GetDepthLayer(), nullptr);
    image->PutPixelAt(0, 0, {0.4F, 0.4F, 0.4F}, 0.0F, 1.0F);
    image->PutRunAt(1, 0, 1, {0.4F, 0.4F, 0.4F}, 0.0F, 1.0F);
    image->FillRectAt(2, 0, 1, 1, {0.4F, 0.4F, 0.4F}, 0.0F, 1.0F);
    for (long x = 0; x < 3; ++x) {
        EXPECT_EQ(image->GetRGBAAt(x, 0), Pixel(102, 102, 102, 255)) << x;
        EXPECT_EQ(image->GetDepthAt(x, 0), 1.0F) << x;
    }
}

// --- callbacks

TEST(ImageDrawing, CallbacksComeInOrderAfterTheDrawing) {
    std::vector<std::string> log;
    auto const image = NewDeepImage({4, 5});
    auto const first = NewRecorder("a", log);
    image->AddCallback(first.Get());
    image->AddCallback(NewRecorder("b", log).Get());
    image->BlendPixelAt(0.5F, 1, 2, kColor, 0.0F, 1.0F);
    image->PutPixelAt(2, 3, kColor, 0.0F, 1.0F);
    image->PutRGBAAt(3, 1, {});
    image->PutRunAt(1, 0, 2, kColor, 0.0F, 1.0F);
    image->FillRectAt(1, 2, 4, 3, kColor, 0.0F, 1.0F);
    EXPECT_EQ(log, (std::vector<std::string>{"a blend 0.5 1 2", "b blend 0.5 1 2", "a pixel 2 3",
                                             "b pixel 2 3", "a pixel 3 1", "b pixel 3 1", "a run 1 0 2",
                                             "b run 1 0 2", "a rect 1 2 4 3", "b rect 1 2 4 3"}));
    EXPECT_EQ(first->image, image.Get());
}

/// Looks at the picture when it is called.
class Looker : public Recorder {
  public:
    using Recorder::Recorder;
    StRGBA32Pixel seen{};
    void OnPutPixel(SmImagerImage* from, long x, long y) override { seen = from->GetRGBAAt(x, y); }
};

TEST(ImageDrawing, CallbacksSeeWhatWasDrawn) {
    std::vector<std::string> log;
    auto const image = NewDeepImage({1, 1});
    auto const looker = StRef<Looker>::Adopt(new Looker("a", log));
    image->AddCallback(looker.Get());
    image->PutRGBAAt(0, 0, Pixel(1, 2, 3, 4));
    EXPECT_EQ(looker->seen, Pixel(1, 2, 3, 4));
}

TEST(ImageDrawing, ACallbackIsCountedAndEndsWithItsLastReference) {
    std::vector<std::string> log;
    auto callback = NewRecorder("a", log);
    EXPECT_EQ(callback->ReferenceCount(), 1);
    auto image = NewImage();
    image->AddCallback(callback.Get());
    EXPECT_EQ(callback->ReferenceCount(), 2);

    auto const pair = StRef<ScLayerCallback>::AsReferenceCountableInterface(callback.Get());
    EXPECT_EQ(pair.table, ScLayerCallback::GetReferenceCountableFunctionTable());
    pair.table->addReference(pair.object);
    EXPECT_EQ(pair.table->referenceCount(pair.object), 3);
    EXPECT_EQ(callback->ReferenceCount(), 3);
    pair.table->releaseReference(pair.object);
    EXPECT_EQ(callback->ReferenceCount(), 2);

    callback = nullptr;
    EXPECT_TRUE(log.empty());
    image = nullptr;
    EXPECT_EQ(log, std::vector<std::string>{"a ends"});
}

}  // namespace
