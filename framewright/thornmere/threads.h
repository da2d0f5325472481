// Threads and time. The thread that loads the library is first-class; only first-class threads touch spool
// files.
#pragma once

#include <cstdint>
#include <mutex>

#include "framewright/thornmere/export.h"

/// A recursive lock.
class FRAMEWRIGHT_EXPORT StCriticalSection {
  public:
    StCriticalSection() = default;
    StCriticalSection(StCriticalSection const&) = delete;
    StCriticalSection& operator=(StCriticalSection const&) = delete;

    /// Waits at most `milliseconds`: -1 for ever, 0 only tries. True when the caller now holds the lock.
    bool Enter(long milliseconds);
    void Exit();

  private:
    std::recursive_timed_mutex mMutex;
};

class FRAMEWRIGHT_EXPORT ScThread {
  public:
    /// True on the loading thread, and on another while a StFirstClassThread lives on its stack.
    static bool InFirstClassThread();
};

/// Makes the thread first-class on whose stack it lives; nests.
class FRAMEWRIGHT_EXPORT StFirstClassThread {
  public:
    StFirstClassThread();
    ~StFirstClassThread();
    StFirstClassThread(StFirstClassThread const&) = delete;
    StFirstClassThread& operator=(StFirstClassThread const&) = delete;
};

/// A monotonic count of milliseconds, cut to 32 bits.
FRAMEWRIGHT_EXPORT std::uint32_t SrGetTickCount();
/// Replaces the source of SrGetTickCount; null is the system's.
FRAMEWRIGHT_EXPORT void SrSetTickSource(std::uint32_t (*source)());
