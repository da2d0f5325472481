// All pixel records and their constants. Records are plain values: they are copied freely, can stand in the
// rows of a layer as they are, and are safe in any thread that owns them.
#pragma once

#include "framewright/pixel/alpha_pixels.h"
#include "framewright/pixel/byte_pixels.h"
#include "framewright/pixel/cmyk_pixel.h"
#include "framewright/pixel/color_models.h"
#include "framewright/pixel/color_pixels.h"
#include "framewright/pixel/depth_pixels.h"
#include "framewright/pixel/float_pixels.h"
#include "framewright/pixel/gray_pixels.h"
#include "framewright/pixel/mapped_pixels.h"
#include "framewright/pixel/model_pixels.h"
#include "framewright/pixel/pixel_constants.h"
#include "framewright/pixel/pixel_table.h"
#include "framewright/pixel/word_pixels.h"
