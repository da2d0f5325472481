// What the tests of spooling share: a fresh manager with spool files in a folder of the test, a clock that
// stands still, rows with contents of their own.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "../thornmere/support.h"
#include "framewright/spool/imager_spool.h"
#include "framewright/spool/spool_manager.h"
#include "framewright/thornmere/threads.h"

namespace testing_spool {

/// The clock while a Spooling test runs.
inline std::uint32_t gTick = 1;

/// Each test starts with a new manager without spool files and with a still clock, in a folder of its own.
class Spooling : public testing::Test {
  protected:
    Spooling() {
        RenewManager();
        gTick = 1;
        SrSetTickSource([] { return gTick; });
    }
    ~Spooling() override {
        SrSetAllocationGate(nullptr);
        SrSetTickSource(nullptr);
        RenewManager();
    }

    static void RenewManager() {
        SrInitializeGlobalSpoolManager(true);
        SrInitializeGlobalSpoolManager(false);
    }
    static SmSpoolManager& Manager() { return *SrGetGlobalSpoolManager(); }

    /// Adds a spool file named by a tick of its own.
    void AddFile(unsigned int maximumSize = 0x20000000) {
        std::uint32_t const tick = gTick;
        gTick = mNextFileTick++;
        Manager().AddSpoolFile(StFileSpec((Folder() / "any").c_str()), maximumSize);
        gTick = tick;
    }
    std::filesystem::path Folder() const { return mFolder.Path(); }
    /// The names in the folder, in order.
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(Folder()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    TemporaryFolder mFolder;
    std::uint32_t mNextFileTick = 1000;
};

/// Runs `work` on a thread that is not first-class, to its end.
template <class Work>
void OnOtherThread(Work work) {
    std::thread(work).join();
}

/// Bytes that tell rows apart.
inline std::vector<unsigned char> RowBytes(unsigned seed, std::size_t bytes) {
    std::vector<unsigned char> row(bytes);
    for (std::size_t i = 0; i < bytes; ++i)
        row[i] = static_cast<unsigned char>(seed * 131 + i * 7 + (seed >> 8) + (i >> 8));
    return row;
}

/// A spooler whose row i was last locked at tick `ages[i]`, with rows of `bytes` bytes that hold
/// RowBytes(i, bytes).
inline void FillRows(ScImagerSpool& spooler, std::vector<std::uint32_t> const& ages, unsigned int bytes) {
    spooler.ISpooler(static_cast<long>(ages.size()), bytes, nullptr);
    for (std::size_t i = 0; i < ages.size(); ++i) {
        gTick = ages[i];
        auto const row = RowBytes(static_cast<unsigned>(i), bytes);
        std::memcpy(spooler.Lock(static_cast<long>(i), nullptr), row.data(), bytes);
        spooler.Unlock(static_cast<long>(i));
    }
}

/// Whether row `i` holds RowBytes(i, bytes); loads it.
inline testing::AssertionResult Holds(ScImagerSpool& spooler, long i, unsigned int bytes) {
    auto const row = RowBytes(static_cast<unsigned>(i), bytes);
    if (std::memcmp(spooler.GetPtrRow(i), row.data(), bytes) == 0) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "row " << i << " has other bytes";
}

}  // namespace testing_spool
