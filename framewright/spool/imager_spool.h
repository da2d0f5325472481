// The spooler of a layer whose rows can leave memory. Each row gets memory when it is first touched, goes to
// a spool file when memory runs short, and comes back when it is touched again. A row is the unit of both.
//
//     untouched    no memory, no place in a file
//     resident     in memory
//     spooled      in a spool file only
//
// It is the second argument of SmImagerLayer, as ScImagerNonSpool is; a host meets it through a frame that
// SrMakeFrame or its relatives made spooled. Spool files and the choice between spoolers are SmSpoolManager's
// (spool/spool_manager.h); docs/spooling.md tells how a host uses both.
//
// Threads. A spooler belongs to its frame and is used by one thread at a time, but for EvictRows, which
// SmSpoolManager::UseLessMemory calls from any first-class thread. A row that is locked stays where it is
// meanwhile. GetPtrRow alone keeps nothing: its address is good until another row of the spooler is touched
// and, where another thread answers memory pressure, for no time at all. That race is the price of an access
// without a lock; who must not lose it locks the row. Only first-class threads bring a spooled row back,
// elsewhere that throws -29299; untouched and resident rows are had on every thread.
//
// The rows' memory, the contiguous block and the row table pass the allocation gate, which may be asked while
// locks of the spooling are held: it must not touch frames itself.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "framewright/thornmere/export.h"

class SmImagerFrame;
class SmSpoolManager;

/// What a spooler knows of one row.
struct StSpoolRow {
    std::atomic<void*> data{nullptr};         ///< the row's memory; null when the row isn't in memory
    std::uint32_t lastUse = 0;                ///< tick of the last touch
    std::atomic<std::uint16_t> lockCount{0};  ///< a row with locks stays in memory; not checked for overflow
    std::int16_t fileIndex = 0;               ///< which of the manager's spool files
    /// Byte position in that file; 0 when the row has never been written. A row that came back keeps its old
    /// one, although the place is free: whether there is data is always asked first.
    std::uint32_t filePosition = 0;

    // While the row is spooled, its entry among the places that the file holds (spool/held_places.h).
    std::uint32_t heldBytes = 0;
    StSpoolRow* heldBefore = nullptr;
    StSpoolRow* heldBehind = nullptr;
};

/// What a spooler knows of some neighbouring rows together, so that the search for the oldest row, which runs
/// for each row that leaves, passes over most of a tall frame.
struct StSpoolRowGroup {
    std::uint16_t resident = 0;  ///< how many of the rows are in memory
    std::uint32_t notOlder = 0;  ///< no resident row has an earlier last use, but for 0; may be too early
};

class FRAMEWRIGHT_EXPORT ScImagerSpool {
  public:
    /// Rows are without memory until they are asked for: the spooler allocates them, and the layer brackets
    /// its work with locks.
    static constexpr bool kRowsLeaveMemory = true;
    /// What the table takes for one row.
    static constexpr std::size_t kTableEntryBytes = sizeof(StSpoolRow);

    ScImagerSpool() = default;
    ScImagerSpool(ScImagerSpool const&) = delete;
    ScImagerSpool& operator=(ScImagerSpool const&) = delete;
    ~ScImagerSpool();

    /// Makes a table of `rows` untouched rows of `rowBytes` bytes each and enters the spooler with the
    /// manager, which is made if there is none. `base` is ignored. -108 when memory is refused, for a
    /// negative number of rows and for row bytes that are negative as an int.
    void ISpooler(long rows, unsigned int rowBytes, void* base);
    /// Drops all contents and starts again. Calls of ForceContiguous stay counted. Off a first-class thread a
    /// spooler with spooled rows throws -29299 and is as before.
    void Resize(long rows, unsigned int rowBytes, void* base);
    /// Gives everything back and leaves the manager; ISpooler may follow. Does not throw: off a first-class
    /// thread the places of spooled rows stay taken until the manager goes.
    void TearDown();

    /// Binds row i to start + i * row bytes, memory that the caller lends: such rows count as resident, never
    /// used and not locked, and do not leave for a file. With a null start all rows are untouched. Either way
    /// the contents are dropped; a block that is in use stays for those who have its addresses. The distance
    /// is the spooler's row bytes. -29299 as for Resize.
    void BindRows(void* start, unsigned int rowBytes);

    /// The row's address. Resident: one load and one test; else the row is loaded (-108, -29299, or what the
    /// file says). Takes no lock and does not make the row younger.
    void* GetPtrRow(long row) const {
        void* const data = mRows[row].data.load(std::memory_order_relaxed);
        if (data) [[likely]]
            return data;
        return Loaded(row);
    }
    /// Keeps the row in memory until Unlock and gives its address. Locks count. After a failure, which is
    /// thrown, the lock is counted all the same: the caller gives it back. The frame is ignored.
    void* Lock(long row, SmImagerFrame* frame);
    void Unlock(long row);
    /// Locks the rows `first` to `last`, both included. False when one of them cannot be had; then all are
    /// unlocked again except `first`, which keeps one lock. Does not throw.
    bool LockRows(long first, long last, SmImagerFrame* frame);
    void UnlockRows(long first, long last);
    /// For who goes on after a LockRows that failed: gives back the lock that it left on `first`, and memory
    /// for `wanted` bytes, so that rows which were drawn in for nothing do not leave other frames without.
    /// Does not throw.
    void GiveUpLocks(long first, unsigned int wanted);

    /// Moves all rows into one block, row i at i * row bytes, where they stay at least until as many calls of
    /// ReleaseContiguous. The addresses that the rows had before are gone, also those of locked rows.
    /// -29299 off a first-class thread, -108 when memory is refused: nothing is evicted for it.
    void ForceContiguous();
    void ReleaseContiguous();
    /// Whether calls of ForceContiguous are outstanding.
    bool IsContiguous() const { return mContiguousCount != 0; }

    /// Writes rows to spool files, the least recently used ones first, to give back at least `wanted` bytes,
    /// and returns what was given back. That can be less: locked rows and rows in a block that is in use
    /// stay, below eight resident rows only one goes, and while another thread works on rows it is nothing.
    /// It can be more, since rows go whole, and a block that is no longer in use goes as a whole. A row that
    /// cannot be written stays, and the error is thrown.
    unsigned int EvictRows(unsigned int wanted);

    /// The tick of the last touch of any row, 0 before the first.
    std::uint32_t LastUse() const { return mLastUse.load(std::memory_order_relaxed); }

  private:
    friend SmSpoolManager;  // tells its spoolers when it goes

    /// The resident rows, as EvictRows looks at them when it wants more than one.
    struct StAges {
        long resident = 0;
        long unlocked = 0;
        std::uint32_t newest = 0;  ///< of the unlocked ones
    };

    std::uint64_t BlockBytes() const { return static_cast<std::uint64_t>(mCount) * mRowBytes; }
    std::byte* PlaceIn(std::byte* block, long row) const {
        return block + static_cast<std::ptrdiff_t>(row) * mRowBytes;
    }
    /// Whether the row's memory is its place in that block, which may be null.
    bool LiesIn(std::byte* block, long row) const;
    void* Allocate(std::uint64_t bytes) const;
    void Deallocate(void* memory, std::uint64_t bytes) const;
    void SetData(long row, void* data);
    /// The row has no memory any more; what it had of its own is given back.
    void DropMemory(long row);

    void* Loaded(long row) const;
    void LoadRow(long row);
    void ReadBack(StSpoolRow& row, void* memory);
    void Touch(long row);
    bool HasSpooledRows() const;
    void Start(long rows, unsigned int rowBytes);
    void Stop();
    /// All rows become untouched, and the block is given back.
    void ReleaseStorage();
    /// The same, but the block stays. Under the storage lock.
    void ReleaseRows();
    void ReleaseTable();
    /// Whether the row is in memory that eviction could give back.
    bool MayLeave(long row) const;
    template <class Visit>
    void ForEachResidentRow(long group, Visit visit) const;
    /// The least recently used row that may leave, the first of several; negative if there is none.
    long OldestRow();
    StAges AgesOfRows() const;
    void EvictRow(long row);
    unsigned int EvictBlock();

    std::int32_t mCount = 0;
    StSpoolRow* mRows = nullptr;
    StSpoolRowGroup* mGroups = nullptr;  ///< behind the table
    std::uint32_t mRowBytes = 0;
    SmSpoolManager* mManager = nullptr;
    std::atomic<std::uint32_t> mLastUse{0};
    std::int32_t mContiguousCount = 0;
    bool mContiguous = false;     ///< all rows lie in the block
    std::byte* mBlock = nullptr;  ///< may stand without the flag after a failure: with some of the rows then
    std::byte* mLent = nullptr;   ///< the caller's block that rows are bound to
};
