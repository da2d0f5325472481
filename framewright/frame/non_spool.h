// The spooler of a layer whose rows never leave memory: a table of row addresses and nothing else.
//
// A spooler is the second argument of SmImagerLayer. It knows where each row lies; the layer asks it for
// every row and never computes an address itself, which is what lets both kinds of storage share one
// template. A spooler offers the operations below under these names.
#pragma once

#include <cstddef>
#include <cstdint>

#include "framewright/thornmere/export.h"

class SmImagerFrame;

class FRAMEWRIGHT_EXPORT ScImagerNonSpool {
  public:
    /// Whether a row may be without memory until it is asked for. If so, the spooler allocates the rows and
    /// the layer brackets its work with locks; if not, the layer brings one block for all rows.
    static constexpr bool kRowsLeaveMemory = false;
    /// What the table takes for one row.
    static constexpr std::size_t kTableEntryBytes = sizeof(void*);

    ScImagerNonSpool() = default;
    ScImagerNonSpool(ScImagerNonSpool const&) = delete;
    ScImagerNonSpool& operator=(ScImagerNonSpool const&) = delete;
    ~ScImagerNonSpool();

    /// Makes a table of `rows` rows, -108 when memory is refused. With a base and row bytes that are not 0,
    /// row i lies at base + i * rowBytes; else no row has memory yet. `rowBytes` is a signed distance in the
    /// bits of an unsigned int: a picture stored from the bottom up has a negative one.
    void ISpooler(long rows, unsigned int rowBytes, void* base);
    /// The same for a table that exists. With the same number of rows and no base the rows stay where they
    /// are.
    void Resize(long rows, unsigned int rowBytes, void* base);
    /// Frees the table; the rows belong to the layer. ISpooler may follow.
    void TearDown();

    /// Puts row i at start + i * rowBytes; with a null start no row has memory.
    void BindRows(void* start, unsigned int rowBytes);

    // Where a row is. Rows always are in memory here, so locks have nothing to do. The frame is the layer.
    void* GetPtrRow(long row) const { return mRows[row]; }
    void* Lock(long row, SmImagerFrame*) { return mRows[row]; }
    void Unlock(long) {}
    bool LockRows(long, long, SmImagerFrame*) { return true; }
    void UnlockRows(long, long) {}
    void ForceContiguous() {}
    void ReleaseContiguous() {}
    bool IsContiguous() const { return true; }

  private:
    /// Takes a new table in place of the one there is, which stays when memory is refused.
    void SetTable(long rows);

    std::int32_t mCount = 0;
    void** mRows = nullptr;
};
