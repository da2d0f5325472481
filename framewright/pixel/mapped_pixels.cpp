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

template <class Record>
void GetIndex(Record& record, SmStream& stream) {
    constexpr unsigned kMask = (1u << Record::PixelSize()) - 1;
    record.index = pixel::GetByte(stream) & kMask;
}

template <class Record>
void PutIndex(Record const& record, SmStream& stream) {
    pixel::PutBytes(stream, static_cast<std::uint8_t>(record.index));
}

}  // namespace

#define ROW(Record)                                                                                          \
    void Record::Blend(Record const& other, float t, ScPalette* map) {                                       \
        BlendColors(*this, other, t, *map);                                                                  \
    }                                                                                                        \
    void Record::ConvertSmart(ScSmartPixel const* source, ScPalette* sourceMap, ScPalette* destinationMap) { \
        ConvertThroughMaps(*this, source, sourceMap, destinationMap);                                        \
    }                                                                                                        \
    void Record::GetFromStream(SmStream& stream) {                                                           \
        GetIndex(*this, stream);                                                                             \
    }                                                                                                        \
    void Record::PutToStream(SmStream& stream) const {                                                       \
        PutIndex(*this, stream);                                                                             \
    }
FOR_EACH_MAPPED_PIXEL(ROW)
#undef ROW
