// The one manager of rows that leave memory: it knows every spooler and the spool files with their free
// space, counts the bytes that spooled frames hold in memory, and answers a host's wish to use less.
//
// The library watches nothing and starts no thread. Rows leave memory for two reasons only: a frame that is
// refused memory for a row makes room among its own rows, and a host calls UseLessMemory. Until a host has
// added a spool file no row can leave. docs/spooling.md is the page for hosts.
//
// Threads. UseLessMemory may be called from any thread and never waits. AddSpooler, RemoveSpooler and
// AddSpoolFile lock. WriteRow, ReadRow and FreeExtent are the spoolers' own and lock nothing: a caller of its
// own keeps other threads from spooling meanwhile. Only first-class threads touch spool files.
#pragma once

#include <atomic>
#include <cstdint>

#include "framewright/core/startup.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/vector.h"

class ScImagerSpool;
struct StSpoolFile;
struct StSpoolRow;

SM_CLASS(SmSpoolManager, SmObject, 0);
/// A clone has no spoolers and no files. With the manager its spool files go: rows that were spooled are lost
/// then, and touching one throws -43.
class FRAMEWRIGHT_EXPORT SmSpoolManager : public SmManaged<SmSpoolManager> {
    friend SmManaged<SmSpoolManager>;
    friend ScImagerSpool;

  public:
    /// Makes spoolers evict rows, the spooler that was touched longest ago first, until `bytes` are given
    /// back, and returns how many were. Fewer when there is no more to evict, when a row cannot be written
    /// (the error is dropped), and when another thread is busy with rows; more when the last row or block was
    /// larger than wanted. 0 off a first-class thread. Safe on any thread at any time: rows that are locked
    /// stay. Rows whose addresses are held without a lock do not (see spool/imager_spool.h).
    unsigned int UseLessMemory(unsigned int bytes);
    /// How many bytes the rows and blocks of spooled frames take in memory now, modulo 2^32.
    unsigned int MemoryInUse() const { return mMemoryInUse.load(std::memory_order_relaxed); }
    /// How many bytes may sensibly be taken for rows: nine tenths of `fraction` of what the system could
    /// still give, but no more than what the rows leave of the manager's limit of 1 GiB. The limit restricts
    /// nothing else.
    unsigned int AvailableMemory(float fraction) const;

    /// Makes a spool file of at most `maximumSize` bytes in the folder that `spec` lies in, under a name made
    /// of the tick: T0012345678.STch. -29299 off a first-class thread, -108 when memory is refused, -48 when
    /// the name is taken, or what creating and writing the file gives; then no file is left.
    void AddSpoolFile(StFileSpec const& spec, unsigned int maximumSize);

    // For spoolers.

    /// Enters a spooler, which is borrowed. -108 when memory is refused.
    void AddSpooler(ScImagerSpool* spooler);
    /// Removes it; one that is not there is no error.
    void RemoveSpooler(ScImagerSpool* spooler);
    /// Counted memory for rows; null when refused.
    void* Allocate(unsigned int bytes);
    /// Gives it back; returns null.
    void* Deallocate(void* memory, unsigned int bytes);

    /// Writes a row to the first place that takes it - file by file, free extents first, then the end of the
    /// data - and tells where that is. Returns `bytes`. A place that holds a row of a spooler is passed over,
    /// whatever the extents say. When no file is left, the gaps between rows of spoolers are used, in files
    /// that hold no others: extents lose places (see FreeExtent). -29299 off a first-class thread;
    /// SkNoSpoolFileErrC() or SkSpoolFilesFullErrC() with a message when no place was found; what the file
    /// gives when writing behind the data fails.
    unsigned int WriteRow(short& fileIndex, unsigned int& position, void const* row, unsigned int bytes);
    /// Reads a row back and frees its place. -29299 off a first-class thread, -39 when the file ends before
    /// the row does, -36 when it can't be read, -50 for a file that there is not; nothing is freed then.
    void ReadRow(short fileIndex, unsigned int position, void* row, unsigned int bytes);
    /// Frees a place, and joins it to the free extents beside it.
    ///
    /// A place that ends where a free extent begins, and begins where none ends, moves that extent up by
    /// `bytes` and makes it longer by as much, so that it no longer covers the place and reaches beyond its
    /// old end. It has always been so. The rows of spoolers are safe from it (see WriteRow); what other
    /// callers wrote there is not.
    ///
    /// -29299 off a first-class thread, -50 for a file that there is not. Where memory for one more extent is
    /// refused, the place stays unused until the manager goes.
    void FreeExtent(short fileIndex, unsigned int position, unsigned int bytes);

  protected:
    SmSpoolManager();
    ~SmSpoolManager() override;
    void CloneFrom(SmSpoolManager const& other);
    void Free() override;

  private:
    StSpoolFile& FileAt(short index) const;
    void AppendSpooler(ScImagerSpool* spooler);

    // The same for the row of a spooler, whose place is remembered as held.
    void WriteSpooledRow(StSpoolRow& row, unsigned int bytes);
    void ReadSpooledRow(StSpoolRow& row, void* memory, unsigned int bytes);
    void FreeSpooledRow(StSpoolRow& row, unsigned int bytes);
    /// The row goes off a first-class thread: its place is no longer held, but not freed.
    void ForgetSpooledRow(StSpoolRow& row);

    ScVector<ScImagerSpool*> mSpoolers;  ///< in order of registration
    ScVector<StSpoolFile*> mSpoolFiles;  ///< owned
    std::uint32_t mMemoryLimit = 0x40000000;
    std::atomic<std::uint32_t> mMemoryInUse{0};
};

/// The process's manager; null after shut-down.
FRAMEWRIGHT_EXPORT SmSpoolManager* SrGetGlobalSpoolManager();

/// Adds a spool file of at most 512 MiB in `folder`; call it again for more. The library never does it by
/// itself. A name that is taken is tried again under a later tick, eight times in all, and then thrown as
/// -48, as is whatever else prevents it. -29299 off a first-class thread; without a manager nothing happens.
FRAMEWRIGHT_EXPORT void SrAddImagerSpoolFileInFolder(StFileSpec const& folder);

/// Thrown when rows should leave memory and no spool file has been added.
FRAMEWRIGHT_EXPORT long SkNoSpoolFileErrC();
/// Thrown when no spool file has room for a row.
FRAMEWRIGHT_EXPORT long SkSpoolFilesFullErrC();
