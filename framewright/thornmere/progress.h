// How a long operation tells a host how far it has come.
#pragma once

#include "framewright/thornmere/export.h"

/// Made by the host and passed through; the library never makes one, and takes null everywhere.
class FRAMEWRIGHT_EXPORT ScProgressIndicator {
  public:
    virtual ~ScProgressIndicator();
    /// `done` of `total` steps; a total of 0 means that the caller does not know it. May throw to cancel.
    virtual void Report(long done, long total) = 0;
};
