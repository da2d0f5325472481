// Pictures and frames for the tests of palettes, dithering and mapped layers.
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "color_test_support.h"
#include "framewright/frame/layer.h"

namespace color_test {

/// Rows of colours, the top one first.
struct StPicture {
    int rows, columns;
    std::vector<StRGBA32Pixel> pixels;

    StRGBA32Pixel At(long x, long y) const { return pixels[static_cast<std::size_t>(y * columns + x)]; }
    StRGBA32Pixel& At(long x, long y) { return pixels[static_cast<std::size_t>(y * columns + x)]; }
    StPoint Size() const { return {rows, columns}; }
    StRect Whole() const { return {0, 0, rows, columns}; }
};

inline StPicture SolidPicture(int rows, int columns, StRGBA32Pixel color) {
    return {rows, columns, std::vector<StRGBA32Pixel>(static_cast<std::size_t>(rows * columns), color)};
}

/// A picture whose pixels are `color(x, y)`.
template <class Color>
StPicture PictureFrom(int rows, int columns, Color const& color) {
    StPicture picture = SolidPicture(rows, columns, Rgba(0, 0, 0));
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            picture.At(x, y) = color(x, y);
    return picture;
}

/// Every byte random; `alpha` from 0 to 255 fixes that one.
inline StPicture RandomPicture(int rows, int columns, unsigned seed, int alpha = -1) {
    std::mt19937 random(seed);
    auto const byte = [&] { return static_cast<int>(random() & 255); };
    return PictureFrom(rows, columns, [&](int, int) {
        int const red = byte(), green = byte(), blue = byte();
        return Rgba(red, green, blue, alpha < 0 ? byte() : alpha);
    });
}

inline StPicture FewColors(int rows, int columns) {
    return PictureFrom(rows, columns, [](int x, int y) { return Rgba((x + y) % 13 * 3, x % 7, y % 5 + 60); });
}

inline StPicture Gradient(int rows, int columns) {
    return PictureFrom(rows, columns, [=](int x, int y) {
        return Rgba(x * 255 / columns, y * 255 / rows, (x + y) * 255 / (rows + columns));
    });
}

/// Smooth light and shadow with a little noise, as photos have.
inline StPicture Photo(int rows, int columns) {
    std::mt19937 random(11);
    return PictureFrom(rows, columns, [&](int x, int y) {
        double const across = static_cast<double>(x) / columns, down = static_cast<double>(y) / rows;
        double const light =
            0.5 + 0.3 * std::sin(across * 7 + std::sin(down * 5) * 2) + 0.2 * std::cos(down * 9);
        auto const byte = [&](double share) {
            return std::clamp(static_cast<int>(255 * light * share) + static_cast<int>(random() % 17) - 8, 0,
                              255);
        };
        int const red = byte(0.8 + 0.2 * std::sin(across * 3 + down * 8));
        int const green = byte(0.7 + 0.3 * std::cos(down * 6 + across));
        return Rgba(red, green, byte(0.6 + 0.4 * std::sin(across * 4)));
    });
}

inline void Paint(SmImagerFrame* frame, StPicture const& picture) {
    for (long y = 0; y < picture.rows; ++y)
        for (long x = 0; x < picture.columns; ++x)
            frame->PutPixelAt(x, y, picture.At(x, y));
}

/// What a frame shows, pixel by pixel.
inline StPicture PictureOf(SmImagerFrame* frame) {
    StPoint const size = frame->GetSize();
    return PictureFrom(size.vertical, size.horizontal, [&](int x, int y) {
        StRGBA32Pixel color{};
        frame->GetPixelAt(x, y, color);
        return color;
    });
}

inline std::vector<std::uint32_t> Words(StPicture const& picture) {
    std::vector<std::uint32_t> words;
    for (StRGBA32Pixel color : picture.pixels)
        words.push_back(Word(color));
    return words;
}

template <class Pixel>
StRef<SmImagerLayer<Pixel, ScImagerNonSpool>> LayerOf(StPicture const& picture) {
    using Layer = SmImagerLayer<Pixel, ScImagerNonSpool>;
    auto layer = StRef<Layer>::Adopt(Layer::New());
    layer->IImagerLayer({0, 0}, picture.Size(), false, nullptr, 0, nullptr);
    Paint(layer.Get(), picture);
    return layer;
}

/// A layer that counts the colours that it is asked for, made as a host would derive one.
template <class Pixel>
class SmSpy : public SmImagerLayer<Pixel, ScImagerNonSpool> {
    using Layer = SmImagerLayer<Pixel, ScImagerNonSpool>;

  public:
    using Layer::GetPixelAt;
    void GetPixelAt(long x, long y, StRGBA32Pixel& pixel) override {
        ++reads;
        Layer::GetPixelAt(x, y, pixel);
    }
    long reads = 0;
};

template <class Pixel>
StRef<SmSpy<Pixel>> SpyOf(StPicture const& picture) {
    auto spy = StRef<SmSpy<Pixel>>::Adopt(new SmSpy<Pixel>);
    spy->IImagerLayer({0, 0}, picture.Size(), false, nullptr, 0, nullptr);
    Paint(spy.Get(), picture);
    return spy;
}

}  // namespace color_test
