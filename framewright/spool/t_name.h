// The names of files that the library makes up: "T" and a number in ten digits.
#pragma once

#include <cstdint>
#include <cstdio>

namespace spool {

struct StTName {
    explicit StTName(std::uint32_t number) {
        std::snprintf(text, sizeof(text), "T%010lu", static_cast<unsigned long>(number));
    }
    char text[16];
};

}  // namespace spool
