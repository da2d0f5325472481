// BMP files for tests, built field by field, and frames looked at pixel by pixel.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "framewright/frame/frame.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/media/bmp.h"
#include "framewright/media/media_location.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"
#include "media_test_support.h"

namespace bmp_test {

using media_test::ErrorOf;

using Bytes = std::vector<unsigned char>;
/// Rows from the top, pixels as 0xAARRGGBB.
using Picture = std::vector<std::vector<std::uint32_t>>;

/// A BMP file: what its headers say, and what lies behind them.
struct File {
    std::string signature = "BM";
    std::uint32_t fileSize = 0;
    std::uint32_t dataOffset = 0;  ///< 0: where the data really is
    std::uint32_t headerSize = 40;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t planes = 1;
    std::uint16_t bitCount = 0;
    // The info header goes on; the core header, of size 12, does not.
    std::uint32_t compression = 0;
    std::uint32_t imageSize = 0;
    std::uint32_t xPixelsPerMetre = 2835;
    std::uint32_t yPixelsPerMetre = 2835;
    std::uint32_t colorsUsed = 0;
    std::uint32_t colorsImportant = 0;
    Bytes masks;
    Bytes palette;
    Bytes data;

    Bytes Build() const {
        Bytes bytes(signature.begin(), signature.end());
        auto const put = [&](std::uint32_t value, int width) {
            for (int i = 0; i < width; ++i)
                bytes.push_back(static_cast<unsigned char>(value >> 8 * i));
        };
        put(fileSize, 4);
        put(0, 2);  // reserved
        put(0, 2);
        std::size_t const placeOfDataOffset = bytes.size();
        put(0, 4);
        put(headerSize, 4);
        if (headerSize == 12) {
            put(width, 2);
            put(height, 2);
            put(planes, 2);
            put(bitCount, 2);
        } else {
            put(width, 4);
            put(height, 4);
            put(planes, 2);
            put(bitCount, 2);
            put(compression, 4);
            put(imageSize, 4);
            put(xPixelsPerMetre, 4);
            put(yPixelsPerMetre, 4);
            put(colorsUsed, 4);
            put(colorsImportant, 4);
        }
        for (Bytes const* part : {&masks, &palette})
            bytes.insert(bytes.end(), part->begin(), part->end());
        auto const offset = dataOffset ? dataOffset : static_cast<std::uint32_t>(bytes.size());
        for (std::size_t i = 0; i < 4; ++i) {
            bytes[placeOfDataOffset + i] = static_cast<unsigned char>(offset >> 8 * i);
        }
        bytes.insert(bytes.end(), data.begin(), data.end());
        return bytes;
    }
};

/// An opaque colour.
constexpr std::uint32_t Rgb(unsigned red, unsigned green, unsigned blue) {
    return 0xFF000000u | red << 16 | green << 8 | blue;
}

constexpr std::uint32_t kRed = Rgb(255, 0, 0);
constexpr std::uint32_t kGreen = Rgb(0, 255, 0);
constexpr std::uint32_t kBlue = Rgb(0, 0, 255);
constexpr std::uint32_t kWhite = Rgb(255, 255, 255);

/// Blue, green, red, fourth byte: red, green, blue, white, and twelve shades of grey.
inline Bytes Palette(std::size_t entries, std::size_t width = 4) {
    Bytes bytes;
    for (std::size_t i = 0; i < entries; ++i) {
        unsigned char const shade = static_cast<unsigned char>(i * 16);
        Bytes const entry = i == 0   ? Bytes{0, 0, 255, 0}
                            : i == 1 ? Bytes{0, 255, 0, 0}
                            : i == 2 ? Bytes{255, 0, 0, 0}
                            : i == 3 ? Bytes{255, 255, 255, 0}
                                     : Bytes{shade, shade, shade, 0};
        bytes.insert(bytes.end(), entry.begin(), entry.begin() + static_cast<std::ptrdiff_t>(width));
    }
    return bytes;
}

inline StRef<SmMemoryStream> MemoryStream(Bytes const& bytes) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return stream;
}

/// A stream without a position, which holds what it reads.
class SequentialStream : public SmStream {
  public:
    explicit SequentialStream(Bytes bytes) : mBytes(std::move(bytes)) {}
    void* Read(unsigned int size, void* destination) override {
        for (unsigned int i = 0; i < size; ++i) {
            if (mAt == mBytes.size()) SrThrow(SkEndOfFile(), nullptr);
            static_cast<unsigned char*>(destination)[i] = mBytes[mAt++];
        }
        return destination;
    }
    std::size_t Position() const { return mAt; }

  private:
    Bytes mBytes;
    std::size_t mAt = 0;
};

/// A location of a stream, which counts that each stream given out comes back.
class StreamLocation : public ScMediaLocationOpenMedia {
  public:
    explicit StreamLocation(SmStream* stream) { SetStream(stream); }
    SmStream* GetStream(StFilePermission permission, StFileInfo const& info, long createMode) override {
        lastPermission = permission;
        lastInfo = info;
        lastCreateMode = createMode;
        SmStream* const stream = ScMediaLocationOpenMedia::GetStream(permission, info, createMode);
        if (stream) ++outstanding;
        return stream;
    }
    void ReleaseStream(SmStream* stream) override {
        --outstanding;
        ScMediaLocationOpenMedia::ReleaseStream(stream);
    }

    int outstanding = 0;
    StFilePermission lastPermission{};
    StFileInfo lastInfo{};
    long lastCreateMode = 0;
};

inline StRef<SmMediaRecognizerBmp> Recognizer() {
    return StRef<SmMediaRecognizerBmp>::Adopt(SmMediaRecognizerBmp::New());
}

constexpr unsigned long kResize = SrCode("RESZ");

/// Reads into `frame`, or into a new one where that is null.
inline StRef<SmImagerFrame> ReadStream(SmStream* stream, SmImagerFrame* frame = nullptr,
                                       unsigned long option = 0) {
    StreamLocation location(stream);
    SmImagerFrame* result = frame;
    try {
        Recognizer()->ReadFrame(&location, result, 0, nullptr, option);
    } catch (...) {
        EXPECT_EQ(location.outstanding, 0);
        EXPECT_EQ(result, frame);
        throw;
    }
    EXPECT_EQ(location.outstanding, 0);
    EXPECT_TRUE(!frame || result == frame);
    return frame ? StRef<SmImagerFrame>(frame) : StRef<SmImagerFrame>::Adopt(result);
}

inline StRef<SmImagerFrame> Read(Bytes const& bytes, SmImagerFrame* frame = nullptr,
                                 unsigned long option = 0) {
    return ReadStream(MemoryStream(bytes).Get(), frame, option);
}
inline StRef<SmImagerFrame> Read(File const& file, SmImagerFrame* frame = nullptr, unsigned long option = 0) {
    return Read(file.Build(), frame, option);
}

inline StRef<SmImagerFrame> Frame(std::int32_t rows, std::int32_t columns, unsigned long pixelID) {
    return StRef<SmImagerFrame>::Adopt(SrMakeFrame({rows, columns}, pixelID, false, false));
}

inline Picture PictureOf(SmImagerFrame* frame) {
    StPoint const size = frame->GetSize();
    Picture picture(static_cast<std::size_t>(size.vertical));
    for (long y = 0; y < size.vertical; ++y) {
        for (long x = 0; x < size.horizontal; ++x) {
            picture[static_cast<std::size_t>(y)].push_back(
                static_cast<std::uint32_t>(frame->GetRGBAPixelAsLong(x, y)));
        }
    }
    return picture;
}

/// The raw indices of a mapped frame.
inline std::vector<std::vector<int>> IndicesOf(SmImagerFrame* frame) {
    StPoint const size = frame->GetSize();
    std::vector<std::vector<int>> indices(static_cast<std::size_t>(size.vertical));
    for (long y = 0; y < size.vertical; ++y) {
        for (long x = 0; x < size.horizontal; ++x) {
            unsigned char index[4] = {};
            frame->GetPixelAt(x, y, static_cast<void*>(index));
            indices[static_cast<std::size_t>(y)].push_back(index[0]);
        }
    }
    return indices;
}

inline void Fill(SmImagerFrame* frame, StRGBA32Pixel const& color) {
    frame->SetBackground(color);
    frame->Erase();
}

/// A layer that passes for a frame of a foreign class, so that pixels come and go one by one.
template <class Pixel>
class ForeignFrame : public SmImagerLayer<Pixel, ScImagerNonSpool> {
  public:
    explicit ForeignFrame(StPoint const& size) {
        this->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
    }
    ScMC_* GetClass() const override { return SmObject::Class(); }
};
/// Whose whole rows are read and written otherwise.
using RoadPixels = testing::Types<StRGBA32Pixel, StRGB32Pixel, StRGB24Pixel, StRGB15Pixel>;

/// The id as text: "RG32".
inline std::string CodeText(unsigned long code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text.push_back(static_cast<char>(code >> shift & 0xFF));
    return text;
}
inline std::string KindOf(StRef<SmImagerFrame> const& frame) {
    return CodeText(frame->PixelID());
}

}  // namespace bmp_test
