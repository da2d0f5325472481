#include "framewright/spool/held_places.h"

#include <algorithm>

#include "framewright/spool/imager_spool.h"

namespace spool {
namespace {

/// What stands above what in the tree.
std::uint32_t Rank(StSpoolRow const& row) {
    std::uint32_t value = row.filePosition * 0x9E3779B9u;
    value ^= value >> 15;
    return value * 0x85EBCA6Bu;
}

}  // namespace

void ScHeldPlaces::Hold(StSpoolRow& row, std::uint32_t bytes) {
    row.heldBytes = bytes;
    if (bytes == 0) return;
    mBytes += bytes;
    std::uint32_t const position = row.filePosition;
    StSpoolRow** link = &mRoot;
    while (*link && Rank(**link) > Rank(row)) {
        link = position < (*link)->filePosition ? &(*link)->heldBefore : &(*link)->heldBehind;
    }
    // What stood here goes below the row, parted by position.
    StSpoolRow* rest = *link;
    *link = &row;
    StSpoolRow** before = &row.heldBefore;
    StSpoolRow** behind = &row.heldBehind;
    while (rest) {
        StSpoolRow**& end = rest->filePosition < position ? before : behind;
        StSpoolRow*& next = rest->filePosition < position ? rest->heldBehind : rest->heldBefore;
        *end = rest;
        end = &next;
        rest = next;
    }
    *before = *behind = nullptr;
}

void ScHeldPlaces::Release(StSpoolRow& row) {
    StSpoolRow** link = &mRoot;
    while (*link && *link != &row) {
        link = row.filePosition < (*link)->filePosition ? &(*link)->heldBefore : &(*link)->heldBehind;
    }
    if (!*link) return;
    StSpoolRow* before = row.heldBefore;
    StSpoolRow* behind = row.heldBehind;
    while (before && behind) {
        StSpoolRow*& upper = Rank(*before) > Rank(*behind) ? before : behind;
        StSpoolRow*& next = &upper == &before ? before->heldBehind : behind->heldBefore;
        *link = upper;
        link = &next;
        upper = next;
    }
    *link = before ? before : behind;
    mBytes -= row.heldBytes;
    // A gap may begin as far before the row as it is long.
    std::uint64_t const gap = row.filePosition - std::min(row.filePosition, mSearchedBytes);
    mSearchedTo = std::min(mSearchedTo, gap);
    row.heldBytes = 0;
    row.heldBefore = row.heldBehind = nullptr;
}

std::uint64_t ScHeldPlaces::EndOfOverlap(std::uint64_t position, std::uint32_t bytes) const {
    StSpoolRow const* last = nullptr;  // of those that begin before the end
    for (StSpoolRow const* row = mRoot; row;) {
        bool const beginsBefore = row->filePosition < position + bytes;
        if (beginsBefore) last = row;
        row = beginsBefore ? row->heldBehind : row->heldBefore;
    }
    std::uint64_t const end = last ? std::uint64_t{last->filePosition} + last->heldBytes : 0;
    return end > position ? end : 0;
}

std::uint64_t ScHeldPlaces::FirstGap(std::uint32_t start, std::uint32_t bytes) {
    if (bytes < mSearchedBytes) mSearchedTo = 0;
    mSearchedBytes = bytes;
    mSearchedTo = std::max<std::uint64_t>(mSearchedTo, start);
    // Whatever began before that row's end would lie in it too.
    while (std::uint64_t const end = EndOfOverlap(mSearchedTo, bytes))
        mSearchedTo = end;
    return mSearchedTo;
}

}  // namespace spool
