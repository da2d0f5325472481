// Mapped records with their maps: Blend, ConvertSmart, and the smart pixels that know a map.
#include <cstring>

#include "framewright/pixel/color_map.h"
#include "framewright/pixel/pixel_ops.h"
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

using Map = ScColorMap<unsigned char, StRGBA32Pixel>;

/// Colours far apart, each in a cell of its own; entry 1 is opaque red, entry 17 opaque white.
Map Palette() {
    Map map(32);
    map.SetColor(0, Color(0, 0, 0, 0));
    map.SetColor(1, Color(255, 0, 0, 255));
    map.SetColor(2, Color(0, 255, 0, 200));
    map.SetColor(3, Color(0, 0, 255, 100));
    map.SetColor(7, Color(128, 0, 0, 50));
    map.SetColor(15, Color(128, 128, 128, 255));
    map.SetColor(17, Color(255, 255, 255, 255));
    return map;
}

template <class Record>
Record WithIndex(unsigned index) {
    Record record{};
    if constexpr (sizeof(Record) > 1) record.rest = 0x155;
    record.index = index & ((1u << Record::PixelSize()) - 1);
    return record;
}
template <class Record>
unsigned Rest(Record const& record) {
    if constexpr (sizeof(Record) > 1) return record.rest;
    return 0x155;
}

template <class Record>
class MappedPixelOf : public testing::Test {
  protected:
    static constexpr unsigned kMask = (1u << Record::PixelSize()) - 1;
    Map map = Palette();
    /// What the map answers; its cache is asked on a copy.
    unsigned Nearest(StRGBA32Pixel color) const {
        Map copy = map;
        return copy.ClosestColorIndex(color) & kMask;
    }
};
using MappedRecords = testing::Types<StMapped8Pixel, StMapped4Pixel, StMapped2Pixel, StMapped1Pixel>;
TYPED_TEST_SUITE(MappedPixelOf, MappedRecords, );

TYPED_TEST(MappedPixelOf, Blend_MixesTheEntriesAndTakesTheNearest) {
    for (unsigned a = 0; a <= this->kMask; a += a < 3 ? 1 : 4)
        for (unsigned b = 0; b <= this->kMask && b < 32; b += b < 3 ? 1 : 7)
            for (float t : {0.0f, 0.25f, 0.5f, 0.999f, 1.0f, 1.5f, -0.25f, kNaN}) {
                StRGBA32Pixel color = this->map[static_cast<unsigned char>(a)];
                color.Blend(this->map[static_cast<unsigned char>(b)], t);
                Map map = this->map;
                TypeParam p = WithIndex<TypeParam>(a);
                p.Blend(WithIndex<TypeParam>(b), t, &map);
                ASSERT_EQ(p.index, this->Nearest(color)) << a << ' ' << b << ' ' << t;
                ASSERT_EQ(Rest(p), 0x155u);
            }
}

TYPED_TEST(MappedPixelOf, ConvertSmart_FromBytes_TakesThePayload) {
    for (StRGBA32Pixel c : ManyColors()) {
        Smart<StRGBA32Pixel> source(c);
        Map map = this->map;
        TypeParam p = WithIndex<TypeParam>(1);
        p.ConvertSmart(source.Get(), nullptr, &map);
        ASSERT_EQ(p.index, this->Nearest(c));
        ASSERT_EQ(Rest(p), 0x155u);
    }
}

TYPED_TEST(MappedPixelOf, ConvertSmart_FromItsOwnType_LooksUpTheSourceMap) {
    // The same entries at other indices.
    Map sourceMap(32);
    for (int i = 0; i < 32; ++i)
        sourceMap.SetColor(static_cast<unsigned char>(i), this->map[static_cast<unsigned char>(31 - i)]);
    sourceMap.SetColor(1, Color(255, 0, 0, 255));
    for (unsigned i = 0; i <= this->kMask && i < 32; ++i) {
        Smart<TypeParam> source(WithIndex<TypeParam>(i));
        TypeParam p{};
        p.ConvertSmart(source.Get(), &sourceMap, &this->map);
        ASSERT_EQ(p.index, this->Nearest(sourceMap[static_cast<unsigned char>(i)])) << i;
    }
}

TYPED_TEST(MappedPixelOf, ConvertSmart_FromAnythingElse_AsksForTheColor) {
    for (unsigned v = 0; v < 256; ++v) {
        Smart<StRGB24Pixel> source(StRGB24Pixel{0, 0, static_cast<std::uint8_t>(v)});
        TypeParam p{};
        p.ConvertSmart(source.Get(), nullptr, &this->map);
        ASSERT_EQ(p.index, this->Nearest(Color(v, 0, 0, 255))) << v;
    }
    StGray8Pixel const white{255};
    Smart<StGray8Pixel> source(white);
    TypeParam p{};
    p.ConvertSmart(source.Get(), nullptr, &this->map);
    EXPECT_EQ(p.index, 17 & this->kMask) << "17 cut to the record's width";
}

TYPED_TEST(MappedPixelOf, ConvertSmart_FromBytes_AsksNoQuestion) {
    StSpy spy;
    spy.id = StRGBA32Pixel::PixelID();
    spy.color = Color(255, 0, 0, 255);
    StRGBA32Pixel const payload = Color(0, 255, 0, 200);
    std::memcpy(spy.payload, &payload, sizeof payload);
    TypeParam p{};
    p.ConvertSmart(&spy, nullptr, &this->map);
    EXPECT_EQ(p.index, this->Nearest(payload));
    EXPECT_NE(this->Nearest(payload), this->Nearest(spy.color)) << "the two colours are told apart";
    EXPECT_EQ(spy.colorsAsked, 0);
}

TYPED_TEST(MappedPixelOf, ConvertSmart_FromAnotherWidth_TakesTheSourcesOwnMap) {
    using Other = std::conditional_t<TypeParam::PixelSize() == 8, StMapped4Pixel, StMapped8Pixel>;
    Map itsOwn(32), passed(32);
    for (unsigned char i = 0; i < 16; ++i) {
        itsOwn.SetColor(i, this->map[static_cast<unsigned char>(15 - i)]);
        passed.SetColor(i, Color(255, 0, 0, 255));
    }
    for (unsigned i = 0; i < 16; ++i) {
        Smart<Other> source(WithIndex<Other>(i));
        static_cast<ScMappedSmartPixel<Other>*>(source.Get())->SetColorMap(&itsOwn);
        TypeParam p{};
        p.ConvertSmart(source.Get(), &passed, &this->map);
        ASSERT_EQ(p.index, this->Nearest(this->map[static_cast<unsigned char>(15 - i)])) << i;
    }
}

TYPED_TEST(MappedPixelOf, SmartPixel_ReadsTheMapsEntry) {
    for (unsigned i = 0; i <= this->kMask; ++i) {
        Smart<TypeParam> smart(WithIndex<TypeParam>(i));
        static_cast<ScMappedSmartPixel<TypeParam>*>(smart.Get())->SetColorMap(&this->map);
        StRGBA32Pixel const entry = this->map[static_cast<unsigned char>(i)];
        ASSERT_EQ(Of(smart->GetRGBA32()), Of(entry)) << i;
        ASSERT_EQ(Bits(smart->GetFloat()), Rounded(kInverseTriByte * (entry.red + entry.green + entry.blue)))
            << i;
        StColorFloats out{};
        smart->GetColorFloats(out);
        ASSERT_EQ(Of(out), (Fields<3>{Rounded(entry.red * kInverseByte), Rounded(entry.green * kInverseByte),
                                      Rounded(entry.blue * kInverseByte)}))
            << i;
    }
}

TYPED_TEST(MappedPixelOf, SmartPixel_TakesTheNearestIndex) {
    Smart<TypeParam> smart(WithIndex<TypeParam>(0));
    static_cast<ScMappedSmartPixel<TypeParam>*>(smart.Get())->SetColorMap(&this->map);
    for (StRGBA32Pixel c : ManyColors()) {
        unsigned const expected = this->Nearest(c);
        smart->SetRGBA32(c);
        ASSERT_EQ(smart.Value().index, expected);
        ASSERT_EQ(Rest(smart.Value()), 0x155u);
    }
    for (std::size_t i = 0; i < ManyFloats().size(); ++i) {
        StColorFloats const c = FloatColor(i);
        unsigned const expected = this->Nearest(Color(ByteOf(c.red), ByteOf(c.green), ByteOf(c.blue), 255));
        smart->SetColorFloats(c);
        ASSERT_EQ(smart.Value().index, expected);
        std::uint32_t const g = ByteOf(c.red);
        unsigned const gray = this->Nearest(Color(g, g, g, g));
        smart->SetFloat(c.red);
        ASSERT_EQ(smart.Value().index, gray) << c.red;
    }
    smart->SetRGBA32(Color(255, 255, 255, 0));
    EXPECT_EQ(smart.Value().index, 17 & this->kMask) << "17 cut to the record's width";
}

template <class Record>
void CheckWithoutMap(ScSmartPixel& smart) {
    Record const before = WithIndex<Record>(1);
    smart.SetPixelData(&before);
    smart.SetRGBA32(Color(255, 255, 255, 255));
    smart.SetFloat(1.0f);
    smart.SetColorFloats({1, 1, 1});
    EXPECT_EQ(std::memcmp(smart.GetPixelData(), &before, sizeof before), 0) << "setting does nothing";
    EXPECT_EQ(Bits(smart.GetFloat()), 0u);
    EXPECT_EQ(Of(smart.GetRGBA32()), (Fields<4>{0, 0, 0, 0})) << "what no rule defines is 0";
    StColorFloats out{7, 8, 9};
    smart.GetColorFloats(out);
    EXPECT_EQ(Of(out), (Fields<3>{Bits(7), Bits(8), Bits(9)})) << "reading leaves the argument";
}

TYPED_TEST(MappedPixelOf, SmartPixel_WithoutAMap_DoesNothing) {
    ScDerivedPixel<TypeParam> derived;
    CheckWithoutMap<TypeParam>(derived);
    Smart<TypeParam> mapped;
    CheckWithoutMap<TypeParam>(*mapped.Get());
}

TYPED_TEST(MappedPixelOf, ByName_TheRecordHasNoColor) {
    TypeParam p = WithIndex<TypeParam>(1);
    pixel::SetRGBA32(p, Color(255, 255, 255, 255));
    pixel::SetFloat(p, 0.0f);
    pixel::SetColorFloats(p, {0, 0, 0});
    EXPECT_EQ(Of(p), Of(WithIndex<TypeParam>(1)));
    EXPECT_EQ(Of(pixel::GetRGBA32(p)), (Fields<4>{0, 0, 0, 0}));
    EXPECT_EQ(pixel::GetFloat(p), 0.0f);
}

TEST(MappedPixels, Blend_ByHand) {
    Map map = Palette();
    StMapped8Pixel p{1};
    p.Blend({0}, 0.5f, &map);
    EXPECT_EQ(p.index, 7) << "half of red and black is nearest to dark red";
    p = {1};
    p.Blend({2}, 1.0f, &map);
    EXPECT_EQ(p.index, 2);
}

}  // namespace
