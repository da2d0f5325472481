// How the mapped records blend, take smart pixels and go to streams. One body serves all four widths.
#include "framewright/pixel/mapped_pixels.h"

#include "framewright/core/startup.h"
#include "framewright/pixel/convert_smart.h"
#include "framewright/pixel/mapped_index.h"
#include "framewright/pixel/pixel_stream.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);

using pixel::ScPalette;

namespace {

template <class Record>
void BlendColors(Record& record, Record const& other, float t, ScPalette& map) {
    StRGBA32Pixel color = map[record.index];
    color.Blend(map[other.index], t);
    pixel::SetNearest(record, color, map);
}

/// The colour of `source` as a record of type Record sees it.
template <class Record>
StRGBA32Pixel SourceColor(ScSmartPixel const* source, ScPalette* sourceMap) {
    switch (source->PixelID()) {
        case StRGBA32Pixel::PixelID():
            return pixel::Payload<StRGBA32Pixel>(source);
        case Record::PixelID():
            return (*sourceMap)[pixel::Payload<Record>(source).index];
        default:
            return source->GetRGBA32();
    }
}

template <class Record>
void ConvertThroughMaps(Record& record, ScSmartPixel const* source, ScPalette* sourceMap,
                        ScPalette* destinationMap) {
    pixel::SetNearest(record, SourceColor<Record>(source, sourceMap), *destinationMap);
}

}  // namespace

void StMapped8Pixel::Blend(StMapped8Pixel const& other, float t, ScPalette* map) {
    BlendColors(*this, other, t, *map);
}
void StMapped8Pixel::ConvertSmart(ScSmartPixel const* source, ScPalette* sourceMap,
                                  ScPalette* destinationMap) {
    ConvertThroughMaps(*this, source, sourceMap, destinationMap);
}
void StMapped8Pixel::GetFromStream(SmStream& stream) {
    pixel::GetBytes(stream, index);
}
void StMapped8Pixel::PutToStream(SmStream& stream) const {
    pixel::PutBytes(stream, index);
}

void StMapped4Pixel::Blend(StMapped4Pixel const& other, float t, ScPalette* map) {
    BlendColors(*this, other, t, *map);
}
void StMapped4Pixel::ConvertSmart(ScSmartPixel const* source, ScPalette* sourceMap,
                                  ScPalette* destinationMap) {
    ConvertThroughMaps(*this, source, sourceMap, destinationMap);
}
void StMapped4Pixel::GetFromStream(SmStream& stream) {
    index = pixel::GetByte(stream) & 15;
}
void StMapped4Pixel::PutToStream(SmStream& stream) const {
    pixel::PutBytes(stream, static_cast<std::uint8_t>(index));
}

void StMapped2Pixel::Blend(StMapped2Pixel const& other, float t, ScPalette* map) {
    BlendColors(*this, other, t, *map);
}
void StMapped2Pixel::ConvertSmart(ScSmartPixel const* source, ScPalette* sourceMap,
                                  ScPalette* destinationMap) {
    ConvertThroughMaps(*this, source, sourceMap, destinationMap);
}
void StMapped2Pixel::GetFromStream(SmStream& stream) {
    index = pixel::GetByte(stream) & 3;
}
void StMapped2Pixel::PutToStream(SmStream& stream) const {
    pixel::PutBytes(stream, static_cast<std::uint8_t>(index));
}

void StMapped1Pixel::Blend(StMapped1Pixel const& other, float t, ScPalette* map) {
    BlendColors(*this, other, t, *map);
}
void StMapped1Pixel::ConvertSmart(ScSmartPixel const* source, ScPalette* sourceMap,
                                  ScPalette* destinationMap) {
    ConvertThroughMaps(*this, source, sourceMap, destinationMap);
}
void StMapped1Pixel::GetFromStream(SmStream& stream) {
    index = pixel::GetByte(stream) & 1;
}
void StMapped1Pixel::PutToStream(SmStream& stream) const {
    pixel::PutBytes(stream, static_cast<std::uint8_t>(index));
}
