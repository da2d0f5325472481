// How the depth records take smart pixels and go to streams.
#include "framewright/pixel/depth_pixels.h"

#include "framewright/core/startup.h"
#include "framewright/pixel/convert_smart.h"
#include "framewright/pixel/pixel_stream.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);

using pixel::ConvertByColor;
using pixel::GetBigEndian;

// No depth reads a source in a way of its own.
#define FOR_EACH_RECORD_BY_COLOR(ROW) \
    ROW(StDepthFloatPixel)            \
    ROW(StDepthUInt8Pixel)            \
    ROW(StDepthUInt16Pixel)           \
    ROW(StDepthUInt24Pixel)           \
    ROW(StDepthUInt32Pixel)

#define ROW(Record)                                         \
    void Record::ConvertSmart(ScSmartPixel const* source) { \
        ConvertByColor(*this, source);                      \
    }
FOR_EACH_RECORD_BY_COLOR(ROW)
#undef ROW
#undef FOR_EACH_RECORD_BY_COLOR

void StDepthFloatPixel::GetFromStream(SmStream& stream) {
    GetBigEndian(stream, depth);
}
void StDepthFloatPixel::PutToStream(SmStream& stream) const {
    pixel::PutBigEndian(stream, depth);
}

void StDepthUInt8Pixel::GetFromStream(SmStream& stream) {
    pixel::GetBytes(stream, depth);
}
void StDepthUInt8Pixel::PutToStream(SmStream& stream) const {
    pixel::PutBytes(stream, depth);
}

void StDepthUInt16Pixel::GetFromStream(SmStream& stream) {
    GetBigEndian(stream, depth);
}

void StDepthUInt24Pixel::GetFromStream(SmStream& stream) {
    depth = stream.GetBigEndian<std::uint32_t>() & 0xFFFFFFu;
}

void StDepthUInt32Pixel::GetFromStream(SmStream& stream) {
    GetBigEndian(stream, depth);
}
