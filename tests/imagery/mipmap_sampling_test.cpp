// Texture reads from mipmaps, against the rules written out step by step.
#include <cmath>
#include <limits>

#include "framewright/thornmere/memory.h"
#include "mipmaps.h"

using namespace testing_frames;
using namespace testing_mipmaps;

namespace {

using Color = StRGBA32Pixel;

constexpr StTilingStyles kTilings[] = {{0, 0}, {1, 1}, {1, 0}, {0, 1}, {2, 255}};
constexpr float kTexture[] = {0.0f, 0.1f, 0.25f, 0.5f, 0.6251f, 0.9f, 0.99999f, 1.0f};
constexpr StPoint kSizes[] = {{8, 16}, {16, 8}, {1, 8}, {1, 1}, {2, 2}, {8, 2}, {16, 1}};

long Trunc(float value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<long>(value) : -2147483648L;
}

float Wrapped(float place, long length) {
    auto const limit = static_cast<float>(length);
    if (place < 0.0f) return place + limit;
    if (place >= limit) return place - limit;
    return place;
}

/// The four corners of a read, and the fractions.
template <class Record>
struct Corners {
    Record a, b, c, d;
    float tx, ty;
    long w, h;
};

template <class Record>
Corners<Record> CornersAt(SmImagerMipmap<Record, ScImagerNonSpool>& mipmap, long number, float x, float y,
                          long w, long h) {
    StMipLevel const& level = mipmap.Chain().table[number];
    StPoint const raster = mipmap.GetStorageSize();
    auto const at = [&](long column, long row) {
        column = std::clamp<long>(column + level.left, 0, raster.horizontal - 1);
        row = std::clamp<long>(row + level.top, 0, raster.vertical - 1);
        return mipmap.GetMatchedPixelAt(column, row);
    };
    long const ix = Trunc(x), iy = Trunc(y);
    long const ix1 = ix + 1 >= w ? ix + 1 - w : ix + 1;
    long const iy1 = iy + 1 >= h ? iy + 1 - h : iy + 1;
    return {at(ix, iy),
            at(ix1, iy),
            at(ix, iy1),
            at(ix1, iy1),
            x - static_cast<float>(ix),
            y - static_cast<float>(iy),
            w,
            h};
}

/// Reads: an axis that does not tile is one short.
template <class Record>
Record Sample(SmImagerMipmap<Record, ScImagerNonSpool>& mipmap, float u, float v, long number,
              StTilingStyles const& tiling) {
    number = std::min<long>(number, mipmap.Chain().levels - 1);
    StMipLevel const& level = mipmap.Chain().table[number];
    long const w = std::max(level.width - (tiling.horizontal == 1 ? 0 : 1), 1);
    long const h = std::max(level.height - (tiling.vertical == 1 ? 0 : 1), 1);
    float const x = Wrapped(static_cast<float>(w) * u, w);
    float const y = Wrapped(static_cast<float>(static_cast<double>(h) * (1.0 - v)), h);
    Corners<Record> c = CornersAt<Record>(mipmap, number, x, y, w, h);
    c.a.Blend(c.b, c.tx);
    c.c.Blend(c.d, c.tx);
    c.a.Blend(c.c, c.ty);
    return c.a;
}

struct Gradient {
    float du, dv;
};

/// Gradients: an axis that does not tile is whole and centred on half steps.
template <class Record>
Gradient Slope(SmImagerMipmap<Record, ScImagerNonSpool>& mipmap, float u, float v, long number,
               StTilingStyles const& tiling) {
    number = std::min<long>(number, mipmap.Chain().levels - 1);
    StMipLevel const& level = mipmap.Chain().table[number];
    long const w = std::max(level.width - (tiling.horizontal == 0 ? 0 : 1), 1);
    long const h = std::max(level.height - (tiling.vertical == 0 ? 0 : 1), 1);
    float x = static_cast<float>(w) * u;
    float y = static_cast<float>((1.0 - v) * static_cast<double>(h));
    if (tiling.horizontal == 0 && (x -= 0.5f) < 0.0f) x += static_cast<float>(w);
    if (tiling.vertical == 0 && (y -= 0.5f) < 0.0f) y += static_cast<float>(h);
    Corners<Record> const c = CornersAt<Record>(mipmap, number, Wrapped(x, w), Wrapped(y, h), w, h);
    double const g00 = pixel::GetFloat(c.a), g01 = pixel::GetFloat(c.b);
    double const g10 = pixel::GetFloat(c.c), g11 = pixel::GetFloat(c.d);
    double const fx = c.tx, fy = c.ty;
    auto const wide = static_cast<double>(w), high = static_cast<double>(h);
    return {static_cast<float>((g01 - g00) * wide * (1.0 - fy) + (g11 - g10) * wide * fy),
            static_cast<float>((g10 - g00) * high * (1.0 - fx) + (g11 - g01) * high * fx)};
}

template <class Record>
class MipmapReads : public testing::Test {};
TYPED_TEST_SUITE(MipmapReads, MipmapRecords);

TYPED_TEST(MipmapReads, SampleLevel_IsBilinearInALevel) {
    using Record = TypeParam;
    for (StPoint const size : kSizes) {
        auto const mipmap = RandomMipmap<Record>(size);
        for (StTilingStyles const tiling : kTilings)
            for (long level = 0; level < mipmap->Chain().levels + 2; ++level)
                for (float const v : kTexture)
                    for (float const u : kTexture) {
                        EXPECT_EQ(ToNative(mipmap->SampleLevel(u, v, level, tiling)),
                                  ToNative(Sample<Record>(*mipmap, u, v, level, tiling)))
                            << "level " << level << " at " << u << ", " << v;
                    }
    }
}

TYPED_TEST(MipmapReads, LevelDerivatives_OfALevel) {
    using Record = TypeParam;
    for (StPoint const size : kSizes) {
        auto const mipmap = RandomMipmap<Record>(size);
        for (StTilingStyles const tiling : kTilings)
            for (long level = 0; level < mipmap->Chain().levels + 2; ++level)
                for (float const v : kTexture)
                    for (float const u : kTexture) {
                        Gradient const expected = Slope<Record>(*mipmap, u, v, level, tiling);
                        float du = 0, dv = 0;
                        mipmap->LevelDerivatives(u, v, du, dv, level, tiling);
                        EXPECT_EQ(du, expected.du) << "level " << level << " at " << u << ", " << v;
                        EXPECT_EQ(dv, expected.dv) << "level " << level << " at " << u << ", " << v;
                    }
    }
}

struct ChoiceRow {
    float filter;
    long level;
    bool second;
    float fraction;
};

// Of a 16 by 16 mipmap: bias 4, five levels.
constexpr ChoiceRow kChoices[] = {
    {0.0f, 0, false, 0},               // level 0 and nothing else
    {1.0f / 16, 0, false, 0},          // exactly the minimum filter
    {1.0f / 64, 0, false, 0},          // below it
    {1.0f / 8, 1, false, 0},           //
    {1.0f / 4, 2, false, 0},           //
    {0.75f / 4, 1, true, 0.5849625f},  // log2 of 1.5
    {1.0f, 4, false, 0},               // the whole texture: the last level
    {1.5f, 4, true, 0.5849625f},       // the level behind the last counts as the last
    {2.0f, 4, false, 0},               // from the number of levels on
    {100.0f, 4, false, 0},             //
    {std::numeric_limits<float>::infinity(), 4, false, 0},
};

TYPED_TEST(MipmapReads, TheFilterChoosesTheLevels) {
    using Record = TypeParam;
    auto const mipmap = RandomMipmap<Record>({16, 16});
    for (ChoiceRow const& row : kChoices)
        for (StTilingStyles const tiling : kTilings)
            for (float const v : {0.0f, 0.3f, 1.0f})
                for (float const u : {0.0f, 0.45f, 1.0f}) {
                    SCOPED_TRACE(testing::Message() << "filter " << row.filter << " at " << u << ", " << v);
                    float const t =
                        row.second ? std::log2(row.filter) + 4.0f - static_cast<float>(row.level) : 0.0f;
                    EXPECT_NEAR(t, row.fraction, 1e-6);
                    Record const first = Sample<Record>(*mipmap, u, v, row.level, tiling);
                    Record const second = Sample<Record>(*mipmap, u, v, row.level + 1, tiling);

                    Record mixed = first;
                    if (row.second) mixed.Blend(second, t);
                    mipmap->samples = 0;
                    EXPECT_EQ(ToNative(mipmap->GetFilteredPixel(u, v, row.filter, tiling)), ToNative(mixed));
                    EXPECT_EQ(mipmap->samples, row.second ? 2 : 1);

                    // The byte form is the mixed pixel, converted.
                    Color bytes{};
                    mipmap->GetFractionalUVPixel(u, v, bytes, tiling, row.filter);
                    EXPECT_EQ(bytes, pixel::GetRGBA32(mixed));

                    // The float forms convert each sample, then mix.
                    StColorFloats floats{}, from{}, to{};
                    pixel::GetColorFloats(first, from);
                    pixel::GetColorFloats(second, to);
                    if (row.second) from.Blend(to, t);
                    mipmap->GetFractionalUVPixel(u, v, floats, tiling, row.filter);
                    EXPECT_EQ(ToNative(floats), ToNative(from));

                    double const gray = pixel::GetFloat(first), next = pixel::GetFloat(second);
                    float intensity = 0;
                    mipmap->GetFractionalUVPixel(u, v, intensity, tiling, row.filter);
                    EXPECT_EQ(intensity, row.second ? static_cast<float>(gray * (1.0 - t) + next * t)
                                                    : pixel::GetFloat(first));

                    Gradient const one = Slope<Record>(*mipmap, u, v, row.level, tiling);
                    Gradient const two = Slope<Record>(*mipmap, u, v, row.level + 1, tiling);
                    auto const mix = [&](float a, float b) {
                        return row.second ? static_cast<float>(a * (1.0 - t) + b * static_cast<double>(t))
                                          : a;
                    };
                    float du = 0, dv = 0;
                    mipmap->gradients = 0;
                    mipmap->GetUVDerivatives(u, v, du, dv, tiling, row.filter);
                    EXPECT_EQ(du, mix(one.du, two.du));
                    EXPECT_EQ(dv, mix(one.dv, two.dv));
                    EXPECT_EQ(mipmap->gradients, row.second ? 2 : 1);
                }
}

TEST(MipmapReads, GrayOfAColour_IsTheSumOfItsBytesOver765) {
    auto const mipmap = NewMipmap<Color>({1, 1});
    mipmap->PutMatchedPixelAt(0, 0, {30, 20, 10, 77});
    float intensity = 0;
    mipmap->GetFractionalUVPixel(0, 0, intensity, SkNoTilings(), 0);
    EXPECT_EQ(intensity, 60.0f * 0.0013071895809844136f);
    StColorFloats floats{};
    mipmap->GetFractionalUVPixel(0, 0, floats, SkNoTilings(), 0);
    EXPECT_EQ(floats.red, 10.0f * 0.003921568859368563f);
    EXPECT_EQ(floats.green, 20.0f * 0.003921568859368563f);
    EXPECT_EQ(floats.blue, 30.0f * 0.003921568859368563f);
}

/// Column x of each row has the level 10 * x, row y adds y.
MipmapRef<StGray8Pixel> Ramp() {
    auto mipmap = NewMipmap<StGray8Pixel>({4, 4});
    for (long y = 0; y < 4; ++y)
        for (long x = 0; x < 4; ++x)
            mipmap->PutMatchedPixelAt(x, y, {static_cast<std::uint8_t>(10 * x + y)});
    mipmap->RebuildLevels();
    return mipmap;
}

TEST(MipmapReads, ByHand) {
    auto const mipmap = Ramp();
    StTilingStyles const none{0, 0}, tiled{1, 1};
    // v = 1 is row 0; untiled, three steps lie between the first and the last column.
    EXPECT_EQ(mipmap->SampleLevel(0.0f, 1.0f, 0, none).level, 0);
    EXPECT_EQ(mipmap->SampleLevel(1.0f / 3, 1.0f, 0, none).level, 10);
    EXPECT_EQ(mipmap->SampleLevel(0.5f, 1.0f, 0, none).level, 15);
    EXPECT_EQ(mipmap->SampleLevel(0.5f, 1.0f, 0, tiled).level, 20);
    // u = 1.0 wraps to column 0 in both.
    EXPECT_EQ(mipmap->SampleLevel(1.0f, 1.0f, 0, none).level, 0);
    EXPECT_EQ(mipmap->SampleLevel(1.0f, 1.0f, 0, tiled).level, 0);
    // and so does v = 0 to row 0.
    EXPECT_EQ(mipmap->SampleLevel(0.0f, 0.0f, 0, none).level, 0);
    // Tiled, the neighbour of column 3 is column 0: 30 and 0 half and half.
    EXPECT_EQ(mipmap->SampleLevel(0.875f, 1.0f, 0, tiled).level, 15);
    // Untiled, the third step ends at column 0 too, so column 3 is never read: 20 and 0 half and half.
    EXPECT_EQ(mipmap->SampleLevel(2.5f / 3, 1.0f, 0, none).level, 10);
    // Level 1 has 5, 25 / 7, 27, rounded down at each blend; its one untiled step is all of column 0.
    EXPECT_EQ(mipmap->SampleLevel(0.0f, 1.0f, 1, tiled).level, 5);
    EXPECT_EQ(mipmap->SampleLevel(0.5f, 1.0f, 1, tiled).level, 25);
    EXPECT_EQ(mipmap->SampleLevel(0.99f, 1.0f, 1, none).level, 5);
    EXPECT_EQ(mipmap->SampleLevel(0.3f, 0.3f, 2, none).level, 16);
    EXPECT_EQ(mipmap->SampleLevel(0.3f, 0.3f, 99, none).level, 16) << "a level past the last";
    EXPECT_EQ(mipmap->SampleLevel(0.0f, 1.0f, -5, none).level, 0) << "and one before the first";
}

TEST(MipmapReads, GradientsByHand) {
    auto const mipmap = Ramp();
    float du = 0, dv = 0;
    // Style 0 has the whole length: at u = 0.375 column 1 is met, and a column is 10 / 255 wide.
    mipmap->LevelDerivatives(0.375f, 0.625f, du, dv, 0, {0, 0});
    EXPECT_NEAR(du, 10.0 / 255 * 4, 1e-6);
    EXPECT_NEAR(dv, 1.0 / 255 * 4, 1e-6);
    // Any other style is one short.
    mipmap->LevelDerivatives(0.25f, 0.75f, du, dv, 0, {1, 2});
    EXPECT_NEAR(du, 10.0 / 255 * 3, 1e-6);
    EXPECT_NEAR(dv, 1.0 / 255 * 3, 1e-6);
}

TEST(MipmapReads, UAndVAreClamped_WhateverTheTiling_ANegativeFilterIsNone) {
    auto const mipmap = RandomMipmap<Color>({16, 16});
    struct {
        float in, out;
    } constexpr kClamps[] = {{1.5f, 1.0f}, {-0.5f, 0.0f}, {std::numeric_limits<float>::quiet_NaN(), 0.0f}};
    for (StTilingStyles const tiling : kTilings)
        for (auto const& clamp : kClamps) {
            Color outside{}, edge{};
            mipmap->GetFractionalUVPixel(clamp.in, clamp.in, outside, tiling, 0.2f);
            mipmap->GetFractionalUVPixel(clamp.out, clamp.out, edge, tiling, 0.2f);
            EXPECT_EQ(outside, edge);
            float a[2], b[2];
            mipmap->GetUVDerivatives(clamp.in, clamp.in, a[0], a[1], tiling, 0.2f);
            mipmap->GetUVDerivatives(clamp.out, clamp.out, b[0], b[1], tiling, 0.2f);
            EXPECT_EQ(a[0], b[0]);
            EXPECT_EQ(a[1], b[1]);
        }
    Color negative{}, none{};
    mipmap->GetFractionalUVPixel(0.3f, 0.3f, negative, {1, 1}, -0.5f);
    mipmap->GetFractionalUVPixel(0.3f, 0.3f, none, {1, 1}, 0.0f);
    EXPECT_EQ(negative, none);
}

TEST(MipmapReads, GetFilteredPixel_ClampsNothing) {
    auto const mipmap = RandomMipmap<Color>({16, 16});
    // On a tiled axis 1.25 lies where 0.25 does.
    StTilingStyles const tiled{1, 1};
    EXPECT_EQ(mipmap->GetFilteredPixel(1.25f, 0.5f, 0, tiled),
              mipmap->GetFilteredPixel(0.25f, 0.5f, 0, tiled));
    EXPECT_EQ(mipmap->GetFilteredPixel(-0.75f, 0.5f, 0, tiled),
              mipmap->GetFilteredPixel(0.25f, 0.5f, 0, tiled));
    Color clamped{};
    mipmap->GetFractionalUVPixel(1.25f, 0.5f, clamped, tiled, 0);
    EXPECT_NE(Word(clamped), Word(mipmap->GetFilteredPixel(1.25f, 0.5f, 0, tiled)));
}

int gAllocations = 0;

TYPED_TEST(MipmapReads, AllocateNothing) {
    auto const mipmap = RandomMipmap<TypeParam>({16, 16});
    gAllocations = 0;
    SrSetAllocationGate([](std::size_t) {
        ++gAllocations;
        return true;
    });
    Color color{};
    StColorFloats floats{};
    float intensity = 0, du = 0, dv = 0;
    mipmap->GetFractionalUVPixel(0.3f, 0.7f, color, {1, 1}, 0.2f);
    mipmap->GetFractionalUVPixel(0.3f, 0.7f, floats, {1, 1}, 0.2f);
    mipmap->GetFractionalUVPixel(0.3f, 0.7f, intensity, {1, 1}, 0.2f);
    mipmap->GetUVDerivatives(0.3f, 0.7f, du, dv, {1, 1}, 0.2f);
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(gAllocations, 0);
}

TYPED_TEST(MipmapReads, AnyFloatIsSafe) {
    using Record = TypeParam;
    constexpr float kFloats[] = {std::numeric_limits<float>::quiet_NaN(),
                                 std::numeric_limits<float>::infinity(),
                                 -std::numeric_limits<float>::infinity(),
                                 3e38f,
                                 -3e38f,
                                 2147483648.0f,
                                 -2147483648.0f,
                                 1e-40f,
                                 -1.0f,
                                 5.0f};
    for (StPoint const size : {StPoint{4, 4}, {8, 1}}) {
        auto const mipmap = RandomMipmap<Record>(size);
        for (float const u : kFloats)
            for (float const v : kFloats)
                for (StTilingStyles const tiling : kTilings)
                    for (float const filter : kFloats) {
                        Color color{};
                        StColorFloats floats{};
                        float intensity = 0, du = 0, dv = 0;
                        mipmap->GetFractionalUVPixel(u, v, color, tiling, filter);
                        mipmap->GetFractionalUVPixel(u, v, floats, tiling, filter);
                        mipmap->GetFractionalUVPixel(u, v, intensity, tiling, filter);
                        mipmap->GetUVDerivatives(u, v, du, dv, tiling, filter);
                        mipmap->GetFilteredPixel(u, v, filter, tiling);
                        for (long const level :
                             {std::numeric_limits<long>::min(), 0L, 1L, std::numeric_limits<long>::max()}) {
                            mipmap->SampleLevel(u, v, level, tiling);
                            mipmap->LevelDerivatives(u, v, du, dv, level, tiling);
                        }
                    }
    }
}

}  // namespace
