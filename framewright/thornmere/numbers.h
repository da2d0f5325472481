// Conversions between floats and integers that give one defined result for every input.
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

/// `value` truncated toward zero to 32 bits; 0x80000000 for NaN and for what does not fit.
constexpr std::int32_t SrITrunc(double value) {
#if defined(__SSE2__) && defined(__GNUC__)
    // The processor's own conversion gives just that, without a test. Not through the compiler's function for
    // it: g++ works that out for values that it knows, and differently.
    if (!std::is_constant_evaluated()) {
        std::int32_t result;
        asm("cvttsd2si %1, %0" : "=r"(result) : "x"(value));
        return result;
    }
#endif
    // Both limits are exact doubles, so the comparison decides the same for every input.
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value) : INT32_MIN;
}
constexpr std::int32_t SrITrunc(float value) {
    return value >= -0x1p31f && value < 0x1p31f ? static_cast<std::int32_t>(value) : INT32_MIN;
}

/// The same to 64 bits; 0x8000000000000000 for NaN and for what does not fit.
constexpr std::int64_t SrITrunc64(double value) {
    return value >= -9223372036854775808.0 && value < 9223372036854775808.0 ? static_cast<std::int64_t>(value)
                                                                            : INT64_MIN;
}

/// Logarithm to base 2.
inline float SrLog2(float value) {
    return std::log2(value);
}
inline double SrLog2(double value) {
    return std::log2(value);
}
