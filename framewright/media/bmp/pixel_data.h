// The pixel data of a BMP file in memory.
#pragma once

#include <cstddef>
#include <cstdint>

#include "framewright/thornmere/vector.h"

class SmStream;

namespace bmp {

/// What a stream holds of the bytes that a header claims. All bytes behind those read as 0, so a short file
/// is a picture that ends in zeros.
class ScPixelData {
  public:
    /// Reads up to `claimed` bytes from where the stream stands. The buffer is no larger than what the stream
    /// holds; -108 when memory refuses it.
    ScPixelData(SmStream* stream, std::uint64_t claimed);
    ScPixelData(ScPixelData const&) = delete;
    ScPixelData& operator=(ScPixelData const&) = delete;
    ~ScPixelData();

    /// How many bytes there are.
    std::uint64_t Size() const { return mSize; }
    unsigned char operator[](std::uint64_t at) const { return at < mSize ? mBytes[at] : 0; }
    /// `count` bytes from `at` on; borrowed, valid until the next call.
    unsigned char const* Bytes(std::uint64_t at, std::size_t count);

  private:
    void Grow(std::size_t capacity);

    unsigned char* mBytes = nullptr;
    std::size_t mCapacity = 0;
    std::size_t mSize = 0;
    ScVector<unsigned char> mPadded;  ///< a copy of bytes that run over the end
    std::size_t mZeros = 0;           ///< how many of them, from the first on, are known to be 0
};

}  // namespace bmp
