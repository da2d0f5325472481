// The framework's allocator for standard containers: a refusal throws -108 and passes the allocation gate.
#pragma once

#include <cstddef>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

template <class T>
struct ScFrameworkAllocator {
    using value_type = T;

    ScFrameworkAllocator() = default;
    template <class Other>
    ScFrameworkAllocator(ScFrameworkAllocator<Other> const&) {}

    T* allocate(std::size_t count) {
        void* block = SrAllocatePointer(count * sizeof(T));
        SrThrowIfNIL(block);
        return static_cast<T*>(block);
    }
    void deallocate(T* block, std::size_t count) noexcept { SrDeallocatePointer(block, count * sizeof(T)); }

    friend bool operator==(ScFrameworkAllocator, ScFrameworkAllocator) { return true; }
};
