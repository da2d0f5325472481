// Linked last: its one object is built after all other static objects of the library and goes before them.
// (The dynamic linker counts how often the library is attached, so both happen once however often it is
// opened.)
#include "framewright/core/startup.h"
#include "framewright/thornmere/reference.h"

namespace {

struct StService {
    long const startupError = SrRunSetUp(core::StartupTable());

    ~StService() {
        // While there still is a spool manager for the rows of a frame among them.
        SrDisposeAutoObjects();
        SrRunShutDown(core::StartupTable());
    }
};

StService gService;

}  // namespace

long SrGetStartupError() {
    return gService.startupError;
}
