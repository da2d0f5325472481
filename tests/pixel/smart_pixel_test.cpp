// Smart pixels: one of every record, their memory, and what they do without a colour map.
#include "framewright/pixel/smart_pixel.h"

#include <cstring>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "pixel/pixel_test_support.h"

using namespace pixel_test;

namespace {

std::vector<std::size_t> gAsked;
bool CountAll(std::size_t size) {
    gAsked.push_back(size);
    return true;
}
bool RefuseAll(std::size_t) {
    return false;
}

/// Removes the gate again, whatever happens.
struct StGate {
    explicit StGate(StAllocationGate gate) {
        gAsked.reserve(64);
        gAsked.clear();
        SrSetAllocationGate(gate);
    }
    ~StGate() { SrSetAllocationGate(nullptr); }
};

template <class Record>
class SmartPixelOf : public testing::Test {};

#define ROW(Record, ...) , Record
template <class First, class... Rest>
using TypesAfter = testing::Types<Rest...>;
using Records = TypesAfter<void FOR_EACH_LAYER_PIXEL(ROW) FOR_EACH_PLAIN_PIXEL(ROW)>;
#undef ROW
TYPED_TEST_SUITE(SmartPixelOf, Records, );

template <class Record>
constexpr bool kMapped = requires(Record p) {
    p.index;
};
template <class Record>
using Expected = std::conditional_t<kMapped<Record>, ScMappedSmartPixel<Record>, ScDerivedPixel<Record>>;

TYPED_TEST(SmartPixelOf, ReportsTheRecordsIdentifiers) {
    Smart<TypeParam> smart;
    EXPECT_EQ(smart->PixelID(), TypeParam::PixelID());
    EXPECT_EQ(smart->FamilyID(), TypeParam::FamilyID());
    EXPECT_NE(dynamic_cast<Expected<TypeParam>*>(smart.Get()), nullptr);
    EXPECT_NE(dynamic_cast<ScDerivedPixel<TypeParam>*>(smart.Get()), nullptr);
}

TYPED_TEST(SmartPixelOf, StartsWithAllBytesZero) {
    Smart<TypeParam> smart;
    unsigned char const zero[sizeof(TypeParam)] = {};
    EXPECT_EQ(std::memcmp(smart->GetPixelData(), zero, sizeof zero), 0);
}

TYPED_TEST(SmartPixelOf, MovesTheRecordWhole) {
    unsigned char bytes[sizeof(TypeParam)];
    for (std::size_t i = 0; i < sizeof bytes; ++i)
        bytes[i] = static_cast<unsigned char>(0xE1 - 9 * i);
    Smart<TypeParam> smart;
    void* const data = smart->GetPixelData();
    smart->SetPixelData(bytes);
    EXPECT_EQ(smart->GetPixelData(), data);
    EXPECT_EQ(std::memcmp(data, bytes, sizeof bytes), 0);
    // The record lies inside the object.
    auto const* object = reinterpret_cast<unsigned char const*>(smart.Get());
    EXPECT_GT(static_cast<unsigned char*>(data), object);
    EXPECT_LE(static_cast<unsigned char*>(data) + sizeof bytes, object + sizeof(Expected<TypeParam>));
}

TYPED_TEST(SmartPixelOf, TakesExactlyItsSizeFromTheAllocator) {
    StGate gate(CountAll);
    delete TypeParam::NewSmartPixel();
    ASSERT_EQ(gAsked.size(), 1u);
    EXPECT_EQ(gAsked[0], sizeof(Expected<TypeParam>));
}

TYPED_TEST(SmartPixelOf, RefusedMemory_ThrowsMinus108) {
    StGate gate(RefuseAll);
    try {
        delete TypeParam::NewSmartPixel();
        ADD_FAILURE() << "made without memory";
    } catch (std::exception const& failure) {
        ScMessageClass* message;
        EXPECT_EQ(SrGetExceptionValues(failure, message), -108);
        EXPECT_EQ(message, nullptr);
    }
}

TYPED_TEST(SmartPixelOf, IsMadeByARecordInAnyState) {
    TypeParam record;
    std::memset(static_cast<void*>(&record), 0xFF, sizeof record);
    std::unique_ptr<ScSmartPixel> smart(record.NewSmartPixel());
    unsigned char const zero[sizeof(TypeParam)] = {};
    EXPECT_EQ(std::memcmp(smart->GetPixelData(), zero, sizeof zero), 0)
        << "the record's value does not go along";
}

TYPED_TEST(SmartPixelOf, CopesWithEveryFloat) {
    Smart<TypeParam> smart;
    for (float f : EdgeFloats()) {
        smart->SetFloat(f);
        smart->SetColorFloats({f, f, f});
        StColorFloats out{};
        smart->GetColorFloats(out);
        static_cast<void>(smart->GetFloat());
        static_cast<void>(smart->GetRGBA32());
    }
    smart->SetRGBA32(Color(255, 255, 255, 255));
    EXPECT_EQ(smart->PixelID(), TypeParam::PixelID());
}

TEST(SmartPixel, ClassTree) {
    EXPECT_TRUE((std::is_base_of_v<SxFastAllocator, ScSmartPixel>));
    EXPECT_TRUE((std::is_base_of_v<ScSmartPixel, ScDerivedPixel<StGray8Pixel>>));
    EXPECT_TRUE((std::is_base_of_v<ScDerivedPixel<StMapped4Pixel>, ScMappedSmartPixel<StMapped4Pixel>>));
    EXPECT_TRUE(std::is_empty_v<SxFastAllocator>);
    EXPECT_TRUE(std::is_abstract_v<ScSmartPixel>);
    EXPECT_EQ(sizeof(ScSmartPixel), sizeof(void*)) << "no data but the table of virtual operations";
}

/// Where a virtual operation stands in the table: the first word of a pointer to it grows with its slot.
template <class Operation>
std::uintptr_t Slot(Operation operation) {
    std::uintptr_t word;
    std::memcpy(&word, &operation, sizeof word);
    return word;
}

TEST(SmartPixel, OperationsStandInTheirOrder) {
    std::uintptr_t const slots[] = {Slot(&ScSmartPixel::FamilyID),       Slot(&ScSmartPixel::PixelID),
                                    Slot(&ScSmartPixel::GetPixelData),   Slot(&ScSmartPixel::SetPixelData),
                                    Slot(&ScSmartPixel::GetRGBA32),      Slot(&ScSmartPixel::SetRGBA32),
                                    Slot(&ScSmartPixel::GetFloat),       Slot(&ScSmartPixel::SetFloat),
                                    Slot(&ScSmartPixel::GetColorFloats), Slot(&ScSmartPixel::SetColorFloats)};
    for (std::size_t i = 1; i < std::size(slots); ++i)
        EXPECT_EQ(slots[i], slots[i - 1] + sizeof(void*)) << i;
    // Nothing but the destructor, which has two entries, stands before. The lowest bit may mark a virtual
    // one.
    EXPECT_EQ(slots[0] & ~std::uintptr_t{1}, 2 * sizeof(void*));
}

TEST(SmartPixel, AHostMayDeriveItsOwn) {
    struct StHost : ScDerivedPixel<StGray8Pixel> {
        unsigned long PixelID() const override { return SrCode("Host"); }
    };
    StGate gate(CountAll);
    ScSmartPixel* smart = new StHost;
    EXPECT_EQ(smart->PixelID(), SrCode("Host"));
    smart->SetFloat(1.0f);
    EXPECT_EQ(Of(smart->GetRGBA32()), (Fields<4>{255, 255, 255, 255}));
    delete smart;
    ASSERT_EQ(gAsked.size(), 1u);
    EXPECT_EQ(gAsked[0], sizeof(StHost));
}

TEST(SmartPixel, Alpha8_HasThreeZeroBytesBehindItsOpacity) {
    Smart<StAlpha8Pixel> smart(StAlpha8Pixel{255});
    auto const* bytes = static_cast<unsigned char*>(smart->GetPixelData());
    EXPECT_EQ(bytes[0], 255);
    EXPECT_EQ(bytes[1] | bytes[2] | bytes[3], 0);
}

TEST(SmartPixel, EdgeCases) {
    EXPECT_EQ(Of(Smart(StBlackWhitePixel{1, 0})->GetRGBA32()), Of(SkBlackColorBytes()));
    EXPECT_EQ(Smart(StBlackWhitePixel{1, 0})->GetRGBA32().alpha, 0);
    Smart<StHSLAPixel> hsl;
    hsl->SetFloat(0.5f);
    EXPECT_EQ(hsl.Value().alpha, 127);
    EXPECT_EQ(hsl.Value().lightness, 49);
}

}  // namespace
