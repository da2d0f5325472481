#include "framewright/thornmere/threads.h"

#include <algorithm>
#include <atomic>
#include <chrono>

namespace {

/// How many reasons this thread has to be first-class: the objects on its stack, and 1 for having loaded the
/// library.
constinit thread_local unsigned int tFirstClassCount = 0;

struct StLoadingThread {
    StLoadingThread() { ++tFirstClassCount; }
} const gLoadingThread;

std::uint32_t SystemTickCount() {
    auto const now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

std::atomic<std::uint32_t (*)()> gTickSource{SystemTickCount};

}  // namespace

bool StCriticalSection::Enter(long milliseconds) {
    if (milliseconds < 0) {
        mMutex.lock();
        return true;
    }
    if (milliseconds == 0) return mMutex.try_lock();
    constexpr long kLongestWait = 1L << 30;  // twelve days; a longer one could leave the clock's range
    return mMutex.try_lock_for(std::chrono::milliseconds(std::min(milliseconds, kLongestWait)));
}

void StCriticalSection::Exit() {
    mMutex.unlock();
}

bool ScThread::InFirstClassThread() {
    return tFirstClassCount != 0;
}

StFirstClassThread::StFirstClassThread() {
    ++tFirstClassCount;
}
StFirstClassThread::~StFirstClassThread() {
    --tFirstClassCount;
}

std::uint32_t SrGetTickCount() {
    return gTickSource.load()();
}
void SrSetTickSource(std::uint32_t (*source)()) {
    gTickSource.store(source ? source : SystemTickCount);
}
