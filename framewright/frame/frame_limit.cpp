#include "framewright/frame/frame_limit.h"

static std::uint64_t gFrameSizeLimit = std::uint64_t{1} << 31;

std::uint64_t SrGetFrameSizeLimit() {
    return gFrameSizeLimit;
}

void SrSetFrameSizeLimit(std::uint64_t bytes) {
    gFrameSizeLimit = bytes;
}
