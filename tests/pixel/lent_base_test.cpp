// Dithered and mapped layers whose rows lie in a block of the caller.
#include <cstring>

#include "framewright/pixel/dithered_layer.h"
#include "mapped_test_support.h"

using namespace color_test;

namespace {

using SmDithered15 = SmImagerDitheredLayer<StRGB15Pixel, ScImagerNonSpool>;

constexpr long kRowBytes = 32;
constexpr std::uint8_t kUntouched = 0xA5;

/// Rows 2 to 5 of a block of 8, from column 4 on, 5 columns wide.
struct StBlock {
    static constexpr StPoint kTopLeft{2, 4};
    static constexpr StPoint kSize{4, 5};

    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(8 * kRowBytes, kUntouched);

    std::uint8_t* Row(long row, long bits) {
        return bytes.data() + (kTopLeft.vertical + row) * kRowBytes + kTopLeft.horizontal * bits / 8;
    }
};

template <class Layer>
StRef<Layer> LayerOn(StBlock& block) {
    auto layer = StRef<Layer>::Adopt(Layer::New());
    if constexpr (requires { layer->GetColorMap(); })
        layer->IImagerMappedLayer(StBlock::kTopLeft, StBlock::kSize, false, block.bytes.data(), kRowBytes);
    else
        layer->IImagerDitheredLayer(StBlock::kTopLeft, StBlock::kSize, false, block.bytes.data(), kRowBytes);
    return layer;
}

template <class Layer>
StRef<Layer> LayerOfItsOwn() {
    auto layer = StRef<Layer>::Adopt(Layer::New());
    if constexpr (requires { layer->GetColorMap(); })
        layer->IImagerMappedLayer({0, 0}, StBlock::kSize, false, nullptr, 0);
    else
        layer->IImagerDitheredLayer({0, 0}, StBlock::kSize, false, nullptr, 0);
    return layer;
}

template <class Layer>
class LentBase : public testing::Test {};
using Layers = testing::Types<SmDithered15, SmMapped8, SmMapped4, SmMapped2, SmMapped1>;
TYPED_TEST_SUITE(LentBase, Layers);

TYPED_TEST(LentBase, DithersIntoItsPlaceInTheBlock) {
    constexpr long kBits = TypeParam::PixelType::PixelSize();
    StBlock block;
    auto const layer = LayerOn<TypeParam>(block);
    EXPECT_EQ(layer->GetTopLeft(), StBlock::kTopLeft);
    for (long row = 0; row < StBlock::kSize.vertical; ++row)
        EXPECT_EQ(layer->GetRow(row), block.Row(row, kBits));

    StPicture const picture = Gradient(StBlock::kSize.vertical, StBlock::kSize.horizontal);
    auto const source = LayerOf<StRGBA32Pixel>(picture);
    auto const own = LayerOfItsOwn<TypeParam>();
    own->BlitRect(source.Get(), picture.Whole(), {0, 0});
    layer->BlitRect(source.Get(), picture.Whole(), {0, 0});
    EXPECT_EQ(Words(PictureOf(layer.Get())), Words(PictureOf(own.Get()))) << "wherever the rows lie";

    // Not a bit outside the rectangle.
    StBlock untouched;
    for (long row = 0; row < StBlock::kSize.vertical; ++row)
        for (long x = 0; x < StBlock::kSize.horizontal; ++x) {
            typename TypeParam::PixelType pixel{};
            pixel::LoadPixel(block.Row(row, kBits), x, pixel);
            pixel::StorePixel(untouched.Row(row, kBits), x, pixel);
        }
    EXPECT_EQ(block.bytes, untouched.bytes);
}

TYPED_TEST(LentBase, ACloneLooksAtTheSameBlock_FromItsStart) {
    StBlock block;
    auto const layer = LayerOn<TypeParam>(block);
    auto const clone = StRef<TypeParam>::Adopt(static_cast<TypeParam*>(layer->Clone()));
    EXPECT_EQ(clone->GetRow(0), block.bytes.data());
    EXPECT_EQ(clone->GetRow(3), block.bytes.data() + 3 * kRowBytes);
    EXPECT_EQ(clone->BytesPerRow(), kRowBytes);
}

TYPED_TEST(LentBase, IsNotFreedAndKeepsItsRowBytes) {
    StBlock block;
    {
        auto const layer = LayerOn<TypeParam>(block);
        layer->Resize({2, 3}, StImageInterpolationMethod::kNone);
        EXPECT_EQ(layer->BytesPerRow(), kRowBytes);
        EXPECT_EQ(layer->GetRow(1), block.Row(1, TypeParam::PixelType::PixelSize()));
        StPicture const picture = Gradient(2, 3);
        layer->BlitRect(LayerOf<StRGBA32Pixel>(picture).Get(), picture.Whole(), {0, 0});
    }
    block.bytes.assign(block.bytes.size(), 0);
}

TYPED_TEST(LentBase, RowBytesMustHoldARow) {
    StBlock block;
    auto const layer = StRef<TypeParam>::Adopt(TypeParam::New());
    auto const start = [&](long rowBytes) {
        std::int32_t const columns = 33;
        if constexpr (requires { layer->GetColorMap(); })
            layer->IImagerMappedLayer({0, 0}, {2, columns}, false, block.bytes.data(), rowBytes);
        else
            layer->IImagerDitheredLayer({0, 0}, {2, columns}, false, block.bytes.data(), rowBytes);
    };
    long const needed = (33 * TypeParam::PixelType::PixelSize() + 7) / 8;
    EXPECT_EQ(ErrorOf([&] { start(needed - 1); }), -108);
    EXPECT_EQ(ErrorOf([&] { start(needed); }), 0);
}

}  // namespace
