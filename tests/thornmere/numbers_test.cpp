#include "framewright/thornmere/numbers.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kOut = INT32_MIN;

static_assert(std::is_same_v<decltype(SrITrunc(1.0)), std::int32_t>);
static_assert(std::is_same_v<decltype(SrITrunc(1.0f)), std::int32_t>);

struct StDoubleRow {
    double value;
    std::int32_t expected;
};

TEST(Numbers, ITruncOfDoublesTruncatesTowardZeroAndMarksWhatDoesNotFit) {
    StDoubleRow const rows[] = {
        {0.0, 0},
        {-0.0, 0},
        {0.9999999999, 0},
        {-0.9999999999, 0},
        {1.0, 1},
        {1.5, 1},
        {-1.5, -1},
        {-0.25, 0},
        {254.99999, 254},
        {2147483646.5, 2147483646},
        {2147483647.0, 2147483647},
        {2147483647.9999, 2147483647},
        {2147483648.0, kOut},
        {4294967296.0, kOut},
        {-2147483647.9, -2147483647},
        {-2147483648.0, kOut},     // the value itself
        {-2147483648.9999, kOut},  // truncates to it
        {-2147483649.0, kOut},
        {-4294967296.0, kOut},
        {1e300, kOut},
        {-1e300, kOut},
        {kInfinity, kOut},
        {-kInfinity, kOut},
        {kNaN, kOut},
        {-kNaN, kOut},
        {std::numeric_limits<double>::denorm_min(), 0},
    };
    for (StDoubleRow const& row : rows)
        EXPECT_EQ(SrITrunc(row.value), row.expected) << row.value;
}

struct StFloatRow {
    float value;
    std::int32_t expected;
};

TEST(Numbers, ITruncOfFloats) {
    StFloatRow const rows[] = {
        {0.0f, 0},
        {255.99998f, 255},
        {-1.9f, -1},
        {16777216.0f, 16777216},
        {2147483520.0f, 2147483520},  // the largest float below 2 to the 31
        {2147483648.0f, kOut},
        {-2147483520.0f, -2147483520},
        {-2147483648.0f, kOut},
        {-2147483904.0f, kOut},
        {std::numeric_limits<float>::infinity(), kOut},
        {std::numeric_limits<float>::quiet_NaN(), kOut},
        {std::numeric_limits<float>::max(), kOut},
    };
    for (StFloatRow const& row : rows)
        EXPECT_EQ(SrITrunc(row.value), row.expected) << row.value;
}

TEST(Numbers, WhatDoesNotFitHasOnlyTheTopBitSet) {
    EXPECT_EQ(static_cast<std::uint32_t>(SrITrunc(kNaN)), 0x80000000u);
    EXPECT_EQ(static_cast<std::uint64_t>(SrITrunc64(kNaN)), 0x8000000000000000u);
}

struct StLongRow {
    double value;
    std::int64_t expected;
};

TEST(Numbers, ITrunc64) {
    StLongRow const rows[] = {
        {4294967295.9, 4294967295},
        {-4294967296.5, -4294967296},
        {9223372036854774784.0, 9223372036854774784},  // the largest double below 2 to the 63
        {9223372036854775808.0, INT64_MIN},
        {-9223372036854775808.0, INT64_MIN},
        {-9223372036854777856.0, INT64_MIN},
        {kInfinity, INT64_MIN},
        {-kInfinity, INT64_MIN},
        {kNaN, INT64_MIN},
    };
    for (StLongRow const& row : rows)
        EXPECT_EQ(SrITrunc64(row.value), row.expected) << row.value;
}

TEST(Numbers, ITruncWorksAtCompileTime) {
    static_assert(SrITrunc(-7.99) == -7);
    static_assert(SrITrunc(kNaN) == INT32_MIN);
    static_assert(SrITrunc(3e9f) == INT32_MIN);
}

TEST(Numbers, Log2) {
    EXPECT_EQ(SrLog2(8.0f), 3.0f);
    EXPECT_EQ(SrLog2(0.25), -2.0);
    EXPECT_EQ(SrLog2(1.0), 0.0);
    EXPECT_EQ(SrLog2(0.0), -kInfinity);
    EXPECT_TRUE(std::isnan(SrLog2(-1.0f)));
    static_assert(std::is_same_v<decltype(SrLog2(1.0f)), float>);
    static_assert(std::is_same_v<decltype(SrLog2(1.0)), double>);
}

}  // namespace
