#include "options.h"

#include <algorithm>
#include <string_view>

#include "apps/common/numbers.h"
#include "apps/common/tell.h"

namespace materials {

namespace {

// clang-format off
constexpr const char* usage =
    "usage: mchost materials LIST.txt [options]\n"
    "  without --out and --print     the preview opens; its buttons print, plot and place the pages\n"
    "  --out FILE            print to a file without the preview\n"
    "  --print PRINTER       and send it there: a port, a network printer, or a command with %s for the file\n"
    "  --copies 1            so many times\n"
    "  --device postscript   of the file: postscript, hpgl, pcl or ascii\n"
    "  --pages 2-4           these pages alone; also 3\n"
    "  --form A4             A4 or A3\n"
    "  --library forms.cel   the cell library with the form: a path, or a name that is found through MC_CELL\n"
    "  --overwrite           replace a file that is there\n";
// clang-format on

bool wrong(const std::string& what) {
    app::fail(what);
    toolSubsystem_printf("%s", usage);
    return false;
}

// ---- values; `name` is the option's ----

template <std::string Options::*text>
bool setText(Options& options, std::string_view name, const std::string& value) {
    if (value.empty()) return wrong(std::string(name) + " needs a value that isn't empty");
    options.*text = value;
    return true;
}

bool setDevice(Options& options, std::string_view, const std::string& value) {
    if (const app::Device* device = app::deviceNamed(value)) options.device = device;
    return app::deviceNamed(value) ||
           wrong(std::string("--device takes ") + app::deviceNames + ", not \"" + value + "\"");
}

bool setForm(Options& options, std::string_view, const std::string& value) {
    const auto form = std::ranges::find_if(forms(), [&](const Form& f) { return value == f.name; });
    if (form == forms().end()) return wrong("--form takes A4 or A3, not \"" + value + "\"");
    options.form = &*form;
    return true;
}

std::optional<PageRange> rangeIn(std::string_view text) {
    const size_t dash = text.find('-');
    const auto first = app::numberIn<size_t>(text.substr(0, dash));
    const auto last = dash == text.npos ? first : app::numberIn<size_t>(text.substr(dash + 1));
    if (!first || !last || *first < 1 || *last < *first) return {};
    return PageRange{*first, *last};
}

bool setPages(Options& options, std::string_view, const std::string& value) {
    options.pages = rangeIn(value);
    return options.pages || wrong("--pages takes a page or a range such as 2-4, not \"" + value + "\"");
}

bool setCopies(Options& options, std::string_view, const std::string& value) {
    options.copies = app::numberIn<int>(value).value_or(0);
    return options.copies >= 1 || wrong("--copies takes a number from 1, not \"" + value + "\"");
}

// ---- the options ----

struct ValueOption {
    std::string_view name;
    bool (*set)(Options& options, std::string_view name, const std::string& value);
    bool ofPrint = false;  // counts without the preview alone
};
constexpr ValueOption valueOptions[] = {
    {"--out", setText<&Options::out>},
    {"--print", setText<&Options::printer>},
    {"--copies", setCopies, true},
    {"--device", setDevice, true},
    {"--pages", setPages, true},
    {"--form", setForm},
    {"--library", setText<&Options::library>},
};

}  // namespace

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    Options options;
    std::string ofPrint;  // an option that the preview doesn't take
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const auto option = std::ranges::find(valueOptions, argument, &ValueOption::name);
        if (option != std::end(valueOptions)) {
            if (i + 1 == arguments.size()) return wrong(argument + " needs a value"), std::nullopt;
            if (!option->set(options, argument, arguments[++i])) return {};
            if (option->ofPrint) ofPrint = argument;
        } else if (argument == "--overwrite") {
            options.overwrite = true;
            ofPrint = argument;
        } else if (argument.starts_with("-") || !options.input.empty()) {
            return wrong("don't know what to do with \"" + argument + "\""), std::nullopt;
        } else {
            options.input = argument;
        }
    }
    if (options.input.empty()) return wrong("the name of the list is missing"), std::nullopt;
    if (!ofPrint.empty() && options.out.empty() && options.printer.empty())
        return wrong(ofPrint + " goes with --out or --print; the preview has buttons for it"), std::nullopt;
    return options;
}

}  // namespace materials
