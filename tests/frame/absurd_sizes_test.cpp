// Sizes that no picture has but a file may name: nothing is allocated beyond what the frame holds, and what
// fails leaves a frame that can be used and let go.
#include <cstdint>
#include <vector>

#include "framewright/frame/frame_limit.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/thornmere/memory.h"
#include "kinds.h"

using namespace testing_frames;

namespace {

std::size_t gMost = 0;
bool NoteLargest(std::size_t size) {
    gMost = std::max(gMost, size);
    return true;
}

/// The largest block that `work` asks for.
template <class Work>
std::size_t LargestBlock(Work const& work) {
    gMost = 0;
    SrSetAllocationGate(NoteLargest);
    work();
    SrSetAllocationGate(nullptr);
    return gMost;
}

constexpr std::uint32_t kFactoryTypes[] = {SrCode("ColB"), SrCode("RG15"), SrCode("Map8"), SrCode("Map4"),
                                           SrCode("Map2"), SrCode("Map1"), SrCode("BnW1"), SrCode("RG64")};

TEST(AbsurdSizes, AFrameWithoutRowsIsSmallHoweverWide) {
    for (std::uint32_t type : kFactoryTypes) {
        for (bool native : {false, true}) {
            std::size_t const most = LargestBlock([&] {
                auto const frame =
                    StRef<SmImagerFrame>::Adopt(SrMakeFrame({0, INT32_MAX}, type, false, native));
                ASSERT_TRUE(frame);
                EXPECT_EQ(frame->GetSize(), (StPoint{0, INT32_MAX}));
            });
            EXPECT_LT(most, 16384u) << type << (native ? " native" : "");
        }
    }
}

TEST(AbsurdSizes, ErrorsOfOneWideRowDoNotOutweighItsPixels) {
    constexpr long kColumns = 100'000'000;
    std::size_t const most = LargestBlock([&] {
        auto const frame =
            StRef<SmImagerFrame>::Adopt(SrMakeFrame({1, kColumns}, SrCode("Map1"), false, false));
        ASSERT_TRUE(frame);
    });
    EXPECT_EQ(most, std::size_t{kColumns / 8});
}

TEST(AbsurdSizes, AFailedInitialisationLeavesAFrameOfNoPixels) {
    auto layer = MakeLayer<StGray8Pixel>({4, 4});
    EXPECT_EQ(ThrownBy([&] {
                  layer->IImagerLayer({0, 0}, {65536, 65536}, false, nullptr, 0, nullptr);
              }),
              -108);
    EXPECT_EQ(layer->GetSize(), (StPoint{0, 0}));
    layer->Erase();
    layer->IImagerLayer({0, 0}, {2, 2}, false, nullptr, 0, nullptr);
    layer->Erase();
    EXPECT_EQ(layer->GetSize(), (StPoint{2, 2}));
}

// 8,912,921 steps over 17 are not exact in a float: the last place comes out as 8,912,922, one past the end.
TEST(AbsurdSizes, StretchingReadsTheLastPixelWhereRoundingLiftsThePlacePastIt) {
    constexpr std::int32_t kColumns = 8'912'922, kTarget = 18;
    std::vector<std::uint8_t> row(kColumns + 6, 99);
    row[kColumns - 1] = 200;
    auto source = StRef<PlainLayer<StGray8Pixel>>::Adopt(PlainLayer<StGray8Pixel>::New());
    source->IImagerLayer({0, 0}, {1, kColumns}, false, row.data(), kColumns + 6, nullptr);
    auto const last = [&](auto stretch) {
        auto target = MakeLayer<StGray8Pixel>({1, kTarget});
        stretch(*target);
        return int{target->GetMatchedPixelAt(kTarget - 1, 0).level};
    };
    StRect const from{0, 0, 1, kColumns}, to{0, 0, 1, kTarget};
    EXPECT_EQ(last([&](SmImagerFrame& target) { target.StretchBlit(source.Get(), from, to); }), 200);
    EXPECT_EQ(last([&](SmImagerFrame& target) { target.StretchBlitFast(source.Get(), from, to); }), 200);
}

}  // namespace
