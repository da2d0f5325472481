// Ending early without leaving anything behind: signals that ask the program to stop only raise a flag, and
// the work looks at it between steps.
#pragma once

/// From here on SIGINT, SIGTERM and SIGHUP raise the flag, and a file that hits its size limit gives a write
/// error instead of a signal.
void CatchInterrupts();
/// Throws HostError when the flag is up.
void StopIfInterrupted();
/// The signal that raised the flag, 0 for none.
int InterruptSignal();
