#include "framewright/frame/geometry.h"

#include "framewright/thornmere/stream.h"

StTilingStyles const& SkNoTilings() {
    static constexpr StTilingStyles kNone{0, 0};
    return kNone;
}

bool SrInsideFrame(StPoint const& point, StPoint const& size) {
    return point.vertical >= 0 && point.horizontal >= 0 && point.vertical < size.vertical &&
           point.horizontal < size.horizontal;
}

static std::int32_t ClipEdge(std::int32_t edge, std::int32_t limit) {
    return edge < 1 ? 0 : edge > limit ? limit : edge;
}

void SrClipRectToFrame(StRect& out, StRect const& in, StPoint const& size) {
    out = {ClipEdge(in.top, size.vertical), ClipEdge(in.left, size.horizontal),
           ClipEdge(in.bottom, size.vertical), ClipEdge(in.right, size.horizontal)};
}

void SrGetFromStream(SmStream& stream, StPoint& point) {
    point.vertical = stream.GetBigEndian<std::int32_t>();
    point.horizontal = stream.GetBigEndian<std::int32_t>();
}

void SrPutToStream(SmStream& stream, StPoint const& point) {
    stream.PutBigEndian(point.vertical);
    stream.PutBigEndian(point.horizontal);
}
