// ConvertSmart: every record from every kind of smart pixel. The colour of a source is what its GetRGBA32
// says, but for the sources that a record reads in its own way.
#include <algorithm>
#include <cstring>
#include <string>

#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

/// `record` after it took the colour of a source of an unknown type.
template <class Record>
Record FromColor(Record record, StRGBA32Pixel color) {
    StSpy spy;
    spy.color = color;
    spy.value = 0.125f;
    record.ConvertSmart(&spy);
    EXPECT_EQ(spy.floatsAsked, 0);
    return record;
}

/// `record` after it took a smart pixel of `source`.
template <class Record, class Source>
Record From(Record record, Source const& source) {
    Smart<Source> smart(source);
    record.ConvertSmart(smart.Get());
    return record;
}

unsigned SumOf(StRGBA32Pixel c) {
    return c.red + c.green + c.blue;
}

TEST(ConvertSmart, FromAnyColor) {
    double const exact = 1.0 / 255.0;
    for (StRGBA32Pixel c : ManyColors()) {
        unsigned const r = c.red, g = c.green, b = c.blue, mean = SumOf(c) / 3;
        ASSERT_EQ(Of(FromColor(StRGBA32Pixel{}, c)), (Fields<4>{r, g, b, c.alpha}));
        ASSERT_EQ(Of(FromColor(StRGB32Pixel{9, 9, 9, 0x66}, c)), (Fields<4>{r, g, b, 0x66}));
        ASSERT_EQ(Of(FromColor(StRGB24Pixel{}, c)), (Fields<3>{r, g, b}));
        ASSERT_EQ(Of(FromColor(StRGB15Pixel{9, 9, 9, 1}, c)), (Fields<4>{r / 8, g / 8, b / 8, 1}));
        ASSERT_EQ(Of(FromColor(StRGB15Pixel{9, 9, 9, 0}, c)), (Fields<4>{r / 8, g / 8, b / 8, 0}));
        ASSERT_EQ(Of(FromColor(StRGB48Pixel{}, c)), (Fields<3>{r * 257, g * 257, b * 257}));
        ASSERT_EQ(Of(FromColor(StRGBA64Pixel{}, c)), (Fields<4>{r * 257, g * 257, b * 257, c.alpha * 257u}));
        ASSERT_EQ(Of(FromColor(StColorFloats{}, c)),
                  (Fields<3>{Rounded(r * exact), Rounded(g * exact), Rounded(b * exact)}));
        ASSERT_EQ(Of(FromColor(StRGBAFloatPixel{}, c)),
                  (Fields<4>{Rounded(r * kInverseByte), Rounded(g * kInverseByte), Rounded(b * kInverseByte),
                             Rounded(c.alpha * kInverseByte)}));
        ASSERT_EQ(Of(FromColor(StGray8Pixel{}, c)), (Fields<1>{mean}));
        ASSERT_EQ(Of(FromColor(StGray4Pixel{0, 44}, c)), (Fields<2>{mean / 16, 44}));
        ASSERT_EQ(Of(FromColor(StGray2Pixel{0, 44}, c)), (Fields<2>{mean / 64, 44}));
        ASSERT_EQ(Of(FromColor(StBlackWhitePixel{0, 44}, c)), (Fields<2>{SumOf(c) < 383 ? 1u : 0u, 44}));
        ASSERT_EQ(Of(FromColor(StAlpha8Pixel{}, c)), (Fields<1>{c.alpha}));
        ASSERT_EQ(Of(FromColor(StDepthFloatPixel{}, c)), (Fields<1>{Rounded(SumOf(c) * kThreeBytes)}));
        double const third = SumOf(c) * 0.3333333432674408;
        ASSERT_EQ(Of(FromColor(StDepthUInt8Pixel{}, c)), (Fields<1>{Trunc32(third)}));
        ASSERT_EQ(Of(FromColor(StDepthUInt16Pixel{}, c)), (Fields<1>{Trunc32(third * 257.0)}));
        ASSERT_EQ(Of(FromColor(StDepthUInt24Pixel{0, 0x1C}, c)),
                  (Fields<2>{Trunc32(third * 65793.0) % 0x1000000, 0x1C}));
        ASSERT_EQ(Of(FromColor(StDepthUInt32Pixel{}, c)), (Fields<1>{Low32(third * 16843008.0)}));
        unsigned const k = 255 - std::max({r, g, b});
        ASSERT_EQ(Of(FromColor(StCMYKPixel{}, c)), (Fields<4>{255 - r - k, 255 - g - k, 255 - b - k, k}));
    }
}

TEST(ConvertSmart, Alpha32_TakesTheFloat) {
    for (float f : ManyFloats()) {
        StSpy spy;
        spy.value = f;
        StAlpha32Pixel p{9};
        p.ConvertSmart(&spy);
        ASSERT_EQ(p.alpha, Low32(f * 4294967296.0)) << f;
        ASSERT_EQ(spy.colorsAsked, 0);
    }
    EXPECT_EQ(From(StAlpha32Pixel{9}, StGray8Pixel{255}).alpha, 0u) << "1.0 is 2 to the 32";
    EXPECT_EQ(From(StAlpha32Pixel{9}, StAlpha8Pixel{0}).alpha, 0u);
    EXPECT_EQ(From(StAlpha32Pixel{9}, StDepthFloatPixel{0.5f}).alpha, 0x80000000u);
}

/// All bytes come along, and no colour is asked for.
template <class Record>
void CheckOwnType(char const* name) {
    StSpy spy;
    spy.id = Record::PixelID();
    for (std::size_t i = 0; i < sizeof spy.payload; ++i)
        spy.payload[i] = static_cast<unsigned char>(0x93 + 7 * i);
    Record p{};
    if constexpr (requires { p.ConvertSmart(&spy); }) {
        p.ConvertSmart(&spy);
        EXPECT_EQ(std::memcmp(&p, spy.payload, sizeof p), 0) << name;
        EXPECT_EQ(spy.colorsAsked + spy.floatsAsked, 0) << name;
    }
}

TEST(ConvertSmart, ARecordOfTheSameType_IsTakenWhole) {
#define ROW(Record, ...) CheckOwnType<Record>(#Record);
    FOR_EACH_LAYER_PIXEL(ROW)
#undef ROW
}

TEST(ConvertSmart, RGBA32_FastPaths) {
    for (StRGBA32Pixel c : ManyColors()) {
        ASSERT_EQ(Of(From(Color(9, 9, 9, 9), StRGB24Pixel{c.blue, c.green, c.red})),
                  (Fields<4>{c.red, c.green, c.blue, 255}));
        ASSERT_EQ(Of(From(Color(9, 9, 9, 9), StAlpha8Pixel{c.red})), (Fields<4>{c.red, c.red, c.red, c.red}));
    }
    for (unsigned v = 0; v < 32; ++v) {
        StRGB15Pixel p{31, 1, 0, 1};
        p.red = v & 31;
        ASSERT_EQ(Of(From(Color(9, 9, 9, 9), p)), (Fields<4>{v * 255 / 31, 8, 255, 255}));
    }
}

TEST(ConvertSmart, RGB32_FastPaths_KeepTheFiller) {
    StRGB32Pixel const before{9, 9, 9, 0x66};
    for (StRGBA32Pixel c : ManyColors()) {
        ASSERT_EQ(Of(From(before, StRGB24Pixel{c.blue, c.green, c.red})),
                  (Fields<4>{c.red, c.green, c.blue, 0x66}));
        ASSERT_EQ(Of(From(before, StAlpha8Pixel{c.red})), (Fields<4>{c.red, c.red, c.red, 0x66}));
        ASSERT_EQ(Of(From(before, c)), (Fields<4>{c.red, c.green, c.blue, 0x66}));
    }
    EXPECT_EQ(Of(From(before, StRGB15Pixel{31, 1, 16, 1})), (Fields<4>{131, 8, 255, 0x66}));
    EXPECT_EQ(Of(From(before, StRGB32Pixel{1, 2, 3, 4})), (Fields<4>{3, 2, 1, 4}))
        << "its own type brings its filler";
}

TEST(ConvertSmart, RGB15_FastPaths_KeepTheFlag) {
    for (unsigned flag = 0; flag < 2; ++flag) {
        StRGB15Pixel before{9, 9, 9, 0};
        before.flag = flag & 1;
        for (StRGBA32Pixel c : ManyColors()) {
            Fields<4> const expected = {c.red / 8u, c.green / 8u, c.blue / 8u, flag};
            ASSERT_EQ(Of(From(before, c)), expected);
            ASSERT_EQ(Of(From(before, StRGB32Pixel{c.blue, c.green, c.red, 0x99})), expected);
            ASSERT_EQ(Of(From(before, StRGB24Pixel{c.blue, c.green, c.red})), expected);
            ASSERT_EQ(Of(From(before, StAlpha8Pixel{c.red})),
                      (Fields<4>{c.red / 8u, c.red / 8u, c.red / 8u, flag}));
        }
        EXPECT_EQ(Of(From(before, StRGB15Pixel{1, 2, 3, 1})), (Fields<4>{3, 2, 1, 1}));
        EXPECT_EQ(Of(From(before, StRGB15Pixel{1, 2, 3, 0})), (Fields<4>{3, 2, 1, 0}));
    }
}

/// The sources besides its own type that a record reads in place.
struct StFastPaths {
    unsigned long destination;
    std::vector<unsigned long> sources;
};
std::vector<StFastPaths> const kFastPaths = {
    {SrCode("ColB"), {SrCode("RG24"), SrCode("RG15"), SrCode("Alp8")}},
    {SrCode("RG32"), {SrCode("RG24"), SrCode("RG15"), SrCode("Alp8")}},
    {SrCode("RG15"), {SrCode("ColB"), SrCode("RG32"), SrCode("RG24"), SrCode("Alp8")}},
    {SrCode("BnW1"), {SrCode("ColB"), SrCode("RG32"), SrCode("RG24"), SrCode("Alp8")}},
};
bool IsReadInPlace(unsigned long source, unsigned long destination) {
    if (source == destination) return true;
    for (StFastPaths const& paths : kFastPaths)
        if (paths.destination == destination)
            return std::find(paths.sources.begin(), paths.sources.end(), source) != paths.sources.end();
    return false;
}

/// A source whose payload tells another colour than its operations: which of the two counts?
template <class Record>
void CheckSource(unsigned long sourceID, char const* names) {
    StSpy spy;
    spy.id = sourceID;
    std::memset(spy.payload, 0x93, sizeof spy.payload);
    spy.color = Color(250, 17, 64, 200);
    spy.value = 0.375f;
    Record fromSpy{};
    fromSpy.ConvertSmart(&spy);
    int const questions = IsReadInPlace(sourceID, Record::PixelID()) ? 0 : 1;
    ASSERT_EQ(spy.colorsAsked + spy.floatsAsked, questions) << names;
    if (questions == 0) return;
    StSpy unknown;
    unknown.color = spy.color;
    unknown.value = spy.value;
    Record expected{};
    expected.ConvertSmart(&unknown);
    ASSERT_EQ(Of(fromSpy), Of(expected)) << names;
}

template <class Record>
void CheckAllSources(char const* name) {
#define ROW(Source, ...) \
    CheckSource<Record>(Source::PixelID(), (name + std::string(" from " #Source)).c_str());
    if constexpr (requires(Record p, StSpy spy) { p.ConvertSmart(&spy); }) {
        FOR_EACH_LAYER_PIXEL(ROW)
        FOR_EACH_PLAIN_PIXEL(ROW)
    }
#undef ROW
}

TEST(ConvertSmart, FastPaths_AreTakenForTheirSourcesAlone) {
#define ROW(Record, ...) CheckAllSources<Record>(#Record);
    FOR_EACH_LAYER_PIXEL(ROW)
#undef ROW
}

TEST(ConvertSmart, BlackWhite_HasTwoLimits) {
    for (unsigned sum = 380; sum <= 386; ++sum) {
        StRGBA32Pixel const c = Color(255, sum - 255, 0, 255);
        unsigned const direct = sum < 384 ? 1 : 0, other = sum < 383 ? 1 : 0;
        StBlackWhitePixel const before{0, 44};
        EXPECT_EQ(Of(From(before, c)), (Fields<2>{direct, 44})) << sum;
        EXPECT_EQ(Of(From(before, StRGB32Pixel{c.blue, c.green, c.red, 255})), (Fields<2>{direct, 44}))
            << sum;
        EXPECT_EQ(Of(From(before, StRGB24Pixel{c.blue, c.green, c.red})), (Fields<2>{direct, 44})) << sum;
        EXPECT_EQ(Of(FromColor(before, c)), (Fields<2>{other, 44})) << sum;
        EXPECT_EQ(Of(From(before, StRGBA64Pixel{65535, static_cast<std::uint16_t>((sum - 255) * 256), 0, 0})),
                  (Fields<2>{other, 44}))
            << sum;
    }
}

TEST(ConvertSmart, BlackWhite_FromAlpha8_LooksBeyondTheOpacity) {
    // The byte three places on exists and is 0, which is below 128: black, whatever the opacity.
    for (unsigned v : {0u, 127u, 128u, 255u}) {
        Smart<StAlpha8Pixel> smart(StAlpha8Pixel{static_cast<std::uint8_t>(v)});
        EXPECT_EQ(static_cast<unsigned char*>(smart->GetPixelData())[3], 0);
        StBlackWhitePixel p{0, 44};
        p.ConvertSmart(smart.Get());
        EXPECT_EQ(Of(p), (Fields<2>{1, 44})) << v;
    }
    StSpy spy;
    spy.id = StAlpha8Pixel::PixelID();
    for (unsigned v : {0u, 127u, 128u, 255u}) {
        spy.payload[3] = static_cast<unsigned char>(v);
        StBlackWhitePixel p{0, 0};
        p.ConvertSmart(&spy);
        EXPECT_EQ(p.black, v < 128 ? 1u : 0u) << v;
    }
}

}  // namespace
