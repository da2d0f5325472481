#include "framewright/thornmere/memory.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

std::atomic<StAllocationGate> gGate{nullptr};

/// What a handle points to: the master pointer, and behind it what giving the block back needs.
struct StMaster {
    void* block;
    std::size_t size;
};

StMaster* MasterOf(void** handle) {
    return reinterpret_cast<StMaster*>(handle);
}

/// The start of a small text file, as the system's status files are; empty when it cannot be read.
template <std::size_t N>
void ReadStatusText(char const* path, char (&text)[N]) {
    text[0] = '\0';
    int const file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    ssize_t const count = read(file, text, N - 1);
    close(file);
    text[count > 0 ? count : 0] = '\0';
}

std::uint64_t FreePhysicalMemory() {
    char text[1024];
    ReadStatusText("/proc/meminfo", text);
    if (char const* line = std::strstr(text, "MemAvailable:")) {
        return std::strtoull(line + std::strlen("MemAvailable:"), nullptr, 10) * 1024;
    }
    long const pages = sysconf(_SC_AVPHYS_PAGES);
    long const pageSize = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? std::uint64_t(pages) * std::uint64_t(pageSize) : 0;
}

std::uint64_t RoomBelowProcessLimit() {
    rlimit limit;
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return std::numeric_limits<std::uint64_t>::max();
    }
    char text[128];
    ReadStatusText("/proc/self/statm", text);
    std::uint64_t const used = std::strtoull(text, nullptr, 10) * std::uint64_t(sysconf(_SC_PAGESIZE));
    return limit.rlim_cur > used ? limit.rlim_cur - used : 0;
}

}  // namespace

void* SrAllocatePointer(std::size_t size) {
    StAllocationGate const gate = gGate.load(std::memory_order_acquire);
    if (gate && !gate(size)) return nullptr;
    if (size > std::size_t(PTRDIFF_MAX)) return nullptr;
    return std::malloc(size ? size : 1);
}

void* SrDeallocatePointer(void* block, std::size_t) {
    std::free(block);
    return nullptr;
}

void** SrAllocateHandle(std::size_t size) {
    auto* master = static_cast<StMaster*>(SrAllocatePointer(sizeof(StMaster)));
    if (!master) return nullptr;
    *master = {SrAllocatePointer(size), size};
    if (!master->block) {
        SrDeallocatePointer(master, sizeof(StMaster));
        return nullptr;
    }
    return &master->block;
}

void** SrDeallocateHandle(void** handle) {
    if (handle) {
        StMaster* master = MasterOf(handle);
        SrDeallocatePointer(master->block, master->size);
        SrDeallocatePointer(master, sizeof(StMaster));
    }
    return nullptr;
}

void SrDeallocateIfHandle(void**& handle) {
    handle = SrDeallocateHandle(handle);
}

std::size_t SrHandleSize(void** handle) {
    return handle ? MasterOf(handle)->size : 0;
}

void SrSwapBytes(void* a, void* b, std::size_t size) {
    auto* first = static_cast<unsigned char*>(a);
    std::swap_ranges(first, first + size, static_cast<unsigned char*>(b));
}

std::size_t SrTotalFreeMemory(bool, bool, bool) {
    return std::size_t(std::min(FreePhysicalMemory(), RoomBelowProcessLimit()));
}

void SrSetAllocationGate(StAllocationGate gate) {
    gGate.store(gate, std::memory_order_release);
}
