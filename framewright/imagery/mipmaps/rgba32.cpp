#include "framewright/imagery/mipmap_impl.h"

SR_INSTANTIATE_MIPMAPS(StRGBA32Pixel);
