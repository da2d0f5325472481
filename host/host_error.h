// What went wrong with which file, as one line for standard error.
#pragma once

#include <exception>
#include <stdexcept>
#include <string>

/// A failure of the work: what() is "FILE: reason", or the reason alone where no file is at fault.
class HostError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
    HostError(std::string const& file, std::string const& reason)
        : std::runtime_error(file.empty() ? reason : file + ": " + reason) {}
};

/// `text` for one line of a terminal: control characters and bytes that are no UTF-8 are written as escapes,
/// a line's end as \n and others like \x1B.
std::string Printable(std::string const& text);
/// Tells of a failure in one line on standard error.
void PrintError(std::string const& what);

/// The reason that a library exception gives, in words for people; `reading` tells whether a file was being
/// read, where a lack of memory or an early end means a damaged file.
std::string ReasonOf(std::exception const& exception, bool reading);

/// Runs `work`; what the library throws becomes a HostError of `file`.
template <class Work>
auto Blaming(std::string const& file, bool reading, Work&& work) {
    try {
        return work();
    } catch (HostError const&) {
        throw;
    } catch (std::exception const& exception) {
        throw HostError(file, ReasonOf(exception, reading));
    }
}
