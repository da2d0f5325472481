// Media location records: the first byte says what is behind the stream, the rest is the record. What can be
// read is renumbered, written and read back.
#include <cstdint>
#include <exception>
#include <memory>

#include "framewright/media/media_location.h"
#include "framewright/thornmere/memory.h"
#include "fuzz/input.h"

namespace {

constexpr std::size_t kMostMemory = std::size_t{64} << 20;

/// A stream in memory that says that a file is behind it.
class StFileBehind : public SmMemoryStream {
  public:
    bool GetFileSpec(StFileSpec& spec) const override {
        spec = StFileSpec("/no such folder/of scenes/scene");
        return true;
    }
};

StRef<SmMemoryStream> NewStream(bool hasFile, void const* bytes, std::size_t size) {
    auto stream = StRef<SmMemoryStream>::Adopt(hasFile ? new StFileBehind : SmMemoryStream::New());
    stream->IMemoryStream(bytes, static_cast<unsigned int>(size));
    return stream;
}

void Exercise(ScMediaLocation& location, bool hasFile) {
    StFileInfo info;
    StFileSpec spec;
    location.GetFileInfo(info);
    location.GetFileSpec(spec);
    if (location.GetSequence() >= 0) location.SetSequence(location.GetSequence() + 1);
    std::unique_ptr<ScMediaLocation> const copy(location.Clone());
    Check(copy->GetClass() == location.GetClass());

    auto const written = NewStream(hasFile, nullptr, 0);
    copy->WriteTo(written.Get());
    if (written->GetLength() == 0) return;  // an open stream is not written
    written->SetPosition(0);
    std::unique_ptr<ScMediaLocation> const again(SrReadMediaLocationFromStream(written.Get()));
    Check(again->GetClass() == copy->GetClass());
    Check(written->GetPosition() == written->GetLength());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    SrSetAllocationGate([](std::size_t wanted) { return wanted <= kMostMemory; });
    bool const hasFile = data[0] & 1;
    try {
        auto const stream = NewStream(hasFile, data + 1, size - 1);
        std::unique_ptr<ScMediaLocation> const location(SrReadMediaLocationFromStream(stream.Get()));
        Exercise(*location, hasFile);
    } catch (std::exception const&) {
        // Bad records throw; that is what is wanted of them.
    }
    return 0;
}
