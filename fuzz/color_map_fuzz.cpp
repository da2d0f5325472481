// Reads anything as the stream form of a colour map. A map that was read is used, written, and read again,
// which must give the same bytes.
#include <cstdint>
#include <cstring>

#include "framewright/pixel/color_map.h"
#include "framewright/thornmere/memory.h"
#include "fuzz/input.h"

namespace {

using ColorMap = ScColorMap<unsigned char, StRGBA32Pixel>;

void Run(std::uint8_t const* data, std::size_t size) {
    ColorMap map;
    map.GetFromStream(*MemoryStream(data, size));

    auto const first = MemoryStream(nullptr, 0);
    map.PutToStream(*first);
    ColorMap again;
    again.GetFromStream(*MemoryStream(first->Data(), first->GetLength()));
    auto const second = MemoryStream(nullptr, 0);
    again.PutToStream(*second);
    Check(first->GetLength() == second->GetLength());
    Check(std::memcmp(first->Data(), second->Data(), first->GetLength()) == 0);

    // Lookups write to the cache, colours change the used count: whatever came from the stream, no index
    // leads outside.
    ColorMap copy;
    SrCopyColorMap(&copy, &map);
    for (unsigned cell = 0; cell < 4096; ++cell) {
        StRGBA32Pixel const color{static_cast<unsigned char>(cell << 4),
                                  static_cast<unsigned char>(cell & 0xF0),
                                  static_cast<unsigned char>(cell >> 4 & 0xF0), 255};
        unsigned char const index = map.ClosestColorIndex(color);
        map[index] = color;
        copy.ClosestColorIndex(color);
        if (cell % 64 == 0) map.SetColor(static_cast<unsigned char>(cell >> 4), color);
    }
    StuffDefaultColors(map, 0);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SrSetAllocationGate([](std::size_t size) { return size <= 1 << 20; });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    try {
        Run(data, size);
    } catch (std::exception const& exception) {
        long const code = CodeOf(exception);
        Check(code == SkEndOfFile() || code == SkBadFileVersionErrC() || code == SkBadFileFormatErrC());
    }
    return 0;
}
