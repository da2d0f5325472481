#include "framewright/pixel/dithered_layer_impl.h"

#define ROW(Record)                                                                \
    template struct StClassFacts<SmImagerDitheredLayer<Record, ScImagerNonSpool>>; \
    template struct StClassFacts<SmImagerDitheredLayer<Record, ScImagerSpool>>;    \
    template class SmImagerDitheredLayer<Record, ScImagerNonSpool>;                \
    template class SmImagerDitheredLayer<Record, ScImagerSpool>;
FOR_EACH_DITHERED_PIXEL(ROW)
#undef ROW
