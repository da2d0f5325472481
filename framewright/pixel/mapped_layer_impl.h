// The bodies of SmImagerMappedLayer. Only the source that instantiates it, or a class below it, includes
// this.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "framewright/frame/sampling.h"
#include "framewright/frame/storage_choice.h"
#include "framewright/pixel/dithered_layer_impl.h"
#include "framewright/pixel/mapped_index.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/pixel/smart_pixel.h"
#include "framewright/platform/dib_colors.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/numbers.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"

namespace pixel {

constexpr std::uint32_t kMappedLayerMark = SrCode("Mapd");
constexpr std::uint8_t kMappedLayerVersion = 1;

/// How positions along an axis of a stretched copy fall into the source: first pixel on first, last on last.
/// Unlike frame::ScStretchAxis, which keeps a scale, this multiplies before it divides, so that a last pixel
/// falls exactly on the last.
class ScExactStretchAxis {
  public:
    ScExactStretchAxis(long fromStart, long fromEnd, long toStart, long toEnd)
        : mFromStart(static_cast<float>(fromStart)),
          mToStart(toStart),
          mFromSteps(static_cast<float>(fromEnd - fromStart - 1)),
          mToSteps(static_cast<float>(toEnd - toStart - 1)) {
        if (mToSteps == 0.0f) mToSteps = 1.0f;
    }
    float operator()(long position) const {
        return static_cast<float>(position - mToStart) * mFromSteps / mToSteps + mFromStart;
    }

  private:
    float mFromStart;
    long mToStart;
    float mFromSteps, mToSteps;
};

}  // namespace pixel

template <class Pixel, class Spool>
ScMC_* StClassFacts<SmImagerMappedLayer<Pixel, Spool>>::Object() {
    return SrClassObjectOnFirstUse<SmImagerMappedLayer<Pixel, Spool>>();
}

template <class Pixel, class Spool>
SmImagerMappedLayer<Pixel, Spool>::SmImagerMappedLayer() = default;

template <class Pixel, class Spool>
SmImagerMappedLayer<Pixel, Spool>::~SmImagerMappedLayer() = default;

// Life.

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::IImagerMappedLayer(StPoint const& topLeft, StPoint const& size,
                                                           bool nativeBitmap, void* base, long rowBytes) {
    this->IImagerDitheredLayer(topLeft, size, nativeBitmap, base, rowBytes);
    mMap = NewStandardMap();
    SetStandardGrounds();
}

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::CloneFrom(SmImagerMappedLayer const& other) {
    if (other.mMap) {
        mMap.reset(new ScPalette(kMapEntries));
        SrCopyColorMap(mMap.get(), other.mMap.get());
    } else {
        mMap = NewStandardMap();
    }
    Dithered::CloneFrom(other);
    SetStandardGrounds();
}

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::Free() {
    mMap.reset();
    Dithered::Free();
}

template <class Pixel, class Spool>
SmImagerFrame* SmImagerMappedLayer<Pixel, Spool>::CloneAtNewSize(StPoint const& size, bool spooled,
                                                                 bool nativeBitmap) {
    return frame::WithSpooler(spooled, [&]<class Storage>(std::type_identity<Storage>) -> SmImagerFrame* {
        using Clone = SmImagerMappedLayer<Pixel, Storage>;
        auto layer = StRef<Clone>::Adopt(Clone::New());
        SrThrowIfNIL(layer.Get());
        layer->IImagerMappedLayer({0, 0}, size, nativeBitmap, nullptr, 0);
        return layer.Release();
    });
}

template <class Pixel, class Spool>
SmImagerFrame* SmImagerMappedLayer<Pixel, Spool>::MirrorLayer() {
    auto layer = StRef<SmImagerMappedLayer>::Adopt(SmImagerMappedLayer::New());
    SrThrowIfNIL(layer.Get());
    layer->IImagerMappedLayer(this->GetTopLeft(), this->GetSize(), false, nullptr, 0);
    layer->BlitRect(this, SrWholeRect(this->GetSize()), {0, 0});
    return layer.Release();
}

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::CopyFromLayer(SmImagerFrame* source) {
    if (source->GetClass() == this->GetClass()) {
        SrCopyColorMap(&Map(), static_cast<SmImagerMappedLayer*>(source)->GetColorMap());
    }
    Dithered::CopyFromLayer(source);
}

// The map.

template <class Pixel, class Spool>
std::unique_ptr<ScColorMap<unsigned char, StRGBA32Pixel>>
SmImagerMappedLayer<Pixel, Spool>::NewStandardMap() {
    std::unique_ptr<ScPalette> map(new ScPalette(kMapEntries));
    StuffDefaultColors(*map, kMapEntries);
    return map;
}

template <class Pixel, class Spool>
ScColorMap<unsigned char, StRGBA32Pixel>& SmImagerMappedLayer<Pixel, Spool>::Map() {
    if (!mMap) mMap = NewStandardMap();
    return *mMap;
}

template <class Pixel, class Spool>
StRGBA32Pixel SmImagerMappedLayer<Pixel, Spool>::ColorOf(Pixel const& pixel) {
    return Map()[static_cast<unsigned char>(pixel.index)];
}

template <class Pixel, class Spool>
Pixel SmImagerMappedLayer<Pixel, Spool>::ClosestTo(StRGBA32Pixel color) {
    Pixel pixel{};
    pixel::SetNearest(pixel, color, Map());
    return pixel;
}

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::SetStandardGrounds() {
    SetForeground(SkBlackColorBytes());
    SetBackground(SkWhiteColorBytes());
}

template <class Pixel, class Spool>
void* SmImagerMappedLayer<Pixel, Spool>::GetNativeImageContext() {
    void* const context = Dithered::GetNativeImageContext();
    if (context) SetDIBColorTable(context, 0, static_cast<unsigned>(Map().UsedEntries()), &Map()[0]);
    return context;
}

// Pixels.

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::GetPixelAt(long x, long y, StRGBA32Pixel& pixel) {
    pixel = ColorAt(x, y);
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::GetPixelAt(long x, long y, StColorFloats& pixel) {
    ColorAt(x, y).ConvertToColorFloats(pixel);
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::GetPixelAt(long x, long y, StRGBAFloatPixel& pixel) {
    ColorAt(x, y).ConvertToRGBAFloat(pixel);
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::GetPixelAt(long x, long y, float& intensity) {
    intensity = ColorAt(x, y).ConvertToFloat();
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::GetPixelAt(long x, long y, StAlpha8Pixel& grey) {
    grey.alpha = pixel::GrayOf(ColorAt(x, y));
}
template <class Pixel, class Spool>
StRGBA32Pixel SmImagerMappedLayer<Pixel, Spool>::GetRGBAPixelAt(long x, long y) {
    return ColorAt(x, y);
}

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::PutPixelAt(long x, long y, StRGBA32Pixel const& pixel) {
    this->PutMatchedPixelAt(x, y, ClosestTo(pixel));
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::PutPixelAt(long x, long y, StColorFloats const& pixel) {
    this->PutMatchedPixelAt(x, y, ClosestTo(pixel.GetRGBA32()));
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::PutPixelAt(long x, long y, StRGBAFloatPixel const& pixel) {
    this->PutMatchedPixelAt(x, y, ClosestTo(pixel.GetRGBA32()));
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::PutPixelAt(long x, long y, StDepthFloatPixel const& depth) {
    this->PutMatchedPixelAt(x, y, ClosestTo(depth.GetRGBA32()));
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::PutPixelAt(long x, long y, StAlpha8Pixel const& opacity) {
    this->PutMatchedPixelAt(x, y, ClosestTo(pixel::SameBytes(opacity.alpha)));
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::PutPixelAt(long x, long y, ScSmartPixel const* pixel) {
    Pixel converted{};
    converted.ConvertSmart(pixel, &Map(), &Map());
    this->PutMatchedPixelAt(x, y, converted);
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::MergePixelAt(long x, long y, StRGBA32Pixel color) {
    StRGBA32Pixel merged = ColorAt(x, y);
    merged.Merge(color);
    this->PutMatchedPixelAt(x, y, ClosestTo(merged));
}

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::SetForeground(StRGBA32Pixel const& color) {
    this->mForeground = ClosestTo(color);
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::GetForeground(StRGBA32Pixel& color) {
    color = ColorOf(this->mForeground);
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::SetBackground(StRGBA32Pixel const& color) {
    this->mBackground = ClosestTo(color);
}
template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::GetBackground(StRGBA32Pixel& color) {
    color = ColorOf(this->mBackground);
}

// Samples.

template <class Pixel, class Spool>
ScSmartPixel* SmImagerMappedLayer<Pixel, Spool>::NewSmartPixel() {
    ScPalette& map = Map();
    auto* const smart = new ScMappedSmartPixel<Pixel>;
    SrThrowIfNIL(smart);
    smart->SetColorMap(&map);
    return smart;
}

template <class Pixel, class Spool>
Pixel SmImagerMappedLayer<Pixel, Spool>::GetFractionalPixel(float x, float y) {
    StPoint const size = this->GetSize();
    if (!SrHasPixels(size)) return Pixel{};
    long x0, x1, y0, y1;
    frame::Neighbours(x, size.horizontal, size.horizontal, x0, x1);
    frame::Neighbours(y, size.vertical, size.vertical, y0, y1);
    float const across = x - static_cast<float>(SrITrunc(x)), down = y - static_cast<float>(SrITrunc(y));
    ScPalette* const map = &Map();
    Pixel top = this->GetMatchedPixelAt(x0, y0);
    top.Blend(this->GetMatchedPixelAt(x1, y0), across, map);
    Pixel bottom = this->GetMatchedPixelAt(x0, y1);
    bottom.Blend(this->GetMatchedPixelAt(x1, y1), across, map);
    top.Blend(bottom, down, map);
    return top;
}

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::GetFractionalSmartPixel(float x, float y, ScSmartPixel* pixel) {
    Pixel const sample = GetFractionalPixel(x, y);
    pixel->SetPixelData(&sample);
}

// Rectangles.

template <class Pixel, class Spool>
bool SmImagerMappedLayer<Pixel, Spool>::BlitRect(SmImagerFrame* source, StRect const& from,
                                                 StPoint const& to) {
    if (source->GetClass() == this->GetClass()) return Dithered::Layer::BlitRect(source, from, to);
    return Dithered::BlitRect(source, from, to);
}

template <class Pixel, class Spool>
bool SmImagerMappedLayer<Pixel, Spool>::DissimilarBlit(SmImagerFrame* source, StRect const& from,
                                                       StPoint const& to) {
    if (source->GetClass() != this->GetClass()) return Dithered::DissimilarBlit(source, from, to);
    this->EnsureScreenSafe(frame::PlacedAt(from, to));
    Pixel index{};
    long row = to.vertical;
    for (long y = from.top; y < from.bottom; ++y, ++row) {
        long column = to.horizontal;
        for (long x = from.left; x < from.right; ++x, ++column) {
            source->GetPixelAt(x, y, static_cast<void*>(&index));
            this->PutPixelAt(column, row, static_cast<void const*>(&index));
        }
    }
    this->ReleaseScreenSafe();
    return false;
}

template <class Pixel, class Spool>
bool SmImagerMappedLayer<Pixel, Spool>::DitheredBlit(SmImagerFrame* source, StRect const& from,
                                                     StPoint const& to) {
    pixel::ScPutMapped<Pixel> put(Map());
    this->Diffuse(source, from, to, put);
    return false;
}

template <class Pixel, class Spool>
bool SmImagerMappedLayer<Pixel, Spool>::MergeRect(SmImagerFrame* source, StRect const& from,
                                                  StPoint const& to) {
    this->SetUpdated(true);
    pixel::StBlitPart const part = pixel::PartWithin(from, to, source->GetSize(), this->GetSize(), 1);
    for (long y = part.from.top; y < part.from.bottom; ++y) {
        for (long x = part.from.left; x < part.from.right; ++x) {
            long const toX = part.to.horizontal + (x - part.from.left),
                       toY = part.to.vertical + (y - part.from.top);
            StRGBA32Pixel over{};
            source->GetPixelAt(x, y, over);
            StRGBA32Pixel color = ColorAt(toX, toY);
            color.Merge(over);
            this->PutPixelAt(toX, toY, color);
        }
    }
    return false;
}

template <class Pixel, class Spool>
bool SmImagerMappedLayer<Pixel, Spool>::StretchBlit(SmImagerFrame* source, StRect const& from,
                                                    StRect const& to) {
    this->SetUpdated(true);
    this->EnsureScreenSafe(to);
    std::unique_ptr<ScSmartPixel> const smart(source->NewSmartPixel());
    StPoint const size = SrHasPixels(source->GetSize()) ? this->GetSize() : StPoint{0, 0};
    pixel::ScExactStretchAxis const rows(from.top, from.bottom, to.top, to.bottom);
    pixel::ScExactStretchAxis const columns(from.left, from.right, to.left, to.right);
    for (long y = std::max(to.top, 0); y < std::min(to.bottom, size.vertical); ++y) {
        for (long x = std::max(to.left, 0); x < std::min(to.right, size.horizontal); ++x) {
            source->GetFractionalSmartPixel(columns(x), rows(y), smart.get());
            this->PutPixelAt(x, y, smart.get());
        }
    }
    this->ReleaseScreenSafe();
    return false;
}

// Streams.

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::WriteTo(SmStream* stream) {
    Dithered::WriteTo(stream);
    stream->PutBigEndian(pixel::kMappedLayerMark);
    stream->PutBigEndian(pixel::kMappedLayerVersion);
    Map().PutToStream(*stream);
}

template <class Pixel, class Spool>
void SmImagerMappedLayer<Pixel, Spool>::ReadFrom(SmStream* stream) {
    Dithered::ReadFrom(stream);
    if (stream->GetBigEndian<std::uint32_t>() != pixel::kMappedLayerMark)
        SrThrow(SkBadFileFormatErrC(), SkBadFileFormatMsgC());
    if (stream->GetBigEndian<std::uint8_t>() != pixel::kMappedLayerVersion)
        SrThrow(SkBadFileVersionErrC(), SkBadFileVersionMsgC());
    mMap = NewStandardMap();
    mMap->GetFromStream(*stream);
}
