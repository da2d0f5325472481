#include "framewright/frame/layer_impl.h"

SR_INSTANTIATE_LAYERS(StGray4Pixel);
