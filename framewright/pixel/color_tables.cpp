#include "framewright/pixel/color_tables.h"

#include <cstddef>
#include <memory>

#include "framewright/core/startup.h"
#include "framewright/pixel/color_map.h"
#include "framewright/platform/color_tables.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

namespace {

using ScPalette = ScColorMap<unsigned char, StRGBA32Pixel>;

constexpr short kTrueColorTable = 20999;
constexpr std::int16_t kDeviceTable = static_cast<std::int16_t>(0x8000);
constexpr int kMostEntries = 256;

/// The components of a table's entries.
using StComponents = RGBColor[kMostEntries];

void Fill(StComponents& colors, int entries, int (*level)(int index)) {
    for (int i = 0; i < entries; ++i) {
        auto const component = static_cast<std::uint16_t>(level(i));
        colors[i] = {component, component, component};
    }
}
void WhiteAndBlack(StComponents& colors) {
    Fill(colors, 2, [](int i) { return i == 0 ? 0xFFFF : 0; });
}
void Grey8Bit(StComponents& colors) {
    Fill(colors, 256, [](int i) { return (255 - i) * 0x101; });
}
void Grey4Bit(StComponents& colors) {
    Fill(colors, 16, [](int i) { return (15 - i) * 0x1111; });
}
void Grey2Bit(StComponents& colors) {
    Fill(colors, 4, [](int i) { return (3 - i) * 0x5555; });
}
void AscendingGrey(StComponents& colors) {
    Fill(colors, 256, [](int i) { return i * 65535 / 255; });
}
void DefaultCube(StComponents& colors) {
    std::unique_ptr<ScPalette> const map(new ScPalette(kMostEntries));
    StuffDefaultColors(*map, kMostEntries);
    auto const word = [](unsigned char byte) { return static_cast<std::uint16_t>(byte * 0x101); };
    for (int i = 0; i < kMostEntries; ++i) {
        StRGBA32Pixel const color = (*map)[static_cast<unsigned char>(i)];
        colors[i] = {word(color.red), word(color.green), word(color.blue)};
    }
}

/// How a table is made; one without colours comes from the platform.
struct StTableRow {
    int entries;
    std::int16_t flags;
    void (*colors)(StComponents& colors);
    long error;  ///< thrown when its handle is refused
};

// The greys exist twice: one set for the accessors, one that is held and not handed out.
enum StTable {
    k1Bit,
    k8Bit,
    kHeld8Bit,
    k4Bit,
    kHeld4Bit,
    k2Bit,
    kHeld2Bit,
    kTrue,
    kCube,
    kGrayRamp,
    kTables
};

// clang-format off
constexpr StTableRow kRows[kTables] = {
    // entries  flags        colours         refused
    {  2, kDeviceTable, &WhiteAndBlack, SkResourceMissing()},
    {256,            0, &Grey8Bit,      SkResourceMissing()},
    {256,            0, &Grey8Bit,      SkResourceMissing()},
    { 16,            0, &Grey4Bit,      SkResourceMissing()},
    { 16,            0, &Grey4Bit,      SkResourceMissing()},
    {  4,            0, &Grey2Bit,      SkResourceMissing()},
    {  4,            0, &Grey2Bit,      SkResourceMissing()},
    {  0,            0, nullptr,        SkResourceMissing()},
    {256,            0, &DefaultCube,   SkMemoryFull()},
    {256,            0, &AscendingGrey, SkMemoryFull()},
};
// clang-format on

ColorTable** gTables[kTables];

ColorTable** MakeTable(StTableRow const& row) {
    if (!row.colors) return GetCTable(kTrueColorTable);
    StComponents colors;
    row.colors(colors);
    // Eight bytes more than the table needs, as all handles of tables are.
    std::size_t const needed =
        offsetof(ColorTable, ctTable) + sizeof(ColorSpec) * static_cast<std::size_t>(row.entries);
    void** const handle = SrAllocateHandle(needed + 8);
    if (!handle) return nullptr;
    auto* const table = static_cast<ColorTable*>(*handle);
    table->ctSeed = GetCTSeed();
    table->ctFlags = row.flags;
    table->ctSize = static_cast<std::int16_t>(row.entries - 1);
    ColorSpec* const specs = table->ctTable;
    for (int i = 0; i < row.entries; ++i)
        specs[i] = {static_cast<std::int16_t>(i), colors[i]};
    return reinterpret_cast<ColorTable**>(handle);
}

void Dispose(ColorTable**& table) {
    SrDeallocateHandle(reinterpret_cast<void**>(table));
    table = nullptr;
}

}  // namespace

void SrInitColorMaps(bool terminate) {
    for (ColorTable**& table : gTables)
        Dispose(table);
    if (terminate) return;
    for (int i = 0; i < kTables; ++i) {
        gTables[i] = MakeTable(kRows[i]);
        if (!gTables[i]) SrThrow(kRows[i].error, nullptr);
    }
}

ColorTable** SkColorTableTrue() {
    return gTables[kTrue];
}
ColorTable** SkColorTable1Bit() {
    return gTables[k1Bit];
}
ColorTable** SkColorTable2Bit() {
    return gTables[k2Bit];
}
ColorTable** SkColorTable4Bit() {
    return gTables[k4Bit];
}
ColorTable** SkColorTable8Bit() {
    return gTables[k8Bit];
}
ColorTable** SkColorTableGrayRamp() {
    return gTables[kGrayRamp];
}
