// The places in a spool file that hold rows of spoolers, in order of position. It takes no memory: the links
// are members of the rows, since a row is spooled just when memory is short.
#pragma once

#include <cstdint>

struct StSpoolRow;

namespace spool {

/// A search tree, balanced by chance: rows are ordered by position and stacked by a hash of it.
class ScHeldPlaces {
  public:
    /// Enters the place of a row: `bytes` bytes from its file position, where no other row is.
    void Hold(StSpoolRow& row, std::uint32_t bytes);
    /// Removes it; the row has the position that it was entered with. One that is not there is no error.
    void Release(StSpoolRow& row);
    /// Whether a row lies in any of the `bytes` bytes from `position`.
    bool Overlap(std::uint32_t position, std::uint32_t bytes) const {
        return EndOfOverlap(position, bytes) != 0;
    }
    /// The first position from `start` on where `bytes` bytes hold no row. All calls give one start.
    std::uint64_t FirstGap(std::uint32_t start, std::uint32_t bytes);
    /// The bytes of all rows together.
    std::uint32_t Bytes() const { return mBytes; }

  private:
    /// Where the last row ends that lies in any of the `bytes` bytes from `position`; 0 if none does.
    std::uint64_t EndOfOverlap(std::uint64_t position, std::uint32_t bytes) const;

    StSpoolRow* mRoot = nullptr;
    std::uint32_t mBytes = 0;
    // What the last search has found out: below this position there is no gap of so many bytes or more.
    std::uint64_t mSearchedTo = 0;
    std::uint32_t mSearchedBytes = 0;
};

}  // namespace spool
