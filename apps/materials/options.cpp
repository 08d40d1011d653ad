#include "options.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "apps/common/delivery.h"
#include "apps/common/numbers.h"
#include "apps/common/tell.h"

namespace materials {

// clang-format off
const char* const usage =
    "usage: mchost materials LIST.txt [options]\n"
    "  without --out and --print     the preview opens; its buttons print, plot and place the pages\n"
    "  --out FILE            print to a file without the preview; .ps, .hpgl, .pcl or .txt tells the device\n"
    "  --print PRINTER       send it to a port, a network printer, or a command with %s for the file\n"
    "  --copies 1            so many times\n"
    "  --device postscript   of the file: postscript, hpgl, pcl or ascii\n"
    "  --pages 2-4           these pages alone; also 3\n"
    "  --form A4             A4 or A3\n"
    "  --library forms.cel   the cell library with the form: a path, or a name that is found here or through MC_CELL\n"
    "  --logo OFFICE.cel     the cell library whose cell LOGO is shown\n"
    "  --overwrite           replace a file that is there\n"
    "  --help                print this\n";
// clang-format on

namespace {

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

bool setOut(Options& options, std::string_view name, const std::string& value) {
    if (value == "-") return wrong("--out takes the name of a file; standard output isn't written");
    return setText<&Options::out>(options, name, value);
}

bool setDevice(Options& options, std::string_view, const std::string& value) {
    if (const McPrintDevice* device = app::deviceNamed(value)) options.device = device;
    return app::deviceNamed(value) || wrong("--device takes " + app::deviceNames() + ", not \"" + value + "\"");
}

bool setForm(Options& options, std::string_view, const std::string& value) {
    const auto form = std::ranges::find_if(formKinds(), [&](const FormKind& f) { return value == f.name; });
    if (form == formKinds().end()) return wrong("--form takes A4 or A3, not \"" + value + "\"");
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
    return *options.copies >= 1 || wrong("--copies takes a number from 1, not \"" + value + "\"");
}

bool setPrinter(Options& options, std::string_view, const std::string& value) {
    options.printer = value;
    const std::string refusal = app::printerRefusal(value);
    return refusal.empty() || wrong(refusal);
}

// ---- the options ----

struct ValueOption {
    std::string_view name;
    bool (*set)(Options& options, std::string_view name, const std::string& value);
    bool ofPrint = false;  // counts without the preview alone
};
constexpr ValueOption valueOptions[] = {
    {"--out", setOut},
    {"--print", setPrinter},
    {"--copies", setCopies, true},
    {"--device", setDevice, true},
    {"--pages", setPages, true},
    {"--form", setForm},
    {"--library", setText<&Options::library>},
    {"--logo", setText<&Options::logo>},
};

// The device that the file is for.
bool chooseDevice(Options& options) {
    std::string why;
    const McPrintDevice* const device =
        app::deviceFor(std::filesystem::path(options.out).extension().string(), options.device, why);
    if (!device) return wrong(options.out + ": " + why);
    options.device = device;
    double width = 0, height = 0;
    mclibPrint_getPageSize(&width, &height, options.form->pageSize);
    if (app::fitsDevice(*device, width, height)) return true;
    return wrong(std::string(device->name) + " files are for A4 paper, which form " + options.form->name +
                 " is cut to; take --form A4 or another device");
}

// Options that go together.
bool complete(Options& options, const std::string& ofPrint) {
    if (options.input.empty()) return wrong("the name of the list is missing");
    if (!ofPrint.empty() && options.out.empty() && options.printer.empty())
        return wrong(ofPrint + " goes with --out or --print; the preview has buttons for it");
    if (options.copies && options.printer.empty()) return wrong("--copies goes with --print");
    return chooseDevice(options);
}

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
        } else if ((argument.starts_with("-") && argument != "-") || !options.input.empty()) {
            return wrong("don't know what to do with \"" + argument + "\""), std::nullopt;
        } else {
            options.input = argument;
        }
    }
    if (!complete(options, ofPrint)) return {};
    return options;
}

}  // namespace materials
