// The catalogue of records: identifiers, widths, the order of fields in memory, and which members exist.
#include <cstring>
#include <set>

#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

struct StRow {
    char const* name;
    unsigned long pixelID, familyID;
    long bits;  // 0: no layer
    unsigned long actualPixelID, actualFamilyID;
    long actualBits;
};

template <class Record>
constexpr long BitsOf() {
    if constexpr (requires { Record::PixelSize(); })
        return Record::PixelSize();
    else
        return 0;
}

#define RECORD(Record) Record::PixelID(), Record::FamilyID(), BitsOf<Record>()
constexpr StRow kRows[] = {
    {"StRGBA32Pixel", 0x436F6C42, 0x436F6C46, 32, RECORD(StRGBA32Pixel)},
    {"StRGB32Pixel", 0x52473332, 0x436F6C46, 32, RECORD(StRGB32Pixel)},
    {"StRGB24Pixel", 0x52473234, 0x436F6C46, 24, RECORD(StRGB24Pixel)},
    {"StRGB15Pixel", 0x52473135, 0x436F6C46, 16, RECORD(StRGB15Pixel)},
    {"StRGB48Pixel", 0x436F6C57, 0x436F6C46, 48, RECORD(StRGB48Pixel)},
    {"StRGBA64Pixel", 0x52473634, 0x436F6C46, 64, RECORD(StRGBA64Pixel)},
    {"StRGBAFloatPixel", 0x5247464C, 0x436F6C46, 128, RECORD(StRGBAFloatPixel)},
    {"StRGBTFloatPixel", 0x52474654, 0x436F6C46, 0, RECORD(StRGBTFloatPixel)},
    {"StColorFloats", 0x436F466C, 0x436F6C46, 96, RECORD(StColorFloats)},
    {"StGray8Pixel", 0x47727938, 0x436F6C46, 8, RECORD(StGray8Pixel)},
    {"StGray4Pixel", 0x47727934, 0x436F6C46, 4, RECORD(StGray4Pixel)},
    {"StGray2Pixel", 0x47727932, 0x436F6C46, 2, RECORD(StGray2Pixel)},
    {"StBlackWhitePixel", 0x426E5731, 0x436F6C46, 1, RECORD(StBlackWhitePixel)},
    {"StMapped8Pixel", 0x4D617038, 0x436F6C46, 8, RECORD(StMapped8Pixel)},
    {"StMapped4Pixel", 0x4D617034, 0x436F6C46, 4, RECORD(StMapped4Pixel)},
    {"StMapped2Pixel", 0x4D617032, 0x436F6C46, 2, RECORD(StMapped2Pixel)},
    {"StMapped1Pixel", 0x4D617031, 0x436F6C46, 1, RECORD(StMapped1Pixel)},
    {"StAlpha8Pixel", 0x416C7038, 0x416C7046, 8, RECORD(StAlpha8Pixel)},
    {"StAlpha32Pixel", 0x416C3332, 0x416C7046, 32, RECORD(StAlpha32Pixel)},
    {"StDepthFloatPixel", 0x44657046, 0x44657046, 32, RECORD(StDepthFloatPixel)},
    {"StDepthUInt8Pixel", 0x44657038, 0x44657046, 8, RECORD(StDepthUInt8Pixel)},
    {"StDepthUInt16Pixel", 0x44653136, 0x44657046, 16, RECORD(StDepthUInt16Pixel)},
    {"StDepthUInt24Pixel", 0x44653234, 0x44657046, 24, RECORD(StDepthUInt24Pixel)},
    {"StDepthUInt32Pixel", 0x44653332, 0x44657046, 32, RECORD(StDepthUInt32Pixel)},
    {"StCMYKPixel", 0x434D594B, 0x436D7946, 32, RECORD(StCMYKPixel)},
    {"StHSLAPixel", 0x48534C41, 0x436F6C46, 0, RECORD(StHSLAPixel)},
    {"StHSVAPixel", 0x48535641, 0x436F6C46, 0, RECORD(StHSVAPixel)},
    {"StYIQAPixel", 0x59495141, 0x56696446, 0, RECORD(StYIQAPixel)},
    {"StVelocityPixel", 0x56454C4F, 0x506F736E, 0, RECORD(StVelocityPixel)},
};
#undef RECORD

TEST(Records, Identifiers_AreAsFilesHaveThem) {
    std::set<unsigned long> seen;
    for (StRow const& row : kRows) {
        EXPECT_EQ(row.actualPixelID, row.pixelID) << row.name;
        EXPECT_EQ(row.actualFamilyID, row.familyID) << row.name;
        EXPECT_EQ(row.actualBits, row.bits) << row.name;
        EXPECT_TRUE(seen.insert(row.actualPixelID).second) << row.name << " shares its identifier";
    }
    EXPECT_EQ(seen.size(), 29u);
}

TEST(Records, Table_HasEveryRecordOnce) {
    std::set<unsigned long> layers, plain;
#define ROW(Record, ID, Family, Bits)              \
    EXPECT_EQ(SrCode(ID), Record::PixelID());      \
    EXPECT_EQ(SrCode(Family), Record::FamilyID()); \
    EXPECT_EQ(Bits, Record::PixelSize());          \
    layers.insert(Record::PixelID());
    FOR_EACH_LAYER_PIXEL(ROW)
#undef ROW
#define ROW(Record, ID, Family)                    \
    EXPECT_EQ(SrCode(ID), Record::PixelID());      \
    EXPECT_EQ(SrCode(Family), Record::FamilyID()); \
    plain.insert(Record::PixelID());
    FOR_EACH_PLAIN_PIXEL(ROW)
#undef ROW
    EXPECT_EQ(layers.size(), 24u);
    EXPECT_EQ(plain.size(), 5u);
    for (StRow const& row : kRows)
        EXPECT_EQ(layers.count(row.pixelID), row.bits ? 1u : 0u) << row.name;
}

/// The bytes of a record in memory.
template <class Record>
std::vector<int> Memory(Record const& record) {
    unsigned char bytes[sizeof(Record)];
    std::memcpy(bytes, &record, sizeof record);
    return {bytes, bytes + sizeof record};
}
using Bytes = std::vector<int>;

TEST(Records, FieldsOfBytes_LieBlueFirst) {
    EXPECT_EQ(Memory(StRGBA32Pixel{1, 2, 3, 4}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Memory(Color(3, 2, 1, 4)), (Bytes{1, 2, 3, 4}));
    StRGBA32Pixel const color = Color(0xBB, 0xCC, 0xDD, 0xAA);
    std::uint32_t word;
    std::memcpy(&word, &color, 4);
    EXPECT_EQ(word, 0xAABBCCDDu);

    StRGB32Pixel rgb32{1, 2, 3, 4};
    EXPECT_EQ(Of(rgb32), (Fields<4>{3, 2, 1, 4}));
    EXPECT_EQ(Memory(rgb32), (Bytes{1, 2, 3, 4}));
    StRGB24Pixel rgb24{1, 2, 3};
    EXPECT_EQ(Of(rgb24), (Fields<3>{3, 2, 1}));
    EXPECT_EQ(Memory(rgb24), (Bytes{1, 2, 3}));
    EXPECT_EQ(Memory(StCMYKPixel{1, 2, 3, 4}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Of(StCMYKPixel{1, 2, 3, 4}), (Fields<4>{1, 2, 3, 4}));
}

TEST(Records, FieldsOf15Bits_LieBlueLowFlagHigh) {
    EXPECT_EQ(Memory(StRGB15Pixel{31, 0, 0, 0}), (Bytes{0x1F, 0x00}));
    EXPECT_EQ(Memory(StRGB15Pixel{0, 31, 0, 0}), (Bytes{0xE0, 0x03}));
    EXPECT_EQ(Memory(StRGB15Pixel{0, 0, 31, 0}), (Bytes{0x00, 0x7C}));
    EXPECT_EQ(Memory(StRGB15Pixel{0, 0, 0, 1}), (Bytes{0x00, 0x80}));
    EXPECT_EQ(Memory(StRGB15Pixel{0, 16, 31, 0}), (Bytes{0x00, 0x7E}));
}

TEST(Records, FieldsOfWordsAndFloats_LieRedFirst) {
    EXPECT_EQ(Memory(StRGB48Pixel{0x0201, 0x0403, 0x0605}), (Bytes{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(Of(StRGB48Pixel{1, 2, 3}), (Fields<3>{1, 2, 3}));
    EXPECT_EQ(Memory(StRGBA64Pixel{0x0201, 0x0403, 0x0605, 0x0807}), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(Of(StRGBA64Pixel{1, 2, 3, 4}), (Fields<4>{1, 2, 3, 4}));
    EXPECT_EQ(Memory(StColorFloats{1.0f, 0.5f, 0.0f}), (Bytes{0, 0, 0x80, 0x3F, 0, 0, 0, 0x3F, 0, 0, 0, 0}));
    EXPECT_EQ(Of(StRGBAFloatPixel{1, 2, 3, 4}), (Fields<4>{Bits(1), Bits(2), Bits(3), Bits(4)}));
    EXPECT_EQ(sizeof(StRGBAFloatPixel), 16u);
    EXPECT_EQ(offsetof(StRGBAFloatPixel, red), 0u);
    EXPECT_EQ(offsetof(StRGBAFloatPixel, alpha), 12u);
    EXPECT_EQ(offsetof(StRGBTFloatPixel, red), 0u);
    EXPECT_EQ(offsetof(StRGBTFloatPixel, transmission), 12u);
    EXPECT_EQ(Memory(StVelocityPixel{1.0f, 0.5f}), (Bytes{0, 0, 0x80, 0x3F, 0, 0, 0, 0x3F}));
}

TEST(Records, FieldsOfColorModels_LieInTheirOrder) {
    EXPECT_EQ(offsetof(StHSLAPixel, hue), 0u);
    EXPECT_EQ(offsetof(StHSLAPixel, saturation), 2u);
    EXPECT_EQ(offsetof(StHSLAPixel, lightness), 3u);
    EXPECT_EQ(offsetof(StHSLAPixel, alpha), 4u);
    EXPECT_EQ(offsetof(StHSVAPixel, hue), 0u);
    EXPECT_EQ(offsetof(StHSVAPixel, saturation), 2u);
    EXPECT_EQ(offsetof(StHSVAPixel, value), 3u);
    EXPECT_EQ(offsetof(StHSVAPixel, alpha), 4u);
    EXPECT_EQ(Memory(StYIQAPixel{1, 2, 3, 4}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Of(StYIQAPixel{1, 2, 3, 4}), (Fields<4>{1, 2, 3, 4}));
}

TEST(Records, NarrowRecords_AreFourBytesWithTheValueInTheLowBits) {
    EXPECT_EQ(Memory(StGray4Pixel{0xA, 0}), (Bytes{0x0A, 0, 0, 0}));
    EXPECT_EQ(Memory(StGray4Pixel{0xA, 1}), (Bytes{0x1A, 0, 0, 0}));
    EXPECT_EQ(Memory(StGray2Pixel{2, 0}), (Bytes{2, 0, 0, 0}));
    EXPECT_EQ(Memory(StGray2Pixel{2, 1}), (Bytes{6, 0, 0, 0}));
    EXPECT_EQ(Memory(StBlackWhitePixel{1, 1}), (Bytes{3, 0, 0, 0}));
    EXPECT_EQ(Memory(StMapped4Pixel{0xA, 1}), (Bytes{0x1A, 0, 0, 0}));
    EXPECT_EQ(Memory(StMapped2Pixel{2, 1}), (Bytes{6, 0, 0, 0}));
    EXPECT_EQ(Memory(StMapped1Pixel{1, 1}), (Bytes{3, 0, 0, 0}));
    EXPECT_EQ(Memory(StDepthUInt24Pixel{0x123456, 0x78}), (Bytes{0x56, 0x34, 0x12, 0x78}));
}

TEST(Records, SingleFields_FillTheirRecords) {
    EXPECT_EQ(sizeof(StGray8Pixel), 1u);
    EXPECT_EQ(sizeof(StMapped8Pixel), 1u);
    EXPECT_EQ(sizeof(StAlpha8Pixel), 1u);
    EXPECT_EQ(sizeof(StDepthUInt8Pixel), 1u);
    EXPECT_EQ(Memory(StDepthUInt16Pixel{0x0201}), (Bytes{1, 2}));
    EXPECT_EQ(Memory(StDepthUInt32Pixel{0x04030201}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Memory(StAlpha32Pixel{0x04030201}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Memory(StDepthFloatPixel{0.25f}), (Bytes{0, 0, 0x80, 0x3E}));
}

TEST(Records, ArePlainValues) {
#define ROW(Record, ...)                               \
    EXPECT_TRUE(std::is_trivially_copyable_v<Record>); \
    EXPECT_TRUE(std::is_aggregate_v<Record>);          \
    EXPECT_FALSE(std::is_polymorphic_v<Record>);
    FOR_EACH_LAYER_PIXEL(ROW)
    FOR_EACH_PLAIN_PIXEL(ROW)
#undef ROW
}

// Which operations a record has. What is missing does not exist: a template may ask.
template <class Record>
constexpr bool kHasMerge = requires(Record a) {
    a.Merge(a);
};
template <class Record>
constexpr bool kHasBlend = requires(Record a) {
    a.Blend(a, 0.5f);
};
template <class Record>
constexpr bool kHasMapBlend = requires(Record a, ScColorMap<unsigned char, StRGBA32Pixel>* map) {
    a.Blend(a, 0.5f, map);
};
template <class Record>
constexpr bool kHasSmart = requires(Record a, ScSmartPixel const* s) {
    a.ConvertSmart(s);
};
template <class Record>
constexpr bool kHasMapSmart = requires(Record a, ScSmartPixel const* s,
                                       ScColorMap<unsigned char, StRGBA32Pixel>* map) {
    a.ConvertSmart(s, map, map);
};
template <class Record>
constexpr bool kHasStream = requires(Record a, SmStream& s) {
    a.GetFromStream(s);
    a.PutToStream(s);
};
template <class Record>
constexpr bool kHasAnyStream = requires(Record a, SmStream& s) {
    a.GetFromStream(s);
}
|| requires(Record a, SmStream& s) {
    a.PutToStream(s);
};
template <class Record>
constexpr bool kHasRow = requires(Record a, void* row) {
    a.PlacePixelInRow(row, 0L);
    a.GetPixelFromRow(row, 0L);
};
template <class Record>
constexpr bool kHasAnyRow = requires(Record a, void* row) {
    a.PlacePixelInRow(row, 0L);
}
|| requires(Record a, void* row) {
    a.GetPixelFromRow(row, 0L);
};

// Conversions that come in pairs: 2 where a record has both, 0 where it has none.
template <class Record>
constexpr int kColorReads = requires(Record const a) {
    a.ConvertToFloat();
}
+ requires(Record const a, StColorFloats& out) {
    a.ConvertToColorFloats(out);
};
template <class Record>
constexpr int kFourFloatForms = requires(Record const a, StRGBAFloatPixel& out) {
    a.ConvertToRGBAFloat(out);
}
+ requires(Record a, StRGBAFloatPixel const& in) {
    a.ConvertFromRGBAFloat(in);
};
template <class Record>
constexpr bool kHasFromColor = requires(Record a, StColorFloats const& in) {
    a.ConvertFromColorFloats(in);
};

struct StMembers {
    char const* name;
    bool merge, blend, mapForms, smart, stream, row;
    int colorReads, fourFloatForms;
    bool fromColor;
    bool hasMerge, hasBlend, hasMapForms, hasSmart, hasStream, hasAnyStream, hasRow, hasAnyRow;
    int hasColorReads, hasFourFloatForms;
    bool hasFromColor;
};
#define MEMBERS(R)                                                                             \
    kHasMerge<R>, kHasBlend<R>, kHasMapBlend<R>&&kHasMapSmart<R>, kHasSmart<R>, kHasStream<R>, \
        kHasAnyStream<R>, kHasRow<R>, kHasAnyRow<R>, kColorReads<R>, kFourFloatForms<R>, kHasFromColor<R>
constexpr bool Y = true, n = false;
// clang-format off
constexpr StMembers kMembers[] = {
    // record    Merge, Blend, with map, Smart, stream, row; color reads, four floats, ConvertFromColorFloats
    {"StRGBA32Pixel",      Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StRGBA32Pixel)},
    {"StRGB32Pixel",       Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StRGB32Pixel)},
    {"StRGB24Pixel",       Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StRGB24Pixel)},
    {"StRGB15Pixel",       Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StRGB15Pixel)},
    {"StRGB48Pixel",       Y, Y, n, Y, Y, n, 2, 0, Y, MEMBERS(StRGB48Pixel)},
    {"StRGBA64Pixel",      Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StRGBA64Pixel)},
    {"StRGBAFloatPixel",   Y, Y, n, Y, Y, n, 2, 0, n, MEMBERS(StRGBAFloatPixel)},
    {"StColorFloats",      Y, Y, n, Y, Y, n, 2, 0, n, MEMBERS(StColorFloats)},
    {"StGray8Pixel",       Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StGray8Pixel)},
    {"StGray4Pixel",       Y, Y, n, Y, Y, Y, 2, 2, n, MEMBERS(StGray4Pixel)},
    {"StGray2Pixel",       Y, Y, n, Y, Y, Y, 2, 2, n, MEMBERS(StGray2Pixel)},
    {"StBlackWhitePixel",  Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StBlackWhitePixel)},
    {"StMapped8Pixel",     n, n, Y, n, Y, n, 0, 0, n, MEMBERS(StMapped8Pixel)},
    {"StMapped4Pixel",     n, n, Y, n, Y, Y, 0, 0, n, MEMBERS(StMapped4Pixel)},
    {"StMapped2Pixel",     n, n, Y, n, Y, Y, 0, 0, n, MEMBERS(StMapped2Pixel)},
    {"StMapped1Pixel",     n, n, Y, n, Y, Y, 0, 0, n, MEMBERS(StMapped1Pixel)},
    {"StAlpha8Pixel",      Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StAlpha8Pixel)},
    {"StAlpha32Pixel",     Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StAlpha32Pixel)},
    {"StDepthFloatPixel",  Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StDepthFloatPixel)},
    {"StDepthUInt8Pixel",  n, n, n, Y, Y, n, 2, 0, n, MEMBERS(StDepthUInt8Pixel)},
    {"StDepthUInt16Pixel", n, n, n, Y, Y, n, 2, 0, n, MEMBERS(StDepthUInt16Pixel)},
    {"StDepthUInt24Pixel", n, n, n, Y, Y, n, 2, 0, n, MEMBERS(StDepthUInt24Pixel)},
    {"StDepthUInt32Pixel", n, n, n, Y, Y, n, 2, 0, n, MEMBERS(StDepthUInt32Pixel)},
    {"StCMYKPixel",        Y, Y, n, Y, Y, n, 2, 2, n, MEMBERS(StCMYKPixel)},
    {"StRGBTFloatPixel",   n, n, n, n, n, n, 2, 0, n, MEMBERS(StRGBTFloatPixel)},
    {"StHSLAPixel",        n, n, n, n, n, n, 2, 0, n, MEMBERS(StHSLAPixel)},
    {"StHSVAPixel",        n, n, n, n, n, n, 2, 0, n, MEMBERS(StHSVAPixel)},
    {"StYIQAPixel",        n, n, n, n, n, n, 2, 0, n, MEMBERS(StYIQAPixel)},
    {"StVelocityPixel",    n, n, n, n, n, n, 2, 0, n, MEMBERS(StVelocityPixel)},
};
// clang-format on
#undef MEMBERS

TEST(Records, Members_ExistWhereTheyShouldAndNowhereElse) {
    for (StMembers const& row : kMembers) {
        EXPECT_EQ(row.hasMerge, row.merge) << row.name;
        EXPECT_EQ(row.hasBlend, row.blend) << row.name;
        EXPECT_EQ(row.hasMapForms, row.mapForms) << row.name;
        EXPECT_EQ(row.hasSmart, row.smart) << row.name;
        EXPECT_EQ(row.hasStream, row.stream) << row.name;
        EXPECT_EQ(row.hasAnyStream, row.stream) << row.name;
        EXPECT_EQ(row.hasRow, row.row) << row.name;
        EXPECT_EQ(row.hasAnyRow, row.row) << row.name;
        EXPECT_EQ(row.hasColorReads, row.colorReads) << row.name;
        EXPECT_EQ(row.hasFourFloatForms, row.fourFloatForms) << row.name;
        EXPECT_EQ(row.hasFromColor, row.fromColor) << row.name;
    }
}

}  // namespace
