// A layer that a host derives without the class machinery, and that writes down what is asked of it.
#pragma once

#include <string>
#include <vector>

#include "framewright/frame/layer.h"

namespace testing_frames {

template <class Record>
class Spy : public SmImagerLayer<Record, ScImagerNonSpool> {
    using Layer = SmImagerLayer<Record, ScImagerNonSpool>;

  public:
    static StRef<Spy> Make(StPoint const& size) {
        auto spy = StRef<Spy>::Adopt(new Spy);
        spy->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
        return spy;
    }

    std::vector<std::string> log;
    int stretches = 0;
    int forced = 0;
    int released = 0;
    StRect stretchedFrom{};
    StRect stretchedTo{};
    long failingRow = -1;
    long failure = -39;
    ScMessageClass* message = nullptr;

    void EnsureScreenSafe(StRect const& rect) override {
        log.push_back("ensure " + std::to_string(rect.top) + " " + std::to_string(rect.left) + " " +
                      std::to_string(rect.bottom) + " " + std::to_string(rect.right));
    }
    void ReleaseScreenSafe() override { log.push_back("release"); }
    bool StretchBlit(SmImagerFrame* source, StRect const& from, StRect const& to) override {
        ++stretches;
        stretchedFrom = from;
        stretchedTo = to;
        return Layer::StretchBlit(source, from, to);
    }
    void ForceContiguous() override { ++forced; }
    void ReleaseContiguous() override { ++released; }
    void* GetRow(long row) override {
        FailAt(row);
        return Layer::GetRow(row);
    }
    using Layer::GetPixelAt;
    void GetPixelAt(long x, long y, ScSmartPixel* pixel) override {
        FailAt(y);
        Layer::GetPixelAt(x, y, pixel);
    }

  protected:
    bool DissimilarBlit(SmImagerFrame* source, StRect const& from, StPoint const& to) override {
        log.push_back("dissimilar");
        return Layer::DissimilarBlit(source, from, to);
    }

  private:
    void FailAt(long row) const {
        if (row == failingRow) SrThrow(failure, message);
    }
};

}  // namespace testing_frames
