#include "interrupt.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <thread>

namespace {

/// Removing is tried again while the work, not knowing yet, goes on making files.
constexpr int kRemovalTries = 100;

std::mutex gHold;

/// Guarded by gHold. Never destroyed, for the watching thread lives as long as the process.
std::string& FolderToRemove() {
    static std::string& folder = *new std::string;
    return folder;
}

/// SIGINT, SIGTERM and SIGHUP, without those that the program was started to ignore.
sigset_t WatchedSignals() {
    sigset_t watched;
    sigemptyset(&watched);
    for (int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction inherited {};
        if (sigaction(number, nullptr, &inherited) == 0 && inherited.sa_handler != SIG_IGN)
            sigaddset(&watched, number);
    }
    return watched;
}

void EndBySignal(int number) {
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, number);
    std::signal(number, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    std::raise(number);
}

void Watch(sigset_t watched) {
    int number = 0;
    while (sigwait(&watched, &number) != 0) {
    }
    gHold.lock();  // for good: the work must not go on, nor report what it misses
    std::error_code error;
    for (int i = 0; i < kRemovalTries && !FolderToRemove().empty(); ++i) {
        std::filesystem::remove_all(FolderToRemove(), error);
        if (!error) break;
    }
    // In place of a progress bar, if there is one.
    std::fputs(isatty(STDERR_FILENO) ? "\r\033[Kframewright: interrupted\n" : "framewright: interrupted\n",
               stderr);
    EndBySignal(number);
}

/// Starts the watching thread, once.
void WatchSignals() {
    static bool watching = false;
    if (watching) return;
    sigset_t const watched = WatchedSignals();
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &watched, &before);
    try {
        std::thread(Watch, watched).detach();
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        throw;
    }
    watching = true;
}

}  // namespace

void PrepareProcess() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    // A closed descriptor is filled in the direction in which it is not used, so that using it still fails.
    for (int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(descriptor, F_GETFD) == -1 && errno == EBADF)
            (void)open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

void RemoveOnInterrupt(std::string const& folder) {
    FolderToRemove() = folder;
}

std::unique_lock<std::mutex> HoldInterrupts() {
    WatchSignals();
    return std::unique_lock(gHold);
}
