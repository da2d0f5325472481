// Depths: one float, or unsigned integers of 8, 16, 24 and 32 bits.
#pragma once

#include "framewright/pixel/color_pixels.h"

namespace pixel {

// What the mean of three bytes is multiplied by to fill an integer depth. 257 and 65793 spread a byte over
// two and three; 16843008 is 0x01010100 and leaves the lowest of four bytes out, so white is 0xFFFFFF80
// there. The mean is taken with the float third.
inline constexpr double kByteMean = kInverseTriFloat;
inline constexpr double kBytesToDepth16 = 257.0;
inline constexpr double kBytesToDepth24 = 65793.0;
inline constexpr double kBytesToDepth32 = 16843008.0;

constexpr double ByteMeanOf(StRGBA32Pixel color) {
    return IntegerSumOf(color) * kByteMean;
}
/// A grey of an integer depth; such a depth has no opacity and leaves the byte at 0.
constexpr StRGBA32Pixel DepthGray(std::uint8_t level) {
    return {level, level, level, 0};
}

}  // namespace pixel

/// One float. Nominally 0.0 to 1.0, for conversions to colour; the lowest depth is SkMinDepthValue(),
/// negative infinity. Its identifier is the same as its family's, "DepF".
///
///     byte   0 ... 3
///             depth
///
/// A quarter is 00 00 80 3E.
struct FRAMEWRIGHT_EXPORT StDepthFloatPixel {
    float depth;

    SR_LAYER_PIXEL_RECORD(StDepthFloatPixel);

    /// The plain average.
    void Merge(StDepthFloatPixel other) {
        depth = static_cast<float>((static_cast<double>(depth) + other.depth) * 0.5);
    }
    void Blend(StDepthFloatPixel const& other, float t) { depth = pixel::BlendFloats(depth, other.depth, t); }
    /// Through a byte: 256 greys are all that comes out.
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out = pixel::OpaqueByteFloats(GetRGBA32()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(pixel::ColorBytes(in)); }
    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(depth); }
    float ConvertToFloat() const { return depth; }
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const { return pixel::OpaqueGray(pixel::ToByte(depth)); }
    void SetRGBA32(StRGBA32Pixel color) {
        depth = static_cast<float>(pixel::IntegerSumOf(color) * pixel::kThreeBytesScale);
    }
    void SetFloat(float value) { depth = value; }
    void SetColorFloats(StColorFloats const& color) {
        depth = static_cast<float>(pixel::SumOf(color) * pixel::kThird);
    }
    /// Changes the sign: a depth's complement is behind, not the rest to 1.0.
    void Invert() { depth = -depth; }
};

/// One byte.
///
///     byte    0
///           depth
///
/// As a colour it is the grey of that byte. The integer depths have no Merge and no Blend of their own.
struct FRAMEWRIGHT_EXPORT StDepthUInt8Pixel {
    std::uint8_t depth;

    SR_LAYER_PIXEL_RECORD(StDepthUInt8Pixel);

    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    float ConvertToFloat() const { return pixel::ByteToFloat(depth); }
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const { return pixel::DepthGray(depth); }
    void SetRGBA32(StRGBA32Pixel color) {
        depth = static_cast<std::uint8_t>(SrITrunc(pixel::ByteMeanOf(color)));
    }
    void SetFloat(float value) { depth = pixel::ToByte(value); }
    void SetColorFloats(StColorFloats const& color) {
        depth = static_cast<std::uint8_t>(SrITrunc(pixel::SumOf(color) * 85.0));
    }
    void Invert() { depth = static_cast<std::uint8_t>(~depth); }
};

/// One 16-bit word.
///
///     byte   0 1
///           depth
///
/// The grey byte 80 becomes 0x8080.
struct FRAMEWRIGHT_EXPORT StDepthUInt16Pixel {
    std::uint16_t depth;

    SR_LAYER_PIXEL_RECORD(StDepthUInt16Pixel);

    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    float ConvertToFloat() const { return pixel::WordToFloat(depth); }
    void ConvertSmart(ScSmartPixel const* source);
    /// One big-endian word.
    void GetFromStream(SmStream& stream);
    /// Reads, as GetFromStream does, and writes nothing. The 24- and 32-bit depths do
    /// the same: of the integer depths only eight bits save this way.
    void PutToStream(SmStream& stream) { GetFromStream(stream); }

    StRGBA32Pixel GetRGBA32() const { return pixel::DepthGray(pixel::WordToByte(depth)); }
    void SetRGBA32(StRGBA32Pixel color) {
        depth = static_cast<std::uint16_t>(SrITrunc(pixel::ByteMeanOf(color) * pixel::kBytesToDepth16));
    }
    void SetFloat(float value) { depth = pixel::ToWord(value); }
    void SetColorFloats(StColorFloats const& color) {
        depth = static_cast<std::uint16_t>(SrITrunc(pixel::SumOf(color) * 21845.0));
    }
    void Invert() { depth = static_cast<std::uint16_t>(~depth); }
};

/// 24 bits in the low bits of a 32-bit record; a row has the three low bytes, in little-endian order. `rest`
/// means nothing: copies carry it along, everything else leaves it.
///
///     bit   31 ... 24   23 ... 0
///             rest       depth
///
/// The depth 0x123456 lies in a row as 56 34 12.
struct FRAMEWRIGHT_EXPORT StDepthUInt24Pixel {
    std::uint32_t depth : 24, rest : 8 = 0;

    SR_LAYER_PIXEL_RECORD(StDepthUInt24Pixel);

    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    float ConvertToFloat() const { return static_cast<float>(depth * (1.0 / 16777215.0)); }
    void ConvertSmart(ScSmartPixel const* source);
    /// One big-endian 32-bit value, of which the low 24 bits are kept.
    void GetFromStream(SmStream& stream);
    /// Reads and writes nothing, see StDepthUInt16Pixel.
    void PutToStream(SmStream& stream) { GetFromStream(stream); }

    StRGBA32Pixel GetRGBA32() const { return pixel::DepthGray(static_cast<std::uint8_t>(depth >> 16)); }
    void SetRGBA32(StRGBA32Pixel color) { SetLow24(pixel::ByteMeanOf(color) * pixel::kBytesToDepth24); }
    void SetFloat(float value) { SetLow24(16777215.0 * value); }
    void SetColorFloats(StColorFloats const& color) { SetLow24(pixel::SumOf(color) * 5592405.0); }
    void Invert() { depth = ~depth & 0xFFFFFFu; }

    /// The low 24 bits of the truncated value.
    void SetLow24(double value) { depth = pixel::LowBits(value, 24) & 0xFFFFFFu; }
};

/// One 32-bit word.
///
///     byte   0 ... 3
///             depth
///
/// From a float, 1.0 is 2 to the 32 and keeps no low bits: it gives 0.
struct FRAMEWRIGHT_EXPORT StDepthUInt32Pixel {
    std::uint32_t depth;

    SR_LAYER_PIXEL_RECORD(StDepthUInt32Pixel);

    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    float ConvertToFloat() const { return static_cast<float>(depth) * pixel::kInverseTwoTo32; }
    void ConvertSmart(ScSmartPixel const* source);
    /// One big-endian 32-bit value.
    void GetFromStream(SmStream& stream);
    /// Reads and writes nothing, see StDepthUInt16Pixel.
    void PutToStream(SmStream& stream) { GetFromStream(stream); }

    StRGBA32Pixel GetRGBA32() const { return pixel::DepthGray(static_cast<std::uint8_t>(depth >> 24)); }
    void SetRGBA32(StRGBA32Pixel color) {
        depth = pixel::Low32(pixel::ByteMeanOf(color) * pixel::kBytesToDepth32);
    }
    void SetFloat(float value) { depth = pixel::Low32(value * pixel::kTwoTo32); }
    void SetColorFloats(StColorFloats const& color) {
        depth = pixel::Low32(pixel::SumOf(color) * 1431655808.0);
    }
    void Invert() { depth = ~depth; }
};
