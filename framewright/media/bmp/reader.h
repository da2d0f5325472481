// Reading a BMP file from a stream.
#pragma once

class SmImagerFrame;
class SmStream;

namespace bmp {

/// Reads the picture that begins where `stream` stands, into `frame` or, where that is null, into a new one
/// of the file's size and kind. The result is the frame; a new one carries one reference for the caller.
///
/// `option` "RESZ" gives a frame of the caller's the file's size first. Pixels that fall outside the frame
/// are dropped.
///
/// A stream with a position is moved to where the file says that its parts are. Any other is read on as it
/// comes, with nothing passed over, so it has to hold its parts one right behind the other.
///
/// -39 when the stream ends within headers or palette; missing pixels read as zeros. -108 for a frame over
/// the limit of frames, or memory that is refused.
SmImagerFrame* ReadPicture(SmStream* stream, SmImagerFrame* frame, unsigned long option);

}  // namespace bmp
