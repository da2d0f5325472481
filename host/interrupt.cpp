#include "interrupt.h"

#include <csignal>

#include "host_error.h"

namespace {
volatile std::sig_atomic_t gSignal = 0;
void RaiseFlag(int number) {
    gSignal = number;
}
}  // namespace

void CatchInterrupts() {
    struct sigaction action {};
    action.sa_handler = RaiseFlag;
    action.sa_flags = SA_RESTART;
    for (int number : {SIGINT, SIGTERM, SIGHUP}) {
        // What the caller has made the program ignore, as nohup does, stays ignored.
        struct sigaction inherited {};
        if (sigaction(number, nullptr, &inherited) == 0 && inherited.sa_handler != SIG_IGN)
            sigaction(number, &action, nullptr);
    }
    action.sa_handler = SIG_IGN;
    sigaction(SIGXFSZ, &action, nullptr);
}

void StopIfInterrupted() {
    if (gSignal) throw HostError("interrupted");
}

int InterruptSignal() {
    return gSignal;
}
