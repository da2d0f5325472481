// Entering layer classes into the registries of frames.
#pragma once

#include <span>

#include "framewright/frame/frame.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/reference.h"

namespace frame {

/// A layer class: how to make its prototype, and the index of its name in the list of layer names.
struct StLayerRow {
    ScMC_* (*cls)();
    SmImagerFrame* (*newPrototype)();  ///< with one reference for the caller
    unsigned long pixelID;
    long nameIndex;
};

/// The prototype of a layer class: 1 by 1 at (0, 0), in memory, initialised as a plain layer is.
template <class Layer>
SmImagerFrame* NewPrototype() {
    auto layer = StRef<Layer>::Adopt(Layer::New());
    SrThrowIfNIL(layer.Get());
    layer->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    return layer.Release();
}

template <class Layer>
constexpr StLayerRow RowOfLayer(long nameIndex) {
    return {&Layer::Class, &NewPrototype<Layer>, Layer::PixelType::PixelID(), nameIndex};
}

/// The first registered prototype that has all three values, borrowed; null for none.
SmImagerFrame* FindLayerPrototype(unsigned long pixelID, unsigned long familyID, long pixelSize);

/// Enters each class with its prototype, and its name under its PixelID, in the order of the rows. -108 when
/// memory is refused; what was entered up to there stays for UnRegisterLayers.
void RegisterLayers(std::span<StLayerRow const> rows);
/// Removes the classes, then the names. What is not there is no error.
void UnRegisterLayers(std::span<StLayerRow const> rows);

/// The set-up of the integer depth layers, which SrInitializeLayerRegistries runs last.
void InitializeDepthLayers(bool terminate);

}  // namespace frame
