// Reads anything as an image on a stream. What could be read is written again and read from that, which must
// give the same image.
//
// The first byte chooses the kind of stream: bit 0 one that only runs forward and does not know its length,
// bit 1 rows that may leave memory, bit 2 an image that has layers already. The record is behind it.
#include <cstdint>

#include "framewright/frame/frame_limit.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/imagery/image_stream.h"
#include "framewright/pixel/gamut.h"
#include "framewright/thornmere/memory.h"
#include "fuzz/input.h"

namespace {

constexpr std::size_t kGreatestFrame = 1 << 18;
constexpr std::size_t kGreatestBlock = 1 << 20;

StRef<SmImagerImage> NewImage() {
    auto image = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
    image->IImagerImage();
    return image;
}

/// What the layers take together. Each may be as large as the limit for the bytes that it has on the stream,
/// and all together may have as much again beyond these.
void CheckSize(SmImagerImage& image, std::size_t streamBytes) {
    std::size_t bytes = 0;
    for (long i = 0; i < image.GetLayerCount(); ++i) {
        SmImagerFrame* const layer = image.GetLayer(i);
        bytes += static_cast<std::size_t>(layer->GetSize().vertical * layer->BytesPerRow());
    }
    Check(bytes <= kGreatestFrame + streamBytes);
}

bool CanBeWritten(SmImagerImage& image) {
    for (long i = 0; i < image.GetLayerCount(); ++i) {
        SmImagerFrame* const layer = image.GetLayer(i);
        unsigned long const id = layer->PixelID();
        // These records read where they should write, and plain rows without pixels claim no bytes.
        if (id == SrCode("De16") || id == SrCode("De24") || id == SrCode("De32")) return false;
        if (layer->GetSize().horizontal == 0) return false;
    }
    return true;
}

void WriteAndReadAgain(SmImagerImage& image, unsigned short compression) {
    auto const first = MemoryStream(nullptr, 0);
    SrPutImagerToStream(*first, &image, compression);
    first->SetPosition(0);
    auto const again = NewImage();
    SrGetImagerFromStream(*first, again.Get(), false, false);
    Check(first->GetPosition() == first->GetLength());
    Check(again->GetLayerCount() == image.GetLayerCount());
    auto const second = MemoryStream(nullptr, 0);
    // The size that an image tells is that of its layers once it has been read.
    again->SetSize(image.GetSize());
    SrPutImagerToStream(*second, again.Get(), compression);
    Check(first->GetLength() == second->GetLength());
    Check(std::memcmp(first->Data(), second->Data(), first->GetLength()) == 0);
}

void Run(std::uint8_t const* data, std::size_t size) {
    bool const forward = data[0] & 1, spooled = data[0] & 2, filled = data[0] & 4;
    auto const stream = StreamOf(data + 1, size - 1, forward);
    auto const image = NewImage();
    if (filled) image->SetLayer(1, StRef<SmImagerFrame>::Adopt(image->MakeLayer(0, false)).Get());
    SrGetImagerFromStream(*stream, image.Get(), spooled, false);
    Check(image->GetGamut());
    if (filled) return;
    CheckSize(*image, size);
    if (!CanBeWritten(*image)) return;
    WriteAndReadAgain(*image, 0);
    WriteAndReadAgain(*image, 1);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SrSetFrameSizeLimit(kGreatestFrame);
    SrSetAllocationGate([](std::size_t size) { return size <= kGreatestBlock; });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    try {
        Run(data, size);
    } catch (std::exception const& exception) {
        bool unknownType = false;
        long const code = CodeOf(exception, &unknownType);
        Check(code == SkEndOfFile() || code == SkMemoryFull() || code == SkBadStreamFormatErrC() ||
              code == SkUnknownGamutError() || unknownType);
    }
    return 0;
}
