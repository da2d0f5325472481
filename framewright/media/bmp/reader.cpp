#include "framewright/media/bmp/reader.h"

#include <algorithm>
#include <cstring>

#include "framewright/frame/frame.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/media/bmp/decode.h"
#include "framewright/media/bmp/header.h"
#include "framewright/media/bmp/pixel_data.h"
#include "framewright/media/bmp/pixel_sink.h"
#include "framewright/media/media_track.h"
#include "framewright/media/ordered_stream.h"
#include "framewright/pixel/color_map.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"

namespace bmp {

namespace {

constexpr std::uint32_t kPaletteEntries = 256;
/// Three masks, in which a header of 16 or 32 bits may say where its channels lie.
constexpr unsigned int kMaskBytes = 12;
/// A fourth byte of a palette entry up to here is a filler; above, the file means its alpha.
constexpr unsigned char kGreatestFiller = 5;

/// The kind of frame that holds pixels of a depth. `mapped`: its pixels are indices into the palette.
struct StFrameKind {
    std::uint32_t first, last;  ///< bit counts, both included
    std::uint32_t pixelID;
    bool mapped;
};
constexpr StFrameKind kFrameKinds[] = {
    {1, 1, SrCode("Map1"), true}, {2, 2, SrCode("Map2"), true},   {3, 4, SrCode("Map4"), true},
    {5, 8, SrCode("Map8"), true}, {9, 16, SrCode("RG15"), false}, {17, 24, SrCode("RG32"), false},
};
constexpr StFrameKind kDeepKind = {0, UINT32_MAX, SrCode("ColB"), false};

StFrameKind const& KindOf(std::uint32_t bitCount) {
    for (StFrameKind const& kind : kFrameKinds) {
        if (bitCount >= kind.first && bitCount <= kind.last) return kind;
    }
    return kDeepKind;
}

/// The file's size as that of a frame; what no frame can be counts as one over the limit.
StPoint FrameSize(StHeader const& header) {
    if (header.width > INT32_MAX || header.height > INT32_MAX) SrThrow(SkMemoryFull(), nullptr);
    return {static_cast<std::int32_t>(header.height), static_cast<std::int32_t>(header.width)};
}

/// What FrameFor is going to leave unset.
StUnset UnsetPart(StHeader const& header, SmImagerFrame* given, unsigned long option) {
    if (!given) return StUnset::kRows;
    bool const resizes = option == kResizeFrame && given->GetSize() != FrameSize(header);
    return resizes ? StUnset::kPixels : StUnset::kNothing;
}

/// The frame to fill, with one reference.
StRef<SmImagerFrame> FrameFor(StHeader const& header, SmImagerFrame* given, unsigned long option) {
    if (!given) {
        auto made = StRef<SmImagerFrame>::Adopt(
            SrMakeFrame(FrameSize(header), KindOf(header.bitCount).pixelID, false, false));
        SrThrowIfNIL(made.Get());
        return made;
    }
    if (option == kResizeFrame) {
        StPoint const size = FrameSize(header);
        if (given->GetSize() != size) given->Resize(size, StImageInterpolationMethod::kNone);
    }
    return given;
}

/// A stream that can be moved, if it can.
class ScPlaces {
  public:
    explicit ScPlaces(SmStream* stream) : mStream(stream) {
        if (stream->IsMemberOf(SmRandomStream::Class())) mRandom = static_cast<SmRandomStream*>(stream);
    }
    void GoTo(std::uint32_t position) {
        if (mRandom) SrStreamSeek(mRandom, 0, position);
    }
    /// Moves past `bytes`, where going elsewhere afterwards does not.
    void PassOver(std::uint64_t bytes) {
        constexpr std::uint64_t kMost = 0x10000;
        while (!mRandom && bytes > 0) {
            auto const step = static_cast<unsigned int>(std::min(bytes, kMost));
            if (SrStreamSkip(mStream, step) < step) return;
            bytes -= step;
        }
    }

  private:
    SmStream* mStream;
    SmRandomStream* mRandom = nullptr;
};

struct StPalette {
    StRGBA32Pixel entries[kPaletteEntries] = {};
    std::uint32_t count = 0;  ///< how many the file has, up to all
};

void ReadPalette(SmStream* stream, StHeader const& header, StPalette& palette) {
    palette.count = std::min(header.colorsUsed, kPaletteEntries);
    if (palette.count == 0) return;
    std::uint32_t const width = header.PaletteEntryBytes();
    unsigned char bytes[kPaletteEntries * 4];
    stream->Read(palette.count * width, bytes);
    bool hasAlpha = false;
    for (std::uint32_t i = 0; i < palette.count; ++i) {
        unsigned char const* const entry = bytes + i * width;
        unsigned char const alpha = header.IsCore() ? 255 : entry[3];
        palette.entries[i] = {entry[0], entry[1], entry[2], alpha};
        hasAlpha = hasAlpha || alpha > kGreatestFiller;
    }
    if (hasAlpha) return;
    for (StRGBA32Pixel& entry : palette.entries)
        entry.alpha = 255;
}

using ColorMap = ScColorMap<unsigned char, StRGBA32Pixel>;

void SetColors(ColorMap& map, StPalette const& palette) {
    std::uint32_t const count = std::min(palette.count, static_cast<std::uint32_t>(map.EntryCount()));
    for (std::uint32_t i = 0; i < count; ++i)
        map.SetColor(static_cast<unsigned char>(i), palette.entries[i]);
}

}  // namespace

SmImagerFrame* ReadPicture(SmStream* stream, SmImagerFrame* given, unsigned long option) {
    StHeader const header = ReadHeader(stream);
    StUnset const unset = UnsetPart(header, given, option);
    StRef<SmImagerFrame> frame = FrameFor(header, given, option);
    ColorMap* const map = SrGetColorMapFromFrame(frame.Get());

    ScPlaces places(stream);
    places.GoTo(header.headerSize + kFileHeaderBytes);
    if (!header.IsCore() && (header.bitCount == 16 || header.bitCount == 32)) {
        // The masks are not looked at. They are passed over whether or not the file has any: what follows is
        // found by its offset.
        SrStreamSkip(stream, kMaskBytes);
    }
    StPalette palette;
    ReadPalette(stream, header, palette);
    places.PassOver(std::uint64_t{header.colorsUsed - palette.count} * header.PaletteEntryBytes());
    if (map) SetColors(*map, palette);

    places.GoTo(header.dataOffset);
    ScPixelData data(stream, header.ClaimedBytes());
    StFrameKind const& kind = KindOf(header.bitCount);
    ScPixelSink sink(frame.Get(), palette.entries, map && kind.mapped ? kind.pixelID : 0, unset);
    Decode(header, data, sink);
    return given ? given : frame.Release();
}

}  // namespace bmp
