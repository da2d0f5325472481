// One spool file: four bytes of mark, then rows, each just its bytes. What lies where is known to the rows in
// memory alone, so a spool file means nothing to a later run. Files never shrink.
#pragma once

#include <cstdint>

#include "framewright/spool/held_places.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/vector.h"

/// Used under the storage lock (spool/spool_locks.h).
struct StSpoolFile {
    struct StExtent {
        std::uint32_t position;
        std::uint32_t length;
    };

    /// Creates the file, opens it and writes the mark; on a failure, which is thrown, no file is left.
    void Create(StFileSpec const& place, std::uint32_t maximum);
    /// Closes and deletes the file.
    void Remove();

    /// Finds a place for a row and writes it there. False when the file has none.
    bool Write(void const* row, std::uint32_t bytes, std::uint32_t& place);
    /// The same in the first gap between rows of spoolers, whatever the extents and the end of the data say.
    /// Places that the extents have lost are found again this way. False in a file where other callers have
    /// rows, since where those lie is known to nobody.
    bool WriteInGap(void const* row, std::uint32_t bytes, std::uint32_t& place);
    /// Reads without freeing; -39 when the file ends before the row does.
    void Read(std::uint32_t position, void* row, std::uint32_t bytes);
    void Free(std::uint32_t position, std::uint32_t bytes);
    /// The row of a spooler there is given up, and its place not freed.
    void Forget(StSpoolRow& row);

    unsigned int file = 0;           ///< 0 when closed
    ScVector<StExtent> freeExtents;  ///< as Free left them, which need not be in order
    std::uint32_t endOfData = 0;     ///< the first position never written
    std::uint32_t maximumSize = 0;
    StFileSpec spec;
    std::uint32_t bytesInUse = 0;
    spool::ScHeldPlaces held;

  private:
    bool WriteToExtent(StExtent const& extent, void const* row, std::uint32_t bytes);
    void WriteAt(std::uint32_t position, void const* row, std::uint32_t bytes);
};
