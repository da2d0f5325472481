// How the library comes to life. Source files declare, by triggers, the set-up routines they depend on; the
// framework runs each declared routine once with false after the last static initialiser, and in reverse order
// with true before the first static destructor.
#pragma once

#include <vector>

#include "framewright/thornmere/export.h"

using StInitializerRoutine = void (*)(bool terminate);
/// The library only ever passes 0.
using StInitPriority = int;

/// One per set-up routine, shared by all its triggers. Constant-initialised, so a trigger may mark it at any
/// moment of the load stage.
struct StInitializerRecord {
    unsigned int triggers = 0;  ///< how many triggers name the routine
    bool ran = false;           ///< whether the routine has run with false and not yet with true
};

/// One per source file and routine: a global object that says that this file needs that routine.
class FRAMEWRIGHT_EXPORT StInitializerTrigger {
  public:
    StInitializerTrigger(StInitializerRecord& record, StInitializerRoutine routine, unsigned int count,
                         StInitPriority priority, char const* firstName, char const* secondName);
};

/// The names of the routines that the last set-up ran, in the order in which they ran.
FRAMEWRIGHT_EXPORT std::vector<char const*> SrGetInitializerNames();
