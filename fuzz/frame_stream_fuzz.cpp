// Reads anything as a whole frame on a stream. What could be read is written again, plain and with runs, and
// read from each, which must give the same frame.
//
// The first byte chooses the kind of stream: bit 0 one that only runs forward and does not know its length,
// bit 1 rows that may leave memory. The record is behind it.
#include <cstdint>
#include <cstring>

#include "framewright/frame/frame_limit.h"
#include "framewright/frame/frame_stream.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/registries.h"
#include "framewright/pixel/dithered_layer.h"
#include "framewright/pixel/mapped_layer.h"
#include "framewright/thornmere/memory.h"
#include "fuzz/input.h"

namespace {

constexpr std::size_t kGreatestFrame = 1 << 18;
constexpr std::size_t kGreatestBlock = 1 << 20;

/// A frame whose body could not be read stays with whoever made it: here, with the prototype that was asked.
SmImagerFrame* gMade = nullptr;

template <class Layer>
class Maker : public Layer {
  public:
    SmImagerFrame* CloneAtNewSize(StPoint const& size, bool spooled, bool nativeBitmap) override {
        return gMade = Layer::CloneAtNewSize(size, spooled, nativeBitmap);
    }
};

/// Puts a Maker in the place of the class's prototype, if there is one.
template <class Layer>
void ReplacePrototype() {
    SmImagerFrame* prototype = nullptr;
    if (!ScLayerRegistry::GetObjectByID(Layer::Class(), false, prototype)) return;
    auto const maker = StRef<Maker<Layer>>::Adopt(new Maker<Layer>);
    maker->IImagerLayer({0, 0}, {1, 1}, false, nullptr, 0, nullptr);
    ScLayerRegistry::UnRegisterObject(Layer::Class());
    ScLayerRegistry::RegisterObject(Layer::Class(), maker.Get());
}

/// These records read where they should write.
bool CanBeWritten(SmImagerFrame& frame) {
    unsigned long const id = frame.PixelID();
    return id != SrCode("De16") && id != SrCode("De24") && id != SrCode("De32");
}

void WriteAndReadAgain(SmImagerFrame& frame, unsigned short compression) {
    // Plain rows without pixels claim no bytes, which their reader refuses.
    if (frame.GetSize().horizontal == 0) return;
    auto const first = MemoryStream(nullptr, 0);
    SrWriteImagerFrameToStream(*first, &frame, compression);
    first->SetPosition(0);
    auto const again = StRef<SmImagerFrame>::Adopt(SrReadImagerFrameFromStream(*first, false, false));
    gMade = nullptr;
    Check(first->GetPosition() == first->GetLength());
    auto const second = MemoryStream(nullptr, 0);
    SrWriteImagerFrameToStream(*second, again.Get(), compression);
    Check(first->GetLength() == second->GetLength());
    Check(std::memcmp(first->Data(), second->Data(), first->GetLength()) == 0);
}

void Run(std::uint8_t const* data, std::size_t size) {
    bool const forward = data[0] & 1, spooled = data[0] & 2;
    auto const stream = StreamOf(data + 1, size - 1, forward);
    auto const frame = StRef<SmImagerFrame>::Adopt(SrReadImagerFrameFromStream(*stream, spooled, false));
    gMade = nullptr;
    Check(frame.Get());
    if (!CanBeWritten(*frame)) return;
    WriteAndReadAgain(*frame, 0);
    WriteAndReadAgain(*frame, 1);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
#define ROW(Record, ...) ReplacePrototype<SmImagerLayer<Record, ScImagerNonSpool>>();
    FOR_EACH_LAYER_PIXEL(ROW)
#undef ROW
#define ROW(Record) ReplacePrototype<SmImagerMappedLayer<Record, ScImagerNonSpool>>();
    FOR_EACH_MAPPED_PIXEL(ROW)
#undef ROW
    ReplacePrototype<SmImagerDitheredLayer<StRGB15Pixel, ScImagerNonSpool>>();
    SrSetFrameSizeLimit(kGreatestFrame);
    SrSetAllocationGate([](std::size_t size) { return size <= kGreatestBlock; });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    gMade = nullptr;
    try {
        Run(data, size);
    } catch (std::exception const& exception) {
        if (gMade) gMade->ReleaseReference();
        bool unknownType = false;
        long const code = CodeOf(exception, &unknownType);
        Check(code == SkEndOfFile() || code == SkMemoryFull() || code == SkBadStreamFormatErrC() ||
              unknownType);
    }
    return 0;
}
