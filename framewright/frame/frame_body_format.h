// The numbers of a frame's body that both its reader and whoever reads the header before it must know.
#pragma once

#include <cstdint>

namespace frame {

// Format markers.
constexpr std::uint16_t kPlainRows = 0;
constexpr std::uint16_t kRunRows = 1;
/// Where the marker stands in a body, and how long a body is in front of its rows.
constexpr std::uint32_t kMarkerOffset = 16;
constexpr std::uint32_t kBodyHeaderBytes = 22;
/// Plain pixels of fewer bits are streamed as the bytes of their rows.
constexpr long kLeastStreamedBits = 16;

}  // namespace frame
