#include "framewright/frame/non_spool.h"

#include <cstddef>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

static std::size_t TableBytes(long rows) {
    return static_cast<std::size_t>(rows) * sizeof(void*);
}

static void** NewTable(long rows) {
    if (rows < 0 || rows > INT32_MAX) SrThrow(SkMemoryFull(), nullptr);
    void* table = SrAllocatePointer(TableBytes(rows));
    SrThrowIfNIL(table);
    return static_cast<void**>(table);
}

ScImagerNonSpool::~ScImagerNonSpool() {
    TearDown();
}

void ScImagerNonSpool::TearDown() {
    SrDeallocatePointer(mRows, TableBytes(mCount));
    mRows = nullptr;
    mCount = 0;
}

void ScImagerNonSpool::SetTable(long rows) {
    void** const table = NewTable(rows);
    TearDown();
    mRows = table;
    mCount = static_cast<std::int32_t>(rows);
}

void ScImagerNonSpool::ISpooler(long rows, unsigned int rowBytes, void* base) {
    SetTable(rows);
    BindRows(rowBytes ? base : nullptr, rowBytes);
}

void ScImagerNonSpool::Resize(long rows, unsigned int rowBytes, void* base) {
    bool const renew = !mRows || rows != mCount;
    if (renew) SetTable(rows);
    if (renew || base) BindRows(base, rowBytes);
}

void ScImagerNonSpool::BindRows(void* start, unsigned int rowBytes) {
    std::ptrdiff_t const distance = static_cast<std::int32_t>(rowBytes);
    for (long row = 0; row < mCount; ++row) {
        mRows[row] = start ? static_cast<std::byte*>(start) + row * distance : nullptr;
    }
}
