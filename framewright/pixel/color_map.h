// Colour maps: the palettes of mapped layers. A map is used by one thread at a time, since even a lookup
// writes to its cache.
#pragma once

#include <cstddef>
#include <cstdint>

#include "framewright/pixel/color_pixels.h"
#include "framewright/thornmere/export.h"

class SmStream;

template <class Index, class Color>
class ScColorMap;

/// Up to 256 colours addressed by a byte, and a cached inverse from colours to indices. The only colour map
/// there is; it has no virtual operations and copies as a value.
///
/// The inverse is approximate on purpose. Colours fall into 4096 cells by the high nibbles of red, green and
/// blue, and the first colour asked of a cell fixes the answer for the whole cell until SetColor puts another
/// index there. So most lookups are one load. An answer of 0 means "none yet": a cell whose nearest entry is
/// 0 is searched anew each time.
template <>
class FRAMEWRIGHT_EXPORT ScColorMap<unsigned char, StRGBA32Pixel> {
  public:
    static constexpr int kMaxEntries = 256;
    static constexpr int kCells = 4096;

    /// 256 entries.
    ScColorMap() : ScColorMap(kMaxEntries) {}
    /// `count` entries, all bytes 0, none of them used; below 1 means 256. A byte reaches 256 entries, so no
    /// more are kept, whatever the limit says.
    explicit ScColorMap(int count);

    /// Maps live in the framework's memory; refused memory throws -108.
    static void* operator new(std::size_t size);
    static void operator delete(void* map, std::size_t size);

    /// Sets an entry, the cell of `color` to answer `index`, and the used count to at least index + 1. Stale
    /// answers in other cells stay. An index at or beyond the number of entries is kept and found by
    /// operator[], but is neither searched nor streamed.
    void SetColor(unsigned char index, StRGBA32Pixel color) {
        mEntries[index] = color;
        mCache[Cell(color)] = index;
        if (mUsedCount <= index) mUsedCount = index + 1;
    }

    /// Any index is good: an entry that was never set has all bytes 0. Writing through the reference changes
    /// the colour alone, neither the used count nor the cached answers.
    StRGBA32Pixel& operator[](unsigned char index) { return mEntries[index]; }
    StRGBA32Pixel const& operator[](unsigned char index) const { return mEntries[index]; }

    /// The used entry nearest to `color` by the sum of squared differences of red, green and blue, the lowest
    /// index on a tie; or what the colour's cell has cached. Alpha does not count.
    unsigned char ClosestColorIndex(StRGBA32Pixel color) {
        unsigned char const cached = CachedIndex(color);
        return cached ? cached : SearchClosest(color);
    }

    /// How many entries the map holds, 0 to 256.
    int EntryCount() const { return mEntryCount; }
    /// The number given at construction, or read from a stream.
    std::int32_t EntryLimit() const { return mEntryLimit; }
    /// One more than the highest index set through SetColor. A stream may bring any number here.
    std::int32_t UsedCount() const { return mUsedCount; }
    /// How many entries are both used and there: what a walk over the used colours visits.
    int UsedEntries() const {
        return mUsedCount < mEntryCount ? (mUsedCount < 0 ? 0 : mUsedCount) : mEntryCount;
    }

    /// The index that the cell of `color` has cached; 0 for none.
    unsigned char CachedIndex(StRGBA32Pixel color) const { return mCache[Cell(color)]; }
    /// The number of the cell that `color` falls into: red's high nibble in bits 8 to 11, then green's, then
    /// blue's in bits 0 to 3.
    static unsigned Cell(StRGBA32Pixel color) {
        return (color.red & 0xF0u) << 4 | (color.green & 0xF0u) | color.blue >> 4;
    }

    /// The stream form, numbers big-endian:
    ///
    ///     offset     size   field
    ///     0          1      version, 0
    ///     1          4      entry limit
    ///     5          4      used count
    ///     9          4      N, the number of entries, 0 to 256
    ///     13         4 N    entries: red, green, blue, alpha
    ///     13 + 4 N   4      size of the inverse cache, 4096
    ///     17 + 4 N   4096   the inverse cache
    ///
    /// The cache goes along, so a map that was read answers as it did when it was written.
    void PutToStream(SmStream& stream) const;
    /// Replaces everything. Another version throws SkBadFileVersionErrC() and another N or cache size
    /// SkBadFileFormatErrC(), each with its message; what was read up to there stays.
    void GetFromStream(SmStream& stream);

  private:
    unsigned char SearchClosest(StRGBA32Pixel color);

    StRGBA32Pixel mEntries[kMaxEntries];  ///< those from mEntryCount on exist for safety alone
    std::int32_t mEntryCount;
    std::int32_t mEntryLimit;
    std::int32_t mUsedCount;
    unsigned char mCache[kCells];
};

/// Fills `map` with the standard colours for `count` entries, in ascending order through SetColor; a count
/// below 1 means the number of entries of the map.
///
///     256 or more   a cube of 6 reds, 7 greens and 6 blues, red running fastest, then four greys
///     16 to 255     sixteen named colours
///     4 to 15       black, white, blue, green
///     2 or 3        black, white
///     1             black
///
/// The cube's seventh green wraps to 50, a dark value at the end of the green run: files and palettes rely on
/// it. All colours are opaque but the black of the small fills, which is SkBlackColorBytes() with alpha 0.
FRAMEWRIGHT_EXPORT void StuffDefaultColors(ScColorMap<unsigned char, StRGBA32Pixel>& map, int count);

/// Sets each used colour of `source` in `destination`, which keeps its other entries and cached answers.
/// Nothing happens where one of them is null.
FRAMEWRIGHT_EXPORT void SrCopyColorMap(ScColorMap<unsigned char, StRGBA32Pixel>* destination,
                                       ScColorMap<unsigned char, StRGBA32Pixel>* source);
