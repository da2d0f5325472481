// The three locks of the spooling, shared by all spoolers and built when the library loads.
//
//     registry    the manager's arrays of spoolers and of spool files
//     row         the lock counts of rows, and the loading of a row that is being locked
//     storage     which rows are in memory and where, and the spool files
//
// Order: registry, row, storage. Whoever wants to evict only tries registry and storage, so that a thread
// short of memory never waits for another.
#pragma once

#include "framewright/thornmere/threads.h"

namespace spool {

extern StCriticalSection gRegistryLock;
extern StCriticalSection gRowLock;
extern StCriticalSection gStorageLock;

/// Holds a lock from its construction, or Enter, to its end.
class StHold {
  public:
    /// Waits for the lock.
    explicit StHold(StCriticalSection& lock) : mLock(lock), mHeld(lock.Enter(-1)) {}
    /// Only tries it.
    struct Try {};
    StHold(StCriticalSection& lock, Try) : mLock(lock), mHeld(lock.Enter(0)) {}
    StHold(StHold const&) = delete;
    StHold& operator=(StHold const&) = delete;
    ~StHold() { Exit(); }

    explicit operator bool() const { return mHeld; }
    void Enter() { mHeld = mLock.Enter(-1); }
    void Exit() {
        if (mHeld) mLock.Exit();
        mHeld = false;
    }

  private:
    StCriticalSection& mLock;
    bool mHeld;
};

/// Throws -29299 off a first-class thread.
void RequireFirstClassThread();

}  // namespace spool
