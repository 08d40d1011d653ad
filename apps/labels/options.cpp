#include "options.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include <mclib/app/arguments.hpp>
#include <mclib/app/names.hpp>
#include "commands.h"

namespace labels {

// clang-format off
const char* const usage =
    "usage: mchost labels LABELS.txt [options]\n"
    "       mchost --open DRAWING.mcd labels [LABELS.txt] --commands\n"
    "  makes a new drawing with the labels and a picture of it; with mchost --open DRAWING.mcd they go into that one\n"
    "  --out NAME       where to make the files: a folder, or a path without suffix (default: the input's name in the\n"
    "                   current folder). With --open: of the picture, and without it there is none\n"
    "  --picture png    png, svg or pdf\n"
    "  --dpi 150        pixels in an inch of a png\n"
    "  --scale 5000     instead of the SCALE of the input\n"
    "  --overwrite      replace files that are there\n"
    "  --commands       open the dialog whose buttons place and change labels; the file may tell scale and looks\n"
    "  --start place    begin with a command: place, move-tip, move-text, move, change-text, insert-vertex,\n"
    "                   delete-vertex, add-leader, erase-leader, replace-head, align-edges, align-row, collect,\n"
    "                   renumber\n"
    "  --help           print this\n";
// clang-format on

namespace {

bool wrong(const std::string& what) {
    return mcapp::failCall(what, usage);
}

constexpr std::array pictures = {"png", "svg", "pdf"};

// A setter gives what is wrong.
std::string setPicture(Options& options, std::string_view, const std::string& value) {
    options.picture = value;
    return std::ranges::find(pictures, value) != pictures.end()
               ? ""
               : "--picture takes png, svg or pdf, not \"" + value + "\"";
}

std::string setStart(Options& options, std::string_view, const std::string& value) {
    options.start = value;
    options.commands = true;
    return isCommand(value) ? "" : "--start doesn't know \"" + value + "\"";
}

constexpr mcapp::ValueOption<Options> valueOptions[] = {
    {"--out", mcapp::setText<&Options::out>},         {"--picture", setPicture},
    {"--dpi", mcapp::setPositive<&Options::dpi>},     {"--start", setStart},
    {"--scale", mcapp::setPositive<&Options::scale>},
};
constexpr mcapp::Flag<Options> flags[] = {
    {"--overwrite", &Options::overwrite},
    {"--commands", &Options::commands},
};

bool isWithoutSuffix(const Options& options) {
    if (options.out == "-") return wrong("--out takes a folder or a path; standard output isn't written");
    const std::string suffix = std::filesystem::path(options.out).extension().string();
    if (!std::ranges::any_of(std::array{".mcd", ".png", ".svg", ".pdf"},
                             [&](const char* made) { return mcapp::sameName(suffix, made); }))
        return true;
    return wrong(options.out + ": --out takes a path without suffix, for the drawing and the picture");
}

}  // namespace

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    Options options;
    const mcapp::CallForm<Options> form = {usage, valueOptions, flags, &Options::input};
    if (!mcapp::takeArguments(options, arguments, form) || !isWithoutSuffix(options)) return {};
    if (options.input.empty() && !options.commands) {
        wrong("the name of the labels' file is missing");
        return {};
    }
    return options;
}

}  // namespace labels
