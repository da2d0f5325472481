// Spooling as a whole: its set-up, its locks, its error codes.
#include "framewright/core/startup.h"
#include "framewright/spool/spool_locks.h"
#include "framewright/spool/spool_manager.h"
#include "framewright/spool/spool_preferences.h"
#include "framewright/thornmere/error.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitStringUtils);
SR_DEPENDS_ON(SrInitThread);

StCriticalSection spool::gRegistryLock;
StCriticalSection spool::gRowLock;
StCriticalSection spool::gStorageLock;

static long const gNoSpoolFileError = SrAllocateError(nullptr);
static long const gSpoolFilesFullError = SrAllocateError(nullptr);
static SmSpoolManager* gSpoolManager = nullptr;

long SkNoSpoolFileErrC() {
    return gNoSpoolFileError;
}
long SkSpoolFilesFullErrC() {
    return gSpoolFilesFullError;
}

SmSpoolManager* SrGetGlobalSpoolManager() {
    return gSpoolManager;
}

void spool::RequireFirstClassThread() {
    if (!ScThread::InFirstClassThread()) SrThrow(SkNotFirstClassThread(), nullptr);
}

void SrInitializeGlobalSpoolManager(bool shuttingDown) {
    if (shuttingDown) {
        spool::DisposePreferences();
        SmSpoolManager* const manager = gSpoolManager;
        gSpoolManager = nullptr;
        if (manager) manager->ReleaseReference();
        return;
    }
    spool::MakePreferences();
    if (gSpoolManager) return;
    gSpoolManager = SmSpoolManager::New();
    SrThrowIfNIL(gSpoolManager);
}
