// The numbers in the names of files that act as the frames of one sequence: shot0001.bmp, shot0002.bmp...
#pragma once

#include <cstdint>
#include <string>

#include "framewright/thornmere/export.h"

class ScMediaLocation;

/// How many files follow each other by number without a gap, the one of the location included; that file
/// itself is not looked for. 1 for a location without a number. At most as many numbers are tried as the
/// digits of the name can count.
FRAMEWRIGHT_EXPORT long SrCountSequentialFiles(ScMediaLocation* location);

namespace media {

/// Where a path has its sequence number. A number is made of the digits of the file name, from the first of
/// two neighbours on: ab12cd34 has 1234, and the letters between stand inside the span. One digit that stands
/// alone is none. The path's very first character is never looked at.
struct StSequenceNumber {
    long first = -1;  ///< the position of the first digit, and of the last
    long last = -1;
    std::int32_t value = -1;  ///< -1 without a number; past 32 bits it wraps

    bool Exists() const { return value >= 0 && first != last; }
};

StSequenceNumber FindSequenceNumber(char const* path);

/// The path with `number`, which is not below 0, for its own: written over the whole span if it fits, else as
/// four digits before the last dot, which is added where there is none. The digits that were written over
/// stay so in the second case.
std::string WithSequenceNumber(std::string path, long number);

/// SetSequence, for a search: a name that no file system could hold is one of no file, false.
bool TryNumber(ScMediaLocation& location, long number);

}  // namespace media
