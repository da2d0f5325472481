// How the library comes to life, and how it goes. There is no call to open or close it.
//
//   load stage   the static initialisers of the source files run, in the order in which the files are linked;
//                each file first declares, by triggers, the set-up routines that it depends on. A trigger
//                only marks its routine's record: the globals that the routine works on may not be built yet
//   set-up       the last static initialiser runs every marked routine with false, once each, in the order
//                of one table
//   service      hosts call
//   shut-down    before the first static destructor, at unload or at exit: the same routines with true, in
//                reverse
//
// All of it happens on the thread that loads or unloads the library, and nothing locks.
#pragma once

#include <span>

#include "framewright/thornmere/export.h"

/// A set-up routine: false sets up, true tears down. It reports a failure to set up by SrThrow. The call with
/// true copes with any state: nothing set up, set up in part by a call that threw, or torn down before. So
/// every routine may be run with true and then with false again in mid-process.
using StInitializerRoutine = void (*)(bool terminate);

/// The library only ever passes 0.
using StInitPriority = int;

/// One per set-up routine, shared by all its triggers. Constant-initialised, so a trigger may mark it at any
/// moment of the load stage.
struct StInitializerRecord {
    unsigned int triggers = 0;      ///< how many triggers name the routine
    unsigned int firstTrigger = 0;  ///< 1 for the record that was marked first of all, 2 for the next...
    unsigned int ran = 0;           ///< 1 for the routine that set-up ran first...; 0 when it has not run
};

/// One per source file and routine: a global object that says that this file needs that routine.
class FRAMEWRIGHT_EXPORT StInitializerTrigger {
  public:
    /// Marks `record`. `count` is how many uses it stands for, always 1; the priority and the names only tell
    /// a reader of the object what it is.
    StInitializerTrigger(StInitializerRecord& record, StInitializerRoutine routine, unsigned int count,
                         StInitPriority priority, char const* firstName, char const* secondName);
};

/// Declares a set-up routine and its record.
#define SR_STARTUP_ROUTINE(Routine)                  \
    FRAMEWRIGHT_EXPORT void Routine(bool terminate); \
    extern FRAMEWRIGHT_EXPORT StInitializerRecord Routine##Record

/// Says that this source file depends on a set-up routine. Stands at global scope, before the file's own
/// globals.
#define SR_DEPENDS_ON(Routine) \
    static StInitializerTrigger const g##Routine##Trigger(Routine##Record, Routine, 1, 0, nullptr, #Routine)

// The framework's own routines.

/// The allocator needs no preparation. True drops the host's allocation gate.
SR_STARTUP_ROUTINE(SrInitMemory);
/// True releases the objects that were given to SrAutoDisposeObject.
SR_STARTUP_ROUTINE(SrInitObjectBase);
/// Persistent values are read and written one by one, so the storage manager keeps nothing that needs setting
/// up.
SR_STARTUP_ROUTINE(SrInitStorageManager);
/// The string lists hold their English texts from the start, so nothing needs setting up.
SR_STARTUP_ROUTINE(SrInitStringUtils);
/// The thread that loads the library is first-class from the load stage on. True drops the host's tick
/// source.
SR_STARTUP_ROUTINE(SrInitThread);

/// A row of the start-up table: rows are in the order in which the routines run.
struct StStartupRow {
    StInitializerRoutine routine;
    StInitializerRecord* record;
    char const* name;
    char const* owner;  ///< the folder that the routine belongs to, or "framework"
    char const* needs;  ///< the routines that must have run before, by name, separated by one space
};

/// Runs the routines of all marked rows with false, in order. 0, or the error code of the routine that
/// failed: it and those before it have then been run with true, in reverse.
long SrRunSetUp(std::span<StStartupRow const> rows) noexcept;
/// Runs the routines that have been set up with true, in reverse. What they throw is dropped: each gets its
/// turn.
void SrRunShutDown(std::span<StStartupRow const> rows) noexcept;
