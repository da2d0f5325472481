// What the tests of palettes, dithering and mapped layers share.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <ostream>
#include <vector>

#include "framewright/pixel/color_map.h"
#include "framewright/pixel/pixels.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"

namespace color_test {

using ScPalette = ScColorMap<unsigned char, StRGBA32Pixel>;
using Bytes = std::vector<unsigned char>;

inline StRGBA32Pixel Rgba(int red, int green, int blue, int alpha = 255) {
    return {static_cast<std::uint8_t>(blue), static_cast<std::uint8_t>(green), static_cast<std::uint8_t>(red),
            static_cast<std::uint8_t>(alpha)};
}

/// 0xRRGGBBAA, so that a failure prints a colour that can be read.
inline std::uint32_t Word(StRGBA32Pixel color) {
    return std::uint32_t{color.red} << 24 | std::uint32_t{color.green} << 16 |
           std::uint32_t{color.blue} << 8 | color.alpha;
}

/// The code that `work` throws, 0 when it does not.
template <class Work>
long ErrorOf(Work const& work) {
    try {
        work();
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        return SrGetExceptionValues(exception, message);
    }
    return 0;
}

/// Whether `work` throws with a message.
template <class Work>
bool ThrowsMessage(Work const& work) {
    try {
        work();
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        SrGetExceptionValues(exception, message);
        return message != nullptr;
    }
    return false;
}

/// Refuses framework allocations from number `allowed` on, counted from 0, and counts them all, while it
/// lives.
class ScRefuseAllocations {
  public:
    explicit ScRefuseAllocations(long allowed) {
        sAllowed = allowed;
        sSeen = 0;
        SrSetAllocationGate([](std::size_t) { return sSeen++ < sAllowed; });
    }
    ~ScRefuseAllocations() { SrSetAllocationGate(nullptr); }
    static long Seen() { return sSeen; }

  private:
    static inline long sAllowed = 0, sSeen = 0;
};

inline void Append32(Bytes& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<unsigned char>(value >> shift));
}

inline StRef<SmMemoryStream> StreamOf(Bytes const& bytes) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream(bytes.data(), static_cast<unsigned>(bytes.size()));
    return stream;
}
inline StRef<SmMemoryStream> EmptyStream() {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream();
    return stream;
}
inline Bytes BytesOf(SmMemoryStream& stream) {
    return Bytes(stream.Data(), stream.Data() + stream.GetLength());
}

/// The map in its stream form.
inline Bytes Written(ScPalette const& map) {
    auto const stream = EmptyStream();
    map.PutToStream(*stream);
    return BytesOf(*stream);
}

/// The nearest entry by the rule itself: the lowest index of the least distance among `used` entries, 0 for
/// none.
inline int NearestIndex(ScPalette const& map, int used, StRGBA32Pixel color) {
    auto const square = [](int value) { return value * value; };
    int best = 0;
    long bestDistance = -1;
    for (int i = 0; i < used; ++i) {
        StRGBA32Pixel const entry = map[static_cast<unsigned char>(i)];
        long const distance = square(entry.red - color.red) + square(entry.green - color.green) +
                              square(entry.blue - color.blue);
        if (bestDistance < 0 || distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

}  // namespace color_test
