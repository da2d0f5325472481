// Error diffusion as its rules tell it, pixel by pixel, to compare the layers with.
#pragma once

#include <functional>
#include <vector>

#include "frame_test_support.h"

namespace color_test {

/// Stores the closest colour at a destination position and returns the colour that is there now.
using StPut = std::function<StRGBA32Pixel(long x, long y, StRGBA32Pixel color)>;

class ScPlainDither {
  public:
    explicit ScPlainDither(int columns) : mErrors(static_cast<std::size_t>(columns)) {}

    /// `from` lies within the picture, and at `to` within the destination.
    void Blit(StPicture const& source, StRect const& from, StPoint const& to, StPut const& put) {
        if (from.top < mLastTop) std::fill(mErrors.begin(), mErrors.end(), StError{});
        for (int y = from.top; y < from.bottom; ++y) {
            StError running;
            int const width = from.right - from.left;
            for (int n = 0; n < width; ++n) {
                int const offset = y % 2 == 0 ? width - 1 - n : n;
                int const x = from.left + offset;
                StError const above =
                    x < static_cast<int>(mErrors.size()) ? mErrors[static_cast<std::size_t>(x)] : StError{};
                StRGBA32Pixel color = source.At(x, y);
                color.red = Channel(above.red, running.red, color.red);
                color.green = Channel(above.green, running.green, color.green);
                color.blue = Channel(above.blue, running.blue, color.blue);
                StRGBA32Pixel const there = put(to.horizontal + offset, to.vertical + (y - from.top), color);
                running = {color.red - there.red, color.green - there.green, color.blue - there.blue};
                if (x < static_cast<int>(mErrors.size())) mErrors[static_cast<std::size_t>(x)] = running;
            }
        }
        mLastTop = from.top;
    }

  private:
    struct StError {
        int red = 0, green = 0, blue = 0;
    };

    static std::uint8_t Channel(int above, int running, int channel) {
        int const value = (above + running) / 2 + channel;
        return static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
    }

    std::vector<StError> mErrors;
    int mLastTop = 0;
};

/// What five bits of a byte stand for.
inline int FiveBits(int byte) {
    return byte / 8 * 255 / 31;
}

/// Puts 15-bit colours into a picture.
inline StPut PutFiveBits(StPicture& picture) {
    return [&picture](long x, long y, StRGBA32Pixel color) {
        return picture.At(x, y) = Rgba(FiveBits(color.red), FiveBits(color.green), FiveBits(color.blue));
    };
}

}  // namespace color_test
