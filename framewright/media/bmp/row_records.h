// Which frames are read and written by whole rows in memory, and which pixel by pixel through their
// operations. Both roads give the same pixels; the first needs no virtual call a pixel.
#pragma once

#include <optional>
#include <typeinfo>

#include "framewright/frame/frame.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/frame/registries.h"
#include "framewright/frame/row_lock.h"
#include "framewright/pixel/pixels.h"
#include "framewright/thornmere/reference.h"

namespace bmp {

/// Whether a row's address leads to pixels that lie there one after the other in the form of the frame's
/// record. So it is with the classes that the frame factory makes; a frame of another class, a window onto a
/// part of a parent for one or a host's own class derived from a layer, may move or convert pixels on their
/// way.
inline bool HasPlainRows(SmImagerFrame* frame) {
    auto const isOfTheClassOf = [frame](SmImagerFrame& made) { return typeid(made) == typeid(*frame); };
    SmImagerFrame* prototype = nullptr;
    if (ScLayerRegistry::GetObjectByID(frame->GetClass(), false, prototype))
        return isOfTheClassOf(*prototype);
    // Prototypes have their rows in memory. Those whose rows can leave it are known by what the factory
    // makes.
    auto const made =
        StRef<SmImagerFrame>::Adopt(SrMakeLayerWithSpooling({1, 1}, frame->PixelID(), true, false));
    return made && isOfTheClassOf(*made);
}

/// A list of records, for choosing one by the id that a frame gives.
template <class... Records>
struct StRecordList {
    static bool Contains(unsigned long pixelID) { return ((pixelID == Records::PixelID()) || ...); }
    /// Calls `visit` with a record of that id; does nothing for an id that is not in the list.
    template <class Visitor>
    static void Visit(unsigned long pixelID, Visitor visit) {
        (void)((pixelID == Records::PixelID() && (visit(Records{}), true)) || ...);
    }
};

/// The colour records of the frames that are common with BMP files.
using ColorRecords = StRecordList<StRGBA32Pixel, StRGB32Pixel, StRGB24Pixel, StRGB15Pixel>;
using MappedRecords = StRecordList<StMapped8Pixel, StMapped4Pixel, StMapped2Pixel, StMapped1Pixel>;

/// Keeps one row of a frame in memory, and its address at hand while row after row is visited.
class ScLockedRow {
  public:
    explicit ScLockedRow(SmImagerFrame* frame) : mFrame(frame) {}

    void* At(long row) {
        if (!mLock || row != mRow) {
            mLock.reset();
            mLock.emplace(*mFrame, row);
            mRow = row;
        }
        return mLock->Address();
    }

  private:
    SmImagerFrame* mFrame;
    long mRow = 0;
    std::optional<frame::StRowLock> mLock;
};

}  // namespace bmp
