#include "framewright/spool/held_places.h"

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
    row.heldBytes = 0;
    row.heldBefore = row.heldBehind = nullptr;
}

bool ScHeldPlaces::Overlap(std::uint32_t position, std::uint32_t bytes) const {
    std::uint64_t const end = std::uint64_t{position} + bytes;
    StSpoolRow const* last = nullptr;  // of those that begin before the end
    for (StSpoolRow const* row = mRoot; row;) {
        bool const beginsBefore = row->filePosition < end;
        if (beginsBefore) last = row;
        row = beginsBefore ? row->heldBehind : row->heldBefore;
    }
    return last && std::uint64_t{last->filePosition} + last->heldBytes > position;
}

}  // namespace spool
