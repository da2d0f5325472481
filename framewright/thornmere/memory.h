// The framework's allocator: every block that frames, objects and tables live in passes here, so a host can
// watch or cap it with one gate. Blocks are given back with the size they were asked with. Any thread may
// allocate and give back.
#pragma once

#include <cstddef>

#include "framewright/thornmere/export.h"

/// A block of `size` bytes aligned for any type, or null when the gate or the system refuses it.
/// Size 0 gives a block of its own. The contents are not set.
FRAMEWRIGHT_EXPORT void* SrAllocatePointer(std::size_t size);
/// Gives a block back; `size` is what it was allocated with. Null is allowed. Returns null, so that callers
/// can store the result over their pointer.
FRAMEWRIGHT_EXPORT void* SrDeallocatePointer(void* block, std::size_t size);
/// The same through a reference: frees the block if there is one and clears the pointer.
template <class T>
void SrDeallocateIfPointer(T*& block, std::size_t size) {
    SrDeallocatePointer(block, size);
    block = nullptr;
}

/// A relocatable block: a pointer to a master pointer. Null when refused. The gate is asked for the master
/// pointer's own small block first, then for `size`.
FRAMEWRIGHT_EXPORT void** SrAllocateHandle(std::size_t size);
/// Gives a handle back; null is allowed. Returns null.
FRAMEWRIGHT_EXPORT void** SrDeallocateHandle(void** handle);
FRAMEWRIGHT_EXPORT void SrDeallocateIfHandle(void**& handle);
/// The size that the handle was allocated with; 0 for null.
FRAMEWRIGHT_EXPORT std::size_t SrHandleSize(void** handle);

/// Exchanges two blocks of `size` bytes that do not overlap.
FRAMEWRIGHT_EXPORT void SrSwapBytes(void* a, void* b, std::size_t size);

/// Bytes of memory that the system could still give to this process: the physical memory that is free or can
/// be freed, cut to what the process's own limit leaves. The three flags (purge, compact, include temporary)
/// have no meaning on this system.
FRAMEWRIGHT_EXPORT std::size_t SrTotalFreeMemory(bool purge, bool compact, bool temporary);

/// Asked before every framework allocation with exactly the size that was asked for; false refuses it, true
/// allows it. Null, the default, allows all. Called on the thread that allocates; it must not allocate from
/// the framework itself.
using StAllocationGate = bool (*)(std::size_t size);
FRAMEWRIGHT_EXPORT void SrSetAllocationGate(StAllocationGate gate);
