// Spooling: rows that leave memory. Rows stay in memory in this build, so set-up makes the preferences alone.
#include "framewright/core/startup.h"
#include "framewright/spool/spool_preferences.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitStringUtils);
SR_DEPENDS_ON(SrInitThread);

void SrInitializeGlobalSpoolManager(bool shuttingDown) {
    if (shuttingDown)
        spool::DisposePreferences();
    else
        spool::MakePreferences();
}
