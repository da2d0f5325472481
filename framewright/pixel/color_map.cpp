#include "framewright/pixel/color_map.h"

#include <algorithm>

#include "framewright/core/startup.h"
#include "framewright/pixel/pixel_constants.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/stream.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);

using ScPalette = ScColorMap<unsigned char, StRGBA32Pixel>;

namespace {

constexpr unsigned char kStreamVersion = 0;

/// Sums of squares of bytes stay below 2 to the 18.
unsigned SquaredDistance(StRGBA32Pixel a, StRGBA32Pixel b) {
    int const red = a.red - b.red, green = a.green - b.green, blue = a.blue - b.blue;
    return static_cast<unsigned>(red * red + green * green + blue * blue);
}

}  // namespace

ScPalette::ScColorMap(int count)
    : mEntries{},
      mEntryCount(count < 1 ? kMaxEntries : std::min(count, kMaxEntries)),
      mEntryLimit(count < 1 ? kMaxEntries : count),
      mUsedCount(0),
      mCache{} {}

void* ScPalette::operator new(std::size_t size) {
    void* const map = SrAllocatePointer(size);
    SrThrowIfNIL(map);
    return map;
}

void ScPalette::operator delete(void* map, std::size_t size) {
    SrDeallocatePointer(map, size);
}

unsigned char ScPalette::SearchClosest(StRGBA32Pixel color) {
    // Distance and index in one number: the least is the nearest entry, and the lowest index on a tie. No
    // branch depends on an entry, so that the compiler can take several at a time.
    unsigned best = SquaredDistance(color, mEntries[0]) << 8;
    unsigned const count = static_cast<unsigned>(UsedEntries());
    for (unsigned i = 0; i < count; ++i)
        best = std::min(best, SquaredDistance(color, mEntries[i]) << 8 | i);
    auto const index = static_cast<unsigned char>(best);
    mCache[Cell(color)] = index;
    return index;
}

void ScPalette::PutToStream(SmStream& stream) const {
    stream.Write(1, &kStreamVersion);
    stream.PutBigEndian(mEntryLimit);
    stream.PutBigEndian(mUsedCount);
    stream.PutBigEndian(mEntryCount);
    for (int i = 0; i < mEntryCount; ++i)
        StRGBA32Pixel(mEntries[i]).PutToStream(stream);
    stream.PutBigEndian(std::int32_t{kCells});
    stream.Write(kCells, mCache);
}

void ScPalette::GetFromStream(SmStream& stream) {
    unsigned char version = 0;
    stream.Read(1, &version);
    if (version != kStreamVersion) SrThrow(SkBadFileVersionErrC(), SkBadFileVersionMsgC());

    auto const limit = stream.GetBigEndian<std::int32_t>();
    auto const used = stream.GetBigEndian<std::int32_t>();
    auto const count = stream.GetBigEndian<std::int32_t>();
    if (count < 0 || count > kMaxEntries) SrThrow(SkBadFileFormatErrC(), SkBadFileFormatMsgC());
    mEntryLimit = limit;
    mUsedCount = used;
    mEntryCount = count;
    std::fill_n(mEntries, kMaxEntries, StRGBA32Pixel{});
    for (int i = 0; i < count; ++i)
        mEntries[i].GetFromStream(stream);

    if (stream.GetBigEndian<std::int32_t>() != kCells) SrThrow(SkBadFileFormatErrC(), SkBadFileFormatMsgC());
    stream.Read(kCells, mCache);
}

namespace {

StRGBA32Pixel Opaque(int red, int green, int blue) {
    return {static_cast<unsigned char>(blue), static_cast<unsigned char>(green),
            static_cast<unsigned char>(red), 255};
}

void StuffColorCube(ScPalette& map) {
    constexpr int kReds = 6, kGreens = 7, kBlues = 6;
    auto const step = [](int k) { return k * 255 / 5; };
    unsigned char index = 0;
    for (int blue = 0; blue < kBlues; ++blue)
        for (int green = 0; green < kGreens; ++green)
            // The seventh green is 306: one past the end of the five steps, cut to 50 by its byte.
            for (int red = 0; red < kReds; ++red)
                map.SetColor(index++, Opaque(step(red), step(green), step(blue)));
    for (int grey : {51, 102, 153, 204})
        map.SetColor(index++, Opaque(grey, grey, grey));
}

void StuffNamedColors(ScPalette& map) {
    StRGBA32Pixel const colors[16] = {
        SkBlackColorBytes(), SkWhiteColorBytes(), Opaque(255, 0, 0),     Opaque(0, 255, 0),
        Opaque(0, 0, 255),   Opaque(64, 64, 64),  Opaque(128, 128, 128), Opaque(192, 192, 192),
        Opaque(255, 255, 0), Opaque(0, 255, 255), Opaque(255, 0, 255),   Opaque(0, 128, 128),
        Opaque(128, 0, 128), Opaque(128, 128, 0), Opaque(255, 128, 128), Opaque(128, 255, 128),
    };
    unsigned char index = 0;
    for (StRGBA32Pixel const& color : colors)
        map.SetColor(index++, color);
}

/// The first colours of the small fills.
void StuffFewColors(ScPalette& map, int count) {
    StRGBA32Pixel const colors[4] = {SkBlackColorBytes(), SkWhiteColorBytes(), Opaque(0, 0, 255),
                                     Opaque(0, 255, 0)};
    for (int i = 0; i < count; ++i)
        map.SetColor(static_cast<unsigned char>(i), colors[i]);
}

}  // namespace

void StuffDefaultColors(ScPalette& map, int count) {
    if (count < 1) count = map.EntryCount();
    if (count >= 256)
        StuffColorCube(map);
    else if (count >= 16)
        StuffNamedColors(map);
    else
        StuffFewColors(map, count >= 4 ? 4 : std::min(count, 2));
}

void SrCopyColorMap(ScPalette* destination, ScPalette* source) {
    if (!destination || !source) return;
    int const used = source->UsedEntries();
    for (int i = 0; i < used; ++i) {
        auto const index = static_cast<unsigned char>(i);
        destination->SetColor(index, (*source)[index]);
    }
}
