// Reading and writing BMP files of 2048 by 2048, beside reading the file and copying its rows, and beside one
// write of the same bytes.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "beside_floor.h"
#include "framewright/frame/frame.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/media/bmp.h"
#include "framewright/media/media_location.h"

namespace {

constexpr std::uint32_t kRows = 2048;
constexpr std::uint32_t kColumns = 2048;
constexpr std::size_t kHeaderBytes = 54;

class TemporaryFile {
  public:
    TemporaryFile() {
        std::string pattern = (std::filesystem::temp_directory_path() / "framewright-XXXXXX.bmp").string();
        close(mkstemps(pattern.data(), 4));
        mPath = pattern;
    }
    ~TemporaryFile() { unlink(mPath.c_str()); }
    char const* Path() const { return mPath.c_str(); }

  private:
    std::string mPath;
};

std::size_t StrideOf(unsigned bits) {
    return (kColumns * bits + 31) / 32 * 4;
}

/// A file of noise: header, palette, rows.
std::vector<unsigned char> FileBytes(unsigned bits) {
    std::vector<unsigned char> bytes;
    auto const put = [&](std::uint32_t value, int width) {
        for (int i = 0; i < width; ++i)
            bytes.push_back(static_cast<unsigned char>(value >> 8 * i));
    };
    std::uint32_t const palette = bits <= 8 ? 4u << bits : 0;
    auto const rows = static_cast<std::uint32_t>(StrideOf(bits) * kRows);
    put('B' | 'M' << 8, 2);
    put(kHeaderBytes + palette + rows, 4);
    put(0, 4);
    put(kHeaderBytes + palette, 4);
    put(40, 4);
    put(kColumns, 4);
    put(kRows, 4);
    put(1, 2);
    put(bits, 2);
    put(0, 4);
    put(rows, 4);
    put(2835, 4);
    put(2835, 4);
    put(0, 8);
    std::uint32_t state = 1;
    for (std::uint32_t i = 0; i < palette + rows; ++i) {
        state = state * 1664525 + 1013904223;
        bytes.push_back(static_cast<unsigned char>(state >> 24));
    }
    return bytes;
}

void WriteWhole(char const* path, std::vector<unsigned char> const& bytes) {
    int const file = open(path, O_WRONLY);
    if (write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) std::abort();
    close(file);
}

/// Reads the file into fresh memory and copies its rows into other fresh memory, which is the picture.
void ReadAndCopyRows(char const* path, std::size_t stride) {
    int const file = open(path, O_RDONLY);
    struct stat status;
    if (fstat(file, &status) != 0) std::abort();
    auto const size = static_cast<std::size_t>(status.st_size);
    auto const bytes = std::make_unique_for_overwrite<unsigned char[]>(size);
    if (read(file, bytes.get(), size) != status.st_size) std::abort();
    close(file);
    auto const rows = std::make_unique_for_overwrite<unsigned char[]>(stride * kRows);
    unsigned char const* const data = bytes.get() + size - stride * kRows;
    for (std::size_t y = 0; y < kRows; ++y) {
        std::memcpy(rows.get() + (kRows - 1 - y) * stride, data + y * stride, stride);
    }
    benchmark::DoNotOptimize(rows[0]);
}

void BmpLoad(benchmark::State& state) {
    auto const bits = static_cast<unsigned>(state.range(0));
    TemporaryFile const file;
    WriteWhole(file.Path(), FileBytes(bits));
    auto const recognizer = StRef<SmMediaRecognizerBmp>::Adopt(SmMediaRecognizerBmp::New());
    ScMediaFileLocation location;
    location.SetFullPath(file.Path());
    bench::BesideFloor(
        state,
        [&] {
            SmImagerFrame* frame = nullptr;
            recognizer->ReadFrame(&location, frame, 0, nullptr, 0);
            frame->ReleaseReference();
        },
        [&] { ReadAndCopyRows(file.Path(), StrideOf(bits)); });
}
BENCHMARK(BmpLoad)->ArgName("bits")->Arg(1)->Arg(4)->Arg(8)->Arg(16)->Arg(24)->Arg(32)->UseManualTime()->Unit(
    benchmark::kMillisecond);

/// The plain road: a frame of a kind that is written pixel by pixel.
void BmpLoadByPixel(benchmark::State& state) {
    TemporaryFile const file;
    WriteWhole(file.Path(), FileBytes(24));
    auto const recognizer = StRef<SmMediaRecognizerBmp>::Adopt(SmMediaRecognizerBmp::New());
    ScMediaFileLocation location;
    location.SetFullPath(file.Path());
    auto const frame =
        StRef<SmImagerFrame>::Adopt(SrMakeFrame({kRows, kColumns}, SrCode("RG64"), false, false));
    bench::BesideFloor(
        state,
        [&] {
            SmImagerFrame* given = frame.Get();
            recognizer->ReadFrame(&location, given, 0, nullptr, 0);
        },
        [&] { ReadAndCopyRows(file.Path(), StrideOf(24)); });
}
BENCHMARK(BmpLoadByPixel)->UseManualTime()->Unit(benchmark::kMillisecond);

void BmpSave(benchmark::State& state) {
    auto const pixelID = static_cast<unsigned long>(state.range(0));
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8)
        name.push_back(static_cast<char>(pixelID >> shift));
    state.SetLabel(name);
    auto const frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({kRows, kColumns}, pixelID, false, false));
    for (std::uint32_t y = 0; y < kRows; ++y) {
        for (std::uint32_t x = 0; x < kColumns; ++x) {
            frame->PutPixelAt(x, y,
                              StRGBA32Pixel{static_cast<unsigned char>(x), static_cast<unsigned char>(y),
                                            static_cast<unsigned char>(x ^ y), 255});
        }
    }
    TemporaryFile const saved, written;
    std::vector<unsigned char> const bytes = FileBytes(24);
    auto const recognizer = StRef<SmMediaRecognizerBmp>::Adopt(SmMediaRecognizerBmp::New());
    ScMediaFileLocation location;
    location.SetFullPath(saved.Path());
    bench::BesideFloor(
        state, [&] { recognizer->WriteFrame(&location, frame.Get(), 0, nullptr); },
        [&] { WriteWhole(written.Path(), bytes); });
}
BENCHMARK(BmpSave)
    ->ArgName("kind")
    ->Arg(SrCode("RG24"))
    ->Arg(SrCode("RG32"))
    ->Arg(SrCode("ColB"))
    ->Arg(SrCode("Map8"))
    ->Arg(SrCode("RG64"))
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
