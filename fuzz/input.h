// What the fuzz targets share: their bytes as streams, and the end of a run that went wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"

inline void Check(bool condition) {
    if (!condition) std::abort();
}

/// The code of what a run threw; `hasMessage` says whether it came with one.
inline long CodeOf(std::exception const& exception, bool* hasMessage = nullptr) {
    ScMessageClass* message = nullptr;
    long const code = SrGetExceptionValues(exception, message);
    if (hasMessage) *hasMessage = message != nullptr;
    return code;
}

/// A stream that only runs forward and does not know its length; the bytes are borrowed.
class ForwardStream : public SmStream {
  public:
    ForwardStream(std::uint8_t const* data, std::size_t size) : mData(data), mLeft(size) {}
    void* Read(unsigned int size, void* destination) override {
        if (size > mLeft) SrThrow(SkEndOfFile(), nullptr);
        if (size > 0) std::memcpy(destination, mData, size);
        mData += size;
        mLeft -= size;
        return destination;
    }

  private:
    std::uint8_t const* mData;
    std::size_t mLeft;
};

/// A stream with a position over a copy of the bytes.
inline StRef<SmMemoryStream> MemoryStream(void const* data, std::size_t size) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream(data, static_cast<unsigned int>(size));
    return stream;
}

inline StRef<SmStream> StreamOf(std::uint8_t const* data, std::size_t size, bool forward) {
    if (forward) return StRef<SmStream>::Adopt(new ForwardStream(data, size));
    return StRef<SmStream>(MemoryStream(data, size).Get());
}
