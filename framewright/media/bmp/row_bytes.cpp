#include "framewright/media/bmp/row_bytes.h"

#include <bit>
#include <cstdint>
#include <cstring>

#ifdef __x86_64__
#include <tmmintrin.h>
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

#ifdef __x86_64__
/// Narrows as many pixels as go by the processor's byte shuffle, if it has one, and gives how many that were.
__attribute__((target("ssse3"))) long NarrowByShuffle(unsigned char const* from, unsigned char* to,
                                                      long count) {
    // Four pixels of sixteen bytes to twelve. The four zeros that follow are written over by pixels to come.
    __m128i const order = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    // A row is too short for the processor to fetch far ahead by itself.
    constexpr std::uintptr_t kAhead = 512;
    long done = 0;
    for (; count - done >= 18; done += 16) {
        __builtin_prefetch(reinterpret_cast<void const*>(reinterpret_cast<std::uintptr_t>(from) + kAhead));
        for (int i = 0; i < 4; ++i, from += 16, to += 12) {
            __m128i const four = _mm_loadu_si128(reinterpret_cast<__m128i const*>(from));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(four, order));
        }
    }
    return done;
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
#ifdef __x86_64__
    static bool const canShuffle = __builtin_cpu_supports("ssse3");
    if (canShuffle) {
        long const done = NarrowByShuffle(from, to, count);
        from += 4 * done;
        to += 3 * done;
        count -= done;
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
