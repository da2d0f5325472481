// The arithmetic that all pixel records share: scales, truncations, expansions, the weights of Blend. What
// only one kind of record needs stands beside that record.
//
// Internal to the library, and installed only because the records' inline members are made of it: a host uses
// the records.
//
// Float to integer truncates toward zero and keeps the low bits; nothing rounds to nearest and nothing is
// clamped, so 1.5 becomes the byte 126. Sums and products with a constant run in double, and the result is
// rounded once, when it is stored as a float. (A byte or word times a float constant is exact in double, so
// plain float arithmetic gives the same bits there.)
#pragma once

#include <bit>
#include <cfloat>
#include <cstdint>

#include "framewright/thornmere/numbers.h"

// The records lie in memory as words of a little-endian host have them, and the rules round where they say
// so: float expressions must not be carried on in a wider format.
static_assert(std::endian::native == std::endian::little);
static_assert(FLT_EVAL_METHOD == 0);

namespace pixel {

// Reciprocals rounded to float: the conversions multiply by exactly these bits. The byte's is rounded up, so
// byte to float to byte gives every value back; the word's is rounded down, so word to float to word loses 1
// for about half of all values.
inline constexpr float kInverseColorByte = std::bit_cast<float>(0x3B808081u);  ///< 1/255
inline constexpr float kInverseColorWord = std::bit_cast<float>(0x37800080u);  ///< 1/65535
inline constexpr float kInverseTriFloat = std::bit_cast<float>(0x3EAAAAABu);   ///< 1/3
inline constexpr float kInverseTriByte = std::bit_cast<float>(0x3AAB5601u);    ///< 1/765
inline constexpr float kInverseTriNobble = std::bit_cast<float>(0x3C302C0Bu);  ///< 1/93
inline constexpr float kInverseLevel4 = std::bit_cast<float>(0x3D888889u);     ///< 1/15
inline constexpr float kInverseLevel2 = kInverseTriFloat;                      ///< 1/3
inline constexpr float kInverseTwoTo32 = 0x1p-32f;

// The same ratios where a rule takes them in double.
inline constexpr double kByteScale = 1.0 / 255.0;
inline constexpr double kWordScale = 1.0 / 65535.0;
inline constexpr double kFiveBitScale = 1.0 / 31.0;
inline constexpr double kThird = 1.0 / 3.0;
inline constexpr double kThreeBytesScale = 1.0 / 765.0;
inline constexpr double kThreeWordsScale = 1.0 / 196605.0;
inline constexpr double kThreeFiveBitsScale = 1.0 / 93.0;
inline constexpr double kTwoTo32 = 4294967296.0;

/// Below this sum of three bytes a colour counts as black where one bit is all there is.
inline constexpr unsigned kBlackLimit = 383;

// Floats to integers: the low bits of the truncated product.
constexpr std::uint8_t ToByte(double value) {
    return static_cast<std::uint8_t>(SrITrunc(255.0 * value));
}
constexpr std::uint16_t ToWord(double value) {
    return static_cast<std::uint16_t>(SrITrunc(65535.0 * value));
}
/// `value` itself truncated through 64 bits, for results that need all 32.
constexpr std::uint32_t Low32(double value) {
    return static_cast<std::uint32_t>(SrITrunc64(value));
}
/// The low `bits` bits of `value` truncated, for fields narrower than a byte.
constexpr std::uint32_t LowBits(double value, int bits) {
    return static_cast<std::uint32_t>(SrITrunc(value)) & ((1u << bits) - 1);
}

constexpr float ByteToFloat(unsigned value) {
    return static_cast<float>(value) * kInverseColorByte;
}
constexpr float WordToFloat(unsigned value) {
    return static_cast<float>(value) * kInverseColorWord;
}

// Between integer scales.
constexpr std::uint8_t FiveBitsToByte(unsigned value) {
    return static_cast<std::uint8_t>(value * 255 / 31);
}
constexpr std::uint8_t FourBitsToByte(unsigned value) {
    return static_cast<std::uint8_t>(value * 17);
}
constexpr std::uint8_t TwoBitsToByte(unsigned value) {
    return static_cast<std::uint8_t>(value * 85);
}
constexpr std::uint16_t ByteToWord(unsigned value) {
    return static_cast<std::uint16_t>(value * 0x101);
}
constexpr std::uint8_t WordToByte(unsigned value) {
    return static_cast<std::uint8_t>(value >> 8);
}

/// A float colour summed over its channels, in double.
template <class Color>
constexpr double SumOf(Color const& color) {
    return static_cast<double>(color.red) + color.green + color.blue;
}
/// The sum of the three bytes, or levels, of a colour.
template <class Color>
constexpr unsigned IntegerSumOf(Color const& color) {
    return static_cast<unsigned>(color.red) + color.green + color.blue;
}

constexpr unsigned Average(unsigned a, unsigned b) {
    return (a + b) / 2;
}
/// One level laid over another as light: never darker than either, full stays full.
constexpr unsigned Screen(unsigned below, unsigned above, unsigned full) {
    return below + (full - below) * above / full;
}

/// How integer channels move from one value toward another by t: in steps of 1/256, with weights kept in Word
/// bits. Outside 0 to 1 the weights wrap, as does the result.
template <class Word>
class ScBlendWeights {
  public:
    explicit constexpr ScBlendWeights(float t)
        : mTo(static_cast<Word>(SrITrunc(256.0 * t))), mFrom(static_cast<Word>(256 - mTo)) {}
    constexpr std::uint32_t operator()(std::uint32_t from, std::uint32_t to) const {
        return (to * mTo + from * mFrom) >> 8;
    }

  private:
    Word mTo, mFrom;
};
using ScByteBlend = ScBlendWeights<std::uint16_t>;
using ScWordBlend = ScBlendWeights<std::uint32_t>;

/// The same for floats, all in 32 bits.
constexpr float BlendFloats(float from, float to, float t) {
    return from * (1.0f - t) + to * t;
}

/// Red, green and blue become what `rule` makes of each and of the same channel of `other`, cut to the
/// channel's type. A fourth field stays.
template <class Color, class Rule>
constexpr void CombineColors(Color& color, Color const& other, Rule const& rule) {
    using Channel = decltype(Color::red);
    color.red = static_cast<Channel>(rule(color.red, other.red));
    color.green = static_cast<Channel>(rule(color.green, other.green));
    color.blue = static_cast<Channel>(rule(color.blue, other.blue));
}
/// Red, green and blue become those of a colour of the same channels. A fourth field stays.
template <class Color, class Other>
constexpr void TakeColors(Color& color, Other const& other) {
    color.red = other.red;
    color.green = other.green;
    color.blue = other.blue;
}
/// Red, green and blue become the rest to `full`. A fourth field stays.
template <class Color, class Full>
constexpr void ComplementColors(Color& color, Full full) {
    using Channel = decltype(Color::red);
    color.red = static_cast<Channel>(full - color.red);
    color.green = static_cast<Channel>(full - color.green);
    color.blue = static_cast<Channel>(full - color.blue);
}
/// Lays `other` over `color`: source-over with straight integer alpha of the scale `full`, all divisions in
/// unsigned 32-bit integers.
template <class Color>
constexpr void LayOver(Color& color, Color const& other, std::uint32_t full) {
    if (other.alpha == 0) return;
    std::uint32_t const over = other.alpha;
    std::uint32_t const sum = (full - color.alpha) * over / full + color.alpha;
    std::uint32_t const under = sum - over;
    CombineColors(color, other, [=](std::uint32_t below, std::uint32_t above) {
        return (above * over + below * under) / sum;
    });
    color.alpha = static_cast<decltype(Color::alpha)>(sum);
}

}  // namespace pixel
