// What each source file of the load order says that it depends on, beyond memory and objects, which all of
// them need. The declarations are read from the sources: a trigger leaves no trace of the file that it stands
// in.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

constexpr char kNone[] = "";
constexpr char kColor[] = "SrInitColorMaps";
constexpr char kLayers[] = "SrInitColorMaps SrInitializeGlobalSpoolManager SrInitializeLayerRegistries";
constexpr char kMovies[] =
    "SrInitStorageManager SrRegisterTrackTypeNames SrInitColorMaps SrInitializeGlobalSpoolManager "
    "SrInitializeLayerRegistries SrInitMipmaps";
constexpr char kMedia[] = "SrInitStorageManager SrRegisterTrackTypeNames SrInitializeGlobalMedia";
constexpr char kFormat[] =
    "SrInitStorageManager SrRegisterTrackTypeNames SrInitColorMaps SrInitializeGlobalMedia "
    "SrInitializeGlobalSpoolManager SrInitializeLayerRegistries SrInitializeMappedLayers";
constexpr char kPict[] = "SrRegisterPict SrRegisterResPict";

struct StFileRow {
    char const* file;
    char const* needs;
    char const* andAlso = kNone;
};

// In load order.
constexpr StFileRow kFiles[] = {
    {"media/res_pict.cpp", kFormat, kPict},
    {"pixel/color_picker.cpp", kNone},
    {"pixel/gamut.cpp", kNone},
    {"pixel/color_map.cpp", kColor},
    {"pixel/pixel_constants.cpp", kColor},
    {"frame/frame.cpp", kLayers,
     "SrInitializeMappedLayers SrInitStorageManager SrRegisterTrackTypeNames SrRegisterPict "
     "SrRegisterResPict"},
    {"imagery/image.cpp", kLayers,
     "SrInitStorageManager SrRegisterTrackTypeNames SrInitializeGlobalMedia SrInitializeScratch"},
    {"pixel/mapped_layers.cpp", kLayers, "SrInitializeMappedLayers"},
    {"pixel/mapped_pixels.cpp", kColor},
    {"frame/layers.cpp", kLayers},
    {"imagery/mipmap.cpp", kLayers, "SrInitMipmaps"},
    {"imagery/movie.cpp", kMovies},
    {"pixel/color_models.cpp", kNone},
    {"pixel/pixels.cpp", kColor},
    {"imagery/primitives.cpp", kLayers},
    {"spool/spool.cpp", "SrInitializeGlobalSpoolManager SrInitStringUtils SrInitThread"},
    {"imagery/track.cpp", kMovies, "SrInitializeGlobalMedia SrInitStringUtils SrInitializeTracks"},
    {"media/media_manager.cpp", kMedia},
    {"media/media_location.cpp", "SrInitStringUtils SrInitStorageManager"},
    {"media/media_recognizer.cpp", kMedia, "SrInitStringUtils"},
    {"media/media.cpp", "SrInitStorageManager SrRegisterTrackTypeNames"},
    {"media/media_track.cpp", kMedia},
    {"media/pict.cpp", kFormat, kPict},
    {"media/quicktime.cpp", kMedia, "SrInitSfQuickTime SrInitColorMaps SrInitializeGlobalSpoolManager"},
    {"spool/scratch.cpp", "SrInitializeScratch"},
    {"media/ordered_stream.cpp", kNone},
    {"pixel/time_varying.cpp", kFormat, "SrRegisterPict SrRegisterResPict SrInitSfQuickTime SrInitMipmaps"},
    {"media/avi.cpp", kFormat, "SrRegisterAvi"},
    {"media/bmp.cpp", kFormat, "SrRegisterBmp"},
    {"media/simple_media.cpp", kMedia, "SrInitializeGlobalSpoolManager SrInitColorMaps"},
    {"pixel/depth_pixels.cpp", kColor},
    {"frame/depth_layers.cpp", kLayers},
    {"imagery/subframe.cpp", kColor},
    {"imagery/movie_with_media.cpp", kMovies, "SrInitializeGlobalMedia SrInitStringUtils"},
};

Names Split(std::string const& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

Names DeclaredIn(std::filesystem::path const& file) {
    std::string const start = "SR_DEPENDS_ON(", end = ");";
    Names names;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(start) && line.ends_with(end))
            names.push_back(line.substr(start.size(), line.size() - start.size() - end.size()));
    return names;
}

std::filesystem::path const kRoot = FRAMEWRIGHT_SOURCES;

TEST(Triggers, EachFileDeclaresWhatItUses) {
    int files = 0;
    for (StFileRow const& row : kFiles) {
        if (!exists(kRoot / row.file)) continue;
        ++files;
        Names const needs =
            Split(std::string("SrInitMemory SrInitObjectBase ") + row.needs + " " + row.andAlso);
        EXPECT_THAT(DeclaredIn(kRoot / row.file), testing::UnorderedElementsAreArray(needs)) << row.file;
    }
    EXPECT_GT(files, 0) << "no sources under " << kRoot;
}

TEST(Triggers, NoOtherFileDeclaresAny) {
    for (auto const& entry : std::filesystem::recursive_directory_iterator(kRoot)) {
        if (entry.path().extension() != ".cpp") continue;
        std::string const name = relative(entry.path(), kRoot).generic_string();
        bool const listed = std::any_of(std::begin(kFiles), std::end(kFiles),
                                        [&](auto const& row) { return row.file == name; });
        EXPECT_TRUE(listed || DeclaredIn(entry.path()).empty()) << name;
    }
}

}  // namespace
