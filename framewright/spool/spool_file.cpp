#include "framewright/spool/spool_file.h"

#include <algorithm>

#include "framewright/spool/imager_spool.h"
#include "framewright/thornmere/error.h"

static constexpr unsigned char kMark[] = {'l', 's', 'P', 'S'};

/// Room for so many extents is there from the beginning: they grow while memory is short.
static constexpr std::size_t kFirstExtents = 256;

void StSpoolFile::Create(StFileSpec const& place, std::uint32_t maximum) {
    spec = place;
    maximumSize = maximum;
    freeExtents.reserve(kFirstExtents);
    // What a file will hold are pictures, and whatever memory held before them: they are the user's alone.
    if (long const error = SrFileCreatePrivate(spec)) SrThrow(error, nullptr);
    try {
        SrFileOpen(spec, file, kFileReadWrite);
        SrFileWrite(file, kMark, sizeof(kMark));
    } catch (...) {
        Remove();
        throw;
    }
    endOfData = sizeof(kMark);
}

void StSpoolFile::Remove() {
    SrFileClose(file, false);
    file = 0;
    SrFileDelete(spec);
}

bool StSpoolFile::Write(void const* row, std::uint32_t bytes, std::uint32_t& place) {
    for (StExtent* extent = freeExtents.begin(); extent != freeExtents.end(); ++extent) {
        if (!WriteToExtent(*extent, row, bytes)) continue;
        place = extent->position;
        if (extent->length == bytes) {
            freeExtents.erase(extent);
        } else {
            extent->position += bytes;
            extent->length -= bytes;
        }
        bytesInUse += bytes;
        return true;
    }
    if (std::uint64_t{endOfData} + bytes >= maximumSize || held.Overlap(endOfData, bytes)) return false;
    WriteAt(endOfData, row, bytes);
    place = endOfData;
    endOfData += bytes;
    bytesInUse += bytes;
    return true;
}

bool StSpoolFile::WriteInGap(void const* row, std::uint32_t bytes, std::uint32_t& place) {
    if (bytesInUse != held.Bytes()) return false;
    std::uint64_t const gap = held.FirstGap(sizeof(kMark), bytes);
    if (gap + bytes >= maximumSize) return false;
    auto const position = static_cast<std::uint32_t>(gap);
    WriteAt(position, row, bytes);
    place = position;
    endOfData = std::max(endOfData, position + bytes);
    bytesInUse += bytes;
    return true;
}

bool StSpoolFile::WriteToExtent(StExtent const& extent, void const* row, std::uint32_t bytes) {
    if (extent.length < bytes || held.Overlap(extent.position, bytes)) return false;
    try {
        WriteAt(extent.position, row, bytes);
    } catch (std::exception const&) {
        return false;  // not usable now; another place may be
    }
    return true;
}

void StSpoolFile::WriteAt(std::uint32_t position, void const* row, std::uint32_t bytes) {
    SrFileSetPos(file, position);
    SrFileWrite(file, row, bytes);
}

void StSpoolFile::Read(std::uint32_t position, void* row, std::uint32_t bytes) {
    SrFileSetPos(file, position);
    if (SrFileRead(file, row, bytes) != bytes) SrThrow(SkEndOfFile(), nullptr);
}

void StSpoolFile::Free(std::uint32_t position, std::uint32_t bytes) {
    bytesInUse -= bytes;
    StExtent* const next = std::find_if(freeExtents.begin(), freeExtents.end(),
                                        [position](StExtent const& e) { return e.position > position; });
    bool const hasNext = next != freeExtents.end();
    bool const meetsNext = hasNext && position + bytes == next->position;
    if (next != freeExtents.begin()) {
        StExtent& before = next[-1];
        if (position == before.position + before.length) {
            before.length += bytes;
            if (meetsNext) {
                before.length += next->length;
                freeExtents.erase(next);
            }
            return;
        }
    }
    if (meetsNext) {
        // Up, not down: the extent gives up the place that has just become free and claims as much behind its
        // old end. Rows there are told from free space by what the file holds.
        next->position += bytes;
        next->length += bytes;
        return;
    }
    try {
        freeExtents.insert(next, {position, bytes});
    } catch (std::exception const&) {
        // No memory for the entry: rows are worth more than room in the file, which is given up.
    }
}

void StSpoolFile::Forget(StSpoolRow& row) {
    bytesInUse -= row.heldBytes;
    held.Release(row);
}
