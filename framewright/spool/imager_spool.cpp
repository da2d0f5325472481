#include "framewright/spool/imager_spool.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "framewright/core/startup.h"
#include "framewright/spool/spool_locks.h"
#include "framewright/spool/spool_manager.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

using spool::StHold;

namespace {

/// A block keeps its rows while they are few: below this number only the single oldest row is evicted.
constexpr long kFewRows = 8;

/// So many rows are one group.
constexpr long kRowsPerGroup = 64;

/// No tick is later.
constexpr std::uint32_t kNoTick = std::numeric_limits<std::uint32_t>::max();

std::size_t GroupsOf(long rows) {
    return static_cast<std::size_t>((rows + kRowsPerGroup - 1) / kRowsPerGroup);
}

std::size_t TableBytes(long rows) {
    return static_cast<std::size_t>(rows) * sizeof(StSpoolRow) + GroupsOf(rows) * sizeof(StSpoolRowGroup);
}

StSpoolRow* NewTable(long rows) {
    if (rows < 0 || rows > INT32_MAX) SrThrow(SkMemoryFull(), nullptr);
    void* const table = SrAllocatePointer(TableBytes(rows));
    SrThrowIfNIL(table);
    auto* const first = static_cast<StSpoolRow*>(table);
    std::uninitialized_value_construct_n(first, rows);
    std::uninitialized_value_construct_n(reinterpret_cast<StSpoolRowGroup*>(first + rows), GroupsOf(rows));
    return first;
}

SmSpoolManager* EnsureManager() {
    if (!SrGetGlobalSpoolManager()) SrInitializeGlobalSpoolManager(false);
    SmSpoolManager* const manager = SrGetGlobalSpoolManager();
    SrThrowIfNIL(manager);
    return manager;
}

bool IsSpooled(StSpoolRow const& row) {
    return !row.data && row.filePosition != 0;
}

bool IsUnlocked(StSpoolRow const& row) {
    return row.lockCount == 0;
}

void* DataOf(StSpoolRow const& row) {
    return row.data.load(std::memory_order_relaxed);
}

}  // namespace

// --- life

ScImagerSpool::~ScImagerSpool() {
    TearDown();
}

void ScImagerSpool::ISpooler(long rows, unsigned int rowBytes, void*) {
    TearDown();
    Start(rows, rowBytes);
}

void ScImagerSpool::Resize(long rows, unsigned int rowBytes, void*) {
    if (HasSpooledRows()) spool::RequireFirstClassThread();
    Stop();
    Start(rows, rowBytes);
}

void ScImagerSpool::TearDown() {
    Stop();
    mLastUse = 0;
    mContiguousCount = 0;
}

void ScImagerSpool::Start(long rows, unsigned int rowBytes) {
    if (rowBytes > static_cast<unsigned int>(INT32_MAX)) SrThrow(SkMemoryFull(), nullptr);
    mRows = NewTable(rows);
    mGroups = reinterpret_cast<StSpoolRowGroup*>(mRows + rows);
    mCount = static_cast<std::int32_t>(rows);
    mRowBytes = rowBytes;
    try {
        mManager = EnsureManager();
        mManager->AddSpooler(this);  // last: other threads may evict from now on
    } catch (...) {
        mManager = nullptr;
        ReleaseTable();
        throw;
    }
}

void ScImagerSpool::Stop() {
    // Once the manager knows it no longer, no other thread works on this spooler.
    if (mManager) mManager->RemoveSpooler(this);
    ReleaseStorage();
    ReleaseTable();
    mManager = nullptr;
}

void ScImagerSpool::ReleaseTable() {
    SrDeallocatePointer(mRows, TableBytes(mCount));
    mRows = nullptr;
    mGroups = nullptr;
    mCount = 0;
    mRowBytes = 0;
}

void ScImagerSpool::ReleaseStorage() {
    StHold const storage(spool::gStorageLock);
    ReleaseRows();
    if (mBlock) Deallocate(mBlock, BlockBytes());
    mBlock = nullptr;
}

void ScImagerSpool::ReleaseRows() {
    bool const mayFree = ScThread::InFirstClassThread();
    for (long i = 0; i < mCount; ++i) {
        StSpoolRow& row = mRows[i];
        if (DataOf(row)) {
            DropMemory(i);
        } else if (row.filePosition != 0 && mManager) {
            if (mayFree)
                mManager->FreeSpooledRow(row, mRowBytes);
            else
                mManager->ForgetSpooledRow(row);
        }
        row.filePosition = 0;
    }
    mContiguous = false;
    mLent = nullptr;
}

void ScImagerSpool::BindRows(void* start, unsigned int) {
    StHold const storage(spool::gStorageLock);
    if (HasSpooledRows()) spool::RequireFirstClassThread();
    // Who asked for contiguous rows has their addresses.
    if (IsContiguous())
        ReleaseRows();
    else
        ReleaseStorage();
    mLent = static_cast<std::byte*>(start);
    for (long i = 0; i < mCount; ++i) {
        StSpoolRow& row = mRows[i];
        SetData(i, start ? PlaceIn(mLent, i) : nullptr);
        row.lastUse = 0;
        row.lockCount = 0;
    }
}

bool ScImagerSpool::HasSpooledRows() const {
    StHold const storage(spool::gStorageLock);
    return mManager && std::any_of(mRows, mRows + mCount, IsSpooled);
}

// --- memory

void* ScImagerSpool::Allocate(std::uint64_t bytes) const {
    if (bytes > std::numeric_limits<std::uint32_t>::max()) return nullptr;
    auto const size = static_cast<unsigned int>(bytes);
    return mManager ? mManager->Allocate(size) : SrAllocatePointer(size);
}

void ScImagerSpool::Deallocate(void* memory, std::uint64_t bytes) const {
    auto const size = static_cast<unsigned int>(bytes);
    if (mManager)
        mManager->Deallocate(memory, size);
    else
        SrDeallocatePointer(memory, size);
}

inline bool ScImagerSpool::LiesIn(std::byte* block, long row) const {
    return block && DataOf(mRows[row]) == PlaceIn(block, row);
}

void ScImagerSpool::SetData(long row, void* data) {
    bool const was = DataOf(mRows[row]) != nullptr;
    bool const is = data != nullptr;
    std::uint16_t& count = mGroups[row / kRowsPerGroup].resident;
    count = static_cast<std::uint16_t>(count + is - was);
    mRows[row].data.store(data, std::memory_order_relaxed);
}

void ScImagerSpool::DropMemory(long row) {
    if (!LiesIn(mBlock, row) && !LiesIn(mLent, row)) Deallocate(DataOf(mRows[row]), mRowBytes);
    SetData(row, nullptr);
}

// --- into memory

void ScImagerSpool::Touch(long row) {
    std::uint32_t const now = SrGetTickCount();
    mLastUse.store(now, std::memory_order_relaxed);
    mRows[row].lastUse = now;
    std::uint32_t& notOlder = mGroups[row / kRowsPerGroup].notOlder;
    notOlder = std::min(notOlder, now);
}

void* ScImagerSpool::Loaded(long row) const {
    const_cast<ScImagerSpool*>(this)->LoadRow(row);
    return DataOf(mRows[row]);
}

void ScImagerSpool::ReadBack(StSpoolRow& row, void* memory) {
    if (row.filePosition == 0) return;
    if (!mManager) SrThrow(SkFileMissing(), nullptr);  // the files went with the manager
    mManager->ReadSpooledRow(row, memory, mRowBytes);
}

void ScImagerSpool::LoadRow(long index) {
    StSpoolRow& row = mRows[index];
    StHold storage(spool::gStorageLock);
    if (!DataOf(row)) {
        bool const inBlock = mBlock != nullptr;
        void* memory = inBlock ? PlaceIn(mBlock, index) : Allocate(mRowBytes);
        if (!memory) {
            storage.Exit();
            EvictRows(mRowBytes);
            memory = Allocate(mRowBytes);
            SrThrowIfNIL(memory);
            storage.Enter();
        }
        if (DataOf(row)) {
            Deallocate(memory, mRowBytes);  // another thread loaded the row while the lock was free
        } else {
            try {
                ReadBack(row, memory);
            } catch (...) {
                if (!inBlock) Deallocate(memory, mRowBytes);
                throw;
            }
            SetData(index, memory);
        }
    }
    Touch(index);
}

void* ScImagerSpool::Lock(long index, SmImagerFrame*) {
    StSpoolRow& row = mRows[index];
    StHold const rows(spool::gRowLock);
    ++row.lockCount;
    // Held from the test on, so that no eviction takes the row between.
    StHold const storage(spool::gStorageLock);
    if (DataOf(row))
        Touch(index);
    else
        LoadRow(index);
    return DataOf(row);
}

void ScImagerSpool::Unlock(long row) {
    StHold const rows(spool::gRowLock);
    --mRows[row].lockCount;
}

bool ScImagerSpool::LockRows(long first, long last, SmImagerFrame* frame) {
    for (long row = first; row <= last; ++row) {
        try {
            Lock(row, frame);
        } catch (std::exception const&) {
            for (; row > first; --row)
                Unlock(row);
            return false;
        }
    }
    return true;
}

void ScImagerSpool::UnlockRows(long first, long last) {
    for (long row = first; row <= last; ++row)
        Unlock(row);
}

void ScImagerSpool::GiveUpLocks(long first, unsigned int wanted) {
    {
        // A host's own layer may have refused without a lock.
        StHold const rows(spool::gRowLock);
        if (!IsUnlocked(mRows[first])) --mRows[first].lockCount;
    }
    try {
        EvictRows(wanted);
    } catch (std::exception const&) {
        // Whoever is refused memory next meets the error again.
    }
}

// --- rows in one block

void ScImagerSpool::ForceContiguous() {
    spool::RequireFirstClassThread();
    StHold const storage(spool::gStorageLock);
    if (!mContiguous) {
        if (!mBlock) mBlock = static_cast<std::byte*>(Allocate(BlockBytes()));
        SrThrowIfNIL(mBlock);
        for (long i = 0; i < mCount; ++i) {
            StSpoolRow& row = mRows[i];
            std::byte* const place = PlaceIn(mBlock, i);
            if (LiesIn(mBlock, i)) continue;
            if (void const* const data = DataOf(row)) {
                std::memcpy(place, data, mRowBytes);
                DropMemory(i);
            } else if (row.filePosition != 0) {
                ReadBack(row, place);
                Touch(i);
            }
            SetData(i, place);
        }
        mContiguous = true;
    }
    ++mContiguousCount;
}

void ScImagerSpool::ReleaseContiguous() {
    StHold const storage(spool::gStorageLock);
    if (mContiguousCount > 0) --mContiguousCount;
}

// --- out of memory

inline bool ScImagerSpool::MayLeave(long row) const {
    return DataOf(mRows[row]) && IsUnlocked(mRows[row]) && !LiesIn(mLent, row);
}

void ScImagerSpool::EvictRow(long row) {
    mManager->WriteSpooledRow(mRows[row], mRowBytes);
    DropMemory(row);
}

unsigned int ScImagerSpool::EvictBlock() {
    if (!std::all_of(mRows, mRows + mCount, IsUnlocked)) return 0;
    // A write that fails leaves the rows before it in the file and the others in the block: not all of them.
    mContiguous = false;
    for (long i = 0; i < mCount; ++i) {
        if (DataOf(mRows[i]) && !LiesIn(mLent, i)) EvictRow(i);
    }
    Deallocate(mBlock, BlockBytes());
    mBlock = nullptr;
    return static_cast<unsigned int>(BlockBytes());
}

template <class Visit>
void ScImagerSpool::ForEachResidentRow(long group, Visit visit) const {
    long left = mGroups[group].resident;
    for (long row = group * kRowsPerGroup; left > 0; ++row) {
        if (!DataOf(mRows[row])) continue;
        --left;
        visit(row);
    }
}

long ScImagerSpool::OldestRow() {
    long oldestRow = -1;
    std::uint32_t oldest = 0;
    auto const groups = static_cast<long>(GroupsOf(mCount));
    for (long group = 0; group < groups; ++group) {
        std::uint32_t& notOlder = mGroups[group].notOlder;
        if (oldestRow >= 0 && notOlder >= oldest) continue;
        notOlder = kNoTick;
        ForEachResidentRow(group, [&](long row) {
            std::uint32_t const lastUse = mRows[row].lastUse;
            if (lastUse == 0) return;  // a row never used has no age
            notOlder = std::min(notOlder, lastUse);
            if (!MayLeave(row) || (oldestRow >= 0 && lastUse >= oldest)) return;
            oldestRow = row;
            oldest = lastUse;
        });
    }
    return oldestRow;
}

ScImagerSpool::StAges ScImagerSpool::AgesOfRows() const {
    StAges ages;
    auto const groups = static_cast<long>(GroupsOf(mCount));
    for (long group = 0; group < groups; ++group) {
        ages.resident += mGroups[group].resident;
        ForEachResidentRow(group, [&](long row) {
            if (!MayLeave(row)) return;
            ++ages.unlocked;
            ages.newest = std::max(ages.newest, mRows[row].lastUse);
        });
    }
    return ages;
}

unsigned int ScImagerSpool::EvictRows(unsigned int wanted) {
    StHold const storage(spool::gStorageLock, StHold::Try{});
    if (!storage || mContiguousCount != 0 || !mManager) return 0;
    if (mBlock) return EvictBlock();

    long const oldestRow = OldestRow();
    if (oldestRow < 0) return 0;
    if (wanted <= mRowBytes) {
        EvictRow(oldestRow);
        return mRowBytes;
    }
    StAges ages = AgesOfRows();
    std::uint32_t const oldest = mRows[oldestRow].lastUse;
    EvictRow(oldestRow);
    --ages.resident;
    std::uint64_t freed = mRowBytes;

    // The others by age in four bands, within a band in the order of rows.
    std::uint32_t const range = ages.newest - oldest;
    auto const enough = [&] { return ages.resident < kFewRows || freed >= wanted; };
    for (std::uint32_t quarter = 0; ages.unlocked >= 2 && quarter < 4 && !enough(); ++quarter) {
        std::uint32_t const low = oldest + (quarter * range >> 2);
        std::uint32_t const high = oldest + ((quarter + 1) * range >> 2);
        for (long i = 0; i < mCount && !enough(); ++i) {
            if (!MayLeave(i) || mRows[i].lastUse <= low || mRows[i].lastUse > high) continue;
            EvictRow(i);
            --ages.resident;
            freed += mRowBytes;
        }
    }
    return static_cast<unsigned int>(
        std::min<std::uint64_t>(freed, std::numeric_limits<std::uint32_t>::max()));
}
