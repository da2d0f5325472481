// Draws a scene for both eyes into one frame, side by side: each eye through a window that is a frame by
// itself. Then cuts the eyes apart and lays them over one another for red and cyan glasses. Writes
// stereo.bmp, left.bmp and anaglyph.bmp; docs/drawing.md shows them.
#include <framewright/framewright.h>

namespace {

constexpr long kRows = 160, kColumns = 200, kGap = 8;
constexpr StStereoArrangement kBeside = 2;
constexpr StLeftOrRight kLeft = 1, kRight = 2;
using Frame = StRef<SmImagerFrame>;

Frame NewFrame(long rows, long columns) {
    StPoint const size{static_cast<std::int32_t>(rows), static_cast<std::int32_t>(columns)};
    return Frame::Adopt(SrMakeFrame(size, SrCode("ColB"), false, false));
}

void Fill(SmImagerFrame& frame, long top, long left, long bottom, long right, StRGBA32Pixel color) {
    StRect const rect{static_cast<std::int32_t>(top), static_cast<std::int32_t>(left),
                      static_cast<std::int32_t>(bottom), static_cast<std::int32_t>(right)};
    ScPrimitiveRect(rect, color, true).Replace(&frame);
}

/// A room with boxes that stand at distances from 1 to 4. `side` is -1 for the left eye and 1 for the right.
void DrawScene(SmImagerFrame& eye, float side) {
    for (long y = 0; y < kRows; ++y) {
        auto const shade = static_cast<std::uint8_t>(y < 90 ? 235 - y : 60 + y);
        Fill(eye, y, 0, y + 1, kColumns, {shade, shade, shade, 255});
    }
    struct StBox {
        float x, distance, width, height;
        StRGBA32Pixel color;
    };
    // The farthest first.
    for (StBox const& box :
         {StBox{60, 4.0f, 160, 240, {120, 110, 100, 255}}, StBox{-110, 3.0f, 110, 170, {140, 150, 120, 255}},
          StBox{40, 2.0f, 60, 100, {90, 140, 190, 255}}, StBox{-45, 1.4f, 44, 66, {150, 120, 170, 255}},
          StBox{38, 1.0f, 28, 36, {110, 170, 150, 255}}}) {
        // What is at distance 2 lies in the plane of the picture; nearer things shift against the eye.
        float const x = 100 + box.x / box.distance + side * 8 * (0.5f - 1 / box.distance);
        float const half = box.width / box.distance / 2, height = box.height / box.distance;
        auto const bottom = static_cast<long>(90 + 55 / box.distance);
        auto const left = static_cast<long>(x - half), right = static_cast<long>(x + half);
        auto const top = static_cast<long>(static_cast<float>(bottom) - height);
        Fill(eye, top, left, bottom, right, box.color);
        StRect const edge{static_cast<std::int32_t>(top), static_cast<std::int32_t>(left),
                          static_cast<std::int32_t>(bottom), static_cast<std::int32_t>(right)};
        ScPrimitiveRect(edge, {40, 40, 40, 255}, false).Merge(&eye);
    }
}

Frame Eye(Frame const& both, StLeftOrRight eye) {
    return Frame::Adopt(SrStereoSubframe(both.Get(), kBeside, eye, kGap));
}

/// A copy of what a window shows. By pixel: block copies out of a window begin at the parent's column 0.
Frame CutOut(SmImagerFrame& window) {
    StPoint const size = window.GetSize();
    Frame frame = NewFrame(size.vertical, size.horizontal);
    for (long y = 0; y < size.vertical; ++y)
        for (long x = 0; x < size.horizontal; ++x)
            frame->PutPixelAt(x, y, window.GetRGBAPixelAt(x, y));
    return frame;
}

void Save(Frame const& frame, char const* path) {
    ScMediaFileLocation location;
    location.SetFullPath(path);
    SrSaveObjectToMedia(&location, SmImagerFrame::Class(), frame.Get(), SrCode("BMP "), nullptr);
}

}  // namespace

int main() {
    Frame const both = NewFrame(kRows, 2 * kColumns + kGap);
    both->SetBackground(SkWhiteColorBytes());
    both->Erase();
    Frame const left = Eye(both, kLeft), right = Eye(both, kRight);
    DrawScene(*left, -1);
    DrawScene(*right, 1);
    Save(both, "stereo.bmp");
    Save(CutOut(*left), "left.bmp");

    // Red of the left eye, green and blue of the right one.
    Frame const anaglyph = CutOut(*right);
    for (long y = 0; y < kRows; ++y)
        for (long x = 0; x < kColumns; ++x) {
            StRGBA32Pixel color = anaglyph->GetRGBAPixelAt(x, y);
            color.red = left->GetRGBAPixelAt(x, y).red;
            anaglyph->PutPixelAt(x, y, color);
        }
    Save(anaglyph, "anaglyph.bmp");
}
