#include "framewright/media/sequence_number.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>

#include "framewright/media/media_location.h"
#include "framewright/thornmere/error.h"

namespace media {

namespace {

bool IsSeparator(char c) {
    return c == '/' || c == ':' || c == '\\';
}

}  // namespace

StSequenceNumber FindSequenceNumber(char const* path) {
    StSequenceNumber const none;
    StSequenceNumber found;
    std::uint32_t value = 0;
    auto const length = static_cast<long>(std::strlen(path));
    // The terminating null takes part, as a character that ends a lone digit.
    for (long i = 1; i <= length; ++i) {
        char const c = path[i];
        if (c >= '0' && c <= '9') {
            if (found.first == -1) found.first = i;
            found.last = i;
            value = value * 10 + static_cast<std::uint32_t>(c - '0');
            found.value = static_cast<std::int32_t>(value);
        } else if (IsSeparator(c) || found.first == found.last) {
            found = none;
            value = 0;
        }
    }
    return found;
}

std::string WithSequenceNumber(std::string path, long number) {
    StSequenceNumber const old = FindSequenceNumber(path.c_str());
    if (old.Exists()) {
        long rest = number;
        for (long i = old.last; i >= old.first; --i) {
            path[static_cast<std::size_t>(i)] = static_cast<char>('0' + rest % 10);
            rest /= 10;
        }
        if (rest == 0) return path;
    }
    std::string digits(4, '0');
    for (std::size_t i = 4; i-- > 0; number /= 10)
        digits[i] = static_cast<char>('0' + number % 10);
    std::size_t const dot = path.rfind('.');
    return dot == std::string::npos ? path + '.' + digits : path.insert(dot, digits);
}

bool TryNumber(ScMediaLocation& location, long number) {
    try {
        return location.SetSequence(number);
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        if (SrGetExceptionValues(exception, message) != SkFileParameter()) throw;
        return false;
    }
}

}  // namespace media

long SrCountSequentialFiles(ScMediaLocation* location) {
    std::unique_ptr<ScMediaLocation> const next(location->Clone());
    ScHeapString path;
    if (!next->GetFullPath(path)) return 1;
    media::StSequenceNumber const base = media::FindSequenceNumber(path.AsCString());
    if (!base.Exists()) return 1;

    constexpr long kLimits[] = {10, 100, 1000, 10000, 100000};  // for a span of one character, of two...
    long const limit = kLimits[std::min(base.last - base.first, std::ssize(kLimits) - 1)];
    long count = 1;
    for (long i = 1; i < limit; ++i) {
        StFileSpec spec;
        StFileInfo info;
        if (!media::TryNumber(*next, base.value + i) || !next->GetFileSpec(spec) ||
            next->GetFileInfo(info) != kSearchFound) {
            break;
        }
        count = i + 1;
    }
    return count;
}
