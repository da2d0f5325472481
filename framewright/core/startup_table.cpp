#include <algorithm>
#include <iterator>
#include <string_view>

#include "framewright/core/startup.h"

// Memory and objects come before whatever makes an object, the colour tables and the spool manager before the
// layers that are built on them. Recognizers need no order against the media manager: whichever comes second
// brings the two together.
//
// clang-format off
//
//      routine                         owner        needs
#define FOR_EACH_STARTUP_ROUTINE(ROW)                                                                      \
    ROW(SrInitMemory,                   "framework", "")                                                   \
    ROW(SrInitObjectBase,               "framework", "SrInitMemory")                                       \
    ROW(SrInitStorageManager,           "framework", "SrInitObjectBase")                                   \
    ROW(SrRegisterTrackTypeNames,       "media",     "SrInitMemory")                                       \
    ROW(SrRegisterResPict,              "media",     "")                                                   \
    ROW(SrInitializeGlobalMedia,        "media",     "SrInitObjectBase")                                   \
    ROW(SrInitColorMaps,                "pixel",     "SrInitMemory")                                       \
    ROW(SrInitializeGlobalSpoolManager, "spool",     "SrInitObjectBase SrInitStorageManager")              \
    ROW(SrInitializeLayerRegistries,    "frame",     "SrInitObjectBase SrInitializeGlobalSpoolManager")    \
    ROW(SrInitializeMappedLayers,       "frame",     "SrInitColorMaps SrInitializeLayerRegistries")        \
    ROW(SrRegisterPict,                 "media",     "SrInitObjectBase")                                   \
    ROW(SrInitializeScratch,            "spool",     "SrInitObjectBase")                                   \
    ROW(SrInitMipmaps,                  "imagery",   "SrInitObjectBase SrInitializeGlobalSpoolManager")    \
    ROW(SrInitStringUtils,              "framework", "SrInitMemory")                                       \
    ROW(SrInitThread,                   "framework", "SrInitMemory")                                       \
    ROW(SrInitializeTracks,             "imagery",   "SrInitStorageManager")                               \
    ROW(SrInitSfQuickTime,              "media",     "SrInitObjectBase")                                   \
    ROW(SrRegisterAvi,                  "media",     "SrInitObjectBase")                                   \
    ROW(SrRegisterBmp,                  "media",     "SrInitObjectBase")
// clang-format on

#define DEFINE_RECORD(routine, owner, needs) constinit StInitializerRecord routine##Record;
FOR_EACH_STARTUP_ROUTINE(DEFINE_RECORD)
#undef DEFINE_RECORD

namespace core {
namespace {

#define TABLE_ROW(routine, owner, needs) {routine, &routine##Record, #routine, owner, needs},
constexpr StStartupRow kStartup[] = {FOR_EACH_STARTUP_ROUTINE(TABLE_ROW)};
#undef TABLE_ROW

consteval bool NeedsComeEarlier() {
    for (StStartupRow const* row = kStartup; row != std::end(kStartup); ++row) {
        std::string_view needs = row->needs;
        while (!needs.empty()) {
            std::string_view const name = needs.substr(0, needs.find(' '));
            if (std::none_of(kStartup, row, [name](auto const& earlier) { return earlier.name == name; }))
                return false;
            needs.remove_prefix(std::min(name.size() + 1, needs.size()));
        }
    }
    return true;
}

consteval long FrameworkRoutines() {
    return std::ranges::count_if(kStartup,
                                 [](auto const& row) { return row.owner == std::string_view("framework"); });
}

static_assert(std::size(kStartup) == 19);
static_assert(FrameworkRoutines() == 5);
static_assert(NeedsComeEarlier());

}  // namespace

std::span<StStartupRow const> StartupTable() {
    return kStartup;
}

}  // namespace core

std::vector<char const*> SrGetInitializerNames() {
    std::vector<StStartupRow> rows;
    for (StStartupRow const& row : core::StartupTable())
        if (row.record->ran) rows.push_back(row);
    std::ranges::sort(rows, {}, [](StStartupRow const& row) { return row.record->ran; });
    std::vector<char const*> names;
    for (StStartupRow const& row : rows)
        names.push_back(row.name);
    return names;
}
