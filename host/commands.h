// The host's commands: each takes its parsed options and returns nothing, or throws HostError.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

struct InfoOptions {
    std::vector<std::string> files;
    bool json = false;
};
/// Prints what is known of each file. A file that fails is reported on standard error and the others are
/// still told; returns whether all could be told.
bool RunInfo(InfoOptions const& options);

struct ListOptions {
    bool json = false;
};
void RunFormats(ListOptions const& options);
void RunPixels(ListOptions const& options);

enum class ConvertPalette { kOptimal, kStandard };
enum class StereoLayout { kAbove, kBeside };
/// Which eye to cut out of a picture that holds both.
struct StereoCut {
    StereoLayout layout = StereoLayout::kAbove;
    bool rightEye = false;
    long gap = 0;  ///< rows or columns between the eyes
};
struct Rotation {
    double degrees = 0;  ///< counterclockwise
    bool smooth = false;
};
struct ConvertOptions {
    std::string input;
    std::string output;
    std::string pixel;                            ///< a pixel type's code; empty keeps the picture's own
    std::optional<std::pair<long, long>> size;    ///< rows, columns
    std::optional<std::pair<long, long>> frames;  ///< first and last, counted from 0
    bool dither = false;
    std::optional<ConvertPalette> palette;  ///< made for the picture if not given
    std::optional<float> rate;              ///< frames a second
    std::string codec;                      ///< a codec's code; empty is the source's
    std::optional<StereoCut> stereo;
    std::optional<Rotation> rotation;
    bool mipmap = false;  ///< the levels of each picture's mipmap instead of the picture
};
void RunConvert(ConvertOptions const& options);

struct MipmapOptions {
    std::string input;
    std::string output;
};
/// Converts a picture, or a numbered sequence, into the levels of its mipmap as one picture.
void RunMipmap(MipmapOptions const& options);

struct RotateOptions {
    std::string input;
    std::string output;
    Rotation rotation;
};
/// Converts a picture, or a numbered sequence, turned by an angle.
void RunRotate(RotateOptions const& options);

enum class ShowColors { kAuto, kTrueColor, k256, kNone };
struct ShowOptions {
    std::string file;
    ShowColors colors = ShowColors::kAuto;
    int width = 0;  ///< columns of text; 0 is the terminal's width
};
void RunShow(ShowOptions const& options);
