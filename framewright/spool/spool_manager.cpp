#include "framewright/spool/spool_manager.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <thread>

#include "framewright/spool/imager_spool.h"
#include "framewright/spool/spool_file.h"
#include "framewright/spool/spool_locks.h"
#include "framewright/spool/t_name.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/numbers.h"

using spool::StHold;

namespace {

constexpr unsigned int kMaximumFileSize = 0x20000000;

void SetTickName(StFileSpec& spec, std::uint32_t tick) {
    spec.SetFileName(spool::StTName(tick).text);
}

struct StDisposeRecord {
    void operator()(StSpoolFile* record) const {
        record->~StSpoolFile();
        SrDeallocatePointer(record, sizeof(StSpoolFile));
    }
};
using RecordOwner = std::unique_ptr<StSpoolFile, StDisposeRecord>;

RecordOwner NewRecord() {
    void* const memory = SrAllocatePointer(sizeof(StSpoolFile));
    SrThrowIfNIL(memory);
    return RecordOwner(new (memory) StSpoolFile);
}

}  // namespace

SM_DEFINE_CLASS(SmSpoolManager);

SmSpoolManager::SmSpoolManager() = default;
SmSpoolManager::~SmSpoolManager() = default;

void SmSpoolManager::CloneFrom(SmSpoolManager const& other) {
    SmObject::CloneFrom(other);
}

void SmSpoolManager::Free() {
    {
        StHold const registry(spool::gRegistryLock);
        StHold const storage(spool::gStorageLock);
        for (ScImagerSpool* spooler : mSpoolers) {
            if (spooler->mManager == this) spooler->mManager = nullptr;
        }
        mSpoolers = ScVector<ScImagerSpool*>();
        for (StSpoolFile* record : mSpoolFiles) {
            record->Remove();
            RecordOwner const last(record);
        }
        mSpoolFiles = ScVector<StSpoolFile*>();
    }
    SmObject::Free();
}

// --- pressure

unsigned int SmSpoolManager::UseLessMemory(unsigned int bytes) {
    if (!ScThread::InFirstClassThread()) return 0;
    StHold const registry(spool::gRegistryLock, StHold::Try{});
    if (!registry || mSpoolers.empty()) return 0;

    ScImagerSpool* oldestSpooler = mSpoolers.front();
    std::uint32_t oldest = oldestSpooler->LastUse();
    std::uint32_t newest = oldest;
    for (ScImagerSpool* spooler : mSpoolers) {
        std::uint32_t const lastUse = spooler->LastUse();
        if (lastUse < oldest) {
            oldest = lastUse;
            oldestSpooler = spooler;
        }
        newest = std::max(newest, lastUse);
    }

    std::uint64_t freed = 0;
    try {
        freed = oldestSpooler->EvictRows(bytes);
        std::uint32_t const range = newest - oldest;
        for (std::uint32_t quarter = 0; quarter < 4 && freed < bytes; ++quarter) {
            std::uint32_t const low = oldest + (quarter * range >> 2);
            std::uint32_t const high = oldest + ((quarter + 1) * range >> 2);
            for (ScImagerSpool* spooler : mSpoolers) {
                if (freed >= bytes) break;
                std::uint32_t const lastUse = spooler->LastUse();
                if (lastUse > low && lastUse <= high)
                    freed += spooler->EvictRows(static_cast<unsigned int>(bytes - freed));
            }
        }
    } catch (std::exception const&) {
        // What has been given back counts; whoever needs a place in a file meets the error again.
    }
    return static_cast<unsigned int>(
        std::min<std::uint64_t>(freed, std::numeric_limits<std::uint32_t>::max()));
}

unsigned int SmSpoolManager::AvailableMemory(float fraction) const {
    auto const part = static_cast<float>(fraction * 0.9);
    auto const free = static_cast<double>(SrTotalFreeMemory(true, true, true));
    auto const estimate = static_cast<std::uint32_t>(SrITrunc(static_cast<float>(part * free)));
    std::uint32_t const room = mMemoryLimit - MemoryInUse();
    return std::min(estimate, room);
}

// --- spoolers

void SmSpoolManager::AddSpooler(ScImagerSpool* spooler) {
    StHold const registry(spool::gRegistryLock);
    mSpoolers.push_back(spooler);
}

void SmSpoolManager::RemoveSpooler(ScImagerSpool* spooler) {
    StHold const registry(spool::gRegistryLock);
    auto* const entry = std::find(mSpoolers.begin(), mSpoolers.end(), spooler);
    if (entry != mSpoolers.end()) mSpoolers.erase(entry);
}

void* SmSpoolManager::Allocate(unsigned int bytes) {
    void* const memory = SrAllocatePointer(bytes);
    if (memory) mMemoryInUse.fetch_add(bytes, std::memory_order_relaxed);
    return memory;
}

void* SmSpoolManager::Deallocate(void* memory, unsigned int bytes) {
    mMemoryInUse.fetch_sub(bytes, std::memory_order_relaxed);
    return SrDeallocatePointer(memory, bytes);
}

// --- spool files

void SmSpoolManager::AddSpoolFile(StFileSpec const& spec, unsigned int maximumSize) {
    spool::RequireFirstClassThread();
    StHold const registry(spool::gRegistryLock);
    if (mSpoolFiles.size() > static_cast<std::size_t>(std::numeric_limits<short>::max()))
        SrThrow(SkFileParameter(), nullptr);
    RecordOwner record = NewRecord();
    StFileSpec place = spec;
    SetTickName(place, SrGetTickCount());
    place.SetExtension("STch");
    record->Create(place, maximumSize);
    try {
        // Rows are written meanwhile by threads that hold the storage lock alone.
        StHold const storage(spool::gStorageLock);
        mSpoolFiles.push_back(record.get());
    } catch (...) {
        record->Remove();
        throw;
    }
    record.release();
}

StSpoolFile& SmSpoolManager::FileAt(short index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= mSpoolFiles.size())
        SrThrow(SkFileParameter(), nullptr);
    return *mSpoolFiles[static_cast<std::size_t>(index)];
}

unsigned int SmSpoolManager::WriteRow(short& fileIndex, unsigned int& position, void const* row,
                                      unsigned int bytes) {
    spool::RequireFirstClassThread();
    for (std::size_t i = 0; i < mSpoolFiles.size(); ++i) {
        if (!mSpoolFiles[i]->Write(row, bytes, position)) continue;
        fileIndex = static_cast<short>(i);
        return bytes;
    }
    for (std::size_t i = 0; i < mSpoolFiles.size(); ++i) {
        if (!mSpoolFiles[i]->WriteInGap(row, bytes, position)) continue;
        fileIndex = static_cast<short>(i);
        return bytes;
    }
    bool const none = mSpoolFiles.empty();
    ScMessageBuzzStrings message(SkAlertStrings(), none ? 4 : 5, 1, 1, SkSimpleAlert());
    SrThrow(none ? SkNoSpoolFileErrC() : SkSpoolFilesFullErrC(), &message);
}

void SmSpoolManager::ReadRow(short fileIndex, unsigned int position, void* row, unsigned int bytes) {
    spool::RequireFirstClassThread();
    StSpoolFile& file = FileAt(fileIndex);
    file.Read(position, row, bytes);
    file.Free(position, bytes);
}

void SmSpoolManager::FreeExtent(short fileIndex, unsigned int position, unsigned int bytes) {
    spool::RequireFirstClassThread();
    FileAt(fileIndex).Free(position, bytes);
}

// --- rows of spoolers in spool files

void SmSpoolManager::WriteSpooledRow(StSpoolRow& row, unsigned int bytes) {
    WriteRow(row.fileIndex, row.filePosition, row.data.load(std::memory_order_relaxed), bytes);
    FileAt(row.fileIndex).held.Hold(row, bytes);
}

void SmSpoolManager::ReadSpooledRow(StSpoolRow& row, void* memory, unsigned int bytes) {
    ReadRow(row.fileIndex, row.filePosition, memory, bytes);
    FileAt(row.fileIndex).held.Release(row);
}

void SmSpoolManager::FreeSpooledRow(StSpoolRow& row, unsigned int bytes) {
    FreeExtent(row.fileIndex, row.filePosition, bytes);
    FileAt(row.fileIndex).held.Release(row);
}

void SmSpoolManager::ForgetSpooledRow(StSpoolRow& row) {
    FileAt(row.fileIndex).Forget(row);
}

// --- what hosts call

void SrAddImagerSpoolFileInFolder(StFileSpec const& folder) {
    spool::RequireFirstClassThread();
    SmSpoolManager* const manager = SrGetGlobalSpoolManager();
    if (!manager) return;
    StFileSpec place = folder;
    auto const mayBeMissing = [](long result) {
        if (result != SkNoError() && result != SkFileMissing()) SrThrow(result, nullptr);
    };
    mayBeMissing(SrFindFolder(place, 2, false));
    mayBeMissing(place.ConcatFileName("Temp"));

    constexpr int kTries = 7;
    std::uint32_t tick = SrGetTickCount();
    for (int i = 0; i < kTries; ++i, ++tick) {
        SetTickName(place, tick);
        try {
            manager->AddSpoolFile(place, kMaximumFileSize);
            return;
        } catch (std::exception const&) {
            // The name is made of the tick: a later one may be free.
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    SetTickName(place, tick);
    manager->AddSpoolFile(place, kMaximumFileSize);
}
