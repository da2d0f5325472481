#include <cmath>
#include <limits>

#include "framewright/thornmere/memory.h"
#include "kinds.h"

using namespace testing_frames;

namespace {

constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// trunc to an integer; what does not fit is the least one, as on the machine that this was designed for.
long Trunc(float value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<long>(value) : -2147483648L;
}

long Clamp(long value, long count) {
    return value < 1 ? 0 : value > count - 1 ? count - 1 : value;
}

/// Fixed point in 1/256.
std::uint8_t Mix(unsigned a, unsigned b, unsigned w) {
    return static_cast<std::uint8_t>((b * w + a * (256 - w)) >> 8);
}

StRGBA32Pixel MixFour(std::array<StRGBA32Pixel, 4> const& corner, float tx, float ty) {
    auto const wx = static_cast<unsigned>(256.0 * tx);
    auto const wy = static_cast<unsigned>(256.0 * ty);
    auto const channel = [&](std::uint8_t StRGBA32Pixel::*c) {
        return Mix(Mix(corner[0].*c, corner[1].*c, wx), Mix(corner[2].*c, corner[3].*c, wx), wy);
    };
    return {channel(&StRGBA32Pixel::blue), channel(&StRGBA32Pixel::green), channel(&StRGBA32Pixel::red),
            channel(&StRGBA32Pixel::alpha)};
}

StRef<PlainLayer<StRGBA32Pixel>> RandomRGBA(StPoint const& size, unsigned seed = 1) {
    auto layer = MakeLayer<StRGBA32Pixel>(size);
    FillRandom(*layer, KindOfID(SrCode("ColB")), seed);
    return layer;
}

constexpr float kCoordinates[] = {0.0f, 0.25f, 0.5f, 0.999f, 1.0f,  2.5f,    3.0f, 3.5f,  3.999f,
                                  4.0f, 4.75f, 9.0f, -0.5f,  -1.5f, -100.0f, 1e6f, 1e10f, -1e10f};

TEST(Fractional, BytesBlendInFixedPoint) {
    auto const layer = RandomRGBA({4, 4});
    for (float const y : kCoordinates)
        for (float const x : kCoordinates) {
            auto const fraction = [](float c) {
                float const f = c - static_cast<float>(Trunc(c));
                return !(f > 0.0f) ? 0.0f : f >= 1.0f ? 1.0f : f;
            };
            auto const pair = [](float c) {
                long const c0 = Trunc(c);
                long const c1 = c0 + 1 >= 4 ? c0 + 1 - 4 : c0 + 1;
                return std::pair{Clamp(c0, 4), Clamp(c1, 4)};
            };
            auto const [x0, x1] = pair(x);
            auto const [y0, y1] = pair(y);
            StRGBA32Pixel const expected =
                MixFour({layer->GetMatchedPixelAt(x0, y0), layer->GetMatchedPixelAt(x1, y0),
                         layer->GetMatchedPixelAt(x0, y1), layer->GetMatchedPixelAt(x1, y1)},
                        fraction(x), fraction(y));
            EXPECT_EQ(layer->GetFractionalPixel(x, y), expected) << x << ", " << y;
            SmartRef const smart(layer->NewSmartPixel());
            layer->GetFractionalSmartPixel(x, y, smart.get());
            EXPECT_EQ(smart->GetRGBA32(), expected);
        }
}

TEST(Fractional, TheLastColumnBlendsWithTheFirst) {
    auto const layer = MakeLayer<StGray8Pixel>({1, 4});
    for (std::uint8_t x = 0; x < 4; ++x)
        layer->PutMatchedPixelAt(x, 0, {static_cast<std::uint8_t>(x * 40)});
    EXPECT_EQ(layer->GetFractionalPixel(3.5f, 0).level, 60);
    EXPECT_EQ(layer->GetFractionalPixel(-0.5f, 0).level, 0);
    EXPECT_EQ(layer->GetFractionalPixel(1.25f, 0).level, 50);
}

TEST(Fractional, TheWeightOfTheNeighbourStaysBelow256) {
    auto const layer = MakeLayer<StGray8Pixel>({1, 2});
    layer->PutMatchedPixelAt(0, 0, {0});
    layer->PutMatchedPixelAt(1, 0, {255});
    EXPECT_EQ(layer->GetFractionalPixel(0.9999f, 0).level, 255 * 255 / 256);
}

TEST(Fractional, TheFillerOfRGB32IsThatOfTheFirstCorner) {
    auto const layer = MakeLayer<StRGB32Pixel>({1, 2});
    layer->PutMatchedPixelAt(0, 0, {0, 0, 0, 7});
    layer->PutMatchedPixelAt(1, 0, {200, 100, 50, 99});
    StRGB32Pixel const pixel = layer->GetFractionalPixel(0.5f, 0);
    EXPECT_EQ(pixel.blue, 100);
    EXPECT_EQ(pixel.green, 50);
    EXPECT_EQ(pixel.red, 25);
    EXPECT_EQ(pixel.filler, 7);
}

template <class Record>
class FractionalOf : public testing::Test {};
TYPED_TEST_SUITE(FractionalOf, AllRecords);

TYPED_TEST(FractionalOf, BlendsByTheRecordsRule_OrTakesThePixel) {
    using Record = TypeParam;
    auto const layer = MakeLayer<Record>({4, 5});
    FillRandom(*layer, KindOfID(Record::PixelID()), 1);
    for (float const y : {0.0f, 0.25f, 2.75f, 3.5f})
        for (float const x : {0.0f, 0.5f, 3.125f, 4.5f}) {
            long const x0 = Trunc(x), y0 = Trunc(y);
            long const x1 = (x0 + 1) % 5, y1 = (y0 + 1) % 4;
            Record expected = layer->GetMatchedPixelAt(x0, y0);
            if constexpr (requires { expected.Blend(expected, 0.5f); }) {
                expected.Blend(layer->GetMatchedPixelAt(x1, y0), x - static_cast<float>(x0));
                Record below = layer->GetMatchedPixelAt(x0, y1);
                below.Blend(layer->GetMatchedPixelAt(x1, y1), x - static_cast<float>(x0));
                expected.Blend(below, y - static_cast<float>(y0));
            }
            EXPECT_EQ(ToNative(layer->GetFractionalPixel(x, y)), ToNative(expected)) << x << ", " << y;
        }
}

TYPED_TEST(FractionalOf, AnyFloatIsSafe) {
    auto const layer = MakeLayer<TypeParam>({3, 2});
    FillRandom(*layer, KindOfID(TypeParam::PixelID()), 1);
    SmImagerFrame& frame = *layer;
    SmartRef const smart(frame.NewSmartPixel());
    constexpr float kFloats[] = {kNone,  kInfinity,     -kInfinity,     3e38f,
                                 -3e38f, 2147483648.0f, -2147483648.0f, 1e-40f};
    for (float const x : kFloats)
        for (float const y : kFloats) {
            frame.GetFractionalSmartPixel(x, y, smart.get());
            for (StTilingStyles const tiling : {StTilingStyles{0, 0}, {1, 1}, {1, 0}}) {
                StRGBA32Pixel color{};
                StColorFloats floats{};
                float intensity = 0, du = 0, dv = 0;
                frame.GetFractionalUVPixel(x, y, color, tiling, x);
                frame.GetFractionalUVPixel(x, y, floats, tiling, x);
                frame.GetFractionalUVPixel(x, y, intensity, tiling, x);
                frame.GetUVDerivatives(x, y, du, dv, tiling, x);
            }
        }
}

// Texture coordinates.

struct Texture {
    long W, H;
    float X, Y;
};

/// Steps 1 to 3 of every texture read.
Texture PlaceOf(StPoint const& size, float u, float v, StTilingStyles const& tiling, bool clamp = true) {
    auto const unit = [](float c) { return c > 0.0f ? (c < 1.0f ? c : 1.0f) : 0.0f; };
    if (clamp) {
        u = unit(u);
        v = unit(v);
    }
    auto const length = [](long count, int style) { return std::max(count - (style == 1 ? 0 : 1), 1L); };
    long const W = length(size.horizontal, tiling.horizontal);
    long const H = length(size.vertical, tiling.vertical);
    return {W, H, static_cast<float>(W) * u, static_cast<float>((1.0 - v) * static_cast<double>(H))};
}

void HalfStep(Texture& at, StTilingStyles const& tiling) {
    if (tiling.horizontal == 1 && (at.X -= 0.5f) < 0.0f) at.X += static_cast<float>(at.W);
    if (tiling.vertical == 1 && (at.Y -= 0.5f) < 0.0f) at.Y += static_cast<float>(at.H);
}

struct Corners {
    long x0, x1, y0, y1;
    float tx, ty;
};

Corners CornersOf(Texture const& at, StPoint const& size) {
    auto const next = [](long c0, long m) { return c0 + 1 >= m ? c0 + 1 - m : c0 + 1; };
    long const x0 = Trunc(at.X), y0 = Trunc(at.Y);
    return {Clamp(x0, size.horizontal),    Clamp(next(x0, at.W), size.horizontal),
            Clamp(y0, size.vertical),      Clamp(next(y0, at.H), size.vertical),
            at.X - static_cast<float>(x0), at.Y - static_cast<float>(y0)};
}

constexpr StTilingStyles kTilings[] = {{0, 0}, {1, 1}, {1, 0}, {0, 1}, {2, 255}};
constexpr float kTexture[] = {0.0f, 0.1f, 0.25f, 0.5f, 0.625f, 0.9f, 0.99999f, 1.0f, 1.5f, -0.5f};
constexpr StPoint kSizes[] = {{4, 4}, {3, 7}, {1, 1}, {1, 5}, {6, 1}, {2, 2}};

TEST(Texture, BytesForm) {
    for (StPoint const size : kSizes) {
        auto const layer = RandomRGBA(size);
        for (StTilingStyles const tiling : kTilings)
            for (float const v : kTexture)
                for (float const u : kTexture) {
                    Texture at = PlaceOf(size, u, v, tiling);
                    HalfStep(at, tiling);
                    Corners const c = CornersOf(at, size);
                    StRGBA32Pixel const expected =
                        MixFour({layer->GetMatchedPixelAt(c.x0, c.y0), layer->GetMatchedPixelAt(c.x1, c.y0),
                                 layer->GetMatchedPixelAt(c.x0, c.y1), layer->GetMatchedPixelAt(c.x1, c.y1)},
                                c.tx, c.ty);
                    StRGBA32Pixel pixel{};
                    layer->GetFractionalUVPixel(u, v, pixel, tiling, 0.5f);
                    EXPECT_EQ(pixel, expected) << u << ", " << v;
                }
    }
}

TEST(Texture, IntensityForm) {
    for (StPoint const size : kSizes) {
        auto const layer = RandomRGBA(size);
        for (StTilingStyles const tiling : kTilings)
            for (float const v : kTexture)
                for (float const u : kTexture) {
                    Texture at = PlaceOf(size, u, v, tiling);
                    HalfStep(at, tiling);
                    Corners const c = CornersOf(at, size);
                    auto const of = [&](long x, long y) -> double {
                        StRGBA32Pixel const p = layer->GetMatchedPixelAt(x, y);
                        return static_cast<float>(p.red + p.green + p.blue) * 0.0013071895809844136f;
                    };
                    double const tx = c.tx, ty = c.ty;
                    auto const expected =
                        static_cast<float>((1.0 - ty) * (of(c.x0, c.y0) * (1.0 - tx) + of(c.x1, c.y0) * tx) +
                                           (of(c.x0, c.y1) * (1.0 - tx) + of(c.x1, c.y1) * tx) * ty);
                    float intensity = 0;
                    layer->GetFractionalUVPixel(u, v, intensity, tiling, 0.0f);
                    EXPECT_EQ(intensity, expected) << u << ", " << v;
                }
    }
}

TEST(Texture, FloatColourForm_HasNoHalfStep_AndWrapsAlways) {
    for (StPoint const size : kSizes) {
        auto const layer = RandomRGBA(size);
        for (StTilingStyles const tiling : kTilings)
            for (float const v : kTexture)
                for (float const u : kTexture) {
                    Texture at = PlaceOf(size, u, v, tiling);
                    if (at.X >= static_cast<float>(at.W)) at.X -= static_cast<float>(at.W);
                    if (at.Y >= static_cast<float>(at.H)) at.Y -= static_cast<float>(at.H);
                    Corners const c = CornersOf(at, size);
                    auto const of = [&](long x, long y) {
                        StColorFloats color{};
                        pixel::GetColorFloats(layer->GetMatchedPixelAt(x, y), color);
                        return color;
                    };
                    StColorFloats expected = of(c.x0, c.y0), below = of(c.x0, c.y1);
                    expected.Blend(of(c.x1, c.y0), c.tx);
                    below.Blend(of(c.x1, c.y1), c.tx);
                    expected.Blend(below, c.ty);
                    StColorFloats color{};
                    layer->GetFractionalUVPixel(u, v, color, tiling, 0.0f);
                    EXPECT_EQ(ToNative(color), ToNative(expected)) << u << ", " << v;
                }
    }
}

TEST(Texture, VRunsUpFromTheBottomRow) {
    auto const layer = MakeLayer<StRGBA32Pixel>({4, 1});
    for (std::uint8_t y = 0; y < 4; ++y)
        layer->PutMatchedPixelAt(0, y, {y, y, y, 255});
    StRGBA32Pixel pixel{};
    layer->GetFractionalUVPixel(0, 1.0f, pixel, SkNoTilings(), 0);
    EXPECT_EQ(pixel.red, 0);
    layer->GetFractionalUVPixel(0, 0.0f, pixel, SkNoTilings(), 0);
    EXPECT_EQ(pixel.red, 3);
    StColorFloats color{};
    layer->GetFractionalUVPixel(0, 0.0f, color, SkNoTilings(), 0);
    EXPECT_EQ(color.red, 0.0f) << "the float colour form wraps to the top row";
}

TEST(Texture, TheClampComesBeforeTheTiling) {
    auto const layer = RandomRGBA({4, 4});
    StRGBA32Pixel beyond{}, end{}, half{};
    layer->GetFractionalUVPixel(1.5f, 0.5f, beyond, {1, 1}, 0);
    layer->GetFractionalUVPixel(1.0f, 0.5f, end, {1, 1}, 0);
    layer->GetFractionalUVPixel(0.5f, 0.5f, half, {1, 1}, 0);
    EXPECT_EQ(beyond, end);
    EXPECT_NE(Word(beyond), Word(half));
}

TEST(Texture, FormsOfOneTiledReadDifferByHalfAPixel) {
    auto const layer = MakeLayer<StRGBA32Pixel>({1, 4});
    for (std::uint8_t x = 0; x < 4; ++x) {
        auto const level = static_cast<std::uint8_t>(x * 60);
        layer->PutMatchedPixelAt(x, 0, {level, level, level, 255});
    }
    StColorFloats color{};
    float intensity = 0;
    layer->GetFractionalUVPixel(0.5f, 0.5f, color, {1, 1}, 0);
    layer->GetFractionalUVPixel(0.5f, 0.5f, intensity, {1, 1}, 0);
    EXPECT_NEAR(color.red, 120.0 / 255, 1e-6);
    EXPECT_NEAR(intensity, 90.0 / 255, 1e-6);
}

TYPED_TEST(FractionalOf, TextureReadsConvertTheirCorners) {
    using Record = TypeParam;
    if constexpr (!pixel::MappedPixel<Record>) {
        StPoint const size{5, 6};
        auto const layer = MakeLayer<Record>(size);
        FillRandom(*layer, KindOfID(Record::PixelID()), 1);
        for (StTilingStyles const tiling : kTilings)
            for (float const v : {0.0f, 0.3f, 1.0f})
                for (float const u : {0.0f, 0.45f, 1.0f}) {
                    Texture at = PlaceOf(size, u, v, tiling);
                    HalfStep(at, tiling);
                    Corners const c = CornersOf(at, size);
                    auto const record = [&](long x, long y) { return layer->GetMatchedPixelAt(x, y); };
                    StRGBA32Pixel const expected =
                        MixFour({pixel::GetRGBA32(record(c.x0, c.y0)), pixel::GetRGBA32(record(c.x1, c.y0)),
                                 pixel::GetRGBA32(record(c.x0, c.y1)), pixel::GetRGBA32(record(c.x1, c.y1))},
                                c.tx, c.ty);
                    StRGBA32Pixel pixel{};
                    layer->GetFractionalUVPixel(u, v, pixel, tiling, 0);
                    EXPECT_EQ(pixel, expected);
                    auto const of = [&](long x, long y) -> double { return pixel::GetFloat(record(x, y)); };
                    double const tx = c.tx, ty = c.ty;
                    float intensity = 0;
                    layer->GetFractionalUVPixel(u, v, intensity, tiling, 0);
                    EXPECT_EQ(
                        intensity,
                        static_cast<float>((1.0 - ty) * (of(c.x0, c.y0) * (1.0 - tx) + of(c.x1, c.y0) * tx) +
                                           (of(c.x0, c.y1) * (1.0 - tx) + of(c.x1, c.y1) * tx) * ty));
                }
    }
}

TYPED_TEST(FractionalOf, DerivativesTakeFourSamplesHalfAPixelAround) {
    using Record = TypeParam;
    if constexpr (!pixel::MappedPixel<Record>) {
        StPoint const size{5, 6};
        auto const layer = MakeLayer<Record>(size);
        FillRandom(*layer, KindOfID(Record::PixelID()), 1);
        for (StTilingStyles const tiling : kTilings)
            for (float const v : {0.0f, 0.3f, 1.0f, 1.25f})
                for (float const u : {0.0f, 0.45f, 1.0f, -0.5f}) {
                    Texture at = PlaceOf(size, u, v, tiling, false);
                    HalfStep(at, tiling);
                    auto const sample = [&](float dx, float dy) -> double {
                        return pixel::GetFloat(layer->GetFractionalPixel(at.X + dx, at.Y + dy));
                    };
                    double const i00 = sample(-0.5f, -0.5f), i10 = sample(0.5f, -0.5f);
                    double const i01 = sample(-0.5f, 0.5f), i11 = sample(0.5f, 0.5f);
                    float du = 0, dv = 0;
                    layer->GetUVDerivatives(u, v, du, dv, tiling, 0);
                    EXPECT_EQ(du, static_cast<float>(((i10 - i00) + i11 - i01) * 6 * 0.5));
                    EXPECT_EQ(dv, static_cast<float>(((i01 - i00) + i11 - i10) * 5 * 0.5));
                }
    }
}

TEST(Texture, DerivativesGrowDownward) {
    auto const layer = MakeLayer<StGray8Pixel>({4, 4});
    for (long y = 0; y < 4; ++y)
        for (long x = 0; x < 4; ++x)
            layer->PutMatchedPixelAt(x, y, {static_cast<std::uint8_t>(y * 20)});
    float du = 1, dv = 0;
    layer->GetUVDerivatives(0.5f, 0.5f, du, dv, SkNoTilings(), 0);
    EXPECT_EQ(du, 0.0f);
    EXPECT_GT(dv, 0.0f);
}

TEST(Texture, IndicesWithoutAMap_LeaveWhatTheyAreGiven) {
    auto const layer = MakeLayer<StMapped8Pixel>({4, 4});
    FillRandom(*layer, KindOfID(SrCode("Map8")), 1);
    EXPECT_EQ(layer->GetFractionalPixel(2.75f, 1.5f).index, layer->GetMatchedPixelAt(2, 1).index);
    EXPECT_EQ(layer->GetFractionalPixel(-2.75f, 99.0f).index, layer->GetMatchedPixelAt(0, 3).index);
}

int gAllocations = 0;

TEST(Texture, ReadsAllocateNothing) {
    auto const layer = RandomRGBA({8, 8});
    gAllocations = 0;
    SrSetAllocationGate([](std::size_t) {
        ++gAllocations;
        return true;
    });
    StRGBA32Pixel pixel{};
    StColorFloats color{};
    float intensity = 0, du = 0, dv = 0;
    layer->GetFractionalPixel(2.5f, 3.5f);
    layer->GetFractionalUVPixel(0.3f, 0.7f, pixel, {1, 1}, 0);
    layer->GetFractionalUVPixel(0.3f, 0.7f, color, {1, 1}, 0);
    layer->GetFractionalUVPixel(0.3f, 0.7f, intensity, {1, 1}, 0);
    layer->GetUVDerivatives(0.3f, 0.7f, du, dv, {1, 1}, 0);
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(gAllocations, 0);
}

/// All weights there are, against the rule for one byte.
TEST(Texture, FourBytesAtOnce_AreFourTimesOneByte) {
    auto const layer = MakeLayer<StRGBA32Pixel>({2, 2});
    std::mt19937 random(5);
    for (int i = 0; i <= 256; ++i)
        for (int j = 0; j <= 256; j += 5) {
            std::array<StRGBA32Pixel, 4> corners;
            for (StRGBA32Pixel& corner : corners) {
                std::uint32_t const word =
                    j % 3 == 0 ? static_cast<std::uint32_t>(random()) : (random() & 1 ? 0xFFFFFFFFu : 0u);
                std::memcpy(&corner, &word, 4);
            }
            for (std::size_t n = 0; n < 4; ++n)
                layer->PutMatchedPixelAt(static_cast<long>(n % 2), static_cast<long>(n / 2), corners[n]);
            float const x = static_cast<float>(i) / 256, y = static_cast<float>(j) / 256;
            if (x == 1.0f || y == 1.0f) continue;  // the next pixel
            EXPECT_EQ(layer->GetFractionalPixel(x, y), MixFour(corners, x, y)) << x << ", " << y;
        }
    // Beyond 32 bits the fraction is clamped to 1, and both neighbours to the first pixel.
    EXPECT_EQ(layer->GetFractionalPixel(1e10f, 1e10f), layer->GetMatchedPixelAt(0, 0));
}

TEST(Texture, AnEmptyFrameLeavesTheArguments) {
    auto const layer = MakeLayer<StRGBA32Pixel>({0, 3});
    StRGBA32Pixel pixel{1, 2, 3, 4};
    StColorFloats color{1, 2, 3};
    float intensity = 7, du = 8, dv = 9;
    layer->GetFractionalUVPixel(0.5f, 0.5f, pixel, SkNoTilings(), 0);
    layer->GetFractionalUVPixel(0.5f, 0.5f, color, SkNoTilings(), 0);
    layer->GetFractionalUVPixel(0.5f, 0.5f, intensity, SkNoTilings(), 0);
    layer->GetUVDerivatives(0.5f, 0.5f, du, dv, SkNoTilings(), 0);
    EXPECT_EQ(pixel, (StRGBA32Pixel{1, 2, 3, 4}));
    EXPECT_EQ(color.red, 1);
    EXPECT_EQ(intensity, 7);
    EXPECT_EQ(du, 8);
    EXPECT_EQ(dv, 9);
    EXPECT_EQ(layer->GetFractionalPixel(1, 1), (StRGBA32Pixel{0, 0, 0, 0}));
}

}  // namespace
