// Rows held in memory for as long as an object stands on the stack, also when an exception passes.
#pragma once

#include <utility>

#include "framewright/frame/frame.h"

namespace frame {

/// After a LockRow that threw: the layers whose rows leave memory count that lock too.
void GiveBackFailedLock(SmImagerFrame& frame, long row);

/// A row of any frame.
class StRowLock {
  public:
    /// Nothing is held when LockRow throws.
    StRowLock(SmImagerFrame& frame, long row) : mFrame(&frame), mRow(row) {
        try {
            mAddress = frame.LockRow(row);
        } catch (...) {
            GiveBackFailedLock(frame, row);
            throw;
        }
    }
    StRowLock(StRowLock const&) = delete;
    StRowLock& operator=(StRowLock const&) = delete;
    ~StRowLock() {
        try {
            Release();
        } catch (...) {
            // What goes wrong while a row is given back has nobody to tell: often another error is on its
            // way.
        }
    }

    void* Address() const { return mAddress; }

    /// Gives the row back now. The address must not be used afterwards.
    void Release() {
        if (SmImagerFrame* const frame = std::exchange(mFrame, nullptr)) frame->UnlockRow(mRow);
    }

  private:
    SmImagerFrame* mFrame;  ///< null once the row is given back
    long mRow;
    void* mAddress;
};

/// A row of a layer's own spooler, while a row of some other frame is fetched, which may be this one. Costs
/// nothing where rows never leave memory.
template <class Spool>
class StOwnRow {
  public:
    StOwnRow(Spool& spooler, long row) : mSpooler(spooler), mRow(row) {
        if constexpr (Spool::kRowsLeaveMemory) {
            try {
                mAddress = spooler.Lock(row, nullptr);
            } catch (...) {
                spooler.Unlock(row);
                throw;
            }
        } else {
            mAddress = spooler.GetPtrRow(row);
        }
    }
    StOwnRow(StOwnRow const&) = delete;
    StOwnRow& operator=(StOwnRow const&) = delete;
    ~StOwnRow() {
        if constexpr (Spool::kRowsLeaveMemory) mSpooler.Unlock(mRow);
    }

    void* Address() const { return mAddress; }

  private:
    Spool& mSpooler;
    long mRow;
    void* mAddress;
};

}  // namespace frame
