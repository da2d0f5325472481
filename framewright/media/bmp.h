// BMP files: Windows bitmaps of 1, 4, 8, 16, 24 and 32 bits, run-length encoded ones of 4 and 8 bits, and
// those with the short header of earlier days are read; 24-bit ones are written.
//
// A file is one still picture; numbered files make a sequence (see simple_media.h). Three ways of this reader
// are its own and stay, since pictures are known by them: a 1-bit file comes out with its first row at the
// top, a run of a 4-bit run-length file has one colour all along, and the red of 16 bits is taken from the
// high five bits of its second byte. A negative height, the mark of a file that runs from the top down, is
// taken for a huge one.
#pragma once

#include "framewright/core/startup.h"
#include "framewright/media/simple_media.h"

SM_CLASS(SmMediaRecognizerBmp, SmMediaSimple, 0);
class FRAMEWRIGHT_EXPORT SmMediaRecognizerBmp : public SmManaged<SmMediaRecognizerBmp> {
    friend SmManaged<SmMediaRecognizerBmp>;

  public:
    /// "BMP ".
    unsigned long GetType() override;
    /// "bmp" and "dib".
    bool GetFileDesc(long index, StMediaFileDesc& desc) override;

    /// 10 for a file with one of the extensions, whatever is in it, and for a file without any extension that
    /// begins with "BM" and has four bytes; else 0.
    short CanOpen(ScMediaLocation* location) override;
    /// Fills `frame`, or makes one of the file's size that holds its pixels as they are: mapped for a file
    /// with a palette, "RG15" for 16 bits, "RG32" for 24, "ColB" for 32. `option` "RESZ" resizes a given
    /// frame to the file's size; otherwise what falls outside of it is dropped. In a mapped frame of the
    /// file's depth the pixels keep their indices and the colour map takes the palette; into any other they
    /// go as colours.
    ///
    /// SkFileNotFound() when there is no stream; -39 for a file that ends before its pixels; -108 for a frame
    /// over SrGetFrameSizeLimit(), and for memory that is refused. Pixels that a short file has not are
    /// zeros.
    void ReadFrame(ScMediaLocation* location, SmImagerFrame*& frame, long number,
                   ScProgressIndicator* progress, unsigned long option) override;
    /// Writes over the file from its beginning, with the resolution that the current media's first track
    /// tells. A longer file that was there keeps its end. SkFileNotFound() when there is no stream.
    void WriteFrame(ScMediaLocation* location, SmImagerFrame* frame, long number,
                    ScProgressIndicator* progress) override;

  protected:
    SmMediaRecognizerBmp() = default;
    ~SmMediaRecognizerBmp() override;
    void CloneFrom(SmMediaRecognizerBmp const& other) { SmMediaSimple::CloneFrom(other); }
};
