// Reads anything as a BMP file, into a frame that the reader makes or one of any kind, from a stream with or
// without a position. What was read is written and read again, which must give the same colours.
//
// The reserved bytes of the file header, at 6 to 8, choose among these; a plain file has zeros there.
#include <cstdint>

#include "framewright/frame/frame_limit.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/media/bmp.h"
#include "framewright/thornmere/memory.h"
#include "fuzz/input.h"

namespace {

constexpr std::size_t kGreatestFrame = 1 << 18;
constexpr std::size_t kGreatestBlock = 1 << 20;

constexpr unsigned long kKinds[] = {
    0,  // the reader's choice
    SrCode("ColB"),
    SrCode("RG32"),
    SrCode("RG24"),
    SrCode("RG15"),
    SrCode("RG64"),
    SrCode("Gry8"),
    SrCode("Gry2"),
    SrCode("BnW1"),
    SrCode("Map8"),
    SrCode("Map4"),
    SrCode("Map2"),
    SrCode("Map1"),
    SrCode("Alp8"),
    SrCode("DepF"),
    SrCode("De24"),
    SrCode("CMYK"),
};

void WriteAndReadAgain(SmMediaRecognizerBmp& recognizer, SmImagerFrame& frame) {
    auto const stream = MemoryStream(nullptr, 0);
    ScMediaLocationOpenMedia location;
    location.SetStream(stream.Get());
    recognizer.WriteFrame(&location, &frame, 0, nullptr);
    stream->SetPosition(0);
    SmImagerFrame* made = nullptr;
    recognizer.ReadFrame(&location, made, 0, nullptr, 0);
    auto const again = StRef<SmImagerFrame>::Adopt(made);
    Check(again->GetSize() == frame.GetSize());
    for (long y = 0; y < frame.GetSize().vertical; ++y) {
        for (long x = 0; x < frame.GetSize().horizontal; ++x) {
            Check((frame.GetRGBAPixelAsLong(x, y) & 0xFFFFFF) ==
                  (again->GetRGBAPixelAsLong(x, y) & 0xFFFFFF));
        }
    }
}

void Run(std::uint8_t const* data, std::size_t size) {
    std::uint8_t const kind = size > 6 ? data[6] : 0;
    std::uint8_t const shape = size > 7 ? data[7] : 0;
    auto const stream = StreamOf(data, size, shape & 1);
    ScMediaLocationOpenMedia location;
    location.SetStream(stream.Get());
    auto const recognizer = StRef<SmMediaRecognizerBmp>::Adopt(SmMediaRecognizerBmp::New());
    StRef<SmImagerFrame> frame;
    if (unsigned long const id = kKinds[kind % std::size(kKinds)]) {
        StPoint const frameSize{shape >> 2 & 7, shape >> 5};
        frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame(frameSize, id, false, false));
        frame->SetBackground({1, 2, 3, 4});
        frame->Erase();
    }
    SmImagerFrame* result = frame.Get();
    recognizer->ReadFrame(&location, result, 0, nullptr, shape & 2 ? SrCode("RESZ") : 0);
    Check(result);
    if (!frame) frame = StRef<SmImagerFrame>::Adopt(result);
    Check(result == frame.Get());
    WriteAndReadAgain(*recognizer, *frame);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SrSetFrameSizeLimit(kGreatestFrame);
    SrSetAllocationGate([](std::size_t size) { return size <= kGreatestBlock; });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    try {
        Run(data, size);
    } catch (std::exception const& exception) {
        long const code = CodeOf(exception);
        Check(code == SkEndOfFile() || code == SkMemoryFull());
    }
    return 0;
}
