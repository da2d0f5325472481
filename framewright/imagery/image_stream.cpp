#include "framewright/imagery/image_stream.h"

#include <cstdint>

#include "framewright/frame/frame_stream.h"
#include "framewright/pixel/gamut.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/stream.h"

namespace {

std::int32_t FilledPlaces(SmImagerImage& image) {
    std::int32_t filled = 0;
    for (long i = 0; i < image.GetLayerCount(); ++i)
        filled += image.GetLayer(i) != nullptr;
    return filled;
}

/// Refuses a number of layers whose headers alone the stream has no room for.
void CheckCount(SmStream& stream, std::int32_t count) {
    if (count < 0) SrThrow(SkBadStreamFormatErrC(), nullptr);
    std::uint64_t remaining = 0;
    if (!stream.GetRemaining(remaining)) return;
    if (static_cast<std::uint64_t>(count) > remaining / frame::kLeastFrameBytes) {
        SrThrow(SkBadStreamFormatErrC(), nullptr);
    }
}

void ReadLayers(SmStream& stream, SmImagerImage& image, bool spooled, bool nativeBitmap) {
    auto const count = stream.GetBigEndian<std::int32_t>();
    CheckCount(stream, count);
    frame::ScFrameReader layers(stream, spooled, nativeBitmap);
    for (std::int32_t i = 0; i < count; ++i)
        image.AddLayer(layers.Next().Get());
}

}  // namespace

void SrPutImagerToStream(SmStream& stream, SmImagerImage* image, unsigned short compression) {
    SrPutToStream(stream, image->GetSize());
    StFloatPoint const resolution = image->GetResolution();
    stream.PutBigEndian(resolution.vertical);
    stream.PutBigEndian(resolution.horizontal);
    stream.PutBit(false);
    stream.PutBigEndian(FilledPlaces(*image));
    for (long i = 0; i < image->GetLayerCount(); ++i) {
        if (SmImagerFrame* const layer = image->GetLayer(i)) {
            SrWriteImagerFrameToStream(stream, layer, compression);
        }
    }
    WriteGamut(stream, image->GetGamut());
}

void SrGetImagerFromStream(SmStream& stream, SmImagerImage* image, bool spooled, bool nativeBitmap) {
    StPoint size{};
    SrGetFromStream(stream, size);
    image->SetSize(size);
    StFloatPoint resolution{};
    resolution.vertical = stream.GetBigEndian<float>();
    resolution.horizontal = stream.GetBigEndian<float>();
    image->SetResolution(resolution);
    bool flag = false;
    stream.GetBit(flag);
    ReadLayers(stream, *image, spooled, nativeBitmap);
    ScGamut* gamut = nullptr;
    ReadGamut(stream, gamut);
    image->SetGamut(gamut);
}
