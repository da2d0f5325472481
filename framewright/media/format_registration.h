// How a format enters the library and leaves it: in the registries of recognizers and names, and with the
// global manager.
#pragma once

class ScMC_;
class SmMediaRecognizer;

namespace media {

/// Registers a recognizer under its own type, with string `nameIndex` of the stream names for its name, and
/// with the global manager where that exists already. Names the codec "none" if nobody has yet. The registry
/// and the manager add references of their own. -108 when memory is refused.
void RegisterFormat(SmMediaRecognizer* recognizer, long nameIndex);

/// Takes the recognizer of exactly class `cls` and the names of `type` out again.
void UnregisterFormat(ScMC_* cls, unsigned long type);

}  // namespace media
