// Lays a moving texture onto a floor that runs to the horizon and draws it as floor.bmp: on the left as the
// frames of the track are, on the right from mipmaps. docs/movies.md shows it.
#include <framewright/framewright.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr long kFrames = 8;
constexpr std::int32_t kTexture = 128;  // rows and columns: powers of two keep their size in a mipmap
constexpr std::int32_t kRows = 240, kColumns = 480, kHorizon = 60;

/// A chequered tile; frame by frame its light squares grow red.
void WriteTexture(ScMediaLocation& location) {
    auto const media = StRef<SmMedia>::Adopt(SrGlobalMediaManager()->CreateMedia(&location, SrCode("BMP ")));
    SmMediaTrack* const track = media->NewTrack(SrCode("VIDE"), nullptr);
    auto const frame =
        StRef<SmImagerFrame>::Adopt(SrMakeFrame({kTexture, kTexture}, SrCode("RG24"), false, false));
    for (long i = 0; i < kFrames; ++i) {
        auto const fade = static_cast<unsigned char>(255 - 24 * i);
        for (long y = 0; y < kTexture; ++y) {
            for (long x = 0; x < kTexture; ++x) {
                bool const light = (x / 16 + y / 16) % 2 == 0;
                frame->PutPixelAt(
                    x, y, light ? StRGBA32Pixel{fade, fade, 255, 255} : StRGBA32Pixel{90, 40, 20, 255});
            }
        }
        track->WriteFrames(frame.Get(), SmImagerFrame::Class(), i, kFrames, i, kMiddleFrame, nullptr);
    }
}

/// One half of the floor. Far away a pixel of the picture covers many of the texture, and the filter says how
/// many: its width is a part of the whole texture.
void DrawFloor(SmImagerFrame& picture, SmImagerFrame& texture, long left, long right) {
    constexpr StTilingStyles kTiles{1, 1};
    for (long y = kHorizon; y < kRows; ++y) {
        float const nearness = static_cast<float>(y - kHorizon + 1) / (kRows - kHorizon);
        float const distance = 1.0F / nearness;
        float const across = 2.0F * distance / kColumns;              // of the texture, a pixel to the right
        float const down = distance * distance / (kRows - kHorizon);  // and a pixel down
        for (long x = left; x < right; ++x) {
            float const u = static_cast<float>(x - kColumns / 2) * across;
            StRGBA32Pixel color{};
            // Tiled: what lies between the last pixel and the first is mixed of both. The place itself is the
            // caller's to fold into 0 to 1.
            texture.GetFractionalUVPixel(u - std::floor(u), distance - std::floor(distance), color, kTiles,
                                         std::max(across, down));
            color.alpha = 255;
            picture.PutPixelAt(x, y, color);
        }
    }
}

}  // namespace

int main() {
    try {
        ScMediaFileLocation tiles;
        tiles.SetFullPath("./tile01.bmp");
        WriteTexture(tiles);

        auto const track = StRef<SmImagerTrackWithMedia>::Adopt(SmImagerTrackWithMedia::New());
        track->IImagerTrackWithMedia();
        track->SetLocation(&tiles, 1, true);
        track->SetFrameRate(4.0F);
        track->SetLoop(true, true);  // there and back again

        auto const picture =
            StRef<SmImagerFrame>::Adopt(SrMakeFrame({kRows, kColumns}, SrCode("RG24"), false, false));
        picture->SetBackground({250, 220, 180, 255});
        picture->Erase();
        long const number = track->FrameNumberForTime(3.0);  // on the way back: frame 4
        DrawFloor(*picture, *track->GetFrame(number, 0), 0, kColumns / 2);
        track->SetMipmapping(true);
        SmImagerFrame* const mipmap = track->GetFrame(number, 0);
        DrawFloor(*picture, *mipmap, kColumns / 2, kColumns);
        bool const isReady = mipmap->IsUVTriLinear() && track->GetFrame(number, 0) == mipmap;
        std::printf("frame %ld of %ld: %s\n", number, track->GetNumberOfFrames(),
                    isReady ? "its mipmap is made once" : "no mipmap");

        ScMediaFileLocation location;
        location.SetFullPath("floor.bmp");
        SrSaveObjectToMedia(&location, SmImagerFrame::Class(), picture.Get(), SrCode("BMP "), nullptr);
        return isReady ? 0 : 1;
    } catch (std::exception const& exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return 1;
    }
}
