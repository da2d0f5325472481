// The parts of the records' stream forms: single bytes, and channels of several bytes in big-endian order.
#pragma once

#include <concepts>

#include "framewright/thornmere/stream.h"

namespace pixel {

template <std::same_as<std::uint8_t>... Byte>
void PutBytes(SmStream& stream, Byte... bytes) {
    std::uint8_t const list[] = {bytes...};
    stream.Write(sizeof list, list);
}

template <std::same_as<std::uint8_t>... Byte>
void GetBytes(SmStream& stream, Byte&... bytes) {
    std::uint8_t list[sizeof...(bytes)] = {};
    stream.Read(sizeof list, list);
    std::uint8_t const* next = list;
    ((bytes = *next++), ...);
}

/// One byte, for a value of fewer bits that its reader takes from the low end.
inline unsigned GetByte(SmStream& stream) {
    std::uint8_t byte = 0;
    GetBytes(stream, byte);
    return byte;
}

template <class... Channel>
void PutBigEndian(SmStream& stream, Channel... channels) {
    (stream.PutBigEndian(channels), ...);
}

template <class... Channel>
void GetBigEndian(SmStream& stream, Channel&... channels) {
    ((channels = stream.GetBigEndian<Channel>()), ...);
}

}  // namespace pixel
