#include "options.h"

#include <mclib/app/arguments.hpp>

namespace symbols {

// clang-format off
const char* const usage =
    "usage: mchost symbols SYMBOLS.txt DRAWING... [options]\n"
    "  recognises the symbols that SYMBOLS.txt tells in drawings and counts them into a list for mchost materials. A\n"
    "  drawing is a file, a pattern of files such as \"sheet-*.mcd\", or a folder with all below it\n"
    "  --list FILE      also the drawings that the lines of a text file name\n"
    "  --out NAME       the list, NAME.txt, or a folder for it (default: the current folder; the name is then that of\n"
    "                   SYMBOLS.txt with -list behind it)\n"
    "  --mark FOLDER    copies of drawings with doubtful symbols, each marked by a label that tells its errors\n"
    "  --overwrite      replace files that are there\n"
    "  --help           print this\n"
    "  The exit status is 0 when the list was made, 1 when it wasn't, 2 for a wrong call.\n";
// clang-format on

namespace {

std::string addList(Options& options, std::string_view, const std::string& value) {
    options.lists.push_back(value);
    return value.empty() ? "--list needs the name of a file" : "";
}

constexpr mcapp::ValueOption<Options> valueOptions[] = {
    {"--list", addList},
    {"--out", mcapp::setText<&Options::out>},
    {"--mark", mcapp::setText<&Options::mark>},
};
constexpr mcapp::Flag<Options> flags[] = {{"--overwrite", &Options::overwrite}};

}  // namespace

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    Options options;
    const mcapp::CallForm<Options> form = {
        usage, valueOptions, flags, &Options::input, "the name of the symbols' file", &Options::drawings};
    if (!mcapp::takeArguments(options, arguments, form)) return {};
    if (options.drawings.empty() && options.lists.empty()) {
        mcapp::failCall("the drawings are missing", usage);
        return {};
    }
    return options;
}

}  // namespace symbols
