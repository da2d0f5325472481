// Grey levels, and black and white. The grey of a colour is the plain mean of its bytes; nothing in the
// library weighs channels by how bright they look.
#pragma once

#include "framewright/pixel/color_pixels.h"
#include "framewright/pixel/row_packing.h"

/// One byte: 0 black, 255 white.
///
///     byte    0
///           level
///
/// Middle grey is 80.
struct FRAMEWRIGHT_EXPORT StGray8Pixel {
    std::uint8_t level;

    SR_LAYER_PIXEL_RECORD(StGray8Pixel);

    /// Lays `other` over this as light: black changes nothing, white gives white.
    void Merge(StGray8Pixel other) {
        level = static_cast<std::uint8_t>(pixel::Screen(level, other.level, 255));
    }
    void Blend(StGray8Pixel const& other, float t) {
        level = static_cast<std::uint8_t>(pixel::ScByteBlend(t)(level, other.level));
    }
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out = pixel::OpaqueByteFloats(GetRGBA32()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(pixel::ColorBytes(in)); }
    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    float ConvertToFloat() const { return pixel::ByteToFloat(level); }
    void ConvertSmart(ScSmartPixel const* source);
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const { return pixel::OpaqueGray(level); }
    void SetRGBA32(StRGBA32Pixel color) { level = pixel::GrayOf(color); }
    void SetFloat(float value) { level = pixel::ToByte(value); }
    void SetColorFloats(StColorFloats const& color) {
        level = static_cast<std::uint8_t>(SrITrunc(pixel::SumOf(color) * 255.0 * pixel::kThird));
    }
    void Invert() { level = static_cast<std::uint8_t>(255 - level); }
};

/// A level of four bits, 0 black, 15 white, in the low bits of a 32-bit record; a row holds two a byte.
/// `rest` means nothing: copies carry it along, everything else leaves it.
///
///     bit   31 ... 4   3 ... 0
///             rest      level
///
/// White with nothing in the rest is 0F 00 00 00; two white pixels in a row are FF.
struct FRAMEWRIGHT_EXPORT StGray4Pixel {
    std::uint32_t level : 4, rest : 28 = 0;

    SR_LAYER_PIXEL_RECORD(StGray4Pixel);

    void Merge(StGray4Pixel other) { level = pixel::Screen(level, other.level, 15) & 15; }
    /// Moves at the scale of four bits.
    void Blend(StGray4Pixel const& other, float t) { level = pixel::ScByteBlend(t)(level, other.level) & 15; }
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out = pixel::OpaqueByteFloats(GetRGBA32()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(pixel::ColorBytes(in)); }
    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    float ConvertToFloat() const { return static_cast<float>(level) * pixel::kInverseLevel4; }
    void ConvertSmart(ScSmartPixel const* source);
    /// One byte, of which the low four bits count.
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;
    void PlacePixelInRow(void* row, long x) const { pixel::StRowPacking<4>::Put(row, x, level); }
    void GetPixelFromRow(void const* row, long x) { level = pixel::StRowPacking<4>::Get(row, x) & 15; }

    StRGBA32Pixel GetRGBA32() const { return pixel::OpaqueGray(pixel::FourBitsToByte(level)); }
    void SetRGBA32(StRGBA32Pixel color) { level = (pixel::GrayOf(color) >> 4) & 15; }
    void SetFloat(float value) { level = pixel::LowBits(15.0 * value, 4) & 15; }
    void SetColorFloats(StColorFloats const& color) {
        level = pixel::LowBits(pixel::SumOf(color) * 15.0 * pixel::kThird, 4) & 15;
    }
    void Invert() { level = ~level & 15u; }
};

/// A level of two bits, 0 black, 3 white, in the low bits of a 32-bit record; a row holds four a byte.
///
///     bit   31 ... 2   1 0
///             rest    level
///
/// The levels 0, 1, 2, 3 side by side in a row are 1B.
struct FRAMEWRIGHT_EXPORT StGray2Pixel {
    std::uint32_t level : 2, rest : 30 = 0;

    SR_LAYER_PIXEL_RECORD(StGray2Pixel);

    void Merge(StGray2Pixel other) { level = pixel::Screen(level, other.level, 3) & 3; }
    /// Moves at the scale of two bits.
    void Blend(StGray2Pixel const& other, float t) { level = pixel::ScByteBlend(t)(level, other.level) & 3; }
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out = pixel::OpaqueByteFloats(GetRGBA32()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(pixel::ColorBytes(in)); }
    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    float ConvertToFloat() const { return static_cast<float>(level) * pixel::kInverseLevel2; }
    void ConvertSmart(ScSmartPixel const* source);
    /// One byte, of which the low two bits count.
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;
    void PlacePixelInRow(void* row, long x) const { pixel::StRowPacking<2>::Put(row, x, level); }
    void GetPixelFromRow(void const* row, long x) { level = pixel::StRowPacking<2>::Get(row, x) & 3; }

    StRGBA32Pixel GetRGBA32() const { return pixel::OpaqueGray(pixel::TwoBitsToByte(level)); }
    void SetRGBA32(StRGBA32Pixel color) { level = (pixel::GrayOf(color) >> 6) & 3; }
    void SetFloat(float value) { level = pixel::LowBits(3.0 * value, 2) & 3; }
    void SetColorFloats(StColorFloats const& color) {
        level = pixel::LowBits(pixel::SumOf(color) * 3.0 * pixel::kThird, 2) & 3;
    }
    void Invert() { level = ~level & 3u; }
};

/// One bit in the low bit of a 32-bit record: 1 black, 0 white, the opposite of the grey records. A row holds
/// eight a byte; the layer places them itself.
///
///     bit   31 ... 1     0
///             rest     black
///
/// As a colour, 1 is SkBlackColorBytes(), which is transparent, and 0 is opaque white.
struct FRAMEWRIGHT_EXPORT StBlackWhitePixel {
    std::uint32_t black : 1, rest : 31 = 0;

    SR_LAYER_PIXEL_RECORD(StBlackWhitePixel);

    /// Black over anything is black, white over anything changes nothing.
    void Merge(StBlackWhitePixel other) { black = (black | other.black) & 1; }
    /// Black where the weight of black exceeds one half.
    void Blend(StBlackWhitePixel const& other, float t) {
        black = (1.0 - t) * black + static_cast<double>(t) * other.black > 0.5;
    }
    void ConvertToRGBAFloat(StRGBAFloatPixel& out) const { out.SetRGBA32(GetRGBA32()); }
    void ConvertFromRGBAFloat(StRGBAFloatPixel const& in) { SetRGBA32(pixel::ColorBytes(in)); }
    void ConvertToColorFloats(StColorFloats& out) const { out.SetFloat(ConvertToFloat()); }
    /// The light: 1.0 for white.
    float ConvertToFloat() const { return black ? 0.0f : 1.0f; }
    void ConvertSmart(ScSmartPixel const* source);
    /// One byte, of which the lowest bit counts.
    void GetFromStream(SmStream& stream);
    void PutToStream(SmStream& stream) const;

    StRGBA32Pixel GetRGBA32() const { return black ? pixel::kBlackBytes : pixel::kWhiteBytes; }
    void SetRGBA32(StRGBA32Pixel color) { black = pixel::IntegerSumOf(color) < pixel::kBlackLimit; }
    void SetFloat(float value) { black = value < 0.5f; }
    /// Red alone is truncated before the sum is judged: 1.0, 0.4, 0.2 is white, 0.9, 0.4, 0.2 is black.
    void SetColorFloats(StColorFloats const& color) {
        black = static_cast<double>(SrITrunc(color.red)) + color.green + color.blue < 1.5;
    }
    void Invert() { black = ~black & 1u; }
};
