#include "host_error.h"

#include <framewright/framewright.h>

std::string ReasonOf(std::exception const& exception, bool reading) {
    ScMessageClass* message = nullptr;
    long const error = SrGetExceptionValues(exception, message);
    if (message && *message->GetText()) return message->GetText();
    if (error == SkMemoryFull())
        return reading ? "the picture is damaged, or larger than memory allows" : "not enough memory";
    if (error == SkEndOfFile()) return "the file ends too early";
    if (error == SkDiskFull()) return "the disk is full, or the file has reached its size limit";
    if (error == SkFileMissing()) return "no such file or folder";
    if (error == SkNoPermission()) return "permission denied";
    return exception.what();
}
