// How mapped layers are cloned, streamed, registered, and live without a map.
#include <functional>

#include "framewright/core/startup.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/frame/registries.h"
#include "framewright/pixel/mapped_layer.h"
#include "mapped_test_support.h"

using namespace color_test;

template <class Pixel>
class MappedLayerLife : public testing::Test {};
TYPED_TEST_SUITE(MappedLayerLife, MappedPixels);

TYPED_TEST(MappedLayerLife, Clone_KeepsColorsAndIndicesAndHasStandardGrounds) {
    auto const layer = Mapped<TypeParam>(2, 8);
    SetColors(layer.Get(), {Rgba(255, 255, 255), Rgba(5, 5, 5)});
    layer->SetForeground(Rgba(255, 255, 255));
    layer->SetBackground(Rgba(255, 255, 255));
    for (int x = 0; x < 8; ++x)
        layer->PutMatchedPixelAt(x, 0, IndexPixel<TypeParam>(x / 3));
    auto const clone = StRef<SmMapped<TypeParam>>::Adopt(layer->Clone());
    EXPECT_NE(clone->GetColorMap(), layer->GetColorMap());
    EXPECT_EQ(Words(PictureOf(clone.Get())), Words(PictureOf(layer.Get())));
    ScPalette expected(1 << TypeParam::PixelSize());
    SrCopyColorMap(&expected, layer->GetColorMap());
    StRGBA32Pixel color{};
    clone->GetForeground(color);
    EXPECT_EQ(Word(color), Word(expected[expected.ClosestColorIndex(Rgba(0, 0, 0, 0))]));
    clone->GetBackground(color);
    EXPECT_EQ(Word(color), 0xFFFFFFFFu);
    EXPECT_EQ(Written(*clone->GetColorMap()), Written(expected))
        << "colours set one by one, not a copied cache";
}

// Two entries of one colour, and a row that ends inside a byte: the indices stay apart all the same.
TYPED_TEST(MappedLayerLife, Clone_KeepsIndicesOfEqualColorsInRowsOfAnyWidth) {
    auto const layer = Mapped<TypeParam>(1, 7);
    SetColors(layer.Get(), {Rgba(64, 64, 64), Rgba(64, 64, 64)});
    for (int x = 0; x < 7; ++x)
        layer->PutMatchedPixelAt(x, 0, IndexPixel<TypeParam>(x & 1));
    auto const clone = StRef<SmMapped<TypeParam>>::Adopt(layer->Clone());
    auto const copy = Mapped<TypeParam>(1, 7);
    copy->CopyFromLayer(layer.Get());
    for (int x = 0; x < 7; ++x) {
        EXPECT_EQ(clone->GetMatchedPixelAt(x, 0).index, x & 1) << x;
        EXPECT_EQ(copy->GetMatchedPixelAt(x, 0).index, x & 1) << x;
    }
}

TYPED_TEST(MappedLayerLife, ImplementBecome_TakesTheMapOverAndKeepsTheCount) {
    auto const layer = Mapped<TypeParam>(2, 2), other = Mapped<TypeParam>(3, 4);
    SetColors(other.Get(), {Rgba(1, 2, 3), Rgba(4, 5, 6)});
    StRef<SmMapped<TypeParam>> const second(layer.Get());
    layer->ImplementBecome(other.Get());
    EXPECT_EQ(layer->ReferenceCount(), 2);
    EXPECT_NE(layer->GetColorMap(), other->GetColorMap());
    EXPECT_EQ(Word((*layer->GetColorMap())[1]), Word(Rgba(4, 5, 6)));
    EXPECT_EQ(layer->GetSize(), (StPoint{3, 4}));
}

TYPED_TEST(MappedLayerLife, Resize_KeepsTheMap) {
    auto const layer = Mapped<TypeParam>(2, 2);
    SetColors(layer.Get(), {Rgba(1, 2, 3), Rgba(4, 5, 6)});
    ScPalette* const map = layer->GetColorMap();
    layer->Resize({5, 6}, StImageInterpolationMethod::kNone);
    EXPECT_EQ(layer->GetColorMap(), map);
    EXPECT_EQ(Word((*map)[1]), Word(Rgba(4, 5, 6)));
}

TYPED_TEST(MappedLayerLife, RefusedMemoryThrowsAndLeavesNothing) {
    auto const whole = Mapped<TypeParam>(8, 8);
    for (long allowed = 0; allowed < 60; ++allowed) {
        auto const layer = StRef<SmMapped<TypeParam>>::Adopt(SmMapped<TypeParam>::New());
        ScRefuseAllocations const gate(allowed);
        std::vector<long> errors;
        errors.push_back(ErrorOf([&] { layer->IImagerMappedLayer({0, 0}, {8, 8}, false, nullptr, 0); }));
        errors.push_back(ErrorOf([&] { StRef<SmMapped<TypeParam>>::Adopt(whole->Clone()); }));
        errors.push_back(ErrorOf([&] { StRef<SmImagerFrame>::Adopt(whole->MirrorLayer()); }));
        errors.push_back(ErrorOf([&] {
            StRef<SmImagerFrame>::Adopt(whole->CloneAtNewSize({3, 3}, true, false));
        }));
        for (long error : errors)
            EXPECT_TRUE(error == SkNoError() || error == SkMemoryFull()) << error;
        EXPECT_TRUE(allowed > 0 || errors[0] == SkMemoryFull());
        EXPECT_TRUE(allowed < 59 || errors[3] == SkNoError());
    }
}

// Streams.

TYPED_TEST(MappedLayerLife, Stream_EndsWithTheMarkAndTheMap) {
    auto const layer = Mapped<TypeParam>(1, 1);
    auto const stream = EmptyStream();
    layer->WriteTo(stream.Get());
    Bytes const map = Written(*layer->GetColorMap());
    Bytes const bytes = BytesOf(*stream);
    ASSERT_GT(bytes.size(), map.size() + 5);
    std::size_t const tail = bytes.size() - map.size() - 5;
    EXPECT_EQ(Bytes(bytes.begin() + static_cast<long>(tail), bytes.begin() + static_cast<long>(tail) + 5),
              (Bytes{0x4D, 0x61, 0x70, 0x64, 1}));
    EXPECT_EQ(Bytes(bytes.end() - static_cast<long>(map.size()), bytes.end()), map);
}

TYPED_TEST(MappedLayerLife, Stream_RoundTrip) {
    for (unsigned short compression : {0, 1}) {
        auto const layer = Mapped<TypeParam>(3, 9), copy = Mapped<TypeParam>(3, 9);
        SetColors(layer.Get(), {Rgba(11, 22, 33, 44), Rgba(200, 100, 50)});
        for (int x = 0; x < 9; ++x)
            layer->PutMatchedPixelAt(x, 1, IndexPixel<TypeParam>(x));
        layer->SetStreamingCompression(compression);
        auto const stream = EmptyStream();
        layer->WriteTo(stream.Get());
        stream->SetPosition(0);
        copy->ReadFrom(stream.Get());
        EXPECT_EQ(Words(PictureOf(copy.Get())), Words(PictureOf(layer.Get())));
        EXPECT_EQ(Written(*copy->GetColorMap()), Written(*layer->GetColorMap()));
        EXPECT_EQ(stream->GetPosition(), stream->GetLength());
    }
}

TYPED_TEST(MappedLayerLife, Stream_OtherMarkOrVersionLeavesTheMap) {
    auto const layer = Mapped<TypeParam>(1, 1);
    auto const stream = EmptyStream();
    layer->WriteTo(stream.Get());
    Bytes const good = BytesOf(*stream);
    std::size_t const mark = good.size() - Written(*layer->GetColorMap()).size() - 5;
    auto const copy = Mapped<TypeParam>(1, 1);
    SetColors(copy.Get(), {Rgba(7, 7, 7)});
    Bytes const map = Written(*copy->GetColorMap());
    struct {
        std::size_t offset;
        unsigned char value;
        long error;
    } const rows[] = {
        {mark, 'm', SkBadFileFormatErrC()},
        {mark + 3, 'D', SkBadFileFormatErrC()},
        {mark + 4, 0, SkBadFileVersionErrC()},
        {mark + 4, 2, SkBadFileVersionErrC()},
    };
    for (auto const& row : rows) {
        Bytes bad = good;
        bad[row.offset] = row.value;
        auto const read = [&] { copy->ReadFrom(StreamOf(bad).Get()); };
        EXPECT_EQ(ErrorOf(read), row.error);
        EXPECT_TRUE(ThrowsMessage(read));
        EXPECT_EQ(Written(*copy->GetColorMap()), map);
    }
}

// Prototypes.

TYPED_TEST(MappedLayerLife, Prototype_HasNoMapAndIsSafeToTouch) {
    auto const layer = StRef<SmMapped<TypeParam>>::Adopt(SmMapped<TypeParam>::New());
    layer->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    auto const fresh = [] {
        auto bare = StRef<SmMapped<TypeParam>>::Adopt(SmMapped<TypeParam>::New());
        bare->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
        bare->PutMatchedPixelAt(0, 0, TypeParam{});
        EXPECT_EQ(bare->GetColorMap(), nullptr);
        EXPECT_EQ(SrGetColorMapFromFrame(bare.Get()), nullptr);
        EXPECT_TRUE(SrIsColorMappedFrame(bare.Get()));
        return bare;
    };
    StRGBA32Pixel color{};
    StColorFloats floats{};
    StRGBAFloatPixel rgba{};
    float intensity = 0;
    StAlpha8Pixel grey{};
    auto const white = LayerOf<StRGBA32Pixel>(SolidPicture(2, 2, Rgba(255, 255, 255)));
    std::function<void(SmMapped<TypeParam>&)> const touches[] = {
        [&](auto& l) { l.GetPixelAt(0, 0, color); },
        [&](auto& l) { l.GetPixelAt(0, 0, floats); },
        [&](auto& l) { l.GetPixelAt(0, 0, rgba); },
        [&](auto& l) { l.GetPixelAt(0, 0, intensity); },
        [&](auto& l) { l.GetPixelAt(0, 0, grey); },
        [&](auto& l) { l.GetRGBAPixelAsLong(0, 0); },
        [&](auto& l) { l.PutPixelAt(0, 0, Rgba(255, 255, 255)); },
        [&](auto& l) { l.PutPixelAt(0, 0, StDepthFloatPixel{1}); },
        [&](auto& l) { l.MergePixelAt(0, 0, Rgba(255, 255, 255)); },
        [&](auto& l) { l.SetForeground(Rgba(255, 255, 255)); },
        [&](auto& l) { l.GetForeground(color); },
        [&](auto& l) { l.GetBackground(color); },
        [&](auto& l) { delete l.NewSmartPixel(); },
        [&](auto& l) { l.GetFractionalPixel(0.5f, 0.5f); },
        [&](auto& l) {
            l.GetFractionalUVPixel(0.5f, 0.5f, floats, {0, 0}, 0);
        },
        [&](auto& l) {
            l.GetFractionalUVPixel(0.5f, 0.5f, color, {0, 0}, 0);
        },
        [&](auto& l) {
            l.GetUVDerivatives(0.5f, 0.5f, intensity, intensity, {0, 0}, 0);
        },
        [&](auto& l) {
            l.BlitRect(white.Get(), {0, 0, 2, 2}, {0, 0});
        },
        [&](auto& l) {
            l.BlitRect(layer.Get(), {0, 0, 1, 1}, {0, 0});
        },
        [&](auto& l) {
            l.MergeRect(white.Get(), {0, 0, 2, 2}, {0, 0});
        },
        [&](auto& l) {
            l.StretchBlit(white.Get(), {0, 0, 2, 2}, {0, 0, 1, 1});
        },
        [&](auto& l) { l.CopyFromLayer(layer.Get()); },
        [&](auto& l) { l.CopyFromLayer(white.Get()); },
        [&](auto& l) { StRef<SmImagerFrame>::Adopt(l.MirrorLayer()); },
        [&](auto& l) { StRef<SmImagerFrame>::Adopt(l.Clone()); },
        [&](auto& l) { l.ImplementBecome(layer.Get()); },
        [&](auto& l) { l.GetNativeImageContext(); },
        [&](auto& l) { l.WriteTo(EmptyStream().Get()); },
        [&](auto& l) { l.Invert(); },
        [&](auto& l) { l.Erase(); },
        [&](auto& l) { l.ClearDither(0, 0); },
        [&](auto& l) {
            l.Resize({4, 4}, StImageInterpolationMethod::kNone);
        },
    };
    for (auto const& touch : touches)
        touch(*fresh());
}

TYPED_TEST(MappedLayerLife, Prototype_WritesTheStandardMap) {
    auto const bare = StRef<SmMapped<TypeParam>>::Adopt(SmMapped<TypeParam>::New());
    bare->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    bare->PutMatchedPixelAt(0, 0, TypeParam{});
    auto const bareStream = EmptyStream();
    bare->WriteTo(bareStream.Get());
    ScPalette standard(1 << TypeParam::PixelSize());
    StuffDefaultColors(standard, 0);
    Bytes const map = Written(standard), bytes = BytesOf(*bareStream);
    EXPECT_EQ(Bytes(bytes.end() - static_cast<long>(map.size()), bytes.end()), map);
}

// Registration.

TEST(MappedLayers, AreRegisteredWithPrototypesAndNames) {
    struct {
        std::uint32_t id;
        ScMC_* cls;
        bool mapped;
    } const rows[] = {
        {SrCode("RG15"), SmImagerDitheredLayer<StRGB15Pixel, ScImagerNonSpool>::Class(), false},
        {SrCode("Map8"), SmMapped8::Class(), true},
        {SrCode("Map4"), SmMapped4::Class(), true},
        {SrCode("Map2"), SmMapped2::Class(), true},
        {SrCode("Map1"), SmMapped1::Class(), true},
    };
    auto const check = [&](bool present) {
        for (auto const& row : rows) {
            SmImagerFrame* prototype = nullptr;
            char const* name = nullptr;
            EXPECT_EQ(ScLayerRegistry::GetObjectByID(row.cls, false, prototype), present);
            EXPECT_EQ(ScLayerNameRegistry::GetObjectByID(row.id, false, name), present);
            if (!present) continue;
            EXPECT_EQ(prototype->PixelID(), row.id);
            EXPECT_EQ(prototype->GetClass(), row.cls);
            EXPECT_EQ(prototype->GetSize(), (StPoint{1, 1}));
            EXPECT_EQ(prototype->GetTopLeft(), (StPoint{0, 0}));
            EXPECT_EQ(prototype->ReferenceCount(), 1) << "the registry's own";
            EXPECT_EQ(SrIsColorMappedFrame(prototype), row.mapped);
            EXPECT_STRNE(name, "");
        }
    };
    check(true);
    SrInitializeMappedLayers(true);
    check(false);
    SrInitializeMappedLayers(true);
    check(false);
    SrInitializeMappedLayers(false);
    check(true);
}

TEST(MappedLayers, FactoryGivesThemAndTheyShareOneName) {
    for (std::uint32_t id : {SrCode("Map8"), SrCode("Map4"), SrCode("Map2"), SrCode("Map1")}) {
        auto const frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({3, 4}, id, true, true));
        ASSERT_TRUE(frame) << id;
        EXPECT_STREQ(frame->GetClassName(), "SmImagerMappedLayer<class template>");
        EXPECT_EQ(frame->GetClassVersion(), 0);
        EXPECT_TRUE(SrIsColorMappedFrame(frame.Get()));
    }
    EXPECT_NE(SmMapped8::Class(), SmMapped4::Class());
    EXPECT_TRUE(Mapped<StMapped8Pixel>(1, 1)->IsMemberOf(
        (SmImagerDitheredLayer<StMapped8Pixel, ScImagerNonSpool>::Class())));
}
