#include "framewright/frame/layer_impl.h"

SR_INSTANTIATE_LAYERS(StRGB48Pixel);
