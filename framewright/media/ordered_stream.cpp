#include "framewright/media/ordered_stream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "framewright/core/startup.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/stream.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);

namespace {

/// The 32-bit words in front of a block of SrMediaNew.
struct StMediaBlockHeader {
    std::uint32_t mark;
    std::uint32_t size;  ///< of the whole block, this header included
};
constexpr std::uint32_t kMediaBlockMark = 0xDEAD;

constexpr unsigned int kSkipBlock = 128;

void SwapIfForeign(void* value, std::size_t size, bool ours, bool theirs) {
    if (ours != theirs) {
        auto* const bytes = static_cast<unsigned char*>(value);
        std::reverse(bytes, bytes + size);
    }
}

/// Stored is the value's form on the stream, Value what the caller holds.
template <class Stored, class Value>
void ReadOrdered(SmStream* stream, Value& value, bool ours, bool theirs) {
    Stored stored;
    stream->Read(sizeof stored, &stored);
    SwapIfForeign(&stored, sizeof stored, ours, theirs);
    value = stored;
}

template <class Stored, class Value>
void WriteOrdered(SmStream* stream, Value const& value, bool ours, bool theirs) {
    Stored stored = static_cast<Stored>(value);
    SwapIfForeign(&stored, sizeof stored, ours, theirs);
    stream->Write(sizeof stored, &stored);
}

SmRandomStream* AsRandomStream(SmStream* stream) {
    return stream->IsMemberOf(SmRandomStream::Class()) ? static_cast<SmRandomStream*>(stream) : nullptr;
}

/// Runs `transfer`, which moves `count` bytes on `stream`, and gives how many it moved.
template <class Transfer>
unsigned int MoveOnRandomStream(SmRandomStream* stream, unsigned int count, Transfer transfer) {
    try {
        unsigned int const start = stream->GetPosition();
        try {
            transfer();
            return count;
        } catch (...) {
            // A read that starts behind the end moves the position back to the end.
            unsigned int const end = stream->GetPosition();
            return end > start ? end - start : 0;
        }
    } catch (...) {
        return 0;  // a stream that does not even tell its position
    }
}

}  // namespace

bool SrOurByteOrder() {
    std::uint16_t const one = 1;
    unsigned char first;
    std::memcpy(&first, &one, 1);
    return first == 1;
}

void SrReadOrderedUInt8(SmStream* stream, unsigned char& value, bool ours, bool theirs) {
    ReadOrdered<std::uint8_t>(stream, value, ours, theirs);
}

void SrReadOrderedInt8(SmStream* stream, signed char& value, bool ours, bool theirs) {
    ReadOrdered<std::int8_t>(stream, value, ours, theirs);
}

void SrReadOrderedUInt16(SmStream* stream, unsigned short int& value, bool ours, bool theirs) {
    ReadOrdered<std::uint16_t>(stream, value, ours, theirs);
}

void SrReadOrderedInt16(SmStream* stream, short int& value, bool ours, bool theirs) {
    ReadOrdered<std::int16_t>(stream, value, ours, theirs);
}

void SrReadOrderedUInt32(SmStream* stream, unsigned long int& value, bool ours, bool theirs) {
    ReadOrdered<std::uint32_t>(stream, value, ours, theirs);
}

void SrReadOrderedInt32(SmStream* stream, long int& value, bool ours, bool theirs) {
    ReadOrdered<std::int32_t>(stream, value, ours, theirs);
}

void SrWriteOrderedUInt8(SmStream* stream, unsigned char const& value, bool ours, bool theirs) {
    WriteOrdered<std::uint8_t>(stream, value, ours, theirs);
}

void SrWriteOrderedInt8(SmStream* stream, signed char const& value, bool ours, bool theirs) {
    WriteOrdered<std::int8_t>(stream, value, ours, theirs);
}

void SrWriteOrderedUInt16(SmStream* stream, unsigned short int const& value, bool ours, bool theirs) {
    WriteOrdered<std::uint16_t>(stream, value, ours, theirs);
}

void SrWriteOrderedInt16(SmStream* stream, short int const& value, bool ours, bool theirs) {
    WriteOrdered<std::int16_t>(stream, value, ours, theirs);
}

void SrWriteOrderedUInt32(SmStream* stream, unsigned long int const& value, bool ours, bool theirs) {
    WriteOrdered<std::uint32_t>(stream, value, ours, theirs);
}

void SrWriteOrderedInt32(SmStream* stream, long int const& value, bool ours, bool theirs) {
    WriteOrdered<std::int32_t>(stream, value, ours, theirs);
}

unsigned long SrReadOrderedSize(SmStream* stream, long bits, bool ours, bool theirs) {
    auto const read = [&]<class Stored>(Stored) {
        unsigned long value = 0;
        ReadOrdered<Stored>(stream, value, ours, theirs);
        return value;
    };
    switch (bits) {
        case 8:
            return read(std::uint8_t{});
        case 16:
            return read(std::uint16_t{});
        case 32:
            return read(std::uint32_t{});
        case 64: {
            unsigned long const numerator = read(std::uint32_t{});
            unsigned long const denominator = read(std::uint32_t{});
            if (denominator == 0) SrThrow(SkBadStreamFormatErrC(), nullptr);
            return numerator / denominator;
        }
        default:
            return 0;
    }
}

unsigned int SrStreamIn(SmStream* stream, void* buffer, unsigned int count) {
    if (SmRandomStream* const random = AsRandomStream(stream)) {
        return MoveOnRandomStream(random, count, [&] { random->Read(count, buffer); });
    }
    auto* const bytes = static_cast<unsigned char*>(buffer);
    unsigned int read = 0;
    try {
        for (; read < count; ++read)
            stream->Read(1, bytes + read);
    } catch (...) {
        // The end of the file: what came so far is the result.
    }
    return read;
}

unsigned int SrStreamOut(SmStream* stream, void* buffer, unsigned int count) {
    if (SmRandomStream* const random = AsRandomStream(stream)) {
        return MoveOnRandomStream(random, count, [&] { random->Write(count, buffer); });
    }
    try {
        stream->Write(count, buffer);
        return count;
    } catch (...) {
        return 0;
    }
}

unsigned int SrStreamSeek(SmRandomStream* stream, int, unsigned int position) {
    stream->SetPosition(position);
    return position;
}

unsigned int SrStreamSkip(SmStream* stream, unsigned int count) {
    unsigned char scratch[kSkipBlock];
    unsigned int skipped = 0;
    for (unsigned int blocks = count / kSkipBlock; blocks > 0; --blocks) {
        unsigned int const came = SrStreamIn(stream, scratch, kSkipBlock);
        skipped += came;
        if (came < kSkipBlock) break;
    }
    return skipped + SrStreamIn(stream, scratch, count % kSkipBlock);
}

void* SrMediaNew(unsigned int words) {
    std::uint64_t const size = std::uint64_t{words} * 4 + 12;
    if (size > UINT32_MAX) SrThrow(SkMemoryFull(), nullptr);
    void* const block = SrAllocatePointer(static_cast<std::size_t>(size));
    SrThrowIfNIL(block);
    StMediaBlockHeader const header{kMediaBlockMark, static_cast<std::uint32_t>(size)};
    std::memcpy(block, &header, sizeof header);
    return static_cast<unsigned char*>(block) + sizeof header;
}

void* SrMediaDelete(void* block) {
    if (!block) return nullptr;
    void* const whole = static_cast<unsigned char*>(block) - sizeof(StMediaBlockHeader);
    StMediaBlockHeader header;
    std::memcpy(&header, whole, sizeof header);
    return SrDeallocatePointer(whole, header.size);
}
