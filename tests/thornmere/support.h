// What the framework's tests share: fresh folders, whole files, caught codes, refused memory.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

/// A fresh folder that goes with its contents.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "framewright-XXXXXX").string();
        mPath = mkdtemp(pattern.data());
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(mPath); }

    std::string const& Path() const { return mPath; }
    std::string operator/(std::string const& name) const { return mPath + "/" + name; }

  private:
    std::string mPath;
};

inline void WriteWholeFile(std::string const& path, std::string const& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string ReadWholeFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The code of what `action` throws; SkNothingCaught() when it throws nothing.
template <class Action>
long CaughtCode(Action action) {
    try {
        action();
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        return SrGetExceptionValues(exception, message);
    }
    return SkNothingCaught();
}

/// While one lives, every allocation of the framework is refused but for the first `allowed`.
class RefusedMemory {
  public:
    explicit RefusedMemory(int allowed = 0) {
        sAllowed = allowed;
        SrSetAllocationGate([](std::size_t) { return sAllowed-- > 0; });
    }
    RefusedMemory(RefusedMemory const&) = delete;
    RefusedMemory& operator=(RefusedMemory const&) = delete;
    ~RefusedMemory() { SrSetAllocationGate(nullptr); }

  private:
    static inline int sAllowed = 0;
};
