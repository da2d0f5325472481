#include "framewright/pixel/octree.h"

#include <cmath>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>

#include "color_test_support.h"
#include "frame_test_support.h"
#include "framewright/thornmere/progress.h"

using namespace color_test;

namespace {

/// The palette maker as its rules tell it, step by step and without a thought for speed.
class ScPlainOctree {
  public:
    explicit ScPlainOctree(int bits) : mMaxDepth(bits), mLimit(1 << bits) {}

    void Add(StRGBA32Pixel color) {
        if (Word(color) == Word(Rgba(0, 0, 0, 0)) || Word(color) == Word(Rgba(255, 255, 255, 255))) return;
        std::unique_ptr<StNode>* slot = &mRoot;
        for (int depth = 1;; ++depth) {
            if (!*slot) {
                *slot = std::make_unique<StNode>();
                (*slot)->leaf = depth == mMaxDepth;
                if ((*slot)->leaf)
                    ++mLeaves;
                else
                    mReducible[depth].push_back(slot->get());
            }
            if ((*slot)->leaf) break;
            int const bit = 8 - depth;
            int const child =
                (color.red >> bit & 1) * 4 + (color.green >> bit & 1) * 2 + (color.blue >> bit & 1);
            slot = &(*slot)->children[child];
        }
        StNode& leaf = **slot;
        leaf.count += 1;
        leaf.red += color.red;
        leaf.green += color.green;
        leaf.blue += color.blue;
        while (mLeaves > mLimit - 2)
            Reduce();
    }

    /// All entries up to and with the white one at the end.
    std::vector<std::uint32_t> Palette() const {
        std::vector<std::uint32_t> palette = {Word(Rgba(0, 0, 0, 0))};
        std::function<void(StNode const*)> const walk = [&](StNode const* node) {
            if (!node) return;
            if (node->leaf) {
                palette.push_back(Word(Rgba(static_cast<int>(node->red / node->count & 255),
                                            static_cast<int>(node->green / node->count & 255),
                                            static_cast<int>(node->blue / node->count & 255))));
                return;
            }
            for (auto const& child : node->children)
                walk(child.get());
        };
        walk(mRoot.get());
        palette.push_back(Word(Rgba(255, 255, 255)));
        return palette;
    }

    int Reductions() const { return mReductions; }

  private:
    struct StNode {
        bool leaf = false;
        std::uint32_t count = 0, red = 0, green = 0, blue = 0;
        std::unique_ptr<StNode> children[8];
    };

    void Reduce() {
        int depth = mMaxDepth - 1;
        while (depth > 0 && mReducible[depth].empty())
            --depth;
        mMaxDepth = depth + 1;
        if (mReducible[depth].empty()) throw std::runtime_error("nothing to reduce");
        StNode* const node = mReducible[depth].back();
        mReducible[depth].pop_back();
        std::uint32_t merged = 0;
        for (auto& child : node->children) {
            if (!child) continue;
            node->red += child->red;
            node->green += child->green;
            node->blue += child->blue;
            ++merged;
            child.reset();
        }
        node->leaf = true;
        node->count = merged;
        mLeaves -= static_cast<int>(merged) - 1;
        ++mReductions;
    }

    std::unique_ptr<StNode> mRoot;
    std::vector<StNode*> mReducible[9];
    int mMaxDepth, mLimit, mLeaves = 0, mReductions = 0;
};

/// The palette that the library makes, up to the number of its used entries.
std::vector<std::uint32_t> PaletteOf(SmImagerFrame* frame, int bits) {
    ScPalette map;
    SrStuffOptimalColorMap(map, bits, frame, nullptr);
    std::vector<std::uint32_t> palette;
    for (int i = 0; i < map.UsedCount(); ++i)
        palette.push_back(Word(map[static_cast<unsigned char>(i)]));
    return palette;
}

std::vector<std::uint32_t> PlainPaletteOf(StPicture const& picture, int bits) {
    ScPlainOctree tree(bits);
    for (StRGBA32Pixel color : picture.pixels)
        tree.Add(color);
    return tree.Palette();
}

class ScCountingProgress : public ScProgressIndicator {
  public:
    void Report(long done, long) override {
        rows.push_back(done);
        if (done == throwAt) throw std::runtime_error("cancelled");
    }
    std::vector<long> rows;
    long throwAt = -1;
};

}  // namespace

TEST(Octree, EqualsThePlainFormulationOnManyPictures) {
    struct {
        char const* name;
        StPicture picture;
    } const rows[] = {
        {"random colours", RandomPicture(61, 47, 1, 255)},
        {"random colours of random alpha", RandomPicture(61, 47, 2)},
        {"few colours", FewColors(40, 40)},
        {"gradient", Gradient(64, 96)},
        {"photo", Photo(120, 90)},
        {"one pixel", SolidPicture(1, 1, Rgba(200, 100, 50))},
        {"no pixels", SolidPicture(0, 0, Rgba(0, 0, 0))},
    };
    for (auto const& row : rows) {
        auto const layer = LayerOf<StRGBA32Pixel>(row.picture);
        for (int bits = 2; bits <= 8; ++bits) {
            EXPECT_EQ(PaletteOf(layer.Get(), bits), PlainPaletteOf(row.picture, bits))
                << row.name << ", " << bits;
        }
    }
}

TEST(Octree, ManyPicturesNeedReductions) {
    ScPlainOctree tree(8);
    for (StRGBA32Pixel color : RandomPicture(61, 47, 1, 255).pixels)
        tree.Add(color);
    EXPECT_GT(tree.Reductions(), 10) << "or the comparison above would prove little";
}

TEST(Octree, FramesThatAreAskedPixelByPixelGiveTheSame) {
    StPicture const picture = Photo(50, 40);
    auto const layer = LayerOf<StRGBA32Pixel>(picture);
    auto const spy = SpyOf<StRGBA32Pixel>(picture);
    for (int bits : {2, 5, 8})
        EXPECT_EQ(PaletteOf(spy.Get(), bits), PaletteOf(layer.Get(), bits));
    EXPECT_EQ(spy->reads, 3 * 50 * 40) << "a class of its own answers for its pixels itself";
}

TEST(Octree, EveryFrameTypeIsReadAsItsColors) {
    StPicture const picture = Photo(30, 20);
    auto const check = [&](auto const& layer) {
        StPicture const read = PictureOf(layer.Get());
        for (int bits : {3, 8})
            EXPECT_EQ(PaletteOf(layer.Get(), bits), PlainPaletteOf(read, bits));
    };
    check(LayerOf<StRGB32Pixel>(picture));
    check(LayerOf<StRGB24Pixel>(picture));
    check(LayerOf<StGray8Pixel>(picture));
    check(LayerOf<StRGBAFloatPixel>(picture));
}

TEST(Octree, OneBitIsBlackAndWhiteWithoutReading) {
    auto const spy = SpyOf<StRGBA32Pixel>(SolidPicture(4, 4, Rgba(9, 9, 9)));
    EXPECT_EQ(PaletteOf(spy.Get(), 1), (std::vector<std::uint32_t>{0x00000000, 0xFFFFFFFF}));
    EXPECT_EQ(spy->reads, 0);
    ScPalette map;
    SrStuffOptimalColorMap(map, 1, nullptr, nullptr);
    EXPECT_EQ(map.UsedCount(), 2);
}

TEST(Octree, TheTwoConstantsDoNotCount) {
    StPicture picture = SolidPicture(2, 2, Rgba(0, 0, 0, 0));
    picture.pixels[3] = Rgba(255, 255, 255, 255);
    auto const layer = LayerOf<StRGBA32Pixel>(picture);
    for (int bits = 2; bits <= 8; ++bits) {
        EXPECT_EQ(PaletteOf(layer.Get(), bits), (std::vector<std::uint32_t>{0x00000000, 0xFFFFFFFF})) << bits;
    }
}

TEST(Octree, OpaqueBlackAndTransparentWhiteCount) {
    StPicture picture = SolidPicture(1, 2, Rgba(0, 0, 0, 255));
    picture.pixels[1] = Rgba(255, 255, 255, 254);
    auto const layer = LayerOf<StRGBA32Pixel>(picture);
    EXPECT_EQ(PaletteOf(layer.Get(), 8), (std::vector<std::uint32_t>{0, 0x000000FF, 0xFFFFFFFF, 0xFFFFFFFF}));
}

TEST(Octree, ALeafThatWasNeverReducedGivesTheMean) {
    // Two bits: leaves hang at depth 2, so the top bit of each channel tells them apart.
    StPicture picture = SolidPicture(1, 3, Rgba(10, 20, 30));
    picture.pixels[1] = Rgba(11, 21, 31);
    picture.pixels[2] = Rgba(13, 22, 33);
    auto const layer = LayerOf<StRGBA32Pixel>(picture);
    // (10 + 11 + 13) / 3 = 11, (20 + 21 + 22) / 3 = 21, (30 + 31 + 33) / 3 = 31.
    EXPECT_EQ(PaletteOf(layer.Get(), 2), (std::vector<std::uint32_t>{0, Word(Rgba(11, 21, 31)), 0xFFFFFFFF}));
}

TEST(Octree, AMergedLeafDividesByItsChildrenAndIsCutToAByte) {
    // Two bits: at most two leaves. The third pixel makes a third leaf at depth 2, and the root takes all of
    // them: count 3, sums of all pixels. Two pixels fell into the first leaf, so the quotients are no means.
    StPicture picture = SolidPicture(1, 4, Rgba(100, 0, 0));
    picture.pixels[1] = Rgba(120, 0, 0);
    picture.pixels[2] = Rgba(0, 200, 0);
    picture.pixels[3] = Rgba(0, 0, 250);
    auto const layer = LayerOf<StRGBA32Pixel>(picture);
    // Red (100 + 120) / 3 = 73, green 200 / 3 = 66, blue 250 / 3 = 83.
    EXPECT_EQ(PaletteOf(layer.Get(), 2), (std::vector<std::uint32_t>{0, Word(Rgba(73, 66, 83)), 0xFFFFFFFF}));

    StPicture wraps = SolidPicture(1, 12, Rgba(120, 0, 0));
    wraps.pixels[10] = Rgba(0, 200, 0);
    wraps.pixels[11] = Rgba(0, 0, 250);
    auto const wrapped = LayerOf<StRGBA32Pixel>(wraps);
    // Red 10 times 120 / 3 = 400, cut to 144.
    EXPECT_EQ(PaletteOf(wrapped.Get(), 2),
              (std::vector<std::uint32_t>{0, Word(Rgba(144, 66, 83)), 0xFFFFFFFF}));
}

TEST(Octree, PixelsAfterAReductionAddToTheMergedLeaf) {
    StPicture picture = SolidPicture(1, 5, Rgba(100, 0, 0));
    picture.pixels[1] = Rgba(0, 200, 0);
    picture.pixels[2] = Rgba(0, 0, 250);
    picture.pixels[3] = Rgba(200, 200, 200);
    picture.pixels[4] = Rgba(1, 2, 3);
    auto const layer = LayerOf<StRGBA32Pixel>(picture);
    // Count 3 of the merger and 2 pixels: red 301 / 5, green 402 / 5, blue 453 / 5.
    EXPECT_EQ(PaletteOf(layer.Get(), 2), (std::vector<std::uint32_t>{0, Word(Rgba(60, 80, 90)), 0xFFFFFFFF}));
}

TEST(Octree, LeavesNeverExceedTheLimit) {
    auto const layer = LayerOf<StRGBA32Pixel>(RandomPicture(64, 64, 5, 255));
    for (int bits = 2; bits <= 8; ++bits) {
        EXPECT_LE(PaletteOf(layer.Get(), bits).size(), std::size_t{1} << bits) << bits;
    }
}

TEST(Octree, EightBitsTellColorsApartByTheirTopSevenBits) {
    StPicture picture = SolidPicture(1, 3, Rgba(2, 0, 0));
    picture.pixels[1] = Rgba(3, 0, 0);
    picture.pixels[2] = Rgba(4, 0, 0);
    auto const layer = LayerOf<StRGBA32Pixel>(picture);
    // 2 and 3 share a leaf at depth 8, (2 + 3) / 2 = 2.
    EXPECT_EQ(PaletteOf(layer.Get(), 8),
              (std::vector<std::uint32_t>{0, Word(Rgba(2, 0, 0)), Word(Rgba(4, 0, 0)), 0xFFFFFFFF}));
}

TEST(Octree, WidthsBeyondTheRangeCountAsItsEnds) {
    auto const layer = LayerOf<StRGBA32Pixel>(Photo(20, 20));
    for (int bits : {9, 100, 0x7FFFFFFF})
        EXPECT_EQ(PaletteOf(layer.Get(), bits), PaletteOf(layer.Get(), 8));
    for (int bits : {0, -1, -0x7FFFFFFF})
        EXPECT_EQ(PaletteOf(layer.Get(), bits), PaletteOf(layer.Get(), 1));
}

TEST(Octree, KeepsEntriesAboveThePalette) {
    ScPalette map;
    StuffDefaultColors(map, 256);
    SrStuffOptimalColorMap(map, 2, LayerOf<StRGBA32Pixel>(SolidPicture(1, 1, Rgba(9, 9, 9))).Get(), nullptr);
    EXPECT_EQ(Word(map[0]), Word(Rgba(0, 0, 0, 0)));
    EXPECT_EQ(Word(map[1]), Word(Rgba(9, 9, 9)));
    EXPECT_EQ(Word(map[2]), Word(Rgba(255, 255, 255)));
    EXPECT_EQ(Word(map[3]), Word(Rgba(153, 0, 0)));
    EXPECT_EQ(map.UsedCount(), 256);
}

TEST(Octree, ReportsEachRow) {
    ScCountingProgress progress;
    ScPalette map;
    SrStuffOptimalColorMap(map, 4, LayerOf<StRGBA32Pixel>(Photo(5, 3)).Get(), &progress);
    EXPECT_EQ(progress.rows, (std::vector<long>{0, 1, 2, 3, 4}));
}

TEST(Octree, AnExceptionOnTheWayGoesOnAndLeavesTheMap) {
    ScCountingProgress progress;
    progress.throwAt = 2;
    ScPalette map;
    EXPECT_THROW(SrStuffOptimalColorMap(map, 8, LayerOf<StRGBA32Pixel>(Photo(5, 30)).Get(), &progress),
                 std::runtime_error);
    EXPECT_EQ(Written(map), Written(ScPalette())) << "and the address sanitizer finds no block that is left";
}

TEST(Octree, RefusedMemoryThrows) {
    auto const layer = LayerOf<StRGBA32Pixel>(RandomPicture(64, 64, 9, 255));
    for (long allowed : {0L, 1L, 2L}) {
        ScPalette map;
        ScRefuseAllocations const gate(allowed);
        EXPECT_EQ(ErrorOf([&] { SrStuffOptimalColorMap(map, 8, layer.Get(), nullptr); }), SkMemoryFull());
    }
}

TEST(Octree, AllocatesBlocksAndNotNodes) {
    auto const layer = LayerOf<StRGBA32Pixel>(RandomPicture(256, 256, 9, 255));
    ScPalette map;
    ScRefuseAllocations const gate(1000000);
    SrStuffOptimalColorMap(map, 8, layer.Get(), nullptr);
    // At most 255 leaves, and no more than seven inner nodes above each: 8 blocks of 256.
    EXPECT_LE(ScRefuseAllocations::Seen(), 16);
}
