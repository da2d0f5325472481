// Draws into pictures far larger than the memory that the program allows them. docs/spooling.md tells what
// happens here, and why.
#include <framewright/framewright.h>

#include <cstdio>

namespace {

constexpr unsigned kCap = 8 << 20;    // bytes of rows in memory
constexpr StPoint kSize{2048, 4096};  // 32 MiB in 32-bit pixels

/// Asked before each allocation: no more rows than the cap. It must only look, never draw.
bool AllowUnderCap(std::size_t size) {
    SmSpoolManager const* const manager = SrGetGlobalSpoolManager();
    return !manager || manager->MemoryInUse() + size <= kCap;
}

/// Between two pieces of work: leaves half of the cap free, so that another frame gets its first rows.
void MakeRoom() {
    SmSpoolManager* const manager = SrGetGlobalSpoolManager();
    while (manager->MemoryInUse() > kCap / 2) {
        if (manager->UseLessMemory(manager->MemoryInUse() - kCap / 2) == 0) break;
    }
}

StRef<SmImagerFrame> NewPicture() {
    // Spooled, since it is larger than 64 by 64 and the third argument asks for it.
    return StRef<SmImagerFrame>::Adopt(SrMakeFrame(kSize, SrCode("ColB"), true, false));
}

StRGBA32Pixel ColorAt(long x, long y) {
    return {static_cast<unsigned char>(x), static_cast<unsigned char>(y),
            static_cast<unsigned char>((x ^ y) >> 4), 255};
}

bool Draw() {
    StRef<SmImagerFrame> const picture = NewPicture();
    for (long y = 0; y < kSize.vertical; ++y) {
        // The lock keeps the row in memory while its address is used.
        auto* const row = static_cast<StRGBA32Pixel*>(picture->LockRow(y));
        for (long x = 0; x < kSize.horizontal; ++x)
            row[x] = ColorAt(x, y);
        picture->UnlockRow(y);
    }

    MakeRoom();
    StRef<SmImagerFrame> const copy = NewPicture();
    copy->BlitRect(picture.Get(), {0, 0, kSize.vertical, kSize.horizontal}, {0, 0});

    MakeRoom();
    long wrong = 0;
    for (long y = 0; y < kSize.vertical; ++y) {
        for (long x = 0; x < kSize.horizontal; ++x) {
            StRGBA32Pixel const expected = ColorAt(x, y), pixel = copy->GetRGBAPixelAt(x, y);
            wrong +=
                pixel.blue != expected.blue || pixel.green != expected.green || pixel.red != expected.red;
        }
    }
    std::printf("2 pictures of 32 MiB under a cap of 8 MiB: %ld wrong pixels\n", wrong);
    return wrong == 0;
}

}  // namespace

int main() {
    try {
        // Without a spool file no row can leave memory. The folder may be any with room on a local disk.
        SrAddImagerSpoolFileInFolder(StFileSpec("."));
        SrSetAllocationGate(AllowUnderCap);
        bool const fine = Draw();
        SrSetAllocationGate(nullptr);
        return fine ? 0 : 1;
    } catch (std::exception const& exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return 1;
    }
    // The spool file goes with the library.
}
