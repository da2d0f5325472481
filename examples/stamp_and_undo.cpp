// Stamps a shape onto pictures with XOR and takes it back by stamping it again: once on 32-bit colours, once
// on sixteen colours with a palette. Writes stamp.bmp with the pictures before, with the shape, and after;
// docs/drawing.md shows it. Fails if a picture does not come back.
#include <framewright/framewright.h>

#include <cmath>

namespace {

constexpr long kRows = 120, kColumns = 160, kGap = 8;
constexpr StRect kWhole{0, 0, kRows, kColumns};
using Frame = StRef<SmImagerFrame>;

Frame NewFrame(long rows, long columns, unsigned long pixelID) {
    StPoint const size{static_cast<std::int32_t>(rows), static_cast<std::int32_t>(columns)};
    return Frame::Adopt(SrMakeFrame(size, pixelID, false, false));
}

/// A hill before an evening sky, with a sun.
Frame Evening() {
    Frame frame = NewFrame(kRows, kColumns, SrCode("ColB"));
    for (long y = 0; y < kRows; ++y)
        for (long x = 0; x < kColumns; ++x) {
            float const down = static_cast<float>(y) / kRows;
            StColorFloats color{0.25f + 0.75f * down, 0.30f + 0.25f * down, 0.60f - 0.35f * down};
            float const hill = 95.0f - 25.0f * std::sin(static_cast<float>(x) * 0.025f);
            float const toSun = std::hypot(static_cast<float>(x) - 118.0f, static_cast<float>(y) - 62.0f);
            if (toSun < 20.0f) color = {1.0f, 0.85f, 0.45f};
            if (static_cast<float>(y) > hill) color = {0.08f, 0.20f + 0.2f * (1.0f - down), 0.12f};
            frame->PutPixelAt(x, y, color);
        }
    return frame;
}

/// The same in sixteen colours that are made for it, dithered.
Frame InSixteenColors(Frame const& picture) {
    Frame frame = NewFrame(kRows, kColumns, SrCode("Map4"));
    SrStuffOptimalColorMap(*SrGetColorMapFromFrame(frame.Get()), 4, picture.Get(), nullptr);
    frame->BlitRect(picture.Get(), kWhole, {0, 0});
    return frame;
}

/// A selection: a box with handles, and its diagonals. To draw it is to take it back.
void Stamp(SmImagerFrame& frame) {
    StRGBA32Pixel const color{255, 255, 255, 255};
    StRect const box{28, 60, 100, 148};
    ScPrimitiveRect(box, color, false).XOR(&frame);
    ScPrimitiveLine({box.top + 8, box.left + 8}, {box.bottom - 9, box.right - 9}, color).XOR(&frame);
    ScPrimitiveLine({box.bottom - 9, box.left + 8}, {box.top + 8, box.right - 9}, color).XOR(&frame);

    ScPrimitiveRect handle({-4, -4, 5, 5}, color, true);
    for (auto [row, column] : {std::pair{box.top, box.left},
                               {box.top, box.right},
                               {box.bottom, box.left},
                               {box.bottom, box.right}}) {
        // MoveAbsolute puts the top left corner there.
        handle.MoveAbsolute({static_cast<float>(row - 4), static_cast<float>(column - 4)});
        handle.XOR(&frame);
    }
}

bool Same(SmImagerFrame& a, SmImagerFrame& b) {
    for (long y = 0; y < kRows; ++y)
        for (long x = 0; x < kColumns; ++x)
            if (a.GetRGBAPixelAsLong(x, y) != b.GetRGBAPixelAsLong(x, y)) return false;
    return true;
}

}  // namespace

int main() {
    Frame const evening = Evening(), mapped = InSixteenColors(evening);
    Frame const sheet = NewFrame(2 * kRows + kGap, 3 * kColumns + 2 * kGap, SrCode("RG24"));
    sheet->SetBackground(SkWhiteColorBytes());
    sheet->Erase();

    std::int32_t top = 0;
    for (Frame const& frame : {evening, mapped}) {
        Frame const before = Frame::Adopt(frame->Clone());
        auto const show = [&](int place) {
            sheet->BlitRect(frame.Get(), kWhole, {top, static_cast<std::int32_t>(place * (kColumns + kGap))});
        };
        show(0);
        Stamp(*frame);
        show(1);
        Stamp(*frame);
        show(2);
        if (!Same(*before, *frame)) return 1;
        top += kRows + kGap;
    }

    ScMediaFileLocation location;
    location.SetFullPath("stamp.bmp");
    SrSaveObjectToMedia(&location, SmImagerFrame::Class(), sheet.Get(), SrCode("BMP "), nullptr);
}
