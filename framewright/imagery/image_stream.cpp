#include "framewright/imagery/image_stream.h"

#include <cstdint>

#include "framewright/frame/frame_reader.h"
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

void ReadLayers(SmStream& stream, SmImagerImage& image, bool spooled, bool nativeBitmap) {
    frame::ScFrameReader layers(stream, spooled, nativeBitmap);
    std::int32_t const count = layers.ReadCount();
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
