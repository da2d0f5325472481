// How the colour, grey, alpha and ink records take smart pixels and go to streams.
#include "framewright/pixel/pixels.h"

#include "framewright/core/startup.h"
#include "framewright/pixel/convert_smart.h"
#include "framewright/pixel/pixel_stream.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);

using pixel::ConvertByColor;
using pixel::GetBigEndian;
using pixel::GetByte;
using pixel::GetBytes;
using pixel::Payload;
using pixel::PutBigEndian;
using pixel::PutBytes;

// The records that read no source in a way of their own.
#define FOR_EACH_RECORD_BY_COLOR(ROW) \
    ROW(StRGB24Pixel)                 \
    ROW(StRGB48Pixel)                 \
    ROW(StRGBA64Pixel)                \
    ROW(StColorFloats)                \
    ROW(StRGBAFloatPixel)             \
    ROW(StGray8Pixel)                 \
    ROW(StGray4Pixel)                 \
    ROW(StGray2Pixel)                 \
    ROW(StAlpha8Pixel)                \
    ROW(StCMYKPixel)

#define ROW(Record)                                         \
    void Record::ConvertSmart(ScSmartPixel const* source) { \
        ConvertByColor(*this, source);                      \
    }
FOR_EACH_RECORD_BY_COLOR(ROW)
#undef ROW
#undef FOR_EACH_RECORD_BY_COLOR

void StRGBA32Pixel::ConvertSmart(ScSmartPixel const* source) {
    ConvertByColor<StRGB24Pixel, StRGB15Pixel, StAlpha8Pixel>(*this, source);
}
void StRGBA32Pixel::GetFromStream(SmStream& stream) {
    GetBytes(stream, red, green, blue, alpha);
}
void StRGBA32Pixel::PutToStream(SmStream& stream) const {
    PutBytes(stream, red, green, blue, alpha);
}

void StRGB32Pixel::ConvertSmart(ScSmartPixel const* source) {
    ConvertByColor<StRGB24Pixel, StRGB15Pixel, StAlpha8Pixel>(*this, source);
}
void StRGB32Pixel::GetFromStream(SmStream& stream) {
    GetBytes(stream, filler, red, green, blue);
}
void StRGB32Pixel::PutToStream(SmStream& stream) const {
    PutBytes(stream, filler, red, green, blue);
}

void StRGB24Pixel::GetFromStream(SmStream& stream) {
    GetBytes(stream, red, green, blue);
}
void StRGB24Pixel::PutToStream(SmStream& stream) const {
    PutBytes(stream, red, green, blue);
}

void StRGB15Pixel::ConvertSmart(ScSmartPixel const* source) {
    ConvertByColor<StRGBA32Pixel, StRGB32Pixel, StRGB24Pixel, StAlpha8Pixel>(*this, source);
}
void StRGB15Pixel::GetFromStream(SmStream& stream) {
    std::uint8_t low = 0, high = 0;
    GetBytes(stream, low, high);
    unsigned const word = low | high << 8;
    flag = word & 1;
    SetColor(word >> 1, word >> 6, word >> 11);
}
void StRGB15Pixel::PutToStream(SmStream& stream) const {
    unsigned const word = flag | red << 1 | green << 6 | blue << 11;
    PutBytes(stream, static_cast<std::uint8_t>(word), static_cast<std::uint8_t>(word >> 8));
}

void StRGB48Pixel::GetFromStream(SmStream& stream) {
    GetBigEndian(stream, red, green, blue);
}
void StRGB48Pixel::PutToStream(SmStream& stream) const {
    PutBigEndian(stream, red, green, blue);
}

void StRGBA64Pixel::GetFromStream(SmStream& stream) {
    GetBigEndian(stream, red, green, blue, alpha);
}
void StRGBA64Pixel::PutToStream(SmStream& stream) const {
    PutBigEndian(stream, red, green, blue, alpha);
}

void StColorFloats::GetFromStream(SmStream& stream) {
    GetBigEndian(stream, red, green, blue);
}
void StColorFloats::PutToStream(SmStream& stream) const {
    PutBigEndian(stream, red, green, blue);
}

void StRGBAFloatPixel::GetFromStream(SmStream& stream) {
    GetBigEndian(stream, red, green, blue, alpha);
}
void StRGBAFloatPixel::PutToStream(SmStream& stream) const {
    PutBigEndian(stream, red, green, blue, alpha);
}

void StGray8Pixel::GetFromStream(SmStream& stream) {
    GetBytes(stream, level);
}
void StGray8Pixel::PutToStream(SmStream& stream) const {
    PutBytes(stream, level);
}

void StGray4Pixel::GetFromStream(SmStream& stream) {
    level = GetByte(stream) & 15;
}
void StGray4Pixel::PutToStream(SmStream& stream) const {
    PutBytes(stream, static_cast<std::uint8_t>(level));
}

void StGray2Pixel::GetFromStream(SmStream& stream) {
    level = GetByte(stream) & 3;
}
void StGray2Pixel::PutToStream(SmStream& stream) const {
    PutBytes(stream, static_cast<std::uint8_t>(level));
}

void StBlackWhitePixel::ConvertSmart(ScSmartPixel const* source) {
    // Colours of bytes that are read in place have their limit one higher than all others.
    auto judge = [this](auto const& color) { black = pixel::IntegerSumOf(color) < pixel::kBlackLimit + 1; };
    switch (source->PixelID()) {
        case StRGBA32Pixel::PixelID():
            return judge(Payload<StRGBA32Pixel>(source));
        case StRGB32Pixel::PixelID():
            return judge(Payload<StRGB32Pixel>(source));
        case StRGB24Pixel::PixelID():
            return judge(Payload<StRGB24Pixel>(source));
        case StAlpha8Pixel::PixelID():
            // Not the opacity but the byte three places on, where a colour would have its alpha.
            black = Payload<pixel::StPayload<StAlpha8Pixel>>(source).beyond[2] < 128;
            return;
        default:
            return ConvertByColor(*this, source);
    }
}
void StBlackWhitePixel::GetFromStream(SmStream& stream) {
    black = GetByte(stream) & 1;
}
void StBlackWhitePixel::PutToStream(SmStream& stream) const {
    PutBytes(stream, static_cast<std::uint8_t>(black));
}

void StAlpha8Pixel::GetFromStream(SmStream& stream) {
    GetBytes(stream, alpha);
}
void StAlpha8Pixel::PutToStream(SmStream& stream) const {
    PutBytes(stream, alpha);
}

void StAlpha32Pixel::ConvertSmart(ScSmartPixel const* source) {
    if (source->PixelID() == PixelID())
        *this = Payload<StAlpha32Pixel>(source);
    else
        SetFloat(source->GetFloat());
}
void StAlpha32Pixel::GetFromStream(SmStream& stream) {
    GetBigEndian(stream, alpha);
}
void StAlpha32Pixel::PutToStream(SmStream& stream) const {
    PutBigEndian(stream, alpha);
}

void StCMYKPixel::GetFromStream(SmStream& stream) {
    GetBytes(stream, cyan, magenta, yellow, black);
}
void StCMYKPixel::PutToStream(SmStream& stream) const {
    PutBytes(stream, cyan, magenta, yellow, black);
}
