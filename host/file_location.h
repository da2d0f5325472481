// Where a picture file lies, with the host's rule of what is the number in a file's name.
#pragma once

#include <framewright/framewright.h>

#include <memory>
#include <optional>
#include <string>

enum class NameNumber {
    kNone,    ///< there is none, and room for one
    kNumber,  ///< one that files can follow: shot01.bmp
    /// There can be none: several groups of digits as in a date, a number too large, one digit alone, which a
    /// number would run into, or a name too long for more. A file with such a name stands alone.
    kUnfit,
};

NameNumber NumberInName(std::string const& path);

/// The location of `path`. That of an unfit name has no number that could be read or set,
/// so no other file is ever taken for this one.
std::unique_ptr<ScMediaFileLocation> LocationOf(std::string const& path);

/// The path of the file that has `number` in the sequence of `location`; none where there can be no such
/// file.
std::optional<std::string> PathOfNumber(ScMediaLocation const& location, long number);
