#include "framewright/pixel/gamut.h"

#include <bit>
#include <cmath>
#include <limits>
#include <memory>

#include "color_test_support.h"
#include "pixel_test_support.h"
#include "slots.h"

using namespace color_test;
using pixel_test::Bits;
using pixel_test::kInf;
using pixel_test::kNaN;
using pixel_test::Of;

namespace {

using GamutRef = std::unique_ptr<ScGamut>;

constexpr StColorFloats kOver{0.25f, 0.5f, 0.75f};     // what the debug gamut of these tests shows above 1.0
constexpr StColorFloats kUnder{0.125f, 0.0f, 0.375f};  // and below 0.0

enum Policy { kClipped, kScaled, kDebug, kPolicies };
char const* const kNames[kPolicies] = {"clipped", "scaled", "debug"};

GamutRef Make(int policy) {
    if (policy == kClipped) return std::make_unique<ScClippedGamut>();
    if (policy == kScaled) return std::make_unique<ScScaledGamut>();
    return std::make_unique<ScDebugGamut>(kOver, kUnder);
}

float BelowZero() {
    return -std::numeric_limits<float>::denorm_min();
}
float AboveOne() {
    return std::nextafter(1.0f, 2.0f);
}

/// A host's collection: colours, whose components it hands over with the number of the sample.
class Samples : public ScColorSampleSet {
  public:
    explicit Samples(std::vector<StColorFloats> list) : colors(std::move(list)) {}
    void ForEachSample(ScColorSampleIterator& iterator) override {
        ++passes;
        for (std::size_t i = 0; i < colors.size(); ++i) {
            iterator.HandleSample(static_cast<long>(i), colors[i].red);
            iterator.HandleSample(static_cast<long>(i), colors[i].green);
            iterator.HandleSample(static_cast<long>(i), colors[i].blue);
        }
    }
    void SetAllSamples(StColorFloats const& color) override {
        for (StColorFloats& each : colors)
            each = color;
    }

    std::vector<StColorFloats> colors;
    int passes = 0;
};

std::vector<pixel_test::Fields<3>> FieldsOf(std::vector<StColorFloats> const& colors) {
    std::vector<pixel_test::Fields<3>> fields;
    for (StColorFloats const& color : colors)
        fields.push_back(Of(color));
    return fields;
}

Bytes WrittenGamut(ScGamut* gamut) {
    auto const stream = EmptyStream();
    WriteGamut(*stream, gamut);
    return BytesOf(*stream);
}
GamutRef ReadFrom(Bytes const& bytes) {
    ScGamut* gamut = nullptr;
    ReadGamut(*StreamOf(bytes), gamut);
    return GamutRef(gamut);
}

void AppendFloats(Bytes& bytes, std::initializer_list<float> values) {
    for (float value : values)
        Append32(bytes, std::bit_cast<std::uint32_t>(value));
}
/// A debug gamut's stream form, field by field.
Bytes DebugBytes(std::uint32_t version, StColorFloats over, StColorFloats under, float overValue,
                 float underValue) {
    Bytes bytes;
    Append32(bytes, 0x47446562);
    Append32(bytes, version);
    AppendFloats(
        bytes, {over.red, over.green, over.blue, under.red, under.green, under.blue, overValue, underValue});
    return bytes;
}

}  // namespace

TEST(Gamut, Selectors) {
    EXPECT_EQ(Make(kClipped)->GetGamutSelector(), 0x47436C69u);
    EXPECT_EQ(Make(kScaled)->GetGamutSelector(), 0x47536361u);
    EXPECT_EQ(Make(kDebug)->GetGamutSelector(), 0x47446562u);
}

TEST(Gamut, OperationsStandInTheirOrder) {
    long const slots[] = {
        SlotOf(&ScGamut::GetGamutSelector),
        SlotOf(static_cast<void (ScGamut::*)(StColorFloats&)>(&ScGamut::Constrain)),
        SlotOf(static_cast<void (ScGamut::*)(StRGBAFloatPixel&)>(&ScGamut::Constrain)),
        SlotOf(static_cast<void (ScGamut::*)(float&)>(&ScGamut::Constrain)),
        SlotOf(&ScGamut::ConstrainSamples),
        SlotOf(&ScGamut::PutToStream),
        SlotOf(&ScGamut::GetFromStream),
        SlotOf(&ScGamut::Clone),
    };
    long expected = 2;  // behind the destructor
    for (long slot : slots)
        EXPECT_EQ(slot, expected++);
    EXPECT_EQ(SlotOf(&ScColorSampleIterator::HandleSample), 0);
    EXPECT_EQ(sizeof(ScGamut), sizeof(void*)) << "no data";
    EXPECT_EQ(sizeof(ScClippedGamut), sizeof(void*));
    EXPECT_EQ(sizeof(ScScaledGamut), sizeof(void*));
}

TEST(Gamut, DefaultDebugColorsAreTheSameRed) {
    EXPECT_EQ(Of(SkDefaultDebugOverflowColor()), Of(StColorFloats{1.0f, 0.0f, 0.0f}));
    EXPECT_EQ(Of(SkDefaultDebugUnderflowColor()), Of(StColorFloats{1.0f, 0.0f, 0.0f}));
}

// Single colours.

TEST(Gamut, WithinTheRangeNothingChanges) {
    float const inside[] = {
        0.0f, -0.0f, std::numeric_limits<float>::denorm_min(), 0.5f, std::nextafter(1.0f, 0.0f), 1.0f};
    for (int policy = 0; policy < kPolicies; ++policy) {
        SCOPED_TRACE(kNames[policy]);
        GamutRef const gamut = Make(policy);
        for (float a : inside) {
            for (float b : inside) {
                StColorFloats color{a, b, a};
                gamut->Constrain(color);
                EXPECT_EQ(Of(color), Of(StColorFloats{a, b, a}));
                StRGBAFloatPixel pixel{a, b, b, a};
                gamut->Constrain(pixel);
                EXPECT_EQ(Of(pixel), Of(StRGBAFloatPixel{a, b, b, a}));
            }
            float value = a;
            gamut->Constrain(value);
            EXPECT_EQ(Bits(value), Bits(a));
        }
    }
}

TEST(Gamut, NotANumberStays) {
    for (int policy = 0; policy < kPolicies; ++policy) {
        SCOPED_TRACE(kNames[policy]);
        GamutRef const gamut = Make(policy);
        StColorFloats color{kNaN, 0.5f, kNaN};
        gamut->Constrain(color);
        EXPECT_EQ(Of(color), Of(StColorFloats{kNaN, 0.5f, kNaN}));
        StRGBAFloatPixel pixel{0.25f, kNaN, 1.0f, kNaN};
        gamut->Constrain(pixel);
        EXPECT_EQ(Of(pixel), Of(StRGBAFloatPixel{0.25f, kNaN, 1.0f, kNaN}));
        float value = kNaN;
        gamut->Constrain(value);
        EXPECT_TRUE(std::isnan(value));
    }
}

TEST(ClippedGamut, CutsEachChannel) {
    struct {
        float value, expected;
    } const rows[] = {{AboveOne(), 1.0f}, {2.0f, 1.0f}, {kInf, 1.0f}, {BelowZero(), 0.0f},     {-1.0f, 0.0f},
                      {-kInf, 0.0f},      {1.0f, 1.0f}, {0.0f, 0.0f}, {0.9999999f, 0.9999999f}};
    ScClippedGamut gamut;
    for (auto const& row : rows) {
        SCOPED_TRACE(row.value);
        float const v = row.value, e = row.expected;
        for (int channel = 0; channel < 4; ++channel) {
            auto const at = [=](int i, float there) { return i == channel ? there : 0.5f; };
            StColorFloats color{at(0, v), at(1, v), at(2, v)};
            gamut.Constrain(color);
            EXPECT_EQ(Of(color), Of(StColorFloats{at(0, e), at(1, e), at(2, e)})) << channel;
            StRGBAFloatPixel pixel{at(0, v), at(1, v), at(2, v), at(3, v)};
            gamut.Constrain(pixel);
            EXPECT_EQ(Of(pixel), Of(StRGBAFloatPixel{at(0, e), at(1, e), at(2, e), at(3, e)})) << channel;
        }
        float value = v;
        gamut.Constrain(value);
        EXPECT_EQ(Bits(value), Bits(e));
    }
}

TEST(ScaledGamut, ScalesTheColorAsAWhole) {
    struct {
        StColorFloats color, expected;
    } const rows[] = {
        {{2.0f, 1.0f, 0.0f}, {1.0f, 0.5f, 0.0f}},    // the hue stays
        {{2.0f, -1.0f, 0.5f}, {1.0f, 0.0f, 0.5f}},   // both ends: hi 2, lo -1
        {{0.0f, 4.0f, 2.0f}, {0.0f, 1.0f, 0.5f}},    // above alone: lo is 0.0
        {{1.0f, 0.0f, -1.0f}, {1.0f, 0.5f, 0.0f}},   // below alone: hi is 1.0
        {{0.5f, -1.0f, 0.0f}, {0.75f, 0.0f, 0.5f}},  // although no channel is at hi
        {{0.5f, 0.25f, 4.0f}, {0.125f, 0.0625f, 1.0f}},
        {{3.0f, 2.0f, 4.0f}, {0.75f, 0.5f, 1.0f}},  // the highest counts, not the last
        {{-1.0f, -3.0f, -2.0f}, {0.5f, 0.0f, 0.25f}},
    };
    ScScaledGamut gamut;
    for (auto const& row : rows) {
        StColorFloats color = row.color;
        gamut.Constrain(color);
        EXPECT_EQ(Of(color), Of(row.expected)) << row.color.red << " " << row.color.green;
        // A pixel's colour is treated alike, its alpha for itself.
        struct {
            float alpha, expected;
        } const alphas[] = {{0.25f, 0.25f}, {3.0f, 1.0f}, {-2.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 0.0f}};
        for (auto const& alpha : alphas) {
            StRGBAFloatPixel pixel{row.color.red, row.color.green, row.color.blue, alpha.alpha};
            gamut.Constrain(pixel);
            EXPECT_EQ(Of(pixel), Of(StRGBAFloatPixel{row.expected.red, row.expected.green, row.expected.blue,
                                                     alpha.expected}));
        }
    }
}

TEST(ScaledGamut, AlphaAloneOutsideLeavesTheColor) {
    ScScaledGamut gamut;
    StRGBAFloatPixel pixel{0.5f, 0.25f, 1.0f, 2.0f};
    gamut.Constrain(pixel);
    EXPECT_EQ(Of(pixel), Of(StRGBAFloatPixel{0.5f, 0.25f, 1.0f, 1.0f}));
}

TEST(ScaledGamut, ChannelsBesideANotANumberAreStillScaled) {
    ScScaledGamut gamut;
    StColorFloats color{2.0f, kNaN, 1.0f};
    gamut.Constrain(color);
    EXPECT_EQ(Of(color), Of(StColorFloats{1.0f, kNaN, 0.5f}));
}

TEST(ScaledGamut, ALoneValueIsCut) {
    struct {
        float value, expected;
    } const rows[] = {{2.0f, 1.0f}, {AboveOne(), 1.0f}, {-1.0f, 0.0f}, {BelowZero(), 0.0f}, {0.5f, 0.5f}};
    ScScaledGamut gamut;
    for (auto const& row : rows) {
        float value = row.value;
        gamut.Constrain(value);
        EXPECT_EQ(Bits(value), Bits(row.expected)) << row.value;
    }
}

TEST(DebugGamut, ShowsTheLoudColors) {
    ScDebugGamut gamut(kOver, kUnder);
    for (int channel = 0; channel < 3; ++channel) {
        auto const with = [=](float there) {
            return StColorFloats{channel == 0 ? there : 0.5f, channel == 1 ? there : 0.5f,
                                 channel == 2 ? there : 0.5f};
        };
        struct {
            float value;
            StColorFloats expected;
        } const rows[] = {{AboveOne(), kOver}, {kInf, kOver},      {BelowZero(), kUnder},
                          {-kInf, kUnder},     {1.0f, with(1.0f)}, {0.0f, with(0.0f)}};
        for (auto const& row : rows) {
            StColorFloats color = with(row.value);
            gamut.Constrain(color);
            EXPECT_EQ(Of(color), Of(row.expected)) << channel << " " << row.value;
        }
    }
}

TEST(DebugGamut, OverflowIsTestedFirst) {
    ScDebugGamut gamut(kOver, kUnder);
    for (StColorFloats color :
         {StColorFloats{-1.0f, 0.5f, 2.0f}, StColorFloats{2.0f, -1.0f, 0.0f}, {-1.0f, 2.0f, -1.0f}}) {
        gamut.Constrain(color);
        EXPECT_EQ(Of(color), Of(kOver));
    }
    StRGBAFloatPixel pixel{-1.0f, 0.5f, 0.5f, 2.0f};
    gamut.Constrain(pixel);
    EXPECT_EQ(Of(pixel), Of(StRGBAFloatPixel{kOver.red, kOver.green, kOver.blue, 1.0f}));
}

TEST(DebugGamut, AlphaIsTestedLikeAChannelAndBecomesTheValue) {
    // The two values are 1.0 at first; only a stream brings others.
    GamutRef const gamut = ReadFrom(DebugBytes(1, kOver, kUnder, 0.625f, 0.5f));
    StRGBAFloatPixel const over{kOver.red, kOver.green, kOver.blue, 0.625f};
    StRGBAFloatPixel const under{kUnder.red, kUnder.green, kUnder.blue, 0.5f};
    struct {
        StRGBAFloatPixel pixel, expected;
    } const rows[] = {
        {{0.5f, 0.5f, 0.5f, 1.5f}, over},  {{0.5f, 0.5f, 0.5f, -0.5f}, under},
        {{1.5f, 0.5f, 0.5f, 0.5f}, over},  {{0.5f, 0.5f, -0.5f, 0.5f}, under},
        {{0.5f, 1.5f, 0.5f, -1.0f}, over}, {{0.5f, -0.5f, 0.5f, 1.0f}, under},
        {{0.5f, 0.5f, 1.5f, 1.0f}, over},  {{-0.5f, 0.5f, 0.5f, 0.0f}, under},
    };
    for (auto const& row : rows) {
        StRGBAFloatPixel pixel = row.pixel;
        gamut->Constrain(pixel);
        EXPECT_EQ(Of(pixel), Of(row.expected));
    }
    float above = 1.5f, below = -0.5f;
    gamut->Constrain(above);
    gamut->Constrain(below);
    EXPECT_EQ(Bits(above), Bits(0.625f));
    EXPECT_EQ(Bits(below), Bits(0.5f));
}

TEST(DebugGamut, BothValuesAreOneAtFirst) {
    ScDebugGamut gamut(kOver, kUnder);
    for (float value : {AboveOne(), 7.0f, BelowZero(), -7.0f}) {
        gamut.Constrain(value);
        EXPECT_EQ(Bits(value), Bits(1.0f));
    }
    StRGBAFloatPixel pixel{0.5f, 0.5f, 0.5f, -0.5f};
    gamut.Constrain(pixel);
    EXPECT_EQ(Of(pixel), Of(StRGBAFloatPixel{kUnder.red, kUnder.green, kUnder.blue, 1.0f}));
}

// Collections.

TEST(ClippedGamut, Samples_EachComponentIsCut) {
    Samples samples({{2.0f, 0.5f, -1.0f}, {1.0f, 0.0f, kNaN}});
    ScClippedGamut().ConstrainSamples(samples);
    EXPECT_EQ(FieldsOf(samples.colors), FieldsOf({{1.0f, 0.5f, 0.0f}, {1.0f, 0.0f, kNaN}}));
    EXPECT_EQ(samples.passes, 1);
}

TEST(ScaledGamut, Samples_AreScaledByTheRangeOfAll) {
    Samples samples({{2.0f, 1.0f, 0.0f}, {-2.0f, 0.5f, 1.0f}});  // from -2 to 2
    ScScaledGamut().ConstrainSamples(samples);
    EXPECT_EQ(FieldsOf(samples.colors), FieldsOf({{1.0f, 0.75f, 0.5f}, {0.0f, 0.625f, 0.75f}}));
    EXPECT_EQ(samples.passes, 2);
}

TEST(ScaledGamut, Samples_WithinTheRangeAreStretchedUpToOne) {
    // Unlike a single colour, which stays: there is no test for being within the range.
    Samples samples({{0.25f, 0.125f, 0.5f}});
    ScScaledGamut().ConstrainSamples(samples);
    EXPECT_EQ(FieldsOf(samples.colors), FieldsOf({{0.5f, 0.25f, 1.0f}}));
    // The range begins at 0.0, so the lowest is not stretched down.
    Samples high({{0.5f, 0.5f, 0.5f}});
    ScScaledGamut().ConstrainSamples(high);
    EXPECT_EQ(FieldsOf(high.colors), FieldsOf({{1.0f, 1.0f, 1.0f}}));
    // And ends at 0.0 at least.
    Samples low({{-0.5f, -1.0f, -0.25f}});
    ScScaledGamut().ConstrainSamples(low);
    EXPECT_EQ(FieldsOf(low.colors), FieldsOf({{0.5f, 0.0f, 0.75f}}));
}

TEST(ScaledGamut, Samples_ThatAreAllZeroAreDividedByZero) {
    // 0.0 times infinity.
    Samples samples({{0.0f, 0.0f, 0.0f}});
    ScScaledGamut().ConstrainSamples(samples);
    EXPECT_EQ(FieldsOf(samples.colors), FieldsOf({{kNaN, kNaN, kNaN}}));
    Samples none({});
    ScScaledGamut().ConstrainSamples(none);
    EXPECT_TRUE(none.colors.empty());
}

TEST(ScaledGamut, Samples_NotANumberIsNoPartOfTheRange) {
    Samples samples({{kNaN, 2.0f, 1.0f}});
    ScScaledGamut().ConstrainSamples(samples);
    EXPECT_EQ(FieldsOf(samples.colors), FieldsOf({{kNaN, 1.0f, 0.5f}}));
}

TEST(DebugGamut, Samples_OneOutsideMakesAllLoud) {
    StColorFloats const inside{0.5f, 1.0f, 0.0f};
    struct {
        StColorFloats first, second, expectedFirst, expectedSecond;
    } const rows[] = {
        {inside, {0.5f, AboveOne(), 0.5f}, kOver, kOver},
        {{2.0f, 0.5f, 0.5f}, inside, kOver, kOver},
        {inside, {0.5f, 0.5f, BelowZero()}, kUnder, kUnder},
        {{-1.0f, 0.5f, 0.5f}, inside, kUnder, kUnder},
        {{-1.0f, 0.5f, 0.5f}, {0.5f, 0.5f, 2.0f}, kOver, kOver},  // overflow first, wherever it stands
        {inside, inside, inside, inside},
        {{kNaN, 0.5f, 0.5f}, inside, {kNaN, 0.5f, 0.5f}, inside},
    };
    for (auto const& row : rows) {
        Samples samples({row.first, row.second});
        ScDebugGamut(kOver, kUnder).ConstrainSamples(samples);
        EXPECT_EQ(FieldsOf(samples.colors), FieldsOf({row.expectedFirst, row.expectedSecond}));
        EXPECT_EQ(samples.passes, 1);
    }
}

// Streams.

TEST(Gamut, Stream_ClippedAndScaledAreTheirSelectorAlone) {
    EXPECT_EQ(WrittenGamut(Make(kClipped).get()), (Bytes{'G', 'C', 'l', 'i'}));
    EXPECT_EQ(WrittenGamut(Make(kScaled).get()), (Bytes{'G', 'S', 'c', 'a'}));
    auto const stream = EmptyStream();
    Make(kClipped)->PutToStream(*stream);
    Make(kScaled)->PutToStream(*stream);
    Make(kClipped)->GetFromStream(*stream);
    Make(kScaled)->GetFromStream(*stream);
    EXPECT_EQ(stream->GetLength(), 0u);
}

TEST(Gamut, Stream_DebugHasItsData) {
    Bytes const expected = DebugBytes(1, kOver, kUnder, 1.0f, 1.0f);
    EXPECT_EQ(expected.size(), 4u + 36u);
    EXPECT_EQ(WrittenGamut(Make(kDebug).get()), expected);
}

TEST(Gamut, Stream_NoGamutIsWrittenAsAClippedOne) {
    EXPECT_EQ(WrittenGamut(nullptr), (Bytes{'G', 'C', 'l', 'i'}));
}

TEST(Gamut, Stream_ComesBackAsItWas) {
    for (int policy = 0; policy < kPolicies; ++policy) {
        SCOPED_TRACE(kNames[policy]);
        GamutRef const gamut = Make(policy);
        Bytes bytes = WrittenGamut(gamut.get());
        bytes.push_back('!');
        auto const stream = StreamOf(bytes);
        ScGamut* read = nullptr;
        ReadGamut(*stream, read);
        GamutRef const owned(read);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->GetGamutSelector(), gamut->GetGamutSelector());
        EXPECT_EQ(WrittenGamut(read), WrittenGamut(gamut.get()));
        EXPECT_EQ(stream->GetPosition(), bytes.size() - 1) << "nothing is read beyond the gamut";
    }
}

TEST(Gamut, Stream_TheVersionIsNotLookedAt) {
    for (std::uint32_t version : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        GamutRef const gamut = ReadFrom(DebugBytes(version, kOver, kUnder, 2.0f, kNaN));
        EXPECT_EQ(WrittenGamut(gamut.get()), DebugBytes(1, kOver, kUnder, 2.0f, kNaN));
    }
}

TEST(Gamut, Stream_UnknownSelector) {
    for (std::uint32_t selector : {0u, 0x47436C68u, 0x47436C6Au, 0x696C4347u, 0xFFFFFFFFu}) {
        Bytes bytes;
        Append32(bytes, selector);
        bytes.resize(64);
        ScClippedGamut there;
        ScGamut* gamut = &there;
        auto const read = [&] { ReadGamut(*StreamOf(bytes), gamut); };
        EXPECT_EQ(ErrorOf(read), SkUnknownGamutError()) << selector;
        EXPECT_FALSE(ThrowsMessage(read)) << selector;
        EXPECT_EQ(gamut, &there);
    }
    EXPECT_NE(SkUnknownGamutError(), 0);
}

TEST(Gamut, Stream_CutShort) {
    Bytes const whole = DebugBytes(1, kOver, kUnder, 0.5f, 0.25f);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Bytes const cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        ScClippedGamut there;
        ScGamut* gamut = &there;
        EXPECT_EQ(ErrorOf([&] { ReadGamut(*StreamOf(cut), gamut); }), SkEndOfFile()) << length;
        EXPECT_EQ(gamut, &there) << length;
    }
}

// Memory.

TEST(Gamut, Clone_IsACopyOfItsOwn) {
    for (int policy = 0; policy < kPolicies; ++policy) {
        SCOPED_TRACE(kNames[policy]);
        GamutRef gamut = Make(policy);
        Bytes const written = WrittenGamut(gamut.get());
        GamutRef const clone(gamut->Clone());
        EXPECT_NE(clone.get(), gamut.get());
        gamut.reset();
        EXPECT_EQ(WrittenGamut(clone.get()), written);
    }
    GamutRef const read = ReadFrom(DebugBytes(1, kUnder, kOver, 0.25f, 0.75f));
    GamutRef const clone(read->Clone());
    EXPECT_EQ(WrittenGamut(clone.get()), DebugBytes(1, kUnder, kOver, 0.25f, 0.75f));
}

TEST(Gamut, RefusedMemory) {
    for (int policy = 0; policy < kPolicies; ++policy) {
        SCOPED_TRACE(kNames[policy]);
        GamutRef const gamut = Make(policy);
        auto const stream = StreamOf(WrittenGamut(gamut.get()));
        ScRefuseAllocations const refuse(0);
        EXPECT_EQ(ErrorOf([&] { GamutRef(gamut->Clone()); }), -108);
        ScGamut* read = nullptr;
        EXPECT_EQ(ErrorOf([&] { ReadGamut(*stream, read); }), -108);
        EXPECT_EQ(read, nullptr);
    }
    ScRefuseAllocations const refuse(0);
    EXPECT_EQ(new ScClippedGamut, nullptr);
    EXPECT_EQ(ScRefuseAllocations::Seen(), 1);
}
