#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "commands.h"
#include "host_error.h"
#include "source_media.h"

namespace {

/// The colour of one half of a character cell: the mean of the pixels that it covers, on black.
struct CellColor {
    int red = 0, green = 0, blue = 0;
};

int TerminalColumns() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return 80;
}

ShowColors BestColors() {
    if (!isatty(STDOUT_FILENO) || std::getenv("NO_COLOR")) return ShowColors::kNone;
    char const* color = std::getenv("COLORTERM");
    std::string_view const text = color ? color : "";
    return text == "truecolor" || text == "24bit" ? ShowColors::kTrueColor : ShowColors::k256;
}

/// Mean colour of the pixels of `frame` in a rectangle that holds at least one.
CellColor MeanColor(SmImagerFrame& frame, StRect const& area) {
    long long red = 0, green = 0, blue = 0, pixels = 0;
    for (long y = area.top; y < area.bottom; ++y)
        for (long x = area.left; x < area.right; ++x, ++pixels) {
            StRGBA32Pixel const pixel = frame.GetRGBAPixelAt(x, y);
            red += pixel.red * pixel.alpha;
            green += pixel.green * pixel.alpha;
            blue += pixel.blue * pixel.alpha;
        }
    long long const scale = 255 * pixels;
    return {static_cast<int>(red / scale), static_cast<int>(green / scale), static_cast<int>(blue / scale)};
}

/// Part `i` of `length` cut in `parts`: never empty.
std::pair<long, long> Slice(long length, long parts, long i) {
    long const from = i * length / parts;
    return {from, std::max(from + 1, (i + 1) * length / parts)};
}

std::string ColorCode(CellColor const& color, bool background, ShowColors colors) {
    std::string const plane = background ? "\033[48;" : "\033[38;";
    if (colors == ShowColors::kTrueColor)
        return plane + "2;" + std::to_string(color.red) + ';' + std::to_string(color.green) + ';' +
               std::to_string(color.blue) + 'm';
    // The 6 by 6 by 6 cube of the 256-colour terminals.
    auto const step = [](int value) { return (value * 5 + 127) / 255; };
    int const index = 16 + 36 * step(color.red) + 6 * step(color.green) + step(color.blue);
    return plane + "5;" + std::to_string(index) + 'm';
}

char Shade(CellColor const& upper, CellColor const& lower) {
    constexpr std::string_view kShades = " .:-=+*#%@";
    int const sum = upper.red + upper.green + upper.blue + lower.red + lower.green + lower.blue;
    return kShades[static_cast<std::size_t>(sum) * (kShades.size() - 1) / (6 * 255)];
}

/// A picture cut into halves of character cells.
struct Cells {
    SmImagerFrame& frame;
    StPoint size;
    long columns, halves;

    CellColor Color(long half, long column) const {
        auto const [top, bottom] = Slice(size.vertical, halves, half);
        auto const [left, right] = Slice(size.horizontal, columns, column);
        return MeanColor(frame, {static_cast<std::int32_t>(top), static_cast<std::int32_t>(left),
                                 static_cast<std::int32_t>(bottom), static_cast<std::int32_t>(right)});
    }
};

/// The line of text that shows the halves `half` and, where there is one, the next.
std::string Line(Cells const& cells, long half, ShowColors colors) {
    bool const last = half + 1 == cells.halves;
    std::string text;
    for (long column = 0; column < cells.columns; ++column) {
        CellColor const upper = cells.Color(half, column);
        CellColor const lower = last ? CellColor{} : cells.Color(half + 1, column);
        if (colors == ShowColors::kNone)
            text += Shade(upper, last ? upper : lower);
        else
            text += ColorCode(upper, false, colors) + ColorCode(lower, true, colors) + "\u2580";
    }
    return colors == ShowColors::kNone ? text : text + "\033[0m";
}

}  // namespace

void RunShow(ShowOptions const& options) {
    SourceMedia const source(options.file);
    StRef<SmImagerFrame> const frame = source.ReadFrame(0);
    StPoint const size = frame->GetSize();
    if (size.vertical <= 0 || size.horizontal <= 0) throw HostError(options.file, "the picture is empty");

    ShowColors const colors = options.colors == ShowColors::kAuto ? BestColors() : options.colors;
    // A character cell shows two square halves, one above the other.
    long const columns =
        std::min<long>(options.width > 0 ? options.width : TerminalColumns(), size.horizontal);
    long const halves =
        std::max(1L, static_cast<long>(static_cast<long long>(columns) * size.vertical / size.horizontal));
    Cells const cells{*frame, size, columns, halves};
    for (long y = 0; y < halves && std::cout; y += 2)
        std::cout << Line(cells, y, colors) << '\n';
}
