// Named sections inside one random stream: a file that holds several things finds each by type and version.
//
// A section is a header and, behind it, `length` bytes. Sections stand one behind the other from position 0.
//
//     offset   0       4      8        12      16
//            "CtSc"   type  version  length  name     each number big-endian, unsigned, 32 bits;
//                                                     the name as a path string, empty for none
#pragma once

#include <cstdint>

#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/stream.h"

class FRAMEWRIGHT_EXPORT ScCatalogStream {
  public:
    virtual ~ScCatalogStream();
    /// The stream to transfer a prepared section's bytes through; borrowed, null without a stream. Nothing
    /// keeps a reader inside its section.
    SmStream* GetStream() const { return mStream; }
    /// True when the stream begins with a section. The position stays.
    virtual bool IsCatalogStream() const;

  protected:
    SmRandomStream* mStream = nullptr;
};

class FRAMEWRIGHT_EXPORT ScCatalogWriteStream : public ScCatalogStream {
  public:
    /// Sections are appended at the end of `stream`, which stays the caller's.
    void ICatalogStream(SmRandomStream* stream);
    /// Opens a section; `name` may be null. False without a stream or with a section already open. Of `type`
    /// and `version` the low 32 bits are stored.
    bool PrepareStreamForWrite(unsigned long type, unsigned long version, char const* name);
    /// Closes the section: its length, up to the stream's end, goes into its header, and the position to the
    /// end. Does nothing when none is open.
    void FinishStreamWrite();

  private:
    std::uint32_t mLengthPosition = 0;  ///< of the open section's length field; 0 when none is open
    std::uint32_t mBodyPosition = 0;    ///< of the open section's first byte
};

class FRAMEWRIGHT_EXPORT ScCatalogReadStream : public ScCatalogStream {
  public:
    /// `stream` stays the caller's; one without a position holds no catalog.
    void ICatalogStream(SmStream* stream);
    /// Finds the first section of that type and version (and name, unless null) and stands at its first byte.
    /// False, with the position as it was, when there is none. A header that is cut off, or whose length
    /// leads beyond the stream's end, throws.
    bool PrepareStreamForRead(unsigned long type, unsigned long version, char const* name);
};
