#include "framewright/thornmere/startup.h"

#include <exception>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/threads.h"

namespace {

constinit unsigned int gMarkedRecords = 0;

/// Runs one routine; 0, or the code of what it threw.
long Run(StInitializerRoutine routine, bool terminate) noexcept {
    try {
        routine(terminate);
        return SkNoError();
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        long const error = SrGetExceptionValues(exception, message);
        return error != SkNoError() ? error : SkInternalRefusal();
    } catch (...) {
        return SkInternalRefusal();
    }
}

}  // namespace

StInitializerTrigger::StInitializerTrigger(StInitializerRecord& record, StInitializerRoutine,
                                           unsigned int count, StInitPriority, char const*, char const*) {
    if (record.firstTrigger == 0) record.firstTrigger = ++gMarkedRecords;
    record.triggers += count;
}

long SrRunSetUp(std::span<StStartupRow const> rows) noexcept {
    unsigned int ran = 0;
    for (StStartupRow const& row : rows) {
        if (row.record->triggers == 0) continue;
        // Counted before it runs, so that a routine that fails half way is taken back too.
        row.record->ran = ++ran;
        if (long const error = Run(row.routine, false)) {
            SrRunShutDown(rows);
            return error;
        }
    }
    return SkNoError();
}

void SrRunShutDown(std::span<StStartupRow const> rows) noexcept {
    for (std::size_t i = rows.size(); i-- > 0;) {
        if (rows[i].record->ran == 0) continue;
        Run(rows[i].routine, true);
        rows[i].record->ran = 0;
    }
}

void SrInitMemory(bool terminate) {
    if (terminate) SrSetAllocationGate(nullptr);
}

void SrInitObjectBase(bool terminate) {
    if (terminate) SrDisposeAutoObjects();
}

void SrInitStorageManager(bool) {}

void SrInitStringUtils(bool) {}

void SrInitThread(bool terminate) {
    if (terminate) SrSetTickSource(nullptr);
}
