#include "framewright/frame/layer_impl.h"

SR_INSTANTIATE_LAYERS(StMapped1Pixel);
