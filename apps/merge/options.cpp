#include "options.h"

#include <mclib/app/arguments.hpp>
#include <mclib/app/numbers.hpp>

namespace merge {

// clang-format off
const char* const usage =
    "usage: mchost merge DRAWING... --out DIR [options]\n"
    "       mchost --open DRAWING.mcd merge [options]\n"
    "  makes drawings that need no other files: what a view shows of the files that are attached to them becomes part\n"
    "  of them, cut to the clips, and nothing is attached any more. A drawing is a file, a pattern of files such as\n"
    "  \"sheet-*.mcd\", or a folder with all below it. With mchost --open the open drawing itself is changed, in one\n"
    "  step that undo takes back\n"
    "  --out DIR        the folder where the new drawings go, each under the name that it has\n"
    "  --view 1         the view whose levels and switches count, 1 to 8\n"
    "  --leave-out      leave out what is shown but not found, instead of refusing the drawing\n"
    "  --overwrite      replace drawings that are in DIR\n"
    "  --help           print this\n";
// clang-format on

namespace {

std::string setView(Options& options, std::string_view, const std::string& value) {
    const auto view = mcapp::numberIn<int>(value);
    options.view = view.value_or(0);
    return options.view >= 1 && options.view <= 8 ? "" : "--view takes a number from 1 to 8, not \"" + value + "\"";
}

constexpr mcapp::ValueOption<Options> valueOptions[] = {
    {"--out", mcapp::setText<&Options::out>},
    {"--view", setView},
};
constexpr mcapp::Flag<Options> flags[] = {
    {"--leave-out", &Options::leaveOut},
    {"--overwrite", &Options::overwrite},
};

}  // namespace

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    Options options;
    const mcapp::CallForm<Options> form = {usage, valueOptions, flags, nullptr, nullptr, &Options::drawings};
    if (!mcapp::takeArguments(options, arguments, form)) return {};
    return options;
}

}  // namespace merge
