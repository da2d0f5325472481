// SmImagerLayer: single pixels. Each operation is: get the row, index by x, convert by the record's rule.
#pragma once

#include <cstring>
#include <new>

#include "framewright/frame/layer.h"
#include "framewright/frame/pixel_mixing.h"
#include "framewright/pixel/convert_smart.h"

namespace frame {

/// Writes the pixel at (x, y) by `set`, which gets the record that is there: what a conversion does not write
/// (a filler byte, a flag) stays. An index that no colour determines is 0.
template <class Pixel, class Spool, class Set>
void Rewrite(SmImagerLayer<Pixel, Spool>& layer, long x, long y, Set const& set) {
    Pixel pixel{};
    if constexpr (!pixel::MappedPixel<Pixel>) {
        pixel = layer.GetMatchedPixelAt(x, y);
        set(pixel);
    }
    layer.PutMatchedPixelAt(x, y, pixel);
}

/// Takes on a smart pixel of any kind. Without a map an index can only come from a smart pixel of its own
/// kind.
template <class Pixel>
void ConvertSmartPixel(Pixel& pixel, ScSmartPixel const* smart) {
    if constexpr (!pixel::MappedPixel<Pixel>) {
        pixel.ConvertSmart(smart);
    } else {
        bool const same = smart->PixelID() == Pixel::PixelID();
        pixel.index = same ? pixel::Payload<Pixel>(smart).index : 0;
    }
}

}  // namespace frame

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetPixelAt(long x, long y, StRGBA32Pixel& pixel) {
    if constexpr (!pixel::MappedPixel<Pixel>) pixel = pixel::GetRGBA32(GetMatchedPixelAt(x, y));
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetPixelAt(long x, long y, StColorFloats& pixel) {
    if constexpr (!pixel::MappedPixel<Pixel>) pixel::GetColorFloats(GetMatchedPixelAt(x, y), pixel);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetPixelAt(long x, long y, StRGBAFloatPixel& pixel) {
    if constexpr (!pixel::MappedPixel<Pixel>) pixel::GetRGBAFloat(GetMatchedPixelAt(x, y), pixel);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetPixelAt(long x, long y, float& intensity) {
    if constexpr (!pixel::MappedPixel<Pixel>) intensity = pixel::GetFloat(GetMatchedPixelAt(x, y));
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetPixelAt(long x, long y, StAlpha8Pixel& opacity) {
    if constexpr (frame::IntegerDepthPixel<Pixel>) {
        opacity.alpha = 255;
    } else if constexpr (!pixel::MappedPixel<Pixel>) {
        opacity.alpha = pixel::GetRGBA32(GetMatchedPixelAt(x, y)).alpha;
    }
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetPixelAt(long x, long y, ScSmartPixel* pixel) {
    Pixel const record = GetMatchedPixelAt(x, y);
    pixel->SetPixelData(&record);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetPixelAt(long x, long y, void* record) {
    if constexpr (pixel::kSubByte<Pixel>) {
        // The low bits of the record's first byte hold the value.
        Pixel pixel{};
        std::memcpy(static_cast<void*>(&pixel), record, 1);
        pixel::LoadPixel(Row(y), x, pixel);
        std::memcpy(record, &pixel, 1);
    } else {
        constexpr long kBytes = Pixel::PixelSize() / 8;
        std::memcpy(record, static_cast<std::byte const*>(Row(y)) + x * kBytes, kBytes);
    }
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::PutPixelAt(long x, long y, StRGBA32Pixel const& pixel) {
    frame::Rewrite(*this, x, y, [&](Pixel& record) { pixel::SetRGBA32(record, pixel); });
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::PutPixelAt(long x, long y, StColorFloats const& pixel) {
    frame::Rewrite(*this, x, y, [&](Pixel& record) { pixel::SetColorFloats(record, pixel); });
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::PutPixelAt(long x, long y, StRGBAFloatPixel const& pixel) {
    frame::Rewrite(*this, x, y, [&](Pixel& record) { pixel::SetRGBAFloat(record, pixel); });
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::PutPixelAt(long x, long y, StDepthFloatPixel const& depth) {
    frame::Rewrite(*this, x, y, [&](Pixel& record) {
        if constexpr (frame::DepthPixel<Pixel>) {
            pixel::SetFloat(record, depth.depth);
        } else {
            pixel::SetRGBA32(record, pixel::GetRGBA32(depth));
        }
    });
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::PutPixelAt(long x, long y, StAlpha8Pixel const& opacity) {
    StRGBA32Pixel const white{255, 255, 255, opacity.alpha};
    frame::Rewrite(*this, x, y, [&](Pixel& record) { pixel::SetRGBA32(record, white); });
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::PutPixelAt(long x, long y, ScSmartPixel const* pixel) {
    Pixel record = GetMatchedPixelAt(x, y);
    frame::ConvertSmartPixel(record, pixel);
    PutMatchedPixelAt(x, y, record);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::PutPixelAt(long x, long y, void const* record) {
    if constexpr (pixel::kSubByte<Pixel>) {
        Pixel pixel{};
        std::memcpy(static_cast<void*>(&pixel), record, 1);
        PutMatchedPixelAt(x, y, pixel);
    } else {
        constexpr long kBytes = Pixel::PixelSize() / 8;
        std::memcpy(static_cast<std::byte*>(Row(y)) + x * kBytes, record, kBytes);
    }
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::DrawPixelAt(long x, long y) {
    PutMatchedPixelAt(x, y, mForeground);
}

template <class Pixel, class Spool>
ScSmartPixel* SmImagerLayer<Pixel, Spool>::NewSmartPixel() {
    ScSmartPixel* pixel = new ScDerivedPixel<Pixel>;
    SrThrowIfNIL(pixel);
    return pixel;
}

template <class Pixel, class Spool>
StRGBA32Pixel SmImagerLayer<Pixel, Spool>::GetRGBAPixelAt(long x, long y) {
    return pixel::GetRGBA32(GetMatchedPixelAt(x, y));
}

template <class Pixel, class Spool>
unsigned long SmImagerLayer<Pixel, Spool>::GetRGBAPixelAsLong(long x, long y) {
    // Through the operation that derived classes replace.
    StRGBA32Pixel const color = this->GetRGBAPixelAt(x, y);
    return static_cast<unsigned long>(color.alpha) << 24 | static_cast<unsigned long>(color.red) << 16 |
           static_cast<unsigned long>(color.green) << 8 | color.blue;
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::MergePixelAt(long x, long y, StRGBA32Pixel pixel) {
    frame::Rewrite(*this, x, y, [&](Pixel& record) {
        StRGBA32Pixel color = pixel::GetRGBA32(record);
        color.Merge(pixel);
        pixel::SetRGBA32(record, color);
    });
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::SetForeground(StRGBA32Pixel const& color) {
    pixel::SetRGBA32(mForeground, color);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetForeground(StRGBA32Pixel& color) {
    if constexpr (!pixel::MappedPixel<Pixel>) color = pixel::GetRGBA32(mForeground);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::SetBackground(StRGBA32Pixel const& color) {
    pixel::SetRGBA32(mBackground, color);
}

template <class Pixel, class Spool>
void SmImagerLayer<Pixel, Spool>::GetBackground(StRGBA32Pixel& color) {
    if constexpr (!pixel::MappedPixel<Pixel>) color = pixel::GetRGBA32(mBackground);
}
