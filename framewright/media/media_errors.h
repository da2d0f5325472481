// The error codes of media. They are given out when the library loads, so their values are not fixed: compare
// with the accessor. A host learns of one through SrGetExceptionValues, with a message that it can show.
#pragma once

#include "framewright/thornmere/export.h"

/// Media was to be opened for reading and there is no such file.
FRAMEWRIGHT_EXPORT long SkFileNotFound();
/// The global media manager was needed before set-up made it, or after shut-down.
FRAMEWRIGHT_EXPORT long SkMediaManagerMissing();
/// No format takes the file, or none has the type.
FRAMEWRIGHT_EXPORT long SkUnrecognizedMedia();
/// The media holds nothing that can be used.
FRAMEWRIGHT_EXPORT long SkMediaFileIsEmpty();
/// The format cannot hold the data.
FRAMEWRIGHT_EXPORT long SkMediaIncapableOfFormat();
/// For format readers and hosts; the library itself does not raise it, and it has no message.
FRAMEWRIGHT_EXPORT long SkMediaParsingProblem();

namespace media {

/// Throws one of the six codes with its message: strings 6 to 10 of SkAlertStrings(), shown with
/// SkSimpleAlert(), in the order of the first five codes above.
[[noreturn]] void ThrowMediaError(long code);

}  // namespace media
