// Draws a line into a frame, reduces it to sixteen colours and saves it as poster.bmp.
#include <framewright/framewright.h>

int main() {
    // A frame of 120 rows by 160 columns, blue, green, red and alpha bytes, on rows in memory.
    auto frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({120, 160}, SrCode("ColB"), false, false));
    frame->SetBackground({128, 64, 0, 255});
    frame->Erase();
    for (long x = 0; x < 160; ++x)
        frame->PutPixelAt(x, x * 3 / 4, StRGBA32Pixel{0, 255, 255, 255});

    // The same picture in sixteen colours, error-diffused: the palette is made for it first.
    auto poster = StRef<SmImagerFrame>::Adopt(SrMakeFrame({120, 160}, SrCode("Map4"), false, false));
    SrStuffOptimalColorMap(*SrGetColorMapFromFrame(poster.Get()), 4, frame.Get(), nullptr);
    poster->BlitRect(frame.Get(), {0, 0, 120, 160}, {0, 0});

    // The format is the one that the type code names.
    ScMediaFileLocation location;
    location.SetFullPath("poster.bmp");
    SrSaveObjectToMedia(&location, SmImagerFrame::Class(), poster.Get(), SrCode("BMP "), nullptr);
}
