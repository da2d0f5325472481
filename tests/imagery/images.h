// Images and layers for the tests of images, and callbacks that write down what they are told.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framewright/frame/layer.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/imagery/updated.h"
#include "framewright/pixel/gamut.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

namespace testing_images {

using FrameRef = StRef<SmImagerFrame>;
using ImageRef = StRef<SmImagerImage>;

/// An image that lets its callbacks be added.
class Image : public SmImagerImage {
  public:
    using SmImagerImage::AddCallback;
};

inline StRef<Image> NewImage() {
    auto image = StRef<Image>::Adopt(new Image);
    image->IImagerImage();
    return image;
}

inline StRef<SmImagerUpdated> NewUpdated() {
    auto image = StRef<SmImagerUpdated>::Adopt(SmImagerUpdated::New());
    image->IImagerUpdated();
    return image;
}

template <class Record, class Spool = ScImagerNonSpool>
FrameRef NewLayer(StPoint const& size) {
    using Layer = SmImagerLayer<Record, Spool>;
    auto layer = StRef<Layer>::Adopt(Layer::New());
    layer->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
    layer->SetBackground({0, 0, 0, 0});
    layer->Erase();
    return FrameRef(layer.Get());
}

inline FrameRef NewColor(StPoint const& size) {
    return NewLayer<StRGBA32Pixel>(size);
}
inline FrameRef NewDepth(StPoint const& size) {
    return NewLayer<StDepthFloatPixel>(size);
}
inline FrameRef NewMask(StPoint const& size) {
    return NewLayer<StAlpha8Pixel>(size);
}

/// A colour layer, and a depth layer behind it.
inline StRef<Image> NewDeepImage(StPoint const& size) {
    auto image = NewImage();
    image->AddLayer(NewColor(size).Get());
    image->AddLayer(NewDepth(size).Get());
    return image;
}

/// The code of what `work` throws, 0 if nothing.
template <class Work>
long ThrownBy(Work const& work) {
    try {
        work();
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        return SrGetExceptionValues(exception, message);
    }
    return 0;
}

/// Refuses the framework memory for as long as it stands.
struct NoMemory {
    NoMemory() {
        SrSetAllocationGate([](std::size_t) { return false; });
    }
    ~NoMemory() { SrSetAllocationGate(nullptr); }
};

/// Writes all calls into one log, and answers comparisons as told.
class Recorder : public ScLayerCallback {
  public:
    Recorder(std::string name, std::vector<std::string>& log) : mName(std::move(name)), mLog(log) {}
    ~Recorder() override { mLog.push_back(mName + " ends"); }

    bool stop = false;
    bool setsResult = false;
    bool result = false;
    SmImagerImage* image = nullptr;

    void OnBlendPixel(SmImagerImage* from, float blend, long x, long y) override {
        Note(from, "blend", {blend, float(x), float(y)});
    }
    void OnPutPixel(SmImagerImage* from, long x, long y) override {
        Note(from, "pixel", {float(x), float(y)});
    }
    void OnPutRun(SmImagerImage* from, long x, long y, long length) override {
        Note(from, "run", {float(x), float(y), float(length)});
    }
    void OnFillRect(SmImagerImage* from, long x, long y, long width, long height) override {
        Note(from, "rect", {float(x), float(y), float(width), float(height)});
    }
    void OnCompareSamples(SmImagerImage* from, long x1, long y1, long x2, long y2, unsigned long a,
                          unsigned long b, unsigned char which, bool& stopFlag, bool& resultFlag) override {
        Note(from, "compare", {float(x1), float(y1), float(x2), float(y2), float(which)});
        mLog.push_back(Hex(a) + " " + Hex(b) + (stopFlag ? " stop" : "") + (resultFlag ? " same" : ""));
        stopFlag = stop;
        if (setsResult) resultFlag = result;
    }

  private:
    static std::string Hex(unsigned long value) {
        char text[24];
        std::snprintf(text, sizeof(text), "%08lX", value);
        return text;
    }
    void Note(SmImagerImage* from, char const* what, std::vector<float> const& numbers) {
        image = from;
        std::string line = mName + " " + what;
        for (float const number : numbers) {
            char text[32];
            std::snprintf(text, sizeof(text), " %g", static_cast<double>(number));
            line += text;
        }
        mLog.push_back(line);
    }

    std::string mName;
    std::vector<std::string>& mLog;
};

inline StRef<Recorder> NewRecorder(std::string name, std::vector<std::string>& log) {
    return StRef<Recorder>::Adopt(new Recorder(std::move(name), log));
}

}  // namespace testing_images

inline bool operator==(StRGBA32Pixel const& a, StRGBA32Pixel const& b) {
    return a.blue == b.blue && a.green == b.green && a.red == b.red && a.alpha == b.alpha;
}
inline void PrintTo(StRGBA32Pixel const& pixel, std::ostream* out) {
    *out << "blue " << int{pixel.blue} << " green " << int{pixel.green} << " red " << int{pixel.red}
         << " alpha " << int{pixel.alpha};
}
inline void PrintTo(StPoint const& point, std::ostream* out) {
    *out << "(" << point.vertical << ", " << point.horizontal << ")";
}
inline void PrintTo(StRect const& rect, std::ostream* out) {
    *out << "top " << rect.top << " left " << rect.left << " bottom " << rect.bottom << " right "
         << rect.right;
}
