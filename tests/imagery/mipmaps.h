// Mipmaps of all kinds for the tests, with the protected parts opened.
#pragma once

#include "frame/kinds.h"
#include "framewright/imagery/mipmap.h"

namespace testing_mipmaps {

template <class Record, class Spool = ScImagerNonSpool>
class Mipmap : public SmImagerMipmap<Record, Spool> {
  public:
    using SmImagerMipmap<Record, Spool>::RebuildLevels;
    /// How often each of the virtual operations of mipmaps ran.
    int samples = 0, gradients = 0;
    Record SampleLevel(float u, float v, long level, StTilingStyles const& tiling) override {
        ++samples;
        return SmImagerMipmap<Record, Spool>::SampleLevel(u, v, level, tiling);
    }
    void LevelDerivatives(float u, float v, float& du, float& dv, long level,
                          StTilingStyles const& tiling) override {
        ++gradients;
        SmImagerMipmap<Record, Spool>::LevelDerivatives(u, v, du, dv, level, tiling);
    }
};

template <class Record, class Spool = ScImagerNonSpool>
using MipmapRef = StRef<Mipmap<Record, Spool>>;

template <class Record, class Spool = ScImagerNonSpool>
MipmapRef<Record, Spool> NewMipmap(StPoint const& size, float maximumFilter = 1.0f) {
    auto mipmap = MipmapRef<Record, Spool>::Adopt(new Mipmap<Record, Spool>);
    mipmap->IImagerMipmap(size, maximumFilter, false);
    return mipmap;
}

/// One of random pixels in all levels.
template <class Record, class Spool = ScImagerNonSpool>
MipmapRef<Record, Spool> RandomMipmap(StPoint const& size, unsigned seed = 1) {
    auto mipmap = NewMipmap<Record, Spool>(size);
    testing_frames::FillRandom(*mipmap, testing_frames::KindOfID(Record::PixelID()), seed);
    mipmap->RebuildLevels();
    return mipmap;
}

/// For typed tests.
#define ROW(Record) , Record
using MipmapRecords = testing_frames::DropFirst<void FOR_EACH_MIPMAP_PIXEL(ROW)>::type;
#undef ROW

/// Any class of the family, as the class that knows its level table.
template <class Record>
SmImagerMipmap<Record, ScImagerNonSpool>& AsMipmap(SmImagerFrame& frame) {
    return static_cast<SmImagerMipmap<Record, ScImagerNonSpool>&>(frame);
}

}  // namespace testing_mipmaps

inline void PrintTo(StMipLevel const& level, std::ostream* out) {
    *out << "top " << level.top << " left " << level.left << " height " << level.height << " width "
         << level.width;
}
