// How two pixels of one record mix inside a layer: the record's own rule, and what stands in for one.
#pragma once

#include <concepts>

#include "framewright/pixel/pixel_ops.h"
#include "framewright/pixel/pixels.h"
#include "framewright/thornmere/numbers.h"

namespace frame {

template <class Record>
concept DepthPixel = std::same_as<Record, StDepthFloatPixel> || std::same_as<Record, StDepthUInt8Pixel> ||
    std::same_as<Record, StDepthUInt16Pixel> || std::same_as<Record, StDepthUInt24Pixel> ||
    std::same_as<Record, StDepthUInt32Pixel>;

template <class Record>
concept IntegerDepthPixel = DepthPixel<Record> && !std::same_as<Record, StDepthFloatPixel>;

/// Stores the low bits of `value`, as many as the record has.
template <IntegerDepthPixel Record>
void SetDepth(Record& record, std::int64_t value) {
    constexpr std::uint32_t kMask = 0xFFFFFFFFu >> (32 - Record::PixelSize());
    record.depth = static_cast<decltype(record.depth + 0u)>(value) & kMask;
}

/// Lays `over` on `pixel`. Integer depths take the mean; an index has no mixture and stays.
template <pixel::LayerPixel Record>
void MergePixels(Record& pixel, [[maybe_unused]] Record const& over) {
    if constexpr (IntegerDepthPixel<Record>) {
        SetDepth(pixel, (std::int64_t{pixel.depth} + over.depth) / 2);
    } else if constexpr (!pixel::MappedPixel<Record>) {
        pixel.Merge(over);
    }
}

/// Moves `pixel` toward `other` by t. Integer depths do so in double precision, truncated; an index stays.
template <pixel::LayerPixel Record>
void BlendPixels(Record& pixel, [[maybe_unused]] Record const& other, [[maybe_unused]] float t) {
    if constexpr (IntegerDepthPixel<Record>) {
        double const mixed =
            static_cast<double>(pixel.depth) * (1.0 - t) + static_cast<double>(other.depth) * t;
        SetDepth(pixel, SrITrunc64(mixed));
    } else if constexpr (!pixel::MappedPixel<Record>) {
        pixel.Blend(other, t);
    }
}

}  // namespace frame
