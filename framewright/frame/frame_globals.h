// The globals of the frame source file that other files of the folder read.
#pragma once

namespace frame {

/// Thrown when a stream names a pixel type that no registered layer has.
long NoSuchLayerError();
/// Thrown when a layer is asked for by a class that is not registered.
long UnknownLayerClassError();

/// A frame is big, and so worth spooling, when its rows exceed the one and its columns the other.
extern long gSpoolThresholdHeight;
extern long gSpoolThresholdWidth;

}  // namespace frame
