#include "framewright/pixel/octree.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "framewright/frame/frame.h"
#include "framewright/pixel/pixel_constants.h"
#include "framewright/pixel/source_rows.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/progress.h"

using ScPalette = ScColorMap<unsigned char, StRGBA32Pixel>;

namespace {

struct StLeaf {
    std::uint32_t count, red, green, blue;  ///< sums wrap at 32 bits
};

struct StNode {
    StNode* next;        ///< in the pool's free list, or in the reducible list of its depth
    std::int32_t depth;  ///< the root is at 1
    bool isLeaf;
    union {
        StNode* children[8];  ///< of an inner node; null where there is none
        StLeaf leaf;
    };
};

/// Nodes in blocks of 256, so that a picture costs a handful of allocations.
class ScNodePool {
  public:
    ScNodePool() = default;
    ScNodePool(ScNodePool const&) = delete;
    ScNodePool& operator=(ScNodePool const&) = delete;
    ~ScNodePool() {
        while (mBlocks) {
            void** const handle = mBlocks;
            mBlocks = static_cast<StBlock*>(*handle)->previous;
            SrDeallocateHandle(handle);
        }
    }

    StNode* Take() {
        if (!mFree) AddBlock();
        StNode* const node = mFree;
        mFree = node->next;
        return node;
    }
    void Return(StNode* node) {
        node->next = mFree;
        mFree = node;
    }

  private:
    static constexpr int kNodesPerBlock = 256;
    struct StBlock {
        void** previous;
        StNode nodes[kNodesPerBlock];
    };

    void AddBlock() {
        void** const handle = SrAllocateHandle(sizeof(StBlock));
        SrThrowIfNIL(handle);
        auto* const block = static_cast<StBlock*>(*handle);
        block->previous = mBlocks;
        mBlocks = handle;
        for (int i = kNodesPerBlock - 1; i >= 0; --i)
            Return(&block->nodes[i]);
    }

    void** mBlocks = nullptr;
    StNode* mFree = nullptr;
};

class ScOctree {
  public:
    explicit ScOctree(int bits) : mMaxDepth(bits), mLeafLimit((1 << bits) - 2) {}

    void AddPixel(StRGBA32Pixel color) {
        std::uint32_t const word = Word(color);
        if (word == mBlack || word == mWhite) return;
        // Nodes down to this depth cover whole colour cells, so a cell knows where its walk arrives there: at
        // a leaf on the way, or at the node of this depth.
        StNode*& start = mStarts[ScPalette::Cell(color)];
        if (!start) start = Walk(mRoot, color, 1, kStartDepth);
        StNode* node = start;
        if (!node->isLeaf) {
            node = Walk(node->children[ChildIndex(color, kStartDepth)], color, kStartDepth + 1, kMaxDepths);
        }
        ++node->leaf.count;
        node->leaf.red += color.red;
        node->leaf.green += color.green;
        node->leaf.blue += color.blue;
        while (mLeaves > mLeafLimit)
            Reduce();
    }

    /// Writes black, a colour for each leaf, and white.
    void StuffInto(ScPalette& map) const {
        map.SetColor(0, SkBlackColorBytes());
        unsigned char index = 1;
        StuffLeaves(mRoot, map, index);
        map.SetColor(index, SkWhiteColorBytes());
    }

  private:
    static constexpr int kMaxDepths = 8;
    static constexpr int kStartDepth = 5;

    static std::uint32_t Word(StRGBA32Pixel color) {
        std::uint32_t word;
        std::memcpy(&word, &color, sizeof word);
        return word;
    }

    /// Which child a node of `depth` sends `color` to: one bit of each channel, from the highest down.
    static int ChildIndex(StRGBA32Pixel color, int depth) {
        int const bit = kMaxDepths - depth;
        return (color.red >> bit & 1) << 2 | (color.green >> bit & 1) << 1 | (color.blue >> bit & 1);
    }

    /// Goes down from `slot`, which hangs at `depth`, to a leaf or to a node of depth `last`, and makes the
    /// nodes that are missing.
    StNode* Walk(StNode*& slot, StRGBA32Pixel color, int depth, int last) {
        StNode** place = &slot;
        for (;; ++depth) {
            if (!*place) *place = NewNode(depth);
            StNode* const node = *place;
            if (node->isLeaf || depth == last) return node;
            place = &node->children[ChildIndex(color, depth)];
        }
    }

    StNode* NewNode(int depth) {
        StNode* const node = mPool.Take();
        node->depth = depth;
        node->isLeaf = depth == mMaxDepth;
        if (node->isLeaf) {
            node->leaf = {};
            ++mLeaves;
        } else {
            std::fill_n(node->children, 8, nullptr);
            node->next = mReducible[depth];
            mReducible[depth] = node;
        }
        return node;
    }

    /// Merges the leaves below the newest of the deepest inner nodes into that node.
    void Reduce() {
        int depth = mMaxDepth - 1;
        while (depth > 0 && !mReducible[depth])
            --depth;
        mMaxDepth = depth + 1;
        StNode* const node = mReducible[depth];
        SrThrowIfNIL(node);
        mReducible[depth] = node->next;

        StLeaf merged = {};
        for (StNode* child : node->children) {
            if (!child) continue;
            merged.red += child->leaf.red;
            merged.green += child->leaf.green;
            merged.blue += child->leaf.blue;
            ++merged.count;  // the children, not their pixels: see the header
            mPool.Return(child);
        }
        node->isLeaf = true;
        node->leaf = merged;
        mLeaves -= static_cast<int>(merged.count) - 1;
        // Where a walk starts at one of the children, it has to end at their parent now.
        if (depth < kStartDepth) std::fill_n(mStarts, ScPalette::kCells, nullptr);
    }

    static void StuffLeaves(StNode const* node, ScPalette& map, unsigned char& index) {
        if (!node) return;
        if (!node->isLeaf) {
            for (StNode const* child : node->children)
                StuffLeaves(child, map, index);
            return;
        }
        // The count of a frame of 2 to the 32 pixels of one colour wraps to 0.
        std::uint32_t const count = std::max<std::uint32_t>(node->leaf.count, 1);
        map.SetColor(index++, {static_cast<unsigned char>(node->leaf.blue / count),
                               static_cast<unsigned char>(node->leaf.green / count),
                               static_cast<unsigned char>(node->leaf.red / count), 255});
    }

    ScNodePool mPool;
    StNode* mRoot = nullptr;
    StNode* mReducible[kMaxDepths + 1] = {};
    int mMaxDepth;  ///< the depth at which new nodes are leaves
    int mLeafLimit;
    int mLeaves = 0;
    std::uint32_t const mBlack = Word(SkBlackColorBytes());
    std::uint32_t const mWhite = Word(SkWhiteColorBytes());
    StNode* mStarts[ScPalette::kCells] = {};
};

}  // namespace

void SrStuffOptimalColorMap(ScPalette& map, int bits, SmImagerFrame* frame, ScProgressIndicator* progress) {
    if (bits <= 1) {
        map.SetColor(0, SkBlackColorBytes());
        map.SetColor(1, SkWhiteColorBytes());
        return;
    }
    ScOctree tree(std::min(bits, 8));
    StPoint const size = frame->GetSize();
    pixel::StRowForm const form = pixel::RowFormOf(frame);
    for (long y = 0; y < size.vertical; ++y) {
        pixel::WithColorsOfRow(frame, form, y, [&](auto const& colors) {
            for (long x = 0; x < size.horizontal; ++x)
                tree.AddPixel(colors(x));
        });
        if (progress) progress->Report(y, size.vertical);
    }
    tree.StuffInto(map);
}
