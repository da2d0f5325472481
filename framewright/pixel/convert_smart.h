// How records read smart pixels, shared by the sources that hold the records' ConvertSmart.
#pragma once

#include "framewright/pixel/pixel_ops.h"
#include "framewright/pixel/smart_pixel.h"

namespace pixel {

/// The record inside `source`, whose PixelID must be the record's.
template <class Record>
Record const& Payload(ScSmartPixel const* source) {
    // GetPixelData lends the record to writers too; here it is only read.
    return *static_cast<Record const*>(const_cast<ScSmartPixel*>(source)->GetPixelData());
}

/// The colour of `source`, whose PixelID is `id`. Records of the types `Direct` are read in place, which
/// gives the same colour without another virtual call.
template <class... Direct>
StRGBA32Pixel ColorOf(ScSmartPixel const* source, [[maybe_unused]] unsigned long id) {
    StRGBA32Pixel color{};
    bool const isDirect =
        ((id == Direct::PixelID() && (color = Payload<Direct>(source).GetRGBA32(), true)) || ...);
    return isDirect ? color : source->GetRGBA32();
}

/// Takes a smart pixel of this very record whole, and any other by its colour.
template <class... Direct, class Record>
void ConvertByColor(Record& record, ScSmartPixel const* source) {
    unsigned long const id = source->PixelID();
    if (id == Record::PixelID())
        record = Payload<Record>(source);
    else
        record.SetRGBA32(ColorOf<Direct...>(source, id));
}

}  // namespace pixel
