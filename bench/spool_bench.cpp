// Rows that leave memory: resident ones beside rows in memory, and spilled ones beside pwrite and pread of
// the same rows in the same folder, which is $TMPDIR, else /tmp. Both files are new each time and have the
// rows at the same places, behind four bytes of mark.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "beside_floor.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/spool/spool_manager.h"

namespace {

constexpr std::int32_t kSide = 2048;

template <class Spool>
using Layer = SmImagerLayer<StRGBA32Pixel, Spool>;

template <class Spool>
StRef<Layer<Spool>> ErasedLayer() {
    auto layer = StRef<Layer<Spool>>::Adopt(Layer<Spool>::New());
    layer->IImagerLayer({0, 0}, {kSide, kSide}, false, nullptr, 0, nullptr);
    layer->SetBackground({1, 2, 3, 4});
    layer->Erase();
    return layer;
}

/// One read of a whole frame, on rows that leave memory and on rows that do not.
template <class Read>
void Resident(benchmark::State& state, Read read) {
    auto const spooled = ErasedLayer<ScImagerSpool>();
    auto const plain = ErasedLayer<ScImagerNonSpool>();
    bench::BesideFloor(
        state, [&] { read(*spooled); }, [&] { read(*plain); });
}

void ResidentRows(benchmark::State& state) {
    Resident(state, [](auto& layer) {
        unsigned sum = 0;
        for (long y = 0; y < kSide; ++y) {
            auto const* const row = static_cast<StRGBA32Pixel const*>(layer.GetRow(y));
            for (long x = 0; x < kSide; ++x)
                sum += row[x].blue + 3u * row[x].alpha;
        }
        benchmark::DoNotOptimize(sum);
    });
}
BENCHMARK(ResidentRows)->UseManualTime();

void ResidentMatchedPixels(benchmark::State& state) {
    Resident(state, [](auto& layer) {
        unsigned sum = 0;
        for (long y = 0; y < kSide; ++y) {
            for (long x = 0; x < kSide; ++x) {
                StRGBA32Pixel const pixel = layer.GetMatchedPixelAt(x, y);
                sum += pixel.blue + 3u * pixel.alpha;
            }
        }
        benchmark::DoNotOptimize(sum);
    });
}
BENCHMARK(ResidentMatchedPixels)->UseManualTime();

void ResidentFramePixels(benchmark::State& state) {
    Resident(state, [](SmImagerFrame& frame) {
        unsigned sum = 0;
        StRGBA32Pixel pixel{};
        for (long y = 0; y < kSide; ++y) {
            for (long x = 0; x < kSide; ++x) {
                frame.GetPixelAt(x, y, pixel);
                sum += pixel.blue + 3u * pixel.alpha;
            }
        }
        benchmark::DoNotOptimize(sum);
    });
}
BENCHMARK(ResidentFramePixels)->UseManualTime();

void ResidentBlit(benchmark::State& state) {
    auto const target = ErasedLayer<ScImagerNonSpool>();
    Resident(state, [&](SmImagerFrame& frame) { target->BlitRect(&frame, {0, 0, kSide, kSide}, {0, 0}); });
}
BENCHMARK(ResidentBlit)->UseManualTime();

// --- spilling

constexpr long kRowBytes = 64 * 1024;
constexpr long kMarkBytes = 4;
std::uint32_t gCap = 0;

std::string Folder() {
    char const* const folder = std::getenv("TMPDIR");
    return folder ? folder : "/tmp";
}

void FillRow(void* row, long y) {
    std::memset(row, static_cast<int>(y * 7 + 1), kRowBytes);
}

/// Something of every cache line.
std::uint64_t SumOf(void const* row) {
    auto const* const bytes = static_cast<unsigned char const*>(row);
    std::uint64_t sum = 0;
    for (long i = 0; i < kRowBytes; i += 64)
        sum += bytes[i];
    return sum;
}

std::uint64_t ExpectedSum(long rows) {
    std::uint64_t sum = 0;
    for (long y = 0; y < rows; ++y)
        sum += static_cast<unsigned char>(y * 7 + 1) * std::uint64_t{kRowBytes / 64};
    return sum;
}

/// Resident memory of this process in MiB.
double ResidentMemory() {
    std::ifstream status("/proc/self/statm");
    long pages = 0, resident = 0;
    status >> pages >> resident;
    return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / (1 << 20);
}

/// Rows through pwrite and pread of one buffer.
void WriteAndReadPlain(long rows, std::uint64_t expected, benchmark::State& state) {
    std::string path = Folder() + "/framewright-bench-XXXXXX";
    int const file = mkstemp(path.data());
    unlink(path.c_str());
    std::vector<char> row(kRowBytes);
    std::uint64_t sum = 0;
    for (long y = 0; y < rows; ++y) {
        FillRow(row.data(), y);
        if (pwrite(file, row.data(), kRowBytes, kMarkBytes + y * kRowBytes) != kRowBytes)
            state.SkipWithError("pwrite");
    }
    for (long y = 0; y < rows; ++y) {
        if (pread(file, row.data(), kRowBytes, kMarkBytes + y * kRowBytes) != kRowBytes)
            state.SkipWithError("pread");
        sum += SumOf(row.data());
    }
    close(file);
    if (sum != expected) state.SkipWithError("wrong bytes from the file");
}

void RenewManager() {
    SrInitializeGlobalSpoolManager(true);
    SrInitializeGlobalSpoolManager(false);
}

/// The same rows in a spooled frame. The spool files are made and go, as the plain file does.
void WriteAndReadSpooled(long rows, std::uint64_t expected, double& peak, benchmark::State& state) {
    RenewManager();
    for (int i = 0; i < 4; ++i)
        SrAddImagerSpoolFileInFolder(StFileSpec(Folder().c_str()));
    auto frame = StRef<SmImagerFrame>::Adopt(
        SrMakeFrame({static_cast<std::int32_t>(rows), kRowBytes / 4}, SrCode("ColB"), true, false));
    std::uint64_t sum = 0;
    for (long y = 0; y < rows; ++y) {
        FillRow(frame->LockRow(y), y);
        frame->UnlockRow(y);
        if (y % 512 == 0) peak = std::max(peak, ResidentMemory());
    }
    for (long y = 0; y < rows; ++y) {
        sum += SumOf(frame->LockRow(y));
        frame->UnlockRow(y);
        if (y % 512 == 0) peak = std::max(peak, ResidentMemory());
    }
    frame = nullptr;
    RenewManager();
    if (sum != expected) state.SkipWithError("wrong bytes from the frame");
}

/// Arguments: MiB of rows, MiB of the cap.
void Spilling(benchmark::State& state) {
    long const rows = static_cast<long>(state.range(0)) * (1 << 20) / kRowBytes;
    gCap = static_cast<std::uint32_t>(state.range(1) << 20);
    std::uint64_t const expected = ExpectedSum(rows);
    SrSetAllocationGate([](std::size_t size) {
        SmSpoolManager const* const manager = SrGetGlobalSpoolManager();
        return !manager || manager->MemoryInUse() + size <= gCap;
    });
    double peak = 0;
    bench::BesideFloor(
        state, [&] { WriteAndReadSpooled(rows, expected, peak, state); },
        [&] { WriteAndReadPlain(rows, expected, state); });
    SrSetAllocationGate(nullptr);
    state.counters["peak_MiB"] = peak;
}
BENCHMARK(Spilling)
    ->Args({512, 128})
    ->Args({1024, 128})
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

}  // namespace
