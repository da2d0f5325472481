#include "framewright/platform/color_tables.h"

#include <cstddef>

#include "framewright/thornmere/memory.h"

std::int32_t GetCTSeed() {
    // Seeds up to 1023 belong to the tables of a system.
    static std::int32_t last = 1023;
    return ++last;
}

ColorTable** GetCTable(short) {
    void** const handle = SrAllocateHandle(sizeof(ColorTable));
    if (!handle) return nullptr;
    auto** const table = reinterpret_cast<ColorTable**>(handle);
    **table = {GetCTSeed(), 0, -1, {}};
    return table;
}
