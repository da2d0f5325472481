// A row held in memory for as long as this object stands on the stack, also when an exception passes.
#pragma once

#include "framewright/frame/frame.h"

namespace frame {

class StRowLock {
  public:
    StRowLock(SmImagerFrame& frame, long row) : mFrame(frame), mRow(row), mAddress(frame.LockRow(row)) {}
    StRowLock(StRowLock const&) = delete;
    StRowLock& operator=(StRowLock const&) = delete;
    ~StRowLock() { mFrame.UnlockRow(mRow); }

    void* Address() const { return mAddress; }

  private:
    SmImagerFrame& mFrame;
    long mRow;
    void* mAddress;
};

}  // namespace frame
