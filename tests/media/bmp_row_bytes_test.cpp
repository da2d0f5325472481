// Rows of three bytes a pixel to and from rows of four, against one pixel after the other.
#include "framewright/media/bmp/row_bytes.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned char kGuard = 0xC7;
constexpr std::size_t kGuardBytes = 64;

Bytes Numbered(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + 1);
    return bytes;
}

// Counts around the four and sixteen pixels that go at a time, from rows that begin anywhere.
constexpr std::size_t kGreatestCount = 70;

TEST(BmpRowBytes, Narrow_LeavesOutTheFourthByteAndWritesNoFurther) {
    for (std::size_t count = 0; count <= kGreatestCount; ++count) {
        for (std::size_t start = 0; start < 5; ++start) {
            Bytes const from = Numbered(start + 4 * count);
            Bytes expected(start + 3 * count + kGuardBytes, kGuard), to = expected;
            for (std::size_t x = 0; x < count; ++x) {
                for (std::size_t i = 0; i < 3; ++i)
                    expected[start + 3 * x + i] = from[start + 4 * x + i];
            }
            bmp::NarrowRow(from.data() + start, to.data() + start, static_cast<long>(count));
            EXPECT_EQ(to, expected) << count << " pixels from " << start;
        }
    }
}

TEST(BmpRowBytes, Widen_SetsOrKeepsTheFourthByteAndWritesNoFurther) {
    for (std::size_t count = 0; count <= kGreatestCount; ++count) {
        for (std::size_t start = 0; start < 5; ++start) {
            for (bmp::StFourth const fourth : {bmp::StFourth::kOpaque, bmp::StFourth::kKept}) {
                Bytes const from = Numbered(start + 3 * count);
                Bytes expected(start + 4 * count + kGuardBytes, kGuard), to = expected;
                for (std::size_t x = 0; x < count; ++x) {
                    for (std::size_t i = 0; i < 3; ++i)
                        expected[start + 4 * x + i] = from[start + 3 * x + i];
                    if (fourth == bmp::StFourth::kOpaque) expected[start + 4 * x + 3] = 255;
                }
                bmp::WidenRow(from.data() + start, to.data() + start, static_cast<long>(count), fourth);
                EXPECT_EQ(to, expected) << count << " pixels from " << start;
            }
        }
    }
}

}  // namespace
