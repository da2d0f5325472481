// Reading BMP files from streams without a position.
#include <gtest/gtest.h>

#include "bmp_file.h"

namespace {

using namespace bmp_test;

TEST(BmpSequentialStream, IsReadOnAsItComes) {
    File file;
    file.width = 2;
    file.height = 1;
    file.bitCount = 8;
    file.colorsUsed = 3;
    file.palette = Palette(3);
    file.data = {1, 2, 0, 0};
    auto const stream = StRef<SequentialStream>::Adopt(new SequentialStream(file.Build()));
    EXPECT_EQ(PictureOf(ReadStream(stream.Get()).Get()), (Picture{{kGreen, kBlue}}));
}

TEST(BmpSequentialStream, DoesNotFollowOffsets) {
    File file;
    file.width = file.height = 1;
    file.bitCount = 24;
    file.dataOffset = 60;
    file.data = {9, 8, 7, 9, 9, 9, 1, 2, 3, 0};
    auto const stream = StRef<SequentialStream>::Adopt(new SequentialStream(file.Build()));
    EXPECT_EQ(PictureOf(ReadStream(stream.Get()).Get()), (Picture{{Rgb(7, 8, 9)}}));
}

TEST(BmpSequentialStream, MasksAndSurplusEntries_ArePassedOver) {
    File file;
    file.width = file.height = 1;
    file.bitCount = 32;
    file.masks.assign(12, 0xEE);
    file.colorsUsed = 300;
    file.palette = Palette(300);
    file.data = {1, 2, 3, 4};
    auto const stream = StRef<SequentialStream>::Adopt(new SequentialStream(file.Build()));
    EXPECT_EQ(PictureOf(ReadStream(stream.Get()).Get()), (Picture{{Rgb(3, 2, 1)}}));
}

TEST(BmpSequentialStream, LargeData_ComesWhole) {
    // More than the first piece that is asked of a stream of unknown length.
    File file;
    file.width = 256;
    file.height = 400;
    file.bitCount = 24;
    for (int i = 0; i < 256 * 400 * 3; ++i)
        file.data.push_back(static_cast<unsigned char>(i * 7 >> 3));
    auto const stream = StRef<SequentialStream>::Adopt(new SequentialStream(file.Build()));
    EXPECT_EQ(PictureOf(ReadStream(stream.Get()).Get()), PictureOf(Read(file).Get()));
}

}  // namespace
