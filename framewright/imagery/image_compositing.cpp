// Images into images: stretched and merged, and block by block.
#include <algorithm>
#include <limits>
#include <typeinfo>

#include "framewright/frame/layer.h"
#include "framewright/imagery/image.h"

namespace {

/// Where the pixels of a source fall along one axis of the destination.
struct StAxis {
    StAxis(long count, std::int64_t extent, std::int32_t start)
        : step(count > 1 ? static_cast<float>(extent - 1) / static_cast<float>(count - 1)
                         : std::numeric_limits<float>::quiet_NaN()),
          start(static_cast<float>(start)) {}

    /// Beyond 32 bits, and without a step, below 0 and so outside.
    long Place(long index) const { return SrITrunc(static_cast<float>(index) * step + start); }

    float step;  ///< one pixel has no step: 0 / 0
    float start;
};

/// The rows and columns that all of an image's layers have that take part.
StPoint Common(StPoint const& size, SmImagerFrame* layer) {
    if (!layer) return size;
    StPoint const own = layer->GetSize();
    return {std::min(size.vertical, own.vertical), std::min(size.horizontal, own.horizontal)};
}

/// The colour and the depth layer of an image; null where depth does not take part.
struct StLayers {
    SmImagerFrame* color;
    SmImagerFrame* depth;

    StRGBA32Pixel Color(long x, long y) const { return color->GetRGBAPixelAt(x, y); }
    void PutColor(long x, long y, StRGBA32Pixel pixel) const { color->PutPixelAt(x, y, pixel); }
    float Depth(long x, long y) const {
        float result = 0.0F;
        depth->GetPixelAt(x, y, result);
        return result;
    }
    void PutDepth(long x, long y, float value) const { depth->PutPixelAt(x, y, StDepthFloatPixel{value}); }
};

/// The same where both are layers of the usual records in memory: their pixels are read and written without
/// calls.
struct StPlainLayers {
    using ColorLayer = SmImagerLayer<StRGBA32Pixel, ScImagerNonSpool>;
    using DepthLayer = SmImagerLayer<StDepthFloatPixel, ScImagerNonSpool>;

    /// Of these classes themselves, and not of one that derives from them and may do otherwise.
    static bool Are(StLayers const& layers) {
        return typeid(*layers.color) == typeid(ColorLayer) &&
               (!layers.depth || typeid(*layers.depth) == typeid(DepthLayer));
    }
    explicit StPlainLayers(StLayers const& layers)
        : color(static_cast<ColorLayer*>(layers.color)), depth(static_cast<DepthLayer*>(layers.depth)) {}

    ColorLayer* color;
    DepthLayer* depth;

    StRGBA32Pixel Color(long x, long y) const { return color->GetMatchedPixelAt(x, y); }
    void PutColor(long x, long y, StRGBA32Pixel pixel) const { color->PutMatchedPixelAt(x, y, pixel); }
    float Depth(long x, long y) const { return depth->GetMatchedPixelAt(x, y).depth; }
    void PutDepth(long x, long y, float value) const { depth->PutMatchedPixelAt(x, y, {value}); }
};

struct StWalk {
    StAxis rows, columns;
    StPoint sourceSize, destinationSize;  ///< within all layers that take part
};

template <class Layers>
void CompositePixel(Layers const& source, Layers const& destination, long x, long y, long toX, long toY) {
    bool const deep = source.depth != nullptr;
    if (deep && !(source.Depth(x, y) < destination.Depth(toX, toY))) return;
    StRGBA32Pixel const over = source.Color(x, y);
    StRGBA32Pixel pixel = destination.Color(toX, toY);
    pixel.Merge(over);
    destination.PutColor(toX, toY, pixel);
    if (deep && over.alpha != 0) destination.PutDepth(toX, toY, source.Depth(x, y));
}

template <class Layers>
void Composite(StWalk const& walk, Layers const& source, Layers const& destination) {
    for (long y = 0; y < walk.sourceSize.vertical; ++y) {
        long const toY = walk.rows.Place(y);
        if (toY < 0 || toY >= walk.destinationSize.vertical) continue;
        for (long x = 0; x < walk.sourceSize.horizontal; ++x) {
            long const toX = walk.columns.Place(x);
            if (toX < 0 || toX >= walk.destinationSize.horizontal) continue;
            CompositePixel(source, destination, x, y, toX, toY);
        }
    }
}

}  // namespace

void SmImagerImage::CompositeInto(SmImagerImage* destination, StRect const& rect) {
    StLayers from{GetColorLayer(), GetDepthLayer()};
    StLayers to{destination->GetColorLayer(), destination->GetDepthLayer()};
    if (!from.color || !to.color) return;
    if (!from.depth || !to.depth) from.depth = to.depth = nullptr;
    StPoint const size = GetSize();
    StWalk const walk{{size.vertical, std::int64_t{rect.bottom} - rect.top, rect.top},
                      {size.horizontal, std::int64_t{rect.right} - rect.left, rect.left},
                      Common(Common(size, from.color), from.depth),
                      Common(Common(destination->GetSize(), to.color), to.depth)};
    if (StPlainLayers::Are(from) && StPlainLayers::Are(to)) {
        Composite(walk, StPlainLayers(from), StPlainLayers(to));
    } else {
        Composite(walk, from, to);
    }
}

void SmImagerImage::BlitFrom(SmImagerImage* source, StRect const& from, StPoint const& to) {
    SmImagerFrame* const color = source->GetColorLayer();
    SmImagerFrame* const depth = source->GetDepthLayer();
    if (mColorLayer && color) mColorLayer->BlitRect(color, from, to);
    if (mDepthLayer && depth) mDepthLayer->BlitRect(depth, from, to);
    for (std::size_t i = 0; i < mLayers.size(); ++i) {
        SmImagerFrame* const layer = mLayers[i].Get();
        if (!layer || layer == mColorLayer || layer == mDepthLayer) continue;
        long const purpose = layer->GetPurpose();
        if (purpose == static_cast<long>(kUnknownCode)) continue;
        SmImagerFrame* const match = source->GetLayer(static_cast<long>(i));
        if (!match || match == color || match == depth || match->GetPurpose() != purpose) continue;
        layer->BlitRect(match, from, to);
    }
}
