// Reads anything as the stream form of a gamut, and what follows it as colours. A gamut that was read is
// used, cloned, written, and read again, which must give the same bytes. The first byte chooses the stream.
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "framewright/pixel/gamut.h"
#include "framewright/thornmere/memory.h"
#include "fuzz/input.h"

namespace {

class Samples : public ScColorSampleSet {
  public:
    void ForEachSample(ScColorSampleIterator& iterator) override {
        for (float& sample : values)
            iterator.HandleSample(0, sample);
    }
    void SetAllSamples(StColorFloats const& color) override {
        for (float& sample : values)
            sample = color.red;
    }
    std::vector<float> values;
};

std::unique_ptr<ScGamut> Read(SmStream& stream) {
    ScGamut* gamut = nullptr;
    ReadGamut(stream, gamut);
    Check(gamut != nullptr);
    return std::unique_ptr<ScGamut>(gamut);
}

StRef<SmMemoryStream> Written(ScGamut& gamut) {
    auto const stream = MemoryStream(nullptr, 0);
    WriteGamut(*stream, &gamut);
    return stream;
}

void CheckSame(ScGamut& a, ScGamut& b) {
    auto const first = Written(a), second = Written(b);
    Check(first->GetLength() == second->GetLength());
    Check(std::memcmp(first->Data(), second->Data(), first->GetLength()) == 0);
}

void Use(ScGamut& gamut, SmStream& colors) {
    bool const cuts = gamut.GetGamutSelector() == SrCode("GCli");
    Samples samples;
    for (int i = 0; i < 64; ++i) {
        StRGBAFloatPixel pixel{};
        try {
            pixel.GetFromStream(colors);
        } catch (std::exception const&) {
            break;
        }
        StColorFloats color{pixel.red, pixel.green, pixel.blue};
        float value = pixel.alpha;
        samples.values.insert(samples.values.end(), {pixel.red, pixel.green, pixel.blue, pixel.alpha});
        gamut.Constrain(pixel);
        gamut.Constrain(color);
        gamut.Constrain(value);
        for (float result : {pixel.red, pixel.alpha, color.green, value})
            Check(!cuts || std::isnan(result) || (result >= 0.0f && result <= 1.0f));
    }
    gamut.ConstrainSamples(samples);
}

void Run(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return;
    auto const stream = StreamOf(data + 1, size - 1, data[0] & 1);
    auto const gamut = Read(*stream);
    auto const again = Read(*Written(*gamut));
    CheckSame(*gamut, *again);
    std::unique_ptr<ScGamut> const clone(gamut->Clone());
    Use(*clone, *stream);
    CheckSame(*gamut, *clone);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SrSetAllocationGate([](std::size_t size) { return size <= 1 << 16; });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    try {
        Run(data, size);
    } catch (std::exception const& exception) {
        long const code = CodeOf(exception);
        Check(code == SkEndOfFile() || code == SkUnknownGamutError());
    }
    return 0;
}
