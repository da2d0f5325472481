#include "framewright/frame/copy_road.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace frame {

CopyRoad ChooseCopyRoad(SmImagerFrame& source, SmImagerFrame& destination, StRect const& from,
                        StPoint const& to) {
    if (!OnePixelType(source, destination)) return CopyRoad::kConverted;
    long const bits = destination.PixelSize();
    auto const whole = [bits](long pixels) { return pixels * bits % 8 == 0; };
    bool const aligned = whole(from.left) && whole(to.horizontal) && whole(long{from.right} - from.left);
    return aligned ? CopyRoad::kRawRows : CopyRoad::kRawBits;
}

/// The end of a span along one axis, cut to what the source has and the destination takes.
static std::int32_t ClipEnd(std::int32_t start, std::int32_t end, std::int32_t sourceLimit, std::int32_t to,
                            std::int32_t limit) {
    std::int64_t const last = std::min(end, sourceLimit);
    bool const past = to + (last - start) > limit;
    return static_cast<std::int32_t>(past ? std::int64_t{start} + limit - to : last);
}

bool MeetsFrames(StPoint const& sourceSize, StPoint const& destinationSize, StRect const& from,
                 StPoint const& to) {
    return to.horizontal <= destinationSize.horizontal && to.vertical <= destinationSize.vertical &&
           sourceSize.horizontal > from.left && sourceSize.vertical > from.top;
}

bool ClipCopy(StPoint const& sourceSize, StPoint const& destinationSize, StRect const& from,
              StPoint const& to, StRect& clipped) {
    if (!MeetsFrames(sourceSize, destinationSize, from, to)) return false;
    clipped = from;
    clipped.right =
        ClipEnd(from.left, from.right, sourceSize.horizontal, to.horizontal, destinationSize.horizontal);
    clipped.bottom =
        ClipEnd(from.top, from.bottom, sourceSize.vertical, to.vertical, destinationSize.vertical);
    return true;
}

StRect PlacedAt(StRect const& from, StPoint const& to) {
    auto const end = [](std::int64_t to, std::int64_t first, std::int64_t last) {
        return static_cast<std::int32_t>(to + last - first);
    };
    return {to.vertical, to.horizontal, end(to.vertical, from.top, from.bottom),
            end(to.horizontal, from.left, from.right)};
}

bool Disjoint(void const* a, void const* b, std::size_t bytes) {
    auto const first = reinterpret_cast<std::uintptr_t>(a);
    auto const second = reinterpret_cast<std::uintptr_t>(b);
    return first < second ? second - first >= bytes : first - second >= bytes;
}

void CopyUpward(void* destination, void const* source, std::size_t bytes) {
    if (Disjoint(destination, source, bytes)) {
        std::memcpy(destination, source, bytes);
        return;
    }
    auto* to = static_cast<unsigned char*>(destination);
    auto const* from = static_cast<unsigned char const*>(source);
    for (; bytes >= sizeof(std::uint64_t); bytes -= sizeof(std::uint64_t)) {
        std::uint64_t unit;
        std::memcpy(&unit, from, sizeof(unit));
        std::memcpy(to, &unit, sizeof(unit));
        from += sizeof(unit);
        to += sizeof(unit);
    }
    for (; bytes; --bytes)
        *to++ = *from++;
}

}  // namespace frame
