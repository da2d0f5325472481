#include "framewright/pixel/blit_part.h"

#include <algorithm>
#include <cstdint>

namespace pixel {
namespace {

/// One axis of a part: what is copied, `first` up to `last`, and where `first` goes.
struct StSpan {
    std::int32_t first, last, to;
};

StSpan SpanWithin(std::int64_t first, std::int64_t last, std::int64_t to, std::int32_t sourceLength,
                  std::int32_t length) {
    std::int64_t const skipped = std::max({std::int64_t{0}, -first, -to});
    first += skipped;
    to += skipped;
    last = std::min({last, std::int64_t{sourceLength}, first + length - to});
    first = std::min(first, std::int64_t{sourceLength});
    to = std::min(to, std::int64_t{length});
    last = std::max(first, last);
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(last), static_cast<std::int32_t>(to)};
}

}  // namespace

StBlitPart PartWithin(StRect const& from, StPoint const& to, StPoint const& sourceSize, StPoint const& size,
                      int beyond) {
    std::int64_t const bottom = std::int64_t{from.bottom} + beyond, right = std::int64_t{from.right} + beyond;
    StSpan const rows = SpanWithin(from.top, bottom, to.vertical, sourceSize.vertical, size.vertical);
    StSpan const columns =
        SpanWithin(from.left, right, to.horizontal, sourceSize.horizontal, size.horizontal);
    return {{rows.first, columns.first, rows.last, columns.last}, {rows.to, columns.to}};
}

}  // namespace pixel
