#include "frame_transform.h"

#include <strings.h>

#include "host_error.h"
#include "pyramid.h"
#include "rotation.h"
#include "source_media.h"
#include "stereo_cut.h"

namespace {

StRect WholeOf(SmImagerFrame& frame) {
    StPoint const size = frame.GetSize();
    return {0, 0, size.vertical, size.horizontal};
}

StRef<SmImagerFrame> NewFrame(StPoint const& size, unsigned long pixelID) {
    auto frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame(size, pixelID, true, false));
    if (!frame) throw HostError("no frame can have the pixel type " + CodeText(pixelID));
    return frame;
}

/// Mapped frames are scaled as colours, so that no palette stands between two steps.
StRef<SmImagerFrame> Scaled(StRef<SmImagerFrame> const& frame, StPoint const& size) {
    bool const mapped = SrGetColorMapFromFrame(frame.Get()) != nullptr;
    StRef<SmImagerFrame> scaled = NewFrame(size, mapped ? SrCode("ColB") : frame->PixelID());
    StRect const from = WholeOf(*frame);
    if (from.bottom > 0 && from.right > 0) scaled->StretchBlit(frame.Get(), from, WholeOf(*scaled));
    return scaled;
}

StRef<SmImagerFrame> Converted(StRef<SmImagerFrame> const& frame, unsigned long pixelID,
                               ConvertOptions const& options, ScProgressIndicator* progress) {
    StRef<SmImagerFrame> converted = NewFrame(frame->GetSize(), pixelID);
    if (auto* map = SrGetColorMapFromFrame(converted.Get());
        map && options.palette != ConvertPalette::kStandard)
        SrStuffOptimalColorMap(*map, static_cast<int>(converted->PixelSize()), frame.Get(), progress);
    converted->SetDithering(options.dither ? SrCode("BIDI") : 0);
    converted->BlitRect(frame.Get(), WholeOf(*frame), {0, 0});
    return converted;
}

/// The pixel type that `text` names, in any case: "map8" is "Map8".
unsigned long PixelTypeFromText(std::string const& text) {
    unsigned long id = 0;
    char const* name = nullptr;
    for (int i = 0; ScLayerNameRegistry::GetObjectByIndex(i, id, name); ++i)
        if (strcasecmp(text.c_str(), CodeText(id).c_str()) == 0) return id;
    throw HostError("no pixel type is called " + text + "; `framewright pixels` lists them");
}

}  // namespace

void RequireUsableOptions(ConvertOptions const& options) {
    if (options.pixel.empty()) return;
    unsigned long const pixelID = PixelTypeFromText(options.pixel);
    bool const mapped = SrGetColorMapFromFrame(NewFrame({1, 1}, pixelID).Get()) != nullptr;
    std::string const name = "the pixel type " + CodeText(pixelID);
    if (options.palette && !mapped) throw HostError("--palette: " + name + " has no palette");
    if (options.dither && !mapped && pixelID != StRGB15Pixel::PixelID())
        throw HostError("--dither: " + name + " is not dithered");
}

StRef<SmImagerFrame> TransformedFrame(StRef<SmImagerFrame> frame, ConvertOptions const& options,
                                      ScProgressIndicator* progress) {
    if (options.stereo) {
        frame = EyeOf(frame, *options.stereo);
        if (!frame)
            throw HostError(options.input, "a gap of " + std::to_string(options.stereo->gap) +
                                               " leaves nothing to the eyes");
    }
    if (options.size) {
        StPoint const size{static_cast<std::int32_t>(options.size->first),
                           static_cast<std::int32_t>(options.size->second)};
        StPoint const now = frame->GetSize();
        if (size.vertical != now.vertical || size.horizontal != now.horizontal) frame = Scaled(frame, size);
    }
    if (!options.pixel.empty()) {
        unsigned long const pixelID = PixelTypeFromText(options.pixel);
        if (pixelID != frame->PixelID() || options.palette == ConvertPalette::kStandard)
            frame = Converted(frame, pixelID, options, progress);
    }
    if (options.rotation) frame = Turned(frame, *options.rotation);
    if (options.mipmap) frame = PyramidOf(frame);
    return frame;
}

StRef<SmImagerFrame> InColors(StRef<SmImagerFrame> const& picture) {
    StRef<SmImagerFrame> colors = NewFrame(picture->GetSize(), SrCode("ColB"));
    colors->CopyFromLayer(picture.Get());
    return colors;
}
