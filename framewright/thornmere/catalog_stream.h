// Named sections inside one random stream: a file that holds several things finds each by type and version.
//
// A section is a header - the mark "CtSc", then type, version and length, each a big-endian unsigned 32 bits,
// and the name as a path string - followed by `length` bytes. Sections stand one behind the other.
#pragma once

#include <cstdint>

#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"
#include "framewright/thornmere/stream.h"

class FRAMEWRIGHT_EXPORT ScCatalogStream {
  public:
    virtual ~ScCatalogStream();
    /// The stream to transfer a prepared section's bytes through; borrowed, null without a stream.
    SmStream* GetStream() const { return mStream; }
    /// True when the stream begins with a section.
    virtual bool IsCatalogStream() const;

  protected:
    SmRandomStream* mStream = nullptr;
};

class FRAMEWRIGHT_EXPORT ScCatalogWriteStream : public ScCatalogStream {
  public:
    /// Sections are appended at the end of `stream`, which stays the caller's.
    void ICatalogStream(SmRandomStream* stream);
    /// Opens a section; `name` may be null. False without a stream or with a section already open.
    bool PrepareStreamForWrite(unsigned long type, unsigned long version, char const* name);
    /// Closes the section: its length goes into its header.
    void FinishStreamWrite();

  private:
    std::uint32_t mLengthPosition = 0;  ///< of the open section's length field; 0 when none is open
};

class FRAMEWRIGHT_EXPORT ScCatalogReadStream : public ScCatalogStream {
  public:
    /// `stream` stays the caller's; one without a position holds no catalog.
    void ICatalogStream(SmStream* stream);
    /// Finds the first section of that type and version (and name, unless null) and stands at its first byte.
    bool PrepareStreamForRead(unsigned long type, unsigned long version, char const* name);
};
