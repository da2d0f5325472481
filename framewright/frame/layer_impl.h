// The bodies of SmImagerLayer, for the sources that instantiate it or a class built on it. All others include
// frame/layer.h alone.
#pragma once

#include "framewright/frame/layer.h"
#include "framewright/frame/layer_copy_impl.h"
#include "framewright/frame/layer_pixels_impl.h"
#include "framewright/frame/layer_sample_impl.h"
#include "framewright/frame/layer_storage_impl.h"
#include "framewright/frame/layer_stream_impl.h"
#include "framewright/frame/layer_stretch_impl.h"
#include "framewright/frame/layer_whole_impl.h"

/// Compiles the layers of a record; stands in one source file a record, see frame/layers/.
#define SR_INSTANTIATE_LAYERS(Record)                                      \
    template struct StClassFacts<SmImagerLayer<Record, ScImagerNonSpool>>; \
    template struct StClassFacts<SmImagerLayer<Record, ScImagerSpool>>;    \
    template class SmImagerLayer<Record, ScImagerNonSpool>;                \
    template class SmImagerLayer<Record, ScImagerSpool>
