#include "framewright/imagery/mip_chain.h"

#include <algorithm>
#include <cstring>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/numbers.h"

namespace {

/// The greatest power of two that is a number of rows or columns.
constexpr std::int64_t kGreatestSide = std::int64_t{1} << 30;

std::int32_t NearestPowerOfTwo(std::int64_t side) {
    std::int64_t power = 1;
    while (power < side)
        power *= 2;
    if (power > 1 && side - power / 2 < power - side) power /= 2;
    if (power > kGreatestSide) SrThrow(SkMemoryFull(), nullptr);
    return static_cast<std::int32_t>(power);
}

std::int32_t HalfOf(std::int32_t side) {
    return std::max(side / 2, 1);
}

StPoint HalfOf(StPoint const& size) {
    return {HalfOf(size.vertical), HalfOf(size.horizontal)};
}

std::int32_t CountLevels(std::int32_t largerSide, float maximumFilter) {
    std::int32_t levels = 0;
    std::int32_t side = largerSide;
    if (maximumFilter == 0.0f) {
        for (; side > 0; side >>= 1)
            ++levels;
        return levels;
    }
    float pixelWidth = 0.0f;
    do {
        ++levels;
        pixelWidth = 1.0f / static_cast<float>(side);
        side >>= 1;
    } while (pixelWidth < maximumFilter && side > 0);
    return levels;
}

std::size_t TableBytes(std::int32_t levels) {
    return static_cast<std::size_t>(levels) * sizeof(StMipLevel);
}

StMipLevel* NewTable(std::int32_t levels) {
    void* const table = SrAllocatePointer(TableBytes(levels));
    SrThrowIfNIL(table);
    return static_cast<StMipLevel*>(table);
}

void FillTable(StMipChain const& chain, StPoint const& top) {
    StMipLevel level{0, 0, top.vertical, top.horizontal};
    for (std::int32_t i = 0; i < chain.levels; ++i) {
        chain.table[i] = level;
        if (i == 0)
            level.top += level.height;
        else
            level.left += level.width;
        level.height = HalfOf(level.height);
        level.width = HalfOf(level.width);
    }
}

}  // namespace

imagery::StMipLayout imagery::LayOutMipmap(StPoint const& size, float maximumFilter) {
    StMipLayout layout{};
    layout.top = {NearestPowerOfTwo(size.vertical), NearestPowerOfTwo(size.horizontal)};
    layout.levels = CountLevels(std::max(layout.top.vertical, layout.top.horizontal), maximumFilter);
    layout.smallest = layout.top;
    for (std::int32_t i = 1; i < layout.levels; ++i)
        layout.smallest = HalfOf(layout.smallest);
    layout.raster = {layout.top.vertical + HalfOf(layout.top.vertical), layout.top.horizontal};
    return layout;
}

void imagery::MakeChain(StMipChain& chain, StMipLayout const& layout) {
    FreeChain(chain);
    auto const larger = static_cast<float>(std::max(layout.top.vertical, layout.top.horizontal));
    auto const smaller = static_cast<float>(std::min(layout.smallest.vertical, layout.smallest.horizontal));
    chain.minimumFilter = 1.0f / larger;
    chain.levelBias = -SrLog2(chain.minimumFilter);
    chain.maximumFilter = 1.0f / smaller;
    chain.log2Width = SrLog2(static_cast<float>(layout.top.horizontal));
    chain.log2Height = SrLog2(static_cast<float>(layout.top.vertical));
    chain.table = NewTable(layout.levels);
    chain.levels = layout.levels;
    FillTable(chain, layout.top);
}

void imagery::CopyChain(StMipChain& chain, StMipChain const& other) {
    FreeChain(chain);
    if (other.table) {
        StMipLevel* const table = NewTable(other.levels);
        std::memcpy(table, other.table, TableBytes(other.levels));
        chain = other;
        chain.table = table;
    }
}

void imagery::FreeChain(StMipChain& chain) {
    SrDeallocateIfPointer(chain.table, TableBytes(chain.levels));
    chain = {};
}
