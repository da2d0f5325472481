// Pixels in rows: packing of the narrow records, and access to every kind of layer row.
#include "framewright/pixel/row_access.h"

#include <cstring>

#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

/// The place of pixel x in a row of `bits` a pixel, bit by bit from the start of the row, high bits first.
unsigned Slow(std::vector<unsigned char> const& row, long x, int bits) {
    unsigned value = 0;
    for (long bit = x * bits; bit < (x + 1) * bits; ++bit)
        value = value * 2 + (row[bit / 8] >> (7 - bit % 8) & 1);
    return value;
}

template <class Record>
Record WithValue(unsigned value, unsigned rest) {
    Record record{};
    if constexpr (requires { record.level; })
        record.level = value & ((1u << Record::PixelSize()) - 1);
    else
        record.index = value & ((1u << Record::PixelSize()) - 1);
    record.rest = rest;
    return record;
}
template <class Record>
void CheckPacking() {
    int const bits = Record::PixelSize();
    unsigned const top = (1u << bits) - 1;
    for (long x = 0; x < 24; ++x) {
        for (unsigned value = 0; value <= top; ++value) {
            std::vector<unsigned char> row = {0x5A, 0xC3, 0x0F, 0xE1, 0x96, 0x78, 0x3C,
                                              0xA5, 0x5A, 0xC3, 0x0F, 0xE1, 0x96};
            std::vector<unsigned char> const before = row;
            WithValue<Record>(value, 0x155).PlacePixelInRow(row.data(), x);
            for (long other = 0; other < 26; ++other)
                ASSERT_EQ(Slow(row, other, bits), other == x ? value : Slow(before, other, bits))
                    << "x " << x << " value " << value << " pixel " << other;

            Record read = WithValue<Record>(~value, 0x155);
            read.GetPixelFromRow(row.data(), x);
            ASSERT_EQ(Of(read), (Fields<2>{value, 0x155})) << "x " << x << " value " << value;
        }
    }
}

TEST(RowPlacement, Gray4_TwoPixelsAByteHighFirst) {
    CheckPacking<StGray4Pixel>();
}
TEST(RowPlacement, Mapped4_TwoPixelsAByteHighFirst) {
    CheckPacking<StMapped4Pixel>();
}
TEST(RowPlacement, Gray2_FourPixelsAByteHighFirst) {
    CheckPacking<StGray2Pixel>();
}
TEST(RowPlacement, Mapped2_FourPixelsAByteHighFirst) {
    CheckPacking<StMapped2Pixel>();
}
TEST(RowPlacement, Mapped1_EightPixelsAByteHighFirst) {
    CheckPacking<StMapped1Pixel>();
}

TEST(RowPlacement, KnownBytes) {
    unsigned char row[2] = {0, 0};
    StMapped4Pixel{1, 0}.PlacePixelInRow(row, 0);
    StMapped4Pixel{2, 0}.PlacePixelInRow(row, 1);
    EXPECT_EQ(row[0], 0x12);
    row[0] = 0;
    for (unsigned i = 0; i < 4; ++i)
        StGray2Pixel{i & 3, 0}.PlacePixelInRow(row, i);
    EXPECT_EQ(row[0], 0x1B);
    row[0] = 0;
    StMapped1Pixel{1, 0}.PlacePixelInRow(row, 0);
    StMapped1Pixel{1, 0}.PlacePixelInRow(row, 15);
    EXPECT_EQ(row[0], 0x80);
    EXPECT_EQ(row[1], 0x01);
}

/// Stores a record of known bytes at each x of a patterned row, and looks at all bytes of the row.
template <class Record>
void CheckRowAccess() {
    constexpr long bits = Record::PixelSize();
    constexpr long pixels = 11;
    constexpr unsigned kMask = bits < 8 ? (1u << (bits % 8)) - 1 : 255;
    std::vector<unsigned char> before((pixels * bits + 7) / 8);
    for (std::size_t i = 0; i < before.size(); ++i)
        before[i] = static_cast<unsigned char>(i * 37 + 5);
    for (long x = 0; x < pixels; ++x) {
        Record stored;
        unsigned char pattern[sizeof(Record)];
        for (std::size_t i = 0; i < sizeof pattern; ++i)
            pattern[i] = static_cast<unsigned char>(0xB7 + i * 3 + x);
        std::memcpy(static_cast<void*>(&stored), pattern, sizeof pattern);

        std::vector<unsigned char> row = before;
        pixel::StorePixel(row.data(), x, stored);
        std::vector<unsigned char> expected = before;
        if (bits >= 8)
            std::memcpy(&expected[x * bits / 8], pattern, bits / 8);
        else
            for (long bit = 0; bit < bits; ++bit) {
                long const at = x * bits + bit;
                int const mask = 0x80 >> at % 8;
                int const value = pattern[0] >> (bits - 1 - bit) & 1;
                expected[at / 8] =
                    static_cast<unsigned char>(value ? expected[at / 8] | mask : expected[at / 8] & ~mask);
            }
        ASSERT_EQ(row, expected) << "x " << x;

        Record loaded;
        std::memset(static_cast<void*>(&loaded), 0x6E, sizeof loaded);
        pixel::LoadPixel(row.data(), x, loaded);
        unsigned char got[sizeof(Record)], wanted[sizeof(Record)];
        std::memcpy(got, &loaded, sizeof got);
        std::memset(wanted, 0x6E, sizeof wanted);
        if (bits >= 8)
            std::memcpy(wanted, pattern, bits / 8);
        else
            wanted[0] = static_cast<unsigned char>((0x6E & ~kMask) | (pattern[0] & kMask));
        ASSERT_EQ(std::memcmp(got, wanted, sizeof got), 0) << "x " << x;
    }
}

#define ROW(Record, ...)                               \
    TEST(RowAccess, Record##_TouchesItsOwnBitsAlone) { \
        CheckRowAccess<Record>();                      \
    }
FOR_EACH_LAYER_PIXEL(ROW)
#undef ROW

TEST(RowAccess, BlackWhite_SetsBit7MinusX) {
    unsigned char row[2] = {0, 0};
    pixel::StorePixel(row, 0, StBlackWhitePixel{1, 0});
    pixel::StorePixel(row, 9, StBlackWhitePixel{1, 0});
    EXPECT_EQ(row[0], 0x80);
    EXPECT_EQ(row[1], 0x40);
}

TEST(RowAccess, Depth24_HasItsLowBytesInTheRow) {
    unsigned char row[3] = {};
    pixel::StorePixel(row, 0, StDepthUInt24Pixel{0x123456, 0x78});
    EXPECT_EQ(row[0], 0x56);
    EXPECT_EQ(row[1], 0x34);
    EXPECT_EQ(row[2], 0x12);
}

}  // namespace
