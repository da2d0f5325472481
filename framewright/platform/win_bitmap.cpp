#include "framewright/platform/win_bitmap.h"

#include <cstddef>

#include "framewright/thornmere/memory.h"

namespace {

/// Stands before the rows of a plain block, so that the block can be given back with its size.
struct alignas(std::max_align_t) StPlainBitmap {
    std::size_t bytes;
};

}  // namespace

void* SrCreateWinBitmap(long, long height, long bytes, long, long, void*& bitmap, void*& deviceContext,
                        ScColorMap<unsigned char, StRGBA32Pixel>*) {
    bitmap = nullptr;
    deviceContext = nullptr;
    long size = 0;
    if (height < 0 || bytes < 0 || __builtin_mul_overflow(height, bytes, &size) ||
        __builtin_add_overflow(size, long{sizeof(StPlainBitmap)}, &size)) {
        return nullptr;
    }
    void* const block = SrAllocatePointer(static_cast<std::size_t>(size));
    if (!block) return nullptr;
    auto* const plain = static_cast<StPlainBitmap*>(block);
    plain->bytes = static_cast<std::size_t>(size);
    bitmap = plain;
    return plain + 1;
}

void* SrDestroyWinBitmap(void*& bitmap, void*& deviceContext) {
    if (bitmap) SrDeallocatePointer(bitmap, static_cast<StPlainBitmap*>(bitmap)->bytes);
    bitmap = nullptr;
    deviceContext = nullptr;
    return nullptr;
}
