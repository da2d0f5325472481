#include "framewright/frame/stretch_map.h"

#include <algorithm>

namespace frame {

static std::int32_t ClipStart(std::int32_t edge, std::int32_t limit) {
    return edge < 1 ? 0 : std::min(edge, std::max(limit - 1, 0));
}

StRect ClipStretchTarget(StRect const& to, StPoint const& size) {
    StRect target;
    SrClipRectToFrame(target, to, size);
    target.top = ClipStart(to.top, size.vertical);
    target.left = ClipStart(to.left, size.horizontal);
    return target;
}

}  // namespace frame
