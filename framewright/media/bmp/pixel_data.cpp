#include "framewright/media/bmp/pixel_data.h"

#include <algorithm>
#include <cstring>

#include "framewright/media/ordered_stream.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/stream.h"

namespace bmp {

namespace {

/// How much is asked first of a stream that does not tell what it holds.
constexpr std::uint64_t kFirstBytes = 0x10000;

}  // namespace

ScPixelData::ScPixelData(SmStream* stream, std::uint64_t claimed) {
    std::uint64_t limit = std::min<std::uint64_t>(claimed, UINT32_MAX);
    std::uint64_t held = 0;
    bool const known = stream->GetRemaining(held);
    if (known) limit = std::min(limit, held);
    try {
        while (mSize < limit) {
            Grow(known ? limit : std::min(limit, std::max(kFirstBytes, std::uint64_t{mSize} * 2)));
            auto const wanted = static_cast<unsigned int>(mCapacity - mSize);
            unsigned int const came = std::min(SrStreamIn(stream, mBytes + mSize, wanted), wanted);
            mSize += came;
            if (came < wanted) break;
        }
    } catch (...) {
        SrDeallocatePointer(mBytes, mCapacity);
        throw;
    }
}

ScPixelData::~ScPixelData() {
    SrDeallocatePointer(mBytes, mCapacity);
}

void ScPixelData::Grow(std::size_t capacity) {
    void* const grown = SrAllocatePointer(capacity);
    SrThrowIfNIL(grown);
    if (mSize > 0) std::memcpy(grown, mBytes, mSize);
    SrDeallocatePointer(mBytes, mCapacity);
    mBytes = static_cast<unsigned char*>(grown);
    mCapacity = capacity;
}

unsigned char const* ScPixelData::Bytes(std::uint64_t at, std::size_t count) {
    std::size_t const there = at < mSize ? std::min<std::size_t>(count, mSize - at) : 0;
    if (there == count) return mBytes + at;
    if (there == 0 && count <= mZeros) return mPadded.data();
    mZeros = there == 0 ? count : 0;
    mPadded.resize(std::max(mPadded.size(), count));
    if (there > 0) std::memcpy(mPadded.data(), mBytes + at, there);
    std::memset(mPadded.data() + there, 0, count - there);
    return mPadded.data();
}

}  // namespace bmp
