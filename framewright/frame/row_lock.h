// A row held in memory for as long as this object stands on the stack, also when an exception passes.
#pragma once

#include <utility>

#include "framewright/frame/frame.h"

namespace frame {

class StRowLock {
  public:
    /// Nothing is held when LockRow throws.
    StRowLock(SmImagerFrame& frame, long row) : mFrame(&frame), mRow(row), mAddress(frame.LockRow(row)) {}
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

}  // namespace frame
