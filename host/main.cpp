// framewright: the command-line host. Exit status 0, 1 when the work failed, 2 for a wrong command line.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <map>

#include "commands.h"
#include "host_error.h"
#include "interrupt.h"

namespace {

enum { kDone = 0, kFailed = 1, kWrongUsage = 2 };

/// "A-B" or "A": the first and the last number.
std::pair<long, long> ParsedRange(std::string const& text) {
    std::size_t const dash = text.find('-');
    auto const number = [&](std::string const& digits) {
        if (digits.empty() || digits.size() > 9 ||
            digits.find_first_not_of("0123456789") != std::string::npos)
            throw CLI::ValidationError("--frames", "wants A-B, two frame numbers counted from 0, or one");
        return std::stol(digits);
    };
    long const first = number(text.substr(0, dash));
    long const last = dash == std::string::npos ? first : number(text.substr(dash + 1));
    if (last < first) throw CLI::ValidationError("--frames", "the last frame comes before the first");
    return {first, last};
}

/// "ROWSxCOLUMNS".
std::pair<long, long> ParsedSize(std::string const& text) {
    std::size_t const cross = text.find('x');
    auto const number = [&](std::string const& digits) {
        if (digits.empty() || digits.size() > 9 ||
            digits.find_first_not_of("0123456789") != std::string::npos || std::stol(digits) == 0)
            throw CLI::ValidationError("--size", "wants ROWSxCOLUMNS, both at least 1, like 480x640");
        return std::stol(digits);
    };
    if (cross == std::string::npos) number("");
    return {number(text.substr(0, cross)), number(text.substr(cross + 1))};
}

void AddInfo(CLI::App& app, InfoOptions& options) {
    CLI::App* command = app.add_subcommand("info", "Tell what is in picture files");
    command->add_option("files", options.files, "The files to tell of")->required()->option_text("FILE...");
    command->add_flag("--json", options.json, "Print JSON");
}

void AddList(CLI::App& app, char const* name, char const* purpose, ListOptions& options) {
    CLI::App* command = app.add_subcommand(name, purpose);
    command->add_flag("--json", options.json, "Print JSON");
}

/// The files of a command that reads one and writes another.
template <class Options>
void AddInAndOut(CLI::App& command, Options& options) {
    command.add_option("input", options.input, "The file to read")->required()->option_text("IN");
    command.add_option("output", options.output, "The file to write; its extension says the format")
        ->required()
        ->option_text("OUT");
}

void AddMipmap(CLI::App& app, MipmapOptions& options) {
    AddInAndOut(*app.add_subcommand("mipmap", "Write a picture with its ever smaller copies, as one picture"),
                options);
}

/// A range takes what is no number at all for one within.
std::string RefuseNaN(std::string const& text) {
    return std::isnan(std::strtod(text.c_str(), nullptr)) ? "Value " + text + " is no number" : "";
}

void AddRotate(CLI::App& app, RotateOptions& options) {
    CLI::App* command = app.add_subcommand("rotate", "Write a picture turned by an angle");
    AddInAndOut(*command, options);
    command->add_option("--angle", options.rotation.degrees, "Degrees to turn, counterclockwise")
        ->required()
        ->check(CLI::Range(-1000000.0, 1000000.0))
        ->check(RefuseNaN)
        ->option_text("DEGREES");
    command->add_flag("--smooth", options.rotation.smooth, "Mix the pixels that a turned one lies between");
}

/// Cutting an eye out of what is converted.
void AddStereo(CLI::App& command, ConvertOptions& options) {
    static std::map<std::string, StereoLayout> const kLayouts{{"above", StereoLayout::kAbove},
                                                              {"beside", StereoLayout::kBeside}};
    static std::map<std::string, bool> const kRightEye{{"left", false}, {"right", true}};
    // Options may come in any order.
    auto const cut = [&options]() -> StereoCut& {
        if (!options.stereo) options.stereo.emplace();
        return *options.stereo;
    };
    CLI::Option* const stereo =
        command
            .add_option_function<std::string>(
                "--stereo", [cut](std::string const& text) { cut().layout = kLayouts.at(text); },
                "Take one eye of a picture that holds both, the left one above or beside the right one")
            ->check(CLI::IsMember(kLayouts))
            ->option_text("above|beside");
    command
        .add_option_function<std::string>(
            "--eye", [cut](std::string const& text) { cut().rightEye = kRightEye.at(text); },
            "The eye to take; the left one by default")
        ->needs(stereo)
        ->check(CLI::IsMember(kRightEye))
        ->option_text("left|right");
    command
        .add_option_function<long>(
            "--gap", [cut](long gap) { cut().gap = gap; }, "Rows or columns between the eyes; 0 by default")
        ->needs(stereo)
        ->check(CLI::Range(0L, 2147483647L))
        ->option_text("N");
}

void AddConvert(CLI::App& app, ConvertOptions& options) {
    CLI::App* command =
        app.add_subcommand("convert", "Write a picture, movie or numbered sequence as another file");
    AddInAndOut(*command, options);
    CLI::Option* const pixel =
        command
            ->add_option("--pixel", options.pixel, "Pixel type to convert through (see `framewright pixels`)")
            ->option_text("CODE");
    command
        ->add_option_function<std::string>(
            "--size", [&options](std::string const& text) { options.size = ParsedSize(text); },
            "Scale to this size")
        ->option_text("ROWSxCOLUMNS");
    command->add_flag("--dither", options.dither, "Spread the error where the pixel type has few colours")
        ->needs(pixel);
    static std::map<std::string, ConvertPalette> const kPalettes{{"optimal", ConvertPalette::kOptimal},
                                                                 {"standard", ConvertPalette::kStandard}};
    command
        ->add_option_function<std::string>(
            "--palette", [&options](std::string const& text) { options.palette = kPalettes.at(text); },
            "Colours of a mapped pixel type: made for the picture (the default) or the standard ones")
        ->needs(pixel)
        ->check(CLI::IsMember(kPalettes))
        ->option_text("optimal|standard");
    command
        ->add_option_function<std::string>(
            "--frames", [&options](std::string const& text) { options.frames = ParsedRange(text); },
            "Only these frames, counted from 0")
        ->option_text("A-B");
    command->add_option("--rate", options.rate, "Frames a second of the output")
        ->check(CLI::Range(0.001, 1000000.0))
        ->check(RefuseNaN)
        ->option_text("RATE");
    command->add_option("--codec", options.codec, "Codec of the output, by its code")->option_text("CODE");
    AddStereo(*command, options);
}

void AddShow(CLI::App& app, ShowOptions& options) {
    CLI::App* command = app.add_subcommand("show", "Show a picture in the terminal");
    command->add_option("file", options.file, "The file to show")->required()->option_text("FILE");
    command->add_option("--width", options.width, "Columns of text; the terminal's width by default")
        ->check(CLI::Range(1, 10000))
        ->option_text("COLUMNS");
    static std::map<std::string, ShowColors> const kNames{{"auto", ShowColors::kAuto},
                                                          {"truecolor", ShowColors::kTrueColor},
                                                          {"256", ShowColors::k256},
                                                          {"none", ShowColors::kNone}};
    command
        ->add_option_function<std::string>(
            "--color", [&options](std::string const& text) { options.colors = kNames.at(text); },
            "Colours to use; letters alone with none")
        ->check(CLI::IsMember(kNames))
        ->option_text("auto|truecolor|256|none");
}

/// The exit status, once everything printed has been taken.
int Finish(int status) {
    std::cout.flush();
    if (std::cout) return status;
    PrintError("standard output: can't be written");
    return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
    PrepareProcess();
    CLI::App app{"Reads, converts and shows pictures in old and new formats.", "framewright"};
    app.set_version_flag("--version", "framewright " FRAMEWRIGHT_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);

    InfoOptions info;
    ConvertOptions convert;
    ListOptions formats, pixels;
    MipmapOptions mipmap;
    RotateOptions rotate;
    ShowOptions show;
    AddInfo(app, info);
    AddConvert(app, convert);
    AddList(app, "formats", "List the formats that can be read and written", formats);
    AddList(app, "pixels", "List the pixel types", pixels);
    AddShow(app, show);
    AddMipmap(app, mipmap);
    AddRotate(app, rotate);

    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        if (error.get_exit_code() == 0) return Finish(app.exit(error));
        PrintError(std::string(error.what()) + "; see framewright --help");
        return kWrongUsage;
    }

    bool done = true;
    try {
        if (app.got_subcommand("info")) done = RunInfo(info);
        if (app.got_subcommand("convert")) RunConvert(convert);
        if (app.got_subcommand("formats")) RunFormats(formats);
        if (app.got_subcommand("pixels")) RunPixels(pixels);
        if (app.got_subcommand("show")) RunShow(show);
        if (app.got_subcommand("mipmap")) RunMipmap(mipmap);
        if (app.got_subcommand("rotate")) RunRotate(rotate);
    } catch (std::exception const& error) {
        PrintError(error.what());
        done = false;
    }
    return Finish(done ? kDone : kFailed);
}
