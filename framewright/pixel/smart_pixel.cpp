// The bodies and the instantiations of the smart pixels; every record's NewSmartPixel.
#include "framewright/pixel/smart_pixel.h"

#include <cstring>
#include <type_traits>

#include "framewright/pixel/mapped_index.h"
#include "framewright/pixel/pixel_ops.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

void* SxFastAllocator::operator new(std::size_t size) noexcept {
    return SrAllocatePointer(size);
}
void SxFastAllocator::operator delete(void* object, std::size_t size) {
    SrDeallocatePointer(object, size);
}

ScSmartPixel::~ScSmartPixel() = default;

template <class Pixel>
ScDerivedPixel<Pixel>::ScDerivedPixel() : mPayload{} {}
template <class Pixel>
ScDerivedPixel<Pixel>::~ScDerivedPixel() = default;
template <class Pixel>
unsigned long ScDerivedPixel<Pixel>::FamilyID() const {
    return Pixel::FamilyID();
}
template <class Pixel>
unsigned long ScDerivedPixel<Pixel>::PixelID() const {
    return Pixel::PixelID();
}
template <class Pixel>
void* ScDerivedPixel<Pixel>::GetPixelData() {
    return &mPayload;
}
template <class Pixel>
void ScDerivedPixel<Pixel>::SetPixelData(void const* record) {
    std::memcpy(static_cast<void*>(&mPayload.record), record, sizeof(Pixel));
}
template <class Pixel>
StRGBA32Pixel ScDerivedPixel<Pixel>::GetRGBA32() const {
    return pixel::GetRGBA32(mPayload.record);
}
template <class Pixel>
void ScDerivedPixel<Pixel>::SetRGBA32(StRGBA32Pixel color) {
    pixel::SetRGBA32(mPayload.record, color);
}
template <class Pixel>
float ScDerivedPixel<Pixel>::GetFloat() const {
    return pixel::GetFloat(mPayload.record);
}
template <class Pixel>
void ScDerivedPixel<Pixel>::SetFloat(float value) {
    pixel::SetFloat(mPayload.record, value);
}
template <class Pixel>
void ScDerivedPixel<Pixel>::GetColorFloats(StColorFloats& out) const {
    pixel::GetColorFloats(mPayload.record, out);
}
template <class Pixel>
void ScDerivedPixel<Pixel>::SetColorFloats(StColorFloats const& color) {
    pixel::SetColorFloats(mPayload.record, color);
}

template <class Pixel>
ScMappedSmartPixel<Pixel>::ScMappedSmartPixel() = default;
template <class Pixel>
ScMappedSmartPixel<Pixel>::~ScMappedSmartPixel() = default;
template <class Pixel>
void ScMappedSmartPixel<Pixel>::SetColorMap(pixel::ScPalette* map) {
    mMap = map;
}
template <class Pixel>
StRGBA32Pixel ScMappedSmartPixel<Pixel>::GetRGBA32() const {
    return mMap ? (*mMap)[static_cast<unsigned char>(this->mPayload.record.index)]
                : ScDerivedPixel<Pixel>::GetRGBA32();
}
template <class Pixel>
void ScMappedSmartPixel<Pixel>::SetRGBA32(StRGBA32Pixel color) {
    if (mMap) pixel::SetNearest(this->mPayload.record, color, *mMap);
}
template <class Pixel>
float ScMappedSmartPixel<Pixel>::GetFloat() const {
    return mMap ? GetRGBA32().ConvertToFloat() : ScDerivedPixel<Pixel>::GetFloat();
}
template <class Pixel>
void ScMappedSmartPixel<Pixel>::SetFloat(float value) {
    SetRGBA32(pixel::SameBytes(pixel::ToByte(value)));
}
template <class Pixel>
void ScMappedSmartPixel<Pixel>::GetColorFloats(StColorFloats& out) const {
    if (mMap) GetRGBA32().ConvertToColorFloats(out);
}
template <class Pixel>
void ScMappedSmartPixel<Pixel>::SetColorFloats(StColorFloats const& color) {
    SetRGBA32(pixel::OpaqueBytes(color));
}

#define ROW(Record) template class ScMappedSmartPixel<Record>;
FOR_EACH_MAPPED_PIXEL(ROW)
#undef ROW

namespace {

template <class Record>
ScSmartPixel* MakeSmartPixel() {
    using Smart =
        std::conditional_t<pixel::MappedPixel<Record>, ScMappedSmartPixel<Record>, ScDerivedPixel<Record>>;
    ScSmartPixel* smart = new Smart;
    SrThrowIfNIL(smart);
    return smart;
}

}  // namespace

#define ROW(Record, ...)                    \
    template class ScDerivedPixel<Record>;  \
    ScSmartPixel* Record::NewSmartPixel() { \
        return MakeSmartPixel<Record>();    \
    }
FOR_EACH_LAYER_PIXEL(ROW)
FOR_EACH_PLAIN_PIXEL(ROW)
#undef ROW
