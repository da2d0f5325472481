// Integers of a stated byte order on a stream, and moves along a stream that take the end of the file for an
// ordinary result. Foreign file formats are read and written through these routines: big-endian ones pass
// `theirs` false, little-endian ones true.
#pragma once

#include "framewright/thornmere/export.h"

class SmRandomStream;
class SmStream;

/// True on a little-endian processor. What callers pass as `ours`.
FRAMEWRIGHT_EXPORT bool SrOurByteOrder();

// Each routine transfers one value of the width in its name; the bytes are swapped exactly when the byte
// orders `ours` and `theirs` differ (true is little-endian). Failures of the stream pass through as
// exceptions; a read that fails leaves `value` alone. A `long` carries 32 bits: a read extends them, a write
// takes the low ones.
FRAMEWRIGHT_EXPORT void SrReadOrderedUInt8(SmStream* stream, unsigned char& value, bool ours, bool theirs);
FRAMEWRIGHT_EXPORT void SrReadOrderedInt8(SmStream* stream, signed char& value, bool ours, bool theirs);
FRAMEWRIGHT_EXPORT void SrReadOrderedUInt16(SmStream* stream, unsigned short int& value, bool ours,
                                            bool theirs);
FRAMEWRIGHT_EXPORT void SrReadOrderedInt16(SmStream* stream, short int& value, bool ours, bool theirs);
FRAMEWRIGHT_EXPORT void SrReadOrderedUInt32(SmStream* stream, unsigned long int& value, bool ours,
                                            bool theirs);
FRAMEWRIGHT_EXPORT void SrReadOrderedInt32(SmStream* stream, long int& value, bool ours, bool theirs);
FRAMEWRIGHT_EXPORT void SrWriteOrderedUInt8(SmStream* stream, unsigned char const& value, bool ours,
                                            bool theirs);
FRAMEWRIGHT_EXPORT void SrWriteOrderedInt8(SmStream* stream, signed char const& value, bool ours,
                                           bool theirs);
FRAMEWRIGHT_EXPORT void SrWriteOrderedUInt16(SmStream* stream, unsigned short int const& value, bool ours,
                                             bool theirs);
FRAMEWRIGHT_EXPORT void SrWriteOrderedInt16(SmStream* stream, short int const& value, bool ours, bool theirs);
FRAMEWRIGHT_EXPORT void SrWriteOrderedUInt32(SmStream* stream, unsigned long int const& value, bool ours,
                                             bool theirs);
FRAMEWRIGHT_EXPORT void SrWriteOrderedInt32(SmStream* stream, long int const& value, bool ours, bool theirs);

/// Reads an unsigned value of 8, 16 or 32 bits. 64 is a rational: two 32-bit values, of which the first
/// divided by the second is given; a second value of 0 throws SkBadStreamFormatErrC(). Any other width reads
/// nothing and gives 0.
FRAMEWRIGHT_EXPORT unsigned long SrReadOrderedSize(SmStream* stream, long bits, bool ours, bool theirs);

/// Reads up to `count` bytes and gives how many came; fewer is the end of the file. Never throws. A stream
/// with a position is read in one call, any other byte by byte.
FRAMEWRIGHT_EXPORT unsigned int SrStreamIn(SmStream* stream, void* buffer, unsigned int count);
/// Writes `count` bytes in one call and gives how many went out. Never throws: after a failure a stream with
/// a position gives the distance moved, any other 0.
FRAMEWRIGHT_EXPORT unsigned int SrStreamOut(SmStream* stream, void* buffer, unsigned int count);
/// Sets the position and returns it. The middle argument is not used.
FRAMEWRIGHT_EXPORT unsigned int SrStreamSeek(SmRandomStream* stream, int, unsigned int position);
/// Reads `count` bytes away, on streams without a position too, and gives how many there were. Never throws.
FRAMEWRIGHT_EXPORT unsigned int SrStreamSkip(SmStream* stream, unsigned int count);

/// A block of `words` 4-byte words, aligned for 8 bytes; -108 when memory refuses it or when its size does
/// not fit the 32-bit size word that lies in front of it. Give it back with SrMediaDelete.
FRAMEWRIGHT_EXPORT void* SrMediaNew(unsigned int words);
/// Gives back a block of SrMediaNew; null is allowed. Always null.
FRAMEWRIGHT_EXPORT void* SrMediaDelete(void* block);
