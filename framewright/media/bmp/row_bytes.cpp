#include "framewright/media/bmp/row_bytes.h"

#include <bit>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace bmp {

namespace {

/// Bytes of a pixel, in the order of memory, are those of a word from the lowest on.
constexpr bool kLittleEndian = std::endian::native == std::endian::little;
constexpr std::uint32_t kColorBytes = 0x00FFFFFF;
constexpr std::uint32_t kFourthByte = 0xFF000000;

std::uint32_t LoadWord(unsigned char const* bytes) {
    std::uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

void StoreWord(unsigned char* bytes, std::uint32_t word) {
    std::memcpy(bytes, &word, sizeof word);
}

template <StFourth kFourth>
void StorePixel(unsigned char* pixel, std::uint32_t color) {
    std::uint32_t const fourth = kFourth == StFourth::kOpaque ? kFourthByte : LoadWord(pixel) & kFourthByte;
    StoreWord(pixel, (color & kColorBytes) | fourth);
}

template <StFourth kFourth>
void Widen(unsigned char const* from, unsigned char* to, long count) {
    // Four pixels are three words on the one side and four on the other.
    for (; kLittleEndian && count >= 4; count -= 4, from += 12, to += 16) {
        std::uint32_t const a = LoadWord(from), b = LoadWord(from + 4), c = LoadWord(from + 8);
        StorePixel<kFourth>(to, a);
        StorePixel<kFourth>(to + 4, a >> 24 | b << 8);
        StorePixel<kFourth>(to + 8, b >> 16 | c << 16);
        StorePixel<kFourth>(to + 12, c >> 8);
    }
    for (; count > 0; --count, from += 3, to += 4) {
        std::memcpy(to, from, 3);
        if (kFourth == StFourth::kOpaque) to[3] = 255;
    }
}

#ifdef __SSE2__
/// Four pixels at `from` to the twelve bytes at `to`, and four zeros behind those.
void NarrowFour(unsigned char const* from, unsigned char* to) {
    __m128i const four = _mm_loadu_si128(reinterpret_cast<__m128i const*>(from));
    // Two pixels in each half: the six bytes of both together, then the halves together.
    __m128i const halves =
        _mm_or_si128(_mm_and_si128(four, _mm_set1_epi64x(0x000000FFFFFF)),
                     _mm_and_si128(_mm_srli_epi64(four, 8), _mm_set1_epi64x(0xFFFFFF000000)));
    __m128i const lower = _mm_and_si128(halves, _mm_set_epi64x(0, -1));
    __m128i const upper = _mm_and_si128(halves, _mm_set_epi64x(-1, 0));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_or_si128(lower, _mm_srli_si128(upper, 2)));
}
#endif

}  // namespace

void WidenRow(unsigned char const* from, unsigned char* to, long count, StFourth fourth) {
    if (fourth == StFourth::kOpaque) {
        Widen<StFourth::kOpaque>(from, to, count);
    } else {
        Widen<StFourth::kKept>(from, to, count);
    }
}

void NarrowRow(unsigned char const* from, unsigned char* to, long count) {
#ifdef __SSE2__
    // A cache line at a time, while what is written behind it is written over by pixels to come. Rows of a
    // picture are too short for the processor to run ahead of by itself.
    constexpr std::uintptr_t kAhead = 512;
    for (; count >= 18; count -= 16) {
        __builtin_prefetch(reinterpret_cast<void const*>(reinterpret_cast<std::uintptr_t>(from) + kAhead));
        for (int i = 0; i < 4; ++i, from += 16, to += 12)
            NarrowFour(from, to);
    }
#endif
    for (; kLittleEndian && count >= 4; count -= 4, from += 16, to += 12) {
        std::uint32_t const a = LoadWord(from), b = LoadWord(from + 4);
        std::uint32_t const c = LoadWord(from + 8), d = LoadWord(from + 12);
        StoreWord(to, (a & kColorBytes) | b << 24);
        StoreWord(to + 4, (b >> 8 & 0x0000FFFF) | c << 16);
        StoreWord(to + 8, (c >> 16 & 0x000000FF) | d << 8);
    }
    for (; count > 0; --count, from += 4, to += 3)
        std::memcpy(to, from, 3);
}

}  // namespace bmp
