#include "framewright/thornmere/string_lists.h"

#include <map>
#include <mutex>
#include <utility>

#include "framewright/thornmere/error.h"

namespace {

struct StListEntry {
    short list;
    long index;
    char const* text;
};

constexpr StListEntry kEntries[] = {
    {kStreamNameStrings, 1, "Quicktime Movie"},
    {kStreamNameStrings, 2, "Macintosh PICT"},
    {kStreamNameStrings, 10, "Bitmap"},
    {kStreamNameStrings, 11, "Video for Windows"},

    {kLayerNameStrings, 1, "32-bit color with alpha"},
    {kLayerNameStrings, 2, "32-bit color"},
    {kLayerNameStrings, 3, "8-bit alpha"},
    {kLayerNameStrings, 4, "24-bit color"},
    {kLayerNameStrings, 5, "Floating-point depth"},
    {kLayerNameStrings, 6, "Floating-point color"},
    {kLayerNameStrings, 7, "Floating-point color with alpha"},
    {kLayerNameStrings, 8, "48-bit color"},
    {kLayerNameStrings, 9, "64-bit color with alpha"},
    {kLayerNameStrings, 10, "32-bit alpha"},
    {kLayerNameStrings, 11, "Black and white"},
    {kLayerNameStrings, 12, "15-bit color"},
    {kLayerNameStrings, 13, "256 colors"},
    {kLayerNameStrings, 14, "256 grays"},
    {kLayerNameStrings, 15, "CMYK"},
    {kLayerNameStrings, 16, "16 grays"},
    {kLayerNameStrings, 17, "4 grays"},
    {kLayerNameStrings, 18, "16 colors"},
    {kLayerNameStrings, 19, "4 colors"},
    {kLayerNameStrings, 20, "2 colors"},
    {kLayerNameStrings, 21, "8-bit depth"},
    {kLayerNameStrings, 22, "16-bit depth"},
    {kLayerNameStrings, 23, "24-bit depth"},
    {kLayerNameStrings, 24, "32-bit depth"},

    {kPurposeNameStrings, 1, "Unknown"},
    {kPurposeNameStrings, 2, "View"},
    {kPurposeNameStrings, 3, "Depth"},
    {kPurposeNameStrings, 4, "Texture parameters"},
    {kPurposeNameStrings, 5, "Illumination"},
    {kPurposeNameStrings, 6, "Velocity"},
    {kPurposeNameStrings, 7, "Object index"},

    {kTrackTypeNameStrings, 1, "Video"},
    {kTrackTypeNameStrings, 2, "Audio"},
    {kTrackTypeNameStrings, 3, "Text"},
    {kTrackTypeNameStrings, 4, "MIDI"},
    {kTrackTypeNameStrings, 5, "3D objects"},
    {kTrackTypeNameStrings, 6, "Tweens"},

    {kCodecNameStrings, 1, "none"},

    {SkAlertStrings(), 1, "The operation could not be completed."},
    {SkAlertStrings(), 2, "The picture has a pixel format that is not available."},
    {SkAlertStrings(), 3, "There is no layer of the type that the image needs."},
    {SkAlertStrings(), 4, "Memory is low, and there is no spool file to move picture rows to."},
    {SkAlertStrings(), 5, "Memory is low, and the spool files are full."},
    {SkAlertStrings(), 6, "The media file could not be found or opened."},
    {SkAlertStrings(), 7, "The media manager is not available."},
    {SkAlertStrings(), 8, "The file or its format is not recognized."},
    {SkAlertStrings(), 9, "The media file holds nothing that can be used."},
    {SkAlertStrings(), 10, "The format cannot hold data of this kind."},
};

struct StReplacedLists {
    std::mutex mutex;
    std::map<short, std::vector<std::string>> lists;
};

/// Made on first use: names are fetched while the library loads.
StReplacedLists& ReplacedLists() {
    static StReplacedLists replaced;
    return replaced;
}

char const* ShippedText(short list, long index) {
    for (StListEntry const& entry : kEntries) {
        if (entry.list == list && entry.index == index) return entry.text;
    }
    return "";
}

}  // namespace

void SrGetIndexedString(ScSx& out, short list, long index) {
    StReplacedLists& replaced = ReplacedLists();
    std::lock_guard lock(replaced.mutex);
    auto const found = replaced.lists.find(list);
    if (found == replaced.lists.end()) {
        out.Assign(ShippedText(list, index));
    } else {
        auto const& texts = found->second;
        bool const there = index >= 1 && static_cast<unsigned long>(index) <= texts.size();
        out.Assign(there ? texts[static_cast<std::size_t>(index - 1)].c_str() : "");
    }
}

void SrSetIndexedStrings(short list, std::vector<std::string> texts) {
    StReplacedLists& replaced = ReplacedLists();
    std::lock_guard lock(replaced.mutex);
    replaced.lists[list] = std::move(texts);
}
