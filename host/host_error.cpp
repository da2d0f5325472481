#include "host_error.h"

#include <framewright/framewright.h>

#include <cstdio>
#include <iostream>

namespace {

/// How many bytes the UTF-8 character at `i` has; 0 for bytes that are none.
std::size_t CharacterLength(std::string const& text, std::size_t i) {
    auto const byte = [&](std::size_t at) -> unsigned {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
    };
    unsigned const lead = byte(i);
    if (lead < 0x80) return 1;
    std::size_t const length = lead >= 0xC2 && lead < 0xE0   ? 2
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xF0 && lead < 0xF5 ? 4
                                                             : 0;
    for (std::size_t k = 1; k < length; ++k)
        if ((byte(i + k) & 0xC0) != 0x80) return 0;
    return length;
}

bool IsControl(std::string const& text, std::size_t i, std::size_t length) {
    auto const first = static_cast<unsigned char>(text[i]);
    if (length == 1) return first < 0x20 || first == 0x7F;
    return length == 2 && first == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0;
}

}  // namespace

std::string Printable(std::string const& text) {
    std::string printable;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t const length = CharacterLength(text, i);
        if (length != 0 && !IsControl(text, i, length)) {
            printable.append(text, i, length);
            i += length;
            continue;
        }
        for (std::size_t const end = i + (length == 0 ? 1 : length); i < end; ++i) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(text[i]));
            printable += text[i] == '\n' ? "\\n" : text[i] == '\t' ? "\\t" : escape;
        }
    }
    return printable;
}

void PrintError(std::string const& what) {
    std::cerr << "framewright: " << Printable(what) << '\n';
}

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
