// Ending early without leaving anything behind.
//
// Once interrupts have been held, SIGINT, SIGTERM and SIGHUP go to a thread of their own. It removes what
// must not stay and then ends the program as the signal would have ended it, at once, however long a call
// into the library the work is in. Until then, and where the caller has made the program ignore a signal, as
// nohup does, signals do what they always do.
#pragma once

#include <mutex>
#include <string>

/// To be called first. A pipe that nobody reads and a file that hits its size limit give write errors from
/// here on instead of signals. A standard stream that the caller has closed stays unusable: no file that is
/// opened later takes its place.
void PrepareProcess();

/// While this lives no signal ends the program: one that comes meanwhile does so afterwards. Where one is
/// already ending the program this never returns. Throws std::system_error at the first call when the signals
/// can't be watched.
[[nodiscard]] std::unique_lock<std::mutex> HoldInterrupts();

/// From here on a signal that ends the program removes `folder`, a full path, with all that it holds; an
/// empty text ends that. One folder at a time; to be called while interrupts are held.
void RemoveOnInterrupt(std::string const& folder);
